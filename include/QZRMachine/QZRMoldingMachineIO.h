// CQZRMoldingMachineIO: loads bank files into a catalogue and saves a catalogue as a bank.
#ifndef QZRMACHINE_QZRMOLDINGMACHINEIO_H
#define QZRMACHINE_QZRMOLDINGMACHINEIO_H

#include <memory>

#include <QZRMachine/QZRExport.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

class CQZRMoldingMachineReader;
class CQZRMoldingMachineWriter;

class QZRMACHINE_API CQZRMoldingMachineIO {
  public:
    CQZRMoldingMachineIO();
    // A copy starts without reader and writer of its own; they are made on first use.
    CQZRMoldingMachineIO(const CQZRMoldingMachineIO& other);
    CQZRMoldingMachineIO& operator=(const CQZRMoldingMachineIO& other);
    virtual ~CQZRMoldingMachineIO();

    // Paths are 8-bit texts with the backslash as separator. Loads add to what the catalogue
    // already holds.
    bool LoadOldIMMSystemDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue);
    bool LoadOldIMMUserDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue);
    bool LoadIMMSystemDatabase(const char* pattern, CQZRMoldingMachineCtrl* catalogue);
    bool LoadIMMUserDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue);
    bool LoadRTMSystemDatabase(const char* pattern, CQZRMoldingMachineCtrl* catalogue);
    // Takes the pointer by reference but never changes it; a const reference so that a host
    // may pass &catalogue directly.
    bool LoadRTMUserDatabase(const char* path, CQZRMoldingMachineCtrl* const& catalogue);
    bool LoadDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue, int unused);

    bool SaveOldIMMUserDatabase(const char* folder, const CQZRMoldingMachineCtrl* catalogue);
    bool SaveIMMUserDatabase(const char* path, const CQZRMoldingMachineCtrl* catalogue);
    bool SaveRTMUserDatabase(const char* folder, const CQZRMoldingMachineCtrl* catalogue);
    bool SaveDatabase(const char* path, const CQZRMoldingMachineCtrl* catalogue, int unused);

    bool GetLoadDatabasePath(char* buffer, int size) const;

  private:
    QZRMACHINE_PRIVATE_MEMBERS_BEGIN
    std::unique_ptr<CQZRMoldingMachineReader> m_reader;
    std::unique_ptr<CQZRMoldingMachineWriter> m_writer;
    QZRMACHINE_PRIVATE_MEMBERS_END
};

#endif  // QZRMACHINE_QZRMOLDINGMACHINEIO_H

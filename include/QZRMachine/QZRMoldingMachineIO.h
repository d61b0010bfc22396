// CQZRMoldingMachineIO: loads bank files into a catalogue and saves a catalogue as a bank.
//
// Paths are 8-bit texts in the process's code page, with the backslash as separator (on POSIX
// every backslash is taken as '/', and names differing only in letter case are found as on
// Windows). Every file is opened and closed within the call. Loads add to what the catalogue
// holds and are not all or nothing: machines read before a failure stay. The first bank
// accepted into a catalogue that is not initialised gives it its file attributes. A front
// keeps the header values of its last recognition, which can decide how the next file is
// recognised; use a new front per file for independent loads.
#ifndef QZRMACHINE_QZRMOLDINGMACHINEIO_H
#define QZRMACHINE_QZRMOLDINGMACHINEIO_H

#include <memory>

#include <QZRMachine/QZRExport.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

namespace qzr::bank {
class CQZRMoldingMachineReader;
class CQZRMoldingMachineWriter;
}  // namespace qzr::bank

class QZRMACHINE_API CQZRMoldingMachineIO {
  public:
    // A front without reader and writer; each is made by the first load or save that needs it.
    CQZRMoldingMachineIO();
    // A copy starts without reader and writer of its own; they are made on first use.
    CQZRMoldingMachineIO(const CQZRMoldingMachineIO& other);
    CQZRMoldingMachineIO& operator=(const CQZRMoldingMachineIO& other);
    virtual ~CQZRMoldingMachineIO();

    // Loads a legacy system bank ("Bank\\system-pro.bnk") or legacy user bank
    // ("Bank\\user-pro.bnk"). False when an argument is null, the file is missing or not of that
    // kind, or (user bank) it holds "TotalNo"; after a failed user-bank load the catalogue is
    // given the attributes of a new legacy user bank, so that the matching save writes one.
    bool LoadOldIMMSystemDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue);
    bool LoadOldIMMUserDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue);
    // Loads every sectioned system bank matching the wildcard pattern (only its last
    // component holds * and ?), in name order, case ignored; files of another kind are passed
    // over. False when an argument is null or nothing matches.
    bool LoadIMMSystemDatabase(const char* pattern, CQZRMoldingMachineCtrl* catalogue);
    // Loads a sectioned user bank of injection-moulding machines; false when an argument is
    // null or the file is missing or not of that kind.
    bool LoadIMMUserDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue);
    bool LoadRTMSystemDatabase(const char* pattern, CQZRMoldingMachineCtrl* catalogue);
    // A sectioned user bank of transfer-moulding machines; a failed load gives the catalogue
    // the attributes of a new one. Takes the pointer by const reference, so &catalogue may be
    // passed directly.
    bool LoadRTMUserDatabase(const char* path, CQZRMoldingMachineCtrl* const& catalogue);
    // Does nothing; always false.
    bool LoadDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue, int unused);

    // Saves the catalogue as a user bank: legacy ("folder" + "Bank\\user-pro.bnk", written as
    // version 7007), sectioned injection-moulding (at path), sectioned transfer-moulding
    // ("folder" + "Bank\\User-RTMIC.bnk"). The catalogue's version, format and type must name
    // that format, a user bank and its kind. The previous file is kept as ".bak"; the new one
    // is written to ".tmp", synced and moved over the target. True only when the whole bank is
    // in place; on false the target keeps its previous content.
    bool SaveOldIMMUserDatabase(const char* folder, const CQZRMoldingMachineCtrl* catalogue);
    bool SaveIMMUserDatabase(const char* path, const CQZRMoldingMachineCtrl* catalogue);
    bool SaveRTMUserDatabase(const char* folder, const CQZRMoldingMachineCtrl* catalogue);
    // Does nothing; always false.
    bool SaveDatabase(const char* path, const CQZRMoldingMachineCtrl* catalogue, int unused);

    // Copies the recorded load path (always empty) into buffer; false before a load has made
    // the front's reader, or when buffer is null or too small.
    bool GetLoadDatabasePath(char* buffer, int size) const;

  private:
    QZRMACHINE_PRIVATE_MEMBERS_BEGIN
    std::unique_ptr<qzr::bank::CQZRMoldingMachineReader> m_reader;
    std::unique_ptr<qzr::bank::CQZRMoldingMachineWriter> m_writer;
    QZRMACHINE_PRIVATE_MEMBERS_END
};

#endif  // QZRMACHINE_QZRMOLDINGMACHINEIO_H

// CQZRMoldingMachineReader: reads bank files of every kind into a catalogue. One reader serves
// every load of its front, and the header values of one recognition stay on it until the next.
//
// Members are defined in the subsystem they belong to: header recognition and the legacy
// tabular loading under bank/legacy/, the sectioned loading under bank/sectioned/.
#ifndef QZR_BANK_QZRMOLDINGMACHINEREADER_H
#define QZR_BANK_QZRMOLDINGMACHINEREADER_H

#include <string>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

#include "bank/legacy/LegacyRowLayout.h"

namespace qzr::bank {

class CQZRMoldingMachineReader {
  public:
    CQZRMoldingMachineReader();
    virtual ~CQZRMoldingMachineReader();

    // Header recognition.
    bool RecognizeBankHeader(const char* path);
    int GetBankKind() const;
    int GetHeaderVersion() const { return m_headerVersion; }
    int GetHeaderFormat() const { return m_headerFormat; }
    int GetHeaderType() const { return m_headerType; }

    // Legacy tabular banks.
    bool ReadOldIMMSystemDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue);
    bool ReadOldIMMUserDatabase(const char* path, CQZRMoldingMachineCtrl* catalogue);

    // Sectioned banks.
    bool ReadIMMSystemDatabase(const char* pattern, CQZRMoldingMachineCtrl* const& catalogue);
    bool ReadRTMSystemDatabase(const char* pattern, CQZRMoldingMachineCtrl* const& catalogue);
    bool ReadIMMUserDatabase(const char* path, CQZRMoldingMachineCtrl* const& catalogue);
    bool ReadRTMUserDatabase(const char* path, CQZRMoldingMachineCtrl* const& catalogue);

    // Nothing in the library records a path here; it stays empty.
    const std::string& GetLoadPath() const { return m_loadPath; }

  private:
    int m_headerVersion = -1;
    int m_headerFormat = -1;
    int m_headerType = -1;
    bool m_systemBank = false;
    std::string m_loadPath;
};

}  // namespace qzr::bank

#endif  // QZR_BANK_QZRMOLDINGMACHINEREADER_H

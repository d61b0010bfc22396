// CQZRMoldingMachineWriter: writes a catalogue as a bank file, and the save protocol shared by
// every writer (the ".bak" copy, creating a missing target, the time stamp, default paths).
//
// Members are defined in the subsystem they belong to: the legacy tabular writer under
// bank/legacy/, the sectioned writers under bank/sectioned/, the save protocol under bank/.
#ifndef QZR_BANK_QZRMOLDINGMACHINEWRITER_H
#define QZR_BANK_QZRMOLDINGMACHINEWRITER_H

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "bank/BankKind.h"

namespace qzr::bank {

class CQZRMoldingMachineWriter {
  public:
    // Size of every path buffer the save protocol builds, terminator included.
    static constexpr int kPathBufferSize = 260;

    CQZRMoldingMachineWriter();
    virtual ~CQZRMoldingMachineWriter();

    bool WriteOldIMMUserDatabase(const char* folder, const CQZRMoldingMachineCtrl* catalogue) const;
    bool WriteIMMUserDatabase(const char* path, const CQZRMoldingMachineCtrl* catalogue) const;
    bool WriteRTMUserDatabase(const char* folder, const CQZRMoldingMachineCtrl* catalogue) const;

    // Save protocol.
    static bool BackupBankFile(const char* path);
    static bool EnsureBankFileExists(const char* path);
    static const char* GetTimeStamp();
    // Fills result (kPathBufferSize bytes) with folder + the kind's tail.
    static bool GetDefaultBankPath(const char* folder, int kind, char* result);
};

}  // namespace qzr::bank

#endif  // QZR_BANK_QZRMOLDINGMACHINEWRITER_H

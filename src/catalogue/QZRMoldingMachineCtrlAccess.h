// CQZRMoldingMachineCtrlAccess: the library's own way into a catalogue controller. The bank
// readers and writers reach the store behind a CQZRMoldingMachineCtrl through it, and tests use
// it to bring about a controller without a store, which otherwise happens only when memory for
// a store cannot be obtained.
#ifndef QZR_CATALOGUE_QZRMOLDINGMACHINECTRLACCESS_H
#define QZR_CATALOGUE_QZRMOLDINGMACHINECTRLACCESS_H

#include <memory>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "catalogue/QZRMoldingMachineDatabase.h"

namespace qzr::catalogue {

class CQZRMoldingMachineCtrlAccess {
  public:
    CQZRMoldingMachineCtrlAccess() = delete;

    // The controller's store; null when it has none.
    static CQZRMoldingMachineDatabase* Store(CQZRMoldingMachineCtrl& catalogue);
    static const CQZRMoldingMachineDatabase* Store(const CQZRMoldingMachineCtrl& catalogue);

    // The controller's private Initialize: makes a new empty store if there is none; true when
    // a store exists afterwards.
    static bool Initialize(CQZRMoldingMachineCtrl& catalogue);

    // Destroys the controller's store, leaving it without one.
    static void DropStore(CQZRMoldingMachineCtrl& catalogue);

    // Makes the next `count` store creations of the process fail as if memory had run out
    // (0 disarms).
    static void FailNextStoreCreations(int count);

    // Creates a store for a controller: null when memory runs out or a failure was armed.
    static std::unique_ptr<CQZRMoldingMachineDatabase> CreateStore();
};

}  // namespace qzr::catalogue

#endif  // QZR_CATALOGUE_QZRMOLDINGMACHINECTRLACCESS_H

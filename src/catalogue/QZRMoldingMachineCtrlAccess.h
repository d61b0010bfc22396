// CQZRMoldingMachineCtrlAccess: the library's own way into a catalogue controller. The bank
// readers and writers reach the store behind a CQZRMoldingMachineCtrl through it, and the
// controller creates its store through it.
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

    // Creates a store for a controller: null when memory runs out.
    static std::unique_ptr<CQZRMoldingMachineDatabase> CreateStore();
};

}  // namespace qzr::catalogue

#endif  // QZR_CATALOGUE_QZRMOLDINGMACHINECTRLACCESS_H

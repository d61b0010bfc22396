#include "catalogue/QZRMoldingMachineCtrlAccess.h"

#include <new>

namespace qzr::catalogue {

CQZRMoldingMachineDatabase* CQZRMoldingMachineCtrlAccess::Store(CQZRMoldingMachineCtrl& catalogue) {
    return catalogue.m_store.get();
}

const CQZRMoldingMachineDatabase* CQZRMoldingMachineCtrlAccess::Store(
    const CQZRMoldingMachineCtrl& catalogue) {
    return catalogue.m_store.get();
}

std::unique_ptr<CQZRMoldingMachineDatabase> CQZRMoldingMachineCtrlAccess::CreateStore() {
    try {
        return std::make_unique<CQZRMoldingMachineDatabase>();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace qzr::catalogue

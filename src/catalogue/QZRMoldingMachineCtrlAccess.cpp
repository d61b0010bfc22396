#include "catalogue/QZRMoldingMachineCtrlAccess.h"

#include <new>

namespace qzr::catalogue {

namespace {

// Store creations still to fail; armed only by FailNextStoreCreations.
int g_storeCreationsToFail = 0;

}  // namespace

CQZRMoldingMachineDatabase* CQZRMoldingMachineCtrlAccess::Store(CQZRMoldingMachineCtrl& catalogue) {
    return catalogue.m_store.get();
}

const CQZRMoldingMachineDatabase* CQZRMoldingMachineCtrlAccess::Store(
    const CQZRMoldingMachineCtrl& catalogue) {
    return catalogue.m_store.get();
}

bool CQZRMoldingMachineCtrlAccess::Initialize(CQZRMoldingMachineCtrl& catalogue) {
    return catalogue.Initialize();
}

void CQZRMoldingMachineCtrlAccess::DropStore(CQZRMoldingMachineCtrl& catalogue) {
    catalogue.m_store.reset();
}

void CQZRMoldingMachineCtrlAccess::FailNextStoreCreations(int count) {
    g_storeCreationsToFail = count > 0 ? count : 0;
}

std::unique_ptr<CQZRMoldingMachineDatabase> CQZRMoldingMachineCtrlAccess::CreateStore() {
    if (g_storeCreationsToFail > 0) {
        --g_storeCreationsToFail;
        return nullptr;
    }
    try {
        return std::make_unique<CQZRMoldingMachineDatabase>();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace qzr::catalogue

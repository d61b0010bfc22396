#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include <exception>

#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "catalogue/QZRMoldingMachineDatabase.h"

using qzr::catalogue::CQZRMoldingMachineCtrlAccess;
using qzr::catalogue::CQZRMoldingMachineDatabase;

namespace {

using Store = CQZRMoldingMachineDatabase;

const Store* ReadOnly(const std::unique_ptr<Store>& store) {
    return store.get();
}

// Runs an operation on the catalogue's store. A controller without a store gives the
// operation's absent-store result; so does an operation that runs out of memory, so that no
// exception ever reaches the host (the store's edits leave it as it was in that case).
template <class StoreType, class Result, class Operation>
Result OnStore(StoreType* store, Result absent, Operation&& operation) noexcept {
    if (store == nullptr) {
        return absent;
    }
    try {
        return operation(*store);
    } catch (const std::exception&) {
        return absent;
    }
}

// The same for the setters, which have no result: without a store they do nothing.
template <class Operation>
void ApplyToStore(Store* store, Operation&& operation) noexcept {
    OnStore(store, false, [&](Store& target) {
        operation(target);
        return true;
    });
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Lifecycle

CQZRMoldingMachineCtrl::CQZRMoldingMachineCtrl()
    : m_store(CQZRMoldingMachineCtrlAccess::CreateStore()) {}

CQZRMoldingMachineCtrl::CQZRMoldingMachineCtrl(const CQZRMoldingMachineCtrl& other)
    : m_store(CQZRMoldingMachineCtrlAccess::CreateStore()) {
    if (m_store == nullptr || other.m_store == nullptr) {
        return;
    }
    // A copy that cannot be completed leaves the new controller without a store, the same as
    // a store that could not be created at all.
    if (!OnStore(m_store.get(), false, [&](Store& target) {
            target = *other.m_store;
            return true;
        })) {
        m_store.reset();
    }
}

CQZRMoldingMachineCtrl& CQZRMoldingMachineCtrl::operator=(const CQZRMoldingMachineCtrl& other) {
    if (this != &other && other.m_store != nullptr) {
        // The store's assignment builds the whole copy before replacing anything.
        ApplyToStore(m_store.get(), [&](Store& target) { target = *other.m_store; });
    }
    return *this;
}

CQZRMoldingMachineCtrl::~CQZRMoldingMachineCtrl() = default;

bool CQZRMoldingMachineCtrl::Initialize() {
    if (m_store == nullptr) {
        m_store = CQZRMoldingMachineCtrlAccess::CreateStore();
    }
    return m_store != nullptr;
}

// ---------------------------------------------------------------------------------------------
// Adding

bool CQZRMoldingMachineCtrl::AddMachine(CQZRIM& machine) {
    return OnStore(m_store.get(), false, [&](Store& store) { return store.AddMachine(machine); });
}

bool CQZRMoldingMachineCtrl::AddMachine(CQZRRTM& machine) {
    return OnStore(m_store.get(), false, [&](Store& store) { return store.AddMachine(machine); });
}

// ---------------------------------------------------------------------------------------------
// File attributes

void CQZRMoldingMachineCtrl::SetFileVersion(int version) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetFileVersion(version); });
}

int CQZRMoldingMachineCtrl::GetFileVersion() const {
    return OnStore(ReadOnly(m_store), -1,
                   [](const Store& store) { return store.GetFileVersion(); });
}

void CQZRMoldingMachineCtrl::SetFileFormat(int format) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetFileFormat(format); });
}

int CQZRMoldingMachineCtrl::GetFileFormat() const {
    return OnStore(ReadOnly(m_store), -1, [](const Store& store) { return store.GetFileFormat(); });
}

void CQZRMoldingMachineCtrl::SetFileType(int type) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetFileType(type); });
}

int CQZRMoldingMachineCtrl::GetFileType() const {
    return OnStore(ReadOnly(m_store), -1, [](const Store& store) { return store.GetFileType(); });
}

// A null text is stored as the empty text, as the record setters do.
void CQZRMoldingMachineCtrl::SetFileName(const char* text) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetFileName(text); });
}

const char* CQZRMoldingMachineCtrl::GetFileName() const {
    return OnStore(ReadOnly(m_store), static_cast<const char*>(nullptr),
                   [](const Store& store) { return store.GetFileName(); });
}

void CQZRMoldingMachineCtrl::SetFileDate(const char* text) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetFileDate(text); });
}

const char* CQZRMoldingMachineCtrl::GetFileDate() const {
    return OnStore(ReadOnly(m_store), static_cast<const char*>(nullptr),
                   [](const Store& store) { return store.GetFileDate(); });
}

void CQZRMoldingMachineCtrl::SetFileCreateBy(const char* text) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetFileCreateBy(text); });
}

const char* CQZRMoldingMachineCtrl::GetFileCreateBy() const {
    return OnStore(ReadOnly(m_store), static_cast<const char*>(nullptr),
                   [](const Store& store) { return store.GetFileCreateBy(); });
}

void CQZRMoldingMachineCtrl::SetFileRelease(const char* text) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetFileRelease(text); });
}

const char* CQZRMoldingMachineCtrl::GetFileRelease() const {
    return OnStore(ReadOnly(m_store), static_cast<const char*>(nullptr),
                   [](const Store& store) { return store.GetFileRelease(); });
}

void CQZRMoldingMachineCtrl::SetFileRemark(const char* text) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetFileRemark(text); });
}

const char* CQZRMoldingMachineCtrl::GetFileRemark() const {
    return OnStore(ReadOnly(m_store), static_cast<const char*>(nullptr),
                   [](const Store& store) { return store.GetFileRemark(); });
}

void CQZRMoldingMachineCtrl::SetDatabaseInitialize(bool initialized) {
    ApplyToStore(m_store.get(), [&](Store& store) { store.SetDatabaseInitialize(initialized); });
}

bool CQZRMoldingMachineCtrl::IsDatabaseInitialize() const {
    return OnStore(ReadOnly(m_store), false,
                   [](const Store& store) { return store.IsDatabaseInitialize(); });
}

// ---------------------------------------------------------------------------------------------
// Counts and makers

int CQZRMoldingMachineCtrl::GetTotalMachine() const {
    return OnStore(ReadOnly(m_store), 0,
                   [](const Store& store) { return store.GetTotalMachine(); });
}

int CQZRMoldingMachineCtrl::GetTotalMaker() const {
    return OnStore(ReadOnly(m_store), 0, [](const Store& store) { return store.GetTotalMaker(); });
}

int CQZRMoldingMachineCtrl::GetMachineCount(int makerId) const {
    return OnStore(ReadOnly(m_store), 0,
                   [&](const Store& store) { return store.GetMachineCount(makerId); });
}

int CQZRMoldingMachineCtrl::GetMachineCount(const char* maker) const {
    return OnStore(ReadOnly(m_store), 0,
                   [&](const Store& store) { return store.GetMachineCount(maker); });
}

// Without a store the answer is 0, not the -1 of a position out of range: hosts of the DLL
// have always seen it so.
int CQZRMoldingMachineCtrl::GetMakerID(int makerPosition) const {
    return OnStore(ReadOnly(m_store), 0,
                   [&](const Store& store) { return store.GetMakerID(makerPosition); });
}

const char* CQZRMoldingMachineCtrl::GetMaker(int makerId) const {
    return OnStore(ReadOnly(m_store), static_cast<const char*>(nullptr),
                   [&](const Store& store) { return store.GetMaker(makerId); });
}

// ---------------------------------------------------------------------------------------------
// Copying a machine out

bool CQZRMoldingMachineCtrl::GetCurrentMachine(int machineIndex, CQZRIM& machine) const {
    return OnStore(ReadOnly(m_store), false, [&](const Store& store) {
        return store.GetCurrentMachine(machineIndex, machine);
    });
}

bool CQZRMoldingMachineCtrl::GetCurrentMachine(int machineIndex, CQZRRTM& machine) const {
    return OnStore(ReadOnly(m_store), false, [&](const Store& store) {
        return store.GetCurrentMachine(machineIndex, machine);
    });
}

bool CQZRMoldingMachineCtrl::GetCurrentMakerMachine(int makerId, int machinePosition,
                                                    CQZRIM& machine) const {
    return OnStore(ReadOnly(m_store), false, [&](const Store& store) {
        return store.GetCurrentMakerMachine(makerId, machinePosition, machine);
    });
}

bool CQZRMoldingMachineCtrl::GetCurrentMakerMachine(int makerId, int machinePosition,
                                                    CQZRRTM& machine) const {
    return OnStore(ReadOnly(m_store), false, [&](const Store& store) {
        return store.GetCurrentMakerMachine(makerId, machinePosition, machine);
    });
}

bool CQZRMoldingMachineCtrl::GetCurrentMakerMachine(const char* maker, int machinePosition,
                                                    CQZRIM& machine) const {
    return OnStore(ReadOnly(m_store), false, [&](const Store& store) {
        return store.GetCurrentMakerMachine(maker, machinePosition, machine);
    });
}

bool CQZRMoldingMachineCtrl::GetCurrentMakerMachine(const char* maker, int machinePosition,
                                                    CQZRRTM& machine) const {
    return OnStore(ReadOnly(m_store), false, [&](const Store& store) {
        return store.GetCurrentMakerMachine(maker, machinePosition, machine);
    });
}

bool CQZRMoldingMachineCtrl::GetMachine(int machineId, CQZRIM& machine) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.GetMachine(machineId, machine); });
}

bool CQZRMoldingMachineCtrl::GetMachine(int machineId, CQZRRTM& machine) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.GetMachine(machineId, machine); });
}

bool CQZRMoldingMachineCtrl::GetMachine(const char* maker, const char* grade,
                                        CQZRIM& machine) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.GetMachine(maker, grade, machine); });
}

bool CQZRMoldingMachineCtrl::GetMachine(const char* maker, const char* grade,
                                        CQZRRTM& machine) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.GetMachine(maker, grade, machine); });
}

// ---------------------------------------------------------------------------------------------
// Edits

bool CQZRMoldingMachineCtrl::SetMachineData(int machineId, const CQZRIM& machine) {
    return OnStore(m_store.get(), false,
                   [&](Store& store) { return store.SetMachineData(machineId, machine); });
}

bool CQZRMoldingMachineCtrl::SetMachineData(int machineId, const CQZRRTM& machine) {
    return OnStore(m_store.get(), false,
                   [&](Store& store) { return store.SetMachineData(machineId, machine); });
}

bool CQZRMoldingMachineCtrl::SetCurrentMachineData(int machineIndex, const CQZRIM& machine) {
    return OnStore(m_store.get(), false, [&](Store& store) {
        return store.SetCurrentMachineData(machineIndex, machine);
    });
}

bool CQZRMoldingMachineCtrl::SetCurrentMachineData(int machineIndex, const CQZRRTM& machine) {
    return OnStore(m_store.get(), false, [&](Store& store) {
        return store.SetCurrentMachineData(machineIndex, machine);
    });
}

bool CQZRMoldingMachineCtrl::RemoveMachine(int machineId) {
    return OnStore(m_store.get(), false,
                   [&](Store& store) { return store.RemoveMachine(machineId); });
}

bool CQZRMoldingMachineCtrl::RemoveMachine(const char* maker, const char* grade) {
    return OnStore(m_store.get(), false,
                   [&](Store& store) { return store.RemoveMachine(maker, grade); });
}

bool CQZRMoldingMachineCtrl::RemoveCurrentMaker(int makerPosition) {
    return OnStore(m_store.get(), false,
                   [&](Store& store) { return store.RemoveCurrentMaker(makerPosition); });
}

bool CQZRMoldingMachineCtrl::RemoveMaker(int makerId) {
    return OnStore(m_store.get(), false, [&](Store& store) { return store.RemoveMaker(makerId); });
}

bool CQZRMoldingMachineCtrl::RemoveMaker(const char* maker) {
    return OnStore(m_store.get(), false, [&](Store& store) { return store.RemoveMaker(maker); });
}

bool CQZRMoldingMachineCtrl::RemoveAllMaker() {
    return OnStore(m_store.get(), false, [](Store& store) { return store.RemoveAllMaker(); });
}

// ---------------------------------------------------------------------------------------------
// Duplicate and name checks

// The two-record comparison does not look at the catalogue, but like every check it answers
// false on a controller without a store.
bool CQZRMoldingMachineCtrl::IsMachineIdentity(const CQZRIM& first, const CQZRIM& second) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store&) { return first.IsMachineIdentity(second); });
}

bool CQZRMoldingMachineCtrl::IsMachineIdentity(const CQZRRTM& first, const CQZRRTM& second) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store&) { return first.IsMachineIdentity(second); });
}

bool CQZRMoldingMachineCtrl::IsIdentityMachineExist(const CQZRIM& machine) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.IsIdentityMachineExist(machine); });
}

bool CQZRMoldingMachineCtrl::IsIdentityMachineExist(const CQZRRTM& machine) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.IsIdentityMachineExist(machine); });
}

bool CQZRMoldingMachineCtrl::IsMachineNameExist(const CQZRIM& machine) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.IsMachineNameExist(machine); });
}

bool CQZRMoldingMachineCtrl::IsMachineNameExist(const CQZRRTM& machine) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.IsMachineNameExist(machine); });
}

bool CQZRMoldingMachineCtrl::IsMachineNameExist(const char* displayName) const {
    return OnStore(ReadOnly(m_store), false,
                   [&](const Store& store) { return store.IsMachineNameExist(displayName); });
}

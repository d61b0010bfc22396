// CatalogueWalk: how a writer visits the machines of a catalogue, by global machine index from
// 0 while the index is below the catalogue's total, each machine as GetCurrentMachine gives it
// (a CQZRIM only from a group of injection-moulding machines, a CQZRRTM only from a group of
// transfer-moulding machines).
//
// Every writer fetches through this one class. It reads each machine in place in the store
// rather than copying it out, and the store finds an index's machine at once when the indexes
// come in order, so that a walk costs time linear in the size of the catalogue and no memory.
// The records are only read, and nothing changes the catalogue during a save.
#ifndef QZR_BANK_CATALOGUEWALK_H
#define QZR_BANK_CATALOGUEWALK_H

#include <exception>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "catalogue/QZRMoldingMachineDatabase.h"

namespace qzr::bank {

class CatalogueWalk {
  public:
    explicit CatalogueWalk(const CQZRMoldingMachineCtrl& catalogue)
        : m_store(catalogue::CQZRMoldingMachineCtrlAccess::Store(catalogue)) {}

    // 0 for a catalogue without a store.
    int TotalMachine() const { return m_store != nullptr ? m_store->GetTotalMachine() : 0; }

    // The machine at the index, valid until the catalogue changes; null when no machine of the
    // record's kind is there.
    template <class Record>
    const Record* Fetch(int machineIndex) const;

  private:
    const catalogue::CQZRMoldingMachineDatabase* m_store;
};

// Like GetCurrentMachine, a fetch that runs out of memory (building the store's index of group
// starts) finds no machine rather than throwing.
template <>
inline const CQZRIM* CatalogueWalk::Fetch<CQZRIM>(int machineIndex) const {
    try {
        return m_store != nullptr ? m_store->PeekCurrentIMM(machineIndex) : nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}

template <>
inline const CQZRRTM* CatalogueWalk::Fetch<CQZRRTM>(int machineIndex) const {
    try {
        return m_store != nullptr ? m_store->PeekCurrentRTM(machineIndex) : nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}

}  // namespace qzr::bank

#endif  // QZR_BANK_CATALOGUEWALK_H

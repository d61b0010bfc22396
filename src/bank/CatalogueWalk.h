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

    // Hands visit(index, machine) every machine of the record's kind in index order. Each
    // machine is fetched once, kAhead indexes before it is handed out, and its memory is
    // prefetched then: far enough that it arrives while the machines between are visited. A
    // record is allocated together with its field blocks, which usually follow it in memory,
    // so the bytes after it are loaded too. Without this, a save of a catalogue far larger
    // than the caches waits for memory at every machine.
    template <class Record, class Visit>
    void ForEachMachine(Visit visit) const {
        const int total = TotalMachine();
        const Record* fetched[kAhead] = {};
        for (int index = 0; index < total + kAhead; ++index) {
            const Record*& slot = fetched[index % kAhead];
            if (slot != nullptr) {
                visit(index - kAhead, *slot);
            }
            slot = index < total ? Fetch<Record>(index) : nullptr;
            if (slot != nullptr) {
                PrefetchMachine(slot);
            }
        }
    }

    // Asks the processor to start loading a machine's record and the field blocks allocated
    // with it, which usually follow it in memory, for a read a little later.
    static void PrefetchMachine(const void* start) {
#if defined(__GNUC__)
        constexpr int kCacheLine = 64;
        constexpr int kRecordAndFields = 11 * kCacheLine;
        const char* const bytes = static_cast<const char*>(start);
        for (int offset = 0; offset < kRecordAndFields; offset += kCacheLine) {
            __builtin_prefetch(bytes + offset);
        }
#else
        static_cast<void>(start);
#endif
    }

  private:
    static constexpr int kAhead = 4;

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

// CatalogueWalk: how a writer visits the machines of a catalogue, by global machine index from
// 0 while the index is below the catalogue's total, fetching each as GetCurrentMachine does
// (a CQZRIM only from a group of injection-moulding machines, a CQZRRTM only from a group of
// transfer-moulding machines).
//
// Every writer fetches through this one class, so that the walk can be made linear in the
// size of the catalogue in one place.
#ifndef QZR_BANK_CATALOGUEWALK_H
#define QZR_BANK_CATALOGUEWALK_H

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::bank {

class CatalogueWalk {
  public:
    explicit CatalogueWalk(const CQZRMoldingMachineCtrl& catalogue) : m_catalogue(catalogue) {}

    int TotalMachine() const { return m_catalogue.GetTotalMachine(); }
    // False (and the record untouched) when no machine of the record's kind is at the index.
    bool Fetch(int machineIndex, CQZRIM& machine) const {
        return m_catalogue.GetCurrentMachine(machineIndex, machine);
    }
    bool Fetch(int machineIndex, CQZRRTM& machine) const {
        return m_catalogue.GetCurrentMachine(machineIndex, machine);
    }

  private:
    const CQZRMoldingMachineCtrl& m_catalogue;
};

}  // namespace qzr::bank

#endif  // QZR_BANK_CATALOGUEWALK_H

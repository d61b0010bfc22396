// CQZRMoldingMachineMaker: one maker group of a catalogue, owning copies of the machine records
// of one maker in the order they were added.
//
// The group's kind decides the class of its records: kind 1 holds transfer-moulding machines
// (CQZRRTM), any other kind (0, or -1 and other values taken over from a catalogue's file type)
// holds injection-moulding machines (CQZRIM). The kind is fixed when the group is made; only the
// store's deep copy rebuilds a group, records included.
#ifndef QZR_CATALOGUE_QZRMOLDINGMACHINEMAKER_H
#define QZR_CATALOGUE_QZRMOLDINGMACHINEMAKER_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::catalogue {

class CQZRMoldingMachineMaker {
  public:
    // The group kind that holds transfer-moulding machines.
    static constexpr int kTransferMouldingKind = 1;

    // A null name is taken as the empty text.
    CQZRMoldingMachineMaker(const char* name, int id, int kind);
    CQZRMoldingMachineMaker(const CQZRMoldingMachineMaker& other);
    CQZRMoldingMachineMaker& operator=(const CQZRMoldingMachineMaker& other);
    virtual ~CQZRMoldingMachineMaker();

    // Valid until the group is destroyed; the name never changes after creation.
    const char* GetName() const { return m_name.c_str(); }
    int GetID() const { return m_id; }
    bool IsRTMMaker() const { return m_kind == kTransferMouldingKind; }

    std::size_t GetMachineCount() const { return m_machines.size(); }

    // Appends a copy of the record. False (nothing stored) when the record's class does not
    // fit the group's kind; the store never asks for that.
    bool AddMachine(const CQZRIM& machine);
    bool AddMachine(const CQZRRTM& machine);
    // Appends the record itself, on the same terms.
    bool AdoptMachine(std::unique_ptr<CQZRIM> machine);
    bool AdoptMachine(std::unique_ptr<CQZRRTM> machine);

    // Lookups within the group: the first machine in list order that matches.
    std::optional<std::size_t> FindMachineByID(int machineId) const;
    std::optional<std::size_t> FindMachineByGrade(const char* grade) const;

    // The stored record at a position (position < GetMachineCount()), read in place.
    const CQZRMoldingMachine& MachineAt(std::size_t position) const;

    // Copies the record at the position into the caller's record, or overwrites the stored one
    // with the caller's. False, with nothing changed, when the position is out of range or the
    // record class does not fit the group's kind.
    bool CopyMachineAt(std::size_t position, CQZRIM& machine) const;
    bool CopyMachineAt(std::size_t position, CQZRRTM& machine) const;
    bool AssignMachineAt(std::size_t position, const CQZRIM& machine);
    bool AssignMachineAt(std::size_t position, const CQZRRTM& machine);

    // Destroys the record at the position; later records move up one place.
    bool RemoveMachineAt(std::size_t position);

  private:
    template <class Record>
    bool Holds() const;
    template <class Record>
    bool Append(const Record& machine);
    template <class Record>
    bool Adopt(std::unique_ptr<Record> machine);
    template <class Record>
    bool CopyOut(std::size_t position, Record& machine) const;
    template <class Record>
    bool AssignIn(std::size_t position, const Record& machine);

    std::string m_name;
    int m_id = 0;
    int m_kind = 0;
    // Every record is a CQZRRTM when IsRTMMaker(), a CQZRIM otherwise.
    std::vector<std::unique_ptr<CQZRMoldingMachine>> m_machines;
};

}  // namespace qzr::catalogue

#endif  // QZR_CATALOGUE_QZRMOLDINGMACHINEMAKER_H

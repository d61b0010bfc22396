#include "catalogue/QZRMoldingMachineMaker.h"

#include <type_traits>
#include <utility>

#include "records/NameRule.h"

namespace qzr::catalogue {

CQZRMoldingMachineMaker::CQZRMoldingMachineMaker(const char* name, int id, int kind)
    : m_name(name != nullptr ? name : ""), m_id(id), m_kind(kind) {}

CQZRMoldingMachineMaker::CQZRMoldingMachineMaker(const CQZRMoldingMachineMaker& other)
    : m_name(other.m_name), m_id(other.m_id), m_kind(other.m_kind) {
    // The group's kind decides the class of every record it holds, so each record is copied
    // with that class's own copy (every field).
    m_machines.reserve(other.m_machines.size());
    for (const std::unique_ptr<CQZRMoldingMachine>& record : other.m_machines) {
        if (IsRTMMaker()) {
            m_machines.push_back(std::make_unique<CQZRRTM>(static_cast<const CQZRRTM&>(*record)));
        } else {
            m_machines.push_back(std::make_unique<CQZRIM>(static_cast<const CQZRIM&>(*record)));
        }
    }
}

CQZRMoldingMachineMaker& CQZRMoldingMachineMaker::operator=(const CQZRMoldingMachineMaker& other) {
    if (this != &other) {
        // Build the copy completely before giving up the old records, so that running out of
        // memory half way leaves this group as it was.
        CQZRMoldingMachineMaker copy(other);
        m_name.swap(copy.m_name);
        m_id = copy.m_id;
        m_kind = copy.m_kind;
        m_machines.swap(copy.m_machines);
    }
    return *this;
}

CQZRMoldingMachineMaker::~CQZRMoldingMachineMaker() = default;

template <class Record>
bool CQZRMoldingMachineMaker::Holds() const {
    return IsRTMMaker() == std::is_same_v<Record, CQZRRTM>;
}

template <class Record>
bool CQZRMoldingMachineMaker::Append(const Record& machine) {
    if (!Holds<Record>()) {
        return false;
    }
    m_machines.push_back(std::make_unique<Record>(machine));
    return true;
}

template <class Record>
bool CQZRMoldingMachineMaker::Adopt(std::unique_ptr<Record> machine) {
    if (!Holds<Record>() || machine == nullptr) {
        return false;
    }
    m_machines.push_back(std::move(machine));
    return true;
}

template <class Record>
bool CQZRMoldingMachineMaker::CopyOut(std::size_t position, Record& machine) const {
    if (!Holds<Record>() || position >= m_machines.size()) {
        return false;
    }
    // Holds<Record>() guarantees the stored object is a Record.
    machine = static_cast<const Record&>(*m_machines[position]);
    return true;
}

template <class Record>
bool CQZRMoldingMachineMaker::AssignIn(std::size_t position, const Record& machine) {
    if (!Holds<Record>() || position >= m_machines.size()) {
        return false;
    }
    static_cast<Record&>(*m_machines[position]) = machine;
    return true;
}

bool CQZRMoldingMachineMaker::AddMachine(const CQZRIM& machine) {
    return Append(machine);
}

bool CQZRMoldingMachineMaker::AddMachine(const CQZRRTM& machine) {
    return Append(machine);
}

bool CQZRMoldingMachineMaker::AdoptMachine(std::unique_ptr<CQZRIM> machine) {
    return Adopt(std::move(machine));
}

bool CQZRMoldingMachineMaker::AdoptMachine(std::unique_ptr<CQZRRTM> machine) {
    return Adopt(std::move(machine));
}

std::optional<std::size_t> CQZRMoldingMachineMaker::FindMachineByID(int machineId) const {
    for (std::size_t position = 0; position < m_machines.size(); ++position) {
        if (m_machines[position]->GetMachineID() == machineId) {
            return position;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> CQZRMoldingMachineMaker::FindMachineByGrade(const char* grade) const {
    for (std::size_t position = 0; position < m_machines.size(); ++position) {
        if (qzr::records::NamesEqual(m_machines[position]->GetGrade(), grade)) {
            return position;
        }
    }
    return std::nullopt;
}

const CQZRMoldingMachine& CQZRMoldingMachineMaker::MachineAt(std::size_t position) const {
    return *m_machines[position];
}

bool CQZRMoldingMachineMaker::CopyMachineAt(std::size_t position, CQZRIM& machine) const {
    return CopyOut(position, machine);
}

bool CQZRMoldingMachineMaker::CopyMachineAt(std::size_t position, CQZRRTM& machine) const {
    return CopyOut(position, machine);
}

bool CQZRMoldingMachineMaker::AssignMachineAt(std::size_t position, const CQZRIM& machine) {
    return AssignIn(position, machine);
}

bool CQZRMoldingMachineMaker::AssignMachineAt(std::size_t position, const CQZRRTM& machine) {
    return AssignIn(position, machine);
}

bool CQZRMoldingMachineMaker::RemoveMachineAt(std::size_t position) {
    if (position >= m_machines.size()) {
        return false;
    }
    m_machines.erase(m_machines.begin() + static_cast<std::ptrdiff_t>(position));
    return true;
}

}  // namespace qzr::catalogue

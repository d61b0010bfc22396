#include "catalogue/QZRMoldingMachineDatabase.h"

#include <type_traits>
#include <utility>

#include "records/NameRule.h"

namespace qzr::catalogue {

namespace {

// The two id counters belong to the process, not to a store: every catalogue of the process
// draws from them, as hosts of the DLL have always seen. Both are 0 when the library is loaded.
int g_machineIdCounter = 0;
int g_makerIdCounter = 0;

// Counts on past the largest id by wrapping round, as the DLL's plain int counters did, rather
// than overflowing.
int Successor(int value) {
    return static_cast<int>(static_cast<unsigned int>(value) + 1U);
}

const char* TextOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

// Forms "maker - grade" the way the display-name check always has: into a buffer of
// kDisplayNameBufferSize bytes with truncating formatting. A name longer than 255 characters is
// therefore compared as its first 255 characters, so a host that passes the full long name gets
// false and one that passes the name as the catalogue cuts it gets true, exactly as with the
// DLL; names of 255 characters or fewer are compared whole.
void FormDisplayName(const CQZRMoldingMachine& machine, std::string* name) {
    constexpr std::size_t kLongestName = CQZRMoldingMachineDatabase::kDisplayNameBufferSize - 1;
    name->assign(machine.GetMaker());
    name->append(" - ");
    name->append(machine.GetGrade());
    if (name->size() > kLongestName) {
        name->resize(kLongestName);
    }
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Lifecycle

CQZRMoldingMachineDatabase::CQZRMoldingMachineDatabase() = default;

CQZRMoldingMachineDatabase::CQZRMoldingMachineDatabase(const CQZRMoldingMachineDatabase& other)
    : m_fileVersion(other.m_fileVersion),
      m_fileFormat(other.m_fileFormat),
      m_fileType(other.m_fileType),
      m_fileName(other.m_fileName),
      m_fileDate(other.m_fileDate),
      m_fileRelease(other.m_fileRelease),
      m_fileCreateBy(other.m_fileCreateBy),
      m_fileRemark(other.m_fileRemark),
      m_initialized(other.m_initialized),
      m_machineCount(other.m_machineCount) {
    m_groups.reserve(other.m_groups.size());
    for (const std::unique_ptr<CQZRMoldingMachineMaker>& group : other.m_groups) {
        m_groups.push_back(std::make_unique<CQZRMoldingMachineMaker>(*group));
    }
}

CQZRMoldingMachineDatabase& CQZRMoldingMachineDatabase::operator=(
    const CQZRMoldingMachineDatabase& other) {
    if (this != &other) {
        // The whole copy is built before anything of this store is given up, so running out
        // of memory half way leaves the catalogue as it was.
        CQZRMoldingMachineDatabase copy(other);
        std::swap(m_fileVersion, copy.m_fileVersion);
        std::swap(m_fileFormat, copy.m_fileFormat);
        std::swap(m_fileType, copy.m_fileType);
        m_fileName.swap(copy.m_fileName);
        m_fileDate.swap(copy.m_fileDate);
        m_fileRelease.swap(copy.m_fileRelease);
        m_fileCreateBy.swap(copy.m_fileCreateBy);
        m_fileRemark.swap(copy.m_fileRemark);
        std::swap(m_initialized, copy.m_initialized);
        m_groups.swap(copy.m_groups);
        std::swap(m_machineCount, copy.m_machineCount);
        m_makerNames.Invalidate();
        m_groupStarts.Invalidate();
    }
    return *this;
}

CQZRMoldingMachineDatabase::~CQZRMoldingMachineDatabase() = default;

// ---------------------------------------------------------------------------------------------
// File attributes

void CQZRMoldingMachineDatabase::SetFileName(const char* text) {
    m_fileName = TextOrEmpty(text);
}

void CQZRMoldingMachineDatabase::SetFileDate(const char* text) {
    m_fileDate = TextOrEmpty(text);
}

void CQZRMoldingMachineDatabase::SetFileRelease(const char* text) {
    m_fileRelease = TextOrEmpty(text);
}

void CQZRMoldingMachineDatabase::SetFileCreateBy(const char* text) {
    m_fileCreateBy = TextOrEmpty(text);
}

void CQZRMoldingMachineDatabase::SetFileRemark(const char* text) {
    m_fileRemark = TextOrEmpty(text);
}

// ---------------------------------------------------------------------------------------------
// Walking the groups: every operation below finds its group or machine through these.

template <class Record>
constexpr CQZRMoldingMachineDatabase::KindFilter CQZRMoldingMachineDatabase::FilterFor() {
    static_assert(std::is_same_v<Record, CQZRIM> || std::is_same_v<Record, CQZRRTM>);
    return std::is_same_v<Record, CQZRRTM> ? KindFilter::TransferMoulding
                                           : KindFilter::InjectionMoulding;
}

bool CQZRMoldingMachineDatabase::Passes(const CQZRMoldingMachineMaker& group, KindFilter filter) {
    switch (filter) {
        case KindFilter::InjectionMoulding:
            return !group.IsRTMMaker();
        case KindFilter::TransferMoulding:
            return group.IsRTMMaker();
        case KindFilter::AnyKind:
            break;
    }
    return true;
}

std::optional<std::size_t> CQZRMoldingMachineDatabase::FindMakerByPosition(
    int makerPosition) const {
    if (makerPosition < 0 || static_cast<std::size_t>(makerPosition) >= m_groups.size()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(makerPosition);
}

std::optional<std::size_t> CQZRMoldingMachineDatabase::FindMakerByID(int makerId) const {
    for (std::size_t group = 0; group < m_groups.size(); ++group) {
        if (m_groups[group]->GetID() == makerId) {
            return group;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> CQZRMoldingMachineDatabase::FindMakerByName(const char* maker,
                                                                       std::size_t from) const {
    return m_makerNames.Find(maker, from, m_groups.size(),
                             [this](std::size_t group) { return m_groups[group]->GetName(); });
}

std::optional<CQZRMoldingMachineDatabase::MachineSlot>
CQZRMoldingMachineDatabase::FindMachineByIndex(int machineIndex) const {
    if (machineIndex < 0) {
        return std::nullopt;
    }
    const std::optional<qzr::catalogue::GroupStarts::Slot> slot = m_groupStarts.Find(
        static_cast<std::size_t>(machineIndex), m_groups.size(),
        [this](std::size_t group) { return m_groups[group]->GetMachineCount(); });
    if (!slot) {
        return std::nullopt;
    }
    return MachineSlot{slot->group, slot->machine};
}

std::optional<CQZRMoldingMachineDatabase::MachineSlot> CQZRMoldingMachineDatabase::FindMachineByID(
    int machineId, KindFilter filter) const {
    for (std::size_t group = 0; group < m_groups.size(); ++group) {
        if (!Passes(*m_groups[group], filter)) {
            continue;
        }
        if (const std::optional<std::size_t> machine =
                m_groups[group]->FindMachineByID(machineId)) {
            return MachineSlot{group, *machine};
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> CQZRMoldingMachineDatabase::FindMachineByGrade(std::size_t group,
                                                                          const char* grade) const {
    return m_groups[group]->FindMachineByGrade(grade);
}

std::size_t CQZRMoldingMachineDatabase::CountMachines() const {
    return m_machineCount;
}

template <class Visitor>
bool CQZRMoldingMachineDatabase::AnyMachine(KindFilter filter, Visitor&& visit) const {
    for (const std::unique_ptr<CQZRMoldingMachineMaker>& group : m_groups) {
        if (!Passes(*group, filter)) {
            continue;
        }
        for (std::size_t machine = 0; machine < group->GetMachineCount(); ++machine) {
            if (visit(group->MachineAt(machine))) {
                return true;
            }
        }
    }
    return false;
}

// ---------------------------------------------------------------------------------------------
// Adding

int CQZRMoldingMachineDatabase::GetNextMachineID() {
    // The rule counts machines, not groups: a store whose groups were all emptied starts
    // again at 1, and so does every other store of the process after it.
    g_machineIdCounter = CountMachines() == 0 ? 1 : Successor(g_machineIdCounter);
    return g_machineIdCounter;
}

int CQZRMoldingMachineDatabase::NextMakerID() {
    const int id = m_groups.empty() ? 1 : Successor(g_makerIdCounter);
    g_makerIdCounter = id;
    return id;
}

template <class Record>
bool CQZRMoldingMachineDatabase::AddRecord(Record& machine, std::unique_ptr<Record> owned) {
    machine.SetMachineID(GetNextMachineID());
    const std::optional<std::size_t> found = FindMakerByName(machine.GetMaker());
    if (!found) {
        return AddRecordToNewMaker(machine, std::move(owned));
    }
    CQZRMoldingMachineMaker& group = *m_groups[*found];
    machine.SetMakerID(group.GetID());
    // A maker already filed under the other kind keeps its group as it is: the machine is
    // not stored, yet the add counts as done, as hosts of the DLL expect.
    if (Passes(group, FilterFor<Record>()) && Place(group, machine, std::move(owned))) {
        ++m_machineCount;
        if (*found + 1 == m_groups.size()) {
            m_groupStarts.LastGroupGrew();
        } else {
            m_groupStarts.Invalidate();
        }
    }
    return true;
}

template <class Record>
bool CQZRMoldingMachineDatabase::AddRecordToNewMaker(Record& machine,
                                                     std::unique_ptr<Record> owned) {
    // Once the catalogue holds a machine or has taken its attributes from a bank file, its
    // file type decides the kind of every new group; before that the first machine decides.
    const int kind = (CountMachines() > 0 || m_initialized) ? m_fileType : machine.GetMachineType();
    auto group = std::make_unique<CQZRMoldingMachineMaker>(machine.GetMaker(), NextMakerID(), kind);
    machine.SetMakerID(group->GetID());
    if (!Passes(*group, FilterFor<Record>())) {
        return false;  // the group is released; the ids stay issued
    }
    Place(*group, machine, std::move(owned));
    m_groups.push_back(std::move(group));
    ++m_machineCount;
    m_groupStarts.GroupAppended();
    m_makerNames.Appended(m_groups.back()->GetName(), m_groups.size() - 1);
    return true;
}

template <class Record>
bool CQZRMoldingMachineDatabase::Place(CQZRMoldingMachineMaker& group, const Record& machine,
                                       std::unique_ptr<Record> owned) {
    return owned != nullptr ? group.AdoptMachine(std::move(owned)) : group.AddMachine(machine);
}

bool CQZRMoldingMachineDatabase::AddMachine(CQZRIM& machine) {
    return AddRecord(machine, std::unique_ptr<CQZRIM>());
}

bool CQZRMoldingMachineDatabase::AddMachine(CQZRRTM& machine) {
    return AddRecord(machine, std::unique_ptr<CQZRRTM>());
}

bool CQZRMoldingMachineDatabase::AdoptMachine(std::unique_ptr<CQZRIM> machine) {
    if (machine == nullptr) {
        return false;
    }
    CQZRIM& record = *machine;
    return AddRecord(record, std::move(machine));
}

bool CQZRMoldingMachineDatabase::AdoptMachine(std::unique_ptr<CQZRRTM> machine) {
    if (machine == nullptr) {
        return false;
    }
    CQZRRTM& record = *machine;
    return AddRecord(record, std::move(machine));
}

// ---------------------------------------------------------------------------------------------
// Counts and makers

int CQZRMoldingMachineDatabase::GetTotalMachine() const {
    return static_cast<int>(CountMachines());
}

int CQZRMoldingMachineDatabase::GetTotalMaker() const {
    return static_cast<int>(m_groups.size());
}

int CQZRMoldingMachineDatabase::GetMachineCount(int makerId) const {
    const std::optional<std::size_t> group = FindMakerByID(makerId);
    return group ? static_cast<int>(m_groups[*group]->GetMachineCount()) : 0;
}

int CQZRMoldingMachineDatabase::GetMachineCount(const char* maker) const {
    const std::optional<std::size_t> group = FindMakerByName(maker);
    return group ? static_cast<int>(m_groups[*group]->GetMachineCount()) : 0;
}

int CQZRMoldingMachineDatabase::GetMakerID(int makerPosition) const {
    const std::optional<std::size_t> group = FindMakerByPosition(makerPosition);
    return group ? m_groups[*group]->GetID() : -1;
}

const char* CQZRMoldingMachineDatabase::GetMaker(int makerId) const {
    const std::optional<std::size_t> group = FindMakerByID(makerId);
    return group ? m_groups[*group]->GetName() : nullptr;
}

// ---------------------------------------------------------------------------------------------
// Copying a machine out. A lookup stops at the first group that matches by id or name, even
// when that group then fails the kind filter; only the lookup by machine id walks on.

template <class Record>
const Record* CQZRMoldingMachineDatabase::PeekCurrentMachine(int machineIndex) const {
    const std::optional<MachineSlot> slot = FindMachineByIndex(machineIndex);
    if (!slot || !Passes(*m_groups[slot->group], FilterFor<Record>())) {
        return nullptr;
    }
    // The group passed the kind filter, so its records are of class Record.
    return &static_cast<const Record&>(m_groups[slot->group]->MachineAt(slot->machine));
}

template <class Record>
bool CQZRMoldingMachineDatabase::CopyCurrentMachine(int machineIndex, Record& machine) const {
    const Record* stored = PeekCurrentMachine<Record>(machineIndex);
    if (stored == nullptr) {
        return false;
    }
    machine = *stored;
    return true;
}

template <class Record>
bool CQZRMoldingMachineDatabase::CopyMakerMachine(std::optional<std::size_t> group,
                                                  int machinePosition, Record& machine) const {
    if (!group || machinePosition < 0 || !Passes(*m_groups[*group], FilterFor<Record>())) {
        return false;
    }
    return m_groups[*group]->CopyMachineAt(static_cast<std::size_t>(machinePosition), machine);
}

template <class Record>
bool CQZRMoldingMachineDatabase::CopyMachineByID(int machineId, Record& machine) const {
    const std::optional<MachineSlot> slot = FindMachineByID(machineId, FilterFor<Record>());
    return slot && m_groups[slot->group]->CopyMachineAt(slot->machine, machine);
}

template <class Record>
bool CQZRMoldingMachineDatabase::CopyMachineByGrade(const char* maker, const char* grade,
                                                    Record& machine) const {
    const std::optional<std::size_t> group = FindMakerByName(maker);
    if (!group || !Passes(*m_groups[*group], FilterFor<Record>())) {
        return false;
    }
    const std::optional<std::size_t> position = FindMachineByGrade(*group, grade);
    return position && m_groups[*group]->CopyMachineAt(*position, machine);
}

const CQZRIM* CQZRMoldingMachineDatabase::PeekCurrentIMM(int machineIndex) const {
    return PeekCurrentMachine<CQZRIM>(machineIndex);
}

const CQZRRTM* CQZRMoldingMachineDatabase::PeekCurrentRTM(int machineIndex) const {
    return PeekCurrentMachine<CQZRRTM>(machineIndex);
}

bool CQZRMoldingMachineDatabase::GetCurrentMachine(int machineIndex, CQZRIM& machine) const {
    return CopyCurrentMachine(machineIndex, machine);
}

bool CQZRMoldingMachineDatabase::GetCurrentMachine(int machineIndex, CQZRRTM& machine) const {
    return CopyCurrentMachine(machineIndex, machine);
}

bool CQZRMoldingMachineDatabase::GetCurrentMakerMachine(int makerId, int machinePosition,
                                                        CQZRIM& machine) const {
    return CopyMakerMachine(FindMakerByID(makerId), machinePosition, machine);
}

bool CQZRMoldingMachineDatabase::GetCurrentMakerMachine(int makerId, int machinePosition,
                                                        CQZRRTM& machine) const {
    return CopyMakerMachine(FindMakerByID(makerId), machinePosition, machine);
}

bool CQZRMoldingMachineDatabase::GetCurrentMakerMachine(const char* maker, int machinePosition,
                                                        CQZRIM& machine) const {
    return CopyMakerMachine(FindMakerByName(maker), machinePosition, machine);
}

bool CQZRMoldingMachineDatabase::GetCurrentMakerMachine(const char* maker, int machinePosition,
                                                        CQZRRTM& machine) const {
    return CopyMakerMachine(FindMakerByName(maker), machinePosition, machine);
}

bool CQZRMoldingMachineDatabase::GetMachine(int machineId, CQZRIM& machine) const {
    return CopyMachineByID(machineId, machine);
}

bool CQZRMoldingMachineDatabase::GetMachine(int machineId, CQZRRTM& machine) const {
    return CopyMachineByID(machineId, machine);
}

bool CQZRMoldingMachineDatabase::GetMachine(const char* maker, const char* grade,
                                            CQZRIM& machine) const {
    return CopyMachineByGrade(maker, grade, machine);
}

bool CQZRMoldingMachineDatabase::GetMachine(const char* maker, const char* grade,
                                            CQZRRTM& machine) const {
    return CopyMachineByGrade(maker, grade, machine);
}

// ---------------------------------------------------------------------------------------------
// Edits

template <class Record>
bool CQZRMoldingMachineDatabase::AssignMachineByID(int machineId, const Record& machine) {
    const std::optional<MachineSlot> slot = FindMachineByID(machineId, FilterFor<Record>());
    return slot && m_groups[slot->group]->AssignMachineAt(slot->machine, machine);
}

template <class Record>
bool CQZRMoldingMachineDatabase::AssignCurrentMachine(int machineIndex, const Record& machine) {
    const std::optional<MachineSlot> slot = FindMachineByIndex(machineIndex);
    if (!slot || !Passes(*m_groups[slot->group], FilterFor<Record>())) {
        return false;
    }
    return m_groups[slot->group]->AssignMachineAt(slot->machine, machine);
}

bool CQZRMoldingMachineDatabase::SetMachineData(int machineId, const CQZRIM& machine) {
    return AssignMachineByID(machineId, machine);
}

bool CQZRMoldingMachineDatabase::SetMachineData(int machineId, const CQZRRTM& machine) {
    return AssignMachineByID(machineId, machine);
}

bool CQZRMoldingMachineDatabase::SetCurrentMachineData(int machineIndex, const CQZRIM& machine) {
    return AssignCurrentMachine(machineIndex, machine);
}

bool CQZRMoldingMachineDatabase::SetCurrentMachineData(int machineIndex, const CQZRRTM& machine) {
    return AssignCurrentMachine(machineIndex, machine);
}

bool CQZRMoldingMachineDatabase::RemoveMachine(int machineId) {
    const std::optional<MachineSlot> slot = FindMachineByID(machineId, KindFilter::AnyKind);
    return slot && RemoveMachineAt(*slot);
}

bool CQZRMoldingMachineDatabase::RemoveMachineAt(MachineSlot slot) {
    if (!m_groups[slot.group]->RemoveMachineAt(slot.machine)) {
        return false;
    }
    --m_machineCount;
    m_groupStarts.Invalidate();
    return true;
}

bool CQZRMoldingMachineDatabase::RemoveMachine(const char* maker, const char* grade) {
    // Every group of the maker takes part, of both kinds; with unique group names that is one.
    for (std::optional<std::size_t> group = FindMakerByName(maker); group;
         group = FindMakerByName(maker, *group + 1)) {
        if (const std::optional<std::size_t> position = FindMachineByGrade(*group, grade)) {
            return RemoveMachineAt(MachineSlot{*group, *position});
        }
    }
    return false;
}

bool CQZRMoldingMachineDatabase::RemoveMakerAt(std::optional<std::size_t> group) {
    if (!group) {
        return false;
    }
    m_machineCount -= m_groups[*group]->GetMachineCount();
    m_groups.erase(m_groups.begin() + static_cast<std::ptrdiff_t>(*group));
    m_makerNames.Invalidate();
    m_groupStarts.Invalidate();
    return true;
}

bool CQZRMoldingMachineDatabase::RemoveCurrentMaker(int makerPosition) {
    return RemoveMakerAt(FindMakerByPosition(makerPosition));
}

bool CQZRMoldingMachineDatabase::RemoveMaker(int makerId) {
    return RemoveMakerAt(FindMakerByID(makerId));
}

bool CQZRMoldingMachineDatabase::RemoveMaker(const char* maker) {
    return RemoveMakerAt(FindMakerByName(maker));
}

bool CQZRMoldingMachineDatabase::RemoveAllMaker() {
    m_groups.clear();
    m_machineCount = 0;
    m_makerNames.Invalidate();
    m_groupStarts.Invalidate();
    // The texts stay: a host that empties a catalogue to reload it keeps its name and remark,
    // while the next load takes version, format and type from its file again.
    m_fileVersion = -1;
    m_fileFormat = -1;
    m_fileType = -1;
    m_initialized = false;
    return true;
}

// ---------------------------------------------------------------------------------------------
// Duplicate and name checks

template <class Record>
bool CQZRMoldingMachineDatabase::HasIdenticalMachine(const Record& machine) const {
    const std::optional<std::size_t> group = FindMakerByName(machine.GetMaker());
    if (!group || !Passes(*m_groups[*group], FilterFor<Record>())) {
        return false;
    }
    // Only the first machine of the grade is compared, even when a later one would match.
    const std::optional<std::size_t> position = FindMachineByGrade(*group, machine.GetGrade());
    if (!position) {
        return false;
    }
    // The group passed the kind filter, so its records are of class Record. The stored
    // machine is the object of the comparison and the caller's record its argument.
    const auto& stored = static_cast<const Record&>(m_groups[*group]->MachineAt(*position));
    return stored.IsMachineIdentity(machine);
}

template <class Record>
bool CQZRMoldingMachineDatabase::HasMachineName(const Record& machine) const {
    for (std::optional<std::size_t> group = FindMakerByName(machine.GetMaker()); group;
         group = FindMakerByName(machine.GetMaker(), *group + 1)) {
        if (Passes(*m_groups[*group], FilterFor<Record>()) &&
            FindMachineByGrade(*group, machine.GetGrade())) {
            return true;
        }
    }
    return false;
}

bool CQZRMoldingMachineDatabase::IsIdentityMachineExist(const CQZRIM& machine) const {
    return HasIdenticalMachine(machine);
}

bool CQZRMoldingMachineDatabase::IsIdentityMachineExist(const CQZRRTM& machine) const {
    return HasIdenticalMachine(machine);
}

bool CQZRMoldingMachineDatabase::IsMachineNameExist(const CQZRIM& machine) const {
    return HasMachineName(machine);
}

bool CQZRMoldingMachineDatabase::IsMachineNameExist(const CQZRRTM& machine) const {
    return HasMachineName(machine);
}

bool CQZRMoldingMachineDatabase::IsMachineNameExist(const char* displayName) const {
    // The catalogue's own kind chooses the machines looked at; a catalogue of no known kind
    // (file type -1 after RemoveAllMaker, for one) has no machine of that name.
    KindFilter filter = KindFilter::AnyKind;
    switch (m_fileType) {
        case 0:
            filter = KindFilter::InjectionMoulding;
            break;
        case 1:
            filter = KindFilter::TransferMoulding;
            break;
        default:
            return false;
    }
    // The check reads each stored record's own maker and grade in place; one buffer serves
    // the whole walk.
    std::string name;
    name.reserve(kDisplayNameBufferSize);
    return AnyMachine(filter, [&](const CQZRMoldingMachine& machine) {
        FormDisplayName(machine, &name);
        return qzr::records::NamesEqual(name.c_str(), displayName);
    });
}

}  // namespace qzr::catalogue

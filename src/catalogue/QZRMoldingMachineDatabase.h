// CQZRMoldingMachineDatabase: the store of one catalogue, its bank-file attributes and its maker
// groups in creation order. The controller CQZRMoldingMachineCtrl owns exactly one store and
// forwards every operation to it with the same arguments and result.
//
// Machine ids and maker ids come from two counters shared by every store of the process; see
// GetNextMachineID and the maker-id rule in the source.
#ifndef QZR_CATALOGUE_QZRMOLDINGMACHINEDATABASE_H
#define QZR_CATALOGUE_QZRMOLDINGMACHINEDATABASE_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "catalogue/GroupStarts.h"
#include "catalogue/MakerNameIndex.h"
#include "catalogue/QZRMoldingMachineMaker.h"

namespace qzr::catalogue {

class CQZRMoldingMachineDatabase {
  public:
    // Version, format and type 0, five empty texts, flag clear, no group.
    CQZRMoldingMachineDatabase();
    CQZRMoldingMachineDatabase(const CQZRMoldingMachineDatabase& other);
    // Deep copy: attributes, texts, flag, and new groups with new copies of every record.
    // Ids are copied, not renumbered; the counters are not touched.
    CQZRMoldingMachineDatabase& operator=(const CQZRMoldingMachineDatabase& other);
    virtual ~CQZRMoldingMachineDatabase();

    // File attributes. Text setters copy the text (null is stored as the empty text); text
    // getters point at the store's own text, valid until that attribute is set again.
    int GetFileVersion() const { return m_fileVersion; }
    void SetFileVersion(int version) { m_fileVersion = version; }
    int GetFileFormat() const { return m_fileFormat; }
    void SetFileFormat(int format) { m_fileFormat = format; }
    int GetFileType() const { return m_fileType; }
    void SetFileType(int type) { m_fileType = type; }
    const char* GetFileName() const { return m_fileName.c_str(); }
    void SetFileName(const char* text);
    const char* GetFileDate() const { return m_fileDate.c_str(); }
    void SetFileDate(const char* text);
    const char* GetFileRelease() const { return m_fileRelease.c_str(); }
    void SetFileRelease(const char* text);
    const char* GetFileCreateBy() const { return m_fileCreateBy.c_str(); }
    void SetFileCreateBy(const char* text);
    const char* GetFileRemark() const { return m_fileRemark.c_str(); }
    void SetFileRemark(const char* text);
    bool IsDatabaseInitialize() const { return m_initialized; }
    void SetDatabaseInitialize(bool initialized) { m_initialized = initialized; }

    // Adding. The record receives a new machine id first, whatever the outcome, and the maker
    // id of the group it was filed under (found or newly created). True also when the maker
    // already has a group of the other kind and the machine is silently not stored; false
    // only when a new group had to be made and its kind does not fit the record.
    bool AddMachine(CQZRIM& machine);
    bool AddMachine(CQZRRTM& machine);
    // AddMachine for a record made for the catalogue alone: the record itself is stored, not a
    // copy (the loaders hand over each record they fill). False for a null record.
    bool AdoptMachine(std::unique_ptr<CQZRIM> machine);
    bool AdoptMachine(std::unique_ptr<CQZRRTM> machine);
    // Issues the next machine id from the process-wide counter: 1 whenever this store holds no
    // machine (even if empty groups remain), else the counter plus one.
    int GetNextMachineID();

    // Counts and makers.
    int GetTotalMachine() const;
    int GetTotalMaker() const;
    int GetMachineCount(int makerId) const;
    int GetMachineCount(const char* maker) const;
    int GetMakerID(int makerPosition) const;  // -1 out of range
    const char* GetMaker(int makerId) const;  // null when no group has the id

    // Copying a machine out; the record is untouched when the result is false.
    bool GetCurrentMachine(int machineIndex, CQZRIM& machine) const;
    bool GetCurrentMachine(int machineIndex, CQZRRTM& machine) const;
    bool GetCurrentMakerMachine(int makerId, int machinePosition, CQZRIM& machine) const;
    bool GetCurrentMakerMachine(int makerId, int machinePosition, CQZRRTM& machine) const;
    bool GetCurrentMakerMachine(const char* maker, int machinePosition, CQZRIM& machine) const;
    bool GetCurrentMakerMachine(const char* maker, int machinePosition, CQZRRTM& machine) const;
    bool GetMachine(int machineId, CQZRIM& machine) const;
    bool GetMachine(int machineId, CQZRRTM& machine) const;
    bool GetMachine(const char* maker, const char* grade, CQZRIM& machine) const;
    bool GetMachine(const char* maker, const char* grade, CQZRRTM& machine) const;

    // The machine GetCurrentMachine would copy out, read in place: null when the index is out
    // of range or the machine's group does not hold records of that class. Valid until the
    // store changes.
    const CQZRIM* PeekCurrentIMM(int machineIndex) const;
    const CQZRRTM* PeekCurrentRTM(int machineIndex) const;

    // Edits. Nothing is renumbered and the counters are not touched.
    bool SetMachineData(int machineId, const CQZRIM& machine);
    bool SetMachineData(int machineId, const CQZRRTM& machine);
    bool SetCurrentMachineData(int machineIndex, const CQZRIM& machine);
    bool SetCurrentMachineData(int machineIndex, const CQZRRTM& machine);
    bool RemoveMachine(int machineId);
    bool RemoveMachine(const char* maker, const char* grade);
    bool RemoveCurrentMaker(int makerPosition);
    bool RemoveMaker(int makerId);
    bool RemoveMaker(const char* maker);
    // Empties the store; version, format and type become -1, the flag is cleared, the five
    // texts stay.
    bool RemoveAllMaker();

    // Duplicate and name checks.
    bool IsIdentityMachineExist(const CQZRIM& machine) const;
    bool IsIdentityMachineExist(const CQZRRTM& machine) const;
    bool IsMachineNameExist(const CQZRIM& machine) const;
    bool IsMachineNameExist(const CQZRRTM& machine) const;
    bool IsMachineNameExist(const char* displayName) const;

    // Size of the buffer the display-name check forms each "maker - grade" name in, terminator
    // included.
    static constexpr std::size_t kDisplayNameBufferSize = 256;

  private:
    // Which groups an operation looks at: a CQZRIM is only ever copied from or into a group
    // whose kind is not 1, a CQZRRTM only from or into a group of kind 1.
    enum class KindFilter { AnyKind, InjectionMoulding, TransferMoulding };
    template <class Record>
    static constexpr KindFilter FilterFor();
    static bool Passes(const CQZRMoldingMachineMaker& group, KindFilter filter);

    struct MachineSlot {
        std::size_t group;
        std::size_t machine;
    };

    // The only code that finds groups and machines. Every lookup goes through one of these,
    // each returning the first match in list order. The lookups by maker name and by global
    // machine index answer from the two indexes below instead of walking every group.
    std::optional<std::size_t> FindMakerByPosition(int makerPosition) const;
    std::optional<std::size_t> FindMakerByID(int makerId) const;
    // Starts the walk at group position `from`, so that a caller can go on past a match.
    std::optional<std::size_t> FindMakerByName(const char* maker, std::size_t from = 0) const;
    std::optional<MachineSlot> FindMachineByIndex(int machineIndex) const;
    std::optional<MachineSlot> FindMachineByID(int machineId, KindFilter filter) const;
    std::optional<std::size_t> FindMachineByGrade(std::size_t group, const char* grade) const;
    std::size_t CountMachines() const;
    // Visits the machines of the groups that pass the filter in global machine index order,
    // until the visitor returns true; returns whether it did.
    template <class Visitor>
    bool AnyMachine(KindFilter filter, Visitor&& visit) const;

    int NextMakerID();

    // `owned` is null when a copy of the machine is to be stored, else the machine itself.
    template <class Record>
    bool AddRecord(Record& machine, std::unique_ptr<Record> owned);
    template <class Record>
    bool AddRecordToNewMaker(Record& machine, std::unique_ptr<Record> owned);
    template <class Record>
    static bool Place(CQZRMoldingMachineMaker& group, const Record& machine,
                      std::unique_ptr<Record> owned);
    template <class Record>
    const Record* PeekCurrentMachine(int machineIndex) const;
    template <class Record>
    bool CopyCurrentMachine(int machineIndex, Record& machine) const;
    template <class Record>
    bool CopyMakerMachine(std::optional<std::size_t> group, int machinePosition,
                          Record& machine) const;
    template <class Record>
    bool CopyMachineByID(int machineId, Record& machine) const;
    template <class Record>
    bool CopyMachineByGrade(const char* maker, const char* grade, Record& machine) const;
    template <class Record>
    bool AssignMachineByID(int machineId, const Record& machine);
    template <class Record>
    bool AssignCurrentMachine(int machineIndex, const Record& machine);
    template <class Record>
    bool HasIdenticalMachine(const Record& machine) const;
    template <class Record>
    bool HasMachineName(const Record& machine) const;
    bool RemoveMakerAt(std::optional<std::size_t> group);
    bool RemoveMachineAt(MachineSlot slot);

    int m_fileVersion = 0;
    int m_fileFormat = 0;
    int m_fileType = 0;
    std::string m_fileName;
    std::string m_fileDate;
    std::string m_fileRelease;
    std::string m_fileCreateBy;
    std::string m_fileRemark;
    bool m_initialized = false;
    // Owned through pointers so that a group's name text stays put while the list changes.
    std::vector<std::unique_ptr<CQZRMoldingMachineMaker>> m_groups;
    // The number of machines of all groups, kept with every change.
    std::size_t m_machineCount = 0;
    // Indexes over m_groups, built on demand by the const lookups; every change of the groups
    // either keeps them up to date or invalidates them.
    mutable qzr::catalogue::MakerNameIndex m_makerNames;
    mutable qzr::catalogue::GroupStarts m_groupStarts;
};

}  // namespace qzr::catalogue

#endif  // QZR_CATALOGUE_QZRMOLDINGMACHINEDATABASE_H

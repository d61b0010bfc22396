// CQZRMoldingMachineCtrl: a catalogue of machines grouped by maker, with the attributes of the
// bank file it came from.
//
// Numbers a host meets here:
// - machine id, maker id: issued when a machine (or its maker's group) is added, from two
//   counters shared by every catalogue of the process; never written to a bank file.
// - global machine index: 0 to GetTotalMachine() - 1, walking the maker groups in creation
//   order and each group's machines in insertion order, both kinds counted.
// - machine position: 0 to GetMachineCount(maker) - 1 within one maker group.
// - maker position: 0 to GetTotalMaker() - 1; GetMakerID turns it into a maker id.
// Maker and grade names match as the name rule says: case ignored, nothing trimmed, a null
// text matches nothing. The "kind filter": a CQZRIM variant only sees groups of
// injection-moulding machines, a CQZRRTM variant only groups of transfer-moulding machines;
// a machine of the other kind gives false.
// Records are copied in and copied out; the catalogue never keeps a host's record.
#ifndef QZRMACHINE_QZRMOLDINGMACHINECTRL_H
#define QZRMACHINE_QZRMOLDINGMACHINECTRL_H

#include <memory>

#include <QZRMachine/QZRExport.h>
#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::catalogue {
class CQZRMoldingMachineDatabase;
class CQZRMoldingMachineCtrlAccess;
}  // namespace qzr::catalogue

class QZRMACHINE_API CQZRMoldingMachineCtrl {
  public:
    // An empty catalogue: version, format and type 0, empty texts, not initialised.
    CQZRMoldingMachineCtrl();
    // A deep copy: the same groups, machines, ids and file attributes.
    CQZRMoldingMachineCtrl(const CQZRMoldingMachineCtrl& other);
    CQZRMoldingMachineCtrl& operator=(const CQZRMoldingMachineCtrl& other);
    virtual ~CQZRMoldingMachineCtrl();

    // Appends a copy of the record to its maker's group (made if missing). The record itself
    // receives its new machine id and maker id, whatever the outcome; false when the
    // catalogue has no store or runs out of memory.
    bool AddMachine(CQZRIM& machine);
    bool AddMachine(CQZRRTM& machine);

    // File attributes of the bank the catalogue belongs to: version (below 9000 a legacy bank,
    // 9000 and above a sectioned one), format (0 system bank, 1 user bank), type (0
    // injection-moulding, 1 transfer-moulding machines), five texts, and the initialised flag
    // that the first load sets. A text setter copies the text; a text getter's pointer stays
    // valid until that text is set again or the catalogue is assigned to or destroyed.
    void SetFileVersion(int version);
    int GetFileVersion() const;
    void SetFileFormat(int format);
    int GetFileFormat() const;
    void SetFileType(int type);
    int GetFileType() const;
    void SetFileName(const char* text);
    const char* GetFileName() const;
    void SetFileDate(const char* text);
    const char* GetFileDate() const;
    void SetFileCreateBy(const char* text);
    const char* GetFileCreateBy() const;
    void SetFileRelease(const char* text);
    const char* GetFileRelease() const;
    void SetFileRemark(const char* text);
    const char* GetFileRemark() const;
    void SetDatabaseInitialize(bool initialized);
    bool IsDatabaseInitialize() const;

    // Machines of both kinds in the whole catalogue.
    int GetTotalMachine() const;
    // Maker groups, emptied ones included.
    int GetTotalMaker() const;
    // Machines in the maker's group; 0 when no group has that id or name.
    int GetMachineCount(int makerId) const;
    int GetMachineCount(const char* maker) const;
    // The maker id of the group at the maker position; -1 when out of range.
    int GetMakerID(int makerPosition) const;
    // The group's maker name, valid until the group is removed; null when no group has the id.
    const char* GetMaker(int makerId) const;

    // Copying a machine out into the host's record; false (record untouched) when nothing is
    // at that address or the kind filter refuses it.
    // By global machine index.
    bool GetCurrentMachine(int machineIndex, CQZRIM& machine) const;
    bool GetCurrentMachine(int machineIndex, CQZRRTM& machine) const;
    // By maker id or maker name and machine position within that group.
    bool GetCurrentMakerMachine(int makerId, int machinePosition, CQZRIM& machine) const;
    bool GetCurrentMakerMachine(int makerId, int machinePosition, CQZRRTM& machine) const;
    bool GetCurrentMakerMachine(const char* maker, int machinePosition, CQZRIM& machine) const;
    bool GetCurrentMakerMachine(const char* maker, int machinePosition, CQZRRTM& machine) const;
    // By machine id, or by maker and grade (the first machine of that grade in the first group
    // of that maker).
    bool GetMachine(int machineId, CQZRIM& machine) const;
    bool GetMachine(int machineId, CQZRRTM& machine) const;
    bool GetMachine(const char* maker, const char* grade, CQZRIM& machine) const;
    bool GetMachine(const char* maker, const char* grade, CQZRRTM& machine) const;

    // Edits: false, with nothing changed, when nothing is at the address or the kind filter
    // refuses it. The stored machine becomes a copy of the record (by machine id, or by global
    // machine index); it stays in its group even when the record names another maker.
    bool SetMachineData(int machineId, const CQZRIM& machine);
    bool SetMachineData(int machineId, const CQZRRTM& machine);
    bool SetCurrentMachineData(int machineIndex, const CQZRIM& machine);
    bool SetCurrentMachineData(int machineIndex, const CQZRRTM& machine);
    // Removes the first machine with the id (either kind), or of that maker and grade.
    bool RemoveMachine(int machineId);
    bool RemoveMachine(const char* maker, const char* grade);
    // Removes a maker group with all its machines, by maker position, maker id or name.
    bool RemoveCurrentMaker(int makerPosition);
    bool RemoveMaker(int makerId);
    bool RemoveMaker(const char* maker);
    // Empties the catalogue: version, format and type become -1 and the initialised flag is
    // cleared (the five texts stay); false only without a store.
    bool RemoveAllMaker();

    // Duplicate and name checks; every one answers false for nothing found.
    // Whether the two records hold the same machine data (the catalogue is not consulted).
    bool IsMachineIdentity(const CQZRIM& first, const CQZRIM& second) const;
    bool IsMachineIdentity(const CQZRRTM& first, const CQZRRTM& second) const;
    // Whether the first stored machine of the record's maker and grade has the same data.
    bool IsIdentityMachineExist(const CQZRIM& machine) const;
    bool IsIdentityMachineExist(const CQZRRTM& machine) const;
    // Whether a machine of the record's maker and grade is stored (of the record's kind).
    bool IsMachineNameExist(const CQZRIM& machine) const;
    bool IsMachineNameExist(const CQZRRTM& machine) const;
    // Whether a machine of the catalogue's file type has the display name "maker - grade".
    bool IsMachineNameExist(const char* displayName) const;

  private:
    friend class qzr::catalogue::CQZRMoldingMachineCtrlAccess;  // the library's own bank code and
                                                                // tests

    // Makes an empty store if there is none; true when one exists afterwards. Kept for the
    // DLL's interface; the library's own operations never call it.
    bool Initialize();

    QZRMACHINE_PRIVATE_MEMBERS_BEGIN
    std::unique_ptr<qzr::catalogue::CQZRMoldingMachineDatabase> m_store;
    QZRMACHINE_PRIVATE_MEMBERS_END
};

#endif  // QZRMACHINE_QZRMOLDINGMACHINECTRL_H

// CQZRMoldingMachineCtrl: a catalogue of machines grouped by maker, with the attributes of the
// bank file it came from.
#ifndef QZRMACHINE_QZRMOLDINGMACHINECTRL_H
#define QZRMACHINE_QZRMOLDINGMACHINECTRL_H

#include <memory>

#include <QZRMachine/QZRExport.h>
#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

class CQZRMoldingMachineDatabase;
class CQZRMoldingMachineCtrlAccess;

class QZRMACHINE_API CQZRMoldingMachineCtrl {
  public:
    CQZRMoldingMachineCtrl();
    CQZRMoldingMachineCtrl(const CQZRMoldingMachineCtrl& other);
    CQZRMoldingMachineCtrl& operator=(const CQZRMoldingMachineCtrl& other);
    virtual ~CQZRMoldingMachineCtrl();

    // Adding. The record receives its machine id (and maker id) whatever the outcome.
    bool AddMachine(CQZRIM& machine);
    bool AddMachine(CQZRRTM& machine);

    // File attributes of the bank the catalogue belongs to.
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

    // Counts and makers.
    int GetTotalMachine() const;
    int GetTotalMaker() const;
    int GetMachineCount(int makerId) const;
    int GetMachineCount(const char* maker) const;
    int GetMakerID(int makerPosition) const;
    const char* GetMaker(int makerId) const;

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

    // Edits.
    bool SetMachineData(int machineId, const CQZRIM& machine);
    bool SetMachineData(int machineId, const CQZRRTM& machine);
    bool SetCurrentMachineData(int machineIndex, const CQZRIM& machine);
    bool SetCurrentMachineData(int machineIndex, const CQZRRTM& machine);
    bool RemoveMachine(int machineId);
    bool RemoveMachine(const char* maker, const char* grade);
    bool RemoveCurrentMaker(int makerPosition);
    bool RemoveMaker(int makerId);
    bool RemoveMaker(const char* maker);
    bool RemoveAllMaker();

    // Duplicate and name checks.
    bool IsMachineIdentity(const CQZRIM& first, const CQZRIM& second) const;
    bool IsMachineIdentity(const CQZRRTM& first, const CQZRRTM& second) const;
    bool IsIdentityMachineExist(const CQZRIM& machine) const;
    bool IsIdentityMachineExist(const CQZRRTM& machine) const;
    bool IsMachineNameExist(const CQZRIM& machine) const;
    bool IsMachineNameExist(const CQZRRTM& machine) const;
    bool IsMachineNameExist(const char* displayName) const;

  private:
    friend class CQZRMoldingMachineCtrlAccess;  // the library's own bank code and tests

    bool Initialize();

    QZRMACHINE_PRIVATE_MEMBERS_BEGIN
    std::unique_ptr<CQZRMoldingMachineDatabase> m_store;
    QZRMACHINE_PRIVATE_MEMBERS_END
};

#endif  // QZRMACHINE_QZRMOLDINGMACHINECTRL_H

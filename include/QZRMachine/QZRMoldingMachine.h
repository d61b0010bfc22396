// CQZRMoldingMachine: the common base of every machine record: maker, grade, controller,
// remark and the ids a catalogue gives it. Records are plain values: copying copies every
// attribute, and a catalogue keeps its own copies.
#ifndef QZRMACHINE_QZRMOLDINGMACHINE_H
#define QZRMACHINE_QZRMOLDINGMACHINE_H

#include <memory>

#include <QZRMachine/QZRExport.h>

class QZRMACHINE_API CQZRMoldingMachine {
  public:
    // A bare record: empty texts, controller id 0, maker, machine and grade ids -1, kind -1.
    CQZRMoldingMachine();
    // Copy and assignment take every attribute, the ids and the machine kind included.
    CQZRMoldingMachine(const CQZRMoldingMachine& other);
    CQZRMoldingMachine& operator=(const CQZRMoldingMachine& other);

    // The virtual operations keep this order; hosts built against the record rely on it.
    virtual ~CQZRMoldingMachine();
    // Ids are set by the catalogue when the record is added (maker id, machine id); GradeID
    // and ControllerID are the host's own numbers, never interpreted.
    virtual void SetMakerID(int makerId);
    virtual void SetMachineID(int machineId);
    virtual void SetGradeID(int gradeId);
    virtual void SetControllerID(int controllerId);
    // Text setters store a copy of the text; a null text is stored as the empty text.
    virtual void SetMaker(const char* maker);
    virtual void SetGrade(const char* grade);
    virtual void SetControllerGrade(const char* controllerGrade);
    virtual void SetLastModifiedDate(const char* date);
    virtual void SetRemark(const char* remark);
    virtual int GetMakerID() const;
    virtual int GetMachineID() const;
    virtual int GetGradeID() const;
    virtual int GetControllerID() const;
    // Text getters never return null; the text stays valid until the attribute is set again.
    virtual const char* GetControllerGrade() const;
    virtual const char* GetMaker() const;
    virtual const char* GetGrade() const;
    virtual const char* GetLastModifiedDate() const;
    virtual const char* GetRemark() const;

    // Writes "maker - grade" into buffer. False only for a null buffer; a name that does not
    // fit (with its NUL) leaves the buffer empty rather than cut short.
    bool GetName(char* buffer, int size) const;
    // -1 for a bare record, 0 for CQZRIM, 1 for CQZRRTM.
    int GetMachineType() const;

  protected:
    // Set by the derived records' constructors: 0 for CQZRIM, 1 for CQZRRTM.
    void SetMachineType(int machineType);
    // The library's name rule: both present and equal after lower-casing under the current
    // C locale (same length, same bytes).
    static bool IsConsistent(const char* first, const char* second);

  private:
    struct Fields;
    QZRMACHINE_PRIVATE_MEMBERS_BEGIN
    std::unique_ptr<Fields> m_fields;
    QZRMACHINE_PRIVATE_MEMBERS_END
};

#endif  // QZRMACHINE_QZRMOLDINGMACHINE_H

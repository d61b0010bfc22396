#include <QZRMachine/QZRMoldingMachine.h>

#include <cstring>
#include <string>

#include "records/NameRule.h"
#include "records/TextField.h"

using qzr::records::StoreText;

struct CQZRMoldingMachine::Fields {
    int makerId = -1;
    int machineId = -1;
    int gradeId = -1;
    int controllerId = 0;
    int machineType = -1;  // only the constructors of CQZRIM and CQZRRTM change it
    std::string controllerGrade;
    std::string maker;
    std::string grade;
    std::string lastModifiedDate;
    std::string remark;
};

CQZRMoldingMachine::CQZRMoldingMachine() : m_fields(std::make_unique<Fields>()) {}

CQZRMoldingMachine::CQZRMoldingMachine(const CQZRMoldingMachine& other)
    : m_fields(std::make_unique<Fields>(*other.m_fields)) {}

// Copies the machine kind as well: a base part assigned from a transfer-moulding record reports
// kind 1 afterwards, as hosts of the DLL have always seen.
CQZRMoldingMachine& CQZRMoldingMachine::operator=(const CQZRMoldingMachine& other) {
    if (this != &other) {
        *m_fields = *other.m_fields;
    }
    return *this;
}

CQZRMoldingMachine::~CQZRMoldingMachine() = default;

void CQZRMoldingMachine::SetMakerID(int makerId) {
    m_fields->makerId = makerId;
}
void CQZRMoldingMachine::SetMachineID(int machineId) {
    m_fields->machineId = machineId;
}
void CQZRMoldingMachine::SetGradeID(int gradeId) {
    m_fields->gradeId = gradeId;
}
void CQZRMoldingMachine::SetControllerID(int controllerId) {
    m_fields->controllerId = controllerId;
}

void CQZRMoldingMachine::SetMaker(const char* maker) {
    StoreText(&m_fields->maker, maker);
}
void CQZRMoldingMachine::SetGrade(const char* grade) {
    StoreText(&m_fields->grade, grade);
}
void CQZRMoldingMachine::SetControllerGrade(const char* controllerGrade) {
    StoreText(&m_fields->controllerGrade, controllerGrade);
}
void CQZRMoldingMachine::SetLastModifiedDate(const char* date) {
    StoreText(&m_fields->lastModifiedDate, date);
}
void CQZRMoldingMachine::SetRemark(const char* remark) {
    StoreText(&m_fields->remark, remark);
}

int CQZRMoldingMachine::GetMakerID() const {
    return m_fields->makerId;
}
int CQZRMoldingMachine::GetMachineID() const {
    return m_fields->machineId;
}
int CQZRMoldingMachine::GetGradeID() const {
    return m_fields->gradeId;
}
int CQZRMoldingMachine::GetControllerID() const {
    return m_fields->controllerId;
}

const char* CQZRMoldingMachine::GetControllerGrade() const {
    return m_fields->controllerGrade.c_str();
}
const char* CQZRMoldingMachine::GetMaker() const {
    return m_fields->maker.c_str();
}
const char* CQZRMoldingMachine::GetGrade() const {
    return m_fields->grade.c_str();
}
const char* CQZRMoldingMachine::GetLastModifiedDate() const {
    return m_fields->lastModifiedDate.c_str();
}
const char* CQZRMoldingMachine::GetRemark() const {
    return m_fields->remark.c_str();
}

// The whole buffer is cleared first, so a host sees only NULs after the name, and an empty text
// when the name does not fit: the name is never cut short.
bool CQZRMoldingMachine::GetName(char* buffer, int size) const {
    if (buffer == nullptr) {
        return false;
    }
    if (size <= 0) {
        return true;
    }
    const size_t capacity = static_cast<size_t>(size);
    std::memset(buffer, 0, capacity);

    static constexpr char kSeparator[] = " - ";
    constexpr size_t kSeparatorLength = sizeof(kSeparator) - 1;
    const std::string& maker = m_fields->maker;
    const std::string& grade = m_fields->grade;
    const size_t makerLength = maker.size();
    const size_t gradeLength = grade.size();
    // Compared piece by piece so that no sum can wrap around.
    if (makerLength >= capacity || gradeLength >= capacity - makerLength ||
        kSeparatorLength >= capacity - makerLength - gradeLength) {
        return true;
    }
    char* out = buffer;
    std::memcpy(out, maker.data(), makerLength);
    out += makerLength;
    std::memcpy(out, kSeparator, kSeparatorLength);
    out += kSeparatorLength;
    std::memcpy(out, grade.data(), gradeLength);
    return true;
}

int CQZRMoldingMachine::GetMachineType() const {
    return m_fields->machineType;
}

void CQZRMoldingMachine::SetMachineType(int machineType) {
    m_fields->machineType = machineType;
}

bool CQZRMoldingMachine::IsConsistent(const char* first, const char* second) {
    return qzr::records::NamesEqual(first, second);
}

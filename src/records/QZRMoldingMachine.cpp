#include <QZRMachine/QZRMoldingMachine.h>

#include <cstring>
#include <string>

#include "records/MachineFields.h"
#include "records/NameRule.h"

struct CQZRMoldingMachine::Fields {
    QZR_COMMON_FIELDS(QZR_ROW_MEMBER)
    QZR_CATALOGUE_NUMBERS(QZR_ROW_MEMBER)
    int machineType = -1;  // only the constructors of CQZRIM and CQZRRTM change it
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

#define QZR_COMMON_ACCESSORS(Name, Type, ...) QZR_FIELD_ACCESSORS(CQZRMoldingMachine, Name, Type)
QZR_COMMON_FIELDS(QZR_COMMON_ACCESSORS)
QZR_CATALOGUE_NUMBERS(QZR_COMMON_ACCESSORS)
#undef QZR_COMMON_ACCESSORS

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
    const std::string& maker = m_fields->Maker;
    const std::string& grade = m_fields->Grade;
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

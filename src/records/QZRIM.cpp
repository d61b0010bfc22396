#include <QZRMachine/QZRIM.h>

#include <string>

#include "records/MachineFields.h"

using qzr::records::Comparison;

struct CQZRIM::Fields {
    QZR_IMM_FIELDS(QZR_ROW_MEMBER)
    NozzleSpecification nozzleSpecification;
};

namespace {
constexpr int kInjectionMouldingKind = 0;
}  // namespace

CQZRIM::CQZRIM() : m_fields(std::make_unique<Fields>()) {
    SetMachineType(kInjectionMouldingKind);
}

CQZRIM::CQZRIM(const CQZRIM& other)
    : CQZRMoldingMachine(other), m_fields(std::make_unique<Fields>(*other.m_fields)) {}

CQZRIM& CQZRIM::operator=(const CQZRIM& other) {
    if (this != &other) {
        CQZRMoldingMachine::operator=(other);
        *m_fields = *other.m_fields;
    }
    return *this;
}

CQZRIM::~CQZRIM() = default;

#define QZR_IMM_ACCESSORS(Name, Type, ...) QZR_FIELD_ACCESSORS(CQZRIM, Name, Type)
QZR_IMM_FIELDS(QZR_IMM_ACCESSORS)
#undef QZR_IMM_ACCESSORS

NozzleSpecification& CQZRIM::GetNozzleSpecification() {
    return m_fields->nozzleSpecification;
}
const NozzleSpecification& CQZRIM::GetNozzleSpecification() const {
    return m_fields->nozzleSpecification;
}
void CQZRIM::SetNozzleSpecification(const NozzleSpecification& nozzle) {
    m_fields->nozzleSpecification = nozzle;
}

namespace {
QZR_DEFINE_SAME_FIELDS(QZR_IMM_FIELDS)
}  // namespace

// Identity comparisons. The names (and for the full comparison the remark) follow the name
// rule and are read through the virtual getters; the record's own fields are compared as the
// field table says. What the full comparison leaves out (catalogue numbers, controller, dates,
// screw type, the legacy-only machine parameters and the nozzle data) does not make two
// records different machines.

bool CQZRIM::IsMachineIdentity(const CQZRIM& other) const {
    return IsNameIdentity(other) && IsConsistent(GetRemark(), other.GetRemark()) &&
           SameFields<Comparison::kFull>(*m_fields, *other.m_fields);
}

// The key data only; the remark does not count here.
bool CQZRIM::IsSimpleMachineIdentity(const CQZRIM& other) const {
    return IsNameIdentity(other) && SameFields<Comparison::kSimple>(*m_fields, *other.m_fields);
}

bool CQZRIM::IsNameIdentity(const CQZRIM& other) const {
    return IsConsistent(GetMaker(), other.GetMaker()) && IsConsistent(GetGrade(), other.GetGrade());
}

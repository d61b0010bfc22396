#include <QZRMachine/QZRRTM.h>

#include "records/MachineFields.h"

using qzr::records::Comparison;

struct CQZRRTM::Fields {
    QZR_RTM_FIELDS(QZR_ROW_MEMBER)
};

namespace {
constexpr int kTransferMouldingKind = 1;
}  // namespace

CQZRRTM::CQZRRTM() : m_fields(std::make_unique<Fields>()) {
    SetMachineType(kTransferMouldingKind);
}

CQZRRTM::CQZRRTM(const CQZRRTM& other)
    : CQZRMoldingMachine(other), m_fields(std::make_unique<Fields>(*other.m_fields)) {}

CQZRRTM& CQZRRTM::operator=(const CQZRRTM& other) {
    if (this != &other) {
        CQZRMoldingMachine::operator=(other);
        *m_fields = *other.m_fields;
    }
    return *this;
}

CQZRRTM::~CQZRRTM() = default;

#define QZR_RTM_ACCESSORS(Name, Type, ...) QZR_FIELD_ACCESSORS(CQZRRTM, Name, Type)
QZR_RTM_FIELDS(QZR_RTM_ACCESSORS)
#undef QZR_RTM_ACCESSORS

namespace {
QZR_DEFINE_SAME_FIELDS(QZR_RTM_FIELDS)
}  // namespace

// The full and the key-data comparison of a transfer press are one and the same. The names
// follow the name rule and are read through the virtual getters; the press's own fields are
// compared as the field table says. The remark is not compared.
bool CQZRRTM::IsMachineIdentity(const CQZRRTM& other) const {
    return IsNameIdentity(other) && SameFields<Comparison::kFull>(*m_fields, *other.m_fields);
}

bool CQZRRTM::IsSimpleMachineIdentity(const CQZRRTM& other) const {
    return IsMachineIdentity(other);
}

bool CQZRRTM::IsNameIdentity(const CQZRRTM& other) const {
    return IsConsistent(GetMaker(), other.GetMaker()) && IsConsistent(GetGrade(), other.GetGrade());
}

#include <QZRMachine/QZRRTM.h>

struct CQZRRTM::Fields {
    double transferPressure = 0.0;
    double plungerStroke = 0.0;
    double plungerDiameter = 0.0;
    double plungerSpeed = 0.0;
    double transferRate = 0.0;
    double transferForce = 0.0;
    double shotWeight = 0.0;
    double shotVolume = 0.0;
    double clampingForce = 0.0;
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

double CQZRRTM::GetTransferPressure() const {
    return m_fields->transferPressure;
}
void CQZRRTM::SetTransferPressure(double value) {
    m_fields->transferPressure = value;
}
double CQZRRTM::GetPlungerStroke() const {
    return m_fields->plungerStroke;
}
void CQZRRTM::SetPlungerStroke(double value) {
    m_fields->plungerStroke = value;
}
double CQZRRTM::GetPlungerDiameter() const {
    return m_fields->plungerDiameter;
}
void CQZRRTM::SetPlungerDiameter(double value) {
    m_fields->plungerDiameter = value;
}
double CQZRRTM::GetPlungerSpeed() const {
    return m_fields->plungerSpeed;
}
void CQZRRTM::SetPlungerSpeed(double value) {
    m_fields->plungerSpeed = value;
}
double CQZRRTM::GetTransferRate() const {
    return m_fields->transferRate;
}
void CQZRRTM::SetTransferRate(double value) {
    m_fields->transferRate = value;
}
double CQZRRTM::GetTransferForce() const {
    return m_fields->transferForce;
}
void CQZRRTM::SetTransferForce(double value) {
    m_fields->transferForce = value;
}
double CQZRRTM::GetShotWeight() const {
    return m_fields->shotWeight;
}
void CQZRRTM::SetShotWeight(double value) {
    m_fields->shotWeight = value;
}
double CQZRRTM::GetShotVolume() const {
    return m_fields->shotVolume;
}
void CQZRRTM::SetShotVolume(double value) {
    m_fields->shotVolume = value;
}
double CQZRRTM::GetClampingForce() const {
    return m_fields->clampingForce;
}
void CQZRRTM::SetClampingForce(double value) {
    m_fields->clampingForce = value;
}

// The full and the key-data comparison of a transfer press are one and the same. Texts follow
// the name rule and are read through the virtual getters; numbers must be exactly equal (a NaN
// matches nothing, +0 matches -0). TransferRate, TransferForce and the remark are not compared.
bool CQZRRTM::IsMachineIdentity(const CQZRRTM& other) const {
    const Fields& a = *m_fields;
    const Fields& b = *other.m_fields;
    return IsConsistent(GetMaker(), other.GetMaker()) &&
           IsConsistent(GetGrade(), other.GetGrade()) && a.transferPressure == b.transferPressure &&
           a.plungerStroke == b.plungerStroke && a.plungerDiameter == b.plungerDiameter &&
           a.plungerSpeed == b.plungerSpeed && a.clampingForce == b.clampingForce &&
           a.shotWeight == b.shotWeight && a.shotVolume == b.shotVolume;
}

bool CQZRRTM::IsSimpleMachineIdentity(const CQZRRTM& other) const {
    return IsMachineIdentity(other);
}

bool CQZRRTM::IsNameIdentity(const CQZRRTM& other) const {
    return IsConsistent(GetMaker(), other.GetMaker()) && IsConsistent(GetGrade(), other.GetGrade());
}

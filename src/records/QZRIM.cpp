#include <QZRMachine/QZRIM.h>

#include <string>

#include "records/TextField.h"

using qzr::records::StoreText;

// In the order of the injection-moulding data sheet. Apart from the dimension texts, the four
// machine parameters below carry the only defaults that are not 0 or empty.
struct CQZRIM::Fields {
    std::string screwType;
    double shotWeight = 0.0;
    double shotVolume = 0.0;
    double injectionPressure = 0.0;
    double holdingPressure = 0.0;
    double injectionRate = 0.0;
    double injectionSpeed = 0.0;
    double screwDiameter = 0.0;
    double screwStroke = 0.0;
    double screwSpeed = 0.0;
    double plasticationRate = 0.0;
    double nozzleContactForce = 0.0;
    double nozzleStroke = 0.0;
    double heaterWattage = 0.0;
    int temperatureControlZone = 0;
    double clampingForce = 0.0;
    double openingStroke = 0.0;
    double maxDaylight = 0.0;
    double moldHeight = 0.0;
    std::string distanceBetweenTieBars = "0x0";
    std::string platenSize = "0x0";
    int ejectorPoint = 0;
    double ejectorForce = 0.0;
    double ejectorStroke = 0.0;
    double machineWeight = 0.0;
    std::string machineDimension = "0x0x0";
    double timeConstFR = 0.01;
    double timeConstIP = 0.1;
    double nozzleVolume = 0.0;
    double maxPressureSlope = 2500.0;
    int machineEnergyType = 0;
    double hydraulicPressureTransferFactor = 1.0;
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

const char* CQZRIM::GetScrewType() const {
    return m_fields->screwType.c_str();
}
void CQZRIM::SetScrewType(const char* screwType) {
    StoreText(&m_fields->screwType, screwType);
}

double CQZRIM::GetShotWeight() const {
    return m_fields->shotWeight;
}
void CQZRIM::SetShotWeight(double value) {
    m_fields->shotWeight = value;
}
double CQZRIM::GetShotVolume() const {
    return m_fields->shotVolume;
}
void CQZRIM::SetShotVolume(double value) {
    m_fields->shotVolume = value;
}
double CQZRIM::GetInjectionPressure() const {
    return m_fields->injectionPressure;
}
void CQZRIM::SetInjectionPressure(double value) {
    m_fields->injectionPressure = value;
}
double CQZRIM::GetHoldingPressure() const {
    return m_fields->holdingPressure;
}
void CQZRIM::SetHoldingPressure(double value) {
    m_fields->holdingPressure = value;
}
double CQZRIM::GetInjectionRate() const {
    return m_fields->injectionRate;
}
void CQZRIM::SetInjectionRate(double value) {
    m_fields->injectionRate = value;
}
double CQZRIM::GetInjectionSpeed() const {
    return m_fields->injectionSpeed;
}
void CQZRIM::SetInjectionSpeed(double value) {
    m_fields->injectionSpeed = value;
}
double CQZRIM::GetScrewDiameter() const {
    return m_fields->screwDiameter;
}
void CQZRIM::SetScrewDiameter(double value) {
    m_fields->screwDiameter = value;
}
double CQZRIM::GetScrewStroke() const {
    return m_fields->screwStroke;
}
void CQZRIM::SetScrewStroke(double value) {
    m_fields->screwStroke = value;
}
double CQZRIM::GetScrewSpeed() const {
    return m_fields->screwSpeed;
}
void CQZRIM::SetScrewSpeed(double value) {
    m_fields->screwSpeed = value;
}
double CQZRIM::GetPlasticationRate() const {
    return m_fields->plasticationRate;
}
void CQZRIM::SetPlasticationRate(double value) {
    m_fields->plasticationRate = value;
}
double CQZRIM::GetNozzleContactForce() const {
    return m_fields->nozzleContactForce;
}
void CQZRIM::SetNozzleContactForce(double value) {
    m_fields->nozzleContactForce = value;
}
double CQZRIM::GetNozzleStroke() const {
    return m_fields->nozzleStroke;
}
void CQZRIM::SetNozzleStroke(double value) {
    m_fields->nozzleStroke = value;
}
double CQZRIM::GetHeaterWattage() const {
    return m_fields->heaterWattage;
}
void CQZRIM::SetHeaterWattage(double value) {
    m_fields->heaterWattage = value;
}
int CQZRIM::GetTemperatureControlZone() const {
    return m_fields->temperatureControlZone;
}
void CQZRIM::SetTemperatureControlZone(int value) {
    m_fields->temperatureControlZone = value;
}

double CQZRIM::GetClampingForce() const {
    return m_fields->clampingForce;
}
void CQZRIM::SetClampingForce(double value) {
    m_fields->clampingForce = value;
}
double CQZRIM::GetOpeningStroke() const {
    return m_fields->openingStroke;
}
void CQZRIM::SetOpeningStroke(double value) {
    m_fields->openingStroke = value;
}
double CQZRIM::GetMaxDaylight() const {
    return m_fields->maxDaylight;
}
void CQZRIM::SetMaxDaylight(double value) {
    m_fields->maxDaylight = value;
}
double CQZRIM::GetMoldHeight() const {
    return m_fields->moldHeight;
}
void CQZRIM::SetMoldHeight(double value) {
    m_fields->moldHeight = value;
}
const char* CQZRIM::GetDistanceBetweenTieBars() const {
    return m_fields->distanceBetweenTieBars.c_str();
}
void CQZRIM::SetDistanceBetweenTieBars(const char* text) {
    StoreText(&m_fields->distanceBetweenTieBars, text);
}
const char* CQZRIM::GetPlatenSize() const {
    return m_fields->platenSize.c_str();
}
void CQZRIM::SetPlatenSize(const char* text) {
    StoreText(&m_fields->platenSize, text);
}

int CQZRIM::GetEjectorPoint() const {
    return m_fields->ejectorPoint;
}
void CQZRIM::SetEjectorPoint(int value) {
    m_fields->ejectorPoint = value;
}
double CQZRIM::GetEjectorForce() const {
    return m_fields->ejectorForce;
}
void CQZRIM::SetEjectorForce(double value) {
    m_fields->ejectorForce = value;
}
double CQZRIM::GetEjectorStroke() const {
    return m_fields->ejectorStroke;
}
void CQZRIM::SetEjectorStroke(double value) {
    m_fields->ejectorStroke = value;
}
double CQZRIM::GetMachineWeight() const {
    return m_fields->machineWeight;
}
void CQZRIM::SetMachineWeight(double value) {
    m_fields->machineWeight = value;
}
const char* CQZRIM::GetMachineDimension() const {
    return m_fields->machineDimension.c_str();
}
void CQZRIM::SetMachineDimension(const char* text) {
    StoreText(&m_fields->machineDimension, text);
}

double CQZRIM::GetTimeConstFR() const {
    return m_fields->timeConstFR;
}
void CQZRIM::SetTimeConstFR(double value) {
    m_fields->timeConstFR = value;
}
double CQZRIM::GetTimeConstIP() const {
    return m_fields->timeConstIP;
}
void CQZRIM::SetTimeConstIP(double value) {
    m_fields->timeConstIP = value;
}
double CQZRIM::GetNozzleVolume() const {
    return m_fields->nozzleVolume;
}
void CQZRIM::SetNozzleVolume(double value) {
    m_fields->nozzleVolume = value;
}
double CQZRIM::GetMaxPressureSlope() const {
    return m_fields->maxPressureSlope;
}
void CQZRIM::SetMaxPressureSlope(double value) {
    m_fields->maxPressureSlope = value;
}
int CQZRIM::GetMachineEnergyType() const {
    return m_fields->machineEnergyType;
}
void CQZRIM::SetMachineEnergyType(int value) {
    m_fields->machineEnergyType = value;
}
double CQZRIM::GetHydraulicPressureTransferFactor() const {
    return m_fields->hydraulicPressureTransferFactor;
}
void CQZRIM::SetHydraulicPressureTransferFactor(double value) {
    m_fields->hydraulicPressureTransferFactor = value;
}

NozzleSpecification& CQZRIM::GetNozzleSpecification() {
    return m_fields->nozzleSpecification;
}
const NozzleSpecification& CQZRIM::GetNozzleSpecification() const {
    return m_fields->nozzleSpecification;
}
void CQZRIM::SetNozzleSpecification(const NozzleSpecification& nozzle) {
    m_fields->nozzleSpecification = nozzle;
}

// Identity comparisons. Texts follow the name rule and are read through the virtual getters;
// numbers must be exactly equal (==: a NaN matches nothing, not even itself, and +0 matches
// -0). Each test stops at the first attribute that differs. What the full comparison leaves
// out (catalogue numbers, controller, dates, screw type, the legacy-only machine parameters and
// the nozzle data) does not make two records different machines.

bool CQZRIM::IsMachineIdentity(const CQZRIM& other) const {
    const Fields& a = *m_fields;
    const Fields& b = *other.m_fields;
    return IsConsistent(GetMaker(), other.GetMaker()) &&
           IsConsistent(GetGrade(), other.GetGrade()) &&
           IsConsistent(GetRemark(), other.GetRemark()) && a.shotWeight == b.shotWeight &&
           a.shotVolume == b.shotVolume && a.injectionPressure == b.injectionPressure &&
           a.holdingPressure == b.holdingPressure && a.injectionRate == b.injectionRate &&
           a.injectionSpeed == b.injectionSpeed && a.screwDiameter == b.screwDiameter &&
           a.screwStroke == b.screwStroke && a.screwSpeed == b.screwSpeed &&
           a.plasticationRate == b.plasticationRate &&
           a.nozzleContactForce == b.nozzleContactForce && a.nozzleStroke == b.nozzleStroke &&
           a.heaterWattage == b.heaterWattage &&
           a.temperatureControlZone == b.temperatureControlZone &&
           a.clampingForce == b.clampingForce && a.openingStroke == b.openingStroke &&
           a.maxDaylight == b.maxDaylight && a.moldHeight == b.moldHeight &&
           a.ejectorPoint == b.ejectorPoint && a.ejectorForce == b.ejectorForce &&
           a.ejectorStroke == b.ejectorStroke && a.machineWeight == b.machineWeight &&
           IsConsistent(GetDistanceBetweenTieBars(), other.GetDistanceBetweenTieBars()) &&
           IsConsistent(GetPlatenSize(), other.GetPlatenSize()) &&
           IsConsistent(GetMachineDimension(), other.GetMachineDimension());
}

// The key data only; the remark does not count here.
bool CQZRIM::IsSimpleMachineIdentity(const CQZRIM& other) const {
    const Fields& a = *m_fields;
    const Fields& b = *other.m_fields;
    return IsConsistent(GetMaker(), other.GetMaker()) &&
           IsConsistent(GetGrade(), other.GetGrade()) && a.shotWeight == b.shotWeight &&
           a.injectionPressure == b.injectionPressure && a.injectionRate == b.injectionRate &&
           a.screwDiameter == b.screwDiameter && a.screwStroke == b.screwStroke &&
           a.clampingForce == b.clampingForce && a.nozzleVolume == b.nozzleVolume &&
           a.maxPressureSlope == b.maxPressureSlope;
}

bool CQZRIM::IsNameIdentity(const CQZRIM& other) const {
    return IsConsistent(GetMaker(), other.GetMaker()) && IsConsistent(GetGrade(), other.GetGrade());
}

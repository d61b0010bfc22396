#include "bank/sectioned/MachineSectionFormat.h"

namespace qzr::bank {

namespace {

template <class Record>
MachineKey<Record> TextKey(const char* key, const char* linePrefix,
                           void (Record::*set)(const char*), const char* (Record::*get)() const) {
    return {key, linePrefix, KeyValueKind::kText, set, get, nullptr, nullptr, nullptr, nullptr};
}

template <class Record>
MachineKey<Record> IntegerKey(const char* key, const char* linePrefix, void (Record::*set)(int),
                              int (Record::*get)() const) {
    return {key, linePrefix, KeyValueKind::kInteger, nullptr, nullptr, set, get, nullptr, nullptr};
}

template <class Record>
MachineKey<Record> RealKey(const char* key, const char* linePrefix, void (Record::*set)(double),
                           double (Record::*get)() const) {
    return {key, linePrefix, KeyValueKind::kReal, nullptr, nullptr, nullptr, nullptr, set, get};
}

}  // namespace

// Injection-moulding sections: keys padded to 28 characters, so "=" is the 29th character.
const MachineSectionFormat<CQZRIM>& IMMSectionFormat() {
    static const MachineKey<CQZRIM> kRows[] = {
        TextKey<CQZRIM>("Maker", "Maker                       = ", &CQZRIM::SetMaker,
                        &CQZRIM::GetMaker),
        TextKey<CQZRIM>("Grade", "Grade                       = ", &CQZRIM::SetGrade,
                        &CQZRIM::GetGrade),
        IntegerKey<CQZRIM>("Controller", "Controller                  = ", &CQZRIM::SetControllerID,
                           &CQZRIM::GetControllerID),
        TextKey<CQZRIM>("Remark", "Remark                      = ", &CQZRIM::SetRemark,
                        &CQZRIM::GetRemark),
        RealKey<CQZRIM>("ScrewDiameter", "ScrewDiameter               = ",
                        &CQZRIM::SetScrewDiameter, &CQZRIM::GetScrewDiameter),
        RealKey<CQZRIM>("ScrewStroke", "ScrewStroke                 = ", &CQZRIM::SetScrewStroke,
                        &CQZRIM::GetScrewStroke),
        RealKey<CQZRIM>("ShotVolume", "ShotVolume                  = ", &CQZRIM::SetShotVolume,
                        &CQZRIM::GetShotVolume),
        RealKey<CQZRIM>("ShotWeight", "ShotWeight                  = ", &CQZRIM::SetShotWeight,
                        &CQZRIM::GetShotWeight),
        RealKey<CQZRIM>("MaxInjectionPressure", "MaxInjectionPressure        = ",
                        &CQZRIM::SetInjectionPressure, &CQZRIM::GetInjectionPressure),
        RealKey<CQZRIM>("HoldingPressure", "HoldingPressure             = ",
                        &CQZRIM::SetHoldingPressure, &CQZRIM::GetHoldingPressure),
        RealKey<CQZRIM>("InjectionSpeed", "InjectionSpeed              = ",
                        &CQZRIM::SetInjectionSpeed, &CQZRIM::GetInjectionSpeed),
        RealKey<CQZRIM>("InjectionRate", "InjectionRate               = ",
                        &CQZRIM::SetInjectionRate, &CQZRIM::GetInjectionRate),
        RealKey<CQZRIM>("PlasticationRate", "PlasticationRate            = ",
                        &CQZRIM::SetPlasticationRate, &CQZRIM::GetPlasticationRate),
        RealKey<CQZRIM>("ScrewSpeed", "ScrewSpeed                  = ", &CQZRIM::SetScrewSpeed,
                        &CQZRIM::GetScrewSpeed),
        RealKey<CQZRIM>("NozzleContactForce", "NozzleContactForce          = ",
                        &CQZRIM::SetNozzleContactForce, &CQZRIM::GetNozzleContactForce),
        RealKey<CQZRIM>("NozzleStroke", "NozzleStroke                = ", &CQZRIM::SetNozzleStroke,
                        &CQZRIM::GetNozzleStroke),
        RealKey<CQZRIM>("HeaterWattage", "HeaterWattage               = ",
                        &CQZRIM::SetHeaterWattage, &CQZRIM::GetHeaterWattage),
        IntegerKey<CQZRIM>("TemperatureControlZones", "TemperatureControlZones     = ",
                           &CQZRIM::SetTemperatureControlZone, &CQZRIM::GetTemperatureControlZone),
        RealKey<CQZRIM>("ClampingForce", "ClampingForce               = ",
                        &CQZRIM::SetClampingForce, &CQZRIM::GetClampingForce),
        RealKey<CQZRIM>("OpeningStroke", "OpeningStroke               = ",
                        &CQZRIM::SetOpeningStroke, &CQZRIM::GetOpeningStroke),
        RealKey<CQZRIM>("MaxDaylight", "MaxDaylight                 = ", &CQZRIM::SetMaxDaylight,
                        &CQZRIM::GetMaxDaylight),
        RealKey<CQZRIM>("MoldHeight", "MoldHeight                  = ", &CQZRIM::SetMoldHeight,
                        &CQZRIM::GetMoldHeight),
        TextKey<CQZRIM>("DistanceBetweenTieBars(HxV)", "DistanceBetweenTieBars(HxV) = ",
                        &CQZRIM::SetDistanceBetweenTieBars, &CQZRIM::GetDistanceBetweenTieBars),
        TextKey<CQZRIM>("PlatenSize(HxV)", "PlatenSize(HxV)             = ", &CQZRIM::SetPlatenSize,
                        &CQZRIM::GetPlatenSize),
        IntegerKey<CQZRIM>("EjectorPoint", "EjectorPoint                = ",
                           &CQZRIM::SetEjectorPoint, &CQZRIM::GetEjectorPoint),
        RealKey<CQZRIM>("EjectorForce", "EjectorForce                = ", &CQZRIM::SetEjectorForce,
                        &CQZRIM::GetEjectorForce),
        RealKey<CQZRIM>("EjectorStroke", "EjectorStroke               = ",
                        &CQZRIM::SetEjectorStroke, &CQZRIM::GetEjectorStroke),
        RealKey<CQZRIM>("MachineWeight", "MachineWeight               = ",
                        &CQZRIM::SetMachineWeight, &CQZRIM::GetMachineWeight),
        TextKey<CQZRIM>("MachineDimension(LxWxH)", "MachineDimension(LxWxH)     = ",
                        &CQZRIM::SetMachineDimension, &CQZRIM::GetMachineDimension),
    };
    static const size_t kReadOrder[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14,
                                        15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28};
    static const MachineSectionFormat<CQZRIM> kFormat{kRows, sizeof(kRows) / sizeof(kRows[0]),
                                                      kReadOrder};
    return kFormat;
}

// Transfer-moulding sections: keys padded to 17 characters, so "=" is the 18th character,
// except the "Maker" and "PlungerSpeed" lines, which the banks carry with a tab before " = ".
// A section is read with "ClampingForce" right after "PlungerSpeed", though it is written
// after "TransferRate".
const MachineSectionFormat<CQZRRTM>& RTMSectionFormat() {
    static const MachineKey<CQZRRTM> kRows[] = {
        TextKey<CQZRRTM>("Maker", "Maker        \t = ", &CQZRRTM::SetMaker, &CQZRRTM::GetMaker),
        TextKey<CQZRRTM>("Grade", "Grade            = ", &CQZRRTM::SetGrade, &CQZRRTM::GetGrade),
        IntegerKey<CQZRRTM>("Controller", "Controller       = ", &CQZRRTM::SetControllerID,
                            &CQZRRTM::GetControllerID),
        TextKey<CQZRRTM>("Remark", "Remark           = ", &CQZRRTM::SetRemark, &CQZRRTM::GetRemark),
        RealKey<CQZRRTM>("PlungerDiameter", "PlungerDiameter  = ", &CQZRRTM::SetPlungerDiameter,
                         &CQZRRTM::GetPlungerDiameter),
        RealKey<CQZRRTM>("PlungerStroke", "PlungerStroke    = ", &CQZRRTM::SetPlungerStroke,
                         &CQZRRTM::GetPlungerStroke),
        RealKey<CQZRRTM>("PlungerSpeed", "PlungerSpeed\t = ", &CQZRRTM::SetPlungerSpeed,
                         &CQZRRTM::GetPlungerSpeed),
        RealKey<CQZRRTM>("TransferPressure", "TransferPressure = ", &CQZRRTM::SetTransferPressure,
                         &CQZRRTM::GetTransferPressure),
        RealKey<CQZRRTM>("TransferForce", "TransferForce    = ", &CQZRRTM::SetTransferForce,
                         &CQZRRTM::GetTransferForce),
        RealKey<CQZRRTM>("TransferRate", "TransferRate     = ", &CQZRRTM::SetTransferRate,
                         &CQZRRTM::GetTransferRate),
        RealKey<CQZRRTM>("ClampingForce", "ClampingForce    = ", &CQZRRTM::SetClampingForce,
                         &CQZRRTM::GetClampingForce),
        RealKey<CQZRRTM>("ShotWeight", "ShotWeight       = ", &CQZRRTM::SetShotWeight,
                         &CQZRRTM::GetShotWeight),
        RealKey<CQZRRTM>("ShotVolume", "ShotVolume       = ", &CQZRRTM::SetShotVolume,
                         &CQZRRTM::GetShotVolume),
    };
    static const size_t kReadOrder[] = {0, 1, 2, 3, 4, 5, 6, 10, 7, 8, 9, 11, 12};
    static const MachineSectionFormat<CQZRRTM> kFormat{kRows, sizeof(kRows) / sizeof(kRows[0]),
                                                       kReadOrder};
    return kFormat;
}

}  // namespace qzr::bank

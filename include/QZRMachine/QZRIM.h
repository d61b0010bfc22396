// CQZRIM: the record of one injection-moulding machine.
#ifndef QZRMACHINE_QZRIM_H
#define QZRMACHINE_QZRIM_H

#include <memory>

#include <QZRMachine/QZRExport.h>
#include <QZRMachine/QZRMoldingMachine.h>

// The nozzle data carried by every injection-moulding record, copied as a whole.
struct NozzleSpecification {
    int Type = 0;
    double Value1 = 0.0;
    double Value2 = 0.0;
    double Value3 = 0.0;
    double Value4 = 0.0;
    double Value5 = 0.0;
    double Value6 = 0.0;
};

class QZRMACHINE_API CQZRIM : public CQZRMoldingMachine {
  public:
    // A record of defaults: numbers 0 except TimeConstFR 0.01, TimeConstIP 0.1,
    // MaxPressureSlope 2500 and HydraulicPressureTransferFactor 1; texts empty except the tie-bar
    // distance and platen size "0x0" and the machine dimension "0x0x0"; maker, machine and grade
    // ids -1.
    CQZRIM();
    // Copies every attribute, the base's and the nozzle data included.
    CQZRIM(const CQZRIM& other);
    CQZRIM& operator=(const CQZRIM& other);
    ~CQZRIM() override;

    // The machine's data: plain attributes, each a Get/Set pair, stored as given (no range
    // checks, no unit conversion). The line above each pair gives the unit where the legacy bank
    // states one and which bank format carries the attribute: "both", "sectioned only" (a legacy
    // save drops it) or "legacy only" (a sectioned save drops it). Text setters copy the text (a
    // null text is stored as empty); a text getter's pointer stays valid until that attribute is
    // set again or the record is destroyed.

    // Screw type text; carried by neither bank format.
    const char* GetScrewType() const;
    void SetScrewType(const char* screwType);
    // Shot weight, g; both.
    double GetShotWeight() const;
    void SetShotWeight(double value);
    // Shot volume, cm3; sectioned only (a legacy load computes it from the screw diameter and
    // stroke).
    double GetShotVolume() const;
    void SetShotVolume(double value);
    // Maximum injection pressure, MPa; both.
    double GetInjectionPressure() const;
    void SetInjectionPressure(double value);
    // Holding pressure; sectioned only.
    double GetHoldingPressure() const;
    void SetHoldingPressure(double value);
    // Maximum injection rate, cc/s; both.
    double GetInjectionRate() const;
    void SetInjectionRate(double value);
    // Injection speed; sectioned only.
    double GetInjectionSpeed() const;
    void SetInjectionSpeed(double value);
    // Screw diameter, mm; both.
    double GetScrewDiameter() const;
    void SetScrewDiameter(double value);
    // Screw stroke, mm (the legacy column "Max.RamPosition"); both.
    double GetScrewStroke() const;
    void SetScrewStroke(double value);
    // Screw speed; sectioned only.
    double GetScrewSpeed() const;
    void SetScrewSpeed(double value);
    // Plastication rate; sectioned only.
    double GetPlasticationRate() const;
    void SetPlasticationRate(double value);
    // Nozzle contact force; sectioned only.
    double GetNozzleContactForce() const;
    void SetNozzleContactForce(double value);
    // Nozzle stroke; sectioned only.
    double GetNozzleStroke() const;
    void SetNozzleStroke(double value);
    // Heater wattage; sectioned only.
    double GetHeaterWattage() const;
    void SetHeaterWattage(double value);
    // Number of temperature control zones; sectioned only.
    int GetTemperatureControlZone() const;
    void SetTemperatureControlZone(int value);
    // Clamping force, ton; both.
    double GetClampingForce() const;
    void SetClampingForce(double value);
    // Opening stroke; sectioned only.
    double GetOpeningStroke() const;
    void SetOpeningStroke(double value);
    // Maximum daylight; sectioned only.
    double GetMaxDaylight() const;
    void SetMaxDaylight(double value);
    // Mould height; sectioned only.
    double GetMoldHeight() const;
    void SetMoldHeight(double value);
    // Distance between tie bars, text "HxV" (default "0x0"); sectioned only.
    const char* GetDistanceBetweenTieBars() const;
    void SetDistanceBetweenTieBars(const char* text);
    // Platen size, text "HxV" (default "0x0"); sectioned only.
    const char* GetPlatenSize() const;
    void SetPlatenSize(const char* text);
    // Number of ejector points; sectioned only.
    int GetEjectorPoint() const;
    void SetEjectorPoint(int value);
    // Ejector force; sectioned only.
    double GetEjectorForce() const;
    void SetEjectorForce(double value);
    // Ejector stroke; sectioned only.
    double GetEjectorStroke() const;
    void SetEjectorStroke(double value);
    // Machine weight; sectioned only.
    double GetMachineWeight() const;
    void SetMachineWeight(double value);
    // Machine dimension, text "LxWxH" (default "0x0x0"); sectioned only.
    const char* GetMachineDimension() const;
    void SetMachineDimension(const char* text);
    // Time constant FR, sec (default 0.01); legacy only.
    double GetTimeConstFR() const;
    void SetTimeConstFR(double value);
    // Time constant IP, sec (default 0.1); legacy only.
    double GetTimeConstIP() const;
    void SetTimeConstIP(double value);
    // Nozzle volume, cm3; legacy only.
    double GetNozzleVolume() const;
    void SetNozzleVolume(double value);
    // Maximum pressure slope (default 2500); legacy only.
    double GetMaxPressureSlope() const;
    void SetMaxPressureSlope(double value);
    // Energy type code, never interpreted (the legacy column "MachineType"; not the record kind of
    // GetMachineType); legacy only.
    int GetMachineEnergyType() const;
    void SetMachineEnergyType(int value);
    // Hydraulic pressure transfer factor (default 1); legacy only.
    double GetHydraulicPressureTransferFactor() const;
    void SetHydraulicPressureTransferFactor(double value);
    // The record's own NozzleSpecification (the seven columns after the hydraulic factor);
    // changes made through the reference are kept; legacy only.
    NozzleSpecification& GetNozzleSpecification();
    const NozzleSpecification& GetNozzleSpecification() const;
    void SetNozzleSpecification(const NozzleSpecification& nozzle);

    // Same machine: by all data (maker, grade, remark and every capacity), by the key data
    // (maker, grade and the main capacities), or by maker and grade only; names compare by
    // the name rule (case ignored), numbers exactly.
    bool IsMachineIdentity(const CQZRIM& other) const;
    bool IsSimpleMachineIdentity(const CQZRIM& other) const;
    bool IsNameIdentity(const CQZRIM& other) const;

  private:
    struct Fields;
    QZRMACHINE_PRIVATE_MEMBERS_BEGIN
    std::unique_ptr<Fields> m_fields;
    QZRMACHINE_PRIVATE_MEMBERS_END
};

#endif  // QZRMACHINE_QZRIM_H

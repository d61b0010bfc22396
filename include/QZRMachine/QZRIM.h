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
    // checks). Where the legacy bank gives units they are: clamping force ton, shot weight g,
    // injection pressure MPa, injection rate cc/s, screw diameter and stroke mm, time
    // constants sec, nozzle volume cm3; the other numbers carry the units of whoever fills
    // them. Text attributes (screw type, tie-bar distance, platen size, machine dimension)
    // are copied in; their getters' pointers stay valid until the attribute is set again.

    const char* GetScrewType() const;
    void SetScrewType(const char* screwType);
    double GetShotWeight() const;
    void SetShotWeight(double value);
    double GetShotVolume() const;
    void SetShotVolume(double value);
    double GetInjectionPressure() const;
    void SetInjectionPressure(double value);
    double GetHoldingPressure() const;
    void SetHoldingPressure(double value);
    double GetInjectionRate() const;
    void SetInjectionRate(double value);
    double GetInjectionSpeed() const;
    void SetInjectionSpeed(double value);
    double GetScrewDiameter() const;
    void SetScrewDiameter(double value);
    double GetScrewStroke() const;
    void SetScrewStroke(double value);
    double GetScrewSpeed() const;
    void SetScrewSpeed(double value);
    double GetPlasticationRate() const;
    void SetPlasticationRate(double value);
    double GetNozzleContactForce() const;
    void SetNozzleContactForce(double value);
    double GetNozzleStroke() const;
    void SetNozzleStroke(double value);
    double GetHeaterWattage() const;
    void SetHeaterWattage(double value);
    int GetTemperatureControlZone() const;
    void SetTemperatureControlZone(int value);
    double GetClampingForce() const;
    void SetClampingForce(double value);
    double GetOpeningStroke() const;
    void SetOpeningStroke(double value);
    double GetMaxDaylight() const;
    void SetMaxDaylight(double value);
    double GetMoldHeight() const;
    void SetMoldHeight(double value);
    const char* GetDistanceBetweenTieBars() const;
    void SetDistanceBetweenTieBars(const char* text);
    const char* GetPlatenSize() const;
    void SetPlatenSize(const char* text);
    int GetEjectorPoint() const;
    void SetEjectorPoint(int value);
    double GetEjectorForce() const;
    void SetEjectorForce(double value);
    double GetEjectorStroke() const;
    void SetEjectorStroke(double value);
    double GetMachineWeight() const;
    void SetMachineWeight(double value);
    const char* GetMachineDimension() const;
    void SetMachineDimension(const char* text);
    double GetTimeConstFR() const;
    void SetTimeConstFR(double value);
    double GetTimeConstIP() const;
    void SetTimeConstIP(double value);
    double GetNozzleVolume() const;
    void SetNozzleVolume(double value);
    double GetMaxPressureSlope() const;
    void SetMaxPressureSlope(double value);
    int GetMachineEnergyType() const;
    void SetMachineEnergyType(int value);
    double GetHydraulicPressureTransferFactor() const;
    void SetHydraulicPressureTransferFactor(double value);
    // The record's own NozzleSpecification: changes made through the reference are kept.
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

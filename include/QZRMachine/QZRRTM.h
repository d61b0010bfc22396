// CQZRRTM: the record of one transfer-moulding machine.
#ifndef QZRMACHINE_QZRRTM_H
#define QZRMACHINE_QZRRTM_H

#include <memory>

#include <QZRMachine/QZRExport.h>
#include <QZRMachine/QZRMoldingMachine.h>

class QZRMACHINE_API CQZRRTM : public CQZRMoldingMachine {
  public:
    // A record of defaults: numbers 0, texts empty, maker, machine and grade ids -1.
    CQZRRTM();
    // Copies every attribute, the base's included.
    CQZRRTM(const CQZRRTM& other);
    CQZRRTM& operator=(const CQZRRTM& other);
    ~CQZRRTM() override;

    // The press's data: plain Get/Set pairs stored as given (no range checks, no unit
    // conversion). Only the sectioned transfer-moulding bank carries them, and it states no
    // units. ShotWeight, ShotVolume and ClampingForce are this record's own, unrelated to the
    // attributes of the same names of CQZRIM.

    // Transfer pressure.
    double GetTransferPressure() const;
    void SetTransferPressure(double value);
    // Stroke of the transfer plunger.
    double GetPlungerStroke() const;
    void SetPlungerStroke(double value);
    // Diameter of the transfer plunger.
    double GetPlungerDiameter() const;
    void SetPlungerDiameter(double value);
    // Speed of the transfer plunger.
    double GetPlungerSpeed() const;
    void SetPlungerSpeed(double value);
    // Transfer rate.
    double GetTransferRate() const;
    void SetTransferRate(double value);
    // Transfer force.
    double GetTransferForce() const;
    void SetTransferForce(double value);
    // Shot weight.
    double GetShotWeight() const;
    void SetShotWeight(double value);
    // Shot volume.
    double GetShotVolume() const;
    void SetShotVolume(double value);
    // Clamping force.
    double GetClampingForce() const;
    void SetClampingForce(double value);

    // For transfer-moulding records the full and the key-data comparison are the same.
    bool IsMachineIdentity(const CQZRRTM& other) const;
    bool IsSimpleMachineIdentity(const CQZRRTM& other) const;
    bool IsNameIdentity(const CQZRRTM& other) const;

  private:
    struct Fields;
    QZRMACHINE_PRIVATE_MEMBERS_BEGIN
    std::unique_ptr<Fields> m_fields;
    QZRMACHINE_PRIVATE_MEMBERS_END
};

#endif  // QZRMACHINE_QZRRTM_H

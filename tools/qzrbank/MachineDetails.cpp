#include "MachineDetails.h"

#include "Numbers.h"

namespace qzrbank {

namespace {

// Which formats carry an attribute.
enum Carried { kNone = 0, kLegacy = 1, kSectioned = 2, kBoth = 3 };

class AttributeList {
  public:
    void Number(const char* name, double value, Carried carried, const char* unit = "") {
        Attribute attribute = Make(name, carried, unit);
        attribute.numeric = true;
        attribute.number = value;
        attribute.text = FormatNumber(value);
        m_attributes.push_back(std::move(attribute));
    }
    void Integer(const char* name, int value, Carried carried) {
        Number(name, static_cast<double>(value), carried);
        m_attributes.back().integer = true;
    }
    void Text(const char* name, const char* value, Carried carried) {
        Attribute attribute = Make(name, carried, "");
        attribute.text = value != nullptr ? value : "";
        m_attributes.push_back(std::move(attribute));
    }
    void CatalogueNumber(const char* name, int value) {
        Integer(name, value, kNone);
        m_attributes.back().catalogueNumber = true;
    }
    std::vector<Attribute> Take() { return std::move(m_attributes); }

  private:
    static Attribute Make(const char* name, Carried carried, const char* unit) {
        Attribute attribute;
        attribute.name = name;
        attribute.unit = unit;
        attribute.inLegacy = (carried & kLegacy) != 0;
        attribute.inSectioned = (carried & kSectioned) != 0;
        return attribute;
    }

    std::vector<Attribute> m_attributes;
};

void DescribeBase(const CQZRMoldingMachine& machine, AttributeList* list, Carried remarkAndNames) {
    list->Text("Maker", machine.GetMaker(), remarkAndNames);
    list->Text("Grade", machine.GetGrade(), remarkAndNames);
    list->Integer("Controller", machine.GetControllerID(), kSectioned);
    list->Text("Remark", machine.GetRemark(), remarkAndNames);
}

void DescribeBaseRest(const CQZRMoldingMachine& machine, AttributeList* list) {
    list->Text("ControllerGrade", machine.GetControllerGrade(), kNone);
    list->Text("LastModifiedDate", machine.GetLastModifiedDate(), kNone);
    list->Integer("GradeID", machine.GetGradeID(), kNone);
    list->CatalogueNumber("MakerID", machine.GetMakerID());
    list->CatalogueNumber("MachineID", machine.GetMachineID());
}

}  // namespace

std::vector<Attribute> DescribeMachine(const CQZRIM& m) {
    AttributeList list;
    DescribeBase(m, &list, kBoth);
    list.Number("ScrewDiameter", m.GetScrewDiameter(), kBoth, "mm");
    list.Number("ScrewStroke", m.GetScrewStroke(), kBoth, "mm");
    // The legacy bank has no shot volume column; its reader derives it from the screw.
    list.Number("ShotVolume", m.GetShotVolume(), kSectioned);
    list.Number("ShotWeight", m.GetShotWeight(), kBoth, "g");
    list.Number("InjectionPressure", m.GetInjectionPressure(), kBoth, "MPa");
    list.Number("HoldingPressure", m.GetHoldingPressure(), kSectioned);
    list.Number("InjectionSpeed", m.GetInjectionSpeed(), kSectioned);
    list.Number("InjectionRate", m.GetInjectionRate(), kBoth, "cc/s");
    list.Number("PlasticationRate", m.GetPlasticationRate(), kSectioned);
    list.Number("ScrewSpeed", m.GetScrewSpeed(), kSectioned);
    list.Number("NozzleContactForce", m.GetNozzleContactForce(), kSectioned);
    list.Number("NozzleStroke", m.GetNozzleStroke(), kSectioned);
    list.Number("HeaterWattage", m.GetHeaterWattage(), kSectioned);
    list.Integer("TemperatureControlZone", m.GetTemperatureControlZone(), kSectioned);
    list.Number("ClampingForce", m.GetClampingForce(), kBoth, "ton");
    list.Number("OpeningStroke", m.GetOpeningStroke(), kSectioned);
    list.Number("MaxDaylight", m.GetMaxDaylight(), kSectioned);
    list.Number("MoldHeight", m.GetMoldHeight(), kSectioned);
    list.Text("DistanceBetweenTieBars", m.GetDistanceBetweenTieBars(), kSectioned);
    list.Text("PlatenSize", m.GetPlatenSize(), kSectioned);
    list.Integer("EjectorPoint", m.GetEjectorPoint(), kSectioned);
    list.Number("EjectorForce", m.GetEjectorForce(), kSectioned);
    list.Number("EjectorStroke", m.GetEjectorStroke(), kSectioned);
    list.Number("MachineWeight", m.GetMachineWeight(), kSectioned);
    list.Text("MachineDimension", m.GetMachineDimension(), kSectioned);
    list.Number("TimeConstFR", m.GetTimeConstFR(), kLegacy, "sec");
    list.Number("TimeConstIP", m.GetTimeConstIP(), kLegacy, "sec");
    list.Number("NozzleVolume", m.GetNozzleVolume(), kLegacy, "cm3");
    list.Number("MaxPressureSlope", m.GetMaxPressureSlope(), kLegacy);
    list.Integer("MachineEnergyType", m.GetMachineEnergyType(), kLegacy);
    list.Number("HydraulicPressureTransferFactor", m.GetHydraulicPressureTransferFactor(), kLegacy);
    const NozzleSpecification& nozzle = m.GetNozzleSpecification();
    list.Integer("NozzleSpecification.Type", nozzle.Type, kLegacy);
    list.Number("NozzleSpecification.Value1", nozzle.Value1, kLegacy);
    list.Number("NozzleSpecification.Value2", nozzle.Value2, kLegacy);
    list.Number("NozzleSpecification.Value3", nozzle.Value3, kLegacy);
    list.Number("NozzleSpecification.Value4", nozzle.Value4, kLegacy);
    list.Number("NozzleSpecification.Value5", nozzle.Value5, kLegacy);
    list.Number("NozzleSpecification.Value6", nozzle.Value6, kLegacy);
    list.Text("ScrewType", m.GetScrewType(), kNone);
    DescribeBaseRest(m, &list);
    return list.Take();
}

std::vector<Attribute> DescribeMachine(const CQZRRTM& m) {
    AttributeList list;
    DescribeBase(m, &list, kSectioned);
    list.Number("PlungerDiameter", m.GetPlungerDiameter(), kSectioned);
    list.Number("PlungerStroke", m.GetPlungerStroke(), kSectioned);
    list.Number("PlungerSpeed", m.GetPlungerSpeed(), kSectioned);
    list.Number("TransferPressure", m.GetTransferPressure(), kSectioned);
    list.Number("TransferForce", m.GetTransferForce(), kSectioned);
    list.Number("TransferRate", m.GetTransferRate(), kSectioned);
    list.Number("ClampingForce", m.GetClampingForce(), kSectioned);
    list.Number("ShotWeight", m.GetShotWeight(), kSectioned);
    list.Number("ShotVolume", m.GetShotVolume(), kSectioned);
    DescribeBaseRest(m, &list);
    return list.Take();
}

MachineSummary Summarize(const CQZRIM& m) {
    MachineSummary summary;
    summary.kind = "IMM";
    summary.maker = m.GetMaker();
    summary.grade = m.GetGrade();
    summary.clampingForce = m.GetClampingForce();
    summary.shotWeight = m.GetShotWeight();
    summary.shotVolume = m.GetShotVolume();
    summary.pressure = m.GetInjectionPressure();
    summary.diameter = m.GetScrewDiameter();
    summary.stroke = m.GetScrewStroke();
    return summary;
}

MachineSummary Summarize(const CQZRRTM& m) {
    MachineSummary summary;
    summary.kind = "RTM";
    summary.maker = m.GetMaker();
    summary.grade = m.GetGrade();
    summary.clampingForce = m.GetClampingForce();
    summary.shotWeight = m.GetShotWeight();
    summary.shotVolume = m.GetShotVolume();
    summary.pressure = m.GetTransferPressure();
    summary.diameter = m.GetPlungerDiameter();
    summary.stroke = m.GetPlungerStroke();
    return summary;
}

std::string DisplayName(const CQZRMoldingMachine& machine) {
    return std::string(machine.GetMaker()) + " - " + machine.GetGrade();
}

}  // namespace qzrbank

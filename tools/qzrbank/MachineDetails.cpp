#include "MachineDetails.h"

#include <type_traits>

#include "Numbers.h"
#include "records/MachineFields.h"

namespace qzrbank {

namespace {

using qzr::records::FieldDescriptor;
using qzr::records::FieldList;
using qzr::records::FieldType;

// Which fields of a list to take: those some bank format carries, those none does, or all.
enum class Which { kCarried, kNotCarried, kAll };

class AttributeList {
  public:
    // hasLegacyBank: the record's kind has a legacy bank (injection moulding only).
    explicit AttributeList(bool hasLegacyBank) : m_hasLegacyBank(hasLegacyBank) {}

    template <class Target>
    void Add(FieldList<Target> fields, const Target& target, Which which,
             bool catalogueNumbers = false) {
        for (const FieldDescriptor<Target>& field : fields) {
            Attribute attribute = Make(field, target);
            const bool carried = attribute.inLegacy || attribute.inSectioned;
            if (which == Which::kAll || carried == (which == Which::kCarried)) {
                attribute.catalogueNumber = catalogueNumbers;
                m_attributes.push_back(std::move(attribute));
            }
        }
    }
    std::vector<Attribute> Take() { return std::move(m_attributes); }

  private:
    template <class Target>
    Attribute Make(const FieldDescriptor<Target>& field, const Target& target) const {
        Attribute attribute;
        attribute.name = field.name;
        attribute.key = field.section.key != nullptr ? field.section.key : "";
        attribute.unit = field.unit;
        attribute.inLegacy = m_hasLegacyBank && field.legacy.column >= 0;
        attribute.inSectioned = field.section.key != nullptr;
        switch (field.type) {
            case FieldType::kText: {
                const char* text = field.getText(target);
                attribute.text = text != nullptr ? text : "";
                break;
            }
            case FieldType::kInteger:
                attribute.integer = true;
                SetNumber(static_cast<double>(field.getInteger(target)), &attribute);
                break;
            case FieldType::kReal:
                SetNumber(field.getReal(target), &attribute);
                break;
        }
        return attribute;
    }
    static void SetNumber(double value, Attribute* attribute) {
        attribute->numeric = true;
        attribute->number = value;
        attribute->text = FormatNumber(value);
    }

    bool m_hasLegacyBank;
    std::vector<Attribute> m_attributes;
};

// What the banks carry first: the common fields, the kind's own, the nozzle data; then what
// they do not, the kind's before the common ones; the catalogue's numbers last.
template <class Record>
std::vector<Attribute> Describe(const Record& machine, const NozzleSpecification* nozzle) {
    AttributeList list(std::is_same_v<Record, CQZRIM>);
    list.Add(qzr::records::CommonFields<Record>(), machine, Which::kCarried);
    list.Add(qzr::records::KindFields<Record>(), machine, Which::kCarried);
    if (nozzle != nullptr) {
        list.Add(qzr::records::NozzleFields(), *nozzle, Which::kAll);
    }
    list.Add(qzr::records::KindFields<Record>(), machine, Which::kNotCarried);
    list.Add(qzr::records::CommonFields<Record>(), machine, Which::kNotCarried);
    list.Add(qzr::records::CatalogueNumbers<Record>(), machine, Which::kAll, true);
    return list.Take();
}

}  // namespace

std::vector<Attribute> DescribeMachine(const CQZRIM& machine) {
    return Describe(machine, &machine.GetNozzleSpecification());
}

std::vector<Attribute> DescribeMachine(const CQZRRTM& machine) {
    return Describe<CQZRRTM>(machine, nullptr);
}

bool DecodeTexts(const TextEncoding& encoding, const std::string& machine,
                 std::vector<Attribute>* attributes, std::string* error) {
    for (Attribute& attribute : *attributes) {
        if (!attribute.numeric && !encoding.DecodeField(attribute.text, machine, attribute.name,
                                                        &attribute.text, error)) {
            return false;
        }
    }
    return true;
}

std::string DisplayName(const CQZRMoldingMachine& machine) {
    return std::string(machine.GetMaker()) + " - " + machine.GetGrade();
}

}  // namespace qzrbank

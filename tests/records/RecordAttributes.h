// Tables of every attribute of the machine records, for the records tests: how to set and show
// it, its default, and whether a difference in it changes each identity comparison. Copies,
// defaults and comparisons are then checked row by row instead of by hand-written lists that
// could miss a field.
#ifndef QZR_TESTS_RECORDS_RECORDATTRIBUTES_H
#define QZR_TESTS_RECORDS_RECORDATTRIBUTES_H

#include <charconv>
#include <string>
#include <utility>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::records::testing {

enum class Kind { Int, Real, Text };

// Whether a difference in the attribute makes the comparison answer false.
struct Affects {
    bool full;    // IsMachineIdentity
    bool simple;  // IsSimpleMachineIdentity
    bool name;    // IsNameIdentity
};

template <class Record>
struct Attribute {
    const char* name;
    Kind kind;
    const char* defaultValue;  // as Show prints it
    Affects affects;
    void (*setInt)(Record&, int);
    int (*getInt)(const Record&);
    void (*setReal)(Record&, double);
    double (*getReal)(const Record&);
    void (*setText)(Record&, const char*);
    const char* (*getText)(const Record&);
};

// The shortest text that reads back as the same double ("0.01", "2500", "-0", "nan").
inline std::string ShortestText(double value) {
    char text[64];
    const std::to_chars_result result = std::to_chars(text, text + sizeof text, value);
    return std::string(text, result.ptr);
}

template <class Record>
std::string Show(const Attribute<Record>& attribute, const Record& record) {
    switch (attribute.kind) {
        case Kind::Int:
            return std::to_string(attribute.getInt(record));
        case Kind::Real:
            return ShortestText(attribute.getReal(record));
        case Kind::Text:
            return attribute.getText(record);
    }
    return {};
}

// A value unique to the attribute (by its row) and the variant, and never a default.
template <class Record>
void SetVariant(const Attribute<Record>& attribute, Record& record, int row, int variant) {
    const int number = 1000 * (row + 1) + variant;
    switch (attribute.kind) {
        case Kind::Int:
            attribute.setInt(record, -number);
            return;
        case Kind::Real:
            attribute.setReal(record, number + 0.25);
            return;
        case Kind::Text: {
            const std::string text = "v" + std::to_string(number) + " x";
            attribute.setText(record, text.c_str());
            return;
        }
    }
}

template <class Record>
void FillAll(const std::vector<Attribute<Record>>& table, Record& record, int variant) {
    for (size_t row = 0; row < table.size(); ++row) {
        SetVariant(table[row], record, static_cast<int>(row), variant);
    }
}

using Snapshot = std::vector<std::pair<std::string, std::string>>;

// Every attribute of the record as name and value, the machine kind included.
template <class Record>
Snapshot TakeSnapshot(const std::vector<Attribute<Record>>& table, const Record& record) {
    Snapshot snapshot;
    snapshot.emplace_back("MachineType", std::to_string(record.GetMachineType()));
    for (const Attribute<Record>& attribute : table) {
        snapshot.emplace_back(attribute.name, Show(attribute, record));
    }
    return snapshot;
}

#define QZR_INT(Record, Name, dflt, full, simple, nm)                                            \
    Attribute<Record> {                                                                          \
#Name, Kind::Int, dflt,                                                                  \
            {full, simple, nm },                                                                 \
             [](Record & r,                                                                      \
                int v) { r.Set##Name(v); }, [](const Record& r) { return r.Get##Name(); },       \
                                                                                        nullptr, \
                                                                                        nullptr, \
                                                                                        nullptr, \
                                                                                        nullptr  \
    }
#define QZR_REAL(Record, Name, dflt, full, simple, nm)                                           \
    Attribute<Record> {                                                                          \
#Name, Kind::Real, dflt,                                                                 \
            {full, simple, nm }, nullptr, nullptr,                                               \
             [](Record & r,                                                                      \
                double v) { r.Set##Name(v); },                                                   \
                                            [](const Record& r) { return r.Get##Name(); },       \
                                                                                        nullptr, \
                                                                                        nullptr  \
    }
#define QZR_TEXT(Record, Name, dflt, full, simple, nm)                                            \
    Attribute<Record> {                                                                           \
#Name, Kind::Text, dflt,                                                                  \
            {full, simple, nm }, nullptr, nullptr, nullptr, nullptr,                              \
             [](Record & r,                                                                       \
                const char* v) { r.Set##Name(v); }, [](const Record& r) { return r.Get##Name(); } \
    }
#define QZR_NOZZLE_INT(Member)                                                                   \
    Attribute<CQZRIM> {                                                                          \
        "Nozzle." #Member, Kind::Int, "0", {false, false, false},                                \
            [](CQZRIM& r, int v) { r.GetNozzleSpecification().Member = v; },                     \
            [](const CQZRIM& r) { return r.GetNozzleSpecification().Member; }, nullptr, nullptr, \
            nullptr, nullptr                                                                     \
    }
#define QZR_NOZZLE_REAL(Member)                                                                 \
    Attribute<CQZRIM> {                                                                         \
        "Nozzle." #Member, Kind::Real, "0", {false, false, false}, nullptr, nullptr,            \
            [](CQZRIM& r, double v) { r.GetNozzleSpecification().Member = v; },                 \
            [](const CQZRIM& r) { return r.GetNozzleSpecification().Member; }, nullptr, nullptr \
    }

// The base part, with the remark's effect given by the class: only the full comparison of an
// injection-moulding record looks at it.
template <class Record>
std::vector<Attribute<Record>> BaseAttributes(Affects remark) {
    return {
        QZR_INT(Record, MakerID, "-1", false, false, false),
        QZR_INT(Record, MachineID, "-1", false, false, false),
        QZR_INT(Record, GradeID, "-1", false, false, false),
        QZR_INT(Record, ControllerID, "0", false, false, false),
        QZR_TEXT(Record, ControllerGrade, "", false, false, false),
        QZR_TEXT(Record, Maker, "", true, true, true),
        QZR_TEXT(Record, Grade, "", true, true, true),
        QZR_TEXT(Record, LastModifiedDate, "", false, false, false),
        QZR_TEXT(Record, Remark, "", remark.full, remark.simple, remark.name),
    };
}

inline std::vector<Attribute<CQZRIM>> InjectionAttributes() {
    std::vector<Attribute<CQZRIM>> table = BaseAttributes<CQZRIM>({true, false, false});
    const std::vector<Attribute<CQZRIM>> own = {
        QZR_TEXT(CQZRIM, ScrewType, "", false, false, false),
        QZR_REAL(CQZRIM, ShotWeight, "0", true, true, false),
        QZR_REAL(CQZRIM, ShotVolume, "0", true, false, false),
        QZR_REAL(CQZRIM, InjectionPressure, "0", true, true, false),
        QZR_REAL(CQZRIM, HoldingPressure, "0", true, false, false),
        QZR_REAL(CQZRIM, InjectionRate, "0", true, true, false),
        QZR_REAL(CQZRIM, InjectionSpeed, "0", true, false, false),
        QZR_REAL(CQZRIM, ScrewDiameter, "0", true, true, false),
        QZR_REAL(CQZRIM, ScrewStroke, "0", true, true, false),
        QZR_REAL(CQZRIM, ScrewSpeed, "0", true, false, false),
        QZR_REAL(CQZRIM, PlasticationRate, "0", true, false, false),
        QZR_REAL(CQZRIM, NozzleContactForce, "0", true, false, false),
        QZR_REAL(CQZRIM, NozzleStroke, "0", true, false, false),
        QZR_REAL(CQZRIM, HeaterWattage, "0", true, false, false),
        QZR_INT(CQZRIM, TemperatureControlZone, "0", true, false, false),
        QZR_REAL(CQZRIM, ClampingForce, "0", true, true, false),
        QZR_REAL(CQZRIM, OpeningStroke, "0", true, false, false),
        QZR_REAL(CQZRIM, MaxDaylight, "0", true, false, false),
        QZR_REAL(CQZRIM, MoldHeight, "0", true, false, false),
        QZR_TEXT(CQZRIM, DistanceBetweenTieBars, "0x0", true, false, false),
        QZR_TEXT(CQZRIM, PlatenSize, "0x0", true, false, false),
        QZR_INT(CQZRIM, EjectorPoint, "0", true, false, false),
        QZR_REAL(CQZRIM, EjectorForce, "0", true, false, false),
        QZR_REAL(CQZRIM, EjectorStroke, "0", true, false, false),
        QZR_REAL(CQZRIM, MachineWeight, "0", true, false, false),
        QZR_TEXT(CQZRIM, MachineDimension, "0x0x0", true, false, false),
        QZR_REAL(CQZRIM, TimeConstFR, "0.01", false, false, false),
        QZR_REAL(CQZRIM, TimeConstIP, "0.1", false, false, false),
        QZR_REAL(CQZRIM, NozzleVolume, "0", false, true, false),
        QZR_REAL(CQZRIM, MaxPressureSlope, "2500", false, true, false),
        QZR_INT(CQZRIM, MachineEnergyType, "0", false, false, false),
        QZR_REAL(CQZRIM, HydraulicPressureTransferFactor, "1", false, false, false),
        QZR_NOZZLE_INT(Type),
        QZR_NOZZLE_REAL(Value1),
        QZR_NOZZLE_REAL(Value2),
        QZR_NOZZLE_REAL(Value3),
        QZR_NOZZLE_REAL(Value4),
        QZR_NOZZLE_REAL(Value5),
        QZR_NOZZLE_REAL(Value6),
    };
    table.insert(table.end(), own.begin(), own.end());
    return table;
}

// A transfer press compares the same data in its full and its key-data comparison.
inline std::vector<Attribute<CQZRRTM>> TransferAttributes() {
    std::vector<Attribute<CQZRRTM>> table = BaseAttributes<CQZRRTM>({false, false, false});
    const std::vector<Attribute<CQZRRTM>> own = {
        QZR_REAL(CQZRRTM, TransferPressure, "0", true, true, false),
        QZR_REAL(CQZRRTM, PlungerStroke, "0", true, true, false),
        QZR_REAL(CQZRRTM, PlungerDiameter, "0", true, true, false),
        QZR_REAL(CQZRRTM, PlungerSpeed, "0", true, true, false),
        QZR_REAL(CQZRRTM, TransferRate, "0", false, false, false),
        QZR_REAL(CQZRRTM, TransferForce, "0", false, false, false),
        QZR_REAL(CQZRRTM, ShotWeight, "0", true, true, false),
        QZR_REAL(CQZRRTM, ShotVolume, "0", true, true, false),
        QZR_REAL(CQZRRTM, ClampingForce, "0", true, true, false),
    };
    table.insert(table.end(), own.begin(), own.end());
    return table;
}

#undef QZR_INT
#undef QZR_REAL
#undef QZR_TEXT
#undef QZR_NOZZLE_INT
#undef QZR_NOZZLE_REAL

// The records with their protected members opened up, for the kind and the name rule.
class OpenIM : public CQZRIM {
  public:
    using CQZRMoldingMachine::IsConsistent;
    using CQZRMoldingMachine::SetMachineType;
};

class OpenMachine : public CQZRMoldingMachine {
  public:
    using CQZRMoldingMachine::IsConsistent;
    using CQZRMoldingMachine::SetMachineType;
};

}  // namespace qzr::records::testing

#endif  // QZR_TESTS_RECORDS_RECORDATTRIBUTES_H

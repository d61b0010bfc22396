// Every attribute of the machine records as a table row: its default and whether a difference in
// it alone changes each identity comparison. Defaults, copies and comparisons are checked row by
// row, so no hand-written list can miss a field.
#ifndef QZR_TESTS_RECORDS_RECORDATTRIBUTES_H
#define QZR_TESTS_RECORDS_RECORDATTRIBUTES_H

#include <charconv>
#include <string>
#include <type_traits>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::records::testing {

// clang-format off
inline std::string Str(int value) { return std::to_string(value); }
inline std::string Str(const char* text) { return text; }
inline std::string Str(double value) {  // the shortest text that reads back the same
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}
// clang-format on

// A value any setter takes: the number for numbers, a text made from it (or given) for texts.
struct Value {
    explicit Value(double n) : number(n), storage("v" + Str(n) + " x"), text(storage.c_str()) {}
    explicit Value(const char* given) : text(given) {}
    Value(const Value&) = delete;
    operator int() const { return static_cast<int>(number); }
    operator double() const { return number; }
    operator const char*() const { return text; }
    double number = 0;
    std::string storage;
    const char* text;
};

enum class Kind { Int, Real, Text };
template <class T>
constexpr Kind KindOf() {
    return std::is_same_v<T, int> ? Kind::Int : std::is_same_v<T, double> ? Kind::Real : Kind::Text;
}

template <class Record>
struct Attribute {
    const char* name;
    const char* defaultValue;  // as Str shows it
    // The comparisons a difference in it alone turns false: 'f' IsMachineIdentity, 's'
    // IsSimpleMachineIdentity, 'n' IsNameIdentity.
    const char* affects;
    Kind kind;
    void (*set)(Record&, const Value&);
    std::string (*show)(const Record&);
};

// clang-format off
#define QZR_A(Name, dflt, affects)                                                  \
    Attribute<R>{#Name, dflt, affects, KindOf<decltype(R().Get##Name())>(),          \
                 [](R& r, const Value& v) { r.Set##Name(v); },                       \
                 [](const R& r) { return Str(r.Get##Name()); }}
#define QZR_NOZZLE(Member)                                                           \
    Attribute<R>{"Nozzle." #Member, "0", "", KindOf<decltype(NozzleSpecification::Member)>(), \
                 [](R& r, const Value& v) { r.GetNozzleSpecification().Member = v; },  \
                 [](const R& r) { return Str(r.GetNozzleSpecification().Member); }}

template <class R>
std::vector<Attribute<R>> Table() {
    constexpr bool im = std::is_same_v<R, CQZRIM>;
    std::vector<Attribute<R>> table = {
        QZR_A(MakerID, "-1", ""), QZR_A(MachineID, "-1", ""), QZR_A(GradeID, "-1", ""),
        QZR_A(ControllerID, "0", ""), QZR_A(ControllerGrade, "", ""), QZR_A(Maker, "", "fsn"),
        QZR_A(Grade, "", "fsn"), QZR_A(LastModifiedDate, "", ""),
        QZR_A(Remark, "", im ? "f" : "")};  // only the injection-moulding full comparison
    if constexpr (im) {
        table.insert(table.end(), {
            QZR_A(ScrewType, "", ""), QZR_A(ShotWeight, "0", "fs"), QZR_A(ShotVolume, "0", "f"),
            QZR_A(InjectionPressure, "0", "fs"), QZR_A(HoldingPressure, "0", "f"),
            QZR_A(InjectionRate, "0", "fs"), QZR_A(InjectionSpeed, "0", "f"),
            QZR_A(ScrewDiameter, "0", "fs"), QZR_A(ScrewStroke, "0", "fs"),
            QZR_A(ScrewSpeed, "0", "f"), QZR_A(PlasticationRate, "0", "f"),
            QZR_A(NozzleContactForce, "0", "f"), QZR_A(NozzleStroke, "0", "f"),
            QZR_A(HeaterWattage, "0", "f"), QZR_A(TemperatureControlZone, "0", "f"),
            QZR_A(ClampingForce, "0", "fs"), QZR_A(OpeningStroke, "0", "f"),
            QZR_A(MaxDaylight, "0", "f"), QZR_A(MoldHeight, "0", "f"),
            QZR_A(DistanceBetweenTieBars, "0x0", "f"), QZR_A(PlatenSize, "0x0", "f"),
            QZR_A(EjectorPoint, "0", "f"), QZR_A(EjectorForce, "0", "f"),
            QZR_A(EjectorStroke, "0", "f"), QZR_A(MachineWeight, "0", "f"),
            QZR_A(MachineDimension, "0x0x0", "f"), QZR_A(TimeConstFR, "0.01", ""),
            QZR_A(TimeConstIP, "0.1", ""), QZR_A(NozzleVolume, "0", "s"),
            QZR_A(MaxPressureSlope, "2500", "s"), QZR_A(MachineEnergyType, "0", ""),
            QZR_A(HydraulicPressureTransferFactor, "1", ""), QZR_NOZZLE(Type), QZR_NOZZLE(Value1),
            QZR_NOZZLE(Value2), QZR_NOZZLE(Value3), QZR_NOZZLE(Value4), QZR_NOZZLE(Value5),
            QZR_NOZZLE(Value6)});
    } else if constexpr (std::is_same_v<R, CQZRRTM>) {  // a transfer press compares the same data in its full and its key-data comparison
        table.insert(table.end(), {
            QZR_A(TransferPressure, "0", "fs"), QZR_A(PlungerStroke, "0", "fs"),
            QZR_A(PlungerDiameter, "0", "fs"), QZR_A(PlungerSpeed, "0", "fs"),
            QZR_A(TransferRate, "0", ""), QZR_A(TransferForce, "0", ""),
            QZR_A(ShotWeight, "0", "fs"), QZR_A(ShotVolume, "0", "fs"),
            QZR_A(ClampingForce, "0", "fs")});
    }
    return table;
}
// clang-format on
#undef QZR_A
#undef QZR_NOZZLE

// A value of the attribute's own (by row and variant), never a default.
inline double Number(size_t row, int variant) {
    return 1000.0 * static_cast<double>(row + 1) + variant + 0.25;
}

template <class R>
R Filled(int variant) {
    R record;
    const std::vector<Attribute<R>> table = Table<R>();
    for (size_t row = 0; row < table.size(); ++row) {
        table[row].set(record, Value(Number(row, variant)));
    }
    return record;
}

}  // namespace qzr::records::testing

#endif  // QZR_TESTS_RECORDS_RECORDATTRIBUTES_H

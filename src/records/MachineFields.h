// The fields of the machine records, each named once: its type, its default, which identity
// comparisons look at it, its line in a machine section of a sectioned bank, its column in a
// legacy tabular row, and its unit where a bank gives one. The record classes take their
// storage, defaults and accessors from these lists; the readers and writers of both bank
// formats and the tool's views walk the descriptors built from them (MachineFields.cpp).
//
// Adding a field: one row here and its accessor pair in the public header.
#ifndef QZR_RECORDS_MACHINEFIELDS_H
#define QZR_RECORDS_MACHINEFIELDS_H

#include <cstddef>
#include <string>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "records/NameRule.h"
#include "records/TextField.h"

// Rows of the fields common to both kinds of record:
//   X(Name, Type, Default, Shown, Section, Legacy, Unit)
// Name is the accessor pair's (GetName/SetName); Shown is the field's name in the tool.
#define QZR_COMMON_FIELDS(X)                                                        \
    X(Maker, Text, "", "Maker", Key("Maker").PrefixInRTM("Maker        \t = "),     \
      Column(1, kLeading, "Maker"), "")                                             \
    X(Grade, Text, "", "Grade", Key("Grade"), Column(2, kLeading, "Grade"), "")     \
    X(ControllerID, Integer, 0, "Controller", Key("Controller"), NoColumn(), "")    \
    X(Remark, Text, "", "Remark", Key("Remark"), Column(3, kLeading, "Remark"), "") \
    X(ControllerGrade, Text, "", "ControllerGrade", NoKey(), NoColumn(), "")        \
    X(LastModifiedDate, Text, "", "LastModifiedDate", NoKey(), NoColumn(), "")      \
    X(GradeID, Integer, -1, "GradeID", NoKey(), NoColumn(), "")

// The numbers a catalogue gives a record when it files it; no bank holds them. Same columns.
#define QZR_CATALOGUE_NUMBERS(X)                                \
    X(MakerID, Integer, -1, "MakerID", NoKey(), NoColumn(), "") \
    X(MachineID, Integer, -1, "MachineID", NoKey(), NoColumn(), "")

// Rows of an injection-moulding record, in the order of its section lines:
//   X(Name, Type, Default, Compared, Section, Legacy, Unit)
#define QZR_IMM_FIELDS(X)                                                                          \
    X(ScrewDiameter, Real, 0.0, kInBoth, Key("ScrewDiameter"),                                     \
      Column(8, kEveryLayout, "ScrewDiameter"), "mm")                                              \
    X(ScrewStroke, Real, 0.0, kInBoth, Key("ScrewStroke"),                                         \
      Column(9, kEveryLayout, "Max.RamPosition"), "mm")                                            \
    X(ShotVolume, Real, 0.0, kInFull, Key("ShotVolume"), NoColumn(), "")                           \
    X(ShotWeight, Real, 0.0, kInBoth, Key("ShotWeight"), Column(5, kEveryLayout, "ShotWeight"),    \
      "g")                                                                                         \
    X(InjectionPressure, Real, 0.0, kInBoth, Key("MaxInjectionPressure"),                          \
      Column(6, kEveryLayout, "Max.Pressure"), "MPa")                                              \
    X(HoldingPressure, Real, 0.0, kInFull, Key("HoldingPressure"), NoColumn(), "")                 \
    X(InjectionSpeed, Real, 0.0, kInFull, Key("InjectionSpeed"), NoColumn(), "")                   \
    X(InjectionRate, Real, 0.0, kInBoth, Key("InjectionRate"),                                     \
      Column(7, kEveryLayout, "Max.FlowRate"), "cc/s")                                             \
    X(PlasticationRate, Real, 0.0, kInFull, Key("PlasticationRate"), NoColumn(), "")               \
    X(ScrewSpeed, Real, 0.0, kInFull, Key("ScrewSpeed"), NoColumn(), "")                           \
    X(NozzleContactForce, Real, 0.0, kInFull, Key("NozzleContactForce"), NoColumn(), "")           \
    X(NozzleStroke, Real, 0.0, kInFull, Key("NozzleStroke"), NoColumn(), "")                       \
    X(HeaterWattage, Real, 0.0, kInFull, Key("HeaterWattage"), NoColumn(), "")                     \
    X(TemperatureControlZone, Integer, 0, kInFull, Key("TemperatureControlZones"), NoColumn(), "") \
    X(ClampingForce, Real, 0.0, kInBoth, Key("ClampingForce"),                                     \
      Column(4, kEveryLayout, "ClampForce"), "ton")                                                \
    X(OpeningStroke, Real, 0.0, kInFull, Key("OpeningStroke"), NoColumn(), "")                     \
    X(MaxDaylight, Real, 0.0, kInFull, Key("MaxDaylight"), NoColumn(), "")                         \
    X(MoldHeight, Real, 0.0, kInFull, Key("MoldHeight"), NoColumn(), "")                           \
    X(DistanceBetweenTieBars, Text, "0x0", kInFull, Key("DistanceBetweenTieBars(HxV)"),            \
      NoColumn(), "")                                                                              \
    X(PlatenSize, Text, "0x0", kInFull, Key("PlatenSize(HxV)"), NoColumn(), "")                    \
    X(EjectorPoint, Integer, 0, kInFull, Key("EjectorPoint"), NoColumn(), "")                      \
    X(EjectorForce, Real, 0.0, kInFull, Key("EjectorForce"), NoColumn(), "")                       \
    X(EjectorStroke, Real, 0.0, kInFull, Key("EjectorStroke"), NoColumn(), "")                     \
    X(MachineWeight, Real, 0.0, kInFull, Key("MachineWeight"), NoColumn(), "")                     \
    X(MachineDimension, Text, "0x0x0", kInFull, Key("MachineDimension(LxWxH)"), NoColumn(), "")    \
    X(TimeConstFR, Real, 0.01, kInNeither, NoKey(),                                                \
      Column(10, kSince7003, "TimeConstFR").General(), "sec")                                      \
    X(TimeConstIP, Real, 0.1, kInNeither, NoKey(),                                                 \
      Column(11, kSince7003, "TimeConstIP").General(), "sec")                                      \
    X(NozzleVolume, Real, 0.0, kInSimple, NoKey(), Column(12, kSince7003, "NozzleVolume"), "cm3")  \
    X(MaxPressureSlope, Real, 2500.0, kInSimple, NoKey(),                                          \
      Column(13, kSince7004, "MaxPressureSlope"), "")                                              \
    X(MachineEnergyType, Integer, 0, kInNeither, NoKey(), Column(14, kMachineKind, "MachineType"), \
      "")                                                                                          \
    X(HydraulicPressureTransferFactor, Real, 1.0, kInNeither, NoKey(),                             \
      Column(15, kMachineKind, "HydralicPressureTransferFactor"), "")                              \
    X(ScrewType, Text, "", kInNeither, NoKey(), NoColumn(), "")

// The members of an injection-moulding record's NozzleSpecification; their defaults are the
// public struct's own (checked in MachineFields.cpp):
//   X(Name, Type, Default, Legacy)
#define QZR_NOZZLE_FIELDS(X)                  \
    X(Type, Integer, 0, Column(16, kNozzle))  \
    X(Value1, Real, 0.0, Column(17, kNozzle)) \
    X(Value2, Real, 0.0, Column(18, kNozzle)) \
    X(Value3, Real, 0.0, Column(19, kNozzle)) \
    X(Value4, Real, 0.0, Column(20, kNozzle)) \
    X(Value5, Real, 0.0, Column(21, kNozzle)) \
    X(Value6, Real, 0.0, Column(22, kNozzle))

// Rows of a transfer-moulding record, in the order of its section lines. A section is read
// with ClampingForce right after PlungerSpeed.
//   X(Name, Type, Default, Compared, Section, Legacy, Unit)
#define QZR_RTM_FIELDS(X)                                                                \
    X(PlungerDiameter, Real, 0.0, kInBoth, Key("PlungerDiameter"), NoColumn(), "mm")     \
    X(PlungerStroke, Real, 0.0, kInBoth, Key("PlungerStroke"), NoColumn(), "mm")         \
    X(PlungerSpeed, Real, 0.0, kInBoth, Key("PlungerSpeed").Prefix("PlungerSpeed\t = "), \
      NoColumn(), "")                                                                    \
    X(TransferPressure, Real, 0.0, kInBoth, Key("TransferPressure"), NoColumn(), "")     \
    X(TransferForce, Real, 0.0, kInNeither, Key("TransferForce"), NoColumn(), "")        \
    X(TransferRate, Real, 0.0, kInNeither, Key("TransferRate"), NoColumn(), "")          \
    X(ClampingForce, Real, 0.0, kInBoth, Key("ClampingForce").ReadAfter("PlungerSpeed"), \
      NoColumn(), "ton")                                                                 \
    X(ShotWeight, Real, 0.0, kInBoth, Key("ShotWeight"), NoColumn(), "g")                \
    X(ShotVolume, Real, 0.0, kInBoth, Key("ShotVolume"), NoColumn(), "")

namespace qzr::records {

enum class FieldType { kText, kInteger, kReal };

// How a field of each type is kept in a record and passed through its accessors.
template <FieldType>
struct FieldValue;
template <>
struct FieldValue<FieldType::kText> {
    using Stored = std::string;
    using Passed = const char*;
};
template <>
struct FieldValue<FieldType::kInteger> {
    using Stored = int;
    using Passed = int;
};
template <>
struct FieldValue<FieldType::kReal> {
    using Stored = double;
    using Passed = double;
};

inline const char* Passed(const std::string& stored) {
    return stored.c_str();
}
inline int Passed(int stored) {
    return stored;
}
inline double Passed(double stored) {
    return stored;
}
inline void Store(std::string* stored, const char* text) {
    StoreText(stored, text);
}
inline void Store(int* stored, int value) {
    *stored = value;
}
inline void Store(double* stored, double value) {
    *stored = value;
}

// Texts compare by the name rule, numbers exactly (a NaN matches nothing, +0 matches -0).
inline bool SameValue(const std::string& a, const std::string& b) {
    return NamesEqual(a.c_str(), b.c_str());
}
inline bool SameValue(double a, double b) {
    return a == b;
}

// Which identity comparisons of its record look at a field of the record's own kind (the
// common fields are compared by the records themselves).
enum Compared { kInNeither, kInFull, kInSimple, kInBoth };
enum class Comparison { kFull, kSimple };
constexpr bool Covers(Compared compared, Comparison comparison) {
    return compared == kInBoth ||
           (comparison == Comparison::kFull ? compared == kInFull : compared == kInSimple);
}

// The line of a machine section that holds a field.
struct SectionKey {
    const char* key = nullptr;  // null: sectioned banks do not carry the field
    // Written before the value; null where it is the key padded to SectionKeyWidth, then " = ".
    const char* linePrefix = nullptr;
    const char* linePrefixInRTM = nullptr;  // a common field's own prefix in RTM sections
    // The key right after which a section reads this one, where that is not its place in
    // writing order (the order matters for values that do not convert: see FillMachineSection).
    const char* readAfter = nullptr;

    constexpr SectionKey Prefix(const char* prefix) const {
        SectionKey changed = *this;
        changed.linePrefix = prefix;
        return changed;
    }
    constexpr SectionKey PrefixInRTM(const char* prefix) const {
        SectionKey changed = *this;
        changed.linePrefixInRTM = prefix;
        return changed;
    }
    constexpr SectionKey ReadAfter(const char* key) const {
        SectionKey changed = *this;
        changed.readAfter = key;
        return changed;
    }
};
constexpr SectionKey Key(const char* key) {
    return SectionKey{key};
}
constexpr SectionKey NoKey() {
    return SectionKey{};
}

// Keys padded to this width put the "=" of every line of a section in one column.
template <class Record>
inline constexpr size_t kSectionKeyWidth = 0;
template <>
inline constexpr size_t kSectionKeyWidth<CQZRIM> = 27;
template <>
inline constexpr size_t kSectionKeyWidth<CQZRRTM> = 16;

// The legacy row grew at its end from version to version. A column belongs to the group that
// added it; the row layout of a file's version holds the columns of some groups, in column
// order (LegacyRowParser), and the writer's row holds them all.
enum LegacyGroup {
    kNotInLegacyRows,
    kLeading,      // maker, grade and the remark, after the row's ID
    kEveryLayout,  // the first numbers, in every layout
    kSince7003,    // user banks from version 7003
    kSince7004,    // user banks from version 7004
    kMachineKind,  // user banks above 7004 and system banks from 7007
    kNozzle,       // user banks above 7004
};

// How the writer puts a real: "%6.2f" or "%lg".
enum class LegacyNumber { kFixed, kGeneral };

struct LegacyColumn {
    int column = -1;  // in the writer's row, its ID being column 0
    LegacyGroup group = kNotInLegacyRows;
    const char* title = nullptr;  // in the writer's title line, the unit below it
    LegacyNumber number = LegacyNumber::kFixed;

    constexpr LegacyColumn General() const {
        LegacyColumn changed = *this;
        changed.number = LegacyNumber::kGeneral;
        return changed;
    }
};
constexpr LegacyColumn Column(int column, LegacyGroup group, const char* title = nullptr) {
    return LegacyColumn{column, group, title};
}
constexpr LegacyColumn NoColumn() {
    return LegacyColumn{};
}

// The legacy columns of each list in list order, for code that walks the table while compiling.
#define QZR_LEGACY_OF_ROW(Name, Type, Default, Fourth, Section, Legacy, Unit) Legacy,
#define QZR_LEGACY_OF_NOZZLE(Name, Type, Default, Legacy) Legacy,
inline constexpr LegacyColumn kCommonLegacyColumns[] = {QZR_COMMON_FIELDS(QZR_LEGACY_OF_ROW)};
inline constexpr LegacyColumn kIMMLegacyColumns[] = {QZR_IMM_FIELDS(QZR_LEGACY_OF_ROW)};
inline constexpr LegacyColumn kNozzleLegacyColumns[] = {QZR_NOZZLE_FIELDS(QZR_LEGACY_OF_NOZZLE)};
#undef QZR_LEGACY_OF_ROW
#undef QZR_LEGACY_OF_NOZZLE

// One field of a Target (a record, or the nozzle data of one), with the accessors of its type.
template <class Target>
struct FieldDescriptor {
    const char* name;  // as the tool shows it
    FieldType type;
    SectionKey section;
    LegacyColumn legacy;
    const char* unit;  // "" where no bank gives one
    void (*setText)(Target&, const char*);
    const char* (*getText)(const Target&);
    void (*setInteger)(Target&, int);
    int (*getInteger)(const Target&);
    void (*setReal)(Target&, double);
    double (*getReal)(const Target&);
};

template <class Target>
struct FieldList {
    const FieldDescriptor<Target>* first;
    size_t count;

    const FieldDescriptor<Target>* begin() const { return first; }
    const FieldDescriptor<Target>* end() const { return first + count; }
    size_t size() const { return count; }
    const FieldDescriptor<Target>& operator[](size_t i) const { return first[i]; }
};

// The common fields, read and written through a Record (CQZRIM or CQZRRTM); their section
// line prefixes are those of the Record's kind.
template <class Record>
FieldList<Record> CommonFields();
template <class Record>
FieldList<Record> CatalogueNumbers();
// The fields of the Record's own kind.
template <class Record>
FieldList<Record> KindFields();
FieldList<NozzleSpecification> NozzleFields();

}  // namespace qzr::records

// What the record classes make of the rows: a member of their Fields struct with its default,
// and the accessor pair the public header declares.
#define QZR_FIELD_MEMBER(Name, Type, Default) \
    ::qzr::records::FieldValue<::qzr::records::FieldType::k##Type>::Stored Name = Default;
#define QZR_FIELD_ACCESSORS(Class, Name, Type)                                                \
    ::qzr::records::FieldValue<::qzr::records::FieldType::k##Type>::Passed Class::Get##Name() \
        const {                                                                               \
        return ::qzr::records::Passed(m_fields->Name);                                        \
    }                                                                                         \
    void Class::Set##Name(                                                                    \
        ::qzr::records::FieldValue<::qzr::records::FieldType::k##Type>::Passed value) {       \
        ::qzr::records::Store(&m_fields->Name, value);                                        \
    }
#define QZR_ROW_MEMBER(Name, Type, Default, ...) QZR_FIELD_MEMBER(Name, Type, Default)
// SameFields<comparison>(a, b): the Fields of two records compared over the fields of LIST that
// the comparison covers, in table order, stopping at the first that differs.
#define QZR_FALSE_IF_DIFFERENT(Name, Type, Default, Compared, ...)      \
    if (::qzr::records::Covers(::qzr::records::Compared, comparison) && \
        !::qzr::records::SameValue(a.Name, b.Name)) {                   \
        return false;                                                   \
    }
#define QZR_DEFINE_SAME_FIELDS(LIST)                               \
    template <::qzr::records::Comparison comparison, class Fields> \
    bool SameFields(const Fields& a, const Fields& b) {            \
        LIST(QZR_FALSE_IF_DIFFERENT)                               \
        return true;                                               \
    }

#endif  // QZR_RECORDS_MACHINEFIELDS_H

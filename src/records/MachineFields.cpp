#include "records/MachineFields.h"

#include <type_traits>

namespace qzr::records {

namespace {

template <class Target>
struct Accessors {
    void (*setText)(Target&, const char*) = nullptr;
    const char* (*getText)(const Target&) = nullptr;
    void (*setInteger)(Target&, int) = nullptr;
    int (*getInteger)(const Target&) = nullptr;
    void (*setReal)(Target&, double) = nullptr;
    double (*getReal)(const Target&) = nullptr;
};

template <class Target>
constexpr Accessors<Target> AccessorsOf(void (*set)(Target&, const char*),
                                        const char* (*get)(const Target&)) {
    Accessors<Target> accessors;
    accessors.setText = set;
    accessors.getText = get;
    return accessors;
}
template <class Target>
constexpr Accessors<Target> AccessorsOf(void (*set)(Target&, int), int (*get)(const Target&)) {
    Accessors<Target> accessors;
    accessors.setInteger = set;
    accessors.getInteger = get;
    return accessors;
}
template <class Target>
constexpr Accessors<Target> AccessorsOf(void (*set)(Target&, double),
                                        double (*get)(const Target&)) {
    Accessors<Target> accessors;
    accessors.setReal = set;
    accessors.getReal = get;
    return accessors;
}

template <class Target>
constexpr FieldDescriptor<Target> Describe(const char* name, FieldType type, SectionKey section,
                                           LegacyColumn legacy, const char* unit,
                                           const Accessors<Target>& a) {
    return {name,      type,         section,      legacy,    unit,     a.setText,
            a.getText, a.setInteger, a.getInteger, a.setReal, a.getReal};
}

// A common field's line in a section of the Record's kind.
template <class Record>
constexpr SectionKey InSectionsOf(SectionKey section) {
    if (std::is_same_v<Record, CQZRRTM> && section.linePrefixInRTM != nullptr) {
        return section.Prefix(section.linePrefixInRTM);
    }
    return section;
}

#define QZR_TYPE(Type) FieldType::k##Type
#define QZR_PASSED(Type) FieldValue<FieldType::k##Type>::Passed

#define QZR_DESCRIBE_COMMON(Name, Type, Default, Shown, Section, Legacy, Unit)           \
    Describe<Record>(Shown, QZR_TYPE(Type), InSectionsOf<Record>(Section), Legacy, Unit, \
                     AccessorsOf<Record>(                                                \
                         +[](Record& r, QZR_PASSED(Type) value) { r.Set##Name(value); }, \
                         +[](const Record& r) -> QZR_PASSED(Type) { return r.Get##Name(); })),

#define QZR_DESCRIBE_KIND(Record, Name, Type, Section, Legacy, Unit)                     \
    Describe<Record>(#Name, QZR_TYPE(Type), Section, Legacy, Unit,                       \
                     AccessorsOf<Record>(                                                \
                         +[](Record& r, QZR_PASSED(Type) value) { r.Set##Name(value); }, \
                         +[](const Record& r) -> QZR_PASSED(Type) { return r.Get##Name(); })),
#define QZR_DESCRIBE_IMM(Name, Type, Default, Compared, Section, Legacy, Unit) \
    QZR_DESCRIBE_KIND(CQZRIM, Name, Type, Section, Legacy, Unit)
#define QZR_DESCRIBE_RTM(Name, Type, Default, Compared, Section, Legacy, Unit) \
    QZR_DESCRIBE_KIND(CQZRRTM, Name, Type, Section, Legacy, Unit)

#define QZR_DESCRIBE_NOZZLE(Name, Type, Default, Legacy)                             \
    Describe<NozzleSpecification>(                                                   \
        "NozzleSpecification." #Name, QZR_TYPE(Type), NoKey(), Legacy, "",           \
        AccessorsOf<NozzleSpecification>(                                            \
            +[](NozzleSpecification& n, QZR_PASSED(Type) value) { n.Name = value; }, \
            +[](const NozzleSpecification& n) -> QZR_PASSED(Type) { return n.Name; })),

// The public struct's defaults are the table's.
constexpr NozzleSpecification kNozzleDefaults{};
#define QZR_CHECK_NOZZLE_DEFAULT(Name, Type, Default, Legacy) \
    static_assert(kNozzleDefaults.Name == (Default), "NozzleSpecification::" #Name);
QZR_NOZZLE_FIELDS(QZR_CHECK_NOZZLE_DEFAULT)
#undef QZR_CHECK_NOZZLE_DEFAULT

template <class Target, size_t N>
FieldList<Target> ListOf(const FieldDescriptor<Target> (&fields)[N]) {
    return {fields, N};
}

}  // namespace

template <class Record>
FieldList<Record> CommonFields() {
    static const FieldDescriptor<Record> kFields[] = {QZR_COMMON_FIELDS(QZR_DESCRIBE_COMMON)};
    return ListOf(kFields);
}

template <class Record>
FieldList<Record> CatalogueNumbers() {
    static const FieldDescriptor<Record> kFields[] = {QZR_CATALOGUE_NUMBERS(QZR_DESCRIBE_COMMON)};
    return ListOf(kFields);
}

template FieldList<CQZRIM> CommonFields<CQZRIM>();
template FieldList<CQZRRTM> CommonFields<CQZRRTM>();
template FieldList<CQZRIM> CatalogueNumbers<CQZRIM>();
template FieldList<CQZRRTM> CatalogueNumbers<CQZRRTM>();

template <>
FieldList<CQZRIM> KindFields<CQZRIM>() {
    static const FieldDescriptor<CQZRIM> kFields[] = {QZR_IMM_FIELDS(QZR_DESCRIBE_IMM)};
    return ListOf(kFields);
}

template <>
FieldList<CQZRRTM> KindFields<CQZRRTM>() {
    static const FieldDescriptor<CQZRRTM> kFields[] = {QZR_RTM_FIELDS(QZR_DESCRIBE_RTM)};
    return ListOf(kFields);
}

FieldList<NozzleSpecification> NozzleFields() {
    static const FieldDescriptor<NozzleSpecification> kFields[] = {
        QZR_NOZZLE_FIELDS(QZR_DESCRIBE_NOZZLE)};
    return ListOf(kFields);
}

}  // namespace qzr::records

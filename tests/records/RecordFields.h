// Every field of the machine records, walked through the field table's descriptors, with what
// tests/data/records/fields.txt expects of it: its default and the identity comparisons that
// look at it. Defaults, copies, comparisons and bank round trips go field by field, so no field
// of the table can be missed, and the expectations stay a list of their own.
#ifndef QZR_TESTS_RECORDS_RECORDFIELDS_H
#define QZR_TESTS_RECORDS_RECORDFIELDS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "DataRows.h"
#include "records/MachineFields.h"

namespace qzr::records::testing {

// A number as the shortest text that reads back the same.
inline std::string Str(double value) {
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

// A value any setter takes: the number for numbers, a text made from it (or given) for texts.
struct Value {
    explicit Value(double n) : number(n), storage("v" + Str(n) + " x"), text(storage.c_str()) {}
    explicit Value(const char* given) : text(given) {}
    Value(const Value&) = delete;
    double number = 0;
    std::string storage;
    const char* text;
};

template <class R>
struct Field {
    std::string name;
    FieldType type;
    std::string defaultValue;  // as Str shows it
    std::string compared;      // the comparisons a difference in it alone turns false: f, s, n
    std::function<void(R&, const Value&)> set;
    std::function<std::string(const R&)> show;
};

// The descriptors of a list, reached from a record through `access`.
template <class R, class Target, class Access>
void AddDescribed(FieldList<Target> list, Access access, std::vector<Field<R>>* fields) {
    for (const FieldDescriptor<Target>& described : list) {
        const FieldDescriptor<Target>* d = &described;
        fields->push_back({d->name, d->type, "", "",
                           [d, access](R& r, const Value& v) {
                               Target& t = access(r);
                               d->type == FieldType::kText      ? d->setText(t, v.text)
                               : d->type == FieldType::kInteger ? d->setInteger(t, int(v.number))
                                                                : d->setReal(t, v.number);
                           },
                           [d, access](const R& r) {
                               const Target& t = access(r);
                               return d->type == FieldType::kText      ? d->getText(t)
                                      : d->type == FieldType::kInteger ? Str(d->getInteger(t))
                                                                       : Str(d->getReal(t));
                           }});
    }
}

// The record's fields in the order of the expectations; a field the table has and the list not,
// or the other way round, fails the test.
template <class R>
std::vector<Field<R>> Fields() {
    std::vector<Field<R>> described;
    const auto record = [](auto& r) -> auto& {
        return r;
    };
    AddDescribed(CatalogueNumbers<R>(), record, &described);
    AddDescribed(CommonFields<R>(), record, &described);
    AddDescribed(KindFields<R>(), record, &described);
    if constexpr (std::is_same_v<R, CQZRIM>) {
        AddDescribed(
            NozzleFields(), [](auto& r) -> auto& { return r.GetNozzleSpecification(); },
            &described);
    }
    std::vector<Field<R>> fields;
    const std::string kind = std::is_same_v<R, CQZRIM> ? "IM" : "RTM";
    for (const auto& row : qzr::test::ReadDataRows("records/fields.txt")) {
        const auto found = std::find_if(described.begin(), described.end(),
                                        [&](const Field<R>& f) { return f.name == row.fields[1]; });
        if (row.fields[0] != kind && row.fields[0] != "both") {
            continue;
        } else if (found == described.end()) {
            ADD_FAILURE() << row.where << ": no such field in the table";
            continue;
        }
        fields.push_back(*found);
        fields.back().defaultValue = row.fields[2];
        fields.back().compared = row.fields[3] == "-" ? "" : row.fields[3];
        described.erase(found);
    }
    for (const Field<R>& left : described) {
        ADD_FAILURE() << "the table's field " << left.name << " has no row in records/fields.txt";
    }
    return fields;
}

// A value of the field's own (by row and variant), never a default.
inline double Number(size_t row, int variant) {
    return 1000.0 * static_cast<double>(row + 1) + variant + 0.25;
}

template <class R>
R Filled(int variant) {
    R record;
    const std::vector<Field<R>> fields = Fields<R>();
    for (size_t row = 0; row < fields.size(); ++row) {
        fields[row].set(record, Value(Number(row, variant)));
    }
    return record;
}

}  // namespace qzr::records::testing

#endif  // QZR_TESTS_RECORDS_RECORDFIELDS_H

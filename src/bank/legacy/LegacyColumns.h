// The columns of the legacy tabular row as the field table gives them: the fields of an
// injection-moulding record and of its nozzle data that have a column, in column order. The
// order is worked out while compiling (kRowColumns), so that the row parser and writer expand
// it into direct accessor calls; LegacyColumns() gives the same columns with their descriptors
// (titles, units, names) for what runs once per file or only for a watched load.
#ifndef QZR_BANK_LEGACY_LEGACYCOLUMNS_H
#define QZR_BANK_LEGACY_LEGACYCOLUMNS_H

#include <array>
#include <cstddef>
#include <vector>

#include <QZRMachine/QZRIM.h>

#include "records/MachineFields.h"

namespace qzr::legacy {

// Where a column's field is in the table: its list and its index there.
enum class TableList { kCommon, kIMM, kNozzle };

struct ColumnPlace {
    TableList list;
    size_t index;  // in its list
    int column;
};

template <size_t N>
constexpr size_t CountColumns(const records::LegacyColumn (&columns)[N]) {
    size_t count = 0;
    for (const records::LegacyColumn& column : columns) {
        count += column.column >= 0 ? 1 : 0;
    }
    return count;
}

inline constexpr size_t kColumnCount = CountColumns(records::kCommonLegacyColumns) +
                                       CountColumns(records::kIMMLegacyColumns) +
                                       CountColumns(records::kNozzleLegacyColumns);

template <size_t N>
constexpr void AddPlaces(const records::LegacyColumn (&columns)[N], TableList list,
                         std::array<ColumnPlace, kColumnCount>* places, size_t* count) {
    for (size_t index = 0; index < N; ++index) {
        if (columns[index].column >= 0) {
            (*places)[(*count)++] = {list, index, columns[index].column};
        }
    }
}

constexpr std::array<ColumnPlace, kColumnCount> ColumnsInRowOrder() {
    std::array<ColumnPlace, kColumnCount> places{};
    size_t count = 0;
    AddPlaces(records::kCommonLegacyColumns, TableList::kCommon, &places, &count);
    AddPlaces(records::kIMMLegacyColumns, TableList::kIMM, &places, &count);
    AddPlaces(records::kNozzleLegacyColumns, TableList::kNozzle, &places, &count);
    for (size_t i = 1; i < count; ++i) {  // insertion sort by column
        for (size_t j = i; j > 0 && places[j - 1].column > places[j].column; --j) {
            const ColumnPlace moved = places[j];
            places[j] = places[j - 1];
            places[j - 1] = moved;
        }
    }
    return places;
}

// Every column of the writer's row after the ID, in column order, while compiling.
inline constexpr std::array<ColumnPlace, kColumnCount> kRowColumns = ColumnsInRowOrder();

constexpr const records::LegacyColumn& ColumnAt(const ColumnPlace& place) {
    return place.list == TableList::kCommon ? records::kCommonLegacyColumns[place.index]
           : place.list == TableList::kIMM  ? records::kIMMLegacyColumns[place.index]
                                            : records::kNozzleLegacyColumns[place.index];
}

// One column: a field of the record or of its nozzle data (exactly one of the two is set).
struct LegacyField {
    const records::FieldDescriptor<CQZRIM>* record = nullptr;
    const records::FieldDescriptor<NozzleSpecification>* nozzle = nullptr;

    const records::LegacyColumn& Column() const {
        return record != nullptr ? record->legacy : nozzle->legacy;
    }
    const char* Unit() const { return record != nullptr ? record->unit : nozzle->unit; }
    // The column's title, or the field's name where the row has no title for it.
    const char* Label() const;
};

// The same columns with their fields' descriptors.
const std::vector<LegacyField>& LegacyColumns();

}  // namespace qzr::legacy

#endif  // QZR_BANK_LEGACY_LEGACYCOLUMNS_H

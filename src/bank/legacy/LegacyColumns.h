// The columns of the legacy tabular row as the field table gives them: the fields of an
// injection-moulding record and of its nozzle data that have a column, in column order. The
// row parser takes each layout's trailing columns from them, the writer its whole row.
#ifndef QZR_BANK_LEGACY_LEGACYCOLUMNS_H
#define QZR_BANK_LEGACY_LEGACYCOLUMNS_H

#include <vector>

#include <QZRMachine/QZRIM.h>

#include "records/MachineFields.h"

namespace qzr::legacy {

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

// Every column of the writer's row after the ID, in column order.
const std::vector<LegacyField>& LegacyColumns();

}  // namespace qzr::legacy

#endif  // QZR_BANK_LEGACY_LEGACYCOLUMNS_H

#include "bank/legacy/LegacyColumns.h"

namespace qzr::legacy {

const char* LegacyField::Label() const {
    const char* title = Column().title;
    if (title != nullptr) {
        return title;
    }
    return record != nullptr ? record->name : nozzle->name;
}

namespace {

std::vector<LegacyField> SortedColumns() {
    std::vector<LegacyField> columns;
    for (const ColumnPlace& place : kRowColumns) {
        switch (place.list) {
            case TableList::kCommon:
                columns.push_back({&records::CommonFields<CQZRIM>()[place.index], nullptr});
                break;
            case TableList::kIMM:
                columns.push_back({&records::KindFields<CQZRIM>()[place.index], nullptr});
                break;
            case TableList::kNozzle:
                columns.push_back({nullptr, &records::NozzleFields()[place.index]});
                break;
        }
    }
    return columns;
}

}  // namespace

const std::vector<LegacyField>& LegacyColumns() {
    static const std::vector<LegacyField> kColumns = SortedColumns();
    return kColumns;
}

}  // namespace qzr::legacy

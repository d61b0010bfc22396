#include "bank/legacy/LegacyColumns.h"

#include <algorithm>

namespace qzr::legacy {

const char* LegacyField::Label() const {
    const char* title = Column().title;
    if (title != nullptr) {
        return title;
    }
    return record != nullptr ? record->name : nozzle->name;
}

namespace {

LegacyField FieldOf(const records::FieldDescriptor<CQZRIM>& field) {
    return {&field, nullptr};
}
LegacyField FieldOf(const records::FieldDescriptor<NozzleSpecification>& field) {
    return {nullptr, &field};
}

template <class Target>
void AddColumns(records::FieldList<Target> fields, std::vector<LegacyField>* columns) {
    for (const records::FieldDescriptor<Target>& field : fields) {
        if (field.legacy.column >= 0) {
            columns->push_back(FieldOf(field));
        }
    }
}

std::vector<LegacyField> SortedColumns() {
    std::vector<LegacyField> columns;
    AddColumns(records::CommonFields<CQZRIM>(), &columns);
    AddColumns(records::KindFields<CQZRIM>(), &columns);
    AddColumns(records::NozzleFields(), &columns);
    std::sort(columns.begin(), columns.end(), [](const LegacyField& a, const LegacyField& b) {
        return a.Column().column < b.Column().column;
    });
    return columns;
}

}  // namespace

const std::vector<LegacyField>& LegacyColumns() {
    static const std::vector<LegacyField> kColumns = SortedColumns();
    return kColumns;
}

}  // namespace qzr::legacy

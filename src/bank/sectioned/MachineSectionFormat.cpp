#include "bank/sectioned/MachineSectionFormat.h"

#include <algorithm>
#include <cstring>

namespace qzr::bank {

namespace {

// Every field of a kind counted, whether or not sections carry it: the slots of a section
// must fit in a SlotSet.
#define QZR_PLUS_ONE(...) +1
static_assert(0 QZR_COMMON_FIELDS(QZR_PLUS_ONE) QZR_IMM_FIELDS(QZR_PLUS_ONE) <= kMaxSectionKeys);
static_assert(0 QZR_COMMON_FIELDS(QZR_PLUS_ONE) QZR_RTM_FIELDS(QZR_PLUS_ONE) <= kMaxSectionKeys);
#undef QZR_PLUS_ONE

template <class Record>
void AddKeys(records::FieldList<Record> fields, MachineSectionFormat<Record>* format) {
    for (const records::FieldDescriptor<Record>& field : fields) {
        const records::SectionKey& section = field.section;
        if (section.key == nullptr) {
            continue;
        }
        std::string prefix;
        if (section.linePrefix != nullptr) {
            prefix = section.linePrefix;
        } else {
            prefix = section.key;
            prefix.resize(std::max(prefix.size(), records::kSectionKeyWidth<Record>), ' ');
            prefix += " = ";
        }
        format->rows.push_back({section.key, std::move(prefix), &field});
    }
}

// Writing order, except that a key with a readAfter is read right after the key it names.
template <class Record>
std::vector<size_t> ReadOrder(const std::vector<MachineKey<Record>>& rows) {
    std::vector<size_t> order;
    for (size_t row = 0; row < rows.size(); ++row) {
        if (rows[row].field->section.readAfter == nullptr) {
            order.push_back(row);
        }
    }
    for (size_t row = 0; row < rows.size(); ++row) {
        if (const char* after = rows[row].field->section.readAfter) {
            for (size_t slot = 0; slot < order.size(); ++slot) {
                if (std::strcmp(rows[order[slot]].key, after) == 0) {
                    order.insert(order.begin() + static_cast<std::ptrdiff_t>(slot) + 1, row);
                    break;
                }
            }
        }
    }
    return order;
}

template <class Record>
MachineSectionFormat<Record> BuildFormat() {
    MachineSectionFormat<Record> format;
    AddKeys(records::CommonFields<Record>(), &format);
    AddKeys(records::KindFields<Record>(), &format);
    format.readOrder = ReadOrder(format.rows);
    return format;
}

}  // namespace

const MachineSectionFormat<CQZRIM>& IMMSectionFormat() {
    static const MachineSectionFormat<CQZRIM> kFormat = BuildFormat<CQZRIM>();
    return kFormat;
}

const MachineSectionFormat<CQZRRTM>& RTMSectionFormat() {
    static const MachineSectionFormat<CQZRRTM> kFormat = BuildFormat<CQZRRTM>();
    return kFormat;
}

}  // namespace qzr::bank

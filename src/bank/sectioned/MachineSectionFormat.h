// MachineSectionFormat: the keys of a machine section of a sectioned bank, for one kind of
// machine, and the one routine that fills a record from a section.
//
// The keys are the fields of the record's kind that the field table (records/MachineFields.h)
// gives a section line, common fields first: each with the text the writer puts before the
// value (the key padded so that the "=" signs of a section stand in one column, or the
// table's own prefix). The rows are in the order the writer puts the lines; readOrder gives
// the order in which a section is read, which matters for the numeric temporaries (see
// FillMachineSection).
#ifndef QZR_BANK_SECTIONED_MACHINESECTIONFORMAT_H
#define QZR_BANK_SECTIONED_MACHINESECTIONFORMAT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "bank/sectioned/QZRFileIO.h"
#include "platform/CNumbers.h"
#include "records/MachineFields.h"

namespace qzr::bank {

template <class Record>
struct MachineKey {
    const char* key;
    std::string linePrefix;  // written before the value: "Maker   = " and the like
    const records::FieldDescriptor<Record>* field;
};

// One bit per reading-order slot: the keys whose value did not convert to its number.
using SlotSet = uint64_t;
constexpr size_t kMaxSectionKeys = 64;

template <class Record>
struct MachineSectionFormat {
    std::vector<MachineKey<Record>> rows;  // in writing order
    std::vector<size_t> readOrder;  // row positions in reading order; Maker and Grade come first

    const MachineKey<Record>& ReadRow(size_t slot) const { return rows[readOrder[slot]]; }
    // The keys in reading order: the key slots of a SectionedBankIndex built for this kind.
    std::vector<std::string> KeysInReadOrder() const {
        std::vector<std::string> keys;
        for (size_t slot = 0; slot < rows.size(); ++slot) {
            keys.emplace_back(ReadRow(slot).key);
        }
        return keys;
    }
};

const MachineSectionFormat<CQZRIM>& IMMSectionFormat();
const MachineSectionFormat<CQZRRTM>& RTMSectionFormat();

// Fills machine from one machine section. lookup(slot, key, &value) answers the key at the
// given reading-order slot with CQZRFileIO's result codes; the reference path answers it with
// CQZRFileIO, a whole load with a SectionedBankIndex, and both go through this one routine.
//
// "Maker" and "Grade" are required (false when either is not found; a maker already set
// stays). Every other key is optional and a missing key leaves its attribute alone. The record
// is not cleared first.
//
// Numbers: one real and one integer temporary serve all the keys of the section, both start
// at 0. A value that does not convert (an empty one included) leaves its temporary as it was,
// so the attribute gets the previous number of the same kind in that section, or 0 for the
// first one. Banks the library writes never hold such values; the zero start makes files that
// do read the same every time. Their slots go to *notConverted when it is given.
template <class Record, class Lookup>
bool FillMachineSection(const MachineSectionFormat<Record>& format, const Lookup& lookup,
                        Record& machine, SlotSet* notConverted = nullptr) {
    constexpr size_t kRequiredKeys = 2;
    double real = 0.0;
    int integer = 0;
    SlotSet failed = 0;
    for (size_t slot = 0; slot < format.rows.size(); ++slot) {
        const MachineKey<Record>& row = format.ReadRow(slot);
        const char* value = nullptr;
        if (lookup(slot, row.key, &value) != CQZRFileIO::kFound) {
            if (slot < kRequiredKeys) {
                return false;
            }
            continue;
        }
        const records::FieldDescriptor<Record>& field = *row.field;
        switch (field.type) {
            case records::FieldType::kText:
                field.setText(machine, value);
                break;
            case records::FieldType::kInteger:
                if (value[0] == '\0' || !qzr::platform::ScanInt(value, &integer)) {
                    failed |= SlotSet{1} << slot;
                }
                field.setInteger(machine, integer);
                break;
            case records::FieldType::kReal:
                if (!qzr::platform::ScanDouble(value, &real)) {
                    failed |= SlotSet{1} << slot;
                }
                field.setReal(machine, real);
                break;
        }
    }
    if (notConverted != nullptr) {
        *notConverted = failed;
    }
    return true;
}

}  // namespace qzr::bank

#endif  // QZR_BANK_SECTIONED_MACHINESECTIONFORMAT_H

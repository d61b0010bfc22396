// Every attribute of a machine record as the tool shows it, as the field table
// (records/MachineFields.h) describes it: its name, its value, its unit where one is known,
// and which bank formats carry it.
#ifndef QZRBANK_MACHINEDETAILS_H
#define QZRBANK_MACHINEDETAILS_H

#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "TextEncoding.h"

namespace qzrbank {

struct Attribute {
    std::string name;
    std::string key;  // the line key of a sectioned bank; empty where that format lacks the field
    bool numeric = false;
    bool integer = false;          // numeric and whole by nature (counts, ids, kinds)
    double number = 0.0;           // numeric attributes
    std::string text;              // the value as shown (the number formatted, or the text itself)
    std::string unit;              // empty where no format gives one
    bool inLegacy = false;         // a column of the legacy tabular bank
    bool inSectioned = false;      // a key of the sectioned bank of its kind
    bool catalogueNumber = false;  // issued by the catalogue (ids), in no file
};

std::vector<Attribute> DescribeMachine(const CQZRIM& machine);
std::vector<Attribute> DescribeMachine(const CQZRRTM& machine);

// Turns the texts among a machine's attributes from the bank's code page into UTF-8; false, with
// *error naming the machine and the field, at a byte the code page lacks.
bool DecodeTexts(const TextEncoding& encoding, const std::string& machine,
                 std::vector<Attribute>* attributes, std::string* error);

// "maker - grade", as the library forms a machine's display name.
std::string DisplayName(const CQZRMoldingMachine& machine);

}  // namespace qzrbank

#endif  // QZRBANK_MACHINEDETAILS_H

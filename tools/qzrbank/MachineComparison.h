// Two sets of machines compared attribute by attribute, the machines matched by maker and grade
// under the library's name rule. The honest write compares a catalogue with what its bank reads
// back; diff compares two banks.
#ifndef QZRBANK_MACHINECOMPARISON_H
#define QZRBANK_MACHINECOMPARISON_H

#include <functional>
#include <string>
#include <vector>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "MachineDetails.h"
#include "TextEncoding.h"

namespace qzrbank {

// The bank formats the tool reads and writes machines of.
enum class BankFormat { kLegacy, kSectionedIMM, kSectionedRTM };

// True when a bank of the format holds the attribute.
bool CarriedBy(const Attribute& attribute, BankFormat format);
// Every attribute of a machine of the format's kind, with its default value.
std::vector<Attribute> AttributesOf(BankFormat format);
// "legacy user bank", "sectioned IMM user bank", "sectioned RTM user bank".
const char* FormatName(BankFormat format);

// One machine as compared: its kind ("IMM" or "RTM"), names and every attribute.
struct ComparedMachine {
    std::string kind;
    std::string maker;
    std::string grade;
    std::vector<Attribute> attributes;
};

// Every machine of a catalogue in global index order.
std::vector<ComparedMachine> MachinesToCompare(const CQZRMoldingMachineCtrl& catalogue);

struct AttributeChange {
    std::string name;
    std::string before;  // texts as they are, numbers with the digits that tell them apart
    std::string after;
    std::string unit;
    bool numeric = false;
    bool carried = true;  // false: the attribute is one the compared format does not hold
};

// A value of a change as messages show it: a text quoted, a number with its unit.
std::string Shown(const AttributeChange& change, const std::string& value);

struct MachineDifference {
    enum class What { kAdded, kRemoved, kChanged };
    What what = What::kChanged;
    std::string kind;
    std::string maker;
    std::string grade;
    std::vector<AttributeChange> changes;  // kChanged only
};

using AttributeFilter = std::function<bool(const Attribute&)>;

// In before's order, the machines of `before` missing from `after` (kRemoved) and those that
// differ in an attribute `compared` accepts (kChanged, `carried` telling a format's loss from a
// change); then those only `after` holds (kAdded). A machine repeated under one name is matched
// with the repetition of the same rank.
std::vector<MachineDifference> CompareMachines(const std::vector<ComparedMachine>& before,
                                               const std::vector<ComparedMachine>& after,
                                               const AttributeFilter& compared,
                                               const AttributeFilter& carried);

// "maker - grade".
std::string DisplayName(const MachineDifference& machine);

// The texts of the differences (maker, grade, text values) from the bank's code page into
// UTF-8. With error, false at the first byte the code page lacks, *error naming the machine and
// field; without, such bytes are written as "\x81" (for reports, which must not fail).
bool DecodeDifferences(const TextEncoding& encoding, std::vector<MachineDifference>* differences,
                       std::string* error = nullptr);

}  // namespace qzrbank

#endif  // QZRBANK_MACHINECOMPARISON_H

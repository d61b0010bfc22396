#include "MachineComparison.h"

#include <cmath>
#include <deque>
#include <map>
#include <utility>

#include "BankLoading.h"
#include "Finding.h"
#include "platform/CNumbers.h"
#include "records/NameRule.h"

namespace qzrbank {

namespace {

std::string MatchKey(const std::string& maker, const std::string& grade) {
    return qzr::records::NameKey(maker) + '\0' + qzr::records::NameKey(grade);
}

// Two numbers that print alike yet differ are shown with every digit that tells them apart.
std::string ExactNumber(double value) {
    char text[qzr::platform::kLongestNumber];
    return std::string(text, qzr::platform::WriteG(value, 17, text));
}

std::string Value(const Attribute& attribute, bool exact) {
    return exact ? ExactNumber(attribute.number) : attribute.text;
}

bool SameAttribute(const Attribute& a, const Attribute& b) {
    return a.numeric ? a.number == b.number || (std::isnan(a.number) && std::isnan(b.number))
                     : a.text == b.text;
}

std::vector<AttributeChange> Changes(const ComparedMachine& was, const ComparedMachine& is,
                                     const AttributeFilter& compared,
                                     const AttributeFilter& carried) {
    std::vector<AttributeChange> changes;
    if (was.kind != is.kind) {
        changes.push_back({"Kind", was.kind, is.kind, "", false, true});
        return changes;
    }
    for (size_t k = 0; k < was.attributes.size() && k < is.attributes.size(); ++k) {
        const Attribute& old = was.attributes[k];
        const Attribute& now = is.attributes[k];
        if (old.catalogueNumber || !compared(old) || SameAttribute(old, now)) {
            continue;
        }
        const bool exact = old.numeric && old.text == now.text;
        changes.push_back(
            {old.name, Value(old, exact), Value(now, exact), old.unit, old.numeric, carried(old)});
    }
    return changes;
}

MachineDifference Difference(MachineDifference::What what, const ComparedMachine& machine) {
    MachineDifference difference;
    difference.what = what;
    difference.kind = machine.kind;
    difference.maker = machine.maker;
    difference.grade = machine.grade;
    return difference;
}

template <class Record>
void AddMachines(const std::vector<Record>& records, const char* kind,
                 std::vector<ComparedMachine>* machines) {
    for (const Record& record : records) {
        machines->push_back({kind, record.GetMaker(), record.GetGrade(), DescribeMachine(record)});
    }
}

}  // namespace

std::string Shown(const AttributeChange& change, const std::string& value) {
    if (!change.numeric) {
        return Quoted(value);
    }
    return change.unit.empty() ? value : value + " " + change.unit;
}

bool CarriedBy(const Attribute& attribute, BankFormat format) {
    return format == BankFormat::kLegacy ? attribute.inLegacy : attribute.inSectioned;
}

std::vector<Attribute> AttributesOf(BankFormat format) {
    return format == BankFormat::kSectionedRTM ? DescribeMachine(CQZRRTM())
                                               : DescribeMachine(CQZRIM());
}

const char* FormatName(BankFormat format) {
    switch (format) {
        case BankFormat::kLegacy:
            return "legacy user bank";
        case BankFormat::kSectionedIMM:
            return "sectioned IMM user bank";
        case BankFormat::kSectionedRTM:
            return "sectioned RTM user bank";
    }
    return "";
}

std::vector<ComparedMachine> MachinesToCompare(const CQZRMoldingMachineCtrl& catalogue) {
    std::vector<ComparedMachine> machines;
    if (catalogue.GetFileType() == 1) {
        AddMachines(RTMMachines(catalogue), "RTM", &machines);
    } else {
        AddMachines(IMMMachines(catalogue), "IMM", &machines);
    }
    return machines;
}

std::vector<MachineDifference> CompareMachines(const std::vector<ComparedMachine>& before,
                                               const std::vector<ComparedMachine>& after,
                                               const AttributeFilter& compared,
                                               const AttributeFilter& carried) {
    std::map<std::string, std::deque<size_t>> unmatched;
    for (size_t i = 0; i < after.size(); ++i) {
        unmatched[MatchKey(after[i].maker, after[i].grade)].push_back(i);
    }
    std::vector<bool> matched(after.size(), false);
    std::vector<MachineDifference> differences;
    for (const ComparedMachine& was : before) {
        std::deque<size_t>& same = unmatched[MatchKey(was.maker, was.grade)];
        if (same.empty()) {
            differences.push_back(Difference(MachineDifference::What::kRemoved, was));
            continue;
        }
        const ComparedMachine& is = after[same.front()];
        matched[same.front()] = true;
        same.pop_front();
        MachineDifference difference = Difference(MachineDifference::What::kChanged, was);
        difference.changes = Changes(was, is, compared, carried);
        if (!difference.changes.empty()) {
            differences.push_back(std::move(difference));
        }
    }
    for (size_t i = 0; i < after.size(); ++i) {
        if (!matched[i]) {
            differences.push_back(Difference(MachineDifference::What::kAdded, after[i]));
        }
    }
    return differences;
}

std::string DisplayName(const MachineDifference& machine) {
    return machine.maker + " - " + machine.grade;
}

bool DecodeDifferences(const TextEncoding& encoding, std::vector<MachineDifference>* differences,
                       std::string* error) {
    for (MachineDifference& machine : *differences) {
        const std::string name =
            encoding.DecodeOrEscape(machine.maker) + " - " + encoding.DecodeOrEscape(machine.grade);
        const auto decode = [&](const std::string& field, std::string* text) {
            std::string utf8;
            if (error == nullptr) {
                utf8 = encoding.DecodeOrEscape(*text);
            } else if (!encoding.DecodeField(*text, name, field, &utf8, error)) {
                return false;
            }
            *text = std::move(utf8);
            return true;
        };
        if (!decode("Maker", &machine.maker) || !decode("Grade", &machine.grade)) {
            return false;
        }
        for (AttributeChange& change : machine.changes) {
            if (!change.numeric &&
                (!decode(change.name, &change.before) || !decode(change.name, &change.after))) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace qzrbank

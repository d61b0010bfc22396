// qzrbank diff: the machines two banks hold, compared as the honest write compares a bank with
// what it reads back (MachineComparison.h), over the attributes both banks' formats hold.
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankFiles.h"
#include "BankLoading.h"
#include "Commands.h"
#include "MachineComparison.h"
#include "TextEncoding.h"
#include "TextTable.h"
#include "bank/BankKind.h"

namespace qzrbank {

namespace {

struct DiffSide {
    std::string path;
    int kind = -1;
    BankFormat format = BankFormat::kSectionedIMM;
    CQZRMoldingMachineCtrl catalogue;
};

BankFormat FormatOfKind(int kind) {
    switch (kind) {
        case qzr::bank::OldIMMSystemBank:
        case qzr::bank::OldIMMUserBank:
            return BankFormat::kLegacy;
        case qzr::bank::RTMSystemBankFiles:
        case qzr::bank::RTMUserBank:
            return BankFormat::kSectionedRTM;
        default:
            return BankFormat::kSectionedIMM;
    }
}

bool LoadSide(const std::string& path, DiffSide* side, std::ostream& err) {
    side->path = path;
    const std::string problem = ReadProblem(path);
    if (!problem.empty()) {
        err << "qzrbank: " << path << ": " << problem << '\n';
        return false;
    }
    side->kind = RecognizeBankFile(path).kind;
    BankLoad load = BankLoad::IMMUser;
    if (!LoadOfKind(side->kind, &load) || !LoadBank(load, path, &side->catalogue)) {
        err << "qzrbank: " << path << ": "
            << (side->kind < 0 ? "not a bank (no loader recognises its header)"
                               : "refused by its loader (run 'qzrbank check' on it)")
            << '\n';
        return false;
    }
    side->format = FormatOfKind(side->kind);
    return true;
}

const char* WhatName(MachineDifference::What what) {
    switch (what) {
        case MachineDifference::What::kAdded:
            return "added";
        case MachineDifference::What::kRemoved:
            return "removed";
        case MachineDifference::What::kChanged:
            return "changed";
    }
    return "";
}

// The attributes one side's format holds and the other's does not.
std::vector<std::string> NotCompared(const DiffSide& a, const DiffSide& b) {
    std::vector<std::string> names;
    for (const Attribute& attribute : AttributesOf(a.format)) {
        if (CarriedBy(attribute, a.format) != CarriedBy(attribute, b.format)) {
            names.push_back(attribute.name);
        }
    }
    return names;
}

// One row per changed attribute, and one per machine added or removed. The table shows values
// as messages do (texts quoted, numbers with their unit); CSV gives them bare, the unit apart.
TextTable DiffTable(const std::vector<MachineDifference>& differences, bool forCsv) {
    TextTable table;
    table.header = {"Change", "Maker", "Grade", "Attribute", "A", "B"};
    if (forCsv) {
        table.header.push_back("Unit");
    }
    table.rightAligned.assign(table.header.size(), false);
    for (const MachineDifference& machine : differences) {
        const std::string what = WhatName(machine.what);
        if (machine.changes.empty()) {
            table.rows.push_back({what, machine.maker, machine.grade, "", "", ""});
            if (forCsv) {
                table.rows.back().emplace_back();
            }
        }
        for (const AttributeChange& change : machine.changes) {
            table.rows.push_back({what, machine.maker, machine.grade, change.name,
                                  forCsv ? change.before : Shown(change, change.before),
                                  forCsv ? change.after : Shown(change, change.after)});
            if (forCsv) {
                table.rows.back().push_back(change.unit);
            }
        }
    }
    return table;
}

void PrintDiffTable(size_t machines, const std::vector<MachineDifference>& differences,
                    const std::vector<std::string>& notCompared, std::ostream& out) {
    if (!notCompared.empty()) {
        std::string names;
        for (const std::string& name : notCompared) {
            names += (names.empty() ? "" : ", ") + name;
        }
        out << "not compared (one format only): " << names << '\n';
    }
    if (differences.empty()) {
        out << machines << (machines == 1 ? " machine" : " machines") << ", no differences\n";
    } else {
        PrintTable(out, DiffTable(differences, false));
    }
}

void PrintDiffJson(const DiffSide& a, const DiffSide& b,
                   const std::vector<MachineDifference>& differences,
                   const std::vector<std::string>& notCompared, std::ostream& out) {
    nlohmann::ordered_json machines = nlohmann::ordered_json::array();
    for (const MachineDifference& machine : differences) {
        nlohmann::ordered_json changes = nlohmann::ordered_json::array();
        for (const AttributeChange& change : machine.changes) {
            changes.push_back({{"attribute", change.name},
                               {"a", change.before},
                               {"b", change.after},
                               {"unit", change.unit}});
        }
        machines.push_back({{"change", WhatName(machine.what)},
                            {"maker", machine.maker},
                            {"grade", machine.grade},
                            {"attributes", std::move(changes)}});
    }
    const nlohmann::ordered_json json = {{"a", {{"path", a.path}, {"kind", BankKindName(a.kind)}}},
                                         {"b", {{"path", b.path}, {"kind", BankKindName(b.kind)}}},
                                         {"notCompared", notCompared},
                                         {"machines", std::move(machines)}};
    out << JsonText(json) << '\n';
}

}  // namespace

int RunDiff(const DiffOptions& options, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(options.encoding, err);
    DiffSide a;
    DiffSide b;
    if (!encoding || !LoadSide(options.a, &a, err) || !LoadSide(options.b, &b, err)) {
        return kExitError;
    }
    const auto both = [&a, &b](const Attribute& attribute) {
        return CarriedBy(attribute, a.format) && CarriedBy(attribute, b.format);
    };
    const std::vector<ComparedMachine> machines = MachinesToCompare(a.catalogue);
    std::vector<MachineDifference> differences = CompareMachines(
        machines, MachinesToCompare(b.catalogue), both, [](const Attribute&) { return true; });
    std::string error;
    if (!DecodeDifferences(*encoding, &differences, &error)) {
        err << "qzrbank: " << options.b << ": " << error << '\n';
        return kExitError;
    }
    const std::vector<std::string> notCompared = NotCompared(a, b);
    if (options.format == "json") {
        PrintDiffJson(a, b, differences, notCompared, out);
    } else if (options.format == "csv") {
        PrintCsv(out, DiffTable(differences, true));
    } else {
        PrintDiffTable(machines.size(), differences, notCompared, out);
    }
    return differences.empty() ? kExitOk : kExitNegative;
}

}  // namespace qzrbank

#include "BankChecker.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <system_error>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankCheckerSteps.h"
#include "BankLoading.h"
#include "BankText.h"
#include "MachineDetails.h"

namespace qzrbank {

namespace {

void AddLineFindings(std::string_view text, size_t limit, std::vector<Finding>* findings) {
    for (const PhysicalLine& line : SplitPhysicalLines(text)) {
        const size_t characters = line.length + (line.hasLineEnd ? 1 : 0);
        if (characters > limit) {
            findings->push_back(
                {line.line, "line is " + std::to_string(characters) + " characters long" +
                                (line.hasLineEnd ? " with its line end" : "") +
                                ": the loaders read at most " + std::to_string(limit) +
                                " at a time and take the rest for a line of its own"});
        }
        if (line.hasNul) {
            findings->push_back(
                {line.line, "holds a NUL byte: the loaders see nothing of the line after it"});
        }
    }
}

// Name-rule buckets: the library folds names with the C library's lower-casing, which is
// plain ASCII folding in the "C" locale; the record's own comparison then decides.
std::string FoldedName(const CQZRMoldingMachine& machine) {
    std::string key = std::string(machine.GetMaker()) + '\n' + machine.GetGrade();
    for (char& c : key) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return key;
}

template <class Record>
void ReportDuplicates(const std::vector<Record>& machines, const std::vector<LoadedEntry>& entries,
                      std::vector<Finding>* findings) {
    std::map<std::string, std::vector<size_t>> byName;
    for (size_t j = 0; j < machines.size(); ++j) {
        std::vector<size_t>& same = byName[FoldedName(machines[j])];
        for (size_t i : same) {
            if (!machines[i].IsNameIdentity(machines[j])) {
                continue;
            }
            const std::string first = std::to_string(entries[i].line);
            findings->push_back(
                {entries[j].line,
                 Quoted(DisplayName(machines[j])) +
                     (machines[i].IsMachineIdentity(machines[j])
                          ? " repeats the machine of line " + first + " with identical data"
                          : " has the maker and grade of line " + first +
                                " with other data: lookups by maker and grade find only the "
                                "first")});
            break;
        }
        same.push_back(j);
    }
}

template <class Record>
std::vector<Record> InLoadOrder(std::vector<Record> machines) {
    std::stable_sort(machines.begin(), machines.end(), [](const Record& a, const Record& b) {
        return a.GetMachineID() < b.GetMachineID();
    });
    return machines;
}

void ReportRemarks(const std::vector<CQZRIM>& machines, const std::vector<LoadedEntry>& entries,
                   std::vector<Finding>* findings) {
    for (size_t i = 0; i < machines.size(); ++i) {
        const std::optional<std::string>& intended = entries[i].intendedRemark;
        if (intended && *intended != machines[i].GetRemark()) {
            findings->push_back({entries[i].line, "the remark reads back as " +
                                                      Quoted(machines[i].GetRemark()) + ", not " +
                                                      Quoted(*intended)});
        }
    }
}

template <class Record>
void CompareWithLibrary(const std::vector<Record>& machines, const SimulatedLoad& load,
                        CheckReport* report) {
    report->machinesLoaded = static_cast<int>(machines.size());
    if (machines.size() != load.loaded.size()) {
        report->findings.push_back({1, "the library loads " + std::to_string(machines.size()) +
                                           " machines where this check expects " +
                                           std::to_string(load.loaded.size()) +
                                           ": findings on single machines may be off"});
        return;
    }
    ReportDuplicates(machines, load.loaded, &report->findings);
}

void PairWithLibrary(const std::string& path, const SimulatedLoad& load, CheckReport* report) {
    BankLoad how = BankLoad::OldIMMSystem;
    LoadOfKind(report->header.kind, &how);
    CQZRMoldingMachineCtrl catalogue;
    LoadBank(how, path, &catalogue);
    if (how == BankLoad::RTMSystemFolder || how == BankLoad::RTMUser) {
        CompareWithLibrary(InLoadOrder(RTMMachines(catalogue)), load, report);
    } else {
        const std::vector<CQZRIM> machines = InLoadOrder(IMMMachines(catalogue));
        CompareWithLibrary(machines, load, report);
        if (machines.size() == load.loaded.size()) {
            ReportRemarks(machines, load.loaded, &report->findings);
        }
    }
    if (load.statedCount && load.statedCount->count != report->machinesLoaded) {
        report->findings.push_back(
            {load.statedCount->line,
             Quoted(load.statedCount->key) + " is " + std::to_string(load.statedCount->count) +
                 ", but " + std::to_string(report->machinesLoaded) +
                 (report->machinesLoaded == 1 ? " machine loads" : " machines load")});
    }
}

}  // namespace

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (c == '\t') {
            quoted += "\\t";
        } else if (c == '\r') {
            quoted += "\\r";
        } else if (c == '\n') {
            quoted += "\\n";
        } else if (byte < 0x20 || byte == 0x7f) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", byte);
            quoted += escape;
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

std::vector<std::string> LegacyTextHazards(const std::string& attribute, const std::string& value,
                                           bool isName) {
    std::vector<std::string> hazards;
    const std::string named = attribute + " " + Quoted(value);
    if (isName && value.empty()) {
        hazards.push_back(attribute + " is empty: in a legacy bank the row's fields shift");
    }
    if (isName && value.find(',') != std::string::npos) {
        hazards.push_back(named + " holds a comma: in a legacy bank it breaks the row");
    }
    if (value.find('\n') != std::string::npos) {
        hazards.push_back(named + " holds a line end: in a legacy bank it splits the row");
    }
    struct Marker {
        const char* text;
        const char* effect;
    };
    const Marker markers[] = {
        {"Version", "the loader takes the row for a version line and does not load it"},
        {"TotalNo", "a legacy user bank with this row fails to load"},
        {"Database]", "the loader takes the row for the database marker and does not load it"},
        {"[EOF]", "the loader stops reading at this row"},
    };
    for (const Marker& marker : markers) {
        if (value.find(marker.text) != std::string::npos) {
            hazards.push_back(named + " holds " + Quoted(marker.text) + ": in a legacy bank " +
                              marker.effect);
        }
    }
    return hazards;
}

CheckReport CheckBankFile(const std::string& path) {
    CheckReport report;
    std::string text;
    if (!ReadBankText(path, &text)) {
        std::error_code error;
        const std::filesystem::path native(NativePath(path));
        report.readable = false;
        report.error = !std::filesystem::exists(native, error)        ? "no such file"
                       : std::filesystem::is_directory(native, error) ? "is a folder, not a file"
                                                                      : "cannot be read";
        return report;
    }
    report.header = RecognizeBankHeader(text);
    const BankHeader& header = report.header;
    if (!header.recognized) {
        report.findings.push_back(
            {header.problemLine, "no loader accepts this header: " + header.problem});
        return report;
    }
    const bool sectioned = header.form == HeaderForm::Sectioned;
    AddLineFindings(text, sectioned ? kSectionedLineChars : kLegacyLineChars, &report.findings);
    if (!sectioned && IsSectionedKind(header.kind)) {
        report.findings.push_back(
            {2, "version " + std::to_string(header.version) +
                    " is 9000 or above: the loaders take the file for a sectioned bank and read "
                    "no machine from it"});
    } else {
        SimulatedLoad load =
            sectioned ? SimulateSectionedLoad(text, header) : SimulateLegacyLoad(text, header);
        report.findings.insert(report.findings.end(), load.findings.begin(), load.findings.end());
        if (!load.noMachinesRead) {
            PairWithLibrary(path, load, &report);
        }
    }
    std::stable_sort(report.findings.begin(), report.findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return report;
}

}  // namespace qzrbank

// qzrbank export: every machine of a bank with every attribute, as CSV or JSON in UTF-8, for
// spreadsheets, scripts and `qzrbank import`.
//
// Columns, in this order: Kind ("IMM" or "RTM"), then every field of the field table that a
// record holds, by its tool name (as `show` names it): the fields of an injection-moulding record
// first, in `show` order, then those only a transfer-moulding record has. The numbers the
// catalogue gives a machine when it files it (MakerID, MachineID) are not exported.
//
// CSV: a header line with the column names, then one line per machine in load order. A cell is
// empty where the machine's kind lacks the field. Cells holding a comma, a double quote or a
// line end are quoted, a quote doubled ("A ""B"""). Lines end with "\n".
//
// JSON: an array of objects, one per machine in load order, each with "Kind" and the fields of
// its own kind only, in column order. Texts are strings; numbers are JSON numbers, except those
// JSON has no form for, written as the strings "nan", "inf" and "-inf".
//
// Texts are decoded from the code page --encoding names (default cp1252) to UTF-8; a byte the
// code page lacks is an error naming the machine and field (exit 2, nothing written). Numbers
// are written in the shortest form that reads back as the same double (integers as integers),
// with '.' as decimal point whatever the locale.
#include "ExportCommand.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "BankFiles.h"
#include "Commands.h"
#include "MachineDetails.h"
#include "Numbers.h"
#include "TextEncoding.h"
#include "TextTable.h"
#include "platform/CNumbers.h"

namespace qzrbank {

namespace {

// One exported machine: its kind and its attributes, texts in UTF-8.
struct ExportedMachine {
    const char* kind;
    std::vector<Attribute> attributes;
};

std::vector<std::string> ExportColumns() {
    std::vector<std::string> columns = {"Kind"};
    for (const std::vector<Attribute>& kind :
         {DescribeMachine(CQZRIM()), DescribeMachine(CQZRRTM())}) {
        for (const Attribute& attribute : kind) {
            if (!attribute.catalogueNumber &&
                std::find(columns.begin(), columns.end(), attribute.name) == columns.end()) {
                columns.push_back(attribute.name);
            }
        }
    }
    return columns;
}

std::string NumberText(const Attribute& attribute) {
    if (attribute.integer) {
        return std::to_string(static_cast<long long>(attribute.number));
    }
    if (!std::isfinite(attribute.number)) {
        return FormatNumber(attribute.number);  // "nan", "inf", "-inf"
    }
    char buffer[qzr::platform::kLongestNumber];
    const std::to_chars_result written =
        std::to_chars(buffer, buffer + sizeof buffer, attribute.number);
    return std::string(buffer, written.ptr);
}

template <class Record>
bool AddMachines(const std::vector<Record>& records, const char* kind, const TextEncoding& encoding,
                 std::vector<ExportedMachine>* machines, std::string* error) {
    for (const Record& record : records) {
        ExportedMachine machine{kind, DescribeMachine(record)};
        if (!DecodeTexts(encoding, DisplayName(record), &machine.attributes, error)) {
            return false;
        }
        machines->push_back(std::move(machine));
    }
    return true;
}

TextTable ExportTable(const std::vector<ExportedMachine>& machines) {
    TextTable table;
    table.header = ExportColumns();
    for (const ExportedMachine& machine : machines) {
        std::vector<std::string> row(table.header.size());
        row[0] = machine.kind;
        for (const Attribute& attribute : machine.attributes) {
            const auto column = std::find(table.header.begin(), table.header.end(), attribute.name);
            if (!attribute.catalogueNumber && column != table.header.end()) {
                row[static_cast<size_t>(column - table.header.begin())] =
                    attribute.numeric ? NumberText(attribute) : attribute.text;
            }
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

nlohmann::ordered_json ExportJson(const std::vector<ExportedMachine>& machines) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const ExportedMachine& machine : machines) {
        nlohmann::ordered_json object = {{"Kind", machine.kind}};
        for (const Attribute& attribute : machine.attributes) {
            if (attribute.catalogueNumber) {
                continue;
            }
            if (attribute.integer) {
                object[attribute.name] = static_cast<long long>(attribute.number);
            } else if (attribute.numeric && std::isfinite(attribute.number)) {
                object[attribute.name] = attribute.number;
            } else {
                object[attribute.name] = attribute.numeric ? NumberText(attribute) : attribute.text;
            }
        }
        array.push_back(std::move(object));
    }
    return array;
}

}  // namespace

bool LoadBankTarget(const std::string& bank, LoadedFolder* loaded, std::ostream& err) {
    const std::string problem = ReadProblem(bank);
    if (problem == "is a folder") {
        BankFolder folder;
        std::string error;
        if (!LocateBankFolder(bank, &folder, &error)) {
            err << "qzrbank: " << error << '\n';
            return false;
        }
        LoadWatcher watcher;
        LoadBankFolder(folder, true, true, loaded, &watcher);
        PrintLoadWarnings(watcher, err);
        return true;
    }
    if (!problem.empty()) {
        err << "qzrbank: " << bank << ": " << problem << '\n';
        return false;
    }
    BankLoad load = BankLoad::OldIMMSystem;
    if (!LoadOfKind(RecognizeBankFile(bank).kind, &load)) {
        err << "qzrbank: " << bank << ": not a bank (no loader recognises its header)\n";
        return false;
    }
    SourcedCatalogue& catalogue = IsRTMLoad(load) ? loaded->rtm : loaded->imm;
    if (!catalogue.Load(load, bank)) {
        err << "qzrbank: " << bank << ": refused by its loader (run 'qzrbank check' on it)\n";
        return false;
    }
    return true;
}

void PrintLoadWarnings(const LoadWatcher& watcher, std::ostream& err) {
    for (const Finding& finding : watcher.Findings()) {
        if (finding.code == "letter-case" || finding.code == "file-skipped" ||
            finding.code == "load-fails") {
            err << "qzrbank: " << Location(finding) << ": warning: " << finding.message << '\n';
        }
    }
}

int RunExport(const ExportOptions& options, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(options.encoding, err);
    LoadedFolder loaded;
    if (!encoding || !LoadBankTarget(options.bank, &loaded, err)) {
        return kExitError;
    }
    std::vector<ExportedMachine> machines;
    std::string error;
    if (!AddMachines(IMMMachines(loaded.imm.Catalogue()), "IMM", *encoding, &machines, &error) ||
        !AddMachines(RTMMachines(loaded.rtm.Catalogue()), "RTM", *encoding, &machines, &error)) {
        err << "qzrbank: " << options.bank << ": " << error << '\n';
        return kExitError;
    }
    if (options.format == "json") {
        out << JsonText(ExportJson(machines)) << '\n';
    } else {
        PrintCsv(out, ExportTable(machines));
    }
    return kExitOk;
}

}  // namespace qzrbank

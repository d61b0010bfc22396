// qzrbank list and qzrbank show: the machines of a bank folder, and one machine in full.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <optional>
#include <sstream>
#include <system_error>

#include "BankFiles.h"
#include "BankLoading.h"
#include "Commands.h"
#include "ExportCommand.h"
#include "MachineDetails.h"
#include "Numbers.h"
#include "TextEncoding.h"
#include "TextTable.h"
#include "bank/BankKind.h"
#include "platform/CNumbers.h"
#include "platform/CaseFolding.h"

namespace qzrbank {

namespace {

constexpr size_t kIMM = 0;
constexpr size_t kRTM = 1;
constexpr int kMostDecimals = 3;

// One machine as the list shows it: its kind, the bank file it came from, and every attribute
// with its texts decoded.
struct ListedMachine {
    size_t kind = kIMM;
    std::string bank;
    std::vector<Attribute> attributes;
};

// Where a column of the list takes its cells from: the machine's kind, its bank file, or the
// attribute of each kind it names (none where a kind lacks the field).
struct ListColumn {
    enum class From { kKind, kBank, kAttribute };
    std::string name;
    From from = From::kAttribute;
    std::string attribute[2];
    bool numeric = false;
    std::string unit[2];
};

struct Cell {
    bool present = false;
    bool numeric = false;
    double number = 0.0;
    std::string text;
};

// Columns that take the field of each kind that plays the same part.
struct SharedColumn {
    const char* name;
    const char* imm;
    const char* rtm;
};
const SharedColumn kSharedColumns[] = {{"Pressure", "InjectionPressure", "TransferPressure"},
                                       {"Diameter", "ScrewDiameter", "PlungerDiameter"},
                                       {"Stroke", "ScrewStroke", "PlungerStroke"}};

const char kDefaultColumns[] =
    "Kind,Maker,Grade,ClampingForce,ShotWeight,ShotVolume,Pressure,Diameter,Stroke,Bank";
const char kDefaultSort[] = "Maker,Grade";

const std::vector<Attribute>& KindAttributes(size_t kind) {
    static const std::vector<Attribute> imm = DescribeMachine(CQZRIM());
    static const std::vector<Attribute> rtm = DescribeMachine(CQZRRTM());
    return kind == kIMM ? imm : rtm;
}

const Attribute* FindAttribute(const std::vector<Attribute>& attributes,
                               const std::string& folded) {
    for (const Attribute& attribute : attributes) {
        if (qzr::platform::FoldCase(attribute.name) == folded ||
            (!attribute.key.empty() && qzr::platform::FoldCase(attribute.key) == folded)) {
            return &attribute;
        }
    }
    return nullptr;
}

// A column by its tool name or its sectioned key, letter case ignored; none for no field.
std::optional<ListColumn> ResolveColumn(const std::string& name) {
    const std::string folded = qzr::platform::FoldCase(name);
    ListColumn column;
    if (folded == "kind" || folded == "bank") {
        column.name = folded == "kind" ? "Kind" : "Bank";
        column.from = folded == "kind" ? ListColumn::From::kKind : ListColumn::From::kBank;
        return column;
    }
    std::string fields[2] = {name, name};
    for (const SharedColumn& shared : kSharedColumns) {
        if (qzr::platform::FoldCase(shared.name) == folded) {
            column.name = shared.name;
            fields[kIMM] = shared.imm;
            fields[kRTM] = shared.rtm;
        }
    }
    for (size_t kind : {kIMM, kRTM}) {
        const Attribute* attribute =
            FindAttribute(KindAttributes(kind), qzr::platform::FoldCase(fields[kind]));
        if (attribute != nullptr) {
            column.name = column.name.empty() ? attribute->name : column.name;
            column.attribute[kind] = attribute->name;
            column.numeric = attribute->numeric;
            column.unit[kind] = attribute->unit;
        }
    }
    if (column.name.empty()) {
        return std::nullopt;
    }
    return column;
}

// The columns of a comma-separated list; false, with a message, at a name that is no column.
bool ResolveColumns(const std::string& names, std::vector<ListColumn>* columns,
                    std::string* error) {
    std::istringstream list(names);
    for (std::string name; std::getline(list, name, ',');) {
        std::optional<ListColumn> column = ResolveColumn(name);
        if (!column) {
            *error = "no column '" + name + "' (a field's name or sectioned key, Kind or Bank)";
            return false;
        }
        columns->push_back(std::move(*column));
    }
    return true;
}

Cell CellOf(const ListedMachine& machine, const ListColumn& column) {
    Cell cell;
    if (column.from != ListColumn::From::kAttribute) {
        cell.present = true;
        cell.text = column.from == ListColumn::From::kKind ? (machine.kind == kIMM ? "IMM" : "RTM")
                                                           : machine.bank;
        return cell;
    }
    for (const Attribute& attribute : machine.attributes) {
        if (attribute.name == column.attribute[machine.kind]) {
            cell.present = true;
            cell.numeric = attribute.numeric;
            cell.number = attribute.number;
            cell.text = attribute.text;
            break;
        }
    }
    return cell;
}

// A --where condition: a numeric column against a number.
struct Condition {
    ListColumn column;
    std::string comparison;
    double bound = 0.0;

    bool Holds(const ListedMachine& machine) const {
        const Cell cell = CellOf(machine, column);
        if (!cell.present || !cell.numeric) {
            return false;
        }
        const double value = cell.number;
        if (comparison == "<") {
            return value < bound;
        }
        if (comparison == "<=") {
            return value <= bound;
        }
        if (comparison == ">") {
            return value > bound;
        }
        if (comparison == ">=") {
            return value >= bound;
        }
        return value == bound;
    }
};

std::string WithoutBlanks(const std::string& text) {
    const size_t first = text.find_first_not_of(' ');
    const size_t last = text.find_last_not_of(' ');
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

// "Column>=10": a numeric column, one of < <= > >= =, a number (blanks around either allowed);
// false, with a message, otherwise.
bool ParseCondition(const std::string& text, Condition* condition, std::string* error) {
    const size_t at = text.find_first_of("<>=");
    if (at != std::string::npos) {
        const bool twoSigns = text[at] != '=' && text.compare(at + 1, 1, "=") == 0;
        condition->comparison = text.substr(at, twoSigns ? 2 : 1);
        std::optional<ListColumn> column = ResolveColumn(WithoutBlanks(text.substr(0, at)));
        const std::string bound = WithoutBlanks(text.substr(at + condition->comparison.size()));
        const char* end = bound.data() + bound.size();
        if (column && column->numeric && !bound.empty() &&
            std::from_chars(bound.data(), end, condition->bound).ptr == end) {
            condition->column = std::move(*column);
            return true;
        }
    }
    *error = "bad condition '" + text + "' (a numeric column, one of < <= > >= =, a number)";
    return false;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The run of digits at *at, without its leading zeros; *at moves past the run.
std::string_view DigitRun(std::string_view text, size_t* at) {
    while (*at < text.size() && text[*at] == '0') {
        ++*at;
    }
    const size_t start = *at;
    while (*at < text.size() && IsDigit(text[*at])) {
        ++*at;
    }
    return text.substr(start, *at - start);
}

// Runs of digits compare by their value, so that "TR-30" comes before "TR-120".
int CompareNatural(std::string_view a, std::string_view b) {
    size_t i = 0;
    size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (IsDigit(a[i]) && IsDigit(b[j])) {
            const std::string_view x = DigitRun(a, &i);
            const std::string_view y = DigitRun(b, &j);
            if (x.size() != y.size()) {
                return x.size() < y.size() ? -1 : 1;
            }
            if (const int order = x.compare(y)) {
                return order;
            }
        } else if (a[i] != b[j]) {
            return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[j]) ? -1 : 1;
        } else {
            ++i;
            ++j;
        }
    }
    return (i < a.size()) - (j < b.size());
}

// Numbers compare as numbers, texts with letter case ignored and digits as numbers; a missing
// cell sorts last.
int CompareCells(const Cell& a, const Cell& b) {
    if (a.present != b.present) {
        return a.present ? -1 : 1;
    }
    if (a.numeric && b.numeric) {
        return a.number < b.number ? -1 : (b.number < a.number ? 1 : 0);
    }
    const int folded =
        CompareNatural(qzr::platform::FoldCase(a.text), qzr::platform::FoldCase(b.text));
    return folded != 0 ? folded : a.text.compare(b.text);
}

void SortMachines(const std::vector<ListColumn>& keys, std::vector<ListedMachine>* machines) {
    std::stable_sort(machines->begin(), machines->end(),
                     [&keys](const ListedMachine& a, const ListedMachine& b) {
                         for (const ListColumn& key : keys) {
                             const int order = CompareCells(CellOf(a, key), CellOf(b, key));
                             if (order != 0) {
                                 return order < 0;
                             }
                         }
                         return false;
                     });
}

std::vector<CQZRIM> AllMachines(const CQZRMoldingMachineCtrl& catalogue, const CQZRIM&) {
    return IMMMachines(catalogue);
}
std::vector<CQZRRTM> AllMachines(const CQZRMoldingMachineCtrl& catalogue, const CQZRRTM&) {
    return RTMMachines(catalogue);
}

// The machines of a catalogue, all or those of one maker found by the library's name rule,
// each under the maker's name as the catalogue files it; false, with a message, at a text the
// code page lacks.
template <class Record>
bool CollectMachines(const SourcedCatalogue& sourced, size_t kind, const ListOptions& options,
                     const TextEncoding& encoding, std::vector<ListedMachine>* machines,
                     std::string* error) {
    const CQZRMoldingMachineCtrl& catalogue = sourced.Catalogue();
    std::vector<Record> records;
    if (options.maker) {
        const int count = catalogue.GetMachineCount(options.maker->c_str());
        for (int position = 0; position < count; ++position) {
            Record machine;
            if (catalogue.GetCurrentMakerMachine(options.maker->c_str(), position, machine)) {
                records.push_back(machine);
            }
        }
    } else {
        records = AllMachines(catalogue, Record());
    }
    for (Record& record : records) {
        if (const char* maker = catalogue.GetMaker(record.GetMakerID())) {
            record.SetMaker(maker);
        }
        ListedMachine machine;
        machine.kind = kind;
        machine.bank = sourced.SourceOf(record.GetMachineID());
        machine.attributes = DescribeMachine(record);
        if (!DecodeTexts(encoding, DisplayName(record), &machine.attributes, error)) {
            return false;
        }
        machines->push_back(std::move(machine));
    }
    return true;
}

// The unit a header shows: the one every listed kind that has the field gives it, if any.
std::string HeaderOf(const ListColumn& column, const std::vector<ListedMachine>& machines) {
    std::string unit;
    for (const ListedMachine& machine : machines) {
        const std::string& own = column.unit[machine.kind];
        if (column.attribute[machine.kind].empty()) {
            continue;
        }
        if (own.empty() || (!unit.empty() && own != unit)) {
            return column.name;
        }
        unit = own;
    }
    return unit.empty() ? column.name : column.name + " [" + unit + "]";
}

int DecimalsOf(const Cell& cell) {
    const std::string shortest = FormatNumber(cell.number);
    const size_t point = shortest.find('.');
    return point == std::string::npos ? 0 : static_cast<int>(shortest.size() - point - 1);
}

// Numbers in fixed notation, with as many decimals as the column's most precise value needs,
// kMostDecimals at most.
std::vector<std::string> ColumnCells(const ListColumn& column,
                                     const std::vector<ListedMachine>& machines) {
    std::vector<Cell> cells;
    int decimals = 0;
    for (const ListedMachine& machine : machines) {
        cells.push_back(CellOf(machine, column));
        if (cells.back().numeric && std::isfinite(cells.back().number)) {
            decimals = std::min(kMostDecimals, std::max(decimals, DecimalsOf(cells.back())));
        }
    }
    std::vector<std::string> texts;
    for (const Cell& cell : cells) {
        if (!cell.numeric || !std::isfinite(cell.number)) {
            texts.push_back(cell.text);
            continue;
        }
        char buffer[qzr::platform::kLongestNumber];
        const std::to_chars_result written = std::to_chars(
            buffer, buffer + sizeof buffer, cell.number, std::chars_format::fixed, decimals);
        texts.emplace_back(buffer, written.ptr);
    }
    return texts;
}

TextTable ListTable(const std::vector<ListColumn>& columns,
                    const std::vector<ListedMachine>& machines, bool groupByMaker) {
    TextTable table;
    table.rows.resize(machines.size());
    for (const ListColumn& column : columns) {
        table.header.push_back(HeaderOf(column, machines));
        table.rightAligned.push_back(column.numeric);
        const std::vector<std::string> cells = ColumnCells(column, machines);
        for (size_t row = 0; row < machines.size(); ++row) {
            table.rows[row].push_back(cells[row]);
        }
    }
    const ListColumn maker = *ResolveColumn("Maker");
    for (size_t row = 1; groupByMaker && row < machines.size(); ++row) {
        if (CompareCells(CellOf(machines[row - 1], maker), CellOf(machines[row], maker)) != 0) {
            table.groupStarts.push_back(row);
        }
    }
    return table;
}

nlohmann::ordered_json ListJson(const std::vector<ListColumn>& columns,
                                const std::vector<ListedMachine>& machines) {
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const ListedMachine& machine : machines) {
        nlohmann::ordered_json row = nlohmann::ordered_json::object();
        for (const ListColumn& column : columns) {
            const Cell cell = CellOf(machine, column);
            if (!cell.present) {
                row[column.name] = nullptr;
            } else if (cell.numeric) {
                row[column.name] = cell.number;
            } else {
                row[column.name] = cell.text;
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

size_t MakerCount(const std::vector<ListedMachine>& machines) {
    const ListColumn maker = *ResolveColumn("Maker");
    std::vector<std::string> makers;
    for (const ListedMachine& machine : machines) {
        makers.push_back(qzr::platform::FoldCase(CellOf(machine, maker).text));
    }
    std::sort(makers.begin(), makers.end());
    return static_cast<size_t>(std::unique(makers.begin(), makers.end()) - makers.begin());
}

// One row per attribute, the head's first: Attribute, Value (as text shows it) and Unit.
TextTable AttributesTable(const std::vector<std::pair<std::string, std::string>>& head,
                          const std::vector<Attribute>& attributes) {
    TextTable table;
    table.header = {"Attribute", "Value", "Unit"};
    for (const auto& [name, value] : head) {
        table.rows.push_back({name, value, ""});
    }
    for (const Attribute& attribute : attributes) {
        table.rows.push_back({attribute.name, attribute.text, attribute.unit});
    }
    return table;
}

void PrintAttributesText(std::ostream& out,
                         const std::vector<std::pair<std::string, std::string>>& head,
                         const std::vector<Attribute>& attributes) {
    size_t width = 0;
    for (const auto& line : head) {
        width = std::max(width, line.first.size());
    }
    for (const Attribute& attribute : attributes) {
        width = std::max(width, attribute.name.size());
    }
    auto print = [&out, width](const std::string& name, const std::string& value) {
        out << name;
        if (!value.empty()) {
            out << std::string(width - name.size() + 2, ' ') << value;
        }
        out << '\n';
    };
    for (const auto& line : head) {
        print(line.first, line.second);
    }
    for (const Attribute& attribute : attributes) {
        print(attribute.name,
              attribute.unit.empty() ? attribute.text : attribute.text + " " + attribute.unit);
    }
}

nlohmann::ordered_json AttributesJson(const std::vector<std::pair<std::string, std::string>>& head,
                                      const std::vector<Attribute>& attributes) {
    nlohmann::ordered_json json;
    for (const auto& line : head) {
        json[line.first] = line.second;
    }
    nlohmann::ordered_json units = nlohmann::ordered_json::object();
    for (const Attribute& attribute : attributes) {
        if (attribute.integer) {
            json[attribute.name] = static_cast<long long>(attribute.number);
        } else if (attribute.numeric) {
            json[attribute.name] = attribute.number;
        } else {
            json[attribute.name] = attribute.text;
        }
        if (!attribute.unit.empty()) {
            units[attribute.name] = attribute.unit;
        }
    }
    json["Units"] = std::move(units);
    return json;
}

// Prints the machine of options.maker and options.grade; none when the catalogue has no such
// machine, else the exit code.
template <class Record>
std::optional<int> ShowMachine(const SourcedCatalogue& sourced, const ShowOptions& options,
                               const TextEncoding& encoding, const char* kindName,
                               std::ostream& out, std::ostream& err) {
    Record machine;
    if (!sourced.Catalogue().GetMachine(options.maker.c_str(), options.grade.c_str(), machine)) {
        return std::nullopt;
    }
    const std::vector<std::pair<std::string, std::string>> head = {
        {"Kind", kindName}, {"Bank", sourced.SourceOf(machine.GetMachineID())}};
    std::vector<Attribute> attributes = DescribeMachine(machine);
    std::string error;
    if (!DecodeTexts(encoding, DisplayName(machine), &attributes, &error)) {
        err << "qzrbank: " << options.bank << ": " << error << '\n';
        return kExitError;
    }
    if (options.format == "json") {
        out << JsonText(AttributesJson(head, attributes)) << '\n';
    } else if (options.format == "csv") {
        PrintCsv(out, AttributesTable(head, attributes));
    } else {
        PrintAttributesText(out, head, attributes);
    }
    return kExitOk;
}

// The options of list that select and order, checked; false, with a message, at a bad one.
struct ListSelection {
    std::vector<ListColumn> columns;
    std::vector<ListColumn> sortKeys;
    std::vector<Condition> conditions;
};
bool SelectionOf(const ListOptions& options, ListSelection* selection, std::string* error) {
    if (!ResolveColumns(options.columns.empty() ? kDefaultColumns : options.columns,
                        &selection->columns, error) ||
        !ResolveColumns(options.sort.empty() ? kDefaultSort : options.sort, &selection->sortKeys,
                        error)) {
        return false;
    }
    for (const std::string& text : options.where) {
        Condition condition;
        if (!ParseCondition(text, &condition, error)) {
            return false;
        }
        selection->conditions.push_back(std::move(condition));
    }
    return true;
}

void PrintList(const ListOptions& options, const ListSelection& selection,
               const std::vector<ListedMachine>& machines, std::ostream& out) {
    if (options.format == "json") {
        out << JsonText(ListJson(selection.columns, machines)) << '\n';
        return;
    }
    const bool groupByMaker = selection.sortKeys.front().name == "Maker";
    const TextTable table = ListTable(selection.columns, machines, groupByMaker);
    if (options.format == "csv") {
        PrintCsv(out, table);
        return;
    }
    PrintTable(out, table);
    const size_t makers = MakerCount(machines);
    out << '\n'
        << machines.size() << (machines.size() == 1 ? " machine of " : " machines of ") << makers
        << (makers == 1 ? " maker" : " makers") << '\n';
}

}  // namespace

int RunList(const ListOptions& given, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(given.encoding, err);
    ListOptions options = given;
    if (!encoding ||
        (options.maker && !ArgumentInCodePage(*encoding, "--maker", &*options.maker, err))) {
        return kExitError;
    }
    ListSelection selection;
    std::string error;
    if (!SelectionOf(options, &selection, &error)) {
        err << "qzrbank: " << error << '\n';
        return kExitError;
    }
    const std::string dir = options.bankDir ? *options.bankDir : ShippedBankFolder();
    BankFolder folder;
    if (!LocateBankFolder(dir, &folder, &error)) {
        err << "qzrbank: " << error << '\n';
        return kExitError;
    }
    LoadedFolder loaded;
    LoadWatcher watcher;
    LoadBankFolder(folder, options.kind != "rtm", options.kind != "imm", &loaded, &watcher);
    PrintLoadWarnings(watcher, err);
    std::vector<ListedMachine> machines;
    if (!CollectMachines<CQZRIM>(loaded.imm, kIMM, options, *encoding, &machines, &error) ||
        !CollectMachines<CQZRRTM>(loaded.rtm, kRTM, options, *encoding, &machines, &error)) {
        err << "qzrbank: " << folder.path << ": " << error << '\n';
        return kExitError;
    }
    const bool found = !machines.empty();
    machines.erase(std::remove_if(machines.begin(), machines.end(),
                                  [&selection](const ListedMachine& machine) {
                                      for (const Condition& condition : selection.conditions) {
                                          if (!condition.Holds(machine)) {
                                              return true;
                                          }
                                      }
                                      return false;
                                  }),
                   machines.end());
    SortMachines(selection.sortKeys, &machines);
    PrintList(options, selection, machines, out);
    if (options.maker && !found) {
        err << "qzrbank: no machine of maker \"" << *given.maker << "\" in " << folder.path << '\n';
        return kExitNegative;
    }
    return kExitOk;
}

int RunShow(const ShowOptions& given, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(given.encoding, err);
    ShowOptions options = given;
    if (!encoding || !ArgumentInCodePage(*encoding, given.bank, &options.maker, err) ||
        !ArgumentInCodePage(*encoding, given.bank, &options.grade, err)) {
        return kExitError;
    }
    LoadedFolder loaded;
    if (!LoadBankTarget(options.bank, &loaded, err)) {
        return kExitError;
    }
    std::optional<int> shown = ShowMachine<CQZRIM>(loaded.imm, options, *encoding, "IMM", out, err);
    if (!shown) {
        shown = ShowMachine<CQZRRTM>(loaded.rtm, options, *encoding, "RTM", out, err);
    }
    if (shown) {
        return *shown;
    }
    err << "qzrbank: no machine \"" << given.maker << " - " << given.grade << "\" in "
        << options.bank << '\n';
    return kExitNegative;
}

}  // namespace qzrbank

// qzrbank list and qzrbank show: the machines of a bank folder, and one machine in full.
#include <filesystem>
#include <system_error>

#include "BankFiles.h"
#include "BankLoading.h"
#include "Commands.h"
#include "MachineDetails.h"
#include "Numbers.h"
#include "TextTable.h"

namespace qzrbank {

namespace {

struct MakerGroup {
    std::string kind;
    std::string maker;
    std::vector<MachineSummary> machines;
};

template <class Record>
void CollectGroups(const SourcedCatalogue& sourced, const std::optional<std::string>& maker,
                   std::vector<MakerGroup>* groups) {
    const CQZRMoldingMachineCtrl& catalogue = sourced.Catalogue();
    auto addMachine = [&](MakerGroup* group, const Record& machine) {
        MachineSummary summary = Summarize(machine);
        summary.bank = sourced.SourceOf(machine.GetMachineID());
        group->machines.push_back(std::move(summary));
    };
    if (maker) {
        // One maker, found as the catalogue finds it: by the library's name rule.
        MakerGroup group;
        const int count = catalogue.GetMachineCount(maker->c_str());
        for (int position = 0; position < count; ++position) {
            Record machine;
            if (catalogue.GetCurrentMakerMachine(maker->c_str(), position, machine)) {
                const char* name = catalogue.GetMaker(machine.GetMakerID());
                group.maker = name != nullptr ? name : machine.GetMaker();
                addMachine(&group, machine);
            }
        }
        if (!group.machines.empty()) {
            group.kind = group.machines.front().kind;
            groups->push_back(std::move(group));
        }
        return;
    }
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int makerId = catalogue.GetMakerID(position);
        MakerGroup group;
        const char* name = catalogue.GetMaker(makerId);
        group.maker = name != nullptr ? name : "";
        const int count = catalogue.GetMachineCount(makerId);
        for (int index = 0; index < count; ++index) {
            Record machine;
            if (catalogue.GetCurrentMakerMachine(makerId, index, machine)) {
                addMachine(&group, machine);
            }
        }
        if (!group.machines.empty()) {
            group.kind = group.machines.front().kind;
            groups->push_back(std::move(group));
        }
    }
}

const char* const kListColumns[] = {"Kind",       "Maker",      "Grade",    "ClampingForce",
                                    "ShotWeight", "ShotVolume", "Pressure", "Diameter",
                                    "Stroke",     "Bank"};

TextTable ListTable(const std::vector<MakerGroup>& groups) {
    TextTable table;
    table.header.assign(std::begin(kListColumns), std::end(kListColumns));
    table.rightAligned = {false, false, false, true, true, true, true, true, true, false};
    for (const MakerGroup& group : groups) {
        table.groupStarts.push_back(table.rows.size());
        for (const MachineSummary& m : group.machines) {
            table.rows.push_back({m.kind, group.maker, m.grade, FormatNumber(m.clampingForce),
                                  FormatNumber(m.shotWeight), FormatNumber(m.shotVolume),
                                  FormatNumber(m.pressure), FormatNumber(m.diameter),
                                  FormatNumber(m.stroke), m.bank});
        }
    }
    return table;
}

nlohmann::ordered_json ListJson(const std::vector<MakerGroup>& groups) {
    nlohmann::ordered_json makers = nlohmann::ordered_json::array();
    for (const MakerGroup& group : groups) {
        nlohmann::ordered_json machines = nlohmann::ordered_json::array();
        for (const MachineSummary& m : group.machines) {
            machines.push_back({{"Grade", m.grade},
                                {"ClampingForce", m.clampingForce},
                                {"ShotWeight", m.shotWeight},
                                {"ShotVolume", m.shotVolume},
                                {"Pressure", m.pressure},
                                {"Diameter", m.diameter},
                                {"Stroke", m.stroke},
                                {"Bank", m.bank}});
        }
        makers.push_back(
            {{"Kind", group.kind}, {"Maker", group.maker}, {"Machines", std::move(machines)}});
    }
    return {{"Makers", std::move(makers)}};
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
    } else {
        PrintAttributesText(out, head, attributes);
    }
    return kExitOk;
}

// What a folder load passed over or found under another name; the rest of what the loads did
// is the checker's to tell.
void PrintLoadWarnings(const LoadWatcher& watcher, std::ostream& err) {
    for (const Finding& finding : watcher.Findings()) {
        if (finding.code == "letter-case" || finding.code == "file-skipped" ||
            finding.code == "load-fails") {
            err << "qzrbank: " << Location(finding) << ": warning: " << finding.message << '\n';
        }
    }
}

}  // namespace

int RunList(const ListOptions& options, std::ostream& out, std::ostream& err) {
    const std::string dir = options.bankDir ? *options.bankDir : ShippedBankFolder();
    BankFolder folder;
    std::string error;
    if (!LocateBankFolder(dir, &folder, &error)) {
        err << "qzrbank: " << error << '\n';
        return kExitError;
    }
    const bool imm = options.kind != "rtm";
    const bool rtm = options.kind != "imm";
    LoadedFolder loaded;
    LoadWatcher watcher;
    LoadBankFolder(folder, imm, rtm, &loaded, &watcher);
    PrintLoadWarnings(watcher, err);
    std::vector<MakerGroup> groups;
    if (imm) {
        CollectGroups<CQZRIM>(loaded.imm, options.maker, &groups);
    }
    if (rtm) {
        CollectGroups<CQZRRTM>(loaded.rtm, options.maker, &groups);
    }
    if (options.format == "json") {
        out << JsonText(ListJson(groups)) << '\n';
    } else if (options.format == "csv") {
        PrintCsv(out, ListTable(groups));
    } else {
        const TextTable table = ListTable(groups);
        PrintTable(out, table);
        out << '\n'
            << table.rows.size() << (table.rows.size() == 1 ? " machine of " : " machines of ")
            << groups.size() << (groups.size() == 1 ? " maker" : " makers") << '\n';
    }
    if (options.maker && groups.empty()) {
        err << "qzrbank: no machine of maker \"" << *options.maker << "\" in " << folder.path
            << '\n';
        return kExitNegative;
    }
    return kExitOk;
}

int RunShow(const ShowOptions& options, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(options.encoding, err);
    if (!encoding) {
        return kExitError;
    }
    LoadedFolder loaded;
    const std::string problem = ReadProblem(options.bank);
    if (problem == "is a folder") {
        BankFolder folder;
        std::string error;
        if (!LocateBankFolder(options.bank, &folder, &error)) {
            err << "qzrbank: " << error << '\n';
            return kExitError;
        }
        LoadWatcher watcher;
        LoadBankFolder(folder, true, true, &loaded, &watcher);
        PrintLoadWarnings(watcher, err);
    } else if (!problem.empty()) {
        err << "qzrbank: " << options.bank << ": " << problem << '\n';
        return kExitError;
    } else {
        BankLoad load = BankLoad::OldIMMSystem;
        if (!LoadOfKind(RecognizeBankFile(options.bank).kind, &load)) {
            err << "qzrbank: " << options.bank
                << ": not a bank (no loader recognises its header)\n";
            return kExitError;
        }
        SourcedCatalogue& catalogue = IsRTMLoad(load) ? loaded.rtm : loaded.imm;
        if (!catalogue.Load(load, options.bank, options.bank)) {
            err << "qzrbank: " << options.bank
                << ": refused by its loader (run 'qzrbank check' on it)\n";
            return kExitError;
        }
    }
    std::optional<int> shown = ShowMachine<CQZRIM>(loaded.imm, options, *encoding, "IMM", out, err);
    if (!shown) {
        shown = ShowMachine<CQZRRTM>(loaded.rtm, options, *encoding, "RTM", out, err);
    }
    if (shown) {
        return *shown;
    }
    err << "qzrbank: no machine \"" << options.maker << " - " << options.grade << "\" in "
        << options.bank << '\n';
    return kExitNegative;
}

}  // namespace qzrbank

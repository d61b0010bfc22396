#include "CommandLine.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <iterator>
#include <utility>

#include <CLI/CLI.hpp>

#include "Commands.h"

namespace qzrbank {

namespace {

const char* const kCommands[] = {"list", "show", "info",   "check", "convert", "set",
                                 "add",  "rm",   "rename", "diff",  "import",  "export"};

// Letters to insert, delete or replace to turn one word into the other.
size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] != b[j - 1])});
            diagonal = above;
        }
    }
    return row[b.size()];
}

// The error for a first argument that is no command, with the nearest command when one is
// close; empty when the argument is a command or an option.
std::string UnknownCommand(const std::string& word) {
    if (word.empty() || word[0] == '-' ||
        std::find(std::begin(kCommands), std::end(kCommands), word) != std::end(kCommands)) {
        return {};
    }
    const char* nearest = *std::min_element(
        std::begin(kCommands), std::end(kCommands), [&word](const char* a, const char* b) {
            return EditDistance(word, a) < EditDistance(word, b);
        });
    const bool close = EditDistance(word, nearest) <= (word.size() + 1) / 2 ||
                       std::string(nearest).rfind(word, 0) == 0;
    return "unknown command '" + word + "'" +
           (close ? std::string("; did you mean '") + nearest + "'?" : std::string()) +
           " (see qzrbank --help)";
}

// "--format", one of the given names; the first is the default.
void AddFormatOption(CLI::App* command, std::string* format, std::vector<std::string> names) {
    std::string help;
    for (const std::string& name : names) {
        help += (help.empty() ? "" : ", ") + name;
    }
    command->add_option("--format", *format, help + " (default " + names.front() + ")")
        ->check(CLI::IsMember(std::move(names)));
}

// "--encoding", the code page of the bank texts the command shows.
void AddEncodingOption(CLI::App* command, std::string* encoding) {
    command
        ->add_option("--encoding", *encoding,
                     "code page of the bank texts: cp1252, cp932 or latin1 (default cp1252)")
        ->check(CLI::IsMember({"cp1252", "cp932", "latin1"}, CLI::ignore_case));
}

// The flags of every command that writes a bank.
void AddWriteFlags(CLI::App* command, bool* force, bool* allowLoss) {
    if (force != nullptr) {
        command->add_flag("--force", *force, "replace an existing OUT (kept as OUT.bak)");
    }
    command->add_flag("--allow-loss", *allowLoss,
                      "write even when machines or attributes would not read back intact");
}

// What the parse fills: the options of every command.
struct ParsedOptions {
    ListOptions list;
    std::string bankDir;
    std::string maker;
    ShowOptions show;
    InfoOptions info;
    CheckOptions check;
    ConvertOptions convert;
    EditOptions edit;
    DiffOptions diff;
    ImportOptions import;
    ExportOptions exportOptions;
};

// A command of the command line and the call of its function on the parsed options.
struct Command {
    CLI::App* app;
    std::function<int(std::istream& in, std::ostream& out, std::ostream& err)> run;
};

// The command and the call of its function on the options the parse fills.
template <typename Options>
Command Calling(CLI::App* command, int (*run)(const Options&, std::ostream&, std::ostream&),
                const Options& options) {
    return {command, [run, &options](std::istream&, std::ostream& out, std::ostream& err) {
                return run(options, out, err);
            }};
}

Command AddList(CLI::App& app, ParsedOptions& parsed) {
    ListOptions& list = parsed.list;
    CLI::App* command = app.add_subcommand(
        "list", "machines of a bank folder, grouped by maker (default: the shipped examples/Bank)");
    command->add_option("BANKDIR", parsed.bankDir,
                        "the folder that holds \"Bank\", or the Bank folder itself");
    command->add_option("--kind", list.kind, "imm, rtm or all")
        ->check(CLI::IsMember({"imm", "rtm", "all"}));
    command->add_option("--maker", parsed.maker, "only this maker (case is ignored)");
    AddFormatOption(command, &list.format, {"table", "csv", "json"});
    command->add_option("--columns", list.columns,
                        "columns a,b,c: fields by name or sectioned key, Kind, Bank");
    command->add_option("--sort", list.sort, "sort by columns a,b (default Maker,Grade)");
    command
        ->add_option("--where", list.where,
                     "keep rows where 'Column>=10' (< <= > >= =); repeatable")
        ->allow_extra_args(false);
    AddEncodingOption(command, &list.encoding);
    return {command, [command, &parsed](std::istream&, std::ostream& out, std::ostream& err) {
                if (!parsed.bankDir.empty()) {
                    parsed.list.bankDir = parsed.bankDir;
                }
                if (command->count("--maker") > 0) {
                    parsed.list.maker = parsed.maker;
                }
                return RunList(parsed.list, out, err);
            }};
}

Command AddShow(CLI::App& app, ShowOptions& show) {
    CLI::App* command = app.add_subcommand("show", "every attribute of one machine");
    command->add_option("BANK", show.bank, "a bank file or a bank folder")->required();
    command->add_option("MAKER", show.maker, "the maker")->required();
    command->add_option("GRADE", show.grade, "the grade")->required();
    AddFormatOption(command, &show.format, {"text", "csv", "json"});
    AddEncodingOption(command, &show.encoding);
    return Calling(command, RunShow, show);
}

Command AddInfo(CLI::App& app, InfoOptions& info) {
    CLI::App* command =
        app.add_subcommand("info", "describe bank files: kind, header and machine count");
    command->add_option("FILE", info.files, "bank files")->required();
    AddFormatOption(command, &info.format, {"text", "csv", "json"});
    AddEncodingOption(command, &info.encoding);
    return Calling(command, RunInfo, info);
}

Command AddCheck(CLI::App& app, CheckOptions& check) {
    CLI::App* command = app.add_subcommand(
        "check",
        "report what the loaders skip, stop at or change, as PATH:LINE: severity: message");
    command->add_option("FILE", check.targets, "bank files, bank folders, or - for standard input")
        ->required();
    AddFormatOption(command, &check.format, {"text", "table", "csv", "json"});
    AddEncodingOption(command, &check.encoding);
    return {command, [&check](std::istream& in, std::ostream& out, std::ostream& err) {
                return RunCheck(check, in, out, err);
            }};
}

Command AddConvert(CLI::App& app, ConvertOptions& convert) {
    CLI::App* command = app.add_subcommand(
        "convert",
        "legacy bank -> sectioned IMM user bank, sectioned IMM bank -> legacy user bank");
    command->add_option("IN", convert.input, "the bank to convert")->required();
    command->add_option("OUT", convert.output, "the bank file to write")->required();
    AddWriteFlags(command, &convert.force, &convert.allowLoss);
    return Calling(command, RunConvert, convert);
}

// An edit of one machine of a user bank: set, add, rm or rename.
Command AddEdit(CLI::App& app, EditOptions& edit, const char* name, const char* help,
                int (*run)(const EditOptions&, std::ostream&, std::ostream&)) {
    CLI::App* command = app.add_subcommand(name, help);
    command->add_option("BANK", edit.bank, "a user bank file, edited in place")->required();
    command->add_option("MAKER", edit.maker, "the maker")->required();
    command->add_option("GRADE", edit.grade, "the grade")->required();
    AddWriteFlags(command, nullptr, &edit.allowLoss);
    AddEncodingOption(command, &edit.encoding);
    return Calling(command, run, edit);
}

Command AddDiff(CLI::App& app, DiffOptions& diff) {
    CLI::App* command =
        app.add_subcommand("diff", "machines added, removed and changed from bank A to bank B");
    command->add_option("A", diff.a, "a bank file")->required();
    command->add_option("B", diff.b, "a bank file")->required();
    AddFormatOption(command, &diff.format, {"table", "csv", "json"});
    AddEncodingOption(command, &diff.encoding);
    return Calling(command, RunDiff, diff);
}

Command AddImport(CLI::App& app, ImportOptions& import) {
    CLI::App* command =
        app.add_subcommand("import", "add machines of a CSV or JSON file to a user bank");
    command->add_option("FILE", import.file, "CSV or JSON as export writes it")->required();
    command->add_option("BANK", import.bank, "a user bank file, edited or made")->required();
    command->add_option("--on-duplicate", import.onDuplicate, "skip, replace or fail")
        ->check(CLI::IsMember({"skip", "replace", "fail"}));
    AddEncodingOption(command, &import.encoding);
    command
        ->add_option("--new-format", import.newFormat,
                     "a new bank of IMM machines: sectioned or legacy")
        ->check(CLI::IsMember({"sectioned", "legacy"}));
    command->add_flag("--dry-run", import.dryRun, "check and report, write nothing");
    AddWriteFlags(command, nullptr, &import.allowLoss);
    return Calling(command, RunImport, import);
}

Command AddExport(CLI::App& app, ExportOptions& options) {
    CLI::App* command = app.add_subcommand(
        "export", "every machine of a bank with every attribute, as CSV or JSON in UTF-8");
    command->add_option("BANK", options.bank, "a bank file or a bank folder")->required();
    AddFormatOption(command, &options.format, {"csv", "json"});
    AddEncodingOption(command, &options.encoding);
    return Calling(command, RunExport, options);
}

std::vector<Command> AddCommands(CLI::App& app, ParsedOptions& parsed) {
    EditOptions& edit = parsed.edit;
    const char* const assignmentHelp = "sectioned key or attribute name";
    std::vector<Command> commands = {AddList(app, parsed), AddShow(app, parsed.show),
                                     AddInfo(app, parsed.info), AddCheck(app, parsed.check),
                                     AddConvert(app, parsed.convert)};
    commands.push_back(AddEdit(app, edit, "set", "change attributes of a machine", RunSet));
    commands.back().app->add_option("KEY=VALUE", edit.assignments, assignmentHelp)->required();
    commands.push_back(AddEdit(app, edit, "add", "add a machine", RunAdd));
    commands.back().app->add_option("KEY=VALUE", edit.assignments, assignmentHelp);
    commands.push_back(AddEdit(app, edit, "rm", "remove a machine", RunRemove));
    commands.push_back(
        AddEdit(app, edit, "rename", "give a machine a new maker and grade", RunRename));
    commands.back().app->add_option("NEWMAKER", edit.newMaker, "the new maker")->required();
    commands.back().app->add_option("NEWGRADE", edit.newGrade, "the new grade")->required();
    commands.push_back(AddDiff(app, parsed.diff));
    commands.push_back(AddImport(app, parsed.import));
    commands.push_back(AddExport(app, parsed.exportOptions));
    return commands;
}

}  // namespace

int RunCommandLine(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
                   std::ostream& err) {
    CLI::App app{"qzrbank: list, show, check, convert, edit, compare and import QZRMachine banks",
                 "qzrbank"};
    // Paths are arguments on every platform: CLI11 would otherwise read "/data/Bank" on
    // Windows as an option named "data/Bank". Subcommands copy the setting when they are added;
    // each is also set below, so that moving this line cannot bring the fault back.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    app.set_version_flag("--version", "qzrbank " QZRBANK_VERSION);
    app.footer(
        "Exit codes: 0 done (check: nothing found); 1 findings or differences (check found\n"
        "something, show or list --maker found no such machine, a write would lose data\n"
        "and --allow-loss was not given, diff found a difference); 2 a usage or I/O error\n"
        "(bad argument, missing or unreadable file, failed write). See tools/README.md.");
    ParsedOptions parsed;
    const std::vector<Command> commands = AddCommands(app, parsed);
    for (const Command& command : commands) {
        command.app->allow_windows_style_options(false);
    }

    if (!arguments.empty()) {
        const std::string unknown = UnknownCommand(arguments.front());
        if (!unknown.empty()) {
            err << "qzrbank: " << unknown << '\n';
            return kExitError;
        }
    }
    try {
        // CLI11 takes the arguments last first.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error, out, err);  // --help, --version
        }
        err << "qzrbank: " << error.what() << " (see qzrbank --help)\n";
        return kExitError;
    }

    // Nothing below is expected to throw; should memory run out or a file system call throw
    // after all, the user still gets one line and an error exit.
    try {
        for (const Command& command : commands) {
            if (command.app->parsed()) {
                return command.run(in, out, err);
            }
        }
    } catch (const std::exception& error) {
        err << "qzrbank: " << error.what() << '\n';
    }
    return kExitError;
}

}  // namespace qzrbank

// qzrbank: lists, shows, describes (info), checks, converts, edits, compares and imports the
// bank files of QZRMachine.
// This file only reads the command line and writes the output; the work is done by the
// functions of Commands.h.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "Commands.h"

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

// Writes what a command gave for standard output; every byte must reach it.
int Finished(int exitCode, const std::string& output) {
    errno = 0;
    if (std::fwrite(output.data(), 1, output.size(), stdout) != output.size() ||
        std::fflush(stdout) != 0) {
        std::cerr << "qzrbank: standard output: "
                  << (errno != 0 ? std::generic_category().message(errno) : "write error") << '\n';
        return qzrbank::kExitError;
    }
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
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

    qzrbank::ListOptions list;
    std::string bankDir;
    std::string maker;
    CLI::App* listCommand = app.add_subcommand(
        "list", "machines of a bank folder, grouped by maker (default: the shipped examples/Bank)");
    listCommand->add_option("BANKDIR", bankDir,
                            "the folder that holds \"Bank\", or the Bank folder itself");
    listCommand->add_option("--kind", list.kind, "imm, rtm or all")
        ->check(CLI::IsMember({"imm", "rtm", "all"}));
    listCommand->add_option("--maker", maker, "only this maker (case is ignored)");
    AddFormatOption(listCommand, &list.format, {"table", "csv", "json"});
    listCommand->add_option("--columns", list.columns,
                            "columns a,b,c: fields by name or sectioned key, Kind, Bank");
    listCommand->add_option("--sort", list.sort, "sort by columns a,b (default Maker,Grade)");
    listCommand
        ->add_option("--where", list.where,
                     "keep rows where 'Column>=10' (< <= > >= =); repeatable")
        ->allow_extra_args(false);

    qzrbank::ShowOptions show;
    CLI::App* showCommand = app.add_subcommand("show", "every attribute of one machine");
    showCommand->add_option("BANK", show.bank, "a bank file or a bank folder")->required();
    showCommand->add_option("MAKER", show.maker, "the maker")->required();
    showCommand->add_option("GRADE", show.grade, "the grade")->required();
    AddFormatOption(showCommand, &show.format, {"text", "json"});

    qzrbank::InfoOptions info;
    CLI::App* infoCommand =
        app.add_subcommand("info", "describe bank files: kind, header and machine count");
    infoCommand->add_option("FILE", info.files, "bank files")->required();
    AddFormatOption(infoCommand, &info.format, {"text", "csv", "json"});

    qzrbank::CheckOptions check;
    CLI::App* checkCommand = app.add_subcommand(
        "check",
        "report what the loaders skip, stop at or change, as PATH:LINE: severity: message");
    checkCommand
        ->add_option("FILE", check.targets, "bank files, bank folders, or - for standard input")
        ->required();
    AddFormatOption(checkCommand, &check.format, {"text", "table", "json"});

    qzrbank::ConvertOptions convert;
    CLI::App* convertCommand = app.add_subcommand(
        "convert",
        "legacy bank -> sectioned IMM user bank, sectioned IMM bank -> legacy user bank");
    convertCommand->add_option("IN", convert.input, "the bank to convert")->required();
    convertCommand->add_option("OUT", convert.output, "the bank file to write")->required();
    AddWriteFlags(convertCommand, &convert.force, &convert.allowLoss);

    // Edits of one machine of a user bank.
    qzrbank::EditOptions edit;
    const auto addEditCommand = [&app, &edit](const char* name, const char* help) {
        CLI::App* command = app.add_subcommand(name, help);
        command->add_option("BANK", edit.bank, "a user bank file, edited in place")->required();
        command->add_option("MAKER", edit.maker, "the maker")->required();
        command->add_option("GRADE", edit.grade, "the grade")->required();
        AddWriteFlags(command, nullptr, &edit.allowLoss);
        return command;
    };
    CLI::App* setCommand = addEditCommand("set", "change attributes of a machine");
    setCommand->add_option("KEY=VALUE", edit.assignments, "sectioned key or attribute name")
        ->required();
    CLI::App* addCommand = addEditCommand("add", "add a machine");
    addCommand->add_option("KEY=VALUE", edit.assignments, "sectioned key or attribute name");
    CLI::App* rmCommand = addEditCommand("rm", "remove a machine");
    CLI::App* renameCommand = addEditCommand("rename", "give a machine a new maker and grade");
    renameCommand->add_option("NEWMAKER", edit.newMaker, "the new maker")->required();
    renameCommand->add_option("NEWGRADE", edit.newGrade, "the new grade")->required();

    qzrbank::DiffOptions diff;
    CLI::App* diffCommand =
        app.add_subcommand("diff", "machines added, removed and changed from bank A to bank B");
    diffCommand->add_option("A", diff.a, "a bank file")->required();
    diffCommand->add_option("B", diff.b, "a bank file")->required();
    AddFormatOption(diffCommand, &diff.format, {"table", "json"});

    qzrbank::ImportOptions import;
    CLI::App* importCommand =
        app.add_subcommand("import", "add machines of a CSV or JSON file to a user bank");
    importCommand->add_option("FILE", import.file, "CSV or JSON as export writes it")->required();
    importCommand->add_option("BANK", import.bank, "a user bank file, edited or made")->required();
    importCommand->add_option("--on-duplicate", import.onDuplicate, "skip, replace or fail")
        ->check(CLI::IsMember({"skip", "replace", "fail"}));
    AddEncodingOption(importCommand, &import.encoding);
    importCommand
        ->add_option("--new-format", import.newFormat,
                     "a new bank of IMM machines: sectioned or legacy")
        ->check(CLI::IsMember({"sectioned", "legacy"}));
    importCommand->add_flag("--dry-run", import.dryRun, "check and report, write nothing");
    AddWriteFlags(importCommand, nullptr, &import.allowLoss);

    qzrbank::ExportOptions exportOptions;
    CLI::App* exportCommand = app.add_subcommand(
        "export", "every machine of a bank with every attribute, as CSV or JSON in UTF-8");
    exportCommand->add_option("BANK", exportOptions.bank, "a bank file or a bank folder")
        ->required();
    AddFormatOption(exportCommand, &exportOptions.format, {"csv", "json"});
    AddEncodingOption(exportCommand, &exportOptions.encoding);

    AddEncodingOption(listCommand, &list.encoding);
    AddEncodingOption(showCommand, &show.encoding);
    AddEncodingOption(infoCommand, &info.encoding);
    AddEncodingOption(checkCommand, &check.encoding);

    for (CLI::App* command :
         {listCommand, showCommand, infoCommand, checkCommand, convertCommand, setCommand,
          addCommand, rmCommand, renameCommand, diffCommand, importCommand, exportCommand}) {
        command->allow_windows_style_options(false);
    }

    if (argc > 1) {
        const std::string unknown = UnknownCommand(argv[1]);
        if (!unknown.empty()) {
            std::cerr << "qzrbank: " << unknown << '\n';
            return qzrbank::kExitError;
        }
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            std::ostringstream out;
            const int code = app.exit(error, out, std::cerr);
            return Finished(code, out.str());  // --help, --version
        }
        std::cerr << "qzrbank: " << error.what() << " (see qzrbank --help)\n";
        return qzrbank::kExitError;
    }

    // Nothing below is expected to throw; should memory run out or a file system call throw
    // after all, the user still gets one line and an error exit.
    std::ostringstream out;
    int code = qzrbank::kExitError;
    try {
        if (listCommand->parsed()) {
            if (!bankDir.empty()) {
                list.bankDir = bankDir;
            }
            if (listCommand->count("--maker") > 0) {
                list.maker = maker;
            }
            code = qzrbank::RunList(list, out, std::cerr);
        } else if (showCommand->parsed()) {
            code = qzrbank::RunShow(show, out, std::cerr);
        } else if (infoCommand->parsed()) {
            code = qzrbank::RunInfo(info, out, std::cerr);
        } else if (checkCommand->parsed()) {
            code = qzrbank::RunCheck(check, std::cin, out, std::cerr);
        } else if (exportCommand->parsed()) {
            code = qzrbank::RunExport(exportOptions, out, std::cerr);
        } else if (convertCommand->parsed()) {
            code = qzrbank::RunConvert(convert, out, std::cerr);
        } else if (setCommand->parsed()) {
            code = qzrbank::RunSet(edit, out, std::cerr);
        } else if (addCommand->parsed()) {
            code = qzrbank::RunAdd(edit, out, std::cerr);
        } else if (rmCommand->parsed()) {
            code = qzrbank::RunRemove(edit, out, std::cerr);
        } else if (renameCommand->parsed()) {
            code = qzrbank::RunRename(edit, out, std::cerr);
        } else if (diffCommand->parsed()) {
            code = qzrbank::RunDiff(diff, out, std::cerr);
        } else if (importCommand->parsed()) {
            code = qzrbank::RunImport(import, out, std::cerr);
        }
    } catch (const std::exception& error) {
        std::cerr << "qzrbank: " << error.what() << '\n';
        code = qzrbank::kExitError;
    }
    return Finished(code, out.str());
}

// qzrbank: lists, shows, describes, checks and converts the bank files of QZRMachine. This file
// only reads the command line; the work is done by the functions of Commands.h.
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Commands.h"

int main(int argc, char** argv) {
    CLI::App app{"qzrbank: list, show, describe, check and convert QZRMachine bank files"};
    // Paths are arguments on every platform: CLI11 would otherwise read "/data/Bank" on
    // Windows as an option named "data/Bank". Subcommands copy the setting when they are added;
    // each is also set below, so that moving this line cannot bring the fault back.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    app.footer(
        "Exit codes: 0 done (check: nothing found), 1 check found something or no such machine,\n"
        "2 an error (missing or unreadable file, bad argument). See tools/README.md.");

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
    listCommand->add_option("--format", list.format, "table, csv or json")
        ->check(CLI::IsMember({"table", "csv", "json"}));

    qzrbank::ShowOptions show;
    CLI::App* showCommand = app.add_subcommand("show", "every attribute of one machine");
    showCommand->add_option("BANK", show.bank, "a bank file or a bank folder")->required();
    showCommand->add_option("MAKER", show.maker, "the maker")->required();
    showCommand->add_option("GRADE", show.grade, "the grade")->required();
    showCommand->add_option("--format", show.format, "text or json")
        ->check(CLI::IsMember({"text", "json"}));

    std::vector<std::string> infoFiles;
    CLI::App* infoCommand = app.add_subcommand("info", "bank kind, header and machine count");
    infoCommand->add_option("FILE", infoFiles, "bank files")->required();

    std::vector<std::string> checkFiles;
    CLI::App* checkCommand =
        app.add_subcommand("check", "report what the loaders skip or misread, line by line");
    checkCommand->add_option("FILE", checkFiles, "bank files")->required();

    qzrbank::ConvertOptions convert;
    CLI::App* convertCommand = app.add_subcommand(
        "convert",
        "legacy bank -> sectioned IMM user bank, sectioned IMM bank -> legacy user bank");
    convertCommand->add_option("IN", convert.input, "the bank to convert")->required();
    convertCommand->add_option("OUT", convert.output, "the bank file to write")->required();

    for (CLI::App* command :
         {listCommand, showCommand, infoCommand, checkCommand, convertCommand}) {
        command->allow_windows_style_options(false);
    }

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        return app.exit(help);
    } catch (const CLI::CallForAllHelp& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        std::cerr << "qzrbank: " << error.what() << " (see qzrbank --help)\n";
        return qzrbank::kExitError;
    }

    // Nothing below is expected to throw; should memory run out or a file system call throw
    // after all, the user still gets one line and an error exit.
    try {
        if (listCommand->parsed()) {
            if (!bankDir.empty()) {
                list.bankDir = bankDir;
            }
            if (listCommand->count("--maker") > 0) {
                list.maker = maker;
            }
            return qzrbank::RunList(list, std::cout, std::cerr);
        }
        if (showCommand->parsed()) {
            return qzrbank::RunShow(show, std::cout, std::cerr);
        }
        if (infoCommand->parsed()) {
            return qzrbank::RunInfo(infoFiles, std::cout, std::cerr);
        }
        if (checkCommand->parsed()) {
            return qzrbank::RunCheck(checkFiles, std::cout, std::cerr);
        }
        return qzrbank::RunConvert(convert, std::cout, std::cerr);
    } catch (const std::exception& error) {
        std::cerr << "qzrbank: " << error.what() << '\n';
        return qzrbank::kExitError;
    }
}

// The subcommands of qzrbank. Each writes its results to out and its errors, one line each, to
// err, and returns the process exit code: 0 done (and, for check, nothing found), 1 findings or
// differences (check found something, show or list found no such machine, a write would lose
// data and allowLoss is off, diff found a difference), 2 a usage or I/O error (a missing or
// unreadable file, a bank no loader accepts where one is needed, a bad argument).
#ifndef QZRBANK_COMMANDS_H
#define QZRBANK_COMMANDS_H

#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace qzrbank {

constexpr int kExitOk = 0;
constexpr int kExitNegative = 1;
constexpr int kExitError = 2;

struct ListOptions {
    std::optional<std::string> bankDir;  // none: the shipped examples/Bank
    std::string kind = "all";            // "imm", "rtm" or "all"
    std::optional<std::string> maker;    // matched by the library's name rule
    std::string format = "table";        // "table", "csv" or "json"
    // Comma-separated columns: a field's name or sectioned key, Kind, Bank, or Pressure,
    // Diameter and Stroke (the injection or transfer side of either kind). Empty: the default.
    std::string columns;
    std::string sort;                 // comma-separated columns to sort by; empty: Maker,Grade
    std::vector<std::string> where;   // "Column>=10": numeric conditions all rows must meet
    std::string encoding = "cp1252";  // the code page of the bank texts: cp1252, cp932 or latin1
};
int RunList(const ListOptions& options, std::ostream& out, std::ostream& err);

struct ShowOptions {
    std::string bank;  // a bank file or a bank folder
    std::string maker;
    std::string grade;
    std::string format = "text";      // "text", "csv" or "json"
    std::string encoding = "cp1252";  // the code page of the bank texts: cp1252, cp932 or latin1
};
int RunShow(const ShowOptions& options, std::ostream& out, std::ostream& err);

struct InfoOptions {
    std::vector<std::string> files;
    std::string format = "text";      // "text", "csv" or "json"
    std::string encoding = "cp1252";  // the code page of the bank texts: cp1252, cp932 or latin1
};
int RunInfo(const InfoOptions& options, std::ostream& out, std::ostream& err);

struct CheckOptions {
    std::vector<std::string> targets;  // files, folders, "-" for standard input
    std::string format = "text";       // "text", "table", "csv" or "json"
    std::string encoding = "cp1252";   // the code page of the bank texts: cp1252, cp932 or latin1
};
// Standard input is read from in.
int RunCheck(const CheckOptions& options, std::istream& in, std::ostream& out, std::ostream& err);

struct ConvertOptions {
    std::string input;
    std::string output;
    bool force = false;      // replace an existing OUT and OUT.bak
    bool allowLoss = false;  // write though machines or attributes do not read back
};
int RunConvert(const ConvertOptions& options, std::ostream& out, std::ostream& err);

// set, add, rm and rename: one machine of a user bank file, which is written back in place
// (its previous content kept as BANK.bak) when everything reads back intact or allowLoss.
struct EditOptions {
    std::string bank;
    std::string maker;
    std::string grade;
    std::vector<std::string> assignments;  // set, add: KEY=VALUE, KEY a sectioned key or name
    std::string newMaker;                  // rename
    std::string newGrade;                  // rename
    bool allowLoss = false;
    // The code page of the bank's texts: maker, grade and text values, given in UTF-8, are
    // written to the bank in it.
    std::string encoding = "cp1252";
};
int RunSet(const EditOptions& options, std::ostream& out, std::ostream& err);
int RunAdd(const EditOptions& options, std::ostream& out, std::ostream& err);
int RunRemove(const EditOptions& options, std::ostream& out, std::ostream& err);
int RunRename(const EditOptions& options, std::ostream& out, std::ostream& err);

// diff: exit 0 when both banks hold the same machines with the same attributes (those both
// formats hold), 1 when they differ.
struct DiffOptions {
    std::string a;
    std::string b;
    std::string format = "table";  // "table", "csv" or "json"
    std::string encoding = "cp1252";
};
int RunDiff(const DiffOptions& options, std::ostream& out, std::ostream& err);

// import: machines of a CSV or JSON file as export writes it added to a user bank (edited in
// place) or to a new bank file; exit 2 with nothing written for any machine that is refused.
struct ImportOptions {
    std::string file;
    std::string bank;
    std::string onDuplicate = "fail";     // a machine the bank holds: "skip", "replace" or "fail"
    std::string encoding = "cp1252";      // the code page of the bank's texts
    std::string newFormat = "sectioned";  // a new bank of IMM machines: "sectioned" or "legacy"
    bool dryRun = false;
    bool allowLoss = false;
};
int RunImport(const ImportOptions& options, std::ostream& out, std::ostream& err);

// Every machine of a bank file or bank folder with every attribute; ExportCommand.cpp describes
// the CSV and JSON it writes.
struct ExportOptions {
    std::string bank;
    std::string format = "csv";  // "csv" or "json"
    std::string encoding = "cp1252";
};
int RunExport(const ExportOptions& options, std::ostream& out, std::ostream& err);

}  // namespace qzrbank

#endif  // QZRBANK_COMMANDS_H

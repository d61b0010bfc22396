// qzrbank check: files, bank folders and standard input, checked through the loaders; findings
// as compiler messages, a table or JSON.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "BankChecker.h"
#include "BankFiles.h"
#include "Commands.h"
#include "TemporaryFolder.h"
#include "TextEncoding.h"
#include "TextTable.h"

namespace qzrbank {

namespace fs = std::filesystem;

namespace {

constexpr char kStandardInput[] = "<stdin>";

void Append(CheckResult part, CheckResult* all) {
    if (all->findings.empty() && all->files.empty()) {
        *all = std::move(part);
        return;
    }
    all->findings.insert(all->findings.end(), std::make_move_iterator(part.findings.begin()),
                         std::make_move_iterator(part.findings.end()));
    all->files.insert(all->files.end(), std::make_move_iterator(part.files.begin()),
                      std::make_move_iterator(part.files.end()));
}

// Standard input, checked as a file in a temporary folder and named "<stdin>".
bool CheckStandardInput(std::istream& in, CheckResult* all, std::string* error) {
    std::error_code code;
    const TemporaryFolder folder(fs::temp_directory_path(code));
    const fs::path path = folder.Path() / "stdin.bnk";
    std::ofstream copy;
    if (!folder.Path().empty()) {
        copy.open(path, std::ios::binary);
        if (in.peek() != std::istream::traits_type::eof()) {
            copy << in.rdbuf();  // inserting nothing would count as a failure
        }
        copy.close();
    }
    if (folder.Path().empty() || !copy) {
        *error = std::string(kStandardInput) + ": cannot be kept in a temporary file";
        return false;
    }
    CheckResult result = CheckBankFile(path.string());
    for (Finding& finding : result.findings) {
        finding.path = kStandardInput;
    }
    for (WatchedFile& file : result.files) {
        file.path = kStandardInput;
    }
    Append(std::move(result), all);
    return true;
}

bool IsBankFileName(const fs::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return extension == ".bnk";
}

// A Bank folder (or the folder holding one) as a host loads it; any other folder bank file by
// bank file, in name order.
bool CheckFolder(const std::string& dir, CheckResult* all, std::string* error) {
    BankFolder bankFolder;
    if (LocateBankFolder(dir, &bankFolder, error)) {
        Append(CheckBankFolder(bankFolder), all);
        return true;
    }
    std::vector<std::string> files;
    std::error_code code;
    for (fs::directory_iterator entry(fs::path(NativePath(dir)), code), end; !code && entry != end;
         entry.increment(code)) {
        if (IsBankFileName(entry->path()) && entry->is_regular_file(code)) {
            files.push_back(entry->path().string());
        }
    }
    if (code || files.empty()) {
        *error = dir + ": " + (code ? code.message() : "holds no bank file (*.bnk)");
        return false;
    }
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) {
        Append(CheckBankFile(file), all);
    }
    return true;
}

bool CheckTarget(const std::string& target, std::istream& in, CheckResult* all,
                 std::string* error) {
    if (target == "-") {
        return CheckStandardInput(in, all, error);
    }
    const std::string problem = ReadProblem(target);
    if (problem == "is a folder") {
        return CheckFolder(target, all, error);
    }
    if (!problem.empty()) {
        *error = target + ": " + problem;
        return false;
    }
    Append(CheckBankFile(target), all);
    return true;
}

void PrintText(const CheckResult& result, std::ostream& out) {
    std::string line;
    for (const Finding& finding : result.findings) {
        line.clear();
        AppendLocation(finding, &line);
        line += ": ";
        line += SeverityName(finding.severity);
        line += ": ";
        line += finding.message;
        line += '\n';
        out << line;
    }
    for (const WatchedFile& file : result.files) {
        const bool clean =
            std::none_of(result.findings.begin(), result.findings.end(),
                         [&file](const Finding& finding) { return finding.path == file.path; });
        if (clean) {
            out << file.path << ": clean, " << file.machinesRead
                << (file.machinesRead == 1 ? " machine loads\n" : " machines load\n");
        }
    }
}

void PrintFindingTable(const CheckResult& result, const std::string& format, std::ostream& out) {
    TextTable table;
    table.header = {"Path", "Line", "Severity", "Code", "Message"};
    table.rightAligned = {false, true, false, false, false};
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const Finding& finding : result.findings) {
        table.rows.push_back({finding.path, std::to_string(finding.line),
                              SeverityName(finding.severity), finding.code, finding.message});
        json.push_back({{"path", finding.path},
                        {"line", finding.line},
                        {"severity", SeverityName(finding.severity)},
                        {"code", finding.code},
                        {"message", finding.message}});
    }
    if (format == "json") {
        out << JsonText(json) << '\n';
    } else {
        PrintTable(out, table);
    }
}

}  // namespace

int RunCheck(const CheckOptions& options, std::istream& in, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(options.encoding, err);
    if (!encoding) {
        return kExitError;
    }
    CheckResult all;
    bool anyError = false;
    for (const std::string& target : options.targets) {
        std::string error;
        if (!CheckTarget(target, in, &all, &error)) {
            err << "qzrbank: " << error << '\n';
            anyError = true;
        }
    }
    // Messages quote bank texts; a finding is reported whatever bytes it quotes.
    for (Finding& finding : all.findings) {
        encoding->DecodeOrEscapeInPlace(&finding.message);
    }
    if (options.format == "text") {
        PrintText(all, out);
    } else {
        PrintFindingTable(all, options.format, out);
    }
    return anyError ? kExitError : all.findings.empty() ? kExitOk : kExitNegative;
}

}  // namespace qzrbank

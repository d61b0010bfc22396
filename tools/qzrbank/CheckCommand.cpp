// qzrbank check: files, bank folders and standard input, checked through the loaders; findings
// as compiler messages, a table or JSON.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
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

// The report's text goes out in pieces of about this size.
constexpr size_t kReportPiece = 64 * 1024;

// A check's report, written as its findings come: as compiler messages or as JSON, while a
// table, whose columns are as wide as their widest cell, keeps its cells until the end.
class CheckReport {
  public:
    CheckReport(const std::string& format, const TextEncoding& encoding, std::ostream& out)
        : m_format(format == "json"    ? Format::kJson
                   : format == "table" ? Format::kTable
                   : format == "csv"   ? Format::kCsv
                                       : Format::kText),
          m_encoding(encoding),
          m_out(out) {
        if (m_format == Format::kCsv) {
            AppendCsvRow(kHeader, &m_text);
        }
    }

    void Add(const Finding& finding) {
        ++m_findings;
        // Messages quote bank texts; a finding is reported whatever bytes it quotes.
        if (m_format == Format::kText) {
            AddText(finding);
        } else {
            m_message.clear();
            m_encoding.AppendDecodedOrEscaped(finding.message, &m_message);
            if (m_format == Format::kJson) {
                AddJson(finding);
            } else if (m_format == Format::kCsv) {
                AppendCsvRow({finding.path, std::to_string(finding.line),
                              SeverityName(finding.severity), finding.code, m_message},
                             &m_text);
            } else {
                AddTableRow(finding);
            }
        }
        if (m_text.size() >= kReportPiece) {
            Flush();
        }
    }

    void AddFiles(std::vector<WatchedFile> files) {
        m_files.insert(m_files.end(), std::make_move_iterator(files.begin()),
                       std::make_move_iterator(files.end()));
    }

    // Writes what waits for the last finding.
    void Finish() {
        if (m_format == Format::kJson) {
            m_text += m_findings == 0 ? "[]\n" : "\n]\n";
        } else if (m_format == Format::kTable) {
            PrintTableRows();
        } else if (m_format == Format::kText) {
            PrintCleanFiles();
        }
        Flush();
    }

    bool AnyFinding() const { return m_findings > 0; }

  private:
    enum class Format { kText, kTable, kCsv, kJson };

    static constexpr size_t kColumns = 5;
    static inline const std::vector<std::string_view> kHeader = {"Path", "Line", "Severity", "Code",
                                                                 "Message"};

    void Flush() {
        m_out.write(m_text.data(), static_cast<std::streamsize>(m_text.size()));
        m_text.clear();
    }

    void AddText(const Finding& finding) {
        if (m_pathsWithFindings.empty() || m_pathsWithFindings.back() != finding.path) {
            m_pathsWithFindings.push_back(finding.path);
        }
        AppendLocation(finding, &m_text);
        m_text += ": ";
        m_text += SeverityName(finding.severity);
        m_text += ": ";
        m_encoding.AppendDecodedOrEscaped(finding.message, &m_text);
        m_text += '\n';
    }

    void PrintCleanFiles() {
        for (const WatchedFile& file : m_files) {
            if (std::find(m_pathsWithFindings.begin(), m_pathsWithFindings.end(), file.path) ==
                m_pathsWithFindings.end()) {
                m_text += file.path;
                m_text += ": clean, ";
                m_text += std::to_string(file.machinesRead);
                m_text += file.machinesRead == 1 ? " machine loads\n" : " machines load\n";
            }
        }
    }

    void AddJson(const Finding& finding) {
        m_text += m_findings == 1 ? "[\n  {\n    \"path\": " : ",\n  {\n    \"path\": ";
        AppendJsonString(finding.path);
        m_text += ",\n    \"line\": ";
        m_text += std::to_string(finding.line);
        m_text += ",\n    \"severity\": ";
        AppendJsonString(SeverityName(finding.severity));
        m_text += ",\n    \"code\": ";
        AppendJsonString(finding.code);
        m_text += ",\n    \"message\": ";
        AppendJsonString(m_message);
        m_text += "\n  }";
    }

    // A text of printable ASCII is written with its quotes and backslashes escaped, as JSON
    // writes it; any other text as JSON writes it.
    void AppendJsonString(std::string_view text) {
        const bool printable =
            std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
        if (!printable) {
            m_text += JsonText(nlohmann::ordered_json(std::string(text)));
            return;
        }
        m_text += '"';
        for (size_t offset = 0; offset < text.size(); ++offset) {
            const size_t run = offset;
            while (offset < text.size() && text[offset] != '"' && text[offset] != '\\') {
                ++offset;
            }
            m_text.append(text.data() + run, offset - run);
            if (offset == text.size()) {
                break;
            }
            m_text += '\\';
            m_text += text[offset];
        }
        m_text += '"';
    }

    void AddTableRow(const Finding& finding) {
        const std::string line = std::to_string(finding.line);
        const std::string_view cells[kColumns] = {
            finding.path, line, SeverityName(finding.severity), finding.code, m_message};
        for (size_t column = 0; column < kColumns; ++column) {
            m_cells += cells[column];
            m_cellEnds.push_back(m_cells.size());
            m_widths[column] = std::max(m_widths[column], DisplayWidth(cells[column]));
        }
    }

    void PrintTableRows() {
        const std::vector<std::string_view>& header = kHeader;
        const std::vector<bool> rightAligned = {false, true, false, false, false};
        std::vector<size_t> widths(kColumns);
        for (size_t column = 0; column < kColumns; ++column) {
            widths[column] = std::max(m_widths[column], DisplayWidth(header[column]));
        }
        AppendTableRow(header, widths, rightAligned, &m_text);
        std::vector<std::string_view> row(kColumns);
        size_t start = 0;
        for (size_t cell = 0; cell < m_cellEnds.size(); ++cell) {
            row[cell % kColumns] =
                std::string_view(m_cells).substr(start, m_cellEnds[cell] - start);
            start = m_cellEnds[cell];
            if (cell % kColumns == kColumns - 1) {
                AppendTableRow(row, widths, rightAligned, &m_text);
                if (m_text.size() >= kReportPiece) {
                    Flush();
                }
            }
        }
    }

    const Format m_format;
    const TextEncoding m_encoding;
    std::ostream& m_out;
    size_t m_findings = 0;
    std::string m_message;  // JSON and table: the finding's message, decoded
    std::string m_text;     // written, not yet sent out
    std::vector<WatchedFile> m_files;
    std::vector<std::string> m_pathsWithFindings;  // text: to tell the clean files
    std::string m_cells;                           // table: every cell, one after the other
    std::vector<size_t> m_cellEnds;
    size_t m_widths[kColumns] = {};
};

// Standard input, checked as a file in a temporary folder and named "<stdin>".
bool CheckStandardInput(std::istream& in, CheckReport* report, std::string* error) {
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
    Finding renamed;
    std::vector<WatchedFile> files = CheckBankFile(path.string(), [&](const Finding& finding) {
        renamed = finding;
        renamed.path = kStandardInput;
        report->Add(renamed);
    });
    for (WatchedFile& file : files) {
        file.path = kStandardInput;
    }
    report->AddFiles(std::move(files));
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
bool CheckFolder(const std::string& dir, CheckReport* report, std::string* error) {
    const FindingSink add = [report](const Finding& finding) { report->Add(finding); };
    BankFolder bankFolder;
    if (LocateBankFolder(dir, &bankFolder, error)) {
        report->AddFiles(CheckBankFolder(bankFolder, add));
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
        report->AddFiles(CheckBankFile(file, add));
    }
    return true;
}

bool CheckTarget(const std::string& target, std::istream& in, CheckReport* report,
                 std::string* error) {
    if (target == "-") {
        return CheckStandardInput(in, report, error);
    }
    const std::string problem = ReadProblem(target);
    if (problem == "is a folder") {
        return CheckFolder(target, report, error);
    }
    if (!problem.empty()) {
        *error = target + ": " + problem;
        return false;
    }
    report->AddFiles(
        CheckBankFile(target, [report](const Finding& finding) { report->Add(finding); }));
    return true;
}

}  // namespace

int RunCheck(const CheckOptions& options, std::istream& in, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(options.encoding, err);
    if (!encoding) {
        return kExitError;
    }
    CheckReport report(options.format, *encoding, out);
    bool anyError = false;
    for (const std::string& target : options.targets) {
        std::string error;
        if (!CheckTarget(target, in, &report, &error)) {
            err << "qzrbank: " << error << '\n';
            anyError = true;
        }
    }
    report.Finish();
    return anyError ? kExitError : report.AnyFinding() ? kExitNegative : kExitOk;
}

}  // namespace qzrbank

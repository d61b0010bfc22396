// qzrbank info and qzrbank check: one block or one verdict per file.
#include "BankChecker.h"
#include "Commands.h"
#include "FileInfo.h"

namespace qzrbank {

namespace {

std::string Described(int value, const char* zero, const char* one) {
    const std::string number = std::to_string(value);
    if (value == 0 && zero != nullptr) {
        return number + " (" + zero + ")";
    }
    if (value == 1 && one != nullptr) {
        return number + " (" + one + ")";
    }
    return value == -1 ? number + " (unset)" : number;
}

void PrintInfo(std::ostream& out, const std::string& path, const FileInfo& info) {
    std::vector<std::pair<std::string, std::string>> lines;
    const BankHeader& header = info.header;
    if (!header.recognized) {
        lines.emplace_back("Kind", "not a bank (" + header.problem + ")");
    } else {
        lines.emplace_back("Kind", std::string(BankKindName(header.kind)) + " (" +
                                       std::to_string(static_cast<int>(header.kind)) + ")");
        lines.emplace_back("Version", Described(header.version, nullptr, nullptr));
        lines.emplace_back("Format", Described(header.format, "system bank", "user bank"));
        lines.emplace_back("Type",
                           Described(header.type, "injection moulding", "transfer moulding"));
        lines.emplace_back("Machines", std::to_string(info.machines) +
                                           (info.loadAccepted ? "" : " (the loader fails)"));
        lines.insert(lines.end(), info.headerTexts.begin(), info.headerTexts.end());
    }
    size_t width = 0;
    for (const auto& line : lines) {
        width = std::max(width, line.first.size());
    }
    out << path << '\n';
    for (const auto& line : lines) {
        out << "  " << line.first << std::string(width - line.first.size() + 2, ' ') << line.second
            << '\n';
    }
}

}  // namespace

int RunInfo(const std::vector<std::string>& files, std::ostream& out, std::ostream& err) {
    int result = kExitOk;
    bool first = true;
    for (const std::string& path : files) {
        const FileInfo info = ReadFileInfo(path);
        if (!info.readable) {
            err << "qzrbank: " << path << ": " << info.error << '\n';
            result = kExitError;
            continue;
        }
        if (!first) {
            out << '\n';
        }
        first = false;
        PrintInfo(out, path, info);
    }
    return result;
}

int RunCheck(const std::vector<std::string>& files, std::ostream& out, std::ostream& err) {
    bool anyError = false;
    bool anyFinding = false;
    for (const std::string& path : files) {
        const CheckReport report = CheckBankFile(path);
        if (!report.readable) {
            err << "qzrbank: " << path << ": " << report.error << '\n';
            anyError = true;
            continue;
        }
        for (const Finding& finding : report.findings) {
            out << path << ':' << finding.line << ": " << finding.message << '\n';
        }
        if (report.findings.empty()) {
            out << path << ": clean, " << report.machinesLoaded
                << (report.machinesLoaded == 1 ? " machine loads" : " machines load") << '\n';
        }
        anyFinding = anyFinding || !report.findings.empty();
    }
    return anyError ? kExitError : anyFinding ? kExitNegative : kExitOk;
}

}  // namespace qzrbank

// qzrbank info: per file the bank kind, header values, machines and header texts, as text
// blocks, CSV or JSON.
#include <algorithm>

#include "Commands.h"
#include "FileInfo.h"
#include "TextEncoding.h"
#include "TextTable.h"

namespace qzrbank {

namespace {

const char* const kHeaderTextKeys[] = {"CreateDate", "CreateBy", "Remark", "TotalMachine",
                                       "TotalNo"};

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
    const Recognition& header = info.header;
    if (!header.recognized) {
        lines.emplace_back("Kind", "not a bank (no loader recognises its header)");
    } else {
        lines.emplace_back("Kind", std::string(BankKindName(header.kind)) + " (" +
                                       std::to_string(header.kind) + ")");
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

std::string HeaderText(const FileInfo& info, const std::string& key) {
    for (const auto& text : info.headerTexts) {
        if (text.first == key) {
            return text.second;
        }
    }
    return {};
}

void PrintInfoRecords(std::ostream& out, const std::string& format,
                      const std::vector<std::pair<std::string, FileInfo>>& infos) {
    TextTable table;
    table.header = {"Path", "Kind", "Version", "Format", "Type", "Machines", "LoaderFails"};
    table.header.insert(table.header.end(), std::begin(kHeaderTextKeys), std::end(kHeaderTextKeys));
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const auto& [path, info] : infos) {
        const Recognition& header = info.header;
        const bool fails = header.recognized && !info.loadAccepted;
        std::vector<std::string> row = {path,
                                        BankKindName(header.kind),
                                        std::to_string(header.version),
                                        std::to_string(header.format),
                                        std::to_string(header.type),
                                        std::to_string(info.machines),
                                        fails ? "yes" : "no"};
        nlohmann::ordered_json record = {{"path", path},
                                         {"kind", BankKindName(header.kind)},
                                         {"version", header.version},
                                         {"format", header.format},
                                         {"type", header.type},
                                         {"machines", info.machines},
                                         {"loaderFails", fails}};
        for (const char* key : kHeaderTextKeys) {
            row.push_back(HeaderText(info, key));
        }
        for (const auto& text : info.headerTexts) {
            record[text.first] = text.second;
        }
        table.rows.push_back(std::move(row));
        json.push_back(std::move(record));
    }
    if (format == "json") {
        out << JsonText(json) << '\n';
    } else {
        PrintCsv(out, table);
    }
}

}  // namespace

int RunInfo(const InfoOptions& options, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(options.encoding, err);
    if (!encoding) {
        return kExitError;
    }
    int result = kExitOk;
    std::vector<std::pair<std::string, FileInfo>> infos;
    for (const std::string& path : options.files) {
        FileInfo info = ReadFileInfo(path);
        for (auto& [key, text] : info.headerTexts) {
            EncodedText decoded = encoding->Decode(text);
            if (!decoded.ok && info.error.empty()) {
                info.error = key + ": " + encoding->ByteError(text, decoded.badOffset);
            }
            text = std::move(decoded.text);
        }
        if (!info.error.empty()) {
            err << "qzrbank: " << path << ": " << info.error << '\n';
            result = kExitError;
            continue;
        }
        infos.emplace_back(path, std::move(info));
    }
    if (options.format != "text") {
        PrintInfoRecords(out, options.format, infos);
        return result;
    }
    for (size_t i = 0; i < infos.size(); ++i) {
        out << (i > 0 ? "\n" : "");
        PrintInfo(out, infos[i].first, infos[i].second);
    }
    return result;
}

}  // namespace qzrbank

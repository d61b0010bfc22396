#include "TabularMachines.h"

#include <nlohmann/json.hpp>

#include "platform/CNumbers.h"

namespace qzrbank {

namespace {

struct CsvRecord {
    long line = 0;
    std::vector<std::string> fields;
};

// RFC 4180: fields separated by commas, quoted where they hold a comma, quote or line end,
// records ended by CR LF or LF. False for a quote left open.
bool SplitCsv(const std::string& text, std::vector<CsvRecord>* records, std::string* error) {
    CsvRecord record{1, {std::string()}};
    long line = 1;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        std::string& field = record.fields.back();
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
                field += '"';
                ++i;
            } else if (c == '"') {
                quoted = false;
            } else {
                line += c == '\n';
                field += c;
            }
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            record.fields.emplace_back();
        } else if (c == '\n' || (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n')) {
            i += c == '\r';
            records->push_back(std::move(record));
            record = CsvRecord{++line, {std::string()}};
        } else {
            field += c;
        }
    }
    if (quoted) {
        *error = "line " + std::to_string(record.line) + ": a quoted field is not closed";
        return false;
    }
    if (record.fields.size() > 1 || !record.fields.front().empty()) {
        records->push_back(std::move(record));
    }
    return true;
}

bool ReadCsv(const std::string& text, std::vector<TabularMachine>* machines, std::string* error) {
    std::vector<CsvRecord> records;
    if (!SplitCsv(text, &records, error)) {
        return false;
    }
    if (records.empty()) {
        *error = "no header line";
        return false;
    }
    const std::vector<std::string>& header = records.front().fields;
    for (size_t r = 1; r < records.size(); ++r) {
        const CsvRecord& record = records[r];
        if (record.fields.size() != header.size()) {
            *error = "line " + std::to_string(record.line) + ": " +
                     std::to_string(record.fields.size()) + " fields, the header has " +
                     std::to_string(header.size());
            return false;
        }
        TabularMachine machine{"line " + std::to_string(record.line), {}};
        for (size_t k = 0; k < header.size(); ++k) {
            machine.values.emplace_back(header[k], record.fields[k]);
        }
        machines->push_back(std::move(machine));
    }
    return true;
}

// A JSON value as the text a bank value is read from: a double with every digit it needs.
std::string ValueText(const nlohmann::json& value) {
    if (value.is_string()) {
        return value.get<std::string>();
    }
    if (value.is_number_float()) {
        char text[qzr::platform::kLongestNumber];
        return std::string(text, qzr::platform::WriteG(value.get<double>(), 17, text));
    }
    return value.dump();
}

bool ReadJson(const std::string& text, std::vector<TabularMachine>* machines, std::string* error) {
    const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
    if (json.is_discarded() || !json.is_array()) {
        *error = "not a JSON array of machines";
        return false;
    }
    for (size_t i = 0; i < json.size(); ++i) {
        const std::string where = "machine " + std::to_string(i + 1);
        if (!json[i].is_object()) {
            *error = where + ": not an object";
            return false;
        }
        TabularMachine machine{where, {}};
        for (auto item = json[i].begin(); item != json[i].end(); ++item) {
            if (item.value().is_structured()) {
                continue;  // the units of show, no attribute
            }
            machine.values.emplace_back(item.key(), ValueText(item.value()));
        }
        machines->push_back(std::move(machine));
    }
    return true;
}

}  // namespace

bool ReadTabularMachines(const std::string& text, std::vector<TabularMachine>* machines,
                         std::string* error) {
    const std::string withoutBom = text.rfind("\xEF\xBB\xBF", 0) == 0 ? text.substr(3) : text;
    const size_t first = withoutBom.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && (withoutBom[first] == '[' || withoutBom[first] == '{')) {
        return ReadJson(withoutBom, machines, error);
    }
    return ReadCsv(withoutBom, machines, error);
}

}  // namespace qzrbank

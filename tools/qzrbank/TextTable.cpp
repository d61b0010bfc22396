#include "TextTable.h"

#include <algorithm>

namespace qzrbank {

namespace {

std::string CsvCell(const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos) {
        return cell;
    }
    std::string quoted = "\"";
    for (char c : cell) {
        if (c == '"') {
            quoted += '"';
        }
        quoted += c;
    }
    return quoted + "\"";
}

void PrintRow(std::ostream& out, const std::vector<std::string>& row,
              const std::vector<size_t>& widths, const std::vector<bool>& rightAligned) {
    std::string line;
    for (size_t column = 0; column < row.size(); ++column) {
        const std::string& cell = row[column];
        const size_t padding = widths[column] - cell.size();
        const bool right = column < rightAligned.size() && rightAligned[column];
        if (column > 0) {
            line += "  ";
        }
        if (right) {
            line.append(padding, ' ');
        }
        line += cell;
        if (!right) {
            line.append(padding, ' ');
        }
    }
    const size_t end = line.find_last_not_of(' ');
    line.erase(end == std::string::npos ? 0 : end + 1);
    out << line << '\n';
}

}  // namespace

void PrintTable(std::ostream& out, const TextTable& table) {
    std::vector<size_t> widths(table.header.size(), 0);
    auto widen = [&widths](const std::vector<std::string>& row) {
        for (size_t column = 0; column < row.size() && column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    };
    widen(table.header);
    for (const auto& row : table.rows) {
        widen(row);
    }
    PrintRow(out, table.header, widths, table.rightAligned);
    for (size_t i = 0; i < table.rows.size(); ++i) {
        if (i > 0 && std::find(table.groupStarts.begin(), table.groupStarts.end(), i) !=
                         table.groupStarts.end()) {
            out << '\n';
        }
        PrintRow(out, table.rows[i], widths, table.rightAligned);
    }
}

void PrintCsv(std::ostream& out, const TextTable& table) {
    auto print = [&out](const std::vector<std::string>& row) {
        for (size_t column = 0; column < row.size(); ++column) {
            out << (column > 0 ? "," : "") << CsvCell(row[column]);
        }
        out << '\n';
    };
    print(table.header);
    for (const auto& row : table.rows) {
        print(row);
    }
}

std::string JsonText(const nlohmann::ordered_json& value) {
    return value.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace qzrbank

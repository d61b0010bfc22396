#include "TextTable.h"

#include <algorithm>

#include "TextEncoding.h"

namespace qzrbank {

namespace {

struct CharacterRange {
    char32_t first;
    char32_t last;
};

// Characters a terminal shows two columns wide: the East Asian wide and full-width blocks.
constexpr CharacterRange kWideRanges[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},  {0x3400, 0x4DBF},
    {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xAC00, 0xD7A3},  {0xF900, 0xFAFF},
    {0xFE30, 0xFE4F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F},
    {0x1F900, 0x1F9FF}, {0x20000, 0x2FFFD}, {0x30000, 0x3FFFD}};

// Combining marks, shown on the character before them.
constexpr CharacterRange kZeroWidthRanges[] = {
    {0x0300, 0x036F}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0x3099, 0x309A}, {0xFE20, 0xFE2F}};

template <size_t N>
bool InRanges(const CharacterRange (&ranges)[N], char32_t codePoint) {
    return std::any_of(std::begin(ranges), std::end(ranges), [codePoint](const CharacterRange& r) {
        return codePoint >= r.first && codePoint <= r.last;
    });
}

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

}  // namespace

size_t DisplayWidth(std::string_view utf8) {
    size_t width = 0;
    size_t offset = 0;
    while (offset < utf8.size()) {
        char32_t codePoint = 0;
        if (static_cast<unsigned char>(utf8[offset]) < 0x80) {
            ++offset;  // a character below every wide and combining block
            ++width;
        } else if (!ReadCodePoint(utf8, &offset, &codePoint)) {
            ++offset;
            ++width;
        } else if (!InRanges(kZeroWidthRanges, codePoint)) {
            width += InRanges(kWideRanges, codePoint) ? 2 : 1;
        }
    }
    return width;
}

void PrintTable(std::ostream& out, const TextTable& table) {
    std::vector<size_t> widths(table.header.size(), 0);
    auto widen = [&widths](const std::vector<std::string>& row) {
        for (size_t column = 0; column < row.size() && column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], DisplayWidth(row[column]));
        }
    };
    widen(table.header);
    for (const auto& row : table.rows) {
        widen(row);
    }
    std::vector<std::string_view> cells;
    std::string line;
    auto print = [&](const std::vector<std::string>& row) {
        cells.assign(row.begin(), row.end());
        line.clear();
        AppendTableRow(cells, widths, table.rightAligned, &line);
        out << line;
    };
    print(table.header);
    for (size_t i = 0; i < table.rows.size(); ++i) {
        if (i > 0 && std::find(table.groupStarts.begin(), table.groupStarts.end(), i) !=
                         table.groupStarts.end()) {
            out << '\n';
        }
        print(table.rows[i]);
    }
}

void AppendTableRow(const std::vector<std::string_view>& cells, const std::vector<size_t>& widths,
                    const std::vector<bool>& rightAligned, std::string* text) {
    const size_t start = text->size();
    for (size_t column = 0; column < cells.size(); ++column) {
        const std::string_view cell = cells[column];
        const size_t padding = widths[column] - DisplayWidth(cell);
        const bool right = column < rightAligned.size() && rightAligned[column];
        if (column > 0) {
            *text += "  ";
        }
        if (right) {
            text->append(padding, ' ');
        }
        *text += cell;
        if (!right) {
            text->append(padding, ' ');
        }
    }
    const size_t end = text->find_last_not_of(' ');
    text->erase(end == std::string::npos || end < start ? start : end + 1);
    *text += '\n';
}

void AppendCsvRow(const std::vector<std::string_view>& cells, std::string* text) {
    for (size_t column = 0; column < cells.size(); ++column) {
        *text += column > 0 ? "," : "";
        *text += CsvCell(std::string(cells[column]));
    }
    *text += '\n';
}

void PrintCsv(std::ostream& out, const TextTable& table) {
    std::string text;
    AppendCsvRow(std::vector<std::string_view>(table.header.begin(), table.header.end()), &text);
    for (const auto& row : table.rows) {
        AppendCsvRow(std::vector<std::string_view>(row.begin(), row.end()), &text);
    }
    out << text;
}

std::string JsonText(const nlohmann::ordered_json& value) {
    return value.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace qzrbank

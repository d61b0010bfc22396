// Printing rows of texts as an aligned table or as CSV, and JSON text that stays valid for
// bank texts in any 8-bit code page.
#ifndef QZRBANK_TEXTTABLE_H
#define QZRBANK_TEXTTABLE_H

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace qzrbank {

struct TextTable {
    std::vector<std::string> header;
    std::vector<bool> rightAligned;  // per column; numbers are right-aligned
    std::vector<std::vector<std::string>> rows;
    std::vector<size_t> groupStarts;  // rows before which the table prints an empty line
};

// The columns a UTF-8 text takes on a terminal: East Asian wide characters take two, combining
// marks none, every other character (and every byte that starts no character) one.
size_t DisplayWidth(std::string_view utf8);

// Columns two blanks apart, padded to their widest cell by display width; no trailing blanks.
void PrintTable(std::ostream& out, const TextTable& table);
// One line of such a table, its columns widths[i] wide, appended to *text.
void AppendTableRow(const std::vector<std::string_view>& cells, const std::vector<size_t>& widths,
                    const std::vector<bool>& rightAligned, std::string* text);
// One line per row, header first; cells with a comma, quote or line end are quoted.
void PrintCsv(std::ostream& out, const TextTable& table);
// One such line, appended to *text.
void AppendCsvRow(const std::vector<std::string_view>& cells, std::string* text);

// Bank texts are 8-bit texts of the host's code page: bytes that do not form UTF-8 are shown
// as U+FFFD rather than making the output invalid.
std::string JsonText(const nlohmann::ordered_json& value);

}  // namespace qzrbank

#endif  // QZRBANK_TEXTTABLE_H

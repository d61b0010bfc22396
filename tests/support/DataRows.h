// Rows of a data file under tests/data: one row a line, its fields apart by blanks; a quoted
// field keeps its blanks and takes C escapes (\t \n \v \f \r \\ \" \xHH). Blank lines and lines
// that start with '#' are no rows. Each row knows its file, line and text, to label a failure.
#ifndef QZR_TESTS_SUPPORT_DATAROWS_H
#define QZR_TESTS_SUPPORT_DATAROWS_H

#include <fstream>
#include <string>
#include <vector>

namespace qzr::test {

struct DataRow {
    std::string where;  // "file:line: text"
    std::vector<std::string> fields;
};

inline char Unescaped(const std::string& line, size_t* at) {
    const char c = line[++*at];
    switch (c) {
        case 't':
            return '\t';
        case 'n':
            return '\n';
        case 'v':
            return '\v';
        case 'f':
            return '\f';
        case 'r':
            return '\r';
        case 'x':
            *at += 2;
            return static_cast<char>(std::stoi(line.substr(*at - 1, 2), nullptr, 16));
        default:
            return c;
    }
}

inline std::vector<std::string> DataFields(const std::string& line) {
    std::vector<std::string> fields;
    for (size_t at = line.find_first_not_of(' '); at < line.size();
         at = line.find_first_not_of(' ', at)) {
        std::string field;
        if (line[at] != '"') {
            const size_t end = line.find(' ', at);
            field = line.substr(at, end - at);
            at = end;
        } else {
            for (++at; at < line.size() && line[at] != '"'; ++at) {
                field += line[at] == '\\' ? Unescaped(line, &at) : line[at];
            }
            ++at;
        }
        fields.push_back(field);
    }
    return fields;
}

// The rows of tests/data/<name>; none where the file cannot be read.
inline std::vector<DataRow> ReadDataRows(const std::string& name) {
    std::ifstream in(std::string(QZR_TEST_DATA_DIR) + "/" + name);
    std::vector<DataRow> rows;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (!line.empty() && line[0] != '#') {
            rows.push_back({name + ":" + std::to_string(number) + ": " + line, DataFields(line)});
        }
    }
    return rows;
}

}  // namespace qzr::test

#endif  // QZR_TESTS_SUPPORT_DATAROWS_H

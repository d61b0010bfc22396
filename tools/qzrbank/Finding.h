// One thing the checker reports about a bank file.
#ifndef QZRBANK_FINDING_H
#define QZRBANK_FINDING_H

#include <string>
#include <string_view>

namespace qzrbank {

enum class Severity {
    kError,    // the loader drops or changes data
    kWarning,  // legal, but a reader of the file would expect otherwise
};

const char* SeverityName(Severity severity);

struct Finding {
    std::string path;  // as the load named the file
    long line = 0;     // 0: the file as a whole
    Severity severity = Severity::kError;
    std::string code;  // a stable name for the kind of finding ("row-skipped", ...)
    std::string message;
};

// "PATH:LINE", or "PATH" for the file as a whole.
std::string Location(const Finding& finding);
void AppendLocation(const Finding& finding, std::string* text);

// A text in double quotes for messages, with quotes, backslashes and control characters
// escaped so that every finding stays on one line.
std::string Quoted(const std::string& text);
void AppendQuoted(std::string_view text, std::string* quoted);

}  // namespace qzrbank

#endif  // QZRBANK_FINDING_H

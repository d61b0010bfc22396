// The bank validator: reads a bank file as the library's loaders read it and reports, line
// by line, everything that makes the loaders skip, shift, lose or misread a machine, or that
// breaks a row when the machine is saved into a legacy bank.
#ifndef QZRBANK_BANKCHECKER_H
#define QZRBANK_BANKCHECKER_H

#include <string>
#include <string_view>
#include <vector>

#include "BankHeader.h"

namespace qzrbank {

struct Finding {
    int line = 1;
    std::string message;
};

struct CheckReport {
    bool readable = true;  // false: the file could not be read at all (an error, not a finding)
    std::string error;
    BankHeader header;
    int machinesLoaded = 0;         // as the library's loader of the file's kind loads them
    std::vector<Finding> findings;  // in line order
};

CheckReport CheckBankFile(const std::string& path);

// A text in double quotes for messages, with quotes, backslashes and control characters
// escaped so that every finding stays on one line.
std::string Quoted(std::string_view text);

// What in one text of a machine breaks its row in a legacy bank: a comma in the maker or grade,
// an empty maker or grade, a line end, or one of the texts that the legacy loaders take for a
// marker ("Version", "TotalNo", "Database]", "[EOF]"). Each message names the attribute.
std::vector<std::string> LegacyTextHazards(const std::string& attribute, const std::string& value,
                                           bool isName);

}  // namespace qzrbank

#endif  // QZRBANK_BANKCHECKER_H

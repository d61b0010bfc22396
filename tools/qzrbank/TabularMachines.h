// Machines as export writes them, read back for import: CSV with a header line of attribute
// names (as show prints them) and one row per machine, or JSON, an array of one object per
// machine keyed by the same names. Values stay UTF-8 texts here; numbers of JSON become the
// text that reads back as the same double.
#ifndef QZRBANK_TABULARMACHINES_H
#define QZRBANK_TABULARMACHINES_H

#include <string>
#include <utility>
#include <vector>

namespace qzrbank {

struct TabularMachine {
    std::string where;  // "line 3" of CSV, "machine 2" of JSON
    std::vector<std::pair<std::string, std::string>> values;
};

// False, with the reason, for text that is neither (JSON when it starts with '[' or '{').
bool ReadTabularMachines(const std::string& text, std::vector<TabularMachine>* machines,
                         std::string* error);

}  // namespace qzrbank

#endif  // QZRBANK_TABULARMACHINES_H

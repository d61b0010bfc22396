// The checker's reading of the two formats, each a walk that follows its loader step by step
// and records which lines give machines and what goes wrong on the way.
#ifndef QZRBANK_BANKCHECKERSTEPS_H
#define QZRBANK_BANKCHECKERSTEPS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BankChecker.h"
#include "BankHeader.h"

namespace qzrbank {

// A machine the loader adds, in load order.
struct LoadedEntry {
    int line = 1;  // its row, or its section header
    // Legacy rows: the remark the row means (the text between the grade and the trailing
    // numbers), when the row's fields are not shifted; compared with what the loader reads.
    std::optional<std::string> intendedRemark;
};

// A count the file states about itself ("TotalNo" of a legacy system bank, "TotalMachine" of
// a sectioned bank).
struct StatedCount {
    std::string key;
    int line = 1;
    int count = 0;
};

struct SimulatedLoad {
    std::vector<LoadedEntry> loaded;
    std::vector<Finding> findings;
    std::optional<StatedCount> statedCount;
    bool noMachinesRead = false;  // the file is taken for the other format: nothing to pair
};

SimulatedLoad SimulateLegacyLoad(std::string_view text, const BankHeader& header);
SimulatedLoad SimulateSectionedLoad(std::string_view text, const BankHeader& header);

}  // namespace qzrbank

#endif  // QZRBANK_BANKCHECKERSTEPS_H

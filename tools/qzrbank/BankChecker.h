// The bank checker: loads bank files through the library's loaders with a LoadWatcher
// installed, and reports what the loaders did to them, plus machines that a lookup by maker
// and grade cannot tell apart.
#ifndef QZRBANK_BANKCHECKER_H
#define QZRBANK_BANKCHECKER_H

#include <string>
#include <vector>

#include "BankLoading.h"
#include "Finding.h"
#include "LoadWatcher.h"

namespace qzrbank {

struct CheckResult {
    std::vector<Finding> findings;   // by file, then by line
    std::vector<WatchedFile> files;  // every file the loads looked at, in load order
};

// One bank file, loaded by the loader of the kind its header is recognised as.
CheckResult CheckBankFile(const std::string& path);

// A Bank folder, loaded as a host loads it.
CheckResult CheckBankFolder(const BankFolder& folder);

}  // namespace qzrbank

#endif  // QZRBANK_BANKCHECKER_H

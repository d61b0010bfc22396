// The bank checker: loads bank files through the library's loaders with a LoadWatcher
// installed, and reports what the loaders did to them, plus machines that a lookup by maker
// and grade cannot tell apart.
#ifndef QZRBANK_BANKCHECKER_H
#define QZRBANK_BANKCHECKER_H

#include <functional>
#include <string>
#include <vector>

#include "BankLoading.h"
#include "Finding.h"
#include "LoadWatcher.h"

namespace qzrbank {

// Takes a check's findings one at a time, by file, then by line; a finding lives only for the
// call, so that a report of any size is written as it is made rather than held.
using FindingSink = std::function<void(const Finding&)>;

// One bank file, loaded by the loader of the kind its header is recognised as. Gives every
// file the load looked at, in load order.
std::vector<WatchedFile> CheckBankFile(const std::string& path, const FindingSink& report);

// A Bank folder, loaded as a host loads it.
std::vector<WatchedFile> CheckBankFolder(const BankFolder& folder, const FindingSink& report);

}  // namespace qzrbank

#endif  // QZRBANK_BANKCHECKER_H

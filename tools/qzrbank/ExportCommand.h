// Loading the bank a command names, a bank file or a bank folder, as show and export take it.
#ifndef QZRBANK_EXPORTCOMMAND_H
#define QZRBANK_EXPORTCOMMAND_H

#include <ostream>
#include <string>

#include "BankLoading.h"
#include "LoadWatcher.h"

namespace qzrbank {

// A bank folder as list loads it, or one bank file by the loader of the kind its header names;
// false, with the error on err, for a missing or unreadable path, a file that is no bank or one
// its loader refuses. Files the folder load passed over are warnings on err.
bool LoadBankTarget(const std::string& bank, LoadedFolder* loaded, std::ostream& err);

// What a folder load passed over or found under another name; the rest of what the loads did
// is the checker's to tell.
void PrintLoadWarnings(const LoadWatcher& watcher, std::ostream& err);

}  // namespace qzrbank

#endif  // QZRBANK_EXPORTCOMMAND_H

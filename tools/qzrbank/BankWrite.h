// Every bank the tool writes goes through WriteBank: the library's save writes it into a
// temporary folder beside OUT, the library's loader reads it back, and every attribute of every
// machine is compared with what was meant to be written. Only then, and only when nothing was
// lost or the user accepts the loss, does the new bank take OUT's place (the previous OUT kept
// as OUT.bak, as the library's save keeps the file it replaces).
#ifndef QZRBANK_BANKWRITE_H
#define QZRBANK_BANKWRITE_H

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "Finding.h"
#include "MachineComparison.h"
#include "TextEncoding.h"
#include "bank/sectioned/SectionedBankIndex.h"

namespace qzrbank {

// More machine sections than this no loader reads back.
constexpr int kMostSectionedMachines =
    static_cast<int>(qzr::bank::SectionedBankIndex::kMaxMachineSection);

struct WriteOptions {
    std::string output;
    BankFormat format = BankFormat::kSectionedIMM;
    bool force = false;      // replace an existing OUT and OUT.bak
    bool allowLoss = false;  // write even when machines or attributes do not read back
    bool dryRun = false;     // everything but replacing OUT
    // What the loads that filled the catalogue passed over: reported as lost too.
    std::vector<Finding> skippedOnLoad;
    // The input's header texts the format has no place for ("CreateBy \"...\""), reported
    // beside the attributes it does not carry; being about the file, not its machines, they
    // need no --allow-loss.
    std::string headerTextsLost;
    // The code page of the bank's texts, in which the report shows them as UTF-8.
    TextEncoding encoding = TextEncoding(TextEncoding::CodePage::Cp1252);
};

// Gives the catalogue the file attributes the format's writer takes (version, format, type).
void PrepareForFormat(BankFormat format, CQZRMoldingMachineCtrl* catalogue);

// Why the catalogue may not be written to target as options ask; empty when it may: more
// machines than a sectioned load reads back, a folder, or an existing target or target.bak
// without options.force.
std::string WriteRefusal(const CQZRMoldingMachineCtrl& catalogue, const WriteOptions& options,
                         const std::filesystem::path& target);

// Writes the catalogue as a bank of the format to options.output and reports on out what did
// not read back intact, machine by machine. Returns kExitOk (written, nothing lost, or the loss
// allowed), kExitNegative (something would be lost: nothing written) or kExitError (refused or
// failed: nothing written, one line on err). The catalogue's file attributes must be the
// format's (PrepareForFormat).
int WriteBank(const CQZRMoldingMachineCtrl& catalogue, const WriteOptions& options,
              std::ostream& out, std::ostream& err);

// Loads a user bank file to be written back in place: write gets its path, format and what the
// load skipped, and force; a sectioned bank's CreateBy and Remark go to the catalogue. False, with
// one line on err, for a file that cannot be read or is no user bank its loader accepts.
bool LoadUserBank(const std::string& path, CQZRMoldingMachineCtrl* catalogue, WriteOptions* write,
                  std::ostream& err);

// The format of a user bank kind (a qzr::bank::BankKind value); false for other kinds.
bool UserBankFormat(int kind, BankFormat* format);

}  // namespace qzrbank

#endif  // QZRBANK_BANKWRITE_H

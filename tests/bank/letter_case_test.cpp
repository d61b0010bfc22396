// Bank folders copied from Windows to a case-sensitive file system often carry other letter case
// than the default bank paths. Loads and saves through the exported API find them as Windows
// does; on Windows the same tests pass as they stand, its file system ignoring case.
#include <QZRMachine/QZRMachine.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <map>
#include <string>

#include "BankBuilders.h"
#include "DefaultBanks.h"
#include "FixedClock.h"
#include "TempFolder.h"

namespace {

using qzr::test::TempFolder;
using Ctrl = CQZRMoldingMachineCtrl;

const std::string kExamples = std::string(QZR_EXAMPLES_DIR) + "/Bank/";

std::ptrdiff_t EntryCount(const std::string& folder) {
    return std::distance(std::filesystem::directory_iterator(folder),
                         std::filesystem::directory_iterator());
}

// Every default bank, its name and every folder above it in other letter case than the default
// paths, loads whole from the path a host builds; a save of a user bank to its default path
// replaces that very file and puts its backup beside it, no second bank in the asked-for case.
TEST(LetterCase, ABankFolderInOtherCaseLoadsAndSaves) {
    const TempFolder folder;
    const struct {
        const char* example;  // below examples/Bank
        const char* copy;     // below the temporary folder
    } files[] = {
        {"Machine/IMM/Hollenvik-Ostrevo.bnk", "bank/machine/imm/hollenvik-ostrevo.bnk"},
        {"Machine/IMM/Quillner.bnk", "bank/machine/imm/QUILLNER.BNK"},
        {"Machine/IMM/Tessamund-Zundrik.bnk", "bank/machine/imm/Tessamund-Zundrik.bnk"},
        {"Machine/RTM/Ivoskar-Meribold.bnk", "bank/machine/rtm/ivoskar-meribold.bnk"},
        {"Machine/RTM/Trandell.bnk", "bank/machine/rtm/Trandell.BNK"},
        {"User-IMM.bnk", "bank/user-imm.bnk"},
        {"User-RTMIC.bnk", "bank/USER-RTMIC.BNK"},
        {"system-pro.bnk", "bank/System-Pro.bnk"},
        {"user-pro.bnk", "bank/USER-PRO.BNK"},
    };
    for (const auto& file : files) {
        folder.Write(file.copy, qzr::test::ReadBytes(kExamples + file.example));
    }
    // The copy of each user bank, as the save must find it.
    const std::map<std::string, std::string> userCopies = {
        {"User-IMM.bnk", "bank/user-imm.bnk"},
        {"User-RTMIC.bnk", "bank/USER-RTMIC.BNK"},
        {"user-pro.bnk", "bank/USER-PRO.BNK"}};
    const qzr::test::FixedClock clock;
    std::ptrdiff_t entries = EntryCount(folder.File("bank"));
    for (const qzr::test::DefaultBank& bank : qzr::test::kDefaultBanks) {
        SCOPED_TRACE(bank.name);
        // As the library's default bank paths write it.
        std::string defaultTail = std::string("\\Bank\\") + bank.name;
        std::replace(defaultTail.begin(), defaultTail.end(), '/', '\\');
        CQZRMoldingMachineIO io;
        Ctrl expected;
        ASSERT_TRUE(bank.load(io, kExamples + bank.name, &expected));
        Ctrl loaded;
        EXPECT_TRUE(bank.load(io, folder.Folder() + defaultTail, &loaded));
        EXPECT_EQ(qzr::test::Contents(loaded), qzr::test::Contents(expected));
        if (bank.save == nullptr) {
            continue;
        }
        const std::string copy = userCopies.at(bank.name);
        const TempFolder reference;
        reference.MakeFolder("Bank");
        ASSERT_TRUE(bank.save(io, reference.Folder() + "\\", &loaded));
        const std::string previous = folder.Read(copy);
        EXPECT_TRUE(bank.save(io, folder.Folder() + "\\", &loaded));
        EXPECT_EQ(folder.Read(copy), reference.Read(std::string("Bank/") + bank.name));
        EXPECT_EQ(folder.Read(std::string("bank/") + bank.name + ".bak"), previous);
        EXPECT_EQ(EntryCount(folder.File("bank")), ++entries) << "the backup and nothing else";
    }
    EXPECT_EQ(EntryCount(folder.Folder()), 1);
}

// Where several names differ only in case, the exact one wins, else the first in the order
// Windows lists them (upper-cased, then byte by byte). Only a case-sensitive file system holds
// such names side by side.
TEST(LetterCase, TheExactNameWinsThenTheFirstListed) {
    const std::string bank = qzr::test::ReadBytes(kExamples + "User-IMM.bnk");
    std::string other = bank;
    for (size_t at = other.find("Kemberline"); at != std::string::npos;
         at = other.find("Kemberline", at)) {
        other.replace(at, 10, "Vandermeer");
    }
    const struct {
        const char* label;
        const char* wanted;  // holds the example bank
        const char* passed;  // holds the same bank with another maker
    } rows[] = {
        {"exact file beside a variant", "Bank/User-IMM.bnk", "Bank/user-imm.bnk"},
        {"exact folder beside a variant", "Bank/User-IMM.bnk", "bank/User-IMM.bnk"},
        {"first variant of a file", "Bank/USER-IMM.bnk", "Bank/user-imm.bnk"},
        {"first variant of a folder", "BANK/User-IMM.bnk", "bank/User-IMM.bnk"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const TempFolder folder;
        folder.Write("probe", "");
        if (folder.Exists("PROBE")) {
            GTEST_SKIP() << "the file system ignores letter case";
        }
        folder.Write(row.wanted, bank);
        folder.Write(row.passed, other);
        CQZRMoldingMachineIO io;
        Ctrl loaded;
        EXPECT_TRUE(
            qzr::test::kIMMUserBank.load(io, folder.Folder() + "\\Bank\\User-IMM.bnk", &loaded));
        EXPECT_EQ(loaded.GetMachineCount("Kemberline"), 3);
        EXPECT_EQ(loaded.GetMachineCount("Vandermeer"), 0);
    }
}

}  // namespace

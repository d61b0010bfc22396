// Bank folders copied from Windows to a case-sensitive file system often carry other letter case
// than the default bank paths. Loads and saves through the exported API find them as Windows
// does; on Windows the same tests pass as they stand, its file system ignoring case.
#include <QZRMachine/QZRMachine.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "bank/bank_test_support.h"

namespace {

using qzr::bank::testing::FixedClock;
using qzr::bank::testing::TempFolder;
using Ctrl = CQZRMoldingMachineCtrl;

const std::string kExamples = std::string(QZR_EXAMPLES_DIR) + "/Bank/";

std::string ReadExample(const std::string& name) {
    std::ifstream in(kExamples + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// "Maker count, ..." in maker order, then the number of machines.
std::string Summary(const Ctrl& catalogue) {
    std::string summary;
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int id = catalogue.GetMakerID(position);
        summary += std::string(catalogue.GetMaker(id)) + " " +
                   std::to_string(catalogue.GetMachineCount(id)) + ", ";
    }
    return summary + std::to_string(catalogue.GetTotalMachine()) + " machines";
}

bool CaseSensitive(const TempFolder& folder) {
    folder.Write("probe", "");
    return !folder.Exists("PROBE");
}

std::ptrdiff_t EntryCount(const std::string& folder) {
    return std::distance(std::filesystem::directory_iterator(folder),
                         std::filesystem::directory_iterator());
}

using Load = bool (*)(CQZRMoldingMachineIO&, const std::string&, Ctrl*);
const Load kLoadIMMSystem = [](CQZRMoldingMachineIO& io, const std::string& p, Ctrl* c) {
    return io.LoadIMMSystemDatabase(p.c_str(), c);
};
const Load kLoadIMMUser = [](CQZRMoldingMachineIO& io, const std::string& p, Ctrl* c) {
    return io.LoadIMMUserDatabase(p.c_str(), c);
};

// Every default bank, its name and every folder above it in other letter case than the default
// paths, loads whole from the path a host builds.
TEST(LetterCase, ABankFolderInOtherCaseLoadsEveryMachine) {
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
        folder.Write(file.copy, ReadExample(file.example));
    }
    const struct {
        const char* defaultTail;  // as the library's default bank paths write it
        Load load;
    } rows[] = {
        // clang-format off
        {"Bank\\Machine\\IMM\\*.bnk", kLoadIMMSystem},
        {"Bank\\User-IMM.bnk", kLoadIMMUser},
        {"Bank\\Machine\\RTM\\*.bnk", [](auto& io, auto& p, Ctrl* c) { return io.LoadRTMSystemDatabase(p.c_str(), c); }},
        {"Bank\\User-RTMIC.bnk", [](auto& io, auto& p, Ctrl* c) { return io.LoadRTMUserDatabase(p.c_str(), c); }},
        {"Bank\\system-pro.bnk", [](auto& io, auto& p, Ctrl* c) { return io.LoadOldIMMSystemDatabase(p.c_str(), c); }},
        {"Bank\\user-pro.bnk", [](auto& io, auto& p, Ctrl* c) { return io.LoadOldIMMUserDatabase(p.c_str(), c); }},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.defaultTail);
        // The same bank in examples/Bank: the tail past "Bank" and its separator.
        std::string examplePath = kExamples + std::string(row.defaultTail).substr(5);
        std::replace(examplePath.begin(), examplePath.end(), '\\', '/');
        CQZRMoldingMachineIO io;
        Ctrl expected;
        ASSERT_TRUE(row.load(io, examplePath, &expected));
        Ctrl loaded;
        EXPECT_TRUE(row.load(io, folder.Folder() + "\\" + row.defaultTail, &loaded));
        EXPECT_EQ(Summary(loaded), Summary(expected));
    }
}

// Where several names differ only in case, the exact one wins, else the first in the order
// Windows lists them (upper-cased, then byte by byte). Only a case-sensitive file system holds
// such names side by side.
TEST(LetterCase, TheExactNameWinsThenTheFirstListed) {
    const std::string bank = ReadExample("User-IMM.bnk");
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
        if (!CaseSensitive(folder)) {
            GTEST_SKIP() << "the file system ignores letter case";
        }
        folder.Write(row.wanted, bank);
        folder.Write(row.passed, other);
        CQZRMoldingMachineIO io;
        Ctrl loaded;
        EXPECT_TRUE(kLoadIMMUser(io, folder.Folder() + "\\Bank\\User-IMM.bnk", &loaded));
        EXPECT_EQ(loaded.GetMachineCount("Kemberline"), 3);
        EXPECT_EQ(loaded.GetMachineCount("Vandermeer"), 0);
    }
}

// A save to a default path where the bank lies under other case replaces that very file and
// puts its backup beside it; no second bank in the asked-for case appears.
TEST(LetterCase, ASaveUpdatesTheBankFoundInOtherCase) {
    using Save = bool (*)(CQZRMoldingMachineIO&, const std::string&, const Ctrl*);
    const struct {
        const char* example;  // loaded, then saved
        Load load;
        const char* existing;  // the bank in other case, below the temporary folder
        Save save;             // given the temporary folder, as a host passes it
        const char* backup;    // below "bank": the default name with ".bak"
    } rows[] = {
        // clang-format off
        {"User-IMM.bnk", kLoadIMMUser, "bank/user-imm.bnk",
         [](auto& io, auto& f, const Ctrl* c) { return io.SaveIMMUserDatabase((f + "\\Bank\\User-IMM.bnk").c_str(), c); },
         "User-IMM.bnk.bak"},
        {"User-RTMIC.bnk", [](auto& io, auto& p, Ctrl* c) { return io.LoadRTMUserDatabase(p.c_str(), c); },
         "bank/user-rtmic.bnk",
         [](auto& io, auto& f, const Ctrl* c) { return io.SaveRTMUserDatabase((f + "\\").c_str(), c); },
         "User-RTMIC.bnk.bak"},
        {"user-pro.bnk", [](auto& io, auto& p, Ctrl* c) { return io.LoadOldIMMUserDatabase(p.c_str(), c); },
         "bank/USER-PRO.BNK",
         [](auto& io, auto& f, const Ctrl* c) { return io.SaveOldIMMUserDatabase((f + "\\").c_str(), c); },
         "user-pro.bnk.bak"},
        // clang-format on
    };
    const FixedClock clock;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.existing);
        CQZRMoldingMachineIO io;
        Ctrl catalogue;
        ASSERT_TRUE(row.load(io, kExamples + row.example, &catalogue));
        const TempFolder reference;
        reference.MakeFolder("Bank");
        ASSERT_TRUE(row.save(io, reference.Folder(), &catalogue));
        const std::string saved = reference.Read(std::string("Bank/") + row.example);

        const TempFolder folder;
        folder.Write(row.existing, "the previous bank\r\n");
        EXPECT_TRUE(row.save(io, folder.Folder(), &catalogue));
        EXPECT_EQ(folder.Read(row.existing), saved);
        EXPECT_EQ(folder.Read(std::string("bank/") + row.backup), "the previous bank\r\n");
        EXPECT_EQ(EntryCount(folder.Folder()), 1);
        EXPECT_EQ(EntryCount(folder.File("bank")), 2);
    }
}

}  // namespace

// The checker's same-name search against the straightforward one that copies every machine out.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "BankChecker.h"
#include "BankLoading.h"
#include "LoadWatcher.h"
#include "TempFolder.h"
#include "reference/CopyingSameNameSearch.h"
#include "support/BankBuilders.h"

namespace {

using qzrbank::Finding;

// A sectioned bank of the format (0 system, 1 user) holding 60 machines whose makers and grades
// repeat in other letter case; clamping force tells identical data from different.
std::string BankOfRepeatedNames(int format, std::mt19937& random) {
    const char* const makers[] = {"Arvo", "ARVO", "arvo", "Brenn\xE9", "BRENN\xC9", "Cz"};
    const char* const grades[] = {"A-1", "a-1", "B-2", "b-2 "};
    std::string text =
        qzr::test::SectionedHead(9000, format, 0) + "[General]\r\nTotalMachine = 60\r\n";
    for (int i = 1; i <= 60; ++i) {
        text += "[Machine-" + std::to_string(i) + "]\r\nMaker = " + makers[random() % 6] +
                "\r\nGrade = " + grades[random() % 4] +
                "\r\nClampingForce = " + std::to_string(100 * (random() % 2)) + "\r\n";
    }
    return text + "[EOF]\r\n";
}

TEST(Checker, SameNamesAsTheStraightforwardSearchFindsThem) {
    std::mt19937 random(7);
    const qzr::test::TempFolder folder;
    folder.Write("Bank/Machine/IMM/a.bnk", BankOfRepeatedNames(0, random));
    folder.Write("Bank/User-IMM.bnk", BankOfRepeatedNames(1, random));
    qzrbank::BankFolder bankFolder;
    std::string error;
    ASSERT_TRUE(qzrbank::LocateBankFolder(folder.Folder(), &bankFolder, &error)) << error;

    const auto text = [](const Finding& finding) {
        return qzrbank::Location(finding) + ' ' + finding.code + ' ' + finding.message;
    };
    std::vector<std::string> found;
    qzrbank::CheckBankFolder(bankFolder,
                             [&](const Finding& finding) { found.push_back(text(finding)); });
    qzrbank::LoadWatcher watcher;
    qzrbank::LoadedFolder loaded;
    qzrbank::LoadBankFolder(bankFolder, true, false, &loaded, &watcher);
    std::vector<std::string> expected;
    for (const Finding& finding :
         qzr::reference::SameNamesByCopying(loaded.imm.Catalogue(), watcher)) {
        expected.push_back(text(finding));
    }
    EXPECT_EQ(found, expected);
    EXPECT_GT(expected.size(), 80u);
}

}  // namespace

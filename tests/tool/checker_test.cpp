// The checker on crafted files: what the loaders did to each, on its line, with its severity.
// (A shipped bank checking clean is a row of cli_test.cpp.)
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "BankChecker.h"
#include "reference/CopyingSameNameSearch.h"
#include "tool/tool_test_support.h"

namespace {

using qzrbank::CheckBankFile;
using qzrbank::CheckResult;
using qzrbank::Finding;
using qzrbank_test::BankMachine;
using qzrbank_test::TempFolder;
using qzrbank_test::ToolData;

// Every finding of a file as "LINE severity code", in order.
std::string Summary(const CheckResult& result) {
    std::string text;
    for (const Finding& finding : result.findings) {
        text += std::to_string(finding.line) + ' ' + qzrbank::SeverityName(finding.severity) + ' ' +
                finding.code + '\n';
    }
    return text;
}

TEST(Checker, EachFileReportsWhatItsLoaderDid) {
    struct Row {
        const char* file;
        long machinesRead;
        const char* findings;
    };
    const std::vector<Row> rows = {
        {"header_unknown.bnk", 0, "1 error file-skipped\n"},
        {"header_user_with_totalno.bnk", 0, "1 error file-skipped\n"},
        {"sectioned_format_unknown.bnk", 0, "1 error file-skipped\n"},
        {"legacy_version_9000.bnk", 0, "0 warning no-machines\n"},
        {"legacy_row_id_not_one.bnk", 1, "10 error row-skipped\n"},
        {"legacy_too_few_fields.bnk", 1, "10 error row-skipped\n"},
        {"legacy_version_in_row.bnk", 2, "10 error row-skipped\n10 error row-skipped\n"},
        {"legacy_database_marker_in_row.bnk", 2, "10 error row-skipped\n"},
        {"legacy_totalno_in_user_bank.bnk", 1, "10 error load-fails\n"},
        {"legacy_long_line.bnk", 0,
         "0 warning no-machines\n9 error line-cut\n9 error row-skipped\n9 error row-skipped\n"},
        {"legacy_system_totalno_mismatch.bnk", 2, "0 error count-mismatch\n"},
        {"legacy_duplicate_machines.bnk", 4,
         "11 warning duplicate-machine\n12 warning same-name\n"},
        {"sectioned_missing_key.bnk", 3, "13 warning key-from-later-section\n"},
        {"sectioned_missing_grade_stops.bnk", 1, "0 error count-mismatch\n45 error load-stops\n"},
        {"sectioned_long_line.bnk", 1, "18 error line-cut\n"},
        {"sectioned_duplicate_machines.bnk", 4,
         "77 warning duplicate-machine\n109 warning same-name\n"},
        // A value that does not convert keeps another one in its field: data the loader changed.
        {"sectioned_value_not_number.bnk", 1, "33 error value-not-converted\n"},
        {"legacy_field_not_number.bnk", 1, "9 error value-not-converted\n"},
        {"fixture/Bank/User-IMM.bnk", 1, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file);
        const CheckResult result = CheckBankFile(ToolData(row.file));
        EXPECT_EQ(Summary(result), row.findings);
        ASSERT_EQ(result.files.size(), 1u);
        EXPECT_EQ(result.files[0].machinesRead, row.machinesRead);
    }
}

// The same-name search against the straightforward one, on a bank folder of machines that share
// names in other letter case, within one file and across two.
TEST(Checker, SameNamesAsTheStraightforwardSearchFindsThem) {
    std::mt19937 random(7);
    const char* const makers[] = {"Arvo", "ARVO", "arvo", "Brenn\xE9", "BRENN\xC9", "Cz"};
    const char* const grades[] = {"A-1", "a-1", "B-2", "b-2 "};
    const auto machines = [&random, &makers, &grades] {
        std::vector<BankMachine> list;
        for (int i = 0; i < 60; ++i) {
            list.push_back({makers[random() % 6], grades[random() % 4], 100.0 * (random() % 2), 1});
        }
        return list;
    };
    TempFolder folder;
    std::string systemBank = qzrbank_test::UserBankText(machines());
    systemBank.replace(systemBank.find("Format = 1"), 10, "Format = 0");
    folder.Write("Bank/Machine/IMM/a.bnk", systemBank);
    qzrbank_test::WriteUserBank(folder, machines());
    qzrbank::BankFolder bankFolder;
    std::string error;
    ASSERT_TRUE(qzrbank::LocateBankFolder(folder.Folder(), &bankFolder, &error)) << error;

    const auto text = [](const Finding& finding) {
        return qzrbank::Location(finding) + ' ' + finding.code + ' ' + finding.message;
    };
    std::vector<std::string> found;
    for (const Finding& finding : qzrbank::CheckBankFolder(bankFolder).findings) {
        found.push_back(text(finding));
    }
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

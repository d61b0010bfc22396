// convert in both directions: what reaches the target, what is reported lost, round trips,
// the backup of a replaced file, and the refusals.
#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "BankLoading.h"
#include "Commands.h"
#include "MachineDetails.h"
#include "tool/tool_test_support.h"

namespace {

namespace fs = std::filesystem;
using qzrbank_test::ToolData;

struct Output {
    int exitCode;
    std::string out;
    std::string err;
};

Output Convert(const std::string& input, const std::string& output, bool allowLoss = true,
               bool force = false) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = qzrbank::RunConvert({input, output, force, allowLoss}, out, err);
    return {code, out.str(), err.str()};
}

std::vector<CQZRIM> Load(qzrbank::BankLoad load, const std::string& path) {
    CQZRMoldingMachineCtrl catalogue;
    EXPECT_TRUE(qzrbank::LoadBank(load, path, &catalogue)) << path;
    return qzrbank::IMMMachines(catalogue);
}

// The attributes both formats carry come through a conversion unchanged (the example banks
// hold numbers of at most two decimals).
void ExpectSameCarriedAttributes(const std::vector<CQZRIM>& before,
                                 const std::vector<CQZRIM>& after) {
    ASSERT_EQ(before.size(), after.size());
    for (size_t i = 0; i < before.size(); ++i) {
        SCOPED_TRACE(qzrbank::DisplayName(before[i]));
        const std::vector<qzrbank::Attribute> was = qzrbank::DescribeMachine(before[i]);
        const std::vector<qzrbank::Attribute> is = qzrbank::DescribeMachine(after[i]);
        for (size_t k = 0; k < was.size(); ++k) {
            if (was[k].inLegacy && was[k].inSectioned) {
                EXPECT_EQ(was[k].text, is[k].text) << was[k].name;
            }
        }
    }
}

TEST(Convert, LegacyUserBankToSectionedListsWhatIsLost) {
    qzrbank_test::TempFolder folder;
    const std::string input = qzrbank_test::ExamplesBank() + "/user-pro.bnk";
    const std::string output = folder / "User-IMM.bnk";
    const Output result = Convert(input, output);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_NE(result.out.find("6 machines for "), std::string::npos);
    EXPECT_NE(result.out.find("not carried by a sectioned IMM user bank, so lost: TimeConstFR, "
                              "TimeConstIP, NozzleVolume, MaxPressureSlope"),
              std::string::npos);
    EXPECT_NE(result.out.find("  Dravinsk - DR 120: lost TimeConstFR 0.03 sec, TimeConstIP 0.15 "
                              "sec, NozzleVolume 3.2 cm3"),
              std::string::npos)
        << result.out;
    ExpectSameCarriedAttributes(Load(qzrbank::BankLoad::OldIMMUser, input),
                                Load(qzrbank::BankLoad::IMMUser, output));
    EXPECT_NE(qzrbank_test::ReadFile(output).find("CreateBy   = qzrbank convert\r\n"),
              std::string::npos);
}

// Sectioned -> legacy -> sectioned -> legacy: after the first conversion nothing more is lost,
// so the two legacy banks are the same bytes.
TEST(Convert, RoundTripsSettleAfterTheFirstConversion) {
    qzrbank_test::TempFolder folder;
    const std::string input = qzrbank_test::ExamplesBank() + "/User-IMM.bnk";
    const Output first = Convert(input, folder / "first.bnk");
    ASSERT_EQ(first.exitCode, 0) << first.err;
    EXPECT_NE(first.out.find("not carried by a legacy user bank, so lost: Controller, ShotVolume, "
                             "HoldingPressure"),
              std::string::npos);
    EXPECT_NE(first.out.find("Kemberline - KL-110e: lost Controller 2, HoldingPressure 196"),
              std::string::npos);
    ASSERT_EQ(Convert(folder / "first.bnk", folder / "middle.bnk").exitCode, 0);
    // A replaced file is kept as .bak.
    qzrbank_test::WriteFile(folder.Path() / "last.bnk", "previous content\n");
    EXPECT_EQ(Convert(folder / "middle.bnk", folder / "last.bnk").exitCode, 2) << "no --force";
    ASSERT_EQ(Convert(folder / "middle.bnk", folder / "last.bnk", true, true).exitCode, 0);
    EXPECT_EQ(qzrbank_test::ReadFile(folder.Path() / "last.bnk.bak"), "previous content\n");
    EXPECT_EQ(qzrbank_test::ReadFile(folder.Path() / "first.bnk"),
              qzrbank_test::ReadFile(folder.Path() / "last.bnk"));
    ExpectSameCarriedAttributes(Load(qzrbank::BankLoad::IMMUser, input),
                                Load(qzrbank::BankLoad::OldIMMUser, folder / "first.bnk"));
    // Only the outputs are left: the temporary folder of the legacy save is gone.
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 4);
}

// A grade with a comma splits its legacy row: the machine does not read back, so without
// --allow-loss nothing is written; a marker text in a remark is named as the cause.
TEST(Convert, TextsThatBreakALegacyRowAreCaughtBeforeWriting) {
    qzrbank_test::TempFolder folder;
    std::string bank = qzrbank_test::ReadFile(qzrbank_test::ExamplesBank() + "/User-IMM.bnk");
    bank.replace(bank.find("KL-140e"), 7, "KL-140e, rev B");
    qzrbank_test::WriteFile(folder.Path() / "comma.bnk", bank);
    const Output refused = Convert(folder / "comma.bnk", folder / "out.bnk", false);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.out.find("  Kemberline - KL-140e, rev B: not read back\n"), std::string::npos)
        << refused.out;
    EXPECT_NE(refused.out.find("Grade \"KL-140e, rev B\" holds a comma: the legacy row splits it"),
              std::string::npos);
    EXPECT_NE(
        refused.err.find(
            "not written: 0 of 6 machines read back intact (1 not read back, 5 with attributes"),
        std::string::npos)
        << refused.err;
    EXPECT_FALSE(fs::exists(folder.Path() / "out.bnk"));
    EXPECT_EQ(Convert(folder / "comma.bnk", folder / "out.bnk").exitCode, 0);
    EXPECT_EQ(Load(qzrbank::BankLoad::OldIMMUser, folder / "out.bnk").size(), 6u);

    const Output marker =
        Convert(ToolData("sectioned_comma_in_maker.bnk"), folder / "m.bnk", false);
    EXPECT_EQ(marker.exitCode, 1);
    EXPECT_NE(marker.out.find("holds \"Version\""), std::string::npos) << marker.out;
}

TEST(Convert, Refusals) {
    qzrbank_test::TempFolder folder;
    const std::string bank = qzrbank_test::ExamplesBank();
    struct Row {
        const char* label;
        std::string input;
        std::string output;
        const char* error;
    };
    const std::vector<Row> rows = {
        {"a transfer-moulding bank", bank + "/User-RTMIC.bnk", folder / "a.bnk",
         "a bank of kind RTMUserBank"},
        {"an output folder", bank + "/user-pro.bnk", folder.Path().string(), "must name a new"},
        {"the input itself", bank + "/user-pro.bnk", bank + "/user-pro.bnk", "must name a new"},
        {"a refused input", ToolData("legacy_totalno_in_user_bank.bnk"), folder / "d.bnk",
         "refused by its loader"},
        {"an output in a missing folder", bank + "/user-pro.bnk", folder / "none/e.bnk",
         "cannot make a temporary folder"},
        {"a legacy output in a missing folder", bank + "/User-IMM.bnk", folder / "none/f.bnk",
         "cannot make a temporary folder"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const Output result = Convert(row.input, row.output);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(row.error), std::string::npos) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
    EXPECT_TRUE(fs::is_empty(folder.Path())) << "a refusal left a file behind";
}

}  // namespace

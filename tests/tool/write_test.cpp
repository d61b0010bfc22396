// convert and the edits, all written through the honest write: what reaches the target, what is
// reported lost, round trips, the backup of a replaced file, and refusals that write nothing.
#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "BankLoading.h"
#include "BankWrite.h"
#include "Commands.h"
#include "MachineDetails.h"
#include "tool/tool_test_support.h"

namespace {

namespace fs = std::filesystem;
using qzrbank::BankLoad;
using qzrbank_test::Capture;
using qzrbank_test::ExamplesBank;
using qzrbank_test::Output;
using qzrbank_test::ReadBytes;
using qzrbank_test::TempFolder;
using qzrbank_test::ToolData;
using Command = std::function<int(std::ostream&, std::ostream&)>;

Output Convert(const std::string& input, const std::string& output, bool allowLoss = true,
               bool force = false) {
    return Capture([&](std::ostream& out, std::ostream& err) {
        return qzrbank::RunConvert({input, output, force, allowLoss}, out, err);
    });
}

std::vector<CQZRIM> Load(BankLoad load, const std::string& path) {
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
    const TempFolder folder;
    const std::string input = ExamplesBank() + "/user-pro.bnk";
    const std::string output = folder.File("User-IMM.bnk");
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
    ExpectSameCarriedAttributes(Load(BankLoad::OldIMMUser, input), Load(BankLoad::IMMUser, output));
    EXPECT_NE(ReadBytes(output).find("CreateBy   = qzrbank convert\r\n"), std::string::npos);
}

// Sectioned -> legacy -> sectioned -> legacy: after the first conversion nothing more is lost,
// so the two legacy banks are the same bytes.
TEST(Convert, RoundTripsSettleAfterTheFirstConversion) {
    const TempFolder folder;
    const std::string input = ExamplesBank() + "/User-IMM.bnk";
    const Output first = Convert(input, folder.File("first.bnk"));
    ASSERT_EQ(first.exitCode, 0) << first.err;
    EXPECT_NE(first.out.find("not carried by a legacy user bank, so lost: Controller, ShotVolume, "
                             "HoldingPressure"),
              std::string::npos);
    EXPECT_NE(first.out.find("Kemberline - KL-110e: lost Controller 2, HoldingPressure 196"),
              std::string::npos);
    ASSERT_EQ(Convert(folder.File("first.bnk"), folder.File("middle.bnk")).exitCode, 0);
    // A replaced file is kept as .bak.
    folder.Write("last.bnk", "previous content\n");
    ASSERT_EQ(Convert(folder.File("middle.bnk"), folder.File("last.bnk"), true, true).exitCode, 0);
    EXPECT_EQ(folder.Read("last.bnk.bak"), "previous content\n");
    EXPECT_EQ(folder.Read("first.bnk"), folder.Read("last.bnk"));
    ExpectSameCarriedAttributes(Load(BankLoad::IMMUser, input),
                                Load(BankLoad::OldIMMUser, folder.File("first.bnk")));
    // Only the outputs are left: the temporary folder of the legacy save is gone.
    EXPECT_EQ(folder.Snapshot().size(), 4u);
}

// A grade with a comma splits its legacy row: the machine does not read back, so without
// --allow-loss nothing is written; a marker text in a remark is named as the cause.
TEST(Convert, TextsThatBreakALegacyRowAreCaughtBeforeWriting) {
    const TempFolder folder;
    std::string bank = ReadBytes(ExamplesBank() + "/User-IMM.bnk");
    bank.replace(bank.find("KL-140e"), 7, "KL-140e, rev B");
    const std::string comma = folder.Write("comma.bnk", bank);
    const Output refused = Convert(comma, folder.File("out.bnk"), false);
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
    EXPECT_FALSE(folder.Exists("out.bnk"));
    EXPECT_EQ(Convert(comma, folder.File("out.bnk")).exitCode, 0);
    EXPECT_EQ(Load(BankLoad::OldIMMUser, folder.File("out.bnk")).size(), 6u);

    const Output marker =
        Convert(ToolData("sectioned_comma_in_maker.bnk"), folder.File("m.bnk"), false);
    EXPECT_EQ(marker.exitCode, 1);
    EXPECT_NE(marker.out.find("holds \"Version\""), std::string::npos) << marker.out;
}

// A row the loader skips on the way in never reaches the catalogue: the write names it and,
// without --allow-loss, writes nothing.
TEST(Convert, WhatTheLoaderSkipsOnTheWayInIsALoss) {
    const TempFolder folder;
    const std::string input = ToolData("legacy_too_few_fields.bnk");
    const Output refused = Convert(input, folder.File("out.bnk"), false);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.out.find(":10: not read from the input: the row has too few fields"),
              std::string::npos)
        << refused.out;
    EXPECT_NE(refused.err.find("(1 part of the input the loader skipped)"), std::string::npos)
        << refused.err;
    EXPECT_FALSE(folder.Exists("out.bnk"));
    EXPECT_EQ(Convert(input, folder.File("out.bnk")).exitCode, 0);
}

TEST(Write, RefusalsWriteNothing) {
    const TempFolder folder;
    const std::string bank = ExamplesBank();
    CQZRMoldingMachineCtrl empty;
    qzrbank::PrepareForFormat(qzrbank::BankFormat::kSectionedIMM, &empty);
    // One machine more than a sectioned load reads back, built in memory only.
    CQZRMoldingMachineCtrl huge(empty);
    for (int i = 0; i <= qzrbank::kMostSectionedMachines; ++i) {
        CQZRIM machine;
        machine.SetMaker("Hollin");
        machine.SetGrade(("H-" + std::to_string(i)).c_str());
        ASSERT_TRUE(huge.AddMachine(machine));
    }
    const qzr::test::FolderSnapshot kept = {{"taken.bnk", "keep\n"}, {"backed.bnk.bak", "keep\n"}};
    folder.Restore(kept);
    const auto write = [](const CQZRMoldingMachineCtrl& catalogue, const std::string& output) {
        return [&catalogue, output](std::ostream& out, std::ostream& err) {
            qzrbank::WriteOptions options;
            options.output = output;
            return qzrbank::WriteBank(catalogue, options, out, err);
        };
    };
    const auto convert = [](const std::string& input, const std::string& output) {
        return [input, output](std::ostream& out, std::ostream& err) {
            return qzrbank::RunConvert({input, output, false, true}, out, err);
        };
    };
    const struct {
        const char* label;
        Command run;
        const char* error;
    } rows[] = {
        {"more machines than a sectioned load reads", write(huge, folder.File("huge.bnk")),
         "65536 machines: a sectioned bank of more than 65535"},
        {"a folder", write(empty, folder.Folder()), "is a folder"},
        {"an existing OUT without --force",
         convert(bank + "/user-pro.bnk", folder.File("taken.bnk")), "exists (--force"},
        {"an existing OUT.bak without --force",
         convert(bank + "/user-pro.bnk", folder.File("backed.bnk")),
         "backed.bnk.bak exists and would be replaced"},
        {"a transfer-moulding bank", convert(bank + "/User-RTMIC.bnk", folder.File("a.bnk")),
         "a bank of kind RTMUserBank"},
        {"an output folder", convert(bank + "/user-pro.bnk", folder.Folder()), "must name a new"},
        {"the input itself", convert(bank + "/user-pro.bnk", bank + "/user-pro.bnk"),
         "must name a new"},
        {"a refused input",
         convert(ToolData("legacy_totalno_in_user_bank.bnk"), folder.File("d.bnk")),
         "refused by its loader"},
        {"an output in a missing folder",
         convert(bank + "/user-pro.bnk", folder.File("none/e.bnk")),
         "cannot make a temporary folder"},
        {"a legacy output in a missing folder",
         convert(bank + "/User-IMM.bnk", folder.File("none/f.bnk")),
         "cannot make a temporary folder"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const Output result = Capture(row.run);
        EXPECT_EQ(result.exitCode, qzrbank::kExitError);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(row.error), std::string::npos) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
    EXPECT_EQ(folder.Snapshot(), kept);
}

qzrbank::EditOptions Edit(const char* maker, const char* grade,
                          std::vector<std::string> assignments = {}, const char* newMaker = "",
                          const char* newGrade = "") {
    qzrbank::EditOptions options;
    options.maker = maker;
    options.grade = grade;
    options.assignments = std::move(assignments);
    options.newMaker = newMaker;
    options.newGrade = newGrade;
    return options;
}

using Runner = int (*)(const qzrbank::EditOptions&, std::ostream&, std::ostream&);

const CQZRIM* Find(const std::vector<CQZRIM>& machines, const char* maker, const char* grade) {
    for (const CQZRIM& machine : machines) {
        if (std::string(machine.GetMaker()) == maker && std::string(machine.GetGrade()) == grade) {
            return &machine;
        }
    }
    return nullptr;
}

// Each edit on a fresh copy of an example bank; an edit that succeeds keeps the previous bank
// as .bak and reads back as made, one that fails leaves the bank as it was.
TEST(Edits, ReadBackAsMadeOrLeaveTheBankAlone) {
    using Check = std::function<bool(const std::vector<CQZRIM>&)>;
    struct Row {
        const char* label;
        const char* bank;
        BankLoad load;
        Runner run;
        qzrbank::EditOptions options;
        int exitCode;
        const char* message;  // on err, or empty
        Check check;          // on the bank after a successful edit
    };
    const std::vector<Row> rows = {
        {"set by name and by sectioned key", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunSet,
         Edit("kemberline", "kl-140E",
              {"ShotWeight=123.4", "MaxInjectionPressure=-1e2", "Remark=new, text"}),
         0, "",
         [](const std::vector<CQZRIM>& m) {
             const CQZRIM* machine = Find(m, "Kemberline", "KL-140e");
             return machine != nullptr && machine->GetShotWeight() == 123.4 &&
                    machine->GetInjectionPressure() == -100.0 &&
                    std::string(machine->GetRemark()) == "new, text";
         }},
        {"a legacy bank rounds to two decimals", "user-pro.bnk", BankLoad::OldIMMUser,
         qzrbank::RunSet, Edit("Dravinsk", "DR 120", {"ShotWeight=12.345"}), 1,
         "not written: 5 of 6 machines read back intact (1 with values changed)", nullptr},
        {"an unknown key", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunSet,
         Edit("Dravinsk", "DR 450", {"ShotWieght=1"}), 2, "unknown key \"ShotWieght\"", nullptr},
        {"a bad number", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunSet,
         Edit("Dravinsk", "DR 450", {"ClampingForce=12x"}), 2,
         "ClampingForce \"12x\" is not a number", nullptr},
        {"a missing machine", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunRemove,
         Edit("Dravinsk", "DR 1"), 2, "no machine Dravinsk - DR 1", nullptr},
        {"add refuses a name there in other letter case", "User-IMM.bnk", BankLoad::IMMUser,
         qzrbank::RunAdd, Edit("DRAVINSK", "dr 450"), 2, "holds Dravinsk - DR 450 already",
         nullptr},
        {"add", "user-pro.bnk", BankLoad::OldIMMUser, qzrbank::RunAdd,
         Edit("Orsted", "O-1", {"ClampingForce=55", "NozzleSpecification.Type=3"}), 0, "",
         [](const std::vector<CQZRIM>& m) {
             const CQZRIM* machine = Find(m, "Orsted", "O-1");
             return m.size() == 7 && machine != nullptr && machine->GetClampingForce() == 55.0 &&
                    machine->GetNozzleSpecification().Type == 3;
         }},
        {"rm", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunRemove, Edit("Quillner", "QE-120 LS"),
         0, "", [](const std::vector<CQZRIM>& m) { return m.size() == 5; }},
        {"rename", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunRename,
         Edit("Dravinsk", "DR 450", {}, "Orsted", "O-450"), 0, "",
         [](const std::vector<CQZRIM>& m) {
             const CQZRIM* machine = Find(m, "Orsted", "O-450");
             return m.size() == 6 && Find(m, "Dravinsk", "DR 450") == nullptr &&
                    machine != nullptr && machine->GetClampingForce() > 0.0;
         }},
        {"rename onto another machine", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunRename,
         Edit("Dravinsk", "DR 450", {}, "Dravinsk", "DR 700"), 2, "holds Dravinsk - DR 700",
         nullptr},
        {"a system bank", "system-pro.bnk", BankLoad::OldIMMSystem, qzrbank::RunRemove,
         Edit("Dravinsk", "DR 120"), 2, "this takes a user bank", nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const TempFolder folder;
        const std::string original = ReadBytes(ExamplesBank() + "/" + row.bank);
        qzrbank::EditOptions options = row.options;
        options.bank = folder.Write(row.bank, original);
        const Output result = Capture(
            [&](std::ostream& out, std::ostream& err) { return row.run(options, out, err); });
        EXPECT_EQ(result.exitCode, row.exitCode) << result.err << result.out;
        EXPECT_NE(result.err.find(row.message), std::string::npos) << result.err;
        if (row.exitCode != 0) {
            EXPECT_EQ(folder.Snapshot().size(), 1u) << "a changed bank or a backup";
            EXPECT_TRUE(folder.Read(row.bank) == original);
            continue;
        }
        EXPECT_TRUE(folder.Read(std::string(row.bank) + ".bak") == original);
        EXPECT_TRUE(row.check(Load(row.load, options.bank)));
    }
}

}  // namespace

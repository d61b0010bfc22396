// The write's refusals, called directly rather than through a command (a bank of 65,536 rows
// would make a slow transcript): a catalogue larger than a sectioned load reads back, and a
// target that is a folder. Either writes nothing.
#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include <sstream>
#include <string>

#include "BankWrite.h"
#include "Commands.h"
#include "TempFolder.h"

namespace {

TEST(Write, RefusalsWriteNothing) {
    const qzr::test::TempFolder folder;
    CQZRMoldingMachineCtrl empty;
    qzrbank::PrepareForFormat(qzrbank::BankFormat::kSectionedIMM, &empty);
    CQZRMoldingMachineCtrl huge(empty);
    for (int i = 0; i <= qzrbank::kMostSectionedMachines; ++i) {
        if (i == qzrbank::kMostSectionedMachines) {
            EXPECT_EQ(qzrbank::WriteRefusal(huge, {}, folder.File("full.bnk")), "")
                << "a full sectioned bank is written";
        }
        CQZRIM machine;
        machine.SetMaker("Hollin");
        machine.SetGrade(("H-" + std::to_string(i)).c_str());
        ASSERT_TRUE(huge.AddMachine(machine));
    }
    const struct {
        const char* label;
        const CQZRMoldingMachineCtrl& catalogue;
        std::string output;
        std::string error;
    } rows[] = {
        {"more machines than a sectioned load reads", huge, folder.File("huge.bnk"),
         "qzrbank: " + folder.File("huge.bnk") +
             ": 65536 machines: a sectioned bank of more than 65535 machines does not load back\n"},
        {"a folder", empty, folder.Folder(), "qzrbank: " + folder.Folder() + ": is a folder\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        qzrbank::WriteOptions options;
        options.output = row.output;
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(qzrbank::WriteBank(row.catalogue, options, out, err), qzrbank::kExitError);
        EXPECT_EQ(out.str(), "");
        EXPECT_EQ(err.str(), row.error);
    }
    EXPECT_TRUE(folder.Snapshot().empty());
}

}  // namespace

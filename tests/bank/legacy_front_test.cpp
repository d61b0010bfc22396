// The front's legacy members, through the exported API only, as a host uses them.
#include <gtest/gtest.h>

#include <string>

#include <QZRMachine/QZRMachine.h>

#include "legacy_test_support.h"

namespace qzr::legacy {
namespace {

using testing::CrLfLines;
using testing::InjectionMachines;
using testing::LegacyFields;
using testing::ScratchFolder;

const std::string kSystemBank =
    CrLfLines({"[Header],,,,,,,,,", "Version,7007,,,,,,,,,", "TotalNo,2,,,,,,,,,",
               "ID,Maker,Grade,Remark,ClampForce,ShotWeight,,,,,", "[Database],,,,,,,,,",
               "1,Omega,O-35,compact,35,40,200,60,22,90,1,0.9",
               "2,Omega,O-80,,80,120,190,85,30,130,0,1", "[EOF],,,,,,,,,"});

void ExpectAttributes(const CQZRMoldingMachineCtrl& catalogue, int version, int format, int type) {
    EXPECT_EQ(catalogue.GetFileVersion(), version);
    EXPECT_EQ(catalogue.GetFileFormat(), format);
    EXPECT_EQ(catalogue.GetFileType(), type);
}

TEST(LegacyFront, AFailedUserLoadPreparesANewUserBank) {
    ScratchFolder folder;
    folder.MakeFolder("Bank");
    const std::string bank = folder.File("Bank/user-pro.bnk");

    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl catalogue;
    EXPECT_FALSE(front.LoadOldIMMUserDatabase(bank.c_str(), &catalogue));
    ExpectAttributes(catalogue, 7004, 1, 0);
    EXPECT_FALSE(catalogue.IsDatabaseInitialize());

    CQZRIM machine;
    machine.SetMaker("Sigma");
    machine.SetGrade("S-450");
    machine.SetRemark("two-platen");
    machine.SetClampingForce(450);
    machine.SetScrewDiameter(60);
    machine.SetScrewStroke(300);
    ASSERT_TRUE(catalogue.AddMachine(machine));
    ASSERT_TRUE(front.SaveOldIMMUserDatabase(folder.Folder().c_str(), &catalogue));

    CQZRMoldingMachineIO later;
    CQZRMoldingMachineCtrl reloaded;
    ASSERT_TRUE(later.LoadOldIMMUserDatabase(bank.c_str(), &reloaded));
    ExpectAttributes(reloaded, 7007, 1, 0);
    ASSERT_EQ(reloaded.GetTotalMachine(), 1);
    CQZRIM loaded;
    ASSERT_TRUE(reloaded.GetMachine("sigma", "s-450", loaded));
    machine.SetShotVolume(848.2);  // 60 * 0.7853975 * 60 * 300 / 1000, four digits
    EXPECT_EQ(LegacyFields(loaded), LegacyFields(machine));
}

TEST(LegacyFront, TheFallbackReplacesAttributesOfEveryFailedUserLoad) {
    ScratchFolder folder;
    const std::string system = folder.Write("system-pro.bnk", kSystemBank);
    const std::string cut =
        folder.Write("user-pro.bnk", CrLfLines({"[Header]", "Version,7003", "", "[Database]",
                                                "1,Tau,T-1,,1,2,3,4,5,6,0.02,0.2,3", "TotalNo,1",
                                                "1,Phi,F-1,,1,2,3,4,5,6,0.02,0.2,3"}));

    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(front.LoadOldIMMSystemDatabase(system.c_str(), &catalogue));
    ExpectAttributes(catalogue, 7007, 0, 0);
    EXPECT_EQ(catalogue.GetTotalMachine(), 2);

    // A system bank is not a user bank; the flag stays set.
    EXPECT_FALSE(front.LoadOldIMMUserDatabase(system.c_str(), &catalogue));
    ExpectAttributes(catalogue, 7004, 1, 0);
    EXPECT_TRUE(catalogue.IsDatabaseInitialize());

    // A load that fails half way keeps its machines.
    EXPECT_FALSE(front.LoadOldIMMUserDatabase(cut.c_str(), &catalogue));
    ExpectAttributes(catalogue, 7004, 1, 0);
    EXPECT_EQ(catalogue.GetTotalMachine(), 3);
    EXPECT_EQ(catalogue.GetMachineCount("Tau"), 1);
    EXPECT_EQ(catalogue.GetMachineCount("Phi"), 0);
}

TEST(LegacyFront, SystemBankThenUserBankKeepsTheSystemFormat) {
    ScratchFolder folder;
    folder.MakeFolder("Bank");
    const std::string system = folder.Write("Bank/system-pro.bnk", kSystemBank);
    const std::string user = folder.Write(
        "Bank/user-pro.bnk", CrLfLines({"[Header]", "Version,7004", "", "[Database]",
                                        "1,Chi,C-1,own,1,2,3,4,5,6,0.02,0.2,3,1800", "[EOF]"}));

    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(front.LoadOldIMMSystemDatabase(system.c_str(), &catalogue));
    ASSERT_TRUE(front.LoadOldIMMUserDatabase(user.c_str(), &catalogue));
    ExpectAttributes(catalogue, 7004, 0, 0);
    EXPECT_EQ(catalogue.GetTotalMachine(), 3);
    CQZRIM omega;
    ASSERT_TRUE(catalogue.GetMachine("Omega", "O-35", omega));
    EXPECT_STREQ(omega.GetRemark(), "compact");
    EXPECT_EQ(omega.GetMachineEnergyType(), 1);
    EXPECT_EQ(omega.GetHydraulicPressureTransferFactor(), 0.9);

    // Such a catalogue is a system bank as far as the legacy writer is concerned.
    EXPECT_FALSE(front.SaveOldIMMUserDatabase(folder.Folder().c_str(), &catalogue));
    EXPECT_FALSE(folder.Exists("Bank/user-pro.bnk.bak"));
}

TEST(LegacyFront, MissingArgumentsAreRefusedBeforeAnything) {
    ScratchFolder folder;
    const std::string system = folder.Write("system-pro.bnk", kSystemBank);
    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl catalogue;
    char path[8] = "x";
    EXPECT_FALSE(front.LoadOldIMMSystemDatabase(nullptr, &catalogue));
    EXPECT_FALSE(front.LoadOldIMMSystemDatabase(system.c_str(), nullptr));
    EXPECT_FALSE(front.LoadOldIMMUserDatabase(nullptr, &catalogue));
    EXPECT_FALSE(front.SaveOldIMMUserDatabase(nullptr, &catalogue));
    EXPECT_FALSE(front.SaveOldIMMUserDatabase(folder.Folder().c_str(), nullptr));
    EXPECT_FALSE(front.GetLoadDatabasePath(path, sizeof(path)));
    // A refused user load sets no fallback attributes.
    ExpectAttributes(catalogue, 0, 0, 0);

    EXPECT_TRUE(front.LoadOldIMMSystemDatabase(system.c_str(), &catalogue));
    EXPECT_TRUE(front.GetLoadDatabasePath(path, sizeof(path)));
    EXPECT_STREQ(path, "");
}

}  // namespace
}  // namespace qzr::legacy

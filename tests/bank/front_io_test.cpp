// The exported load/save front: argument checks, the fallbacks after failed user-bank loads,
// the reader kept from one load to the next, and the members that do nothing.
#include <gtest/gtest.h>

#include <QZRMachine/QZRMoldingMachineIO.h>

#include <cstring>
#include <string>

#include "sectioned_test_support.h"

namespace {

using qzr::sectioned::testing::FixedClock;
using qzr::sectioned::testing::JoinLines;
using qzr::sectioned::testing::SampleIMM;
using qzr::sectioned::testing::SampleRTM;
using qzr::sectioned::testing::ScratchFolder;
using qzr::sectioned::testing::SetFileAttributes;

std::string LoadPath(const CQZRMoldingMachineIO& front, int size, bool* result) {
    char buffer[300];
    std::memset(buffer, 'x', sizeof buffer);
    buffer[sizeof buffer - 1] = '\0';
    *result = front.GetLoadDatabasePath(buffer, size);
    return buffer;
}

std::string Attributes(const CQZRMoldingMachineCtrl& catalogue) {
    return std::to_string(catalogue.GetFileVersion()) + "/" +
           std::to_string(catalogue.GetFileFormat()) + "/" +
           std::to_string(catalogue.GetFileType()) +
           (catalogue.IsDatabaseInitialize() ? " init" : "");
}

TEST(FrontIO, LoadDatabasePathNeedsAReader) {
    ScratchFolder folder;
    CQZRMoldingMachineIO front;
    bool result = true;
    LoadPath(front, 260, &result);
    EXPECT_FALSE(result) << "a new front has no reader";

    CQZRMoldingMachineCtrl catalogue;
    EXPECT_FALSE(front.LoadIMMUserDatabase(folder.File("u.bnk").c_str(), nullptr));
    EXPECT_FALSE(front.LoadRTMSystemDatabase(nullptr, &catalogue));
    LoadPath(front, 260, &result);
    EXPECT_FALSE(result) << "refused arguments create no reader";

    EXPECT_FALSE(front.LoadIMMUserDatabase(folder.File("missing.bnk").c_str(), &catalogue));
    for (int size : {1, 2, 260}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(LoadPath(front, size, &result), "");
        EXPECT_TRUE(result);
    }
    LoadPath(front, 0, &result);
    EXPECT_FALSE(result);
    LoadPath(front, -5, &result);
    EXPECT_FALSE(result);
    EXPECT_FALSE(front.GetLoadDatabasePath(nullptr, 10));

    // Copies make their own reader when they first need one.
    const CQZRMoldingMachineIO copy(front);
    LoadPath(copy, 260, &result);
    EXPECT_FALSE(result);
    CQZRMoldingMachineIO assigned;
    ASSERT_FALSE(assigned.LoadIMMUserDatabase(folder.File("missing.bnk").c_str(), &catalogue));
    assigned = CQZRMoldingMachineIO();
    LoadPath(assigned, 260, &result);
    EXPECT_FALSE(result);
    CQZRMoldingMachineIO& same = front;
    front = same;
    LoadPath(front, 260, &result);
    EXPECT_TRUE(result) << "assigning a front to itself keeps its reader";
}

TEST(FrontIO, FallbacksAfterFailedUserLoads) {
    struct FallbackRow {
        const char* label;
        bool (*load)(CQZRMoldingMachineIO&, const char*, CQZRMoldingMachineCtrl*);
        std::string attributes;
    };
    const FallbackRow rows[] = {
        {"legacy user bank",
         [](CQZRMoldingMachineIO& f, const char* p, CQZRMoldingMachineCtrl* c) {
             return f.LoadOldIMMUserDatabase(p, c);
         },
         "7004/1/0"},
        {"transfer-moulding user bank",
         [](CQZRMoldingMachineIO& f, const char* p, CQZRMoldingMachineCtrl* c) {
             return f.LoadRTMUserDatabase(p, c);
         },
         "9000/1/1"},
        {"injection-moulding user bank",
         [](CQZRMoldingMachineIO& f, const char* p, CQZRMoldingMachineCtrl* c) {
             return f.LoadIMMUserDatabase(p, c);
         },
         "1/2/3"},
    };
    ScratchFolder folder;
    for (const FallbackRow& row : rows) {
        SCOPED_TRACE(row.label);
        CQZRMoldingMachineIO front;
        CQZRMoldingMachineCtrl catalogue;
        SetFileAttributes(catalogue, 1, 2, 3);
        EXPECT_FALSE(row.load(front, folder.File("missing.bnk").c_str(), &catalogue));
        EXPECT_EQ(Attributes(catalogue), row.attributes) << "the flag is not touched either";
        // Refused arguments change nothing.
        CQZRMoldingMachineCtrl untouched;
        SetFileAttributes(untouched, 1, 2, 3);
        EXPECT_FALSE(row.load(front, nullptr, &untouched));
        EXPECT_EQ(Attributes(untouched), "1/2/3");
        EXPECT_FALSE(row.load(front, folder.File("missing.bnk").c_str(), nullptr));
    }
}

// After a failed transfer-moulding load, the catalogue is ready to be saved as a new bank.
TEST(FrontIO, FailedRTMLoadThenSaveWritesANewUserBank) {
    FixedClock clock;
    ScratchFolder folder;
    folder.MakeFolder("Bank");
    const std::string bankFolder = folder.Folder() + "/";
    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_FALSE(
        front.LoadRTMUserDatabase((bankFolder + "Bank/User-RTMIC.bnk").c_str(), &catalogue));
    CQZRRTM machine = SampleRTM("Ostrava Form", "TR-1", 1);
    catalogue.AddMachine(machine);
    ASSERT_TRUE(front.SaveRTMUserDatabase(bankFolder.c_str(), &catalogue));
    ASSERT_TRUE(folder.Exists("Bank/User-RTMIC.bnk"));

    CQZRMoldingMachineCtrl reloaded;
    ASSERT_TRUE(front.LoadRTMUserDatabase((bankFolder + "Bank/User-RTMIC.bnk").c_str(), &reloaded));
    EXPECT_EQ(reloaded.GetTotalMachine(), 1);
    EXPECT_EQ(Attributes(reloaded), "9000/1/1 init");
}

TEST(FrontIO, SavesAndLoadsEachKind) {
    FixedClock clock;
    ScratchFolder folder;
    folder.MakeFolder("Bank");
    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl imm;
    SetFileAttributes(imm, 9000, 1, 0);
    CQZRIM first = SampleIMM("Harlow Presswerk", "HX-1", 1);
    CQZRIM second = SampleIMM("Kessling", "K-2", 2);
    imm.AddMachine(first);
    imm.AddMachine(second);
    const std::string immPath = folder.File("Bank/User-IMM.bnk");
    EXPECT_FALSE(front.SaveIMMUserDatabase(nullptr, &imm));
    EXPECT_FALSE(front.SaveIMMUserDatabase(immPath.c_str(), nullptr));
    ASSERT_TRUE(front.SaveIMMUserDatabase(immPath.c_str(), &imm));

    CQZRMoldingMachineCtrl loaded;
    ASSERT_TRUE(front.LoadIMMUserDatabase(immPath.c_str(), &loaded));
    EXPECT_EQ(loaded.GetTotalMachine(), 2);
    ASSERT_TRUE(front.SaveIMMUserDatabase(immPath.c_str(), &loaded));
    EXPECT_EQ(folder.Read("Bank/User-IMM.bnk"), folder.Read("Bank/User-IMM.bnk.bak"));

    // The legacy user bank goes to the folder's "Bank\user-pro.bnk".
    CQZRMoldingMachineCtrl legacy;
    SetFileAttributes(legacy, 7004, 1, 0);
    legacy.AddMachine(first);
    EXPECT_FALSE(front.SaveOldIMMUserDatabase(nullptr, &legacy));
    ASSERT_TRUE(front.SaveOldIMMUserDatabase((folder.Folder() + "/").c_str(), &legacy));
    EXPECT_TRUE(folder.Exists("Bank/user-pro.bnk"));
    CQZRMoldingMachineCtrl legacyLoaded;
    EXPECT_TRUE(
        front.LoadOldIMMUserDatabase(folder.File("Bank/user-pro.bnk").c_str(), &legacyLoaded));
    EXPECT_EQ(legacyLoaded.GetTotalMachine(), 1);
    EXPECT_FALSE(
        front.LoadOldIMMSystemDatabase(folder.File("Bank/user-pro.bnk").c_str(), &legacyLoaded));
    EXPECT_FALSE(front.LoadOldIMMSystemDatabase(nullptr, &legacyLoaded));
}

TEST(FrontIO, SystemBankFoldersThroughTheFront) {
    ScratchFolder folder;
    folder.Write("Bank/Machine/IMM/one.bnk",
                 JoinLines({"[FileHeader]", "Version = 9000", "Format = 0", "Type = 0", "",
                            "[Machine-1]", "Maker = Harlow", "Grade = S-1"}));
    folder.Write("Bank/Machine/RTM/one.bnk",
                 JoinLines({"[FileHeader]", "Version = 9000", "Format = 0", "Type = 1", "",
                            "[Machine-1]", "Maker = Ostrava", "Grade = R-1"}));
    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl imm;
    CQZRMoldingMachineCtrl rtm;
    const std::string root = folder.Folder() + "/";
    EXPECT_TRUE(front.LoadIMMSystemDatabase((root + "Bank\\Machine\\IMM\\*.bnk").c_str(), &imm));
    EXPECT_TRUE(front.LoadRTMSystemDatabase((root + "Bank\\Machine\\RTM\\*.bnk").c_str(), &rtm));
    EXPECT_EQ(imm.GetTotalMachine(), 1);
    EXPECT_EQ(rtm.GetTotalMachine(), 1);
    EXPECT_FALSE(front.LoadIMMSystemDatabase((root + "Bank\\Machine\\*.none").c_str(), &imm));
}

// One reader serves every load of a front: a "Type" that does not convert keeps the type of the
// front's previous recognition.
TEST(FrontIO, HeaderValuesCarryOverBetweenLoads) {
    ScratchFolder folder;
    const std::string good = folder.Write(
        "good.bnk", JoinLines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = 0"}));
    const std::string odd = folder.Write(
        "odd.bnk", JoinLines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = zero",
                              "[Machine-1]", "Maker = Harlow", "Grade = odd"}));
    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl catalogue;
    EXPECT_FALSE(front.LoadIMMUserDatabase(odd.c_str(), &catalogue)) << "type -1: no kind";
    ASSERT_TRUE(front.LoadIMMUserDatabase(good.c_str(), &catalogue));
    EXPECT_TRUE(front.LoadIMMUserDatabase(odd.c_str(), &catalogue)) << "type 0 carried over";
    EXPECT_EQ(catalogue.GetTotalMachine(), 1);

    CQZRMoldingMachineIO copy(front);
    EXPECT_FALSE(copy.LoadIMMUserDatabase(odd.c_str(), &catalogue)) << "a copy starts afresh";
}

TEST(FrontIO, LoadDatabaseAndSaveDatabaseDoNothing) {
    FixedClock clock;
    ScratchFolder folder;
    const std::string path =
        folder.Write("u.bnk", JoinLines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = 0",
                                         "", "[Machine-1]", "Maker = Harlow", "Grade = G"}));
    const std::string before = folder.Read("u.bnk");
    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl catalogue;
    SetFileAttributes(catalogue, 9000, 1, 0);
    CQZRIM machine = SampleIMM("Kessling", "K", 1);
    catalogue.AddMachine(machine);
    for (int selector : {-1, 0, 1, 3, 5, 100}) {
        EXPECT_FALSE(front.LoadDatabase(path.c_str(), &catalogue, selector));
        EXPECT_FALSE(front.SaveDatabase(path.c_str(), &catalogue, selector));
    }
    EXPECT_FALSE(front.LoadDatabase(nullptr, nullptr, 0));
    EXPECT_FALSE(front.SaveDatabase(nullptr, nullptr, 0));
    EXPECT_EQ(catalogue.GetTotalMachine(), 1);
    EXPECT_EQ(Attributes(catalogue), "9000/1/0");
    EXPECT_EQ(folder.Read("u.bnk"), before);
    EXPECT_FALSE(folder.Exists("u.bnk.bak"));
    bool result = true;
    LoadPath(front, 10, &result);
    EXPECT_FALSE(result) << "LoadDatabase makes no reader";
}

}  // namespace

// Adding machines: filing under maker groups, the machine-id and maker-id rules, and the kind of
// a new group.
#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"

namespace {

using catalogue_test::Add;
using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;

TEST(CatalogueAdding, FirstMachineOfAnEmptyCatalogueGetsIdsOne) {
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM machine = IM("ACME", "X-100");
    EXPECT_TRUE(catalogue.AddMachine(machine));
    EXPECT_EQ(machine.GetMachineID(), 1);
    EXPECT_EQ(machine.GetMakerID(), 1);
    EXPECT_EQ(catalogue.GetMakerID(0), 1);
    EXPECT_EQ(Picture(catalogue), "ACME#1[X-100:1]");
}

TEST(CatalogueAdding, MakerInOtherCaseJoinsTheGroupAndKeepsItsFirstSpelling) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    CQZRIM second = IM("acme", "X-2");
    ASSERT_TRUE(catalogue.AddMachine(second));
    EXPECT_EQ(second.GetMakerID(), 1);
    ASSERT_TRUE(Add(catalogue, IM("ACME ", "X-3")));  // a trailing blank is another maker
    EXPECT_EQ(Picture(catalogue), "ACME#1[X-1:1 X-2:2] ACME #2[X-3:3]");
}

TEST(CatalogueAdding, StoredMachineIsACopyCarryingBothIds) {
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM machine = IM("ACME", "X-1");
    machine.SetShotWeight(12.5);
    ASSERT_TRUE(catalogue.AddMachine(machine));
    machine.SetGrade("changed");
    machine.SetShotWeight(99.0);

    CQZRIM stored;
    ASSERT_TRUE(catalogue.GetCurrentMachine(0, stored));
    EXPECT_STREQ(stored.GetGrade(), "X-1");
    EXPECT_EQ(stored.GetShotWeight(), 12.5);
    EXPECT_EQ(stored.GetMachineID(), 1);
    EXPECT_EQ(stored.GetMakerID(), 1);
}

TEST(CatalogueAdding, MachineIdRestartsWhenNoMachineIsLeftWhileMakerIdsGoOn) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "A-1")));
    ASSERT_TRUE(Add(catalogue, IM("BETA", "B-1")));
    ASSERT_TRUE(catalogue.RemoveMachine(1));
    ASSERT_TRUE(catalogue.RemoveMachine(2));
    ASSERT_EQ(catalogue.GetTotalMaker(), 2);

    CQZRIM gamma = IM("GAMMA", "G-1");
    ASSERT_TRUE(catalogue.AddMachine(gamma));
    EXPECT_EQ(gamma.GetMachineID(), 1);
    EXPECT_EQ(gamma.GetMakerID(), 3);
    CQZRIM acme = IM("acme", "A-2");
    ASSERT_TRUE(catalogue.AddMachine(acme));
    EXPECT_EQ(acme.GetMachineID(), 2);
    EXPECT_EQ(acme.GetMakerID(), 1);
    EXPECT_EQ(Picture(catalogue), "ACME#1[A-2:2] BETA#2() GAMMA#3[G-1:1]");
}

TEST(CatalogueAdding, BothIdsRestartAtOneAfterRemoveAllMaker) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "A-1")));
    ASSERT_TRUE(Add(catalogue, IM("BETA", "B-1")));
    ASSERT_TRUE(catalogue.RemoveAllMaker());
    CQZRIM machine = IM("BETA", "B-2");
    ASSERT_TRUE(catalogue.AddMachine(machine));
    EXPECT_EQ(machine.GetMachineID(), 1);
    EXPECT_EQ(machine.GetMakerID(), 1);
}

// The counters belong to the process: an empty catalogue restarting them at 1 makes a later add
// to another catalogue reuse ids that catalogue already holds.
TEST(CatalogueAdding, CountersAreSharedByEveryCatalogue) {
    CQZRMoldingMachineCtrl first;
    ASSERT_TRUE(Add(first, IM("ACME", "A-1")));  // machine 1, maker 1
    ASSERT_TRUE(Add(first, IM("ACME", "A-2")));  // machine 2
    ASSERT_TRUE(Add(first, IM("BETA", "B-1")));  // machine 3, maker 2

    CQZRMoldingMachineCtrl second;
    CQZRIM other = IM("OMEGA", "O-1");
    ASSERT_TRUE(second.AddMachine(other));
    EXPECT_EQ(other.GetMachineID(), 1);
    EXPECT_EQ(other.GetMakerID(), 1);

    CQZRIM again = IM("GAMMA", "G-1");
    ASSERT_TRUE(first.AddMachine(again));
    EXPECT_EQ(again.GetMachineID(), 2);
    EXPECT_EQ(again.GetMakerID(), 2);
    // Maker id 2 now names BETA and GAMMA; a host walking by ids sees BETA twice.
    EXPECT_EQ(Picture(first), "ACME#1[A-1:1 A-2:2] BETA#2[B-1:3] BETA#2[B-1:3]");
    CQZRIM copy;
    ASSERT_TRUE(first.GetCurrentMachine(3, copy));
    EXPECT_STREQ(copy.GetMaker(), "GAMMA");
    ASSERT_TRUE(first.GetMachine(2, copy));
    EXPECT_STREQ(copy.GetGrade(), "A-2");  // the first machine with id 2
}

TEST(CatalogueAdding, MakerWithAGroupOfTheOtherKindIsSilentlyNotStored) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, RTM("ACME", "R-1")));  // the first machine decides: kind 1
    ASSERT_TRUE(Add(catalogue, IM("BETA", "B-1")));   // file type 0 now decides: kind 0

    CQZRIM stray = IM("acme", "X-1");
    EXPECT_TRUE(catalogue.AddMachine(stray));
    EXPECT_EQ(stray.GetMachineID(), 3);
    EXPECT_EQ(stray.GetMakerID(), 1);
    CQZRRTM strayRtm = RTM("BETA", "R-2");
    EXPECT_TRUE(catalogue.AddMachine(strayRtm));
    EXPECT_EQ(strayRtm.GetMachineID(), 4);
    EXPECT_EQ(strayRtm.GetMakerID(), 2);
    EXPECT_EQ(Picture(catalogue), "ACME#1{R-1:1} BETA#2[B-1:2]");

    CQZRRTM next = RTM("ACME", "R-3");
    ASSERT_TRUE(catalogue.AddMachine(next));
    EXPECT_EQ(next.GetMachineID(), 5);  // the two skipped machines used up ids 3 and 4
}

// A new group takes the record's kind while the catalogue holds no machine and its flag is
// clear, and the file type otherwise. A kind that does not fit releases the group: false,
// nothing stored, yet both ids were issued.
TEST(CatalogueAdding, KindOfANewGroupTable) {
    enum Before { kEmpty, kHoldsMachine, kOnlyEmptyGroup };
    struct Row {
        const char* label;
        Before before;
        bool initialized;
        int fileType;
        bool transfer;  // the record added: CQZRRTM when true, CQZRIM otherwise
        bool stored;
    };
    const Row rows[] = {
        {"empty, clear, type 0, RTM: record decides", kEmpty, false, 0, true, true},
        {"empty, clear, type 1, IM: record decides", kEmpty, false, 1, false, true},
        {"empty, set, type 1, IM: type decides", kEmpty, true, 1, false, false},
        {"empty, set, type 0, RTM: type decides", kEmpty, true, 0, true, false},
        {"empty, set, type 1, RTM", kEmpty, true, 1, true, true},
        {"empty, set, type -1, IM: any kind but 1 holds IM", kEmpty, true, -1, false, true},
        {"holds IM, type 0, RTM", kHoldsMachine, false, 0, true, false},
        {"holds IM, type 1, RTM", kHoldsMachine, false, 1, true, true},
        {"holds IM, type 1, IM", kHoldsMachine, false, 1, false, false},
        {"holds IM, type 7, IM", kHoldsMachine, false, 7, false, true},
        {"holds IM, type 7, RTM", kHoldsMachine, false, 7, true, false},
        {"only an empty group, clear, type 1, IM: record decides", kOnlyEmptyGroup, false, 1, false,
         true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        CQZRMoldingMachineCtrl catalogue;
        if (row.before != kEmpty) {
            ASSERT_TRUE(Add(catalogue, IM("FIRST", "F-1")));
        }
        if (row.before == kOnlyEmptyGroup) {
            ASSERT_TRUE(catalogue.RemoveMachine("first", "f-1"));
        }
        catalogue.SetFileType(row.fileType);
        catalogue.SetDatabaseInitialize(row.initialized);
        const int makersBefore = catalogue.GetTotalMaker();
        const int machinesBefore = catalogue.GetTotalMachine();

        CQZRIM im = IM("NEW", "N-1");
        CQZRRTM rtm = RTM("NEW", "N-1");
        CQZRMoldingMachine& added = row.transfer ? static_cast<CQZRMoldingMachine&>(rtm) : im;
        const bool result = row.transfer ? catalogue.AddMachine(rtm) : catalogue.AddMachine(im);

        EXPECT_EQ(result, row.stored);
        EXPECT_EQ(catalogue.GetTotalMaker(), makersBefore + (row.stored ? 1 : 0));
        EXPECT_EQ(catalogue.GetTotalMachine(), machinesBefore + (row.stored ? 1 : 0));
        EXPECT_EQ(added.GetMachineID(), machinesBefore == 0 ? 1 : 2);
        EXPECT_EQ(added.GetMakerID(), makersBefore + 1);
        EXPECT_EQ(catalogue.IsMachineNameExist(im) || catalogue.IsMachineNameExist(rtm),
                  row.stored);
    }
}

}  // namespace

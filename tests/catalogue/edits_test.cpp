// Edits: overwriting machines, removals closing gaps, empty groups, and emptying the catalogue.
#include <string>

#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"

namespace {

using catalogue_test::Add;
using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;

// ACME (a1, a2), BETA (b1), GAMMA (c1): machine ids 1 to 4, maker ids 1 to 3.
void FillThree(CQZRMoldingMachineCtrl& catalogue) {
    ASSERT_TRUE(Add(catalogue, IM("ACME", "a1")));
    ASSERT_TRUE(Add(catalogue, IM("ACME", "a2")));
    ASSERT_TRUE(Add(catalogue, IM("BETA", "b1")));
    ASSERT_TRUE(Add(catalogue, IM("GAMMA", "c1")));
    ASSERT_EQ(Picture(catalogue), "ACME#1[a1:1 a2:2] BETA#2[b1:3] GAMMA#3[c1:4]");
}

TEST(CatalogueEdits, RemovalsTable) {
    struct Row {
        const char* label;
        bool (*edit)(CQZRMoldingMachineCtrl&);
        bool result;
        const char* after;  // null: unchanged
    };
    const Row rows[] = {
        {"machine by id", [](CQZRMoldingMachineCtrl& c) { return c.RemoveMachine(2); }, true,
         "ACME#1[a1:1] BETA#2[b1:3] GAMMA#3[c1:4]"},
        {"machine by unknown id", [](CQZRMoldingMachineCtrl& c) { return c.RemoveMachine(9); },
         false, nullptr},
        {"machine by maker and grade, other case",
         [](CQZRMoldingMachineCtrl& c) { return c.RemoveMachine("acme", "A1"); }, true,
         "ACME#1[a2:2] BETA#2[b1:3] GAMMA#3[c1:4]"},
        {"machine by known maker, unknown grade",
         [](CQZRMoldingMachineCtrl& c) { return c.RemoveMachine("ACME", "b1"); }, false, nullptr},
        {"machine by null maker",
         [](CQZRMoldingMachineCtrl& c) { return c.RemoveMachine(nullptr, "a1"); }, false, nullptr},
        {"maker at position 1", [](CQZRMoldingMachineCtrl& c) { return c.RemoveCurrentMaker(1); },
         true, "ACME#1[a1:1 a2:2] GAMMA#3[c1:4]"},
        {"maker at position 3", [](CQZRMoldingMachineCtrl& c) { return c.RemoveCurrentMaker(3); },
         false, nullptr},
        {"maker at position -1", [](CQZRMoldingMachineCtrl& c) { return c.RemoveCurrentMaker(-1); },
         false, nullptr},
        {"maker by id", [](CQZRMoldingMachineCtrl& c) { return c.RemoveMaker(1); }, true,
         "BETA#2[b1:3] GAMMA#3[c1:4]"},
        {"maker by unknown id", [](CQZRMoldingMachineCtrl& c) { return c.RemoveMaker(0); }, false,
         nullptr},
        {"maker by name, other case",
         [](CQZRMoldingMachineCtrl& c) { return c.RemoveMaker("gamma"); }, true,
         "ACME#1[a1:1 a2:2] BETA#2[b1:3]"},
        {"maker by null name",
         [](CQZRMoldingMachineCtrl& c) { return c.RemoveMaker(static_cast<const char*>(nullptr)); },
         false, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        CQZRMoldingMachineCtrl catalogue;
        FillThree(catalogue);
        const std::string before = Picture(catalogue);
        EXPECT_EQ(row.edit(catalogue), row.result);
        EXPECT_EQ(Picture(catalogue), row.after != nullptr ? row.after : before);
    }
}

TEST(CatalogueEdits, RemovalMovesLaterMachinesDownOneIndex) {
    CQZRMoldingMachineCtrl catalogue;
    FillThree(catalogue);
    CQZRIM machine;
    ASSERT_TRUE(catalogue.GetCurrentMachine(2, machine));
    EXPECT_STREQ(machine.GetGrade(), "b1");
    ASSERT_TRUE(catalogue.RemoveMachine(2));
    ASSERT_TRUE(catalogue.GetCurrentMachine(1, machine));
    EXPECT_STREQ(machine.GetGrade(), "b1");
    EXPECT_EQ(catalogue.GetTotalMachine(), 3);
}

TEST(CatalogueEdits, EmptiedGroupStaysAndTakesItsMakerBack) {
    CQZRMoldingMachineCtrl catalogue;
    FillThree(catalogue);
    ASSERT_TRUE(catalogue.RemoveMachine(1));
    ASSERT_TRUE(catalogue.RemoveMachine(2));
    EXPECT_EQ(catalogue.GetTotalMaker(), 3);
    EXPECT_EQ(catalogue.GetMachineCount(1), 0);
    CQZRIM again = IM("Acme", "a3");
    ASSERT_TRUE(catalogue.AddMachine(again));
    EXPECT_EQ(again.GetMakerID(), 1);
    EXPECT_EQ(Picture(catalogue), "ACME#1[a3:5] BETA#2[b1:3] GAMMA#3[c1:4]");
}

TEST(CatalogueEdits, SetMachineDataOverwritesTheMachineWithThatIdOfTheRightKind) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("BETA", "R-1")));

    CQZRIM im;
    ASSERT_TRUE(catalogue.GetMachine(1, im));
    im.SetShotWeight(42.0);
    EXPECT_FALSE(catalogue.SetMachineData(2, im));  // machine 2 is transfer moulding
    EXPECT_TRUE(catalogue.SetMachineData(1, im));
    CQZRIM stored;
    ASSERT_TRUE(catalogue.GetMachine(1, stored));
    EXPECT_EQ(stored.GetShotWeight(), 42.0);

    // The stored machine takes every field, its machine id included.
    CQZRRTM rtm = RTM("BETA", "R-2");
    rtm.SetMachineID(77);
    EXPECT_TRUE(catalogue.SetMachineData(2, rtm));
    EXPECT_FALSE(catalogue.GetMachine(2, rtm));
    ASSERT_TRUE(catalogue.GetMachine(77, rtm));
    EXPECT_STREQ(rtm.GetGrade(), "R-2");
    EXPECT_EQ(catalogue.GetTotalMachine(), 2);
}

TEST(CatalogueEdits, SetCurrentMachineDataKeepsTheMachineInPlace) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    ASSERT_TRUE(Add(catalogue, IM("BETA", "Y-1")));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("GAMMA", "R-1")));

    CQZRIM renamed;
    ASSERT_TRUE(catalogue.GetCurrentMachine(0, renamed));
    renamed.SetMaker("OTHERCO");
    EXPECT_TRUE(catalogue.SetCurrentMachineData(0, renamed));
    CQZRIM copy;
    ASSERT_TRUE(catalogue.GetCurrentMachine(0, copy));
    EXPECT_STREQ(copy.GetMaker(), "OTHERCO");
    EXPECT_EQ(catalogue.GetMachineCount("ACME"), 1);
    EXPECT_EQ(catalogue.GetMachineCount("OTHERCO"), 0);

    CQZRRTM rtm;
    EXPECT_FALSE(catalogue.SetCurrentMachineData(1, rtm));      // injection-moulding group
    EXPECT_FALSE(catalogue.SetCurrentMachineData(2, renamed));  // transfer-moulding group
    EXPECT_FALSE(catalogue.SetCurrentMachineData(3, renamed));
    EXPECT_FALSE(catalogue.SetCurrentMachineData(-1, renamed));
    EXPECT_TRUE(catalogue.SetCurrentMachineData(2, rtm));
}

TEST(CatalogueEdits, RemoveAllMakerResetsNumbersButKeepsTheTexts) {
    CQZRMoldingMachineCtrl catalogue;
    FillThree(catalogue);
    catalogue.SetFileVersion(9001);
    catalogue.SetFileFormat(1);
    catalogue.SetFileName("user bank");
    catalogue.SetFileDate("2001-02-03");
    catalogue.SetFileCreateBy("tester");
    catalogue.SetFileRelease("R7");
    catalogue.SetFileRemark("kept");
    catalogue.SetDatabaseInitialize(true);

    EXPECT_TRUE(catalogue.RemoveAllMaker());
    EXPECT_EQ(catalogue.GetTotalMaker(), 0);
    EXPECT_EQ(catalogue.GetTotalMachine(), 0);
    EXPECT_EQ(catalogue.GetFileVersion(), -1);
    EXPECT_EQ(catalogue.GetFileFormat(), -1);
    EXPECT_EQ(catalogue.GetFileType(), -1);
    EXPECT_FALSE(catalogue.IsDatabaseInitialize());
    EXPECT_STREQ(catalogue.GetFileName(), "user bank");
    EXPECT_STREQ(catalogue.GetFileDate(), "2001-02-03");
    EXPECT_STREQ(catalogue.GetFileCreateBy(), "tester");
    EXPECT_STREQ(catalogue.GetFileRelease(), "R7");
    EXPECT_STREQ(catalogue.GetFileRemark(), "kept");

    // With the flag clear the next machine decides its own group's kind again.
    EXPECT_TRUE(Add(catalogue, RTM("BETA", "R-1")));
    EXPECT_EQ(Picture(catalogue), "BETA#1{R-1:1}");
}

}  // namespace

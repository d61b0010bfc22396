// Counts, makers and copying machines out: positions, ids, names, the global machine index and
// the kind filter, including lookups that stop at the first group matching by id or name.
#include <string>

#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"

namespace {

using catalogue_test::Add;
using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;

// ACME (injection moulding) then BETA (transfer moulding: R-1), built the way a host
// builds a mixed catalogue by hand.
void FillMixed(CQZRMoldingMachineCtrl& catalogue) {
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-2")));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("BETA", "R-1")));
    ASSERT_EQ(Picture(catalogue), "ACME#1[X-1:1 X-2:2] BETA#2{R-1:3}");
}

TEST(CatalogueQueries, NewCatalogueIsEmpty) {
    const CQZRMoldingMachineCtrl catalogue;
    EXPECT_EQ(catalogue.GetTotalMachine(), 0);
    EXPECT_EQ(catalogue.GetTotalMaker(), 0);
    EXPECT_EQ(catalogue.GetFileVersion(), 0);
    EXPECT_EQ(catalogue.GetFileFormat(), 0);
    EXPECT_EQ(catalogue.GetFileType(), 0);
    EXPECT_STREQ(catalogue.GetFileName(), "");
    EXPECT_STREQ(catalogue.GetFileRemark(), "");
    EXPECT_FALSE(catalogue.IsDatabaseInitialize());
    EXPECT_EQ(catalogue.GetMakerID(0), -1);
    EXPECT_EQ(catalogue.GetMaker(1), nullptr);
}

TEST(CatalogueQueries, MakerPositionsIdsAndNames) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    ASSERT_TRUE(Add(catalogue, IM("BETA", "Y-1")));
    ASSERT_TRUE(Add(catalogue, IM("BETA", "Y-2")));
    const char* beta = catalogue.GetMaker(2);

    EXPECT_EQ(catalogue.GetMakerID(-1), -1);
    EXPECT_EQ(catalogue.GetMakerID(0), 1);
    EXPECT_EQ(catalogue.GetMakerID(1), 2);
    EXPECT_EQ(catalogue.GetMakerID(2), -1);
    EXPECT_STREQ(beta, "BETA");
    EXPECT_EQ(catalogue.GetMaker(0), nullptr);  // a maker id, not a position
    EXPECT_EQ(catalogue.GetMachineCount(2), 2);
    EXPECT_EQ(catalogue.GetMachineCount("beta"), 2);
    EXPECT_EQ(catalogue.GetMachineCount(7), 0);
    EXPECT_EQ(catalogue.GetMachineCount("GAMMA"), 0);
    EXPECT_EQ(catalogue.GetMachineCount(nullptr), 0);

    // The maker name stays where it is while other groups come and go.
    for (int n = 0; n < 40; ++n) {
        ASSERT_TRUE(Add(catalogue, IM(("MAKER" + std::to_string(n)).c_str(), "Z")));
    }
    ASSERT_TRUE(catalogue.RemoveCurrentMaker(0));
    EXPECT_EQ(catalogue.GetMaker(2), beta);
}

TEST(CatalogueQueries, GlobalMachineIndexAcrossKindsTable) {
    CQZRMoldingMachineCtrl catalogue;
    FillMixed(catalogue);
    ASSERT_EQ(catalogue.GetTotalMachine(), 3);
    struct Row {
        int index;
        bool transfer;
        const char* grade;  // null: false, record untouched
    };
    const Row rows[] = {{-1, false, nullptr}, {0, false, "X-1"},   {1, false, "X-2"},
                        {2, false, nullptr},  {3, false, nullptr}, {-1, true, nullptr},
                        {0, true, nullptr},   {2, true, "R-1"},    {3, true, nullptr}};
    for (const Row& row : rows) {
        SCOPED_TRACE("index " + std::to_string(row.index) + (row.transfer ? " RTM" : " IM"));
        CQZRIM im = IM("untouched", "untouched");
        CQZRRTM rtm = RTM("untouched", "untouched");
        const bool found = row.transfer ? catalogue.GetCurrentMachine(row.index, rtm)
                                        : catalogue.GetCurrentMachine(row.index, im);
        const CQZRMoldingMachine& copy = row.transfer ? static_cast<CQZRMoldingMachine&>(rtm) : im;
        EXPECT_EQ(found, row.grade != nullptr);
        EXPECT_STREQ(copy.GetGrade(), row.grade != nullptr ? row.grade : "untouched");
    }
}

TEST(CatalogueQueries, MachinesByMakerAndPositionOrGrade) {
    CQZRMoldingMachineCtrl catalogue;
    FillMixed(catalogue);
    CQZRIM im;
    CQZRRTM rtm;
    EXPECT_TRUE(catalogue.GetCurrentMakerMachine(1, 1, im));
    EXPECT_STREQ(im.GetGrade(), "X-2");
    EXPECT_TRUE(catalogue.GetCurrentMakerMachine("acme", 0, im));
    EXPECT_STREQ(im.GetGrade(), "X-1");
    EXPECT_FALSE(catalogue.GetCurrentMakerMachine(1, 2, im));
    EXPECT_FALSE(catalogue.GetCurrentMakerMachine(1, -1, im));
    EXPECT_FALSE(catalogue.GetCurrentMakerMachine(2, 0, im));  // BETA is transfer moulding
    EXPECT_TRUE(catalogue.GetCurrentMakerMachine("Beta", 0, rtm));
    EXPECT_FALSE(catalogue.GetCurrentMakerMachine(nullptr, 0, im));

    EXPECT_TRUE(catalogue.GetMachine("aCmE", "x-2", im));
    EXPECT_EQ(im.GetMachineID(), 2);
    EXPECT_TRUE(catalogue.GetMachine("BETA", "r-1", rtm));
    EXPECT_FALSE(catalogue.GetMachine("BETA", "r-1", im));
    EXPECT_FALSE(catalogue.GetMachine("ACME", "X-3", im));
    EXPECT_FALSE(catalogue.GetMachine("ACME", nullptr, im));

    EXPECT_TRUE(catalogue.GetMachine(3, rtm));
    EXPECT_FALSE(catalogue.GetMachine(3, im));
    EXPECT_TRUE(catalogue.GetMachine(1, im));
    EXPECT_STREQ(im.GetGrade(), "X-1");
}

// Builds, with the help of a second catalogue restarting the shared counters, a catalogue where
// the transfer-moulding group RTMCO and the later injection-moulding group LATE share maker id
// 2, and RTMCO's machine R-1 shares machine id 2 with LATE's machine L-1.
void FillWithRepeatedIds(CQZRMoldingMachineCtrl& catalogue) {
    ASSERT_TRUE(Add(catalogue, IM("EARLY", "E-1")));  // machine 1, maker 1
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("RTMCO", "R-1")));  // machine 2, maker 2
    CQZRMoldingMachineCtrl other;
    ASSERT_TRUE(Add(other, IM("OTHER", "O-1")));  // both counters back to 1
    catalogue.SetFileType(0);
    ASSERT_TRUE(Add(catalogue, IM("LATE", "L-1")));  // machine 2, maker 2
    // A host walking positions and ids sees RTMCO twice: maker id 2 always means RTMCO.
    ASSERT_EQ(Picture(catalogue), "EARLY#1[E-1:1] RTMCO#2{R-1:2} RTMCO#2{R-1:2}");
}

TEST(CatalogueQueries, LookupsByMakerIdStopAtTheFirstGroupWithThatId) {
    CQZRMoldingMachineCtrl catalogue;
    FillWithRepeatedIds(catalogue);
    CQZRIM im;
    CQZRRTM rtm;
    EXPECT_STREQ(catalogue.GetMaker(2), "RTMCO");
    EXPECT_EQ(catalogue.GetMachineCount(2), 1);
    EXPECT_FALSE(catalogue.GetCurrentMakerMachine(2, 0, im));  // LATE is never reached
    EXPECT_TRUE(catalogue.GetCurrentMakerMachine(2, 0, rtm));
    EXPECT_TRUE(catalogue.GetCurrentMakerMachine("late", 0, im));

    // Removing the first group with the id uncovers the second.
    ASSERT_TRUE(catalogue.RemoveMaker(2));
    EXPECT_STREQ(catalogue.GetMaker(2), "LATE");
    EXPECT_TRUE(catalogue.GetCurrentMakerMachine(2, 0, im));
}

TEST(CatalogueQueries, LookupByMachineIdWalksOnToGroupsOfTheRightKind) {
    CQZRMoldingMachineCtrl catalogue;
    FillWithRepeatedIds(catalogue);
    CQZRIM im;
    CQZRRTM rtm;
    ASSERT_TRUE(catalogue.GetMachine(2, im));
    EXPECT_STREQ(im.GetGrade(), "L-1");
    ASSERT_TRUE(catalogue.GetMachine(2, rtm));
    EXPECT_STREQ(rtm.GetGrade(), "R-1");

    // Removal by machine id looks at both kinds and takes the first in walking order.
    ASSERT_TRUE(catalogue.RemoveMachine(2));
    EXPECT_FALSE(catalogue.GetMachine(2, rtm));
    EXPECT_TRUE(catalogue.GetMachine(2, im));
}

TEST(CatalogueQueries, EmptyGroupCountsButYieldsNoMachine) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    ASSERT_TRUE(Add(catalogue, IM("BETA", "Y-1")));
    ASSERT_TRUE(catalogue.RemoveMachine("ACME", "X-1"));
    CQZRIM im;
    EXPECT_EQ(catalogue.GetTotalMaker(), 2);
    EXPECT_EQ(catalogue.GetMachineCount(1), 0);
    EXPECT_FALSE(catalogue.GetCurrentMakerMachine(1, 0, im));
    EXPECT_FALSE(catalogue.GetCurrentMakerMachine("ACME", 0, im));
    ASSERT_TRUE(catalogue.GetCurrentMachine(0, im));
    EXPECT_STREQ(im.GetGrade(), "Y-1");
}

}  // namespace

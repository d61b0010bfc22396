// Controller lifecycle: file attributes, deep copies, and the results of a controller whose store
// could not be created.
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"

namespace {

using catalogue_test::Add;
using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;

using Access = CQZRMoldingMachineCtrlAccess;

void FillSource(CQZRMoldingMachineCtrl& catalogue) {
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-2")));
    ASSERT_TRUE(Add(catalogue, IM("BETA", "Y-1")));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("GAMMA", "R-1")));
    catalogue.SetFileVersion(9000);
    catalogue.SetFileFormat(1);
    catalogue.SetFileName("source");
    catalogue.SetFileRemark("remark");
    catalogue.SetDatabaseInitialize(true);
}

void ExpectSameAttributes(const CQZRMoldingMachineCtrl& copy,
                          const CQZRMoldingMachineCtrl& source) {
    EXPECT_EQ(Picture(copy), Picture(source));
    EXPECT_EQ(copy.GetFileVersion(), source.GetFileVersion());
    EXPECT_EQ(copy.GetFileFormat(), source.GetFileFormat());
    EXPECT_EQ(copy.GetFileType(), source.GetFileType());
    EXPECT_STREQ(copy.GetFileName(), source.GetFileName());
    EXPECT_STREQ(copy.GetFileRemark(), source.GetFileRemark());
    EXPECT_EQ(copy.IsDatabaseInitialize(), source.IsDatabaseInitialize());
}

TEST(CatalogueLifecycle, TextAttributesCopyTheirTextAndTakeNullAsEmpty) {
    CQZRMoldingMachineCtrl catalogue;
    std::string text = "bank name";
    catalogue.SetFileName(text.c_str());
    text[0] = 'X';
    EXPECT_STREQ(catalogue.GetFileName(), "bank name");
    catalogue.SetFileName(catalogue.GetFileName());
    EXPECT_STREQ(catalogue.GetFileName(), "bank name");
    catalogue.SetFileName(nullptr);
    catalogue.SetFileDate(nullptr);
    catalogue.SetFileCreateBy(nullptr);
    catalogue.SetFileRelease(nullptr);
    catalogue.SetFileRemark(nullptr);
    EXPECT_STREQ(catalogue.GetFileName(), "");
    EXPECT_STREQ(catalogue.GetFileDate(), "");
    EXPECT_STREQ(catalogue.GetFileCreateBy(), "");
    EXPECT_STREQ(catalogue.GetFileRelease(), "");
    EXPECT_STREQ(catalogue.GetFileRemark(), "");
}

TEST(CatalogueLifecycle, AssignmentReplacesEverythingWithAnIndependentCopy) {
    auto source = std::make_unique<CQZRMoldingMachineCtrl>();
    FillSource(*source);
    CQZRMoldingMachineCtrl target;
    for (const char* maker : {"P", "Q", "R", "S", "T"}) {
        ASSERT_TRUE(Add(target, IM(maker, "old")));
    }
    target = *source;
    ExpectSameAttributes(target, *source);
    EXPECT_EQ(target.GetTotalMaker(), 3);
    EXPECT_NE(target.GetMaker(1), source->GetMaker(1));

    ASSERT_TRUE(target.RemoveMachine("ACME", "X-1"));
    target.SetFileName("changed");
    EXPECT_EQ(source->GetMachineCount("ACME"), 2);
    EXPECT_STREQ(source->GetFileName(), "source");

    const std::string before = Picture(target);
    source.reset();
    EXPECT_EQ(Picture(target), before);
}

TEST(CatalogueLifecycle, CopyConstructionAndSelfAssignment) {
    CQZRMoldingMachineCtrl source;
    FillSource(source);
    CQZRMoldingMachineCtrl copy(source);
    ExpectSameAttributes(copy, source);
    ASSERT_TRUE(source.RemoveMaker("GAMMA"));
    EXPECT_EQ(copy.GetTotalMaker(), 3);

    const std::string before = Picture(copy);
    const char* name = copy.GetMaker(1);
    CQZRMoldingMachineCtrl& alias = copy;
    copy = alias;
    EXPECT_EQ(Picture(copy), before);
    EXPECT_EQ(copy.GetMaker(1), name);
}

TEST(CatalogueLifecycle, CopiesDoNotTouchTheIdCounters) {
    CQZRMoldingMachineCtrl source;
    FillSource(source);  // machine ids 1 to 4
    CQZRMoldingMachineCtrl copy(source);
    CQZRMoldingMachineCtrl assigned;
    assigned = source;
    CQZRIM next = IM("ACME", "X-3");
    ASSERT_TRUE(source.AddMachine(next));
    EXPECT_EQ(next.GetMachineID(), 5);
}

TEST(CatalogueLifecycle, InitializeRestoresAStoreAndAccessReachesIt) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    ASSERT_NE(Access::Store(catalogue), nullptr);
    EXPECT_EQ(Access::Store(catalogue)->GetTotalMachine(), 1);
    EXPECT_TRUE(Access::Initialize(catalogue));  // keeps the existing store
    EXPECT_EQ(catalogue.GetTotalMachine(), 1);

    Access::DropStore(catalogue);
    EXPECT_EQ(Access::Store(catalogue), nullptr);
    Access::FailNextStoreCreations(1);
    EXPECT_FALSE(Access::Initialize(catalogue));
    EXPECT_TRUE(Access::Initialize(catalogue));
    EXPECT_EQ(catalogue.GetTotalMachine(), 0);
    EXPECT_EQ(catalogue.GetFileType(), 0);
}

// Every member of a controller without a store, with the result it gives.
TEST(CatalogueLifecycle, AbsentStoreResultTable) {
    Access::FailNextStoreCreations(1);
    CQZRMoldingMachineCtrl catalogue;
    Access::FailNextStoreCreations(0);
    ASSERT_EQ(Access::Store(catalogue), nullptr);

    CQZRMoldingMachineCtrl& c = catalogue;
    const CQZRIM im = IM("ACME", "X-1");
    const CQZRRTM rtm = RTM("ACME", "R-1");
    CQZRIM imOut = im;
    CQZRRTM rtmOut = rtm;
    struct Row {
        const char* member;
        std::function<long long()> call;  // pointers are reported as 0 (null) or 1
        long long expected;
    };
    auto isSet = [](const char* text) { return text != nullptr ? 1LL : 0LL; };
    const Row rows[] = {
        {"GetFileVersion", [&] { return c.GetFileVersion(); }, -1},
        {"GetFileFormat", [&] { return c.GetFileFormat(); }, -1},
        {"GetFileType", [&] { return c.GetFileType(); }, -1},
        {"GetFileName", [&] { return isSet(c.GetFileName()); }, 0},
        {"GetFileDate", [&] { return isSet(c.GetFileDate()); }, 0},
        {"GetFileCreateBy", [&] { return isSet(c.GetFileCreateBy()); }, 0},
        {"GetFileRelease", [&] { return isSet(c.GetFileRelease()); }, 0},
        {"GetFileRemark", [&] { return isSet(c.GetFileRemark()); }, 0},
        {"IsDatabaseInitialize", [&] { return c.IsDatabaseInitialize(); }, 0},
        {"GetTotalMachine", [&] { return c.GetTotalMachine(); }, 0},
        {"GetTotalMaker", [&] { return c.GetTotalMaker(); }, 0},
        {"GetMachineCount(id)", [&] { return c.GetMachineCount(1); }, 0},
        {"GetMachineCount(name)", [&] { return c.GetMachineCount("ACME"); }, 0},
        {"GetMakerID", [&] { return c.GetMakerID(0); }, 0},
        {"GetMaker", [&] { return isSet(c.GetMaker(1)); }, 0},
        {"AddMachine(IM)", [&] { return c.AddMachine(imOut); }, 0},
        {"AddMachine(RTM)", [&] { return c.AddMachine(rtmOut); }, 0},
        {"GetCurrentMachine(IM)", [&] { return c.GetCurrentMachine(0, imOut); }, 0},
        {"GetCurrentMachine(RTM)", [&] { return c.GetCurrentMachine(0, rtmOut); }, 0},
        {"GetCurrentMakerMachine(id, IM)", [&] { return c.GetCurrentMakerMachine(1, 0, imOut); },
         0},
        {"GetCurrentMakerMachine(id, RTM)", [&] { return c.GetCurrentMakerMachine(1, 0, rtmOut); },
         0},
        {"GetCurrentMakerMachine(name, IM)",
         [&] { return c.GetCurrentMakerMachine("ACME", 0, imOut); }, 0},
        {"GetCurrentMakerMachine(name, RTM)",
         [&] { return c.GetCurrentMakerMachine("ACME", 0, rtmOut); }, 0},
        {"GetMachine(id, IM)", [&] { return c.GetMachine(1, imOut); }, 0},
        {"GetMachine(id, RTM)", [&] { return c.GetMachine(1, rtmOut); }, 0},
        {"GetMachine(names, IM)", [&] { return c.GetMachine("ACME", "X-1", imOut); }, 0},
        {"GetMachine(names, RTM)", [&] { return c.GetMachine("ACME", "R-1", rtmOut); }, 0},
        {"SetMachineData(IM)", [&] { return c.SetMachineData(1, im); }, 0},
        {"SetMachineData(RTM)", [&] { return c.SetMachineData(1, rtm); }, 0},
        {"SetCurrentMachineData(IM)", [&] { return c.SetCurrentMachineData(0, im); }, 0},
        {"SetCurrentMachineData(RTM)", [&] { return c.SetCurrentMachineData(0, rtm); }, 0},
        {"RemoveMachine(id)", [&] { return c.RemoveMachine(1); }, 0},
        {"RemoveMachine(names)", [&] { return c.RemoveMachine("ACME", "X-1"); }, 0},
        {"RemoveCurrentMaker", [&] { return c.RemoveCurrentMaker(0); }, 0},
        {"RemoveMaker(id)", [&] { return c.RemoveMaker(1); }, 0},
        {"RemoveMaker(name)", [&] { return c.RemoveMaker("ACME"); }, 0},
        {"RemoveAllMaker", [&] { return c.RemoveAllMaker(); }, 0},
        {"IsMachineIdentity(IM)", [&] { return c.IsMachineIdentity(im, im); }, 0},
        {"IsMachineIdentity(RTM)", [&] { return c.IsMachineIdentity(rtm, rtm); }, 0},
        {"IsIdentityMachineExist(IM)", [&] { return c.IsIdentityMachineExist(im); }, 0},
        {"IsIdentityMachineExist(RTM)", [&] { return c.IsIdentityMachineExist(rtm); }, 0},
        {"IsMachineNameExist(IM)", [&] { return c.IsMachineNameExist(im); }, 0},
        {"IsMachineNameExist(RTM)", [&] { return c.IsMachineNameExist(rtm); }, 0},
        {"IsMachineNameExist(text)", [&] { return c.IsMachineNameExist("ACME - X-1"); }, 0},
    };
    c.SetFileVersion(1);
    c.SetFileFormat(1);
    c.SetFileType(1);
    c.SetFileName("n");
    c.SetFileDate("d");
    c.SetFileCreateBy("c");
    c.SetFileRelease("r");
    c.SetFileRemark("m");
    c.SetDatabaseInitialize(true);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.member);
        EXPECT_EQ(row.call(), row.expected);
    }
    // Nothing was added and the records given were left alone.
    EXPECT_EQ(imOut.GetMachineID(), -1);
    EXPECT_EQ(rtmOut.GetMachineID(), -1);
    EXPECT_STREQ(imOut.GetGrade(), "X-1");
}

TEST(CatalogueLifecycle, CopyingToOrFromAControllerWithoutAStore) {
    CQZRMoldingMachineCtrl filled;
    FillSource(filled);
    const std::string picture = Picture(filled);
    CQZRMoldingMachineCtrl absent;
    Access::DropStore(absent);

    filled = absent;  // no change
    EXPECT_EQ(Picture(filled), picture);
    absent = filled;  // no change: no store to copy into
    EXPECT_EQ(Access::Store(absent), nullptr);

    CQZRMoldingMachineCtrl fromAbsent(absent);  // a store of its own, empty
    ASSERT_NE(Access::Store(fromAbsent), nullptr);
    EXPECT_EQ(fromAbsent.GetTotalMaker(), 0);

    Access::FailNextStoreCreations(1);
    CQZRMoldingMachineCtrl failedCopy(filled);
    EXPECT_EQ(Access::Store(failedCopy), nullptr);
    EXPECT_EQ(failedCopy.GetTotalMachine(), 0);
}

}  // namespace

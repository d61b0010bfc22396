// Controller lifecycle: deep copies, emptying, and the results of a controller whose store could
// not be created.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "CatalogueTestSupport.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "catalogue/StoreCreationFailure.h"

namespace {

using catalogue_test::Add;
using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;
using qzr::catalogue::CQZRMoldingMachineCtrlAccess;
using qzr::test::FailNextStoreCreations;

// Everything a copy must carry: groups, machines and ids, the file attributes and the flag.
std::string Everything(const CQZRMoldingMachineCtrl& c) {
    return Picture(c) + "|" + std::to_string(c.GetFileVersion()) + "|" +
           std::to_string(c.GetFileFormat()) + "|" + std::to_string(c.GetFileType()) + "|" +
           c.GetFileName() + "|" + c.GetFileDate() + "|" + c.GetFileCreateBy() + "|" +
           c.GetFileRelease() + "|" + c.GetFileRemark() + "|" +
           (c.IsDatabaseInitialize() ? "set" : "clear");
}

void FillSource(CQZRMoldingMachineCtrl& c) {
    ASSERT_TRUE(Add(c, IM("ACME", "X-1")));
    ASSERT_TRUE(Add(c, IM("ACME", "X-2")));
    c.SetFileType(1);
    ASSERT_TRUE(Add(c, RTM("GAMMA", "R-1")));
    // clang-format off
    c.SetFileVersion(9000); c.SetFileFormat(1); c.SetFileName("source");
    c.SetFileDate("2001-02-03"); c.SetFileCreateBy("tester"); c.SetFileRemark("remark");
    c.SetFileRelease(nullptr);  // stored as the empty text
    c.SetDatabaseInitialize(true);
    // clang-format on
}

// A copy, constructed or assigned over other content, holds everything of its source and lives
// on its own; copying issues no id, and a self-assignment changes nothing. Emptying sets
// version, format and type to -1 and clears the flag; the texts stay.
TEST(CatalogueLifecycle, DeepCopiesAndEmptying) {
    CQZRMoldingMachineCtrl assigned;
    ASSERT_TRUE(Add(assigned, IM("OLD", "O-1")));
    auto source = std::make_unique<CQZRMoldingMachineCtrl>();
    FillSource(*source);
    const std::string everything = Everything(*source);
    EXPECT_EQ(everything,
              "ACME#1[X-1:1 X-2:2] GAMMA#2{R-1:3}|9000|1|1|source|2001-02-03|tester||remark|set");
    const CQZRMoldingMachineCtrl constructed(*source);
    assigned = *source;
    CQZRMoldingMachineCtrl& alias = assigned;
    assigned = alias;
    EXPECT_NE(assigned.GetMaker(1), source->GetMaker(1)) << "texts of its own";

    ASSERT_TRUE(source->RemoveMachine("ACME", "X-1"));
    source->SetFileName("changed");
    CQZRIM next = IM("ACME", "X-3");
    ASSERT_TRUE(source->AddMachine(next));
    EXPECT_EQ(next.GetMachineID(), 4) << "copies issue no id";
    EXPECT_TRUE(source->RemoveAllMaker());
    EXPECT_EQ(Everything(*source), "|-1|-1|-1|changed|2001-02-03|tester||remark|clear");
    source.reset();
    EXPECT_EQ(Everything(constructed), everything);
    EXPECT_EQ(Everything(assigned), everything);
}

// Every member of a controller without a store, with the result it gives (a pointer as 0 for
// null); setters do nothing, and the records given are left alone.
TEST(CatalogueLifecycle, AbsentStoreResultTable) {
    FailNextStoreCreations(1);
    CQZRMoldingMachineCtrl c;
    ASSERT_EQ(CQZRMoldingMachineCtrlAccess::Store(c), nullptr);
    // clang-format off
    c.SetFileVersion(1); c.SetFileFormat(1); c.SetFileType(1); c.SetFileName("n");
    c.SetFileDate("d"); c.SetFileCreateBy("c"); c.SetFileRelease("r"); c.SetFileRemark("m");
    c.SetDatabaseInitialize(true);
    // clang-format on
    CQZRIM im = IM("ACME", "X-1");
    CQZRRTM rtm = RTM("ACME", "R-1");
    const struct {
        const char* call;
        long long result;
        long long expected;
    } rows[] = {
// clang-format off
#define QZR_ROW(call, expected) {#call, static_cast<long long>(c.call), expected}
        QZR_ROW(GetFileVersion(), -1), QZR_ROW(GetFileFormat(), -1), QZR_ROW(GetFileType(), -1),
        QZR_ROW(GetFileName() != nullptr, 0), QZR_ROW(GetFileDate() != nullptr, 0),
        QZR_ROW(GetFileCreateBy() != nullptr, 0), QZR_ROW(GetFileRelease() != nullptr, 0),
        QZR_ROW(GetFileRemark() != nullptr, 0), QZR_ROW(IsDatabaseInitialize(), 0),
        QZR_ROW(GetTotalMachine(), 0), QZR_ROW(GetTotalMaker(), 0), QZR_ROW(GetMachineCount(1), 0),
        QZR_ROW(GetMachineCount("ACME"), 0), QZR_ROW(GetMakerID(0), 0),
        QZR_ROW(GetMaker(1) != nullptr, 0), QZR_ROW(AddMachine(im), 0), QZR_ROW(AddMachine(rtm), 0),
        QZR_ROW(GetCurrentMachine(0, im), 0), QZR_ROW(GetCurrentMachine(0, rtm), 0),
        QZR_ROW(GetCurrentMakerMachine(1, 0, im), 0), QZR_ROW(GetCurrentMakerMachine(1, 0, rtm), 0),
        QZR_ROW(GetCurrentMakerMachine("ACME", 0, im), 0),
        QZR_ROW(GetCurrentMakerMachine("ACME", 0, rtm), 0),
        QZR_ROW(GetMachine(1, im), 0), QZR_ROW(GetMachine(1, rtm), 0),
        QZR_ROW(GetMachine("ACME", "X-1", im), 0), QZR_ROW(GetMachine("ACME", "R-1", rtm), 0),
        QZR_ROW(SetMachineData(1, im), 0), QZR_ROW(SetMachineData(1, rtm), 0),
        QZR_ROW(SetCurrentMachineData(0, im), 0), QZR_ROW(SetCurrentMachineData(0, rtm), 0),
        QZR_ROW(RemoveMachine(1), 0), QZR_ROW(RemoveMachine("ACME", "X-1"), 0),
        QZR_ROW(RemoveCurrentMaker(0), 0), QZR_ROW(RemoveMaker(1), 0), QZR_ROW(RemoveMaker("ACME"), 0),
        QZR_ROW(RemoveAllMaker(), 0), QZR_ROW(IsMachineIdentity(im, im), 0),
        QZR_ROW(IsMachineIdentity(rtm, rtm), 0), QZR_ROW(IsIdentityMachineExist(im), 0),
        QZR_ROW(IsIdentityMachineExist(rtm), 0), QZR_ROW(IsMachineNameExist(im), 0),
        QZR_ROW(IsMachineNameExist(rtm), 0), QZR_ROW(IsMachineNameExist("ACME - X-1"), 0),
#undef QZR_ROW
        // clang-format on
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.result, row.expected) << row.call;
    }
    EXPECT_EQ(im.GetMachineID(), -1);
    EXPECT_EQ(rtm.GetMachineID(), -1);
    EXPECT_STREQ(im.GetGrade(), "X-1");

    // Copying from or into it changes nothing; a copy constructed from it has an empty store of
    // its own, unless that store cannot be created either.
    CQZRMoldingMachineCtrl filled;
    FillSource(filled);
    const std::string everything = Everything(filled);
    filled = c;
    c = filled;
    EXPECT_EQ(CQZRMoldingMachineCtrlAccess::Store(c), nullptr);
    EXPECT_EQ(Everything(filled), everything);
    EXPECT_EQ(Everything(CQZRMoldingMachineCtrl(c)), "|0|0|0||||||clear");
    FailNextStoreCreations(1);
    EXPECT_EQ(CQZRMoldingMachineCtrlAccess::Store(CQZRMoldingMachineCtrl(filled)), nullptr);
}

}  // namespace

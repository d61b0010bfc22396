// Adding, looking up, editing and checking machines: the id rules, lookups that stop at the first
// match, removals and the name checks. (The kind a new group takes is checked against the plain
// model in model_test.cpp.)
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "CatalogueTestSupport.h"

namespace {

using catalogue_test::Add;
using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;

// A catalogue without machines restarts machine ids at 1, one without groups maker ids; both
// counters are shared by every catalogue of the process. A maker joins its group whatever its
// case (the group keeps the first spelling); a trailing blank makes another maker.
TEST(CatalogueAdding, IdRules) {
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM first = IM("ACME", "A-1");
    ASSERT_TRUE(catalogue.AddMachine(first));
    EXPECT_EQ(first.GetMachineID(), 1);
    EXPECT_EQ(first.GetMakerID(), 1);
    first.SetGrade("changed");  // the catalogue holds its own copy
    ASSERT_TRUE(Add(catalogue, IM("acme", "A-2")));
    ASSERT_TRUE(Add(catalogue, IM("ACME ", "B-1")));
    EXPECT_EQ(Picture(catalogue), "ACME#1[A-1:1 A-2:2] ACME #2[B-1:3]");

    for (int id = 1; id <= 3; ++id) {
        ASSERT_TRUE(catalogue.RemoveMachine(id));
    }
    ASSERT_TRUE(Add(catalogue, IM("GAMMA", "G-1")));
    ASSERT_TRUE(Add(catalogue, IM("Acme", "A-3")));
    EXPECT_EQ(Picture(catalogue), "ACME#1[A-3:2] ACME #2() GAMMA#3[G-1:1]");

    CQZRMoldingMachineCtrl other;  // without groups: both shared counters restart
    ASSERT_TRUE(Add(other, IM("OMEGA", "O-1")));
    CQZRIM delta = IM("DELTA", "D-1");
    ASSERT_TRUE(catalogue.AddMachine(delta));
    EXPECT_EQ(delta.GetMachineID(), 2);
    EXPECT_EQ(delta.GetMakerID(), 2);  // a host walking by ids now sees "ACME " twice
    EXPECT_EQ(Picture(catalogue), "ACME#1[A-3:2] ACME #2() GAMMA#3[G-1:1] ACME #2()");

    ASSERT_TRUE(catalogue.RemoveAllMaker());
    ASSERT_TRUE(Add(catalogue, IM("BETA", "B-2")));
    EXPECT_EQ(Picture(catalogue), "BETA#1[B-2:1]");
}

// ACME (injection moulding) then BETA (transfer moulding: R-1).
void FillMixed(CQZRMoldingMachineCtrl& catalogue) {
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-2")));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("BETA", "R-1")));
    ASSERT_EQ(Picture(catalogue), "ACME#1[X-1:1 X-2:2] BETA#2{R-1:3}");
}

// With the help of a second catalogue restarting the shared counters: the transfer-moulding group
// RTMCO and the later injection-moulding group LATE share maker id 2, their machines machine id 2.
TEST(CatalogueQueries, LookupsStopAtTheFirstMatchButMachineIdsWalkOn) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("EARLY", "E-1")));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("RTMCO", "R-1")));
    CQZRMoldingMachineCtrl other;
    ASSERT_TRUE(Add(other, IM("OTHER", "O-1")));
    catalogue.SetFileType(0);
    ASSERT_TRUE(Add(catalogue, IM("LATE", "L-1")));
    ASSERT_EQ(Picture(catalogue), "EARLY#1[E-1:1] RTMCO#2{R-1:2} RTMCO#2{R-1:2}");

    CQZRIM im;
    EXPECT_FALSE(catalogue.GetCurrentMakerMachine(2, 0, im)) << "LATE is never reached by id";
    EXPECT_TRUE(catalogue.GetCurrentMakerMachine("late", 0, im));
    ASSERT_TRUE(catalogue.GetMachine(2, im)) << "the machine-id lookup walks on to LATE";
    EXPECT_STREQ(im.GetGrade(), "L-1");
    ASSERT_TRUE(catalogue.RemoveMachine(2)) << "removal by id looks at both kinds";
    EXPECT_EQ(Picture(catalogue), "EARLY#1[E-1:1] RTMCO#2() RTMCO#2()");
    ASSERT_TRUE(catalogue.RemoveMaker(2));
    EXPECT_STREQ(catalogue.GetMaker(2), "LATE") << "removing the first group uncovers the second";
}

// ACME (a1, a2), BETA (b1), GAMMA (c1): machine ids 1 to 4, maker ids 1 to 3.
TEST(CatalogueEdits, RemovalsTable) {
    using Ctrl = CQZRMoldingMachineCtrl;
    const struct {
        const char* call;
        bool (*edit)(Ctrl&);
        const char* after;  // null: false, unchanged
    } rows[] = {
    // clang-format off
#define QZR_CALL(call, after) {#call, [](Ctrl& c) { return c.call; }, after}
        QZR_CALL(RemoveMachine(2), "ACME#1[a1:1] BETA#2[b1:3] GAMMA#3[c1:4]"),
        QZR_CALL(RemoveMachine("acme", "A1"), "ACME#1[a2:2] BETA#2[b1:3] GAMMA#3[c1:4]"),
        QZR_CALL(RemoveMachine("ACME", "b1"), nullptr), QZR_CALL(RemoveMachine(nullptr, "a1"), nullptr),
        QZR_CALL(RemoveCurrentMaker(1), "ACME#1[a1:1 a2:2] GAMMA#3[c1:4]"),
        QZR_CALL(RemoveCurrentMaker(3), nullptr), QZR_CALL(RemoveCurrentMaker(-1), nullptr),
        QZR_CALL(RemoveMaker(1), "BETA#2[b1:3] GAMMA#3[c1:4]"), QZR_CALL(RemoveMaker(0), nullptr),
        QZR_CALL(RemoveMaker("gamma"), "ACME#1[a1:1 a2:2] BETA#2[b1:3]"),
#undef QZR_CALL
        // clang-format on
    };
    for (const auto& row : rows) {
        Ctrl catalogue;
        for (const char* machine : {"ACME a1", "ACME a2", "BETA b1", "GAMMA c1"}) {
            const std::string text = machine;
            ASSERT_TRUE(Add(catalogue, IM(text.substr(0, text.find(' ')).c_str(),
                                          text.substr(text.find(' ') + 1).c_str())));
        }
        const std::string before = Picture(catalogue);
        EXPECT_EQ(row.edit(catalogue), row.after != nullptr) << row.call;
        EXPECT_EQ(Picture(catalogue), row.after != nullptr ? row.after : before) << row.call;
    }
}

// The data setters overwrite every field of the machine of their kind, its machine id included.
TEST(CatalogueEdits, SetMachineDataKeepsTheKindAndRemoveAllMakerEmpties) {
    CQZRMoldingMachineCtrl catalogue;
    FillMixed(catalogue);
    CQZRIM im;
    EXPECT_FALSE(catalogue.GetMachine(3, im));
    EXPECT_FALSE(catalogue.SetMachineData(3, IM("ACME", "Y")));
    EXPECT_FALSE(catalogue.SetCurrentMachineData(2, IM("ACME", "Y")));
    EXPECT_FALSE(catalogue.SetCurrentMachineData(1, RTM("BETA", "Y")));
    CQZRRTM renumbered = RTM("OTHERCO", "R-2");
    renumbered.SetMachineID(77);
    EXPECT_TRUE(catalogue.SetMachineData(3, renumbered));
    EXPECT_TRUE(catalogue.SetCurrentMachineData(0, IM("OTHERCO", "X-9")));
    EXPECT_EQ(Picture(catalogue), "ACME#1[X-9:-1 X-2:2] BETA#2{R-2:77}");
    // The group keeps its name; the display-name check reads the record's own maker.
    EXPECT_TRUE(catalogue.IsMachineNameExist(RTM("beta", "r-2")));
    EXPECT_FALSE(catalogue.IsMachineNameExist(RTM("OTHERCO", "R-2")));
    EXPECT_TRUE(catalogue.IsMachineNameExist("OTHERCO - R-2"));
    EXPECT_FALSE(catalogue.IsMachineNameExist("BETA - R-2"));
    // Emptying: version, format and type become -1 and the flag is cleared; the texts stay.
    catalogue.SetFileRemark("kept");
    catalogue.SetDatabaseInitialize(true);
    EXPECT_TRUE(catalogue.RemoveAllMaker());
    EXPECT_EQ(catalogue.GetFileVersion() + catalogue.GetFileFormat() + catalogue.GetFileType(), -3);
    EXPECT_FALSE(catalogue.IsDatabaseInitialize());
    EXPECT_STREQ(catalogue.GetFileRemark(), "kept");
    EXPECT_EQ(Picture(catalogue), "");
}

// The display-name check compares whole names by the name rule; names above 255 characters are
// compared as the check's 256-byte buffer cuts them.
TEST(CatalogueChecks, DisplayNames) {
    const std::string maker(200, 'M');
    const std::string longName = maker + " - " + std::string(100, 'g');
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    ASSERT_TRUE(Add(catalogue, IM(maker.c_str(), std::string(100, 'g').c_str())));
    const std::pair<std::string, bool> rows[] = {{"acme - x-1", true},
                                                 {"ACME-X-1", false},
                                                 {"ACME - X-1 ", false},
                                                 {longName, false},
                                                 {longName.substr(0, 255), true},
                                                 {longName.substr(0, 254), false}};
    for (const auto& [name, exists] : rows) {
        EXPECT_EQ(catalogue.IsMachineNameExist(name.c_str()), exists) << "'" << name << "'";
    }
    EXPECT_FALSE(catalogue.IsMachineNameExist(static_cast<const char*>(nullptr)));
}

// Only the first machine of the grade is compared, the stored record with the caller's.
TEST(CatalogueChecks, IdentityComparesTheFirstMachineOfTheGrade) {
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM query = IM("acme", "x-1");
    for (double force : {100.0, 200.0}) {
        CQZRIM machine = IM("ACME", "X-1");
        machine.SetClampingForce(force);
        ASSERT_TRUE(catalogue.AddMachine(machine));
    }
    query.SetClampingForce(100.0);
    query.SetControllerID(5);  // not part of the identity
    EXPECT_TRUE(catalogue.IsIdentityMachineExist(query));
    EXPECT_TRUE(catalogue.IsMachineIdentity(query, IM("ACME", "X-1")) == false);
    query.SetClampingForce(200.0);
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(query));
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(RTM("ACME", "X-1")));
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(IM("ACME", "X-2")));
}

}  // namespace

// What the plain model of model_test.cpp does not hold: ids shared with other catalogues,
// lookups that stop at the first of two groups with one id, and the name and duplicate checks
// at their edges.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "CatalogueTestSupport.h"

namespace {

using catalogue_test::Add;
using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;

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

// Duplicate and name checks: by maker and grade, by display name, and by machine data.
#include <string>

#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"

namespace {

using catalogue_test::Add;
using catalogue_test::IM;
using catalogue_test::RTM;

TEST(CatalogueChecks, DisplayNameTable) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-100")));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("BETA", "R-1")));
    struct Row {
        int fileType;
        const char* text;
        bool exists;
    };
    const Row rows[] = {
        {0, "ACME - X-100", true},
        {0, "acme - x-100", true},
        {0, "ACME-X-100", false},
        {0, "ACME  - X-100", false},
        {0, "ACME - X-100 ", false},
        {0, "BETA - R-1", false},
        {0, "", false},
        {0, nullptr, false},
        {1, "beta - r-1", true},
        {1, "ACME - X-100", false},
        {-1, "ACME - X-100", false},
        {2, "ACME - X-100", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("type " + std::to_string(row.fileType) + ", '" +
                     (row.text != nullptr ? row.text : "<null>") + "'");
        catalogue.SetFileType(row.fileType);
        EXPECT_EQ(catalogue.IsMachineNameExist(row.text), row.exists);
    }
}

TEST(CatalogueChecks, DisplayNameCheckFailsAfterRemoveAllMakerUntilTheTypeIsSet) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-100")));
    ASSERT_TRUE(catalogue.RemoveAllMaker());
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-100")));
    EXPECT_FALSE(catalogue.IsMachineNameExist("ACME - X-100"));
    catalogue.SetFileType(0);
    EXPECT_TRUE(catalogue.IsMachineNameExist("ACME - X-100"));
}

// Names above 255 characters are compared as the 256-byte name buffer cuts them.
TEST(CatalogueChecks, LongDisplayNamesAreComparedAsCutTo255Characters) {
    const std::string maker(200, 'M');
    const std::string longGrade(100, 'g');
    const std::string fittingGrade(255 - 203, 'f');
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM(maker.c_str(), longGrade.c_str())));
    ASSERT_TRUE(Add(catalogue, IM(maker.c_str(), fittingGrade.c_str())));

    const std::string longName = maker + " - " + longGrade;
    EXPECT_FALSE(catalogue.IsMachineNameExist(longName.c_str()));
    EXPECT_TRUE(catalogue.IsMachineNameExist(longName.substr(0, 255).c_str()));
    EXPECT_FALSE(catalogue.IsMachineNameExist(longName.substr(0, 254).c_str()));
    const std::string fittingName = maker + " - " + fittingGrade;
    ASSERT_EQ(fittingName.size(), 255U);
    EXPECT_TRUE(catalogue.IsMachineNameExist(fittingName.c_str()));
}

TEST(CatalogueChecks, NameChecksReadGroupNameOrRecordMaker) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    CQZRIM renamed = IM("OTHERCO", "X-1");
    renamed.SetMachineID(1);
    ASSERT_TRUE(catalogue.SetMachineData(1, renamed));

    // The record check goes by the group's name, the display-name check by the record's maker.
    EXPECT_TRUE(catalogue.IsMachineNameExist(IM("acme", "x-1")));
    EXPECT_FALSE(catalogue.IsMachineNameExist(IM("OTHERCO", "X-1")));
    EXPECT_FALSE(catalogue.IsMachineNameExist("ACME - X-1"));
    EXPECT_TRUE(catalogue.IsMachineNameExist("OTHERCO - X-1"));
}

TEST(CatalogueChecks, RecordNameCheckHonoursTheKind) {
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Add(catalogue, IM("ACME", "X-1")));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Add(catalogue, RTM("BETA", "R-1")));
    EXPECT_TRUE(catalogue.IsMachineNameExist(IM("Acme", "X-1")));
    EXPECT_FALSE(catalogue.IsMachineNameExist(RTM("ACME", "X-1")));
    EXPECT_TRUE(catalogue.IsMachineNameExist(RTM("BETA", "R-1")));
    EXPECT_FALSE(catalogue.IsMachineNameExist(IM("BETA", "R-1")));
    EXPECT_FALSE(catalogue.IsMachineNameExist(IM("ACME", "X-2")));
    EXPECT_FALSE(catalogue.IsMachineNameExist(IM("GAMMA", "X-1")));
}

TEST(CatalogueChecks, IdentityComparesOnlyTheFirstMachineOfTheGrade) {
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM first = IM("ACME", "X-1");
    first.SetClampingForce(100.0);
    CQZRIM second = IM("ACME", "X-1");
    second.SetClampingForce(200.0);
    ASSERT_TRUE(catalogue.AddMachine(first));
    ASSERT_TRUE(catalogue.AddMachine(second));

    CQZRIM query = IM("acme", "x-1");
    query.SetClampingForce(100.0);
    query.SetControllerID(5);  // not part of the identity
    EXPECT_TRUE(catalogue.IsIdentityMachineExist(query));
    query.SetClampingForce(200.0);
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(query));
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(IM("GAMMA", "X-1")));
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(IM("ACME", "X-2")));

    CQZRRTM rtm = RTM("ACME", "X-1");
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(rtm));
}

TEST(CatalogueChecks, IdentityOfTransferMouldingMachines) {
    CQZRMoldingMachineCtrl catalogue;
    CQZRRTM stored = RTM("BETA", "R-1");
    stored.SetTransferPressure(15.0);
    ASSERT_TRUE(catalogue.AddMachine(stored));
    CQZRRTM query = RTM("BETA", "R-1");
    query.SetTransferPressure(15.0);
    query.SetTransferRate(3.0);  // not part of the identity
    EXPECT_TRUE(catalogue.IsIdentityMachineExist(query));
    query.SetTransferPressure(16.0);
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(query));
    EXPECT_FALSE(catalogue.IsIdentityMachineExist(IM("BETA", "R-1")));
}

TEST(CatalogueChecks, TwoRecordIdentityIgnoresTheCatalogue) {
    CQZRMoldingMachineCtrl empty;
    CQZRMoldingMachineCtrl full;
    ASSERT_TRUE(Add(full, IM("ACME", "X-1")));
    CQZRIM a = IM("ACME", "X-1");
    CQZRIM b = IM("acme", "X-1");
    CQZRIM c = IM("ACME", "X-1");
    c.SetRemark("different");
    EXPECT_TRUE(empty.IsMachineIdentity(a, b));
    EXPECT_TRUE(full.IsMachineIdentity(a, b));
    EXPECT_FALSE(empty.IsMachineIdentity(a, c));
    EXPECT_FALSE(full.IsMachineIdentity(a, c));
    EXPECT_TRUE(full.IsMachineIdentity(RTM("B", "R"), RTM("b", "r")));
}

}  // namespace

// Loading sectioned banks: one section into a record, the system banks of a folder and the
// user banks, from the banks in tests/data/sectioned.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "BankBuilders.h"
#include "FixedClock.h"
#include "TempFolder.h"
#include "bank/QZRMoldingMachineReader.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "reference/RescanningSectionParse.h"

using qzr::bank::CQZRMoldingMachineReader;
using qzr::bank::CQZRMoldingMachineWriter;

namespace {

using qzr::test::FixedClock;
using qzr::test::TempFolder;

const std::string kData = std::string(QZR_TEST_DATA_DIR) + "/sectioned/";

template <class Record = CQZRIM>
std::string Grades(const CQZRMoldingMachineCtrl& catalogue) {
    std::string grades;
    Record machine;
    for (int i = 0; i < catalogue.GetTotalMachine(); ++i) {
        if (catalogue.GetCurrentMachine(i, machine))
            grades += std::string(machine.GetGrade()) + " ";
    }
    return grades;
}

// Maker and grade are required; a key missing from a section is taken from a later one; a
// number that does not convert takes the previous number of its kind in the section, or 0.
// Transfer-moulding sections read "ClampingForce" right after "PlungerSpeed".
TEST(SectionedParse, OneSectionIntoARecord) {
    const std::string path = kData + "one_section.bnk";
    CQZRIM imm;
    imm.SetControllerID(99);
    imm.SetMachineDimension("kept");
    ASSERT_TRUE(qzr::reference::ParseIMMSection(path.c_str(), 1, imm));
    EXPECT_STREQ(imm.GetMaker(), "Later");
    EXPECT_STREQ(imm.GetRemark(), "two");
    EXPECT_EQ(imm.GetControllerID(), 0);
    EXPECT_EQ(imm.GetScrewDiameter(), 0.0);
    EXPECT_EQ(imm.GetShotVolume(), 140.5);
    EXPECT_EQ(imm.GetEjectorPoint(), 6);
    EXPECT_STREQ(imm.GetMachineDimension(), "kept") << "the record is not cleared first";
    CQZRRTM rtm;
    ASSERT_TRUE(qzr::reference::ParseRTMSection(path.c_str(), 1, rtm));
    EXPECT_EQ(rtm.GetPlungerSpeed(), 2.5);
    EXPECT_EQ(rtm.GetTransferPressure(), 1000.0);
    for (long index : {3L, 4L, 0L}) {
        EXPECT_FALSE(qzr::reference::ParseIMMSection(path.c_str(), index, imm)) << index;
    }
    EXPECT_FALSE(qzr::reference::ParseIMMSection(nullptr, 1, imm));
}

// A folder of system banks: only the files of the loader's kind count, in name order, and
// one record serves every section of a file.
TEST(SectionedLoad, SystemBankFolder) {
    TempFolder folder;
    std::filesystem::copy(kData + "IMM", folder.File("IMM"));
    folder.MakeFolder("IMM/g.bnk");
    const std::string pattern = folder.Folder() + "/IMM\\*.bnk";
    CQZRMoldingMachineReader reader;
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(reader.ReadIMMSystemDatabase(pattern.c_str(), &catalogue));
    EXPECT_EQ(Grades(catalogue), "a-1 a-2 B2-1 ");
    EXPECT_EQ(catalogue.GetFileVersion(), 9000) << "the first accepted file decides";
    CQZRIM second;
    ASSERT_TRUE(catalogue.GetCurrentMachine(1, second));
    EXPECT_STREQ(second.GetRemark(), "of a-1");

    CQZRMoldingMachineCtrl transfer;
    ASSERT_TRUE(reader.ReadRTMSystemDatabase(pattern.c_str(), &transfer));
    EXPECT_EQ(Grades<CQZRRTM>(transfer), "b-1 ");
    EXPECT_EQ(transfer.GetFileType(), 1);
    const std::string none = folder.Folder() + "/IMM/*.none";
    EXPECT_FALSE(reader.ReadIMMSystemDatabase(none.c_str(), &transfer));
    EXPECT_FALSE(reader.ReadIMMSystemDatabase(nullptr, &transfer));

    // A user bank loaded after them keeps the system attributes.
    ASSERT_TRUE(reader.ReadIMMUserDatabase(folder.File("IMM/d.bnk").c_str(), &catalogue));
    EXPECT_EQ(Grades(catalogue), "a-1 a-2 B2-1 d-1 ");
    EXPECT_EQ(catalogue.GetFileFormat(), 0);
}

// A user bank starts every machine afresh and stops at the first gap; every machine it adds
// is the record the reference parser fills from that section alone, as the writer shows.
TEST(SectionedLoad, UserBankMatchesTheSectionParser) {
    FixedClock clock;
    TempFolder folder;
    const std::string path = kData + "user.bnk";
    CQZRMoldingMachineCtrl loaded;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMUserDatabase(path.c_str(), &loaded));
    CQZRMoldingMachineCtrl parsed = qzr::test::AttributedCatalogue(9000, 1, 0);
    for (long n = 1;; ++n) {
        CQZRIM machine;
        if (!qzr::reference::ParseIMMSection(path.c_str(), n, machine)) break;
        parsed.AddMachine(machine);
    }
    EXPECT_EQ(Grades(loaded), "x-1 x-2 x-3 ");
    const CQZRMoldingMachineWriter writer;
    ASSERT_TRUE(writer.WriteIMMUserDatabase(folder.File("loaded.bnk").c_str(), &loaded));
    ASSERT_TRUE(writer.WriteIMMUserDatabase(folder.File("parsed.bnk").c_str(), &parsed));
    EXPECT_EQ(folder.Read("loaded.bnk"), folder.Read("parsed.bnk"));
}

}  // namespace

// Sectioned user banks byte for byte: a bank read and written back gives its own bytes, twice
// over; what the writers refuse; and the numbering gaps that machines of the other kind leave.
#include <gtest/gtest.h>

#include <string>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "bank_test_support.h"

using qzr::bank::CQZRMoldingMachineReader;
using qzr::bank::CQZRMoldingMachineWriter;

namespace {

using qzr::bank::testing::FixedClock;
using qzr::bank::testing::Lines;
using qzr::bank::testing::TempFolder;

// A user bank as the writers write it at the fixed clock, for a catalogue whose creator and
// remark are those below.
std::string UserBank(int type, int total, const std::string& sections) {
    return Lines({"[FileHeader]", "Version    = 9000", "Format     = 1",
                  "Type       = " + std::to_string(type), "CreateDate = Wed Jan 02 02:03:55 1980",
                  "", "CreateBy   = line seven", "Remark     = my own bank", "", "[General]",
                  "TotalMachine = " + std::to_string(total), ""}) +
           sections + "[EOF]\r\n";
}

// clang-format off
const std::string kIMMSection = Lines({
    "[Machine-1]", "",
    "Maker                       = Harlow Presswerk", "Grade                       = HX-180",
    "Controller                  = 12", "Remark                      = two platen, a=b",
    "ScrewDiameter               = 32.500000", "ScrewStroke                 = 140.000000",
    "ShotVolume                  = 116.250000", "ShotWeight                  = -105.750000",
    "MaxInjectionPressure        = 2180.000000", "HoldingPressure             = 1530.500000",
    "InjectionSpeed              = 120.000000", "InjectionRate               = 99.500000",
    "PlasticationRate            = 14.250000", "ScrewSpeed                  = 260.000000",
    "NozzleContactForce          = 35.000000", "NozzleStroke                = 250.000000",
    "HeaterWattage               = 7.800000", "TemperatureControlZones     = 5",
    "ClampingForce               = 1100.000000", "OpeningStroke               = 410.000000",
    "MaxDaylight                 = 760.000000", "MoldHeight                  = 350.000000",
    "DistanceBetweenTieBars(HxV) = 410x410", "PlatenSize(HxV)             = 620x620",
    "EjectorPoint                = -3", "EjectorForce                = 28.500000",
    "EjectorStroke               = 100.000000", "MachineWeight               = 4.350000",
    "MachineDimension(LxWxH)     = 4.6x1.2x1.9",
    ""});
// clang-format on

// Keys padded to 17 characters, but "Maker" and "PlungerSpeed" carry a tab before " = ".
const std::string kRTMSection =
    Lines({"[Machine-1]", "", "Maker        \t = Ostrava Form", "Grade            = TR-40",
           "Controller       = 3", "Remark           = ", "PlungerDiameter  = 40.000000",
           "PlungerStroke    = 120.500000", "PlungerSpeed\t = 0.666667",
           "TransferPressure = 180.250000", "TransferForce    = 22.500000",
           "TransferRate     = 12.000000", "ClampingForce    = 1500.000000",
           "ShotWeight       = 310.500000", "ShotVolume       = 170.000000", ""});

// Writes a user bank of the given kind: "User-IMM.bnk" (a path of the host's choice) or the
// folder's "Bank\User-RTMIC.bnk". Returns the name written, or null.
const char* Write(const TempFolder& folder, const CQZRMoldingMachineCtrl* catalogue, int type) {
    const CQZRMoldingMachineWriter writer;
    folder.MakeFolder("Bank");
    const std::string root = folder.Folder() + "/";
    if (type == 0) {
        return writer.WriteIMMUserDatabase((root + "User-IMM.bnk").c_str(), catalogue)
                   ? "User-IMM.bnk"
                   : nullptr;
    }
    return writer.WriteRTMUserDatabase(root.c_str(), catalogue) ? "Bank/User-RTMIC.bnk" : nullptr;
}

bool Read(const std::string& path, CQZRMoldingMachineCtrl* catalogue, int type) {
    CQZRMoldingMachineReader reader;
    catalogue->SetFileCreateBy("line seven");  // not read from a bank
    catalogue->SetFileRemark("my own bank");
    return type == 0 ? reader.ReadIMMUserDatabase(path.c_str(), catalogue)
                     : reader.ReadRTMUserDatabase(path.c_str(), catalogue);
}

TEST(SectionedWriter, ReadWriteReadWriteGivesTheBankBack) {
    FixedClock clock;
    const std::string banks[] = {UserBank(0, 1, kIMMSection), UserBank(1, 1, kRTMSection)};
    for (int type : {0, 1}) {
        SCOPED_TRACE(type == 0 ? "injection moulding" : "transfer moulding");
        TempFolder folder;
        std::string path = folder.Write("in.bnk", banks[type]);
        for (int round = 1; round <= 2; ++round) {
            CQZRMoldingMachineCtrl catalogue;
            ASSERT_TRUE(Read(path, &catalogue, type));
            const char* name = Write(folder, &catalogue, type);
            ASSERT_TRUE(name);
            EXPECT_EQ(folder.Read(name), banks[type]) << "round " << round;
            path = folder.File(name);
        }
    }
    // Each value lands in its own attribute, also where key and attribute names differ.
    TempFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Read(folder.Write("imm.bnk", banks[0]), &catalogue, 0));
    CQZRIM imm;
    ASSERT_TRUE(catalogue.GetCurrentMachine(0, imm));
    EXPECT_EQ(imm.GetInjectionPressure(), 2180.0);
    EXPECT_EQ(imm.GetTemperatureControlZone(), 5);
    EXPECT_EQ(imm.GetShotWeight(), -105.75);
    EXPECT_STREQ(imm.GetDistanceBetweenTieBars(), "410x410");
    CQZRMoldingMachineCtrl transfer;
    ASSERT_TRUE(Read(folder.Write("rtm.bnk", banks[1]), &transfer, 1));
    CQZRRTM rtm;
    ASSERT_TRUE(transfer.GetCurrentMachine(0, rtm));
    EXPECT_EQ(rtm.GetTransferRate(), 12.0);
    EXPECT_EQ(rtm.GetClampingForce(), 1500.0);
}

std::string SectionNumbers(const std::string& text) {
    std::string numbers;
    for (size_t at = text.find("[Machine-"); at != std::string::npos;
         at = text.find("[Machine-", at + 1)) {
        numbers += text.substr(at + 9, text.find(']', at) - at - 9) + " ";
    }
    return numbers;
}

// Machines of the other kind count in TotalMachine but get no section and leave a gap in the
// numbering, where a later reading of the file stops.
TEST(SectionedWriter, OtherKindLeavesGapsInTheNumbering) {
    FixedClock clock;
    CQZRMoldingMachineCtrl catalogue;
    catalogue.SetFileVersion(9000);
    catalogue.SetFileFormat(1);
    for (const char* maker : {"Harlow", "Ostrava", "Kessling"}) {
        CQZRIM imm;
        CQZRRTM rtm;
        imm.SetMaker(maker);
        rtm.SetMaker(maker);
        // The file type decides the kind of a new maker group: Ostrava's is transfer moulding.
        catalogue.SetFileType(maker[0] == 'O' ? 1 : 0);
        maker[0] == 'O' ? catalogue.AddMachine(rtm) : catalogue.AddMachine(imm);
    }
    catalogue.SetFileType(0);
    TempFolder folder;
    ASSERT_TRUE(Write(folder, &catalogue, 0));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Write(folder, &catalogue, 1));
    const std::string imm = folder.Read("User-IMM.bnk");
    EXPECT_NE(imm.find("TotalMachine = 3\r\n"), std::string::npos);
    EXPECT_EQ(SectionNumbers(imm), "1 3 ");
    EXPECT_EQ(SectionNumbers(folder.Read("Bank/User-RTMIC.bnk")), "2 ");
    CQZRMoldingMachineCtrl reloaded;
    ASSERT_TRUE(Read(folder.File("User-IMM.bnk"), &reloaded, 0));
    EXPECT_EQ(reloaded.GetTotalMachine(), 1);
}

}  // namespace

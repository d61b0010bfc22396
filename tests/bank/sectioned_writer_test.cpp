// Writing sectioned user banks byte for byte, what the writers refuse, and round trips
// through the loaders.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "sectioned_test_support.h"

namespace {

using qzr::sectioned::testing::FixedClock;
using qzr::sectioned::testing::JoinLines;
using qzr::sectioned::testing::SampleIMM;
using qzr::sectioned::testing::SampleRTM;
using qzr::sectioned::testing::ScratchFolder;
using qzr::sectioned::testing::SetFileAttributes;

std::string FileHeader(int type, int total) {
    return JoinLines({"[FileHeader]", "Version    = 9000", "Format     = 1",
                      "Type       = " + std::to_string(type),
                      "CreateDate = Wed Jan 02 02:03:55 1980", "", "CreateBy   = line seven",
                      "Remark     = my own bank", "", "[General]",
                      "TotalMachine = " + std::to_string(total), ""});
}

CQZRIM PlainIMM() {
    CQZRIM m;
    m.SetMaker("Harlow Presswerk");
    m.SetGrade("HX-180");
    m.SetControllerID(12);
    m.SetRemark("two platen");
    m.SetScrewDiameter(1500);
    m.SetScrewStroke(0.0000004);
    m.SetShotVolume(1.23456789);
    m.SetShotWeight(-2.5);
    m.SetInjectionPressure(2100);
    m.SetHoldingPressure(1600.5);
    m.SetInjectionSpeed(120);
    m.SetInjectionRate(95.25);
    m.SetPlasticationRate(14);
    m.SetScrewSpeed(250);
    m.SetNozzleContactForce(35);
    m.SetNozzleStroke(260);
    m.SetHeaterWattage(7.5);
    m.SetTemperatureControlZone(5);
    m.SetClampingForce(1800);
    m.SetOpeningStroke(450);
    m.SetMaxDaylight(850);
    m.SetMoldHeight(400);
    m.SetDistanceBetweenTieBars("460x460");
    m.SetPlatenSize("700x700");
    m.SetEjectorPoint(-3);
    m.SetEjectorForce(40);
    m.SetEjectorStroke(120);
    m.SetMachineWeight(6.2);
    m.SetMachineDimension("5.1x1.4x2.0");
    return m;
}

const char* const kPlainIMMSection[] = {
    "[Machine-1]",
    "",
    "Maker                       = Harlow Presswerk",
    "Grade                       = HX-180",
    "Controller                  = 12",
    "Remark                      = two platen",
    "ScrewDiameter               = 1500.000000",
    "ScrewStroke                 = 0.000000",
    "ShotVolume                  = 1.234568",
    "ShotWeight                  = -2.500000",
    "MaxInjectionPressure        = 2100.000000",
    "HoldingPressure             = 1600.500000",
    "InjectionSpeed              = 120.000000",
    "InjectionRate               = 95.250000",
    "PlasticationRate            = 14.000000",
    "ScrewSpeed                  = 250.000000",
    "NozzleContactForce          = 35.000000",
    "NozzleStroke                = 260.000000",
    "HeaterWattage               = 7.500000",
    "TemperatureControlZones     = 5",
    "ClampingForce               = 1800.000000",
    "OpeningStroke               = 450.000000",
    "MaxDaylight                 = 850.000000",
    "MoldHeight                  = 400.000000",
    "DistanceBetweenTieBars(HxV) = 460x460",
    "PlatenSize(HxV)             = 700x700",
    "EjectorPoint                = -3",
    "EjectorForce                = 40.000000",
    "EjectorStroke               = 120.000000",
    "MachineWeight               = 6.200000",
    "MachineDimension(LxWxH)     = 5.1x1.4x2.0",
    "",
};

CQZRRTM PlainRTM() {
    CQZRRTM m;
    m.SetMaker("Ostrava Form");
    m.SetGrade("TR-40");
    m.SetControllerID(3);
    m.SetRemark("");
    m.SetPlungerDiameter(40);
    m.SetPlungerStroke(120.5);
    m.SetPlungerSpeed(1.5);
    m.SetTransferPressure(180.25);
    m.SetTransferForce(22.5);
    m.SetTransferRate(12);
    m.SetClampingForce(1500);
    m.SetShotWeight(310.5);
    m.SetShotVolume(170);
    return m;
}

const char* const kPlainRTMSection[] = {
    "[Machine-1]",
    "",
    "Maker        \t = Ostrava Form",
    "Grade            = TR-40",
    "Controller       = 3",
    "Remark           = ",
    "PlungerDiameter  = 40.000000",
    "PlungerStroke    = 120.500000",
    "PlungerSpeed\t = 1.500000",
    "TransferPressure = 180.250000",
    "TransferForce    = 22.500000",
    "TransferRate     = 12.000000",
    "ClampingForce    = 1500.000000",
    "ShotWeight       = 310.500000",
    "ShotVolume       = 170.000000",
    "",
};

std::string Lines(const char* const* lines, size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i) {
        text += lines[i];
        text += "\r\n";
    }
    return text;
}

void MakeUserBank(CQZRMoldingMachineCtrl& catalogue, int type) {
    SetFileAttributes(catalogue, 9000, 1, type);
    catalogue.SetFileCreateBy("line seven");
    catalogue.SetFileRemark("my own bank");
}

TEST(SectionedWriter, InjectionMouldingBankByteForByte) {
    FixedClock clock;
    ScratchFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    MakeUserBank(catalogue, 0);
    CQZRIM machine = PlainIMM();
    catalogue.AddMachine(machine);
    const CQZRMoldingMachineWriter writer;
    ASSERT_TRUE(writer.WriteIMMUserDatabase(folder.File("User-IMM.bnk").c_str(), &catalogue));
    EXPECT_EQ(
        folder.Read("User-IMM.bnk"),
        FileHeader(0, 1) + Lines(kPlainIMMSection, std::size(kPlainIMMSection)) + "[EOF]\r\n");
}

TEST(SectionedWriter, TransferMouldingBankByteForByte) {
    FixedClock clock;
    ScratchFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    MakeUserBank(catalogue, 1);
    CQZRRTM machine = PlainRTM();
    catalogue.AddMachine(machine);
    const CQZRMoldingMachineWriter writer;
    folder.MakeFolder("Bank");
    ASSERT_TRUE(writer.WriteRTMUserDatabase(folder.Folder().c_str(), &catalogue) == false)
        << "a folder without a trailing separator or backslash is joined as it stands";
    ASSERT_TRUE(writer.WriteRTMUserDatabase((folder.Folder() + "\\").c_str(), &catalogue));
    EXPECT_EQ(
        folder.Read("Bank/User-RTMIC.bnk"),
        FileHeader(1, 1) + Lines(kPlainRTMSection, std::size(kPlainRTMSection)) + "[EOF]\r\n");
}

TEST(SectionedWriter, EmptyCatalogueWritesTheFrame) {
    FixedClock clock;
    ScratchFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    MakeUserBank(catalogue, 0);
    ASSERT_TRUE(
        CQZRMoldingMachineWriter().WriteIMMUserDatabase(folder.File("e.bnk").c_str(), &catalogue));
    EXPECT_EQ(folder.Read("e.bnk"), FileHeader(0, 0) + "[EOF]\r\n");
}

TEST(SectionedWriter, RefusesCataloguesOfAnotherBank) {
    struct AttributeRow {
        const char* label;
        int version;
        int format;
        int type;
        bool imm;
        bool rtm;
    };
    const AttributeRow rows[] = {
        {"injection-moulding user bank", 9000, 1, 0, true, false},
        {"transfer-moulding user bank", 9000, 1, 1, false, true},
        {"later version", 9500, 1, 0, true, false},
        {"legacy version", 8999, 1, 0, false, false},
        {"system bank", 9000, 0, 0, false, false},
        {"system bank of transfer moulding", 9000, 0, 1, false, false},
        {"type 2", 9000, 1, 2, false, false},
        {"new catalogue", 0, 0, 0, false, false},
    };
    FixedClock clock;
    for (const AttributeRow& row : rows) {
        SCOPED_TRACE(row.label);
        ScratchFolder folder;
        folder.MakeFolder("Bank");
        CQZRMoldingMachineCtrl catalogue;
        SetFileAttributes(catalogue, row.version, row.format, row.type);
        const CQZRMoldingMachineWriter writer;
        EXPECT_EQ(writer.WriteIMMUserDatabase(folder.File("Bank/User-IMM.bnk").c_str(), &catalogue),
                  row.imm);
        EXPECT_EQ(writer.WriteRTMUserDatabase((folder.Folder() + "/").c_str(), &catalogue),
                  row.rtm);
        EXPECT_EQ(folder.Exists("Bank/User-IMM.bnk"), row.imm);
        EXPECT_EQ(folder.Exists("Bank/User-RTMIC.bnk"), row.rtm);
    }
    ScratchFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    MakeUserBank(catalogue, 0);
    const CQZRMoldingMachineWriter writer;
    EXPECT_FALSE(writer.WriteIMMUserDatabase(nullptr, &catalogue));
    EXPECT_FALSE(writer.WriteIMMUserDatabase(folder.File("x.bnk").c_str(), nullptr));
    EXPECT_FALSE(writer.WriteRTMUserDatabase(nullptr, &catalogue));
    EXPECT_FALSE(writer.WriteRTMUserDatabase(folder.Folder().c_str(), nullptr));
    // A catalogue without a store.
    CQZRMoldingMachineCtrlAccess::DropStore(catalogue);
    EXPECT_FALSE(writer.WriteIMMUserDatabase(folder.File("x.bnk").c_str(), &catalogue));
    // A folder whose default path does not fit.
    CQZRMoldingMachineCtrl rtm;
    MakeUserBank(rtm, 1);
    EXPECT_FALSE(writer.WriteRTMUserDatabase(std::string(250, 'd').c_str(), &rtm));
    EXPECT_EQ(folder.EntryCount(), 0u);
}

// Machines of the other kind are counted in TotalMachine but get no section; the section
// numbers skip them.
TEST(SectionedWriter, OtherKindLeavesGapsInTheNumbering) {
    FixedClock clock;
    ScratchFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM first = SampleIMM("Harlow Presswerk", "HX-1", 1);
    CQZRRTM second = SampleRTM("Ostrava Form", "TR-2", 2);
    CQZRIM third = SampleIMM("Harlow Presswerk", "HX-3", 3);
    CQZRIM fourth = SampleIMM("Kessling", "K-4", 4);
    // The file type decides the kind of each new maker group.
    MakeUserBank(catalogue, 0);
    catalogue.AddMachine(first);
    catalogue.SetFileType(1);
    catalogue.AddMachine(second);
    catalogue.SetFileType(0);
    catalogue.AddMachine(third);
    catalogue.AddMachine(fourth);
    // Groups in creation order: Harlow (HX-1, HX-3), Ostrava (TR-2), Kessling (K-4).
    ASSERT_EQ(catalogue.GetTotalMachine(), 4);
    const CQZRMoldingMachineWriter writer;
    ASSERT_TRUE(writer.WriteIMMUserDatabase(folder.File("imm.bnk").c_str(), &catalogue));
    const std::string imm = folder.Read("imm.bnk");
    EXPECT_NE(imm.find("TotalMachine = 4\r\n"), std::string::npos);
    EXPECT_NE(imm.find("[Machine-1]\r\n\r\nMaker                       = Harlow Presswerk\r\n"
                       "Grade                       = HX-1\r\n"),
              std::string::npos);
    EXPECT_NE(imm.find("[Machine-2]\r\n\r\nMaker                       = Harlow Presswerk\r\n"
                       "Grade                       = HX-3\r\n"),
              std::string::npos);
    EXPECT_EQ(imm.find("[Machine-3]"), std::string::npos);
    EXPECT_NE(imm.find("[Machine-4]\r\n\r\nMaker                       = Kessling\r\n"),
              std::string::npos);
    EXPECT_EQ(imm.find("TR-2"), std::string::npos);

    MakeUserBank(catalogue, 1);
    folder.MakeFolder("Bank");
    ASSERT_TRUE(writer.WriteRTMUserDatabase((folder.Folder() + "/").c_str(), &catalogue));
    const std::string rtm = folder.Read("Bank/User-RTMIC.bnk");
    EXPECT_NE(rtm.find("TotalMachine = 4\r\n"), std::string::npos);
    EXPECT_NE(rtm.find("[Machine-3]\r\n\r\nMaker        \t = Ostrava Form\r\n"), std::string::npos);
    for (const char* absent : {"[Machine-1]", "[Machine-2]", "[Machine-4]"}) {
        EXPECT_EQ(rtm.find(absent), std::string::npos) << absent;
    }

    // Reading the injection-moulding bank back stops at the gap; the transfer-moulding bank
    // has no section 1 at all.
    CQZRMoldingMachineCtrl reloaded;
    CQZRMoldingMachineReader reader;
    EXPECT_TRUE(reader.ReadIMMUserDatabase(folder.File("imm.bnk").c_str(), &reloaded));
    EXPECT_EQ(reloaded.GetTotalMachine(), 2);
    EXPECT_TRUE(reader.ReadRTMUserDatabase(folder.File("Bank/User-RTMIC.bnk").c_str(), &reloaded));
    EXPECT_EQ(reloaded.GetTotalMachine(), 2);
}

// A real as "%lf" writes it and "%lf" reads it back.
double SixDecimals(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%f", value);
    return std::strtod(text, nullptr);
}

TEST(SectionedWriter, InjectionMouldingRoundTrip) {
    FixedClock clock;
    ScratchFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    const char* makers[] = {"Harlow Presswerk", "Kessling", "harlow presswerk", "Vantor"};
    for (int i = 0; i < 12; ++i) {
        CQZRIM machine = SampleIMM(makers[i % 4], ("G-" + std::to_string(i)).c_str(), i);
        machine.SetShotWeight(1.0 / (i + 3));  // not exact in six decimals
        catalogue.AddMachine(machine);
    }
    CQZRIM plain = PlainIMM();
    catalogue.AddMachine(plain);
    MakeUserBank(catalogue, 0);
    const CQZRMoldingMachineWriter writer;
    ASSERT_TRUE(writer.WriteIMMUserDatabase(folder.File("first.bnk").c_str(), &catalogue));

    CQZRMoldingMachineCtrl reloaded;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMUserDatabase(folder.File("first.bnk").c_str(),
                                                               &reloaded));
    EXPECT_EQ(reloaded.GetFileVersion(), 9000);
    EXPECT_EQ(reloaded.GetFileFormat(), 1);
    EXPECT_EQ(reloaded.GetFileType(), 0);
    EXPECT_TRUE(reloaded.IsDatabaseInitialize());
    ASSERT_EQ(reloaded.GetTotalMachine(), catalogue.GetTotalMachine());
    for (int i = 0; i < catalogue.GetTotalMachine(); ++i) {
        CQZRIM original;
        CQZRIM read;
        ASSERT_TRUE(catalogue.GetCurrentMachine(i, original));
        ASSERT_TRUE(reloaded.GetCurrentMachine(i, read));
        SCOPED_TRACE(original.GetGrade());
        EXPECT_STREQ(read.GetMaker(), original.GetMaker());
        EXPECT_STREQ(read.GetGrade(), original.GetGrade());
        EXPECT_EQ(read.GetShotWeight(), SixDecimals(original.GetShotWeight()));
        EXPECT_EQ(read.GetTemperatureControlZone(), original.GetTemperatureControlZone());
    }
    CQZRIM check;
    ASSERT_TRUE(reloaded.GetMachine("Harlow Presswerk", "HX-180", check));
    EXPECT_EQ(check.GetScrewDiameter(), 1500.0);
    EXPECT_EQ(check.GetScrewStroke(), 0.0);
    EXPECT_EQ(check.GetShotVolume(), 1.234568);

    reloaded.SetFileCreateBy("line seven");
    reloaded.SetFileRemark("my own bank");
    ASSERT_TRUE(writer.WriteIMMUserDatabase(folder.File("second.bnk").c_str(), &reloaded));
    EXPECT_EQ(folder.Read("second.bnk"), folder.Read("first.bnk"));
}

TEST(SectionedWriter, TransferMouldingRoundTrip) {
    FixedClock clock;
    ScratchFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    MakeUserBank(catalogue, 1);
    for (int i = 0; i < 7; ++i) {
        CQZRRTM machine =
            SampleRTM(i % 2 ? "Ostrava Form" : "Brennauer", ("T-" + std::to_string(i)).c_str(), i);
        machine.SetPlungerSpeed(2.0 / 3.0 + i);
        catalogue.AddMachine(machine);
    }
    const CQZRMoldingMachineWriter writer;
    const std::string bankFolder = folder.Folder() + "/";
    folder.MakeFolder("Bank");
    ASSERT_TRUE(writer.WriteRTMUserDatabase(bankFolder.c_str(), &catalogue));
    const std::string first = folder.Read("Bank/User-RTMIC.bnk");

    CQZRMoldingMachineCtrl reloaded;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadRTMUserDatabase(
        folder.File("Bank/User-RTMIC.bnk").c_str(), &reloaded));
    ASSERT_EQ(reloaded.GetTotalMachine(), 7);
    for (int i = 0; i < 7; ++i) {
        CQZRRTM original;
        CQZRRTM read;
        ASSERT_TRUE(catalogue.GetCurrentMachine(i, original));
        ASSERT_TRUE(reloaded.GetCurrentMachine(i, read));
        SCOPED_TRACE(original.GetGrade());
        EXPECT_STREQ(read.GetMaker(), original.GetMaker());
        EXPECT_STREQ(read.GetGrade(), original.GetGrade());
        EXPECT_STREQ(read.GetRemark(), original.GetRemark());
        EXPECT_EQ(read.GetControllerID(), original.GetControllerID());
        EXPECT_NEAR(read.GetPlungerSpeed(), original.GetPlungerSpeed(), 5e-7);
        EXPECT_NE(read.GetPlungerSpeed(), original.GetPlungerSpeed());
        EXPECT_EQ(read.GetShotVolume(), original.GetShotVolume());
    }
    reloaded.SetFileCreateBy("line seven");
    reloaded.SetFileRemark("my own bank");
    ASSERT_TRUE(writer.WriteRTMUserDatabase(bankFolder.c_str(), &reloaded));
    EXPECT_EQ(folder.Read("Bank/User-RTMIC.bnk"), first);
    EXPECT_EQ(folder.Read("Bank/User-RTMIC.bnk.bak"), first);
}

// Texts go out unescaped: leading blanks are lost on reading, a line feed splits the entry.
TEST(SectionedWriter, TextsAreNotEscaped) {
    FixedClock clock;
    ScratchFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM machine = PlainIMM();
    machine.SetRemark("   indented");
    machine.SetPlatenSize("700\n800");
    catalogue.AddMachine(machine);
    MakeUserBank(catalogue, 0);
    ASSERT_TRUE(
        CQZRMoldingMachineWriter().WriteIMMUserDatabase(folder.File("t.bnk").c_str(), &catalogue));
    EXPECT_NE(folder.Read("t.bnk").find("PlatenSize(HxV)             = 700\r\n800\r\n"),
              std::string::npos);
    CQZRIM read;
    ASSERT_TRUE(CQZRMoldingMachineReader().ParseIMMSection(folder.File("t.bnk").c_str(), 1, read));
    EXPECT_STREQ(read.GetRemark(), "indented");
    EXPECT_STREQ(read.GetPlatenSize(), "700");
}

}  // namespace

// Reading machine sections and loading sectioned banks: the section parsers, the system-bank
// folders and the user banks.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "sectioned_test_support.h"

namespace {

using qzr::sectioned::testing::JoinLines;
using qzr::sectioned::testing::ScratchFolder;
using qzr::sectioned::testing::SectionedFields;
using qzr::sectioned::testing::SetFileAttributes;

std::string Bank(int version, int format, int type, const std::string& sections) {
    return JoinLines({"[FileHeader]", "Version    = " + std::to_string(version),
                      "Format     = " + std::to_string(format),
                      "Type       = " + std::to_string(type), "", "[General]", "TotalMachine = 99",
                      ""}) +
           sections + "[EOF]\r\n";
}

std::string IMMSection(int number, const std::string& maker, const std::string& grade,
                       std::initializer_list<std::string_view> more = {}) {
    std::string text = "[Machine-" + std::to_string(number) + "]\r\n\r\n";
    if (!maker.empty()) text += "Maker                       = " + maker + "\r\n";
    if (!grade.empty()) text += "Grade                       = " + grade + "\r\n";
    for (std::string_view line : more) {
        text.append(line);
        text += "\r\n";
    }
    return text + "\r\n";
}

template <class Record>
std::vector<std::string> Machines(const CQZRMoldingMachineCtrl& catalogue) {
    std::vector<std::string> fields;
    for (int i = 0; i < catalogue.GetTotalMachine(); ++i) {
        Record machine;
        if (catalogue.GetCurrentMachine(i, machine)) {
            fields.push_back(SectionedFields(machine));
        }
    }
    return fields;
}

template <class Record>
std::vector<std::string> Grades(const CQZRMoldingMachineCtrl& catalogue) {
    std::vector<std::string> grades;
    for (int i = 0; i < catalogue.GetTotalMachine(); ++i) {
        Record machine;
        if (catalogue.GetCurrentMachine(i, machine)) {
            grades.emplace_back(machine.GetGrade());
        }
    }
    return grades;
}

TEST(SectionedParse, InjectionMouldingSections) {
    struct ParseRow {
        const char* label;
        std::string sections;
        long index;
        bool result;
    };
    const std::vector<ParseRow> rows = {
        {"maker and grade only", IMMSection(1, "Harlow", "H-1"), 1, true},
        {"missing maker taken from a later section",
         IMMSection(1, "", "H-1") + IMMSection(2, "Later", "H-2"), 1, true},
        {"no maker anywhere", IMMSection(1, "", "H-1"), 1, false},
        {"no grade anywhere", IMMSection(1, "Harlow", ""), 1, false},
        {"no such section", IMMSection(1, "Harlow", "H-1"), 2, false},
        {"index 0", IMMSection(1, "Harlow", "H-1"), 0, false},
        {"index -1", IMMSection(1, "Harlow", "H-1"), -1, false},
    };
    ScratchFolder folder;
    const std::string untouched = SectionedFields(CQZRIM());
    for (const ParseRow& row : rows) {
        SCOPED_TRACE(row.label);
        const std::string path = folder.Write("p.bnk", Bank(9000, 1, 0, row.sections));
        CQZRIM machine;
        ASSERT_EQ(CQZRMoldingMachineReader().ParseIMMSection(path.c_str(), row.index, machine),
                  row.result);
        if (row.result) {
            // Everything but maker and grade keeps the record's defaults.
            const std::string fields = SectionedFields(machine);
            EXPECT_EQ(fields.substr(fields.find("|Controller=")),
                      untouched.substr(untouched.find("|Controller=")));
            EXPECT_STREQ(machine.GetGrade(), "H-1");
        }
    }
    CQZRIM machine;
    EXPECT_FALSE(
        CQZRMoldingMachineReader().ParseIMMSection(folder.File("none.bnk").c_str(), 1, machine));
    EXPECT_FALSE(CQZRMoldingMachineReader().ParseIMMSection(nullptr, 1, machine));
}

// Numbers that do not convert: the previous number of the same kind in the section, or 0.
TEST(SectionedParse, UnparsableNumbersTakeThePreviousOfTheirKind) {
    ScratchFolder folder;
    const std::string path = folder.Write(
        "n.bnk",
        Bank(9000, 1, 0,
             IMMSection(1, "Harlow", "H-1",
                        {"Controller                  = abc", "ScrewDiameter               = ?",
                         "ScrewStroke = 140.5", "ShotVolume                  =", "ShotWeight = 12x",
                         "MaxInjectionPressure = -", "TemperatureControlZones = 6",
                         "EjectorPoint = none"})));
    CQZRIM machine;
    machine.SetControllerID(99);
    machine.SetScrewDiameter(99);
    machine.SetRemark("kept");
    ASSERT_TRUE(CQZRMoldingMachineReader().ParseIMMSection(path.c_str(), 1, machine));
    EXPECT_EQ(machine.GetControllerID(), 0);
    EXPECT_EQ(machine.GetScrewDiameter(), 0.0);
    EXPECT_EQ(machine.GetScrewStroke(), 140.5);
    EXPECT_EQ(machine.GetShotVolume(), 140.5);
    EXPECT_EQ(machine.GetShotWeight(), 12.0);
    EXPECT_EQ(machine.GetInjectionPressure(), 12.0);
    EXPECT_EQ(machine.GetTemperatureControlZone(), 6);
    EXPECT_EQ(machine.GetEjectorPoint(), 6);
    EXPECT_STREQ(machine.GetRemark(), "kept") << "the record is not cleared first";

    // The loader answers from its one reading of the file: the same record.
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMUserDatabase(path.c_str(), &catalogue));
    CQZRIM loaded;
    ASSERT_TRUE(catalogue.GetCurrentMachine(0, loaded));
    machine.SetRemark("");
    EXPECT_EQ(SectionedFields(loaded), SectionedFields(machine));
}

TEST(SectionedParse, TransferMouldingSections) {
    ScratchFolder folder;
    const std::string path = folder.Write(
        "r.bnk",
        JoinLines({"[Machine-1]", "", "Maker        \t = Ostrava Form", "Grade = TR-9",
                   "Controller       =", "PlungerSpeed\t = 2.5", "ClampingForce    = 1000",
                   "TransferPressure = x", "TransferForce    = 7", "ShotVolume = 8", "",
                   "[Machine-2]", "Maker = Second", "Grade = TR-10", "Remark = from two"}));
    CQZRRTM machine;
    machine.SetControllerID(5);
    ASSERT_TRUE(CQZRMoldingMachineReader().ParseRTMSection(path.c_str(), 1, machine));
    EXPECT_STREQ(machine.GetMaker(), "Ostrava Form");
    EXPECT_STREQ(machine.GetGrade(), "TR-9");
    EXPECT_EQ(machine.GetControllerID(), 0) << "an empty Controller gives 0";
    EXPECT_STREQ(machine.GetRemark(), "from two") << "a missing key runs on to section 2";
    EXPECT_EQ(machine.GetPlungerSpeed(), 2.5);
    EXPECT_EQ(machine.GetClampingForce(), 1000.0);
    // ClampingForce is read before TransferPressure, though written after TransferRate.
    EXPECT_EQ(machine.GetTransferPressure(), 1000.0);
    EXPECT_EQ(machine.GetTransferForce(), 7.0);
    EXPECT_EQ(machine.GetShotVolume(), 8.0);
    EXPECT_FALSE(CQZRMoldingMachineReader().ParseRTMSection(path.c_str(), 3, machine));
}

// A folder of system banks: only files of the loader's kind count, in NTFS name order.
class SystemBankFolder : public ::testing::Test {
  protected:
    void SetUp() override {
        m_folder.Write("IMM/a.bnk", Bank(9000, 0, 0,
                                         IMMSection(1, "Harlow", "a-1", {"Remark = first of a"}) +
                                             IMMSection(2, "Harlow", "a-2", {"Controller = 4"})));
        m_folder.Write(
            "IMM/b.bnk",
            Bank(9000, 0, 1,
                 JoinLines({"[Machine-1]", "Maker        \t = Ostrava", "Grade = b-1"})));
        m_folder.Write("IMM/B2.bnk", Bank(9100, 0, 0, IMMSection(1, "Kessling", "B2-1")));
        m_folder.Write("IMM/c.bnk", JoinLines({"[Header],,,,,,,,,", "Version,7006,,,,,,,,,",
                                               "TotalNo,1,,,,,,,,,", "1,Harlow,old,,1"}));
        m_folder.Write("IMM/d.bnk", Bank(9000, 1, 0, IMMSection(1, "User", "d-1")));
        m_folder.Write("IMM/e.BNK", Bank(9000, 0, 0, IMMSection(1, "Vantor", "e-1")));
        m_folder.Write("IMM/notes.txt", Bank(9000, 0, 0, IMMSection(1, "Vantor", "txt-1")));
        m_folder.MakeFolder("IMM/folder.bnk");
        m_pattern = m_folder.Folder() + "/IMM\\*.bnk";
    }

    ScratchFolder m_folder;
    std::string m_pattern;
};

TEST_F(SystemBankFolder, LoadsEveryFileOfItsKindInNameOrder) {
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineReader reader;
    ASSERT_TRUE(reader.ReadIMMSystemDatabase(m_pattern.c_str(), &catalogue));
    EXPECT_EQ(Grades<CQZRIM>(catalogue), (std::vector<std::string>{"a-1", "a-2", "B2-1", "e-1"}));
    EXPECT_EQ(catalogue.GetFileVersion(), 9000) << "the first accepted file decides";
    EXPECT_EQ(catalogue.GetFileFormat(), 0);
    EXPECT_EQ(catalogue.GetFileType(), 0);
    EXPECT_TRUE(catalogue.IsDatabaseInitialize());

    // One record serves every section of a file: a-2 lacks Remark and gets a-1's.
    CQZRIM second;
    ASSERT_TRUE(catalogue.GetCurrentMachine(1, second));
    EXPECT_STREQ(second.GetRemark(), "first of a");
    EXPECT_EQ(second.GetControllerID(), 4);

    CQZRMoldingMachineCtrl transfer;
    ASSERT_TRUE(reader.ReadRTMSystemDatabase(m_pattern.c_str(), &transfer));
    EXPECT_EQ(Grades<CQZRRTM>(transfer), std::vector<std::string>{"b-1"});
    EXPECT_EQ(transfer.GetFileType(), 1);
}

TEST_F(SystemBankFolder, PatternsThatMatchNothingOrMissingArguments) {
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineReader reader;
    EXPECT_FALSE(
        reader.ReadIMMSystemDatabase((m_folder.Folder() + "/IMM/*.none").c_str(), &catalogue));
    EXPECT_FALSE(
        reader.ReadIMMSystemDatabase((m_folder.Folder() + "/RTM/*.bnk").c_str(), &catalogue));
    EXPECT_FALSE(reader.ReadIMMSystemDatabase(nullptr, &catalogue));
    EXPECT_FALSE(reader.ReadRTMSystemDatabase(m_pattern.c_str(), nullptr));
    EXPECT_EQ(catalogue.GetTotalMachine(), 0);
    EXPECT_FALSE(catalogue.IsDatabaseInitialize());
    // Only a user bank matches: true all the same, nothing loaded.
    EXPECT_TRUE(
        reader.ReadIMMSystemDatabase((m_folder.Folder() + "/IMM/d.bnk").c_str(), &catalogue));
    EXPECT_EQ(catalogue.GetTotalMachine(), 0);
}

// The first file accepted into a catalogue decides its attributes; a user bank loaded after
// the system banks leaves format 0, and the writer then refuses the catalogue.
TEST_F(SystemBankFolder, UserBankAfterSystemBanksKeepsTheSystemAttributes) {
    const std::string user = m_folder.Write(
        "User-IMM.bnk",
        Bank(9000, 1, 0,
             IMMSection(1, "Harlow", "u-1") + IMMSection(2, "Harlow", "u-2", {"Remark = r2"})));
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineReader reader;
    ASSERT_TRUE(reader.ReadIMMSystemDatabase(m_pattern.c_str(), &catalogue));
    ASSERT_TRUE(reader.ReadIMMUserDatabase(user.c_str(), &catalogue));
    EXPECT_EQ(catalogue.GetTotalMachine(), 6);
    EXPECT_EQ(catalogue.GetFileFormat(), 0);
    // u-1 has no Remark of its own and takes u-2's: a missing key runs on to later sections.
    CQZRIM first;
    ASSERT_TRUE(catalogue.GetMachine("Harlow", "u-1", first));
    EXPECT_STREQ(first.GetRemark(), "r2");
    EXPECT_FALSE(CQZRMoldingMachineWriter().WriteIMMUserDatabase(m_folder.File("out.bnk").c_str(),
                                                                 &catalogue));
}

TEST(SectionedUserBank, AcceptsOnlyItsOwnKind) {
    struct UserRow {
        const char* label;
        std::string content;
        bool imm;
        bool rtm;
    };
    const std::vector<UserRow> rows = {
        {"injection-moulding user bank", Bank(9000, 1, 0, ""), true, false},
        {"transfer-moulding user bank", Bank(9000, 1, 1, ""), false, true},
        {"system bank", Bank(9000, 0, 0, ""), false, false},
        {"transfer-moulding system bank", Bank(9000, 0, 1, ""), false, false},
        {"sectioned header of a legacy version", Bank(8000, 1, 0, ""), false, false},
        {"type 2", Bank(9000, 1, 2, ""), false, false},
        {"legacy user bank", JoinLines({"[Header]", "Version,7007", ""}), false, false},
        {"header without Type", JoinLines({"[FileHeader]", "Version = 9000", "Format = 1"}), false,
         false},
    };
    ScratchFolder folder;
    for (const UserRow& row : rows) {
        SCOPED_TRACE(row.label);
        const std::string path = folder.Write("u.bnk", row.content);
        CQZRMoldingMachineCtrl imm;
        CQZRMoldingMachineCtrl rtm;
        CQZRMoldingMachineReader reader;
        EXPECT_EQ(reader.ReadIMMUserDatabase(path.c_str(), &imm), row.imm);
        EXPECT_EQ(reader.ReadRTMUserDatabase(path.c_str(), &rtm), row.rtm);
        // A user bank without machines still gives the catalogue its attributes.
        EXPECT_EQ(imm.IsDatabaseInitialize(), row.imm);
        EXPECT_EQ(rtm.IsDatabaseInitialize(), row.rtm);
        EXPECT_EQ(imm.GetTotalMachine() + rtm.GetTotalMachine(), 0);
    }
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineReader reader;
    EXPECT_FALSE(reader.ReadIMMUserDatabase(folder.File("missing.bnk").c_str(), &catalogue));
    EXPECT_FALSE(reader.ReadIMMUserDatabase(nullptr, &catalogue));
    EXPECT_FALSE(reader.ReadRTMUserDatabase(folder.File("u.bnk").c_str(), nullptr));
}

TEST(SectionedUserBank, AttributesOnlyWhenTheCatalogueHasNone) {
    ScratchFolder folder;
    const std::string path = folder.Write("u.bnk", Bank(9300, 1, 0, IMMSection(1, "Harlow", "u")));
    CQZRMoldingMachineCtrl catalogue;
    SetFileAttributes(catalogue, 1234, 5, 0);
    catalogue.SetDatabaseInitialize(true);
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMUserDatabase(path.c_str(), &catalogue));
    EXPECT_EQ(catalogue.GetFileVersion(), 1234);
    EXPECT_EQ(catalogue.GetFileFormat(), 5);
    EXPECT_EQ(catalogue.GetTotalMachine(), 1);
}

TEST(SectionedUserBank, GapEndsTheReading) {
    ScratchFolder folder;
    const std::string sections = IMMSection(1, "Harlow", "g-1") + IMMSection(2, "Harlow", "g-2") +
                                 IMMSection(4, "Harlow", "g-4");
    CQZRMoldingMachineCtrl user;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMUserDatabase(
        folder.Write("u.bnk", Bank(9000, 1, 0, sections)).c_str(), &user));
    EXPECT_EQ(Grades<CQZRIM>(user), (std::vector<std::string>{"g-1", "g-2"}));
    CQZRMoldingMachineCtrl system;
    folder.Write("sys/s.bnk", Bank(9000, 0, 0, sections));
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMSystemDatabase(
        (folder.Folder() + "/sys/*.bnk").c_str(), &system));
    EXPECT_EQ(Grades<CQZRIM>(system), (std::vector<std::string>{"g-1", "g-2"}));
}

// A user bank with a machine that lacks a key no later section has: a fresh record keeps its
// default there, where a system bank would carry the previous machine's value.
TEST(SectionedUserBank, FreshRecordPerSection) {
    ScratchFolder folder;
    const std::string sections =
        IMMSection(1, "Harlow", "f-1", {"Remark = only one", "ScrewSpeed = 300"}) +
        IMMSection(2, "Harlow", "f-2");
    CQZRMoldingMachineCtrl user;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMUserDatabase(
        folder.Write("u.bnk", Bank(9000, 1, 0, sections)).c_str(), &user));
    CQZRIM second;
    ASSERT_TRUE(user.GetCurrentMachine(1, second));
    EXPECT_STREQ(second.GetRemark(), CQZRIM().GetRemark());
    EXPECT_EQ(second.GetScrewSpeed(), CQZRIM().GetScrewSpeed());

    CQZRMoldingMachineCtrl system;
    folder.Write("sys/s.bnk", Bank(9000, 0, 0, sections));
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMSystemDatabase(
        (folder.Folder() + "/sys/*.bnk").c_str(), &system));
    ASSERT_TRUE(system.GetCurrentMachine(1, second));
    EXPECT_STREQ(second.GetRemark(), "only one");
    EXPECT_EQ(second.GetScrewSpeed(), 300.0);
}

// Every machine the loader adds is the record the reference parser fills from that section.
TEST(SectionedUserBank, LoaderMatchesTheSectionParser) {
    ScratchFolder folder;
    const std::string sections =
        IMMSection(3, "Late", "x-3", {"Remark = three", "ScrewDiameter = 3"}) +
        IMMSection(1, "", "x-1", {"ScrewDiameter = bad", "Controller = 1"}) +
        IMMSection(2, "Two", "x-2", {"ScrewStroke = 2", "ShotVolume = ?", "Remark\t= tabbed"}) +
        IMMSection(1, "Dup", "dup", {"Remark = duplicate"}) + "[Machine-10]\r\nMaker = Ten\r\n";
    const std::string path = folder.Write("u.bnk", Bank(9000, 1, 0, sections));
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMUserDatabase(path.c_str(), &catalogue));
    std::vector<std::string> expected;
    for (long n = 1;; ++n) {
        CQZRIM machine;
        if (!CQZRMoldingMachineReader().ParseIMMSection(path.c_str(), n, machine)) break;
        expected.push_back(SectionedFields(machine));
    }
    ASSERT_EQ(expected.size(), 3u);
    EXPECT_EQ(Machines<CQZRIM>(catalogue), expected);
}

// Sections 1 to 65536 all find their maker and grade in the lines after the last header; only
// the first 65535 are read.
TEST(SectionedUserBank, AtMost65535Sections) {
    std::string text = Bank(9000, 1, 1, "");
    text.resize(text.size() - std::string("[EOF]\r\n").size());
    for (int n = 1; n <= 65536; ++n) {
        text += "[Machine-" + std::to_string(n) + "]\n";
    }
    text += "Maker = Brennauer\nGrade = B\n";
    ScratchFolder folder;
    const std::string path = folder.Write("many.bnk", text);
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadRTMUserDatabase(path.c_str(), &catalogue));
    EXPECT_EQ(catalogue.GetTotalMachine(), 65535);
}

}  // namespace

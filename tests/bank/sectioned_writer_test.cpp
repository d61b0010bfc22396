// Sectioned user banks written byte for byte, what the writers refuse, the numbering gaps
// that machines of the other kind leave, and write-read-write round trips.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "bank_test_support.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"

namespace {

using qzr::bank::testing::FixedClock;
using qzr::bank::testing::Lines;
using qzr::bank::testing::TempFolder;

void SetAttributes(CQZRMoldingMachineCtrl& catalogue, int version, int format, int type) {
    catalogue.SetFileVersion(version);
    catalogue.SetFileFormat(format);
    catalogue.SetFileType(type);
    catalogue.SetFileCreateBy("line seven");
    catalogue.SetFileRemark("my own bank");
}

std::string Header(int type, int total) {
    return Lines({"[FileHeader]", "Version    = 9000", "Format     = 1",
                  "Type       = " + std::to_string(type), "CreateDate = Wed Jan 02 02:03:55 1980",
                  "", "CreateBy   = line seven", "Remark     = my own bank", "", "[General]",
                  "TotalMachine = " + std::to_string(total), ""});
}

template <class Record>
void SetReals(Record& m, std::initializer_list<std::pair<void (Record::*)(double), double>> reals) {
    for (const auto& [set, value] : reals) (m.*set)(value);
}

CQZRIM PlainIMM(const char* grade = "HX-180") {
    CQZRIM m;
    m.SetMaker("Harlow Presswerk");
    m.SetGrade(grade);
    m.SetControllerID(12);
    m.SetRemark("two platen");
    m.SetTemperatureControlZone(5);
    m.SetDistanceBetweenTieBars("460x460");
    m.SetPlatenSize("700x700");
    m.SetEjectorPoint(-3);
    m.SetMachineDimension("5.1x1.4x2.0");
    using M = CQZRIM;
    SetReals<M>(m, {{&M::SetScrewDiameter, 1500},     {&M::SetScrewStroke, 4e-7},
                    {&M::SetShotVolume, 1.23456789},  {&M::SetShotWeight, -2.5},
                    {&M::SetInjectionPressure, 2100}, {&M::SetHoldingPressure, 1600.5},
                    {&M::SetInjectionSpeed, 120},     {&M::SetInjectionRate, 95.25},
                    {&M::SetPlasticationRate, 14},    {&M::SetScrewSpeed, 250},
                    {&M::SetNozzleContactForce, 35},  {&M::SetNozzleStroke, 260},
                    {&M::SetHeaterWattage, 7.5},      {&M::SetClampingForce, 1800},
                    {&M::SetOpeningStroke, 450},      {&M::SetMaxDaylight, 850},
                    {&M::SetMoldHeight, 400},         {&M::SetEjectorForce, 40},
                    {&M::SetEjectorStroke, 120},      {&M::SetMachineWeight, 1.0 / 3}});
    return m;
}

// clang-format off
const std::string kPlainIMMSection = Lines({
    "[Machine-1]", "",
    "Maker                       = Harlow Presswerk", "Grade                       = HX-180",
    "Controller                  = 12", "Remark                      = two platen",
    "ScrewDiameter               = 1500.000000", "ScrewStroke                 = 0.000000",
    "ShotVolume                  = 1.234568", "ShotWeight                  = -2.500000",
    "MaxInjectionPressure        = 2100.000000", "HoldingPressure             = 1600.500000",
    "InjectionSpeed              = 120.000000", "InjectionRate               = 95.250000",
    "PlasticationRate            = 14.000000", "ScrewSpeed                  = 250.000000",
    "NozzleContactForce          = 35.000000", "NozzleStroke                = 260.000000",
    "HeaterWattage               = 7.500000", "TemperatureControlZones     = 5",
    "ClampingForce               = 1800.000000", "OpeningStroke               = 450.000000",
    "MaxDaylight                 = 850.000000", "MoldHeight                  = 400.000000",
    "DistanceBetweenTieBars(HxV) = 460x460", "PlatenSize(HxV)             = 700x700",
    "EjectorPoint                = -3", "EjectorForce                = 40.000000",
    "EjectorStroke               = 120.000000", "MachineWeight               = 0.333333",
    "MachineDimension(LxWxH)     = 5.1x1.4x2.0",
    ""});
// clang-format on

CQZRRTM PlainRTM(const char* grade = "TR-40") {
    CQZRRTM m;
    m.SetMaker("Ostrava Form");
    m.SetGrade(grade);
    m.SetControllerID(3);
    using M = CQZRRTM;
    // clang-format off
    SetReals<M>(m, {{&M::SetPlungerDiameter, 40}, {&M::SetPlungerStroke, 120.5},
                    {&M::SetPlungerSpeed, 2.0 / 3}, {&M::SetTransferPressure, 180.25},
                    {&M::SetTransferForce, 22.5}, {&M::SetTransferRate, 12},
                    {&M::SetClampingForce, 1500}, {&M::SetShotWeight, 310.5},
                    {&M::SetShotVolume, 170}});
    // clang-format on
    return m;
}

// Transfer-moulding keys are padded to 17 characters, but "Maker" and "PlungerSpeed" carry a
// tab before " = ".
const std::string kPlainRTMSection =
    Lines({"[Machine-1]", "", "Maker        \t = Ostrava Form", "Grade            = TR-40",
           "Controller       = 3", "Remark           = ", "PlungerDiameter  = 40.000000",
           "PlungerStroke    = 120.500000", "PlungerSpeed\t = 0.666667",
           "TransferPressure = 180.250000", "TransferForce    = 22.500000",
           "TransferRate     = 12.000000", "ClampingForce    = 1500.000000",
           "ShotWeight       = 310.500000", "ShotVolume       = 170.000000", ""});

// Writes a user bank of the catalogue's kind under folder: "User-IMM.bnk" (a path of the
// host's choice) or the folder's "Bank\User-RTMIC.bnk".
const char* Write(const TempFolder& folder, const CQZRMoldingMachineCtrl* catalogue, int type) {
    const CQZRMoldingMachineWriter writer;
    if (type == 0) {
        return writer.WriteIMMUserDatabase(folder.File("User-IMM.bnk").c_str(), catalogue)
                   ? "User-IMM.bnk"
                   : nullptr;
    }
    folder.MakeFolder("Bank");
    return writer.WriteRTMUserDatabase((folder.Folder() + "/").c_str(), catalogue)
               ? "Bank/User-RTMIC.bnk"
               : nullptr;
}

// Each kind byte for byte, then read back and written again: the same bytes.
TEST(SectionedWriter, BothKindsByteForByteAndRoundTrip) {
    FixedClock clock;
    CQZRMoldingMachineCtrl catalogues[2];
    CQZRIM injection = PlainIMM();
    CQZRRTM transfer = PlainRTM();
    catalogues[0].AddMachine(injection);
    catalogues[1].SetFileType(1);
    catalogues[1].AddMachine(transfer);
    const std::string expected[] = {Header(0, 1) + kPlainIMMSection + "[EOF]\r\n",
                                    Header(1, 1) + kPlainRTMSection + "[EOF]\r\n"};
    for (int type : {0, 1}) {
        SCOPED_TRACE(type == 0 ? "injection moulding" : "transfer moulding");
        SetAttributes(catalogues[type], 9000, 1, type);
        TempFolder folder;
        const char* name = Write(folder, &catalogues[type], type);
        ASSERT_TRUE(name);
        EXPECT_EQ(folder.Read(name), expected[type]);

        CQZRMoldingMachineCtrl reloaded;
        CQZRMoldingMachineReader reader;
        const std::string path = folder.File(name);
        ASSERT_TRUE(type == 0 ? reader.ReadIMMUserDatabase(path.c_str(), &reloaded)
                              : reader.ReadRTMUserDatabase(path.c_str(), &reloaded));
        SetAttributes(reloaded, reloaded.GetFileVersion(), reloaded.GetFileFormat(), type);
        TempFolder again;
        ASSERT_TRUE(Write(again, &reloaded, type));
        EXPECT_EQ(again.Read(name), expected[type]);
    }
}

TEST(SectionedWriter, RefusesCataloguesOfAnotherBank) {
    struct Row {
        int version, format, type;
        bool dropStore;
    };
    // Each is refused by both writers, or accepted (and written) only by the writer of its type.
    const Row rows[] = {{9000, 1, 0, false}, {9500, 1, 1, false}, {8999, 1, 0, false},
                        {9000, 0, 0, false}, {9000, 0, 1, false}, {9000, 1, 2, false},
                        {9000, 1, 0, true},  {9000, 1, 1, true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.version) + "/" + std::to_string(row.format) + "/" +
                     std::to_string(row.type) + (row.dropStore ? " without store" : ""));
        const bool userBank = row.version >= 9000 && row.format == 1 && !row.dropStore;
        CQZRMoldingMachineCtrl catalogue;
        SetAttributes(catalogue, row.version, row.format, row.type);
        if (row.dropStore) CQZRMoldingMachineCtrlAccess::DropStore(catalogue);
        for (int type : {0, 1}) {
            TempFolder folder;
            EXPECT_EQ(Write(folder, &catalogue, type) != nullptr, userBank && row.type == type);
            EXPECT_EQ(folder.Exists("User-IMM.bnk") || folder.Exists("Bank/User-RTMIC.bnk"),
                      userBank && row.type == type);
            EXPECT_FALSE(Write(folder, nullptr, type));
        }
    }
}

std::string SectionNumbers(const std::string& text) {
    std::string numbers;
    for (size_t at = text.find("[Machine-"); at != std::string::npos;
         at = text.find("[Machine-", at + 1)) {
        numbers += (numbers.empty() ? "" : " ") + text.substr(at + 9, text.find(']', at) - at - 9);
    }
    return numbers;
}

// Machines of the other kind count in TotalMachine but get no section, and leave a gap in
// the numbering, where a later reading of the file stops.
TEST(SectionedWriter, OtherKindLeavesGapsInTheNumbering) {
    FixedClock clock;
    TempFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM first = PlainIMM("HX-1");
    CQZRRTM second = PlainRTM();
    CQZRIM third = PlainIMM("K-3");
    third.SetMaker("Kessling");
    SetAttributes(catalogue, 9000, 1, 0);
    catalogue.AddMachine(first);
    catalogue.SetFileType(1);  // the file type decides the kind of a new maker group
    catalogue.AddMachine(second);
    catalogue.SetFileType(0);
    catalogue.AddMachine(third);
    ASSERT_TRUE(Write(folder, &catalogue, 0));
    catalogue.SetFileType(1);
    ASSERT_TRUE(Write(folder, &catalogue, 1));
    const std::string imm = folder.Read("User-IMM.bnk");
    EXPECT_NE(imm.find("TotalMachine = 3\r\n"), std::string::npos);
    EXPECT_EQ(SectionNumbers(imm), "1 3");
    EXPECT_EQ(SectionNumbers(folder.Read("Bank/User-RTMIC.bnk")), "2");
    CQZRMoldingMachineCtrl reloaded;
    ASSERT_TRUE(CQZRMoldingMachineReader().ReadIMMUserDatabase(folder.File("User-IMM.bnk").c_str(),
                                                               &reloaded));
    EXPECT_EQ(reloaded.GetTotalMachine(), 1);
}

}  // namespace

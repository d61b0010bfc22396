// Writing the legacy user bank: the exact bytes, the attribute checks, the target under the
// folder and its backup, and a write-read-write round trip.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "legacy_test_support.h"
#include "platform/CNumbers.h"

namespace qzr::legacy {
namespace {

using testing::CrLfLines;
using testing::InjectionMachines;
using testing::LegacyFields;
using testing::ScratchFolder;

const std::string kHead = CrLfLines(
    {"[Header]", "Version,7007", "", "[Format]",
     "ID,Maker,Grade,Remark,ClampForce,ShotWeight,Max.Pressure,Max.FlowRate,ScrewDiameter,"
     "Max.RamPosition,TimeConstFR,TimeConstIP,NozzleVolume,MaxPressureSlope,MachineType,"
     "HydralicPressureTransferFactor,",
     "Unit,,,,ton,g,MPa,cc/s,mm,mm,sec,sec,cm3,,,,", "", "[Database]"});

const char kTarget[] = "Bank/user-pro.bnk";

CQZRIM Alpha() {
    CQZRIM m;
    m.SetMaker("Alpha");
    m.SetGrade("A-100");
    m.SetClampingForce(100);
    m.SetShotWeight(50.5);
    m.SetInjectionPressure(180);
    m.SetInjectionRate(95.3);
    m.SetScrewDiameter(32);
    m.SetScrewStroke(140);
    return m;
}

CQZRIM Beta() {
    CQZRIM m;
    m.SetMaker("Beta");
    m.SetGrade("B-2");
    m.SetRemark("left, right");
    m.SetClampingForce(1234.567);
    m.SetShotWeight(-3.14159);
    m.SetInjectionPressure(5);
    m.SetTimeConstFR(0.0000123);
    m.SetTimeConstIP(1234567);
    m.SetNozzleVolume(7.005);
    m.SetMaxPressureSlope(99999.999);
    m.SetMachineEnergyType(2);
    m.SetHydraulicPressureTransferFactor(0.875);
    m.SetNozzleSpecification({3, 1.5, 0, 0, 0, 0, -12.3456});
    return m;
}

// A catalogue whose attributes are those of a legacy user bank.
void MakeOldUserBank(CQZRMoldingMachineCtrl& catalogue, int version = 7004) {
    catalogue.SetFileVersion(version);
    catalogue.SetFileFormat(1);
    catalogue.SetFileType(0);
}

bool Write(const std::string& folder, const CQZRMoldingMachineCtrl* catalogue) {
    const CQZRMoldingMachineWriter writer;
    return writer.WriteOldIMMUserDatabase(folder.c_str(), catalogue);
}

TEST(LegacyWriter, WritesTheHeaderTheRowsAndEof) {
    ScratchFolder folder;
    folder.MakeFolder("Bank");
    CQZRMoldingMachineCtrl catalogue;
    MakeOldUserBank(catalogue);
    CQZRIM alpha = Alpha();
    CQZRIM beta = Beta();
    catalogue.AddMachine(alpha);
    catalogue.AddMachine(beta);

    ASSERT_TRUE(Write(folder.Folder(), &catalogue));
    EXPECT_EQ(folder.Read(kTarget),
              kHead + CrLfLines({"1,Alpha,A-100,,100.00, 50.50,180.00, 95.30, 32.00,140.00,0.01,"
                                 "0.1,  0.00,2500.00,0,  1.00,0,  0.00,  0.00,  0.00,  0.00,  "
                                 "0.00,  0.00",
                                 "1,Beta,B-2,left, right,1234.57, -3.14,  5.00,  0.00,  0.00,  "
                                 "0.00,1.23e-05,1.23457e+06,  7.00,100000.00,2,  0.88,3,  1.50,"
                                 "  0.00,  0.00,  0.00,  0.00,-12.35",
                                 "[EOF]"}));
    EXPECT_FALSE(folder.Exists("Bank/user-pro.bnk.bak"));
}

TEST(LegacyWriter, AnEmptyCatalogueWritesTheFrameOnly) {
    ScratchFolder folder;
    folder.MakeFolder("Bank");
    CQZRMoldingMachineCtrl catalogue;
    MakeOldUserBank(catalogue, 1000);
    ASSERT_TRUE(Write(folder.Folder(), &catalogue));
    EXPECT_EQ(folder.Read(kTarget), kHead + CrLfLines({"[EOF]"}));

    CQZRMoldingMachineReader reader;
    CQZRMoldingMachineCtrl loaded;
    EXPECT_TRUE(reader.ReadOldIMMUserDatabase(folder.File(kTarget).c_str(), &loaded));
    EXPECT_EQ(loaded.GetTotalMachine(), 0);
    EXPECT_EQ(loaded.GetFileVersion(), 7007);
}

TEST(LegacyWriter, PassesOverTransferMouldingMachines) {
    ScratchFolder folder;
    folder.MakeFolder("Bank");
    CQZRMoldingMachineCtrl catalogue;
    CQZRIM alpha = Alpha();
    catalogue.AddMachine(alpha);
    catalogue.SetFileType(1);
    CQZRRTM transfer;
    transfer.SetMaker("Rotor");
    transfer.SetGrade("R-1");
    catalogue.AddMachine(transfer);
    catalogue.SetFileType(0);
    CQZRIM beta = Beta();
    catalogue.AddMachine(beta);
    MakeOldUserBank(catalogue);
    ASSERT_EQ(catalogue.GetTotalMachine(), 3);

    ASSERT_TRUE(Write(folder.Folder(), &catalogue));
    CQZRMoldingMachineReader reader;
    CQZRMoldingMachineCtrl loaded;
    ASSERT_TRUE(reader.ReadOldIMMUserDatabase(folder.File(kTarget).c_str(), &loaded));
    const std::vector<CQZRIM> machines = InjectionMachines(loaded);
    ASSERT_EQ(machines.size(), 2u);
    EXPECT_STREQ(machines[0].GetMaker(), "Alpha");
    EXPECT_STREQ(machines[1].GetMaker(), "Beta");
}

TEST(LegacyWriter, RefusesOtherBanksAndTouchesNoFile) {
    struct {
        const char* label;
        int version, format, type;
        bool dropStore;
        bool withFolder, withCatalogue;
    } const cases[] = {
        {"sectioned version", 9000, 1, 0, false, true, true},
        {"system bank", 7007, 0, 0, false, true, true},
        {"transfer-moulding type", 7007, 1, 1, false, true, true},
        {"no store", 7007, 1, 0, true, true, true},
        {"no folder", 7007, 1, 0, false, false, true},
        {"no catalogue", 7007, 1, 0, false, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        ScratchFolder folder;
        folder.MakeFolder("Bank");
        CQZRMoldingMachineCtrl catalogue;
        catalogue.SetFileVersion(c.version);
        catalogue.SetFileFormat(c.format);
        catalogue.SetFileType(c.type);
        if (c.dropStore) {
            CQZRMoldingMachineCtrlAccess::DropStore(catalogue);
        }
        const CQZRMoldingMachineWriter writer;
        EXPECT_FALSE(
            writer.WriteOldIMMUserDatabase(c.withFolder ? folder.Folder().c_str() : nullptr,
                                           c.withCatalogue ? &catalogue : nullptr));
        EXPECT_FALSE(folder.Exists(kTarget));
        EXPECT_FALSE(folder.Exists("Bank/user-pro.bnk.bak"));
    }
}

TEST(LegacyWriter, SavesUnderTheFolderAndKeepsTheLastContentAsBackup) {
    ScratchFolder folder;
    folder.MakeFolder("Bank");
    CQZRMoldingMachineCtrl catalogue;
    MakeOldUserBank(catalogue);
    CQZRIM alpha = Alpha();
    catalogue.AddMachine(alpha);

    // A folder given with a backslash at its end, as a Windows host passes it.
    const std::string backslashFolder = folder.File("") + "\\";
    ASSERT_TRUE(Write(backslashFolder, &catalogue));
    const std::string first = folder.Read(kTarget);
    EXPECT_FALSE(folder.Exists("Bank/user-pro.bnk.bak"));

    CQZRIM beta = Beta();
    catalogue.AddMachine(beta);
    ASSERT_TRUE(Write(folder.Folder(), &catalogue));
    EXPECT_EQ(folder.Read("Bank/user-pro.bnk.bak"), first);
    EXPECT_NE(folder.Read(kTarget), first);

    // No "Bank" folder under it: nothing can be created.
    ScratchFolder bare;
    EXPECT_FALSE(Write(bare.Folder(), &catalogue));
    EXPECT_FALSE(bare.Exists("Bank"));
}

// What a value looks like after a trip through the bank: printed with the row's format and
// read back with "%lf".
double AsWritten(const char* format, double value) {
    double read = 0.0;
    platform::ScanDouble(platform::FormatC(format, value).c_str(), &read);
    return read;
}

TEST(LegacyWriter, RoundTripKeepsWhatTheFormatKeeps) {
    std::vector<CQZRIM> originals = {Alpha(), Beta()};
    CQZRIM gamma;
    gamma.SetMaker("Gamma");
    gamma.SetGrade("G 7");
    gamma.SetRemark(" blanks, and ,, commas ");
    gamma.SetClampingForce(0.005);
    gamma.SetInjectionRate(-0.004);
    gamma.SetScrewDiameter(25);
    gamma.SetScrewStroke(100);
    gamma.SetTimeConstFR(0.333333333);
    gamma.SetTimeConstIP(2e-7);
    gamma.SetMachineEnergyType(-4);
    gamma.SetNozzleSpecification({-1, 0.125, 2.675, 3, 4, 5, 6});
    // Attributes the format does not carry come back with their defaults.
    gamma.SetHoldingPressure(77);
    gamma.SetPlatenSize("900x900");
    originals.push_back(gamma);

    ScratchFolder folder;
    folder.MakeFolder("Bank");
    CQZRMoldingMachineCtrl catalogue;
    MakeOldUserBank(catalogue);
    for (CQZRIM& machine : originals) {
        catalogue.AddMachine(machine);
    }
    ASSERT_TRUE(Write(folder.Folder(), &catalogue));
    const std::string firstBytes = folder.Read(kTarget);

    CQZRMoldingMachineReader reader;
    CQZRMoldingMachineCtrl loaded;
    ASSERT_TRUE(reader.ReadOldIMMUserDatabase(folder.File(kTarget).c_str(), &loaded));
    const std::vector<CQZRIM> machines = InjectionMachines(loaded);
    ASSERT_EQ(machines.size(), originals.size());
    for (size_t i = 0; i < originals.size(); ++i) {
        const CQZRIM& o = originals[i];
        SCOPED_TRACE(o.GetMaker());
        CQZRIM expected;
        expected.SetMaker(o.GetMaker());
        expected.SetGrade(o.GetGrade());
        expected.SetRemark(o.GetRemark());
        expected.SetClampingForce(AsWritten("%6.2f", o.GetClampingForce()));
        expected.SetShotWeight(AsWritten("%6.2f", o.GetShotWeight()));
        expected.SetInjectionPressure(AsWritten("%6.2f", o.GetInjectionPressure()));
        expected.SetInjectionRate(AsWritten("%6.2f", o.GetInjectionRate()));
        expected.SetScrewDiameter(AsWritten("%6.2f", o.GetScrewDiameter()));
        expected.SetScrewStroke(AsWritten("%6.2f", o.GetScrewStroke()));
        expected.SetTimeConstFR(AsWritten("%lg", o.GetTimeConstFR()));
        expected.SetTimeConstIP(AsWritten("%lg", o.GetTimeConstIP()));
        expected.SetNozzleVolume(AsWritten("%6.2f", o.GetNozzleVolume()));
        expected.SetMaxPressureSlope(AsWritten("%6.2f", o.GetMaxPressureSlope()));
        expected.SetMachineEnergyType(o.GetMachineEnergyType());
        expected.SetHydraulicPressureTransferFactor(
            AsWritten("%6.2f", o.GetHydraulicPressureTransferFactor()));
        const NozzleSpecification& n = o.GetNozzleSpecification();
        expected.SetNozzleSpecification({n.Type, AsWritten("%6.2f", n.Value1),
                                         AsWritten("%6.2f", n.Value2), AsWritten("%6.2f", n.Value3),
                                         AsWritten("%6.2f", n.Value4), AsWritten("%6.2f", n.Value5),
                                         AsWritten("%6.2f", n.Value6)});
        const double d = expected.GetScrewDiameter();
        expected.SetShotVolume(
            AsWritten("%.4lg", d * 0.7853975 * d * expected.GetScrewStroke() * 0.001));
        EXPECT_EQ(LegacyFields(machines[i]), LegacyFields(expected));
        EXPECT_EQ(machines[i].GetHoldingPressure(), 0);
        EXPECT_STREQ(machines[i].GetPlatenSize(), "0x0");
    }
    EXPECT_EQ(machines[2].GetShotVolume(), 49.09);

    // Saving what was loaded writes the same bytes again.
    MakeOldUserBank(loaded);
    ScratchFolder second;
    second.MakeFolder("Bank");
    ASSERT_TRUE(Write(second.Folder(), &loaded));
    EXPECT_EQ(second.Read(kTarget), firstBytes);
}

}  // namespace
}  // namespace qzr::legacy

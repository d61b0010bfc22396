// The three writers byte for byte against the plain way of writing a bank: every line formed with
// snprintf and the C formats of its format, for catalogues whose numbers are hard to format (ties,
// signs, huge and tiny values, inf and nan), with an emptied group and a group of the other kind.
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "bank/QZRMoldingMachineWriter.h"
#include "bank/sectioned/MachineSectionFormat.h"
#include "bank_test_support.h"

using qzr::bank::CQZRMoldingMachineWriter;

namespace {

using qzr::records::FieldType;

#if defined(__GNUC__)
std::string Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
#endif
std::string Printf(const char* format, ...) {
    char text[4096];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    return text;
}

// Text mode: every "\n" on disk is CR LF.
std::string OnDisk(const std::string& text) {
    std::string bytes;
    for (const char c : text) {
        bytes += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return bytes;
}

// A hard value one time in three, else a multiple of 1/64.
std::mt19937 g_random(99);
double HardReal() {
    const double inf = std::numeric_limits<double>::infinity();
    // (No NaN with its sign bit set: snprintf of MinGW-w64 writes it "nan", not glibc's "-nan";
    // the pinned bank bytes hold it.)
    static const double kValues[] = {-0.0,    0.125,    -0.375,  2.675,  5.0 / 128,
                                     1e-7,    -5e-7,    99.995,  9.3e12, 1e20,
                                     -1e300,  DBL_MAX,  DBL_MIN, 1e308,  DBL_TRUE_MIN,
                                     -1e-320, 123456.5, inf,     -inf,   std::nan("")};
    if (g_random() % 3 == 0) {
        return kValues[g_random() % (sizeof(kValues) / sizeof(kValues[0]))];
    }
    return static_cast<double>(static_cast<int>(g_random() % 2000000) - 1000000) / 64.0;
}
int HardInteger() {
    static const int kValues[] = {0, -1, 7, INT_MAX, INT_MIN};
    return kValues[g_random() % 5];
}

// Every number of the section keys, and for injection moulding the legacy row's others too.
template <class Record>
Record Machine(const qzr::bank::MachineSectionFormat<Record>& format, const std::string& maker,
               int i) {
    Record machine;
    machine.SetMaker(maker.c_str());
    machine.SetGrade(("G-" + std::to_string(i)).c_str());
    for (const auto& key : format.rows) {
        if (key.field->type == FieldType::kInteger) {
            key.field->setInteger(machine, HardInteger());
        } else if (key.field->type == FieldType::kReal) {
            key.field->setReal(machine, HardReal());
        }
    }
    return machine;
}

template <class Record>
std::string PlainSectionedBank(const CQZRMoldingMachineCtrl& catalogue,
                               const qzr::bank::MachineSectionFormat<Record>& format) {
    std::string text =
        Printf("[FileHeader]\nVersion    = %d\nFormat     = %d\nType       = %d\n",
               catalogue.GetFileVersion(), catalogue.GetFileFormat(), catalogue.GetFileType()) +
        "CreateDate = Wed Jan 02 02:03:55 1980\n\n" +
        Printf("CreateBy   = %s\nRemark     = %s\n\n[General]\nTotalMachine = %d\n\n",
               catalogue.GetFileCreateBy(), catalogue.GetFileRemark(), catalogue.GetTotalMachine());
    for (int index = 0; index < catalogue.GetTotalMachine(); ++index) {
        Record m;
        if (!catalogue.GetCurrentMachine(index, m)) {
            continue;
        }
        text += Printf("[Machine-%d]\n\n", index + 1);
        for (const auto& key : format.rows) {
            const auto& field = *key.field;
            text += key.linePrefix;
            text += field.type == FieldType::kText      ? std::string(field.getText(m))
                    : field.type == FieldType::kInteger ? Printf("%d", field.getInteger(m))
                                                        : Printf("%lf", field.getReal(m));
            text += "\n";
        }
        text += "\n";
    }
    return text + "[EOF]\n";
}

std::string PlainLegacyBank(const CQZRMoldingMachineCtrl& catalogue) {
    std::string text =
        "[Header]\nVersion,7007\n\n[Format]\n"
        "ID,Maker,Grade,Remark,ClampForce,ShotWeight,Max.Pressure,Max.FlowRate,ScrewDiameter,"
        "Max.RamPosition,TimeConstFR,TimeConstIP,NozzleVolume,MaxPressureSlope,MachineType,"
        "HydralicPressureTransferFactor,\nUnit,,,,ton,g,MPa,cc/s,mm,mm,sec,sec,cm3,,,,\n\n"
        "[Database]\n";
    for (int index = 0; index < catalogue.GetTotalMachine(); ++index) {
        CQZRIM m;
        if (!catalogue.GetCurrentMachine(index, m)) {
            continue;
        }
        const NozzleSpecification& n = m.GetNozzleSpecification();
        text += Printf(
            "%d,%s,%s,%s,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%lg,%lg,%6.2f,%6.2f,%d,%6.2f,%d,"
            "%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f\n",
            1, m.GetMaker(), m.GetGrade(), m.GetRemark(), m.GetClampingForce(), m.GetShotWeight(),
            m.GetInjectionPressure(), m.GetInjectionRate(), m.GetScrewDiameter(),
            m.GetScrewStroke(), m.GetTimeConstFR(), m.GetTimeConstIP(), m.GetNozzleVolume(),
            m.GetMaxPressureSlope(), m.GetMachineEnergyType(),
            m.GetHydraulicPressureTransferFactor(), n.Type, n.Value1, n.Value2, n.Value3, n.Value4,
            n.Value5, n.Value6);
    }
    return text + "[EOF]\n";
}

TEST(BankWriters, WriteWhatThePlainFormatsWrite) {
    const qzr::bank::testing::FixedClock clock;
    const CQZRMoldingMachineWriter writer;
    for (const int machines : {0, 1, 40}) {
        SCOPED_TRACE("machines " + std::to_string(machines));
        qzr::bank::testing::TempFolder folder;
        folder.MakeFolder("Bank");
        CQZRMoldingMachineCtrl catalogue;
        catalogue.SetFileVersion(9000);
        catalogue.SetFileFormat(1);
        catalogue.SetDatabaseInitialize(true);
        catalogue.SetFileCreateBy("Pr\xFC\x66stand");
        CQZRMoldingMachineCtrl transfer;
        transfer.SetFileVersion(9100);
        transfer.SetFileFormat(1);
        transfer.SetFileType(1);
        transfer.SetDatabaseInitialize(true);
        for (int i = 0; i < machines; ++i) {
            // Texts with bytes above 127; on the third machine a transfer-moulding group (no
            // section: a gap in the numbering) and an emptied group.
            CQZRIM machine =
                Machine(qzr::bank::IMMSectionFormat(), i % 4 == 1 ? "Gr\xFCnwald" : "Arvado", i);
            machine.SetRemark(i % 3 == 0 ? "" : "r\xE9vis\xE9, hall 3");
            machine.SetTimeConstFR(HardReal());
            machine.SetTimeConstIP(HardReal());
            machine.SetNozzleVolume(HardReal());
            NozzleSpecification nozzle;
            nozzle.Type = HardInteger();
            nozzle.Value1 = HardReal();
            nozzle.Value6 = HardReal();
            machine.SetNozzleSpecification(nozzle);
            catalogue.AddMachine(machine);
            CQZRRTM rtm =
                Machine(qzr::bank::RTMSectionFormat(), i % 2 ? "Lumetra" : "\xC5kerlund", i);
            transfer.AddMachine(rtm);
            if (i == 2) {
                catalogue.SetFileType(1);
                catalogue.AddMachine(rtm);
                catalogue.SetFileType(0);
                CQZRIM emptied = Machine(qzr::bank::IMMSectionFormat(), "Empty", i);
                catalogue.AddMachine(emptied);
                catalogue.RemoveMachine("Empty", emptied.GetGrade());
            }
        }
        const std::string bank = folder.Folder() + "/";
        ASSERT_TRUE(writer.WriteIMMUserDatabase(folder.File("User-IMM.bnk").c_str(), &catalogue));
        EXPECT_EQ(folder.Read("User-IMM.bnk"),
                  OnDisk(PlainSectionedBank(catalogue, qzr::bank::IMMSectionFormat())));
        ASSERT_TRUE(writer.WriteRTMUserDatabase(bank.c_str(), &transfer));
        EXPECT_EQ(folder.Read("Bank/User-RTMIC.bnk"),
                  OnDisk(PlainSectionedBank(transfer, qzr::bank::RTMSectionFormat())));
        catalogue.SetFileVersion(7007);
        ASSERT_TRUE(writer.WriteOldIMMUserDatabase(bank.c_str(), &catalogue));
        EXPECT_EQ(folder.Read("Bank/user-pro.bnk"), OnDisk(PlainLegacyBank(catalogue)));
    }
}

}  // namespace

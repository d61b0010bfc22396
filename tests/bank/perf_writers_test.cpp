// The three writers byte for byte against the plain way of writing a bank: every line formed
// with snprintf and the C formats of its format, for catalogues of machines whose numbers are
// hard to format (ties, signs, huge and tiny values, inf and nan), with an empty group and a
// group of the other kind among them.
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <QZRMachine/NozzleSpecification.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "bank/QZRMoldingMachineWriter.h"
#include "bank/sectioned/MachineSectionFormat.h"
#include "bank_test_support.h"

namespace {

using qzr::bank::testing::FixedClock;
using qzr::bank::testing::TempFolder;

#if defined(__GNUC__)
std::string Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
#endif
std::string Printf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list measure;
    va_copy(measure, args);
    std::string text(static_cast<size_t>(std::vsnprintf(nullptr, 0, format, measure)) + 1, '\0');
    va_end(measure);
    std::vsnprintf(&text[0], text.size(), format, args);
    va_end(args);
    text.pop_back();
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

class HardNumbers {
  public:
    double Real() {
        static const double kValues[] = {0.0,
                                         -0.0,
                                         0.125,
                                         -0.375,
                                         2.675,
                                         5.0 / 128,
                                         1e-7,
                                         -5e-7,
                                         1500.0,
                                         99.995,
                                         9.3e12,
                                         1e20,
                                         -1e300,
                                         DBL_MAX,
                                         DBL_MIN,
                                         1e-5,
                                         123456.5,
                                         std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::quiet_NaN()};
        if (m_random() % 3 == 0) {
            return kValues[m_random() % (sizeof(kValues) / sizeof(kValues[0]))];
        }
        return static_cast<double>(static_cast<int>(m_random() % 2000000) - 1000000) / 64.0;
    }
    int Integer() {
        static const int kValues[] = {0, -1, 7, INT_MAX, INT_MIN};
        return kValues[m_random() % 5];
    }

  private:
    std::mt19937 m_random{99};
};

template <class Record>
void FillNumbers(const qzr::bank::MachineSectionFormat<Record>& format, HardNumbers& numbers,
                 Record& machine) {
    for (size_t row = 0; row < format.rowCount; ++row) {
        const auto& key = format.rows[row];
        if (key.kind == qzr::bank::KeyValueKind::kInteger) {
            (machine.*key.setInteger)(numbers.Integer());
        } else if (key.kind == qzr::bank::KeyValueKind::kReal) {
            (machine.*key.setReal)(numbers.Real());
        }
    }
}

// Makers A (injection moulding), B (transfer moulding: no section, a gap in the numbering), an
// emptied group, then A again; texts with bytes above 127.
void FillCatalogue(CQZRMoldingMachineCtrl& catalogue, int machines) {
    HardNumbers numbers;
    for (int i = 0; i < machines; ++i) {
        CQZRIM machine;
        machine.SetMaker(i % 4 == 1 ? "Gr\xFCnwald" : "Arvado");
        machine.SetGrade(("G-" + std::to_string(i)).c_str());
        machine.SetRemark(i % 3 == 0 ? "" : "r\xE9vis\xE9, hall 3");
        machine.SetDistanceBetweenTieBars("410x410");
        FillNumbers(qzr::bank::IMMSectionFormat(), numbers, machine);
        machine.SetTimeConstFR(numbers.Real());
        machine.SetTimeConstIP(numbers.Real());
        machine.SetNozzleVolume(numbers.Real());
        machine.SetMaxPressureSlope(numbers.Real());
        machine.SetMachineEnergyType(numbers.Integer());
        machine.SetHydraulicPressureTransferFactor(numbers.Real());
        NozzleSpecification nozzle;
        nozzle.Type = numbers.Integer();
        nozzle.Value1 = numbers.Real();
        nozzle.Value6 = numbers.Real();
        machine.SetNozzleSpecification(nozzle);
        catalogue.AddMachine(machine);
        if (i == 2) {
            catalogue.SetFileType(1);
            CQZRRTM other;
            other.SetMaker("Hadrex");
            other.SetGrade("T-1");
            catalogue.AddMachine(other);
            catalogue.SetFileType(0);
            CQZRIM emptied;
            emptied.SetMaker("Empty");
            emptied.SetGrade("E-1");
            catalogue.AddMachine(emptied);
            catalogue.RemoveMachine("Empty", "E-1");
        }
    }
}

std::string PlainSectionedHeader(const CQZRMoldingMachineCtrl& catalogue) {
    return Printf("[FileHeader]\nVersion    = %d\nFormat     = %d\nType       = %d\n",
                  catalogue.GetFileVersion(), catalogue.GetFileFormat(), catalogue.GetFileType()) +
           "CreateDate = Wed Jan 02 02:03:55 1980\n\n" +
           Printf("CreateBy   = %s\nRemark     = %s\n\n[General]\nTotalMachine = %d\n\n",
                  catalogue.GetFileCreateBy(), catalogue.GetFileRemark(),
                  catalogue.GetTotalMachine());
}

std::string PlainIMMSections(const CQZRMoldingMachineCtrl& catalogue) {
    const auto& format = qzr::bank::IMMSectionFormat();
    std::string text;
    for (int index = 0; index < catalogue.GetTotalMachine(); ++index) {
        CQZRIM machine;
        if (!catalogue.GetCurrentMachine(index, machine)) {
            continue;
        }
        text += Printf("[Machine-%d]\n\n", index + 1);
        for (size_t row = 0; row < format.rowCount; ++row) {
            const auto& key = format.rows[row];
            text += key.linePrefix;
            switch (key.kind) {
                case qzr::bank::KeyValueKind::kText:
                    text += (machine.*key.getText)();
                    break;
                case qzr::bank::KeyValueKind::kInteger:
                    text += Printf("%d", (machine.*key.getInteger)());
                    break;
                case qzr::bank::KeyValueKind::kReal:
                    text += Printf("%lf", (machine.*key.getReal)());
                    break;
            }
            text += "\n";
        }
        text += "\n";
    }
    return text;
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
    const FixedClock clock;
    for (const int machines : {0, 1, 7, 300}) {
        SCOPED_TRACE("machines " + std::to_string(machines));
        TempFolder folder;
        folder.MakeFolder("Bank");
        CQZRMoldingMachineCtrl catalogue;
        catalogue.SetFileVersion(9000);
        catalogue.SetFileFormat(1);
        catalogue.SetFileType(0);
        catalogue.SetDatabaseInitialize(true);
        catalogue.SetFileCreateBy(
            "Pr\xFC"
            "fstand");
        FillCatalogue(catalogue, machines);
        const CQZRMoldingMachineWriter writer;

        ASSERT_TRUE(writer.WriteIMMUserDatabase(folder.File("User-IMM.bnk").c_str(), &catalogue));
        EXPECT_EQ(folder.Read("User-IMM.bnk"), OnDisk(PlainSectionedHeader(catalogue) +
                                                      PlainIMMSections(catalogue) + "[EOF]\n"));

        catalogue.SetFileVersion(7007);
        ASSERT_TRUE(writer.WriteOldIMMUserDatabase((folder.Folder() + "/").c_str(), &catalogue));
        EXPECT_EQ(folder.Read("Bank/user-pro.bnk"), OnDisk(PlainLegacyBank(catalogue)));
    }
}

TEST(BankWriters, TransferMouldingBankWritesWhatThePlainFormatWrites) {
    const FixedClock clock;
    TempFolder folder;
    folder.MakeFolder("Bank");
    CQZRMoldingMachineCtrl catalogue;
    catalogue.SetFileVersion(9100);
    catalogue.SetFileFormat(1);
    catalogue.SetFileType(1);
    catalogue.SetDatabaseInitialize(true);
    HardNumbers numbers;
    const auto& format = qzr::bank::RTMSectionFormat();
    std::string sections;
    for (int i = 0; i < 50; ++i) {
        CQZRRTM machine;
        machine.SetMaker(i % 2 == 0 ? "Lumetra" : "\xC5kerlund");
        machine.SetGrade(("T-" + std::to_string(i)).c_str());
        FillNumbers(format, numbers, machine);
        catalogue.AddMachine(machine);
    }
    for (int index = 0; index < catalogue.GetTotalMachine(); ++index) {
        CQZRRTM m;
        ASSERT_TRUE(catalogue.GetCurrentMachine(index, m));
        sections += Printf("[Machine-%d]\n\n", index + 1);
        for (size_t row = 0; row < format.rowCount; ++row) {
            const auto& key = format.rows[row];
            sections += key.linePrefix;
            sections += key.kind == qzr::bank::KeyValueKind::kText ? std::string((m.*key.getText)())
                        : key.kind == qzr::bank::KeyValueKind::kInteger
                            ? Printf("%d", (m.*key.getInteger)())
                            : Printf("%lf", (m.*key.getReal)());
            sections += "\n";
        }
        sections += "\n";
    }
    const CQZRMoldingMachineWriter writer;
    ASSERT_TRUE(writer.WriteRTMUserDatabase((folder.Folder() + "/").c_str(), &catalogue));
    EXPECT_EQ(folder.Read("Bank/User-RTMIC.bnk"),
              OnDisk(PlainSectionedHeader(catalogue) + sections + "[EOF]\n"));
}

}  // namespace

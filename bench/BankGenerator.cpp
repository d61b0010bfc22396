#include "BankGenerator.h"

#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <fstream>

#include <QZRMachine/QZRIM.h>

namespace qzr::bench {

namespace {

// Makers, their grade prefixes, and a few remarks. Bytes above 127 are Latin-1 letters.
const char* const kMakers[kInventedMakerCount] = {
    "Kemberline", "Arvado",    "Str\xF6hmann", "Nordtek Plast", "Veloxa",
    "Mori-Hashi", "Caldero",   "\xC5kerlund",  "Brixmoor",      "Tessaline",
    "Quorven",    "Kaiz\xE9n", "Pellham",      "Zandrik",       "Orvieto",
    "Lumetra",    "Hadrex",    "Moul\xE9x",    "Fennick",       "Gr\xFCnwald"};
const char* const kGradePrefixes[kInventedMakerCount] = {"KL", "AV", "SH", "NP", "VX", "MH", "CD",
                                                         "AK", "BX", "TS", "QV", "KZ", "PH", "ZD",
                                                         "OV", "LM", "HX", "MX", "FN", "GW"};
const char* const kRemarks[] = {"",
                                "",
                                "",
                                "Hall 3",
                                "r\xE9vis\xE9 2019",
                                "two-platen, servo pump",
                                "Dryer on hopper",
                                "Bay 12, next to the cr\xE8me line"};
constexpr std::size_t kRemarkCount = sizeof(kRemarks) / sizeof(kRemarks[0]);

// A fixed pseudo-random number for (machine, field): the same on every platform and run.
uint64_t Mix(std::size_t index, uint64_t field) {
    uint64_t z = static_cast<uint64_t>(index) * 0x9E3779B97F4A7C15ULL +
                 field * 0xBF58476D1CE4E5B9ULL + 0x2545F4914F6CDD1DULL;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

int Pick(std::size_t index, uint64_t field, int count) {
    return static_cast<int>(Mix(index, field) % static_cast<uint64_t>(count));
}

// A value between low and high with at most `decimals` decimals (0, 1 or 2).
double Value(std::size_t index, uint64_t field, double low, double high, int decimals) {
    const double scale = decimals == 2 ? 100.0 : decimals == 1 ? 10.0 : 1.0;
    const uint64_t steps = static_cast<uint64_t>((high - low) * scale) + 1;
    const double step = static_cast<double>(Mix(index, field) % steps);
    return std::round(low * scale + step) / scale;
}

#if defined(__GNUC__)
std::string Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
#endif
std::string Printf(const char* format, ...) {
    char buffer[2048];
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(buffer, sizeof(buffer), format, args);
    va_end(args);
    return length > 0 ? std::string(buffer, static_cast<std::size_t>(length)) : std::string();
}

// One maker in sixteen spelled in capitals, so that the name rule folds as it loads.
std::string MakerOf(std::size_t index) {
    std::string maker = kMakers[Pick(index, 1, kInventedMakerCount)];
    if (Pick(index, 2, 16) == 0) {
        for (char& c : maker) {
            if (c >= 'a' && c <= 'z') {
                c = static_cast<char>(c - 'a' + 'A');
            }
        }
    }
    return maker;
}

std::string GradeOf(std::size_t index, double clampingForce) {
    static const char kSuffixes[] = {'e', 's', 'h', 'x'};
    return Printf("%s-%d%c", kGradePrefixes[Pick(index, 1, kInventedMakerCount)],
                  static_cast<int>(clampingForce), kSuffixes[Pick(index, 3, 4)]);
}

std::string Header(int format, int type, std::size_t total, const std::string& createDate) {
    std::string text = "[FileHeader]\n";
    text += Printf("Version    = %ld\n", 9000L);
    text += Printf("Format     = %ld\n", static_cast<long>(format));
    text += Printf("Type       = %ld\n", static_cast<long>(type));
    text += "CreateDate = " + createDate + "\n";
    text += "CreateBy   = Benchmark\n";
    text += "Remark     = Invented machines\n";
    text += "\n[General]\n";
    text += Printf("TotalMachine = %ld\n", static_cast<long>(total));
    text += "\n";
    return text;
}

void AppendIMMSection(std::string& text, long number, const CQZRIM& m) {
    text += Printf("[Machine-%ld]\n\n", number);
    text += Printf("Maker                       = %s\n", m.GetMaker());
    text += Printf("Grade                       = %s\n", m.GetGrade());
    text += Printf("Controller                  = %ld\n", static_cast<long>(m.GetControllerID()));
    text += Printf("Remark                      = %s\n", m.GetRemark());
    text += Printf("ScrewDiameter               = %lf\n", m.GetScrewDiameter());
    text += Printf("ScrewStroke                 = %lf\n", m.GetScrewStroke());
    text += Printf("ShotVolume                  = %lf\n", m.GetShotVolume());
    text += Printf("ShotWeight                  = %lf\n", m.GetShotWeight());
    text += Printf("MaxInjectionPressure        = %lf\n", m.GetInjectionPressure());
    text += Printf("HoldingPressure             = %lf\n", m.GetHoldingPressure());
    text += Printf("InjectionSpeed              = %lf\n", m.GetInjectionSpeed());
    text += Printf("InjectionRate               = %lf\n", m.GetInjectionRate());
    text += Printf("PlasticationRate            = %lf\n", m.GetPlasticationRate());
    text += Printf("ScrewSpeed                  = %lf\n", m.GetScrewSpeed());
    text += Printf("NozzleContactForce          = %lf\n", m.GetNozzleContactForce());
    text += Printf("NozzleStroke                = %lf\n", m.GetNozzleStroke());
    text += Printf("HeaterWattage               = %lf\n", m.GetHeaterWattage());
    text += Printf("TemperatureControlZones     = %ld\n",
                   static_cast<long>(m.GetTemperatureControlZone()));
    text += Printf("ClampingForce               = %lf\n", m.GetClampingForce());
    text += Printf("OpeningStroke               = %lf\n", m.GetOpeningStroke());
    text += Printf("MaxDaylight                 = %lf\n", m.GetMaxDaylight());
    text += Printf("MoldHeight                  = %lf\n", m.GetMoldHeight());
    text += Printf("DistanceBetweenTieBars(HxV) = %s\n", m.GetDistanceBetweenTieBars());
    text += Printf("PlatenSize(HxV)             = %s\n", m.GetPlatenSize());
    text += Printf("EjectorPoint                = %ld\n", static_cast<long>(m.GetEjectorPoint()));
    text += Printf("EjectorForce                = %lf\n", m.GetEjectorForce());
    text += Printf("EjectorStroke               = %lf\n", m.GetEjectorStroke());
    text += Printf("MachineWeight               = %lf\n", m.GetMachineWeight());
    text += Printf("MachineDimension(LxWxH)     = %s\n", m.GetMachineDimension());
    text += "\n";
}

void AppendRTMSection(std::string& text, long number, const CQZRRTM& m) {
    text += Printf("[Machine-%ld]\n\n", number);
    text += Printf("Maker        \t = %s\n", m.GetMaker());
    text += Printf("Grade            = %s\n", m.GetGrade());
    text += Printf("Controller       = %ld\n", static_cast<long>(m.GetControllerID()));
    text += Printf("Remark           = %s\n", m.GetRemark());
    text += Printf("PlungerDiameter  = %lf\n", m.GetPlungerDiameter());
    text += Printf("PlungerStroke    = %lf\n", m.GetPlungerStroke());
    text += Printf("PlungerSpeed\t = %lf\n", m.GetPlungerSpeed());
    text += Printf("TransferPressure = %lf\n", m.GetTransferPressure());
    text += Printf("TransferForce    = %lf\n", m.GetTransferForce());
    text += Printf("TransferRate     = %lf\n", m.GetTransferRate());
    text += Printf("ClampingForce    = %lf\n", m.GetClampingForce());
    text += Printf("ShotWeight       = %lf\n", m.GetShotWeight());
    text += Printf("ShotVolume       = %lf\n", m.GetShotVolume());
    text += "\n";
}

const char kLegacyUserHead[] =
    "[Header]\n"
    "Version,7007\n"
    "\n"
    "[Format]\n"
    "ID,Maker,Grade,Remark,ClampForce,ShotWeight,Max.Pressure,Max.FlowRate,ScrewDiameter,"
    "Max.RamPosition,TimeConstFR,TimeConstIP,NozzleVolume,MaxPressureSlope,MachineType,"
    "HydralicPressureTransferFactor,\n"
    "Unit,,,,ton,g,MPa,cc/s,mm,mm,sec,sec,cm3,,,,\n"
    "\n"
    "[Database]\n";

void AppendLegacyUserRow(std::string& text, const CQZRIM& m) {
    const NozzleSpecification& n = m.GetNozzleSpecification();
    text += Printf(
        "%d,%s,%s,%s,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%lg,%lg,%6.2f,%6.2f,%d,%6.2f,%d,%6.2f,"
        "%6.2f,%6.2f,%6.2f,%6.2f,%6.2f\n",
        1, m.GetMaker(), m.GetGrade(), m.GetRemark(), m.GetClampingForce(), m.GetShotWeight(),
        m.GetInjectionPressure(), m.GetInjectionRate(), m.GetScrewDiameter(), m.GetScrewStroke(),
        m.GetTimeConstFR(), m.GetTimeConstIP(), m.GetNozzleVolume(), m.GetMaxPressureSlope(),
        m.GetMachineEnergyType(), m.GetHydraulicPressureTransferFactor(), n.Type, n.Value1,
        n.Value2, n.Value3, n.Value4, n.Value5, n.Value6);
}

void AppendLegacySystemRow(std::string& text, std::size_t index, const CQZRIM& m) {
    text += Printf("%d,%s,%s,%s,%g,%g,%g,%g,%g,%g,%d,%g\n", static_cast<int>(index + 1),
                   m.GetMaker(), m.GetGrade(), m.GetRemark(), m.GetClampingForce(),
                   m.GetShotWeight(), m.GetInjectionPressure(), m.GetInjectionRate(),
                   m.GetScrewDiameter(), m.GetScrewStroke(), m.GetMachineEnergyType(),
                   m.GetHydraulicPressureTransferFactor());
}

}  // namespace

void InventIMM(std::size_t i, CQZRIM& m) {
    const double clamp = Value(i, 10, 30, 4000, 0);
    const double diameter = Value(i, 11, 18, 120, 1);
    const double stroke = std::round(diameter * (3.0 + Pick(i, 12, 20) / 10.0));
    m.SetMaker(MakerOf(i).c_str());
    m.SetGrade(GradeOf(i, clamp).c_str());
    m.SetControllerID(Pick(i, 13, 8));
    m.SetRemark(kRemarks[Pick(i, 14, static_cast<int>(kRemarkCount))]);
    m.SetScrewDiameter(diameter);
    m.SetScrewStroke(stroke);
    m.SetShotVolume(std::round(diameter * diameter * 0.7853975 * stroke / 100.0) / 10.0);
    m.SetShotWeight(Value(i, 15, 10, 20000, 1));
    m.SetInjectionPressure(Value(i, 16, 120, 280, 0));
    m.SetHoldingPressure(Value(i, 17, 80, 220, 0));
    m.SetInjectionSpeed(Value(i, 18, 60, 900, 0));
    m.SetInjectionRate(Value(i, 19, 20, 3000, 2));
    m.SetPlasticationRate(Value(i, 20, 5, 400, 1));
    m.SetScrewSpeed(Value(i, 21, 100, 400, 0));
    m.SetNozzleContactForce(Value(i, 22, 2, 120, 1));
    m.SetNozzleStroke(Value(i, 23, 150, 900, 0));
    m.SetHeaterWattage(Value(i, 24, 3, 180, 2));
    m.SetTemperatureControlZone(3 + Pick(i, 25, 8));
    m.SetClampingForce(clamp);
    m.SetOpeningStroke(Value(i, 26, 250, 2500, 0));
    m.SetMaxDaylight(Value(i, 27, 500, 4000, 0));
    m.SetMoldHeight(Value(i, 28, 150, 1800, 0));
    const int tieBars = 250 + 10 * Pick(i, 29, 150);
    m.SetDistanceBetweenTieBars(Printf("%dx%d", tieBars, tieBars).c_str());
    m.SetPlatenSize(Printf("%dx%d", tieBars + 170, tieBars + 170).c_str());
    m.SetEjectorPoint(1 + Pick(i, 30, 13));
    m.SetEjectorForce(Value(i, 31, 10, 600, 1));
    m.SetEjectorStroke(Value(i, 32, 50, 400, 0));
    m.SetMachineWeight(Value(i, 33, 2, 300, 1));
    m.SetMachineDimension(Printf("%dx%dx%d", 3000 + 10 * Pick(i, 34, 1500),
                                 1200 + 10 * Pick(i, 35, 200), 1700 + 10 * Pick(i, 36, 150))
                              .c_str());
    // Columns of the legacy bank only.
    m.SetTimeConstFR(Pick(i, 37, 10) == 0 ? 1e-05 * (1 + Pick(i, 38, 9)) : Value(i, 38, 0, 1, 3));
    m.SetTimeConstIP(Value(i, 39, 0, 2, 2));
    m.SetNozzleVolume(Value(i, 40, 0, 90, 2));
    m.SetMaxPressureSlope(Pick(i, 41, 8) == 0 ? -Value(i, 42, 0, 50, 2) : Value(i, 42, 0, 5000, 0));
    m.SetMachineEnergyType(Pick(i, 43, 3));
    m.SetHydraulicPressureTransferFactor(Value(i, 44, 5, 20, 2));
    NozzleSpecification nozzle;
    nozzle.Type = Pick(i, 45, 4);
    nozzle.Value1 = Value(i, 46, 0, 10, 2);
    nozzle.Value2 = Value(i, 47, 0, 40, 1);
    nozzle.Value3 = Value(i, 48, 0, 90, 0);
    nozzle.Value4 = Pick(i, 49, 3) == 0 ? Value(i, 50, 0, 5, 2) : 0.0;
    m.SetNozzleSpecification(nozzle);
}

void InventRTM(std::size_t i, CQZRRTM& m) {
    const double clamp = Value(i, 10, 20, 1500, 0);
    m.SetMaker(MakerOf(i).c_str());
    m.SetGrade(GradeOf(i, clamp).c_str());
    m.SetControllerID(Pick(i, 13, 8));
    m.SetRemark(kRemarks[Pick(i, 14, static_cast<int>(kRemarkCount))]);
    m.SetPlungerDiameter(Value(i, 11, 20, 90, 1));
    m.SetPlungerStroke(Value(i, 12, 50, 400, 0));
    m.SetPlungerSpeed(Value(i, 15, 1, 60, 2));
    m.SetTransferPressure(Value(i, 16, 5, 30, 1));
    m.SetTransferForce(Value(i, 17, 5, 200, 1));
    m.SetTransferRate(Value(i, 18, 1, 100, 2));
    m.SetClampingForce(clamp);
    m.SetShotWeight(Value(i, 19, 10, 3000, 1));
    m.SetShotVolume(Value(i, 20, 10, 2000, 1));
}

std::string SectionedIMMBankText(int format, std::size_t first, std::size_t count,
                                 const std::string& createDate) {
    std::string text = Header(format, 0, count, createDate);
    text.reserve(count * 1200 + 4096);
    for (std::size_t n = 0; n < count; ++n) {
        CQZRIM machine;
        InventIMM(first + n, machine);
        AppendIMMSection(text, static_cast<long>(n + 1), machine);
    }
    return text + "[EOF]\n";
}

std::string SectionedRTMBankText(int format, std::size_t first, std::size_t count,
                                 const std::string& createDate) {
    std::string text = Header(format, 1, count, createDate);
    text.reserve(count * 400 + 4096);
    for (std::size_t n = 0; n < count; ++n) {
        CQZRRTM machine;
        InventRTM(first + n, machine);
        AppendRTMSection(text, static_cast<long>(n + 1), machine);
    }
    return text + "[EOF]\n";
}

std::string LegacyUserBankText(std::size_t first, std::size_t count) {
    std::string text = kLegacyUserHead;
    text.reserve(count * 160 + 1024);
    for (std::size_t n = 0; n < count; ++n) {
        CQZRIM machine;
        InventIMM(first + n, machine);
        AppendLegacyUserRow(text, machine);
    }
    return text + "[EOF]\n";
}

std::string LegacySystemBankText(std::size_t first, std::size_t count) {
    std::string text = "[Header],,,,,,,,,,,\n";
    text += "Version,7007,,,,,,,,,,\n";
    text += Printf("TotalNo,%ld,,,,,,,,,,\n", static_cast<long>(count));
    text += "[Format],,,,,,,,,,,\n";
    text += "[Database],,,,,,,,,,,\n";
    text.reserve(count * 100 + 1024);
    for (std::size_t n = 0; n < count; ++n) {
        CQZRIM machine;
        InventIMM(first + n, machine);
        AppendLegacySystemRow(text, first + n, machine);
    }
    return text + "[EOF]\n";
}

bool WriteBankFile(const std::string& path, const std::string& text) {
    std::string bytes;
    bytes.reserve(text.size() + text.size() / 16);
    for (const char c : text) {
        if (c == '\n') {
            bytes += '\r';
        }
        bytes += c;
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(out);
}

void FillSectionedIMMUserCatalogue(std::size_t count, CQZRMoldingMachineCtrl& catalogue) {
    catalogue.SetFileVersion(9000);
    catalogue.SetFileFormat(1);
    catalogue.SetFileType(0);
    catalogue.SetDatabaseInitialize(true);
    for (std::size_t i = 0; i < count; ++i) {
        CQZRIM machine;
        InventIMM(i, machine);
        catalogue.AddMachine(machine);
    }
}

void FillLegacyUserCatalogue(std::size_t count, CQZRMoldingMachineCtrl& catalogue) {
    FillSectionedIMMUserCatalogue(count, catalogue);
    catalogue.SetFileVersion(7007);
}

}  // namespace qzr::bench

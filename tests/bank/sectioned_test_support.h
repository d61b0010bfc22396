// Helpers shared by the tests of the sectioned banks, header recognition, the save protocol
// and the load/save front: a scratch folder, raw file bytes, a fixed clock, sample machines
// and a readable dump of the attributes the sectioned banks carry.
#ifndef QZR_TESTS_BANK_SECTIONED_TEST_SUPPORT_H
#define QZR_TESTS_BANK_SECTIONED_TEST_SUPPORT_H

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

#include "platform/Env.h"
#include "platform/EnvWrapper.h"

namespace qzr::sectioned::testing {

// A fresh folder under the system's temporary folder, removed with its content at the end.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::random_device seed;
        std::mt19937_64 random(seed());
        const std::filesystem::path base = std::filesystem::temp_directory_path();
        for (;;) {
            m_path = base / ("qzr-sectioned-" + std::to_string(random()));
            if (std::filesystem::create_directory(m_path)) {
                break;
            }
        }
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // The folder without a trailing separator.
    std::string Folder() const { return m_path.string(); }
    std::string File(std::string_view name) const { return (m_path / name).string(); }
    bool Exists(std::string_view name) const { return std::filesystem::exists(m_path / name); }
    void MakeFolder(std::string_view name) const {
        std::filesystem::create_directories(m_path / name);
    }
    size_t EntryCount() const {
        size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_path)) {
            (void)entry;
            ++count;
        }
        return count;
    }

    // Raw bytes, around the library, so tests see exactly what is on disk.
    std::string Write(std::string_view name, std::string_view bytes) const {
        const std::string path = File(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return path;
    }
    std::string Read(std::string_view name) const {
        std::ifstream in(File(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

  private:
    std::filesystem::path m_path;
};

// Joins lines with the given line end (CR LF as the banks lie on disk, or LF).
inline std::string JoinLines(std::initializer_list<std::string_view> lines,
                             std::string_view lineEnd = "\r\n") {
    std::string text;
    for (std::string_view line : lines) {
        text.append(line);
        text.append(lineEnd);
    }
    return text;
}

// 2 January 1980, 02:03:55 UTC.
constexpr int64_t kFixedSaveTime = 315626635;
constexpr std::string_view kFixedTimeStamp = "Wed Jan 02 02:03:55 1980\n";

// Every save made while one of these lives is stamped with a fixed time.
class FixedClock : public qzr::platform::EnvWrapper {
  public:
    explicit FixedClock(int64_t seconds = kFixedSaveTime)
        : EnvWrapper(qzr::platform::Env::Default()), m_seconds(seconds), m_override(this) {}
    int64_t NowUtcSeconds() override { return m_seconds; }

  private:
    int64_t m_seconds;
    qzr::platform::ScopedEnvOverride m_override;
};

inline std::string Real(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

// The attributes a sectioned injection-moulding bank carries, as one text, so that a failing
// comparison shows the field that differs.
inline std::string SectionedFields(const CQZRIM& m) {
    std::string text;
    text += std::string("Maker=") + m.GetMaker() + "|Grade=" + m.GetGrade() +
            "|Controller=" + std::to_string(m.GetControllerID()) + "|Remark=" + m.GetRemark();
    const double reals[] = {
        m.GetScrewDiameter(),  m.GetScrewStroke(),        m.GetShotVolume(),
        m.GetShotWeight(),     m.GetInjectionPressure(),  m.GetHoldingPressure(),
        m.GetInjectionSpeed(), m.GetInjectionRate(),      m.GetPlasticationRate(),
        m.GetScrewSpeed(),     m.GetNozzleContactForce(), m.GetNozzleStroke(),
        m.GetHeaterWattage(),  m.GetClampingForce(),      m.GetOpeningStroke(),
        m.GetMaxDaylight(),    m.GetMoldHeight(),         m.GetEjectorForce(),
        m.GetEjectorStroke(),  m.GetMachineWeight()};
    for (double value : reals) {
        text += "|" + Real(value);
    }
    text += "|Zones=" + std::to_string(m.GetTemperatureControlZone()) +
            "|TieBars=" + m.GetDistanceBetweenTieBars() + "|Platen=" + m.GetPlatenSize() +
            "|EjectorPoint=" + std::to_string(m.GetEjectorPoint()) +
            "|Dimension=" + m.GetMachineDimension();
    return text;
}

inline std::string SectionedFields(const CQZRRTM& m) {
    std::string text;
    text += std::string("Maker=") + m.GetMaker() + "|Grade=" + m.GetGrade() +
            "|Controller=" + std::to_string(m.GetControllerID()) + "|Remark=" + m.GetRemark();
    const double reals[] = {m.GetPlungerDiameter(),  m.GetPlungerStroke(), m.GetPlungerSpeed(),
                            m.GetTransferPressure(), m.GetTransferForce(), m.GetTransferRate(),
                            m.GetClampingForce(),    m.GetShotWeight(),    m.GetShotVolume()};
    for (double value : reals) {
        text += "|" + Real(value);
    }
    return text;
}

// An invented injection-moulding machine whose numbers all differ (seed varies them).
inline CQZRIM SampleIMM(const char* maker, const char* grade, int seed) {
    CQZRIM m;
    m.SetMaker(maker);
    m.SetGrade(grade);
    m.SetControllerID(10 + seed);
    m.SetRemark("servo hybrid, 2-stage");
    const double base = 1.0 + seed * 0.125;
    m.SetScrewDiameter(32.5 * base);
    m.SetScrewStroke(140.0 * base);
    m.SetShotVolume(116.25 * base);
    m.SetShotWeight(105.75 * base);
    m.SetInjectionPressure(2180.0 * base);
    m.SetHoldingPressure(1530.5 * base);
    m.SetInjectionSpeed(120.0 * base);
    m.SetInjectionRate(99.5 * base);
    m.SetPlasticationRate(14.25 * base);
    m.SetScrewSpeed(260.0 * base);
    m.SetNozzleContactForce(35.0 * base);
    m.SetNozzleStroke(250.0 * base);
    m.SetHeaterWattage(7.8 * base);
    m.SetTemperatureControlZone(4 + seed);
    m.SetClampingForce(1100.0 * base);
    m.SetOpeningStroke(410.0 * base);
    m.SetMaxDaylight(760.0 * base);
    m.SetMoldHeight(350.0 * base);
    m.SetDistanceBetweenTieBars("410x410");
    m.SetPlatenSize("620x620");
    m.SetEjectorPoint(5);
    m.SetEjectorForce(28.5 * base);
    m.SetEjectorStroke(100.0 * base);
    m.SetMachineWeight(4.35 * base);
    m.SetMachineDimension("4.6x1.2x1.9");
    return m;
}

inline CQZRRTM SampleRTM(const char* maker, const char* grade, int seed) {
    CQZRRTM m;
    m.SetMaker(maker);
    m.SetGrade(grade);
    m.SetControllerID(70 + seed);
    m.SetRemark("vacuum chamber");
    const double base = 1.0 + seed * 0.25;
    m.SetPlungerDiameter(40.0 * base);
    m.SetPlungerStroke(120.5 * base);
    m.SetPlungerSpeed(1.5 * base);
    m.SetTransferPressure(180.25 * base);
    m.SetTransferForce(22.5 * base);
    m.SetTransferRate(12.0 * base);
    m.SetClampingForce(1500.0 * base);
    m.SetShotWeight(310.5 * base);
    m.SetShotVolume(170.0 * base);
    return m;
}

inline void SetFileAttributes(CQZRMoldingMachineCtrl& catalogue, int version, int format,
                              int type) {
    catalogue.SetFileVersion(version);
    catalogue.SetFileFormat(format);
    catalogue.SetFileType(type);
}

}  // namespace qzr::sectioned::testing

#endif  // QZR_TESTS_BANK_SECTIONED_TEST_SUPPORT_H

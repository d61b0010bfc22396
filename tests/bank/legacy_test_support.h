// Helpers shared by the legacy tabular bank tests: a scratch folder, raw file bytes, and a
// readable dump of the attributes that the legacy bank carries.
#ifndef QZR_TESTS_BANK_LEGACY_TEST_SUPPORT_H
#define QZR_TESTS_BANK_LEGACY_TEST_SUPPORT_H

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

namespace qzr::legacy::testing {

// A fresh folder under the system's temporary folder, removed with its content at the end.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::random_device seed;
        std::mt19937_64 random(seed());
        const std::filesystem::path base = std::filesystem::temp_directory_path();
        for (;;) {
            m_path = base / ("qzr-legacy-" + std::to_string(random()));
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

    // The folder with a trailing '/', as a host on Linux passes a bank folder.
    std::string Folder() const { return m_path.string() + "/"; }
    std::string File(std::string_view name) const { return (m_path / name).string(); }
    bool Exists(std::string_view name) const { return std::filesystem::exists(m_path / name); }
    void MakeFolder(std::string_view name) const {
        std::filesystem::create_directories(m_path / name);
    }

    // Raw bytes, around the library, so tests see exactly what is on disk.
    std::string Write(std::string_view name, std::string_view bytes) const {
        const std::string path = File(name);
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

// Joins lines with CR LF, as the banks lie on disk.
inline std::string CrLfLines(std::initializer_list<std::string_view> lines) {
    std::string text;
    for (std::string_view line : lines) {
        text.append(line);
        text.append("\r\n");
    }
    return text;
}

// Every attribute the legacy bank writes or derives, with the text attributes, as one text:
// a failing comparison then shows the field that differs. Reals are printed with "%.17g" so
// that equal texts mean equal values.
inline std::string LegacyFields(const CQZRIM& m) {
    const NozzleSpecification& n = m.GetNozzleSpecification();
    char numbers[1024];
    std::snprintf(numbers, sizeof(numbers),
                  "clamp=%.17g shotW=%.17g shotV=%.17g press=%.17g rate=%.17g dia=%.17g "
                  "stroke=%.17g fr=%.17g ip=%.17g nozV=%.17g slope=%.17g energy=%d hptf=%.17g "
                  "nozzle=%d/%.17g/%.17g/%.17g/%.17g/%.17g/%.17g",
                  m.GetClampingForce(), m.GetShotWeight(), m.GetShotVolume(),
                  m.GetInjectionPressure(), m.GetInjectionRate(), m.GetScrewDiameter(),
                  m.GetScrewStroke(), m.GetTimeConstFR(), m.GetTimeConstIP(), m.GetNozzleVolume(),
                  m.GetMaxPressureSlope(), m.GetMachineEnergyType(),
                  m.GetHydraulicPressureTransferFactor(), n.Type, n.Value1, n.Value2, n.Value3,
                  n.Value4, n.Value5, n.Value6);
    return std::string("maker=[") + m.GetMaker() + "] grade=[" + m.GetGrade() + "] remark=[" +
           m.GetRemark() + "] " + numbers;
}

// The machines of a catalogue that a legacy bank can hold, in catalogue order.
inline std::vector<CQZRIM> InjectionMachines(const CQZRMoldingMachineCtrl& catalogue) {
    std::vector<CQZRIM> machines;
    for (int index = 0; index < catalogue.GetTotalMachine(); ++index) {
        CQZRIM machine;
        if (catalogue.GetCurrentMachine(index, machine)) {
            machines.push_back(machine);
        }
    }
    return machines;
}

}  // namespace qzr::legacy::testing

#endif  // QZR_TESTS_BANK_LEGACY_TEST_SUPPORT_H

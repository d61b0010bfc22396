// Shared by the fuzz targets: a scratch folder in memory (tmpfs where the system has one), the
// input written to a bank file in it, and a walk that reads every machine a load put into a
// catalogue.
#ifndef QZR_FUZZ_FUZZSUPPORT_H
#define QZR_FUZZ_FUZZSUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <unistd.h>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::fuzz {

// One folder per fuzzing process, removed when the process ends normally.
class ScratchFolder {
  public:
    static const ScratchFolder& Get() {
        static const ScratchFolder folder;
        return folder;
    }

    // With a trailing '/', as a host on Linux passes a bank folder.
    std::string Folder() const { return m_path.string() + "/"; }
    std::string File(std::string_view name) const { return (m_path / name).string(); }

    // Writes the bytes to name (folders on the way are made) and returns its full path.
    std::string Write(std::string_view name, const uint8_t* data, size_t size) const {
        const std::filesystem::path path = m_path / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        out.close();
        if (!out) {
            std::abort();  // the harness itself cannot work: stop rather than fuzz nothing
        }
        return path.string();
    }

    std::string Read(std::string_view name) const {
        std::ifstream in(m_path / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    // Empties the folder, so that no file of one input is seen by the next.
    void Clear() const {
        for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
            std::filesystem::remove_all(entry.path());
        }
    }

    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

  private:
    ScratchFolder() {
        const std::filesystem::path memory("/dev/shm");
        const std::filesystem::path base =
            std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
        m_path = base / ("qzr-fuzz-" + std::to_string(::getpid()));
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }

    std::filesystem::path m_path;
};

// Reads every machine of the catalogue as both kinds and every text of it, so that a record
// a load left half made shows up under the sanitizers.
inline size_t TouchCatalogue(const CQZRMoldingMachineCtrl& catalogue) {
    size_t bytes = 0;
    for (int index = 0; index < catalogue.GetTotalMachine(); ++index) {
        CQZRIM imm;
        if (catalogue.GetCurrentMachine(index, imm)) {
            bytes += std::strlen(imm.GetMaker()) + std::strlen(imm.GetGrade()) +
                     std::strlen(imm.GetRemark()) + std::strlen(imm.GetPlatenSize()) +
                     std::strlen(imm.GetDistanceBetweenTieBars()) +
                     std::strlen(imm.GetMachineDimension());
            bytes += imm.GetClampingForce() > 0.0 ? 1 : 0;
        }
        CQZRRTM rtm;
        if (catalogue.GetCurrentMachine(index, rtm)) {
            bytes += std::strlen(rtm.GetMaker()) + std::strlen(rtm.GetGrade()) +
                     std::strlen(rtm.GetRemark());
            bytes += rtm.GetPlungerSpeed() > 0.0 ? 1 : 0;
        }
    }
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const char* maker = catalogue.GetMaker(catalogue.GetMakerID(position));
        bytes += maker != nullptr ? std::strlen(maker) : 0;
    }
    return bytes;
}

}  // namespace qzr::fuzz

#endif  // QZR_FUZZ_FUZZSUPPORT_H

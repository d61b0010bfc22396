// Helpers of the reliability tests (failing saves, hostile files): a scratch folder whose
// whole content can be snapshotted, a file held open by "another program" on Windows, and
// invented catalogues of both kinds of machine.
#ifndef QZR_TESTS_BANK_RELIABILITY_TEST_SUPPORT_H
#define QZR_TESTS_BANK_RELIABILITY_TEST_SUPPORT_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::reliability::testing {

// Every entry of a folder tree by its relative path: a file's bytes, or "<folder>".
using FolderSnapshot = std::map<std::string, std::string>;

#if defined(_WIN32)
// Holds a file open without sharing it, as another program may: nobody else opens it meanwhile.
class HeldOpen {
  public:
    explicit HeldOpen(const std::string& path)
        : m_handle(::CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~HeldOpen() {
        if (m_handle != INVALID_HANDLE_VALUE) {
            ::CloseHandle(m_handle);
        }
    }
    HeldOpen(const HeldOpen&) = delete;
    HeldOpen& operator=(const HeldOpen&) = delete;
    bool held() const { return m_handle != INVALID_HANDLE_VALUE; }

  private:
    HANDLE m_handle;
};
#endif

class ScratchFolder {
  public:
    ScratchFolder() {
        std::random_device seed;
        std::mt19937_64 random(seed());
        for (;;) {
            m_path = std::filesystem::temp_directory_path() /
                     ("qzr-reliability-" + std::to_string(random()));
            if (std::filesystem::create_directory(m_path)) {
                break;
            }
        }
    }
    // Removes only the folder the constructor made, never one that existed before. Windows
    // removes no read-only file, so what a test made read-only is made writable first (links
    // are not followed: their targets are none of this folder's business).
    ~ScratchFolder() {
        namespace fs = std::filesystem;
        std::error_code ignored;
        for (fs::recursive_directory_iterator it(m_path, ignored), end; it != end;
             it.increment(ignored)) {
            if (!it->is_symlink(ignored)) {
                fs::permissions(it->path(), fs::perms::owner_read | fs::perms::owner_write,
                                fs::perm_options::add, ignored);
            }
        }
        fs::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // With a trailing '/', as a host on Linux passes a bank folder.
    std::string Folder() const { return m_path.string() + "/"; }
    std::string File(std::string_view name) const { return (m_path / name).string(); }

    // Raw bytes around the library; missing folders on the way are made.
    void Write(std::string_view name, std::string_view bytes) const {
        const std::filesystem::path path = m_path / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    FolderSnapshot Snapshot() const {
        FolderSnapshot entries;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_path)) {
            // Keys in the generic form ("Bank/User-IMM.bnk") on every platform.
            const std::string name =
                std::filesystem::relative(entry.path(), m_path).generic_string();
            if (entry.is_directory()) {
                entries[name] = "<folder>";
            } else if (!entry.is_regular_file()) {
                entries[name] = "<special>";  // a pipe, say: reading it would wait for a writer
            } else {
                std::ifstream in(entry.path(), std::ios::binary);
                entries[name] = std::string(std::istreambuf_iterator<char>(in),
                                            std::istreambuf_iterator<char>());
            }
        }
        return entries;
    }

    // Makes the folder hold exactly the given entries again.
    void Restore(const FolderSnapshot& entries) const {
        for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
            std::filesystem::remove_all(entry.path());
        }
        for (const auto& [name, bytes] : entries) {
            if (bytes == "<folder>") {
                std::filesystem::create_directories(m_path / name);
            } else {
                Write(name, bytes);
            }
        }
    }

  private:
    std::filesystem::path m_path;
};

// An invented injection-moulding machine; seed varies every number.
inline CQZRIM InventedIMM(int seed) {
    CQZRIM m;
    const std::string maker = "Maker " + std::to_string(seed % 7);
    const std::string grade = "G-" + std::to_string(1000 + seed);
    m.SetMaker(maker.c_str());
    m.SetGrade(grade.c_str());
    m.SetRemark("all-electric, invented");
    m.SetControllerID(seed);
    m.SetClampingForce(50.0 + seed * 1.25);
    m.SetShotWeight(10.5 + seed);
    m.SetScrewDiameter(18.0 + seed % 40);
    m.SetScrewStroke(80.0 + seed % 90);
    m.SetInjectionPressure(150.0 + seed * 0.5);
    m.SetTimeConstFR(0.01 * (1 + seed % 5));
    m.SetDistanceBetweenTieBars("360x360");
    m.SetMachineDimension("3.1x1.0x1.7");
    return m;
}

inline CQZRRTM InventedRTM(int seed) {
    CQZRRTM m;
    const std::string maker = "Press " + std::to_string(seed % 5);
    const std::string grade = "T-" + std::to_string(2000 + seed);
    m.SetMaker(maker.c_str());
    m.SetGrade(grade.c_str());
    m.SetRemark("invented transfer press");
    m.SetControllerID(seed);
    m.SetPlungerDiameter(30.0 + seed % 20);
    m.SetPlungerStroke(90.0 + seed * 0.25);
    m.SetTransferPressure(120.0 + seed);
    return m;
}

// A catalogue of `count` machines of one kind, with the file attributes its user bank needs.
inline void FillUserCatalogue(CQZRMoldingMachineCtrl& catalogue, bool transferMoulding, int version,
                              int count) {
    catalogue.SetFileVersion(version);
    catalogue.SetFileFormat(1);
    catalogue.SetFileType(transferMoulding ? 1 : 0);
    catalogue.SetDatabaseInitialize(true);
    for (int seed = 0; seed < count; ++seed) {
        if (transferMoulding) {
            CQZRRTM machine = InventedRTM(seed);
            catalogue.AddMachine(machine);
        } else {
            CQZRIM machine = InventedIMM(seed);
            catalogue.AddMachine(machine);
        }
    }
}

}  // namespace qzr::reliability::testing

#endif  // QZR_TESTS_BANK_RELIABILITY_TEST_SUPPORT_H

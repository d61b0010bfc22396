// Helpers shared by the bank tests: a scratch folder with raw file access (around the
// library, so a test sees exactly the bytes on disk), bank text from lines, and a fixed clock
// for the time stamp of sectioned saves.
#ifndef QZR_TESTS_BANK_BANK_TEST_SUPPORT_H
#define QZR_TESTS_BANK_BANK_TEST_SUPPORT_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include "platform/EnvWrapper.h"

namespace qzr::bank::testing {

// A fresh folder under the system's temporary folder, removed with its content at the end. The
// name must not exist before, so nothing the test did not make is ever removed.
class TempFolder {
  public:
    TempFolder() {
        std::mt19937_64 random(std::random_device{}());
        do {
            m_path =
                std::filesystem::temp_directory_path() / ("qzr-bank-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(m_path));
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string Folder() const { return m_path.string(); }  // without a trailing separator
    std::string File(std::string_view name) const { return (m_path / name).string(); }
    bool Exists(std::string_view name) const { return std::filesystem::exists(m_path / name); }
    void MakeFolder(std::string_view name) const {
        std::filesystem::create_directories(m_path / name);
    }
    // Writes the bytes as they stand, making parent folders, and returns the file's path.
    std::string Write(std::string_view name, std::string_view bytes) const {
        std::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream(m_path / name, std::ios::binary) << bytes;
        return File(name);
    }
    std::string Read(std::string_view name) const {
        std::ifstream in(m_path / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

  private:
    std::filesystem::path m_path;
};

// The lines joined with CR LF, as banks lie on disk (or with another line end).
inline std::string Lines(std::initializer_list<std::string_view> lines,
                         std::string_view end = "\r\n") {
    std::string text;
    for (std::string_view line : lines) text.append(line).append(end);
    return text;
}

// While one lives, every save is stamped "Wed Jan 02 02:03:55 1980" (UTC).
class FixedClock : public qzr::platform::EnvWrapper {
  public:
    FixedClock() : EnvWrapper(qzr::platform::Env::Default()), m_override(this) {}
    int64_t NowUtcSeconds() override { return 315626635; }

  private:
    qzr::platform::ScopedEnvOverride m_override;
};

}  // namespace qzr::bank::testing

#endif  // QZR_TESTS_BANK_BANK_TEST_SUPPORT_H

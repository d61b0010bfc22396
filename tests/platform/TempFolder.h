// A fresh folder for one test, removed with everything in it when the test ends; the name must
// not exist before, so nothing the test did not make is ever removed. Its helpers go around the
// Env on purpose, so that tests check what the Env did against the file system itself.
#ifndef QZR_TESTS_PLATFORM_TEMPFOLDER_H
#define QZR_TESTS_PLATFORM_TEMPFOLDER_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace qzr::test {

class TempFolder {
  public:
    TempFolder() {
        std::random_device seed;
        do {
            m_path = std::filesystem::temp_directory_path() / ("qzr-" + std::to_string(seed()));
        } while (!std::filesystem::create_directory(m_path));
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path() const { return m_path.string(); }
    std::string File(const std::string& name) const { return (m_path / name).string(); }
    void MakeFolder(const std::string& name) const {
        std::filesystem::create_directories(m_path / name);
    }
    void WriteBytes(const std::string& name, const std::string& bytes) const {
        std::ofstream(m_path / name, std::ios::binary) << bytes;
    }
    std::string ReadBytes(const std::string& name) const { return ReadFile(File(name)); }
    static std::string ReadFile(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

  private:
    std::filesystem::path m_path;
};

}  // namespace qzr::test

#endif  // QZR_TESTS_PLATFORM_TEMPFOLDER_H

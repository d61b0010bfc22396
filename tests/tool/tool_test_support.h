// Shared helpers of the qzrbank tests: fixture paths, temporary folders, files, and running the
// built executable.
#ifndef QZRBANK_TESTS_TOOL_TEST_SUPPORT_H
#define QZRBANK_TESTS_TOOL_TEST_SUPPORT_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace qzrbank_test {

namespace fs = std::filesystem;

inline std::string ToolData(const std::string& name) {
    return std::string(QZR_TEST_DATA_DIR) + "/tool/" + name;
}

inline std::string ExamplesBank() {
    return std::string(QZR_EXAMPLES_DIR) + "/Bank";
}

inline std::string ReadFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void WriteFile(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

// A fresh folder under the system's temporary folder, removed at the end of the test.
class TempFolder {
  public:
    TempFolder() {
        std::random_device random;
        m_path = fs::temp_directory_path() /
                 ("qzrbank_test_" + std::to_string(random()) + std::to_string(random()));
        fs::create_directories(m_path);
    }
    ~TempFolder() {
        std::error_code error;
        fs::remove_all(m_path, error);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const fs::path& Path() const { return m_path; }
    std::string operator/(const std::string& name) const { return (m_path / name).string(); }

  private:
    fs::path m_path;
};

struct RunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

// Runs the built qzrbank with the given argument text (already quoted for the shell).
inline RunResult RunQzrbank(const std::string& arguments) {
    TempFolder capture;
    const std::string out = capture / "out.txt";
    const std::string err = capture / "err.txt";
    const std::string command =
        std::string("\"") + QZRBANK_EXE + "\" " + arguments + " >\"" + out + "\" 2>\"" + err + "\"";
    const int status = std::system(command.c_str());
    RunResult result;
#if defined(_WIN32)
    result.exitCode = status;
#else
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    result.out = ReadFile(out);
    result.err = ReadFile(err);
    return result;
}

inline std::string Quote(const std::string& argument) {
    return "\"" + argument + "\"";
}

}  // namespace qzrbank_test

#endif  // QZRBANK_TESTS_TOOL_TEST_SUPPORT_H

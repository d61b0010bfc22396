// Shared helpers of the qzrbank tests: fixture paths, temporary folders, files, and running the
// built executable.
#ifndef QZRBANK_TESTS_TOOL_TEST_SUPPORT_H
#define QZRBANK_TESTS_TOOL_TEST_SUPPORT_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>

extern char** environ;
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

// A fresh folder under the system's temporary folder. Only a folder this object made itself is
// removed at the end of the test, so a path gone wrong can never take other files with it.
class TempFolder {
  public:
    TempFolder() {
        std::random_device random;
        const fs::path base = fs::temp_directory_path();
        do {
            m_path = base / ("qzrbank_test_" + std::to_string(random()) + std::to_string(random()));
        } while (!fs::create_directory(m_path));
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
    int exitCode = -1;  // the process's exit code; -1 when it did not exit normally
    std::string out;
    std::string err;
};

#if defined(_WIN32)
// One argument for a command line that the C runtime splits back into exactly that argument:
// backslashes count only before a quote, so those are doubled, and a quote is escaped.
inline std::string QuoteForCommandLine(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos) {
        return argument;
    }
    std::string quoted = "\"";
    size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        quoted.append(c == '"' ? 2 * backslashes + 1 : backslashes, '\\');
        quoted += c;
        backslashes = 0;
    }
    quoted.append(2 * backslashes, '\\');
    return quoted + '"';
}

// An inheritable handle of a file, closed when its scope ends.
class InheritedFile {
  public:
    InheritedFile(const std::string& path, DWORD access, DWORD disposition) {
        SECURITY_ATTRIBUTES inherit = {static_cast<DWORD>(sizeof inherit), nullptr, TRUE};
        m_handle = ::CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                 disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (m_handle == INVALID_HANDLE_VALUE) {
            throw std::runtime_error("cannot open " + path);
        }
    }
    ~InheritedFile() { ::CloseHandle(m_handle); }
    InheritedFile(const InheritedFile&) = delete;
    InheritedFile& operator=(const InheritedFile&) = delete;
    HANDLE get() const { return m_handle; }

  private:
    HANDLE m_handle;
};

inline int RunProcess(const std::vector<std::string>& argv, const std::string& in,
                      const std::string& out, const std::string& err) {
    std::string commandLine;
    for (const std::string& argument : argv) {
        commandLine += (commandLine.empty() ? "" : " ") + QuoteForCommandLine(argument);
    }
    const InheritedFile input(in, GENERIC_READ, OPEN_EXISTING);
    const InheritedFile output(out, GENERIC_WRITE, CREATE_ALWAYS);
    const InheritedFile errors(err, GENERIC_WRITE, CREATE_ALWAYS);
    STARTUPINFOA startup = {};
    startup.cb = static_cast<DWORD>(sizeof startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = output.get();
    startup.hStdError = errors.get();
    PROCESS_INFORMATION process = {};
    const std::string program = fs::path(argv[0]).make_preferred().string();
    if (::CreateProcessA(program.c_str(), &commandLine[0], nullptr, nullptr, TRUE, 0, nullptr,
                         nullptr, &startup, &process) == FALSE) {
        throw std::runtime_error("cannot start " + program);
    }
    ::CloseHandle(process.hThread);
    DWORD code = 0;
    const bool exited = ::WaitForSingleObject(process.hProcess, INFINITE) == WAIT_OBJECT_0 &&
                        ::GetExitCodeProcess(process.hProcess, &code) != FALSE;
    ::CloseHandle(process.hProcess);
    return exited ? static_cast<int>(code) : -1;
}
#else
// The file actions of a spawn, released when their scope ends.
class SpawnActions {
  public:
    SpawnActions() { ::posix_spawn_file_actions_init(&m_actions); }
    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    posix_spawn_file_actions_t* get() { return &m_actions; }

  private:
    posix_spawn_file_actions_t m_actions;
};

inline int RunProcess(const std::vector<std::string>& argv, const std::string& in,
                      const std::string& out, const std::string& err) {
    SpawnActions actions;
    ::posix_spawn_file_actions_addopen(actions.get(), 0, in.c_str(), O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(actions.get(), 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                       0600);
    ::posix_spawn_file_actions_addopen(actions.get(), 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                       0600);
    std::vector<char*> arguments;
    for (const std::string& argument : argv) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    if (::posix_spawn(&child, argv[0].c_str(), actions.get(), nullptr, arguments.data(), environ) !=
        0) {
        throw std::runtime_error("cannot start " + argv[0]);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
#endif

// Runs the built qzrbank with these arguments, each reaching it as one argument whatever it
// holds (no shell in between), with `input` on its standard input. Its output and errors are
// read back in text mode, as a program of the platform reads a text file: the tool writes
// them as text, CR LF on Windows, and the tests compare them with "\n" on every platform.
inline RunResult RunQzrbank(const std::vector<std::string>& arguments,
                            const std::string& input = "") {
    TempFolder capture;
    WriteFile(capture.Path() / "in.txt", input);
    std::vector<std::string> argv = {QZRBANK_EXE};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    RunResult result;
    result.exitCode =
        RunProcess(argv, capture / "in.txt", capture / "out.txt", capture / "err.txt");
    const auto readText = [&capture](const char* name) {
        std::ifstream in(capture / name);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    };
    result.out = readText("out.txt");
    result.err = readText("err.txt");
    return result;
}

}  // namespace qzrbank_test

#endif  // QZRBANK_TESTS_TOOL_TEST_SUPPORT_H

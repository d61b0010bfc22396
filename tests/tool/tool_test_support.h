// Shared helpers of the qzrbank tests: fixture paths, small user banks, the output of a command
// function, and running the built executable.
#ifndef QZRBANK_TESTS_TOOL_TEST_SUPPORT_H
#define QZRBANK_TESTS_TOOL_TEST_SUPPORT_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "WindowsHeaders.h"

#if !defined(_WIN32)
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

using qzr::test::ReadBytes;
using qzr::test::TempFolder;

// What a command printed and the exit code it returned.
struct Output {
    int exitCode = -1;  // -1 when the process did not exit normally
    std::string out;
    std::string err;
};

// Runs one of the command functions of Commands.h on captured output and errors.
template <typename Command>
Output Capture(const Command& command) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = command(out, err);
    return {code, out.str(), err.str()};
}

struct BankMachine {
    std::string maker;  // bank bytes
    std::string grade;
    double clampingForce = 0;
    double shotWeight = 0;
};

// The text of a user bank holding the machines; every section has the same keys, so that no
// machine takes a value from a later one.
inline std::string UserBankText(const std::vector<BankMachine>& machines,
                                const std::string& remark = "Test bank") {
    std::string text = "[FileHeader]\nVersion = 9000\nFormat = 1\nType = 0\nRemark = " + remark +
                       "\n\n[General]\nTotalMachine = " + std::to_string(machines.size()) + "\n";
    for (size_t i = 0; i < machines.size(); ++i) {
        const BankMachine& machine = machines[i];
        text += "\n[Machine-" + std::to_string(i + 1) + "]\nMaker = " + machine.maker +
                "\nGrade = " + machine.grade +
                "\nClampingForce = " + std::to_string(machine.clampingForce) +
                "\nShotWeight = " + std::to_string(machine.shotWeight) + "\n";
    }
    return text + "\n[EOF]\n";
}

// A Bank folder in folder whose User-IMM.bnk holds the machines; returns the file's path.
inline std::string WriteUserBank(const TempFolder& folder, const std::vector<BankMachine>& machines,
                                 const std::string& remark = "Test bank") {
    return folder.Write("Bank/User-IMM.bnk", UserBankText(machines, remark));
}

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
inline Output RunQzrbank(const std::vector<std::string>& arguments, const std::string& input = "") {
    const TempFolder capture;
    const std::string in = capture.Write("in.txt", input);
    std::vector<std::string> argv = {QZRBANK_EXE};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    Output result;
    result.exitCode = RunProcess(argv, in, capture.File("out.txt"), capture.File("err.txt"));
    const auto readText = [&capture](const char* name) {
        std::ifstream in(capture.File(name));
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    };
    result.out = readText("out.txt");
    result.err = readText("err.txt");
    return result;
}

}  // namespace qzrbank_test

#endif  // QZRBANK_TESTS_TOOL_TEST_SUPPORT_H

// The built qzrbank as a process: its standard streams, arguments as the system passes them,
// the name its usage gives, and what only a process meets (files it cannot read, output it cannot
// write). The commands themselves are tested as transcripts.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "WindowsHeaders.h"

#if !defined(_WIN32)
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

extern char** environ;
#endif

namespace {

namespace fs = std::filesystem;
using qzr::test::ReadBytes;
using qzr::test::TempFolder;

// What a process printed and the exit code it returned.
struct Output {
    int exitCode = -1;  // -1 when the process did not exit normally
    std::string out;
    std::string err;
};

#if defined(_WIN32)
// One argument for a command line that the C runtime splits back into exactly that argument:
// backslashes count only before a quote, so those are doubled, and a quote is escaped.
std::string QuoteForCommandLine(const std::string& argument) {
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

int RunProcess(const std::vector<std::string>& argv, const std::string& in, const std::string& out,
               const std::string& err) {
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

int RunProcess(const std::vector<std::string>& argv, const std::string& in, const std::string& out,
               const std::string& err) {
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
Output RunQzrbank(const std::vector<std::string>& arguments, const std::string& input = "") {
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

const std::string kData = std::string(QZR_TEST_DATA_DIR) + "/tool/";

struct Row {
    const char* label;
    std::vector<std::string> arguments;
    int exitCode;
    std::string out;
    std::string err;
    std::string input = "";
};

void ExpectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const Output result = RunQzrbank(row.arguments, row.input);
        EXPECT_EQ(result.exitCode, row.exitCode);
        EXPECT_EQ(result.out, row.out);
        EXPECT_EQ(result.err, row.err);
    }
}

TEST(Cli, StreamsArgumentsAndTheProgramName) {
    const std::string shipped = std::string(QZR_EXAMPLES_DIR) + "/Bank";
    // clang-format off
    ExpectRows({
        {"standard input", {"check", "-"}, 1,
         "<stdin>:10: error: the row's ID is not 1: a user bank loads only rows of ID 1, so the "
         "loader skips it\n", "", ReadBytes(kData + "legacy_row_id_not_one.bnk")},
        // Blanks, quotes and backslashes reach the tool as they were given.
        {"an argument with quotes and backslashes", {"show", shipped, "Quillner", R"(6" \ x\)"}, 1,
         "", "qzrbank: no machine \"Quillner - 6\" \\ x\\\" in " + shipped + "\n"},
        {"the version", {"--version"}, 0, "qzrbank " QZRBANK_VERSION "\n", ""},
    });
    // clang-format on
    const Output help = RunQzrbank({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.out.find("Usage: qzrbank [OPTIONS] SUBCOMMAND\n"), help.out.find('\n') + 1)
        << help.out;
}

// Files the library refuses to read, and output that cannot be written, need tricks of POSIX.
TEST(Cli, UnreadableInputAndUnwritableOutputAreErrorsWithTheirReason) {
#if defined(_WIN32)
    GTEST_SKIP() << "FIFOs, /dev/zero, /dev/full and file modes are POSIX tricks";
#else
    const TempFolder folder;
    const std::string fifo = folder.File("fifo.bnk");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const std::string locked = folder.Write("locked.bnk", "[Header]\n");
    ::chmod(locked.c_str(), 0);
    // clang-format off
    std::vector<Row> rows = {
        {"a FIFO", {"check", fifo}, 2, "", "qzrbank: " + fifo + ": not a regular file\n"},
        {"a device", {"info", "/dev/zero"}, 2, "", "qzrbank: /dev/zero: not a regular file\n"},
    };
    if (::geteuid() != 0) {
        rows.push_back({"a file without read permission", {"check", locked}, 2, "",
                        "qzrbank: " + locked + ": Permission denied\n"});
    }
    // clang-format on
    ExpectRows(rows);
    const std::string errors = folder.File("err.txt");
    EXPECT_EQ(RunProcess({QZRBANK_EXE, "list"}, "/dev/null", "/dev/full", errors), 2);
    EXPECT_EQ(ReadBytes(errors), "qzrbank: standard output: No space left on device\n");
#endif
}

}  // namespace

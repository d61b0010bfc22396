// The built qzrbank end to end: exit codes, one-line errors and the conventions of every
// command.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tool/tool_test_support.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

using qzrbank_test::ToolData;

struct Row {
    const char* label;
    std::vector<std::string> arguments;
    int exitCode;
    std::string stdoutPart;  // empty: stdout empty
    std::string stderrPart;  // empty: stderr empty
    std::string input = "";
};

void ExpectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const qzrbank_test::Output result = qzrbank_test::RunQzrbank(row.arguments, row.input);
        EXPECT_EQ(result.exitCode, row.exitCode) << result.out << result.err;
        if (row.stdoutPart.empty()) {
            EXPECT_EQ(result.out, "");
        } else {
            EXPECT_NE(result.out.find(row.stdoutPart), std::string::npos) << result.out;
        }
        if (row.stderrPart.empty()) {
            EXPECT_EQ(result.err, "");
        } else {
            EXPECT_NE(result.err.find(row.stderrPart), std::string::npos) << result.err;
            EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        }
    }
}

TEST(Cli, ExitCodesAndOneLineErrors) {
    const std::string shipped = qzrbank_test::ExamplesBank();
    const std::string rowIdNotOne = qzrbank_test::ReadBytes(ToolData("legacy_row_id_not_one.bnk"));
    // clang-format off
    ExpectRows({
        {"list of the shipped banks", {"list"}, 0, " makers\n", ""},
        {"check of a clean bank", {"check", shipped + "/User-IMM.bnk"}, 0,
         ": clean, 6 machines load\n", ""},
        {"check of a bank folder as a host loads it", {"check", shipped}, 0,
         "User-RTMIC.bnk: clean, 3 machines load\n", ""},
        {"check with a finding", {"check", ToolData("legacy_row_id_not_one.bnk")}, 1,
         "legacy_row_id_not_one.bnk:10: error: the row's ID is not 1", ""},
        {"check of standard input", {"check", "-"}, 1, "<stdin>:10: error: ", "", rowIdNotOne},
        {"check as JSON", {"check", "--format", "json", "-"}, 1,
         "\"path\": \"<stdin>\",\n    \"line\": 10,\n    \"severity\": \"error\",\n"
         "    \"code\": \"row-skipped\"", "", rowIdNotOne},
        {"check as JSON, nothing found", {"check", "--format", "json", shipped}, 0, "[]\n", ""},
        {"check of a missing file", {"check", ToolData("missing.bnk")}, 2, "",
         "qzrbank: " + ToolData("missing.bnk") + ": "},
        {"info as JSON", {"info", "--format", "json", shipped + "/user-pro.bnk"}, 0,
         "\"kind\": \"OldIMMUserBank\"", ""},
        {"info as JSON of nothing readable", {"info", "--format", "json", ToolData("missing.bnk")},
         2, "[]\n", "missing.bnk: "},
        {"info as CSV of nothing readable", {"info", "--format", "csv", ToolData("missing.bnk")},
         2, "Path,Kind,Version,", "missing.bnk: "},
        {"an unknown option", {"list", "--bogus"}, 2, "", "qzrbank: "},
        {"an unknown kind", {"list", "--kind", "xyz"}, 2, "", "--kind"},
        {"a mistyped command", {"lsit"}, 2, "", "did you mean 'list'?"},
        {"no subcommand", {}, 2, "", "qzrbank: "},
        {"show without a grade", {"show", shipped, "Quillner"}, 2, "", "GRADE"},
        {"show of a missing machine", {"show", shipped, "Quillner", "QE-999"}, 1, "",
         "no machine \"Quillner - QE-999\""},
        // Blanks, quotes and backslashes reach the tool as they were given.
        {"an argument with quotes and backslashes", {"show", shipped, "Quillner", R"(6" \ x\)"},
         1, "", R"(no machine "Quillner - 6" \ x\")"},
        {"list of a missing folder", {"list", ToolData("none")}, 2, "", "none: "},
        // A path from the root is a path, not a Windows-style "/option".
        {"a folder named from the root", {"list", "/qzrbank-no-such-folder/Bank"}, 2, "",
         "/qzrbank-no-such-folder/Bank: "},
        {"help", {"--help"}, 0, "Usage: qzrbank [OPTIONS] SUBCOMMAND", ""},
        {"help of a command", {"check", "--help"}, 0, "Usage: qzrbank check ", ""},
        {"the version", {"--version"}, 0, "qzrbank ", ""},
    });
    // clang-format on
}

// Files the library refuses to read, and output that cannot be written, need tricks of POSIX.
TEST(Cli, UnreadableInputAndUnwritableOutputAreErrorsWithTheirReason) {
#if defined(_WIN32)
    GTEST_SKIP() << "FIFOs, /dev/zero, /dev/full and file modes are POSIX tricks";
#else
    const qzrbank_test::TempFolder folder;
    const std::string fifo = folder.File("fifo.bnk");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const std::string locked = folder.Write("locked.bnk", "[Header]\n");
    ::chmod(locked.c_str(), 0);
    // clang-format off
    std::vector<Row> rows = {
        {"a FIFO", {"check", fifo}, 2, "", "fifo.bnk: not a regular file"},
        {"a device", {"info", "/dev/zero"}, 2, "", "/dev/zero: not a regular file"},
    };
    // clang-format on
    if (::geteuid() != 0) {
        rows.push_back({"a file without read permission",
                        {"check", locked},
                        2,
                        "",
                        "locked.bnk: Permission denied"});
    }
    ExpectRows(rows);
    const std::string errors = folder.File("err.txt");
    EXPECT_EQ(qzrbank_test::RunProcess({QZRBANK_EXE, "list"}, "/dev/null", "/dev/full", errors), 2);
    EXPECT_EQ(qzrbank_test::ReadBytes(errors),
              "qzrbank: standard output: No space left on device\n");
#endif
}

}  // namespace

// The built qzrbank end to end: exit codes and the one-line errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tool/tool_test_support.h"

namespace {

using qzrbank_test::ToolData;

TEST(Cli, ExitCodesAndOneLineErrors) {
    struct Row {
        const char* label;
        std::vector<std::string> arguments;
        int exitCode;
        const char* stdoutPart;  // null: stdout empty
        const char* stderrPart;  // null: stderr empty
    };
    const std::string shipped = qzrbank_test::ExamplesBank();
    // clang-format off
    const std::vector<Row> rows = {
        {"list of the shipped banks", {"list"}, 0, " makers\n", nullptr},
        {"check of a clean bank", {"check", shipped + "/User-IMM.bnk"}, 0,
         ": clean, 6 machines load\n", nullptr},
        {"check with a finding", {"check", ToolData("legacy_row_id_not_one.bnk")}, 1,
         "legacy_row_id_not_one.bnk:10: row ID is 2, not 1", nullptr},
        {"check of a missing file", {"check", ToolData("missing.bnk")}, 2, nullptr,
         "missing.bnk: no such file"},
        {"info of a missing file", {"info", ToolData("missing.bnk")}, 2, nullptr,
         "missing.bnk: no such file"},
        {"an unknown option", {"list", "--bogus"}, 2, nullptr, "qzrbank: "},
        {"an unknown kind", {"list", "--kind", "xyz"}, 2, nullptr, "--kind"},
        {"no subcommand", {}, 2, nullptr, "qzrbank: "},
        {"show without a grade", {"show", shipped, "Quillner"}, 2, nullptr, "GRADE"},
        {"show of a missing machine", {"show", shipped, "Quillner", "QE-999"}, 1, nullptr,
         "no machine \"Quillner - QE-999\""},
        // Blanks, quotes and backslashes reach the tool as they were given.
        {"an argument with quotes and backslashes", {"show", shipped, "Quillner", R"(6" \ x\)"},
         1, nullptr, R"(no machine "Quillner - 6" \ x\")"},
        {"list of a missing folder", {"list", ToolData("none")}, 2, nullptr, "no such folder"},
        // A path from the root is a path, not a Windows-style "/option".
        {"a folder named from the root", {"list", "/qzrbank-no-such-folder/Bank"}, 2, nullptr,
         "no such folder"},
        {"help", {"--help"}, 0, "list", nullptr},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const qzrbank_test::RunResult result = qzrbank_test::RunQzrbank(row.arguments);
        EXPECT_EQ(result.exitCode, row.exitCode) << result.out << result.err;
        if (row.stdoutPart == nullptr) {
            EXPECT_EQ(result.out, "");
        } else {
            EXPECT_NE(result.out.find(row.stdoutPart), std::string::npos) << result.out;
        }
        if (row.stderrPart == nullptr) {
            EXPECT_EQ(result.err, "");
        } else {
            EXPECT_NE(result.err.find(row.stderrPart), std::string::npos) << result.err;
            EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        }
    }
}

}  // namespace

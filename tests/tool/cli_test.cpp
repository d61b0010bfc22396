// The built qzrbank end to end: exit codes and the one-line errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tool/tool_test_support.h"

namespace {

using qzrbank_test::Quote;
using qzrbank_test::ToolData;

TEST(Cli, ExitCodesAndOneLineErrors) {
    struct Row {
        const char* label;
        std::string arguments;
        int exitCode;
        const char* stdoutPart;  // null: stdout empty
        const char* stderrPart;  // null: stderr empty
    };
    const std::string shipped = qzrbank_test::ExamplesBank();
    const std::vector<Row> rows = {
        {"list of the shipped banks", "list", 0, " makers\n", nullptr},
        {"check of a clean bank", "check " + Quote(shipped + "/User-IMM.bnk"), 0,
         ": clean, 6 machines load\n", nullptr},
        {"check with a finding", "check " + Quote(ToolData("legacy_row_id_not_one.bnk")), 1,
         "legacy_row_id_not_one.bnk:10: row ID is 2, not 1", nullptr},
        {"check of a missing file", "check " + Quote(ToolData("missing.bnk")), 2, nullptr,
         "missing.bnk: no such file"},
        {"info of a missing file", "info " + Quote(ToolData("missing.bnk")), 2, nullptr,
         "missing.bnk: no such file"},
        {"an unknown option", "list --bogus", 2, nullptr, "qzrbank: "},
        {"an unknown kind", "list --kind xyz", 2, nullptr, "--kind"},
        {"no subcommand", "", 2, nullptr, "qzrbank: "},
        {"show without a grade", "show " + Quote(shipped) + " Quillner", 2, nullptr, "GRADE"},
        {"show of a missing machine", "show " + Quote(shipped) + " Quillner QE-999", 1, nullptr,
         "no machine \"Quillner - QE-999\""},
        {"list of a missing folder", "list " + Quote(ToolData("none")), 2, nullptr,
         "no such folder"},
        {"help", "--help", 0, "list", nullptr},
    };
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

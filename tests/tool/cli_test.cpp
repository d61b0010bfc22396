// The built qzrbank end to end: exit codes, the one-line errors, and the README's main command.
#include <gtest/gtest.h>

#include <algorithm>

#include <string>
#include <vector>

#include "tool/tool_test_support.h"

namespace {

using qzrbank_test::Quote;
using qzrbank_test::RunQzrbank;
using qzrbank_test::RunResult;
using qzrbank_test::ToolData;

size_t Lines(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}

TEST(Cli, ListWithoutArgumentsShowsTheShippedBanks) {
    const RunResult result = RunQzrbank("list");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.rfind("Kind  Maker", 0), 0u);
    for (const char* bank : {"Machine/IMM", "Machine/RTM", "User-IMM.bnk", "User-RTMIC.bnk",
                             "system-pro.bnk", "user-pro.bnk"}) {
        EXPECT_NE(result.out.find(bank), std::string::npos) << bank;
    }
    EXPECT_NE(result.out.find(" makers\n"), std::string::npos);
}

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
        const RunResult result = RunQzrbank(row.arguments);
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
            EXPECT_EQ(Lines(result.err), 1u) << result.err;
        }
    }
}

TEST(Cli, ConvertAndCheckTheResult) {
    qzrbank_test::TempFolder folder;
    const std::string output = folder / "User-IMM.bnk";
    const RunResult converted =
        RunQzrbank("convert " + Quote(ToolData("fixture/Bank/user-pro.bnk")) + " " + Quote(output));
    ASSERT_EQ(converted.exitCode, 0) << converted.err;
    const RunResult checked = RunQzrbank("check " + Quote(output));
    EXPECT_EQ(checked.exitCode, 0) << checked.out;
    EXPECT_EQ(checked.out, output + ": clean, 1 machine loads\n");
    const RunResult shown = RunQzrbank("show " + Quote(output) + " Pellinor \"PL 20\"");
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_NE(shown.out.find("Remark                           Bay 1, left\n"), std::string::npos);
}

}  // namespace

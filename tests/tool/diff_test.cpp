// diff: exit codes and what it prints, within a format and across the two.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "Commands.h"
#include "tool/tool_test_support.h"

namespace {

namespace fs = std::filesystem;

TEST(Diff, ExitCodesAndOutputAcrossFormats) {
    qzrbank_test::TempFolder folder;
    const std::string bank = qzrbank_test::ExamplesBank();
    const std::string edited = folder / "edited.bnk";
    fs::copy_file(bank + "/User-IMM.bnk", edited);
    qzrbank::EditOptions edit;
    edit.bank = edited;
    edit.maker = "Dravinsk";
    edit.grade = "DR 450";
    edit.assignments = {"ShotWeight=790", "Remark=hall C"};
    std::ostringstream ignored;
    ASSERT_EQ(qzrbank::RunSet(edit, ignored, ignored), 0);
    qzrbank::ConvertOptions convert{bank + "/user-pro.bnk", folder / "converted.bnk", false, true};
    ASSERT_EQ(qzrbank::RunConvert(convert, ignored, ignored), 0);

    struct Row {
        const char* label;
        std::string a;
        std::string b;
        const char* format;
        int exitCode;
        std::vector<const char*> lines;  // in the output, or on err for an error
    };
    const std::vector<Row> rows = {
        {"a bank and itself", edited, edited, "table", 0, {"6 machines, no differences\n"}},
        {"a legacy bank and its sectioned conversion",
         bank + "/user-pro.bnk",
         folder / "converted.bnk",
         "table",
         0,
         {"not compared (one format only): Controller, ShotVolume,", "no differences"}},
        {"an edit",
         bank + "/User-IMM.bnk",
         edited,
         "table",
         1,
         {"changed  Dravinsk  DR 450  Remark      \"\"       \"hall C\"\n",
          "changed  Dravinsk  DR 450  ShotWeight  785.1 g  790 g\n"}},
        {"an edit as JSON",
         bank + "/User-IMM.bnk",
         edited,
         "json",
         1,
         {"\"change\": \"changed\"", "\"attribute\": \"ShotWeight\",\n          \"a\": \"785.1\""}},
        {"other machines across formats",
         bank + "/User-IMM.bnk",
         bank + "/user-pro.bnk",
         "json",
         1,
         {"\"change\": \"removed\"", "\"change\": \"added\"", "\"notCompared\": [\n    \"Cont"}},
        {"a missing file",
         bank + "/User-IMM.bnk",
         folder / "none.bnk",
         "table",
         2,
         {"none.bnk: No such file or directory\n"}},
        {"no bank",
         bank + "/User-IMM.bnk",
         qzrbank_test::ToolData("header_unknown.bnk"),
         "table",
         2,
         {"not a bank"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(qzrbank::RunDiff({row.a, row.b, row.format}, out, err), row.exitCode);
        const std::string shown = row.exitCode == 2 ? err.str() : out.str();
        for (const char* line : row.lines) {
            EXPECT_NE(shown.find(line), std::string::npos) << line << " in\n" << shown;
        }
    }
}

}  // namespace

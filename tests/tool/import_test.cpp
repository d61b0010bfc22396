// import and diff: every example bank goes through export's CSV and JSON and an import into an
// empty bank without a difference; the modes and refusals of import on an existing bank; what diff
// prints and its exit codes, within a format and across the two.
#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "Commands.h"
#include "tool/tool_test_support.h"

namespace {

namespace fs = std::filesystem;
using qzrbank_test::Capture;
using qzrbank_test::ExamplesBank;
using qzrbank_test::Output;
using qzrbank_test::ReadBytes;
using qzrbank_test::TempFolder;

Output Import(const std::string& file, const std::string& bank,
              const std::function<void(qzrbank::ImportOptions&)>& set) {
    qzrbank::ImportOptions options;
    options.file = file;
    options.bank = bank;
    set(options);
    return Capture([&options](std::ostream& out, std::ostream& err) {
        return qzrbank::RunImport(options, out, err);
    });
}

TEST(Import, ExportedExampleBanksImportIntoAnEmptyBankWithoutADifference) {
    const std::string examples = ExamplesBank();
    std::vector<std::string> banks = {"User-IMM.bnk", "User-RTMIC.bnk", "system-pro.bnk",
                                      "user-pro.bnk"};
    for (const char* folder : {"Machine/IMM", "Machine/RTM"}) {
        for (const fs::directory_entry& entry : fs::directory_iterator(examples + "/" + folder)) {
            banks.push_back(std::string(folder) + "/" + entry.path().filename().string());
        }
    }
    for (const std::string& bank : banks) {
        for (const bool csv : {true, false}) {
            SCOPED_TRACE(bank + (csv ? " as CSV" : " as JSON"));
            const TempFolder folder;
            const std::string source = examples + "/" + bank;
            const Output exported = Capture([&](std::ostream& out, std::ostream& err) {
                return qzrbank::RunExport({source, csv ? "csv" : "json"}, out, err);
            });
            ASSERT_EQ(exported.exitCode, 0) << exported.err;
            const std::string target = folder.File("new.bnk");
            const Output imported =
                Import(folder.Write("machines.txt", exported.out), target,
                       [&bank](qzrbank::ImportOptions& options) {
                           options.newFormat =
                               bank.find("-pro.bnk") != std::string::npos ? "legacy" : "sectioned";
                       });
            ASSERT_EQ(imported.exitCode, 0) << imported.err << imported.out;
            const Output diff = Capture([&](std::ostream& out, std::ostream& err) {
                return qzrbank::RunDiff({source, target, "table"}, out, err);
            });
            EXPECT_EQ(diff.exitCode, 0) << diff.out << diff.err;
        }
    }
}

TEST(Import, ModesAndRefusals) {
    struct Row {
        const char* label;
        std::string file;  // CSV
        std::string onDuplicate;
        bool dryRun;
        int exitCode;
        const char* message;  // on out when 0, on err otherwise
        bool bankChanges;
    };
    const std::string header = "Maker,Grade,ShotWeight,Remark\n";
    const std::vector<Row> rows = {
        {"a machine the bank holds, by default", header + "dravinsk,DR 450,1,\n", "fail", false, 2,
         "line 2 (dravinsk - DR 450): the bank holds Dravinsk - DR 450", false},
        {"skip", header + "Dravinsk,DR 450,1,\nOrsted,O 1,2,\n", "skip", false, 0,
         "2 machines: 1 added, 0 replaced, 1 skipped", true},
        {"replace", header + "Dravinsk,DR 450,1,x\n", "replace", false, 0,
         "1 machine: 0 added, 1 replaced", true},
        {"a dry run", header + "Orsted,O 1,2,\n", "fail", true, 0, "would write", false},
        {"a character the code page lacks",
         header + "Orsted,O 1,2,\"Caf\xC3\xA9 \xE2\x82\xAC\"\nOrsted,O 2,2,\"\xE4\xB8\x80\"\n",
         "fail", false, 2, "line 3 (Orsted - O 2): Remark: the character at byte 0 has no cp1252",
         false},
        {"an unknown column", "Maker,Grade,Weight\nOrsted,O 1,2\n", "fail", false, 2,
         "line 2 (Orsted - O 1): unknown key \"Weight\"", false},
        {"a machine twice", header + "Orsted,O 1,2,\nORSTED,o 1,3,\n", "fail", false, 2,
         "line 3 (ORSTED - o 1): the file has this machine already, line 2", false},
        {"no grade", header + "Orsted,,2,\n", "fail", false, 2, "needs a maker and a grade", false},
        {"another kind of machine", "Kind,Maker,Grade\nRTM,Orsted,O 1\n", "fail", false, 2,
         "a machine of kind RTM for a bank of IMM machines", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const TempFolder folder;
        const std::string original = ReadBytes(ExamplesBank() + "/User-IMM.bnk");
        const std::string bank = folder.Write("User-IMM.bnk", original);
        const Output result =
            Import(folder.Write("in.csv", row.file), bank, [&row](qzrbank::ImportOptions& options) {
                options.onDuplicate = row.onDuplicate;
                options.dryRun = row.dryRun;
            });
        EXPECT_EQ(result.exitCode, row.exitCode) << result.err;
        EXPECT_NE((row.exitCode == 0 ? result.out : result.err).find(row.message),
                  std::string::npos)
            << result.out << result.err;
        EXPECT_EQ(folder.Read("User-IMM.bnk") != original, row.bankChanges);
    }
}

TEST(Diff, ExitCodesAndOutputAcrossFormats) {
    const TempFolder folder;
    const std::string bank = ExamplesBank();
    const std::string edited = folder.Write("edited.bnk", ReadBytes(bank + "/User-IMM.bnk"));
    qzrbank::EditOptions edit;
    edit.bank = edited;
    edit.maker = "Dravinsk";
    edit.grade = "DR 450";
    edit.assignments = {"ShotWeight=790", "Remark=hall C"};
    std::ostringstream ignored;
    ASSERT_EQ(qzrbank::RunSet(edit, ignored, ignored), 0);
    qzrbank::ConvertOptions convert{bank + "/user-pro.bnk", folder.File("converted.bnk"), false,
                                    true};
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
         folder.File("converted.bnk"),
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
         folder.File("none.bnk"),
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
        const Output result = Capture([&row](std::ostream& out, std::ostream& err) {
            return qzrbank::RunDiff({row.a, row.b, row.format}, out, err);
        });
        EXPECT_EQ(result.exitCode, row.exitCode);
        const std::string& shown = row.exitCode == 2 ? result.err : result.out;
        for (const char* line : row.lines) {
            EXPECT_NE(shown.find(line), std::string::npos) << line << " in\n" << shown;
        }
    }
}

}  // namespace

// import: every example bank goes through export's CSV and JSON and an import into an empty bank
// without a difference; the modes and refusals of import on an existing bank.
#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include <nlohmann/json.hpp>

#include <sstream>
#include <string>
#include <vector>

#include "BankFiles.h"
#include "BankLoading.h"
#include "Commands.h"
#include "MachineComparison.h"
#include "platform/CNumbers.h"
#include "tool/tool_test_support.h"

namespace {

namespace fs = std::filesystem;
using qzrbank_test::ReadFile;
using qzrbank_test::WriteFile;

std::string Export(const std::string& bank, bool csv) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(qzrbank::RunExport({bank, csv ? "csv" : "json"}, out, err), 0) << err.str();
    return out.str();
}

struct Output {
    int exitCode;
    std::string out;
    std::string err;
};

Output Import(qzrbank::ImportOptions options) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = qzrbank::RunImport(options, out, err);
    return {code, out.str(), err.str()};
}

qzrbank::ImportOptions Options(const std::string& file, const std::string& bank) {
    qzrbank::ImportOptions options;
    options.file = file;
    options.bank = bank;
    return options;
}

TEST(Import, ExportedExampleBanksImportIntoAnEmptyBankWithoutADifference) {
    const std::string examples = qzrbank_test::ExamplesBank();
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
            qzrbank_test::TempFolder folder;
            const std::string source = examples + "/" + bank;
            WriteFile(folder.Path() / "machines.txt", Export(source, csv));
            qzrbank::ImportOptions options = Options(folder / "machines.txt", folder / "new.bnk");
            options.newFormat = bank.find("-pro.bnk") != std::string::npos ? "legacy" : "sectioned";
            const Output imported = Import(options);
            ASSERT_EQ(imported.exitCode, 0) << imported.err << imported.out;
            std::ostringstream out;
            EXPECT_EQ(qzrbank::RunDiff({source, folder / "new.bnk", "table"}, out, out), 0)
                << out.str();
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
        qzrbank_test::TempFolder folder;
        const fs::path bank = folder.Path() / "User-IMM.bnk";
        fs::copy_file(qzrbank_test::ExamplesBank() + "/User-IMM.bnk", bank);
        WriteFile(folder.Path() / "in.csv", row.file);
        qzrbank::ImportOptions options = Options(folder / "in.csv", bank.string());
        options.onDuplicate = row.onDuplicate;
        options.dryRun = row.dryRun;
        const Output result = Import(options);
        EXPECT_EQ(result.exitCode, row.exitCode) << result.err;
        EXPECT_NE((row.exitCode == 0 ? result.out : result.err).find(row.message),
                  std::string::npos)
            << result.out << result.err;
        EXPECT_EQ(ReadFile(bank) != ReadFile(qzrbank_test::ExamplesBank() + "/User-IMM.bnk"),
                  row.bankChanges);
    }
}

}  // namespace

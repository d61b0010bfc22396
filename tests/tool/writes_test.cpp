// The honest write and the edits made through it: refusals that leave the disk untouched, losses
// caught before writing, and edits that read back as made.
#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "BankLoading.h"
#include "BankWrite.h"
#include "Commands.h"
#include "tool/tool_test_support.h"

namespace {

namespace fs = std::filesystem;
using qzrbank_test::ReadFile;

int Write(const CQZRMoldingMachineCtrl& catalogue, const qzrbank::WriteOptions& options,
          std::string* err) {
    std::ostringstream out;
    std::ostringstream errors;
    const int code = qzrbank::WriteBank(catalogue, options, out, errors);
    *err = errors.str();
    return code;
}

TEST(HonestWrite, RefusalsWriteNothing) {
    qzrbank_test::TempFolder folder;
    CQZRMoldingMachineCtrl small;
    qzrbank::PrepareForFormat(qzrbank::BankFormat::kSectionedIMM, &small);
    // One machine more than a sectioned load reads back, built in memory only.
    CQZRMoldingMachineCtrl huge(small);
    for (int i = 0; i <= qzrbank::kMostSectionedMachines; ++i) {
        CQZRIM machine;
        machine.SetMaker("Hollin");
        machine.SetGrade(("H-" + std::to_string(i)).c_str());
        ASSERT_TRUE(huge.AddMachine(machine));
    }
    qzrbank_test::WriteFile(folder.Path() / "taken.bnk", "keep\n");
    qzrbank_test::WriteFile(folder.Path() / "backed.bnk.bak", "keep\n");
    struct Row {
        const char* label;
        const CQZRMoldingMachineCtrl& catalogue;
        std::string output;
        const char* error;
    };
    const Row rows[] = {
        {"more machines than a sectioned load reads", huge, folder / "huge.bnk",
         "65536 machines: a sectioned bank of more than 65535"},
        {"an existing OUT without --force", small, folder / "taken.bnk", "exists (--force"},
        {"an existing OUT.bak without --force", small, folder / "backed.bnk",
         "backed.bnk.bak exists and would be replaced"},
        {"a folder", small, folder.Path().string(), "is a folder"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        qzrbank::WriteOptions options;
        options.output = row.output;
        std::string err;
        EXPECT_EQ(Write(row.catalogue, options, &err), qzrbank::kExitError);
        EXPECT_NE(err.find(row.error), std::string::npos) << err;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 2);
    EXPECT_EQ(ReadFile(folder.Path() / "taken.bnk"), "keep\n");
}

qzrbank::EditOptions Edit(const char* maker, const char* grade,
                          std::vector<std::string> assignments = {}, const char* newMaker = "",
                          const char* newGrade = "") {
    qzrbank::EditOptions options;
    options.maker = maker;
    options.grade = grade;
    options.assignments = std::move(assignments);
    options.newMaker = newMaker;
    options.newGrade = newGrade;
    return options;
}

using Runner = int (*)(const qzrbank::EditOptions&, std::ostream&, std::ostream&);

std::vector<CQZRIM> LoadIMM(qzrbank::BankLoad load, const std::string& path) {
    CQZRMoldingMachineCtrl catalogue;
    qzrbank::LoadBank(load, path, &catalogue);
    return qzrbank::IMMMachines(catalogue);
}

const CQZRIM* Find(const std::vector<CQZRIM>& machines, const char* maker, const char* grade) {
    for (const CQZRIM& machine : machines) {
        if (std::string(machine.GetMaker()) == maker && std::string(machine.GetGrade()) == grade) {
            return &machine;
        }
    }
    return nullptr;
}

// Each edit on a fresh copy of an example bank; an edit that succeeds keeps the previous bank
// as .bak and reads back as made, one that fails leaves the bank as it was.
TEST(Edits, ReadBackAsMadeOrLeaveTheBankAlone) {
    using qzrbank::BankLoad;
    using Check = std::function<bool(const std::vector<CQZRIM>&)>;
    const auto machineCount = [](size_t count) {
        return [count](const std::vector<CQZRIM>& m) { return m.size() == count; };
    };
    struct Row {
        const char* label;
        const char* bank;
        BankLoad load;
        Runner run;
        qzrbank::EditOptions options;
        int exitCode;
        const char* message;  // on err, or empty
        Check check;          // on the bank after a successful edit
    };
    const std::vector<Row> rows = {
        {"set by name and by sectioned key", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunSet,
         Edit("kemberline", "kl-140E",
              {"ShotWeight=123.4", "MaxInjectionPressure=-1e2", "Remark=new, text"}),
         0, "",
         [](const std::vector<CQZRIM>& m) {
             const CQZRIM* machine = Find(m, "Kemberline", "KL-140e");
             return machine != nullptr && machine->GetShotWeight() == 123.4 &&
                    machine->GetInjectionPressure() == -100.0 &&
                    std::string(machine->GetRemark()) == "new, text";
         }},
        {"a legacy bank rounds to two decimals", "user-pro.bnk", BankLoad::OldIMMUser,
         qzrbank::RunSet, Edit("Dravinsk", "DR 120", {"ShotWeight=12.345"}), 1,
         "not written: 5 of 6 machines read back intact (1 with values changed)", nullptr},
        {"an unknown key", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunSet,
         Edit("Dravinsk", "DR 450", {"ShotWieght=1"}), 2, "unknown key \"ShotWieght\"", nullptr},
        {"a bad number", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunSet,
         Edit("Dravinsk", "DR 450", {"ClampingForce=12x"}), 2,
         "ClampingForce \"12x\" is not a number", nullptr},
        {"a missing machine", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunRemove,
         Edit("Dravinsk", "DR 1"), 2, "no machine Dravinsk - DR 1", nullptr},
        {"add refuses a name there in other letter case", "User-IMM.bnk", BankLoad::IMMUser,
         qzrbank::RunAdd, Edit("DRAVINSK", "dr 450"), 2, "holds Dravinsk - DR 450 already",
         nullptr},
        {"add", "user-pro.bnk", BankLoad::OldIMMUser, qzrbank::RunAdd,
         Edit("Orsted", "O-1", {"ClampingForce=55", "NozzleSpecification.Type=3"}), 0, "",
         [](const std::vector<CQZRIM>& m) {
             const CQZRIM* machine = Find(m, "Orsted", "O-1");
             return m.size() == 7 && machine != nullptr && machine->GetClampingForce() == 55.0 &&
                    machine->GetNozzleSpecification().Type == 3;
         }},
        {"rm", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunRemove, Edit("Quillner", "QE-120 LS"),
         0, "", machineCount(5)},
        {"rename", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunRename,
         Edit("Dravinsk", "DR 450", {}, "Orsted", "O-450"), 0, "",
         [](const std::vector<CQZRIM>& m) {
             const CQZRIM* machine = Find(m, "Orsted", "O-450");
             return m.size() == 6 && Find(m, "Dravinsk", "DR 450") == nullptr &&
                    machine != nullptr && machine->GetClampingForce() > 0.0;
         }},
        {"rename onto another machine", "User-IMM.bnk", BankLoad::IMMUser, qzrbank::RunRename,
         Edit("Dravinsk", "DR 450", {}, "Dravinsk", "DR 700"), 2, "holds Dravinsk - DR 700",
         nullptr},
        {"a system bank", "system-pro.bnk", BankLoad::OldIMMSystem, qzrbank::RunRemove,
         Edit("Dravinsk", "DR 120"), 2, "this takes a user bank", nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        qzrbank_test::TempFolder folder;
        const fs::path bank = folder.Path() / row.bank;
        fs::copy_file(qzrbank_test::ExamplesBank() + "/" + row.bank, bank);
        const std::string original = ReadFile(bank);
        qzrbank::EditOptions options = row.options;
        options.bank = bank.string();
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(row.run(options, out, err), row.exitCode) << err.str() << out.str();
        EXPECT_NE(err.str().find(row.message), std::string::npos) << err.str();
        if (row.exitCode != 0) {
            EXPECT_TRUE(ReadFile(bank) == original);
            EXPECT_FALSE(fs::exists(bank.string() + ".bak"));
            continue;
        }
        EXPECT_TRUE(ReadFile(bank.string() + ".bak") == original);
        EXPECT_TRUE(row.check(LoadIMM(row.load, bank.string())));
    }
}

}  // namespace

// Small sectioned injection-moulding user banks written for a test, with texts in any code page.
#ifndef QZRBANK_TESTS_TOOL_TABULAR_BANK_H
#define QZRBANK_TESTS_TOOL_TABULAR_BANK_H

#include <string>
#include <vector>

#include "tool/tool_test_support.h"

namespace qzrbank_test {

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
    fs::create_directories(folder.Path() / "Bank");
    const std::string path = folder / "Bank/User-IMM.bnk";
    WriteFile(path, UserBankText(machines, remark));
    return path;
}

}  // namespace qzrbank_test

#endif  // QZRBANK_TESTS_TOOL_TABULAR_BANK_H

// qzrbank list on a bank folder whose names differ in letter case from the default bank paths,
// as a folder copied from Windows often does: every machine is listed, and each name found only
// in other case is reported once.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "Commands.h"
#include "tool/tool_test_support.h"

namespace {

using qzrbank_test::ReadBytes;
using qzrbank_test::TempFolder;
using qzrbank_test::ToolData;
namespace fs = std::filesystem;

std::string List(const std::string& dir, std::string* err) {
    qzrbank::ListOptions options;
    options.bankDir = dir;
    options.format = "csv";
    options.columns = "Kind,Maker,Grade,ClampingForce";  // the Bank column names the files as found
    std::ostringstream out;
    std::ostringstream errors;
    EXPECT_EQ(qzrbank::RunList(options, out, errors), 0);
    *err = errors.str();
    return out.str();
}

TEST(LetterCase, ListFindsEveryBankAndWarnsAboutEachName) {
    const TempFolder folder;
    const fs::path fixture = fs::path(ToolData("fixture")) / "Bank";
    const struct {
        const char* fixture;  // below the fixture's Bank folder
        const char* copy;     // below the temporary folder
    } files[] = {
        {"Machine/IMM/Varnholt.bnk", "bank/MACHINE/imm/Varnholt.bnk"},
        {"Machine/RTM/Ostfeld.bnk", "bank/MACHINE/RTM/Ostfeld.bnk"},
        {"User-IMM.bnk", "bank/user-imm.bnk"},
        {"user-pro.bnk", "bank/USER-PRO.BNK"},
    };
    for (const auto& file : files) {
        folder.Write(file.copy, ReadBytes(fixture / file.fixture));
    }
    std::string expectedErr;
    const std::string expected = List(ToolData("fixture"), &expectedErr);
    ASSERT_EQ(expectedErr, "");

    std::string err;
    EXPECT_EQ(List(folder.Folder(), &err), expected);
    const fs::path bank = fs::path(folder.Folder()) / "bank";
    const auto warning = [](const fs::path& path, const char* name) {
        return "qzrbank: " + path.string() + ": warning: found in place of " + name +
               " (names differ in letter case)\n";
    };
    EXPECT_EQ(err, warning(bank, "Bank") + warning(bank / "MACHINE", "Machine") +
                       warning(bank / "MACHINE" / "imm", "IMM") +
                       warning(bank / "user-imm.bnk", "User-IMM.bnk") +
                       warning(bank / "USER-PRO.BNK", "user-pro.bnk"));
}

}  // namespace

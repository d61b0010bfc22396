// Legacy tabular banks as files: how the two loaders scan a bank (markers, the version line,
// row IDs, the layout each version selects, bad files).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankBuilders.h"
#include "DataRows.h"
#include "TempFolder.h"
#include "bank/QZRMoldingMachineReader.h"

using qzr::bank::CQZRMoldingMachineReader;

namespace {

using qzr::test::Lines;
using qzr::test::TempFolder;

enum Loader { kSystem, kUser };

bool Load(Loader loader, const std::string& path, CQZRMoldingMachineCtrl* catalogue) {
    CQZRMoldingMachineReader reader;
    return loader == kSystem ? reader.ReadOldIMMSystemDatabase(path.c_str(), catalogue)
                             : reader.ReadOldIMMUserDatabase(path.c_str(), catalogue);
}

// "maker/grade:clamping force" of every machine, then the file attributes ("+": initialized).
std::string Loaded(const CQZRMoldingMachineCtrl& catalogue) {
    std::string text;
    CQZRIM m;
    for (int i = 0; i < catalogue.GetTotalMachine(); ++i) {
        if (catalogue.GetCurrentMachine(i, m)) {
            text += std::string(m.GetMaker()) + "/" + m.GetGrade() + ":" +
                    std::to_string(int(m.GetClampingForce())) + " ";
        }
    }
    return text + std::to_string(catalogue.GetFileVersion()) + "/" +
           std::to_string(catalogue.GetFileFormat()) + "/" +
           std::to_string(catalogue.GetFileType()) + (catalogue.IsDatabaseInitialize() ? "+" : "");
}

std::string UserHead(const std::string& version) {
    return Lines({"[Header]", "Version," + version, "", "[Database]"});
}
std::string SystemHead(const std::string& version) {
    return Lines(
        {"[Header],,,,,,,,,", "Version," + version + ",,,,", "TotalNo,2,,,,", "[Database],,,"});
}

// The rows of tests/data/legacy/scans.txt.
TEST(LegacyLoader, ScanCases) {
    const std::vector<qzr::test::DataRow> rows = qzr::test::ReadDataRows("legacy/scans.txt");
    ASSERT_FALSE(rows.empty());
    TempFolder folder;
    for (const qzr::test::DataRow& row : rows) {  // loader, result, loaded, bank
        const std::string& bank = row.fields[3];
        const std::string bytes =
            bank[0] == '@'
                ? qzr::test::ReadBytes(std::string(QZR_TEST_DATA_DIR) + "/legacy/" + bank.substr(1))
                : bank;
        CQZRMoldingMachineCtrl catalogue;
        EXPECT_EQ(Load(row.fields[0] == "system" ? kSystem : kUser, folder.Write("bank.bnk", bytes),
                       &catalogue),
                  row.fields[1] == "loads")
            << row.where;
        EXPECT_EQ(Loaded(catalogue), row.fields[2]) << row.where;
    }
}

// The first bank accepted into a catalogue decides its attributes; a later one changes only
// the version, through its version line.
TEST(LegacyLoader, SystemBankThenUserBank) {
    TempFolder folder;
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(Load(kSystem,
                     folder.Write("s.bnk", SystemHead("7007") + "1,O,O-1,,1,2,3,4,5,6,1,0.9"),
                     &catalogue));
    ASSERT_TRUE(Load(kUser,
                     folder.Write("u.bnk", UserHead("7004") + "1,U,U-1,,1,2,3,4,5,6,7,8,9,10"),
                     &catalogue));
    EXPECT_EQ(Loaded(catalogue), "O/O-1:1 U/U-1:1 7004/0/0+");
}

}  // namespace

// Legacy tabular banks as files: how the two loaders scan a bank (markers, the version line,
// row IDs, the layout each version selects, bad files).
#include <gtest/gtest.h>

#include <string>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankBuilders.h"
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
// A row of the 7005 layout after the given "ID,maker,grade".
std::string Row(const std::string& idMakerGrade) {
    return idMakerGrade +
           ",,100.00, 50.50,180.00, 95.30, 32.00,140.00,0.01,0.1,  0.00,2500.00,0,"
           "  1.00,0,  0.00,  0.00,  0.00,  0.00,  0.00,  0.00";
}
std::string DataFile(const char* name) {
    return qzr::test::ReadBytes(std::string(QZR_TEST_DATA_DIR) + "/legacy/" + name);
}

TEST(LegacyLoader, ScanCases) {
    // Its first trailing field shows the layout: 14 base, 11 for 7003, 10 for 7004, 1 for
    // 7005 and later, 12 for system 7007 and later.
    const std::string layoutRow = "1,M,G,r,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19\r\n";
    struct Case {
        const char* label;
        Loader loader;
        std::string content;
        bool result;
        const char* loaded;
    };
    const Case cases[] = {
        {"user bank", kUser, UserHead("7007") + Lines({Row("1,A,A-1"), Row("1,B,B-2"), "[EOF]"}),
         true, "A/A-1:100 B/B-2:100 7007/1/0+"},
        {"user rows: only ID 1; an ID that does not convert carries over", kUser,
         UserHead("7007") + Lines({Row("2,Two,2"), Row("1,One,1"), Row("x,Carried,1"),
                                   Row("3,Three,3"), Row(" ,After3,3")}),
         true, "One/1:100 Carried/1:100 7007/1/0+"},
        {"a row holding Version sets the version and is not loaded", kUser,
         UserHead("7007") +
             Lines({Row("1,A,A-1"), "1,5,B,a Version,1,2,3,4,5,6", "1,Base,B-1,,1,2,3,4,5,6"}),
         true, "A/A-1:100 Base/B-1:1 5/1/0+"},
        {"a version that does not convert means 1000", kUser, UserHead("x") + layoutRow, true,
         "M/G:14 1000/-1/0+"},
        {"user 7003", kUser, UserHead("7003") + layoutRow, true, "M/G:11 7003/1/0+"},
        {"user 7004", kUser, UserHead("7004") + layoutRow, true, "M/G:10 7004/1/0+"},
        {"user 7005", kUser, UserHead("7005") + layoutRow, true, "M/G:1 7005/1/0+"},
        {"system 7006", kSystem, SystemHead("7006") + layoutRow, true, "M/G:14 7006/0/0+"},
        {"system 7008", kSystem, SystemHead("7008") + layoutRow, true, "M/G:12 7008/0/0+"},
        {"TotalNo after the header fails a user load; earlier rows stay", kUser,
         DataFile("totalno_after_header.bnk"), false, "Alpha/A-100:100 7007/1/0+"},
        {"the system loader takes any ID, and TotalNo means nothing to it", kSystem,
         SystemHead("7006") + Lines({"2,K,K-1,,1,2,3,4,5,6", "TotalNo,3", "x,M,M-1,,1,2,3,4,5,6"}),
         true, "K/K-1:1 M/M-1:1 7006/0/0+"},
        {"the user loader's marker is Database]", kUser,
         Lines({"[Header]", "Version,7004", "", "[IMMDatabase]", "1,N,N-1,,1,2,3,4,5,6,7,8,9,10"}),
         true, "N/N-1:1 7004/1/0+"},
        {"the system loader needs [Database]", kSystem,
         Lines({"[Header],,,,,,,,,", "Version,7006", "TotalNo,1", "[IMMDatabase]",
                "1,N,N-1,,1,2,3,4,5,6"}),
         true, "7006/0/0+"},
        {"no [EOF]: the last row loads once", kUser, DataFile("no_eof.bnk"), true,
         "Alpha/A-100:100 Beta/B-200:100 7007/1/0+"},
        {"nothing after [EOF]", kSystem,
         SystemHead("7006") + Lines({"1,P,P-1,,1,2,3,4,5,6", "[EOF]", "1,R,R-1,,1,2,3,4,5,6"}),
         true, "P/P-1:1 7006/0/0+"},
        {"[EOF] right after the user marker", kUser,
         UserHead("7007") + Lines({"[EOF]", Row("1,S,S-1")}), true, "7007/1/0+"},
        {"Ctrl-Z ends the file", kUser, DataFile("ctrl_z_ends_file.bnk"), true,
         "Alpha/A-100:100 7007/1/0+"},
        {"a NUL ends the line", kUser, DataFile("nul_in_row.bnk"), true,
         "Beta/B-200:100 7007/1/0+"},
        {"1023 characters of a long row, the rest as the next", kSystem, DataFile("long_line.bnk"),
         true, "Tail/T-9:1 7006/0/0+"},
        {"user bank to the system loader", kSystem, UserHead("7007"), false, "0/0/0"},
        {"system bank to the user loader", kUser, SystemHead("7006"), false, "0/0/0"},
        {"sectioned bank", kUser,
         Lines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = 0"}), false, "0/0/0"},
        {"empty file", kSystem, "", false, "0/0/0"},
    };
    TempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        CQZRMoldingMachineCtrl catalogue;
        EXPECT_EQ(Load(c.loader, folder.Write("bank.bnk", c.content), &catalogue), c.result);
        EXPECT_EQ(Loaded(catalogue), c.loaded);
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

// list, show and info on a small bank folder: a system bank of each kind, a sectioned user
// bank whose maker is the system bank's in capitals, and a legacy user bank.
#include <gtest/gtest.h>

#include <algorithm>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "Commands.h"
#include "tool/tool_test_support.h"

namespace {

using qzrbank_test::ToolData;

struct Output {
    int exitCode;
    std::string out;
    std::string err;
};

Output List(qzrbank::ListOptions options) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = qzrbank::RunList(options, out, err);
    return {code, out.str(), err.str()};
}

qzrbank::ListOptions Fixture(const std::string& format = "table") {
    qzrbank::ListOptions options;
    options.bankDir = ToolData("fixture");
    options.format = format;
    return options;
}

const char kFixtureTable[] =
    "Kind  Maker     Grade     ClampingForce  ShotWeight  ShotVolume  Pressure  Diameter  Stroke  "
    "Bank\n"
    "IMM   Varnholt  VH-50                50       102.4       112.6       220        32     140  "
    "Machine/IMM\n"
    "IMM   Varnholt  VH-80                80       102.4       112.6       220        32     140  "
    "Machine/IMM\n"
    "IMM   Varnholt  VH-50 LS             55       102.4       112.6       220        32     140  "
    "User-IMM.bnk\n"
    "\n"
    "IMM   Pellinor  PL 20                20        50.5       112.6       180        32     140  "
    "user-pro.bnk\n"
    "\n"
    "RTM   Ostfeld   OF-40                70       168.2        88.5      17.4        32     110  "
    "Machine/RTM\n"
    "\n"
    "5 machines of 3 makers\n";

TEST(List, TableOfEveryBankGroupedByMaker) {
    const Output result = List(Fixture());
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, kFixtureTable);
    EXPECT_EQ(result.err, "");
}

TEST(List, TheBankFolderItselfAndItsParentGiveTheSameList) {
    qzrbank::ListOptions options = Fixture();
    options.bankDir = ToolData("fixture/Bank/");
    EXPECT_EQ(List(options).out, kFixtureTable);
}

TEST(List, CsvAndJsonCarryTheSameRows) {
    const Output csv = List(Fixture("csv"));
    EXPECT_EQ(csv.out,
              "Kind,Maker,Grade,ClampingForce,ShotWeight,ShotVolume,Pressure,Diameter,Stroke,Bank\n"
              "IMM,Varnholt,VH-50,50,102.4,112.6,220,32,140,Machine/IMM\n"
              "IMM,Varnholt,VH-80,80,102.4,112.6,220,32,140,Machine/IMM\n"
              "IMM,Varnholt,VH-50 LS,55,102.4,112.6,220,32,140,User-IMM.bnk\n"
              "IMM,Pellinor,PL 20,20,50.5,112.6,180,32,140,user-pro.bnk\n"
              "RTM,Ostfeld,OF-40,70,168.2,88.5,17.4,32,110,Machine/RTM\n");
    const nlohmann::json json = nlohmann::json::parse(List(Fixture("json")).out);
    ASSERT_EQ(json["Makers"].size(), 3u);
    EXPECT_EQ(json["Makers"][0]["Maker"], "Varnholt");
    EXPECT_EQ(json["Makers"][0]["Machines"].size(), 3u);
    EXPECT_EQ(json["Makers"][0]["Machines"][2]["Bank"], "User-IMM.bnk");
    EXPECT_EQ(json["Makers"][2]["Kind"], "RTM");
    EXPECT_DOUBLE_EQ(json["Makers"][2]["Machines"][0]["Pressure"].get<double>(), 17.4);
}

TEST(List, KindAndMakerFilters) {
    struct Row {
        const char* label;
        const char* kind;
        const char* maker;  // null: every maker
        int exitCode;
        std::string csvRows;  // after the header line
    };
    const std::vector<Row> rows = {
        {"transfer moulding only", "rtm", nullptr, 0,
         "RTM,Ostfeld,OF-40,70,168.2,88.5,17.4,32,110,Machine/RTM\n"},
        {"a maker in other case letters", "all", "vARNHOLT", 0,
         "IMM,Varnholt,VH-50,50,102.4,112.6,220,32,140,Machine/IMM\n"
         "IMM,Varnholt,VH-80,80,102.4,112.6,220,32,140,Machine/IMM\n"
         "IMM,Varnholt,VH-50 LS,55,102.4,112.6,220,32,140,User-IMM.bnk\n"},
        {"a maker of the other kind", "rtm", "Varnholt", 1, ""},
        {"no such maker", "all", "Nobody", 1, ""},
        {"the name rule does not trim", "all", "Varnholt ", 1, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        qzrbank::ListOptions options = Fixture("csv");
        options.kind = row.kind;
        if (row.maker != nullptr) {
            options.maker = row.maker;
        }
        const Output result = List(options);
        EXPECT_EQ(result.exitCode, row.exitCode);
        if (row.exitCode == 0) {
            EXPECT_EQ(result.out.substr(result.out.find('\n') + 1), row.csvRows);
        } else {
            EXPECT_EQ(result.out, "");
            EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        }
    }
}

TEST(List, AFolderWithoutBanksIsAnError) {
    qzrbank::ListOptions options;
    options.bankDir = ToolData("no_such_folder");
    const Output missing = List(options);
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_NE(missing.err.find("no such folder"), std::string::npos);
    options.bankDir = ToolData("fixture/Bank/Machine");
    const Output empty = List(options);
    EXPECT_EQ(empty.exitCode, 2);
    EXPECT_NE(empty.err.find("neither a \"Bank\" folder"), std::string::npos);
}

// Banks the folder holds but their loaders refuse or pass over are named on stderr; the rest
// still lists.
TEST(List, ARefusedBankIsAWarning) {
    qzrbank_test::TempFolder folder;
    std::filesystem::create_directories(folder.Path() / "Bank");
    std::filesystem::copy_file(ToolData("fixture/Bank/user-pro.bnk"),
                               folder.Path() / "Bank" / "user-pro.bnk");
    std::filesystem::copy_file(ToolData("header_unknown.bnk"),
                               folder.Path() / "Bank" / "User-IMM.bnk");
    // A legacy bank among the sectioned system banks: the folder load passes over it.
    std::filesystem::create_directories(folder.Path() / "Bank" / "Machine" / "IMM");
    std::filesystem::copy_file(ToolData("fixture/Bank/Machine/IMM/Varnholt.bnk"),
                               folder.Path() / "Bank" / "Machine" / "IMM" / "a.bnk");
    std::filesystem::copy_file(ToolData("fixture/Bank/user-pro.bnk"),
                               folder.Path() / "Bank" / "Machine" / "IMM" / "b.BNK");
    qzrbank::ListOptions options;
    options.bankDir = folder.Path().string();
    options.format = "csv";
    const Output result = List(options);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("Pellinor,PL 20"), std::string::npos);
    EXPECT_NE(result.err.find("User-IMM.bnk: refused by its loader"), std::string::npos);
    EXPECT_NE(result.err.find("b.BNK: not a bank of kind IMMSystemBankFiles; the folder load "
                              "skips it"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 2) << result.err;
    EXPECT_NE(result.out.find("Varnholt,VH-80,80"), std::string::npos);
}

Output Show(const std::string& bank, const char* maker, const char* grade,
            const char* format = "text") {
    std::ostringstream out;
    std::ostringstream err;
    const int code = qzrbank::RunShow({bank, maker, grade, format}, out, err);
    return {code, out.str(), err.str()};
}

TEST(Show, EveryAttributeWithTheLegacyUnits) {
    const Output result = Show(ToolData("fixture"), "pellinor", "pl 20");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const char* expectedLines[] = {
        "Kind                             IMM\n",
        "Bank                             user-pro.bnk\n",
        "Remark                           Bay 1, left\n",
        "ClampingForce                    20 ton\n",
        "ShotWeight                       50.5 g\n",
        "InjectionPressure                180 MPa\n",
        "InjectionRate                    95.3 cc/s\n",
        "ScrewDiameter                    32 mm\n",
        "ShotVolume                       112.6\n",
        "TimeConstIP                      0.1 sec\n",
        "NozzleVolume                     0 cm3\n",
        "NozzleSpecification.Value6       0\n",
        "ScrewType\n",
    };
    for (const char* line : expectedLines) {
        EXPECT_NE(result.out.find(line), std::string::npos) << line << "\nin\n" << result.out;
    }
    // The kind, the bank, the 9 attributes of every record and the 39 of an injection-moulding one.
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 2 + 9 + 39);
}

TEST(Show, AFileOrAFolderOfEitherKindAndJson) {
    const Output rtm =
        Show(ToolData("fixture/Bank/Machine/RTM/Ostfeld.bnk"), "OSTFELD", "of-40", "json");
    ASSERT_EQ(rtm.exitCode, 0) << rtm.err;
    const nlohmann::json json = nlohmann::json::parse(rtm.out);
    EXPECT_EQ(json["Kind"], "RTM");
    EXPECT_EQ(json["Maker"], "Ostfeld");
    EXPECT_EQ(json["Remark"], "Bench press");
    EXPECT_EQ(json["Controller"], 4);
    EXPECT_DOUBLE_EQ(json["TransferPressure"].get<double>(), 17.4);
    EXPECT_TRUE(json["Units"].empty());

    const Output fromFolder = Show(ToolData("fixture"), "Varnholt", "VH-50 LS");
    EXPECT_EQ(fromFolder.exitCode, 0);
    EXPECT_NE(fromFolder.out.find("Bank                             User-IMM.bnk\n"),
              std::string::npos);
    EXPECT_NE(fromFolder.out.find("Maker                            VARNHOLT\n"),
              std::string::npos);
}

TEST(Show, FailuresAreOneLineOnStderr) {
    struct Row {
        const char* label;
        std::string bank;
        int exitCode;
        const char* error;
    };
    const std::vector<Row> rows = {
        {"no such machine", ToolData("fixture"), 1, "no machine \"Varnholt - VH-999\""},
        {"no such file", ToolData("missing.bnk"), 2, "no such file or folder"},
        {"not a bank", ToolData("header_unknown.bnk"), 2, "not a bank"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const Output result = Show(row.bank, "Varnholt", "VH-999");
        EXPECT_EQ(result.exitCode, row.exitCode);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(row.error), std::string::npos) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
    }
}

TEST(Info, KindHeaderAndMachinesPerFile) {
    const std::string userImm = ToolData("fixture/Bank/User-IMM.bnk");
    const std::string userPro = ToolData("fixture/Bank/user-pro.bnk");
    const std::string notABank = ToolData("header_unknown.bnk");
    const std::string failing = ToolData("legacy_totalno_in_user_bank.bnk");
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(qzrbank::RunInfo({userImm, userPro, notABank, failing}, out, err), 0);
    EXPECT_EQ(out.str(), userImm +
                             "\n"
                             "  Kind          IMMUserBank (3)\n"
                             "  Version       9000\n"
                             "  Format        1 (user bank)\n"
                             "  Type          0 (injection moulding)\n"
                             "  Machines      1\n"
                             "  CreateDate    Sat Mar 01 10:00:00 2025\n"
                             "  CreateBy      Test bench\n"
                             "  Remark        Crafted bank\n"
                             "  TotalMachine  1\n"
                             "\n" +
                             userPro +
                             "\n"
                             "  Kind      OldIMMUserBank (1)\n"
                             "  Version   7007\n"
                             "  Format    1 (user bank)\n"
                             "  Type      0 (injection moulding)\n"
                             "  Machines  1\n"
                             "\n" +
                             notABank +
                             "\n"
                             "  Kind  not a bank (line 1 holds neither \"[Header]\" nor "
                             "\"[FileHeader]\")\n"
                             "\n" +
                             failing +
                             "\n"
                             "  Kind      OldIMMUserBank (1)\n"
                             "  Version   7007\n"
                             "  Format    1 (user bank)\n"
                             "  Type      0 (injection moulding)\n"
                             "  Machines  1 (the loader fails)\n");
    EXPECT_EQ(err.str(), "");
}

TEST(Info, LegacySystemBankAndAMissingFile) {
    std::ostringstream out;
    std::ostringstream err;
    const std::string system = qzrbank_test::ExamplesBank() + "/system-pro.bnk";
    EXPECT_EQ(qzrbank::RunInfo({system, ToolData("missing.bnk")}, out, err), 2);
    EXPECT_NE(out.str().find("  Kind      OldIMMSystemBank (0)\n"), std::string::npos);
    EXPECT_NE(out.str().find("  TotalNo   12\n"), std::string::npos);
    EXPECT_EQ(err.str(), "qzrbank: " + ToolData("missing.bnk") + ": no such file\n");
}

}  // namespace

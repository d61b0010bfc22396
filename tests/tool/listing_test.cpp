// list, show and info on a small bank folder: a system bank of each kind, a sectioned user
// bank whose maker is the system bank's in capitals, and a legacy user bank.
#include <gtest/gtest.h>

#include <algorithm>

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

// Sorted by maker and grade, whatever the kind; the Bank column names the file of each machine.
const char kFixtureTable[] =
    "Kind  Maker     Grade     ClampingForce [ton]  ShotWeight [g]  ShotVolume  Pressure  "
    "Diameter [mm]  Stroke [mm]  Bank\n"
    "RTM   Ostfeld   OF-40                      70           168.2        88.5      17.4  "
    "           32          110  Ostfeld.bnk\n"
    "\n"
    "IMM   Pellinor  PL 20                      20            50.5       112.6     180.0  "
    "           32          140  user-pro.bnk\n"
    "\n"
    "IMM   Varnholt  VH-50                      50           102.4       112.6     220.0  "
    "           32          140  Varnholt.bnk\n"
    "IMM   Varnholt  VH-50 LS                   55           102.4       112.6     220.0  "
    "           32          140  User-IMM.bnk\n"
    "IMM   Varnholt  VH-80                      80           102.4       112.6     220.0  "
    "           32          140  Varnholt.bnk\n"
    "\n"
    "5 machines of 3 makers\n";

TEST(List, TableOfEveryBankGroupedByMaker) {
    const Output result = List(Fixture());
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, kFixtureTable);
    EXPECT_EQ(result.err, "");
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
         "RTM,Ostfeld,OF-40,70,168.2,88.5,17.4,32,110,Ostfeld.bnk\n"},
        {"a maker in other case letters", "all", "vARNHOLT", 0,
         "IMM,Varnholt,VH-50,50,102.4,112.6,220,32,140,Varnholt.bnk\n"
         "IMM,Varnholt,VH-50 LS,55,102.4,112.6,220,32,140,User-IMM.bnk\n"
         "IMM,Varnholt,VH-80,80,102.4,112.6,220,32,140,Varnholt.bnk\n"},
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
        EXPECT_EQ(result.out.substr(result.out.find('\n') + 1), row.csvRows);
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), row.exitCode)
            << result.err;
    }
}

TEST(Show, EveryAttributeWithTheLegacyUnits) {
    std::ostringstream out;
    std::ostringstream err;
    ASSERT_EQ(qzrbank::RunShow({ToolData("fixture"), "pellinor", "pl 20", "text"}, out, err), 0)
        << err.str();
    const std::string shown = out.str();
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
        EXPECT_NE(shown.find(line), std::string::npos) << line << "\nin\n" << shown;
    }
    // The kind, the bank, the 9 attributes of every record and the 39 of an injection-moulding one.
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 2 + 9 + 39);
}

TEST(Info, KindHeaderAndMachinesPerFile) {
    const std::string userImm = ToolData("fixture/Bank/User-IMM.bnk");
    const std::string notABank = ToolData("header_unknown.bnk");
    const std::string failing = ToolData("legacy_totalno_in_user_bank.bnk");
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(qzrbank::RunInfo({{userImm, notABank, failing}}, out, err), 0);
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
                             notABank +
                             "\n"
                             "  Kind  not a bank (no loader recognises its header)\n"
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

}  // namespace

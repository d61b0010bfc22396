// list, show, info and export on a small bank folder (a system bank of each kind, a sectioned
// user bank whose maker is the system bank's in capitals, a legacy user bank) and on user banks
// made for a test: chosen columns, sorting, numeric conditions, tables aligned by display width
// with units and fixed decimals, and empty results.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "Commands.h"
#include "tool/tool_test_support.h"

namespace {

using qzrbank_test::Capture;
using qzrbank_test::Output;
using qzrbank_test::TempFolder;
using qzrbank_test::ToolData;

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

struct ListRow {
    const char* label;
    bool fixture;  // the fixture folder, or the test's own bank
    std::function<void(qzrbank::ListOptions&)> set;
    int exitCode;
    std::string out;
};

TEST(List, SelectsFiltersSortsAndAligns) {
    const TempFolder folder;
    // cp932 makers: "日本" takes four columns in a terminal, its bytes four as well, its UTF-8 six.
    qzrbank_test::WriteUserBank(folder, {{"Kato", "K-9", 9.5, 1.23456},
                                         {"\x93\xFA\x96\x7B", "N-10", 10, 2},
                                         {"Kato", "K-100", 100, 0.5}});
    const std::vector<ListRow> rows = {
        {"every bank of the fixture grouped by maker", true, [](auto&) {}, 0, kFixtureTable},
        {"transfer moulding only", true,
         [](auto& o) {
             o.format = "csv";
             o.kind = "rtm";
             o.columns = "Grade,Bank";
         },
         0, "Grade,Bank\nOF-40,Ostfeld.bnk\n"},
        {"a maker in other case letters", true,
         [](auto& o) {
             o.format = "csv";
             o.maker = "vARNHOLT";
             o.columns = "Maker,Grade,Bank";
         },
         0,
         "Maker,Grade,Bank\nVarnholt,VH-50,Varnholt.bnk\nVarnholt,VH-50 LS,User-IMM.bnk\n"
         "Varnholt,VH-80,Varnholt.bnk\n"},
        {"the name rule does not trim", true,
         [](auto& o) {
             o.format = "csv";
             o.maker = "Varnholt ";
             o.columns = "Grade";
         },
         1, "Grade\n"},
        {"wide characters, units, decimals capped at 3", false,
         [](auto& o) { o.columns = "Maker,Grade,ClampingForce,ShotWeight"; }, 0,
         "Maker  Grade  ClampingForce [ton]  ShotWeight [g]\n"
         "Kato   K-9                    9.5           1.235\n"
         "Kato   K-100                100.0           0.500\n"
         "\n"
         "日本   N-10                  10.0           2.000\n"
         "\n"
         "3 machines of 2 makers\n"},
        {"numeric column sorts as numbers, by sectioned key", false,
         [](auto& o) {
             o.format = "csv";
             o.columns = "grade,clampingforce,MaxInjectionPressure,Kind,Bank";
             o.sort = "ClampingForce";
         },
         0,
         "Grade,ClampingForce [ton],InjectionPressure [MPa],Kind,Bank\n"
         "K-9,9.5,0,IMM,User-IMM.bnk\nN-10,10.0,0,IMM,User-IMM.bnk\n"
         "K-100,100.0,0,IMM,User-IMM.bnk\n"},
        {"conditions all hold", false,
         [](auto& o) {
             o.format = "csv";
             o.columns = "Grade";
             o.where = {"ClampingForce>=10", "ShotWeight < 2.5", "Stroke=0"};
         },
         0, "Grade\nK-100\nN-10\n"},
        {"empty result in JSON", false,
         [](auto& o) {
             o.format = "json";
             o.where = {"ClampingForce>100"};
         },
         0, "[]\n"},
        {"empty result in CSV", false,
         [](auto& o) {
             o.format = "csv";
             o.columns = "Maker";
             o.where = {"ShotWeight<=0.4"};
         },
         0, "Maker\n"},
        {"JSON numbers in full", false,
         [](auto& o) {
             o.format = "json";
             o.columns = "ShotWeight,Grade";
             o.sort = "ShotWeight", o.where = {"ShotWeight<1"};
         },
         0, "[\n  {\n    \"ShotWeight\": 0.5,\n    \"Grade\": \"K-100\"\n  }\n]\n"},
        {"no such column", false, [](auto& o) { o.columns = "Maker,Colour"; }, 2, ""},
        {"condition on a text column", false, [](auto& o) { o.where = {"Maker>3"}; }, 2, ""},
        {"condition without a number", false, [](auto& o) { o.where = {"ClampingForce>="}; }, 2,
         ""},
        {"condition with more than a number", false, [](auto& o) { o.where = {"Stroke<1mm"}; }, 2,
         ""},
    };
    for (const ListRow& row : rows) {
        SCOPED_TRACE(row.label);
        qzrbank::ListOptions options;
        options.bankDir = row.fixture ? ToolData("fixture") : folder.Folder();
        options.encoding = "cp932";
        row.set(options);
        const Output result = Capture([&options](std::ostream& out, std::ostream& err) {
            return qzrbank::RunList(options, out, err);
        });
        EXPECT_EQ(result.exitCode, row.exitCode) << result.err;
        EXPECT_EQ(result.out, row.out);
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), row.exitCode == 0 ? 0 : 1)
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

std::vector<std::string> CsvLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// The cells of a CSV line, quoted cells unquoted.
std::vector<std::string> CsvCells(const std::string& line) {
    std::vector<std::string> cells(1);
    bool quoted = false;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') {
            quoted = !quoted;
            if (!quoted && i + 1 < line.size() && line[i + 1] == '"') {
                cells.back() += '"';
            }
        } else if (line[i] == ',' && !quoted) {
            cells.emplace_back();
        } else {
            cells.back() += line[i];
        }
    }
    return cells;
}

std::string Export(const std::string& bank, const std::string& format) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(qzrbank::RunExport({bank, format, "cp1252"}, out, err), 0) << err.str();
    return out.str();
}

TEST(Export, WritesEveryFieldDecodedWithNumbersThatReadBack) {
    const TempFolder folder;
    std::string text = qzrbank_test::UserBankText({{"Caf\xE9, \"Nord\"", "G1", 10, 5}});
    text.replace(text.find("5.000000"), 8, "0.30000000000000004");
    const std::string bank = folder.Write("user.bnk", text);
    const std::vector<std::string> csv = CsvLines(Export(bank, "csv"));
    ASSERT_EQ(csv.size(), 2u);
    EXPECT_EQ(csv[1].rfind("IMM,\"Caf\u00E9, \"\"Nord\"\"\",G1,", 0), 0u) << csv[1];
    EXPECT_NE(csv[1].find(",0.30000000000000004,"), std::string::npos) << csv[1];

    const std::string json = Export(bank, "json");
    EXPECT_NE(json.find("\"Maker\": \"Caf\u00E9, \\\"Nord\\\"\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"ShotWeight\": 0.30000000000000004,"), std::string::npos);
    EXPECT_EQ(json.find("PlungerDiameter"), std::string::npos) << "a field of the other kind";
}

TEST(Export, GivesBothKindsOneColumnSet) {
    const std::vector<std::string> csv = CsvLines(Export(qzrbank_test::ToolData("fixture"), "csv"));
    ASSERT_EQ(csv.size(), 6u);
    const std::vector<std::string> header = CsvCells(csv[0]);
    const auto column = [&header](const char* name) {
        return std::find(header.begin(), header.end(), name) - header.begin();
    };
    for (size_t line = 1; line < csv.size(); ++line) {
        const std::vector<std::string> cells = CsvCells(csv[line]);
        SCOPED_TRACE(csv[line]);
        ASSERT_EQ(cells.size(), header.size());
        const bool rtm = cells[0] == "RTM";
        EXPECT_EQ(cells[column("ScrewDiameter")].empty(), rtm);
        EXPECT_EQ(cells[column("PlungerDiameter")].empty(), !rtm);
        EXPECT_EQ(cells[column("ClampingForce")].empty(), false);
    }
    EXPECT_EQ(column("MachineID"), static_cast<long>(header.size())) << "no catalogue numbers";
}

}  // namespace

// qzrbank list as bank keepers use it: chosen columns, sorting, numeric conditions, tables
// aligned by display width with units and fixed decimals, and empty results.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>

#include "Commands.h"
#include "tool/tabular_bank.h"

namespace {

struct ListRow {
    const char* label;
    std::function<void(qzrbank::ListOptions&)> set;
    int exitCode;
    std::string out;
};

TEST(Tabular, ListSelectsSortsAndAligns) {
    const qzrbank_test::TempFolder folder;
    // cp932 makers: "日本" takes four columns in a terminal, its bytes four as well, its UTF-8 six.
    qzrbank_test::WriteUserBank(folder, {{"Kato", "K-9", 9.5, 1.23456},
                                         {"\x93\xFA\x96\x7B", "N-10", 10, 2},
                                         {"Kato", "K-100", 100, 0.5}});
    const std::vector<ListRow> rows = {
        {"wide characters, units, decimals capped at 3",
         [](auto& o) { o.columns = "Maker,Grade,ClampingForce,ShotWeight"; }, 0,
         "Maker  Grade  ClampingForce [ton]  ShotWeight [g]\n"
         "Kato   K-9                    9.5           1.235\n"
         "Kato   K-100                100.0           0.500\n"
         "\n"
         "日本   N-10                  10.0           2.000\n"
         "\n"
         "3 machines of 2 makers\n"},
        {"numeric column sorts as numbers, by sectioned key",
         [](auto& o) {
             o.format = "csv";
             o.columns = "grade,clampingforce,MaxInjectionPressure,Kind,Bank";
             o.sort = "ClampingForce";
         },
         0,
         "Grade,ClampingForce [ton],InjectionPressure [MPa],Kind,Bank\n"
         "K-9,9.5,0,IMM,User-IMM.bnk\nN-10,10.0,0,IMM,User-IMM.bnk\n"
         "K-100,100.0,0,IMM,User-IMM.bnk\n"},
        {"conditions all hold",
         [](auto& o) {
             o.format = "csv";
             o.columns = "Grade";
             o.where = {"ClampingForce>=10", "ShotWeight < 2.5", "Stroke=0"};
         },
         0, "Grade\nK-100\nN-10\n"},
        {"empty result in JSON",
         [](auto& o) {
             o.format = "json";
             o.where = {"ClampingForce>100"};
         },
         0, "[]\n"},
        {"empty result in CSV",
         [](auto& o) {
             o.format = "csv";
             o.columns = "Maker";
             o.where = {"ShotWeight<=0.4"};
         },
         0, "Maker\n"},
        {"JSON numbers in full",
         [](auto& o) {
             o.format = "json";
             o.columns = "ShotWeight,Grade";
             o.sort = "ShotWeight", o.where = {"ShotWeight<1"};
         },
         0, "[\n  {\n    \"ShotWeight\": 0.5,\n    \"Grade\": \"K-100\"\n  }\n]\n"},
        {"no such column", [](auto& o) { o.columns = "Maker,Colour"; }, 2, ""},
        {"condition on a text column", [](auto& o) { o.where = {"Maker>3"}; }, 2, ""},
        {"condition without a number", [](auto& o) { o.where = {"ClampingForce>="}; }, 2, ""},
        {"condition with more than a number", [](auto& o) { o.where = {"Stroke<1mm"}; }, 2, ""},
    };
    for (const ListRow& row : rows) {
        SCOPED_TRACE(row.label);
        qzrbank::ListOptions options;
        options.bankDir = folder.Path().string();
        options.encoding = "cp932";
        row.set(options);
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(qzrbank::RunList(options, out, err), row.exitCode) << err.str();
        EXPECT_EQ(out.str(), row.out);
    }
}

}  // namespace

namespace {

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

TEST(Tabular, ExportWritesEveryFieldDecodedWithNumbersThatReadBack) {
    const qzrbank_test::TempFolder folder;
    std::string text = qzrbank_test::UserBankText({{"Caf\xE9, \"Nord\"", "G1", 10, 5}});
    text.replace(text.find("5.000000"), 8, "0.30000000000000004");
    qzrbank_test::WriteFile(folder / "user.bnk", text);
    const std::vector<std::string> csv = CsvLines(Export(folder / "user.bnk", "csv"));
    ASSERT_EQ(csv.size(), 2u);
    EXPECT_EQ(csv[1].rfind("IMM,\"Caf\u00E9, \"\"Nord\"\"\",G1,", 0), 0u) << csv[1];
    EXPECT_NE(csv[1].find(",0.30000000000000004,"), std::string::npos) << csv[1];

    const std::string json = Export(folder / "user.bnk", "json");
    EXPECT_NE(json.find("\"Maker\": \"Caf\u00E9, \\\"Nord\\\"\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"ShotWeight\": 0.30000000000000004,"), std::string::npos);
    EXPECT_EQ(json.find("PlungerDiameter"), std::string::npos) << "a field of the other kind";
}

TEST(Tabular, ExportGivesBothKindsOneColumnSet) {
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

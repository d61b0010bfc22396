// The legacy row parser: fields counted back from the row's end, the remark recovered from the
// row text, the derived shot volume, and agreement with the literal oracle (its numbers
// through the C conversions) on generated rows.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/legacy/OldRowParser.h"
#include "legacy_row_oracle.h"

namespace qzr::legacy {
namespace {

using testing::LegacyFields;
using testing::OracleParseOldRow;
using L = OldRowLayout;

constexpr OldRowLayout kAllLayouts[] = {L::kBase, L::kUser7003, L::kUser7004, L::kUser7005,
                                        L::kSystem7007};

// A record whose every legacy attribute differs from its default, to see what a row sets.
CQZRIM FilledMachine() {
    CQZRIM m;
    OracleParseOldRow(
        "0,Old,OldG,old,-1,-2,-3,-4,-5,-6,-7,-8,-9,-10,-11,-12,-13,-14,-15,-16,-17,-18,-19",
        L::kUser7005, m);
    return m;
}

bool Parse(const std::string& row, OldRowLayout layout, CQZRIM& machine) {
    return CQZRMoldingMachineReader().ParseOldIMMRow(row.c_str(), layout, machine);
}

TEST(LegacyRowParser, RowsOfEveryLayout) {
    struct Row {
        const char* label;
        OldRowLayout layout;
        std::string row;
        const char* fields;  // LegacyFields of the record, compared as far as this text goes
    };
    const Row rows[] = {
        {"an empty field is no token: the fields after it move", L::kBase,
         "1,Alpha,A-100,note,100,,180,95,32,140", "[Alpha|A-100|] -1 100 180 95 32 140 112.6 -7"},
        {"remark with commas, blanks and an empty field", L::kBase,
         "1,Alpha,A-100,a, b,,c,100,50,180,95,32,140\n",
         "[Alpha|A-100|a, b,,c] 100 50 180 95 32 140"},
        {"maker equals grade: the remark starts after the grade field", L::kBase,
         "1,X9,X9,after grade,10,20,30,40,25,100\n",
         "[X9|X9|after grade] 10 20 30 40 25 100 49.09"},
        {"the grade text is first found inside the ID", L::kBase,
         "12,Al,2,rem,10,20,30,40,25,100\n", "[Al|2|Al,2,rem]"},
        {"blanks, CR and junk after numbers", L::kBase,
         "1, Beta , B 2 ,  spaced  , 10.5t,  20g,30MPa,40 ,25.0,100\r\n",
         "[ Beta | B 2 |  spaced  ] 10.5 20 30 40 25 100 49.09"},
        {"delimiters before the ID", L::kBase, ",,\n7,Eps,E1,x,1,2,3,4,120,600",
         "[Eps|E1|x] 1 2 3 4 120 600 6786 -7"},
        {"7003", L::kUser7003, "1,G,G-3,r,1,2,3,4,5,6,7,8,9",
         "[G|G-3|r] 1 2 3 4 5 6 0.1178 7 8 9 -10 -11"},
        {"7004", L::kUser7004, "1,G,G-4,,1,2,3,4,5,6,7,8,9,10",
         "[G|G-4|] 1 2 3 4 5 6 0.1178 7 8 9 10 -11"},
        {"7005, nozzle included", L::kUser7005,
         "1,Delta,D-9,left, right,1,2,3,4,5,6,7,8,9,10,2,0.75,3,11,12,13,14,15,16\n",
         "[Delta|D-9|left, right] 1 2 3 4 5 6 0.1178 7 8 9 10 2 0.75 3 11 12 13 14 15 16"},
        {"7005: a field that does not convert keeps the record's value, a nozzle member is 0",
         L::kUser7005, "1,Zeta,Z-1,,a,b,c,d,e,f,g,h,i,j,k,l,5,x,2.5,y,z,w,-1e2\n",
         "[Zeta|Z-1|] -1 -2 -3 -4 -5 -6 -0.1178 -7 -8 -9 -10 -11 -12 5 0 2.5 0 0 0 -100"},
        {"system 7007", L::kSystem7007, "5,Beta,B-7,,220,80,170,60,28,120,1,0.85\n",
         "[Beta|B-7|] 220 80 170 60 28 120 73.89 -7 -8 -9 -10 1 0.85 -13"},
        {"cut at character 1023", L::kBase,
         "1,Eta,H1,1,2,3,4,5,6," + std::string(1060, 'r') + ",7,8",
         "[Eta|H1|1] 2 3 4 5 6 -6 -0.1696"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        CQZRIM machine = FilledMachine();
        ASSERT_TRUE(Parse(row.row, row.layout, machine));
        const std::string fields = LegacyFields(machine);
        EXPECT_EQ(fields.substr(0, std::strlen(row.fields)), row.fields) << fields;
    }
}

TEST(LegacyRowParser, TooFewTokensLeaveTheRecordUnchanged) {
    const int fewest[] = {9, 12, 13, 22, 11};
    for (size_t i = 0; i < std::size(kAllLayouts); ++i) {
        SCOPED_TRACE(fewest[i]);
        std::string row = "1,Maker,Grade";
        for (int field = 4; field < fewest[i]; ++field) row += "," + std::to_string(field);
        CQZRIM machine = FilledMachine();
        EXPECT_FALSE(Parse(row + ",,\n", kAllLayouts[i], machine)) << "empty fields give no token";
        EXPECT_EQ(LegacyFields(machine), LegacyFields(FilledMachine()));
        EXPECT_TRUE(Parse(row + ",x", kAllLayouts[i], machine));
        EXPECT_STREQ(machine.GetMaker(), "Maker");
    }
}

// Rows made of pieces that exercise the quirks: repeated texts (first and last occurrences
// matter), empty fields, blanks, numbers in many spellings, stray line ends; and raw bytes.
std::string GeneratedRow(std::mt19937& random) {
    static const char* const kPieces[] = {
        "1",     "12",     "2",       "Alpha",  "A",      "100",
        "1e3",   "0x1A",   "inf",     "nan",    "-0",     " 32 ",
        "140\r", "abc",    "1e",      "12.5x",  ".5",     "-",
        "X9",    "x9",     "",        "",       " ",      "a b",
        "9e400", "1e-400", "Version", "-.5e-2", "0.0001", "123456789012345678901234567890",
        "2.675", "99995",  "+.5e1",   "1.00005"};
    auto number = [&random](int high) {
        return std::uniform_int_distribution<int>(0, high)(random);
    };
    std::string row;
    if (number(3) == 0) {
        for (int i = number(1200); i > 0; --i) {
            const int p = number(99);
            row += p < 30   ? ','
                   : p < 35 ? '\n'
                   : p < 60 ? char('0' + p % 10)
                            : char(1 + number(254));
        }
        return row;
    }
    for (int i = number(30); i > 0; --i) {
        row += kPieces[number(std::size(kPieces) - 1)];
        row += number(99) < 5 ? "\n" : ",";
    }
    return row;
}

TEST(LegacyRowParser, AgreesWithTheLiteralOracle) {
    std::mt19937 random(20240611);
    for (int i = 0; i < 2000; ++i) {
        const std::string row = GeneratedRow(random);
        for (OldRowLayout layout : kAllLayouts) {
            CQZRIM fast = FilledMachine();
            CQZRIM oracle = FilledMachine();
            ASSERT_EQ(Parse(row, layout, fast), OracleParseOldRow(row.c_str(), layout, oracle))
                << int(layout) << " [" << row << "]";
            ASSERT_EQ(LegacyFields(fast, 17), LegacyFields(oracle, 17))
                << int(layout) << " [" << row << "]";
        }
    }
}

}  // namespace
}  // namespace qzr::legacy

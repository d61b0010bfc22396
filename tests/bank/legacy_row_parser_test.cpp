// The legacy row parser: fields counted from the end, the remark recovered from the row text,
// the derived shot volume, and agreement with the literal oracle on generated rows.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/legacy/OldRowLayout.h"
#include "bank/legacy/OldRowNumbers.h"
#include "bank/legacy/OldRowParser.h"
#include "legacy_row_oracle.h"
#include "legacy_test_support.h"
#include "platform/CNumbers.h"

namespace qzr::legacy {
namespace {

using testing::LegacyFields;
using testing::OracleParseOldRow;

constexpr OldRowLayout kAllLayouts[] = {OldRowLayout::kBase, OldRowLayout::kUser7003,
                                        OldRowLayout::kUser7004, OldRowLayout::kUser7005,
                                        OldRowLayout::kSystem7007};

const char* LayoutName(OldRowLayout layout) {
    switch (layout) {
        case OldRowLayout::kBase:
            return "base";
        case OldRowLayout::kUser7003:
            return "7003";
        case OldRowLayout::kUser7004:
            return "7004";
        case OldRowLayout::kUser7005:
            return "7005";
        case OldRowLayout::kSystem7007:
            return "system7007";
    }
    return "?";
}

bool Parse(const std::string& row, OldRowLayout layout, CQZRIM& machine) {
    const CQZRMoldingMachineReader reader;
    return reader.ParseOldIMMRow(row.c_str(), layout, machine);
}

// A record whose every legacy attribute differs from its default, to see what a row sets.
CQZRIM FilledMachine() {
    CQZRIM m;
    m.SetMaker("OldMaker");
    m.SetGrade("OldGrade");
    m.SetRemark("old remark");
    m.SetClampingForce(-1);
    m.SetShotWeight(-2);
    m.SetShotVolume(-3);
    m.SetInjectionPressure(-4);
    m.SetInjectionRate(-5);
    m.SetScrewDiameter(-6);
    m.SetScrewStroke(-7);
    m.SetTimeConstFR(-8);
    m.SetTimeConstIP(-9);
    m.SetNozzleVolume(-10);
    m.SetMaxPressureSlope(-11);
    m.SetMachineEnergyType(-12);
    m.SetHydraulicPressureTransferFactor(-13);
    m.SetNozzleSpecification({-14, -15, -16, -17, -18, -19, -20});
    return m;
}

struct RowCase {
    const char* label;
    OldRowLayout layout;
    const char* row;
    // The expected record as LegacyFields shows it.
    const char* fields;
};

TEST(LegacyRowParser, RowsOfEveryLayoutFillTheRecord) {
    const RowCase cases[] = {
        {"empty ShotWeight field moves the rest; 'note' is ClampingForce", OldRowLayout::kBase,
         "1,Alpha,A-100,note,100,,180,95,32,140",
         "maker=[Alpha] grade=[A-100] remark=[] clamp=0 shotW=100 shotV=112.59999999999999 "
         "press=180 rate=95 dia=32 stroke=140 fr=0.01 ip=0.10000000000000001 nozV=0 slope=2500 "
         "energy=0 hptf=1 nozzle=0/0/0/0/0/0/0"},
        {"remark with commas and an empty field", OldRowLayout::kBase,
         "1,Alpha,A-100,a, b,,c,100,50,180,95,32,140\n",
         "maker=[Alpha] grade=[A-100] remark=[a, b,,c] clamp=100 shotW=50 "
         "shotV=112.59999999999999 press=180 rate=95 dia=32 stroke=140 fr=0.01 "
         "ip=0.10000000000000001 nozV=0 slope=2500 energy=0 hptf=1 nozzle=0/0/0/0/0/0/0"},
        {"maker equals grade: the remark follows the grade field", OldRowLayout::kBase,
         "1,X9,X9,after grade,10,20,30,40,25,100\n",
         "maker=[X9] grade=[X9] remark=[after grade] clamp=10 shotW=20 shotV=49.090000000000003 "
         "press=30 rate=40 dia=25 stroke=100 fr=0.01 ip=0.10000000000000001 nozV=0 slope=2500 "
         "energy=0 hptf=1 nozzle=0/0/0/0/0/0/0"},
        {"grade text first found inside the ID cuts the remark there", OldRowLayout::kBase,
         "12,Al,2,rem,10,20,30,40,25,100\n",
         "maker=[Al] grade=[2] remark=[Al,2,rem] clamp=10 shotW=20 shotV=49.090000000000003 "
         "press=30 rate=40 dia=25 stroke=100 fr=0.01 ip=0.10000000000000001 nozV=0 slope=2500 "
         "energy=0 hptf=1 nozzle=0/0/0/0/0/0/0"},
        {"blanks, a carriage return and junk after numbers", OldRowLayout::kBase,
         "1, Beta , B 2 ,  spaced  , 10.5t,  20g,30MPa,40 ,25.0,100\r\n",
         "maker=[ Beta ] grade=[ B 2 ] remark=[  spaced  ] clamp=10.5 shotW=20 "
         "shotV=49.090000000000003 press=30 rate=40 dia=25 stroke=100 fr=0.01 "
         "ip=0.10000000000000001 nozV=0 slope=2500 energy=0 hptf=1 nozzle=0/0/0/0/0/0/0"},
        {"7003 adds the two time constants and the nozzle volume", OldRowLayout::kUser7003,
         "1,Gamma,G-3,r,1,2,3,4,5,6,0.02,0.2,3.5\n",
         "maker=[Gamma] grade=[G-3] remark=[r] clamp=1 shotW=2 shotV=0.1178 press=3 rate=4 dia=5 "
         "stroke=6 fr=0.02 ip=0.20000000000000001 nozV=3.5 slope=2500 energy=0 hptf=1 "
         "nozzle=0/0/0/0/0/0/0"},
        {"7004 adds the pressure slope", OldRowLayout::kUser7004,
         "1,Gamma,G-4,,1,2,3,4,5,6,0.02,0.2,3.5,1800\n",
         "maker=[Gamma] grade=[G-4] remark=[] clamp=1 shotW=2 shotV=0.1178 press=3 rate=4 dia=5 "
         "stroke=6 fr=0.02 ip=0.20000000000000001 nozV=3.5 slope=1800 energy=0 hptf=1 "
         "nozzle=0/0/0/0/0/0/0"},
        {"7005: the written example row", OldRowLayout::kUser7005,
         "1,Alpha,A-100,,100.00, 50.50,180.00, 95.30, 32.00,140.00,0.01,0.1,  0.00,2500.00,0,  "
         "1.00,0,  0.00,  0.00,  0.00,  0.00,  0.00,  0.00\n",
         "maker=[Alpha] grade=[A-100] remark=[] clamp=100 shotW=50.5 shotV=112.59999999999999 "
         "press=180 rate=95.299999999999997 dia=32 stroke=140 fr=0.01 ip=0.10000000000000001 "
         "nozV=0 slope=2500 energy=0 hptf=1 nozzle=0/0/0/0/0/0/0"},
        {"7005: every field set, nozzle included", OldRowLayout::kUser7005,
         "1,Delta,D-9,left, right,1,2,3,4,5,6,7,8,9,10,2,0.75,3,11,12,13,14,15,16\n",
         "maker=[Delta] grade=[D-9] remark=[left, right] clamp=1 shotW=2 shotV=0.1178 press=3 "
         "rate=4 dia=5 stroke=6 fr=7 ip=8 nozV=9 slope=10 energy=2 hptf=0.75 "
         "nozzle=3/11/12/13/14/15/16"},
        {"system 7007: energy type and hydraulic factor at the end", OldRowLayout::kSystem7007,
         "5,Beta,B-7,,220,80,170,60,28,120,1,0.85\n",
         "maker=[Beta] grade=[B-7] remark=[] clamp=220 shotW=80 shotV=73.890000000000001 press=170 "
         "rate=60 "
         "dia=28 stroke=120 fr=0.01 ip=0.10000000000000001 nozV=0 slope=2500 energy=1 "
         "hptf=0.84999999999999998 nozzle=0/0/0/0/0/0/0"},
        {"delimiters before the ID give no token", OldRowLayout::kBase,
         ",,\n7,Eps,E1,x,1,2,3,4,5,6",
         "maker=[Eps] grade=[E1] remark=[x] clamp=1 shotW=2 shotV=0.1178 press=3 rate=4 dia=5 "
         "stroke=6 fr=0.01 ip=0.10000000000000001 nozV=0 slope=2500 energy=0 hptf=1 "
         "nozzle=0/0/0/0/0/0/0"},
    };
    for (const RowCase& c : cases) {
        SCOPED_TRACE(c.label);
        CQZRIM machine;
        ASSERT_TRUE(Parse(c.row, c.layout, machine));
        EXPECT_EQ(LegacyFields(machine), c.fields);
    }
}

TEST(LegacyRowParser, ShotVolumeIsTheSweptVolumeToFourDigits) {
    struct {
        double diameter, stroke, volume;
    } const cases[] = {{32, 140, 112.6}, {25, 100, 49.09}, {0, 140, 0}, {120, 600, 6786}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.diameter) + "/" + std::to_string(c.stroke));
        const std::string row = "1,M,G,,1,2,3,4," + platform::FormatC("%g", c.diameter) + "," +
                                platform::FormatC("%g", c.stroke);
        CQZRIM machine;
        ASSERT_TRUE(Parse(row, OldRowLayout::kBase, machine));
        EXPECT_EQ(machine.GetShotVolume(), c.volume);
    }
}

TEST(LegacyRowParser, TooFewTokensLeaveTheRecordUnchanged) {
    for (OldRowLayout layout : kAllLayouts) {
        SCOPED_TRACE(LayoutName(layout));
        const int fewest = FewestTokens(layout);
        std::string shortRow = "1,Maker,Grade";
        for (int i = 3; i < fewest - 1; ++i) {
            shortRow += "," + std::to_string(i);
        }
        // An empty field is no token: one short even with the commas of two more fields.
        shortRow += ",,\n";
        CQZRIM machine = FilledMachine();
        const std::string before = LegacyFields(machine);
        EXPECT_FALSE(Parse(shortRow, layout, machine));
        EXPECT_EQ(LegacyFields(machine), before);

        const std::string fullRow = shortRow + "," + std::to_string(fewest);
        EXPECT_TRUE(Parse(fullRow, layout, machine));
        EXPECT_STREQ(machine.GetMaker(), "Maker");
    }
    EXPECT_EQ(FewestTokens(OldRowLayout::kBase), 9);
    EXPECT_EQ(FewestTokens(OldRowLayout::kUser7003), 12);
    EXPECT_EQ(FewestTokens(OldRowLayout::kUser7004), 13);
    EXPECT_EQ(FewestTokens(OldRowLayout::kUser7005), 22);
    EXPECT_EQ(FewestTokens(OldRowLayout::kSystem7007), 11);
}

TEST(LegacyRowParser, UnconvertibleFieldsKeepTheRecordsValueButNozzleMembersStartAtZero) {
    CQZRIM machine = FilledMachine();
    ASSERT_TRUE(Parse("1,Zeta,Z-1,rem,a,b,c,d,e,f,g,h,i,j,k,l,m,n,o,p,q,r,s\n",
                      OldRowLayout::kUser7005, machine));
    EXPECT_EQ(LegacyFields(machine),
              "maker=[Zeta] grade=[Z-1] remark=[rem] clamp=-1 shotW=-2 "
              "shotV=-0.19789999999999999 press=-4 rate=-5 dia=-6 stroke=-7 fr=-8 ip=-9 nozV=-10 "
              "slope=-11 energy=-12 hptf=-13 nozzle=0/0/0/0/0/0/0");

    machine = FilledMachine();
    ASSERT_TRUE(Parse("1,Zeta,Z-1,,a,b,c,d,e,f,g,h,i,j,k,l,5,x,2.5,y,z,w,-1e2\n",
                      OldRowLayout::kUser7005, machine));
    EXPECT_EQ(machine.GetNozzleSpecification().Type, 5);
    EXPECT_EQ(machine.GetNozzleSpecification().Value1, 0);
    EXPECT_EQ(machine.GetNozzleSpecification().Value2, 2.5);
    EXPECT_EQ(machine.GetNozzleSpecification().Value3, 0);
    EXPECT_EQ(machine.GetNozzleSpecification().Value6, -100);
}

TEST(LegacyRowParser, RowsAreCutAtTheWorkBuffer) {
    // 1100 characters: the last fields lie beyond character 1023 and are never seen.
    const std::string row =
        "1,Eta,H1,1,2,3,4,5,6," + std::string(1060, 'r') + ",7,8,9,10,11,12,13,14";
    ASSERT_GT(row.size(), 1023u);
    CQZRIM machine;
    ASSERT_TRUE(Parse(row, OldRowLayout::kBase, machine));
    EXPECT_EQ(machine.GetClampingForce(), 2);
    EXPECT_EQ(machine.GetScrewDiameter(), 6);
    EXPECT_EQ(machine.GetScrewStroke(), 0);  // the cut run of 'r' does not convert
    EXPECT_STREQ(machine.GetRemark(), "1");

    // A NUL ends the row like any C text.
    const char withNul[] = "1,Eta,H1,,1,2,3,4,5\0,6\n";
    EXPECT_FALSE(CQZRMoldingMachineReader().ParseOldIMMRow(withNul, OldRowLayout::kBase, machine));
}

// Rows made of pieces that exercise the quirks: repeated texts (so that first and last
// occurrences matter), empty fields, blanks, numbers in many spellings, stray line ends.
std::string GeneratedRow(std::mt19937& random) {
    static const char* const kPieces[] = {"1",
                                          "12",
                                          "2",
                                          "Alpha",
                                          "A-100",
                                          "A",
                                          "100",
                                          "1e3",
                                          "0x1A",
                                          "inf",
                                          "nan",
                                          "-0",
                                          "+7",
                                          " 32 ",
                                          "140\r",
                                          "abc",
                                          "1e",
                                          "1.5e",
                                          "12.5x",
                                          ".5",
                                          "5.",
                                          "-",
                                          "X9",
                                          "x9",
                                          "",
                                          "",
                                          " ",
                                          "\r",
                                          "a b",
                                          "1,2",
                                          "9e400",
                                          "1e-400",
                                          "Version",
                                          "00x5",
                                          "-.5e-2",
                                          "0.0001",
                                          "123456789012345678901234567890"};
    constexpr size_t kPieceCount = sizeof(kPieces) / sizeof(kPieces[0]);
    std::uniform_int_distribution<size_t> piece(0, kPieceCount - 1);
    std::uniform_int_distribution<int> fieldCount(0, 30);
    std::uniform_int_distribution<int> percent(0, 99);
    std::string row;
    const int fields = fieldCount(random);
    for (int i = 0; i < fields; ++i) {
        if (i > 0) {
            row += percent(random) < 5 ? "\n" : ",";
        }
        row += kPieces[piece(random)];
    }
    if (percent(random) < 70) {
        row += "\n";
    }
    return row;
}

std::string RandomBytes(std::mt19937& random) {
    std::uniform_int_distribution<int> length(0, 1200);
    std::uniform_int_distribution<int> byte(1, 255);
    std::uniform_int_distribution<int> percent(0, 99);
    std::string row(static_cast<size_t>(length(random)), ' ');
    for (char& c : row) {
        const int p = percent(random);
        c = p < 30   ? ','
            : p < 35 ? '\n'
            : p < 60 ? static_cast<char>('0' + p % 10)
                     : static_cast<char>(byte(random));
    }
    return row;
}

TEST(LegacyRowParser, AgreesWithTheLiteralOracle) {
    std::mt19937 random(20240611);
    for (int i = 0; i < 20000; ++i) {
        const std::string row = (i % 4 == 3) ? RandomBytes(random) : GeneratedRow(random);
        for (OldRowLayout layout : kAllLayouts) {
            CQZRIM fast = FilledMachine();
            CQZRIM oracle = FilledMachine();
            const bool fastResult = Parse(row, layout, fast);
            const bool oracleResult = OracleParseOldRow(row.c_str(), layout, oracle);
            ASSERT_EQ(fastResult, oracleResult) << LayoutName(layout) << " row [" << row << "]";
            ASSERT_EQ(LegacyFields(fast), LegacyFields(oracle))
                << LayoutName(layout) << " row [" << row << "]";
        }
    }
}

TEST(LegacyRowNumbers, RealFieldsConvertAsTheCLibraryDoes) {
    const char* const texts[] = {"0",
                                 "-0",
                                 "+0",
                                 "32",
                                 " 140",
                                 "\t95.3",
                                 "1.",
                                 ".5",
                                 "-.5",
                                 "+.5e1",
                                 "1e3",
                                 "1E+3",
                                 "1e-3x",
                                 "1e",
                                 "1e+",
                                 "1ex",
                                 "0x1A",
                                 "0X1p3",
                                 "0x",
                                 "00x5",
                                 "inf",
                                 "-INF",
                                 "nan",
                                 "infinity",
                                 ".",
                                 "-",
                                 "+",
                                 "",
                                 "  ",
                                 "abc",
                                 "12abc",
                                 "1,5",
                                 "9e400",
                                 "-9e400",
                                 "1e-400",
                                 "4.9e-324",
                                 "2.2250738585072011e-308",
                                 "123456789012345678901234567890.123456789",
                                 "0.1000000000000000055511151231257827",
                                 "1.7976931348623157e308",
                                 "1.7976931348623159e308",
                                 " +-1",
                                 "--1",
                                 "1..2",
                                 "1e5.5"};
    std::vector<std::string> all(std::begin(texts), std::end(texts));
    // Generated decimals: leading zeros, up to 25 digits, fractions, exponents, signs.
    std::mt19937 random(99);
    std::uniform_int_distribution<int> count(0, 25);
    std::uniform_int_distribution<int> digit(0, 9);
    std::uniform_int_distribution<int> percent(0, 99);
    std::uniform_int_distribution<int> exponent(-40, 40);
    for (int i = 0; i < 50000; ++i) {
        std::string text = percent(random) < 20 ? "-" : percent(random) < 10 ? "+" : "";
        const int integerDigits = count(random) % (percent(random) < 80 ? 6 : 26);
        for (int d = 0; d < integerDigits; ++d) {
            text += static_cast<char>('0' + (percent(random) < 15 ? 0 : digit(random)));
        }
        if (percent(random) < 70) {
            text += '.';
            const int fractionDigits = count(random) % (percent(random) < 80 ? 6 : 26);
            for (int d = 0; d < fractionDigits; ++d) {
                text += static_cast<char>('0' + digit(random));
            }
        }
        if (percent(random) < 20) {
            text += platform::FormatC("e%+d", exponent(random));
        }
        all.push_back(text);
    }
    for (const std::string& text : all) {
        double fast = 12345.0;
        double slow = 12345.0;
        const bool fastResult = ScanRealField(text.c_str(), &fast);
        const bool slowResult = platform::ScanDouble(text.c_str(), &slow);
        ASSERT_EQ(fastResult, slowResult) << "[" << text << "]";
        ASSERT_EQ(platform::FormatC("%.17g", fast), platform::FormatC("%.17g", slow))
            << "[" << text << "]";
    }
}

TEST(LegacyRowNumbers, RoundingToFourDigitsMatchesPrintfAndReadBack) {
    std::vector<double> values = {0.0,     -0.0,    112.59999, 49.0873, 0.00012345,  1e-320,
                                  1.0625,  1.00005, 2.5e-5,    99995.0, 123456789.0, 1e300,
                                  0.03125, 1.03125, 6785.8353, -7.77777};
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> mantissa(0.0, 10.0);
    std::uniform_int_distribution<int> exponent(-12, 12);
    std::uniform_int_distribution<int> sixteenths(0, 160000);
    std::uniform_int_distribution<int> wideExponent(-25, 25);
    std::uniform_int_distribution<int> fourDigits(1000, 9999);
    for (int i = 0; i < 20000; ++i) {
        values.push_back(mantissa(random) * std::pow(10.0, exponent(random)));
        values.push_back(-mantissa(random) * std::pow(10.0, wideExponent(random)));
        values.push_back(sixteenths(random) / 16.0);  // exact binary ties of "%.4g"
        // Decimal near-ties (d.ddd5) and decade edges (9999.5, 999.95 ...).
        const double scale = std::pow(10.0, exponent(random));
        values.push_back((fourDigits(random) + 0.5) * scale);
        values.push_back(9999.5 * scale);
        values.push_back(std::nextafter(9999.5 * scale, 0.0));
        values.push_back(scale);
    }
    for (double value : values) {
        double slow = 0.0;
        platform::ScanDouble(platform::FormatC("%.4lg", value).c_str(), &slow);
        ASSERT_EQ(platform::FormatC("%.17g", RoundToFourDigits(value)),
                  platform::FormatC("%.17g", slow))
            << platform::FormatC("%.17g", value);
    }
    EXPECT_TRUE(std::isinf(RoundToFourDigits(std::numeric_limits<double>::infinity())));
    EXPECT_TRUE(std::isnan(RoundToFourDigits(std::numeric_limits<double>::quiet_NaN())));
}

}  // namespace
}  // namespace qzr::legacy

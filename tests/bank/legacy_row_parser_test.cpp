// The legacy row parser: fields counted back from the row's end, the remark recovered from the
// row text, the derived shot volume; and agreement on generated rows with the parser written
// the slow and literal way, step by step as the DLL did it: strtok over a copy, sscanf
// conversions, "%.4lg" printed and read back, and the remark cut back field by field at the
// last occurrence of each trailing token. The library's parser takes shortcuts (one pass, no
// copies, fast number paths) and must agree with it on every row.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>

#include "DataRows.h"
#include "bank/QZRMoldingMachineReader.h"
#include "bank/legacy/LegacyRowLayout.h"
#include "bank/legacy/LegacyRowNumbers.h"
#include "bank/legacy/LegacyRowParser.h"
#include "platform/CNumbers.h"

using qzr::bank::LegacyRowLayout;

namespace qzr::legacy {
namespace {

using OracleField = void (*)(const std::string& token, CQZRIM& m, NozzleSpecification& n);

// "%.*g"
std::string G(double value, int precision) {
    char text[platform::kLongestNumber];
    return std::string(text, platform::WriteG(value, precision, text));
}

template <void (CQZRIM::*Set)(double)>
void Real(const std::string& token, CQZRIM& m, NozzleSpecification&) {
    double value = 0;
    if (platform::ScanDouble(token.c_str(), &value)) (m.*Set)(value);
}
template <void (CQZRIM::*Set)(int)>
void Int(const std::string& token, CQZRIM& m, NozzleSpecification&) {
    int value = 0;
    if (platform::ScanInt(token.c_str(), &value)) (m.*Set)(value);
}
template <double NozzleSpecification::*Member>
void Nozzle(const std::string& token, CQZRIM&, NozzleSpecification& n) {
    platform::ScanDouble(token.c_str(), &(n.*Member));
}
void NozzleType(const std::string& token, CQZRIM&, NozzleSpecification& n) {
    platform::ScanInt(token.c_str(), &n.Type);
}

// The trailing numeric fields of each layout, in the order they stand in a row: the first 6,
// 9, 10 or all 19 of the 7005 layout's, or for system banks of 7007 the first 6 and then the
// energy type and hydraulic factor.
std::vector<OracleField> OracleTrailingFields(LegacyRowLayout layout) {
    using M = CQZRIM;
    using N = NozzleSpecification;
    // clang-format off
    static const OracleField k7005[] = {
        Real<&M::SetClampingForce>, Real<&M::SetShotWeight>, Real<&M::SetInjectionPressure>,
        Real<&M::SetInjectionRate>, Real<&M::SetScrewDiameter>, Real<&M::SetScrewStroke>,
        Real<&M::SetTimeConstFR>, Real<&M::SetTimeConstIP>, Real<&M::SetNozzleVolume>,
        Real<&M::SetMaxPressureSlope>, Int<&M::SetMachineEnergyType>,
        Real<&M::SetHydraulicPressureTransferFactor>, NozzleType, Nozzle<&N::Value1>,
        Nozzle<&N::Value2>, Nozzle<&N::Value3>, Nozzle<&N::Value4>, Nozzle<&N::Value5>,
        Nozzle<&N::Value6>};
    // clang-format on
    const size_t count = layout == LegacyRowLayout::kUser7005   ? 19
                         : layout == LegacyRowLayout::kUser7004 ? 10
                         : layout == LegacyRowLayout::kUser7003 ? 9
                                                                : 6;
    std::vector<OracleField> fields(k7005, k7005 + count);
    if (layout == LegacyRowLayout::kSystem7007) fields.insert(fields.end(), k7005 + 10, k7005 + 12);
    return fields;
}

bool OracleParseOldRow(const char* row, LegacyRowLayout layout, CQZRIM& m) {
    const std::string text = std::string(row).substr(0, 1023);  // the 1024-byte work buffer
    std::vector<std::string> tokens;
    std::string current;
    for (const char c : text + ',') {
        if (c != ',' && c != '\n') {
            current += c;
        } else if (!current.empty()) {
            tokens.push_back(current);
            current.clear();
        }
    }
    const std::vector<OracleField> fields = OracleTrailingFields(layout);
    const size_t count = tokens.size();
    if (count < 3 + fields.size()) return false;
    const size_t firstTrailing = count - fields.size();
    NozzleSpecification nozzle;
    for (size_t i = 0; i < fields.size(); ++i) fields[i](tokens[firstTrailing + i], m, nozzle);
    if (layout == LegacyRowLayout::kUser7005) m.SetNozzleSpecification(nozzle);
    m.SetMaker(tokens[1].c_str());
    m.SetGrade(tokens[2].c_str());
    const double volume =
        m.GetScrewDiameter() * 0.7853975 * m.GetScrewDiameter() * m.GetScrewStroke() * 0.001;
    double rounded = 0.0;
    platform::ScanDouble(G(volume, 4).c_str(), &rounded);
    m.SetShotVolume(rounded);

    std::string copy = text;
    for (size_t i = count; i-- > firstTrailing;) {
        const size_t at = copy.rfind(tokens[i]);
        if (at != std::string::npos && at != 0) copy.erase(at - 1);
    }
    size_t grade = copy.find(tokens[2]);
    if (tokens[1] == tokens[2]) grade += tokens[1].size() + 1;
    copy.erase(0, std::min(copy.size(), grade + tokens[2].size() + 1));
    m.SetRemark(copy.c_str());
    return true;
}

// Every attribute a legacy bank writes or derives, in the order of a 7005 row (the shot
// volume after the stroke), reals with "%.*g" of the given precision (17: equal texts mean
// equal values).
std::string LegacyFields(const CQZRIM& m, int precision = 6) {
    const NozzleSpecification& n = m.GetNozzleSpecification();
    std::string text =
        std::string("[") + m.GetMaker() + "|" + m.GetGrade() + "|" + m.GetRemark() + "]";
    // clang-format off
    const double values[] = {
        m.GetClampingForce(), m.GetShotWeight(), m.GetInjectionPressure(), m.GetInjectionRate(),
        m.GetScrewDiameter(), m.GetScrewStroke(), m.GetShotVolume(), m.GetTimeConstFR(),
        m.GetTimeConstIP(), m.GetNozzleVolume(), m.GetMaxPressureSlope(),
        1.0 * m.GetMachineEnergyType(), m.GetHydraulicPressureTransferFactor(), 1.0 * n.Type,
        n.Value1, n.Value2, n.Value3, n.Value4, n.Value5, n.Value6};
    // clang-format on
    for (const double value : values) {
        text += " " + G(value, precision);
    }
    return text;
}

using L = LegacyRowLayout;

constexpr LegacyRowLayout kAllLayouts[] = {L::kBase, L::kUser7003, L::kUser7004, L::kUser7005,
                                           L::kSystem7007};

// A record whose every legacy attribute differs from its default, to see what a row sets.
CQZRIM FilledMachine() {
    CQZRIM m;
    OracleParseOldRow(
        "0,Old,OldG,old,-1,-2,-3,-4,-5,-6,-7,-8,-9,-10,-11,-12,-13,-14,-15,-16,-17,-18,-19",
        L::kUser7005, m);
    return m;
}

bool Parse(const std::string& row, LegacyRowLayout layout, CQZRIM& machine) {
    return qzr::legacy::ParseOldRow(row.c_str(), layout, machine);
}

// The rows of tests/data/legacy/rows.txt.
TEST(LegacyRowParser, RowsOfEveryLayout) {
    const std::vector<qzr::test::DataRow> rows = qzr::test::ReadDataRows("legacy/rows.txt");
    ASSERT_FALSE(rows.empty());
    const std::string layouts[] = {"base", "7003", "7004", "7005", "system7007"};
    for (const qzr::test::DataRow& row : rows) {  // layout, fields, row
        SCOPED_TRACE(row.where);
        const auto layout = std::find(std::begin(layouts), std::end(layouts), row.fields[0]);
        ASSERT_NE(layout, std::end(layouts));
        CQZRIM machine = FilledMachine();
        ASSERT_TRUE(Parse(row.fields[2], kAllLayouts[layout - layouts], machine));
        const std::string fields = LegacyFields(machine);
        EXPECT_EQ(fields.substr(0, row.fields[1].size()), row.fields[1]) << fields;
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
        for (LegacyRowLayout layout : kAllLayouts) {
            CQZRIM fast = FilledMachine();
            CQZRIM oracle = FilledMachine();
            ASSERT_EQ(Parse(row, layout, fast), OracleParseOldRow(row.c_str(), layout, oracle))
                << int(layout) << " [" << row << "]";
            ASSERT_EQ(LegacyFields(fast, 17), LegacyFields(oracle, 17))
                << int(layout) << " [" << row << "]";
        }
    }
}

// The shot volume's rounding against printing "%.4lg" and reading it back, over every scale
// the shortcut takes and beyond, powers of ten and their neighbours included.
TEST(LegacyRowParser, ShotVolumeRoundingAgreesWithPrintingIt) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> exponent(-25.0, 25.0);
    std::vector<double> values;
    for (int i = 0; i < 20000; ++i) values.push_back(std::pow(10.0, exponent(random)));
    for (int power = -25; power <= 25; ++power) {
        const double ten = std::pow(10.0, power);
        values.insert(values.end(), {ten, std::nextafter(ten, 0.0), std::nextafter(ten, 1e300),
                                     9.9995 * ten, 1.0005 * ten});
    }
    for (const double value : values) {
        for (const double signedValue : {value, -value}) {
            double printed = 0.0;
            platform::ScanDouble(G(signedValue, 4).c_str(), &printed);
            ASSERT_EQ(G(RoundToFourDigits(signedValue), 17), G(printed, 17)) << G(signedValue, 17);
        }
    }
}

}  // namespace
}  // namespace qzr::legacy

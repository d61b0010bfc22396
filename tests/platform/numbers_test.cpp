// The number conversions of the bank files. Tables pin, on every platform, the bits every
// odd text reads to and the bytes every kind of double is written as, as the GNU C library
// gives them in the "C" locale; where the C library is the GNU one, its sscanf and snprintf
// must also agree on generated texts and values.
#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "DataRows.h"
#include "platform/CNumbers.h"
#include "platform/ScopedLocale.h"
#include "platform/ShortDecimal.h"

namespace qzr::platform {
namespace {

uint64_t Bits(double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

double FromBits(uint64_t bits) {
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

std::string Hex(uint64_t bits) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(bits));
    return text;
}

// Our writer of a printf format: "%lf", "%6.2f", "%lg" or "%.<precision>g".
std::string Written(const std::string& format, double value) {
    char text[kLongestNumber];
    char* end = format == "%lf"     ? WriteLf(value, text)
                : format == "%6.2f" ? WriteWidth6Fixed2(value, text)
                : format == "%lg"   ? WriteLg(value, text)
                                    : WriteG(value, std::atoi(format.c_str() + 2), text);
    return std::string(text, end);
}

// The value a failed conversion must leave alone.
constexpr double kUntouched = -12345.5;

// ---------------------------------------------------------------------------------------------
// The pinned tables, in tests/data/numbers

std::vector<qzr::test::DataRow> Rows(const std::string& name) {
    std::vector<qzr::test::DataRow> rows = qzr::test::ReadDataRows("numbers/" + name);
    EXPECT_FALSE(rows.empty()) << "no rows in numbers/" << name;
    return rows;
}

// The scans of a row's tokens, given text as a row holds it: digits before it and after its NUL.
bool ScanDoubleInRow(const char* text, double* value) {
    const std::string row = "9876543210987654" + std::string(text) + '\0' + "12345678";
    return ScanDoubleToken(row.c_str() + 16, std::strlen(text), value);
}

bool ScanIntInRow(const char* text, int* value) {
    const std::string row = "9876543210987654" + std::string(text) + '\0' + "12345678";
    return ScanIntToken(row.c_str() + 16, std::strlen(text), value);
}

uint64_t BitsIn(const std::string& field) {
    return std::stoull(field, nullptr, 16);
}

void ExpectPinnedReads() {
    for (const auto& row : Rows("reads.txt")) {  // value or -, text
        const bool converts = row.fields[0] != "-";
        const std::string slack = row.fields[1] + '\0' + "12345678";
        for (bool (*scan)(const char*, double*) :
             {&ScanDouble, &ScanDoubleWithSlack, &ScanDoubleInRow}) {
            double value = kUntouched;
            EXPECT_EQ(scan(slack.c_str(), &value), converts) << row.where;
            EXPECT_EQ(Hex(Bits(value)), Hex(converts ? BitsIn(row.fields[0]) : Bits(kUntouched)))
                << row.where;
        }
    }
    for (const auto& row : Rows("ints.txt")) {
        const bool converts = row.fields[0] != "-";
        for (bool (*scan)(const char*, int*) : {&ScanInt, &ScanIntInRow}) {
            int value = -7;
            EXPECT_EQ(scan(row.fields[1].c_str(), &value), converts) << row.where;
            EXPECT_EQ(value, converts ? std::stoi(row.fields[0]) : -7) << row.where;
        }
    }
}

void ExpectPinnedWrites() {
    const char* const formats[] = {"%lf", "%6.2f", "%lg", "%.4g", "%.17g"};
    for (const auto& row : Rows("writes.txt")) {  // bits, then a text in each format
        for (size_t format = 0; format < 5; ++format) {
            EXPECT_EQ(Written(formats[format], FromBits(BitsIn(row.fields[0]))),
                      row.fields[format + 1])
                << formats[format] << ", " << row.where;
        }
    }
    for (const auto& row : Rows("precisions.txt")) {  // bits, precision, text
        EXPECT_EQ(Written("%." + row.fields[1] + "g", FromBits(BitsIn(row.fields[0]))),
                  row.fields[2])
            << row.where;
    }
    for (const int value : {0, -1, 7007, INT_MAX, INT_MIN}) {
        char text[kLongestNumber];
        EXPECT_EQ(std::string(text, WriteD(value, text)), std::to_string(value));
    }
}

TEST(CNumbers, ReadPinnedValues) {
    ExpectPinnedReads();
}

TEST(CNumbers, WritePinnedBytes) {
    ExpectPinnedWrites();
}

// A host running with a decimal comma changes nothing, and keeps its own locale.
TEST(CNumbers, PinnedInADecimalCommaLocale) {
    test::ScopedLocale locale({"de_DE.UTF-8", "de_DE.ISO-8859-1", "German_Germany.1252"});
    if (!locale.installed() || std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
        GTEST_SKIP() << "no decimal-comma locale on this host";
    }
    ExpectPinnedReads();
    ExpectPinnedWrites();
    EXPECT_STREQ(std::localeconv()->decimal_point, ",") << "host locale changed";
}

// ---------------------------------------------------------------------------------------------
// Agreement with the GNU C library on generated texts and values

#if defined(__GLIBC__)

// A text as a failure message shows it, control bytes escaped.
std::string Shown(const std::string& text) {
    return ::testing::PrintToString(text);
}

std::string Printf(const std::string& format, double value) {
    char text[512];
    std::snprintf(text, sizeof(text), format.c_str(), value);
    return text;
}

void ExpectScansAsGlibc(const std::string& text) {
    double expected = kUntouched;
    double got = kUntouched;
    const bool converts = std::sscanf(text.c_str(), "%lf", &expected) == 1;
    ASSERT_EQ(ScanDouble(text.c_str(), &got), converts) << Shown(text);
    ASSERT_EQ(Hex(Bits(got)), Hex(Bits(expected))) << Shown(text);
    // Digits after the NUL must not be taken for the number's.
    const std::string slack = text + '\0' + "12345678";
    got = kUntouched;
    ASSERT_EQ(ScanDoubleWithSlack(slack.c_str(), &got), converts) << Shown(text);
    ASSERT_EQ(Hex(Bits(got)), Hex(Bits(expected))) << Shown(text);
    got = kUntouched;
    ASSERT_EQ(ScanDoubleInRow(text.c_str(), &got), converts) << Shown(text);
    ASSERT_EQ(Hex(Bits(got)), Hex(Bits(expected))) << Shown(text);
    // "%d" beyond 32 bits is left to the C library's whim; the table pins it.
    char* end = nullptr;
    const long long wide = std::strtoll(text.c_str(), &end, 10);
    if (wide >= INT_MIN && wide <= INT_MAX) {
        int expectedInt = -7;
        const bool convertsInt = std::sscanf(text.c_str(), "%d", &expectedInt) == 1;
        for (bool (*scan)(const char*, int*) : {&ScanInt, &ScanIntInRow}) {
            int gotInt = -7;
            ASSERT_EQ(scan(text.c_str(), &gotInt), convertsInt) << Shown(text);
            ASSERT_EQ(gotInt, expectedInt) << Shown(text);
        }
    }
}

void ExpectWritesAsGlibc(double value) {
    for (const char* format : {"%lf", "%6.2f", "%lg", "%.0g", "%.4g", "%.17g", "%.25g"}) {
        ASSERT_EQ(Written(format, value), Printf(format, value))
            << format << " of the double " << Hex(Bits(value));
    }
    // And read back from the texts the C library writes.
    for (const char* format : {"%.17g", "%a", "%lf", "%.3e", "%6.2f", "%lg", "%.4g"}) {
        ExpectScansAsGlibc(Printf(format, value));
    }
}

// Texts of up to eight pieces that make and break numbers of every kind.
std::string OddText(std::mt19937_64& random) {
    static const char* const kPieces[] = {
        "0",  "1",   "9",   "5",        ".",     "e",  "E",  "p",  "P",  "x", "X", "+", "-", " ",
        "\t", "\v",  "i",   "n",        "f",     "a",  "t",  "y",  "I",  "N", "F", "A", "(", ")",
        "0x", "inf", "nan", "infinity", "1e308", "e-", "e+", "00", "\n", "d", "b", "c", "7"};
    std::string text;
    for (int piece = static_cast<int>(random() % 9); piece > 0; --piece) {
        text += kPieces[random() % (sizeof(kPieces) / sizeof(kPieces[0]))];
    }
    return text;
}

// Up to 40 decimal digits, maybe a point among them, and an exponent reaching past the doubles.
std::string LongDecimal(std::mt19937_64& random) {
    std::string text;
    for (int digit = 1 + static_cast<int>(random() % 40); digit > 0; --digit) {
        text += static_cast<char>('0' + random() % 10);
    }
    if (random() % 2 != 0) {
        text.insert(random() % text.size(), ".");
    }
    return text + "e" + std::to_string(static_cast<int>(random() % 700) - 350);
}

// The value and its neighbours up to three doubles away on either side.
void ExpectNeighboursWriteAsGlibc(double value) {
    double below = value;
    double above = value;
    for (int step = 0; step < 4; ++step) {
        ExpectWritesAsGlibc(below);
        ExpectWritesAsGlibc(above);
        below = std::nextafter(below, -std::numeric_limits<double>::infinity());
        above = std::nextafter(above, std::numeric_limits<double>::infinity());
    }
}

// Where the fixed-point shortcuts decide: halfway between two texts of "%6.2f" and of "%lf",
// six-digit "%g" texts that round up to the next power of ten, exact binary ties, and the
// limits of the shortcuts.
void ExpectEdgesWriteAsGlibc(std::mt19937_64& random) {
    const double half = static_cast<double>(random() % 2000000) + 0.5;
    ExpectNeighboursWriteAsGlibc(half / 100.0);
    ExpectNeighboursWriteAsGlibc(-half / 1e6);
    const int decade = static_cast<int>(random() % 13) - 6;
    ExpectNeighboursWriteAsGlibc(999999.5 * std::pow(10.0, decade - 5));
    ExpectNeighboursWriteAsGlibc(std::pow(10.0, decade));
    const double odd = static_cast<double>(2 * (random() % 5000000) + 1);
    ExpectWritesAsGlibc(odd / 8.0);                                          // ties of "%6.2f"
    ExpectWritesAsGlibc(std::ldexp(odd, -static_cast<int>(random() % 40)));  // ties of "%g"
}

#endif  // defined(__GLIBC__)

TEST(CNumbers, AgreeWithTheGnuCLibrary) {
#if !defined(__GLIBC__)
    GTEST_SKIP() << "the C library here is not the GNU C library, whose conversions are the "
                    "reference; the pinned table holds this platform to them";
#else
    std::mt19937_64 random(2024);
    for (int i = 0; i < 3000; ++i) {
        ExpectScansAsGlibc(OddText(random));
    }
    for (int i = 0; i < 500; ++i) {
        ExpectScansAsGlibc(LongDecimal(random));
        ExpectWritesAsGlibc(FromBits(random()));  // every class of double
        const double scales[] = {1.0, 100.0, 1e6, 128.0, 3.0};
        ExpectWritesAsGlibc(  // bank-like values, ties at the second and sixth decimal
            static_cast<double>(static_cast<int64_t>(random() % 200000000) - 100000000) /
            scales[random() % 5]);
        ExpectWritesAsGlibc(std::ldexp(static_cast<double>(random() % (uint64_t{1} << 53)),
                                       static_cast<int>(random() % 2200) - 1126));
        ExpectEdgesWriteAsGlibc(random);
    }
    const double kInfinity = std::numeric_limits<double>::infinity();
    for (const double limit :
         {0.0, 0x1p-1074, 0x1p-1022, 0x1p-64, 0x1p-11, 0x1p52, 0x1p63 / 100, 0x1p64 / 1e6, 1e-4,
          1e6, 999.995, 9999.995, 99999.995, kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
        ExpectNeighboursWriteAsGlibc(limit);
        ExpectNeighboursWriteAsGlibc(-limit);
    }
#endif
}

}  // namespace
}  // namespace qzr::platform

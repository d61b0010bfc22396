// The bank formats' fast number conversions against the C library itself (the tests run in the
// "C" locale): every text "%lf", "%6.2f", "%lg" and "%d" write, and every value "%lf" reads,
// bit for bit, on hand-picked hard cases and on many generated ones.
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "bank/BankNumbers.h"
#include "platform/CNumbers.h"

namespace {

// The text a writer of BankNumbers.h gives for the value.
template <class Value>
std::string Written(char* (*write)(Value, char*), Value value) {
    char text[qzr::bank::kLongestNumber];
    return std::string(text, write(value, text));
}

std::string Printf(const char* format, double value) {
    char text[512];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

double FromBits(uint64_t bits) {
    double value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

uint64_t Bits(double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

// Values that are hard for a shortcut: signs and zeros, exact ties at the second and sixth
// decimal (dyadic values such as 0.125 and 5/128), values next to a tie, the edges of the
// 64-bit shortcut, huge, tiny and subnormal values, and the values that are not numbers.
std::vector<double> HardValues() {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> values = {0.0,
                                  -0.0,
                                  1.0,
                                  -1.0,
                                  0.5,
                                  0.125,
                                  0.375,
                                  -0.625,
                                  2.675,
                                  1.005,
                                  5.0 / 128,
                                  15.0 / 128,
                                  -5.0 / 128,
                                  1e-7,
                                  5e-7,
                                  4.9999999e-7,
                                  5.0000001e-7,
                                  0.0000015,
                                  0.995,
                                  0.9949999,
                                  99.995,
                                  999999.9999995,
                                  1500.0,
                                  0.0000004,
                                  1e15,
                                  9.2e12,
                                  9.3e12,
                                  1.8e13,
                                  1.9e13,
                                  9007199254740992.0,
                                  9223372036854775808.0,
                                  18446744073709551616.0,
                                  1e20,
                                  1e22,
                                  1e300,
                                  DBL_MAX,
                                  -DBL_MAX,
                                  DBL_MIN,
                                  DBL_TRUE_MIN,
                                  1e-300,
                                  1e-5,
                                  0.0001,
                                  0.00001234567,
                                  123456.0,
                                  1234567.0,
                                  999999.5,
                                  9999995.0,
                                  0.000099999995,
                                  inf,
                                  -inf,
                                  nan,
                                  -nan};
    for (const double tie : {0.125, 5.0 / 128}) {
        values.push_back(std::nextafter(tie, 0.0));
        values.push_back(std::nextafter(tie, 1.0));
    }
    return values;
}

// Generated values: random bit patterns (every exponent), and decimals of the kinds banks hold.
std::vector<double> GeneratedValues() {
    std::mt19937_64 random(2024);
    std::vector<double> values;
    for (int i = 0; i < 20000; ++i) {
        values.push_back(FromBits(random()));
    }
    for (int i = 0; i < 20000; ++i) {
        const double sign = (random() & 1) != 0 ? -1.0 : 1.0;
        const int64_t units = static_cast<int64_t>(random() % 100000000);
        const double scales[] = {1.0, 10.0, 100.0, 1000.0, 1e6, 1e8, 256.0, 128.0};
        values.push_back(sign * static_cast<double>(units) / scales[random() % 8]);
    }
    for (int i = 0; i < 20000; ++i) {
        values.push_back(std::ldexp(static_cast<double>(random() % (1ULL << 53)),
                                    static_cast<int>(random() % 140) - 120));
    }
    return values;
}

struct Writer {
    const char* format;
    char* (*write)(double, char*);
};

const Writer kWriters[] = {{"%lf", &qzr::bank::WriteLf},
                           {"%6.2f", &qzr::bank::WriteWidth6Fixed2},
                           {"%lg", &qzr::bank::WriteLg}};

TEST(BankNumbers, WritesWhatSnprintfWrites) {
    for (const std::vector<double>& values : {HardValues(), GeneratedValues()}) {
        for (const double value : values) {
            for (const Writer& writer : kWriters) {
                ASSERT_EQ(Written(writer.write, value), Printf(writer.format, value))
                    << writer.format << " of the double with bits 0x" << std::hex << Bits(value);
            }
        }
    }
    for (const int value : {0, 1, -1, 7007, 65535, INT_MAX, INT_MIN, INT_MIN + 1}) {
        char expected[32];
        std::snprintf(expected, sizeof(expected), "%d", value);
        EXPECT_EQ(Written(&qzr::bank::WriteD, value), expected) << value;
    }
}

// ScanReal against sscanf("%lf"): both the answer and the bits of the value.
void ExpectScansLikeSscanf(const std::string& text) {
    double expected = -12345.5;
    double got = -12345.5;
    const bool expectedConverts = std::sscanf(text.c_str(), "%lf", &expected) == 1;
    EXPECT_EQ(qzr::bank::ScanReal(text.c_str(), &got), expectedConverts) << "'" << text << "'";
    EXPECT_EQ(Bits(got), Bits(expected)) << "'" << text << "'";
}

TEST(BankNumbers, ReadsWhatSscanfReads) {
    const char* const kTexts[] = {
        "",
        " ",
        "x",
        "1500.000000",
        "  42",
        "\t\n\v\f\r7.5",
        "+3.25",
        "-3.25",
        "-0",
        "-0.000000",
        "+-1",
        "-+1",
        ".5",
        "-.5",
        "5.",
        ".",
        "-.",
        "+",
        "1e5",
        "1E5",
        "1e+5",
        "1e-5",
        "1e",
        "1e+",
        "1e-x",
        "2.5e3kg",
        "12abc",
        "1,5",
        "0x1p3",
        "0X1.8P1",
        "0x",
        "0xg",
        "-0x10",
        "inf",
        "INF",
        "-inf",
        "+Infinity",
        "infinit",
        "nan",
        "NAN",
        "-nan",
        "nan(123)",
        "nan(",
        "0001.2500",
        "1e400",
        "-1e400",
        "1e-400",
        "4.9e-324",
        "2.4e-324",
        "2.2250738585072011e-308",
        "179769313486231580793728971405303415079934132710037826936"
        "173778980444968292764750946649017977587207096330286416692887910946555547851940402630"
        "657488671505820681908902000708383676273854845817711531764475730270069855571366959622"
        "842914819860834936475292719074168444365510704342711559699508093042880177154",
        "0.1",
        "0.30000000000000004",
        "123456789012345678901234567890",
        "9007199254740993",
        "0.000000000000000000000000000000000000000000001",
        "3.14159265358979323846264338327950"};
    for (const char* text : kTexts) {
        ExpectScansLikeSscanf(text);
    }
    ExpectScansLikeSscanf(std::string(400, '9') + ".5");
    ExpectScansLikeSscanf("0." + std::string(400, '0') + "1");
    // The texts the writers produce, and others, for generated values.
    for (const double value : GeneratedValues()) {
        for (const char* format : {"%lf", "%.17g", "%.3e", " %6.2f", "%a"}) {
            ExpectScansLikeSscanf(Printf(format, value));
        }
    }
}

TEST(BankNumbers, IntegersReadAsSscanfReadsThem) {
    const char* const kTexts[] = {"0",           "42", "-42", "+42", " \t12x", "007", "2147483647",
                                  "-2147483648", "-",  "+",   "x1",  "",       "1.9"};
    for (const char* text : kTexts) {
        int expected = -7;
        int got = -7;
        const bool converts = std::sscanf(text, "%d", &expected) == 1;
        EXPECT_EQ(qzr::platform::ScanInt(text, &got), converts) << "'" << text << "'";
        EXPECT_EQ(got, expected) << "'" << text << "'";
    }
}

}  // namespace

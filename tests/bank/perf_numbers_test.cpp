// The bank formats' fast number conversions against the C library itself (the tests run in the
// "C" locale): every "%lf", "%6.2f", "%lg" and "%d" write and every "%lf" read, bit for bit, on
// hard cases and on generated values.
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

std::string Printf(const char* format, double value) {
    char text[512];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

uint64_t Bits(double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

// Signs and zeros, ties at the second and sixth decimal and their neighbours, the edges of the
// 64-bit shortcut, huge, tiny and subnormal values, inf and nan; then random bit patterns,
// bank-like decimals and scaled integers.
std::vector<double> Values() {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    // clang-format off
    std::vector<double> values = {0.0, -0.0, 0.125, -0.625, 2.675, 1.005, 5.0 / 128, 5e-7, 0.995,
        99.995, 999999.9999995, 9.2e12, 9.3e12, 1.9e13, 1e15, 9223372036854775808.0, 1e22, DBL_MAX,
        DBL_MIN, DBL_TRUE_MIN, 1e-5, 999999.5, 9999995.0, 0.000099999995, inf, -inf, nan, -nan};
    // clang-format on
    values.push_back(std::nextafter(0.125, 0.0));
    values.push_back(std::nextafter(5.0 / 128, 1.0));
    std::mt19937_64 random(2024);
    for (int i = 0; i < 3000; ++i) {
        double bits = 0;
        const uint64_t pattern = random();
        std::memcpy(&bits, &pattern, sizeof(bits));
        values.push_back(bits);
        const double scales[] = {1.0, 100.0, 1e6, 128.0};
        values.push_back(
            static_cast<double>(static_cast<int64_t>(random() % 200000000) - 100000000) /
            scales[random() % 4]);
        values.push_back(std::ldexp(static_cast<double>(random() % (1ULL << 53)),
                                    static_cast<int>(random() % 140) - 120));
    }
    return values;
}

TEST(BankNumbers, WritesWhatSnprintfWrites) {
    const struct {
        const char* format;
        char* (*write)(double, char*);
    } kWriters[] = {{"%lf", &qzr::bank::WriteLf},
                    {"%6.2f", &qzr::bank::WriteWidth6Fixed2},
                    {"%lg", &qzr::bank::WriteLg}};
    char text[qzr::bank::kLongestNumber];
    for (const double value : Values()) {
        for (const auto& writer : kWriters) {
            ASSERT_EQ(std::string(text, writer.write(value, text)), Printf(writer.format, value))
                << writer.format << " of the double with bits 0x" << std::hex << Bits(value);
        }
    }
    for (const int value : {0, -1, 7007, INT_MAX, INT_MIN}) {
        EXPECT_EQ(std::string(text, qzr::bank::WriteD(value, text)), std::to_string(value));
    }
}

// ScanReal against sscanf("%lf"): both the answer and the bits of the value.
void ExpectScansLikeSscanf(const std::string& text) {
    double expected = -12345.5;
    double got = -12345.5;
    const bool converts = std::sscanf(text.c_str(), "%lf", &expected) == 1;
    EXPECT_EQ(qzr::bank::ScanReal(text.c_str(), &got), converts) << "'" << text << "'";
    EXPECT_EQ(Bits(got), Bits(expected)) << "'" << text << "'";
}

TEST(BankNumbers, ReadsWhatSscanfReads) {
    // clang-format off
    const char* const kTexts[] = {
        "", " ", "x", "\t\n\v\f\r7.5", "+3.25", "-0", "+-1", ".5", "5.", ".", "-.", "1E+5", "1e",
        "1e-x", "2.5e3kg", "1,5", "0x1p3", "0X1.8P1", "0x", "-0x10", "inf", "+Infinity", "infinit",
        "-nan", "nan(123)", "nan(", "1e400", "1e-400", "4.9e-324", "2.4e-324",
        "2.2250738585072011e-308", "9007199254740993", "123456789012345678901234567890",
        "3.14159265358979323846264338327950"};
    // clang-format on
    for (const char* text : kTexts) {
        ExpectScansLikeSscanf(text);
    }
    ExpectScansLikeSscanf(std::string(400, '9') + ".5");
    ExpectScansLikeSscanf("0." + std::string(400, '0') + "1");
    for (const double value : Values()) {
        for (const char* format : {"%lf", "%.17g", " %6.2f", "%a"}) {
            ExpectScansLikeSscanf(Printf(format, value));
        }
    }
}

TEST(BankNumbers, IntegersReadAsSscanfReadsThem) {
    for (const char* text : {"42", "+42", " \t12x", "-2147483648", "-", "x1", "", "1.9"}) {
        int expected = -7;
        int got = -7;
        const bool converts = std::sscanf(text, "%d", &expected) == 1;
        EXPECT_EQ(qzr::platform::ScanInt(text, &got), converts) << "'" << text << "'";
        EXPECT_EQ(got, expected) << "'" << text << "'";
    }
}

}  // namespace

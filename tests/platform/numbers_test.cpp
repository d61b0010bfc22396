// The number conversions of the bank files. A table pins, on every platform, the bits every
// odd text reads to and the bytes every kind of double is written as, as the GNU C library
// gives them in the "C" locale; where the C library is the GNU one, its sscanf and snprintf
// must also agree on generated texts and values.
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "platform/CNumbers.h"
#include "platform/ScopedLocale.h"

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

// A text as a failure message shows it, control bytes escaped.
std::string Shown(const std::string& text) {
    return ::testing::PrintToString(text);
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
// The pinned table

struct ReadRow {
    std::string text;
    bool converts;
    uint64_t bits;  // of the value read; 0 where nothing converts
};

std::vector<ReadRow> ReadRows() {
    const uint64_t inf = 0x7ff0000000000000;
    const uint64_t minusInf = 0xfff0000000000000;
    const uint64_t nan = 0x7ff8000000000000;
    const uint64_t minusNan = 0xfff8000000000000;
    const uint64_t minusZero = 0x8000000000000000;
    const uint64_t one = 0x3ff0000000000000;
    // clang-format off
    return {
        // Plain bank numbers, blanks, signs, the rest of the text ignored.
        {"1500.000000", true, 0x4097700000000000}, {"0.01", true, 0x3f847ae147ae147b},
        {"-2.675", true, 0xc005666666666666}, {"  +3.25kg", true, 0x400a000000000000},
        {"2500", true, 0x40a3880000000000}, {"0.1", true, 0x3fb999999999999a},
        {"1.5e+007", true, 0x416c9c3800000000}, {"1.0E-010", true, 0x3ddb7cdfd9d7bdbb},
        {" \t\n\v\f\r7.5", true, 0x401e000000000000}, {"1,5", true, one},
        {"1.2.3", true, 0x3ff3333333333333}, {"+.5", true, 0x3fe0000000000000},
        {"-.5", true, 0xbfe0000000000000}, {"5.", true, 0x4014000000000000},
        // Nothing to convert: the value stays as it was.
        {"", false, 0}, {"   ", false, 0}, {".", false, 0}, {"-", false, 0}, {"+", false, 0},
        {"-.", false, 0}, {".e5", false, 0}, {"+-1", false, 0}, {"- 5", false, 0},
        {"\x1c" "1", false, 0}, {"\xa0" "1", false, 0},
        // Partial exponents are left out.
        {"1e", true, one}, {"1e+", true, one}, {"1e-", true, one}, {"1ex", true, one},
        {"0e", true, 0}, {"1.5E+x", true, 0x3ff8000000000000},
        // Signed zeros.
        {"-0", true, minusZero}, {"-0.000000", true, minusZero}, {"-0e5", true, minusZero},
        {"+0", true, 0},
        // The ends of the doubles, denormals, and beyond them.
        {"1.7976931348623157e308", true, 0x7fefffffffffffff},
        {"-1.7976931348623157e+308", true, 0xffefffffffffffff},
        {"1.7976931348623158e308", true, 0x7fefffffffffffff},
        {"1.7976931348623159e308", true, inf},
        {"2.2250738585072014e-308", true, 0x0010000000000000},
        {"2.2250738585072011e-308", true, 0x000fffffffffffff},
        {"4.9406564584124654e-324", true, 1}, {"3e-324", true, 1},
        {"2.4703282292062328e-324", true, 1}, {"2.4703282292062327e-324", true, 0},
        {"2e-324", true, 0},
        {"1e400", true, inf}, {"-1e400", true, minusInf},
        {"1e99999999999999999999", true, inf}, {"1e-400", true, 0},
        {"-1e-400", true, minusZero}, {"1e-99999999999999999999", true, 0},
        {"0e99999999999999999999", true, 0},
        // Long digit strings: every digit counts, however far out.
        {"9007199254740993", true, 0x4340000000000000},
        {"9007199254740993." + std::string(300, '0') + "1", true, 0x4340000000000001},
        {std::string(400, '9') + ".5", true, inf},
        {"0." + std::string(400, '0') + "1", true, 0},
        {"1" + std::string(400, '0') + "e-400", true, one},
        // Infinity and NaN in every spelling; no payload is read.
        {"inf", true, inf}, {"INF", true, inf}, {"-Inf", true, minusInf}, {"+inF", true, inf},
        {"infinity", true, inf}, {"-INFINITY", true, minusInf}, {"infinityx", true, inf},
        {"infx", true, inf}, {"infinit", false, 0}, {"in", false, 0}, {"i", false, 0},
        {"nan", true, nan}, {"NAN", true, nan}, {"-nan", true, minusNan}, {"+nan", true, nan},
        {"nan(123)", true, nan}, {"-NaN(0x5)", true, minusNan}, {"nan(", true, nan},
        {"na", false, 0},
        // Hexadecimal numbers, complete and not.
        {"0x1p3", true, 0x4020000000000000}, {"0X1.8P-2", true, 0x3fd8000000000000},
        {"-0x10", true, 0xc030000000000000}, {"0x.8", true, 0x3fe0000000000000},
        {"0x1e3", true, 0x407e300000000000}, {"0x1p", true, one}, {"0x1p+", true, one},
        {"0x", false, 0}, {"-0x", false, 0}, {"0xp1", false, 0}, {"0xg", false, 0},
        {"0x.p1", true, 0}, {"-0x.", true, minusZero}, {"00x1p3", true, 0},
        {"0x1P-1074", true, 1}, {"0x1p-1075", true, 0}, {"0x1.8p-1075", true, 1},
        {"0x1p-1022", true, 0x0010000000000000},
        {"0x0.fffffffffffffp-1022", true, 0x000fffffffffffff},
        {"0x1.fffffffffffff7ffp1023", true, 0x7fefffffffffffff},
        {"0x1.fffffffffffff8p1023", true, inf}, {"0x1p1024", true, inf},
        {"0x1p99999999999999999999", true, inf}, {"0x1p-99999999999999999999", true, 0},
        // A denormal from more than 53 significant bits, just above a tie: rounded as the tie
        // (to even), as the GNU C library has always rounded it.
        {"0x1c66067f58749980000000P-1107", true, 0x000e33033fac3a4c},
    };
    // clang-format on
}

struct IntRow {
    const char* text;
    bool converts;
    int value;
};

// clang-format off
constexpr IntRow kIntRows[] = {
    {"42", true, 42}, {"+42", true, 42}, {" \t12x", true, 12}, {"\v7", true, 7}, {"007", true, 7},
    {"1.9", true, 1}, {"0x10", true, 0}, {"-2147483648", true, INT_MIN}, {"2147483647", true, INT_MAX},
    // Beyond 32 bits: clamped, every digit taken.
    {"2147483648", true, INT_MAX}, {"-2147483649", true, INT_MIN}, {"99999999999999999999x", true, INT_MAX},
    {"-", false, 0}, {"x1", false, 0}, {"", false, 0}, {"   ", false, 0}, {"- 1", false, 0}, {"+-1", false, 0},
};
// clang-format on

// Decimal digits of three large doubles, for the fixed formats.
const std::string kLargestDouble =
    "17976931348623157081452742373170435679807056752584499659891747680315726078002853876058955"
    "86327668781715404589535143824642343213268894641827684675467035375169860499105765512820762"
    "45490090389328944075868508455133942304583236903222948165808559332123348274797826204144723"
    "168738177180919299881250404026184124858368";
const std::string kDouble1e308 =
    "10000000000000000109790636294404554174049230967731184633681068290315758540491149153716332"
    "89784946888990612496697211725156115902837431400883283070091981460460312716645029330271856"
    "97489699588559043338384466165001178426897626212945177628091195786707458122783970171784415"
    "105291802893207873272974885715430223118336";
const std::string kDouble1e300 =
    "10000000000000000525047602552044202487044685811081591549158541155118024579889081957863713"
    "75080447864043704443832883878176942523235360430575644792184786706982848387200926575803737"
    "83023379478809005936895323497079994508111903896764088007465274278014249457925878882005684"
    "2838115669472196386865459400540160";

const char* const kPinnedFormats[] = {"%lf", "%6.2f", "%lg", "%.4g", "%.17g"};

struct WriteRow {
    uint64_t bits;
    std::string texts[5];  // in each of kPinnedFormats
};

std::vector<WriteRow> WriteRows() {
    // clang-format off
    return {
        {0x0000000000000000, "0.000000", "  0.00", "0", "0", "0"},
        {0x8000000000000000, "-0.000000", " -0.00", "-0", "-0", "-0"},
        {0x3ff8000000000000, "1.500000", "  1.50", "1.5", "1.5", "1.5"},
        {0xc005666666666666, "-2.675000", " -2.67", "-2.675", "-2.675", "-2.6749999999999998"},
        {0x3fc0000000000000, "0.125000", "  0.12", "0.125", "0.125", "0.125"},
        {0xbfe4000000000000, "-0.625000", " -0.62", "-0.625", "-0.625", "-0.625"},
        {0x3f747ae147ae147b, "0.005000", "  0.01", "0.005", "0.005", "0.0050000000000000001"},
        {0x4058ffae147ae148, "99.995000", "100.00", "99.995", "100", "99.995000000000005"},
        {0x412e847f00000000, "999999.500000", "999999.50", "1e+06", "1e+06", "999999.5"},
        {0x3e7ad7f29abcaf48, "0.000000", "  0.00", "1e-07", "1e-07", "9.9999999999999995e-08"},
        {0xbea0c6f7a0b5ed8d, "-0.000000", " -0.00", "-5e-07", "-5e-07",
         "-4.9999999999999998e-07"},
        {0x40fe240800000000, "123456.500000", "123456.50", "123456", "1.235e+05", "123456.5"},
        {0x4132d68700000000, "1234567.000000", "1234567.00", "1.23457e+06", "1.235e+06",
         "1234567"},
        {0x3fa4000000000000, "0.039062", "  0.04", "0.0390625", "0.03906", "0.0390625"},
        {0x42a0eaa664900000, "9300000000000.000000", "9300000000000.00", "9.3e+12", "9.3e+12",
         "9300000000000"},
        {0x430c6bf526340000, "1000000000000000.000000", "1000000000000000.00", "1e+15", "1e+15",
         "1000000000000000"},
        {0x43e0000000000000, "9223372036854775808.000000", "9223372036854775808.00",
         "9.22337e+18", "9.223e+18", "9.2233720368547758e+18"},
        {0x4480f0cf064dd592, "10000000000000000000000.000000", "10000000000000000000000.00",
         "1e+22", "1e+22", "1e+22"},
        {0x7e37e43c8800759c, kDouble1e300 + ".000000", kDouble1e300 + ".00", "1e+300",
         "1e+300", "1.0000000000000001e+300"},
        {0x7fe1ccf385ebc8a0, kDouble1e308 + ".000000", kDouble1e308 + ".00", "1e+308",
         "1e+308", "1e+308"},
        {0x7fefffffffffffff, kLargestDouble + ".000000", kLargestDouble + ".00", "1.79769e+308",
         "1.798e+308", "1.7976931348623157e+308"},
        {0xffefffffffffffff, "-" + kLargestDouble + ".000000", "-" + kLargestDouble + ".00",
         "-1.79769e+308", "-1.798e+308", "-1.7976931348623157e+308"},
        {0x0010000000000000, "0.000000", "  0.00", "2.22507e-308", "2.225e-308",
         "2.2250738585072014e-308"},
        {0x0000000000000001, "0.000000", "  0.00", "4.94066e-324", "4.941e-324",
         "4.9406564584124654e-324"},
        {0x80000000000007e8, "-0.000000", " -0.00", "-9.99989e-321", "-1e-320",
         "-9.9998886718268301e-321"},
        // Infinity and NaN as the GNU C library writes them, the sign bit shown for NaN too.
        {0x7ff0000000000000, "inf", "   inf", "inf", "inf", "inf"},
        {0xfff0000000000000, "-inf", "  -inf", "-inf", "-inf", "-inf"},
        {0x7ff8000000000000, "nan", "   nan", "nan", "nan", "nan"},
        {0xfff8000000000000, "-nan", "  -nan", "-nan", "-nan", "-nan"},
        {0x7ff000000000007b, "nan", "   nan", "nan", "nan", "nan"},
        {0xfff0000000000001, "-nan", "  -nan", "-nan", "-nan", "-nan"},
    };
    // clang-format on
}

// "%.*g" with other precisions: 0 counts as 1, a negative one as none (6).
struct PrecisionRow {
    double value;
    int precision;
    const char* text;
};

// clang-format off
const PrecisionRow kPrecisionRows[] = {
    {123.456, 0, "1e+02"}, {123.456, -1, "123.456"}, {0.0001234, 2, "0.00012"}, {2.5, 1, "2"},
    {3.5, 1, "4"}, {-0.0, 0, "-0"}, {1.0 / 3, 25, "0.3333333333333333148296163"},
    {DBL_TRUE_MIN, 30, "4.94065645841246544176568792868e-324"},
    {1e100, 40, "1.000000000000000015902891109759918046836e+100"},
};
// clang-format on

void ExpectPinnedReads() {
    for (const ReadRow& row : ReadRows()) {
        double value = kUntouched;
        EXPECT_EQ(ScanDouble(row.text.c_str(), &value), row.converts) << Shown(row.text);
        EXPECT_EQ(Hex(Bits(value)), Hex(row.converts ? row.bits : Bits(kUntouched)))
            << Shown(row.text);
    }
    for (const IntRow& row : kIntRows) {
        int value = -7;
        EXPECT_EQ(ScanInt(row.text, &value), row.converts) << Shown(row.text);
        EXPECT_EQ(value, row.converts ? row.value : -7) << Shown(row.text);
    }
}

void ExpectPinnedWrites() {
    for (const WriteRow& row : WriteRows()) {
        for (size_t format = 0; format < 5; ++format) {
            EXPECT_EQ(Written(kPinnedFormats[format], FromBits(row.bits)), row.texts[format])
                << kPinnedFormats[format] << " of the double " << Hex(row.bits);
        }
    }
    for (const PrecisionRow& row : kPrecisionRows) {
        EXPECT_EQ(Written("%." + std::to_string(row.precision) + "g", row.value), row.text)
            << "precision " << row.precision << " of " << Hex(Bits(row.value));
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
    // "%d" beyond 32 bits is left to the C library's whim; the table pins it.
    char* end = nullptr;
    const long long wide = std::strtoll(text.c_str(), &end, 10);
    if (wide >= INT_MIN && wide <= INT_MAX) {
        int expectedInt = -7;
        int gotInt = -7;
        ASSERT_EQ(ScanInt(text.c_str(), &gotInt),
                  std::sscanf(text.c_str(), "%d", &expectedInt) == 1)
            << Shown(text);
        ASSERT_EQ(gotInt, expectedInt) << Shown(text);
    }
}

void ExpectWritesAsGlibc(double value) {
    for (const char* format : {"%lf", "%6.2f", "%lg", "%.0g", "%.4g", "%.17g", "%.25g"}) {
        ASSERT_EQ(Written(format, value), Printf(format, value))
            << format << " of the double " << Hex(Bits(value));
    }
    // And read back from the texts the C library writes.
    for (const char* format : {"%.17g", "%a", "%lf", "%.3e"}) {
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
    }
#endif
}

}  // namespace
}  // namespace qzr::platform

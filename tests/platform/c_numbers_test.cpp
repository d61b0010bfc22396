#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <cstring>
#include <string>

#include "platform/CNumbers.h"
#include "platform/ScopedLocale.h"

namespace qzr::platform {
namespace {

using test::ScopedLocale;

constexpr double kUntouched = -12345.0;
constexpr int kUntouchedInt = -777;

struct DoubleRow {
    const char* label;
    const char* text;
    bool converts;
    double expected;  // compared exactly; NaN and infinities by class
};

const DoubleRow kDoubleRows[] = {
    {"plain", "1.5", true, 1.5},
    {"leading blanks, trailing text", "  -2.25xyz", true, -2.25},
    {"all C white space", " \t\n\v\f\r7", true, 7.0},
    {"plus sign", "+3e2", true, 300.0},
    {"negative exponent", "1e-3", true, 0.001},
    {"two-digit exponent form", "2.5e+07", true, 2.5e7},
    {"three-digit exponent form", "2.5e+007", true, 2.5e7},
    {"no integer part", ".5", true, 0.5},
    {"no fraction digits", "5.", true, 5.0},
    {"comma ends the number", "1,5", true, 1.0},
    {"hex float", "0x1p4", true, 16.0},
    {"infinity", "inf", true, HUGE_VAL},
    {"negative infinity, capitals", "-INFINITY", true, -HUGE_VAL},
    {"nan", "nan", true, NAN},
    {"overlong digits", "123456789012345678901234567890123456789", true,
     123456789012345678901234567890123456789.0},
    {"overflow gives infinity", "1e999", true, HUGE_VAL},
    {"empty", "", false, 0},
    {"blanks only", "   ", false, 0},
    {"letters", "abc", false, 0},
    {"sign only", "-", false, 0},
    {"exponent only", "e5", false, 0},
};

void ExpectDoubleRows() {
    for (const DoubleRow& row : kDoubleRows) {
        double value = kUntouched;
        EXPECT_EQ(ScanDouble(row.text, &value), row.converts) << row.label;
        if (!row.converts) {
            EXPECT_EQ(value, kUntouched) << row.label;
        } else if (std::isnan(row.expected)) {
            EXPECT_TRUE(std::isnan(value)) << row.label;
        } else {
            EXPECT_EQ(value, row.expected) << row.label;
        }
    }
}

TEST(CNumbers, ScanDoubleTable) {
    ExpectDoubleRows();
}

struct IntRow {
    const char* label;
    const char* text;
    bool converts;
    int expected;
};

const IntRow kIntRows[] = {
    {"plain", "42", true, 42},
    {"leading blanks, trailing text", " -17x", true, -17},
    {"all C white space", " \t\n\v\f\r12", true, 12},
    {"plus sign", "+8", true, 8},
    {"leading zeros", "007", true, 7},
    {"hex is decimal zero then text", "0x1A", true, 0},
    {"fraction ignored", "1.9", true, 1},
    {"second number ignored", "12 34", true, 12},
    {"largest", "2147483647", true, INT_MAX},
    {"smallest", "-2147483648", true, INT_MIN},
    {"one beyond largest clamps", "2147483648", true, INT_MAX},
    {"one beyond smallest clamps", "-2147483649", true, INT_MIN},
    {"overlong positive clamps", "99999999999999999999999999", true, INT_MAX},
    {"overlong negative clamps", "-99999999999999999999999999", true, INT_MIN},
    {"overlong zeros", "000000000000000000000000005", true, 5},
    {"empty", "", false, 0},
    {"letters", "abc", false, 0},
    {"sign only", "-", false, 0},
    {"blank after sign", "+ 5", false, 0},
    {"point first", ".5", false, 0},
};

TEST(CNumbers, ScanIntTable) {
    for (const IntRow& row : kIntRows) {
        int value = kUntouchedInt;
        EXPECT_EQ(ScanInt(row.text, &value), row.converts) << row.label;
        EXPECT_EQ(value, row.converts ? row.expected : kUntouchedInt) << row.label;
    }
}

// Within 32 bits the hand-made conversion must agree with the C library's own "%d".
TEST(CNumbers, ScanIntAgreesWithSscanfInRange) {
    const char* texts[] = {"0",      "-0", "+0", "  15;", "-2147483648", "2147483647",
                           "\t-99 ", "x",  "",   "- 1",   "123abc",      "9\n"};
    for (const char* text : texts) {
        int ours = kUntouchedInt;
        int theirs = kUntouchedInt;
        const bool converted = ScanInt(text, &ours);
        EXPECT_EQ(converted, std::sscanf(text, "%d", &theirs) == 1) << '"' << text << '"';
        EXPECT_EQ(ours, theirs) << '"' << text << '"';
    }
}

TEST(CNumbers, NullArgumentsConvertNothing) {
    double real = kUntouched;
    int integer = kUntouchedInt;
    EXPECT_FALSE(ScanDouble(nullptr, &real));
    EXPECT_FALSE(ScanInt(nullptr, &integer));
    EXPECT_EQ(real, kUntouched);
    EXPECT_EQ(integer, kUntouchedInt);
    EXPECT_FALSE(ScanDouble("1.0", nullptr));
    EXPECT_FALSE(ScanInt("1", nullptr));
}

TEST(CNumbers, FormatTable) {
    struct Row {
        const char* label;
        std::string actual;
        std::string expected;
    };
    const Row rows[] = {
        {"six decimals", FormatC("%lf", 1.5), "1.500000"},
        {"width and precision", FormatC("%6.2f", 3.14159), "  3.14"},
        {"negative width", FormatC("%6.2f", -3.14159), " -3.14"},
        {"short form, small", FormatC("%lg", 0.25), "0.25"},
        {"integer", FormatC("%ld", -2147483647L - 1), "-2147483648"},
        {"several fields", FormatC("[Machine-%ld]\n", 12L), "[Machine-12]\n"},
        {"empty format", FormatC("%s", ""), ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.actual, row.expected) << row.label;
    }
}

// The exponent of "%lg" has the platform's digit count; the reader accepts both forms.
TEST(CNumbers, ShortFormExponentRoundTrips) {
    const std::string text = FormatC("%lg", 1e-7);
    EXPECT_TRUE(text == "1e-07" || text == "1e-007") << text;
    double value = 0;
    ASSERT_TRUE(ScanDouble(text.c_str(), &value));
    EXPECT_EQ(value, 1e-7);
}

TEST(CNumbers, FormatLongerThanAnyFixedBuffer) {
    const std::string remark(5000, 'r');
    const std::string text = FormatC("Remark = %s|%d", remark.c_str(), 7);
    EXPECT_EQ(text, "Remark = " + remark + "|7");
}

TEST(CNumbers, AppendFormatKeepsWhatIsThere) {
    std::string out = "Version    = ";
    AppendFormatC(&out, "%ld\n", 9000L);
    AppendFormatC(&out, "%s", "");
    EXPECT_EQ(out, "Version    = 9000\n");
}

// A host running with a decimal comma must still get '.' in every bank, and its own locale
// must be left as it was.
TEST(CNumbers, DecimalCommaLocaleIgnored) {
    const char* candidates[] = {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German_Germany.1252"};
    bool installed = false;
    for (const char* name : candidates) {
        ScopedLocale locale(name);
        if (!locale.installed() || std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
            continue;
        }
        installed = true;
        EXPECT_EQ(FormatC("%lf|%6.2f|%lg", 1.5, 2.25, 0.125), "1.500000|  2.25|0.125");
        ExpectDoubleRows();
        EXPECT_STREQ(std::localeconv()->decimal_point, ",") << "host locale changed";
        break;
    }
    if (!installed) {
        GTEST_SKIP() << "no decimal-comma locale on this host";
    }
}

}  // namespace
}  // namespace qzr::platform

// The platform's text conversions: numbers always as in the "C" locale, names folded as the
// current locale says, and the banks' UTC time stamp, each against the C library as oracle.
#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>
#include <random>
#include <string>

#include "platform/CNumbers.h"
#include "platform/CaseFolding.h"
#include "platform/ScopedLocale.h"
#include "platform/TimeStamp.h"

namespace qzr::platform {
namespace {

// Within 32 bits both conversions must agree with sscanf's own "%lf" and "%d", also in leaving
// the value alone when nothing converts.
TEST(CNumbers, ScanAgreesWithSscanf) {
    for (const char* text :
         {"1.5",  "  -2.25xyz", " \t\n\v\f\r7", "+3e2", "2.5e+007",    ".5",         "5.", "1,5",
          "0x1A", "0x1p4",      "-INFINITY",    "nan",  "1e999",       "0000000005", "",   "   ",
          "abc",  "-",          "+ 5",          "e5",   "-2147483648", "2147483647"}) {
        double ours = -7.0;
        double theirs = -7.0;
        EXPECT_EQ(ScanDouble(text, &ours), std::sscanf(text, "%lf", &theirs) == 1) << text;
        EXPECT_TRUE(ours == theirs || (std::isnan(ours) && std::isnan(theirs))) << text;
        int ourInt = -7;
        int theirInt = -7;
        EXPECT_EQ(ScanInt(text, &ourInt), std::sscanf(text, "%d", &theirInt) == 1) << text;
        EXPECT_EQ(ourInt, theirInt) << text;
    }
    // Beyond 32 bits sscanf is undefined; the banks load the same everywhere by clamping.
    int value = 0;
    EXPECT_TRUE(ScanInt("2147483648", &value));
    EXPECT_EQ(value, INT_MAX);
    EXPECT_TRUE(ScanInt("-99999999999999999999x", &value));
    EXPECT_EQ(value, INT_MIN);
}

// A host running with a decimal comma still gets '.' in every bank, and keeps its own locale.
TEST(CNumbers, FormatInAnyLocale) {
    const std::string remark(5000, 'r');  // longer than any fixed buffer
    std::string out = "Remark = ";
    AppendFormatC(&out, "%s|%d", remark.c_str(), 7);
    EXPECT_EQ(out, "Remark = " + remark + "|7");
    test::ScopedLocale locale("de_DE.UTF-8");
    if (!locale.installed() || std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
        GTEST_SKIP() << "no decimal-comma locale on this host";
    }
    EXPECT_EQ(FormatC("%lf|%6.2f|%lg", 1.5, -2.25, 0.125), "1.500000| -2.25|0.125");
    double real = 0;
    EXPECT_TRUE(ScanDouble("2,5", &real));
    EXPECT_EQ(real, 2.0);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",") << "host locale changed";
}

// A-Z fold in every locale; other bytes as the locale's tolower says, multibyte characters kept
// whole. Rows whose locale the host lacks are skipped.
TEST(CaseFolding, Table) {
    const struct {
        const char* locale;
        std::string input;
        std::string expected;
    } rows[] = {
        {"C", std::string("Ab\0Z\304\326", 6), std::string("ab\0z\304\326", 6)},
        {"C.UTF-8", "\303\204RGER", "\303\204rger"},  // a two-byte capital stays
        {"C.UTF-8", "\200Z AB\303", "\200z ab\303"},  // stray and truncated bytes
        {"ja_JP.SJIS", "\203AA", "\203Aa"},           // the trail byte 'A' belongs to \203
        {"de_DE.ISO-8859-1", "\304Z", "\344z"},
    };
    for (const auto& row : rows) {
        test::ScopedLocale locale(row.locale);
        if (locale.installed()) {
            EXPECT_EQ(FoldCase(row.input), row.expected) << row.locale << ": " << row.input;
        }
    }
}

#if !defined(_WIN32)
// The C library's own UTC conversion, with the English names spelled out here: the oracle.
std::string GmtimeStamp(int64_t seconds) {
    const time_t value = static_cast<time_t>(seconds);
    struct tm parts;
    if (sizeof(time_t) < 8 || gmtime_r(&value, &parts) == nullptr) {
        return "no gmtime";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.3s %.3s %02d %02d:%02d:%02d %d\n",
                  &"SunMonTueWedThuFriSat"[3 * parts.tm_wday],
                  &"JanFebMarAprMayJunJulAugSepOctNovDec"[3 * parts.tm_mon], parts.tm_mday,
                  parts.tm_hour, parts.tm_min, parts.tm_sec, parts.tm_year + 1900);
    return text;
}

#endif  // !defined(_WIN32)

TEST(TimeStamp, AgreesWithGmtime) {
    EXPECT_EQ(FormatUtcTimeStamp(253402300799), "Fri Dec 31 23:59:59 9999\n");
    // No particular text this far out; the call must simply be well defined.
    EXPECT_FALSE(FormatUtcTimeStamp(std::numeric_limits<int64_t>::max()).empty());
    EXPECT_FALSE(FormatUtcTimeStamp(std::numeric_limits<int64_t>::min()).empty());
#if !defined(_WIN32)
    ASSERT_EQ(GmtimeStamp(951782400), "Tue Feb 29 00:00:00 2000\n") << "the oracle itself";
    std::mt19937_64 random(1980);
    std::uniform_int_distribution<int64_t> seconds(-62135596800, 253402300799);  // years 1-9999
    for (int64_t value : {int64_t{-1}, int64_t{0}, int64_t{4107542400}, int64_t{2147483648}}) {
        EXPECT_EQ(FormatUtcTimeStamp(value), GmtimeStamp(value)) << value;
    }
    for (int i = 0; i < 2000; ++i) {
        const int64_t value = seconds(random);
        ASSERT_EQ(FormatUtcTimeStamp(value), GmtimeStamp(value)) << value;
    }
#endif
}

}  // namespace
}  // namespace qzr::platform

// The platform's text conversions: names folded as the current locale says, and the banks' UTC
// time stamp against the C library as oracle. Numbers have numbers_test.cpp.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "platform/CaseFolding.h"
#include "platform/ScopedLocale.h"
#include "platform/TimeStamp.h"

namespace qzr::platform {
namespace {

// A-Z fold in every locale (their neighbours never); other bytes as the locale's tolower says,
// multibyte characters kept whole. Rows whose locale the host lacks are skipped, with a word.
TEST(CaseFolding, Table) {
    const std::vector<const char*> c = {"C"};
    const struct {
        const std::vector<const char*>& locale;
        std::string input;
        std::string expected;
    } rows[] = {
        {c, std::string("@Ab\0Z[\304\326", 8), std::string("@ab\0z[\304\326", 8)},
        {test::kUtf8, "\303\204RGER", "\303\204rger"},  // a two-byte capital stays
        {test::kUtf8, "\200Z AB\303", "\200z ab\303"},  // stray and truncated bytes
        {test::kShiftJisJapanese, "\203AA", "\203Aa"},  // the trail byte 'A' belongs to \203
        {test::kLatin1German, "\304Z", "\344z"},
    };
    for (const auto& row : rows) {
        const test::ScopedLocale locale(row.locale);
        if (!locale.installed()) {
            std::cout << "no locale " << row.locale[0] << " here: its row is left out\n";
            continue;
        }
        EXPECT_EQ(FoldCase(row.input), row.expected) << locale.name() << ": " << row.input;
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

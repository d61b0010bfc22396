#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <limits>
#include <random>
#include <string>

#include "platform/TimeStamp.h"

namespace qzr::platform {
namespace {

TEST(TimeStamp, Table) {
    struct Row {
        int64_t seconds;
        const char* expected;
    };
    const Row rows[] = {
        {0, "Thu Jan 01 00:00:00 1970\n"},
        {315626635, "Wed Jan 02 02:03:55 1980\n"},
        {68256000, "Wed Mar 01 00:00:00 1972\n"},  // the day after a leap day
        {946684799, "Fri Dec 31 23:59:59 1999\n"},
        {951782400, "Tue Feb 29 00:00:00 2000\n"},  // 2000 is a leap year (divisible by 400)
        {1709164800, "Thu Feb 29 00:00:00 2024\n"},
        {2147483647, "Tue Jan 19 03:14:07 2038\n"},
        {2147483648, "Tue Jan 19 03:14:08 2038\n"},
        {4102444800, "Fri Jan 01 00:00:00 2100\n"},
        {4107542400, "Mon Mar 01 00:00:00 2100\n"},  // 2100 is not (divisible by 100 only)
        {253402300799, "Fri Dec 31 23:59:59 9999\n"},
        {-1, "Wed Dec 31 23:59:59 1969\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FormatUtcTimeStamp(row.seconds), row.expected) << row.seconds;
    }
}

#if !defined(_WIN32)
// The C library's own UTC conversion, with English names spelled out here, as the oracle.
std::string OracleStamp(int64_t seconds) {
    static const char* const kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const time_t value = static_cast<time_t>(seconds);
    struct tm parts;
    if (gmtime_r(&value, &parts) == nullptr) {
        return "gmtime failed";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%s %s %02d %02d:%02d:%02d %d\n", kWeekdays[parts.tm_wday],
                  kMonths[parts.tm_mon], parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  parts.tm_year + 1900);
    return text;
}

TEST(TimeStamp, AgreesWithGmtime) {
    if (sizeof(time_t) < 8) {
        GTEST_SKIP() << "32-bit time_t";
    }
    std::mt19937_64 random(1980);
    std::uniform_int_distribution<int64_t> seconds(-62135596800, 253402300799);  // years 1-9999
    for (int i = 0; i < 20000; ++i) {
        const int64_t value = seconds(random);
        ASSERT_EQ(FormatUtcTimeStamp(value), OracleStamp(value)) << value;
    }
}

#endif  // !defined(_WIN32)

TEST(TimeStamp, ExtremeValuesStayDefined) {
    // No particular text is expected this far out; the call must simply be well defined.
    EXPECT_FALSE(FormatUtcTimeStamp(std::numeric_limits<int64_t>::max()).empty());
    EXPECT_FALSE(FormatUtcTimeStamp(std::numeric_limits<int64_t>::min()).empty());
}

}  // namespace
}  // namespace qzr::platform

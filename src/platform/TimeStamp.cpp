#include "platform/TimeStamp.h"

#include <charconv>

namespace qzr::platform {

namespace {

constexpr int64_t kSecondsPerDay = 86400;

struct CivilDate {
    int64_t year;
    int month;  // 1 to 12
    int day;    // 1 to 31
};

int64_t FloorDiv(int64_t a, int64_t b) {
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)));
}

// Proleptic Gregorian date of a day number counted from 1970-01-01, by era arithmetic (eras of
// 400 years, 146097 days, starting on 1 March), valid for every day an int64_t of seconds
// can reach.
CivilDate CivilFromDays(int64_t days) {
    const int64_t shifted = days + 719468;  // days from 0000-03-01
    const int64_t era = FloorDiv(shifted, 146097);
    const int64_t dayOfEra = shifted - era * 146097;  // 0 to 146096
    const int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;  // 0 to 399
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;  // 0 = March
    CivilDate date;
    date.day = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
    date.month = static_cast<int>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
    date.year = yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0);
    return date;
}

// "%02d" of a number from 0 to 99.
std::string TwoDigits(int64_t value) {
    return {static_cast<char>('0' + value / 10), static_cast<char>('0' + value % 10)};
}

// "%lld" of the year.
std::string Year(int64_t year) {
    char digits[24];
    return std::string(digits, std::to_chars(digits, digits + sizeof(digits), year).ptr);
}

}  // namespace

// The text the banks have always carried, the C runtime's asctime form but with the day of the
// month zero-padded, built without gmtime or the locale so it is the same on every host.
std::string FormatUtcTimeStamp(int64_t secondsSinceEpoch) {
    static const char* const kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    // Split into days and seconds of the day without ever leaving the int64_t range.
    const int64_t remainder = secondsSinceEpoch % kSecondsPerDay;
    const int64_t days = secondsSinceEpoch / kSecondsPerDay - (remainder < 0 ? 1 : 0);
    const int64_t secondOfDay = remainder < 0 ? remainder + kSecondsPerDay : remainder;
    const CivilDate date = CivilFromDays(days);
    const int64_t weekday = ((days + 4) % 7 + 7) % 7;  // 1970-01-01 was a Thursday
    // "%s %s %02d %02d:%02d:%02d %lld\n"
    return std::string(kWeekdays[weekday]) + " " + kMonths[date.month - 1] + " " +
           TwoDigits(date.day) + " " + TwoDigits(secondOfDay / 3600) + ":" +
           TwoDigits(secondOfDay / 60 % 60) + ":" + TwoDigits(secondOfDay % 60) + " " +
           Year(date.year) + "\n";
}

}  // namespace qzr::platform

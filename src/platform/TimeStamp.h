// The UTC time stamp of sectioned banks, 'Www Mmm dd hh:mm:ss yyyy' and a newline: English
// names, a zero-padded day of the month, independent of time zone and locale.
#ifndef QZR_PLATFORM_TIMESTAMP_H
#define QZR_PLATFORM_TIMESTAMP_H

#include <cstdint>
#include <string>

namespace qzr::platform {

std::string FormatUtcTimeStamp(int64_t secondsSinceEpoch);

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_TIMESTAMP_H

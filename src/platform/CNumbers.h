// Numbers as the C library reads and writes them in the "C" locale, whatever locale the host
// has set: the decimal point is always '.'.
#ifndef QZR_PLATFORM_CNUMBERS_H
#define QZR_PLATFORM_CNUMBERS_H

#include <cstdarg>
#include <string>

namespace qzr::platform {

// sscanf(text, "%lf"): leading white space skipped, longest numeric prefix taken, the rest
// ignored. False (and *value untouched) when no number converts.
bool ScanDouble(const char* text, double* value);
// sscanf(text, "%d") into a 32-bit int (the "%ld" of the bank formats is 32 bits wide, as on
// the platform the banks come from). False (and *value untouched) when no number converts.
// A number beyond 32 bits gives INT_MAX or INT_MIN (its digits are all consumed).
bool ScanInt(const char* text, int* value);

// snprintf under the "C" locale, into a std::string of any length.
std::string FormatC(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;
void AppendFormatC(std::string* out, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;
// The same with a va_list (for printf-style wrappers such as TextWriter::Format).
void AppendFormatCV(std::string* out, const char* format, va_list args)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 0)))
#endif
    ;

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_CNUMBERS_H

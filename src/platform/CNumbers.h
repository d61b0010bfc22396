// Numbers of the bank files, read and written as the GNU C library reads and writes them in the
// "C" locale ("%lf" and "%d" of sscanf; "%lf", "%6.2f", "%lg", "%.*g" and "%d" of snprintf), but
// computed here, with <charconv> and glue of our own, so that every platform, C runtime and host
// locale reads the same values and writes the same bytes. The decimal point is always '.';
// infinity and NaN are written "inf", "-inf", "nan" and "-nan" and read in every C99 spelling, as
// are hexadecimal numbers. Plain bank numbers take shortcuts fast enough for banks of hundreds
// of thousands of machines.
#ifndef QZR_PLATFORM_CNUMBERS_H
#define QZR_PLATFORM_CNUMBERS_H

#include <cstddef>

namespace qzr::platform {

// sscanf(text, "%lf"): white space skipped, then the longest numeric prefix taken and the rest
// ignored. Decimal and hexadecimal numbers round to nearest (a denormal from a hexadecimal
// number as glibc rounds it, see CNumbers.cpp); beyond the doubles they give +-inf, below them
// +-0 or the nearest denormal. "inf", "infinity" and "nan" in any letter
// case give +-inf and a quiet NaN without payload ("nan(...)" reads as "nan"). False (and
// *value untouched) when nothing converts: no digits, a bare "0x", "infinit".
bool ScanDouble(const char* text, double* value);
// sscanf(text, "%d") into a 32-bit int (the "%ld" of the bank formats is 32 bits wide, as on
// the platform the banks come from). False (and *value untouched) when no number converts.
// A number beyond 32 bits gives INT_MAX or INT_MIN (its digits are all consumed).
bool ScanInt(const char* text, int* value);

// Room for every number written below: "%lf" of the largest double has 317 characters.
constexpr std::size_t kLongestNumber = 320;
// The largest precision WriteG takes; a larger one is taken as this.
constexpr int kLongestPrecision = 200;

// The text snprintf gives for the value with the format named, written at out, which has room
// for kLongestNumber characters; each returns the end of the text (no terminator is written).
char* WriteLf(double value, char* out);                // "%lf"
char* WriteWidth6Fixed2(double value, char* out);      // "%6.2f"
char* WriteLg(double value, char* out);                // "%lg"
char* WriteG(double value, int precision, char* out);  // "%.*g" (0 counts as 1, below 0 as 6)
char* WriteD(int value, char* out);                    // "%d"

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_CNUMBERS_H

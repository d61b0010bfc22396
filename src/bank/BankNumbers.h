// Numbers of the bank formats as the C library reads and writes them under the "C" locale, fast
// enough for banks of hundreds of thousands of machines: "%lf" for reading reals, and "%lf",
// "%6.2f", "%lg" and "%d" for writing. Every result is the C library's, bit for bit and byte for
// byte; each routine takes a shortcut for the plain values that fill real banks and hands
// everything else (hex forms, inf, nan, values out of the shortcut's range) to the C library
// itself through platform/CNumbers.h.
#ifndef QZR_BANK_BANKNUMBERS_H
#define QZR_BANK_BANKNUMBERS_H

#include <cstddef>

namespace qzr::bank {

// sscanf(text, "%lf"): false, and *value untouched, when nothing converts.
bool ScanReal(const char* text, double* value);

// Room for every number written below: "%lf" of the largest double has 317 characters.
constexpr std::size_t kLongestNumber = 320;

// The text snprintf gives for the value with the format named, written at out, which has room
// for kLongestNumber characters; each returns the end of the text (no terminator is written).
char* WriteLf(double value, char* out);            // "%lf"
char* WriteWidth6Fixed2(double value, char* out);  // "%6.2f"
char* WriteLg(double value, char* out);            // "%lg"
char* WriteD(int value, char* out);                // "%d"

}  // namespace qzr::bank

#endif  // QZR_BANK_BANKNUMBERS_H

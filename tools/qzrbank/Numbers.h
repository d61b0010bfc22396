// Numbers as the bank loaders read them ("%d", "%ld" and "%lf" of the C library in the "C"
// locale) and as the tool prints them.
#ifndef QZRBANK_NUMBERS_H
#define QZRBANK_NUMBERS_H

#include <string>
#include <string_view>

namespace qzrbank {

// sscanf "%d" into 32 bits: white space skipped, optional sign, digits; a number beyond 32
// bits gives INT_MAX or INT_MIN. False (value untouched) when no number converts.
bool ScanInt(std::string_view text, int* value);
// sscanf "%lf": the longest numeric prefix after white space. False when nothing converts.
bool ScanReal(std::string_view text, double* value);

// Shortest plain form for tables and messages: fixed notation with at most six decimals,
// trailing zeros dropped ("201.1", "60", "0.03").
std::string FormatNumber(double value);

}  // namespace qzrbank

#endif  // QZRBANK_NUMBERS_H

// Numbers as the tool prints them, from the library's own formatting.
#ifndef QZRBANK_NUMBERS_H
#define QZRBANK_NUMBERS_H

#include <string>

namespace qzrbank {

// Shortest plain form for tables and messages: fixed notation with at most six decimals,
// trailing zeros dropped ("201.1", "60", "0.03").
std::string FormatNumber(double value);

}  // namespace qzrbank

#endif  // QZRBANK_NUMBERS_H

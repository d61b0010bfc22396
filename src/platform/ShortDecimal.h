// Reading the plain short decimals that fill bank rows ("684.00", " 19.90", "-0.5"), inline
// and a word at a time, for texts in a buffer with room after them. Gives exactly what
// ScanDouble gives (CNumbers.h), to which everything else is handed.
#ifndef QZR_PLATFORM_SHORTDECIMAL_H
#define QZR_PLATFORM_SHORTDECIMAL_H

#include <cstdint>

#include "platform/CNumbers.h"
#include "platform/EightBytes.h"

namespace qzr::platform {

namespace short_decimal {

// Exact as doubles and as integers.
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7};
constexpr uint64_t kIntegerPowersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000};

// How many of the eight bytes of word, from the first, are decimal digits.
inline int LeadingDigitCount(uint64_t word) {
    return LeadingMarkedBytes(BytesInRange(word, '0', '9'));
}

// The value of the first count (below 8) digits of word.
inline uint64_t DigitsValue(uint64_t word, int count) {
    if (count == 0) {
        return 0;
    }
    // The digits move to the top bytes; the zero bytes below act as leading zeros.
    uint64_t value = (word - kEveryByte * '0') << (8 * (8 - count));
    value = value * 10 + (value >> 8);
    value = ((value & 0x000000FF000000FF) * (100 + (uint64_t{1000000} << 32)) +
             ((value >> 16) & 0x000000FF000000FF) * (1 + (uint64_t{10000} << 32))) >>
            32;
    return value;
}

}  // namespace short_decimal

// "%lf" of blanks, a sign, up to seven integer and seven fraction digits and no exponent or
// hexadecimal mark after them; false, with *value untouched, for every other text. The 8 bytes
// after the text's terminating NUL must be readable.
inline bool ScanShortDecimal(const char* text, double* value) {
    using namespace short_decimal;
    const char* p = text;
    while (*p == ' ' || (*p >= '\t' && *p <= '\r')) {  // white space in the "C" locale
        ++p;
    }
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') {
        ++p;
    }
    const uint64_t integerWord = LoadEightBytes(p);
    const int integerDigits = LeadingDigitCount(integerWord);
    if (integerDigits == 8) {
        return false;
    }
    const uint64_t integerPart = DigitsValue(integerWord, integerDigits);
    p += integerDigits;
    int fractionDigits = 0;
    uint64_t fraction = 0;
    if (*p == '.') {
        const uint64_t fractionWord = LoadEightBytes(++p);
        fractionDigits = LeadingDigitCount(fractionWord);
        if (fractionDigits == 8) {
            return false;
        }
        fraction = DigitsValue(fractionWord, fractionDigits);
        p += fractionDigits;
    }
    const char next = static_cast<char>(*p | 0x20);  // a letter in lower case
    if (integerDigits + fractionDigits == 0 || next == 'e' || next == 'x') {
        return false;
    }
    // At most 14 digits and a power of ten up to 1e7, both exact: one division rounds as strtod
    // does. A fraction of zeros leaves the integer part, which needs none.
    double magnitude = static_cast<double>(static_cast<int64_t>(integerPart));
    if (fraction != 0) {
        const uint64_t digits = integerPart * kIntegerPowersOfTen[fractionDigits] + fraction;
        magnitude =
            static_cast<double>(static_cast<int64_t>(digits)) / kPowersOfTen[fractionDigits];
    }
    *value = negative ? -magnitude : magnitude;
    return true;
}

// ScanDouble for a text whose 8 bytes after its terminating NUL may be read as well (a row
// buffer with room to spare): the same results, plain short decimals read inline.
inline bool ScanDoubleWithSlack(const char* text, double* value) {
    return (text != nullptr && value != nullptr && ScanShortDecimal(text, value)) ||
           ScanDouble(text, value);
}

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_SHORTDECIMAL_H

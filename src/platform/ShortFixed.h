// Writing the plain "%6.2f" numbers that fill bank rows ("  1.50", "684.00", "12345.60"),
// inline and a word at a time. Gives exactly what WriteWidth6Fixed2 gives (CNumbers.h), to
// which every other value is left.
#ifndef QZR_PLATFORM_SHORTFIXED_H
#define QZR_PLATFORM_SHORTFIXED_H

#include <cmath>
#include <cstdint>
#include <cstring>

#include "platform/CNumbers.h"
#include "platform/EightBytes.h"

namespace qzr::platform {

namespace short_fixed {

// round(value * 100), a tie to even, from the exact binary value as printf rounds it: the
// significand (below 2^53) times 100 stays below 2^63 and is shifted right by at most 63 (a
// larger shift leaves less than a half as well). Half less one, and one more for an odd
// quotient, carry into the quotient exactly when it rounds up; no branch, as bank values lie
// as often just above as just below their two-decimal text. False for a negative value (-0
// included: the sign bit makes the exponent too large), for 2^52 and above, inf and NaN.
inline bool Hundredths(double value, uint64_t* hundredths) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    const int shift = 1075 - static_cast<int>(bits >> 52);
    if (shift <= 0) {
        return false;
    }
    const int cut = shift < 63 ? shift : 63;
    const uint64_t product = ((bits & 0x000FFFFFFFFFFFFF) | uint64_t{1} << 52) * 100;
    const uint64_t oddQuotient = (product >> cut) & 1;
    *hundredths = (product + (uint64_t{1} << (cut - 1)) - 1 + oddQuotient) >> cut;
    return true;
}

// round(value * 100) read off the double product, for a value of at most two decimals, the
// usual bank value: from +0 on, with a product that lies below 10^7 and within a quarter of an
// integer. The exact product lies within 2^-29 of the double one there, so it rounds to that
// same integer, far from a tie. False for every other value (-0, NaN, a third decimal).
inline bool NearHundredths(double value, uint64_t* hundredths) {
    const double product = value * 100.0;
    if (!(product < 9999999.25) || std::signbit(value)) {
        return false;
    }
    const int64_t nearest = static_cast<int64_t>(product + 0.5);
    if (!(std::fabs(product - static_cast<double>(nearest)) < 0.25)) {
        return false;
    }
    *hundredths = static_cast<uint64_t>(nearest);
    return true;
}

// The eight decimal digits of value (below 10^8) as the bytes 0 to 9 of a word, the first
// digit in its lowest byte: split into halves of four digits, pairs and digits, each step on
// all parts of the word at once (a division by 100 or 10 as a multiplication and a shift,
// exact for parts below 10^4 and 100).
inline uint64_t EightDigitBytes(uint64_t value) {
    const uint64_t high = value / 10000;
    const uint64_t halves = high | (value - high * 10000) << 32;
    const uint64_t hundreds = (halves * 10486) >> 20 & 0x0000007F0000007F;
    const uint64_t pairs = hundreds | (halves - hundreds * 100) << 16;
    const uint64_t tens = (pairs * 103) >> 10 & 0x000F000F000F000F;
    return tens | (pairs - tens * 10) << 8;
}

// The text of hundredths (below 10^7) put together in one word without a branch: five whole
// digits, the point and two decimals, the leading zeros of the whole part (all but its last
// digit) blanks. It is the word's last six bytes while the whole part is below 1000 ("  1.50",
// " 12.50", "123.50"), its last seven or all eight from there on. The lengths come from
// comparisons rather than from the digits, so that the place of the next number is known
// early. Writes eight bytes at out; returns the end of the text.
inline char* WriteHundredths(uint64_t hundredths, char* out) {
    constexpr uint64_t kWholeDigits = 0x000000FFFFFFFFFF;
    constexpr uint64_t kDecimals = 0xFFFF000000000000;
    // '0' added to every byte, '.' to the point's.
    constexpr uint64_t kCharacters = kEveryByte * '0' - (uint64_t{'0' - '.'} << 40);
    const int dropped = (hundredths < 100000) + (hundredths < 1000000);
    const int leadingZeros = dropped + (hundredths < 1000) + (hundredths < 10000);
    const uint64_t digits = EightDigitBytes(hundredths);  // 0, 5 whole digits, 2 decimals
    const uint64_t placed = (digits >> 8 & kWholeDigits) | (digits & kDecimals);
    const uint64_t blanks = kEveryByte * ('0' - ' ') & ((uint64_t{1} << (8 * leadingZeros)) - 1);
    StoreEightBytes((placed + kCharacters - blanks) >> (8 * dropped), out);
    return out + 8 - dropped;
}

}  // namespace short_fixed

// "%6.2f" of a value from +0 to below 99999.995; null, with nothing written, for every other
// value. Needs room for eight bytes at out.
inline char* WritePlainWidth6Fixed2(double value, char* out) {
    uint64_t hundredths = 0;
    if (!short_fixed::NearHundredths(value, &hundredths) &&
        (!short_fixed::Hundredths(value, &hundredths) || hundredths >= 10000000)) {
        return nullptr;
    }
    return short_fixed::WriteHundredths(hundredths, out);
}

// WriteWidth6Fixed2, the plain values without a call.
inline char* WriteWidth6Fixed2Inline(double value, char* out) {
    if (char* end = WritePlainWidth6Fixed2(value, out)) {
        return end;
    }
    return WriteWidth6Fixed2(value, out);
}

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_SHORTFIXED_H

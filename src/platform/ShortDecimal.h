// Reading the plain short decimals that fill bank rows ("684.00", " 19.90", "-0.5"), inline
// and a word at a time, for texts in a buffer with room after them. Gives exactly what
// ScanDouble gives (CNumbers.h), to which everything else is handed.
#ifndef QZR_PLATFORM_SHORTDECIMAL_H
#define QZR_PLATFORM_SHORTDECIMAL_H

#include <cstddef>
#include <cstdint>

#include "platform/CNumbers.h"
#include "platform/EightBytes.h"

#if defined(__SSE2__) || defined(_M_X64) || defined(_M_AMD64)
#include <emmintrin.h>
#define QZR_SHORT_TOKEN_SSE2
#endif

namespace qzr::platform {

namespace short_decimal {

// Exact as doubles (all of them) and as integers (the first eight).
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
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

// A token of a row as the shortcut below reads it: its digits as one integer, the point left
// out, and how many of them follow the point.
struct TokenDigits {
    uint64_t digits = 0;
    int fractionDigits = 0;
    bool negative = false;
};

#if defined(QZR_SHORT_TOKEN_SSE2)

inline unsigned ByteBits(__m128i found) {
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}

// Sixteen 0 bytes, then sixteen 0xFF: the 16 bytes from kZerosThenOnes + n are 0xFF from the
// place 16 - n on, which marks the last n bytes of a vector.
alignas(16) constexpr unsigned char kZerosThenOnes[32] = {
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

inline __m128i LastBytes(size_t count) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(kZerosThenOnes + count));
}

// The tokens the rows are made of, whole: blanks, a '-', then one to fifteen digits with at
// most one point among or after them ("  4.01", "1307.00", "-0.5", "12", "5."). The token is
// looked at in the 16 bytes that end with its last, which puts its last character in the
// vector's last byte; length runs from 1 to 16. False for every other token.
inline bool ReadTokenDigits(const char* token, size_t length, TokenDigits* out) {
    if (length == 0 || length > 16) {
        return false;
    }
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(token + length - 16));
    const __m128i values = _mm_sub_epi8(bytes, _mm_set1_epi8('0'));
    const __m128i isDigit = _mm_and_si128(
        _mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values), LastBytes(length));

    const unsigned tokenBits = 0xFFFFu << (16 - length) & 0xFFFFu;
    const unsigned digits = ByteBits(isDigit);
    const unsigned blanks = ByteBits(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(' '))) & tokenBits;
    const unsigned points = ByteBits(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('.'))) & tokenBits;
    const unsigned minus = ByteBits(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('-'))) & tokenBits;
    const unsigned afterBlanks = tokenBits & ~blanks;
    if (afterBlanks == 0) {
        return false;
    }
    const int first = LowestSetBit(afterBlanks);
    const int numberStart = first + (minus != 0 ? 1 : 0);
    const unsigned numberBits = 0xFFFFu & ~((1u << numberStart) - 1);
    if (blanks != (tokenBits & ((1u << first) - 1)) || (minus & ~(1u << first)) != 0 ||
        (digits | points) != numberBits || (points & (points - 1)) != 0 || digits == 0 ||
        digits == 0xFFFFu) {
        return false;
    }

    // The digits before the point move one place up, over it: the digits then stand together,
    // the last in the vector's last byte, and the value is the sum of each times its power of ten.
    const int point = points != 0 ? LowestSetBit(points) : -1;
    const __m128i afterPoint = LastBytes(static_cast<size_t>(15 - point));
    const __m128i digitValues = _mm_and_si128(values, isDigit);
    const __m128i joined =
        _mm_or_si128(_mm_andnot_si128(afterPoint, _mm_slli_si128(digitValues, 1)),
                     _mm_and_si128(afterPoint, digitValues));
    const __m128i pairs = _mm_add_epi16(
        _mm_mullo_epi16(_mm_and_si128(joined, _mm_set1_epi16(0xFF)), _mm_set1_epi16(10)),
        _mm_srli_epi16(joined, 8));
    const __m128i fours = _mm_madd_epi16(pairs, _mm_set_epi16(1, 100, 1, 100, 1, 100, 1, 100));
    const __m128i eights =
        _mm_add_epi64(_mm_mul_epu32(fours, _mm_set1_epi32(10000)), _mm_srli_epi64(fours, 32));
    const auto high = static_cast<uint32_t>(_mm_cvtsi128_si32(eights));
    const auto low = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(eights, 8)));

    out->digits = uint64_t{high} * 100000000u + low;
    out->fractionDigits = point >= 0 ? 15 - point : 0;
    out->negative = minus != 0;
    return true;
}

#else

inline bool ReadTokenDigits(const char*, size_t, TokenDigits*) {
    return false;
}

#endif

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

// ScanDouble of a token of a row: length characters without a NUL, then the NUL, with the 16
// bytes that end with its last character readable and the 8 after its NUL as well.
inline bool ScanDoubleToken(const char* token, size_t length, double* value) {
    short_decimal::TokenDigits read;
    if (!short_decimal::ReadTokenDigits(token, length, &read)) {
        return ScanDoubleWithSlack(token, value);
    }
    // Fifteen digits and a power of ten up to 1e15 are exact: one division rounds as strtod.
    double magnitude = static_cast<double>(static_cast<int64_t>(read.digits));
    if (read.fractionDigits != 0) {
        magnitude /= short_decimal::kPowersOfTen[read.fractionDigits];
    }
    *value = read.negative ? -magnitude : magnitude;
    return true;
}

// ScanInt of such a token.
inline bool ScanIntToken(const char* token, size_t length, int* value) {
    short_decimal::TokenDigits read;
    if (!short_decimal::ReadTokenDigits(token, length, &read) || read.fractionDigits != 0 ||
        read.digits > 999999999) {
        return ScanInt(token, value);
    }
    const int magnitude = static_cast<int>(read.digits);
    *value = read.negative ? -magnitude : magnitude;
    return true;
}

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_SHORTDECIMAL_H

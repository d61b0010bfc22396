// Numbers as the GNU C library reads and writes them in the "C" locale, computed without the C
// library: <charconv> converts decimal numbers, the glue here does the rest.
//
// Reading "%lf": sscanf first collects the characters that may belong to a number, then
// converts what it collected with strtod, which takes the longest prefix that is a number; it
// succeeds when that prefix is not empty. The collecting is what makes it differ from strtod on
// the whole text: after the sign it commits to "nan" on an 'n' and to "inf" or "infinity" on an
// 'i' (a partial word converts nothing), it reads no "(...)" after "nan", and it refuses a "0x"
// followed by nothing it could collect. For decimal and hexadecimal digits, the characters it
// collects always include all that strtod then takes, so reading strtod's prefix straight from
// the text gives the same value. from_chars rounds a decimal prefix as strtod does; out of the
// range of doubles this file gives strtod's +-inf or +-0 itself. Hexadecimal digits are
// converted here, bit by bit, rounded as strtod rounds them. Plain bank numbers take a shortcut
// first.
//
// Writing: to_chars writes finite values exactly as printf does with the same precision and
// style; the sign, inf and nan, and the padding of "%6.2f" are written here, and the fixed
// formats take a shortcut for the plain values that fill real banks.
#include "platform/CNumbers.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <system_error>

#include "platform/ShortFixed.h"

namespace qzr::platform {

namespace {

// White space as isspace sees it in the "C" locale.
bool IsCSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsHexDigit(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

char ToLowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// True when text begins with word (lower case), letter case ignored.
bool StartsWithWord(const char* text, const char* word) {
    for (; *word != '\0'; ++text, ++word) {
        if (ToLowerAscii(*text) != *word) {
            return false;
        }
    }
    return true;
}

double WithSign(double magnitude, bool negative) {
    return negative ? -magnitude : magnitude;
}

double FromBits(uint64_t bits) {
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

// The NaN strtod gives for "nan": quiet, no payload, the sign as written.
double QuietNaN(bool negative) {
    return FromBits((negative ? uint64_t{1} << 63 : 0) | uint64_t{0x7FF8000000000000});
}

// ---------------------------------------------------------------------------------------------
// The digits of a decimal or hexadecimal number, "digits[.digits]" with at least one digit, and
// the exponent written after them.

struct NumberDigits {
    const char* integerBegin = nullptr;
    const char* integerEnd = nullptr;
    const char* fractionBegin = nullptr;  // equal to fractionEnd when there is no fraction
    const char* fractionEnd = nullptr;
    const char* end = nullptr;    // after the exponent, or after the digits without one
    int64_t writtenExponent = 0;  // saturated far beyond the range of doubles
    uint64_t decimalValue = 0;    // decimal digits only: their value modulo 2^64
};

// A written exponent beyond this takes every number out of the range of doubles, whatever its
// digits (a text holds fewer digits than this).
constexpr int64_t kExponentLimit = int64_t{1} << 50;

// The exponent strtod takes at q: the mark ('e' or 'p', either case), an optional sign and at
// least one digit. Without digits nothing is taken and q is returned.
const char* TakeExponent(const char* q, char mark, int64_t* exponent) {
    if (ToLowerAscii(*q) != mark) {
        return q;
    }
    const char* p = q + 1;
    const bool negative = *p == '-';
    if (*p == '+' || *p == '-') {
        ++p;
    }
    if (!IsDigit(*p)) {
        return q;
    }
    int64_t written = 0;
    for (; IsDigit(*p); ++p) {
        if (written < kExponentLimit) {
            written = written * 10 + (*p - '0');
        }
    }
    *exponent = negative ? -written : written;
    return p;
}

const char* SkipHexDigits(const char* p) {
    while (IsHexDigit(*p)) {
        ++p;
    }
    return p;
}

// Decimal digits at p, their value gathered into number.decimalValue (modulo 2^64: a value of
// more digits than fit is never used). Gathered in a local: a store through the reference on
// every digit could change the text, as far as the compiler knows.
const char* TakeDecimalDigits(const char* p, NumberDigits& number) {
    uint64_t value = number.decimalValue;
    for (; IsDigit(*p); ++p) {
        value = value * 10 + static_cast<uint64_t>(*p - '0');
    }
    number.decimalValue = value;
    return p;
}

// "digits[.digits]" at p, then an exponent with the given mark; false without any digit.
template <bool Hexadecimal>
bool TakeNumber(const char* p, NumberDigits& number) {
    number.integerBegin = p;
    number.integerEnd = Hexadecimal ? SkipHexDigits(p) : TakeDecimalDigits(p, number);
    number.fractionBegin = number.fractionEnd = number.integerEnd;
    if (*number.integerEnd == '.') {
        number.fractionBegin = number.integerEnd + 1;
        number.fractionEnd = Hexadecimal ? SkipHexDigits(number.fractionBegin)
                                         : TakeDecimalDigits(number.fractionBegin, number);
    }
    if (number.integerEnd == number.integerBegin && number.fractionEnd == number.fractionBegin) {
        return false;
    }
    number.end = TakeExponent(number.fractionEnd, Hexadecimal ? 'p' : 'e', &number.writtenExponent);
    return true;
}

// Where the first non-zero decimal digit stands: 0 for the units digit, 1 for the tens, -1 for
// the first decimal, and so on. Only asked of numbers with a non-zero digit.
int64_t LeadingDigitPosition(const NumberDigits& number) {
    for (const char* p = number.integerBegin; p != number.integerEnd; ++p) {
        if (*p != '0') {
            return number.integerEnd - p - 1;
        }
    }
    for (const char* p = number.fractionBegin; p != number.fractionEnd; ++p) {
        if (*p != '0') {
            return -(p - number.fractionBegin) - 1;
        }
    }
    return 0;
}

// The double nearest to a decimal number, by from_chars. from_chars reports a number beyond the
// doubles, or one below half the smallest denormal, as out of range and leaves the value alone;
// strtod gives +-inf and +-0 there.
bool ConvertDecimal(const NumberDigits& number, bool negative, double* value) {
    double magnitude = 0.0;
    const std::from_chars_result result =
        std::from_chars(number.integerBegin, number.end, magnitude, std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range) {
        const bool large = LeadingDigitPosition(number) + number.writtenExponent >= 0;
        magnitude = large ? std::numeric_limits<double>::infinity() : 0.0;
    } else if (result.ec != std::errc()) {
        return false;  // not a number after all; cannot happen for the texts taken above
    }
    *value = WithSign(magnitude, negative);
    return true;
}

// Exact powers of ten: every one up to 1e22 is a double without rounding.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int64_t kLargestExactPower = 22;
// Up to 15 digits make an integer below 2^53: exact as a double.
constexpr int64_t kExactDigits = 15;

// digits * 10^exponent when the digits (at most 15, an integer below 2^53) and the power of ten
// (up to 1e22) are both exact doubles: one IEEE multiplication or division then rounds the
// decimal value correctly, as strtod does. False beyond that.
bool ConvertExactDecimal(uint64_t digits, int64_t digitCount, int64_t exponent, bool negative,
                         double* value) {
    if (digitCount > kExactDigits) {
        return false;
    }
    double result = 0.0;
    if (digits != 0) {
        if (exponent < -kLargestExactPower || exponent > kLargestExactPower) {
            return false;
        }
        // Converted through a signed integer, for which the processor has one instruction.
        result = static_cast<double>(static_cast<int64_t>(digits));
        result = exponent < 0 ? result / kPowersOfTen[-exponent] : result * kPowersOfTen[exponent];
    }
    *value = WithSign(result, negative);
    return true;
}

bool ConvertShortDecimal(const NumberDigits& number, bool negative, double* value) {
    const int64_t fractionDigits = number.fractionEnd - number.fractionBegin;
    return ConvertExactDecimal(number.decimalValue,
                               (number.integerEnd - number.integerBegin) + fractionDigits,
                               number.writtenExponent - fractionDigits, negative, value);
}

bool ScanDecimal(const char* p, bool negative, double* value) {
    NumberDigits number;
    if (!TakeNumber<false>(p, number)) {
        return false;
    }
    return ConvertShortDecimal(number, negative, value) || ConvertDecimal(number, negative, value);
}

// ---------------------------------------------------------------------------------------------
// Hexadecimal numbers, converted bit by bit as glibc's strtod converts them.

int HexDigitValue(char c) {
    if (IsDigit(c)) {
        return c - '0';
    }
    return ToLowerAscii(c) - 'a' + 10;
}

// The leading significant bits of a hexadecimal number: value = bits * 2^exponent, bits with its
// top bit set (or zero for a zero number), sticky when a non-zero digit lies beyond them.
struct HexSignificand {
    uint64_t bits = 0;
    int64_t exponent = 0;
    bool sticky = false;
};

constexpr int kHexDigitsInBits = 16;

// Gathers the first 16 significant digits into bits; every digit shifts the scale by four
// binary places, a fraction digit down, a dropped integer digit up.
class HexGatherer {
  public:
    void Take(char c, bool fraction) {
        const uint64_t digit = static_cast<uint64_t>(HexDigitValue(c));
        if (m_taken == 0 && digit == 0) {
            m_significand.exponent -= fraction ? 4 : 0;  // a leading zero
        } else if (m_taken < kHexDigitsInBits) {
            m_significand.bits = m_significand.bits << 4 | digit;
            m_significand.exponent -= fraction ? 4 : 0;
            ++m_taken;
        } else {
            m_significand.sticky = m_significand.sticky || digit != 0;
            m_significand.exponent += fraction ? 0 : 4;
        }
    }
    HexSignificand Normalized(int64_t writtenExponent) const {
        HexSignificand result = m_significand;
        result.exponent += writtenExponent;
        if (result.bits != 0) {
            while ((result.bits >> 63) == 0) {
                result.bits <<= 1;
                --result.exponent;
            }
        }
        return result;
    }

  private:
    HexSignificand m_significand;
    int m_taken = 0;
};

HexSignificand GatherHexDigits(const NumberDigits& number) {
    HexGatherer gatherer;
    for (const char* p = number.integerBegin; p != number.integerEnd; ++p) {
        gatherer.Take(*p, false);
    }
    for (const char* p = number.fractionBegin; p != number.fractionEnd; ++p) {
        gatherer.Take(*p, true);
    }
    return gatherer.Normalized(number.writtenExponent);
}

constexpr int kMantissaBits = 52;  // stored bits of a double's significand
constexpr int64_t kLargestExponent = 1023;
constexpr int64_t kSmallestNormalExponent = -1022;
constexpr uint64_t kMantissaMask = (uint64_t{1} << kMantissaBits) - 1;

// Rounds significand to nearest, a tie to even: roundBit is the first bit dropped, sticky
// whether any later one is set.
uint64_t RoundToNearest(uint64_t significand, bool roundBit, bool sticky) {
    return significand + ((roundBit && (sticky || (significand & 1) != 0)) ? 1 : 0);
}

// strtod keeps the first 53 significant bits, the bit after them (the round bit) and whether any
// later bit is set. A normal result rounds with those. For a denormal result it shifts the 53
// bits right, takes the last bit shifted out as the new round bit and the other bits shifted
// out, with the later bits, as sticky; the first round bit is left out there, so a number that
// lies just above a tie rounds as the tie (to even). Banks have always read that way on Linux.
double HexSignificandToDouble(const HexSignificand& hex) {
    if (hex.bits == 0) {
        return 0.0;
    }
    uint64_t kept = hex.bits >> 11;  // 53 bits, the top one set
    const bool roundBit = ((hex.bits >> 10) & 1) != 0;
    const bool sticky = (hex.bits & 0x3FF) != 0 || hex.sticky;
    int64_t leadingExponent = hex.exponent + 63;  // value = 1.x * 2^leadingExponent
    if (leadingExponent > kLargestExponent) {
        return std::numeric_limits<double>::infinity();
    }
    if (leadingExponent >= kSmallestNormalExponent) {
        kept = RoundToNearest(kept, roundBit, sticky);
        if ((kept >> (kMantissaBits + 1)) != 0) {  // rounded up to the next power of two
            kept >>= 1;
            ++leadingExponent;
        }
        if (leadingExponent > kLargestExponent) {
            return std::numeric_limits<double>::infinity();
        }
        const uint64_t biased =
            static_cast<uint64_t>(leadingExponent - kSmallestNormalExponent + 1);
        return FromBits(biased << kMantissaBits | (kept & kMantissaMask));
    }
    const int64_t shift = kSmallestNormalExponent - leadingExponent;
    if (shift > kMantissaBits + 1) {
        return 0.0;  // below half the smallest denormal
    }
    const uint64_t denormal = kept >> shift;
    const bool denormalRoundBit = ((kept >> (shift - 1)) & 1) != 0;
    const bool denormalSticky = (kept & ((uint64_t{1} << (shift - 1)) - 1)) != 0 || sticky;
    // A carry into bit 52 makes the smallest normal number, as it should.
    return FromBits(RoundToNearest(denormal, denormalRoundBit, denormalSticky));
}

// p follows "0x". A "0x" followed by no hexadecimal digit and no point converts nothing; with a
// point but no digit ("0x.", "0x.p1") strtod takes just the "0".
bool ScanHexadecimal(const char* p, bool negative, double* value) {
    if (!IsHexDigit(*p) && *p != '.') {
        return false;
    }
    NumberDigits number;
    if (!TakeNumber<true>(p, number)) {
        *value = WithSign(0.0, negative);
        return true;
    }
    *value = WithSign(HexSignificandToDouble(GatherHexDigits(number)), negative);
    return true;
}

// After the sign: "inf" or "infinity", or else nothing; "infinit" converts nothing.
bool ScanInfinity(const char* p, bool negative, double* value) {
    if (!StartsWithWord(p, "inf") ||
        (ToLowerAscii(p[3]) == 'i' && !StartsWithWord(p + 3, "inity"))) {
        return false;
    }
    *value = WithSign(std::numeric_limits<double>::infinity(), negative);
    return true;
}

bool ScanNaN(const char* p, bool negative, double* value) {
    if (!StartsWithWord(p, "nan")) {
        return false;
    }
    *value = QuietNaN(negative);
    return true;
}

// Steps over the blanks "%lf" skips and an optional sign; *negative tells which sign it was.
inline const char* SkipBlanksAndSign(const char* p, bool* negative) {
    while (IsCSpace(*p)) {
        ++p;
    }
    *negative = *p == '-';
    if (*p == '-' || *p == '+') {
        ++p;
    }
    return p;
}

// The shortcut for the numbers that fill real banks ("100.000000", "-0.01", " 2500"), in a
// pass of its own that keeps everything in registers: blanks, a sign, digits and a point, and
// after them nothing of an exponent or a hexadecimal number. False for anything else, which the
// full reading takes.
bool ScanPlainDecimal(const char* text, double* value) {
    bool negative = false;
    const char* p = SkipBlanksAndSign(text, &negative);
    const char* const integerBegin = p;
    uint64_t digits = 0;
    for (; IsDigit(*p); ++p) {
        digits = digits * 10 + static_cast<uint64_t>(*p - '0');
    }
    int64_t digitCount = p - integerBegin;
    int64_t fractionDigits = 0;
    if (*p == '.') {
        const char* const fractionBegin = ++p;
        for (; IsDigit(*p); ++p) {
            digits = digits * 10 + static_cast<uint64_t>(*p - '0');
        }
        fractionDigits = p - fractionBegin;
        digitCount += fractionDigits;
    }
    const char next = ToLowerAscii(*p);
    if (digitCount == 0 || next == 'e' || next == 'x') {
        return false;
    }
    return ConvertExactDecimal(digits, digitCount, -fractionDigits, negative, value);
}

}  // namespace

bool ScanDouble(const char* text, double* value) {
    if (text == nullptr || value == nullptr) {
        return false;
    }
    if (ScanPlainDecimal(text, value)) {
        return true;
    }
    bool negative = false;
    const char* p = SkipBlanksAndSign(text, &negative);
    if (IsDigit(*p) || *p == '.') {
        if (p[0] == '0' && ToLowerAscii(p[1]) == 'x') {
            return ScanHexadecimal(p + 2, negative, value);
        }
        return ScanDecimal(p, negative, value);
    }
    switch (ToLowerAscii(*p)) {
        case 'i':
            return ScanInfinity(p, negative, value);
        case 'n':
            return ScanNaN(p, negative, value);
        default:
            return false;
    }
}

// The decimal conversion of "%d", done by hand: the C library leaves a number that does not
// fit undefined, and the banks must load the same everywhere. A number beyond 32 bits is
// clamped to INT32_MIN or INT32_MAX (what strtol gives where long is 32 bits, as on the
// platform the banks come from); all its digits are consumed all the same.
bool ScanInt(const char* text, int* value) {
    if (text == nullptr || value == nullptr) {
        return false;
    }
    const char* p = text;
    while (IsCSpace(*p)) {
        ++p;
    }
    const bool negative = (*p == '-');
    if (*p == '-' || *p == '+') {
        ++p;
    }
    if (!IsDigit(*p)) {
        return false;
    }
    // Magnitude limit: 2147483648 for a negative number, 2147483647 otherwise.
    const int64_t limit = negative ? -static_cast<int64_t>(INT32_MIN) : INT32_MAX;
    int64_t magnitude = 0;
    for (; IsDigit(*p); ++p) {
        if (magnitude < limit) {
            magnitude = magnitude * 10 + (*p - '0');
            if (magnitude > limit) {
                magnitude = limit;
            }
        }
    }
    *value = static_cast<int>(negative ? -magnitude : magnitude);
    return true;
}

// ---------------------------------------------------------------------------------------------
// Writing "%lf", "%6.2f", "%lg", "%.*g" and "%d"
//
// printf rounds a fixed-point conversion from the exact binary value, a tie to the even
// neighbour (the default rounding mode, the only one the library runs in). The shortcuts
// below compute that rounding in integers: a finite double is significand * 2^exponent, and
// significand * scale shifted right by -exponent, with the bits shifted out as the remainder,
// rounds exactly. What they do not take goes to to_chars, which writes what printf writes.

namespace {

// "inf", "-inf", "nan" or "-nan": the sign bit decides, for NaN as well.
char* WriteNonFinite(double value, char* out) {
    if (std::signbit(value)) {
        *out++ = '-';
    }
    std::memcpy(out, std::isnan(value) ? "nan" : "inf", 3);
    return out + 3;
}

// A finite value by to_chars, which writes what printf writes for the same precision and
// style; kLongestNumber is room enough for every one of them.
char* WriteByToChars(double value, std::chars_format format, int precision, char* out) {
    const std::to_chars_result printed =
        std::to_chars(out, out + kLongestNumber, value, format, precision);
    return printed.ec == std::errc() ? printed.ptr : out;
}

// |value| = significand * 2^exponent; inf and NaN come out with an exponent above 0.
struct BinaryMagnitude {
    uint64_t significand;
    int exponent;
};

BinaryMagnitude Decompose(double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    const int biased = static_cast<int>((bits >> 52) & 0x7FF);
    const uint64_t fraction = bits & ((uint64_t{1} << 52) - 1);
    if (biased == 0) {
        return {fraction, -1074};  // a subnormal, or zero
    }
    return {fraction | uint64_t{1} << 52, biased - 1075};
}

// quotient rounded up by one where the remainder of a division by 2^shift is above half, or
// half with an odd quotient.
template <class Unsigned>
Unsigned RoundedQuotient(Unsigned quotient, Unsigned remainder, Unsigned half) {
    return quotient + ((remainder > half || (remainder == half && (quotient & 1) != 0)) ? 1 : 0);
}

// round(|value| * Scale) in 64-bit arithmetic, on every compiler: the significand (below 2^53)
// times a Scale up to 1024 stays below 2^63, so a shift of 64 or more leaves less than a half.
// False from 2^52 on (and for inf and NaN), which the general path takes.
template <uint64_t Scale>
bool SmallScaledMagnitude(double value, uint64_t* scaled) {
    static_assert(Scale <= 1024, "the product must stay below 2^63");
    const BinaryMagnitude binary = Decompose(value);
    if (binary.exponent >= 0) {
        return false;
    }
    const int shift = -binary.exponent;
    if (shift >= 64) {
        *scaled = 0;
        return true;
    }
    const uint64_t product = binary.significand * Scale;
    const uint64_t quotient = product >> shift;
    *scaled = RoundedQuotient(quotient, product - (quotient << shift), uint64_t{1} << (shift - 1));
    return true;
}

// round(magnitude * scale) read off the double product where that cannot differ from the
// exact rounding: a product below 2^51 lies within a 2^-52 part of itself of the exact one,
// so the nearest integer to a product farther than that from a half-way point is the exact
// answer. False near a tie, and from 2^51 on: the exact computation decides there.
bool NearestFromProduct(double magnitude, double scale, uint64_t* scaled) {
    const double product = magnitude * scale;
    if (!(product < 0x1p51)) {
        return false;
    }
    const uint64_t nearest = static_cast<uint64_t>(product + 0.5);
    const double distance = std::fabs(product - static_cast<double>(nearest));
    if (!(distance < 0.5 - product * 0x1p-51)) {
        return false;
    }
    *scaled = nearest;
    return true;
}

#if defined(__SIZEOF_INT128__)

using Wide = unsigned __int128;

// round(|value| * scale) for any scale up to 10^9, in 128 bits: the significand times the
// scale stays below 2^83. False when the result does not fit in 64 bits.
bool ScaledMagnitude(double value, uint64_t scale, uint64_t* scaled) {
    const BinaryMagnitude binary = Decompose(value);
    if (binary.exponent >= 0) {
        if (binary.exponent > 10) {
            return false;  // 2^63 and more, inf and NaN
        }
        const Wide product = static_cast<Wide>(binary.significand << binary.exponent) * scale;
        if ((product >> 64) != 0) {
            return false;
        }
        *scaled = static_cast<uint64_t>(product);
        return true;
    }
    const int shift = -binary.exponent;
    if (shift >= 100) {
        *scaled = 0;  // the product is below 2^83, far below half of 2^shift
        return true;
    }
    const Wide product = static_cast<Wide>(binary.significand) * scale;
    const Wide quotient = RoundedQuotient(product >> shift, product - ((product >> shift) << shift),
                                          static_cast<Wide>(1) << (shift - 1));
    if ((quotient >> 64) != 0) {
        return false;
    }
    *scaled = static_cast<uint64_t>(quotient);
    return true;
}

#else

bool ScaledMagnitude(double, uint64_t, uint64_t*) {
    return false;  // no 128-bit integers here: to_chars writes these values
}

#endif

// The two digits of every number below 100, for writing digits two at a time.
constexpr char kDigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

// Writes the two digits of value (below 100) at out.
void WritePair(uint64_t value, char* out) {
    std::memcpy(out, kDigitPairs + 2 * value, 2);
}

// How many decimal digits value has (1 for zero).
int DigitCount(uint64_t value) {
    int digits = 1;
    for (; value >= 100; value /= 100) {
        digits += 2;
    }
    return digits + (value >= 10 ? 1 : 0);
}

// The last `count` decimal digits of value, zeros in front where it has fewer; returns the end.
char* WriteDigits(uint64_t value, int count, char* out) {
    char* const end = out + count;
    char* p = end;
    for (; p - out >= 2; p -= 2, value /= 100) {
        WritePair(value % 100, p - 2);
    }
    if (p != out) {
        *out = static_cast<char>('0' + value % 10);
    }
    return end;
}

// Decimal digits of value, without leading zeros (one "0" for zero); returns the end. Values
// below 10000, the most common, take no loop.
char* WriteUnsigned(uint64_t value, char* out) {
    if (value >= 10000) {
        return WriteDigits(value, DigitCount(value), out);
    }
    if (value >= 100) {
        out = WriteDigits(value / 100, value >= 1000 ? 2 : 1, out);
        WritePair(value % 100, out);
        return out + 2;
    }
    return WriteDigits(value, value >= 10 ? 2 : 1, out);
}

// "%.6f" of a finite value whose scaled magnitude fits in 64 bits, the common case, without
// to_chars; null when the value is beyond it.
char* WriteShortFixed6(double value, char* out) {
    constexpr uint64_t kScale = 1000000;
    uint64_t scaled = 0;
    if (!NearestFromProduct(std::fabs(value), static_cast<double>(kScale), &scaled) &&
        !ScaledMagnitude(value, kScale, &scaled)) {
        return nullptr;
    }
    // printf writes the sign of every negative value, zero and values that round to zero
    // included ("-0.000000").
    if (std::signbit(value)) {
        *out++ = '-';
    }
    out = WriteUnsigned(scaled / kScale, out);
    *out = '.';
    // Three pairs, each from the fraction itself rather than one after the other.
    const uint64_t fraction = scaled % kScale;
    WritePair(fraction / 10000, out + 1);
    WritePair(fraction / 100 % 100, out + 3);
    WritePair(fraction % 100, out + 5);
    return out + 7;
}

// "%6.2f" of a value below 2^52 that is not plain (ShortFixed.h): negative, or of 10^5 and
// more; blanks in front up to the width. Null from 2^52 on.
char* WriteShortWidth6Fixed2(double value, char* out) {
    uint64_t scaled = 0;
    if (!SmallScaledMagnitude<100>(value, &scaled)) {
        return nullptr;
    }
    const bool negative = std::signbit(value);
    const uint64_t whole = scaled / 100;
    const int wholeDigits = DigitCount(whole);
    const int length = (negative ? 1 : 0) + wholeDigits + 3;
    if (length < 6) {
        std::memset(out, ' ', 6);
        out += 6 - length;
    }
    if (negative) {
        *out++ = '-';
    }
    out = WriteDigits(whole, wholeDigits, out);
    *out = '.';
    WritePair(scaled % 100, out + 1);
    return out + 3;
}

// The text from out to end moved right within width characters, blanks before it.
char* PadToWidth(char* out, char* end, std::ptrdiff_t width) {
    const std::ptrdiff_t length = end - out;
    if (length >= width) {
        return end;
    }
    const std::ptrdiff_t padding = width - length;
    std::memmove(out + padding, out, static_cast<size_t>(length));
    std::memset(out, ' ', static_cast<size_t>(padding));
    return out + width;
}

// "%.<decimals>f" of any value.
char* WriteFixed(double value, int decimals, char* out) {
    if (!std::isfinite(value)) {
        return WriteNonFinite(value, out);
    }
    if (char* end = decimals == 6 ? WriteShortFixed6(value, out) : nullptr) {
        return end;
    }
    return WriteByToChars(value, std::chars_format::fixed, decimals, out);
}

constexpr uint64_t kPowersOfTenInteger[] = {1,      10,      100,      1000,      10000,
                                            100000, 1000000, 10000000, 100000000, 1000000000};
// 10^-4 ... 10^6. The doubles nearest the negative powers lie above them, so a double is at
// least the power exactly when it is at least its double.
constexpr double kDecades[] = {1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
constexpr int kSmallestFixedExponent = -4;

// "%.6g" of a value that "%g" writes without an exponent, the common case: its magnitude
// rounded to six digits lies from 10^-4 to below 10^6. Null for every other value (zero
// included). The magnitude is 10^exponent or more: rounded to six significant digits, it is
// round(|value| * 10^(5 - exponent)) units of the sixth digit, unless that rounds up to the
// next power of ten, which moves the exponent; trailing zeros of the fraction are dropped.
char* WriteShortG6(double value, char* out) {
    constexpr int kDigits = 6;
    const double magnitude = std::fabs(value);
    if (!(magnitude >= kDecades[0] && magnitude < kDecades[10])) {
        return nullptr;
    }
    int exponent = kSmallestFixedExponent;
    while (magnitude >= kDecades[exponent - kSmallestFixedExponent + 1]) {
        ++exponent;
    }
    int decimals = kDigits - 1 - exponent;
    uint64_t units = 0;
    const uint64_t scale = kPowersOfTenInteger[decimals];
    if (!NearestFromProduct(magnitude, static_cast<double>(scale), &units) &&
        !ScaledMagnitude(magnitude, scale, &units)) {
        return nullptr;
    }
    if (units == kPowersOfTenInteger[kDigits]) {  // 9.999995 and the like: 10.0000
        if (decimals == 0) {
            return nullptr;  // 1e+06
        }
        --decimals;
        units /= 10;
    }
    if (std::signbit(value)) {
        *out++ = '-';
    }
    out = WriteUnsigned(units / kPowersOfTenInteger[decimals], out);
    uint64_t fraction = units % kPowersOfTenInteger[decimals];
    if (fraction == 0) {
        return out;
    }
    for (; fraction % 10 == 0; fraction /= 10) {
        --decimals;
    }
    *out++ = '.';
    return WriteDigits(fraction, decimals, out);
}

}  // namespace

char* WriteLf(double value, char* out) {
    return WriteFixed(value, 6, out);
}

char* WriteWidth6Fixed2(double value, char* out) {
    if (char* end = WritePlainWidth6Fixed2(value, out)) {
        return end;
    }
    if (char* end = WriteShortWidth6Fixed2(value, out)) {
        return end;
    }
    return PadToWidth(out, WriteFixed(value, 2, out), 6);
}

char* WriteLg(double value, char* out) {
    if (char* end = WriteShortG6(value, out)) {
        return end;
    }
    return WriteG(value, 6, out);
}

char* WriteG(double value, int precision, char* out) {
    if (!std::isfinite(value)) {
        return WriteNonFinite(value, out);
    }
    // printf takes a negative precision as none given (6) and 0 as 1.
    precision = precision < 0 ? 6 : precision == 0 ? 1 : precision;
    precision = precision > kLongestPrecision ? kLongestPrecision : precision;
    return WriteByToChars(value, std::chars_format::general, precision, out);
}

char* WriteD(int value, char* out) {
    return std::to_chars(out, out + kLongestNumber, value).ptr;
}

}  // namespace qzr::platform

#include "bank/BankNumbers.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <system_error>

#include "platform/CNumbers.h"

namespace qzr::bank {

namespace {

// ---------------------------------------------------------------------------------------------
// Reading "%lf"

// White space as isspace sees it in the "C" locale.
bool IsCSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Exact powers of ten: every one up to 1e22 is a double without rounding.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestExactPower = 22;
// Up to 15 digits make an integer below 2^53: exact as a double.
constexpr long kExactDigits = 15;

// A plain decimal, "digits[.digits][e[sign]digits]" with at least one mantissa digit, read
// in one pass: its digits as an integer and the power of ten that scales them.
struct PlainDecimal {
    const char* end = nullptr;  // first character after the number
    uint64_t digits = 0;        // the mantissa's digits; meaningful for kExactDigits or fewer
    long digitCount = 0;        // leading zeros included
    long exponent = 0;          // value = digits * 10^exponent
};

// Reads the digits at q into number; returns the first character after them.
const char* TakeDigits(const char* q, PlainDecimal& number) {
    const char* start = q;
    for (; IsDigit(*q); ++q) {
        // Wraps harmlessly beyond 19 digits: such a number is not converted from `digits`.
        number.digits = number.digits * 10 + static_cast<uint64_t>(*q - '0');
    }
    number.digitCount += q - start;
    return q;
}

// False when the text at p is anything but a plain decimal: no digits, a hex prefix, or an
// exponent mark without digits, whose handling differs between C libraries.
bool ReadPlainDecimal(const char* p, PlainDecimal& number) {
    const char* q = TakeDigits(p, number);
    const bool hasIntegerDigits = q != p;
    if (hasIntegerDigits && p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        return false;
    }
    bool hasFractionDigits = false;
    if (*q == '.') {
        const char* fraction = ++q;
        q = TakeDigits(q, number);
        hasFractionDigits = q != fraction;
        number.exponent = -(q - fraction);
    }
    if (!hasIntegerDigits && !hasFractionDigits) {
        return false;
    }
    if (*q == 'e' || *q == 'E') {
        ++q;
        const bool negativeExponent = *q == '-';
        if (*q == '+' || *q == '-') {
            ++q;
        }
        if (!IsDigit(*q)) {
            return false;
        }
        long written = 0;
        for (; IsDigit(*q); ++q) {
            written = written < 100000 ? written * 10 + (*q - '0') : written;
        }
        number.exponent += negativeExponent ? -written : written;
    }
    number.end = q;
    return true;
}

// The common case of a bank field ("100.00", "0.01", "2500"): digits and power of ten are
// both exact doubles, so one IEEE multiplication or division rounds the decimal value
// correctly, as strtod does. False when the number is beyond that case.
bool ConvertShortDecimal(const PlainDecimal& number, bool negative, double* value) {
    if (number.digitCount > kExactDigits) {
        return false;
    }
    double result = 0.0;
    if (number.digits != 0) {
        if (number.exponent < -kLargestExactPower || number.exponent > kLargestExactPower) {
            return false;
        }
        // Below 10^15: exact as a double, and converted through a signed integer, for which
        // the processor has one instruction.
        result = static_cast<double>(static_cast<int64_t>(number.digits));
        result = number.exponent < 0 ? result / kPowersOfTen[-number.exponent]
                                     : result * kPowersOfTen[number.exponent];
    }
    *value = negative ? -result : result;
    return true;
}

// A shortcut only: false when the text is not a plain decimal that converts in range.
bool ScanPlainDecimal(const char* text, double* value) {
    const char* p = text;
    while (IsCSpace(*p)) {
        ++p;
    }
    // from_chars takes a leading '-' but no '+'.
    const char* numberStart = p;
    const bool negative = *p == '-';
    if (*p == '+') {
        numberStart = ++p;
    } else if (negative) {
        ++p;
    }
    PlainDecimal number;
    if (!ReadPlainDecimal(p, number)) {
        return false;
    }
    if (ConvertShortDecimal(number, negative, value)) {
        return true;
    }
    double converted = 0.0;
    const std::from_chars_result result =
        std::from_chars(numberStart, number.end, converted, std::chars_format::general);
    if (result.ec != std::errc() || result.ptr != number.end) {
        return false;
    }
    *value = converted;
    return true;
}

// ---------------------------------------------------------------------------------------------
// Writing "%lf" and "%6.2f"

#if defined(__SIZEOF_INT128__)

using Wide = unsigned __int128;

// round(|value| * scale) as printf rounds a fixed-point conversion: from the exact binary value,
// a tie to the even neighbour (the default rounding mode, the only one the library runs in).
// The double is mantissa * 2^exponent; mantissa * scale (below 2^73 for the scales used) is
// exact in 128 bits, and the shift that divides by 2^-exponent leaves an exact remainder to
// round with. False when the result does not fit in 64 bits.
bool ScaledMagnitude(double value, uint64_t scale, uint64_t* scaled) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    const int biased = static_cast<int>((bits >> 52) & 0x7FF);
    uint64_t mantissa = bits & ((uint64_t{1} << 52) - 1);
    int exponent = -1074;  // a subnormal (or zero)
    if (biased != 0) {
        mantissa |= uint64_t{1} << 52;
        exponent = biased - 1075;
    }
    if (exponent >= 0) {
        if (exponent > 10) {
            return false;  // 2^63 and more
        }
        const Wide product = static_cast<Wide>(mantissa << exponent) * scale;
        if ((product >> 64) != 0) {
            return false;
        }
        *scaled = static_cast<uint64_t>(product);
        return true;
    }
    const int shift = -exponent;
    const Wide product = static_cast<Wide>(mantissa) * scale;
    if (shift >= 100) {
        *scaled = 0;  // the product is below 2^73, far below half of 2^shift
        return true;
    }
    Wide quotient = product >> shift;
    const Wide remainder = product - (quotient << shift);
    const Wide half = static_cast<Wide>(1) << (shift - 1);
    if (remainder > half || (remainder == half && (quotient & 1) != 0)) {
        ++quotient;
    }
    if ((quotient >> 64) != 0) {
        return false;
    }
    *scaled = static_cast<uint64_t>(quotient);
    return true;
}

#else

bool ScaledMagnitude(double, uint64_t, uint64_t*) {
    return false;  // no 128-bit integers here: the C library formats every value
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

// Decimal digits of value, without leading zeros (one "0" for zero); returns the end.
char* WriteUnsigned(uint64_t value, char* out) {
    int digits = 1;
    for (uint64_t bound = 10; digits < 20 && value >= bound; bound *= 10) {
        ++digits;
    }
    char* end = out + digits;
    char* p = end;
    while (value >= 100) {
        p -= 2;
        WritePair(value % 100, p);
        value /= 100;
    }
    if (value >= 10) {
        WritePair(value, p - 2);
    } else {
        p[-1] = static_cast<char>('0' + value);
    }
    return end;
}

// "%.<Decimals>f" of a finite value whose scaled magnitude fits in 64 bits; returns the end of
// the text, or null when the value is beyond the shortcut. The decimals are a constant, so
// that dividing by their scale is a multiplication.
template <int Decimals>
char* WriteFixed(double value, char* out) {
    static_assert(Decimals == 6 || Decimals == 2);
    constexpr uint64_t kScale = Decimals == 6 ? 1000000 : 100;
    uint64_t scaled = 0;
    if (!ScaledMagnitude(value, kScale, &scaled)) {
        return nullptr;
    }
    // printf writes the sign of every negative value, zero and values that round to zero
    // included ("-0.000000").
    if (std::signbit(value)) {
        *out++ = '-';
    }
    out = WriteUnsigned(scaled / kScale, out);
    *out++ = '.';
    const uint64_t fraction = scaled % kScale;
    if constexpr (Decimals == 6) {
        WritePair(fraction / 10000, out);
        WritePair(fraction / 100 % 100, out + 2);
        WritePair(fraction % 100, out + 4);
    } else {
        WritePair(fraction, out);
    }
    return out + Decimals;
}

char* ViaCLibrary(const char* format, double value, char* out) {
    const std::string printed = platform::FormatC(format, value);
    const size_t length = printed.size() < kLongestNumber ? printed.size() : kLongestNumber;
    std::memcpy(out, printed.data(), length);
    return out + length;
}

}  // namespace

bool ScanReal(const char* text, double* value) {
    if (text == nullptr || value == nullptr) {
        return false;
    }
    if (ScanPlainDecimal(text, value)) {
        return true;
    }
    return platform::ScanDouble(text, value);
}

char* WriteLf(double value, char* out) {
    if (std::isfinite(value)) {
        if (char* end = WriteFixed<6>(value, out)) {
            return end;
        }
    }
    return ViaCLibrary("%lf", value, out);
}

char* WriteWidth6Fixed2(double value, char* out) {
    constexpr std::ptrdiff_t kWidth = 6;
    if (std::isfinite(value)) {
        if (char* end = WriteFixed<2>(value, out)) {
            const std::ptrdiff_t length = end - out;
            if (length >= kWidth) {
                return end;
            }
            // Right-aligned in six characters: move the text and pad before it.
            const std::ptrdiff_t padding = kWidth - length;
            std::memmove(out + padding, out, static_cast<size_t>(length));
            std::memset(out, ' ', static_cast<size_t>(padding));
            return out + kWidth;
        }
    }
    return ViaCLibrary("%6.2f", value, out);
}

char* WriteLg(double value, char* out) {
    if (std::isfinite(value)) {
        // to_chars with a precision writes what printf writes with it ("%g" style, trailing
        // zeros removed, at least two exponent digits).
        const std::to_chars_result printed =
            std::to_chars(out, out + kLongestNumber, value, std::chars_format::general, 6);
        if (printed.ec == std::errc()) {
            return printed.ptr;
        }
    }
    return ViaCLibrary("%lg", value, out);
}

char* WriteD(int value, char* out) {
    return std::to_chars(out, out + kLongestNumber, value).ptr;
}

}  // namespace qzr::bank

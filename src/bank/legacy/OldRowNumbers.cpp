#include "bank/legacy/OldRowNumbers.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <system_error>

#include "platform/CNumbers.h"

namespace qzr::legacy {

namespace {

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
        result = static_cast<double>(number.digits);
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

// "%.4lg" and back without printing, for a finite value whose four-digit rounding is not a
// near tie: s = |value| scaled into [1000, 10000) is then within far less than 1e-7 of the
// exact scaled value, so rounding s to an integer gives printf's four digits, and dividing or
// multiplying those by an exact power of ten gives the double nearest to the printed text.
// False for zero, ties and magnitudes whose scale is beyond the exact powers.
bool RoundShortcut(double value, double* rounded) {
    const double magnitude = std::fabs(value);
    if (!(magnitude >= 1e-18 && magnitude < 1e21)) {
        return false;
    }
    int scale = 3 - static_cast<int>(std::floor(std::log10(magnitude)));
    double scaled = 0.0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (scale < -kLargestExactPower || scale > kLargestExactPower) {
            return false;
        }
        scaled = scale >= 0 ? magnitude * kPowersOfTen[scale] : magnitude / kPowersOfTen[-scale];
        if (scaled < 1000.0) {
            ++scale;
        } else if (scaled >= 10000.0) {
            --scale;
        } else {
            break;
        }
    }
    if (scaled < 1000.0 || scaled >= 10000.0) {
        return false;
    }
    const double fraction = scaled - std::floor(scaled);
    if (std::fabs(fraction - 0.5) < 1e-7) {
        return false;
    }
    const double digits = std::floor(scaled + 0.5);
    const double result = scale >= 0 ? digits / kPowersOfTen[scale] : digits * kPowersOfTen[-scale];
    *rounded = value < 0 ? -result : result;
    return true;
}

}  // namespace

bool ScanRealField(const char* text, double* value) {
    if (text == nullptr || value == nullptr) {
        return false;
    }
    if (ScanPlainDecimal(text, value)) {
        return true;
    }
    return platform::ScanDouble(text, value);
}

double RoundToFourDigits(double value) {
    double rounded = 0.0;  // atof gives 0 for a text that does not convert
    if (RoundShortcut(value, &rounded)) {
        return rounded;
    }
    if (std::isfinite(value)) {
        // to_chars with a precision prints exactly what printf prints with it.
        char text[40];
        const std::to_chars_result printed =
            std::to_chars(text, text + sizeof(text), value, std::chars_format::general, 4);
        if (printed.ec == std::errc() &&
            std::from_chars(text, printed.ptr, rounded, std::chars_format::general).ec ==
                std::errc()) {
            return rounded;
        }
        rounded = 0.0;
    }
    const std::string printed = platform::FormatC("%.4lg", value);
    platform::ScanDouble(printed.c_str(), &rounded);
    return rounded;
}

}  // namespace qzr::legacy

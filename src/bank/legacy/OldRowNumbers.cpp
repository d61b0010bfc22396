#include "bank/legacy/OldRowNumbers.h"

#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

#include "platform/CNumbers.h"

namespace qzr::legacy {

namespace {

// White space as isspace sees it in the "C" locale.
bool IsCSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// End of the plain decimal number ("digits[.digits][e[sign]digits]", at least one mantissa
// digit) that starts at p, or null when the text there is anything else: no digits, a hex
// prefix, or an exponent mark without digits, whose handling differs between C libraries.
const char* EndOfPlainDecimal(const char* p) {
    const char* q = p;
    while (IsDigit(*q)) {
        ++q;
    }
    const bool hasIntegerDigits = q != p;
    if (hasIntegerDigits && p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        return nullptr;
    }
    bool hasFractionDigits = false;
    if (*q == '.') {
        ++q;
        const char* fraction = q;
        while (IsDigit(*q)) {
            ++q;
        }
        hasFractionDigits = q != fraction;
    }
    if (!hasIntegerDigits && !hasFractionDigits) {
        return nullptr;
    }
    if (*q == 'e' || *q == 'E') {
        const char* e = q + 1;
        if (*e == '+' || *e == '-') {
            ++e;
        }
        if (!IsDigit(*e)) {
            return nullptr;
        }
        while (IsDigit(*e)) {
            ++e;
        }
        q = e;
    }
    return q;
}

// A shortcut only: false when the text is not a plain decimal that converts in range.
bool ScanPlainDecimal(const char* text, double* value) {
    const char* p = text;
    while (IsCSpace(*p)) {
        ++p;
    }
    // from_chars takes a leading '-' but no '+'.
    const char* numberStart = p;
    if (*p == '+') {
        ++p;
        numberStart = p;
    } else if (*p == '-') {
        ++p;
    }
    const char* end = EndOfPlainDecimal(p);
    if (end == nullptr) {
        return false;
    }
    double converted = 0.0;
    const std::from_chars_result result =
        std::from_chars(numberStart, end, converted, std::chars_format::general);
    if (result.ec != std::errc() || result.ptr != end) {
        return false;
    }
    *value = converted;
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

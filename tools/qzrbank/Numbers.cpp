#include "Numbers.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace qzrbank {

namespace {

bool IsCSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

bool ScanInt(std::string_view text, int* value) {
    size_t p = 0;
    while (p < text.size() && IsCSpace(text[p])) {
        ++p;
    }
    const bool negative = p < text.size() && text[p] == '-';
    if (p < text.size() && (text[p] == '-' || text[p] == '+')) {
        ++p;
    }
    if (p >= text.size() || !IsDigit(text[p])) {
        return false;
    }
    const int64_t limit = negative ? INT64_C(2147483648) : INT64_C(2147483647);
    int64_t magnitude = 0;
    for (; p < text.size() && IsDigit(text[p]); ++p) {
        magnitude = magnitude * 10 + (text[p] - '0');
        if (magnitude > limit) {
            magnitude = limit;
        }
    }
    *value = static_cast<int>(negative ? -magnitude : magnitude);
    return true;
}

bool ScanReal(std::string_view text, double* value) {
    // strtod needs a terminated text; the tool never changes the C locale, so '.' is the
    // decimal point as in the loaders.
    const std::string copy(text);
    char* end = nullptr;
    const double number = std::strtod(copy.c_str(), &end);
    if (end == copy.c_str()) {
        return false;
    }
    *value = number;
    return true;
}

std::string FormatNumber(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, "%.6f", value);
    std::string text = buffer;
    const size_t point = text.find('.');
    if (point != std::string::npos) {
        size_t last = text.find_last_not_of('0');
        if (last == point) {
            --last;
        }
        text.erase(last + 1);
    }
    if (text == "-0") {
        text = "0";
    }
    return text;
}

}  // namespace qzrbank

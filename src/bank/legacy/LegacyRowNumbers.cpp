#include "bank/legacy/LegacyRowNumbers.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <system_error>

#include "platform/CNumbers.h"

namespace qzr::legacy {

namespace {

// Exact powers of ten: every one up to 1e22 is a double without rounding.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestExactPower = 22;

// floor(log10(magnitude)) or one less, for a normal positive magnitude: from its binary
// exponent e, floor(e * log10(2)), with 78913 / 2^18 for log10(2). The scaling below settles
// the rest.
int DecimalExponentEstimate(double magnitude) {
    uint64_t bits = 0;
    std::memcpy(&bits, &magnitude, sizeof(bits));
    const int binaryExponent = static_cast<int>((bits >> 52) & 0x7FF) - 1023;
    const int scaled = binaryExponent * 78913;
    constexpr int kDivisor = 1 << 18;
    return scaled >= 0 ? scaled / kDivisor : -((kDivisor - 1 - scaled) / kDivisor);
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
    int scale = 3 - DecimalExponentEstimate(magnitude);
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

double RoundToFourDigits(double value) {
    double rounded = 0.0;  // atof gives 0 for a text that does not convert
    if (RoundShortcut(value, &rounded)) {
        return rounded;
    }
    char text[platform::kLongestNumber + 1];
    char* const end = platform::WriteG(value, 4, text);
    if (std::isfinite(value)) {
        // The text is plain digits, with no blank or "+" to skip: from_chars reads it directly.
        if (std::from_chars(text, end, rounded, std::chars_format::general).ec == std::errc()) {
            return rounded;
        }
        rounded = 0.0;
    }
    *end = '\0';
    platform::ScanDouble(text, &rounded);
    return rounded;
}

}  // namespace qzr::legacy

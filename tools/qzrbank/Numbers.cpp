#include "Numbers.h"

#include <cmath>

#include "platform/CNumbers.h"

namespace qzrbank {

std::string FormatNumber(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    char buffer[qzr::platform::kLongestNumber];
    std::string text(buffer, qzr::platform::WriteLf(value, buffer));  // "%.6f"
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

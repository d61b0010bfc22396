#include "platform/CNumbers.h"

#include <locale.h>
#include <cstdarg>
#include <cstdint>
#include <cstdio>

#if defined(__APPLE__)
#include <xlocale.h>
#endif

namespace qzr::platform {

namespace {

#if defined(_WIN32)

_locale_t CLocale() {
    static const _locale_t locale = _create_locale(LC_ALL, "C");
    return locale;
}

bool ScanDoubleInCLocale(const char* text, double* value) {
    return _sscanf_s_l(text, "%lf", CLocale(), value) == 1;
}

// Number of characters the format gives, without the terminating NUL; negative on error.
int FormattedLength(const char* format, va_list args) {
    return _vscprintf_l(format, CLocale(), args);
}

void FormatInto(char* buffer, size_t size, const char* format, va_list args) {
    _vsnprintf_s_l(buffer, size, _TRUNCATE, format, CLocale(), args);
}

#else

// Switches the calling thread to the "C" locale for the lifetime of the object, leaving the
// host's global locale alone (a host may well run with a decimal comma).
class ScopedCLocale {
  public:
    ScopedCLocale() {
        static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
        if (cLocale != static_cast<locale_t>(0)) {
            m_previous = uselocale(cLocale);
        }
    }
    ~ScopedCLocale() {
        if (m_previous != static_cast<locale_t>(0)) {
            uselocale(m_previous);
        }
    }
    ScopedCLocale(const ScopedCLocale&) = delete;
    ScopedCLocale& operator=(const ScopedCLocale&) = delete;

  private:
    locale_t m_previous = static_cast<locale_t>(0);
};

bool ScanDoubleInCLocale(const char* text, double* value) {
    ScopedCLocale cLocale;
    return std::sscanf(text, "%lf", value) == 1;
}

int FormattedLength(const char* format, va_list args) {
    ScopedCLocale cLocale;
    return std::vsnprintf(nullptr, 0, format, args);
}

void FormatInto(char* buffer, size_t size, const char* format, va_list args) {
    ScopedCLocale cLocale;
    std::vsnprintf(buffer, size, format, args);
}

#endif

// White space as isspace sees it in the "C" locale.
bool IsCSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

bool ScanDouble(const char* text, double* value) {
    if (text == nullptr || value == nullptr) {
        return false;
    }
    double converted = 0.0;
    if (!ScanDoubleInCLocale(text, &converted)) {
        return false;
    }
    *value = converted;
    return true;
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

void AppendFormatCV(std::string* out, const char* format, va_list args) {
    if (out == nullptr || format == nullptr) {
        return;
    }
    va_list measure;
    va_copy(measure, args);
    const int length = FormattedLength(format, measure);
    va_end(measure);
    if (length <= 0) {
        return;  // nothing to add, or a format the C library rejects
    }
    const size_t oldSize = out->size();
    out->resize(oldSize + static_cast<size_t>(length) + 1);
    FormatInto(&(*out)[oldSize], static_cast<size_t>(length) + 1, format, args);
    out->resize(oldSize + static_cast<size_t>(length));
}

void AppendFormatC(std::string* out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    AppendFormatCV(out, format, args);
    va_end(args);
}

std::string FormatC(const char* format, ...) {
    std::string text;
    va_list args;
    va_start(args, format);
    AppendFormatCV(&text, format, args);
    va_end(args);
    return text;
}

}  // namespace qzr::platform

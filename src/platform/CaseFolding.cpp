#include "platform/CaseFolding.h"

#include <cctype>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cwchar>

#if !defined(_WIN32)
#include <locale.h>
#if defined(__GLIBC__)
#include <langinfo.h>
#endif
#endif

namespace qzr::platform {

namespace {

// A-Z fold whatever the locale says (a Turkish locale would otherwise turn 'I' into a dotless
// i and two names that match on every host would stop matching here).
char FoldSingleByte(char c) {
    const unsigned char byte = static_cast<unsigned char>(c);
    if (byte >= 'A' && byte <= 'Z') {
        return static_cast<char>(byte - 'A' + 'a');
    }
    return static_cast<char>(std::tolower(byte));
}

// Length of the character of the current locale that starts at text[pos]: 1 for a
// single-byte character, and also for a byte that does not start a valid or complete
// character (it is then folded on its own, as the C library's tolower would see it).
size_t CharacterLength(const std::string& text, size_t pos, std::mbstate_t* state) {
    const size_t length = std::mbrlen(text.data() + pos, text.size() - pos, state);
    if (length == static_cast<size_t>(-1) || length == static_cast<size_t>(-2)) {
        *state = std::mbstate_t{};
        return 1;
    }
    if (length == 0) {  // an embedded NUL
        return 1;
    }
    return length;
}

}  // namespace

void FoldCaseInPlace(std::string* text) {
    if (MB_CUR_MAX == 1) {
        for (char& c : *text) {
            c = FoldSingleByte(c);
        }
        return;
    }
    std::mbstate_t state{};
    size_t pos = 0;
    while (pos < text->size()) {
        const size_t length = CharacterLength(*text, pos, &state);
        if (length == 1) {
            (*text)[pos] = FoldSingleByte((*text)[pos]);
        }
        pos += length;  // a multibyte character is kept whole, its trail bytes untouched
    }
}

const char* FoldingLocaleName() {
#if defined(_WIN32)
    // With per-thread locales enabled, setlocale answers for the calling thread.
    return std::setlocale(LC_CTYPE, nullptr);
#else
    const locale_t current = uselocale(static_cast<locale_t>(0));
    if (current == LC_GLOBAL_LOCALE) {
        return std::setlocale(LC_CTYPE, nullptr);
    }
#if defined(__GLIBC__)
    return nl_langinfo_l(_NL_LOCALE_NAME(LC_CTYPE), current);
#else
    return nullptr;  // a thread's own locale whose name this C library does not tell
#endif
#endif
}

std::string FoldCase(std::string_view text) {
    std::string folded(text);
    FoldCaseInPlace(&folded);
    return folded;
}

}  // namespace qzr::platform

#include "records/NameRule.h"

#include <cstring>
#include <string_view>

#include "platform/CaseFolding.h"

namespace qzr::records {

// The catalogue calls this for every maker and grade it looks up, so the cheap answers come
// first. Lower-casing never changes a text's length (a multibyte character is kept whole), so
// texts of different lengths can never match and need no folding. Lower-casing is a function of
// the text alone, so byte-identical texts always match, which is the common case of a lookup.
// Only texts that differ in some byte are folded; a name short enough for the string's inline
// storage (every usual maker and grade) is folded without touching the heap.
bool NamesEqual(const char* first, const char* second) {
    if (first == nullptr || second == nullptr) {
        return false;
    }
    const std::string_view a(first);
    const std::string_view b(second);
    if (a.size() != b.size()) {
        return false;
    }
    if (a == b) {
        return true;
    }
    return platform::FoldCase(a) == platform::FoldCase(b);
}

// Lower-casing keeps a text's length and depends on nothing but the text and the locale, so
// FoldCase(a) == FoldCase(b) holds exactly when NamesEqual(a, b) does.
std::string NameKey(std::string_view name) {
    return platform::FoldCase(name);
}

}  // namespace qzr::records

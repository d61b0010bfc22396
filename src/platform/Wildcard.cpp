#include "platform/Wildcard.h"

#include <algorithm>

namespace qzr::platform {

namespace {

// Enumeration folds only A-Z: file names are compared the same way whatever locale the host
// runs in, and bytes of 128 and above (which differ from one code page to the next) compare
// as themselves.
unsigned char UpperAscii(char c) {
    const unsigned char byte = static_cast<unsigned char>(c);
    return (byte >= 'a' && byte <= 'z') ? static_cast<unsigned char>(byte - 'a' + 'A') : byte;
}

size_t LastSeparatorEnd(std::string_view pattern) {
    const size_t separator = pattern.find_last_of("\\/");
    return separator == std::string_view::npos ? 0 : separator + 1;
}

// The order of SortInNtfsOrder.
bool ListedBefore(const std::string& a, const std::string& b) {
    if (NtfsNameLess(a, b)) {
        return true;
    }
    return !NtfsNameLess(b, a) && a < b;
}

bool SameIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return UpperAscii(x) == UpperAscii(y); });
}

}  // namespace

// Greedy matching that remembers only the last '*': when a later literal part fails, that
// star swallows one more character and the match resumes. Earlier stars never need to be
// revisited, so the cost stays at most pattern length times name length.
bool WildcardMatch(std::string_view pattern, std::string_view name) {
    size_t p = 0;
    size_t n = 0;
    size_t starPattern = std::string_view::npos;  // pattern position after the last '*'
    size_t starName = 0;                          // name position that star resumes from
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            starPattern = ++p;
            starName = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == '?' || UpperAscii(pattern[p]) == UpperAscii(name[n]))) {
            ++p;
            ++n;
        } else if (starPattern != std::string_view::npos) {
            p = starPattern;
            n = ++starName;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') {
        ++p;
    }
    return p == pattern.size();
}

bool NtfsNameLess(std::string_view first, std::string_view second) {
    return std::lexicographical_compare(
        first.begin(), first.end(), second.begin(), second.end(),
        [](char a, char b) { return UpperAscii(a) < UpperAscii(b); });
}

void SortInNtfsOrder(std::vector<std::string>* names) {
    std::sort(names->begin(), names->end(), ListedBefore);
}

const std::string* FindEntryIgnoringCase(std::string_view name,
                                         const std::vector<std::string>& entries) {
    const std::string* found = nullptr;
    for (const std::string& entry : entries) {
        if (entry == name) {
            return &entry;
        }
        if (SameIgnoringCase(entry, name) && (found == nullptr || ListedBefore(entry, *found))) {
            found = &entry;
        }
    }
    return found;
}

std::string PatternFolder(std::string_view pattern) {
    return std::string(pattern.substr(0, LastSeparatorEnd(pattern)));
}

std::string PatternName(std::string_view pattern) {
    return std::string(pattern.substr(LastSeparatorEnd(pattern)));
}

}  // namespace qzr::platform

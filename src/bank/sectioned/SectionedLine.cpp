#include "bank/sectioned/SectionedLine.h"

#include <array>
#include <cstring>

namespace qzr::bank {

namespace {

// The bytes that end a line token: space, tab, "=", LF, and the NUL that ends the C string the
// line was read into.
constexpr std::array<bool, 256> kEndsToken = [] {
    std::array<bool, 256> ends{};
    for (const char c : {' ', '\t', '=', '\n', '\0'}) {
        ends[static_cast<unsigned char>(c)] = true;
    }
    return ends;
}();

}  // namespace

std::string_view SectionedLineText(std::string_view piece) {
    const void* nul = std::memchr(piece.data(), '\0', piece.size());
    return nul == nullptr
               ? piece
               : piece.substr(0, static_cast<size_t>(static_cast<const char*>(nul) - piece.data()));
}

// Tokens are short, so a byte loop over the table beats searching the line for each of the
// ending characters in turn.
std::string_view SectionedLineToken(std::string_view piece) {
    size_t end = 0;
    while (end < piece.size() && !kEndsToken[static_cast<unsigned char>(piece[end])]) {
        ++end;
    }
    return piece.substr(0, end);
}

// In one pass over the line: the first "=" (none when a NUL comes before it), the spaces
// after it, then the value up to the first LF or NUL.
std::string_view SectionedEntryValue(std::string_view piece) {
    const char* const end = piece.data() + piece.size();
    const void* equals = std::memchr(piece.data(), '=', piece.size());
    if (equals == nullptr || std::memchr(piece.data(), '\0',
                                         static_cast<size_t>(static_cast<const char*>(equals) -
                                                             piece.data())) != nullptr) {
        return {};
    }
    const char* value = static_cast<const char*>(equals) + 1;
    while (value != end && *value == ' ') {
        ++value;
    }
    const char* stop = value;
    while (stop != end && *stop != '\n' && *stop != '\0') {
        ++stop;
    }
    return std::string_view(value, static_cast<size_t>(stop - value));
}

}  // namespace qzr::bank

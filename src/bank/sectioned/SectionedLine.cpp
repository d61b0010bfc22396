#include "bank/sectioned/SectionedLine.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace qzr::bank {

namespace {

constexpr std::array<bool, 256> kEndsToken = [] {
    std::array<bool, 256> ends{};
    for (size_t c = 0; c < ends.size(); ++c) {
        ends[c] = EndsSectionedLineToken(static_cast<char>(c));
    }
    return ends;
}();

// The value that begins after the "=": the spaces after it passed over, up to the LF that
// ends the piece or the first NUL.
std::string_view ValueAfterEquals(const char* value, const char* end) {
    while (value != end && *value == ' ') {
        ++value;
    }
    const char* stop = value != end && end[-1] == '\n' ? end - 1 : end;
    if (const void* nul = std::memchr(value, '\0', static_cast<size_t>(stop - value))) {
        stop = static_cast<const char*>(nul);
    }
    return std::string_view(value, static_cast<size_t>(stop - value));
}

}  // namespace

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
    return ValueAfterEquals(static_cast<const char*>(equals) + 1, end);
}

// Lines mostly hold the "=" after the blanks that pad their key, none of which is a NUL.
std::string_view SectionedEntryValue(std::string_view piece, size_t tokenLength) {
    const char* const end = piece.data() + piece.size();
    const char* equals = piece.data() + tokenLength;
    constexpr uint64_t kEightSpaces = 0x2020202020202020u;
    for (uint64_t eight = 0; end - equals >= 8; equals += 8) {
        std::memcpy(&eight, equals, sizeof eight);
        if (eight != kEightSpaces) {
            break;
        }
    }
    while (equals != end && *equals == ' ') {
        ++equals;
    }
    if (equals == end || *equals != '=') {
        return SectionedEntryValue(piece);
    }
    return ValueAfterEquals(equals + 1, end);
}

}  // namespace qzr::bank

// How a sectioned bank line is read: the line token that names sections and keys, and the
// value of an entry line. The reference lookup (CQZRFileIO) and the one-pass index of a whole
// load both read lines through these, so they cannot disagree about a line.
#ifndef QZR_BANK_SECTIONED_SECTIONEDLINE_H
#define QZR_BANK_SECTIONED_SECTIONEDLINE_H

#include <cstddef>
#include <string_view>

namespace qzr::bank {

// Lines of a sectioned bank are read in pieces of at most this many characters (a 512-byte
// read buffer with its terminator); the rest of a longer line is read as the following lines.
constexpr size_t kSectionedLineChars = 511;

// The characters that end a line token: space, tab, "=", LF, and the NUL that ends the C
// string the line was read into.
constexpr bool EndsSectionedLineToken(char c) {
    return c == ' ' || c == '\t' || c == '=' || c == '\n' || c == '\0';
}

// From the first character up to, not including, the first space, tab, "=" or LF. A line
// that begins with a space or a tab has an empty token.
std::string_view SectionedLineToken(std::string_view piece);

// The value of an entry line (a line piece, which holds an LF only as its last character): what
// follows the first "=", with leading spaces (spaces only) passed over, up to the LF. A line
// without "=" has the empty value. Trailing blanks and any further "=" belong to the value.
std::string_view SectionedEntryValue(std::string_view piece);
// The same for a piece whose token is tokenLength characters long, which the search for the
// "=" passes over.
std::string_view SectionedEntryValue(std::string_view piece, size_t tokenLength);

}  // namespace qzr::bank

#endif  // QZR_BANK_SECTIONED_SECTIONEDLINE_H

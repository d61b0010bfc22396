// A sectioned bank file as its reader sees it, indexed once: lines read in pieces of 511
// characters, each named by its token (up to the first space, tab, "=" or LF), and the
// library's first-match key lookup (the search for a key starts after the FIRST header line of
// the section and runs on past later sections to the end of the file).
#ifndef QZRBANK_SECTIONEDFILE_H
#define QZRBANK_SECTIONEDFILE_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BankText.h"

namespace qzrbank {

class SectionedFile {
  public:
    explicit SectionedFile(std::string_view text);

    const std::vector<LinePiece>& Pieces() const { return m_pieces; }
    int LineOf(size_t piece) const { return m_pieces[piece].line; }
    std::string_view Token(size_t piece) const;
    // The value of an entry line: after the first "=", leading spaces passed over, up to the
    // LF; empty for a line without "=".
    std::string Value(size_t piece) const;
    bool IsHeader(size_t piece) const;  // the token begins with '['

    // First piece whose token is the section name (brackets included).
    std::optional<size_t> FindSection(std::string_view section) const;
    // The key's line as the loaders find it, or nothing when the section or key is missing.
    std::optional<size_t> FindKey(std::string_view section, std::string_view key) const;
    // Every piece whose token is the given one, in file order.
    const std::vector<size_t>& PiecesWithToken(std::string_view token) const;
    // The piece of the header a piece lies under (the nearest header at or before it).
    std::optional<size_t> EnclosingHeader(size_t piece) const;
    // One past the last piece of the section that starts at a header piece.
    size_t SectionEnd(size_t header) const;

  private:
    std::vector<LinePiece> m_pieces;
    std::map<std::string, std::vector<size_t>, std::less<>> m_byToken;
    std::vector<size_t> m_headers;  // pieces whose token begins with '['
};

}  // namespace qzrbank

#endif  // QZRBANK_SECTIONEDFILE_H

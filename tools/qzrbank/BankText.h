// Bank files as the library's loaders see them, read on the tool's side: the text-mode
// translation (CR LF reads as LF, a lone CR stays, Ctrl-Z ends the file) and the reading of
// lines in pieces of a fixed number of characters, the way fgets into a fixed buffer reads
// them. The checker and the file information need line numbers and header texts, which the
// library's API does not give, so the tool reads the files itself with the same rules.
#ifndef QZRBANK_BANKTEXT_H
#define QZRBANK_BANKTEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qzrbank {

// The legacy loaders and header recognition read lines into 1024 bytes, the sectioned reader
// into 512: at most this many characters per piece, the line feed included when it fits.
constexpr size_t kLegacyLineChars = 1023;
constexpr size_t kSectionedLineChars = 511;

// One piece of a line: the whole line when it fits, otherwise consecutive pieces of it.
struct LinePiece {
    std::string text;        // as read, with its LF when it fits; may hold NUL bytes
    int line = 0;            // 1-based number of the physical line the piece belongs to
    bool continued = false;  // not the first piece of its line
};

// A physical line of the translated text.
struct PhysicalLine {
    int line = 0;
    size_t length = 0;        // characters without the line feed
    bool hasLineEnd = false;  // false only for a last line without LF
    bool hasNul = false;
};

// Paths as the tool is given them may use the backslash of the bank paths; on POSIX the
// library maps it to '/', and so does the tool before it opens a file itself.
std::string NativePath(const std::string& path);

// Whole file through the text-mode translation. False when it cannot be opened (or is a
// folder).
bool ReadBankText(const std::string& path, std::string* text);

// The translation alone, for text already in memory.
std::string TranslateTextMode(std::string_view raw);

std::vector<LinePiece> SplitPieces(std::string_view text, size_t maxChars);
std::vector<PhysicalLine> SplitPhysicalLines(std::string_view text);

// A piece as the C string it is read into: up to its first NUL.
std::string_view CText(std::string_view piece);

// A piece without its trailing LF (and seen as a C string).
std::string_view WithoutLineEnd(std::string_view piece);

}  // namespace qzrbank

#endif  // QZRBANK_BANKTEXT_H

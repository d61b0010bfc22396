// Reading bank files as a text-mode stream does on every platform: CR LF reads as LF, a lone
// CR is kept, a Ctrl-Z byte (0x1A) ends the file. Line-length limits count characters after
// that translation, so lines split at the same places everywhere. This is the library's one
// text-mode line reader; everything that reads a bank line by line uses it.
#ifndef QZR_PLATFORM_TEXTLINEREADER_H
#define QZR_PLATFORM_TEXTLINEREADER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Env.h"

namespace qzr::platform {

// Length of the next line piece of already translated text: up to and including the first
// LF, but at most maxChars characters (the rest of a longer line is the next piece). 0 only
// when text is empty or maxChars is 0.
size_t NextLineLength(std::string_view text, size_t maxChars);

class TextLineReader {
  public:
    // Opens path through the current Env; IsOpen() tells whether that worked.
    explicit TextLineReader(const std::string& path);
    bool IsOpen() const;

    // Like fgets with a buffer of maxChars + 1: the next line piece (at most maxChars
    // characters, the LF included when it fits) replaces *line. False when nothing is left.
    bool ReadLine(std::string* line, size_t maxChars);
    // The same piece as a view into the reader's buffer, valid until the next read.
    bool ReadPiece(std::string_view* piece, size_t maxChars);
    // Like feof: true once a read has reached the end of the file (or its Ctrl-Z).
    bool AtEnd() const;
    // The number (from 1) of the line the last piece belongs to, and whether that piece
    // stopped at maxChars with more of its line still to come.
    long LineNumber() const { return m_lineOfPiece; }
    bool PieceWasCut() const { return m_pieceWasCut; }

    // Raw bytes the first read asks for: enough for the header of a bank, so that a reader
    // that looks at a few lines only reads a little; every later read asks for kChunkSize.
    static constexpr size_t kFirstChunkSize = 4 * 1024;
    static constexpr size_t kChunkSize = 64 * 1024;

  private:
    // Moves the text not handed out yet to the buffer's start, reads the next raw chunk
    // behind it and translates that in place.
    void Refill();
    // Numbers the piece just handed out.
    void CountLine(bool endsWithLineFeed);

    std::unique_ptr<ReadableFile> m_file;
    // [0, m_pos) handed out, [m_pos, m_textEnd) translated and not handed out yet, then a CR
    // whose translation waits for the next chunk when m_heldCr.
    std::vector<char> m_buffer;
    size_t m_pos = 0;
    size_t m_textEnd = 0;
    bool m_heldCr = false;
    bool m_fileExhausted = false;
    bool m_atEnd = false;
    long m_lineOfPiece = 0;
    long m_nextLine = 1;
    bool m_pieceWasCut = false;
};

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_TEXTLINEREADER_H

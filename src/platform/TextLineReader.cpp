#include "platform/TextLineReader.h"

#include <algorithm>
#include <cstring>

#include "platform/TextModeTranslator.h"

namespace qzr::platform {

size_t NextLineLength(std::string_view text, size_t maxChars) {
    const size_t limit = std::min(text.size(), maxChars);
    const size_t lineFeed = text.substr(0, limit).find('\n');
    return lineFeed == std::string_view::npos ? limit : lineFeed + 1;
}

TextLineReader::TextLineReader(const std::string& path)
    : m_file(CurrentEnv()->OpenForReading(path)) {}

bool TextLineReader::IsOpen() const {
    return m_file != nullptr;
}

bool TextLineReader::ReadLine(std::string* line, size_t maxChars) {
    if (line == nullptr) {
        return false;
    }
    std::string_view piece;
    const bool read = ReadPiece(&piece, maxChars);
    line->assign(piece.data(), piece.size());
    return read;
}

bool TextLineReader::ReadPiece(std::string_view* piece, size_t maxChars) {
    *piece = {};
    if (!m_file || maxChars == 0) {
        return false;
    }
    for (;;) {
        const std::string_view pending(m_buffer.data() + m_pos, m_textEnd - m_pos);
        const size_t length = NextLineLength(pending, maxChars);
        const bool complete = length > 0 && (pending[length - 1] == '\n' || length == maxChars);
        if (complete || m_fileExhausted) {
            if (length == 0) {
                m_atEnd = true;
                return false;
            }
            // A piece cut short by the end of the file has read up to that end, as fgets
            // does, so AtEnd() turns true with it.
            m_atEnd = !complete;
            *piece = pending.substr(0, length);
            m_pos += length;
            CountLine(pending[length - 1] == '\n');
            return true;
        }
        Refill();
    }
}

void TextLineReader::CountLine(bool endsWithLineFeed) {
    m_lineOfPiece = m_nextLine;
    m_pieceWasCut = !endsWithLineFeed && !m_atEnd;
    if (endsWithLineFeed) {
        ++m_nextLine;
    }
}

bool TextLineReader::AtEnd() const {
    return m_atEnd;
}

void TextLineReader::Refill() {
    const size_t kept = m_textEnd - m_pos + (m_heldCr ? 1 : 0);
    if (m_pos != 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_pos, kept);
        m_textEnd -= m_pos;
        m_pos = 0;
    }
    const size_t chunk = m_buffer.empty() ? kFirstChunkSize : kChunkSize;
    if (m_buffer.size() < kept + chunk) {
        m_buffer.resize(kept + chunk);
    }
    const size_t got = m_file->Read(m_buffer.data() + kept, chunk);
    // The held CR, if any, goes through the translation again in front of the new bytes.
    const TextModeTranslation translation =
        TranslateTextMode(m_buffer.data() + m_textEnd, kept - m_textEnd + got, got != 0);
    m_textEnd += translation.length;
    m_heldCr = translation.heldCr;
    if (m_heldCr) {
        m_buffer[m_textEnd] = '\r';  // right behind the text, where the next read continues
    }
    m_fileExhausted = got == 0 || translation.ended;
}

}  // namespace qzr::platform

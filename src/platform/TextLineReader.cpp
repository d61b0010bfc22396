#include "platform/TextLineReader.h"

#include <algorithm>
#include <vector>

namespace qzr::platform {

namespace {

constexpr size_t kChunkSize = 64 * 1024;

}  // namespace

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
    line->clear();
    if (!m_file || maxChars == 0) {
        return false;
    }
    for (;;) {
        const std::string_view pending(m_buffer.data() + m_pos, m_buffer.size() - m_pos);
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
            line->assign(pending.data(), length);
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
    m_buffer.erase(0, m_pos);
    m_pos = 0;
    if (m_chunk.empty()) {
        m_chunk.resize(kChunkSize);
    }
    const size_t got = m_file->Read(m_chunk.data(), m_chunk.size());
    if (got == 0) {
        m_translator.Finish(&m_buffer);
        m_fileExhausted = true;
        return;
    }
    m_translator.Feed(m_chunk.data(), got, &m_buffer);
    if (m_translator.Ended()) {
        m_fileExhausted = true;
    }
}

}  // namespace qzr::platform

#include "platform/TextWriter.h"

#include <cstring>

namespace qzr::platform {

namespace {

constexpr size_t kBufferSize = 64 * 1024;

}  // namespace

TextWriter::TextWriter(const std::string& path, WriteMode mode)
    : m_file(CurrentEnv()->OpenForWriting(path, mode)), m_failed(m_file == nullptr) {
    m_buffer.resize(kBufferSize + 2);
}

TextWriter::~TextWriter() {
    if (m_file) {
        Close();
    }
}

bool TextWriter::IsOpen() const {
    return m_file != nullptr;
}

// Line by line, each line's bytes and its CR LF copied straight into the buffer, and the
// buffer written out once it holds kBufferSize bytes or more after a line, as before.
void TextWriter::Write(std::string_view text) {
    if (!m_file) {
        m_failed = true;
        return;
    }
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p != end) {
        const void* lineFeed = std::memchr(p, '\n', static_cast<size_t>(end - p));
        const char* const runEnd = lineFeed != nullptr ? static_cast<const char*>(lineFeed) : end;
        const size_t run = static_cast<size_t>(runEnd - p);
        if (m_buffer.size() - m_used < run + 2) {
            m_buffer.resize(m_used + run + 2);  // a line longer than the buffer
        }
        char* const out = &m_buffer[m_used];
        std::memcpy(out, p, run);
        m_used += run;
        if (lineFeed != nullptr) {
            out[run] = '\r';
            out[run + 1] = '\n';
            m_used += 2;
            p = runEnd + 1;
        } else {
            p = end;
        }
        if (m_used >= kBufferSize) {
            FlushBuffer();
        }
    }
}

bool TextWriter::FlushBuffer() {
    if (m_used > 0) {
        if (!m_file || !m_file->Append(m_buffer.data(), m_used)) {
            m_failed = true;
        }
        m_used = 0;
    }
    return !m_failed;
}

bool TextWriter::Sync() {
    if (!m_file) {
        return false;
    }
    FlushBuffer();
    if (!m_file->Flush() || !m_file->Sync()) {
        m_failed = true;
    }
    return !m_failed;
}

bool TextWriter::Close() {
    if (!m_file) {
        return !m_failed;  // closed before (its result stands) or never opened
    }
    FlushBuffer();
    if (!m_file->Flush()) {
        m_failed = true;
    }
    if (!m_file->Close()) {
        m_failed = true;
    }
    m_file.reset();
    return !m_failed;
}

}  // namespace qzr::platform

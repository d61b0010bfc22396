#include "platform/TextWriter.h"

#include <cstring>

namespace qzr::platform {

namespace {

// Large enough that the system calls cost little beside the copying into the page cache, and
// below the size from which the C library maps every allocation afresh from the system, so
// that a save reuses heap memory instead of touching new pages.
constexpr std::size_t kBufferSize = 120 * 1024;

}  // namespace

TextWriter::TextWriter(const std::string& path, WriteMode mode)
    : m_file(CurrentEnv()->OpenForWriting(path, mode)),
      m_buffer(kBufferSize),
      m_failed(m_file == nullptr) {
    if (!m_file) {
        MarkBufferFull();
    }
}

TextWriter::~TextWriter() {
    if (m_file) {
        Close();
    }
}

bool TextWriter::IsOpen() const {
    return m_file != nullptr;
}

// Run by run between line feeds, each run's bytes and then CR LF for its line feed.
void TextWriter::Write(std::string_view text) {
    if (!m_file) {
        m_failed = true;
        return;
    }
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p != end) {
        const void* lineFeed = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
        const char* const runEnd = lineFeed != nullptr ? static_cast<const char*>(lineFeed) : end;
        WriteVerbatim(std::string_view(p, static_cast<std::size_t>(runEnd - p)));
        if (lineFeed == nullptr) {
            break;
        }
        EndLine();
        p = runEnd + 1;
    }
}

// Without a file the buffer counts as full, so that the first piece written after all fails.
void TextWriter::MarkBufferFull() {
    m_used = m_buffer.size();
}

// Without a file (never opened, or closed) the bytes have nowhere to go: the writer fails, and
// the room it hands out is scratch space.
void TextWriter::MakeRoom(std::size_t size) {
    if (!m_file) {
        m_failed = true;
        m_used = 0;
    }
    FlushBuffer();
    if (m_buffer.size() < size) {
        m_buffer.resize(size);  // a piece longer than the buffer
    }
}

bool TextWriter::FlushBuffer() {
    if (m_used > 0) {
        if (!m_file || !m_file->Append(reinterpret_cast<const char*>(m_buffer.data()), m_used)) {
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
    MarkBufferFull();
    return !m_failed;
}

}  // namespace qzr::platform

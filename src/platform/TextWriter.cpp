#include "platform/TextWriter.h"

#include <cstdarg>
#include <cstring>

#include "platform/CNumbers.h"

namespace qzr::platform {

namespace {

constexpr size_t kBufferSize = 64 * 1024;

}  // namespace

TextWriter::TextWriter(const std::string& path, WriteMode mode)
    : m_file(CurrentEnv()->OpenForWriting(path, mode)), m_failed(m_file == nullptr) {
    m_buffer.reserve(kBufferSize + 2);
}

TextWriter::~TextWriter() {
    if (m_file) {
        Close();
    }
}

bool TextWriter::IsOpen() const {
    return m_file != nullptr;
}

void TextWriter::Write(std::string_view text) {
    if (!m_file) {
        m_failed = true;
        return;
    }
    while (!text.empty()) {
        const size_t lineFeed = text.find('\n');
        const std::string_view run = text.substr(0, lineFeed);
        m_buffer.append(run.data(), run.size());
        if (lineFeed == std::string_view::npos) {
            text = std::string_view();
        } else {
            m_buffer.append("\r\n", 2);
            text.remove_prefix(lineFeed + 1);
        }
        if (m_buffer.size() >= kBufferSize) {
            FlushBuffer();
        }
    }
}

void TextWriter::Format(const char* format, ...) {
    m_scratch.clear();
    va_list args;
    va_start(args, format);
    AppendFormatCV(&m_scratch, format, args);
    va_end(args);
    Write(m_scratch);
}

bool TextWriter::FlushBuffer() {
    if (!m_buffer.empty()) {
        if (!m_file || !m_file->Append(m_buffer.data(), m_buffer.size())) {
            m_failed = true;
        }
        m_buffer.clear();
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

// Writing bank files as a text-mode stream does: every "\n" becomes CR LF on disk, also one
// inside a text value; nothing else is translated. Buffered; remembers the first error.
#ifndef QZR_PLATFORM_TEXTWRITER_H
#define QZR_PLATFORM_TEXTWRITER_H

#include <memory>
#include <string>
#include <string_view>

#include "platform/Env.h"

namespace qzr::platform {

class TextWriter {
  public:
    TextWriter(const std::string& path, WriteMode mode);
    ~TextWriter();  // closes, if Close() was not called
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;

    bool IsOpen() const;
    void Write(std::string_view text);
    // Flushes and syncs to the medium; false if any write so far failed.
    bool Sync();
    // Flushes and closes; false if any write, the flush or the close failed. A second call
    // repeats the first one's answer. Writing after Close fails.
    bool Close();

  private:
    bool FlushBuffer();

    std::unique_ptr<WritableFile> m_file;
    std::string m_buffer;  // bytes as they go to disk (line ends already CR LF)
    size_t m_used = 0;     // how many of m_buffer's bytes are in use
    bool m_failed = false;
};

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_TEXTWRITER_H

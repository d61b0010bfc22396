// The text-mode translation of reading, in one place: CR LF becomes LF, a lone CR is kept, a
// Ctrl-Z byte (0x1A) ends the file. Raw bytes are fed in chunks of any size; a CR at the end of
// one chunk waits for the next to see whether an LF follows.
#ifndef QZR_PLATFORM_TEXTMODETRANSLATOR_H
#define QZR_PLATFORM_TEXTMODETRANSLATOR_H

#include <cstddef>
#include <string>

namespace qzr::platform {

class TextModeTranslator {
  public:
    // Appends the translation of the next raw bytes to *out. Bytes after a Ctrl-Z are ignored.
    void Feed(const char* data, size_t n, std::string* out);
    // Call once the file has no more bytes: a CR still waiting is kept as it is.
    void Finish(std::string* out);
    // True once a Ctrl-Z was seen; the rest of the file need not be read.
    bool Ended() const { return m_ended; }

  private:
    bool m_pendingCr = false;
    bool m_ended = false;
};

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_TEXTMODETRANSLATOR_H

// The text-mode translation of reading, in one place: CR LF becomes LF, a lone CR is kept, a
// Ctrl-Z byte (0x1A) ends the file. The translation is done in place, chunk by chunk; a CR at
// the end of one chunk waits for the next to see whether an LF follows.
#ifndef QZR_PLATFORM_TEXTMODETRANSLATOR_H
#define QZR_PLATFORM_TEXTMODETRANSLATOR_H

#include <cstddef>

namespace qzr::platform {

struct TextModeTranslation {
    size_t length = 0;    // characters of the translation, from the start of the bytes
    bool heldCr = false;  // the last byte, a CR, is not translated yet: see TranslateTextMode
    bool ended = false;   // a Ctrl-Z was found: the bytes from it on are dropped
};

// Translates bytes[0, n) in place to bytes[0, length). When moreMayFollow and the last byte
// (before any Ctrl-Z) is a CR, that CR is left out of the translation: the caller puts it in
// front of the next raw bytes, which decide it. Without moreMayFollow a final CR is kept.
TextModeTranslation TranslateTextMode(char* bytes, size_t n, bool moreMayFollow);

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_TEXTMODETRANSLATOR_H

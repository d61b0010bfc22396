#include "platform/TextModeTranslator.h"

#include <cstring>

namespace qzr::platform {

namespace {

constexpr char kCtrlZ = '\x1A';

}  // namespace

// The bytes from a Ctrl-Z on are never looked at, so the Ctrl-Z is found first; the CRs before
// it are then found with memchr. Up to the first CR LF nothing moves; after it every stretch
// between CRs moves down by the LFs' worth of dropped CRs.
TextModeTranslation TranslateTextMode(char* bytes, size_t n, bool moreMayFollow) {
    TextModeTranslation result;
    const void* ctrlZ = std::memchr(bytes, kCtrlZ, n);
    result.ended = ctrlZ != nullptr;
    const char* const end = result.ended ? static_cast<const char*>(ctrlZ) : bytes + n;
    const char* p = bytes;
    char* o = bytes;
    while (p != end) {
        const void* found = std::memchr(p, '\r', static_cast<size_t>(end - p));
        const char* const cr = found != nullptr ? static_cast<const char*>(found) : end;
        if (o != p) {
            std::memmove(o, p, static_cast<size_t>(cr - p));
        }
        o += cr - p;
        if (cr == end) {
            break;
        }
        p = cr + 1;
        if (p != end && *p == '\n') {
            ++p;
            *o++ = '\n';
        } else if (p == end && !result.ended && moreMayFollow) {
            result.heldCr = true;  // the next bytes decide
        } else {
            *o++ = '\r';  // a lone CR is kept; the byte after it is read as usual
        }
    }
    result.length = static_cast<size_t>(o - bytes);
    return result;
}

}  // namespace qzr::platform

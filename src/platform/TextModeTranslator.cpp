#include "platform/TextModeTranslator.h"

#include <cstring>

namespace qzr::platform {

namespace {

constexpr char kCtrlZ = '\x1A';

}  // namespace

// The bytes from a Ctrl-Z on are never looked at, so the Ctrl-Z is found first; the CRs before
// it are then found with memchr and everything between them copied whole, straight into room
// made in *out (each byte gives at most one character, plus a CR held over from the last
// chunk).
void TextModeTranslator::Feed(const char* data, size_t n, std::string* out) {
    if (m_ended || n == 0) {
        return;
    }
    const char* p = data;
    const void* ctrlZ = std::memchr(data, kCtrlZ, n);
    const char* const end = ctrlZ != nullptr ? static_cast<const char*>(ctrlZ) : data + n;
    const size_t start = out->size();
    out->resize(start + static_cast<size_t>(end - p) + 1);
    char* o = &(*out)[start];
    if (m_pendingCr) {
        // The first byte decides the CR left at the end of the last chunk.
        m_pendingCr = false;
        if (p != end && *p == '\n') {
            ++p;
            *o++ = '\n';
        } else {
            *o++ = '\r';
        }
    }
    while (p != end) {
        const void* found = std::memchr(p, '\r', static_cast<size_t>(end - p));
        const char* const cr = found != nullptr ? static_cast<const char*>(found) : end;
        std::memcpy(o, p, static_cast<size_t>(cr - p));
        o += cr - p;
        if (cr == end) {
            break;
        }
        p = cr + 1;
        if (p != end) {
            if (*p == '\n') {
                ++p;
                *o++ = '\n';
            } else {
                *o++ = '\r';  // a lone CR is kept; the byte after it is read as usual
            }
        } else if (ctrlZ != nullptr) {
            *o++ = '\r';  // a CR right before the Ctrl-Z stands alone
        } else {
            m_pendingCr = true;  // the next chunk decides
        }
    }
    out->resize(static_cast<size_t>(o - out->data()));
    if (ctrlZ != nullptr) {
        m_ended = true;
    }
}

void TextModeTranslator::Finish(std::string* out) {
    if (m_pendingCr) {
        out->push_back('\r');
        m_pendingCr = false;
    }
}

}  // namespace qzr::platform

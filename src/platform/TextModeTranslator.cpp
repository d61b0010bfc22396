#include "platform/TextModeTranslator.h"

#include <cstring>

namespace qzr::platform {

namespace {

constexpr char kCtrlZ = '\x1A';

}  // namespace

void TextModeTranslator::Feed(const char* data, size_t n, std::string* out) {
    const char* p = data;
    const char* const end = data + n;
    while (p < end && !m_ended) {
        if (m_pendingCr) {
            m_pendingCr = false;
            if (*p == '\n') {
                out->push_back('\n');
                ++p;
                continue;
            }
            out->push_back('\r');
        }
        // Copy the run of ordinary bytes up to the next CR or Ctrl-Z in one go.
        const char* run = p;
        while (p < end && *p != '\r' && *p != kCtrlZ) {
            ++p;
        }
        out->append(run, static_cast<size_t>(p - run));
        if (p == end) {
            break;
        }
        if (*p == kCtrlZ) {
            m_ended = true;
        } else {
            m_pendingCr = true;
        }
        ++p;
    }
}

void TextModeTranslator::Finish(std::string* out) {
    if (m_pendingCr) {
        out->push_back('\r');
        m_pendingCr = false;
    }
}

}  // namespace qzr::platform

#include "platform/ExecutablePath.h"

#if defined(_WIN32)
#include "platform/WindowsHeaders.h"
#else
#include <unistd.h>
#endif

#include <vector>

namespace qzr::platform {

std::string ExecutablePath() {
    // Paths are 8-bit texts throughout the library, so the ANSI form serves here too. Both calls
    // cut a path that does not fit; a full buffer is taken as such a cut.
    std::vector<char> buffer(4096);
#if defined(_WIN32)
    const DWORD length =
        GetModuleFileNameA(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length == 0 || length >= buffer.size()) {
        return {};
    }
#else
    const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0 || static_cast<size_t>(length) >= buffer.size()) {
        return {};
    }
#endif
    return std::string(buffer.data(), static_cast<size_t>(length));
}

}  // namespace qzr::platform

// A file held open without sharing, as another program on Windows may hold it: nobody else
// opens it meanwhile. POSIX has no share modes, so there is nothing to hold there.
#ifndef QZR_TESTS_SUPPORT_HELDOPEN_H
#define QZR_TESTS_SUPPORT_HELDOPEN_H

#if defined(_WIN32)
#include <string>

#include "WindowsHeaders.h"

namespace qzr::test {

class HeldOpen {
  public:
    explicit HeldOpen(const std::string& path)
        : m_handle(::CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~HeldOpen() {
        if (m_handle != INVALID_HANDLE_VALUE) {
            ::CloseHandle(m_handle);
        }
    }
    HeldOpen(const HeldOpen&) = delete;
    HeldOpen& operator=(const HeldOpen&) = delete;
    bool held() const { return m_handle != INVALID_HANDLE_VALUE; }

  private:
    HANDLE m_handle;
};

}  // namespace qzr::test

#endif  // defined(_WIN32)
#endif  // QZR_TESTS_SUPPORT_HELDOPEN_H

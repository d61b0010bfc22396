// Sets the process's C locale for one test and restores the previous one afterwards.
#ifndef QZR_TESTS_PLATFORM_SCOPEDLOCALE_H
#define QZR_TESTS_PLATFORM_SCOPEDLOCALE_H

#include <clocale>
#include <string>

namespace qzr::test {

class ScopedLocale {
  public:
    explicit ScopedLocale(const char* name)
        : m_previous(std::setlocale(LC_ALL, nullptr)),
          m_installed(std::setlocale(LC_ALL, name) != nullptr) {}
    ~ScopedLocale() { std::setlocale(LC_ALL, m_previous.c_str()); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;
    // False when the host has no such locale; the test then skips what needs it.
    bool installed() const { return m_installed; }

  private:
    std::string m_previous;
    bool m_installed;
};

}  // namespace qzr::test

#endif  // QZR_TESTS_PLATFORM_SCOPEDLOCALE_H

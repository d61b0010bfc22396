// Sets the process's C locale (all of it, or one category) for one test and restores the
// previous one afterwards. Windows names its locales otherwise than POSIX hosts do, so a test
// may give every name it accepts: the first one the C library knows is set, and printed.
#ifndef QZR_TESTS_PLATFORM_SCOPEDLOCALE_H
#define QZR_TESTS_PLATFORM_SCOPEDLOCALE_H

#include <clocale>
#include <iostream>
#include <string>
#include <vector>

namespace qzr::test {

// One locale by its POSIX name and its Windows name. Code page 1252 is Latin-1 in every letter
// above 127; the C runtimes of Windows have no UTF-8 locale before the UCRT's ".UTF-8".
inline const std::vector<const char*> kLatin1German = {"de_DE.ISO-8859-1", "German_Germany.1252"};
inline const std::vector<const char*> kShiftJisJapanese = {"ja_JP.SJIS", "Japanese_Japan.932"};
inline const std::vector<const char*> kUtf8 = {"C.UTF-8", ".UTF-8"};

class ScopedLocale {
  public:
    explicit ScopedLocale(const std::vector<const char*>& names, int category = LC_ALL)
        : m_category(category), m_previous(std::setlocale(category, nullptr)) {
        for (const char* name : names) {
            if (std::setlocale(category, name) != nullptr) {
                m_name = name;
                std::cout << "locale " << name << '\n';
                return;
            }
        }
    }
    explicit ScopedLocale(const char* name, int category = LC_ALL)
        : ScopedLocale(std::vector<const char*>{name}, category) {}
    ~ScopedLocale() { std::setlocale(m_category, m_previous.c_str()); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;

    // False when the host knows none of the names; the test then skips what needs it.
    bool installed() const { return !m_name.empty(); }
    // The name that was set, or "".
    const std::string& name() const { return m_name; }

  private:
    int m_category;
    std::string m_previous;
    std::string m_name;
};

}  // namespace qzr::test

#endif  // QZR_TESTS_PLATFORM_SCOPEDLOCALE_H

// A fresh folder under /tmp for one test, removed with everything in it when the test ends.
#ifndef QZR_TESTS_PLATFORM_TEMPFOLDER_H
#define QZR_TESTS_PLATFORM_TEMPFOLDER_H

#include <string>
#include <string_view>

namespace qzr::test {

class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // The folder's path, without a trailing separator.
    const std::string& path() const { return m_path; }
    // path() + "/" + name.
    std::string File(std::string_view name) const;

    // Raw bytes, no translation; the helpers go around the Env on purpose, so that tests check
    // what the Env wrote or read against the file system itself.
    void WriteBytes(std::string_view name, std::string_view bytes) const;
    std::string ReadBytes(std::string_view name) const;
    void MakeFolder(std::string_view name) const;
    // Permission bits (e.g. 0644) of a file.
    unsigned Mode(std::string_view name) const;
    void SetMode(std::string_view name, unsigned mode) const;

  private:
    std::string m_path;
};

}  // namespace qzr::test

#endif  // QZR_TESTS_PLATFORM_TEMPFOLDER_H

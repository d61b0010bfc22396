// A folder of the tool's own for files it writes on the way, removed with everything in it
// when the object goes.
#ifndef QZRBANK_TEMPORARYFOLDER_H
#define QZRBANK_TEMPORARYFOLDER_H

#include <filesystem>

namespace qzrbank {

class TemporaryFolder {
  public:
    // A new folder in parent; Path() is empty when none could be made.
    explicit TemporaryFolder(const std::filesystem::path& parent);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

}  // namespace qzrbank

#endif  // QZRBANK_TEMPORARYFOLDER_H

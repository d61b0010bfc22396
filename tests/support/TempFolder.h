// A fresh folder for one test under the system's temporary folder, removed with everything in it
// when the test ends. Nothing outside it is ever written or removed: its name must not exist
// before, and a name that leads out of it (a root, or ".." at the front) is refused. The
// helpers go around the library on purpose, so that a test sees exactly the bytes on disk.
#ifndef QZR_TESTS_SUPPORT_TEMPFOLDER_H
#define QZR_TESTS_SUPPORT_TEMPFOLDER_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qzr::test {

// Every entry of a folder tree by its relative path in the generic form: a file's bytes,
// "<folder>", or "<special>" (a pipe, say: reading it would wait for a writer).
using FolderSnapshot = std::map<std::string, std::string>;

inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

class TempFolder {
  public:
    TempFolder() {
        std::mt19937_64 random(std::random_device{}());
        do {
            m_path =
                std::filesystem::temp_directory_path() / ("qzr-test-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(m_path));
    }
    // Windows removes no read-only file, so what a test made read-only is made writable first;
    // links are not followed, their targets are none of this folder's business.
    ~TempFolder() {
        namespace fs = std::filesystem;
        std::error_code ignored;
        for (fs::recursive_directory_iterator it(m_path, ignored), end; it != end;
             it.increment(ignored)) {
            if (!it->is_symlink(ignored)) {
                fs::permissions(it->path(), fs::perms::owner_read | fs::perms::owner_write,
                                fs::perm_options::add, ignored);
            }
        }
        fs::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string Folder() const { return m_path.string(); }  // without a trailing separator
    std::string File(std::string_view name) const { return Inside(name).string(); }
    bool Exists(std::string_view name) const { return std::filesystem::exists(Inside(name)); }
    void MakeFolder(std::string_view name) const {
        std::filesystem::create_directories(Inside(name));
    }
    // Writes the bytes as they stand, making the folders on the way; returns the file's path.
    std::string Write(std::string_view name, std::string_view bytes) const {
        const std::filesystem::path path = Inside(name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return path.string();
    }
    std::string Read(std::string_view name) const { return ReadBytes(Inside(name)); }

    FolderSnapshot Snapshot() const {
        FolderSnapshot entries;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_path)) {
            const std::string name =
                std::filesystem::relative(entry.path(), m_path).generic_string();
            entries[name] = entry.is_directory()      ? "<folder>"
                            : entry.is_regular_file() ? ReadBytes(entry.path())
                                                      : "<special>";
        }
        return entries;
    }
    // Makes the folder hold exactly the given entries again.
    void Restore(const FolderSnapshot& entries) const {
        for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
            std::filesystem::remove_all(entry.path());
        }
        for (const auto& [name, bytes] : entries) {
            if (bytes == "<folder>") {
                MakeFolder(name);
            } else {
                Write(name, bytes);
            }
        }
    }

  private:
    std::filesystem::path Inside(std::string_view name) const {
        const std::filesystem::path relative = std::filesystem::path(name).lexically_normal();
        if (relative.has_root_path() || (!relative.empty() && *relative.begin() == "..")) {
            throw std::invalid_argument("outside the temporary folder: " + std::string(name));
        }
        return m_path / relative;
    }

    std::filesystem::path m_path;
};

}  // namespace qzr::test

#endif  // QZR_TESTS_SUPPORT_TEMPFOLDER_H

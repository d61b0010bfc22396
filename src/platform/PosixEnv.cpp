// The Env of POSIX systems. Library paths use the backslash as separator; every backslash is
// mapped to '/' when a path reaches the file system, forward slashes are kept.
#if !defined(_WIN32)

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "platform/Env.h"
#include "platform/Wildcard.h"

namespace qzr::platform {

namespace {

constexpr size_t kCopyChunk = 64 * 1024;

std::string ToOsPath(const std::string& path) {
    std::string osPath = path;
    std::replace(osPath.begin(), osPath.end(), '\\', '/');
    return osPath;
}

// The names in a folder, "." and ".." included; empty when it cannot be read.
std::vector<std::string> FolderEntries(const std::string& osFolder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> dir(::opendir(osFolder.c_str()), ::closedir);
    if (dir == nullptr) {
        return names;
    }
    while (const struct dirent* entry = ::readdir(dir.get())) {
        names.emplace_back(entry->d_name);
    }
    return names;
}

// Windows finds a file or folder whatever the letter case of the name asked for; a
// case-sensitive file system does not, and bank folders copied from Windows often carry other
// case ("bank/user-imm.bnk" for "Bank\User-IMM.bnk"). So a path whose exact form is missing is
// looked up component by component: a component whose exact name is missing is replaced by the
// entry of its folder whose name differs from it only in ASCII letter case, the first in NTFS
// listing order where there are several (an exact name always wins). From the first component
// that has no such entry on, the path stays as given, so a file about to be created gets the
// name asked for, in the folder found. Only a missing path pays for the lookup.
std::string FindIgnoringCase(const std::string& osPath) {
    std::string found;
    size_t start = 0;
    while (start <= osPath.size()) {
        const size_t end = std::min(osPath.find('/', start), osPath.size());
        const std::string component = osPath.substr(start, end - start);
        struct stat info;
        if (component.empty() || component == "." || component == ".." ||
            ::lstat((found + component).c_str(), &info) == 0) {
            found += component;
        } else {
            const std::vector<std::string> entries =
                FolderEntries(found.empty() ? std::string(".") : found);
            const std::string* entry = FindEntryIgnoringCase(component, entries);
            if (entry == nullptr) {
                return found + osPath.substr(start);
            }
            found += *entry;
        }
        if (end < osPath.size()) {
            found += '/';
        }
        start = end + 1;
    }
    return found;
}

// The OS path of a library path, found as Windows would find it (see FindIgnoringCase).
std::string OsPathOf(const std::string& path) {
    const std::string osPath = ToOsPath(path);
    struct stat info;
    if (osPath.empty() || ::stat(osPath.c_str(), &info) == 0) {
        return osPath;
    }
    return FindIgnoringCase(osPath);
}

bool StatPath(const std::string& path, struct stat* info) {
    if (path.empty()) {
        return false;
    }
    const std::string osPath = ToOsPath(path);
    if (::stat(osPath.c_str(), info) == 0) {
        return true;
    }
    const std::string found = FindIgnoringCase(osPath);
    return found != osPath && ::stat(found.c_str(), info) == 0;
}

int OpenRetrying(const char* osPath, int flags, mode_t mode) {
    int fd;
    do {
        fd = ::open(osPath, flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

// Reads up to n bytes, retrying interrupted reads; -1 on error.
ssize_t ReadSome(int fd, char* buffer, size_t n) {
    ssize_t got;
    do {
        got = ::read(fd, buffer, n);
    } while (got < 0 && errno == EINTR);
    return got;
}

bool WriteAll(int fd, const char* data, size_t n) {
    while (n > 0) {
        const ssize_t written = ::write(fd, data, n);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        n -= static_cast<size_t>(written);
    }
    return true;
}

// Closes an owned descriptor when its scope ends.
class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor() { Close(); }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }
    int Release() {
        const int fd = m_fd;
        m_fd = -1;
        return fd;
    }
    bool Close() {
        if (m_fd < 0) {
            return false;
        }
        const int result = ::close(m_fd);
        m_fd = -1;
        return result == 0;
    }

  private:
    int m_fd;
};

// Only regular files are read: a folder, a device (/dev/zero would never end) or a pipe is
// refused. The open does not wait for a pipe's writer; the descriptor reads blocking again
// once it is known to be a file. -1 when refused.
int OpenRegularFileForReading(const char* osPath, struct stat* info) {
    FileDescriptor fd(OpenRetrying(osPath, O_RDONLY | O_NONBLOCK, 0));
    struct stat own;
    struct stat* status = info != nullptr ? info : &own;
    if (!fd.valid() || ::fstat(fd.get(), status) != 0 || !S_ISREG(status->st_mode)) {
        return -1;
    }
    const int flags = ::fcntl(fd.get(), F_GETFL);
    if (flags < 0 || ::fcntl(fd.get(), F_SETFL, flags & ~O_NONBLOCK) != 0) {
        return -1;
    }
    return fd.Release();
}

class PosixReadableFile : public ReadableFile {
  public:
    explicit PosixReadableFile(int fd) : m_fd(fd) {}

    size_t Read(char* buffer, size_t n) override {
        const ssize_t got = ReadSome(m_fd.get(), buffer, n);
        return got > 0 ? static_cast<size_t>(got) : 0;
    }
    bool Seek(uint64_t offset) override {
        return ::lseek(m_fd.get(), static_cast<off_t>(offset), SEEK_SET) >= 0;
    }
    uint64_t Size() override {
        struct stat info;
        return ::fstat(m_fd.get(), &info) == 0 ? static_cast<uint64_t>(info.st_size) : 0;
    }

  private:
    FileDescriptor m_fd;
};

// Unbuffered: TextWriter does the buffering, so Append goes straight to the OS.
class PosixWritableFile : public WritableFile {
  public:
    explicit PosixWritableFile(int fd) : m_fd(fd) {}

    bool Append(const char* data, size_t n) override {
        return m_fd.valid() && WriteAll(m_fd.get(), data, n);
    }
    bool Flush() override { return m_fd.valid(); }
    bool Sync() override { return m_fd.valid() && ::fsync(m_fd.get()) == 0; }
    bool Close() override { return m_fd.Close(); }

  private:
    FileDescriptor m_fd;
};

bool SameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool CopyContent(int from, int to) {
    std::vector<char> buffer(kCopyChunk);
    for (;;) {
        const ssize_t got = ReadSome(from, buffer.data(), buffer.size());
        if (got < 0) {
            return false;
        }
        if (got == 0) {
            return true;
        }
        if (!WriteAll(to, buffer.data(), static_cast<size_t>(got))) {
            return false;
        }
    }
}

class PosixEnv : public Env {
  public:
    bool PathExists(const std::string& path) override {
        struct stat info;
        return StatPath(path, &info);
    }

    bool IsDirectory(const std::string& path) override {
        struct stat info;
        return StatPath(path, &info) && S_ISDIR(info.st_mode);
    }

    std::unique_ptr<ReadableFile> OpenForReading(const std::string& path) override {
        if (path.empty()) {
            return nullptr;
        }
        const int fd = OpenRegularFileForReading(OsPathOf(path).c_str(), nullptr);
        if (fd < 0) {
            return nullptr;
        }
        return std::make_unique<PosixReadableFile>(fd);
    }

    // Like fopen's "w" and "a": new files get 0666 less the process's umask.
    std::unique_ptr<WritableFile> OpenForWriting(const std::string& path, WriteMode mode) override {
        if (path.empty()) {
            return nullptr;
        }
        const int flags = O_WRONLY | O_CREAT | (mode == WriteMode::kAppend ? O_APPEND : O_TRUNC);
        const int fd = OpenRetrying(OsPathOf(path).c_str(), flags, 0666);
        if (fd < 0) {
            return nullptr;
        }
        return std::make_unique<PosixWritableFile>(fd);
    }

    // A new target gets the source's permission bits (less the umask), as the backup of a
    // bank should be readable by whoever could read the bank. Copying a file onto itself is
    // refused: truncating the target would destroy the source.
    bool CopyFileReplacing(const std::string& from, const std::string& to) override {
        if (from.empty() || to.empty()) {
            return false;
        }
        struct stat sourceInfo;
        FileDescriptor source(OpenRegularFileForReading(OsPathOf(from).c_str(), &sourceInfo));
        if (!source.valid()) {
            return false;
        }
        struct stat targetInfo;
        if (StatPath(to, &targetInfo) && SameFile(sourceInfo, targetInfo)) {
            return false;
        }
        const std::string osTarget = OsPathOf(to);
        FileDescriptor target(OpenRetrying(osTarget.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                           sourceInfo.st_mode & 0777));
        if (!target.valid()) {
            return false;
        }
        if (!CopyContent(source.get(), target.get()) || !target.Close()) {
            ::unlink(osTarget.c_str());  // no half-written copy is left behind
            return false;
        }
        return true;
    }

    bool RenameReplacing(const std::string& from, const std::string& to) override {
        return !from.empty() && !to.empty() &&
               ::rename(OsPathOf(from).c_str(), OsPathOf(to).c_str()) == 0;
    }

    bool RemoveFile(const std::string& path) override {
        return !path.empty() && ::unlink(OsPathOf(path).c_str()) == 0;
    }

    bool CopyPermissions(const std::string& from, const std::string& to) override {
        struct stat info;
        return StatPath(from, &info) && !to.empty() &&
               ::chmod(OsPathOf(to).c_str(), info.st_mode & 07777) == 0;
    }

    // The paths keep the pattern's own folder text (backslashes included, letter case as
    // given), as the library builds every path it hands on; only the folder opened here is
    // mapped and found.
    bool ListMatches(const std::string& pattern, std::vector<std::string>* paths) override {
        if (paths == nullptr) {
            return false;
        }
        paths->clear();
        const std::string folder = PatternFolder(pattern);
        const std::string namePattern = PatternName(pattern);
        const std::string osFolder = folder.empty() ? std::string(".") : OsPathOf(folder);
        std::vector<std::string> names = FolderEntries(osFolder);
        names.erase(std::remove_if(names.begin(), names.end(),
                                   [&namePattern](const std::string& name) {
                                       return !WildcardMatch(namePattern, name);
                                   }),
                    names.end());
        SortInNtfsOrder(&names);
        for (const std::string& name : names) {
            paths->push_back(folder + name);
        }
        return !paths->empty();
    }

    int64_t NowUtcSeconds() override { return static_cast<int64_t>(std::time(nullptr)); }
};

}  // namespace

Env* Env::Default() {
    static PosixEnv env;
    return &env;
}

}  // namespace qzr::platform

#endif  // !defined(_WIN32)

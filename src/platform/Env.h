// The one seam between the library and the operating system. Every file the library opens,
// copies, renames or lists, and its clock, go through CurrentEnv(), so that a test build can put
// another Env in its place to inject a failing open, write, copy or rename.
//
// Paths are the library's 8-bit texts with the backslash as separator; an Env maps them to
// the OS's form (on POSIX every backslash becomes '/'). Names are found as Windows finds them:
// on a case-sensitive file system, where a component of a path is missing under its exact name,
// an entry of its folder whose name differs only in ASCII letter case stands in for it (the
// exact name wins where both exist; among several, the first in NTFS listing order). This
// holds for every call below; listed paths keep the pattern's folder text as given.
#ifndef QZR_PLATFORM_ENV_H
#define QZR_PLATFORM_ENV_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qzr::platform {

// A file opened for reading raw bytes (no text-mode translation; see TextLineReader).
class ReadableFile {
  public:
    virtual ~ReadableFile() = default;
    // Reads up to n bytes at the current position; returns how many were read (0 at the end
    // of the file or on error).
    virtual size_t Read(char* buffer, size_t n) = 0;
    virtual bool Seek(uint64_t offset) = 0;
    virtual uint64_t Size() = 0;
};

// A file opened for writing raw bytes (no text-mode translation; see TextWriter).
class WritableFile {
  public:
    virtual ~WritableFile() = default;
    virtual bool Append(const char* data, size_t n) = 0;
    virtual bool Flush() = 0;
    // Flushes and asks the OS to put the data on the medium.
    virtual bool Sync() = 0;
    virtual bool Close() = 0;
};

enum class WriteMode {
    kTruncate,  // "w": create or empty the file
    kAppend,    // "a": create if missing, keep the content
};

class Env {
  public:
    virtual ~Env() = default;

    // The process's environment for this platform (POSIX or Windows); never null.
    static Env* Default();

    // True for an existing file or folder.
    virtual bool PathExists(const std::string& path) = 0;
    virtual bool IsDirectory(const std::string& path) = 0;
    // Null when the path cannot be opened for reading or names a folder.
    virtual std::unique_ptr<ReadableFile> OpenForReading(const std::string& path) = 0;
    // Null when the path cannot be opened for writing.
    virtual std::unique_ptr<WritableFile> OpenForWriting(const std::string& path,
                                                         WriteMode mode) = 0;
    // Byte-for-byte copy that replaces an existing target.
    virtual bool CopyFileReplacing(const std::string& from, const std::string& to) = 0;
    // Moves a file over another in one step where the OS allows it, replacing the target.
    virtual bool RenameReplacing(const std::string& from, const std::string& to) = 0;
    virtual bool RemoveFile(const std::string& path) = 0;
    // Gives `to` the access permissions of `from` (both exist).
    virtual bool CopyPermissions(const std::string& from, const std::string& to) = 0;
    // Full paths of the entries matching a wildcard pattern (only its last component holds
    // '*' and '?'), in NTFS order; folders, "." and ".." that match are listed too.
    // False when nothing matches.
    virtual bool ListMatches(const std::string& pattern, std::vector<std::string>* paths) = 0;
    // Seconds since 1970-01-01 00:00:00 UTC.
    virtual int64_t NowUtcSeconds() = 0;
};

// The Env the library uses: Env::Default() in the library and its tools. Defined apart from the
// platform objects (CurrentEnv.cpp), so that test builds can link a definition of their own.
Env* CurrentEnv();

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_ENV_H

// The Env of Windows, on the Win32 wide-character functions: paths are the library's 8-bit
// texts in the process's ANSI code page, turned into UTF-16 as the ANSI functions would turn
// them; a path near the classic 260-character limit goes as an extended-length path.
#if defined(_WIN32)

#include "platform/WindowsHeaders.h"

#include <time.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/Env.h"
#include "platform/Wildcard.h"

namespace qzr::platform {

namespace {

// ReadFile and WriteFile take a DWORD count; larger requests go in pieces of this size.
constexpr size_t kMaxIoPiece = 1u << 30;

// Closes an owned file handle when its scope ends.
class FileHandle {
  public:
    explicit FileHandle(HANDLE handle) : m_handle(handle) {}
    ~FileHandle() { Close(); }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    HANDLE get() const { return m_handle; }
    bool valid() const { return m_handle != INVALID_HANDLE_VALUE; }
    bool Close() {
        if (m_handle == INVALID_HANDLE_VALUE) {
            return false;
        }
        const BOOL closed = ::CloseHandle(m_handle);
        m_handle = INVALID_HANDLE_VALUE;
        return closed != FALSE;
    }

  private:
    HANDLE m_handle;
};

// Ends a FindFirstFileA enumeration when its scope ends.
class FindHandle {
  public:
    explicit FindHandle(HANDLE handle) : m_handle(handle) {}
    ~FindHandle() {
        if (m_handle != INVALID_HANDLE_VALUE) {
            ::FindClose(m_handle);
        }
    }
    FindHandle(const FindHandle&) = delete;
    FindHandle& operator=(const FindHandle&) = delete;

    HANDLE get() const { return m_handle; }
    bool valid() const { return m_handle != INVALID_HANDLE_VALUE; }

  private:
    HANDLE m_handle;
};

// Paths of this length or more become extended-length paths: a bank whose own path fits the
// library's limit still gets its ".tmp" and ".bak" beside it, and a folder of 248 characters
// or more (the limit of folder creation) can still be listed.
constexpr size_t kExtendedFrom = 248;

std::wstring Widen(const std::string& text) {
    if (text.empty()) {
        return std::wstring();
    }
    const int length =
        ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(length), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                          length);
    return wide;
}

std::string Narrow(const wchar_t* text) {
    const int length = ::WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (length <= 1) {
        return std::string();
    }
    std::string narrow(static_cast<size_t>(length - 1), '\0');
    ::WideCharToMultiByte(CP_ACP, 0, text, -1, narrow.data(), length, nullptr, nullptr);
    return narrow;
}

// The OS form of a library path. Shorter paths go as they are, so that device names (NUL,
// CON) and relative paths keep their meaning; a long one is made full ("\\?\C:\..." or
// "\\?\UNC\server\share\...") with backslashes only, as extended-length paths must be.
std::wstring OsPath(const std::string& path) {
    std::wstring wide = Widen(path);
    if (wide.size() < kExtendedFrom || wide.rfind(L"\\\\?\\", 0) == 0) {
        return wide;
    }
    for (wchar_t& c : wide) {
        if (c == L'/') {
            c = L'\\';
        }
    }
    const DWORD needed = ::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
    if (needed == 0) {
        return wide;
    }
    std::wstring full(needed, L'\0');
    const DWORD length = ::GetFullPathNameW(wide.c_str(), needed, full.data(), nullptr);
    if (length == 0 || length >= needed) {
        return wide;
    }
    full.resize(length);
    if (full.rfind(L"\\\\", 0) == 0) {
        return L"\\\\?\\UNC\\" + full.substr(2);
    }
    return L"\\\\?\\" + full;
}

DWORD Attributes(const std::string& path) {
    return ::GetFileAttributesW(OsPath(path).c_str());
}

bool IsFolderAttributes(DWORD attributes) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

class WindowsReadableFile : public ReadableFile {
  public:
    explicit WindowsReadableFile(HANDLE handle) : m_handle(handle) {}

    size_t Read(char* buffer, size_t n) override {
        const DWORD want = static_cast<DWORD>(std::min(n, kMaxIoPiece));
        DWORD got = 0;
        if (::ReadFile(m_handle.get(), buffer, want, &got, nullptr) == FALSE) {
            return 0;
        }
        return static_cast<size_t>(got);
    }
    bool Seek(uint64_t offset) override {
        LARGE_INTEGER position;
        position.QuadPart = static_cast<LONGLONG>(offset);
        return ::SetFilePointerEx(m_handle.get(), position, nullptr, FILE_BEGIN) != FALSE;
    }
    uint64_t Size() override {
        LARGE_INTEGER size;
        if (::GetFileSizeEx(m_handle.get(), &size) == FALSE) {
            return 0;
        }
        return static_cast<uint64_t>(size.QuadPart);
    }

  private:
    FileHandle m_handle;
};

// Unbuffered: TextWriter does the buffering, so Append goes straight to the OS. In append mode
// every write goes to the end of the file, as with fopen's "a".
class WindowsWritableFile : public WritableFile {
  public:
    WindowsWritableFile(HANDLE handle, bool append) : m_handle(handle), m_append(append) {}

    bool Append(const char* data, size_t n) override {
        if (!m_handle.valid()) {
            return false;
        }
        if (m_append) {
            LARGE_INTEGER zero;
            zero.QuadPart = 0;
            if (::SetFilePointerEx(m_handle.get(), zero, nullptr, FILE_END) == FALSE) {
                return false;
            }
        }
        while (n > 0) {
            const DWORD want = static_cast<DWORD>(std::min(n, kMaxIoPiece));
            DWORD written = 0;
            if (::WriteFile(m_handle.get(), data, want, &written, nullptr) == FALSE ||
                written == 0) {
                return false;
            }
            data += written;
            n -= written;
        }
        return true;
    }
    bool Flush() override { return m_handle.valid(); }
    bool Sync() override { return m_handle.valid() && ::FlushFileBuffers(m_handle.get()) != FALSE; }
    bool Close() override { return m_handle.Close(); }

  private:
    FileHandle m_handle;
    bool m_append;
};

class WindowsEnv : public Env {
  public:
    bool PathExists(const std::string& path) override {
        return !path.empty() && Attributes(path) != INVALID_FILE_ATTRIBUTES;
    }

    bool IsDirectory(const std::string& path) override {
        return !path.empty() && IsFolderAttributes(Attributes(path));
    }

    std::unique_ptr<ReadableFile> OpenForReading(const std::string& path) override {
        if (path.empty() || IsDirectory(path)) {
            return nullptr;
        }
        const HANDLE handle =
            ::CreateFileW(OsPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE) {
            return nullptr;
        }
        // Only files are read: a device (CON would wait for the keyboard, NUL) or a pipe is
        // refused, as on POSIX.
        if (::GetFileType(handle) != FILE_TYPE_DISK) {
            ::CloseHandle(handle);
            return nullptr;
        }
        return std::make_unique<WindowsReadableFile>(handle);
    }

    // Like fopen's "w" (create or empty) and "a" (create or keep).
    std::unique_ptr<WritableFile> OpenForWriting(const std::string& path, WriteMode mode) override {
        if (path.empty()) {
            return nullptr;
        }
        const bool append = (mode == WriteMode::kAppend);
        const HANDLE handle = ::CreateFileW(
            OsPath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
            append ? OPEN_ALWAYS : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE) {
            return nullptr;
        }
        return std::make_unique<WindowsWritableFile>(handle, append);
    }

    bool CopyFileReplacing(const std::string& from, const std::string& to) override {
        return !from.empty() && !to.empty() &&
               ::CopyFileW(OsPath(from).c_str(), OsPath(to).c_str(), FALSE) != FALSE;
    }

    bool RenameReplacing(const std::string& from, const std::string& to) override {
        return !from.empty() && !to.empty() &&
               ::MoveFileExW(OsPath(from).c_str(), OsPath(to).c_str(),
                             MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
    }

    // A read-only file is removed too, as POSIX unlinks one: the attribute guards what a file
    // holds, and the saves remove only their own stale temporary file, which may be read-only.
    bool RemoveFile(const std::string& path) override {
        if (path.empty()) {
            return false;
        }
        const std::wstring osPath = OsPath(path);
        if (::DeleteFileW(osPath.c_str()) != FALSE) {
            return true;
        }
        const DWORD attributes = ::GetFileAttributesW(osPath.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || IsFolderAttributes(attributes) ||
            (attributes & FILE_ATTRIBUTE_READONLY) == 0) {
            return false;
        }
        const DWORD writable = attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY);
        if (::SetFileAttributesW(osPath.c_str(),
                                 writable == 0 ? FILE_ATTRIBUTE_NORMAL : writable) == FALSE) {
            return false;
        }
        if (::DeleteFileW(osPath.c_str()) != FALSE) {
            return true;
        }
        ::SetFileAttributesW(osPath.c_str(), attributes);  // not removed after all: as it was
        return false;
    }

    // A file created in a folder inherits the folder's access rights; what a bank carries of
    // its own is the read-only attribute, so that is what passes on.
    bool CopyPermissions(const std::string& from, const std::string& to) override {
        if (from.empty() || to.empty()) {
            return false;
        }
        const DWORD source = Attributes(from);
        const DWORD target = Attributes(to);
        if (source == INVALID_FILE_ATTRIBUTES || target == INVALID_FILE_ATTRIBUTES) {
            return false;
        }
        const DWORD updated = (target & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY)) |
                              (source & FILE_ATTRIBUTE_READONLY);
        if (updated == target) {
            return true;
        }
        return ::SetFileAttributesW(OsPath(to).c_str(),
                                    updated == 0 ? FILE_ATTRIBUTE_NORMAL : updated) != FALSE;
    }

    // Matching is the OS's own (case-insensitive, and short 8.3 names match too, as they
    // always have for the banks); the order is made NTFS order whatever the volume's file
    // system lists.
    bool ListMatches(const std::string& pattern, std::vector<std::string>* paths) override {
        if (paths == nullptr) {
            return false;
        }
        paths->clear();
        if (pattern.empty()) {
            return false;
        }
        WIN32_FIND_DATAW entry;
        FindHandle find(::FindFirstFileW(OsPath(pattern).c_str(), &entry));
        if (!find.valid()) {
            return false;
        }
        std::vector<std::string> names;
        do {
            names.push_back(Narrow(entry.cFileName));
        } while (::FindNextFileW(find.get(), &entry) != FALSE);
        SortInNtfsOrder(&names);
        const std::string folder = PatternFolder(pattern);
        for (const std::string& name : names) {
            paths->push_back(folder + name);
        }
        return !paths->empty();
    }

    int64_t NowUtcSeconds() override { return static_cast<int64_t>(::_time64(nullptr)); }
};

}  // namespace

Env* Env::Default() {
    static WindowsEnv env;
    return &env;
}

}  // namespace qzr::platform

#endif  // defined(_WIN32)

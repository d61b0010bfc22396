// The save protocol shared by every writer, the time stamp of sectioned banks and the default
// bank locations under a "Bank" folder.
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "bank/BankKind.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "bank/SaveProtocol.h"
#include "platform/Env.h"
#include "platform/TextWriter.h"
#include "platform/TimeStamp.h"

namespace qzr::bank {

namespace {

constexpr size_t kTimeStampBufferSize = 26;

// The time-stamp text of the whole library; each GetTimeStamp overwrites it.
char g_timeStamp[kTimeStampBufferSize];

const char* DefaultBankTail(int kind) {
    switch (kind) {
        case OldIMMSystemBank:
            return "Bank\\system-pro.bnk";
        case OldIMMUserBank:
            return "Bank\\user-pro.bnk";
        case IMMSystemBankFiles:
            return "Bank\\Machine\\IMM\\*.bnk";
        case IMMUserBank:
            return "Bank\\User-IMM.bnk";
        case RTMSystemBankFiles:
            return "Bank\\Machine\\RTM\\*.bnk";
        case RTMUserBank:
            return "Bank\\User-RTMIC.bnk";
        default:
            return "";
    }
}

}  // namespace

bool CQZRMoldingMachineWriter::BackupBankFile(const char* path) {
    if (path != nullptr) {
        const std::string target(path);
        // A copy the platform refuses leaves no backup; the save goes on all the same.
        qzr::platform::CurrentEnv()->CopyFileReplacing(target, target + ".bak");
    }
    return true;
}

bool CQZRMoldingMachineWriter::EnsureBankFileExists(const char* path) {
    if (path == nullptr) {
        return false;
    }
    qzr::platform::TextWriter file(path, qzr::platform::WriteMode::kAppend);
    if (!file.IsOpen()) {
        return false;
    }
    file.Close();
    return true;
}

const char* CQZRMoldingMachineWriter::GetTimeStamp() {
    const std::string text =
        qzr::platform::FormatUtcTimeStamp(qzr::platform::CurrentEnv()->NowUtcSeconds());
    // 24 characters and a newline for every year of four digits; a clock beyond the year 9999
    // would be cut to the buffer rather than written past it.
    const size_t length = std::min(text.size(), kTimeStampBufferSize - 1);
    std::memcpy(g_timeStamp, text.data(), length);
    g_timeStamp[length] = '\0';
    return g_timeStamp;
}

bool CQZRMoldingMachineWriter::GetDefaultBankPath(const char* folder, int kind, char* result) {
    if (result == nullptr) {
        return false;
    }
    // A path that does not fit is never cut short: the caller gets the empty text and false,
    // and gives up the save.
    result[0] = '\0';
    if (folder == nullptr || std::strlen(folder) >= static_cast<size_t>(kPathBufferSize)) {
        return false;
    }
    std::string path(folder);
    if (!path.empty()) {
        // Only a backslash counts as a separator here; a folder without any backslash is
        // joined as it stands ("Data" gives "DataBank\...").
        const size_t lastBackslash = path.rfind('\\');
        if (lastBackslash != std::string::npos && lastBackslash + 1 != path.size()) {
            path += '\\';
        }
    }
    path += DefaultBankTail(kind);
    if (path.size() >= static_cast<size_t>(kPathBufferSize)) {
        return false;
    }
    std::memcpy(result, path.c_str(), path.size() + 1);
    return true;
}

namespace {

// The new bank is written beside its target under this name and moved over the target only
// once it is complete and on the medium, so that a crash, a full disk or a failing write in
// the middle of a save leaves the previous bank whole. The name is fixed rather than unique:
// a save interrupted by a crash leaves at most this one file, which the next save replaces.
constexpr char kTemporarySuffix[] = ".tmp";

// Removes the temporary file when the save does not go through, however it ends (a failed
// step, or an exception out of the code writing the body).
class TemporaryBankFile {
  public:
    explicit TemporaryBankFile(std::string path) : m_path(std::move(path)) {}
    ~TemporaryBankFile() {
        if (!m_movedIntoPlace) {
            qzr::platform::CurrentEnv()->RemoveFile(m_path);
        }
    }
    TemporaryBankFile(const TemporaryBankFile&) = delete;
    TemporaryBankFile& operator=(const TemporaryBankFile&) = delete;

    const std::string& path() const { return m_path; }
    void MovedIntoPlace() { m_movedIntoPlace = true; }

  private:
    std::string m_path;
    bool m_movedIntoPlace = false;
};

// An existing target is replaced only when it is a regular file: a new bank moved over a
// folder, a device such as /dev/null or a pipe would replace it rather than write into it
// (and the readers refuse all of these as banks). The platform opens nothing else for
// reading, so a bank the library could not read back is refused too.
bool IsRegularBankFile(const std::string& target) {
    return qzr::platform::CurrentEnv()->OpenForReading(target) != nullptr;
}

// Writes the whole bank into path, flushed and synced to the medium; false on any failure of
// the open, a write, the flush, the sync or the close.
bool WriteCompleteFile(const std::string& path,
                       const std::function<void(qzr::platform::TextWriter&)>& writeBody) {
    qzr::platform::TextWriter file(path, qzr::platform::WriteMode::kTruncate);
    if (!file.IsOpen()) {
        return false;
    }
    if (writeBody) {
        writeBody(file);
    }
    const bool synced = file.Sync();
    return file.Close() && synced;
}

}  // namespace

bool SaveBankFile(const std::string& target,
                  const std::function<void(qzr::platform::TextWriter&)>& writeBody) {
    qzr::platform::Env* env = qzr::platform::CurrentEnv();
    const bool targetExists = env->PathExists(target);
    if (targetExists) {
        if (!IsRegularBankFile(target)) {
            return false;
        }
        CQZRMoldingMachineWriter::BackupBankFile(target.c_str());
        // Where the old in-place write failed, the save still fails: a target that does not
        // open for appending (a read-only file) is refused, not replaced; the backup stays.
        // The append-mode open changes nothing in the file.
        if (!CQZRMoldingMachineWriter::EnsureBankFileExists(target.c_str())) {
            return false;
        }
    }
    // A missing target is created by the move below; a missing folder fails here, at the
    // temporary file, and nothing is created. A stale temporary file is removed first rather
    // than written through (it may be read-only, or a link to some other file).
    TemporaryBankFile temporary(target + kTemporarySuffix);
    env->RemoveFile(temporary.path());
    if (!WriteCompleteFile(temporary.path(), writeBody)) {
        return false;
    }
    // The new bank keeps the access rights of the one it replaces. A medium without POSIX
    // permissions (a FAT stick) may refuse the change; the bank is saved all the same, with
    // the rights every new file gets there.
    if (targetExists) {
        env->CopyPermissions(target, temporary.path());
    }
    if (!env->RenameReplacing(temporary.path(), target)) {
        return false;
    }
    temporary.MovedIntoPlace();
    return true;
}

}  // namespace qzr::bank

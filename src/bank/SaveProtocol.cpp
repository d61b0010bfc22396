// The save protocol shared by every writer, the time stamp of sectioned banks and the default
// bank locations under a "Bank" folder.
#include <algorithm>
#include <cstring>
#include <string>

#include "bank/BankFileSave.h"
#include "bank/BankPathKind.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "platform/Env.h"
#include "platform/TextWriter.h"
#include "platform/TimeStamp.h"

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

namespace qzr::bank {

bool SaveBankFile(const std::string& target,
                  const std::function<void(qzr::platform::TextWriter&)>& writeBody) {
    if (qzr::platform::CurrentEnv()->PathExists(target)) {
        CQZRMoldingMachineWriter::BackupBankFile(target.c_str());
    } else if (!CQZRMoldingMachineWriter::EnsureBankFileExists(target.c_str())) {
        return false;
    }
    qzr::platform::TextWriter file(target, qzr::platform::WriteMode::kTruncate);
    if (!file.IsOpen()) {
        return false;
    }
    if (writeBody) {
        writeBody(file);
    }
    file.Close();
    return true;
}

}  // namespace qzr::bank

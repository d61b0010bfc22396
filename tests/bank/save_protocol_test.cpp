// The save protocol every writer goes through, the time stamp and the default bank paths.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "bank/BankFileSave.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "platform/EnvWrapper.h"
#include "sectioned_test_support.h"

namespace {

using qzr::sectioned::testing::FixedClock;
using qzr::sectioned::testing::kFixedTimeStamp;
using qzr::sectioned::testing::ScratchFolder;

constexpr int kBufferSize = CQZRMoldingMachineWriter::kPathBufferSize;

// The result buffer with guard bytes after it, to see that nothing is written beyond 260.
struct GuardedBuffer {
    char bytes[kBufferSize + 16];
    GuardedBuffer() { std::memset(bytes, 0x7f, sizeof bytes); }
    bool GuardIntact() const {
        for (int i = kBufferSize; i < kBufferSize + 16; ++i) {
            if (bytes[i] != 0x7f) return false;
        }
        return true;
    }
};

TEST(SaveDefaultBankPath, JoinsFolderAndTail) {
    struct PathRow {
        std::string folder;
        int kind;
        bool result;
        std::string path;
    };
    const std::string fits239 = "C:\\" + std::string(236, 'f');  // + '\' + 19 = 259
    const std::string fits240 = "C:\\" + std::string(237, 'f');  // + '\' + 19 = 260
    const std::vector<PathRow> rows = {
        {"C:\\Data", 0, true, "C:\\Data\\Bank\\system-pro.bnk"},
        {"C:\\Data", 1, true, "C:\\Data\\Bank\\user-pro.bnk"},
        {"C:\\Data", 2, true, "C:\\Data\\Bank\\Machine\\IMM\\*.bnk"},
        {"C:\\Data", 3, true, "C:\\Data\\Bank\\User-IMM.bnk"},
        {"C:\\Data", 4, true, "C:\\Data\\Bank\\Machine\\RTM\\*.bnk"},
        {"C:\\Data", 5, true, "C:\\Data\\Bank\\User-RTMIC.bnk"},
        {"C:\\Data", 6, true, "C:\\Data\\"},
        {"C:\\Data", -1, true, "C:\\Data\\"},
        {"C:\\Data\\", 1, true, "C:\\Data\\Bank\\user-pro.bnk"},
        {"Data", 1, true, "DataBank\\user-pro.bnk"},
        {"", 3, true, "Bank\\User-IMM.bnk"},
        {"", 7, true, ""},
        {"/srv/banks/", 5, true, "/srv/banks/Bank\\User-RTMIC.bnk"},
        {"/srv/banks\\", 5, true, "/srv/banks\\Bank\\User-RTMIC.bnk"},
        {"C:\\a/b", 3, true, "C:\\a/b\\Bank\\User-IMM.bnk"},
        {fits239, 5, true, fits239 + "\\Bank\\User-RTMIC.bnk"},
        {fits240, 5, false, ""},
        {std::string(259, 'x'), 6, true, std::string(259, 'x')},
        {std::string(260, 'x'), 6, false, ""},
        {std::string(5000, 'x'), 1, false, ""},
    };
    for (const PathRow& row : rows) {
        SCOPED_TRACE("folder of " + std::to_string(row.folder.size()) + " '" +
                     row.folder.substr(0, 20) + "' kind " + std::to_string(row.kind));
        GuardedBuffer buffer;
        EXPECT_EQ(CQZRMoldingMachineWriter::GetDefaultBankPath(row.folder.c_str(), row.kind,
                                                               buffer.bytes),
                  row.result);
        EXPECT_EQ(std::string(buffer.bytes), row.path);
        EXPECT_TRUE(buffer.GuardIntact());
    }
    char buffer[kBufferSize];
    EXPECT_FALSE(CQZRMoldingMachineWriter::GetDefaultBankPath(nullptr, 1, buffer));
    EXPECT_FALSE(CQZRMoldingMachineWriter::GetDefaultBankPath("C:\\Data", 1, nullptr));
}

TEST(SaveTimeStamp, UtcTextOfTheClock) {
    struct StampRow {
        int64_t seconds;
        const char* text;
    };
    const StampRow rows[] = {
        {qzr::sectioned::testing::kFixedSaveTime, "Wed Jan 02 02:03:55 1980\n"},
        {0, "Thu Jan 01 00:00:00 1970\n"},
        {951782400, "Tue Feb 29 00:00:00 2000\n"},
        {1709683199, "Tue Mar 05 23:59:59 2024\n"},
    };
    for (const StampRow& row : rows) {
        SCOPED_TRACE(row.text);
        FixedClock clock(row.seconds);
        const char* stamp = CQZRMoldingMachineWriter::GetTimeStamp();
        EXPECT_STREQ(stamp, row.text);
        EXPECT_EQ(std::strlen(stamp), 25u);
    }
}

// Sets (or, with null, clears) the process's time zone.
void SetTimeZone(const char* zone) {
#if defined(_WIN32)
    _putenv_s("TZ", zone != nullptr ? zone : "");
    _tzset();
#else
    if (zone != nullptr) {
        ::setenv("TZ", zone, 1);
    } else {
        ::unsetenv("TZ");
    }
    ::tzset();
#endif
}

TEST(SaveTimeStamp, DoesNotDependOnTheTimeZone) {
    const char* previous = std::getenv("TZ");
    const bool hadZone = previous != nullptr;
    const std::string saved = hadZone ? previous : "";
    SetTimeZone("JST-9");
    FixedClock clock;
    const std::string stamp = CQZRMoldingMachineWriter::GetTimeStamp();
    SetTimeZone(hadZone ? saved.c_str() : nullptr);
    EXPECT_EQ(stamp, kFixedTimeStamp);
}

// Fails every open for writing that empties its file, as a full or read-only medium would.
class RefusingTruncate : public qzr::platform::EnvWrapper {
  public:
    RefusingTruncate() : EnvWrapper(qzr::platform::Env::Default()), m_override(this) {}
    std::unique_ptr<qzr::platform::WritableFile> OpenForWriting(
        const std::string& path, qzr::platform::WriteMode mode) override {
        if (mode == qzr::platform::WriteMode::kTruncate) {
            return nullptr;
        }
        return target()->OpenForWriting(path, mode);
    }

  private:
    qzr::platform::ScopedEnvOverride m_override;
};

bool Save(const std::string& target, const std::string& body) {
    return qzr::bank::SaveBankFile(target,
                                   [&body](qzr::platform::TextWriter& out) { out.Write(body); });
}

TEST(SaveBankFile, BackupHoldsThePreviousContent) {
    ScratchFolder folder;
    const std::string target = folder.File("User-IMM.bnk");
    ASSERT_TRUE(Save(target, "first\n"));
    EXPECT_EQ(folder.Read("User-IMM.bnk"), "first\r\n");
    EXPECT_FALSE(folder.Exists("User-IMM.bnk.bak")) << "a new target has nothing to back up";

    ASSERT_TRUE(Save(target, "second\n"));
    EXPECT_EQ(folder.Read("User-IMM.bnk"), "second\r\n");
    EXPECT_EQ(folder.Read("User-IMM.bnk.bak"), "first\r\n");

    ASSERT_TRUE(Save(target, "third\n"));
    EXPECT_EQ(folder.Read("User-IMM.bnk.bak"), "second\r\n");
}

TEST(SaveBankFile, FailuresWriteNothing) {
    ScratchFolder folder;
    EXPECT_FALSE(Save(folder.File("missing/User-IMM.bnk"), "x\n"));
    EXPECT_FALSE(Save(folder.File("missing\\User-IMM.bnk"), "x\n"));
    EXPECT_EQ(folder.EntryCount(), 0u);

    // A folder in the target's place: its backup fails unnoticed, the open fails.
    folder.MakeFolder("Bank");
    EXPECT_FALSE(Save(folder.File("Bank"), "x\n"));
    EXPECT_FALSE(folder.Exists("Bank.bak"));
}

TEST(SaveBankFile, RefusedOpenKeepsTheBackup) {
    ScratchFolder folder;
    folder.Write("User-RTMIC.bnk", "old\r\n");
    {
        RefusingTruncate env;
        EXPECT_FALSE(Save(folder.File("User-RTMIC.bnk"), "new\n"));
        // A missing target is created by the append-mode open, then the save fails.
        EXPECT_FALSE(Save(folder.File("fresh.bnk"), "new\n"));
    }
    EXPECT_EQ(folder.Read("User-RTMIC.bnk"), "old\r\n");
    EXPECT_EQ(folder.Read("User-RTMIC.bnk.bak"), "old\r\n");
    EXPECT_TRUE(folder.Exists("fresh.bnk"));
    EXPECT_EQ(folder.Read("fresh.bnk"), "");
}

TEST(SaveBankFile, BackupAndEnsureOnTheirOwn) {
    ScratchFolder folder;
    EXPECT_TRUE(CQZRMoldingMachineWriter::BackupBankFile(folder.File("none.bnk").c_str()));
    EXPECT_FALSE(folder.Exists("none.bnk.bak"));
    EXPECT_TRUE(CQZRMoldingMachineWriter::BackupBankFile(nullptr));

    folder.Write("kept.bnk", "content");
    EXPECT_TRUE(CQZRMoldingMachineWriter::EnsureBankFileExists(folder.File("kept.bnk").c_str()));
    EXPECT_EQ(folder.Read("kept.bnk"), "content");
    EXPECT_TRUE(CQZRMoldingMachineWriter::EnsureBankFileExists(folder.File("new.bnk").c_str()));
    EXPECT_EQ(folder.Read("new.bnk"), "");
    EXPECT_FALSE(
        CQZRMoldingMachineWriter::EnsureBankFileExists(folder.File("no/such.bnk").c_str()));
    EXPECT_FALSE(CQZRMoldingMachineWriter::EnsureBankFileExists(nullptr));
}

}  // namespace

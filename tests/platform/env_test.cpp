// The POSIX Env: backslash mapping, fopen-like modes under the umask, chmod permissions.
#if !defined(_WIN32)

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/EnvWrapper.h"
#include "platform/TempFolder.h"

namespace qzr::platform {
namespace {

using test::TempFolder;

// Runs a test inside a folder (relative paths resolve there) and goes back afterwards.
class ScopedWorkingFolder {
  public:
    explicit ScopedWorkingFolder(const std::string& path)
        : m_previous(std::filesystem::current_path()) {
        std::error_code error;
        std::filesystem::current_path(path, error);
        m_entered = !error;
    }
    ~ScopedWorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(m_previous, ignored);
    }
    bool entered() const { return m_entered; }

  private:
    std::filesystem::path m_previous;
    bool m_entered = false;
};

class ScopedUmask {
  public:
    explicit ScopedUmask(mode_t mask) : m_previous(::umask(mask)) {}
    ~ScopedUmask() { ::umask(m_previous); }

  private:
    mode_t m_previous;
};

std::string ReadAll(ReadableFile* file) {
    std::string bytes;
    char buffer[7];  // small on purpose: several reads per file
    for (size_t got; (got = file->Read(buffer, sizeof buffer)) > 0;) {
        bytes.append(buffer, got);
    }
    return bytes;
}

bool WriteFile(Env* env, const std::string& path, WriteMode mode, const std::string& bytes) {
    std::unique_ptr<WritableFile> file = env->OpenForWriting(path, mode);
    return file && file->Append(bytes.data(), bytes.size()) && file->Close();
}

TEST(Env, CurrentEnvIsDefaultUnlessOverridden) {
    Env* const defaultEnv = Env::Default();
    ASSERT_NE(defaultEnv, nullptr);
    EXPECT_EQ(Env::Default(), defaultEnv);
    EXPECT_EQ(CurrentEnv(), defaultEnv);
    EnvWrapper outer(defaultEnv);
    EnvWrapper inner(&outer);
    {
        ScopedEnvOverride useOuter(&outer);
        EXPECT_EQ(CurrentEnv(), &outer);
        {
            ScopedEnvOverride useInner(&inner);
            EXPECT_EQ(CurrentEnv(), &inner);
        }
        EXPECT_EQ(CurrentEnv(), &outer);
    }
    EXPECT_EQ(CurrentEnv(), defaultEnv);
}

TEST(Env, ExistenceTable) {
    TempFolder folder;
    folder.WriteBytes("User-IMM.bnk", "x");
    folder.MakeFolder("Machine/IMM");
    Env* env = Env::Default();
    struct Row {
        const char* label;
        std::string path;
        bool exists;
        bool isFolder;
    };
    const Row rows[] = {
        {"file", folder.File("User-IMM.bnk"), true, false},
        {"folder", folder.File("Machine"), true, true},
        {"folder with trailing slash", folder.File("Machine/"), true, true},
        {"file by backslash path", folder.path() + "\\User-IMM.bnk", true, false},
        {"folder by backslash path", folder.path() + "\\Machine\\IMM\\", true, true},
        {"missing", folder.File("User-RTMIC.bnk"), false, false},
        {"missing folder on the way", folder.File("Nowhere/User-IMM.bnk"), false, false},
        {"empty path", "", false, false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(env->PathExists(row.path), row.exists) << row.label;
        EXPECT_EQ(env->IsDirectory(row.path), row.isFolder) << row.label;
    }
}

// 'C:\Data\Bank\User-IMM.bnk' is the relative file C:/Data/Bank/User-IMM.bnk on POSIX.
TEST(Env, BackslashesBecomeSlashesRelativeToTheWorkingFolder) {
    TempFolder folder;
    folder.MakeFolder("C:/Data/Bank");
    folder.WriteBytes("C:/Data/Bank/User-IMM.bnk", "[FileHeader]\r\n");
    ScopedWorkingFolder inside(folder.path());
    ASSERT_TRUE(inside.entered());
    Env* env = Env::Default();
    EXPECT_TRUE(env->PathExists("C:\\Data\\Bank\\User-IMM.bnk"));
    std::unique_ptr<ReadableFile> file = env->OpenForReading("C:\\Data\\Bank\\User-IMM.bnk");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(ReadAll(file.get()), "[FileHeader]\r\n");
    EXPECT_TRUE(WriteFile(env, "C:\\Data\\Bank\\User-RTMIC.bnk", WriteMode::kTruncate, "r"));
    EXPECT_EQ(folder.ReadBytes("C:/Data/Bank/User-RTMIC.bnk"), "r");

    std::vector<std::string> paths;
    folder.WriteBytes("root.bnk", "");
    ASSERT_TRUE(env->ListMatches("*.BNK", &paths)) << "a pattern without a folder";
    EXPECT_EQ(paths, std::vector<std::string>{"root.bnk"});
    ASSERT_TRUE(env->ListMatches("C:\\Data\\Bank\\*.bnk", &paths));
    const std::vector<std::string> expected = {"C:\\Data\\Bank\\User-IMM.bnk",
                                               "C:\\Data\\Bank\\User-RTMIC.bnk"};
    EXPECT_EQ(paths, expected);
}

TEST(Env, ReadingRawBytes) {
    TempFolder folder;
    const std::string bytes = std::string("a\r\nb\0\x1A\xFF", 7);
    folder.WriteBytes("bank.bnk", bytes);
    folder.MakeFolder("Machine");
    Env* env = Env::Default();
    std::unique_ptr<ReadableFile> file = env->OpenForReading(folder.File("bank.bnk"));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->Size(), bytes.size());
    EXPECT_EQ(ReadAll(file.get()), bytes) << "no translation at this level";
    EXPECT_EQ(file->Read(nullptr, 0), 0u);
    ASSERT_TRUE(file->Seek(3));
    EXPECT_EQ(ReadAll(file.get()), bytes.substr(3));
    EXPECT_EQ(env->OpenForReading(folder.File("Machine")), nullptr) << "a folder";
    EXPECT_EQ(env->OpenForReading(folder.File("missing.bnk")), nullptr);
    EXPECT_EQ(env->OpenForReading(""), nullptr);
}

TEST(Env, WritingTruncatesOrAppends) {
    TempFolder folder;
    Env* env = Env::Default();
    const std::string path = folder.File("User-IMM.bnk");
    ASSERT_TRUE(WriteFile(env, path, WriteMode::kAppend, "created "));
    ASSERT_TRUE(WriteFile(env, path, WriteMode::kAppend, "kept"));
    EXPECT_EQ(folder.ReadBytes("User-IMM.bnk"), "created kept");
    ASSERT_TRUE(WriteFile(env, path, WriteMode::kTruncate, "new"));
    EXPECT_EQ(folder.ReadBytes("User-IMM.bnk"), "new");
    std::unique_ptr<WritableFile> file = env->OpenForWriting(path, WriteMode::kTruncate);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(folder.ReadBytes("User-IMM.bnk"), "") << "emptied on open, as with \"w\"";
    EXPECT_TRUE(file->Append("s", 1));
    EXPECT_TRUE(file->Flush());
    EXPECT_TRUE(file->Sync());
    EXPECT_TRUE(file->Close());
    EXPECT_FALSE(file->Close());
    EXPECT_FALSE(file->Append("t", 1)) << "after close";
    EXPECT_EQ(folder.ReadBytes("User-IMM.bnk"), "s");

    EXPECT_EQ(env->OpenForWriting(folder.File("missing/x.bnk"), WriteMode::kAppend), nullptr);
    folder.MakeFolder("Machine");
    EXPECT_EQ(env->OpenForWriting(folder.File("Machine"), WriteMode::kTruncate), nullptr);
    EXPECT_EQ(env->OpenForWriting("", WriteMode::kAppend), nullptr);
}

TEST(Env, NewFilesFollowTheUmask) {
    TempFolder folder;
    Env* env = Env::Default();
    {
        ScopedUmask mask(022);
        ASSERT_TRUE(WriteFile(env, folder.File("a.bnk"), WriteMode::kTruncate, ""));
    }
    {
        ScopedUmask mask(0);
        ASSERT_TRUE(WriteFile(env, folder.File("b.bnk"), WriteMode::kAppend, ""));
    }
    EXPECT_EQ(folder.Mode("a.bnk"), 0644u);
    EXPECT_EQ(folder.Mode("b.bnk"), 0666u);
}

TEST(Env, CopyReplacesByteForByte) {
    TempFolder folder;
    Env* env = Env::Default();
    std::string big;
    for (int i = 0; big.size() < 200 * 1024; ++i) {
        big += static_cast<char>(i * 7);
    }
    folder.WriteBytes("User-IMM.bnk", big);
    folder.WriteBytes("User-IMM.bnk.bak", std::string(300 * 1024, 'o'));  // longer, older
    folder.MakeFolder("Machine");
    const std::string source = folder.File("User-IMM.bnk");
    EXPECT_TRUE(env->CopyFileReplacing(source, folder.File("User-IMM.bnk.bak")));
    EXPECT_EQ(folder.ReadBytes("User-IMM.bnk.bak"), big);
    EXPECT_TRUE(env->CopyFileReplacing(source, folder.File("fresh.bak")));
    EXPECT_EQ(folder.ReadBytes("fresh.bak"), big);

    struct Row {
        const char* label;
        std::string from;
        std::string to;
    };
    const Row failures[] = {
        {"missing source", folder.File("missing.bnk"), folder.File("missing.bnk.bak")},
        {"folder as source", folder.File("Machine"), folder.File("Machine.bak")},
        {"target folder missing", source, folder.File("nowhere/User-IMM.bnk.bak")},
        {"onto itself", source, source},
        {"onto itself by another spelling", source, folder.path() + "\\User-IMM.bnk"},
        {"empty paths", "", ""},
    };
    for (const Row& row : failures) {
        EXPECT_FALSE(env->CopyFileReplacing(row.from, row.to)) << row.label;
    }
    EXPECT_FALSE(env->PathExists(folder.File("missing.bnk.bak")));
    EXPECT_EQ(folder.ReadBytes("User-IMM.bnk"), big) << "the source is intact";
}

TEST(Env, RenameRemoveAndPermissions) {
    TempFolder folder;
    Env* env = Env::Default();
    folder.WriteBytes("User-IMM.tmp", "new");
    folder.WriteBytes("User-IMM.bnk", "old");
    folder.SetMode("User-IMM.bnk", 0640);
    folder.SetMode("User-IMM.tmp", 0600);
    EXPECT_TRUE(env->CopyPermissions(folder.File("User-IMM.bnk"), folder.File("User-IMM.tmp")));
    EXPECT_EQ(folder.Mode("User-IMM.tmp"), 0640u);
    EXPECT_FALSE(env->CopyPermissions(folder.File("missing"), folder.File("User-IMM.tmp")));
    EXPECT_FALSE(env->CopyPermissions(folder.File("User-IMM.bnk"), folder.File("missing")));

    EXPECT_TRUE(env->RenameReplacing(folder.File("User-IMM.tmp"), folder.File("User-IMM.bnk")));
    EXPECT_EQ(folder.ReadBytes("User-IMM.bnk"), "new");
    EXPECT_EQ(folder.Mode("User-IMM.bnk"), 0640u);
    EXPECT_FALSE(env->PathExists(folder.File("User-IMM.tmp")));
    EXPECT_FALSE(env->RenameReplacing(folder.File("User-IMM.tmp"), folder.File("x")));

    EXPECT_TRUE(env->RemoveFile(folder.path() + "\\User-IMM.bnk"));
    EXPECT_FALSE(env->PathExists(folder.File("User-IMM.bnk")));
    EXPECT_FALSE(env->RemoveFile(folder.File("User-IMM.bnk")));
}

class ListMatchesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        for (const char* name :
             {"b.bnk", "A.BNK", "a_1.bnk", "_x.bnk", "Z.bnk", "c.txt", "d.bnk.bak", "e.bnkx"}) {
            m_folder.WriteBytes(name, "");
        }
        m_folder.MakeFolder("sub.bnk");  // a folder whose name matches
    }
    std::vector<std::string> List(const std::string& pattern, bool expectMatch = true) {
        std::vector<std::string> paths = {"stale"};
        EXPECT_EQ(Env::Default()->ListMatches(pattern, &paths), expectMatch) << pattern;
        return paths;
    }
    TempFolder m_folder;
};

TEST_F(ListMatchesTest, NtfsOrderCaseInsensitiveFoldersIncluded) {
    const std::string dir = m_folder.path() + "/";
    const std::vector<std::string> expected = {dir + "A.BNK",   dir + "a_1.bnk", dir + "b.bnk",
                                               dir + "sub.bnk", dir + "Z.bnk",   dir + "_x.bnk"};
    EXPECT_EQ(List(dir + "*.bnk"), expected);
    EXPECT_EQ(List(dir + "*.BnK"), expected);
}

TEST_F(ListMatchesTest, BackslashFolderKeptAsText) {
    const std::string dir = m_folder.path() + "\\";
    const std::vector<std::string> expected = {dir + "b.bnk"};
    EXPECT_EQ(List(dir + "B.*"), expected);
}

TEST_F(ListMatchesTest, DotEntriesListedFirst) {
    const std::vector<std::string> paths = List(m_folder.path() + "/*");
    ASSERT_EQ(paths.size(), 11u);
    EXPECT_EQ(paths[0], m_folder.path() + "/.");
    EXPECT_EQ(paths[1], m_folder.path() + "/..");
    EXPECT_EQ(paths[2], m_folder.path() + "/A.BNK");
}

TEST_F(ListMatchesTest, QuestionMarkMatchesOneCharacter) {
    const std::string dir = m_folder.path() + "/";
    const std::vector<std::string> expected = {dir + "A.BNK", dir + "b.bnk", dir + "Z.bnk"};
    EXPECT_EQ(List(dir + "?.bnk"), expected);
}

TEST_F(ListMatchesTest, NothingMatching) {
    EXPECT_TRUE(List(m_folder.path() + "/*.xyz", false).empty());
    EXPECT_TRUE(List(m_folder.path() + "/nowhere/*.bnk", false).empty());
    EXPECT_TRUE(List(m_folder.path() + "/", false).empty()) << "an empty name part";
    EXPECT_TRUE(List("", false).empty());
    EXPECT_FALSE(Env::Default()->ListMatches(m_folder.path() + "/*", nullptr));
}

TEST(Env, NowUtcSeconds) {
    const int64_t before = static_cast<int64_t>(std::time(nullptr));
    const int64_t now = Env::Default()->NowUtcSeconds();
    const int64_t after = static_cast<int64_t>(std::time(nullptr));
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
}

// The seam the bank tests use: a wrapper that fails exactly one call and forwards the rest.
class FailingCopyEnv : public EnvWrapper {
  public:
    FailingCopyEnv() : EnvWrapper(Env::Default()) {}
    bool CopyFileReplacing(const std::string&, const std::string&) override {
        ++m_copies;
        return false;
    }
    int m_copies = 0;
};

TEST(Env, WrapperFailsOneCallAndForwardsTheRest) {
    TempFolder folder;
    folder.WriteBytes("User-IMM.bnk", "x");
    FailingCopyEnv env;
    ScopedEnvOverride useIt(&env);
    Env* current = CurrentEnv();
    EXPECT_FALSE(current->CopyFileReplacing(folder.File("User-IMM.bnk"), folder.File("b.bak")));
    EXPECT_EQ(env.m_copies, 1);
    EXPECT_FALSE(current->PathExists(folder.File("b.bak")));
    EXPECT_TRUE(current->PathExists(folder.File("User-IMM.bnk")));
    EXPECT_TRUE(WriteFile(current, folder.File("c.bnk"), WriteMode::kTruncate, "c"));
    EXPECT_TRUE(current->RenameReplacing(folder.File("c.bnk"), folder.File("d.bnk")));
    std::vector<std::string> paths;
    EXPECT_TRUE(current->ListMatches(folder.File("*.bnk"), &paths));
    EXPECT_EQ(paths.size(), 2u);
    EXPECT_TRUE(current->RemoveFile(folder.File("d.bnk")));
    EXPECT_GT(current->NowUtcSeconds(), 0);
}

}  // namespace
}  // namespace qzr::platform

#endif  // !defined(_WIN32)

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <random>
#include <string>

#include "platform/EnvWrapper.h"
#include "platform/ScopedLocale.h"
#include "platform/TempFolder.h"
#include "platform/TextLineReader.h"
#include "platform/TextWriter.h"

namespace qzr::platform {
namespace {

using test::ScopedLocale;
using test::TempFolder;

std::string WithCrLf(const std::string& text) {
    std::string bytes;
    for (char c : text) {
        bytes += (c == '\n') ? std::string("\r\n") : std::string(1, c);
    }
    return bytes;
}

TEST(TextWriter, BytesOnDisk) {
    struct Row {
        const char* label;
        std::string written;
        std::string onDisk;
    };
    const Row rows[] = {
        {"nothing", "", ""},
        {"one line", "[FileHeader]\n", "[FileHeader]\r\n"},
        {"no final line end", "a\nb", "a\r\nb"},
        {"empty lines", "\n\n", "\r\n\r\n"},
        {"CR is not translated", "a\rb\r\n", "a\rb\r\r\n"},
        {"line end inside a value", "Remark = two\nlines\n", "Remark = two\r\nlines\r\n"},
        {"NUL and high bytes kept", std::string("\xC4\0x\n", 4), std::string("\xC4\0x\r\n", 5)},
        {"Ctrl-Z kept", "a\x1A\n", "a\x1A\r\n"},
    };
    TempFolder folder;
    for (const Row& row : rows) {
        TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
        ASSERT_TRUE(writer.IsOpen()) << row.label;
        writer.Write(row.written);
        EXPECT_TRUE(writer.Close()) << row.label;
        EXPECT_EQ(folder.ReadBytes("out.bnk"), row.onDisk) << row.label;
    }
}

TEST(TextWriter, FormatWritesCNumbersAndCrLf) {
    TempFolder folder;
    TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
    writer.Format("[Machine-%ld]\n\n", 3L);
    writer.Format("%-27s = %lf\n", "ClampingForce", 1500.25);
    writer.Format("%s", "");
    ASSERT_TRUE(writer.Close());
    EXPECT_EQ(folder.ReadBytes("out.bnk"),
              "[Machine-3]\r\n\r\nClampingForce               = 1500.250000\r\n");
}

TEST(TextWriter, FormatIgnoresDecimalCommaLocale) {
    const char* candidates[] = {"de_DE.UTF-8", "de_DE.utf8", "de_DE"};
    for (const char* name : candidates) {
        ScopedLocale locale(name);
        if (!locale.installed() || std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
            continue;
        }
        TempFolder folder;
        TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
        writer.Format("%6.2f|%lg\n", 2.5, 0.125);
        ASSERT_TRUE(writer.Close());
        EXPECT_EQ(folder.ReadBytes("out.bnk"), "  2.50|0.125\r\n");
        return;
    }
    GTEST_SKIP() << "no decimal-comma locale on this host";
}

// Several buffers' worth of lines, written in pieces of every size, read back unchanged.
TEST(TextWriter, RoundTripBeyondTheBuffer) {
    std::mt19937 random(7007);
    std::string text;
    while (text.size() < 300 * 1024) {
        text += "Grade = G-" + std::to_string(random() % 100000);
        text += std::string(random() % 40, 'x');
        text += '\n';
    }
    TempFolder folder;
    {
        TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
        size_t pos = 0;
        while (pos < text.size()) {
            const size_t piece = std::min<size_t>(random() % 70000, text.size() - pos);
            writer.Write(std::string_view(text).substr(pos, piece));
            pos += piece;
        }
        ASSERT_TRUE(writer.Close());
    }
    EXPECT_EQ(folder.ReadBytes("out.bnk"), WithCrLf(text));
    std::string readBack;
    ASSERT_TRUE(ReadTextFile(folder.File("out.bnk"), &readBack));
    EXPECT_EQ(readBack, text);
}

TEST(TextWriter, AppendKeepsAndTruncateEmpties) {
    TempFolder folder;
    folder.WriteBytes("out.bnk", "old\r\n");
    {
        TextWriter writer(folder.File("out.bnk"), WriteMode::kAppend);
        writer.Write("new\n");
    }  // the destructor closes
    EXPECT_EQ(folder.ReadBytes("out.bnk"), "old\r\nnew\r\n");
    {
        TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
        EXPECT_TRUE(writer.Close());
    }
    EXPECT_EQ(folder.ReadBytes("out.bnk"), "");
}

TEST(TextWriter, UnopenablePath) {
    TempFolder folder;
    TextWriter writer(folder.File("missing/out.bnk"), WriteMode::kTruncate);
    EXPECT_FALSE(writer.IsOpen());
    EXPECT_TRUE(writer.Failed());
    writer.Write("a\n");
    EXPECT_FALSE(writer.Sync());
    EXPECT_FALSE(writer.Close());
}

// A file whose appends fail once a byte budget is spent, and whose close may fail.
class BudgetFile : public WritableFile {
  public:
    BudgetFile(std::unique_ptr<WritableFile> file, size_t budget, bool failClose)
        : m_file(std::move(file)), m_budget(budget), m_failClose(failClose) {}
    bool Append(const char* data, size_t n) override {
        if (n > m_budget) {
            return false;
        }
        m_budget -= n;
        return m_file->Append(data, n);
    }
    bool Flush() override { return m_file->Flush(); }
    bool Sync() override { return m_file->Sync(); }
    bool Close() override { return m_file->Close() && !m_failClose; }

  private:
    std::unique_ptr<WritableFile> m_file;
    size_t m_budget;
    bool m_failClose;
};

class BudgetEnv : public EnvWrapper {
  public:
    BudgetEnv(size_t budget, bool failClose)
        : EnvWrapper(Env::Default()), m_budget(budget), m_failClose(failClose) {}
    std::unique_ptr<WritableFile> OpenForWriting(const std::string& path, WriteMode mode) override {
        std::unique_ptr<WritableFile> file = target()->OpenForWriting(path, mode);
        if (!file) {
            return nullptr;
        }
        return std::make_unique<BudgetFile>(std::move(file), m_budget, m_failClose);
    }

  private:
    size_t m_budget;
    bool m_failClose;
};

TEST(TextWriter, FirstErrorIsRemembered) {
    TempFolder folder;
    BudgetEnv env(100 * 1024, false);  // the first 64 KiB flush fits, the second does not
    ScopedEnvOverride useIt(&env);
    TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
    ASSERT_TRUE(writer.IsOpen());
    const std::string line(99, 'v');
    for (int i = 0; i < 2000; ++i) {
        writer.Write(line + "\n");
    }
    EXPECT_TRUE(writer.Failed());
    EXPECT_FALSE(writer.Sync());
    EXPECT_FALSE(writer.Close());
    EXPECT_FALSE(writer.Close()) << "a second close repeats the answer";
}

TEST(TextWriter, FailureAtTheFinalFlush) {
    TempFolder folder;
    BudgetEnv env(10, false);
    ScopedEnvOverride useIt(&env);
    TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
    writer.Write("more than ten bytes\n");
    EXPECT_FALSE(writer.Failed()) << "still buffered";
    EXPECT_FALSE(writer.Close());
}

TEST(TextWriter, FailingCloseIsReported) {
    TempFolder folder;
    BudgetEnv env(1024, true);
    ScopedEnvOverride useIt(&env);
    TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
    writer.Write("a\n");
    EXPECT_TRUE(writer.Sync());
    EXPECT_FALSE(writer.Close());
}

TEST(TextWriter, SyncWritesThrough) {
    TempFolder folder;
    TextWriter writer(folder.File("out.bnk"), WriteMode::kTruncate);
    writer.Write("[EOF]\n");
    EXPECT_TRUE(writer.Sync());
    EXPECT_EQ(folder.ReadBytes("out.bnk"), "[EOF]\r\n");
    EXPECT_TRUE(writer.Close());
    EXPECT_TRUE(writer.Close());
    writer.Write("late\n");
    EXPECT_FALSE(writer.Close()) << "writing after close fails";
    EXPECT_EQ(folder.ReadBytes("out.bnk"), "[EOF]\r\n");
}

}  // namespace
}  // namespace qzr::platform

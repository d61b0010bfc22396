// Bank files as text-mode streams: reading against a naive translator and fgets, writing with
// every LF as CR LF and the first failure remembered.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "EnvWrapper.h"
#include "ScopedEnvOverride.h"
#include "TempFolder.h"
#include "platform/TextLineReader.h"
#include "platform/TextModeTranslator.h"
#include "platform/TextWriter.h"

namespace qzr::platform {
namespace {

using namespace std::string_literals;
using test::TempFolder;

// The obviously faithful translation of a whole file: the oracle.
std::string NaiveTranslate(const std::string& raw) {
    std::string text;
    for (size_t i = 0; i < raw.size() && raw[i] != '\x1A'; ++i) {
        if (raw[i] != '\r' || i + 1 == raw.size() || raw[i + 1] != '\n') {
            text.push_back(raw[i]);  // a CR is dropped only when an LF follows
        }
    }
    return text;
}

using Pieces = std::vector<std::pair<std::string, bool>>;  // each line piece and AtEnd after it

// fgets with a buffer of maxChars + 1 over the already translated bytes: the C library's own
// splitting and end-of-file flag. Piece lengths come from the file position, so NULs count.
Pieces FgetsPieces(const std::string& path, size_t maxChars) {
    Pieces pieces;
    FILE* file = std::fopen(path.c_str(), "rb");
    std::vector<char> buffer(maxChars + 1);
    for (long before = 0; std::fgets(buffer.data(), static_cast<int>(buffer.size()), file);) {
        const long after = std::ftell(file);
        pieces.emplace_back(std::string(buffer.data(), static_cast<size_t>(after - before)),
                            feof(file) != 0);
        before = after;
    }
    pieces.emplace_back("<none>", feof(file) != 0);
    std::fclose(file);
    return pieces;
}

Pieces ReaderPieces(const std::string& path, size_t maxChars) {
    Pieces pieces;
    TextLineReader reader(path);
    for (std::string line; reader.ReadLine(&line, maxChars);) {
        pieces.emplace_back(line, reader.AtEnd());
    }
    pieces.emplace_back("<none>", reader.AtEnd());
    return pieces;
}

// The reader splits a bank file as fgets splits its naive translation, and the translator fed in
// pieces of 1 and 3 bytes (a CR on every possible chunk edge) gives that translation too.
TEST(TextLineReader, ReadsLikeFgetsOverTheNaiveTranslation) {
    constexpr size_t kFirst = TextLineReader::kFirstChunkSize;  // the reader's chunk edges
    constexpr size_t kChunk = TextLineReader::kChunkSize;
    const auto k = [](size_t length) { return std::string(length, 'k'); };
    const std::pair<const char*, std::string> rows[] = {
        {"empty", ""},
        {"CR LF, lone CR, CR CR LF, LF CR", "a\r\nb\rc\r\r\nd\n\re\r\n"},
        {"CR at the end", "a\r"},
        {"Ctrl-Z ends the file", "a\r\nb\032c\r\n"},
        {"CR before Ctrl-Z", "a\r\032\n"},
        {"NUL bytes", std::string("a\0b\r\n\0\r\n", 8)},
        {"CR LF across both chunk edges", k(kFirst - 1) + "\r\n" + k(kChunk - 2) + "\r\nend"},
        {"lone CR at the second chunk edge", k(kFirst + kChunk - 1) + "\ry"},
        {"CR then Ctrl-Z across the chunk edge", k(kFirst - 1) + "\r\032tail"},
        {"lines around 511", k(510) + "\r\n" + k(511) + "\r\n" + k(512) + "\r\n"},
        {"around 1023, long last",
         k(1022) + "\r\n" + k(1023) + "\r\n" + k(1024) + "\r\n" + k(1500)},
        {"last line of exactly 511, no LF", k(511)},
    };
    ASSERT_EQ(NaiveTranslate("a\r\r\nb\rc\032d"), "a\r\nb\rc");
    TempFolder folder;
    for (const auto& [label, raw] : rows) {
        folder.Write("bank.bnk", raw);
        const std::string expected = NaiveTranslate(raw);
        folder.Write("plain.txt", expected);
        for (size_t maxChars : {1u, 4u, 511u, 1023u}) {
            EXPECT_EQ(ReaderPieces(folder.File("bank.bnk"), maxChars),
                      FgetsPieces(folder.File("plain.txt"), maxChars))
                << label << ", at most " << maxChars;
        }
        for (size_t piece : {1u, 3u}) {
            std::string text;
            std::string bytes;  // a held CR, then the next raw piece
            for (size_t pos = 0;; pos += piece) {
                const std::string next = raw.substr(std::min(pos, raw.size()), piece);
                bytes += next;
                const auto translation =
                    TranslateTextMode(bytes.data(), bytes.size(), !next.empty());
                text.append(bytes, 0, translation.length);
                bytes = translation.heldCr ? "\r" : "";
                if (next.empty() || translation.ended) {
                    break;
                }
            }
            EXPECT_EQ(text, expected) << label << ", fed by " << piece;
        }
    }
}

// Files that take `budget` bytes and no more, keep what they took, and may fail to close.
struct BudgetEnv : EnvWrapper {
    BudgetEnv(size_t bytes, bool failClose)
        : EnvWrapper(nullptr), budget(bytes), closeFails(failClose) {}
    std::unique_ptr<WritableFile> OpenForWriting(const std::string&, WriteMode) override {
        struct Budget : WritableFile {
            BudgetEnv* env = nullptr;
            bool Append(const char* data, size_t n) override {
                if (env->written.size() + n > env->budget) {
                    return false;
                }
                env->written.append(data, n);
                return true;
            }
            bool Flush() override { return true; }
            bool Sync() override { return true; }
            bool Close() override { return !env->closeFails; }
        };
        auto file = std::make_unique<Budget>();
        file->env = this;
        return file;
    }
    size_t budget;
    bool closeFails;
    std::string written;
};

// Every LF becomes CR LF on the way out, through several buffers' worth of lines written in
// pieces that cut lines and buffers anywhere. The first failure is remembered through every later
// write, even ones that succeed; a second Close repeats the answer.
TEST(TextWriter, BuffersAndReportsFailures) {
    std::string text = "a\rb\r\n\0\304\032\n"s;  // CR, NUL, Ctrl-Z and high bytes kept as they are
    std::string onDisk = "a\rb\r\r\n\0\304\032\r\n"s;
    for (int i = 0; text.size() < 200 * 1024; ++i) {
        const std::string line = "Grade = G-" + std::to_string(i * 7919 % 100000);
        text += line + "\n";
        onDisk += line + "\r\n";
    }
    onDisk += "ClampingForce  = 1500.250000\r\n";
    const struct {
        const char* label;
        size_t budget;
        bool closeFails;
        bool closes;
    } rows[] = {
        {"all fits", 1 << 20, false, true},
        {"a buffer flush fails", 100 * 1024, false, false},
        {"the final flush fails", onDisk.size() - 1, false, false},
        {"the close fails", 1 << 20, true, false},
    };
    for (const auto& row : rows) {
        BudgetEnv env(row.budget, row.closeFails);
        ScopedEnvOverride useIt(&env);
        TextWriter writer("out.bnk", WriteMode::kTruncate);
        for (size_t pos = 0; pos < text.size(); pos += 7777) {
            writer.Write(std::string_view(text).substr(pos, 7777));
        }
        writer.Write("ClampingForce  = 1500.250000\n");
        EXPECT_EQ(writer.Close(), row.closes) << row.label;
        EXPECT_EQ(writer.Close(), row.closes) << row.label << ", second close";
        EXPECT_EQ(env.written == onDisk, row.budget > onDisk.size()) << row.label;
        writer.Write("late\n");
        EXPECT_FALSE(writer.Close()) << row.label << ": writing after close fails";
    }
}

}  // namespace
}  // namespace qzr::platform

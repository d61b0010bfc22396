#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/EnvWrapper.h"
#include "platform/TempFolder.h"
#include "platform/TextLineReader.h"

namespace qzr::platform {
namespace {

using test::TempFolder;

constexpr size_t kChunk = 64 * 1024;  // the reader's chunk size, for edge cases around it

// The obviously faithful translation over a whole byte string: the oracle.
std::string NaiveTranslate(const std::string& raw) {
    std::string text;
    for (size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '\x1A') {
            break;
        }
        if (raw[i] == '\r' && i + 1 < raw.size() && raw[i + 1] == '\n') {
            continue;  // the LF that follows stands for both
        }
        text.push_back(raw[i]);
    }
    return text;
}

struct TranslationRow {
    const char* label;
    std::string raw;
    std::string translated;
};

std::vector<TranslationRow> TranslationRows() {
    return {
        {"empty file", "", ""},
        {"LF line ends", "a\nb\n", "a\nb\n"},
        {"CR LF line ends", "a\r\nb\r\n", "a\nb\n"},
        {"lone CR kept", "a\rb", "a\rb"},
        {"CR CR LF", "a\r\r\n", "a\r\n"},
        {"CR at the end of the file", "a\r", "a\r"},
        {"LF CR", "a\n\rb", "a\n\rb"},
        {"Ctrl-Z ends the file",
         "a\r\nb\x1A"
         "c\r\n",
         "a\nb"},
        {"CR before Ctrl-Z", "a\r\x1A\n", "a\r"},
        {"Ctrl-Z first",
         "\x1A"
         "abc",
         ""},
        {"NUL bytes inside a line", std::string("a\0b\r\n\0", 6), std::string("a\0b\n\0", 5)},
        {"no final line end", "abc", "abc"},
        {"CR LF across the chunk edge", std::string(kChunk - 1, 'x') + "\r\nend",
         std::string(kChunk - 1, 'x') + "\nend"},
        {"lone CR at the chunk edge", std::string(kChunk - 1, 'x') + "\ry",
         std::string(kChunk - 1, 'x') + "\ry"},
        {"CR as the last byte of a full chunk", std::string(kChunk - 1, 'x') + "\r",
         std::string(kChunk - 1, 'x') + "\r"},
        {"Ctrl-Z right after the chunk edge",
         std::string(kChunk, 'x') + "\x1A"
                                    "tail",
         std::string(kChunk, 'x')},
    };
}

TEST(TextLineReader, ReadTextFileTranslates) {
    TempFolder folder;
    for (const TranslationRow& row : TranslationRows()) {
        folder.WriteBytes("bank.bnk", row.raw);
        std::string text = "stale";
        ASSERT_TRUE(ReadTextFile(folder.File("bank.bnk"), &text)) << row.label;
        EXPECT_EQ(text, row.translated) << row.label;
    }
}

std::string ReadAllPieces(const std::string& path, size_t maxChars) {
    TextLineReader reader(path);
    std::string text;
    std::string line;
    while (reader.ReadLine(&line, maxChars)) {
        text += line;
    }
    return text;
}

TEST(TextLineReader, StreamingTranslatesLikeWholeFile) {
    TempFolder folder;
    for (const TranslationRow& row : TranslationRows()) {
        folder.WriteBytes("bank.bnk", row.raw);
        EXPECT_EQ(ReadAllPieces(folder.File("bank.bnk"), 511), row.translated) << row.label;
    }
}

// A file that hands out at most a few bytes per read, so a CR lands on every possible chunk
// edge.
class TrickleFile : public ReadableFile {
  public:
    TrickleFile(std::unique_ptr<ReadableFile> file, size_t piece)
        : m_file(std::move(file)), m_piece(piece) {}
    size_t Read(char* buffer, size_t n) override {
        return m_file->Read(buffer, n < m_piece ? n : m_piece);
    }
    bool Seek(uint64_t offset) override { return m_file->Seek(offset); }
    uint64_t Size() override { return m_file->Size(); }

  private:
    std::unique_ptr<ReadableFile> m_file;
    size_t m_piece;
};

class TrickleEnv : public EnvWrapper {
  public:
    TrickleEnv(size_t piece) : EnvWrapper(Env::Default()), m_piece(piece) {}
    std::unique_ptr<ReadableFile> OpenForReading(const std::string& path) override {
        std::unique_ptr<ReadableFile> file = target()->OpenForReading(path);
        if (!file) {
            return nullptr;
        }
        return std::make_unique<TrickleFile>(std::move(file), m_piece);
    }

  private:
    size_t m_piece;
};

TEST(TextLineReader, TinyReadsTranslateTheSame) {
    TempFolder folder;
    const std::string raw = std::string("a\r\r\nb\rc\r\n\r\n\r\rd\0e\r", 18) +
                            "\r\n\x1A"
                            "f";
    folder.WriteBytes("bank.bnk", raw);
    for (size_t piece : {1u, 2u, 3u, 7u}) {
        TrickleEnv env(piece);
        ScopedEnvOverride useIt(&env);
        std::string text;
        ASSERT_TRUE(ReadTextFile(folder.File("bank.bnk"), &text));
        EXPECT_EQ(text, NaiveTranslate(raw)) << "piece " << piece;
        EXPECT_EQ(ReadAllPieces(folder.File("bank.bnk"), 4), NaiveTranslate(raw))
            << "piece " << piece;
    }
}

TEST(TextLineReader, NextLineLengthTable) {
    struct Row {
        const char* label;
        std::string text;
        size_t maxChars;
        size_t expected;
    };
    const Row rows[] = {
        {"empty", "", 5, 0},
        {"no room", "abc", 0, 0},
        {"up to the LF", "ab\ncd", 10, 3},
        {"cut at the limit", "abc", 2, 2},
        {"LF just beyond the limit", "ab\n", 2, 2},
        {"LF at the limit", "ab\n", 3, 3},
        {"LF alone", "\n", 1, 1},
        {"no LF, shorter than the limit", "abc", 511, 3},
        {"NUL counts as a character", std::string("a\0\n", 3), 511, 3},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(NextLineLength(row.text, row.maxChars), row.expected) << row.label;
    }
}

struct Piece {
    std::string text;
    bool atEnd;
    bool operator==(const Piece& other) const { return text == other.text && atEnd == other.atEnd; }
};

std::ostream& operator<<(std::ostream& out, const Piece& piece) {
    return out << piece.text.size() << " chars, atEnd " << piece.atEnd;
}

// fgets over the already translated bytes, with a buffer of maxChars + 1: the C library's own
// splitting and end-of-file flag, as the oracle. The piece length comes from the file
// position, so NUL bytes inside a line count.
std::vector<Piece> FgetsPieces(const std::string& path, size_t maxChars) {
    std::vector<Piece> pieces;
    FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return pieces;
    }
    std::vector<char> buffer(maxChars + 1);
    long before = std::ftell(file);
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file) != nullptr) {
        const long after = std::ftell(file);
        pieces.push_back(
            {std::string(buffer.data(), static_cast<size_t>(after - before)), feof(file) != 0});
        before = after;
    }
    pieces.push_back({"<none>", feof(file) != 0});
    std::fclose(file);
    return pieces;
}

std::vector<Piece> ReaderPieces(const std::string& path, size_t maxChars) {
    std::vector<Piece> pieces;
    TextLineReader reader(path);
    std::string line;
    while (reader.ReadLine(&line, maxChars)) {
        pieces.push_back({line, reader.AtEnd()});
    }
    pieces.push_back({"<none>", reader.AtEnd()});
    return pieces;
}

std::string Line(size_t length) {
    return std::string(length, 'k');
}

TEST(TextLineReader, SplitsLikeFgets) {
    struct Row {
        const char* label;
        std::string text;  // translated content; written raw for fgets, with CR LF for us
    };
    const Row rows[] = {
        {"empty", ""},
        {"short lines with final LF", "Maker = A\nGrade = B\n"},
        {"short lines without final LF", "Maker = A\nGrade = B"},
        {"empty lines", "\n\n\n"},
        {"lines around 511", Line(510) + "\n" + Line(511) + "\n" + Line(512) + "\n"},
        {"lines around 1023", Line(1022) + "\n" + Line(1023) + "\n" + Line(1024) + "\n"},
        {"long last line without LF", Line(1500)},
        {"line of exactly the limit at the end", Line(511)},
        {"NUL bytes inside lines", std::string("a\0b\n\0\n", 6)},
    };
    TempFolder folder;
    for (const Row& row : rows) {
        folder.WriteBytes("plain.txt", row.text);
        std::string withCrLf;
        for (char c : row.text) {
            withCrLf += (c == '\n') ? std::string("\r\n") : std::string(1, c);
        }
        folder.WriteBytes("bank.bnk", withCrLf);
        for (size_t maxChars : {1u, 2u, 511u, 1023u, 4096u}) {
            EXPECT_EQ(ReaderPieces(folder.File("bank.bnk"), maxChars),
                      FgetsPieces(folder.File("plain.txt"), maxChars))
                << row.label << ", at most " << maxChars << " characters";
        }
    }
}

TEST(TextLineReader, AtEndOnlyOnceTheEndIsRead) {
    TempFolder folder;
    folder.WriteBytes("bank.bnk", "a\r\nb\r\n");
    TextLineReader reader(folder.File("bank.bnk"));
    ASSERT_TRUE(reader.IsOpen());
    EXPECT_FALSE(reader.AtEnd());
    std::string line;
    ASSERT_TRUE(reader.ReadLine(&line, 1023));
    EXPECT_EQ(line, "a\n");
    ASSERT_TRUE(reader.ReadLine(&line, 1023));
    EXPECT_EQ(line, "b\n");
    EXPECT_FALSE(reader.AtEnd());
    EXPECT_FALSE(reader.ReadLine(&line, 1023));
    EXPECT_TRUE(line.empty());
    EXPECT_TRUE(reader.AtEnd());
    EXPECT_FALSE(reader.ReadLine(&line, 1023));
}

TEST(TextLineReader, UnopenablePaths) {
    TempFolder folder;
    folder.MakeFolder("Machine");
    const std::string paths[] = {folder.File("missing.bnk"), folder.File("Machine"), ""};
    for (const std::string& path : paths) {
        TextLineReader reader(path);
        EXPECT_FALSE(reader.IsOpen()) << path;
        std::string line = "stale";
        EXPECT_FALSE(reader.ReadLine(&line, 511)) << path;
        EXPECT_TRUE(line.empty()) << path;
        std::string text = "stale";
        EXPECT_FALSE(ReadTextFile(path, &text)) << path;
        EXPECT_EQ(text, "stale") << path;
    }
}

TEST(TextLineReader, ZeroCharactersReadsNothing) {
    TempFolder folder;
    folder.WriteBytes("bank.bnk", "abc\r\n");
    TextLineReader reader(folder.File("bank.bnk"));
    std::string line;
    EXPECT_FALSE(reader.ReadLine(&line, 0));
    ASSERT_TRUE(reader.ReadLine(&line, 511));
    EXPECT_EQ(line, "abc\n");
}

// Kept as files: a header line longer than the sectioned reader's 511 characters, and a bank
// cut short by a Ctrl-Z.
TEST(TextLineReader, DataFiles) {
    const std::string dir = std::string(QZR_TEST_DATA_DIR) + "/platform/";
    std::string text;
    ASSERT_TRUE(ReadTextFile(dir + "long_line.bnk", &text));
    TextLineReader reader(dir + "long_line.bnk");
    std::string line;
    ASSERT_TRUE(reader.ReadLine(&line, 511));
    EXPECT_EQ(line, "[FileHeader]\n");
    ASSERT_TRUE(reader.ReadLine(&line, 511));
    EXPECT_EQ(line.size(), 511u);
    EXPECT_EQ(line.substr(0, 8), "Remark =");
    ASSERT_TRUE(reader.ReadLine(&line, 511));
    EXPECT_EQ(line.back(), '\n');
    EXPECT_EQ(line.find('\r'), std::string::npos);

    ASSERT_TRUE(ReadTextFile(dir + "ctrl_z_inside.bnk", &text));
    EXPECT_EQ(text, "[FileHeader]\nVersion    = 9000\n");
}

}  // namespace
}  // namespace qzr::platform

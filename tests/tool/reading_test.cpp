// How the tool reads bank files on its own: the text-mode translation, lines in pieces as fgets
// reads them, header recognition on a new reader, and the sectioned key lookup.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BankHeader.h"
#include "BankText.h"
#include "SectionedFile.h"

namespace {

using namespace qzrbank;

TEST(BankText, TextModeTranslation) {
    struct Row {
        const char* label;
        std::string raw;
        std::string text;
    };
    const std::vector<Row> rows = {
        {"CR LF reads as LF", "a\r\nb\r\n", "a\nb\n"},
        {"a lone CR stays", "a\rb\n", "a\rb\n"},
        {"CR CR LF keeps one CR", "a\r\r\n", "a\r\n"},
        {"Ctrl-Z ends the file", std::string("a\nb\x1a\nc\n"), "a\nb"},
        {"a CR at the very end stays", "a\r", "a\r"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(TranslateTextMode(row.raw), row.text);
    }
}

TEST(BankText, PiecesAsFgetsReadsThem) {
    struct Piece {
        std::string text;
        int line;
        bool continued;
    };
    struct Row {
        const char* label;
        std::string text;
        size_t maxChars;
        std::vector<Piece> pieces;
    };
    const std::vector<Row> rows = {
        {"short lines", "ab\ncd\n", 5, {{"ab\n", 1, false}, {"cd\n", 2, false}}},
        {"a last line without LF", "ab\ncd", 5, {{"ab\n", 1, false}, {"cd", 2, false}}},
        {"a line that fills the buffer leaves its LF for the next read",
         "abcd\nx\n",
         4,
         {{"abcd", 1, false}, {"\n", 1, true}, {"x\n", 2, false}}},
        {"a long line in three pieces",
         "abcdefghij\n",
         4,
         {{"abcd", 1, false}, {"efgh", 1, true}, {"ij\n", 1, true}}},
        {"empty lines", "\n\n", 4, {{"\n", 1, false}, {"\n", 2, false}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const std::vector<LinePiece> pieces = SplitPieces(row.text, row.maxChars);
        ASSERT_EQ(pieces.size(), row.pieces.size());
        for (size_t i = 0; i < pieces.size(); ++i) {
            EXPECT_EQ(pieces[i].text, row.pieces[i].text);
            EXPECT_EQ(pieces[i].line, row.pieces[i].line);
            EXPECT_EQ(pieces[i].continued, row.pieces[i].continued);
        }
    }
}

TEST(BankHeader, RecognitionOnANewReader) {
    struct Row {
        const char* label;
        std::string text;
        bool recognized;
        BankKind kind;
        int version;
        int format;
        int type;
    };
    const std::string sectioned = "[FileHeader]\nVersion = 9000\nFormat = ";
    const std::vector<Row> rows = {
        {"the legacy writer's header", "[Header]\nVersion,7007\n\n[Format]\n", true,
         BankKind::OldIMMUserBank, 7007, 1, 0},
        {"a legacy system bank", "[Header],,,,,,,,,\nVersion,7006,,,,,,,,,\nTotalNo,250,,,\n", true,
         BankKind::OldIMMSystemBank, 7006, 0, 0},
        {"a system bank whose line 3 is not TotalNo",
         "[Header],,,,,,,,,\nVersion,7006,,,\nTotal,250\n", false, BankKind::NotABank, 7006, 0, -1},
        {"a user bank with TotalNo", "[Header]\nVersion,7007\nTotalNo,12\n", false,
         BankKind::NotABank, 7007, 1, -1},
        {"a trailing blank after the version", "[Header]\nVersion,7007 \n\n", true,
         BankKind::OldIMMUserBank, 7007, -1, 0},
        {"a user bank of two lines", "[Header]\nVersion,7007", true, BankKind::OldIMMUserBank, 7007,
         1, 0},
        {"a user bank without a version line", "[Header]\n\n\n", true, BankKind::OldIMMUserBank, -1,
         -1, 0},
        {"a legacy header of version 9000 or above", "[Header]\nVersion,9100\n\n", true,
         BankKind::IMMUserBank, 9100, 1, 0},
        {"sectioned IMM system", sectioned + "0\nType = 0\n", true, BankKind::IMMSystemBankFiles,
         9000, 0, 0},
        {"sectioned IMM user", sectioned + "1\nType = 0\n", true, BankKind::IMMUserBank, 9000, 1,
         0},
        {"sectioned RTM system", sectioned + "0\nType = 1\n", true, BankKind::RTMSystemBankFiles,
         9000, 0, 1},
        {"sectioned RTM user", sectioned + "1\nType = 1\n", true, BankKind::RTMUserBank, 9000, 1,
         1},
        {"sectioned type 2", sectioned + "1\nType = 2\n", true, BankKind::OldIMMSystemBank, 9000, 1,
         2},
        {"sectioned version 8000", "[FileHeader]\nVersion = 8000\nFormat = 1\nType = 1\n", true,
         BankKind::OldIMMUserBank, 8000, 1, 1},
        {"sectioned format not a number", sectioned + "x\nType = 0\n", true, BankKind::IMMUserBank,
         9000, -1, 0},
        {"sectioned without Type", sectioned + "1\n", false, BankKind::NotABank, 9000, 1, -1},
        {"the header section lower-cased", "x[FileHeader]\n[fileheader]\nVersion = 9000\n", false,
         BankKind::NotABank, -1, -1, -1},
        {"an empty file", "", false, BankKind::NotABank, -1, -1, -1},
        {"a database line first", "[Database]\n", false, BankKind::NotABank, -1, -1, -1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const BankHeader header = RecognizeBankHeader(row.text);
        EXPECT_EQ(header.recognized, row.recognized) << header.problem;
        EXPECT_EQ(header.kind, row.kind);
        EXPECT_EQ(header.version, row.version);
        EXPECT_EQ(header.format, row.format);
        EXPECT_EQ(header.type, row.type);
        EXPECT_EQ(header.recognized, header.problem.empty()) << header.problem;
    }
}

TEST(SectionedFile, TheFirstMatchWalk) {
    const SectionedFile file(
        "[Machine-10]\nRemark = ten\n"
        "[Machine-1]\nMakerID = 7\nMaker        \t = Ostfeld\n"
        "[Machine-2]\nMaker = Varnholt\nRemark = a=b  \nPlungerSpeed\t = 1.5\n"
        "[Machine-1]\nGrade = late\n");
    struct Row {
        const char* section;
        const char* key;
        bool found;
        int line;
        const char* value;
    };
    const std::vector<Row> rows = {
        {"[Machine-1]", "Maker", true, 5, "Ostfeld"},
        {"[Machine-1]", "Remark", true, 8, "a=b  "},  // runs on into [Machine-2]
        {"[Machine-1]", "Grade", true, 11, "late"},   // a second header changes nothing
        {"[Machine-2]", "PlungerSpeed", true, 9, "1.5"},
        {"[Machine-10]", "Remark", true, 2, "ten"},
        {"[Machine-2]", "Controller", false, 0, ""},
        {"[Machine-3]", "Maker", false, 0, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.section) + " " + row.key);
        const std::optional<size_t> piece = file.FindKey(row.section, row.key);
        ASSERT_EQ(piece.has_value(), row.found);
        if (piece) {
            EXPECT_EQ(file.LineOf(*piece), row.line);
            EXPECT_EQ(file.Value(*piece), row.value);
        }
    }
    EXPECT_EQ(file.SectionEnd(*file.FindSection("[Machine-1]")), 5u);
    EXPECT_EQ(file.Token(*file.EnclosingHeader(7)), "[Machine-2]");
}

}  // namespace

// How the tool reads bank files on its own: the text-mode translation and header recognition.
// (Lines in pieces and the sectioned key walk are covered by the checker's findings.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BankHeader.h"
#include "BankText.h"

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
        {"a user bank without a version line", "[Header]\n\n\n", true, BankKind::OldIMMUserBank, -1,
         -1, 0},
        {"a legacy header of version 9000 or above", "[Header]\nVersion,9100\n\n", true,
         BankKind::IMMUserBank, 9100, 1, 0},
        {"sectioned IMM system", sectioned + "0\nType = 0\n", true, BankKind::IMMSystemBankFiles,
         9000, 0, 0},
        {"sectioned IMM user", sectioned + "1\nType = 0\n", true, BankKind::IMMUserBank, 9000, 1,
         0},
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

}  // namespace

#include <gtest/gtest.h>

#include <string>

#include "platform/CaseFolding.h"
#include "platform/ScopedLocale.h"

namespace qzr::platform {
namespace {

using test::ScopedLocale;

TEST(CaseFolding, CLocaleFoldsOnlyAsciiCapitals) {
    ScopedLocale locale("C");
    ASSERT_TRUE(locale.installed());
    std::string all;
    std::string expected;
    for (int byte = 0; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
        expected.push_back(static_cast<char>(byte >= 'A' && byte <= 'Z' ? byte + 32 : byte));
    }
    EXPECT_EQ(FoldCase(all), expected);
    std::string inPlace = all;
    FoldCaseInPlace(&inPlace);
    EXPECT_EQ(inPlace, expected);
}

struct FoldRow {
    const char* label;
    std::string input;
    std::string expected;
};

TEST(CaseFolding, CLocaleTable) {
    ScopedLocale locale("C");
    const FoldRow rows[] = {
        {"empty", "", ""},
        {"maker name", "Mold-Star KOGYO", "mold-star kogyo"},
        {"blanks and punctuation kept", " A,B = C ", " a,b = c "},
        {"embedded NUL kept", std::string("AB\0CD", 5), std::string("ab\0cd", 5)},
        {"high bytes unchanged", "\xC4\xD6\xDC-X", "\xC4\xD6\xDC-x"},
    };
    for (const FoldRow& row : rows) {
        EXPECT_EQ(FoldCase(row.input), row.expected) << row.label;
    }
}

TEST(CaseFolding, Utf8LocaleStepsOverMultibyteCharacters) {
    ScopedLocale locale("C.UTF-8");
    if (!locale.installed()) {
        GTEST_SKIP() << "no C.UTF-8 locale on this host";
    }
    const FoldRow rows[] = {
        {"two-byte character kept", "\xC3\x84RGER", "\xC3\x84rger"},
        {"three-byte character kept",
         "\xE2\x82\xAC"
         "EURO",
         "\xE2\x82\xAC"
         "euro"},
        {"stray trail byte kept, next capital folded", "\x80Z", "\x80z"},
        {"truncated character at the end kept", "AB\xC3", "ab\xC3"},
        {"invalid lead byte then ASCII", "\xFFQ\xC3\x84Q", "\xFFq\xC3\x84q"},
    };
    for (const FoldRow& row : rows) {
        EXPECT_EQ(FoldCase(row.input), row.expected) << row.label;
    }
}

// In Shift-JIS the trail byte of a double-byte character may look like a capital letter; it
// belongs to the character and must not be folded.
TEST(CaseFolding, ShiftJisTrailByteNotFolded) {
    ScopedLocale locale("ja_JP.SJIS");
    if (!locale.installed()) {
        GTEST_SKIP() << "no Shift-JIS locale on this host";
    }
    // 0x83 0x41 is the katakana A; 0x41 alone is 'A'.
    EXPECT_EQ(FoldCase("\x83\x41"
                       "A"),
              "\x83\x41"
              "a");
}

// A Latin-1 locale folds its own capitals with tolower; A-Z fold in every locale.
TEST(CaseFolding, SingleByteLocaleUsesItsTolower) {
    ScopedLocale locale("de_DE.ISO-8859-1");
    if (!locale.installed()) {
        GTEST_SKIP() << "no Latin-1 locale on this host";
    }
    EXPECT_EQ(FoldCase("\xC4Z"), "\xE4z");
}

}  // namespace
}  // namespace qzr::platform

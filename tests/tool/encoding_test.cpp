// Bank texts between their code page and UTF-8: lossless both ways, and every byte or character
// without a counterpart is an error at its offset.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TextEncoding.h"

namespace qzrbank {
namespace {

const char kCp1252Undefined[] = "\x81\x8D\x8F\x90\x9D";

std::string AllBytesBut(const std::string& left_out) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        if (left_out.find(static_cast<char>(byte)) == std::string::npos) {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

TEST(EncodingTest, SingleByteCodePagesRoundTripEveryDefinedByte) {
    for (const char* name : {"cp1252", "latin1"}) {
        SCOPED_TRACE(name);
        const TextEncoding encoding = *TextEncoding::Parse(name);
        const std::string bytes =
            AllBytesBut(std::string(name) == "cp1252" ? kCp1252Undefined : "");
        const EncodedText decoded = encoding.Decode(bytes);
        ASSERT_TRUE(decoded.ok) << "offset " << decoded.badOffset;
        const EncodedText encoded = encoding.Encode(decoded.text);
        ASSERT_TRUE(encoded.ok) << "offset " << encoded.badOffset;
        EXPECT_EQ(encoded.text, bytes);
    }
}

struct Conversion {
    const char* label;
    const char* encoding;
    std::string bank;
    std::string utf8;
};

TEST(EncodingTest, DecodesToTheCharactersTheHostShows) {
    const Conversion rows[] = {
        {"cp1252 euro and e-acute", "cp1252", "\x80 Caf\xE9", "\u20AC Caf\u00E9"},
        {"cp1252 last of the high block", "cp1252", "\x9F", "\u0178"},
        {"latin1 keeps C1 controls", "latin1", "\x80\xE9", "\u0080\u00E9"},
        {"cp932 kanji and half-width kana", "cp932", "\x93\xFA\x96\x7B-\xB1 7", "日本-ｱ 7"},
        {"cp932 wave dash row", "cp932", "\x81\x60", "\uFF5E"},
    };
    for (const Conversion& row : rows) {
        SCOPED_TRACE(row.label);
        const TextEncoding encoding = *TextEncoding::Parse(row.encoding);
        EXPECT_EQ(encoding.Decode(row.bank).text, row.utf8);
        EXPECT_EQ(encoding.Encode(row.utf8).text, row.bank);
    }
}

struct Failure {
    const char* label;
    const char* encoding;
    bool decode;
    std::string input;
    size_t badOffset;
};

TEST(EncodingTest, UnconvertibleInputIsAnErrorAtItsOffset) {
    std::vector<Failure> rows;
    for (const char byte : std::string(kCp1252Undefined)) {
        rows.push_back({"cp1252 undefined byte", "cp1252", true, std::string("ab") + byte, 2});
    }
    rows.push_back({"cp932 cut double-byte character", "cp932", true, "ab\x93", 2});
    rows.push_back({"cp932 no form for e-acute", "cp932", false, "A\u00E9", 1});
    rows.push_back({"latin1 no form for euro", "latin1", false, "1\u20AC", 1});
    rows.push_back({"cp1252 no form for C1 control", "cp1252", false, "\u0081", 0});
    rows.push_back({"invalid UTF-8", "cp1252", false, "ok\xC3(", 2});
    rows.push_back({"overlong UTF-8", "latin1", false, "\xC0\xAF", 0});
    for (const Failure& row : rows) {
        SCOPED_TRACE(row.label);
        const TextEncoding encoding = *TextEncoding::Parse(row.encoding);
        const EncodedText result =
            row.decode ? encoding.Decode(row.input) : encoding.Encode(row.input);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.badOffset, row.badOffset);
    }
}

}  // namespace
}  // namespace qzrbank

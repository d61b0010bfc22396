// Bank texts between their code page and UTF-8: lossless both ways, and every byte or character
// without a counterpart is an error at its offset.
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "Commands.h"
#include "TextEncoding.h"
#include "tool/tool_test_support.h"

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

TEST(EncodingTest, FieldErrorNamesMachineFieldAndByte) {
    std::string utf8;
    std::string error;
    EXPECT_FALSE(TextEncoding().DecodeField("\x81", "Caf\xE9\x81", "Grade", &utf8, &error));
    EXPECT_EQ(error, "Caf\u00E9\\x81: Grade: byte 0x81 at offset 0 is not cp1252");
    EXPECT_FALSE(TextEncoding::Parse("utf8"));
    EXPECT_STREQ(TextEncoding::Parse("CP932")->Name(), "cp932");
}

using qzrbank_test::Capture;
using qzrbank_test::Output;

// show, info and check in JSON on a user bank with two machines of one maker and grade (check
// quotes the name of the second), all of their texts in the given code page.
std::vector<Output> JsonViews(const std::string& encoding, const std::string& maker) {
    const qzrbank_test::TempFolder folder;
    const std::string bank = qzrbank_test::WriteUserBank(
        folder, {{maker, "G1", 10, 5}, {maker, "G1", 20, 5}}, "Remark " + maker);
    return {Capture([&](auto& out, auto& err) {
                return RunShow({bank, maker, "G1", "json", encoding}, out, err);
            }),
            Capture([&](auto& out, auto& err) {
                return RunInfo({{bank}, "json", encoding}, out, err);
            }),
            Capture([&](auto& out, auto& err) {
                return RunCheck({{bank}, "json", encoding}, std::cin, out, err);
            })};
}

TEST(EncodingTest, JsonViewsShowBankTextsDecoded) {
    const Conversion rows[] = {
        {"cp1252 e-acute", "cp1252", "Caf\xE9 Pressen", "Caf\u00E9 Pressen"},
        {"cp932 kanji", "cp932", "\x93\xFA\x96\x7B\x90\xBB", "日本製"},
    };
    for (const Conversion& row : rows) {
        SCOPED_TRACE(row.label);
        const std::vector<Output> outputs = JsonViews(row.encoding, row.bank);
        const std::string expected[] = {"\"Maker\": \"" + row.utf8 + "\"",
                                        "\"Remark\": \"Remark " + row.utf8 + "\"",
                                        row.utf8 + " - G1\\\" has the maker"};
        for (size_t i = 0; i < outputs.size(); ++i) {
            EXPECT_NE(outputs[i].out.find(expected[i]), std::string::npos) << outputs[i].out;
            EXPECT_EQ(outputs[i].err, "");
        }
    }
}

TEST(EncodingTest, UndecodableBankTextIsAnErrorNamingMachineAndField) {
    const std::vector<Output> outputs = JsonViews("cp1252", "Ost\x81");
    EXPECT_EQ(outputs[0].exitCode, 2);
    EXPECT_NE(outputs[0].err.find(": Ost\\x81 - G1: Maker: byte 0x81 at offset 3 is not cp1252\n"),
              std::string::npos)
        << outputs[0].err;
    EXPECT_EQ(outputs[1].exitCode, 2);
    EXPECT_NE(outputs[1].err.find("User-IMM.bnk: Remark: byte 0x81 at offset 10"),
              std::string::npos)
        << outputs[1].err;
    EXPECT_NE(outputs[2].out.find("Ost\\\\x81 - G1"), std::string::npos) << outputs[2].out;
}

}  // namespace
}  // namespace qzrbank

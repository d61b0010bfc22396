#include "TextEncoding.h"

#include "Finding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/CaseFolding.h"
#include "platform/CodePage.h"

namespace qzrbank {

namespace {

constexpr unsigned kJapaneseCodePage = 932;

// Code page 1252 at 0x80-0x9F; 0 marks the five bytes it leaves undefined. Every other byte is
// the Unicode character of the same number, as in Latin-1.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

// The character of a single-byte code page's byte; 0 for an undefined byte (byte 0 is NUL and
// never reaches here: bank texts end at it).
char32_t SingleByteCharacter(bool cp1252, unsigned char byte) {
    if (cp1252 && byte >= 0x80 && byte < 0xA0) {
        return kCp1252High[byte - 0x80];
    }
    return byte;
}

// The byte of a character in a single-byte code page; false for a character it lacks.
bool SingleByteOf(bool cp1252, char32_t codePoint, unsigned char* byte) {
    if (cp1252) {
        for (unsigned index = 0; index < 32; ++index) {
            if (kCp1252High[index] != 0 && kCp1252High[index] == codePoint) {
                *byte = static_cast<unsigned char>(0x80 + index);
                return true;
            }
        }
        if (codePoint >= 0x80 && codePoint < 0xA0) {
            return false;
        }
    }
    if (codePoint > 0xFF) {
        return false;
    }
    *byte = static_cast<unsigned char>(codePoint);
    return true;
}

EncodedText DecodeSingleByte(bool cp1252, std::string_view bytes) {
    EncodedText result;
    result.text.reserve(bytes.size());
    for (size_t offset = 0; offset < bytes.size(); ++offset) {
        // Bytes below 0x80 are their own characters and their own UTF-8: copied by the run.
        size_t ascii = offset;
        while (ascii < bytes.size() && static_cast<unsigned char>(bytes[ascii]) < 0x80) {
            ++ascii;
        }
        result.text.append(bytes.data() + offset, ascii - offset);
        offset = ascii;
        if (offset == bytes.size()) {
            break;
        }
        const unsigned char byte = static_cast<unsigned char>(bytes[offset]);
        const char32_t codePoint = SingleByteCharacter(cp1252, byte);
        if (codePoint == 0 && byte != 0) {
            result.badOffset = offset;
            return result;
        }
        AppendUtf8(codePoint, &result.text);
    }
    result.ok = true;
    return result;
}

EncodedText EncodeSingleByte(bool cp1252, std::string_view utf8) {
    EncodedText result;
    size_t offset = 0;
    while (offset < utf8.size()) {
        const size_t start = offset;
        char32_t codePoint = 0;
        unsigned char byte = 0;
        if (!ReadCodePoint(utf8, &offset, &codePoint) || !SingleByteOf(cp1252, codePoint, &byte)) {
            result.badOffset = start;
            return result;
        }
        result.text += static_cast<char>(byte);
    }
    result.ok = true;
    return result;
}

std::string HexByte(char byte) {
    const char* const digits = "0123456789ABCDEF";
    const unsigned value = static_cast<unsigned char>(byte);
    return {digits[value >> 4], digits[value & 0xFu]};
}

// How many bytes below 0x80 the text starts with; a message holds mostly such bytes, so they
// are tested eight at a time.
size_t AsciiRun(std::string_view bytes) {
    constexpr uint64_t kHighBits = 0x8080808080808080ULL;
    size_t offset = 0;
    uint64_t word = 0;
    for (; offset + sizeof word <= bytes.size(); offset += sizeof word) {
        std::memcpy(&word, bytes.data() + offset, sizeof word);
        if ((word & kHighBits) != 0) {
            break;
        }
    }
    while (offset < bytes.size() && static_cast<unsigned char>(bytes[offset]) < 0x80) {
        ++offset;
    }
    return offset;
}

// The single-byte text decoded, each byte the code page leaves undefined written as "\x81".
void AppendSingleByteOrEscape(bool cp1252, std::string_view bytes, std::string* text) {
    size_t offset = 0;
    while (offset < bytes.size()) {
        const size_t ascii = offset;
        offset += AsciiRun(bytes.substr(offset));
        text->append(bytes.data() + ascii, offset - ascii);
        if (offset == bytes.size()) {
            break;
        }
        const char32_t codePoint =
            SingleByteCharacter(cp1252, static_cast<unsigned char>(bytes[offset]));
        if (codePoint == 0) {
            *text += "\\x" + HexByte(bytes[offset]);
        } else {
            AppendUtf8(codePoint, text);
        }
        ++offset;
    }
}

EncodedText FromPlatform(const qzr::platform::CodePageConversion& conversion) {
    EncodedText result;
    result.ok = conversion.ok;
    result.text = conversion.text;
    result.badOffset = conversion.badOffset;
    return result;
}

}  // namespace

std::optional<TextEncoding> TextEncoding::Parse(std::string_view name) {
    const std::string folded = qzr::platform::FoldCase(name);
    if (folded == "cp1252") {
        return TextEncoding(CodePage::Cp1252);
    }
    if (folded == "cp932") {
        return TextEncoding(CodePage::Cp932);
    }
    if (folded == "latin1") {
        return TextEncoding(CodePage::Latin1);
    }
    return std::nullopt;
}

const char* TextEncoding::Name() const {
    switch (m_codePage) {
        case CodePage::Cp932:
            return "cp932";
        case CodePage::Latin1:
            return "latin1";
        case CodePage::Cp1252:
            break;
    }
    return "cp1252";
}

EncodedText TextEncoding::Decode(std::string_view bytes) const {
    if (m_codePage == CodePage::Cp932) {
        return FromPlatform(qzr::platform::CodePageToUtf8(kJapaneseCodePage, bytes));
    }
    return DecodeSingleByte(m_codePage == CodePage::Cp1252, bytes);
}

EncodedText TextEncoding::Encode(std::string_view utf8) const {
    if (m_codePage == CodePage::Cp932) {
        return FromPlatform(qzr::platform::Utf8ToCodePage(kJapaneseCodePage, utf8));
    }
    return EncodeSingleByte(m_codePage == CodePage::Cp1252, utf8);
}

std::string TextEncoding::DecodeOrEscape(std::string_view bytes) const {
    std::string text;
    AppendDecodedOrEscaped(bytes, &text);
    return text;
}

void TextEncoding::AppendDecodedOrEscaped(std::string_view bytes, std::string* text) const {
    if (m_codePage != CodePage::Cp932) {
        AppendSingleByteOrEscape(m_codePage == CodePage::Cp1252, bytes, text);
        return;
    }
    while (!bytes.empty()) {
        const EncodedText decoded = Decode(bytes);
        *text += decoded.text;
        if (decoded.ok) {
            break;
        }
        *text += "\\x" + HexByte(bytes[decoded.badOffset]);
        bytes.remove_prefix(decoded.badOffset + 1);
    }
}

std::string TextEncoding::ByteError(std::string_view bytes, size_t offset) const {
    return "byte 0x" + HexByte(bytes[offset]) + " at offset " + std::to_string(offset) +
           " is not " + Name();
}

bool TextEncoding::DecodeField(std::string_view bytes, const std::string& machine,
                               const std::string& field, std::string* utf8,
                               std::string* error) const {
    EncodedText decoded = Decode(bytes);
    if (!decoded.ok) {
        *error =
            DecodeOrEscape(machine) + ": " + field + ": " + ByteError(bytes, decoded.badOffset);
        return false;
    }
    *utf8 = std::move(decoded.text);
    return true;
}

std::optional<TextEncoding> EncodingOption(const std::string& name, std::ostream& err) {
    std::optional<TextEncoding> encoding = TextEncoding::Parse(name);
    if (!encoding) {
        err << "qzrbank: unknown encoding '" << name << "' (" << TextEncoding::kNames << ")\n";
    }
    return encoding;
}

bool ArgumentInCodePage(const TextEncoding& encoding, const std::string& where, std::string* text,
                        std::ostream& err) {
    // What is no UTF-8 was typed in the bank's own code page, or pasted from a bank: it reaches
    // the bank unchanged.
    char32_t codePoint = 0;
    for (size_t offset = 0; offset < text->size();) {
        if (!ReadCodePoint(*text, &offset, &codePoint)) {
            return true;
        }
    }
    const EncodedText bytes = encoding.Encode(*text);
    if (!bytes.ok) {
        err << "qzrbank: " << where << ": " << Quoted(*text) << ": the character at byte "
            << bytes.badOffset << " has no " << encoding.Name() << " counterpart\n";
        return false;
    }
    *text = bytes.text;
    return true;
}

bool ReadCodePoint(std::string_view utf8, size_t* offset, char32_t* codePoint) {
    const size_t start = *offset;
    const unsigned char lead = static_cast<unsigned char>(utf8[start]);
    if (lead < 0x80) {
        *codePoint = lead;
        *offset = start + 1;
        return true;
    }
    // Sequence length, the lead byte's payload bits, and the smallest character of that length.
    struct Form {
        size_t length;
        unsigned char payload;
        char32_t smallest;
    };
    Form form{0, 0, 0};
    if (lead >= 0xC2 && lead < 0xE0) {
        form = {2, 0x1F, 0x80};
    } else if (lead >= 0xE0 && lead < 0xF0) {
        form = {3, 0x0F, 0x800};
    } else if (lead >= 0xF0 && lead < 0xF5) {
        form = {4, 0x07, 0x10000};
    } else {
        return false;
    }
    const size_t length = form.length;
    char32_t value = lead & form.payload;
    if (start + length > utf8.size()) {
        return false;
    }
    for (size_t index = 1; index < length; ++index) {
        const unsigned char next = static_cast<unsigned char>(utf8[start + index]);
        if ((next & 0xC0u) != 0x80u) {
            return false;
        }
        value = (value << 6) | (next & 0x3Fu);
    }
    if (value < form.smallest || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) {
        return false;
    }
    *codePoint = value;
    *offset = start + length;
    return true;
}

void AppendUtf8(char32_t codePoint, std::string* utf8) {
    if (codePoint < 0x80) {
        *utf8 += static_cast<char>(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        *utf8 += static_cast<char>(0xC0 | (codePoint >> 6));
    } else {
        if (codePoint < 0x10000) {
            *utf8 += static_cast<char>(0xE0 | (codePoint >> 12));
        } else {
            *utf8 += static_cast<char>(0xF0 | (codePoint >> 18));
            *utf8 += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        }
        *utf8 += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    }
    *utf8 += static_cast<char>(0x80 | (codePoint & 0x3F));
}

}  // namespace qzrbank

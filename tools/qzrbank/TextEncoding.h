// The code page of a bank's texts. Banks hold 8-bit texts in the code page of the host that
// wrote them; the tool shows them as UTF-8 and writes UTF-8 back as bank bytes, losslessly both
// ways: a byte or character without a counterpart is an error, never a replacement character.
#ifndef QZRBANK_TEXTENCODING_H
#define QZRBANK_TEXTENCODING_H

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace qzrbank {

// A converted text, or the offset in the input of the first byte (decoding) or character
// (encoding) that has no counterpart.
struct EncodedText {
    bool ok = false;
    std::string text;
    size_t badOffset = 0;
};

class TextEncoding {
  public:
    enum class CodePage { Cp1252, Cp932, Latin1 };

    // The names --encoding accepts.
    static constexpr const char* kNames = "cp1252|cp932|latin1";

    // cp1252, cp932 or latin1, letter case ignored; none for any other name.
    static std::optional<TextEncoding> Parse(std::string_view name);

    explicit TextEncoding(CodePage codePage = CodePage::Cp1252) : m_codePage(codePage) {}

    const char* Name() const;
    EncodedText Decode(std::string_view bytes) const;
    EncodedText Encode(std::string_view utf8) const;

    // The text decoded, each byte that does not decode written as "\x81": for messages that quote
    // bank texts, which must show every byte and never fail.
    std::string DecodeOrEscape(std::string_view bytes) const;
    // The same, appended to *text.
    void AppendDecodedOrEscaped(std::string_view bytes, std::string* text) const;

    // "byte 0x81 at offset 3 is not cp1252", for the byte of bytes at offset.
    std::string ByteError(std::string_view bytes, size_t offset) const;

    // Decode for a text of a machine: on failure, *error says which machine (its name as
    // DecodeOrEscape gives it) and field hold the byte that does not decode, as
    // "MAKER GRADE: FIELD: byte 0x81 at offset 3 is not cp1252".
    bool DecodeField(std::string_view bytes, const std::string& machine, const std::string& field,
                     std::string* utf8, std::string* error) const;

  private:
    CodePage m_codePage;
};

// The encoding an --encoding option names; none, with a usage error on err, for another name.
std::optional<TextEncoding> EncodingOption(const std::string& name, std::ostream& err);

// A text of the command line (UTF-8) in the bank's code page, to find or write bank texts; a
// text that is no UTF-8 stays as it is. False, with 'qzrbank: WHERE: "TEXT": the character at
// byte N has no cp1252 counterpart' on err, at a character the code page lacks.
bool ArgumentInCodePage(const TextEncoding& encoding, const std::string& where, std::string* text,
                        std::ostream& err);

// Reads the UTF-8 character at *offset into *codePoint and moves *offset past it; false, with
// *offset unchanged, for a byte that starts no well-formed character (an overlong form, a
// surrogate, a cut sequence).
bool ReadCodePoint(std::string_view utf8, size_t* offset, char32_t* codePoint);
void AppendUtf8(char32_t codePoint, std::string* utf8);

}  // namespace qzrbank

#endif  // QZRBANK_TEXTENCODING_H

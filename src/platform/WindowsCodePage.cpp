// Code pages through the Win32 conversion functions. Texts go one character at a time, so that
// a character that does not convert is found by its offset.
#if defined(_WIN32)

#include "platform/WindowsHeaders.h"

#include <string>

#include "platform/CodePage.h"

namespace qzr::platform {

namespace {

size_t Utf8SequenceLength(unsigned char lead) {
    if (lead >= 0xF0 && lead < 0xF8) {
        return 4;
    }
    if (lead >= 0xE0 && lead < 0xF0) {
        return 3;
    }
    if (lead >= 0xC0 && lead < 0xE0) {
        return 2;
    }
    return 1;
}

// The UTF-16 form of one character given in code page codePage; empty when it does not convert.
std::wstring WideCharacter(unsigned codePage, const char* bytes, size_t count) {
    wchar_t wide[4];
    const int length = MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes,
                                           static_cast<int>(count), wide, 4);
    return std::wstring(wide, length > 0 ? static_cast<size_t>(length) : 0);
}

// The bytes of one character in code page codePage; false when the code page has no such
// character (Windows would put in its default character or a look-alike).
bool AppendNarrow(unsigned codePage, const std::wstring& wide, std::string* out) {
    char narrow[8];
    BOOL usedDefault = FALSE;
    const bool utf8 = codePage == CP_UTF8;
    const int length = WideCharToMultiByte(
        codePage, utf8 ? 0 : WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()),
        narrow, static_cast<int>(sizeof narrow), nullptr, utf8 ? nullptr : &usedDefault);
    if (length <= 0 || usedDefault) {
        return false;
    }
    out->append(narrow, static_cast<size_t>(length));
    return true;
}

// Converts bytes character by character; lengthOf gives the byte count of the character that
// starts at an offset.
template <class LengthOf>
CodePageConversion Convert(unsigned from, unsigned to, std::string_view in, LengthOf lengthOf) {
    CodePageConversion result;
    size_t offset = 0;
    while (offset < in.size()) {
        const size_t length = lengthOf(static_cast<unsigned char>(in[offset]));
        const std::wstring wide = offset + length <= in.size()
                                      ? WideCharacter(from, in.data() + offset, length)
                                      : std::wstring();
        if (wide.empty() || !AppendNarrow(to, wide, &result.text)) {
            result.badOffset = offset;
            return result;
        }
        offset += length;
    }
    result.ok = true;
    return result;
}

}  // namespace

CodePageConversion CodePageToUtf8(unsigned codePage, std::string_view bytes) {
    return Convert(codePage, CP_UTF8, bytes, [codePage](unsigned char lead) {
        return IsDBCSLeadByteEx(codePage, lead) ? size_t{2} : size_t{1};
    });
}

CodePageConversion Utf8ToCodePage(unsigned codePage, std::string_view utf8) {
    return Convert(CP_UTF8, codePage, utf8, Utf8SequenceLength);
}

}  // namespace qzr::platform

#endif  // defined(_WIN32)

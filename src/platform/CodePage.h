// Conversion between the bytes of a Windows code page (932 for Japanese, for instance) and UTF-8,
// through the operating system's own converter, so that texts read as the host reads them.
#ifndef QZR_PLATFORM_CODEPAGE_H
#define QZR_PLATFORM_CODEPAGE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace qzr::platform {

// The outcome of a conversion: the converted text, or the offset in the input of the first byte
// that does not convert (an invalid or cut sequence, or a character the target has no form for).
struct CodePageConversion {
    bool ok = false;
    std::string text;
    size_t badOffset = 0;
};

CodePageConversion CodePageToUtf8(unsigned codePage, std::string_view bytes);
CodePageConversion Utf8ToCodePage(unsigned codePage, std::string_view utf8);

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_CODEPAGE_H

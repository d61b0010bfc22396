// Code pages through iconv, which the C library of Linux carries.
#if !defined(_WIN32)

#include <iconv.h>

#include <cerrno>
#include <string>

#include "platform/CodePage.h"

namespace qzr::platform {

namespace {

// Owns one iconv descriptor.
class IconvHandle {
  public:
    IconvHandle(const std::string& to, const std::string& from)
        : m_handle(iconv_open(to.c_str(), from.c_str())) {}
    ~IconvHandle() {
        if (IsOpen()) {
            iconv_close(m_handle);
        }
    }
    IconvHandle(const IconvHandle&) = delete;
    IconvHandle& operator=(const IconvHandle&) = delete;

    bool IsOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }
    iconv_t Get() const { return m_handle; }

  private:
    iconv_t m_handle;
};

std::string IconvName(unsigned codePage) {
    return "CP" + std::to_string(codePage);
}

CodePageConversion Convert(const std::string& to, const std::string& from, std::string_view in) {
    CodePageConversion result;
    IconvHandle converter(to, from);
    if (!converter.IsOpen()) {
        return result;
    }
    std::string input(in);
    char* inPointer = input.data();
    size_t inLeft = input.size();
    char buffer[256];
    while (inLeft > 0) {
        char* outPointer = buffer;
        size_t outLeft = sizeof buffer;
        const size_t done = iconv(converter.Get(), &inPointer, &inLeft, &outPointer, &outLeft);
        result.text.append(buffer, static_cast<size_t>(outPointer - buffer));
        if (done == static_cast<size_t>(-1) && errno != E2BIG) {
            result.badOffset = input.size() - inLeft;
            return result;
        }
    }
    result.ok = true;
    return result;
}

}  // namespace

CodePageConversion CodePageToUtf8(unsigned codePage, std::string_view bytes) {
    return Convert("UTF-8", IconvName(codePage), bytes);
}

CodePageConversion Utf8ToCodePage(unsigned codePage, std::string_view utf8) {
    return Convert(IconvName(codePage), "UTF-8", utf8);
}

}  // namespace qzr::platform

#endif  // !defined(_WIN32)

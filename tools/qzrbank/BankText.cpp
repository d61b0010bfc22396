#include "BankText.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace qzrbank {

std::string NativePath(const std::string& path) {
#if defined(_WIN32)
    return path;
#else
    std::string native = path;
    for (char& c : native) {
        if (c == '\\') {
            c = '/';
        }
    }
    return native;
#endif
}

std::string TranslateTextMode(std::string_view raw) {
    std::string text;
    text.reserve(raw.size());
    for (size_t i = 0; i < raw.size(); ++i) {
        const char c = raw[i];
        if (c == '\x1a') {
            break;
        }
        if (c == '\r' && i + 1 < raw.size() && raw[i + 1] == '\n') {
            continue;
        }
        text.push_back(c);
    }
    return text;
}

bool ReadBankText(const std::string& path, std::string* text) {
    const std::filesystem::path native(NativePath(path));
    std::error_code error;
    if (std::filesystem::is_directory(native, error)) {
        return false;
    }
    std::ifstream in(native, std::ios::binary);
    if (!in) {
        return false;
    }
    const std::string raw((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    *text = TranslateTextMode(raw);
    return true;
}

std::vector<LinePiece> SplitPieces(std::string_view text, size_t maxChars) {
    std::vector<LinePiece> pieces;
    int line = 1;
    bool continued = false;
    size_t pos = 0;
    while (pos < text.size() && maxChars > 0) {
        const size_t lineFeed = text.find('\n', pos);
        const size_t untilLineEnd =
            lineFeed == std::string_view::npos ? text.size() - pos : lineFeed - pos + 1;
        const size_t length = untilLineEnd < maxChars ? untilLineEnd : maxChars;
        LinePiece piece;
        piece.text = std::string(text.substr(pos, length));
        piece.line = line;
        piece.continued = continued;
        const bool endsLine = piece.text.back() == '\n';
        pieces.push_back(std::move(piece));
        pos += length;
        if (endsLine) {
            ++line;
            continued = false;
        } else {
            continued = true;
        }
    }
    return pieces;
}

std::vector<PhysicalLine> SplitPhysicalLines(std::string_view text) {
    std::vector<PhysicalLine> lines;
    size_t pos = 0;
    int number = 1;
    while (pos < text.size()) {
        const size_t lineFeed = text.find('\n', pos);
        const size_t end = lineFeed == std::string_view::npos ? text.size() : lineFeed;
        PhysicalLine line;
        line.line = number++;
        line.length = end - pos;
        line.hasLineEnd = lineFeed != std::string_view::npos;
        line.hasNul = text.substr(pos, end - pos).find('\0') != std::string_view::npos;
        lines.push_back(line);
        pos = line.hasLineEnd ? end + 1 : end;
    }
    return lines;
}

std::string_view CText(std::string_view piece) {
    const size_t nul = piece.find('\0');
    return nul == std::string_view::npos ? piece : piece.substr(0, nul);
}

std::string_view WithoutLineEnd(std::string_view piece) {
    std::string_view text = CText(piece);
    if (!text.empty() && text.back() == '\n') {
        text.remove_suffix(1);
    }
    return text;
}

}  // namespace qzrbank

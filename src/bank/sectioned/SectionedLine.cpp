#include "bank/sectioned/SectionedLine.h"

namespace qzr::bank {

std::string_view SectionedLineText(std::string_view piece) {
    const size_t nul = piece.find('\0');
    return nul == std::string_view::npos ? piece : piece.substr(0, nul);
}

std::string_view SectionedLineToken(std::string_view piece) {
    const std::string_view text = SectionedLineText(piece);
    const size_t end = text.find_first_of(std::string_view(" \t=\n", 4));
    return end == std::string_view::npos ? text : text.substr(0, end);
}

std::string_view SectionedEntryValue(std::string_view piece) {
    std::string_view text = SectionedLineText(piece);
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        return {};
    }
    text.remove_prefix(equals + 1);
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    text.remove_prefix(first);
    const size_t lineFeed = text.find('\n');
    return lineFeed == std::string_view::npos ? text : text.substr(0, lineFeed);
}

}  // namespace qzr::bank

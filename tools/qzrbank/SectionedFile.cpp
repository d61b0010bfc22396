#include "SectionedFile.h"

#include <algorithm>

namespace qzrbank {

namespace {

std::string_view TokenOf(std::string_view piece) {
    const std::string_view text = CText(piece);
    const size_t end = text.find_first_of(std::string_view(" \t=\n", 4));
    return end == std::string_view::npos ? text : text.substr(0, end);
}

}  // namespace

SectionedFile::SectionedFile(std::string_view text)
    : m_pieces(SplitPieces(text, kSectionedLineChars)) {
    for (size_t i = 0; i < m_pieces.size(); ++i) {
        const std::string_view token = TokenOf(m_pieces[i].text);
        m_byToken[std::string(token)].push_back(i);
        if (!token.empty() && token.front() == '[') {
            m_headers.push_back(i);
        }
    }
}

std::string_view SectionedFile::Token(size_t piece) const {
    return TokenOf(m_pieces[piece].text);
}

std::string SectionedFile::Value(size_t piece) const {
    std::string_view text = CText(m_pieces[piece].text);
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
    return std::string(text.substr(0, text.find('\n')));
}

bool SectionedFile::IsHeader(size_t piece) const {
    const std::string_view token = Token(piece);
    return !token.empty() && token.front() == '[';
}

const std::vector<size_t>& SectionedFile::PiecesWithToken(std::string_view token) const {
    static const std::vector<size_t> kNone;
    const auto found = m_byToken.find(token);
    return found == m_byToken.end() ? kNone : found->second;
}

std::optional<size_t> SectionedFile::FindSection(std::string_view section) const {
    const std::vector<size_t>& pieces = PiecesWithToken(section);
    if (section.empty() || pieces.empty()) {
        return std::nullopt;
    }
    return pieces.front();
}

std::optional<size_t> SectionedFile::FindKey(std::string_view section, std::string_view key) const {
    const std::optional<size_t> header = FindSection(section);
    if (!header || key.empty()) {
        return std::nullopt;
    }
    const std::vector<size_t>& pieces = PiecesWithToken(key);
    const auto after = std::upper_bound(pieces.begin(), pieces.end(), *header);
    if (after == pieces.end()) {
        return std::nullopt;
    }
    return *after;
}

std::optional<size_t> SectionedFile::EnclosingHeader(size_t piece) const {
    const auto after = std::upper_bound(m_headers.begin(), m_headers.end(), piece);
    if (after == m_headers.begin()) {
        return std::nullopt;
    }
    return *(after - 1);
}

size_t SectionedFile::SectionEnd(size_t header) const {
    const auto after = std::upper_bound(m_headers.begin(), m_headers.end(), header);
    return after == m_headers.end() ? m_pieces.size() : *after;
}

}  // namespace qzrbank

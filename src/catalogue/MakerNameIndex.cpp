#include "catalogue/MakerNameIndex.h"

#include <cstring>

namespace qzr::catalogue {

bool MakerNameIndex::IsBuiltFor(const char* locale) const {
    return m_built && std::strcmp(locale, m_locale.c_str()) == 0;
}

void MakerNameIndex::Appended(const char* name, std::size_t position) {
    const char* locale = qzr::platform::FoldingLocaleName();
    if (locale == nullptr || !IsBuiltFor(locale)) {
        m_built = false;
        return;
    }
    m_built = false;  // until the entry is in, should running out of memory stop it
    m_seen.clear();   // a text that found no group may find this one
    m_positions[qzr::records::NameKey(name)].push_back(position);
    m_built = true;
}

std::optional<std::size_t> MakerNameIndex::Lookup(const char* maker, std::size_t from) const {
    const std::string_view text(maker);
    auto seen = m_seen.find(std::string(text));
    if (seen == m_seen.end()) {
        // A host may look up any number of different texts; the cache stays small.
        constexpr std::size_t kMostTextsSeen = 1024;
        if (m_seen.size() >= kMostTextsSeen) {
            m_seen.clear();
        }
        const auto found = m_positions.find(qzr::records::NameKey(text));
        const Positions* positions = found == m_positions.end() ? nullptr : &found->second;
        seen = m_seen.emplace(std::string(text), positions).first;
    }
    if (seen->second == nullptr) {
        return std::nullopt;
    }
    for (const std::size_t position : *seen->second) {
        if (position >= from) {
            return position;
        }
    }
    return std::nullopt;
}

}  // namespace qzr::catalogue

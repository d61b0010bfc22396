#include "catalogue/MakerNameIndex.h"

#include <cstring>

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
    m_positions[qzr::records::NameKey(name)].push_back(position);
    m_built = true;
}

std::optional<std::size_t> MakerNameIndex::Lookup(const char* maker, std::size_t from) const {
    const auto found = m_positions.find(qzr::records::NameKey(maker));
    if (found == m_positions.end()) {
        return std::nullopt;
    }
    for (const std::size_t position : found->second) {
        if (position >= from) {
            return position;
        }
    }
    return std::nullopt;
}

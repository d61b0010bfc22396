#include "catalogue/MakerNameIndex.h"

#include <cstdint>
#include <cstring>
#include <string_view>

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
    m_built = false;    // until the entry is in, should running out of memory stop it
    ForgetSeenTexts();  // a text that found no group may find this one
    m_positions[qzr::records::NameKey(name)].push_back(position);
    m_built = true;
}

namespace {

// FNV-1a over the text's bytes, folded into a slot of the table of texts seen.
std::size_t SlotOf(std::string_view text, std::size_t slots) {
    std::uint32_t hash = 2166136261u;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    }
    return (hash ^ (hash >> 16)) % slots;
}

}  // namespace

std::optional<std::size_t> MakerNameIndex::Lookup(const char* maker, std::size_t from) const {
    const std::string_view text(maker);
    if (m_seen.empty()) {
        m_seen.resize(kSeenSlots);
    }
    SeenText& seen = m_seen[SlotOf(text, kSeenSlots)];
    if (seen.generation != m_generation || seen.text != text) {
        const auto found = m_positions.find(qzr::records::NameKey(text));
        seen.generation = 0;  // until the slot is whole, should running out of memory stop it
        seen.text.assign(text.data(), text.size());
        seen.positions = found == m_positions.end() ? nullptr : &found->second;
        seen.generation = m_generation;
    }
    if (seen.positions == nullptr) {
        return std::nullopt;
    }
    for (const std::size_t position : *seen.positions) {
        if (position >= from) {
            return position;
        }
    }
    return std::nullopt;
}

}  // namespace qzr::catalogue

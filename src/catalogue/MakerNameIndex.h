// MakerNameIndex: where a store's maker groups stand in its list, by the key of their names
// under the name rule, so that "the first group whose name equals this text" is found without
// lower-casing every group's name for every lookup (a load files each machine through one).
//
// The keys follow the current locale's lower-casing, which a host may change at any time
// (setlocale, or a thread's own locale). The index remembers the locale it was built in and is
// built again from the groups when a lookup runs in another one; where the platform cannot name
// the locale, every lookup walks the groups with the name rule itself. Either way a lookup
// gives what the plain walk over the groups gives.
#ifndef QZR_CATALOGUE_MAKERNAMEINDEX_H
#define QZR_CATALOGUE_MAKERNAMEINDEX_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/CaseFolding.h"
#include "records/NameRule.h"

namespace qzr::catalogue {

class MakerNameIndex {
  public:
    // The groups were removed, reordered or replaced: the next lookup builds the index again.
    void Invalidate() { m_built = false; }

    // A group named `name` was appended to the list at `position`.
    void Appended(const char* name, std::size_t position);

    // The first position at or after `from`, among `count` groups whose names nameAt(position)
    // gives, whose name equals `maker` under the name rule; none for a null maker.
    template <class NameAt>
    std::optional<std::size_t> Find(const char* maker, std::size_t from, std::size_t count,
                                    const NameAt& nameAt);

  private:
    bool IsBuiltFor(const char* locale) const;
    std::optional<std::size_t> Lookup(const char* maker, std::size_t from) const;

    using Positions = std::vector<std::size_t>;

    bool m_built = false;
    std::string m_locale;  // the locale the keys were made in
    // Positions in ascending order; two groups share a key only when a change of locale made
    // their names equal after they were created.
    std::unordered_map<std::string, Positions> m_positions;
    // A text looked up and the entry of m_positions (null: none) it leads to, so that a text
    // met again, as every maker of a bank is, is not lower-cased again. Kept in a table of
    // kSeenSlots slots by a hash of the text, a text replacing the one in its slot; a slot
    // counts only while its generation is m_generation, which every change of m_positions
    // that can change an answer moves on.
    struct SeenText {
        std::string text;
        const Positions* positions = nullptr;
        std::uint64_t generation = 0;
    };
    static constexpr std::size_t kSeenSlots = 256;
    void ForgetSeenTexts() { ++m_generation; }

    mutable std::vector<SeenText> m_seen;  // empty until the first lookup
    std::uint64_t m_generation = 1;
};

template <class NameAt>
std::optional<std::size_t> MakerNameIndex::Find(const char* maker, std::size_t from,
                                                std::size_t count, const NameAt& nameAt) {
    if (maker == nullptr) {
        return std::nullopt;
    }
    const char* locale = qzr::platform::FoldingLocaleName();
    if (locale == nullptr) {
        m_built = false;
        for (std::size_t position = from; position < count; ++position) {
            if (qzr::records::NamesEqual(nameAt(position), maker)) {
                return position;
            }
        }
        return std::nullopt;
    }
    if (!IsBuiltFor(locale)) {
        m_built = false;  // until it is whole, should running out of memory stop it half way
        m_locale = locale;
        ForgetSeenTexts();
        m_positions.clear();
        for (std::size_t position = 0; position < count; ++position) {
            m_positions[qzr::records::NameKey(nameAt(position))].push_back(position);
        }
        m_built = true;
    }
    return Lookup(maker, from);
}

}  // namespace qzr::catalogue

#endif  // QZR_CATALOGUE_MAKERNAMEINDEX_H

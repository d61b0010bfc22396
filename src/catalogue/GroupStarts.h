// GroupStarts: the global machine index at which each maker group of a store starts, so that
// the machine at a global index is found by a binary search over the groups, and at once when
// the indexes are visited in order (as the writers and the display-name check do), instead of
// by counting through the groups for every index.
//
// Kept up to date while machines are appended to the last group or a new group is appended
// (a load into a catalogue of one maker, or the first machine of each new maker); any other
// change makes the store call Invalidate, and the next lookup builds the table again from the
// groups' sizes.
#ifndef QZR_CATALOGUE_GROUPSTARTS_H
#define QZR_CATALOGUE_GROUPSTARTS_H

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace qzr::catalogue {

class GroupStarts {
  public:
    struct Slot {
        std::size_t group;
        std::size_t machine;  // position within the group
    };

    void Invalidate() { m_built = false; }
    // One machine was appended to the last group.
    void LastGroupGrew();
    // A group holding one machine was appended to the list.
    void GroupAppended();

    // The group and position of the machine at a global index, among `groupCount` groups
    // whose sizes sizeAt(group) gives; none beyond the last machine.
    template <class SizeAt>
    std::optional<Slot> Find(std::size_t index, std::size_t groupCount, const SizeAt& sizeAt);

  private:
    std::optional<Slot> SlotIn(std::size_t group, std::size_t index) const;

    bool m_built = false;
    // One entry per group and one more: entry g is the index of group g's first machine, the
    // last entry the number of machines.
    std::vector<std::size_t> m_starts;
    std::size_t m_lastGroup = 0;  // the group of the previous answer
};

template <class SizeAt>
std::optional<GroupStarts::Slot> GroupStarts::Find(std::size_t index, std::size_t groupCount,
                                                   const SizeAt& sizeAt) {
    if (!m_built) {
        m_starts.assign(1, 0);
        m_starts.reserve(groupCount + 1);
        for (std::size_t group = 0; group < groupCount; ++group) {
            m_starts.push_back(m_starts.back() + sizeAt(group));
        }
        m_lastGroup = 0;
        m_built = true;
    }
    if (index >= m_starts.back()) {
        return std::nullopt;
    }
    // The group of the previous answer, or the one after it, for a walk in index order.
    for (std::size_t group = m_lastGroup; group < m_lastGroup + 2 && group < groupCount; ++group) {
        if (const std::optional<Slot> slot = SlotIn(group, index)) {
            m_lastGroup = group;
            return slot;
        }
    }
    // The last group that starts at or before the index: empty groups before it start there
    // too, and it holds the machine.
    const auto after = std::upper_bound(m_starts.begin(), m_starts.end(), index);
    m_lastGroup = static_cast<std::size_t>(after - m_starts.begin()) - 1;
    return Slot{m_lastGroup, index - m_starts[m_lastGroup]};
}

}  // namespace qzr::catalogue

#endif  // QZR_CATALOGUE_GROUPSTARTS_H

#include "catalogue/GroupStarts.h"

namespace qzr::catalogue {

void GroupStarts::LastGroupGrew() {
    if (m_built && m_starts.size() > 1) {
        ++m_starts.back();
    } else {
        m_built = false;
    }
}

void GroupStarts::GroupAppended() {
    if (!m_built) {
        return;
    }
    // Marked unbuilt while it grows, so that running out of memory leaves no half entry.
    m_built = false;
    m_starts.push_back(m_starts.back() + 1);
    m_built = true;
}

std::optional<GroupStarts::Slot> GroupStarts::SlotIn(std::size_t group, std::size_t index) const {
    if (m_starts[group] <= index && index < m_starts[group + 1]) {
        return Slot{group, index - m_starts[group]};
    }
    return std::nullopt;
}

}  // namespace qzr::catalogue

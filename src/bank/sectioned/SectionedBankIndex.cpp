#include "bank/sectioned/SectionedBankIndex.h"

#include <cstring>
#include <utility>

#include "bank/sectioned/QZRFileIO.h"
#include "bank/sectioned/SectionedLine.h"
#include "platform/TextLineReader.h"

namespace qzr::bank {

namespace {

constexpr std::string_view kMachineSectionPrefix = "[Machine-";

}  // namespace

SectionedBankIndex::SectionedBankIndex(const std::string& path, std::vector<std::string> keys,
                                       bool withLines)
    : m_keys(std::move(keys)),
      m_slotAfter(m_keys.size() + 1, kNone),
      m_lastSlot(static_cast<uint32_t>(m_keys.size())),
      m_firstPending(m_keys.size(), 0),
      m_withLines(withLines) {
    for (size_t slot = 0; slot < m_keys.size(); ++slot) {
        const size_t length = m_keys[slot].size();
        if (m_slotsByLength.size() <= length) {
            m_slotsByLength.resize(length + 1);
        }
        m_slotsByLength[length].push_back(static_cast<uint32_t>(slot));
    }
    ReadFile(path);
}

void SectionedBankIndex::ReadFile(const std::string& path) {
    qzr::platform::TextLineReader file(path);
    m_open = file.IsOpen();
    std::string_view piece;
    while (file.ReadPiece(&piece, kSectionedLineChars)) {
        if (m_withLines) {
            m_line = file.LineNumber();
            if (file.PieceWasCut() && (m_cutLines.empty() || m_cutLines.back() != m_line)) {
                m_cutLines.push_back(m_line);
            }
        }
        AddLine(piece);
    }
}

// The sections of a bank mostly hold their keys in one order, so the key that followed the
// previous key line the last time is tried first, before the line's token is even looked for.
void SectionedBankIndex::AddLine(std::string_view piece) {
    const uint32_t expected = m_slotAfter[m_lastSlot];
    if (expected != kNone && IsTokenOf(piece, m_keys[expected])) {
        m_lastSlot = expected;
        AnswerPending(expected, piece);
        return;
    }
    const std::string_view token = SectionedLineToken(piece);
    const uint32_t slot = KeySlot(token);
    if (slot != kNone) {
        m_slotAfter[m_lastSlot] = slot;
        m_lastSlot = slot;
        AnswerPending(slot, piece);
        return;
    }
    const long machineNumber = MachineSectionNumber(token);
    if (machineNumber != 0) {
        OpenSection(machineNumber);
    }
}

bool SectionedBankIndex::IsTokenOf(std::string_view piece, const std::string& key) {
    return piece.size() >= key.size() && piece.compare(0, key.size(), key) == 0 &&
           (piece.size() == key.size() || EndsSectionedLineToken(piece[key.size()]));
}

uint32_t SectionedBankIndex::KeySlot(std::string_view token) const {
    if (token.size() >= m_slotsByLength.size()) {
        return kNone;
    }
    // Keys of one length mostly differ in their first or last character.
    for (const uint32_t slot : m_slotsByLength[token.size()]) {
        const std::string& key = m_keys[slot];
        if (key.front() == token.front() && key.back() == token.back() && key == token) {
            return slot;
        }
    }
    return kNone;
}

long SectionedBankIndex::MachineSectionNumber(std::string_view token) {
    if (token.size() < kMachineSectionPrefix.size() + 2 ||
        token.compare(0, kMachineSectionPrefix.size(), kMachineSectionPrefix) != 0 ||
        token.back() != ']') {
        return 0;
    }
    const std::string_view digits =
        token.substr(kMachineSectionPrefix.size(), token.size() - kMachineSectionPrefix.size() - 1);
    // "%ld" writes no sign and no leading zero; "[Machine-01]" is another section's name.
    if (digits.empty() || digits.size() > 5 || digits.front() == '0') {
        return 0;
    }
    long number = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') {
            return 0;
        }
        number = number * 10 + (c - '0');
    }
    return number <= kMaxMachineSection ? number : 0;
}

void SectionedBankIndex::OpenSection(long machineNumber) {
    const size_t number = static_cast<size_t>(machineNumber);
    if (m_orderOfSection.size() <= number) {
        m_orderOfSection.resize(number + 1, kNone);
    }
    // Only the first header line of a section opens it; a repeated one is passed over.
    if (m_orderOfSection[number] != kNone) {
        return;
    }
    m_orderOfSection[number] = static_cast<uint32_t>(m_sectionsInOrder.size());
    if (m_sectionsInOrder.size() % kSectionBlockSize == 0) {
        m_answerBlocks.emplace_back(kSectionBlockSize * m_keys.size(), kNone);
    }
    m_sectionsInOrder.push_back(static_cast<uint32_t>(number));
    if (m_withLines) {
        m_sectionLines.push_back(m_line);
        m_answerLines.resize(m_sectionsInOrder.size() * m_keys.size(), 0);
        m_laterLines.resize(m_answerLines.size(), 0);
    }
}

void SectionedBankIndex::AnswerPending(uint32_t slot, std::string_view piece) {
    const size_t sectionCount = m_sectionsInOrder.size();
    uint32_t& firstPending = m_firstPending[slot];
    if (firstPending == sectionCount) {
        return;
    }
    // Every section opened since the previous line with this key finds its value here.
    const uint32_t offset = KeepValue(SectionedEntryValue(piece, m_keys[slot].size()));
    for (size_t order = firstPending; order < sectionCount; ++order) {
        Answer(order, slot) = offset;
        if (m_withLines) {
            m_answerLines[order * m_keys.size() + slot] = m_line;
            // Every section opened before the latest one lacks the key itself.
            if (order + 1 < sectionCount) {
                m_laterLines[order * m_keys.size() + slot] = m_line;
            }
        }
    }
    firstPending = static_cast<uint32_t>(sectionCount);
}

// At most kMaxMachineSection sections times the keys of a kind are kept, each shorter than a
// line piece, so that every block number fits the offset's upper 16 bits.
uint32_t SectionedBankIndex::KeepValue(std::string_view value) {
    if (m_valueBlocks.empty() || m_lastBlockUsed + value.size() >= kValueBlockSize) {
        m_valueBlocks.emplace_back(kValueBlockSize);
        m_lastBlockUsed = 0;
    }
    char* const kept = m_valueBlocks.back().data() + m_lastBlockUsed;
    if (!value.empty()) {
        std::memcpy(kept, value.data(), value.size());
    }
    kept[value.size()] = '\0';
    const size_t position = m_lastBlockUsed;
    m_lastBlockUsed += value.size() + 1;
    return static_cast<uint32_t>((m_valueBlocks.size() - 1) << kValueBlockBits | position);
}

uint32_t SectionedBankIndex::OrderOf(long machineNumber) const {
    if (machineNumber < 1 || static_cast<size_t>(machineNumber) >= m_orderOfSection.size()) {
        return kNone;
    }
    return m_orderOfSection[static_cast<size_t>(machineNumber)];
}

long SectionedBankIndex::SectionLine(long machineNumber) const {
    const uint32_t order = OrderOf(machineNumber);
    return order == kNone || !m_withLines ? 0 : m_sectionLines[order];
}

long SectionedBankIndex::LineOf(const std::vector<long>& lines, long machineNumber,
                                size_t keySlot) const {
    const uint32_t order = OrderOf(machineNumber);
    if (order == kNone || !m_withLines || keySlot >= m_keys.size()) {
        return 0;
    }
    return lines[order * m_keys.size() + keySlot];
}

long SectionedBankIndex::AnswerLine(long machineNumber, size_t keySlot) const {
    return LineOf(m_answerLines, machineNumber, keySlot);
}

long SectionedBankIndex::AnswerLineInLaterSection(long machineNumber, size_t keySlot) const {
    return LineOf(m_laterLines, machineNumber, keySlot);
}

int SectionedBankIndex::GetKeyString(long machineNumber, size_t keySlot, const char** value) const {
    if (!m_open) {
        return CQZRFileIO::kCannotOpen;
    }
    const Section section = FindSection(machineNumber);
    return keySlot < m_keys.size() ? section.GetKeyString(keySlot, value) : CQZRFileIO::kNotFound;
}

SectionedBankIndex::Section SectionedBankIndex::FindSection(long machineNumber) const {
    const uint32_t order = OrderOf(machineNumber);
    if (order == kNone) {
        return Section(nullptr, nullptr);
    }
    return Section(m_answerBlocks[order >> kSectionBlockBits].data() +
                       (order & (kSectionBlockSize - 1)) * m_keys.size(),
                   m_valueBlocks.data());
}

}  // namespace qzr::bank

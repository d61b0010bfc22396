// SectionedBankIndex: every machine-section lookup of one load, answered from one reading of
// the file.
//
// CQZRFileIO reopens and rescans the file for every key, which makes a load quadratic in the
// number of machines. This index reads the file once, line piece by line piece exactly as
// CQZRFileIO does, and keeps, for every section "[Machine-n]" and every key it was built for,
// the value CQZRFileIO would find: the first line with that key after the FIRST header line
// of the section, wherever it lies (a key a section lacks is taken from a later section).
//
// Only the values that answer a lookup are kept (one compact arena, 32-bit offsets), so the
// memory of a load is a small part of the file's size.
#ifndef QZR_BANK_SECTIONED_SECTIONEDBANKINDEX_H
#define QZR_BANK_SECTIONED_SECTIONEDBANKINDEX_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bank/sectioned/QZRFileIO.h"

namespace qzr::bank {

class SectionedBankIndex {
  public:
    // Machine sections beyond this number are never read from a bank.
    static constexpr long kMaxMachineSection = 65535;

    // Reads the file at path; keys are the keys later lookups ask for, each by its position
    // in this list. With withLines, the index also keeps where each section and each answer
    // stand in the file, for a load that is watched (see LoadObserver).
    SectionedBankIndex(const std::string& path, std::vector<std::string> keys,
                       bool withLines = false);

    // False when the file could not be opened (every lookup then gives kCannotOpen).
    bool IsOpen() const { return m_open; }

    // The results of CQZRFileIO::GetKeyString for the section "[Machine-%ld]" of
    // machineNumber (1 to kMaxMachineSection) and the key at keySlot. On kFound, *value points
    // to a text owned by the index, valid as long as the index.
    int GetKeyString(long machineNumber, size_t keySlot, const char** value) const;

    // The answers of one section, for a caller that looks up every key of it.
    class Section {
      public:
        // GetKeyString of the index for this section (keySlot below the index's key count).
        int GetKeyString(size_t keySlot, const char** value) const {
            const uint32_t offset = m_answers != nullptr ? m_answers[keySlot] : kNone;
            if (offset == kNone) {
                return CQZRFileIO::kNotFound;
            }
            if (value != nullptr) {
                *value = ValueAt(m_valueBlocks, offset);
            }
            return CQZRFileIO::kFound;
        }

      private:
        friend class SectionedBankIndex;
        Section(const uint32_t* answers, const std::vector<char>* valueBlocks)
            : m_answers(answers), m_valueBlocks(valueBlocks) {}
        const uint32_t* m_answers;  // per key slot, or null for a section the file lacks
        const std::vector<char>* m_valueBlocks;
    };
    // The section "[Machine-%ld]" of machineNumber (any number; one the file lacks finds
    // nothing). Valid as long as the index.
    Section FindSection(long machineNumber) const;

    // With withLines only (0 otherwise): the line of the section's first header, the line of
    // the answer to a key, and that line again only when it lies beyond the next section's
    // header.
    long SectionLine(long machineNumber) const;
    long AnswerLine(long machineNumber, size_t keySlot) const;
    long AnswerLineInLaterSection(long machineNumber, size_t keySlot) const;
    // With withLines only: the lines longer than kSectionedLineChars, in file order.
    const std::vector<long>& CutLines() const { return m_cutLines; }

  private:
    static constexpr uint32_t kNone = UINT32_MAX;
    // The index grows in blocks that are never moved, each small enough to come from the
    // allocator's free memory rather than from pages mapped afresh for every load: the
    // values in blocks of 64 KiB (a value offset is its block's number, then its position),
    // the answers in blocks of 256 sections.
    static constexpr unsigned kValueBlockBits = 16;
    static constexpr size_t kValueBlockSize = size_t{1} << kValueBlockBits;
    static constexpr unsigned kSectionBlockBits = 8;
    static constexpr size_t kSectionBlockSize = size_t{1} << kSectionBlockBits;

    static const char* ValueAt(const std::vector<char>* valueBlocks, uint32_t offset) {
        return valueBlocks[offset >> kValueBlockBits].data() + (offset & (kValueBlockSize - 1));
    }
    // The answer to the key at slot for the section at order (in order of appearance).
    uint32_t& Answer(size_t order, size_t slot) {
        return m_answerBlocks[order >> kSectionBlockBits]
                             [(order & (kSectionBlockSize - 1)) * m_keys.size() + slot];
    }
    // Keeps value, followed by a NUL, in the value blocks and returns its offset.
    uint32_t KeepValue(std::string_view value);

    uint32_t OrderOf(long machineNumber) const;
    long LineOf(const std::vector<long>& lines, long machineNumber, size_t keySlot) const;

    void ReadFile(const std::string& path);
    void AddLine(std::string_view piece);
    // The key slot whose key is token, or kNone.
    uint32_t KeySlot(std::string_view token) const;
    // Whether key is the token of piece.
    static bool IsTokenOf(std::string_view piece, const std::string& key);
    // n when token is "[Machine-n]" exactly as "%ld" writes n, with n in 1..kMaxMachineSection;
    // otherwise 0.
    static long MachineSectionNumber(std::string_view token);
    void OpenSection(long machineNumber);
    void AnswerPending(uint32_t slot, std::string_view piece);

    std::vector<std::string> m_keys;
    // Key slots by the length of their key, so that a line's token is compared with the few
    // keys of its length only.
    std::vector<std::vector<uint32_t>> m_slotsByLength;
    // Per key slot (and one more for the start of the file): the slot of the key line that
    // followed it the last time, or kNone; and the slot of the latest key line.
    std::vector<uint32_t> m_slotAfter;
    uint32_t m_lastSlot;
    bool m_open = false;
    // Sections in the order their first header line appears, by machine number.
    std::vector<uint32_t> m_sectionsInOrder;
    // Position in m_sectionsInOrder of each machine number that has a header, else kNone.
    std::vector<uint32_t> m_orderOfSection;
    // Per key: the first section in m_sectionsInOrder still waiting for a line with that key.
    std::vector<uint32_t> m_firstPending;
    // Per section (in order of appearance) and key: the offset of its value, or kNone.
    std::vector<std::vector<uint32_t>> m_answerBlocks;
    // The values that answer lookups, each followed by its NUL, and the bytes of the last
    // block in use.
    std::vector<std::vector<char>> m_valueBlocks;
    size_t m_lastBlockUsed = 0;

    bool m_withLines;
    long m_line = 0;                   // the line of the piece being read
    std::vector<long> m_sectionLines;  // per section in order of appearance
    std::vector<long> m_answerLines;   // per section and key: the answer's line, or 0
    std::vector<long> m_laterLines;    // the same where the answer is from later, or 0
    std::vector<long> m_cutLines;
};

}  // namespace qzr::bank

#endif  // QZR_BANK_SECTIONED_SECTIONEDBANKINDEX_H

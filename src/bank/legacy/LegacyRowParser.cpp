#include "bank/legacy/LegacyRowParser.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <QZRMachine/QZRIM.h>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/legacy/LegacyRowNumbers.h"
#include "platform/CNumbers.h"

namespace qzr::legacy {

using bank::LegacyRowLayout;

namespace {

// One trailing numeric field: its place counted back from the last token (1 = last), and the
// setter that takes it ("%lf" for a real, "%d" for an int).
struct TrailingField {
    int fromEnd;
    void (CQZRIM::*setReal)(double);
    void (CQZRIM::*setInt)(int);
};

constexpr TrailingField Real(int fromEnd, void (CQZRIM::*set)(double)) {
    return {fromEnd, set, nullptr};
}
constexpr TrailingField Int(int fromEnd, void (CQZRIM::*set)(int)) {
    return {fromEnd, nullptr, set};
}

// The six fields every layout carries, placed after `shift` newer fields at the row's end.
#define QZR_BASE_FIELDS(shift)                                                                \
    Real((shift) + 1, &CQZRIM::SetScrewStroke), Real((shift) + 2, &CQZRIM::SetScrewDiameter), \
        Real((shift) + 3, &CQZRIM::SetInjectionRate),                                         \
        Real((shift) + 4, &CQZRIM::SetInjectionPressure),                                     \
        Real((shift) + 5, &CQZRIM::SetShotWeight), Real((shift) + 6, &CQZRIM::SetClampingForce)

constexpr std::array<TrailingField, 6> kBaseFields = {{QZR_BASE_FIELDS(0)}};

constexpr std::array<TrailingField, 9> k7003Fields = {{
    Real(1, &CQZRIM::SetNozzleVolume),
    Real(2, &CQZRIM::SetTimeConstIP),
    Real(3, &CQZRIM::SetTimeConstFR),
    QZR_BASE_FIELDS(3),
}};

constexpr std::array<TrailingField, 10> k7004Fields = {{
    Real(1, &CQZRIM::SetMaxPressureSlope),
    Real(2, &CQZRIM::SetNozzleVolume),
    Real(3, &CQZRIM::SetTimeConstIP),
    Real(4, &CQZRIM::SetTimeConstFR),
    QZR_BASE_FIELDS(4),
}};

// Places 1 to 7 of the 7005 layout are the nozzle fields (see ReadNozzleFields).
constexpr int kNozzleFieldCount = 7;
constexpr std::array<TrailingField, 12> k7005Fields = {{
    Real(8, &CQZRIM::SetHydraulicPressureTransferFactor),
    Int(9, &CQZRIM::SetMachineEnergyType),
    Real(10, &CQZRIM::SetMaxPressureSlope),
    Real(11, &CQZRIM::SetNozzleVolume),
    Real(12, &CQZRIM::SetTimeConstIP),
    Real(13, &CQZRIM::SetTimeConstFR),
    QZR_BASE_FIELDS(13),
}};

constexpr std::array<TrailingField, 8> kSystem7007Fields = {{
    Real(1, &CQZRIM::SetHydraulicPressureTransferFactor),
    Int(2, &CQZRIM::SetMachineEnergyType),
    QZR_BASE_FIELDS(2),
}};

#undef QZR_BASE_FIELDS

struct LayoutFields {
    const TrailingField* fields;
    int fieldCount;
    bool hasNozzle;

    int TrailingCount() const { return fieldCount + (hasNozzle ? kNozzleFieldCount : 0); }
};

template <size_t N>
constexpr LayoutFields FieldsOf(const std::array<TrailingField, N>& fields, bool hasNozzle) {
    return {fields.data(), static_cast<int>(N), hasNozzle};
}

LayoutFields FieldsOf(LegacyRowLayout layout) {
    switch (layout) {
        case LegacyRowLayout::kUser7003:
            return FieldsOf(k7003Fields, false);
        case LegacyRowLayout::kUser7004:
            return FieldsOf(k7004Fields, false);
        case LegacyRowLayout::kUser7005:
            return FieldsOf(k7005Fields, true);
        case LegacyRowLayout::kSystem7007:
            return FieldsOf(kSystem7007Fields, false);
        case LegacyRowLayout::kBase:
            break;
    }
    return FieldsOf(kBaseFields, false);
}

// strlen, but looking at no more than maxChars characters (memchr stops at the first match).
size_t BoundedLength(const char* text, size_t maxChars) {
    const void* end = std::memchr(text, '\0', maxChars);
    return end == nullptr ? maxChars : static_cast<size_t>(static_cast<const char*>(end) - text);
}

// ID, maker and grade come before the trailing fields.
constexpr int kLeadingTokens = 3;

// The row split as strtok splits it with the delimiters ",\n": a run of delimiters separates
// two tokens, and none stands at either end, so an empty field gives no token and the fields
// after it move one place forward. Tokens keep their blanks (and a carriage return).
//
// The split, like every search on a row, works on bytes whatever locale the host has set, so
// that a bank loads into the same catalogue on every host. The DLL's tokenizer stepped over
// the double-byte characters of the host's code page, but none of those code pages (nor
// UTF-8) uses ',' or '\n' inside a character, so well-formed text splits the same. Where the
// two can differ is a byte search that matches from the middle of a double-byte character:
// a grade of one Latin letter equal to the trail byte of a double-byte maker name.
class RowTokens {
  public:
    // At most 1023 characters hold at most 512 tokens (a character and a delimiter each).
    static constexpr int kMaxTokens = static_cast<int>((kOldRowMaxChars + 1) / 2);

    RowTokens(const char* row, size_t length) {
        std::memcpy(m_text, row, length);
        m_text[length] = '\0';  // the end mark the loops below stop at
        char* p = m_text;
        for (;;) {
            while (*p == ',' || *p == '\n') {
                *p++ = '\0';
            }
            if (*p == '\0' || m_count == kMaxTokens) {
                break;
            }
            const char* start = p;
            while (!kEndsToken[static_cast<unsigned char>(*p)]) {
                ++p;
            }
            m_start[m_count] = static_cast<uint16_t>(start - m_text);
            m_length[m_count] = static_cast<uint16_t>(p - start);
            ++m_count;
            if (*p == '\0') {
                break;
            }
            *p++ = '\0';
        }
    }

    int Count() const { return m_count; }
    // The token at a 0-based position; a NUL-terminated text.
    const char* Token(int index) const { return m_text + m_start[index]; }
    size_t Length(int index) const { return m_length[index]; }
    size_t Start(int index) const { return m_start[index]; }
    // The token at a place counted back from the last one (1 = last).
    const char* FromEnd(int place) const { return Token(m_count - place); }

  private:
    // The two delimiters and the end mark.
    static constexpr std::array<bool, 256> kEndsToken = [] {
        std::array<bool, 256> ends{};
        ends[static_cast<unsigned char>(',')] = true;
        ends[static_cast<unsigned char>('\n')] = true;
        ends[0] = true;
        return ends;
    }();

    char m_text[kOldRowMaxChars + 1];
    uint16_t m_start[kMaxTokens];
    uint16_t m_length[kMaxTokens];
    int m_count = 0;
};

void ReadTrailingFields(const RowTokens& tokens, const LayoutFields& layout, CQZRIM& machine) {
    for (int i = 0; i < layout.fieldCount; ++i) {
        const TrailingField& field = layout.fields[i];
        const char* token = tokens.FromEnd(field.fromEnd);
        if (field.setReal != nullptr) {
            double value = 0.0;
            if (platform::ScanDouble(token, &value)) {
                (machine.*field.setReal)(value);
            }
        } else {
            int value = 0;
            if (platform::ScanInt(token, &value)) {
                (machine.*field.setInt)(value);
            }
        }
    }
}

// The seven nozzle fields of the 7005 layout: Type seventh from the end, then Value1 to
// Value6. They fill a fresh NozzleSpecification, so a member whose field does not convert is 0
// whatever the record held, and it replaces the record's own as a whole.
void ReadNozzleFields(const RowTokens& tokens, CQZRIM& machine) {
    NozzleSpecification nozzle;
    platform::ScanInt(tokens.FromEnd(7), &nozzle.Type);
    double* const values[] = {&nozzle.Value1, &nozzle.Value2, &nozzle.Value3,
                              &nozzle.Value4, &nozzle.Value5, &nozzle.Value6};
    for (int i = 0; i < 6; ++i) {
        platform::ScanDouble(tokens.FromEnd(6 - i), values[i]);
    }
    machine.SetNozzleSpecification(nozzle);
}

// The shot volume is not in the bank: it is the screw's swept volume in cm3, with the DLL's
// constant (a little below pi/4), rounded to four significant digits as the DLL printed and
// read it back.
double DerivedShotVolume(const CQZRIM& machine) {
    const double product = machine.GetScrewDiameter() * 0.7853975 * machine.GetScrewDiameter() *
                           machine.GetScrewStroke() * 0.001;
    return RoundToFourDigits(product);
}

// The remark is recovered from the row text, not from the tokens, so that its own commas,
// blanks and empty fields survive. The DLL cut a copy of the row back from its end, field by
// field, at the last occurrence of each trailing token; since a token holds no delimiter, the
// last occurrence is always the field itself, and the cuts end the copy just before the
// delimiter that precedes the first trailing field. The ID, maker and grade are then removed
// up to the first occurrence of the grade text (which may lie inside the ID or the maker, as
// in the DLL), moved past the maker when maker and grade are the same text.
void SetRecoveredRemark(const char* row, const RowTokens& tokens, int trailingCount,
                        CQZRIM& machine) {
    const int firstTrailing = tokens.Count() - trailingCount;
    const std::string_view kept(row, tokens.Start(firstTrailing) - 1);
    const std::string_view maker(tokens.Token(1), tokens.Length(1));
    const std::string_view grade(tokens.Token(2), tokens.Length(2));

    size_t gradeAt = kept.find(grade);  // always found: the grade field itself lies in `kept`
    if (gradeAt == std::string_view::npos) {
        gradeAt = kept.size();
    }
    if (maker == grade) {
        gradeAt += maker.size() + 1;
    }
    const size_t removed = gradeAt + grade.size() + 1;

    char remark[kOldRowMaxChars + 1];
    size_t length = 0;
    if (removed < kept.size()) {
        length = kept.size() - removed;
        std::memcpy(remark, kept.data() + removed, length);
    }
    remark[length] = '\0';
    machine.SetRemark(remark);
}

}  // namespace

int TrailingFieldCount(LegacyRowLayout layout) {
    return FieldsOf(layout).TrailingCount();
}

int FewestTokens(LegacyRowLayout layout) {
    return kLeadingTokens + TrailingFieldCount(layout);
}

bool ParseOldRow(const char* row, LegacyRowLayout layout, CQZRIM& machine) {
    if (row == nullptr) {
        return false;
    }
    // A longer row is cut at the DLL's work buffer, for the tokens and the remark alike.
    const size_t length = BoundedLength(row, kOldRowMaxChars);
    const RowTokens tokens(row, length);
    const LayoutFields fields = FieldsOf(layout);
    const int trailingCount = fields.TrailingCount();
    if (tokens.Count() < kLeadingTokens + trailingCount) {
        return false;
    }

    ReadTrailingFields(tokens, fields, machine);
    if (fields.hasNozzle) {
        ReadNozzleFields(tokens, machine);
    }
    machine.SetMaker(tokens.Token(1));
    machine.SetGrade(tokens.Token(2));
    machine.SetShotVolume(DerivedShotVolume(machine));
    SetRecoveredRemark(row, tokens, trailingCount, machine);
    return true;
}

}  // namespace qzr::legacy

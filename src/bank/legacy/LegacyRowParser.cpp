#include "bank/legacy/LegacyRowParser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <QZRMachine/QZRIM.h>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/legacy/LegacyColumns.h"
#include "bank/legacy/LegacyRowNumbers.h"
#include "platform/CNumbers.h"
#include "platform/EightBytes.h"
#include "platform/ShortDecimal.h"

#if defined(__SSE2__) || defined(_M_X64) || defined(_M_AMD64)
#include <emmintrin.h>
#define QZR_ROW_SPLIT_SSE2
#endif

namespace qzr::legacy {

using bank::LegacyRowLayout;

namespace {

// ID, maker and grade come before the trailing fields.
constexpr int kLeadingTokens = 3;

// Whether the rows of a layout hold the columns a group added.
constexpr bool HoldsGroup(LegacyRowLayout layout, records::LegacyGroup group) {
    switch (group) {
        case records::kEveryLayout:
            return true;
        case records::kSince7003:
            return layout == LegacyRowLayout::kUser7003 || layout == LegacyRowLayout::kUser7004 ||
                   layout == LegacyRowLayout::kUser7005;
        case records::kSince7004:
            return layout == LegacyRowLayout::kUser7004 || layout == LegacyRowLayout::kUser7005;
        case records::kMachineKind:
            return layout == LegacyRowLayout::kUser7005 || layout == LegacyRowLayout::kSystem7007;
        case records::kNozzle:
            return layout == LegacyRowLayout::kUser7005;
        case records::kLeading:
        case records::kNotInLegacyRows:
            break;
    }
    return false;
}

// One trailing field of a layout: its place counted back from the last token (1 = last).
struct TrailingField {
    int fromEnd;
    LegacyField field;
};

// A leading column filled from the token of its number (maker and grade, after the ID).
struct TokenField {
    int token;
    const records::FieldDescriptor<CQZRIM>* field;
};

// What a row of the layout holds besides its trailing numbers, and the labels of those for a
// watched load (ReadTrailingFields reads them, laid out while compiling).
struct LayoutFields {
    std::vector<TrailingField> trailing;  // in column order
    std::vector<TokenField> fromTokens;
    // The column after the leading tokens holds the remark, recovered from the row text.
    const records::FieldDescriptor<CQZRIM>* remark = nullptr;

    int TrailingCount() const { return static_cast<int>(trailing.size()); }
};

LayoutFields BuildLayoutFields(LegacyRowLayout layout) {
    LayoutFields fields;
    for (const LegacyField& column : LegacyColumns()) {
        const records::LegacyColumn& place = column.Column();
        if (place.group == records::kLeading && place.column < kLeadingTokens) {
            fields.fromTokens.push_back({place.column, column.record});
        } else if (place.group == records::kLeading && place.column == kLeadingTokens) {
            fields.remark = column.record;
        } else if (HoldsGroup(layout, place.group)) {
            fields.trailing.push_back({0, column});
        }
    }
    for (int i = 0; i < fields.TrailingCount(); ++i) {
        fields.trailing[static_cast<size_t>(i)].fromEnd = fields.TrailingCount() - i;
    }
    return fields;
}

constexpr LegacyRowLayout kLayouts[] = {LegacyRowLayout::kBase, LegacyRowLayout::kUser7003,
                                        LegacyRowLayout::kUser7004, LegacyRowLayout::kUser7005,
                                        LegacyRowLayout::kSystem7007};

const LayoutFields& FieldsOf(LegacyRowLayout layout) {
    static const std::vector<LayoutFields> kByLayout = [] {
        std::vector<LayoutFields> byLayout(std::size(kLayouts));
        for (const LegacyRowLayout each : kLayouts) {
            byLayout[static_cast<size_t>(each)] = BuildLayoutFields(each);
        }
        return byLayout;
    }();
    return kByLayout[static_cast<size_t>(layout)];
}

// One bit for each of 64 bytes from p that is a ',' or a '\n' (bit i for byte i), sixteen
// bytes at a time where the processor has SSE2.
uint64_t DelimiterBits(const char* p) {
    uint64_t bits = 0;
#if defined(QZR_ROW_SPLIT_SSE2)
    const __m128i comma = _mm_set1_epi8(',');
    const __m128i lineFeed = _mm_set1_epi8('\n');
    for (int part = 0; part < 4; ++part) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * part));
        const __m128i found =
            _mm_or_si128(_mm_cmpeq_epi8(bytes, comma), _mm_cmpeq_epi8(bytes, lineFeed));
        bits |= static_cast<uint64_t>(static_cast<uint16_t>(_mm_movemask_epi8(found)))
                << (16 * part);
    }
#else
    for (int i = 0; i < 64; ++i) {
        bits |= static_cast<uint64_t>(p[i] == ',' || p[i] == '\n') << i;
    }
#endif
    return bits;
}

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
//
// The delimiters are found 64 bytes at a time, as a bit mask, rather than byte by byte.
class RowTokens {
  public:
    // At most 1023 characters hold at most 512 tokens (a character and a delimiter each).
    static constexpr int kMaxTokens = static_cast<int>((kOldRowMaxChars + 1) / 2);

    // row holds no NUL among its first length characters.
    RowTokens(const char* row, size_t length) {
        std::memset(m_buffer, 0, kFront);
        char* const text = m_buffer + kFront;
        std::memcpy(text, row, length);
        std::memset(text + length, 0, kBlock);  // a NUL ends the last token; no delimiter
        size_t start = 0;                       // of the token being read
        for (size_t block = 0; block < length; block += kBlock) {
            for (uint64_t bits = DelimiterBits(text + block); bits != 0; bits &= bits - 1) {
                const size_t delimiter = block + static_cast<size_t>(platform::LowestSetBit(bits));
                text[delimiter] = '\0';
                Take(start, delimiter);
                start = delimiter + 1;
            }
        }
        Take(start, length);
    }

    int Count() const { return m_count; }
    // The token at a 0-based position; a NUL-terminated text.
    const char* Token(int index) const { return m_buffer + kFront + m_start[index]; }
    size_t Length(int index) const { return m_length[index]; }
    size_t Start(int index) const { return m_start[index]; }
    // The token at a place counted back from the last one (1 = last).
    const char* FromEnd(int place) const { return Token(m_count - place); }
    size_t LengthFromEnd(int place) const { return Length(m_count - place); }

  private:
    static constexpr size_t kBlock = 64;
    // Room before the row, so that the 16 bytes ending with any token's last can be read.
    static constexpr size_t kFront = 16;

    // The characters from start up to end, unless there are none.
    void Take(size_t start, size_t end) {
        if (end > start && m_count < kMaxTokens) {
            m_start[m_count] = static_cast<uint16_t>(start);
            m_length[m_count] = static_cast<uint16_t>(end - start);
            ++m_count;
        }
    }

    // Room for the row, its NUL and the rest of its last block of 64 bytes, after kFront.
    char m_buffer[kFront + kOldRowMaxChars + 1 + kBlock];
    uint16_t m_start[kMaxTokens];
    uint16_t m_length[kMaxTokens];
    int m_count = 0;
};

// "%lf" for a real, "%d" for an integer, handed to set; false, with set not called, when the
// token does not convert. The token lies in the row buffer of RowTokens, with room around it.
template <records::FieldType type, class Set>
bool ReadToken(const char* token, size_t length, Set set) {
    if constexpr (type == records::FieldType::kReal) {
        double value = 0.0;
        if (!platform::ScanDoubleToken(token, length, &value)) {
            return false;
        }
        set(value);
    } else if constexpr (type == records::FieldType::kInteger) {
        int value = 0;
        if (!platform::ScanIntToken(token, length, &value)) {
            return false;
        }
        set(value);
    } else {
        set(token);
    }
    return true;
}

// The readers of each list, by list index + 1: a field from its token.
#define QZR_PASSED(Type) records::FieldValue<records::FieldType::k##Type>::Passed
#define QZR_RECORD_READER(Name, Type, ...)                                        \
    , [](CQZRIM& m, const char* token, size_t length) {                           \
        return ReadToken<records::FieldType::k##Type>(                            \
            token, length, [&m](QZR_PASSED(Type) value) { m.Set##Name(value); }); \
    }
#define QZR_NOZZLE_READER(Name, Type, ...)                                    \
    , [](NozzleSpecification& n, const char* token, size_t length) {          \
        return ReadToken<records::FieldType::k##Type>(                        \
            token, length, [&n](QZR_PASSED(Type) value) { n.Name = value; }); \
    }
constexpr auto kCommonReaders = std::make_tuple(0 QZR_COMMON_FIELDS(QZR_RECORD_READER));
constexpr auto kIMMReaders = std::make_tuple(0 QZR_IMM_FIELDS(QZR_RECORD_READER));
constexpr auto kNozzleReaders = std::make_tuple(0 QZR_NOZZLE_FIELDS(QZR_NOZZLE_READER));
#undef QZR_PASSED
#undef QZR_RECORD_READER
#undef QZR_NOZZLE_READER

// The trailing columns of a layout, in column order, while compiling.
template <LegacyRowLayout layout>
struct TrailingPlan {
    static constexpr size_t kCount = [] {
        size_t count = 0;
        for (const ColumnPlace& place : kRowColumns) {
            count += HoldsGroup(layout, ColumnAt(place).group) ? 1 : 0;
        }
        return count;
    }();
    static constexpr std::array<ColumnPlace, kCount> kPlaces = [] {
        std::array<ColumnPlace, kCount> places{};
        size_t count = 0;
        for (const ColumnPlace& place : kRowColumns) {
            if (HoldsGroup(layout, ColumnAt(place).group)) {
                places[count++] = place;
            }
        }
        return places;
    }();
    static constexpr bool kHasNozzle = [] {
        for (const ColumnPlace& place : kPlaces) {
            if (place.list == TableList::kNozzle) {
                return true;
            }
        }
        return false;
    }();
    static_assert(kCount <= 32, "the positions that did not convert are bits of a uint32_t");
};

template <LegacyRowLayout layout, size_t position>
bool ReadColumn(const RowTokens& tokens, CQZRIM& machine, NozzleSpecification& nozzle) {
    using Plan = TrailingPlan<layout>;
    constexpr ColumnPlace place = Plan::kPlaces[position];
    constexpr int fromEnd = static_cast<int>(Plan::kCount - position);
    const char* token = tokens.FromEnd(fromEnd);
    const size_t length = tokens.LengthFromEnd(fromEnd);
    if constexpr (place.list == TableList::kCommon) {
        return std::get<place.index + 1>(kCommonReaders)(machine, token, length);
    } else if constexpr (place.list == TableList::kIMM) {
        return std::get<place.index + 1>(kIMMReaders)(machine, token, length);
    } else {
        return std::get<place.index + 1>(kNozzleReaders)(nozzle, token, length);
    }
}

// Fills the trailing fields; a record field whose token does not convert keeps its value. The
// nozzle fields fill a fresh NozzleSpecification, so a member whose token does not convert is
// 0 whatever the record held, and it replaces the record's own as a whole. Returns the
// positions among the trailing fields of the tokens that did not convert.
template <LegacyRowLayout layout, size_t... positions>
uint32_t ReadTrailing(const RowTokens& tokens, CQZRIM& machine, std::index_sequence<positions...>) {
    NozzleSpecification nozzle;
    uint32_t notConverted = 0;
    ((notConverted |= ReadColumn<layout, positions>(tokens, machine, nozzle)
                          ? uint32_t{0}
                          : uint32_t{1} << positions),
     ...);
    if constexpr (TrailingPlan<layout>::kHasNozzle) {
        machine.SetNozzleSpecification(nozzle);
    }
    return notConverted;
}

template <LegacyRowLayout layout>
uint32_t ReadTrailingOf(const RowTokens& tokens, CQZRIM& machine) {
    return ReadTrailing<layout>(tokens, machine,
                                std::make_index_sequence<TrailingPlan<layout>::kCount>());
}

uint32_t ReadTrailingFields(const RowTokens& tokens, LegacyRowLayout layout, CQZRIM& machine) {
    switch (layout) {
        case LegacyRowLayout::kUser7003:
            return ReadTrailingOf<LegacyRowLayout::kUser7003>(tokens, machine);
        case LegacyRowLayout::kUser7004:
            return ReadTrailingOf<LegacyRowLayout::kUser7004>(tokens, machine);
        case LegacyRowLayout::kUser7005:
            return ReadTrailingOf<LegacyRowLayout::kUser7005>(tokens, machine);
        case LegacyRowLayout::kSystem7007:
            return ReadTrailingOf<LegacyRowLayout::kSystem7007>(tokens, machine);
        case LegacyRowLayout::kBase:
            break;
    }
    return ReadTrailingOf<LegacyRowLayout::kBase>(tokens, machine);
}

void ReportNotConverted(const RowWatch& watch, const RowTokens& tokens, const LayoutFields& layout,
                        uint32_t notConverted) {
    for (size_t i = 0; i < layout.trailing.size(); ++i) {
        if ((notConverted >> i & 1) != 0) {
            const TrailingField& trailing = layout.trailing[i];
            watch.observer->OnFieldNotConverted({watch.path, watch.line, 0, trailing.field.Label(),
                                                 tokens.FromEnd(trailing.fromEnd)});
        }
    }
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
                        const records::FieldDescriptor<CQZRIM>& remarkField, CQZRIM& machine) {
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
    remarkField.setText(machine, remark);
}

// Maker and grade from the tokens after the ID, the remark from the row text.
void SetLeadingFields(const char* row, const RowTokens& tokens, const LayoutFields& fields,
                      CQZRIM& machine) {
    for (const TokenField& leading : fields.fromTokens) {
        leading.field->setText(machine, tokens.Token(leading.token));
    }
    machine.SetShotVolume(DerivedShotVolume(machine));
    if (fields.remark != nullptr) {
        SetRecoveredRemark(row, tokens, fields.TrailingCount(), *fields.remark, machine);
    }
}

}  // namespace

bool ParseOldRow(std::string_view row, LegacyRowLayout layout, CQZRIM& machine,
                 const RowWatch* watch) {
    // A longer row is cut at the DLL's work buffer, for the tokens and the remark alike.
    const size_t length = std::min(row.size(), kOldRowMaxChars);
    const RowTokens tokens(row.data(), length);
    const LayoutFields& fields = FieldsOf(layout);
    if (tokens.Count() < kLeadingTokens + fields.TrailingCount()) {
        return false;
    }

    const uint32_t notConverted = ReadTrailingFields(tokens, layout, machine);
    if (watch != nullptr && notConverted != 0) {
        ReportNotConverted(*watch, tokens, fields, notConverted);
    }
    SetLeadingFields(row.data(), tokens, fields, machine);
    return true;
}

}  // namespace qzr::legacy

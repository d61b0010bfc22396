// Writing a catalogue as a legacy tabular user bank. The writer always writes version 7007
// with its rows in the 7005 layout, whatever version the catalogue came from, so that older
// hosts reading "user-pro.bnk" get the layout they expect.
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "bank/BankKind.h"
#include "bank/CatalogueWalk.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "bank/SaveProtocol.h"
#include "bank/legacy/LegacyColumns.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "platform/CNumbers.h"
#include "platform/ShortFixed.h"
#include "platform/TextWriter.h"

using qzr::catalogue::CQZRMoldingMachineCtrlAccess;

namespace qzr::legacy {

using bank::BankKind;
using bank::CQZRMoldingMachineWriter;
using bank::OldIMMUserBank;

namespace {

// Version 9000 and above is the sectioned format; format 1 a user bank; type 0 injection
// moulding, the only kind this format holds.
bool IsOldUserBankOfIMM(const CQZRMoldingMachineCtrl& catalogue) {
    return catalogue.GetFileVersion() < 9000 && catalogue.GetFileFormat() == 1 &&
           catalogue.GetFileType() == 0;
}

// The header, the column titles and units of the writer's row (no reader looks at those),
// and the rows' marker.
std::string OldUserBankHead() {
    std::string titles = "ID,";
    std::string units = "Unit,";
    for (const LegacyField& column : LegacyColumns()) {
        if (const char* title = column.Column().title) {
            titles += title;
            titles += ',';
            units += column.Unit();
            units += ',';
        }
    }
    return "[Header]\n"
           "Version,7007\n"
           "\n"
           "[Format]\n" +
           titles + "\n" + units +
           "\n"
           "\n"
           "[Database]\n";
}

// Every row has ID 1: the user-bank reader takes no other. Texts go out as they stand, so a
// comma in a maker or grade, or a line end in any text, breaks the row for the reader.
//
// The row holds every column of the field table in column order: texts as "%s", integers as
// "%d", reals as "%6.2f" or, where the table says so, "%lg", put together field by field
// (platform/CNumbers.h writes each number as that format would). The time constants ("%lg")
// take two exponent digits when they need an exponent, as C99 has it ("1e-05" here, "1e-005"
// from the DLL); the readers take both.
//
// The columns are laid out while compiling (kRowColumns), so that each value is fetched by a
// direct call of its accessor: a save writes tens of columns for each of many rows.
// The getters of each list, by list index + 1.
#define QZR_RECORD_GETTER(Name, ...) , [](const CQZRIM& m) { return m.Get##Name(); }
#define QZR_NOZZLE_GETTER(Name, ...) , [](const NozzleSpecification& n) { return n.Name; }
constexpr auto kCommonGetters = std::make_tuple(0 QZR_COMMON_FIELDS(QZR_RECORD_GETTER));
constexpr auto kIMMGetters = std::make_tuple(0 QZR_IMM_FIELDS(QZR_RECORD_GETTER));
constexpr auto kNozzleGetters = std::make_tuple(0 QZR_NOZZLE_FIELDS(QZR_NOZZLE_GETTER));
#undef QZR_RECORD_GETTER
#undef QZR_NOZZLE_GETTER

template <size_t position>
auto ColumnValue(const CQZRIM& machine, const NozzleSpecification& nozzle) {
    constexpr ColumnPlace place = kRowColumns[position];
    if constexpr (place.list == TableList::kCommon) {
        return std::get<place.index + 1>(kCommonGetters)(machine);
    } else if constexpr (place.list == TableList::kIMM) {
        return std::get<place.index + 1>(kIMMGetters)(machine);
    } else {
        return std::get<place.index + 1>(kNozzleGetters)(nozzle);
    }
}

template <size_t position>
constexpr bool kIsTextColumn =
    std::is_same_v<decltype(ColumnValue<position>(std::declval<const CQZRIM&>(),
                                                  std::declval<const NozzleSpecification&>())),
                   const char*>;

// The texts lead the row (maker, grade, remark); the numbers follow them.
template <size_t... positions>
constexpr size_t CountLeadingTexts(std::index_sequence<positions...>) {
    size_t count = 0;
    bool leading = true;
    ((leading = leading && kIsTextColumn<positions>, count += leading ? 1 : 0), ...);
    return count;
}
constexpr size_t kTextColumns = CountLeadingTexts(std::make_index_sequence<kColumnCount>());
constexpr size_t kNumberColumns = kColumnCount - kTextColumns;

template <size_t... positions>
constexpr bool NoTextAmongNumbers(std::index_sequence<positions...>) {
    return !(kIsTextColumn<kTextColumns + positions> || ...);
}
static_assert(NoTextAmongNumbers(std::make_index_sequence<kNumberColumns>()),
              "the row writer takes the texts before the numbers");

template <records::LegacyNumber>
char* WriteNumber(int value, char* out) {
    return platform::WriteD(value, out);
}
template <records::LegacyNumber number>
char* WriteNumber(double value, char* out) {
    if constexpr (number == records::LegacyNumber::kGeneral) {
        return platform::WriteLg(value, out);
    } else {
        return platform::WriteWidth6Fixed2Inline(value, out);
    }
}

// Each text may hold a line feed, which Write turns into CR LF; the numbers and the line end
// cannot, and go into one stretch of the buffer reserved for the longest they could be.
void WriteText(platform::TextWriter& out, const char* text) {
    out.WriteVerbatim(",");
    if (text != nullptr) {
        out.Write(text);
    }
}

template <class Values, size_t... positions>
void WriteTexts(platform::TextWriter& out, const Values& values,
                std::index_sequence<positions...>) {
    (WriteText(out, std::get<positions>(values)), ...);
}

template <class Values, size_t... positions>
void WriteNumbersAndLineEnd(platform::TextWriter& out, const Values& values,
                            std::index_sequence<positions...>) {
    constexpr size_t kRoom = kNumberColumns * (1 + platform::kLongestNumber) + 2;
    char* p = out.Reserve(kRoom);
    ((*p++ = ',', p = WriteNumber<ColumnAt(kRowColumns[kTextColumns + positions]).number>(
                      std::get<kTextColumns + positions>(values), p)),
     ...);
    p[0] = '\r';
    p[1] = '\n';
    out.Commit(p + 2);
}

// All values are fetched before any is written, so that the record's memory is read in one go
// rather than between the number conversions.
template <size_t... positions>
void WriteRow(platform::TextWriter& out, const CQZRIM& machine, std::index_sequence<positions...>) {
    const NozzleSpecification& nozzle = machine.GetNozzleSpecification();
    const auto values = std::make_tuple(ColumnValue<positions>(machine, nozzle)...);
    out.WriteVerbatim("1");
    WriteTexts(out, values, std::make_index_sequence<kTextColumns>());
    WriteNumbersAndLineEnd(out, values, std::make_index_sequence<kNumberColumns>());
}

void WriteRow(platform::TextWriter& out, const CQZRIM& machine) {
    WriteRow(out, machine, std::make_index_sequence<kColumnCount>());
}

// Every injection-moulding machine in catalogue order; an index that falls on a machine of a
// transfer-moulding group is not handed out as a CQZRIM and gets no row.
void WriteOldUserBank(platform::TextWriter& out, const CQZRMoldingMachineCtrl& catalogue) {
    out.Write(OldUserBankHead());
    bank::CatalogueWalk(catalogue).ForEachMachine<CQZRIM>(
        [&out](int, const CQZRIM& machine) { WriteRow(out, machine); });
    out.Write("[EOF]\n");
}

}  // namespace

}  // namespace qzr::legacy

namespace qzr::bank {

bool CQZRMoldingMachineWriter::WriteOldIMMUserDatabase(
    const char* folder, const CQZRMoldingMachineCtrl* catalogue) const {
    if (folder == nullptr || catalogue == nullptr ||
        CQZRMoldingMachineCtrlAccess::Store(*catalogue) == nullptr ||
        !legacy::IsOldUserBankOfIMM(*catalogue)) {
        return false;
    }
    char target[kPathBufferSize];
    if (!GetDefaultBankPath(folder, OldIMMUserBank, target)) {
        return false;
    }
    return SaveBankFile(target, [catalogue](qzr::platform::TextWriter& out) {
        legacy::WriteOldUserBank(out, *catalogue);
    });
}

}  // namespace qzr::bank

// Reading one row of a legacy tabular bank into an injection-moulding record.
//
// A row is "ID,Maker,Grade,Remark...,trailing numeric fields": the trailing fields are found
// by counting back from the end of the row, because the remark may hold commas of its own.
#ifndef QZR_BANK_LEGACY_LEGACYROWPARSER_H
#define QZR_BANK_LEGACY_LEGACYROWPARSER_H

#include <cstddef>
#include <string_view>

#include <QZRMachine/QZRIM.h>

#include "bank/LoadObserver.h"
#include "bank/legacy/LegacyRowLayout.h"

namespace qzr::legacy {

// The rows were read into a buffer of 1024 bytes: a row counts up to its first NUL or its
// 1023rd character, whichever comes first.
constexpr size_t kOldRowMaxChars = 1023;

// Where a watched load hears of the row's values that do not convert to their numbers.
struct RowWatch {
    bank::LoadObserver* observer;
    std::string_view path;
    long line;
};

// Fills machine from row (which holds no NUL), the layout's columns as the field table gives
// them. False, with machine unchanged, when the row has too few tokens. With a watch, each
// trailing value that does not convert is told to its observer.
bool ParseOldRow(std::string_view row, bank::LegacyRowLayout layout, CQZRIM& machine,
                 const RowWatch* watch = nullptr);

}  // namespace qzr::legacy

#endif  // QZR_BANK_LEGACY_LEGACYROWPARSER_H

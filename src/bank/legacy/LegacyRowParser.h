// Reading one row of a legacy tabular bank into an injection-moulding record.
//
// A row is "ID,Maker,Grade,Remark...,trailing numeric fields": the trailing fields are found
// by counting back from the end of the row, because the remark may hold commas of its own.
#ifndef QZR_BANK_LEGACY_LEGACYROWPARSER_H
#define QZR_BANK_LEGACY_LEGACYROWPARSER_H

#include <cstddef>

#include <QZRMachine/QZRIM.h>

#include "bank/legacy/LegacyRowLayout.h"

namespace qzr::legacy {

// The rows were read into a buffer of 1024 bytes: a row counts up to its first NUL or its
// 1023rd character, whichever comes first.
constexpr size_t kOldRowMaxChars = 1023;

// Number of trailing numeric fields of a layout, and the fewest tokens a row of it needs (ID,
// maker and grade before them).
int TrailingFieldCount(bank::LegacyRowLayout layout);
int FewestTokens(bank::LegacyRowLayout layout);

// Fills machine from row. False, with machine unchanged, when the row has too few tokens.
bool ParseOldRow(const char* row, bank::LegacyRowLayout layout, CQZRIM& machine);

}  // namespace qzr::legacy

#endif  // QZR_BANK_LEGACY_LEGACYROWPARSER_H

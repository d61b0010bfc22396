// The library's one rule for deciding whether two maker or grade names are the same: both must
// be present and, lower-cased under the current locale, have the same length and the same bytes.
// Case is ignored; blanks, punctuation and everything else count. The records' comparisons and
// every maker and grade lookup of the catalogue go through it.
#ifndef QZR_RECORDS_NAMERULE_H
#define QZR_RECORDS_NAMERULE_H

#include <string>
#include <string_view>

namespace qzr::records {

// False when either text is null, even when both are.
bool NamesEqual(const char* first, const char* second);

// The text that two present names share exactly when NamesEqual holds for them: the name
// lower-cased under the current locale (the same folding NamesEqual compares). A table keyed by
// it answers NamesEqual lookups; it is good only while the locale stays the one it was built in
// (see platform::FoldingLocaleName).
std::string NameKey(std::string_view name);

}  // namespace qzr::records

#endif  // QZR_RECORDS_NAMERULE_H

// Lower-casing for name comparison: A-Z always fold to a-z; other bytes follow the C library's
// current locale (a multibyte character is stepped over whole and never changed, a single-byte
// character is folded with tolower). In the "C" locale this is plain ASCII folding.
#ifndef QZR_PLATFORM_CASEFOLDING_H
#define QZR_PLATFORM_CASEFOLDING_H

#include <string>
#include <string_view>

namespace qzr::platform {

std::string FoldCase(std::string_view text);
void FoldCaseInPlace(std::string* text);

// The name of the character-type locale FoldCase follows on the calling thread (the thread's
// own locale where one is set, else the process's). Two calls that give equal names fold every
// text alike, so a table of folded texts stays good while the name stays the same. Null when
// the platform cannot tell; such a table must then not be trusted. The text is the C library's
// and may change with the next locale call: copy it to keep it.
const char* FoldingLocaleName();

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_CASEFOLDING_H

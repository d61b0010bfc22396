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

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_CASEFOLDING_H

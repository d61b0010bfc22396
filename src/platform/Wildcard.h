// Pure rules of folder enumeration, shared by every platform's Env (and by qzrbank, which
// builds this file in to find bank names as the library does).
#ifndef QZR_PLATFORM_WILDCARD_H
#define QZR_PLATFORM_WILDCARD_H

#include <string>
#include <string_view>
#include <vector>

namespace qzr::platform {

// '*' matches any run of characters, '?' any one; case-insensitive.
bool WildcardMatch(std::string_view pattern, std::string_view name);
// NTFS listing order: names upper-cased, then compared byte by byte.
bool NtfsNameLess(std::string_view first, std::string_view second);
// Sorts names in NTFS listing order; names that only a case-sensitive file system can hold
// side by side (equal once upper-cased) follow in byte order, so the result is deterministic.
void SortInNtfsOrder(std::vector<std::string>* names);
// The entry of a folder that stands for `name`, as Windows finds names: the entry of exactly
// that name; else, among the entries whose names differ from it only in ASCII letter case, the
// first in NTFS listing order. Null when there is none.
const std::string* FindEntryIgnoringCase(std::string_view name,
                                         const std::vector<std::string>& entries);
// The pattern's text up to and including its last separator ('\\' or '/'); empty if none.
std::string PatternFolder(std::string_view pattern);
// The pattern's last component (the part holding the wildcards).
std::string PatternName(std::string_view pattern);

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_WILDCARD_H

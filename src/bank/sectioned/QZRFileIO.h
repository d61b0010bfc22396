// CQZRFileIO: looks values up in a sectioned bank file by section name and key.
//
// This is the straightforward lookup the sectioned banks were defined by: every lookup opens
// the file again, scans it from its first line and closes it, so a change to the file between
// two lookups is seen by the second. The loaders answer a whole load from one reading of the
// file instead (SectionedBankIndex); this class stays as the reference that index is tested
// against, and serves the few lookups of header recognition.
#ifndef QZR_BANK_SECTIONED_QZRFILEIO_H
#define QZR_BANK_SECTIONED_QZRFILEIO_H

#include <string>

namespace qzr::platform {
class TextLineReader;
}

namespace qzr::bank {

class CQZRFileIO {
  public:
    // Results of a lookup.
    static constexpr int kFound = 1;
    static constexpr int kCannotOpen = 0;
    static constexpr int kNotFound = -1;

    CQZRFileIO();
    virtual ~CQZRFileIO();

    // Checks that the path can be opened for reading and remembers it for the lookups. False
    // (and no path remembered) when it cannot be opened.
    bool OpenFile(const char* path);

    // Section names are given with their brackets ("[FileHeader]"). On kFound, *value points
    // to the value text in the value buffer that all lookups of the process share: it stays
    // valid until the next lookup by any object, so callers copy it at once. Otherwise *value
    // is untouched.
    int GetKeyString(const char* section, const char* key, const char** value) const;
    // The same lookup, the value read with "%d". A value that is empty or does not begin with
    // a number still gives kFound but leaves *value untouched; *converted (when given) tells
    // the two cases apart.
    int GetKeyInt(const char* section, const char* key, int* value,
                  bool* converted = nullptr) const;

  private:
    // The first-match walk: the key search starts at the line after the FIRST line whose token
    // is the section name and runs to the end of the file, past later section headers. On
    // success *keyLine holds the key's line as it was read.
    static bool FindKeyLine(qzr::platform::TextLineReader& file, const char* section,
                            const char* key, std::string* keyLine);

    // A copy of the caller's path (the caller need not keep its text alive).
    std::string m_path;
    bool m_hasPath = false;
};

}  // namespace qzr::bank

#endif  // QZR_BANK_SECTIONED_QZRFILEIO_H

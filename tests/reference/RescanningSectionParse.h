// The straightforward way to read one machine section: every key looked up with CQZRFileIO,
// which reopens and rescans the file for each. Loads answer the same lookups from one reading
// (SectionedBankIndex); the tests hold them to this.
#ifndef QZR_TESTS_REFERENCE_RESCANNINGSECTIONPARSE_H
#define QZR_TESTS_REFERENCE_RESCANNINGSECTIONPARSE_H

#include <string>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "bank/sectioned/MachineSectionFormat.h"
#include "bank/sectioned/QZRFileIO.h"

namespace qzr::reference {

// Fills machine from the section "[Machine-index]" of the file; false when the file cannot be
// opened, the index is below 1, or the section lacks Maker or Grade.
template <class Record>
bool ParseSectionByRescanning(const qzr::bank::MachineSectionFormat<Record>& format,
                              const char* path, long index, Record& machine) {
    if (index < 1 || path == nullptr) {
        return false;
    }
    bank::CQZRFileIO file;
    if (!file.OpenFile(path)) {
        return false;
    }
    const std::string section = "[Machine-" + std::to_string(index) + "]";
    const auto lookup = [&file, &section](size_t, const char* key, const char** value) {
        return file.GetKeyString(section.c_str(), key, value);
    };
    return qzr::bank::FillMachineSection(format, lookup, machine);
}

inline bool ParseIMMSection(const char* path, long index, CQZRIM& machine) {
    return ParseSectionByRescanning(qzr::bank::IMMSectionFormat(), path, index, machine);
}

inline bool ParseRTMSection(const char* path, long index, CQZRRTM& machine) {
    return ParseSectionByRescanning(qzr::bank::RTMSectionFormat(), path, index, machine);
}

}  // namespace qzr::reference

#endif  // QZR_TESTS_REFERENCE_RESCANNINGSECTIONPARSE_H

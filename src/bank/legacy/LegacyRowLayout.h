// The row layouts of the legacy tabular bank, chosen by the catalogue's file version.
#ifndef QZR_BANK_LEGACY_LEGACYROWLAYOUT_H
#define QZR_BANK_LEGACY_LEGACYROWLAYOUT_H

namespace qzr::bank {

enum class LegacyRowLayout {
    kBase,        // user banks below 7003, system banks below 7007
    kUser7003,    // user banks of version 7003
    kUser7004,    // user banks of version 7004
    kUser7005,    // user banks above 7004 (the writer's 7007 among them)
    kSystem7007,  // system banks of version 7007 and above
};

}  // namespace qzr::bank

#endif  // QZR_BANK_LEGACY_LEGACYROWLAYOUT_H

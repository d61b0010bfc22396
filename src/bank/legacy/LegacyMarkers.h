// The texts that give a line of a legacy tabular bank a role of its own. The loaders look for
// each anywhere in a line, so a machine's text that holds one changes how its row is read.
#ifndef QZR_BANK_LEGACY_LEGACYMARKERS_H
#define QZR_BANK_LEGACY_LEGACYMARKERS_H

#include <string_view>

namespace qzr::legacy {

constexpr std::string_view kEndMarker = "[EOF]";
constexpr std::string_view kHeaderMarker = "[Header]";
// The system banks mark their rows with "[Database]"; the user loader has always looked for
// "Database]" only, so "[IMMDatabase]" opens a user bank's rows too.
constexpr std::string_view kSystemDatabaseMarker = "[Database]";
constexpr std::string_view kUserDatabaseMarker = "Database]";
constexpr std::string_view kVersionMarker = "Version";
constexpr std::string_view kTotalNoMarker = "TotalNo";

}  // namespace qzr::legacy

#endif  // QZR_BANK_LEGACY_LEGACYMARKERS_H

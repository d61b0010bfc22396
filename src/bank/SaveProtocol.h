// The one place where a bank file is written. Every writer (legacy tabular, sectioned
// injection moulding, sectioned transfer moulding) hands its target and the code that writes
// the bank's text here, and never opens its target itself, so the way a save reaches the disk
// is decided here alone.
#ifndef QZR_BANK_SAVEPROTOCOL_H
#define QZR_BANK_SAVEPROTOCOL_H

#include <functional>
#include <string>

#include "platform/TextWriter.h"

namespace qzr::bank {

// The save protocol. An existing target must be a regular file (a folder, a device or a pipe
// is refused: false, nothing written); it is first copied to target + ".bak" (replacing an
// older backup; a failed copy is not reported), and the save fails (false, the backup stays)
// when the target does not open for appending, as a read-only file does not. writeBody then
// writes the bank in text mode into target + ".tmp" in the same folder, which is flushed,
// synced to the medium, closed, given the existing target's permissions and only then moved
// over the target in one step. A missing target is created by that move; a missing folder
// gives false and creates nothing.
//
// True only when the whole new bank is in place. On every failure (the temporary file cannot
// be made, a write, the flush, the sync, the close or the move fails) the result is false,
// the temporary file is removed and the target holds its previous content untouched.
bool SaveBankFile(const std::string& target,
                  const std::function<void(qzr::platform::TextWriter&)>& writeBody);

}  // namespace qzr::bank

#endif  // QZR_BANK_SAVEPROTOCOL_H

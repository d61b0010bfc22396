// The one place where a bank file is written. Every writer (legacy tabular, sectioned
// injection moulding, sectioned transfer moulding) hands its target and the code that writes
// the bank's text here, and never opens its target itself, so the way a save reaches the disk
// is decided here alone.
#ifndef QZR_BANK_BANKFILESAVE_H
#define QZR_BANK_BANKFILESAVE_H

#include <functional>
#include <string>

#include "platform/TextWriter.h"

namespace qzr::bank {

// The save protocol: an existing target is first copied to target + ".bak" (replacing an
// older backup; a failed copy is not reported); a missing target is created empty, and the
// save fails (false, nothing written) when it cannot be. Then the target is opened for
// writing, emptied, writeBody writes the bank in text mode, and the file is closed. False when
// the target cannot be opened for writing (the backup made before stays). Errors while
// writing the body are not reported: once the target is open the result is true.
bool SaveBankFile(const std::string& target,
                  const std::function<void(qzr::platform::TextWriter&)>& writeBody);

}  // namespace qzr::bank

#endif  // QZR_BANK_BANKFILESAVE_H

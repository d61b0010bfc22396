// Where the running program's file lies, so that a tool can find what is installed beside it.
#ifndef QZR_PLATFORM_EXECUTABLEPATH_H
#define QZR_PLATFORM_EXECUTABLEPATH_H

#include <string>

namespace qzr::platform {

// The full path of the running executable in the platform's own form (backslashes on Windows),
// or empty when the system cannot tell (a POSIX system without /proc, a path too long).
std::string ExecutablePath();

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_EXECUTABLEPATH_H

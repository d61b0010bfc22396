// The Windows API for the tests that need it, as the platform layer includes it.
#ifndef QZR_TESTS_SUPPORT_WINDOWSHEADERS_H
#define QZR_TESTS_SUPPORT_WINDOWSHEADERS_H

#include "platform/WindowsHeaders.h"

#endif  // QZR_TESTS_SUPPORT_WINDOWSHEADERS_H

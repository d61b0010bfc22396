// The Windows API for the tests that need it, without the macros that clash with the standard
// library (min, max) or that slow every build down.
#ifndef QZR_TESTS_SUPPORT_WINDOWSHEADERS_H
#define QZR_TESTS_SUPPORT_WINDOWSHEADERS_H

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#endif  // QZR_TESTS_SUPPORT_WINDOWSHEADERS_H

// The Windows API for the platform layer, without the macros that clash with the standard
// library (min, max) or that slow every build down. Empty elsewhere.
#ifndef QZR_PLATFORM_WINDOWSHEADERS_H
#define QZR_PLATFORM_WINDOWSHEADERS_H

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#endif  // QZR_PLATFORM_WINDOWSHEADERS_H

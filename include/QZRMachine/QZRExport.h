// Export macro of the QZRMachine library. Checked in (not generated) so that the library's
// sources compile with nothing but -I include -I src.
#ifndef QZRMACHINE_QZREXPORT_H
#define QZRMACHINE_QZREXPORT_H

#if defined(_WIN32)
#if defined(QZRMACHINE_SHARED)
#if defined(QZRMACHINE_BUILDING)
#define QZRMACHINE_API __declspec(dllexport)
#else
#define QZRMACHINE_API __declspec(dllimport)
#endif
#else
#define QZRMACHINE_API
#endif
#else
#define QZRMACHINE_API __attribute__((visibility("default")))
#endif

// The exported classes keep their data behind a std::unique_ptr to a private type that hosts
// never see or touch; MSVC's C4251 about that member is harmless and silenced around it.
#if defined(_MSC_VER)
#define QZRMACHINE_PRIVATE_MEMBERS_BEGIN __pragma(warning(push)) __pragma(warning(disable : 4251))
#define QZRMACHINE_PRIVATE_MEMBERS_END __pragma(warning(pop))
#else
#define QZRMACHINE_PRIVATE_MEMBERS_BEGIN
#define QZRMACHINE_PRIVATE_MEMBERS_END
#endif

#endif  // QZRMACHINE_QZREXPORT_H

# Cross build for 64-bit Windows with Debian's MinGW-w64 (the posix-thread g++, whose libstdc++
# has std::thread and a complete <charconv>). Test programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_qzr_mingw x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${_qzr_mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_qzr_mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${_qzr_mingw}-windres)

# Target libraries, headers and CMake packages come from the MinGW sysroot and from the prefix
# QZR_MINGW_PREFIX where scripts/test-windows installs GoogleTest built for the target and the
# header-only packages (CLI11, nlohmann-json).
set(QZR_MINGW_PREFIX "" CACHE PATH "Prefix of the target's third-party packages")
set(CMAKE_FIND_ROOT_PATH /usr/${_qzr_mingw} ${QZR_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# Every test program runs through wine-run: Wine headless, with a private prefix in the build
# folder and the MinGW runtime DLLs and the library's own DLL on its search path.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run)

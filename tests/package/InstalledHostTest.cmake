# Installs the current build into a prefix of its own, builds the example host against that
# prefix (through the CMake package, and through pkg-config when it is available), runs it on
# the example Bank folder and checks what it prints. A cross build configures the host with its
# toolchain file and runs it through its emulator (Wine for the MinGW build).
#
# Run as: cmake -D BUILD_DIR=... -D SOURCE_DIR=... -D WORK_DIR=... -D GENERATOR=...
#               -D MAKE_PROGRAM=... -D CXX_COMPILER=... -D COMPILER_IS_MSVC=... -D BUILD_TYPE=...
#               -D LIB_DIR=... -D HOST_FLAGS=... [-D INSTALLED_DLL=bin/....dll]
#               [-D EXE_SUFFIX=.exe] [-D TOOLCHAIN_FILE=...] [-D EMULATOR=...]
#               [-D PKG_CONFIG=...] -P InstalledHostTest.cmake
cmake_minimum_required(VERSION 3.25)

foreach(var BUILD_DIR SOURCE_DIR WORK_DIR GENERATOR CXX_COMPILER LIB_DIR)
    if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
        message(FATAL_ERROR "InstalledHostTest: ${var} is not set")
    endif()
endforeach()

function(run_step what)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${what} failed (${result}):\n${output}")
    endif()
    set(step_output "${output}" PARENT_SCOPE)
endfunction()

# A folder of its own, emptied first, so that no earlier run's files can make this one pass.
set(prefix ${WORK_DIR}/prefix)
set(host_build ${WORK_DIR}/host-build)
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

run_step("Installing the build" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# A Windows host ships the DLL beside its executable, where Windows looks first: the copy comes
# from the installed bin/ folder, so the build tree's DLL (on wine-run's WINEPATH) is not used.
function(place_dll exe_dir)
    if(INSTALLED_DLL)
        file(COPY ${prefix}/${INSTALLED_DLL} DESTINATION ${exe_dir})
    endif()
endfunction()

# Under wine-run the host uses the outer build's Wine prefix, made once, and its MinGW runtime.
if(EMULATOR)
    set(ENV{QZR_WINE_BUILD_DIR} ${BUILD_DIR})
endif()

# An installed qzrbank shows the example banks installed beside it, not those of the source tree:
# a maker it lacks is reported with the folder it looked in.
if(EXISTS ${BUILD_DIR}/tools/qzrbank${EXE_SUFFIX})
    execute_process(COMMAND ${EMULATOR} ${prefix}/bin/qzrbank${EXE_SUFFIX} list --maker Nobody
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    string(REPLACE "\\" "/" output "${output}")
    if(NOT result EQUAL 1 OR NOT output MATCHES " in [^\n]*/share/qzrmachine/examples/Bank\r?\n$")
        message(FATAL_ERROR "The installed qzrbank looks elsewhere for its examples (${result}):\n"
            "${output}")
    endif()
endif()

set(configure_args -S ${SOURCE_DIR}/examples/host -B ${host_build} -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
    -DCMAKE_PREFIX_PATH=${prefix}
    "-DCMAKE_CXX_FLAGS=${HOST_FLAGS}")
if(TOOLCHAIN_FILE)
    list(APPEND configure_args -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE})
endif()
if(MAKE_PROGRAM)
    list(APPEND configure_args -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM})
endif()
if(BUILD_TYPE)
    list(APPEND configure_args -DCMAKE_BUILD_TYPE=${BUILD_TYPE})
endif()
run_step("Configuring the host" ${CMAKE_COMMAND} ${configure_args})
run_step("Building the host" ${CMAKE_COMMAND} --build ${host_build})

# The expected totals are those of the invented banks under examples/Bank.
set(expected_lines
    "Catalogue: 3 machines, 2 makers"
    "  Brindlecast: 2"
    "First machine: Brindlecast - BC-90"
    "Bank\\\\Machine\\\\IMM\\\\\\*.bnk: 31 machines, 5 makers"
    "Bank\\\\User-IMM.bnk: 6 machines, 3 makers"
    "Bank\\\\Machine\\\\RTM\\\\\\*.bnk: 13 machines, 3 makers"
    "Bank\\\\User-RTMIC.bnk: 3 machines, 2 makers"
    "Bank\\\\system-pro.bnk: 12 machines, 3 makers"
    "Bank\\\\user-pro.bnk: 6 machines, 3 makers"
    "Banks: 71 machines")

function(check_host_output label output)
    string(REPLACE "\r\n" "\n" output "${output}")
    foreach(line IN LISTS expected_lines)
        if(NOT output MATCHES "(^|\n)${line}\n")
            message(FATAL_ERROR "${label}: the output lacks the line '${line}':\n${output}")
        endif()
    endforeach()
endfunction()

place_dll(${host_build})
run_step("Running the host" ${EMULATOR} ${host_build}/qzr_host${EXE_SUFFIX} ${SOURCE_DIR}/examples/)
check_host_output("CMake package host" "${step_output}")
message(STATUS "CMake package host:\n${step_output}")

# The same program through pkg-config, compiled by hand as a Makefile-based host would (on
# Windows, a MinGW one). PKG_CONFIG_LIBDIR names the prefix alone, so that no .pc file of the
# build machine takes part.
if(NOT PKG_CONFIG)
    message(STATUS "No pkg-config host: pkg-config was not found")
elseif(COMPILER_IS_MSVC)
    message(STATUS "No pkg-config host: MSVC does not take the GCC-style options of a .pc file")
else()
    set(ENV{PKG_CONFIG_LIBDIR} ${prefix}/${LIB_DIR}/pkgconfig)
    unset(ENV{PKG_CONFIG_PATH})
    run_step("pkg-config" ${PKG_CONFIG} --cflags --libs qzrmachine)
    string(STRIP "${step_output}" pc_flags)
    separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
    separate_arguments(host_flags UNIX_COMMAND "${HOST_FLAGS}")
    set(pc_host_dir ${WORK_DIR}/pc-host)
    file(MAKE_DIRECTORY ${pc_host_dir})
    set(pc_host ${pc_host_dir}/qzr_host_pc${EXE_SUFFIX})
    run_step("Compiling the host with pkg-config flags" ${CXX_COMPILER} -std=c++17 ${host_flags}
        ${SOURCE_DIR}/examples/host/main.cpp ${pc_flags} -o ${pc_host})
    place_dll(${pc_host_dir})
    if(NOT INSTALLED_DLL)
        set(ENV{LD_LIBRARY_PATH} "${prefix}/${LIB_DIR}")
    endif()
    run_step("Running the pkg-config host" ${EMULATOR} ${pc_host} ${SOURCE_DIR}/examples/)
    check_host_output("pkg-config host" "${step_output}")
endif()

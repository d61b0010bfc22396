# Installs the current build into a prefix of its own, builds the example host against that
# prefix (through the CMake package, and through pkg-config when it is available), runs it on
# the example Bank folder and checks what it prints.
#
# Run as: cmake -D BUILD_DIR=... -D SOURCE_DIR=... -D WORK_DIR=... -D GENERATOR=...
#               -D MAKE_PROGRAM=... -D CXX_COMPILER=... -D BUILD_TYPE=... -D LIB_DIR=...
#               -D HOST_FLAGS=... [-D PKG_CONFIG=...] [-D NM=...] -P InstalledHostTest.cmake
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

foreach(installed
        include/QZRMachine/QZRMachine.h
        include/QZRMachine/QZRExport.h
        ${LIB_DIR}/cmake/QZRMachine/QZRMachineConfig.cmake
        ${LIB_DIR}/cmake/QZRMachine/QZRMachineConfigVersion.cmake
        ${LIB_DIR}/pkgconfig/qzrmachine.pc)
    if(NOT EXISTS ${prefix}/${installed})
        message(FATAL_ERROR "The install lacks ${installed}")
    endif()
endforeach()

# The shared object exports the five exported classes (with their vtables and typeinfo) and
# nothing else: no internal class, no standard-library template code.
set(shared_library ${prefix}/${LIB_DIR}/libQZRMachine.so)
if(NM AND EXISTS ${shared_library})
    run_step("Listing the exported symbols" ${NM} -D --defined-only -C ${shared_library})
    string(REPLACE "\n" ";" symbol_lines "${step_output}")
    set(exported_classes "(CQZRMoldingMachine|CQZRIM|CQZRRTM|CQZRMoldingMachineCtrl|CQZRMoldingMachineIO)")
    set(symbol_count 0)
    foreach(symbol_line IN LISTS symbol_lines)
        if(symbol_line STREQUAL "")
            continue()
        endif()
        math(EXPR symbol_count "${symbol_count} + 1")
        string(REGEX REPLACE "^[0-9a-fA-F]+ [A-Za-z] " "" symbol "${symbol_line}")
        if(NOT symbol MATCHES "^((typeinfo|typeinfo name|vtable) for )?${exported_classes}(::|$)")
            message(FATAL_ERROR "libQZRMachine.so exports '${symbol}'")
        endif()
    endforeach()
    if(symbol_count EQUAL 0)
        message(FATAL_ERROR "libQZRMachine.so exports nothing")
    endif()
endif()

set(configure_args -S ${SOURCE_DIR}/examples/host -B ${host_build} -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
    -DCMAKE_PREFIX_PATH=${prefix}
    "-DCMAKE_CXX_FLAGS=${HOST_FLAGS}")
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
    foreach(line IN LISTS expected_lines)
        if(NOT output MATCHES "(^|\n)${line}\n")
            message(FATAL_ERROR "${label}: the output lacks the line '${line}':\n${output}")
        endif()
    endforeach()
endfunction()

run_step("Running the host" ${host_build}/qzr_host ${SOURCE_DIR}/examples/)
check_host_output("CMake package host" "${step_output}")
message(STATUS "CMake package host:\n${step_output}")

# The same program through pkg-config, compiled by hand as a Makefile-based host would.
if(PKG_CONFIG)
    set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIB_DIR}/pkgconfig)
    run_step("pkg-config" ${PKG_CONFIG} --cflags --libs qzrmachine)
    string(STRIP "${step_output}" pc_flags)
    separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
    separate_arguments(host_flags UNIX_COMMAND "${HOST_FLAGS}")
    run_step("Compiling the host with pkg-config flags" ${CXX_COMPILER} -std=c++17 ${host_flags}
        ${SOURCE_DIR}/examples/host/main.cpp ${pc_flags} -o ${WORK_DIR}/qzr_host_pc)
    set(ENV{LD_LIBRARY_PATH} "${prefix}/${LIB_DIR}")
    run_step("Running the pkg-config host" ${WORK_DIR}/qzr_host_pc ${SOURCE_DIR}/examples/)
    check_host_output("pkg-config host" "${step_output}")
endif()

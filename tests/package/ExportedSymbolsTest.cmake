# Compares the symbols that the QZRMachine shared library exports with the checked-in list
# exported-symbols.txt. The Linux and the Windows build each check their own library against
# the same list, so a pass on both means the .so and the DLL export the same API.
#
# Run as: cmake -D LIBRARY=... -D FORMAT=ELF|PE -D EXPECTED=... -D CXXFILT=...
#               [-D NM=...] [-D OBJDUMP=...] [-D SKIP_REASON=...] -P ExportedSymbolsTest.cmake
cmake_minimum_required(VERSION 3.25)

# The test registers with SKIP_REGULAR_EXPRESSION "SKIPPED:".
if(SKIP_REASON)
    message("SKIPPED: ${SKIP_REASON}")
    return()
endif()
foreach(var LIBRARY FORMAT EXPECTED CXXFILT)
    if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
        message(FATAL_ERROR "ExportedSymbolsTest: ${var} is not set")
    endif()
endforeach()

function(run_step what)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${what} failed (${result}):\n${errors}${output}")
    endif()
    set(step_output "${output}" PARENT_SCOPE)
endfunction()

# The mangled names that the library exports.
set(mangled "")
if(FORMAT STREQUAL "ELF")
    # Lines "address type name"; --defined-only leaves out what the library imports.
    run_step("Listing the dynamic symbols" ${NM} -D --defined-only ${LIBRARY})
    string(REGEX MATCHALL "[^ \r\n]+\r?\n" mangled "${step_output}")
elseif(FORMAT STREQUAL "PE")
    # The lines "[ordinal] name" of the export table's name pointer table, which ends at the
    # next blank line.
    run_step("Listing the DLL's export table" ${OBJDUMP} -p ${LIBRARY})
    string(REPLACE "\r" "" listing "${step_output}")
    string(FIND "${listing}" "[Ordinal/Name Pointer] Table" table_start)
    if(table_start EQUAL -1)
        message(FATAL_ERROR "${LIBRARY} has no export table of names")
    endif()
    string(SUBSTRING "${listing}" ${table_start} -1 table)
    string(REGEX REPLACE "\n[ \t]*\n.*" "" table "${table}")
    string(REGEX MATCHALL "\\[ *[0-9]+\\] [^\n]+" mangled "${table}")
    list(TRANSFORM mangled REPLACE "^.* " "")
else()
    message(FATAL_ERROR "ExportedSymbolsTest: unknown FORMAT '${FORMAT}'")
endif()
list(TRANSFORM mangled STRIP)
if(NOT mangled)
    message(FATAL_ERROR "${LIBRARY} exports nothing")
endif()

# c++filt demangles each of its arguments onto a line of its own.
run_step("Demangling" ${CXXFILT} ${mangled})
set(demangled "${step_output}")

# Both sides are sets of demangled names. Two kinds of entry are not compared:
# - Repeats: constructors and destructors have several mangled variants (complete object, base
#   object, deleting) that demangle to the same text.
# - "typeinfo name for X": on ELF the name string of a class's typeinfo is a symbol of its own
#   and exported with the class; MinGW exports the typeinfo object and keeps the string inside.
#   Hosts reach the string only through the typeinfo object, which both export.
function(normalised_set text out)
    string(REPLACE "\r" "" text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    set(names "")
    foreach(line IN LISTS lines)
        string(STRIP "${line}" line)
        if(line STREQUAL "" OR line MATCHES "^#" OR line MATCHES "^typeinfo name for ")
            continue()
        endif()
        list(APPEND names "${line}")
    endforeach()
    list(REMOVE_DUPLICATES names)
    list(SORT names)
    set(${out} "${names}" PARENT_SCOPE)
endfunction()

normalised_set("${demangled}" exported)
file(READ ${EXPECTED} expected_text)
normalised_set("${expected_text}" expected)

set(unexpected ${exported})
list(REMOVE_ITEM unexpected ${expected})
set(missing ${expected})
list(REMOVE_ITEM missing ${exported})
if(unexpected OR missing)
    list(JOIN unexpected "\n  " unexpected_text)
    list(JOIN missing "\n  " missing_text)
    message(FATAL_ERROR "The exports of ${LIBRARY} differ from ${EXPECTED}.\n"
        "Exported but not listed:\n  ${unexpected_text}\n"
        "Listed but not exported:\n  ${missing_text}")
endif()
list(LENGTH exported count)
message(STATUS "${LIBRARY}: the ${count} listed symbols, nothing else")

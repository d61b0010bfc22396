# The README's main job (scripts/main) builds only the library and the tool, in Release: a
# keeper who runs it gets a fast qzrbank, not the Debug tree with every test.
#   cmake -D SOURCE_DIR=... -P MainJobTest.cmake
file(READ ${SOURCE_DIR}/scripts/main script)
foreach(step "cmake --preset main" "cmake --build --preset main" "build/main/tools/qzrbank")
    string(FIND "${script}" "${step}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "scripts/main does not run '${step}'")
    endif()
endforeach()

# What the presets named "main" hold: the configure preset's settings, the build preset's targets.
file(READ ${SOURCE_DIR}/CMakePresets.json presets)
set(found "")
foreach(list configurePresets buildPresets)
    string(JSON last LENGTH "${presets}" ${list})
    math(EXPR last "${last} - 1")
    foreach(i RANGE ${last})
        string(JSON name GET "${presets}" ${list} ${i} name)
        if(name STREQUAL "main")
            string(JSON entry GET "${presets}" ${list} ${i})
            string(APPEND found "${entry}")
        endif()
    endforeach()
endforeach()
string(REGEX REPLACE "[ \n]+" " " found "${found}")
foreach(wanted "\"CMAKE_BUILD_TYPE\" : \"Release\"" "\"QZR_BUILD_TESTS\" : \"OFF\""
        "\"targets\" : [ \"QZRMachine\", \"qzrbank\" ]")
    string(FIND "${found}" "${wanted}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "the presets named main lack ${wanted}:\n${found}")
    endif()
endforeach()

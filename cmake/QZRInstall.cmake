# Installation of QZRMachine: the library (with its SONAME links), the public headers, a CMake
# package exporting QZRMachine::QZRMachine, a pkg-config file, and the qzrbank tool when built.
# Included at the end of the top-level CMakeLists.txt, once every target exists.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(QZR_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/QZRMachine
    CACHE STRING "Where the CMake package of QZRMachine is installed, below the prefix")
mark_as_advanced(QZR_INSTALL_CMAKEDIR)

install(TARGETS QZRMachine
    EXPORT QZRMachineTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/QZRMachine
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h")

install(EXPORT QZRMachineTargets
    NAMESPACE QZRMachine::
    DESTINATION ${QZR_INSTALL_CMAKEDIR})

configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/QZRMachineConfig.cmake.in
    ${PROJECT_BINARY_DIR}/QZRMachineConfig.cmake
    INSTALL_DESTINATION ${QZR_INSTALL_CMAKEDIR}
    PATH_VARS CMAKE_INSTALL_INCLUDEDIR)
# The exported API keeps its layout within a major version; a 2.x would change it.
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/QZRMachineConfigVersion.cmake
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/QZRMachineConfig.cmake
    ${PROJECT_BINARY_DIR}/QZRMachineConfigVersion.cmake
    DESTINATION ${QZR_INSTALL_CMAKEDIR})

# pkg-config: the prefix is derived from the .pc file's own folder, so that
# `cmake --install <build> --prefix <elsewhere>` still gives a correct file.
set(_qzr_pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(QZR_PC_RELATIVE_PREFIX "")
    set(QZR_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
else()
    file(RELATIVE_PATH QZR_PC_RELATIVE_PREFIX /prefix/${_qzr_pc_dir} /prefix)
    string(REGEX REPLACE "/$" "" QZR_PC_RELATIVE_PREFIX "${QZR_PC_RELATIVE_PREFIX}")
    set(QZR_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(QZR_PC_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
else()
    set(QZR_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
if(BUILD_SHARED_LIBS)
    # Only Windows hosts need it (dllimport), but it is harmless elsewhere and keeps the
    # CMake package and pkg-config in step.
    set(QZR_PC_DEFINES " -DQZRMACHINE_SHARED")
    set(QZR_PC_LIBS_PRIVATE "")
else()
    set(QZR_PC_DEFINES "")
    set(QZR_PC_LIBS_PRIVATE "-lstdc++ -lm")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/qzrmachine.pc.in
    ${PROJECT_BINARY_DIR}/qzrmachine.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qzrmachine.pc DESTINATION ${_qzr_pc_dir})

if(TARGET qzrbank)
    # The tool carries the library's static core, so it needs no library beside it.
    install(TARGETS qzrbank RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    # The example banks that "qzrbank list" shows when given no folder.
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/Bank
        DESTINATION ${CMAKE_INSTALL_DATADIR}/qzrmachine/examples)
endif()

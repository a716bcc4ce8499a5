# What is installed beside libraries and headers: the CMake package, the .pc file, documents.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mivosettingswidgets)
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/mivosettingswidgetsConfig.cmake.in
    ${PROJECT_BINARY_DIR}/mivosettingswidgetsConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/mivosettingswidgetsConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/mivosettingswidgetsConfig.cmake
              ${PROJECT_BINARY_DIR}/mivosettingswidgetsConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT dev)
install(EXPORT mivosettingswidgetsTargets NAMESPACE mivo:: DESTINATION ${package_dir}
        COMPONENT dev)

# The .pc file finds the rest from its own place, so that the package may be moved.
file(RELATIVE_PATH PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" PC_PREFIX ${PC_PREFIX})
get_property(libraries GLOBAL PROPERTY MIVO_LIBRARIES)
list(REVERSE libraries) # a library comes before those that it needs
list(TRANSFORM libraries PREPEND " -l" OUTPUT_VARIABLE PC_LIBRARIES)
list(JOIN PC_LIBRARIES "" PC_LIBRARIES)
set(PC_CFLAGS "")
if(MIVO_SIGSLOT_PACKAGE STREQUAL "Boost")
    string(APPEND PC_CFLAGS " -I\${includedir}/mivohostapi/compat")
endif()
get_target_property(definitions mivosigslot INTERFACE_COMPILE_DEFINITIONS)
if(NOT BUILD_SHARED_LIBS)
    foreach(library ${libraries})
        string(TOUPPER ${library}_STATIC_DEFINE definition)
        list(APPEND definitions ${definition})
    endforeach()
endif()
foreach(definition ${definitions})
    string(APPEND PC_CFLAGS " -D${definition}")
endforeach()
configure_file(cmake/mivosettingswidgets.pc.in mivosettingswidgets.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/mivosettingswidgets.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT dev)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev)
if(MIVO_BUILD_DOCS)
    find_package(Python3 REQUIRED COMPONENTS Interpreter)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS libs/*.h libs/*.cpp)
    add_custom_command(
        OUTPUT docs/texts.md docs/style-sheet.md
        COMMAND Python3::Interpreter scripts/reference.py ${PROJECT_BINARY_DIR}/docs
        DEPENDS scripts/reference.py ${sources} apps/mivohost/languages/mivo_en.ts
                apps/mivohost/languages/mivo_zh_cn.ts apps/mivohost/style/mivo.qss
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
    add_custom_target(mivo_docs ALL DEPENDS docs/texts.md docs/style-sheet.md)
    install(FILES ${PROJECT_BINARY_DIR}/docs/texts.md ${PROJECT_BINARY_DIR}/docs/style-sheet.md
            DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT dev)
endif()

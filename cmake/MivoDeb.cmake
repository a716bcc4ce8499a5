# Debian packages of one build: the libraries, what is needed to build with them, and mivohost.
# scripts/package makes them.

find_program(GZIP gzip REQUIRED)
find_program(CHRPATH chrpath REQUIRED)
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH holds here, if it is set
set(maintainer "mivosettingswidgets maintainers <maintainers@mivosettingswidgets.invalid>")
file(CONFIGURE OUTPUT deb/changelog @ONLY CONTENT
"mivosettingswidgets (@PROJECT_VERSION@-1) unstable; urgency=medium

  * Version @PROJECT_VERSION@; see CHANGELOG.md.

 -- @maintainer@  @now@
")
add_custom_command(OUTPUT deb/changelog.Debian.gz
                   COMMAND ${GZIP} -9nkc deb/changelog > deb/changelog.Debian.gz
                   DEPENDS ${PROJECT_BINARY_DIR}/deb/changelog)
add_custom_target(mivo_deb ALL DEPENDS deb/changelog.Debian.gz)

# Libraries of the system are found without a path of the programs' own.
file(CONFIGURE OUTPUT deb/prepare.cmake @ONLY CONTENT [[
file(GLOB_RECURSE files ${CPACK_TEMPORARY_DIRECTORY}/*.so.* ${CPACK_TEMPORARY_DIRECTORY}/*/bin/*)
foreach(file ${files})
    if(NOT IS_SYMLINK ${file})
        execute_process(COMMAND @CHRPATH@ -d ${file} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
]])
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/deb/prepare.cmake)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${maintainer}")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime dev host)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
file(CONFIGURE OUTPUT deb/triggers CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/deb/triggers)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_COMPONENT_HOST_DEPENDS runtime)

# mivo_deb_package(COMPONENT PACKAGE SECTION DEPENDS DESCRIPTION): DEPENDS are those that are not
# found by looking at what is linked.
macro(mivo_deb_package component package section depends description)
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
    set(CPACK_COMPONENT_${upper}_DESCRIPTION "${description}")
    install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} RENAME copyright
            COMPONENT ${component})
    install(FILES ${PROJECT_BINARY_DIR}/deb/changelog.Debian.gz
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endmacro()

set(what " System settings of a media-playback and show-control
 application: a dialog with pages that read, write and
 follow a settings store.")
mivo_deb_package(runtime libmivosettingswidgets${MIVO_SOVERSION} libs "libqt5svg5"
                 "settings dialog of a show-control application\n${what}")
mivo_deb_package(dev libmivosettingswidgets-dev libdevel
                 "qtbase5-dev, libspdlog-dev, libfmt-dev, libboost-dev"
                 "settings dialog of a show-control application, development files\n${what}")
mivo_deb_package(host mivohost sound
                 "libqt5multimedia5-plugins"
                 "small show-control application around its settings dialog\n${what}")
set(CPACK_DEBIAN_HOST_PACKAGE_RECOMMENDS "fonts-noto-core, fonts-noto-cjk, libvulkan1")
include(CPack)

# mivo_add_library(), mivo_add_test(): what every target of the project has in common.

include(GenerateExportHeader)

# What differs per system is in files of the same name: name_posix.cpp and name_win.cpp.
if(WIN32)
    set(MIVO_SYSTEM win)
else()
    set(MIVO_SYSTEM posix)
endif()

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_INSTALL_RPATH $ORIGIN/../${CMAKE_INSTALL_LIBDIR} $ORIGIN)

find_program(MIVO_CCACHE ccache)
if(MIVO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # A clone elsewhere finds what this one has compiled.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${MIVO_CCACHE})
endif()

set(MIVO_SANITIZE_FLAGS "")
if(MIVO_SANITIZE STREQUAL "address")
    set(MIVO_SANITIZE_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all
                            -fno-omit-frame-pointer)
elseif(MIVO_SANITIZE STREQUAL "thread")
    set(MIVO_SANITIZE_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
elseif(MIVO_SANITIZE STREQUAL "fuzzer")
    set(MIVO_SANITIZE_FLAGS -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                            -fno-omit-frame-pointer)
elseif(MIVO_SANITIZE)
    message(FATAL_ERROR "MIVO_SANITIZE is \"address\", \"thread\", \"fuzzer\" or empty")
endif()

# Warnings and sanitizers, for every target of the project.
function(mivo_target target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /utf-8 /permissive- $<$<BOOL:${MIVO_WERROR}>:/WX>)
    else()
        target_compile_options(
            ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion
                              $<$<BOOL:${MIVO_WERROR}>:-Werror> ${MIVO_SANITIZE_FLAGS})
        target_link_options(${target} PRIVATE ${MIVO_SANITIZE_FLAGS})
        if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            # Takes a source that is compiled with others for a header.
            target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
        endif()
    endif()
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
                                                 QT_NO_FOREACH)
    if(WIN32)
        # <windows.h> brings sockets of its own, which <winsock2.h> behind it is refused for.
        target_compile_definitions(${target} PRIVATE WIN32_LEAN_AND_MEAN NOMINMAX)
    endif()
endfunction()

# mivo_precompile(TARGET [header...]): the widget headers and more for the target.
# mivo_precompile(TARGET FROM OTHER): those of another target.
function(mivo_precompile target)
    if(NOT MIVO_PCH)
        return()
    endif()
    if(ARGV1 STREQUAL "FROM")
        target_precompile_headers(${target} REUSE_FROM ${ARGV2})
    else()
        target_precompile_headers(${target} PRIVATE <QtWidgets> <functional> <future> <memory>
                                  <string> <vector> ${ARGN})
    endif()
endfunction()

# mivo_add_library(NAME SOURCES file... HEADERS file... [PUBLIC lib...] [PRIVATE lib...])
# A library with hidden visibility and the export header <NAME/export.h>, shared or static as
# BUILD_SHARED_LIBS says. HEADERS are the public ones: they are installed, and included as
# <NAME/file.h>. NAME_TEST_EXPORT, in private headers, exports what tests alone call where there are
# tests.
function(mivo_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;HEADERS;PUBLIC;PRIVATE")
    add_library(${name} ${ARG_SOURCES} ${ARG_HEADERS})
    add_library(mivo::${name} ALIAS ${name})
    mivo_target(${name})
    string(TOUPPER ${name} upper)
    generate_export_header(${name} BASE_NAME ${upper}
                           EXPORT_FILE_NAME ${PROJECT_BINARY_DIR}/include/${name}/export.h)
    if(NOT BUILD_SHARED_LIBS)
        target_compile_definitions(${name} PUBLIC ${upper}_STATIC_DEFINE)
    endif()
    if(MIVO_BUILD_TESTS OR MIVO_BUILD_BENCH)
        set(test_export ${upper}_EXPORT)
    endif()
    target_compile_definitions(
        ${name} PUBLIC $<BUILD_INTERFACE:${upper}_TEST_EXPORT=${test_export}>)
    if(UNIX AND NOT APPLE)
        set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
        target_link_options(${name} PRIVATE LINKER:--version-script=${exports})
        set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${exports})
    endif()
    target_compile_features(${name} PUBLIC cxx_std_17)
    target_include_directories(
        ${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/libs>
                       $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
                       $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
                       $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    if(Qt5::Widgets IN_LIST ARG_PUBLIC)
        mivo_precompile(${name})
    endif()
    set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION}
                                             SOVERSION ${MIVO_SOVERSION})
    set_property(GLOBAL APPEND PROPERTY MIVO_LIBRARIES ${name})
    install(TARGETS ${name} EXPORT mivosettingswidgetsTargets
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
    install(FILES ${ARG_HEADERS} ${PROJECT_BINARY_DIR}/include/${name}/export.h
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${name} COMPONENT dev)
endfunction()

# mivo_add_tests(NAME UNITS unit... [LIBRARIES lib...]): one program of tst_UNIT.cpp for each unit,
# and for each a ctest entry that runs the test suites of that file.
function(mivo_add_tests name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "UNITS;LIBRARIES")
    list(TRANSFORM ARG_UNITS PREPEND tst_)
    list(TRANSFORM ARG_UNITS APPEND .cpp OUTPUT_VARIABLE sources)
    add_executable(${name} ${sources})
    mivo_target(${name})
    mivo_precompile(${name} FROM mivotestsupport)
    target_link_libraries(${name} PRIVATE mivotestsupport ${ARG_LIBRARIES})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sources})
    foreach(unit ${ARG_UNITS})
        file(STRINGS ${unit}.cpp lines REGEX "^TEST(_F|_P)?\\(")
        list(TRANSFORM lines REPLACE "^TEST[_FP]*\\(([A-Za-z0-9_]+).*" "\\1.*:*/\\1.*")
        list(REMOVE_DUPLICATES lines)
        list(JOIN lines ":" filter)
        add_test(NAME ${unit} COMMAND ${name} --gtest_filter=${filter})
    endforeach()
endfunction()

# mivo_add_test(NAME [SOURCES more...] [LIBRARIES lib...]): tests/NAME.cpp as one ctest entry.
function(mivo_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LIBRARIES")
    add_executable(${name} ${name}.cpp ${ARG_SOURCES})
    mivo_target(${name})
    mivo_precompile(${name} FROM mivotestsupport)
    target_link_libraries(${name} PRIVATE mivotestsupport ${ARG_LIBRARIES})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES COST 100) # they wait for other programs: first of all
endfunction()

# mivo::sigslot offers <sigslot/signal.hpp>: the installed library where there is one, else an
# adaptor with the same names over Boost.Signals2.

add_library(mivosigslot INTERFACE)
add_library(mivo::sigslot ALIAS mivosigslot)
set_target_properties(mivosigslot PROPERTIES EXPORT_NAME sigslot)
find_package(PalSigslot QUIET)
if(PalSigslot_FOUND)
    set(MIVO_SIGSLOT_PACKAGE PalSigslot)
    target_compile_definitions(mivosigslot INTERFACE MIVO_SIGNALS_OVER_BOOST=0)
    target_link_libraries(mivosigslot INTERFACE Pal::Sigslot)
else()
    set(MIVO_SIGSLOT_PACKAGE Boost)
    target_compile_definitions(mivosigslot INTERFACE MIVO_SIGNALS_OVER_BOOST=1)
    find_package(Boost REQUIRED)
    target_link_libraries(mivosigslot INTERFACE Boost::headers)
    target_include_directories(
        mivosigslot SYSTEM
        INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/libs/mivohostapi/compat>
                  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/mivohostapi/compat>)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/libs/mivohostapi/compat/
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mivohostapi/compat COMPONENT dev)
endif()
install(TARGETS mivosigslot EXPORT mivosettingswidgetsTargets)

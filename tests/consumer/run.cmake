# Installs the built tree into an empty prefix, then builds and runs the consumer against it, by
# CMake and by pkg-config, and sees a host with other signals fail.
set(ENV{LC_ALL} C) # what the compiler says is looked for below
set(work ${BUILD}/consumer)
file(REMOVE_RECURSE ${work})

function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output
                    ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGV}\n${output}")
    endif()
endfunction()

# Must fail, and say why.
function(run_failing expected)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                    ERROR_VARIABLE output)
    if(result EQUAL 0 OR NOT output MATCHES "${expected}")
        message(FATAL_ERROR "expected to fail with \"${expected}\": ${ARGN}\n${output}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${work}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${work}/build -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_PREFIX_PATH=${work}/prefix ${CROSS})
run(${CMAKE_COMMAND} --build ${work}/build)
set(ENV{QT_QPA_PLATFORM} offscreen)
set(ENV{WINEPATH} "${work}/prefix/bin;$ENV{WINEPATH}")
foreach(language en zh_cn)
    foreach(example minimal ownpage)
        run(${EMULATOR} ${work}/build/${example}/${example}${SUFFIX} ${language})
    endforeach()
endforeach()
if(CROSS)
    return() # no pkg-config there, and no libraries beside one another
endif()

separate_arguments(FLAGS UNIX_COMMAND "${FLAGS}")
set(ENV{PKG_CONFIG_PATH} ${work}/prefix/${LIBDIR}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs mivosettingswidgets OUTPUT_VARIABLE package
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(package UNIX_COMMAND "${package}")
set(compile ${CXX} -std=c++17 -fPIC ${FLAGS} ${SOURCE}/../../examples/minimal/main.cpp
            ${SOURCE}/operate.cpp -o ${work}/byhand)
run(${compile} ${package})
set(ENV{LD_LIBRARY_PATH} ${work}/prefix/${LIBDIR})
run(${work}/byhand en)

if(SIGNALS STREQUAL "Boost")
    set(other ${SOURCE}/othersignals)
    set(missing libraryWasBuiltWithTheSigslotLibrary)
else()
    set(other ${SOURCE}/../../libs/mivohostapi/compat)
    set(missing libraryWasBuiltWithSignalsOverBoost)
endif()
run_failing("error: .*This mivosettingswidgets was built with" ${compile} -I${other} ${package})
# Headers of one package, libraries of another.
list(FILTER package EXCLUDE REGEX MIVO_SIGNALS_OVER_BOOST)
run_failing("undefined reference to .*${missing}" ${compile} -I${other} ${package})

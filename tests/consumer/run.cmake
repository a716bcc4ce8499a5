# Installs the built tree into an empty prefix, then builds and runs the consumer against it.
set(work ${BUILD}/consumer)
file(REMOVE_RECURSE ${work})

function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output
                    ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGV}\n${output}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${work}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${work}/build -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_PREFIX_PATH=${work}/prefix)
run(${CMAKE_COMMAND} --build ${work}/build)
run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ${work}/build/consumer)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE ${scratchDir})
run(${CMAKE_COMMAND} --install ${buildDir} --prefix ${scratchDir}/installed)
file(RENAME ${scratchDir}/installed ${scratchDir}/moved)

run(${CMAKE_COMMAND} -S ${consumerDir} -B ${scratchDir}/build -G ${generator}
    -D CMAKE_PREFIX_PATH=${scratchDir}/moved
    -D CMAKE_CXX_COMPILER=${compiler}
    -D CMAKE_CXX_FLAGS=${flags}
    -D CMAKE_BUILD_TYPE=${buildType})
run(${CMAKE_COMMAND} --build ${scratchDir}/build)
run(${CMAKE_COMMAND} -E env PLUGINMANGER_PATH=${consumerDir}
    ${scratchDir}/build/host)

# cmake -D mode=installed|embedded ... -P consumer.cmake
#
# Builds and runs somebody else's project: against the installed package, which has been moved since it was
# installed, or with the library's sources as a part of the project.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE ${scratchDir})
if(mode STREQUAL "installed")
    set(projectDir ${testDir}/consumer)
    run(${CMAKE_COMMAND} --install ${buildDir} --prefix ${scratchDir}/installed)
    file(RENAME ${scratchDir}/installed ${scratchDir}/moved)
    set(where -D CMAKE_PREFIX_PATH=${scratchDir}/moved)
else()
    set(projectDir ${testDir}/embedded)
    set(where -D pluginMangerSource=${sourceDir})
endif()
if(toolchain)
    list(APPEND where
        -D CMAKE_TOOLCHAIN_FILE=${toolchain}
        -D PLUGINMANGER_WINDOWS_SDK=${sdk}
        -D CMAKE_FIND_ROOT_PATH=${scratchDir}/moved)
endif()

run(${CMAKE_COMMAND} -S ${projectDir} -B ${scratchDir}/build -G ${generator} ${where}
    -D CMAKE_CXX_COMPILER=${compiler}
    -D CMAKE_CXX_FLAGS=${flags}
    -D CMAKE_BUILD_TYPE=${buildType})
run(${CMAKE_COMMAND} --build ${scratchDir}/build)
if(runtime)
    # Windows' loader looks beside the program. What was built or installed here takes precedence.
    file(GLOB built ${scratchDir}/moved/bin/*.dll)
    if(mode STREQUAL "embedded")
        file(GLOB_RECURSE built ${scratchDir}/build/pluginManger/*.dll)
    endif()
    file(COPY ${runtime}/platforms DESTINATION ${scratchDir}/build)
    file(GLOB needed ${runtime}/*.dll)
    file(COPY ${needed} ${built} DESTINATION ${scratchDir}/build)
endif()
run(${CMAKE_COMMAND} -E chdir ${testDir}/consumer
    ${CMAKE_COMMAND} -E env PLUGINMANGER_PATH=${testDir}/consumer HOST_DIRECTORY=${testDir}/consumer
    ${emulator} ${scratchDir}/build/host${suffix} -platform offscreen)

# Configures and builds the project in configuration/, and compares files with what they should be.
function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(expect_content file expected)
    file(READ ${scratchDir}/${file} content)
    if(NOT content STREQUAL expected)
        message(FATAL_ERROR "${file} is\n${content}\nand should be\n${expected}")
    endif()
endfunction()

file(REMOVE_RECURSE ${scratchDir})
set(configure ${CMAKE_COMMAND} -S ${sourceDir} -B ${scratchDir} -G ${generator}
    -D CMAKE_CXX_COMPILER=${compiler} -D modules=${modules})
run(${configure})
expect_content(folder/pluginconfig4CAM.json [=[
{
    "pluginList": [
        { "name": "Graphic_View", "version": "1.0", "dependencies": [] },
        { "name": "ORVIK-Matrix", "version": "2.0 beta", "dependencies": [{ "name": "Graphic_MiniMap", "version": "1.10" }, { "name": "Elsewhere", "version": "7" }, { "name": "Graphic_View", "version": "1.0" }, { "name": "Graphic_View_2", "version": "1" }] },
        { "name": "Graphic_MiniMap", "version": "1.10", "dependencies": [{ "name": "Graphic_View", "version": "1.0" }] }
    ]
}
]=])
expect_content(pluginconfig4DFM.json [=[
{
    "pluginList": [
        { "name": "Graphic_View_2", "version": "1", "dependencies": [] }
    ]
}
]=])

# A file that stays the same is not written again.
file(TIMESTAMP ${scratchDir}/pluginconfig4DFM.json first "%s")
execute_process(COMMAND ${CMAKE_COMMAND} -E sleep 1.1)
run(${configure})
file(TIMESTAMP ${scratchDir}/pluginconfig4DFM.json second "%s")
if(NOT first STREQUAL second)
    message(FATAL_ERROR "pluginconfig4DFM.json was written again")
endif()

run(${CMAKE_COMMAND} --build ${scratchDir})
foreach(name Graphic_View ORVIK-Matrix Alone Graphic_MiniMap Graphic_View_2)
    if(NOT EXISTS ${scratchDir}/${name}.dll)
        message(FATAL_ERROR "there is no ${name}.dll")
    endif()
endforeach()

# Writes plug-ins with the installed pluginmanger-new-plugin, builds them and runs their tests.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

# try(<kind> <name>...)
function(try kind)
    foreach(name IN LISTS ARGN)
        message(STATUS "${kind} ${name}")
        set(build ${scratchDir}/${name}/build)
        run(${CMAKE_COMMAND} -E chdir ${scratchDir} ${newPlugin} ${name} --kind ${kind})
        run(${CMAKE_COMMAND} -S ${scratchDir}/${name} -B ${build} -G ${generator}
            -D CMAKE_PREFIX_PATH=${scratchDir}/installed
            -D CMAKE_CXX_COMPILER=${compiler}
            "-DCMAKE_CXX_FLAGS=${flags} -Wall -Wextra -Wpedantic -Werror"
            -D CMAKE_BUILD_TYPE=${buildType})
        run(${CMAKE_COMMAND} --build ${build})
        run(${CMAKE_CTEST_COMMAND} --test-dir ${build} --output-on-failure)
        if(NOT output MATCHES "100% tests passed, 0 tests failed out of 1")
            message(FATAL_ERROR "the test of ${name} did not run:\n${output}")
        endif()
        file(REMOVE_RECURSE ${scratchDir}/${name})
    endforeach()
endfunction()

# refuse(<words> <argument>...)
function(refuse words)
    execute_process(COMMAND ${CMAKE_COMMAND} -E chdir ${scratchDir} ${newPlugin} ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(result EQUAL 0)
        message(FATAL_ERROR "accepted: ${ARGN}")
    elseif(NOT output MATCHES "pluginmanger-new-plugin: ${words}")
        message(FATAL_ERROR "refused with other words than \"${words}\": ${ARGN}\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE ${scratchDir})
run(${CMAKE_COMMAND} --install ${buildDir} --prefix ${scratchDir}/installed)
file(GLOB newPlugin ${scratchDir}/installed/bin/pluginmanger-new-plugin*)

file(MAKE_DIRECTORY ${scratchDir}/There_Already)
refuse("give one name" --kind element)
refuse("give one name" One Two --kind element)
refuse("\"window\" is no kind of plug-in" Own_Plugin --kind window)
refuse("\"\" is no kind of plug-in" Own_Plugin)
refuse("the name is given without \".dll\"" Own_Plugin.dll --kind element)
refuse("the name is given without \".dll\"" Own_Plugin.DLL --kind element)
foreach(name all install test clean help package ALL_BUILD)
    refuse("\"${name}\" is the name of a target of CMake's own; give another one" ${name} --kind element)
endforeach()
refuse("\"../Own_Plugin\" is no name" ../Own_Plugin --kind element)
refuse("there is no frame \"Own_Plugin\"" Own_Plugin --kind frame)
refuse("[^\n]*There_Already is there already" There_Already --kind element)
run(${newPlugin} --help)

if(NOT DEFINED ENV{PLUGINMANGER_ALL_SCAFFOLDS})
    try(element CAM_MenuBar_Menu)
    try(frame ORVIK-GraphicEditor)
    try(desktop File_Process)
    return()
endif()
# One element of each type, with and without a text, and one that no operation knows.
try(element CAM_MenuBar_Menu MATRIX_MENUBAR_Edit Matrix Graphic_View ListBar_PNList CAM_FilterAndInfo_Bar
    Graphic_Coordinate Graphic_Toolbar_Edit CAM_PNData_View CAM_Progress_Dialog Graphic_DI_Tool Own_Element)
try(frame ORVIK-GraphicEditor ORVIK-Matrix Graphic_CamGuide)
try(desktop File_Process ListBar_PNList Toolbar_Edit Toolbar_Move ToolBar_Select Toolbar_Tool Viewbar_View
    Viewbar_Status MenuBar_Menu ProcessBar_Process Own_Plugin)

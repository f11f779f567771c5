# What a program needs beside itself on Windows, where no loader knows an rpath: the libraries it is linked to
# and the compiler's own, which must be DLLs so that exceptions cross the borders between plug-ins, library and
# host.
set(windowsRuntimeLibraries)
foreach(target IN ITEMS Qt5::Core Qt5::Gui Qt5::Widgets glog::glog)
    list(APPEND windowsRuntimeLibraries $<TARGET_FILE:${target}>)
endforeach()
if(MINGW)
    foreach(name IN ITEMS libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT IS_ABSOLUTE "${file}")
            find_file(windowsRuntime_${name} ${name} PATH_SUFFIXES bin REQUIRED)
            set(file ${windowsRuntime_${name}})
        endif()
        list(APPEND windowsRuntimeLibraries ${file})
    endforeach()
endif()

# Qt's own plug-ins lie in folders of their own: "offscreen" for tests, "windows" for a desktop.
set(windowsPlatformPlugins)
foreach(plugin IN ITEMS Offscreen Minimal Windows)
    if(TARGET Qt5::Q${plugin}IntegrationPlugin)
        list(APPEND windowsPlatformPlugins $<TARGET_FILE:Qt5::Q${plugin}IntegrationPlugin>)
    endif()
endforeach()

# "offscreen" knows no fonts but those in a folder beside the program.
file(GLOB windowsFonts /usr/share/fonts/truetype/dejavu/*.ttf)

# pluginmanger_place_windows_runtime(<target> <directory> [<file>...])
#
# Adds a target that copies all this, and further files, to the directory of a program.
function(pluginmanger_place_windows_runtime target directory)
    add_custom_target(${target} ALL
        COMMAND ${CMAKE_COMMAND} -E make_directory ${directory}/platforms
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${windowsRuntimeLibraries} ${ARGN} ${directory}
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${windowsPlatformPlugins} ${directory}/platforms
        COMMENT "Copying what the programs in ${directory} need"
        VERBATIM)
    if(windowsFonts)
        file(COPY ${windowsFonts} DESTINATION ${directory}/lib/fonts)
    endif()
endfunction()

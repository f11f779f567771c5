# cmake -D mode=installed|embedded|system ... -P consumer.cmake
#
# Builds and runs somebody else's project: against the installed package, which has been moved since it was
# installed; with the library's sources as a part of the project; or against the package of the system. What is
# installed is used by find_package() and again by pkg-config.
function(run)
    # A plug-in that does not load opens a box that nobody closes.
    execute_process(COMMAND ${ARGN} TIMEOUT 240 RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(run_host host)
    run(${CMAKE_COMMAND} -E chdir ${testDir}/consumer
        ${CMAKE_COMMAND} -E env PLUGINMANGER_PATH=${testDir}/consumer HOST_DIRECTORY=${testDir}/consumer
        ${emulator} ${host}${suffix} -platform offscreen)
endfunction()

# Windows' loader looks beside the program. What was built or installed here takes precedence.
function(place_runtime directory)
    if(runtime)
        file(GLOB built ${scratchDir}/moved/bin/*.dll)
        if(mode STREQUAL "embedded")
            file(GLOB_RECURSE built ${scratchDir}/build/pluginManger/*.dll)
        endif()
        file(COPY ${runtime}/platforms DESTINATION ${directory})
        file(GLOB needed ${runtime}/*.dll)
        file(COPY ${needed} ${built} DESTINATION ${directory})
    endif()
endfunction()

function(build_by_cmake)
    run(${CMAKE_COMMAND} -S ${projectDir} -B ${scratchDir}/build -G ${generator} ${ARGN} ${cross}
        -D CMAKE_CXX_COMPILER=${compiler}
        -D CMAKE_CXX_FLAGS=${flags}
        -D CMAKE_BUILD_TYPE=${buildType})
    run(${CMAKE_COMMAND} --build ${scratchDir}/build)
    place_runtime(${scratchDir}/build)
    run_host(${scratchDir}/build/host)
endfunction()

# Types the project of the guides in `docs`: their quotes of guide/, in the order in which they come.
function(type_guides docs)
    foreach(guide host-guide.md plugin-guide.md)
        file(READ ${docs}/${guide} text)
        while(text MATCHES "<!-- quote tests/package/guide/([^ ]+)[^\n]*\n```[a-z]+\n")
            set(file ${scratchDir}/guide/${CMAKE_MATCH_1})
            string(FIND "${text}" "${CMAKE_MATCH_0}" begin)
            string(LENGTH "${CMAKE_MATCH_0}" length)
            math(EXPR begin "${begin} + ${length}")
            string(SUBSTRING "${text}" ${begin} -1 text)
            string(FIND "${text}" "```\n" end)
            string(SUBSTRING "${text}" 0 ${end} quote)
            file(APPEND ${file} "${quote}\n")
        endwhile()
    endforeach()
endfunction()

# Fails unless the typed project is that in guide/, which is also installed as an example.
function(compare_with_guide)
    file(GLOB sources RELATIVE ${testDir}/guide ${testDir}/guide/*)
    foreach(source IN LISTS sources)
        file(READ ${testDir}/guide/${source} expected)
        file(READ ${scratchDir}/guide/${source} typed)
        string(REGEX REPLACE "(//|#)! [^\n]*\n" "" expected "${expected}")
        string(REGEX REPLACE "\n+$" "\n" typed "${typed}")
        if(NOT typed STREQUAL expected)
            message(FATAL_ERROR "the guides have\n${typed}\nas ${source}, which should be\n${expected}")
        endif()
    endforeach()
endfunction()

# The project of the guides, as somebody types it who reads them. The host checks itself.
function(build_guide docs)
    type_guides(${docs})
    compare_with_guide()
    file(APPEND ${scratchDir}/guide/CMakeLists.txt "target_sources(host PRIVATE [[${testDir}/guidecheck.cpp]])\n")
    set(build ${scratchDir}/guide/build)
    run(${CMAKE_COMMAND} -S ${scratchDir}/guide -B ${build} -G ${generator} ${ARGN} ${cross}
        -D CMAKE_CXX_COMPILER=${compiler}
        "-DCMAKE_CXX_FLAGS=${flags} -Wall -Wextra -Wpedantic -Werror"
        -D CMAKE_BUILD_TYPE=${buildType})
    run(${CMAKE_COMMAND} --build ${build})
    place_runtime(${build}/run)
    run(${CMAKE_COMMAND} -E env --unset=PLUGINMANGER_PATH
        ${emulator} ${build}/run/host${suffix} -platform offscreen)
endfunction()

# The installed examples. Two plug-ins stand for all, which take as long as everything else here together.
function(build_examples examples)
    set(build ${scratchDir}/examples)
    run(${CMAKE_COMMAND} -S ${examples} -B ${build} -G ${generator} ${ARGN}
        -D CMAKE_CXX_COMPILER=${compiler}
        -D CMAKE_CXX_FLAGS=${flags}
        -D CMAKE_BUILD_TYPE=${buildType})
    run(${CMAKE_COMMAND} --build ${build} --target plugin_Graphic_Tips plugin_Toolbar_Edit)
endfunction()

# The commands of somebody who has no build system.
function(build_by_pkg_config)
    set(pkgConfig pkg-config)
    if(ARGN)
        file(GLOB pkgConfigDir ${ARGN}/lib*/pkgconfig ${ARGN}/lib/*/pkgconfig)
        set(pkgConfig ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pkgConfigDir} pkg-config)
    endif()
    foreach(asked --cflags --libs --variable=libdir --variable=schema)
        run(${pkgConfig} ${asked} pluginManger)
        string(STRIP "${output}" output)
        string(REGEX REPLACE "^--(variable=)?" "" answer ${asked})
        separate_arguments(${answer} UNIX_COMMAND "${output}")
    endforeach()
    if(NOT EXISTS ${schema})
        message(FATAL_ERROR "pkg-config names a schema that is not there: ${schema}")
    endif()
    run(pkg-config --variable=host_bins Qt5Core)
    string(STRIP "${output}" qtTools)

    set(directory ${scratchDir}/byPkgConfig)
    file(MAKE_DIRECTORY ${directory})
    separate_arguments(flags UNIX_COMMAND "${flags}")
    set(compile ${compiler} ${flags} -std=c++17 -fPIC -I${directory} ${cflags})
    run(${qtTools}/moc ${testDir}/consumer/qtplugin.cpp -o ${directory}/qtplugin.moc)
    foreach(plugin plugin.cpp=Graphic_View qtplugin.cpp=Own_Plugin)
        string(REPLACE "=" ";" plugin ${plugin})
        list(GET plugin 0 source)
        list(GET plugin 1 name)
        run(${compile} -shared -fvisibility=hidden ${testDir}/consumer/${source} -o ${directory}/${name}.dll
            ${libs})
    endforeach()
    run(${compile} ${testDir}/consumer/host.cpp -o ${directory}/host
        ${libs} -lpluginMangerCommon -Wl,--disable-new-dtags,-rpath,${directory}:${libdir})
    run_host(${directory}/host)
endfunction()

file(REMOVE_RECURSE ${scratchDir})
set(cross)
if(toolchain)
    set(cross
        -D CMAKE_TOOLCHAIN_FILE=${toolchain}
        -D PLUGINMANGER_WINDOWS_SDK=${sdk}
        -D CMAKE_FIND_ROOT_PATH=${scratchDir}/moved)
endif()
if(mode STREQUAL "embedded")
    set(projectDir ${testDir}/embedded)
    build_by_cmake(-D pluginMangerSource=${sourceDir})
    return()
endif()

set(projectDir ${testDir}/consumer)
if(mode STREQUAL "installed")
    run(${CMAKE_COMMAND} --install ${buildDir} --prefix ${scratchDir}/installed)
    file(RENAME ${scratchDir}/installed ${scratchDir}/moved)
    build_by_cmake(-D CMAKE_PREFIX_PATH=${scratchDir}/moved)
    file(GLOB docs ${scratchDir}/moved/share/doc/*/docs)
    build_guide(${docs} -D CMAKE_PREFIX_PATH=${scratchDir}/moved)
    if(hasPkgConfig)
        get_filename_component(folder ${docs} DIRECTORY)
        run(${testDir}/../docs/links ${folder})
        build_examples(${folder}/examples -D CMAKE_PREFIX_PATH=${scratchDir}/moved)
        build_by_pkg_config(${scratchDir}/moved)
    endif()
else()
    build_by_cmake()
    build_guide(/usr/share/doc/pluginmanger-doc/docs)
    build_by_pkg_config()
endif()

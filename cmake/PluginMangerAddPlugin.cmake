# pluginmanger_add_plugin(<name> [QT_PLUGIN] SOURCES <source>...)
#
# Adds the target <name>, a plug-in whose file is <name>.dll on every platform. It is linked to
# pluginManger::interfaces, exports only what its sources mark for export, and must find every function
# it uses when it is linked, not when a host loads it.
#
# QT_PLUGIN   a plug-in for QPluginLoader, with moc run on its sources; a plain library otherwise.
#
# With Clang's sanitizers the last promise does not hold: their functions come from the program.
function(pluginmanger_add_plugin name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "QT_PLUGIN" "" "SOURCES")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "pluginmanger_add_plugin(${name}): unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT arg_SOURCES)
        message(FATAL_ERROR "pluginmanger_add_plugin(${name}): SOURCES is missing")
    endif()
    if(name MATCHES "\\.dll$")
        message(FATAL_ERROR "pluginmanger_add_plugin(${name}): the name is given without \".dll\"")
    endif()

    add_library(${name} MODULE ${arg_SOURCES})
    target_compile_features(${name} PRIVATE cxx_std_17)
    target_link_libraries(${name} PRIVATE pluginManger::interfaces)
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        SUFFIX ".dll"
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    foreach(config IN LISTS CMAKE_CONFIGURATION_TYPES CMAKE_BUILD_TYPE)
        string(TOUPPER "${config}" config)
        set_property(TARGET ${name} PROPERTY ${config}_POSTFIX "")
    endforeach()
    if(arg_QT_PLUGIN)
        # moc is chosen by Qt's version, which a project knows only in the folders where it looked for Qt.
        find_package(Qt5 5.15 REQUIRED COMPONENTS Core Widgets)
        set_property(DIRECTORY PROPERTY Qt5Core_VERSION_MAJOR ${Qt5Core_VERSION_MAJOR})
        set_property(DIRECTORY PROPERTY Qt5Core_VERSION_MINOR ${Qt5Core_VERSION_MINOR})
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_compile_definitions(${name} PRIVATE QT_PLUGIN)
    endif()

    # A library with unique symbols never leaves memory on Linux, however often it is unloaded.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
    if(MSVC)
        # Entry points are extern "C" and may throw, which this compiler believes of no such function by default.
        target_compile_options(${name} PRIVATE /EHc-)
    endif()
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        string(TOUPPER "${CMAKE_BUILD_TYPE}" config)
        get_target_property(options ${name} COMPILE_OPTIONS)
        get_target_property(linkOptions ${name} LINK_OPTIONS)
        set(flags ${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${config}} ${CMAKE_MODULE_LINKER_FLAGS}
            ${options} ${linkOptions})
        if(NOT (CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND "${flags}" MATCHES "-fsanitize="))
            target_link_options(${name} PRIVATE LINKER:-z,defs)
        endif()
    endif()
endfunction()

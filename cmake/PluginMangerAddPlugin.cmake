# pluginmanger_add_plugin(<name> [QT_PLUGIN] SOURCES <source>...)
#
# Adds the target <name>, a plug-in whose file is <name>.dll on every platform. It is linked to
# pluginManger::interfaces, exports only what its sources mark for export, and must find every function
# it uses when it is linked, not when a host loads it.
#
# QT_PLUGIN   a plug-in for QPluginLoader, with moc run on its sources; a plain library otherwise.
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
    if(arg_QT_PLUGIN)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_compile_definitions(${name} PRIVATE QT_PLUGIN)
    endif()

    # A library with unique symbols never leaves memory on Linux, however often it is unloaded.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
    # Clang's sanitizers leave their functions for the program to provide.
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux"
       AND NOT (CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND CMAKE_CXX_FLAGS MATCHES "-fsanitize="))
        target_link_options(${name} PRIVATE LINKER:-z,defs)
    endif()
endfunction()

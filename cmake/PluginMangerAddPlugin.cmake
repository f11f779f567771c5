# pluginmanger_add_plugin(<target> [NAME <name>] [VERSION <version>] [SET <set>]
#                         [DEPENDENCIES <name>[=<version>]...] [QT_PLUGIN] SOURCES <source>...)
#
# Adds the target <target>, a plug-in whose file is <name>.dll on every platform. It is linked to
# pluginManger::interfaces, exports only what its sources mark for export, and must find every function
# it uses when it is linked, not when a host loads it.
#
# NAME          the plug-in's name, without ".dll"; the target's by default. Where NAME is given the target
#               may be left out, and is called like the plug-in then.
# SET           the set whose configuration file lists the plug-in, see pluginmanger_write_config(). Any word
#               of the project's. VERSION is needed then.
# VERSION       the plug-in's version in that file, any text.
# DEPENDENCIES  the plug-ins that it needs, each with the version it needs. One without a version must be in
#               the same set, and is needed in the version that it has there.
# QT_PLUGIN     a plug-in for QPluginLoader, with moc run on its sources; a plain library otherwise.
#
# With Clang's sanitizers, undefined functions are not found at link time: theirs come from the program.
function(pluginmanger_add_plugin)
    cmake_parse_arguments(PARSE_ARGV 0 arg "QT_PLUGIN" "NAME;VERSION;SET" "DEPENDENCIES;SOURCES")
    set(name "${arg_NAME}")
    if(ARGC GREATER 0 AND NOT ARGV0 MATCHES "^(NAME|VERSION|SET|DEPENDENCIES|QT_PLUGIN|SOURCES)$")
        set(name "${ARGV0}")
        list(POP_FRONT arg_UNPARSED_ARGUMENTS)
    endif()
    if(NOT DEFINED arg_NAME)
        set(arg_NAME "${name}")
    endif()
    set(where "pluginmanger_add_plugin(${name})")
    _pluginmanger_check_plugin()

    add_library(${name} MODULE ${arg_SOURCES})
    target_compile_features(${name} PRIVATE cxx_std_17)
    target_link_libraries(${name} PRIVATE pluginManger::interfaces)
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        SUFFIX ".dll"
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    if(NOT arg_NAME STREQUAL name)
        set_property(TARGET ${name} PROPERTY OUTPUT_NAME "${arg_NAME}")
    endif()
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

    if(arg_SET)
        _pluginmanger_add_to_set()
    endif()
endfunction()

# pluginmanger_write_config(<set> <file>)
#
# Writes the configuration file that lists the plug-ins of the set, also those that are added after this call,
# when CMake has read the whole project. A relative <file> lies in the current binary directory.
function(pluginmanger_write_config set file)
    if(ARGC GREATER 2)
        message(FATAL_ERROR "pluginmanger_write_config(${set}): unknown arguments: ${ARGN}")
    endif()
    get_filename_component(path "${file}" ABSOLUTE BASE_DIR ${CMAKE_CURRENT_BINARY_DIR})
    cmake_language(EVAL CODE "cmake_language(DEFER DIRECTORY [[${CMAKE_SOURCE_DIR}]]
        CALL _pluginmanger_write_config [[${set}]] [[${path}]])")
endfunction()

macro(_pluginmanger_check_plugin)
    if("${name}" STREQUAL "")
        message(FATAL_ERROR "pluginmanger_add_plugin: the target's name or NAME is missing")
    endif()
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "${where}: unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "${where}: a value is missing after: ${arg_KEYWORDS_MISSING_VALUES}")
    endif()
    if(NOT arg_SOURCES)
        message(FATAL_ERROR "${where}: SOURCES is missing")
    endif()
    if(arg_NAME MATCHES "\\.dll$")
        message(FATAL_ERROR "${where}: the name is given without \".dll\"")
    endif()
    if(NOT arg_NAME MATCHES "^[^][/\\\"<>|:*?; \t=]+$")
        message(FATAL_ERROR "${where}: \"${arg_NAME}\" cannot be the name of a plug-in")
    endif()
    if(DEFINED arg_SET AND NOT arg_SET MATCHES "^[A-Za-z0-9_.-]+$")
        message(FATAL_ERROR
            "${where}: SET \"${arg_SET}\" has other characters than letters, digits, \"_\", \".\" and \"-\"")
    endif()
    if(DEFINED arg_SET AND NOT DEFINED arg_VERSION)
        message(FATAL_ERROR "${where}: VERSION is missing, which SET needs")
    endif()
    foreach(version IN ITEMS "${arg_VERSION}" ${arg_DEPENDENCIES})
        if(version MATCHES "[][\\\";\t\n]|=$")
            message(FATAL_ERROR "${where}: \"${version}\" is no version")
        endif()
    endforeach()
endmacro()

# A set is a list of names in a global property; every plug-in in it has properties of its own.
macro(_pluginmanger_add_to_set)
    set(property PLUGINMANGER_SET_${arg_SET})
    get_property(names GLOBAL PROPERTY ${property})
    if(arg_NAME IN_LIST names)
        message(FATAL_ERROR "${where}: SET ${arg_SET} has a plug-in \"${arg_NAME}\" already")
    endif()
    get_property(ofQt GLOBAL PROPERTY ${property}_QT_PLUGIN)
    if(names AND NOT ofQt STREQUAL arg_QT_PLUGIN)
        message(FATAL_ERROR "${where}: SET ${arg_SET} has Qt plug-ins and plain libraries, which no manager loads both")
    endif()
    set_property(GLOBAL PROPERTY ${property}_QT_PLUGIN ${arg_QT_PLUGIN})
    set_property(GLOBAL APPEND PROPERTY ${property} "${arg_NAME}")
    set_property(GLOBAL PROPERTY ${property}/${arg_NAME}/VERSION "${arg_VERSION}")
    set_property(GLOBAL PROPERTY ${property}/${arg_NAME}/DEPENDENCIES "${arg_DEPENDENCIES}")
endmacro()

function(_pluginmanger_write_config set file)
    set(property PLUGINMANGER_SET_${set})
    get_property(names GLOBAL PROPERTY ${property})
    if(NOT names)
        message(FATAL_ERROR "pluginmanger_write_config(${set}): no plug-in has SET ${set}")
    endif()
    set(entries)
    foreach(name IN LISTS names)
        get_property(version GLOBAL PROPERTY ${property}/${name}/VERSION)
        get_property(dependencies GLOBAL PROPERTY ${property}/${name}/DEPENDENCIES)
        _pluginmanger_resolve_dependencies(needed)
        list(APPEND entries
            "        { \"name\": \"${name}\", \"version\": \"${version}\", \"dependencies\": [${needed}] }")
    endforeach()
    list(JOIN entries ",\n" entries)
    set(content "{\n    \"pluginList\": [\n${entries}\n    ]\n}")
    file(CONFIGURE OUTPUT "${file}" CONTENT "@content@" @ONLY NEWLINE_STYLE UNIX)
endfunction()

# Sets `result` to the JSON objects of the dependencies of the plug-in `name`, in the scope of the caller.
macro(_pluginmanger_resolve_dependencies result)
    set(${result})
    foreach(dependency IN LISTS dependencies)
        string(REGEX MATCH "^([^=]+)(=(.*))?$" matched "${dependency}")
        set(needs "${CMAKE_MATCH_1}")
        set(wanted "${CMAKE_MATCH_3}")
        if(needs IN_LIST names)
            get_property(found GLOBAL PROPERTY ${property}/${needs}/VERSION)
            if(wanted STREQUAL "")
                set(wanted "${found}")
            elseif(NOT wanted STREQUAL found)
                message(FATAL_ERROR "pluginmanger_write_config(${set}): "
                    "${name} needs ${needs} ${wanted}, but the set has ${needs} ${found}")
            endif()
        elseif(wanted STREQUAL "")
            message(FATAL_ERROR "pluginmanger_write_config(${set}): "
                "${name} needs ${needs}, which is not in the set: give its version, ${needs}=<version>")
        endif()
        list(APPEND ${result} "{ \"name\": \"${needs}\", \"version\": \"${wanted}\" }")
    endforeach()
    list(JOIN ${result} ", " ${result})
endmacro()

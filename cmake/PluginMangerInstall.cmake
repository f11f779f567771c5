# Installs the libraries, their headers, the files by which CMake and pkg-config find them, the tools and the
# examples. Whatever of it lies beside each other may be moved together afterwards.
#
# Components: runtime, development, tools, examples, documentation.
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/pluginManger)
set(headerDir ${CMAKE_INSTALL_INCLUDEDIR}/pluginManger)
set(pkgConfigDir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(dataDir ${CMAKE_INSTALL_DATADIR}/pluginManger)

install(TARGETS pluginManger pluginManger_interfaces pluginManger_COMMON
    EXPORT pluginMangerTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    PUBLIC_HEADER DESTINATION ${headerDir} COMPONENT development
    INCLUDES DESTINATION ${headerDir})
install(EXPORT pluginMangerTargets
    NAMESPACE pluginManger::
    DESTINATION ${packageDir}
    COMPONENT development)

configure_package_config_file(cmake/pluginMangerConfig.cmake.in
    ${PROJECT_BINARY_DIR}/pluginMangerConfig.cmake
    INSTALL_DESTINATION ${packageDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pluginMangerConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/pluginMangerConfig.cmake
    ${PROJECT_BINARY_DIR}/pluginMangerConfigVersion.cmake
    cmake/PluginMangerAddPlugin.cmake
    DESTINATION ${packageDir}
    COMPONENT development)

file(RELATIVE_PATH prefixFromPkgConfig /${pkgConfigDir} /)
string(REGEX REPLACE "/$" "" prefixFromPkgConfig ${prefixFromPkgConfig})
configure_file(cmake/pluginManger.pc.in ${PROJECT_BINARY_DIR}/pluginManger.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pluginManger.pc DESTINATION ${pkgConfigDir} COMPONENT development)
install(FILES schema/pluginconfig.schema.json DESTINATION ${dataDir} COMPONENT development)

file(RELATIVE_PATH dataFromBin /${CMAKE_INSTALL_BINDIR} /${dataDir})
if(WIN32)
    set(newPlugin pluginmanger-new-plugin.cmd)
else()
    set(newPlugin pluginmanger-new-plugin)
endif()
configure_file(tools/newPlugin/${newPlugin}.in ${PROJECT_BINARY_DIR}/${newPlugin} @ONLY)
install(PROGRAMS ${PROJECT_BINARY_DIR}/${newPlugin} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(DIRECTORY tools/newPlugin
    DESTINATION ${dataDir}
    COMPONENT tools
    PATTERN "pluginmanger-new-plugin*" EXCLUDE)

if(PLUGINMANGER_BUILD_TOOLS)
    install(TARGETS plugincheck RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    install(FILES schema/plugincheck-report.schema.json DESTINATION ${dataDir} COMPONENT tools)
    configure_file(tools/plugincheck/plugincheck.1.in ${PROJECT_BINARY_DIR}/plugincheck.1 @ONLY)
    if(UNIX AND NOT PLUGINMANGER_DEBIAN_FILES)
        install(FILES ${PROJECT_BINARY_DIR}/plugincheck.1
            DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
            COMPONENT tools)
    endif()
endif()

install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT examples)
install(FILES cmake/PluginMangerCompileOptions.cmake cmake/PluginMangerWindowsRuntime.cmake
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples/cmake
    COMPONENT examples)
install(DIRECTORY tests/package/guide DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT examples)
install(FILES README.md README.zh-CN.md CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT documentation)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation PATTERN Doxyfile EXCLUDE)

# install_links(<component> <document>...): the links in the documents of a component.
function(install_links component)
    install(CODE "
        set(documents [[${ARGN}]])
        set(sourceDir [[${PROJECT_SOURCE_DIR}]])
        set(docDir [[${CMAKE_INSTALL_DOCDIR}]])
        set(headerDir [[${headerDir}]])
        set(dataDir [[${dataDir}]])
        include([[${PROJECT_SOURCE_DIR}/cmake/PluginMangerInstallDocuments.cmake]])"
        COMPONENT ${component})
endfunction()

foreach(folder docs examples)
    file(GLOB_RECURSE ${folder} RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS ${folder}/*.md)
endforeach()
install_links(documentation README.md README.zh-CN.md CHANGELOG.md ${docs})
install_links(examples ${examples})

if(PLUGINMANGER_BUILD_REFERENCE)
    find_program(DOXYGEN doxygen REQUIRED)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/reference)
    add_custom_target(reference ALL
        COMMAND ${CMAKE_COMMAND} -E env API_DIRECTORY=${PROJECT_BINARY_DIR}/reference ${DOXYGEN} docs/Doxyfile
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
    install(DIRECTORY ${PROJECT_BINARY_DIR}/reference/html
        DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT documentation)
endif()

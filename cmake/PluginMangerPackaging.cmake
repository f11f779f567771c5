# What `cpack` makes packages of, for every generator: `cpack -G DEB` makes one Debian package for each group
# of components, `cpack -G ZIP` and `cpack -G TGZ` one archive of everything.
set(CPACK_PACKAGE_VENDOR "pluginManger maintainers")
set(CPACK_PACKAGE_CONTACT "pluginManger maintainers <maintainers@pluginmanger.invalid>" CACHE STRING
    "Whom packages name as their maintainer")
set(CPACK_PACKAGE_DESCRIPTION_FILE ${PROJECT_SOURCE_DIR}/packaging/description.txt)
set(CPACK_PACKAGE_INSTALL_DIRECTORY pluginManger)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime development tools documentation examples)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DOCUMENTATION_GROUP doc)
set(CPACK_COMPONENT_EXAMPLES_GROUP doc)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src/common)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

# The first line of a Debian package's description is its title, unless there is one for all of them.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
file(READ packaging/description.txt description)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "plug-in manager for CAM applications (libraries)
${description}
This package has the libraries that a host needs to run.")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "plug-in manager for CAM applications (development)
${description}
This package has what is needed to build hosts and plug-ins.")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "plug-in manager for CAM applications (tools)
${description}
This package has plugincheck, which says why a set of plug-ins does not load, and pluginmanger-new-plugin, which
writes new plug-ins.")
set(CPACK_DEBIAN_DOC_DESCRIPTION "plug-in manager for CAM applications (documentation)
${description}
This package has the documentation, and the sources of examples.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libpluginmanger${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpluginmanger-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qtbase5-dev (>= 5.15)")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "pluginmanger-doc, pluginmanger-tools, libgoogle-glog-dev, pkgconf")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME pluginmanger-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "cmake (>= 3.20)")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "libpluginmanger-dev, graphviz")

set(CPACK_DEBIAN_DOC_PACKAGE_NAME pluginmanger-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)

# What a Debian package has beside its files: copyright, change log, manual page. In other packages it would only lie
# about.
option(PLUGINMANGER_DEBIAN_FILES "Install what Debian wants in each of its packages" OFF)
if(PLUGINMANGER_DEBIAN_FILES)
    find_program(GZIP gzip REQUIRED)
    set(changeLog ${PROJECT_BINARY_DIR}/packaging/changelog.Debian)
    configure_file(packaging/changelog.in ${changeLog} @ONLY)
    execute_process(COMMAND ${GZIP} --best --no-name --force ${changeLog} COMMAND_ERROR_IS_FATAL ANY)
    set(manuals packaging/pluginmanger-new-plugin.1)
    if(PLUGINMANGER_BUILD_TOOLS)
        list(APPEND manuals ${PROJECT_BINARY_DIR}/plugincheck.1)
    endif()
    foreach(manual IN LISTS manuals)
        file(COPY ${manual} DESTINATION ${PROJECT_BINARY_DIR}/packaging)
        get_filename_component(name ${manual} NAME)
        set(manual ${PROJECT_BINARY_DIR}/packaging/${name})
        execute_process(COMMAND ${GZIP} --best --no-name --force ${manual} COMMAND_ERROR_IS_FATAL ANY)
        install(FILES ${manual}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    endforeach()
    foreach(component runtime development tools documentation)
        string(TOUPPER ${component} COMPONENT)
        string(REPLACE DOCUMENTATION DOC group ${COMPONENT})
        set(directory ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${group}_PACKAGE_NAME})
        install(FILES packaging/copyright ${changeLog}.gz DESTINATION ${directory} COMPONENT ${component})
    endforeach()
endif()

if(WIN32)
    include(PluginMangerWindowsPackage)
endif()
include(CPack)

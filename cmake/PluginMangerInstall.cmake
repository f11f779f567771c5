# Installs the libraries, their headers and the CMake package that finds them.
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/pluginManger)
set(headerDir ${CMAKE_INSTALL_INCLUDEDIR}/pluginManger)

install(TARGETS pluginManger pluginManger_interfaces pluginManger_COMMON
    EXPORT pluginMangerTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    PUBLIC_HEADER DESTINATION ${headerDir}
    INCLUDES DESTINATION ${headerDir})
install(EXPORT pluginMangerTargets NAMESPACE pluginManger:: DESTINATION ${packageDir})

configure_package_config_file(cmake/pluginMangerConfig.cmake.in
    ${PROJECT_BINARY_DIR}/pluginMangerConfig.cmake
    INSTALL_DESTINATION ${packageDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pluginMangerConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/pluginMangerConfig.cmake
    ${PROJECT_BINARY_DIR}/pluginMangerConfigVersion.cmake
    cmake/PluginMangerAddPlugin.cmake
    DESTINATION ${packageDir})

# What cpack packs for Windows beside what is installed: the example host with all that it needs, ready to run.
include(PluginMangerWindowsRuntime)

if(PLUGINMANGER_BUILD_EXAMPLES)
    get_property(camPlugins GLOBAL PROPERTY EXAMPLE_CAM_PLUGINS)
    get_property(desktopPlugins GLOBAL PROPERTY EXAMPLE_DESKTOP_PLUGINS)
    install(TARGETS pluginManger-host ${camPlugins}
        RUNTIME DESTINATION example/host
        LIBRARY DESTINATION example/host)
    install(TARGETS ${desktopPlugins} LIBRARY DESTINATION example/plugins/desktop)
    install(DIRECTORY examples/pluginconfig DESTINATION example/host)
    install(FILES ${windowsRuntimeLibraries} $<TARGET_FILE:pluginManger> $<TARGET_FILE:pluginManger::COMMON>
        DESTINATION example/host)
    install(FILES ${windowsPlatformPlugins} DESTINATION example/host/platforms)
endif()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME pluginManger-${PROJECT_VERSION}-windows-x86_64)

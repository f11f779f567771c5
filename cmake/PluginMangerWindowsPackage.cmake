# What cpack packs for Windows beside what is installed: the example host with all that it needs, ready to run.
include(PluginMangerWindowsRuntime)

if(PLUGINMANGER_BUILD_EXAMPLES)
    get_property(examplePlugins GLOBAL PROPERTY EXAMPLE_PLUGINS)
    install(TARGETS pluginManger-host ${examplePlugins}
        RUNTIME DESTINATION example/host
        LIBRARY DESTINATION example/host)
    install(DIRECTORY examples/pluginconfig examples/jobs DESTINATION example/host
        FILES_MATCHING PATTERN "*.json")
    install(FILES ${windowsRuntimeLibraries} $<TARGET_FILE:pluginManger> $<TARGET_FILE:pluginManger::COMMON>
        DESTINATION example/host)
    install(FILES ${windowsPlatformPlugins} DESTINATION example/host/platforms)
endif()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME pluginManger-${PROJECT_VERSION}-windows-x86_64)

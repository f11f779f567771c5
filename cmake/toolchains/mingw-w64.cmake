# Builds for 64-bit Windows with Debian's MinGW-w64, against the SDK that scripts/windows/sdk makes.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The compilers with POSIX threads: the others have no std::thread that Qt and glog could use.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(DEFINED ENV{PLUGINMANGER_WINDOWS_SDK})
    set(sdk $ENV{PLUGINMANGER_WINDOWS_SDK})
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(sdk $ENV{XDG_CACHE_HOME}/pluginmanger/windows-sdk)
else()
    set(sdk $ENV{HOME}/.cache/pluginmanger/windows-sdk)
endif()
set(PLUGINMANGER_WINDOWS_SDK ${sdk} CACHE PATH "The folder that scripts/windows/sdk has made")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PLUGINMANGER_WINDOWS_SDK)
# A caller may name further folders in which packages for Windows lie.
list(APPEND CMAKE_FIND_ROOT_PATH ${PLUGINMANGER_WINDOWS_SDK})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

get_filename_component(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/windows/wine ABSOLUTE)

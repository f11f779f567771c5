# Builds for 64-bit Windows with Debian's MinGW-w64, against the SDK that scripts/windows/sdk makes.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The compilers with POSIX threads: the others have no std::thread that Qt and glog could use.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(DEFINED ENV{PLUGINMANGER_WINDOWS_SDK})
    set(windowsSdk $ENV{PLUGINMANGER_WINDOWS_SDK})
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(windowsSdk $ENV{XDG_CACHE_HOME}/pluginmanger/windows-sdk)
else()
    set(windowsSdk $ENV{HOME}/.cache/pluginmanger/windows-sdk)
endif()
# A caller may name further folders in which packages for Windows lie.
list(APPEND CMAKE_FIND_ROOT_PATH ${windowsSdk})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

get_filename_component(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/windows/wine ABSOLUTE)

#pragma once

#include <QtCore/QtGlobal>

#include <string>

/// Exports the functions where the library is built and imports them where it is used.
#ifdef PLUGINMANGER_COMMON_LIBRARY
#    define PLUGINMANGER_COMMON_EXPORT Q_DECL_EXPORT
#else
#    define PLUGINMANGER_COMMON_EXPORT Q_DECL_IMPORT
#endif

/**
 * Where the host keeps its files.
 *
 * This is a stand-in for a host's own common library, and reads the environment at each call. A host
 * that brings its own names that library's CMake target in PLUGINMANGER_COMMON_TARGET.
 */
namespace Common {

/// The host's base directory in UTF-8: PLUGINMANGER_PATH, empty by default. Empty means the current
/// directory.
PLUGINMANGER_COMMON_EXPORT std::string getPath();

/// The name, in UTF-8, of the directory of the plug-in configuration files below the base directory:
/// PLUGINMANGER_PLUGINCONFIG, "pluginconfig" by default.
PLUGINMANGER_COMMON_EXPORT std::string getPath_pluginconfig();

}

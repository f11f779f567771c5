#pragma once

#include "Configuration.h"
#include "LibraryFile.h"

namespace PluginCheck {

/// Whether this build can compare a configuration file with its schema.
bool knowsSchema();

/// Tells what most of the libraries in these folders are for that the configurations list. Where there are
/// none, that is what this program is for. `tools` are the folders of the desktop set.
LibraryFile::Format formatOfLibraries(const QVector<Configuration> &configurations,
                                      const QStringList &libraries, const QStringList &tools);

/**
 * Says what is wrong with the configuration files of one call, and fills the report's list of configurations,
 * with all but what libraries tell.
 *
 * `format` is that of the libraries: not every name is one on Windows.
 */
void checkConfigurations(const QVector<Configuration> &configurations, Report &report,
                         LibraryFile::Format format = nativeFormat);

}

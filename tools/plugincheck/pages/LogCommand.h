#pragma once

#include <QtCore/QStringList>

namespace PluginCheck {

/**
 * "plugincheck log": tells what stands in the logs of hosts.
 *
 * `arguments` is what follows "log" on the command line. Returns the exit status: 0 when everything in the
 * logs loaded, 1 when something did not, 2 when the arguments are wrong, 3 when a file could not be read or
 * written. Needs a QCoreApplication.
 */
int runLogCommand(const QStringList &arguments);

}

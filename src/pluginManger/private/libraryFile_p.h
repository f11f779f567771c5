#pragma once

#include <QtCore/QString>

namespace PluginMangerInternal {

/**
 * Return why the system's loader must not be given a library, in the words of any failed load, or nothing.
 *
 * On Linux the loader maps a file by what its headers promise, and the process ends when it touches a part
 * that is not there, as in a copy that was cut off; and it waits for good at a pipe. What it refuses by
 * itself is left to it. Elsewhere it refuses these, too.
 */

/// `fileName` is what QLibrary is given: the path of a file, or a name that is looked for. QLibrary asks the
/// loader for others made of it, too.
QString libraryLoadFault(const QString &fileName);

/// `fileName` is what QPluginLoader has found.
QString pluginLoadFault(const QString &fileName);

}

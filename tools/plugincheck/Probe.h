#pragma once

#include "Options.h"

namespace PluginCheck {

/// The option by which this program calls itself to load one library.
inline constexpr char probeOption[] = "--probe-library";

/// What that process says first, when all is ready for the library: whether it has the manager's library,
/// too.
inline constexpr char ready[] = "ready";
inline constexpr char readyWithManager[] = "ready with the manager";

/**
 * Loads the library of each plug-in that was found in a process of its own, as its manager would, and adds
 * what became of it to the report. Needs an event loop's thread, that is a QCoreApplication.
 */
void probeLibraries(const QVector<Configuration> &configurations, const Options &options, Report &report);

/// What the process does that loads a library. Returns the exit status.
int runProbe(int argc, char **argv);

}

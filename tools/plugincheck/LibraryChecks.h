#pragma once

#include "Configuration.h"
#include "LibrarySearch.h"

namespace PluginCheck {

/// Says what is wrong with the libraries of the plug-ins, without loading one. Fills in where each was found.
void checkLibraries(const QVector<Configuration> &configurations, const LibrarySearch &search,
                    Report &report);

/// Whether a library with a finding of this kind is not loaded.
bool isRefusal(Code code);

}

#pragma once

#include "Configuration.h"

namespace PluginCheck {

/// Whether this build can compare a configuration file with its schema.
bool knowsSchema();

/**
 * Says what is wrong with the configuration files of one call, and fills the report's list of configurations,
 * with all but what libraries tell.
 */
void checkConfigurations(const QVector<Configuration> &configurations, Report &report);

}

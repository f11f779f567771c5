#pragma once

#include "Configuration.h"

namespace PluginCheck {

/// Where a configuration file breaks its schema.
struct SchemaMistake
{
    Place place;
    /// The entry of the list that it is in, or -1.
    int entry = -1;
    QString message;
    QString consequence;
};

/// Compares a configuration with its schema. Returns nothing where this build cannot.
QVector<SchemaMistake> schemaMistakes(const Configuration &configuration);

}

#pragma once

#include "Dependencies.h"

namespace PluginCheck {

/// Where a configuration file breaks its schema.
struct SchemaMistake
{
    Place place;
    /// The entry of the list that it is in, or -1.
    int entry = -1;
    /// The dependency of that entry that it is in, or -1.
    int dependency = -1;
    /// The key that is not there, where that is the mistake; the place is then that of the object.
    QString missingKey = {};
    QString message;
    QString consequence;
};

/// Compares a configuration with its schema. Returns nothing where this build cannot. What a mistake leads to
/// depends on what becomes of the dependencies.
QVector<SchemaMistake> schemaMistakes(const Configuration &configuration, const DependencyResults &results);

}

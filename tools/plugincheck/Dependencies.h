#pragma once

#include "Configuration.h"

namespace PluginCheck {

/// What becomes of one dependency.
enum class DependencyState { Met, Missing, Version, Cycle, Self };

/// What the dependency check finds in one configuration file.
struct DependencyResults
{
    /// For each entry the states of its dependencies. Entries that do not count have none.
    QVector<QVector<DependencyState>> states;
    /// Whether the manager's check passes under an entry's name.
    QVector<bool> sound;
    /// One circle for each group of plug-ins that depend on each other; first and last are the same.
    QVector<QVector<int>> cycles;
};

/// Does what QTPluginsMangerPrivate::check() does, for all entries at once and in linear time.
DependencyResults checkDependencies(const Configuration &configuration);

/// Returns the entry that a dependency names, or -1.
int entryNamed(const Configuration &configuration, const QVariant &name);

}

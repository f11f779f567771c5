#pragma once

#include "Configuration.h"

namespace PluginCheck {

/// What becomes of one dependency.
enum class DependencyState { Met, Missing, Version, Cycle, Self };

struct DependencyResult
{
    DependencyState state;
    /// The entry that is needed, or -1.
    int needed;
};

/// What the dependency check finds in one configuration file.
struct DependencyResults
{
    /// For each entry what becomes of its dependencies. Entries that do not count have none.
    QVector<QVector<DependencyResult>> dependencies;
    /// Whether the manager's check passes under an entry's name.
    QVector<bool> sound;
    /// Circles of plug-ins that depend on each other, in whatever version; first and last are the same. Each
    /// group of them has one at least, and each dependency in it is in one, as long as there are not too
    /// many.
    QVector<QVector<int>> cycles;
    bool hasMoreCycles = false;
};

/// Does what QTPluginsMangerPrivate::check() does, for all entries at once and in linear time.
DependencyResults checkDependencies(const Configuration &configuration);

/// Where the manager looks up the dependencies of the plug-in of that name: an entry, or -1. It asks for
/// those of the library's file, and so finds them only in an entry that is called like the file.
int entryChecked(const Configuration &configuration, const QString &plugin);

/// Whether the manager that has read this configuration refuses to load the plug-in of that name.
bool isRefused(const QString &plugin, const Configuration &configuration, const DependencyResults &results);

/**
 * For each entry the place of one of these plug-ins that is refused with it: the manager looks the plug-in's
 * dependencies up in this entry, or in one that leads here. -1 where none is.
 */
QVector<int> refusedWithEntries(const QStringList &plugins, const Configuration &configuration,
                                const DependencyResults &results);

/// Whether a list can have this name: what is neither a text nor converted to one equals no name.
bool canBeListed(const QVariant &name);

/// Returns the entry that a dependency names, or -1.
int entryNamed(const Configuration &configuration, const QVariant &name);

}

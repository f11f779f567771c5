#pragma once

#include "ConfigurationText.h"

#include <QtCore/QVariant>

namespace PluginCheck {

/// Which manager reads a configuration file, and which of its files it is.
enum class Set { Cam, Dfm, Desktop };

QString nameOf(Set set);

/// Returns the set of that name.
std::optional<Set> setNamed(const QString &name);

/// Returns the set whose configuration file is called like this.
std::optional<Set> setOfFile(const QString &file);

/// A dependency or an entry, with the values that the manager compares.
struct Dependency
{
    QVariant name;
    QVariant version;
    DependencyPlaces places;
};

struct Entry
{
    QString name;
    QVariant version;
    QVector<Dependency> dependencies;
    EntryPlaces places;
};

/// A configuration file as its manager reads it.
struct Configuration
{
    QString file;
    Set set;
    QByteArray text = {};
    QJsonObject root = {};
    bool isObject = false;
    ConfigurationPlaces places = {};
    QVector<Entry> entries = {};
    /// The entry that counts, for each name.
    QHash<QString, int> entryOfName = {};

    bool counts(int entry) const { return entryOfName.value(entries.at(entry).name) == entry; }
};

/// Reads a file. Adds a finding when there is nothing to read, and then returns nothing.
std::optional<Configuration> readConfiguration(const QString &path, Set set, Report &report);

/// The same for a text that was read from the file.
std::optional<Configuration> parseConfiguration(const QString &file, Set set, const QByteArray &text,
                                                Report &report);

/// What a version or a name looks like in a report.
QString textOf(const QVariant &value);

}

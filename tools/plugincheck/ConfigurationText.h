#pragma once

#include "Report.h"

#include <QtCore/QByteArray>

namespace PluginCheck {

/// Where the parts of a configuration file stand in its text, which QJsonDocument does not tell.
struct DependencyPlaces
{
    Place entry;
    Place name;
    Place version;
};

struct EntryPlaces
{
    Place entry;
    Place name;
    Place version;
    /// The value of the key "dependencies", and what stands in it.
    Place dependencyList = {};
    QVector<DependencyPlaces> dependencies = {};
};

/// A key of an entry or of a dependency that nobody reads.
struct UnknownKey
{
    QString key;
    int entry;
    /// The dependency of the entry that it stands in, or -1.
    int dependency;
    Place place;
};

/// A key that stands twice in one object.
struct DuplicateKey
{
    QString key;
    /// The entry of the list that it stands in, or -1.
    int entry;
    Place first;
    Place second;
};

struct ConfigurationPlaces
{
    Place root;
    Place list;
    QVector<EntryPlaces> entries;
    QVector<DuplicateKey> duplicateKeys;
    /// In the order of the text.
    QVector<UnknownKey> unknownKeys = {};
};

/**
 * Finds the places in a text that QJsonDocument reads without an error. With any other text it ends, too, but
 * finds what it finds.
 *
 * Takes one pass and keeps its own stack. Of equal keys the later one counts, as with QJsonDocument.
 */
ConfigurationPlaces placesIn(const QByteArray &json);

/// Returns the place of a byte.
Place placeOf(const QByteArray &text, int offset);

/// Returns the line that a byte is in, or the part of a long one around it, and the byte's column in that.
QPair<QString, int> sourceAt(const QByteArray &text, int offset);

/// The same for a place. Takes a pass over the text.
QPair<QString, int> sourceAt(const QByteArray &text, Place place);

}

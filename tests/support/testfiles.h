#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// The files that a test works on.
namespace TestFiles {

void write(const QString &path, const QByteArray &content);
QByteArray read(const QString &path);

/// Takes a file away, if there is one. Windows lets go of no library that is loaded, but lets it have another
/// name; the next call of removeLeftovers() deletes it if it then can.
void remove(const QString &path);
void removeLeftovers(const QString &directory);

/// Puts a file in the place of another by a new file, as an update does.
void replace(const QString &path, const QString &with);

/// The JSON of one entry of a plug-in list.
QJsonObject entry(const QString &name, const QJsonValue &version = QStringLiteral("1.0"),
                  const QJsonArray &dependencies = {});
QJsonObject dependency(const QString &name, const QJsonValue &version = QStringLiteral("1.0"));

/// The content of a configuration file.
QByteArray config(const QJsonArray &entries);
QByteArray configOf(const QStringList &names);

}

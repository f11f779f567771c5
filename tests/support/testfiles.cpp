#include "testfiles.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

namespace {

const QString leftoverSuffix = QStringLiteral(".removed");

}

void TestFiles::write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray TestFiles::read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}

void TestFiles::remove(const QString &path)
{
    if (!QFile::exists(path) || QFile::remove(path))
        return;
    int number = 0;
    QString leftover;
    do
        leftover = path + QString::number(++number) + leftoverSuffix;
    while (QFile::exists(leftover));
    if (!QFile::rename(path, leftover))
        qFatal("cannot remove %s", qPrintable(path));
}

void TestFiles::removeLeftovers(const QString &directory)
{
    QDir leftovers(directory, '*' + leftoverSuffix);
    for (const QString &file : leftovers.entryList(QDir::Files))
        leftovers.remove(file);
}

void TestFiles::replace(const QString &path, const QString &with)
{
    remove(path);
    if (!QFile::copy(with, path))
        qFatal("cannot replace %s", qPrintable(path));
}

QJsonObject TestFiles::entry(const QString &name, const QJsonValue &version, const QJsonArray &dependencies)
{
    return {{QStringLiteral("name"), name},
            {QStringLiteral("version"), version},
            {QStringLiteral("dependencies"), dependencies}};
}

QJsonObject TestFiles::dependency(const QString &name, const QJsonValue &version)
{
    return {{QStringLiteral("name"), name}, {QStringLiteral("version"), version}};
}

QByteArray TestFiles::config(const QJsonArray &entries)
{
    return QJsonDocument(QJsonObject{{QStringLiteral("pluginList"), entries}}).toJson();
}

QByteArray TestFiles::configOf(const QStringList &names)
{
    QJsonArray entries;
    for (const QString &name : names)
        entries.append(entry(name));
    return config(entries);
}

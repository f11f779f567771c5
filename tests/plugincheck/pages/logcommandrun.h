#pragma once

#include "LogCommand.h"
#include "testfiles.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

/// Runs "plugincheck log" on files in a folder of its own.
class LogCommandRun
{
protected:
    QString folder() const { return m_files.path(); }
    QString file(const QString &name) const { return m_files.filePath(name); }
    QString write(const QString &name, const QByteArray &content);
    /// Returns the status.
    int run(QStringList arguments, QByteArray *output);
    /// The report in JSON; a status other than the one expected ends the test.
    QJsonObject report(const QStringList &arguments, int status);

private:
    QTemporaryDir m_files;
};

QJsonObject first(const QJsonObject &report, const char *key);
int sizeOf(const QJsonObject &report, const char *key);
int summary(const QJsonObject &report, const char *key);
/// "code file" of each failure, in order.
QStringList failures(const QJsonObject &report);
/// "count sender -> receiver type name" of each message.
QStringList messages(const QJsonObject &report);

#include "logcommandrun.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

using namespace PluginCheck;

QString LogCommandRun::write(const QString &name, const QByteArray &content)
{
    TestFiles::write(file(name), content);
    return file(name);
}

int LogCommandRun::run(QStringList arguments, QByteArray *output)
{
    const QString result = file("output");
    QFile::remove(result);
    const int status = runLogCommand(arguments << "--output" << result);
    *output = QFile::exists(result) ? TestFiles::read(result) : QByteArray();
    return status;
}

QJsonObject LogCommandRun::report(const QStringList &arguments, int status)
{
    QByteArray output;
    const int actual = run(QStringList{"--format", "json"} + arguments, &output);
    if (actual != status)
        qFatal("status %d", actual);
    return QJsonDocument::fromJson(output).object();
}

QJsonObject first(const QJsonObject &report, const char *key)
{
    return report.value(key).toArray().first().toObject();
}

int sizeOf(const QJsonObject &report, const char *key)
{
    return report.value(key).toArray().size();
}

int summary(const QJsonObject &report, const char *key)
{
    return report.value("summary").toObject().value(key).toInt(-1);
}

QStringList failures(const QJsonObject &report)
{
    QStringList result;
    for (const QJsonValue &value : report.value("failures").toArray())
        result.append(value.toObject().value("code").toString() + ' '
                      + value.toObject().value("file").toString());
    return result;
}

QStringList messages(const QJsonObject &report)
{
    QStringList result;
    for (const QJsonValue &value : report.value("messages").toArray()) {
        const QJsonObject each = value.toObject();
        result.append(QString("%1 %2 -> %3 %4 %5")
                          .arg(each.value("count").toInt())
                          .arg(each.value("sender").toString(), each.value("receiver").toString())
                          .arg(each.value("type").toInt())
                          .arg(each.value("typeName").toString())
                          .trimmed());
    }
    return result;
}

#include "Graph.h"
#include "LogCommand.h"
#include "ReportPage.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

#include <cstdio>

/// Makes a page or a graph of a report in JSON, as it is read from the standard input: "report" or "dot".
/// "log" is the command.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == QLatin1String("log"))
        return PluginCheck::runLogCommand(arguments.mid(1));

    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return 1;
    const QJsonObject report = QJsonDocument::fromJson(input.readAll()).object();
    const QByteArray output = arguments.value(0) == QLatin1String("dot")
                                  ? PluginCheck::dependencyGraph(report)
                                  : PluginCheck::reportPage(report);
    return std::fwrite(output.constData(), 1, size_t(output.size()), stdout) == size_t(output.size()) ? 0 : 1;
}

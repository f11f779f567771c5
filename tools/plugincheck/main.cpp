#include "ConfigurationChecks.h"
#include "Graph.h"
#include "LibraryChecks.h"
#include "LogCommand.h"
#include "Options.h"
#include "Probe.h"
#include "ReportPage.h"
#include "TextReport.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonDocument>

#include <cstdio>

using namespace PluginCheck;

namespace {

constexpr int cannotWrite = 3;

int print(const QByteArray &text, std::FILE *file)
{
    const bool written =
        std::fwrite(text.constData(), 1, std::size_t(text.size()), file) == std::size_t(text.size())
        && std::fflush(file) == 0;
    if (written)
        return 0;
    // Without the report its words, too, would be missed.
    const QByteArray why = "plugincheck: cannot write: " + qt_error_string().toUtf8() + '\n';
    std::fwrite(why.constData(), 1, std::size_t(why.size()), stderr);
    return cannotWrite;
}

Report check(const Options &options)
{
    Report report;
    QVector<Configuration> configurations;
    for (int i = 0; i < options.configurations.size(); ++i) {
        std::optional<Configuration> configuration =
            readConfiguration(options.configurations.at(i), options.sets.at(i), report);
        if (configuration)
            configurations.append(std::move(*configuration));
    }
    checkConfigurations(
        configurations, report,
        formatOfLibraries(configurations, options.libraryDirectories, options.toolDirectories));
    if (options.toolDirectories.isEmpty()) {
        report.leaveOut(QStringLiteral("Libraries were not looked at: no --library-dir is given."));
    } else {
        checkLibraries(configurations, LibrarySearch(options.libraryDirectories, options.toolDirectories),
                       report);
        if (options.probe)
            probeLibraries(configurations, options, report);
    }
    report.finish();
    return report;
}

QByteArray formatted(const Report &report, const Options &options)
{
    switch (options.format) {
    case Format::Text:
        return textReport(report, options.inColor).toUtf8();
    case Format::Json:
        return QJsonDocument(report.toJson()).toJson();
    case Format::Dot:
        return dependencyGraph(report.toJson());
    case Format::Html:
        return reportPage(report.toJson());
    }
    return {};
}

}

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(QStringLiteral("plugincheck"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PLUGINCHECK_VERSION));
    if (argc > 1 && qstrcmp(argv[1], probeOption) == 0)
        return runProbe(argc, argv);

    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("log"))
        return runLogCommand(arguments.mid(2));
    const ParsedOptions parsed = parseOptions(arguments);
    if (!parsed.options) {
        const int status = print(parsed.text.toUtf8(), parsed.exitStatus == 0 ? stdout : stderr);
        return status == 0 ? parsed.exitStatus : status;
    }
    const Report report = check(*parsed.options);
    const int status = print(formatted(report, *parsed.options), stdout);
    return status == 0 ? exitStatus(report, parsed.options->strict) : status;
}

#include "Options.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

#include <algorithm>
#include <initializer_list>

namespace {

/// Where the dynamic loader finds them, too: on Windows beside the program, elsewhere in a folder of their
/// own next to the program's.
QStringList likelyPluginFolders()
{
    const QString program = QCoreApplication::applicationDirPath();
#ifdef Q_OS_WIN
    return {program};
#else
    const QStringList others =
        qEnvironmentVariable("LD_LIBRARY_PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    return QStringList{QDir::cleanPath(program + QStringLiteral("/../plugins"))} + others;
#endif
}

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QCoreApplication::translate(
        "Options", "A workbench that is built out of everything the example plug-ins offer."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({
        {QStringLiteral("tour"),
         QCoreApplication::translate("Options",
                                     "Play through what a user would do, save pictures there and quit."),
         QStringLiteral("folder")},
        {QStringLiteral("broken"),
         QCoreApplication::translate("Options",
                                     "On the tour, expect the plug-ins of scripts/demo --broken.")},
        {QStringLiteral("log"), QCoreApplication::translate("Options", "Write the log there."),
         QStringLiteral("file"), QDir::temp().filePath(QStringLiteral("pluginManger-host.log"))},
    });
}

}

void Options::answerQuestions(int argc, char **argv)
{
    const auto asksFor = [&](std::initializer_list<const char *> names) {
        return std::any_of(argv + 1, argv + argc, [&](const char *argument) {
            return std::any_of(names.begin(), names.end(),
                               [&](const char *name) { return qstrcmp(argument, name) == 0; });
        });
    };
    const bool asksForHelp = asksFor({"-h", "--help", "--help-all"});
    if (!asksForHelp && !asksFor({"-v", "--version"}))
        return;
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(WORKBENCH_VERSION));
    QCommandLineParser parser;
    describe(parser);
    if (asksForHelp)
        parser.showHelp();
    parser.showVersion();
}

Options Options::read()
{
    QCommandLineParser parser;
    describe(parser);
    parser.process(*QCoreApplication::instance());
    // The host changes its directory; what is named on the command line is relative to the user's.
    const auto path = [&parser](const char *option) {
        const QString value = parser.value(QLatin1String(option));
        return value.isEmpty() ? value : QDir().absoluteFilePath(value);
    };
    const QString base = qEnvironmentVariable("PLUGINMANGER_PATH", QCoreApplication::applicationDirPath());
    return {path("tour"), parser.isSet(QStringLiteral("broken")), path("log"), QDir(base).absolutePath(),
            likelyPluginFolders()};
}

#include "Options.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

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

}

Options Options::read()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate(
        "Options", "A workbench that is built out of everything the example plug-ins offer."));
    parser.addHelpOption();
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

#include "Options.h"

#include "TextReport.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QThread>

#ifdef Q_OS_WIN
#    include <io.h>
#else
#    include <unistd.h>
#endif

namespace PluginCheck {

namespace {

constexpr int usage = 2;

const char description[] =
    "Says what is wrong with sets of plug-ins, before they are shipped or at a customer's.\n"
    "Reads configuration files and libraries, and loads nothing unless --probe is given.\n"
    "\n"
    "Examples:\n"
    "  plugincheck pluginconfig/*.json --library-dir plugins\n"
    "  plugincheck pluginconfig4CAM.json --library-dir plugins --probe --jobs 8\n"
    "  plugincheck my.json --set cam --format json > report.json\n"
    "  plugincheck pluginconfig4CAM.json --library-dir bin --format html > report.html\n"
    "  plugincheck --explain dependency-cycle\n"
    "  plugincheck log --help\n"
    "\n"
    "Exit status: 0 nothing wrong, 1 findings (errors; warnings, too, with --strict),\n"
    "2 wrong usage, 3 a configuration file could not be read, or the report not be written.";

bool outputIsTerminal()
{
#ifdef Q_OS_WIN
    return _isatty(1) != 0;
#else
    return isatty(1) != 0;
#endif
}

ParsedOptions refused(const QString &why)
{
    return {std::nullopt,
            QStringLiteral("plugincheck: %1\nplugincheck: see plugincheck --help\n").arg(inOneLine(why)),
            usage};
}

/// Returns the first folder that has what separates folders in its name; empty if there is none.
QString unlistedDirectory(const QStringList &directories)
{
#ifdef Q_OS_WIN
    const QRegularExpression separator(QStringLiteral(";"));
#else
    const QRegularExpression separator(QStringLiteral("[:;]"));
#endif
    for (const QString &directory : directories) {
        QString path = QDir(directory).absolutePath();
        if (path.contains(separator))
            return path;
    }
    return {};
}

std::optional<Format> formatNamed(const QString &name)
{
    const QStringList names{QStringLiteral("text"), QStringLiteral("json"), QStringLiteral("dot"),
                            QStringLiteral("html")};
    const int index = int(names.indexOf(name));
    return index < 0 ? std::nullopt : std::make_optional(static_cast<Format>(index));
}

}

ParsedOptions parseOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(description));
    parser.addPositionalArgument(QStringLiteral("CONFIG"), QStringLiteral("Configuration files."),
                                 QStringLiteral("CONFIG..."));
    const QCommandLineOption libraryDir(
        QStringLiteral("library-dir"),
        QStringLiteral("Folder in which the host's loader finds libraries. May be "
                       "given again; the order counts. Without it only "
                       "configuration files are checked."),
        QStringLiteral("DIR"));
    const QCommandLineOption qtPluginDir(
        QStringLiteral("qt-plugin-dir"),
        QStringLiteral("Folder in which the host's QCoreApplication::libraryPaths() finds desktop tools. May "
                       "be given again; the order counts. Without it those of --library-dir are taken, as "
                       "for a host that adds them to both."),
        QStringLiteral("DIR"));
    const QCommandLineOption set(
        QStringLiteral("set"),
        QStringLiteral("Which set the files describe: cam, dfm or desktop. By default it is "
                       "told by the file's name: pluginconfig.json, or one that ends in 4CAM or 4DFM "
                       "before its suffix, in capitals or not."),
        QStringLiteral("SET"));
    const QCommandLineOption format(QStringLiteral("format"),
                                    QStringLiteral("text (the default), json, dot or html."),
                                    QStringLiteral("FORMAT"), QStringLiteral("text"));
    const QCommandLineOption probe(QStringLiteral("probe"),
                                   QStringLiteral("Load each library in a process of its own, too."));
    const QCommandLineOption jobs(
        QStringLiteral("jobs"),
        QStringLiteral("How many of these processes run at once; by default as many as "
                       "there are processors."),
        QStringLiteral("N"), QString::number(QThread::idealThreadCount()));
    const QCommandLineOption timeout(QStringLiteral("timeout"),
                                     QStringLiteral("How many seconds loading may take; 10 by default."),
                                     QStringLiteral("SECONDS"), QStringLiteral("10"));
    const QCommandLineOption strict(QStringLiteral("strict"),
                                    QStringLiteral("Warnings count for the exit status, too."));
    const QCommandLineOption color(QStringLiteral("color"),
                                   QStringLiteral("auto (the default), always or never."),
                                   QStringLiteral("WHEN"), QStringLiteral("auto"));
    const QCommandLineOption listChecks(QStringLiteral("list-checks"),
                                        QStringLiteral("List all that can be found."));
    const QCommandLineOption explain(QStringLiteral("explain"),
                                     QStringLiteral("Explain a kind of finding, given by its code."),
                                     QStringLiteral("CODE"));
    QCommandLineOption checkTable(QStringLiteral("check-table"));
    checkTable.setFlags(QCommandLineOption::HiddenFromHelp); // For docs/plugincheck.md.
    parser.addOptions({libraryDir, qtPluginDir, set, format, probe, jobs, timeout, strict, color, listChecks,
                       explain, checkTable});
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();

    if (!parser.parse(arguments))
        return refused(parser.errorText());
    if (parser.isSet(help))
        return {std::nullopt, parser.helpText(), 0};
    if (parser.isSet(version))
        return {std::nullopt, QStringLiteral("plugincheck " PLUGINCHECK_VERSION "\n"), 0};
    if (parser.isSet(listChecks))
        return {std::nullopt, listOfChecks(), 0};
    if (parser.isSet(checkTable))
        return {std::nullopt, tableOfChecks(), 0};
    if (parser.isSet(explain)) {
        const Check *const check = checkNamed(parser.value(explain));
        return check ? ParsedOptions{std::nullopt, explanationOf(*check), 0}
                     : refused(QStringLiteral("there is no check \"%1\"; --list-checks lists them")
                                   .arg(parser.value(explain)));
    }

    Options options;
    options.configurations = parser.positionalArguments();
    if (options.configurations.isEmpty())
        return refused(QStringLiteral("no configuration file is given"));
    for (const QString &file : qAsConst(options.configurations)) {
        const std::optional<Set> found = parser.isSet(set) ? setNamed(parser.value(set)) : setOfFile(file);
        if (parser.isSet(set) && !found)
            return refused(QStringLiteral("there is no set \"%1\"").arg(parser.value(set)));
        if (!found)
            return refused(
                QStringLiteral("the name of %1 does not tell its set; give --set cam, dfm or desktop")
                    .arg(file));
        options.sets.append(*found);
    }
    options.libraryDirectories = parser.values(libraryDir);
    options.toolDirectories =
        parser.isSet(qtPluginDir) ? parser.values(qtPluginDir) : options.libraryDirectories;
    for (const QString &directory : options.libraryDirectories + options.toolDirectories) {
        if (!QFileInfo(directory).isDir())
            return refused(QStringLiteral("%1 is no folder").arg(directory));
    }
    const std::optional<Format> named = formatNamed(parser.value(format));
    if (!named)
        return refused(QStringLiteral("there is no format \"%1\"").arg(parser.value(format)));
    options.format = *named;
    options.probe = parser.isSet(probe);
    if (options.probe && options.toolDirectories.isEmpty())
        return refused(QStringLiteral("--probe needs --library-dir or --qt-plugin-dir"));
    const QString unlisted = options.probe ? unlistedDirectory(options.libraryDirectories) : QString();
    if (!unlisted.isEmpty())
        return refused(
            QStringLiteral("--probe is not possible with the folder %1: in the list of folders that "
                           "the loader takes, its name would be two")
                .arg(unlisted));
    options.strict = parser.isSet(strict);

    bool isNumber = false;
    options.jobs = parser.value(jobs).toInt(&isNumber);
    if (!isNumber || options.jobs < 1 || options.jobs > 1000)
        return refused(QStringLiteral("--jobs takes a number from 1 to 1000"));
    options.timeoutInSeconds = parser.value(timeout).toInt(&isNumber);
    if (!isNumber || options.timeoutInSeconds < 1 || options.timeoutInSeconds > 86400)
        return refused(QStringLiteral("--timeout takes a number of seconds from 1 to 86400"));

    const QString when = parser.value(color);
    if (when != QLatin1String("auto") && when != QLatin1String("always") && when != QLatin1String("never"))
        return refused(QStringLiteral("--color takes auto, always or never"));
    options.inColor =
        when == QLatin1String("always") || (when == QLatin1String("auto") && outputIsTerminal());
    return {options, {}, 0};
}

}

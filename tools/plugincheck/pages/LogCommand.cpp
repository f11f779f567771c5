#include "LogCommand.h"

#include "LogDecoder.h"
#include "LogInput.h"
#include "LogLine.h"
#include "LogPage.h"
#include "LogReport.h"
#include "LogText.h"
#include "Readable.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QJsonDocument>
#include <QtCore/QThread>

#ifdef Q_OS_WIN
#    include <windows.h>

#    include <io.h>
#endif

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <memory>
#include <vector>

using namespace PluginCheck;

namespace {

enum Status { AllLoaded, SomethingFailed, WrongUsage, NotReadable };

constexpr int mostDrawnAtAll = 10000;
constexpr unsigned long pollInMilliseconds = 100;

const QString standardInput = QStringLiteral("-");

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int)
{
    interrupted = 1;
}

/// While it lives, an interruption is only noted.
class Interruption
{
public:
    Interruption()
        : m_previous(std::signal(SIGINT, interrupt))
        , m_previousTermination(std::signal(SIGTERM, interrupt))
    {
        interrupted = 0;
    }
    ~Interruption()
    {
        std::signal(SIGINT, m_previous);
        std::signal(SIGTERM, m_previousTermination);
    }
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

private:
    using Handler = void (*)(int);
    Handler m_previous;
    Handler m_previousTermination;
};

void complain(const QString &text)
{
    std::fprintf(stderr, "plugincheck log: %s\n", readable(text).toUtf8().constData());
}

struct Options
{
    QStringList files;
    QString format;
    QString output;
    LogSpan span;
    int draw = 0;
    bool follow = false;
    bool decode = false;
};

/// Where the report goes: a file, or the standard output.
class Output
{
public:
    bool open(const QString &name)
    {
        m_file.setFileName(name);
        return name.isEmpty() ? m_file.open(stdout, QIODevice::WriteOnly)
                              : m_file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    }

    void write(const QByteArray &utf8)
    {
#ifdef Q_OS_WIN
        // A console shows bytes by a code page, which is hardly ever that of UTF-8.
        DWORD mode = 0;
        const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
        if (m_file.fileName().isEmpty() && GetConsoleMode(console, &mode)) {
            const QString text = QString::fromUtf8(utf8);
            DWORD written = 0;
            WriteConsoleW(console, text.utf16(), DWORD(text.size()), &written, nullptr);
            return;
        }
#endif
        m_isGood = m_file.write(utf8) == utf8.size() && m_isGood;
    }

    bool flush()
    {
        return m_file.flush() && m_isGood;
    }
    QString error() const
    {
        return m_file.errorString();
    }

private:
    QFile m_file;
    bool m_isGood = true;
};

void print(const QString &text)
{
    Output output;
    output.open({});
    output.write(text.toUtf8());
}

/// Prints lines of the span as text that can be read. What follows a line without a prefix of its own belongs
/// to it.
class Printer
{
public:
    Printer(const LogSpan &span, Output &output)
        : m_span(span)
        , m_output(output)
        , m_isInSpan(span.isOpen())
    {
    }

    void print(std::string_view line)
    {
        if (const auto prefix = parseLogPrefix(line))
            m_isInSpan = m_span.contains(prefix->time);
        if (m_isInSpan)
            m_output.write(readable(decodeLogLine(line)).toUtf8() + '\n');
    }

private:
    const LogSpan &m_span;
    Output &m_output;
    bool m_isInSpan;
};

void addOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "Tells what the plug-in managers wrote into the logs of a host: what did not load and what to do "
        "about it, and who sent which messages to whom.\n\n"
        "Examples:\n"
        "  plugincheck log host.log\n"
        "  plugincheck log --decode host.log | less\n"
        "  plugincheck log --format html --output log.html --from 14:46 --to 14:47 host.log\n"
        "  plugincheck log --follow host.log\n\n"
        "Exit status: 0 everything loaded, 1 something did not, 2 wrong usage, 3 could not read or "
        "write."));
    parser.addOptions({
        {QStringLiteral("format"), QStringLiteral("text (the default), json or html."),
         QStringLiteral("format"), QStringLiteral("text")},
        {QStringLiteral("output"), QStringLiteral("Write to this file instead of the standard output."),
         QStringLiteral("file")},
        {QStringLiteral("from"),
         QStringLiteral(
             "Leave out what was written before: 14:46, 14:46:05.5, 2026-11-21 or \"2026-11-21 14:46\"."),
         QStringLiteral("time")},
        {QStringLiteral("to"), QStringLiteral("Leave out what was written after."), QStringLiteral("time")},
        {QStringLiteral("draw"),
         QStringLiteral("At most this many events in the sequence diagram; 200 by default."),
         QStringLiteral("number"), QStringLiteral("200")},
        {QStringLiteral("decode"), QStringLiteral("Only print the lines, in UTF-8.")},
        {QStringLiteral("follow"),
         QStringLiteral("Print the lines, also those that come, until interrupted; then the report.")},
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Print this.")},
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Print the version.")},
    });
    parser.addPositionalArgument(QStringLiteral("file"),
                                 QStringLiteral("A log; \"-\" is the standard input."),
                                 QStringLiteral("FILE..."));
}

/// What is wrong with the options, or nothing.
QString check(const QCommandLineParser &parser, Options &options)
{
    options.files = parser.positionalArguments();
    options.files.removeDuplicates();
    options.format = parser.value(QStringLiteral("format"));
    options.output = parser.value(QStringLiteral("output"));
    options.follow = parser.isSet(QStringLiteral("follow"));
    options.decode = parser.isSet(QStringLiteral("decode"));

    if (options.files.isEmpty())
        return QStringLiteral("name the file to read");
    if (!QStringList{QStringLiteral("text"), QStringLiteral("json"), QStringLiteral("html")}.contains(
            options.format))
        return QStringLiteral("--format is text, json or html");
    if (parser.isSet(QStringLiteral("from")) && !options.span.setFrom(parser.value(QStringLiteral("from"))))
        return QStringLiteral("--from is no time: ") + parser.value(QStringLiteral("from"));
    if (parser.isSet(QStringLiteral("to")) && !options.span.setTo(parser.value(QStringLiteral("to"))))
        return QStringLiteral("--to is no time: ") + parser.value(QStringLiteral("to"));
    if (!options.span.isPossible())
        return QStringLiteral("--to is before --from");
    bool isNumber = false;
    options.draw = parser.value(QStringLiteral("draw")).toInt(&isNumber);
    if (!isNumber || options.draw < 1 || options.draw > mostDrawnAtAll)
        return QStringLiteral("--draw is a number from 1 to %1").arg(mostDrawnAtAll);
    if ((options.follow || options.decode) && options.format != QLatin1String("text"))
        return QStringLiteral("--follow and --decode print text");
    if (options.follow && options.files.contains(standardInput))
        return QStringLiteral("--follow needs files by name");
    for (const QString &file : options.files) {
        if (QFileInfo::exists(options.output)
            && QFileInfo(file).canonicalFilePath() == QFileInfo(options.output).canonicalFilePath())
            return QStringLiteral("--output is one of the files to read");
    }
    return {};
}

/// Files whose names lead to one that was named before are left out: glog makes a link to its newest log
/// beside it. Says so.
QStringList withoutLinks(const QStringList &names)
{
    QStringList kept;
    QHash<QString, QString> nameOf;
    for (const QString &name : names) {
        const QString path = name == standardInput ? QString() : QFileInfo(name).canonicalFilePath();
        if (!path.isEmpty() && nameOf.contains(path)) {
            complain(QStringLiteral("%1 is the same file as %2").arg(name, nameOf.value(path)));
            continue;
        }
        nameOf.insert(path, name);
        kept.append(name);
    }
    return kept;
}

/// A file with the line that comes next.
class LogFile
{
public:
    explicit LogFile(const QString &name)
        : m_name(name)
        , m_file(name)
        , m_reader(m_file)
    {
        const bool isOpen = name == standardInput ? m_file.open(stdin, QIODevice::ReadOnly)
                                                  : m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        if (isOpen)
            advance();
    }

    const QString &name() const { return m_name; }
    bool isRead() const { return m_file.isOpen() && !m_reader.hasFailed(); }
    QString error() const { return m_file.errorString(); }

    bool hasLine() const { return m_line.has_value(); }
    std::string_view line() const { return *m_line; }
    /// Nothing in a line that belongs to the entry before it, or to none.
    const std::optional<LogTime> &time() const { return m_time; }

    void advance()
    {
        m_time.reset();
        m_line = m_reader.next();
        if (!m_line)
            return;
        if (const auto prefix = parseLogPrefix(*m_line))
            m_time = prefix->time;
    }

private:
    QString m_name;
    QFile m_file;
    LineReader m_reader;
    std::optional<std::string_view> m_line;
    std::optional<LogTime> m_time;
};

using LogFiles = std::vector<std::unique_ptr<LogFile>>;

/// Says which cannot be read.
bool allAreRead(const LogFiles &files)
{
    bool all = true;
    for (const auto &file : files) {
        if (file->isRead())
            continue;
        complain(QStringLiteral("cannot read %1: %2").arg(file->name(), file->error()));
        all = false;
    }
    return all;
}

LogFiles opened(const QStringList &names)
{
    LogFiles files;
    for (const QString &name : names)
        files.push_back(std::make_unique<LogFile>(name));
    return files;
}

/// The file whose next entry is the oldest; none when all are at their end.
LogFile *oldest(const LogFiles &files)
{
    LogFile *found = nullptr;
    for (const auto &file : files) {
        if (!file->hasLine())
            continue;
        if (!file->time())
            return file.get();
        if (!found || file->time()->isBefore(*found->time()))
            found = file.get();
    }
    return found;
}

QByteArray formatted(const LogReport &report, const QString &format)
{
    const QJsonObject json = report.toJson();
    if (format == QLatin1String("json"))
        return QJsonDocument(json).toJson();
    return format == QLatin1String("html") ? logPage(json) : logText(json);
}

void decodeFiles(const LogFiles &files, const LogSpan &span, Output &output)
{
    for (const auto &file : files) {
        Printer printer(span, output);
        for (; file->hasLine(); file->advance())
            printer.print(file->line());
    }
}

/// In the order of time: glog writes into several files at once, and begins new ones.
void reportFiles(const LogFiles &files, LogReport &report)
{
    for (const auto &file : files)
        report.beginFile(file->name());
    while (LogFile *const file = oldest(files)) {
        report.beginFile(file->name());
        do {
            report.addLine(file->line());
            file->advance();
        } while (file->hasLine() && !file->time());
    }
    report.endFile();
}

/// A file with what prints its lines.
struct Followed
{
    Followed(const QString &fileName, const LogSpan &span, Output &output)
        : name(fileName)
        , file(fileName)
        , printer(span, output)
    {
    }

    QString name;
    FollowedFile file;
    Printer printer;
};

using FollowedFiles = std::vector<std::unique_ptr<Followed>>;

/// Those that are there; says which are not.
FollowedFiles openedToFollow(const Options &options, Output &output)
{
    FollowedFiles files;
    for (const QString &name : options.files) {
        auto followed = std::make_unique<Followed>(name, options.span, output);
        if (followed->file.open())
            files.push_back(std::move(followed));
        else
            complain(QStringLiteral("cannot read %1: %2").arg(name, followed->file.error()));
    }
    return files;
}

void followFiles(const FollowedFiles &files, LogReport &report, Output &output)
{
    const Interruption interruption;
    const Followed *current = nullptr;
    bool isWritten = true;
    const auto handOn = [&](Followed &followed, bool last) {
        const LineReceiver receiver = [&](std::string_view line) {
            if (&followed != current) {
                report.beginFile(followed.name);
                if (files.size() > 1)
                    output.write("==> " + readable(followed.name).toUtf8() + " <==\n");
                current = &followed;
            }
            followed.printer.print(line);
            report.addLine(line);
        };
        if (last)
            followed.file.finish(receiver);
        else if (followed.file.poll(receiver))
            isWritten = output.flush();
    };
    while (interrupted == 0 && isWritten) {
        for (const auto &followed : files)
            handOn(*followed, false);
        QThread::msleep(pollInMilliseconds);
    }
    for (const auto &followed : files)
        handOn(*followed, true);
    report.endFile();
}

bool allAreLogs(const LogReport &report)
{
    const QStringList notLogs = report.notLogs();
    for (const QString &name : notLogs)
        complain(QStringLiteral("%1 is no log: glog has written none of its lines").arg(name));
    return notLogs.isEmpty();
}

/// What the command does once its line is understood.
Status run(const Options &options)
{
    Output output;
    const LogFiles files = opened(options.follow ? QStringList() : options.files);
    const FollowedFiles followed = options.follow ? openedToFollow(options, output) : FollowedFiles();
    const bool hasAny = !followed.empty() || std::any_of(files.begin(), files.end(), [](const auto &file) {
        return file->isRead();
    });
    if (!hasAny) { // What an earlier run has written is not thrown away for nothing.
        allAreRead(files);
        return NotReadable;
    }
    if (!output.open(options.output)) {
        complain(QStringLiteral("cannot write %1: %2").arg(options.output, output.error()));
        return NotReadable;
    }

    LogReport::Limits limits;
    limits.messagesDrawn = options.draw;
    LogReport report(options.span, limits);
    if (options.follow)
        followFiles(followed, report, output);
    else if (options.decode)
        decodeFiles(files, options.span, output);
    else
        reportFiles(files, report);
    if (!options.decode)
        output.write((options.follow ? "\n" : "") + formatted(report, options.format));

    if (!output.flush()) {
        complain(QStringLiteral("cannot write: ") + output.error());
        return NotReadable;
    }
    const bool allRead =
        allAreRead(files) && (!options.follow || followed.size() == size_t(options.files.size()));
    if (!allAreLogs(report) || !allRead)
        return NotReadable;
    return report.hasFailures() && !options.decode ? SomethingFailed : AllLoaded;
}

}

int PluginCheck::runLogCommand(const QStringList &arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(QStringList(QStringLiteral("plugincheck log")) + arguments)) {
        complain(parser.errorText());
        return WrongUsage;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        print(parser.helpText().replace(QLatin1String(" [options]"), QLatin1String(" log [options]")));
        return AllLoaded;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        print(QStringLiteral("plugincheck " PLUGINCHECK_VERSION "\n"));
        return AllLoaded;
    }
    Options options;
    const QString wrong = check(parser, options);
    if (!wrong.isEmpty()) {
        complain(wrong);
        return WrongUsage;
    }
    options.files = withoutLinks(options.files);
    return run(options);
}

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
#include <QtCore/QJsonDocument>
#include <QtCore/QThread>

#ifdef Q_OS_WIN
#    include <windows.h>

#    include <io.h>
#endif

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
    std::fprintf(stderr, "plugincheck log: %s\n", text.toUtf8().constData());
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
        {QStringLiteral("help"), QStringLiteral("Print this.")},
    });
    parser.addPositionalArgument(QStringLiteral("file"),
                                 QStringLiteral("A log; \"-\" is the standard input."),
                                 QStringLiteral("FILE..."));
}

/// What is wrong with the options, or nothing.
QString check(const QCommandLineParser &parser, Options &options)
{
    options.files = parser.positionalArguments();
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

/// Hands on the lines of one file, and says so when it cannot be read.
bool readFile(const QString &name, const LineReceiver &receiver)
{
    QFile file(name);
    const bool isOpen = name == standardInput ? file.open(stdin, QIODevice::ReadOnly)
                                              : file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (isOpen && readLines(file, receiver))
        return true;
    complain(QStringLiteral("cannot read %1: %2").arg(name, file.errorString()));
    return false;
}

QByteArray formatted(const LogReport &report, const QString &format)
{
    const QJsonObject json = report.toJson();
    if (format == QLatin1String("json"))
        return QJsonDocument(json).toJson();
    return format == QLatin1String("html") ? logPage(json) : logText(json);
}

bool decodeFiles(const Options &options, Output &output)
{
    bool allRead = true;
    for (const QString &name : options.files) {
        Printer printer(options.span, output);
        allRead = readFile(name, [&](std::string_view line) { printer.print(line); }) && allRead;
    }
    return allRead;
}

bool reportFiles(const Options &options, LogReport &report, Output &output)
{
    bool allRead = true;
    for (const QString &name : options.files) {
        report.beginFile(name);
        allRead = readFile(name, [&](std::string_view line) { report.addLine(line); }) && allRead;
        report.endFile();
    }
    output.write(formatted(report, options.format));
    return allRead;
}

/// A file with what prints its lines.
struct Followed
{
    Followed(const QString &name, const Options &options, Output &output)
        : file(name)
        , printer(options.span, output)
    {
    }

    FollowedFile file;
    Printer printer;
};

bool followFiles(const Options &options, LogReport &report, Output &output)
{
    const Interruption interruption;
    std::vector<std::unique_ptr<Followed>> followed;
    for (const QString &name : options.files) {
        followed.push_back(std::make_unique<Followed>(name, options, output));
        if (!followed.back()->file.open()) {
            complain(QStringLiteral("cannot read %1").arg(name));
            return false;
        }
    }

    size_t current = followed.size();
    bool isWritten = true;
    const auto handOn = [&](size_t index, bool last) {
        const LineReceiver receiver = [&](std::string_view line) {
            if (index != current) {
                report.beginFile(options.files.at(int(index)));
                if (followed.size() > 1)
                    output.write("==> " + readable(options.files.at(int(index))).toUtf8() + " <==\n");
                current = index;
            }
            followed[index]->printer.print(line);
            report.addLine(line);
        };
        if (last)
            followed[index]->file.finish(receiver);
        else if (followed[index]->file.poll(receiver))
            isWritten = output.flush();
    };
    while (interrupted == 0 && isWritten) {
        for (size_t index = 0; index < followed.size(); ++index)
            handOn(index, false);
        QThread::msleep(pollInMilliseconds);
    }
    for (size_t index = 0; index < followed.size(); ++index)
        handOn(index, true);
    report.endFile();
    output.write("\n" + formatted(report, options.format));
    return true;
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
    Output output;
    if (parser.isSet(QStringLiteral("help"))) {
        output.open({});
        output.write(
            parser.helpText().replace(QLatin1String(" [options]"), QLatin1String(" log [options]")).toUtf8());
        return AllLoaded;
    }
    Options options;
    const QString wrong = check(parser, options);
    if (!wrong.isEmpty()) {
        complain(wrong);
        return WrongUsage;
    }
    if (!output.open(options.output)) {
        complain(QStringLiteral("cannot write %1: %2").arg(options.output, output.error()));
        return NotReadable;
    }

    LogReport::Limits limits;
    limits.messagesDrawn = options.draw;
    LogReport report(options.span, limits);
    const bool allRead = options.decode   ? decodeFiles(options, output)
                         : options.follow ? followFiles(options, report, output)
                                          : reportFiles(options, report, output);
    if (!output.flush()) {
        complain(QStringLiteral("cannot write: ") + output.error());
        return NotReadable;
    }
    if (!allRead)
        return NotReadable;
    return report.hasFailures() ? SomethingFailed : AllLoaded;
}

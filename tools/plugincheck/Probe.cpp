#include "Probe.h"

#include "LibraryChecks.h"
#include "LibraryFile.h"
#include "TextReport.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>

#ifdef Q_OS_WIN
#    include <io.h>
#else
#    include <sys/types.h>
#    include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#    include <sys/prctl.h>
#endif

namespace PluginCheck {

namespace {

bool errorsGoToTerminal()
{
#ifdef Q_OS_WIN
    return _isatty(2) != 0;
#else
    return isatty(2) != 0;
#endif
}

volatile std::sig_atomic_t interruptedBy = 0;

extern "C" void interrupt(int signal)
{
    interruptedBy = signal;
}

/// Has the signals that end the program wait until what it has started is ended, too.
class Interruptions
{
public:
    Interruptions();
    ~Interruptions();
    Q_DISABLE_COPY(Interruptions)

private:
#ifdef Q_OS_WIN
    static constexpr std::array endingSignals{SIGINT, SIGTERM};
#else
    static constexpr std::array endingSignals{SIGHUP, SIGINT, SIGTERM};
#endif
    std::array<void (*)(int), endingSignals.size()> m_before{};
};

Interruptions::Interruptions()
{
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        m_before[i] = std::signal(endingSignals[i], interrupt);
        if (m_before[i] == SIG_IGN)
            std::signal(endingSignals[i], SIG_IGN);
    }
}

Interruptions::~Interruptions()
{
    for (std::size_t i = 0; i < endingSignals.size(); ++i)
        std::signal(endingSignals[i], m_before[i]);
    if (interruptedBy != 0)
        std::raise(interruptedBy);
}

/// A process that loads a library, together with those that the library starts: none outlives this program.
class LoadingProcess : public QProcess
{
public:
    void load(const QStringList &arguments);
    void endAll();

protected:
    void setupChildProcess() override;

private:
    const qint64 m_parent = QCoreApplication::applicationPid();
    qint64 m_group = 0;
};

void LoadingProcess::load(const QStringList &arguments)
{
    start(QCoreApplication::applicationFilePath(), arguments);
    m_group = processId();
}

/// Also after the process itself has ended.
void LoadingProcess::endAll()
{
    kill();
#ifdef Q_OS_UNIX
    if (m_group > 0)
        ::kill(pid_t(-m_group), SIGKILL);
#endif
}

/// Runs in the new process.
void LoadingProcess::setupChildProcess()
{
#ifdef Q_OS_UNIX
    setpgid(0, 0);
#endif
#ifdef Q_OS_LINUX
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != m_parent)
        _exit(1); // The other one had ended before.
#endif
}

/// One library to be loaded.
struct Job
{
    const Configuration *configuration;
    PluginReport *plugin;
    QString resultFile;
    /// What there is to say of it, in the order of jobs, whichever ends first.
    QVector<Finding> findings = {};
    QString leftOut = {};
};

/// A process that loads a library, and what it has said so far.
struct Running
{
    Job *job;
    std::unique_ptr<LoadingProcess> process;
    QByteArray output;
    bool isOverdue = false;
};

/// Runs jobs, so many at once.
class Runner
{
public:
    Runner(const Options &options, QString directory, Report &report)
        : m_options(options)
        , m_directory(std::move(directory))
        , m_report(report)
        , m_showsProgress(errorsGoToTerminal())
    {
    }

    void run(QVector<Job> jobs);

private:
    void takeBackRefusals(const Job &job);
    void startNext();
    void endIfInterrupted();
    void start(Job &job);
    void finish(const std::shared_ptr<Running> &running);
    void takeOutput(Running &running) const;
    static QString reasonNotToProbe(const Running &running);
    void conclude(const Running &running);
    static void add(Code code, Job &job, const QString &message, const QString &consequence,
                    const QString &advice);
    void showProgress(const QString &name) const;
    QProcessEnvironment environment() const;

    const Options &m_options;
    const QString m_directory;
    Report &m_report;
    const bool m_showsProgress;
    QVector<Job> m_jobs;
    int m_next = 0;
    QVector<std::shared_ptr<Running>> m_running;
    QEventLoop m_loop;
};

void Runner::run(QVector<Job> jobs)
{
    constexpr int lookInMilliseconds = 50;
    m_jobs = std::move(jobs);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { endIfInterrupted(); });
    timer.start(lookInMilliseconds);
    for (int i = 0; i < m_options.jobs; ++i)
        startNext();
    if (!m_running.isEmpty())
        m_loop.exec();
    if (m_showsProgress)
        std::fputs("\r\x1b[K", stderr);
    for (const Job &job : qAsConst(m_jobs)) {
        takeBackRefusals(job);
        if (!job.leftOut.isEmpty())
            m_report.leaveOut(job.leftOut);
        for (const Finding &finding : job.findings)
            m_report.add(finding);
    }
}

/// What the loader does is right, whatever was said of the file before.
void Runner::takeBackRefusals(const Job &job)
{
    if (!job.plugin->probe || job.plugin->probe->result != QLatin1String("loaded"))
        return;
    const QStringList names = m_report.takeBack(job.configuration->file, job.plugin->name, isRefusal);
    if (!names.isEmpty())
        m_report.leaveOut(QStringLiteral("%1 of %2, which loaded when it was probed.")
                              .arg(names.join(QStringLiteral(", ")), job.plugin->name));
}

void Runner::startNext()
{
    if (m_next < m_jobs.size())
        start(m_jobs[m_next++]);
    else if (m_running.isEmpty())
        m_loop.quit();
}

void Runner::endIfInterrupted()
{
    if (interruptedBy == 0)
        return;
    m_next = int(m_jobs.size());
    for (const std::shared_ptr<Running> &running : qAsConst(m_running))
        running->process->endAll();
}

/// The folders of libraries stand for those where the host's loader looks.
QProcessEnvironment Runner::environment() const
{
    QStringList directories;
    for (const QString &directory : m_options.libraryDirectories)
        directories.append(QDir::toNativeSeparators(QDir(directory).absolutePath()));
#ifdef Q_OS_WIN
    const QString variable = QStringLiteral("PATH");
#else
    const QString variable = QStringLiteral("LD_LIBRARY_PATH");
#endif
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    const QString before = result.value(variable);
    if (!before.isEmpty())
        directories.append(before);
    if (!directories.isEmpty())
        result.insert(variable, directories.join(QDir::listSeparator()));
    // Qt says so when there is none, which is nothing that a library has written.
    if (!result.contains(QStringLiteral("XDG_RUNTIME_DIR")))
        result.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_directory);
    return result;
}

void Runner::start(Job &job)
{
    showProgress(job.plugin->name);
    const auto running = std::make_shared<Running>();
    running->job = &job;
    running->process = std::make_unique<LoadingProcess>();
    LoadingProcess *const process = running->process.get();
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->setProcessEnvironment(environment());
    process->setStandardInputFile(QProcess::nullDevice());

    QStringList arguments{QString::fromLatin1(probeOption), nameOf(job.configuration->set),
                          job.plugin->name + QLatin1String(".dll"), job.resultFile};
    for (const QString &directory : m_options.toolDirectories)
        arguments.append(QDir(directory).absolutePath());

    QObject::connect(process, &QProcess::readyRead, process, [this, running] { takeOutput(*running); });
    QObject::connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), process,
                     [this, running] { finish(running); });
    QObject::connect(process, &QProcess::errorOccurred, process,
                     [this, running](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             finish(running);
                     });
    QTimer::singleShot(m_options.timeoutInSeconds * 1000, process, [running] {
        running->isOverdue = true;
        running->process->endAll();
    });
    m_running.append(running);
    process->load(arguments);
}

void Runner::takeOutput(Running &running) const
{
    constexpr int most = 64 * 1024;
    const QByteArray output = running.process->readAll();
    running.output += output.left(most - int(running.output.size()));
}

void Runner::finish(const std::shared_ptr<Running> &running)
{
    takeOutput(*running);
    conclude(*running);
    running->process->endAll();
    // Its signals are being delivered just now, so it goes a little later.
    running->process.release()->deleteLater();
    m_running.removeOne(running);
    startNext();
}

QString signalText(int number)
{
#ifdef Q_OS_WIN
    return QStringLiteral("status 0x%1").arg(static_cast<uint>(number), 8, 16, QLatin1Char('0'));
#else
    return QStringLiteral("signal %1, %2").arg(number).arg(QString::fromLocal8Bit(strsignal(number)));
#endif
}

/// Why the process had not come as far as the library when it ended.
QString Runner::reasonNotToProbe(const Running &running)
{
    constexpr int most = 300;
    const QProcess &process = *running.process;
    QString why =
        QStringLiteral("the process for it ended before the load, with status %1").arg(process.exitCode());
    if (process.error() == QProcess::FailedToStart)
        why = process.errorString();
    else if (running.isOverdue)
        why = QStringLiteral("the process for it was not ready in time");
    else if (process.exitStatus() == QProcess::CrashExit)
        why = QStringLiteral("the process for it crashed before the load, %1")
                  .arg(signalText(process.exitCode()));
    const QString output = QString::fromLocal8Bit(running.output).simplified();
    return QStringLiteral("Libraries were not probed: %1.%2")
        .arg(why, output.isEmpty() ? QString() : QStringLiteral(" It wrote: ") + output.left(most));
}

void Runner::conclude(const Running &running)
{
    Job &job = *running.job;
    const QString ends = QStringLiteral("The host would end, too.");
    const QString isRefused =
        QStringLiteral("The manager logs this reason, shows a message box, and goes on.");
    const QString debug =
        QStringLiteral("Look at what the library does when it is loaded: constructors of static "
                       "objects, and of the root object.");
    ProbeReport result{QStringLiteral("loaded"), {}, QString::fromLocal8Bit(running.output).trimmed()};
    QFile file(job.resultFile);
    const QStringList lines = file.open(QIODevice::ReadOnly)
                                  ? QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)
                                  : QStringList();
    const QString last = lines.isEmpty() ? QString() : lines.last();
    result.detail = last.section(' ', 1);
    const QProcess &process = *running.process;
    if (!lines.value(0).startsWith(QLatin1String(ready))) {
        job.leftOut = reasonNotToProbe(running);
        return;
    }
    if (lines.first() == QLatin1String(ready) && last.startsWith(QLatin1String("failed"))
        && isOfManager(last)) {
        job.leftOut = QStringLiteral("%1 was not probed: it uses the manager's library, which was not found. "
                                     "Name its folder by --library-dir.")
                          .arg(job.plugin->name);
        return;
    }
    if (running.isOverdue) {
        result.result = QStringLiteral("hung");
        const QString time = m_options.timeoutInSeconds == 1
                                 ? QStringLiteral("1 second")
                                 : QStringLiteral("%1 seconds").arg(m_options.timeoutInSeconds);
        result.detail = QStringLiteral("no end after %1").arg(time);
        add(Code::ProbeHung, job, QStringLiteral("Loading had not ended after %1.").arg(time),
            QStringLiteral("The host would hang."), debug);
    } else if (last.startsWith(QLatin1String("threw"))) {
        result.result = QStringLiteral("threw");
        add(Code::ProbeThrew, job, QStringLiteral("It threw %1.").arg(result.detail), ends, debug);
    } else if (process.exitStatus() == QProcess::CrashExit) {
        result.result = QStringLiteral("crashed");
        result.detail = signalText(process.exitCode());
        add(Code::ProbeCrashed, job,
            QStringLiteral("The process that loaded it crashed: %1.").arg(result.detail), ends, debug);
    } else if (last.startsWith(QLatin1String("failed"))) {
        result.result = QStringLiteral("failed");
        add(Code::ProbeFailed, job, result.detail, isRefused,
            QStringLiteral("See docs/troubleshooting.md for what this reason means."));
    } else if (last.startsWith(QLatin1String("lacks"))) {
        add(Code::ProbeInterface, job,
            QStringLiteral("Its root object does not implement %1.").arg(result.detail),
            last.contains(QLatin1String("PluginInterface"))
                ? QStringLiteral("The manager drops the plug-in, and logs nothing.")
                : QStringLiteral("The host ends with a fatal error."),
            QStringLiteral("Derive its class from the interface, and build it with the headers of the host's "
                           "pluginManger."));
    } else if (last != QLatin1String("done")) {
        result.result = QStringLiteral("exited");
        result.detail = QStringLiteral("status %1").arg(process.exitCode());
        add(Code::ProbeExited, job,
            QStringLiteral("The process that loaded it ended with status %1.").arg(process.exitCode()), ends,
            debug);
    }
    job.plugin->probe = result;
}

void Runner::add(Code code, Job &job, const QString &message, const QString &consequence,
                 const QString &advice)
{
    job.findings.append({code,
                         job.configuration->file,
                         job.plugin->name,
                         job.plugin->library,
                         {},
                         message,
                         consequence,
                         advice});
}

void Runner::showProgress(const QString &name) const
{
    if (m_showsProgress)
        std::fprintf(stderr, "\r\x1b[KProbing %d of %d: %s", m_next, int(m_jobs.size()),
                     qPrintable(inOneLine(name)));
}

}

void probeLibraries(const QVector<Configuration> &configurations, const Options &options, Report &report)
{
    const Interruptions interruptions;
    const QTemporaryDir directory;
    if (!directory.isValid()) {
        report.leaveOut(
            QStringLiteral("Libraries were not probed, as there is no place for temporary files: %1")
                .arg(directory.errorString()));
        return;
    }
    QVector<Job> jobs;
    for (int i = 0; i < configurations.size(); ++i) {
        for (PluginReport &plugin : report.configurations[i].plugins) {
            if (plugin.library.isEmpty())
                continue;
            const LibraryFile::Format format = formatOfFile(plugin.library);
            if (format != LibraryFile::Format::None && format != nativeFormat) {
                report.leaveOut(QStringLiteral("Libraries for another system were not probed."));
                continue;
            }
            jobs.append({&configurations.at(i), &plugin, directory.filePath(QString::number(jobs.size()))});
        }
    }
    Runner(options, directory.path(), report).run(jobs);
}

}

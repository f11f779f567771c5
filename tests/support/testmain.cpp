#include "testmain.h"

#include <QtCore/QProcess>

#include <cstdio>

namespace {

constexpr int timeLimitInMilliseconds = 60000;

/// Returns "function" or "function:row" for all that a test program can run.
QStringList functionsAndRows(const QString &program)
{
    QProcess process;
    process.start(program, {QStringLiteral("-datatags")});
    if (!process.waitForFinished(timeLimitInMilliseconds) || process.exitCode() != 0)
        return {};

    QStringList found;
    const QStringList lines =
        QString::fromLocal8Bit(process.readAllStandardOutput()).remove('\r').split('\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QString function = line.section(' ', 1, 1);
        const QString row = line.section(' ', 2);
        found.append(row.isEmpty() ? function : function + ':' + row);
    }
    return found;
}

}

int runEachInItsOwnProcess(const char *program)
{
    const QStringList functions = functionsAndRows(QString::fromLocal8Bit(program));
    int failures = 0;
    for (const QString &function : functions) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QString::fromLocal8Bit(program), {function});
        const bool ended = process.waitForFinished(timeLimitInMilliseconds);
        if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            std::printf("FAILED in its own process: %s\n", qPrintable(function));
            ++failures;
        }
    }
    std::printf("%d processes, %d failed\n", int(functions.size()), failures);
    return functions.isEmpty() || failures > 0 ? 1 : 0;
}

#include "testmain.h"

#include <QtCore/QProcess>

#include <cstdio>

int runEachInItsOwnProcess(const QStringList &functions, const char *program)
{
    constexpr int timeLimitInMilliseconds = 60000;
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

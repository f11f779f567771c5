#include "debuglines.h"

#include <QtCore/QDebug>
#include <QtCore/QMutex>

#include <utility>

namespace {

QMutex mutex;
QStringList debugLines;
QStringList warningLines;
QtMessageHandler previousHandler = nullptr;

void collect(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QMutexLocker lock(&mutex);
    if (type == QtDebugMsg)
        debugLines.append(text);
    else if (type == QtWarningMsg)
        warningLines.append(text);
    else
        previousHandler(type, context, text);
}

}

DebugLines::DebugLines()
{
    take();
    takeWarnings();
    previousHandler = qInstallMessageHandler(collect);
}

DebugLines::~DebugLines()
{
    qInstallMessageHandler(previousHandler);
}

QStringList DebugLines::take()
{
    const QMutexLocker lock(&mutex);
    return std::exchange(debugLines, {});
}

QStringList DebugLines::takeWarnings()
{
    const QMutexLocker lock(&mutex);
    return std::exchange(warningLines, {});
}

#include "target.h"

#include "debuglines.h"

#include <QtCore/QMutex>
#include <QtWidgets/QApplication>

#include <glog/logging.h>

#include <utility>

namespace {

/// Keeps the lines in memory: a long run would fill a disk.
class Sink : public google::LogSink
{
public:
    void send(google::LogSeverity severity, const char *, const char *fileName, int, const struct tm *,
              const char *message, size_t length) override
    {
        const QByteArray unit = QByteArray(fileName).replace(".cpp", "");
        lines.append({google::GetLogSeverityName(severity)[0], unit, QByteArray(message, int(length))});
    }

    QList<LogLines::Line> lines;
};

Sink sink;

DebugLines &debugLines()
{
    static DebugLines &lines = *new DebugLines;
    return lines;
}

}

void FuzzTarget::prepare()
{
    static bool isPrepared = false;
    if (std::exchange(isPrepared, true))
        return;
    static int argumentCount = 1;
    static char name[] = "fuzz";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    google::InitGoogleLogging(name);
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    for (const auto severity :
         {google::GLOG_INFO, google::GLOG_WARNING, google::GLOG_ERROR, google::GLOG_FATAL})
        google::SetLogDestination(severity, "");
    google::AddLogSink(&sink);
    // Kept until the process ends, in whatever order its objects then go.
    new QApplication(argumentCount, arguments);
    debugLines();
}

QList<LogLines::Line> FuzzTarget::takeLog()
{
    return std::exchange(sink.lines, {});
}

QStringList FuzzTarget::takeDebugLines()
{
    debugLines().takeWarnings();
    return debugLines().take();
}

void FuzzTarget::require(bool agrees, const QString &explanation)
{
    if (!agrees)
        qFatal("%s", qPrintable(explanation));
}

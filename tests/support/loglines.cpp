#include "loglines.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <glog/logging.h>

#include <cstdlib>

namespace {

QFile &logFile()
{
    static QTemporaryDir directory;
    static QFile file(directory.filePath(QStringLiteral("log")));
    return file;
}

}

bool LogLines::Line::operator==(const Line &other) const
{
    return severity == other.severity && unit == other.unit && text == other.text;
}

void LogLines::start(const char *program)
{
    FLAGS_timestamp_in_logfile_name = false;
    FLAGS_logbufsecs = 0;
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    google::InitGoogleLogging(program);
    google::SetLogDestination(google::GLOG_INFO, QFile::encodeName(logFile().fileName()).constData());
    for (const auto severity : {google::GLOG_WARNING, google::GLOG_ERROR, google::GLOG_FATAL})
        google::SetLogDestination(severity, "");
    // Before the directory is removed, which on Windows cannot be done while the file is open.
    std::atexit(google::ShutdownGoogleLogging);
}

QList<LogLines::Line> LogLines::take()
{
    google::FlushLogFiles(google::GLOG_INFO);
    QFile &file = logFile();
    // glog makes the file when it writes its first line, and ends its lines as the platform's text files do.
    if (!file.isOpen() && !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};

    static const QRegularExpression prefix(
        QStringLiteral(R"(^([IWEF])\d{8} \d\d:\d\d:\d\d\.\d{6} +\d+ (\w+)\.cpp:\d+\] )"));
    QList<Line> lines;
    for (const QByteArray &line : file.readAll().split('\n')) {
        // Latin-1 gives every byte one character, so positions in the match are positions in the bytes.
        const auto match = prefix.match(QString::fromLatin1(line));
        if (match.hasMatch())
            lines.append({line.at(0), match.captured(2).toLatin1(), line.mid(match.capturedEnd())});
    }
    return lines;
}

QString LogLines::file()
{
    google::FlushLogFiles(google::GLOG_INFO);
    return logFile().fileName();
}

char *LogLines::toString(const Line &line)
{
    return QTest::toString(QByteArray(1, line.severity) + ' ' + line.unit + ": " + line.text);
}

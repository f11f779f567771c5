#pragma once

#include <QtCore/QObject>

#include <glog/logging.h>

class MessageLog;

/// Reads the log as it is written: what the library traces confirms messages, what goes wrong is shown.
class LogTap : public QObject, private google::LogSink
{
    Q_OBJECT

public:
    explicit LogTap(MessageLog &log);
    ~LogTap() override;

private:
    using google::LogSink::send;
    void send(google::LogSeverity severity, const char *path, const char *file, int line,
              const google::LogMessageTime &time, const char *message, size_t length) override;
    void take(bool isError, const QString &unit, const QString &text);

    MessageLog &m_log;
};

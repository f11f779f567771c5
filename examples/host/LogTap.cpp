#include "LogTap.h"

#include "MessageLog.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTextCodec>

LogTap::LogTap(MessageLog &log)
    : m_log(log)
{
    google::AddLogSink(this);
}

LogTap::~LogTap()
{
    google::RemoveLogSink(this);
}

/// Comes from whatever thread logs, while glog holds its lock. The library's Chinese texts are GBK.
void LogTap::send(google::LogSeverity severity, const char *, const char *file, int,
                  const google::LogMessageTime &, const char *message, size_t length)
{
    const QTextCodec *const codec = QTextCodec::codecForName("GBK");
    const QByteArray bytes(message, static_cast<int>(length));
    QTextCodec::ConverterState state;
    QString text = QString::fromUtf8(bytes);
    if (codec && text.contains(QChar::ReplacementCharacter))
        text = codec->toUnicode(bytes.constData(), bytes.size(), &state);
    const bool isError = severity >= google::GLOG_ERROR;
    const QString unit = QString::fromUtf8(file).section(QLatin1Char('.'), 0, 0);
    QMetaObject::invokeMethod(this, [=] { take(isError, unit, text); });
}

void LogTap::take(bool isError, const QString &unit, const QString &text)
{
    static const QRegularExpression trace(QStringLiteral("^(.*) send to (.*) (-?\\d+)$"));
    const QRegularExpressionMatch match = trace.match(text);
    if (match.hasMatch())
        m_log.confirm(match.captured(1), match.captured(2), match.captured(3).toInt());
    else if (isError)
        m_log.noteError(unit, text);
}

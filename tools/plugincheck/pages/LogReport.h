#pragma once

#include "LogAdvice.h"
#include "LogLine.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>
#include <QtCore/QVector>

#include <string_view>

namespace PluginCheck {

/**
 * What the library says in a log, counted line by line.
 *
 * Memory stays bounded whatever the log holds: of everything that is told apart, a fixed number is kept, and
 * what comes beyond that is only counted.
 */
class LogReport
{
public:
    struct Limits
    {
        int messagesDrawn = 200;
        int groups = 20000;
    };

    LogReport(const LogSpan &span, const Limits &limits);

    /// The lines that follow are of this file, whether it is a new one or not.
    void beginFile(const QString &name);
    /// A line without its end.
    void addLine(std::string_view line);
    /// Ends the message that further lines could have belonged to.
    void endFile();

    bool hasFailures() const { return !m_failures.isEmpty(); }
    /// The files that have lines, and none that glog writes.
    QStringList notLogs() const;

    /// Described in docs/plugincheck-log.md.
    QJsonObject toJson() const;

private:
    struct Occurrences
    {
        qint64 count = 0;
        LogTime first;
        LogTime last;

        void add(const LogTime &time);
        void describe(QJsonObject &object) const;
    };
    struct Reason
    {
        QString text;
        LogAdvice advice;
        qint64 count = 0;
    };
    struct Failure
    {
        int known = 0;
        QString library;
        Occurrences occurrences;
        QVector<Reason> reasons;
    };
    struct Error
    {
        QString text;
        LogAdvice advice;
        Occurrences occurrences;
    };
    struct Message
    {
        QString sender;
        QString receiver;
        QString type;
    };
    struct Drawn
    {
        enum Kind { Delivered, Refused, Note };
        Kind kind = Note;
        LogTime time;
        LogTime last;
        Message message;
        QString text;
        qint64 count = 1;
        bool isFailure = false;
    };
    struct File
    {
        QString name;
        qint64 lines = 0;
        qint64 bytes = 0;
        qint64 entries = 0;
        bool hasHeader = false;

        bool isNoLog() const { return lines > 0 && entries == 0 && !hasHeader; }
    };

    void finishMessage();
    bool isKnownFromOtherFile();
    void count(std::string_view text);
    void countByManagerBase(std::string_view text);
    void countByManager(std::string_view text);
    void countByCamManager(std::string_view text);
    void addFailure(int known, const QString &library, const QString &reason);
    void addReason(Failure &failure, const QString &reason);
    void addTrace(std::string_view text);
    void addRefused(std::string_view text);
    void addError(const QString &text, const LogAdvice &advice);
    void addNote(const QString &text, bool isFailure = false);
    void draw(const Drawn &drawn);

    QJsonArray filesJson() const;
    QJsonArray failuresJson() const;
    QJsonArray errorsJson() const;
    QJsonArray messagesJson() const;
    QJsonArray trafficJson() const;

    LogSpan m_span;
    Limits m_limits;
    QVector<File> m_files;
    int m_file = 0;

    /// The message that is being read, with all its lines.
    QByteArray m_open;
    LogPrefix m_prefix;
    QByteArray m_unit;
    bool m_isOpen = false;

    /// Warnings and errors stand in several files of glog's; each is counted once.
    QHash<size_t, int> m_seen;

    /// The entries that are counted.
    Occurrences m_read;
    qint64 m_outsideSpan = 0;
    qint64 m_alsoInOtherFile = 0;
    qint64 m_notTheLibrarys = 0;
    qint64 m_notTold = 0;
    qint64 m_deliveries = 0;
    qint64 m_notDrawn = 0;

    QVector<Failure> m_failures;
    QHash<QString, int> m_failureIndex;
    QVector<Error> m_errors;
    QHash<QString, int> m_errorIndex;
    QHash<QByteArray, Occurrences> m_messages;
    QVector<Drawn> m_drawn;
};

/// "frame opened (20001638)" for a type that the manager knows, otherwise the number alone.
QString messageTypeText(const QString &type);

}

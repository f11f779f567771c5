#pragma once

#include <QtCore/QString>

#include <optional>
#include <string_view>

namespace PluginCheck {

/// When a line was written. glog can be told to leave out the year, which then is 0.
struct LogTime
{
    int year = 0;
    int month = 0;
    int day = 0;
    qint64 microseconds = 0;

    bool isValid() const { return month > 0; }
    bool isBefore(const LogTime &other) const;
    /// "2026-11-21 14:46:05.123456"
    QString text() const;
};

/// What glog puts before each message, and where that begins.
struct LogPrefix
{
    char severity = 'I';
    LogTime time;
    /// The source file without its extension.
    std::string_view unit;
    size_t length = 0;
};

/// Nothing when the line has no prefix, as the further lines of a message have none.
std::optional<LogPrefix> parseLogPrefix(std::string_view line);

/// One of the lines with which glog begins a file.
bool isLogHeader(std::string_view line);

/// A span of time, both ends included. An end without a day is a time of every day.
class LogSpan
{
public:
    /// Take "14:46", "14:46:05.5", "2026-11-21", or both parts with a blank or a T between them. False for
    /// what is none of these.
    bool setFrom(const QString &text);
    bool setTo(const QString &text);

    bool isOpen() const { return !m_from && !m_to; }
    /// False when nothing can lie in it, since it ends before it begins.
    bool isPossible() const;
    bool contains(const LogTime &time) const;

private:
    struct End
    {
        LogTime time;
        bool hasDay = false;
    };

    static std::optional<End> parse(const QString &text, bool isLast);
    static int compare(const LogTime &time, const End &end);

    std::optional<End> m_from;
    std::optional<End> m_to;
};

}

#include "LogLine.h"

#include <QtCore/QDate>
#include <QtCore/QRegularExpression>

#include <tuple>

using namespace PluginCheck;

namespace {

constexpr qint64 microsecondsPerSecond = 1000000;

/// Reads a line from its start.
class Cursor
{
public:
    explicit Cursor(std::string_view line)
        : m_line(line)
    {
    }

    size_t position() const { return m_at; }

    bool take(char expected)
    {
        if (m_at >= m_line.size() || m_line[m_at] != expected)
            return false;
        ++m_at;
        return true;
    }

    bool takeBlanks()
    {
        const size_t before = m_at;
        while (take(' ')) {
        }
        return m_at > before;
    }

    /// All digits that follow; -1 unless there are as many as asked for.
    int takeNumber(size_t least, size_t most)
    {
        size_t digits = 0;
        int number = 0;
        while (m_at + digits < m_line.size() && isDigit(m_line[m_at + digits]) && digits <= most)
            number = number * 10 + (m_line[m_at + digits++] - '0');
        if (digits < least || digits > most)
            return -1;
        m_at += digits;
        return number;
    }

    bool skipDigits()
    {
        const size_t before = m_at;
        while (m_at < m_line.size() && isDigit(m_line[m_at]))
            ++m_at;
        return m_at > before;
    }

    static bool isDigit(char character) { return character >= '0' && character <= '9'; }

private:
    std::string_view m_line;
    size_t m_at = 0;
};

bool parseDay(Cursor &cursor, LogTime &time)
{
    const int number = cursor.takeNumber(4, 8);
    time.year = number / 10000;
    time.month = number / 100 % 100;
    time.day = number % 100;
    return number > 0 && time.month >= 1 && time.month <= 12 && time.day >= 1 && time.day <= 31;
}

bool parseTimeOfDay(Cursor &cursor, LogTime &time)
{
    const int hours = cursor.takeNumber(2, 2);
    if (hours < 0 || !cursor.take(':'))
        return false;
    const int minutes = cursor.takeNumber(2, 2);
    if (minutes < 0 || !cursor.take(':'))
        return false;
    const int seconds = cursor.takeNumber(2, 2);
    if (seconds < 0 || !cursor.take('.'))
        return false;
    const int fraction = cursor.takeNumber(6, 6);
    time.microseconds = ((hours * 60 + minutes) * 60 + seconds) * microsecondsPerSecond + fraction;
    return fraction >= 0;
}

QString twoDigits(qint64 number)
{
    return QString::number(number).rightJustified(2, QLatin1Char('0'));
}

}

bool LogTime::isBefore(const LogTime &other) const
{
    return std::tie(year, month, day, microseconds)
           < std::tie(other.year, other.month, other.day, other.microseconds);
}

QString LogTime::text() const
{
    if (!isValid())
        return {};
    const qint64 seconds = microseconds / microsecondsPerSecond;
    QString result;
    if (year > 0)
        result = QString::number(year).rightJustified(4, QLatin1Char('0')) + QLatin1Char('-');
    return result + twoDigits(month) + QLatin1Char('-') + twoDigits(day) + QLatin1Char(' ')
           + twoDigits(seconds / 3600) + QLatin1Char(':') + twoDigits(seconds / 60 % 60) + QLatin1Char(':')
           + twoDigits(seconds % 60) + QLatin1Char('.')
           + QString::number(microseconds % microsecondsPerSecond).rightJustified(6, QLatin1Char('0'));
}

std::optional<LogPrefix> PluginCheck::parseLogPrefix(std::string_view line)
{
    LogPrefix prefix;
    if (line.empty() || std::string_view("IWEF").find(line[0]) == std::string_view::npos)
        return {};
    prefix.severity = line[0];

    Cursor cursor(line);
    cursor.take(line[0]);
    if (!parseDay(cursor, prefix.time) || !cursor.take(' ') || !parseTimeOfDay(cursor, prefix.time))
        return {};
    if (!cursor.takeBlanks() || !cursor.skipDigits() || !cursor.take(' '))
        return {};

    const size_t fileAt = cursor.position();
    const size_t end = line.find("] ", fileAt);
    // A message without text still has the blank, unless an editor took it.
    const bool isBare = end == std::string_view::npos && line.back() == ']';
    if (end == std::string_view::npos && !isBare)
        return {};
    const std::string_view place = line.substr(fileAt, isBare ? line.size() - 1 - fileAt : end - fileAt);
    const size_t colon = place.rfind(':');
    if (colon == std::string_view::npos)
        return {};
    prefix.unit = place.substr(0, place.substr(0, colon).rfind('.'));
    if (prefix.unit.size() > colon)
        prefix.unit = place.substr(0, colon);
    prefix.length = isBare ? line.size() : end + 2;
    return prefix;
}

bool PluginCheck::isLogHeader(std::string_view line)
{
    constexpr std::string_view beginnings[] = {
        "Log file created at: ", "Running on machine: ", "Running duration (", "Log line format: "};
    for (const std::string_view beginning : beginnings) {
        if (line.substr(0, beginning.size()) == beginning)
            return true;
    }
    return false;
}

bool LogSpan::setFrom(const QString &text)
{
    m_from = parse(text, false);
    return m_from.has_value();
}

bool LogSpan::setTo(const QString &text)
{
    m_to = parse(text, true);
    return m_to.has_value();
}

bool LogSpan::isPossible() const
{
    return !m_from || !m_to || m_from->hasDay != m_to->hasDay || !m_to->time.isBefore(m_from->time);
}

bool LogSpan::contains(const LogTime &time) const
{
    return (!m_from || compare(time, *m_from) >= 0) && (!m_to || compare(time, *m_to) <= 0);
}

/// What the text leaves out is filled up: "to 14:46" means to the end of that minute.
std::optional<LogSpan::End> LogSpan::parse(const QString &text, bool isLast)
{
    static const QRegularExpression pattern(QStringLiteral(
        R"(^(?:(\d{4})-(\d\d)-(\d\d))?(?:(?:^|[ T])(\d\d):(\d\d)(?::(\d\d)(?:\.(\d{1,6}))?)?)?$)"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch() || text.isEmpty())
        return {};

    const auto number = [&](int group, int otherwise) {
        return match.capturedRef(group).isEmpty() ? otherwise : match.capturedRef(group).toInt();
    };
    End end;
    end.hasDay = !match.capturedRef(1).isEmpty();
    if (end.hasDay && !QDate::isValid(number(1, 0), number(2, 0), number(3, 0)))
        return {};
    end.time.year = number(1, 0);
    end.time.month = number(2, 0);
    end.time.day = number(3, 0);

    const int hours = number(4, isLast ? 23 : 0);
    const int minutes = number(5, isLast ? 59 : 0);
    const int seconds = number(6, isLast ? 59 : 0);
    if (hours > 23 || minutes > 59 || seconds > 60)
        return {};
    const QString fraction = match.captured(7).leftJustified(6, QLatin1Char(isLast ? '9' : '0'));
    end.time.microseconds =
        ((hours * 60 + minutes) * 60 + seconds) * microsecondsPerSecond + fraction.toInt();
    return end;
}

/// A line whose year is not known is taken to be of the year that is asked for.
int LogSpan::compare(const LogTime &time, const End &end)
{
    const auto key = [&](const LogTime &each) {
        return std::make_tuple(end.hasDay && time.year > 0 ? each.year : 0, end.hasDay ? each.month : 0,
                               end.hasDay ? each.day : 0, each.microseconds);
    };
    if (key(time) == key(end.time))
        return 0;
    return key(time) < key(end.time) ? -1 : 1;
}

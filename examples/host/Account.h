#pragma once

#include <QtCore/QString>

/// Tells on standard output what the host did, and remembers whether all of it went as it should.
class Account
{
public:
    void heading(const QString &text);
    void fact(const QString &what, const QString &value);
    void check(const QString &what, bool good);
    /// Tells what is there, and that it should be something else when it should.
    void expect(const QString &what, const QString &found, const QString &expected);
    void failure(const QString &text);

    /// Writes a line with columns of these widths.
    void row(const QStringList &cells, const QVector<int> &widths, bool good = true);

    /// While lenient, what is not as it should be is told, but does not count: a host with broken plug-ins is
    /// meant to start.
    void setLenient(bool lenient) { m_lenient = lenient; }
    /// A host with a window and somebody before it has nothing to tell here.
    void setSilent(bool silent) { m_silent = silent; }

    int failureCount() const { return m_failures; }

private:
    void write(const QString &line, bool good);

    int m_failures = 0;
    bool m_lenient = false;
    bool m_silent = false;
};

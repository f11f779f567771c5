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

    int failureCount() const { return m_failures; }

private:
    void write(const QString &line, bool good);

    int m_failures = 0;
};

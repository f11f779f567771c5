#include "Account.h"

#include <QtCore/QStringList>
#include <QtCore/QTextStream>
#include <QtCore/QVector>

#include <cstdio>

void Account::heading(const QString &text)
{
    write(QLatin1Char('\n') + text, true);
}

void Account::fact(const QString &what, const QString &value)
{
    write(QStringLiteral("  %1 %2").arg(what, -36).arg(value), true);
}

void Account::check(const QString &what, bool good)
{
    write(QStringLiteral("  %1 %2").arg(what, -36).arg(good ? QStringLiteral("yes") : QStringLiteral("no")),
          good);
}

void Account::expect(const QString &what, const QString &found, const QString &expected)
{
    fact(what, found);
    if (found != expected)
        failure(QStringLiteral("should be: ") + expected);
}

void Account::failure(const QString &text)
{
    write(QStringLiteral("  ") + text, false);
}

void Account::row(const QStringList &cells, const QVector<int> &widths, bool good)
{
    QString line = QStringLiteral("  ");
    for (int column = 0; column < cells.size(); ++column)
        line += cells.at(column).leftJustified(widths.at(column));
    write(line, good);
}

void Account::write(const QString &line, bool good)
{
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    QString text = line;
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    if (!m_silent)
        out << text << (good ? "" : "   <-- not as it should be") << Qt::endl;
    m_failures += good || m_lenient ? 0 : 1;
}

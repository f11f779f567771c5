#pragma once

#include "Configuration.h"

namespace PluginCheck {

/// What a manager asks a library for.
struct Request
{
    /// The library's name without ".dll".
    QString name;
    /// The functions that operations resolve in it; none for a desktop tool.
    QVector<QByteArray> factories;
};

/// What is asked for by the manager that reads this set. The CAM manager has one table for both its sets.
const QVector<Request> &requestsOf(Set set);

/// Returns what is asked of the library of that name, or null.
const Request *requestNamed(const QString &name, Set set);

/// The function by which one operation makes elements of any library.
QByteArray factoryOfAnyLibrary();

inline constexpr char entryPoint[] = "recMsgFromManager";

/// Names among which one that was probably meant is looked for: one that differs by capitals, separators or
/// few letters.
class NearNames
{
public:
    explicit NearNames(const QStringList &candidates);

    /// Returns those that are like the name, the nearest first.
    QStringList of(const QString &name, int most = 1) const;

private:
    struct Candidate
    {
        QString letters;
        /// Which letters and digits these are, one bit each.
        quint64 kinds;
        QString name;
    };

    /// By the number of letters, so that only those of about the same length are looked at.
    QVector<QVector<Candidate>> m_candidates;
};

/// "did you mean", as part of an advice; empty when there are no such names.
QString didYouMean(const QStringList &names);

}

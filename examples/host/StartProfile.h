#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>
#include <QtCore/QVector>

/// How long each phase of starting took.
class StartProfile
{
public:
    struct Phase
    {
        QString name;
        double milliseconds;
    };

    StartProfile() { m_timer.start(); }

    /// Ends the phase before it, if there is one.
    void begin(const QString &phase);
    void end();

    const QVector<Phase> &phases() const { return m_phases; }
    double total() const;

private:
    QElapsedTimer m_timer;
    QString m_phase;
    qint64 m_began = 0;
    QVector<Phase> m_phases;
};

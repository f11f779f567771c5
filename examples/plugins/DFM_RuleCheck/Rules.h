#pragma once

#include "CopperShape.h"

#include <QtCore/QHash>

#include <functional>
#include <memory>
#include <vector>

/// Where a board breaks a rule.
struct Finding
{
    QString rule;
    QString layer;
    QPointF position;
    double found;
    double allowed;
};

/**
 * The rules, checked feature by feature: a board has thousands of them, and the window must not stand still
 * meanwhile. The job must live as long as this object.
 */
class RuleRun
{
public:
    explicit RuleRun(const Job &job);

    /// Checks the next few features. False once there are none left.
    bool advance();
    int percent() const;
    const QVector<Finding> &findings() const { return m_findings; }

    static QStringList ruleNames();

private:
    using Check = std::function<void()>;

    /// The copper of one layer, by the squares of a grid that it touches.
    struct Copper
    {
        QVector<CopperShape> shapes;
        /// Which track or pad a shape is part of.
        QVector<int> owners;
        QHash<QPair<int, int>, QVector<int>> squares;
    };

    void prepareLayer(const Layer &layer);
    void prepareDrills(const Layer &layer);
    void checkClearance(const QString &layer, const Copper &copper, int shape);
    void checkRing(const Drill &drill);
    void add(const char *rule, const QString &layer, QPointF position, double found, double allowed);

    const Job &m_job;
    std::vector<std::unique_ptr<Copper>> m_copper;
    std::vector<Check> m_checks;
    std::size_t m_done = 0;
    QVector<Finding> m_findings;
};

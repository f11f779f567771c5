#include "Rules.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

// In millimetres.
constexpr double leastTrackWidth = 0.1;
constexpr double leastClearance = 0.09;
constexpr double leastRing = 0.11;
constexpr double leastDrillToOutline = 0.35;
constexpr double leastDrillToDrill = 0.25;
constexpr double leastCopperToOutline = 0.25;
constexpr double squareSize = 1.5;

constexpr char trackWidth[] = QT_TRANSLATE_NOOP("Rules", "Track width");
constexpr char clearance[] = QT_TRANSLATE_NOOP("Rules", "Copper clearance");
constexpr char ring[] = QT_TRANSLATE_NOOP("Rules", "Annular ring");
constexpr char drillToOutline[] = QT_TRANSLATE_NOOP("Rules", "Drill to outline");
constexpr char drillToDrill[] = QT_TRANSLATE_NOOP("Rules", "Drill to drill");
constexpr char copperToOutline[] = QT_TRANSLATE_NOOP("Rules", "Copper to outline");

constexpr std::size_t checksAtOnce = 40;

QString translated(const char *rule)
{
    return QCoreApplication::translate("Rules", rule);
}

QVector<QPair<int, int>> squaresOf(const QRectF &area)
{
    const auto square = [](double length) { return static_cast<int>(std::floor(length / squareSize)); };
    QVector<QPair<int, int>> squares;
    for (int x = square(area.left()); x <= square(area.right()); ++x) {
        for (int y = square(area.top()); y <= square(area.bottom()); ++y)
            squares.append({x, y});
    }
    return squares;
}

}

RuleRun::RuleRun(const Job &job)
    : m_job(job)
{
    for (const Layer &layer : job.layers) {
        if (layer.kind == QLatin1String("signal"))
            prepareLayer(layer);
        else if (layer.kind == QLatin1String("drill"))
            prepareDrills(layer);
    }
}

bool RuleRun::advance()
{
    const std::size_t end = std::min(m_done + checksAtOnce, m_checks.size());
    for (; m_done < end; ++m_done)
        m_checks[m_done]();
    return m_done < m_checks.size();
}

int RuleRun::percent() const
{
    return m_checks.empty() ? 100 : static_cast<int>(100 * m_done / m_checks.size());
}

QStringList RuleRun::ruleNames()
{
    QStringList names;
    for (const char *const rule :
         {trackWidth, clearance, ring, drillToOutline, drillToDrill, copperToOutline})
        names.append(translated(rule));
    return names;
}

void RuleRun::prepareLayer(const Layer &layer)
{
    m_copper.push_back(std::make_unique<Copper>());
    Copper &copper = *m_copper.back();
    int owner = 0;
    for (const Track &track : layer.tracks) {
        for (int i = 1; i < track.points.size(); ++i) {
            copper.shapes.append(
                CopperShape::segment(track.points.at(i - 1), track.points.at(i), track.width));
            copper.owners.append(owner);
        }
        ++owner;
        m_checks.push_back([this, &layer, &track] {
            if (track.width < leastTrackWidth)
                add(trackWidth, layer.name, track.points.value(0), track.width, leastTrackWidth);
        });
    }
    for (const Pad &pad : layer.pads) {
        copper.shapes.append(CopperShape::pad(pad));
        copper.owners.append(owner++);
        m_checks.push_back([this, &layer, &pad] {
            const double found = distanceToOutline(pad.center, m_job.outline)
                                 - std::min(pad.size.width(), pad.size.height()) / 2;
            if (found < leastCopperToOutline)
                add(copperToOutline, layer.name, pad.center, found, leastCopperToOutline);
        });
    }
    for (int shape = 0; shape < copper.shapes.size(); ++shape) {
        for (const QPair<int, int> &square : squaresOf(copper.shapes.at(shape).area()))
            copper.squares[square].append(shape);
        m_checks.push_back([this, &layer, &copper, shape] { checkClearance(layer.name, copper, shape); });
    }
}

void RuleRun::prepareDrills(const Layer &layer)
{
    for (int index = 0; index < layer.drills.size(); ++index) {
        m_checks.push_back([this, &layer, index] {
            const Drill &drill = layer.drills.at(index);
            const double found = distanceToOutline(drill.center, m_job.outline) - drill.diameter / 2;
            if (found < leastDrillToOutline)
                add(drillToOutline, layer.name, drill.center, found, leastDrillToOutline);
            for (int other = index + 1; other < layer.drills.size(); ++other) {
                const QPointF distance = layer.drills.at(other).center - drill.center;
                const double wall = std::hypot(distance.x(), distance.y())
                                    - (drill.diameter + layer.drills.at(other).diameter) / 2;
                if (wall < leastDrillToDrill)
                    add(drillToDrill, layer.name, drill.center, wall, leastDrillToDrill);
            }
            if (drill.plated)
                checkRing(drill);
        });
    }
}

/// Copper that touches belongs together. What does not must keep its distance, and is reported once.
void RuleRun::checkClearance(const QString &layer, const Copper &copper, int shape)
{
    const CopperShape &self = copper.shapes.at(shape);
    const QRectF area =
        self.area().adjusted(-leastClearance, -leastClearance, leastClearance, leastClearance);
    QVector<int> seen;
    for (const QPair<int, int> &square : squaresOf(area)) {
        const QVector<int> others = copper.squares.value(square);
        for (const int other : others) {
            if (other <= shape || copper.owners.at(other) == copper.owners.at(shape) || seen.contains(other))
                continue;
            seen.append(other);
            const double gap = gapBetween(self, copper.shapes.at(other));
            if (gap > 1e-6 && gap < leastClearance)
                add(clearance, layer,
                    (self.area() & copper.shapes.at(other).area().adjusted(-0.1, -0.1, 0.1, 0.1)).center(),
                    gap, leastClearance);
        }
    }
}

void RuleRun::checkRing(const Drill &drill)
{
    const Layer *const top = m_job.layer(QLatin1String("top"));
    if (!top)
        return;
    for (const Pad &pad : top->pads) {
        const double found = (std::min(pad.size.width(), pad.size.height()) - drill.diameter) / 2;
        if (pad.center == drill.center && found < leastRing)
            add(ring, top->name, drill.center, found, leastRing);
    }
}

void RuleRun::add(const char *rule, const QString &layer, QPointF position, double found, double allowed)
{
    m_findings.append({translated(rule), layer, position, found, allowed});
}

#include "sampleJob.h"

#include <QtGui/QPolygonF>

#include <algorithm>
#include <cmath>

namespace {

constexpr int pinCount = 8;

/// Places the job's features. Each function draws one group of the circuit, connector and tracks included.
class BoardBuilder
{
public:
    explicit BoardBuilder(const QSizeF &size);

    Job build(bool withSupply);
    Job buildEmpty();

private:
    void addController();
    void addSideHeader(double pinX, double direction);
    void addPullUps();
    void addBottomHeader();
    void addSupply();
    void addMountingHoles();
    void addMaskOpenings();

    void addThroughHole(QPointF center, double padDiameter, double drillDiameter);
    void addSilkBox(const QRectF &box);

    Layer m_silk{
        QStringLiteral("silk-top"), QStringLiteral("Silk screen"), QColor(235, 235, 225), {}, {}, {}};
    Layer m_maskTop{
        QStringLiteral("mask-top"), QStringLiteral("Solder mask"), QColor(70, 170, 110), {}, {}, {}};
    Layer m_top{QStringLiteral("top"), QStringLiteral("Signal"), QColor(214, 84, 70), {}, {}, {}};
    Layer m_bottom{QStringLiteral("bottom"), QStringLiteral("Signal"), QColor(74, 126, 214), {}, {}, {}};
    Layer m_maskBottom{
        QStringLiteral("mask-bottom"), QStringLiteral("Solder mask"), QColor(60, 140, 150), {}, {}, {}};
    Layer m_drill{QStringLiteral("drill"), QStringLiteral("Drill"), QColor(160, 160, 168), {}, {}, {}};
    Layer m_outline{QStringLiteral("outline"), QStringLiteral("Rout"), QColor(230, 196, 80), {}, {}, {}};

    const QRectF m_board;
    const QPointF m_controller = m_board.center();
};

/// The distance of a row's pin from the row's middle.
double pinOffset(int pin, double pitch)
{
    return (pin - (pinCount - 1) / 2.0) * pitch;
}

BoardBuilder::BoardBuilder(const QSizeF &size)
    : m_board({0, 0}, size)
{
}

Job BoardBuilder::build(bool withSupply)
{
    constexpr double headerInset = 6;
    addController();
    addSideHeader(m_board.left() + headerInset, -1);
    addSideHeader(m_board.right() - headerInset, 1);
    addPullUps();
    addBottomHeader();
    if (withSupply)
        addSupply();
    addMountingHoles();
    addMaskOpenings();
    return buildEmpty();
}

Job BoardBuilder::buildEmpty()
{
    m_outline.tracks.append({QPolygonF(m_board), 0.15});
    return {m_board, {m_silk, m_maskTop, m_top, m_bottom, m_maskBottom, m_drill, m_outline}};
}

void BoardBuilder::addController()
{
    constexpr double padDistance = 5.2;
    const QSizeF lying(1.6, 0.45);
    for (int pin = 0; pin < pinCount; ++pin) {
        const double offset = pinOffset(pin, 0.8);
        m_top.pads.append({m_controller + QPointF(-padDistance, offset), lying, false});
        m_top.pads.append({m_controller + QPointF(padDistance, offset), lying, false});
        m_top.pads.append({m_controller + QPointF(offset, -padDistance), lying.transposed(), false});
        m_top.pads.append({m_controller + QPointF(offset, padDistance), lying.transposed(), false});
    }
    addSilkBox({m_controller - QPointF(3.8, 3.8), QSizeF(7.6, 7.6)});
    m_silk.pads.append({m_controller + QPointF(-2.8, 2.8), {0.8, 0.8}, true});
}

void BoardBuilder::addSideHeader(double pinX, double direction)
{
    for (int pin = 0; pin < pinCount; ++pin) {
        const double padY = m_controller.y() + pinOffset(pin, 0.8);
        const double pinY = m_controller.y() + pinOffset(pin, 2.54);
        const double kneeX = m_controller.x() + direction * 9.5;
        m_top.tracks.append({QVector<QPointF>({{m_controller.x() + direction * 5.2, padY},
                                               {kneeX, padY},
                                               {kneeX + direction * std::abs(pinY - padY), pinY},
                                               {pinX, pinY}}),
                             0.25});
        addThroughHole({pinX, pinY}, 1.7, 1.0);
    }
    addSilkBox({pinX - 1.6, m_controller.y() - 10.6, 3.2, 21.2});
}

void BoardBuilder::addPullUps()
{
    constexpr double padY = 34;
    constexpr double busY = 35.8;
    QVector<QPointF> bus;
    for (int pin = 0; pin < pinCount; ++pin) {
        const double padX = m_controller.x() + pinOffset(pin, 0.8);
        const double resistorX = m_controller.x() + pinOffset(pin, 2.4);
        m_top.tracks.append({QVector<QPointF>({{padX, 25.2},
                                               {padX, 27.2},
                                               {resistorX, 27.2 + std::abs(resistorX - padX)},
                                               {resistorX, padY}}),
                             0.2});
        m_top.pads.append({{resistorX, padY}, {1.0, 0.9}, false});
        m_top.pads.append({{resistorX, busY}, {1.0, 0.9}, false});
        addSilkBox({resistorX - 0.8, padY - 0.75, 1.6, busY - padY + 1.5});
        bus.append({resistorX, busY});
    }
    m_top.tracks.append({bus, 0.5});
}

void BoardBuilder::addBottomHeader()
{
    constexpr double viaY = 8;
    constexpr double pinY = 3.5;
    for (int pin = 0; pin < pinCount; ++pin) {
        const double padX = m_controller.x() + pinOffset(pin, 0.8);
        const double viaX = m_controller.x() + pinOffset(pin, 2.0);
        const double pinX = m_controller.x() + pinOffset(pin, 2.54);
        m_top.tracks.append(
            {QVector<QPointF>({{padX, 14.8}, {padX, 13}, {viaX, 13 - std::abs(viaX - padX)}, {viaX, viaY}}),
             0.2});
        m_bottom.tracks.append(
            {QVector<QPointF>({{viaX, viaY}, {viaX, 7}, {pinX, 7 - std::abs(pinX - viaX)}, {pinX, pinY}}),
             0.3});
        addThroughHole({viaX, viaY}, 0.7, 0.3);
        addThroughHole({pinX, pinY}, 1.7, 1.0);
    }
    addSilkBox({m_controller.x() - 10.6, pinY - 1.6, 21.2, 3.2});
}

void BoardBuilder::addSupply()
{
    m_bottom.tracks.append({QVector<QPointF>({{6, 28.89}, {6, 31}, {54, 31}, {54, 28.89}}), 0.8});
    m_bottom.tracks.append({QVector<QPointF>({{6, 11.11}, {6, 10.4}, {54, 10.4}, {54, 11.11}}), 0.6});

    m_top.tracks.append({QVector<QPointF>({{21.6, 35.8}, {19.2, 35.8}}), 0.5});
    m_bottom.tracks.append({QVector<QPointF>({{19.2, 35.8}, {19.2, 31}}), 0.5});
    addThroughHole({19.2, 35.8}, 0.6, 0.4);

    const QSizeF padSize(0.6, 1.6);
    for (int pin = 0; pin < 4; ++pin) {
        const double x = 47 + (pin - 1.5) * 1.27;
        m_top.pads.append({{x, 33}, padSize, false});
        m_top.pads.append({{x, 37.6}, padSize, false});
    }
    m_top.tracks.append({QVector<QPointF>({{38.4, 35.8}, {41.8, 35.8}, {43.6, 37.6}, {45.095, 37.6}}), 0.5});
    m_top.tracks.append({QVector<QPointF>({{45.095, 33}, {45.095, 31}}), 0.4});
    addThroughHole({45.095, 31}, 0.9, 0.4);
    addSilkBox({44.3, 34.2, 5.4, 2.2});
}

void BoardBuilder::addMountingHoles()
{
    const QRectF corners = m_board.adjusted(4, 4, -4, -4);
    for (const QPointF &corner :
         {corners.topLeft(), corners.topRight(), corners.bottomLeft(), corners.bottomRight()})
        m_drill.drills.append({corner, 3.2, false});
}

void BoardBuilder::addMaskOpenings()
{
    const QSizeF growth(0.2, 0.2);
    for (const Pad &pad : qAsConst(m_top.pads))
        m_maskTop.pads.append({pad.center, pad.size + growth, pad.round});
    for (const Pad &pad : qAsConst(m_bottom.pads))
        m_maskBottom.pads.append({pad.center, pad.size + growth, pad.round});
}

void BoardBuilder::addThroughHole(QPointF center, double padDiameter, double drillDiameter)
{
    const Pad pad{center, {padDiameter, padDiameter}, true};
    m_top.pads.append(pad);
    m_bottom.pads.append(pad);
    m_drill.drills.append({center, drillDiameter, true});
}

void BoardBuilder::addSilkBox(const QRectF &box)
{
    m_silk.tracks.append({QPolygonF(box), 0.15});
}

}

const Layer *layerOf(const Job &job, const QString &name)
{
    const auto layer = std::find_if(job.layers.constBegin(), job.layers.constEnd(),
                                    [&name](const Layer &candidate) { return candidate.name == name; });
    return layer == job.layers.constEnd() ? nullptr : &*layer;
}

int featureCount(const Layer &layer)
{
    return layer.tracks.size() + layer.pads.size() + layer.drills.size();
}

Job readJob(const QString &name)
{
    if (name == QLatin1String("control-2l"))
        return BoardBuilder({60, 40}).build(true);
    if (name == QLatin1String("preamp-2l"))
        return BoardBuilder({46, 40}).build(false);
    if (name == QLatin1String("sensor-2l"))
        return BoardBuilder({52, 40}).build(false);
    return BoardBuilder({50, 30}).buildEmpty();
}

Step readStep(const QString &jobName, const QString &stepName)
{
    Step step{readJob(jobName), {{0, 0}}, {}};
    step.area = step.job.board;
    if (stepName != QLatin1String("panel"))
        return step;

    constexpr double gap = 4;
    const QPointF right(step.job.board.width() + gap, 0);
    const QPointF up(0, step.job.board.height() + gap);
    step.boards = {{0, 0}, right, up, right + up};
    step.area.setSize({2 * step.job.board.width() + gap, 2 * step.job.board.height() + gap});
    step.area.adjust(-gap, -gap, gap, gap);
    return step;
}

const QVector<Part> &sampleParts()
{
    static const QVector<Part> parts{
        {QStringLiteral("PN-1042"), QStringLiteral("B"), QStringLiteral("Northfield"),
         QStringLiteral("control-2l"), 2, 1.6, QStringLiteral("ENIG")},
        {QStringLiteral("PN-1057"), QStringLiteral("A"), QStringLiteral("Harbour Instruments"),
         QStringLiteral("sensor-2l"), 2, 1.0, QStringLiteral("Immersion tin")},
        {QStringLiteral("PN-1063"), QStringLiteral("C"), QStringLiteral("Northfield"),
         QStringLiteral("panel-12l"), 12, 2.4, QStringLiteral("ENIG")},
        {QStringLiteral("PN-1071"), QStringLiteral("A"), QStringLiteral("Lindgren Audio"),
         QStringLiteral("preamp-2l"), 2, 1.6, QStringLiteral("HASL lead-free")},
    };
    return parts;
}

const Part *findPart(const QString &number)
{
    const QVector<Part> &parts = sampleParts();
    const auto part = std::find_if(parts.begin(), parts.end(),
                                   [&number](const Part &candidate) { return candidate.number == number; });
    return part == parts.end() ? nullptr : &*part;
}

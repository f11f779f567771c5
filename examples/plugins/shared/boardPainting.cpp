#include "boardPainting.h"

#include <QtGui/QPainter>

#include <algorithm>

namespace {

QRectF areaOf(const Track &track)
{
    QRectF area = QPolygonF(track.points).boundingRect();
    const double half = track.width / 2;
    return area.adjusted(-half, -half, half, half);
}

void paintTracks(QPainter &painter, const Layer &layer, const QRectF &area)
{
    painter.setBrush(Qt::NoBrush);
    for (const Track &track : layer.tracks) {
        if (!area.intersects(areaOf(track)))
            continue;
        painter.setPen(QPen(layer.color, track.width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(track.points.constData(), track.points.size());
    }
}

void paintPads(QPainter &painter, const Layer &layer, const QRectF &area)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(layer.color.lighter(118));
    for (const Pad &pad : layer.pads) {
        const QRectF shape = pad.area();
        if (!area.intersects(shape))
            continue;
        pad.round ? painter.drawEllipse(shape) : painter.drawRect(shape);
    }
}

void paintDrills(QPainter &painter, const Layer &layer, const QRectF &area)
{
    painter.setBrush(BoardColors::hole);
    for (const Drill &drill : layer.drills) {
        const double radius = drill.diameter / 2;
        if (!area.intersects(QRectF(drill.center - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius))))
            continue;
        painter.setPen(drill.plated ? QPen(Qt::NoPen) : QPen(layer.color, 0.2));
        painter.drawEllipse(drill.center, radius, radius);
    }
}

/// Through the board from below, with what is drilled and printed on top of all.
int height(const Layer &layer)
{
    static const char *const names[] = {"mask-bottom", "bottom", "inner2",   "inner1", "top",
                                        "mask-top",    "drill",  "silk-top", "outline"};
    const auto *const found = std::find_if(std::begin(names), std::end(names), [&layer](const char *name) {
        return layer.name == QLatin1String(name);
    });
    return static_cast<int>(found - std::begin(names));
}

}

void paintLayer(QPainter &painter, const Layer &layer, const QRectF &area)
{
    paintTracks(painter, layer, area);
    paintPads(painter, layer, area);
    paintDrills(painter, layer, area);
}

bool isInOverview(const Layer &layer)
{
    return layer.kind != QLatin1String("mask") && !layer.name.startsWith(QLatin1String("inner"));
}

void paintStep(QPainter &painter, const Job &job, const Step &step, const QString &highlightedLayer)
{
    const Layer *const highlighted = job.layer(highlightedLayer);
    if (step.boards.size() > 1)
        painter.fillRect(step.area, BoardColors::panel);
    const QRectF everywhere = job.outline.boundingRect().adjusted(-1, -1, 1, 1);
    const QVector<int> order = paintingOrder(job.layers);
    for (const QPointF &board : step.boards) {
        painter.save();
        painter.translate(board);
        painter.setPen(Qt::NoPen);
        painter.setBrush(BoardColors::board);
        painter.drawPolygon(job.outline);
        painter.setOpacity(highlighted ? 0.25 : 1.0);
        for (const int index : order) {
            if (isInOverview(job.layers.at(index)))
                paintLayer(painter, job.layers.at(index), everywhere);
        }
        painter.setOpacity(1.0);
        if (highlighted)
            paintLayer(painter, *highlighted, everywhere);
        painter.restore();
    }
}

QVector<int> paintingOrder(const QVector<Layer> &layers)
{
    QVector<int> order;
    for (int index = 0; index < layers.size(); ++index)
        order.append(index);
    std::stable_sort(order.begin(), order.end(), [&layers](int left, int right) {
        return height(layers.at(left)) < height(layers.at(right));
    });
    return order;
}

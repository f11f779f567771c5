#include "jobPainting.h"

#include <QtGui/QPainter>

namespace {

const QColor panelColor(44, 50, 48);
const QColor boardColor(24, 60, 44);
const QColor holeColor(12, 16, 20);

void paintTracks(QPainter &painter, const Layer &layer)
{
    painter.setBrush(Qt::NoBrush);
    for (const Track &track : layer.tracks) {
        painter.setPen(QPen(layer.color, track.width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(track.points.constData(), track.points.size());
    }
}

void paintPads(QPainter &painter, const Layer &layer)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(layer.color.lighter(125));
    for (const Pad &pad : layer.pads) {
        QRectF shape({0, 0}, pad.size);
        shape.moveCenter(pad.center);
        if (pad.round)
            painter.drawEllipse(shape);
        else
            painter.drawRect(shape);
    }
}

void paintDrills(QPainter &painter, const Layer &layer)
{
    painter.setBrush(holeColor);
    for (const Drill &drill : layer.drills) {
        painter.setPen(drill.plated ? QPen(Qt::NoPen) : QPen(layer.color, 0.2));
        painter.drawEllipse(drill.center, drill.diameter / 2, drill.diameter / 2);
    }
}

void paintLayer(QPainter &painter, const Layer &layer)
{
    paintTracks(painter, layer);
    paintPads(painter, layer);
    paintDrills(painter, layer);
}

void paintJob(QPainter &painter, const Job &job, const QString &highlightedLayer)
{
    const Layer *const highlighted = layerOf(job, highlightedLayer);
    painter.fillRect(job.board, boardColor);
    painter.setOpacity(highlighted ? 0.25 : 1.0);
    for (const char *const name : {"bottom", "top", "silk-top", "drill", "outline"})
        paintLayer(painter, *layerOf(job, QLatin1String(name)));

    painter.setOpacity(1.0);
    if (highlighted)
        paintLayer(painter, *highlighted);
}

}

void paintStep(QPainter &painter, const Step &step, const QString &highlightedLayer)
{
    if (step.boards.size() > 1)
        painter.fillRect(step.area, panelColor);
    for (const QPointF &board : step.boards) {
        painter.translate(board);
        paintJob(painter, step.job, highlightedLayer);
        painter.translate(-board);
    }
}

#pragma once

#include "board.h"

class QPainter;

namespace BoardColors {
const QColor background(15, 18, 24);
const QColor panel(40, 46, 46);
const QColor board(22, 52, 40);
const QColor hole(10, 13, 17);
}

/// Draws the features of a layer that touch `area`, in the board's own coordinates.
void paintLayer(QPainter &painter, const Layer &layer, const QRectF &area);

/// Whether an overview shows the layer: masks and inner layers lie under what one wants to see.
bool isInOverview(const Layer &layer);

/// Draws the step in its own coordinates. With a layer's name, that layer stands out.
void paintStep(QPainter &painter, const Job &job, const Step &step, const QString &highlightedLayer = {});

/// The layers in the order in which they are painted, the lowest first.
QVector<int> paintingOrder(const QVector<Layer> &layers);

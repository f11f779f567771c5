#pragma once

#include "board.h"

#include <QtCore/QPair>

/// A piece of copper: a segment with a radius, or a rectangle.
struct CopperShape
{
    QPointF from;
    QPointF to;
    double radius = 0;
    QRectF rectangle;

    static CopperShape segment(QPointF from, QPointF to, double width);
    static CopperShape pad(const Pad &pad);

    QRectF area() const;
};

/// How far apart two shapes are, 0 where they touch.
double gapBetween(const CopperShape &left, const CopperShape &right);

/// How far a point is from the nearest line of a closed polygon.
double distanceToOutline(QPointF position, const QPolygonF &outline);

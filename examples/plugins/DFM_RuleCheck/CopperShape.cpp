#include "CopperShape.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Segment = QPair<QPointF, QPointF>;

double length(QPointF vector)
{
    return std::hypot(vector.x(), vector.y());
}

double cross(QPointF left, QPointF right)
{
    return left.x() * right.y() - left.y() * right.x();
}

double distance(QPointF position, const Segment &segment)
{
    const QPointF along = segment.second - segment.first;
    const double square = QPointF::dotProduct(along, along);
    const double part =
        square > 0 ? std::clamp(QPointF::dotProduct(position - segment.first, along) / square, 0.0, 1.0)
                   : 0.0;
    return length(position - segment.first - part * along);
}

bool doCross(const Segment &left, const Segment &right)
{
    const auto side = [](const Segment &segment, QPointF position) {
        return cross(segment.second - segment.first, position - segment.first);
    };
    return side(left, right.first) * side(left, right.second) < 0
           && side(right, left.first) * side(right, left.second) < 0;
}

double distance(const Segment &left, const Segment &right)
{
    if (doCross(left, right))
        return 0;
    return std::min({distance(left.first, right), distance(left.second, right), distance(right.first, left),
                     distance(right.second, left)});
}

QVector<Segment> sides(const QRectF &rectangle)
{
    return {{rectangle.topLeft(), rectangle.topRight()},
            {rectangle.topRight(), rectangle.bottomRight()},
            {rectangle.bottomRight(), rectangle.bottomLeft()},
            {rectangle.bottomLeft(), rectangle.topLeft()}};
}

double distance(const Segment &segment, const QRectF &rectangle)
{
    if (rectangle.contains(segment.first) || rectangle.contains(segment.second))
        return 0;
    double least = std::numeric_limits<double>::max();
    for (const Segment &side : sides(rectangle))
        least = std::min(least, distance(segment, side));
    return least;
}

double distance(const QRectF &left, const QRectF &right)
{
    const double x = std::max({0.0, left.left() - right.right(), right.left() - left.right()});
    const double y = std::max({0.0, left.top() - right.bottom(), right.top() - left.bottom()});
    return std::hypot(x, y);
}

double distanceOfCores(const CopperShape &left, const CopperShape &right)
{
    if (!left.rectangle.isEmpty() && !right.rectangle.isEmpty())
        return distance(left.rectangle, right.rectangle);
    if (!left.rectangle.isEmpty())
        return distance(Segment(right.from, right.to), left.rectangle);
    if (!right.rectangle.isEmpty())
        return distance(Segment(left.from, left.to), right.rectangle);
    return distance(Segment(left.from, left.to), Segment(right.from, right.to));
}

}

CopperShape CopperShape::segment(QPointF from, QPointF to, double width)
{
    return {from, to, width / 2, {}};
}

CopperShape CopperShape::pad(const Pad &pad)
{
    if (pad.round)
        return {pad.center, pad.center, pad.size.width() / 2, {}};
    return {pad.center, pad.center, 0, pad.area()};
}

QRectF CopperShape::area() const
{
    if (!rectangle.isEmpty())
        return rectangle;
    return QRectF(from, to).normalized().adjusted(-radius, -radius, radius, radius);
}

double gapBetween(const CopperShape &left, const CopperShape &right)
{
    return std::max(0.0, distanceOfCores(left, right) - left.radius - right.radius);
}

double distanceToOutline(QPointF position, const QPolygonF &outline)
{
    double least = std::numeric_limits<double>::max();
    for (int i = 0; i < outline.size(); ++i)
        least =
            std::min(least, distance(position, Segment(outline.at(i), outline.at((i + 1) % outline.size()))));
    return least;
}

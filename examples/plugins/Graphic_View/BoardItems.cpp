#include "BoardItems.h"

#include "boardPainting.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLineF>
#include <QtGui/QPainter>
#include <QtWidgets/QStyleOptionGraphicsItem>

#include <algorithm>

namespace {

QString text(const char *source)
{
    return QCoreApplication::translate("GraphicView", source);
}

double distance(QPointF position, QPointF from, QPointF to)
{
    const QPointF along = to - from;
    const double length = QPointF::dotProduct(along, along);
    const double part =
        length > 0 ? std::clamp(QPointF::dotProduct(position - from, along) / length, 0.0, 1.0) : 0.0;
    return QLineF(position, from + part * along).length();
}

bool isTrackAt(const Track &track, QPointF position)
{
    for (int i = 1; i < track.points.size(); ++i) {
        if (distance(position, track.points.at(i - 1), track.points.at(i)) <= track.width / 2)
            return true;
    }
    return false;
}

bool isSame(const Track &left, const Track &right)
{
    return left.width == right.width && left.points == right.points;
}

bool isSame(const Pad &left, const Pad &right)
{
    return left.center == right.center && left.size == right.size && left.round == right.round;
}

bool isSame(const Drill &left, const Drill &right)
{
    return left.center == right.center && left.diameter == right.diameter && left.plated == right.plated;
}

/// Those whose index is not among the sorted ones; `index` is that of the first, and afterwards of the next.
template <typename Features>
void keepOthers(const Features &features, Features &kept, const QVector<int> &indexes, int &index)
{
    for (const auto &feature : features) {
        if (!std::binary_search(indexes.begin(), indexes.end(), index++))
            kept.append(feature);
    }
}

template <typename Features>
void removeThoseIn(Features &features, const Features &others)
{
    const auto isInBoth = [&others](const auto &feature) {
        return std::any_of(others.begin(), others.end(),
                           [&feature](const auto &other) { return isSame(feature, other); });
    };
    features.erase(std::remove_if(features.begin(), features.end(), isInBoth), features.end());
}

}

BoardItem::BoardItem(const QPolygonF &outline)
    : QGraphicsPolygonItem(outline)
{
    setPen(Qt::NoPen);
    showFilm(Film::None);
}

void BoardItem::showFilm(Film film)
{
    setBrush(film == Film::None       ? BoardColors::board
             : film == Film::Positive ? QColor(Qt::black)
                                      : Qt::white);
}

LayerItem::LayerItem(const QVector<Layer> &layers, int index, const QRectF &area)
    : m_layers(layers)
    , m_index(index)
    , m_area(area)
{
    setFlag(ItemUsesExtendedStyleOption);
}

void LayerItem::showFilm(Film film)
{
    m_film = film;
    update();
}

void LayerItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *)
{
    if (m_film == Film::None) {
        paintLayer(*painter, m_layers.at(m_index), option->exposedRect);
        return;
    }
    Layer layer = m_layers.at(m_index);
    layer.color = m_film == Film::Positive ? Qt::white : Qt::black;
    paintLayer(*painter, layer, option->exposedRect);
}

Layer featureAlone(const Layer &layer, int index)
{
    Layer alone{layer.name, layer.kind, layer.color, {}, {}, {}};
    const int pad = index - layer.tracks.size();
    const int drill = pad - layer.pads.size();
    if (pad < 0)
        alone.tracks.append(layer.tracks.at(index));
    else if (drill < 0)
        alone.pads.append(layer.pads.at(pad));
    else
        alone.drills.append(layer.drills.at(drill));
    return alone;
}

bool isFeatureAt(const Layer &layer, int index, QPointF position)
{
    const Layer feature = featureAlone(layer, index);
    if (!feature.tracks.isEmpty())
        return isTrackAt(feature.tracks.first(), position);
    if (!feature.drills.isEmpty())
        return QLineF(feature.drills.first().center, position).length()
               <= feature.drills.first().diameter / 2;
    const Pad &pad = feature.pads.first();
    return pad.round ? QLineF(pad.center, position).length() <= pad.size.width() / 2
                     : pad.area().contains(position);
}

QString describeFeature(const Layer &layer, int index)
{
    const Layer feature = featureAlone(layer, index);
    if (!feature.tracks.isEmpty()) {
        const Track &track = feature.tracks.first();
        double length = 0;
        for (int i = 1; i < track.points.size(); ++i)
            length += QLineF(track.points.at(i - 1), track.points.at(i)).length();
        return text("Track on %1: %2 mm wide, %3 mm long")
            .arg(layer.name)
            .arg(track.width, 0, 'f', 3)
            .arg(length, 0, 'f', 2);
    }
    if (!feature.drills.isEmpty())
        return text("Hole: %1 mm, %2")
            .arg(feature.drills.first().diameter, 0, 'f', 2)
            .arg(feature.drills.first().plated ? text("plated") : text("not plated"));
    const Pad &pad = feature.pads.first();
    return text("Pad on %1: %2 by %3 mm")
        .arg(layer.name)
        .arg(pad.size.width(), 0, 'f', 2)
        .arg(pad.size.height(), 0, 'f', 2);
}

Layer withoutFeatures(const Layer &layer, const QVector<int> &indexes)
{
    Layer rest{layer.name, layer.kind, layer.color, {}, {}, {}};
    int index = 0;
    keepOthers(layer.tracks, rest.tracks, indexes, index);
    keepOthers(layer.pads, rest.pads, indexes, index);
    keepOthers(layer.drills, rest.drills, indexes, index);
    return rest;
}

Layer featuresOnlyIn(const Layer &layer, const Layer &other)
{
    Layer difference = layer;
    removeThoseIn(difference.tracks, other.tracks);
    removeThoseIn(difference.pads, other.pads);
    removeThoseIn(difference.drills, other.drills);
    return difference;
}

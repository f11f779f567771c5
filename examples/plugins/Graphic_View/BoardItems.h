#pragma once

#include "board.h"

#include <QtWidgets/QGraphicsItem>

/// How features are shown: in their layers' colours, or as the film that an imager exposes.
enum class Film { None, Positive, Negative };

/// The board itself, below its layers.
class BoardItem : public QGraphicsPolygonItem
{
public:
    explicit BoardItem(const QPolygonF &outline);

    void showFilm(Film film);
};

/// One layer of one board. It paints what is in a view's layer at that moment.
class LayerItem : public QGraphicsItem
{
public:
    LayerItem(const QVector<Layer> &layers, int index, const QRectF &area);

    void showFilm(Film film);

    QRectF boundingRect() const override { return m_area; }
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    const QVector<Layer> &m_layers;
    const int m_index;
    const QRectF m_area;
    Film m_film = Film::None;
};

/// A feature of a layer. Which one is meant depends on the order of tracks, pads and drills.
struct Feature
{
    int layer;
    int index;
};

inline bool operator==(const Feature &left, const Feature &right)
{
    return left.layer == right.layer && left.index == right.index;
}

/// A layer with only this feature, which is how one feature is painted, described and taken away.
Layer featureAlone(const Layer &layer, int index);
bool isFeatureAt(const Layer &layer, int index, QPointF position);
QString describeFeature(const Layer &layer, int index);
/// The layer without these features, given by their indexes in ascending order.
Layer withoutFeatures(const Layer &layer, const QVector<int> &indexes);
/// The features that only the first of two layers has.
Layer featuresOnlyIn(const Layer &layer, const Layer &other);

#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtGui/QColor>

/**
 * The job that the example plug-ins show. Lengths are millimetres, y points up, and the origin is the
 * lower left corner of the board.
 */

struct Track
{
    QVector<QPointF> points;
    double width;
};

struct Pad
{
    QPointF center;
    QSizeF size;
    bool round;
};

struct Drill
{
    QPointF center;
    double diameter;
    bool plated;
};

struct Layer
{
    QString name;
    QString kind;
    QColor color;
    QVector<Track> tracks;
    QVector<Pad> pads;
    QVector<Drill> drills;
};

struct Job
{
    QString name;
    QStringList steps;
    QRectF board;
    QVector<Layer> layers;
};

/// The layer of this name, which the job must have.
const Layer &layerOf(const Job &job, const QString &name);

/// A two-layer board around one controller.
const Job &sampleJob();

/// A line of the list of part numbers.
struct Part
{
    QString number;
    QString revision;
    QString customer;
    QString jobName;
    QStringList steps;
    int layerCount;
    double thickness;
    QString finish;
};

const QVector<Part> &sampleParts();

#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QColor>

/**
 * The jobs that the example plug-ins show. Lengths are millimetres, y points up, and the origin is the
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
    QRectF board;
    QVector<Layer> layers;
};

/// A step shows the job's board once or, on a panel, several times.
struct Step
{
    Job job;
    QVector<QPointF> boards;
    QRectF area;
};

/// The layer of this name, or null.
const Layer *layerOf(const Job &job, const QString &name);

int featureCount(const Layer &layer);

/// Two-layer boards around one controller. A job of any other name is a board with nothing on it.
Job readJob(const QString &name);
Step readStep(const QString &jobName, const QString &stepName);

/// A line of the list of part numbers.
struct Part
{
    QString number;
    QString revision;
    QString customer;
    QString jobName;
    int layerCount;
    double thickness;
    QString finish;
};

const QVector<Part> &sampleParts();

/// The part of this number, or null.
const Part *findPart(const QString &number);

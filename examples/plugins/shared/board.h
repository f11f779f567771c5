#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QColor>
#include <QtGui/QPolygonF>

/**
 * A job as its file describes it; examples/jobs/README.md says how. Lengths are millimetres, y points up.
 *
 * Names of jobs and steps that messages carry may be newer than those in the file, so they are not kept here
 * but by whoever shows them.
 */

struct Track
{
    QVector<QPointF> points;
    double width = 0;
};

struct Pad
{
    QPointF center;
    QSizeF size;
    bool round = false;

    QRectF area() const;
};

struct Drill
{
    QPointF center;
    double diameter = 0;
    bool plated = false;
};

struct Layer
{
    QString name;
    QString kind;
    QColor color;
    QVector<Track> tracks;
    QVector<Pad> pads;
    QVector<Drill> drills;

    int featureCount() const { return tracks.size() + pads.size() + drills.size(); }
};

/// A line of the list of part numbers.
struct Part
{
    QString number;
    QString revision;
    QString customer;
    QString jobName;
    QString file;
    int layerCount = 0;
    double thickness = 0;
    QString finish;
};

/// A step shows the job's board once or, on a panel, several times.
struct Step
{
    QString name;
    QVector<QPointF> boards;
    QRectF area;
};

struct Job
{
    Part part;
    QPolygonF outline;
    QVector<Layer> layers;
    QVector<Step> steps;

    bool isEmpty() const { return layers.isEmpty(); }
    /// The layer of this name, or null.
    const Layer *layer(const QString &name) const;
    /// The step that the file calls so; one board for any other name.
    Step step(const QString &name) const;
    int featureCount() const;
};

/// What is in the file; an empty job when it cannot be read, with what is wrong in `error`.
Job readJob(const QString &file, QString *error = nullptr);

/// The part numbers of all jobs in this folder, in the order of their numbers.
QVector<Part> readParts(const QString &folder);

/// What users call a kind of layer.
QString layerKindText(const QString &kind);

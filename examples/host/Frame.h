#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>

class QObject;
class QWidget;

/// What holds elements: the host's window, or the window of a job or of a step of it.
enum class FrameKind { Root, Graphic, Dfm, Matrix, Guide, Preview };

struct Frame
{
    FrameKind kind;
    QString job;
    QString step;
    QString file;
    QWidget *window;
    /// By the file names of their libraries.
    QMap<QString, QObject *> elements;
    /// The manager tells DFM frames apart by what job and step were called when they were opened, unless they
    /// belong to the root.
    QString firstJob;
    QString firstStep;
    bool belongsToRoot = true;
};

/// What the manager calls the frame of a step.
inline QString stepName(const QString &job, const QString &step)
{
    return job + QStringLiteral(" | ") + step;
}

/// What the DFM frame of a further step is called, beside the graphic frame of that step.
inline QString dfmStepName(const QString &step)
{
    return step + QStringLiteral(" DFM");
}

#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>

class QObject;
class QWidget;

/// What holds elements: the host's window, or the window of a job or of a step of it.
enum class FrameKind { Root, Graphic, Dfm, Matrix, Guide };

struct Frame
{
    FrameKind kind;
    QString job;
    QString step;
    QWidget *window;
    /// By the file names of their libraries.
    QMap<QString, QObject *> elements;
    /// The manager tells DFM frames apart by what job and step were called when they were opened.
    QString firstJob;
    QString firstStep;
};

/// What the manager calls the frame of a step.
inline QString stepName(const QString &job, const QString &step)
{
    return job + QStringLiteral(" | ") + step;
}

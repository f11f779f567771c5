#pragma once

#include "Frame.h"

#include <QtCore/QList>

#include <functional>

class QAbstractItemView;
class QAbstractScrollArea;
class QPoint;
class Workbench;

/// What the tour is played with: the host, and the hands and eyes of somebody who uses its window.
struct Stage
{
    Workbench &workbench;

    /// The element's Qt type is what the registration operation returns, or one that a user sees it to be.
    /// The tour cannot go on without it.
    template <typename Type>
    Type *element(const char *library, FrameKind kind, const QString &job = {},
                  const QString &step = {}) const
    {
        return static_cast<Type *>(find(library, kind, Type::staticMetaObject, job, step));
    }

    QWidget *frame(FrameKind kind, const QString &job, const QString &step = {}) const;
    QAbstractScrollArea *view(const QString &job, const QString &step) const;
    /// The text of a label that a frame or an element has under this name; of its first one without a name.
    QString label(const QObject *parent, const char *name = nullptr) const;

private:
    QObject *find(const char *library, FrameKind kind, const QMetaObject &type, const QString &job,
                  const QString &step) const;
};

namespace User {
void click(QWidget *widget, const QPoint &position);
/// Clicks on the row or entry that has this text in its first column.
void click(QAbstractItemView *view, const QString &text);
void moveMouse(QWidget *widget, const QPoint &position);
/// Chooses an entry of a menu, a tool bar or a grid of buttons. `answer` is for the dialog that this opens.
void choose(QObject *element, const char *command, const QString &answer = {});
/// Does something else for as long as this is not so. False when that takes too long.
bool waitUntil(const std::function<bool()> &isSo);
}

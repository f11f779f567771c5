#pragma once

#include "Frame.h"

#include <QtCore/QList>

class Account;
class MainWindow;
class QAbstractItemView;
class QPoint;
class QTpluginsManger4CAM;
class Workspace;

/// What stories are played with: the host, and the hands and eyes of somebody who uses its window.
struct Stage
{
    QTpluginsManger4CAM *manager;
    MainWindow &window;
    Workspace &workspace;
    Account &account;

    /// The element's Qt type is what the registration operation returns, or one that a user sees it to be.
    /// Stories cannot go on without it.
    template <typename Type>
    Type *element(const char *library, FrameKind kind, const QString &job = {},
                  const QString &step = {}) const
    {
        return static_cast<Type *>(find(library, kind, Type::staticMetaObject, job, step));
    }

    QWidget *frame(FrameKind kind, const QString &job, const QString &step = {}) const;
    /// What the view of a step has above the board.
    QString caption(const QString &job, const QString &step) const;
    /// The text of a label that a frame or an element has under this name; of its first one without a name.
    QString label(const QObject *parent, const char *name = nullptr) const;

    /// Lets those that are to be deleted later go now.
    void deleteClosedFrames() const;

private:
    QObject *find(const char *library, FrameKind kind, const QMetaObject &type, const QString &job,
                  const QString &step) const;
};

namespace User {
void click(QWidget *widget, const QPoint &position);
/// Clicks on the row or entry that has this text in its first column.
void click(QAbstractItemView *view, const QString &text);
void moveMouse(QWidget *widget, const QPoint &position);
void pressKey(QWidget *widget, int key, bool down);
/// Chooses an entry of a menu, a tool bar or a grid of buttons. `answer` is for the dialog that this opens.
void choose(QObject *element, const char *command, const QString &answer = {});
}

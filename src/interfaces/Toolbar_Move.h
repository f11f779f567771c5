#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>

class QAction;

/**
 * The moving tools, implemented by the root object of "Toolbar_Move.dll".
 *
 * All calls come from the user-interface thread and must not throw.
 */
class Toolbar_Move
{
public:
    virtual ~Toolbar_Move() = default;

    /// Makes the actions, in the order in which the host shows them. The plug-in keeps ownership and the
    /// actions must live as long as its root object. Called once.
    virtual QList<QAction *> createActions() = 0;
};

Q_DECLARE_INTERFACE(Toolbar_Move, "pluginManger.Toolbar_Move/1.0")

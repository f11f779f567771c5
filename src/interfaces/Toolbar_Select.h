#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>

class QAction;

/**
 * The selection tools, implemented by the root object of "ToolBar_Select.dll".
 *
 * All calls come from the user-interface thread and must not throw.
 */
class Toolbar_Select
{
public:
    virtual ~Toolbar_Select() = default;

    /// Makes the actions, in the order in which the host shows them. The plug-in keeps ownership and the
    /// actions must live as long as its root object. Called once.
    virtual QList<QAction *> createActions() = 0;
};

Q_DECLARE_INTERFACE(Toolbar_Select, "pluginManger.Toolbar_Select/1.0")

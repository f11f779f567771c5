#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>

class QAction;

/**
 * The general tools, implemented by the root object of "Toolbar_Tool.dll".
 *
 * All calls come from the user-interface thread and must not throw.
 */
class Toolbar_Tool
{
public:
    virtual ~Toolbar_Tool() = default;

    /// Makes the actions, in the order in which the host shows them. The plug-in keeps ownership and the
    /// actions must live as long as its root object. Called once.
    virtual QList<QAction *> createActions() = 0;
};

Q_DECLARE_INTERFACE(Toolbar_Tool, "pluginManger.Toolbar_Tool/1.0")

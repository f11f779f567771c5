#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>

class QAction;

/**
 * The editing tools, implemented by the root object of "Toolbar_Edit.dll".
 *
 * All calls come from the user-interface thread and must not throw.
 */
class Toolbar_Edit
{
public:
    virtual ~Toolbar_Edit() = default;

    /// Makes the actions, in the order in which the host shows them. The plug-in keeps ownership and the
    /// actions must live as long as its root object. Called once.
    virtual QList<QAction *> createActions() = 0;
};

Q_DECLARE_INTERFACE(Toolbar_Edit, "pluginManger.Toolbar_Edit/1.0")

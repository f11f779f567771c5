#pragma once

#include <QtCore/QObject>

class QMenu;
class QWidget;

/**
 * The main menus, implemented by the root object of "MenuBar_Menu.dll".
 *
 * The operations are called once each, in the order in which they stand here. The host places the menus in
 * its menu bar and owns them from then on. All calls come from the user-interface thread and must not throw.
 */
class MenuBar
{
public:
    virtual ~MenuBar() = default;

    /// Makes the "File" menu.
    virtual QMenu *createFileMenu() = 0;

    /// Makes the "Edit" menu.
    virtual QMenu *createEditMenu() = 0;

    /// Gives the plug-in the host's window, for the dialogs that its actions open. Borrowed, may be null.
    virtual void attachTo(QWidget *parent) = 0;

    /// Makes the "Help" menu.
    virtual QMenu *createHelpMenu() = 0;
};

Q_DECLARE_INTERFACE(MenuBar, "pluginManger.MenuBar/1.0")

#pragma once

#include <QtCore/QObject>

class QWidget;

/**
 * The view, implemented by the root object of "Viewbar_View.dll".
 *
 * All calls come from the user-interface thread and must not throw.
 */
class ViewWidget
{
public:
    virtual ~ViewWidget() = default;

    /// Makes the view. The host places it in a window of its own, which then owns it. Called once.
    virtual QWidget *createView() = 0;
};

Q_DECLARE_INTERFACE(ViewWidget, "pluginManger.ViewWidget/1.0")

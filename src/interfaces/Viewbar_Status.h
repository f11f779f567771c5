#pragma once

#include <QtCore/QObject>

class QWidget;

/**
 * The status display, implemented by the root object of "Viewbar_Status.dll".
 *
 * All calls come from the user-interface thread and must not throw.
 */
class Viewbar_Status
{
public:
    virtual ~Viewbar_Status() = default;

    /// Makes the status display. The host places it in its status bar, which then owns it. Called once.
    virtual QWidget *createStatusWidget() = 0;
};

Q_DECLARE_INTERFACE(Viewbar_Status, "pluginManger.Viewbar_Status/1.0")

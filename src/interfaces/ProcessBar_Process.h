#pragma once

#include <QtCore/QObject>

/**
 * The progress display.
 *
 * The manager looks for this interface in the root object of "MenuBar_Menu.dll", not in that of
 * "ProcessBar_Process.dll": the menu bar's object is the one to implement it.
 *
 * All calls come from the user-interface thread and must not throw.
 */
class ProcessBar_Process
{
public:
    virtual ~ProcessBar_Process() = default;

    /// Shows that `percent` of the work is done, from 0 to 100.
    virtual void setValue(int percent) = 0;
};

Q_DECLARE_INTERFACE(ProcessBar_Process, "pluginManger.ProcessBar_Process/1.0")

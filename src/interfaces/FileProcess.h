#pragma once

#include <QtCore/QObject>

class QMenu;
class QToolBar;
class QWidget;

/**
 * The tools for opening and saving files, implemented by the root object of "File_Process.dll".
 *
 * All calls come from the user-interface thread and must not throw.
 */
class FileProcess
{
public:
    virtual ~FileProcess() = default;

    /// Makes the tool bar, with `parent`, the host's window, as its Qt parent, which then owns it. Called
    /// once, first.
    virtual QToolBar *createToolBar(QWidget *parent) = 0;

    /// Makes the menu. The host places it in its menu bar and owns it from then on. Called once, second.
    virtual QMenu *createMenu() = 0;
};

Q_DECLARE_INTERFACE(FileProcess, "pluginManger.FileProcess/1.0")

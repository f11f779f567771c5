#pragma once

#include "PluginMetaData.h"
#include "pluginMangerBase.h"

#include <QtCore/QList>

class QAction;
class QMenu;
class QToolBar;
class QWidget;

class FileProcess;
class MenuBar;
class ProcessBar_Process;
class Toolbar_Edit;

/**
 * The manager of the desktop tools, which are Qt plug-ins.
 *
 * A host calls, in this order: instance(); getParentWidget() with its window; loadAllPlugins();
 * initAllPlugins(); initSignalAndSlot(). Then it reads the members and places what the plug-ins have made.
 *
 * Everything belongs to the user-interface thread. Only a plug-in's signal may come from another thread; it
 * then arrives queued. The library itself throws nothing; what a plug-in throws passes through to the caller.
 */
class PLUGINMANGER_EXPORT QTpluginsManger : public QTpluginsMangerBase
{
    Q_OBJECT

public:
    /// Returns the one manager of this process, made by the first call and never deleted.
    static QTpluginsManger *instance();

    /// Sets, despite its name, the host's window that is handed to plug-ins which build widgets. Borrowed,
    /// may be null. Called before initAllPlugins().
    void getParentWidget(QWidget *parent);

    /**
     * Loads the Qt plug-ins listed in "pluginconfig/pluginconfig.json" below the current directory. Always
     * returns true: a plug-in that does not load is logged, shown in a message box, and does not keep the
     * others from loading. Qt looks for the plug-ins in QCoreApplication::libraryPaths().
     *
     * A second call unloads each plug-in and loads it again. That deletes the root objects, so the members
     * that hold them, their interfaces and their actions are null and empty until initAllPlugins() is called
     * again; take the actions out of the window before, and do not call this from within a plug-in.
     */
    bool loadAllPlugins();

    /**
     * Asks the ten desktop tools, as far as they are loaded, for what they build, and keeps it in the members
     * below. Always returns true. A tool that does not implement its interface ends the process with a
     * message that names both; only the progress display may be missing. Called once for each
     * loadAllPlugins(): every further call has everything built again.
     */
    bool initAllPlugins();

    /// Connects the signal "sendMsgToManager(PluginMetaData)" of every loaded plug-in to recMegfromPlugin().
    /// A plug-in without the signal is left alone, but for a warning of Qt's. Called once: every further call
    /// connects, and so delivers, once more.
    void initSignalAndSlot();

    /// The host's window.
    QWidget *m_parentWidget = nullptr;

    /// @{
    /// The menus "File", "Edit" and "Help" of the menu bar. The host places and then owns them.
    QMenu *m_menuBarResult1 = nullptr;
    QMenu *m_menuBarResult2 = nullptr;
    QMenu *m_menuBarResult3 = nullptr;
    /// @}

    /// Not used by the library.
    void *m_reserved1 = nullptr;

    /// The tool bar for files, owned by the host's window.
    QToolBar *m_fileProcessResult1 = nullptr;

    /// @{
    /// The tool's interface, owned by its plug-in.
    FileProcess *m_fileProcess = nullptr;
    MenuBar *m_menuBar = nullptr;
    /// @}

    /// The menu for files. The host places and then owns it.
    QMenu *m_fileProcessResult2 = nullptr;

    /// The list of part numbers. The host places and then owns it.
    QWidget *m_pnListResult = nullptr;

    /// The status display. The host places and then owns it.
    QWidget *m_statusResult = nullptr;

    /// The tool's interface, owned by its plug-in.
    Toolbar_Edit *m_toolbarEdit = nullptr;

    /// @{
    /// The actions of the four tool bars, owned by their plug-ins.
    QList<QAction *> m_editActions;
    QList<QAction *> m_selectActions;
    QList<QAction *> m_moveActions;
    QList<QAction *> m_toolActions;
    /// @}

    /// The view. The host places and then owns it.
    QWidget *m_viewResult = nullptr;

    /**
     * The progress display, which is the menu bar's object. Null when that does not implement it, when there
     * is no "ProcessBar_Process.dll", and also when that is met before the menu bar: plug-ins are met in the
     * order of a hash table, which differs from run to run.
     */
    ProcessBar_Process *m_processBar = nullptr;

    /// @{
    /// The root objects of the ten tools, owned by their loaders.
    QObject *m_fileProcessObject = nullptr;
    QObject *m_pnListObject = nullptr;
    QObject *m_menuBarObject = nullptr;
    QObject *m_toolbarMoveObject = nullptr;
    QObject *m_toolbarEditObject = nullptr;
    QObject *m_toolbarSelectObject = nullptr;
    QObject *m_toolbarToolObject = nullptr;
    /// @}

    /// Not used by the library.
    void *m_reserved2 = nullptr;

    /// @{
    /// The root object of the tool, owned by its loader.
    QObject *m_viewObject = nullptr;
    QObject *m_statusObject = nullptr;
    QObject *m_processBarObject = nullptr;
    /// @}

public slots:
    /// Hands a copy of `msg` to the plug-in named by its `dst`, given without ".dll". A message for a plug-in
    /// that is not loaded vanishes.
    void recMegfromPlugin(PluginMetaData msg);

private:
    QTpluginsManger();
    ~QTpluginsManger() override;

    void forgetRootObjects();

    QTPluginsMangerPrivate m_private;

    static QTpluginsManger *m_instance;
};

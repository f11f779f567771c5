#pragma once

#include "Account.h"
#include "BoxObserver.h"
#include "Commands.h"
#include "JobTree.h"
#include "KeyStatus.h"
#include "LogTap.h"
#include "MessageLog.h"
#include "PluginCatalog.h"
#include "Post.h"
#include "Workspace.h"

#include <memory>

class DesktopWindow;
class MainWindow;
class QTpluginsManger;
class StartProfile;
class WorkbenchWindow;

/**
 * The host: both managers, the window, and what connects them.
 *
 * Its operations are called once each, in the order in which they stand here; main() does so, and so do
 * tests.
 */
class Workbench : public QObject
{
    Q_OBJECT

public:
    /// `base` holds the folders "pluginconfig" and "jobs"; the libraries lie in `pluginFolders`.
    Workbench(const QString &base, const QStringList &pluginFolders, StartProfile &profile);
    ~Workbench() override;

    /// Sends the managers to lists without the libraries that must not be loaded.
    void useSafeLists();
    /// QTpluginsManger: getParentWidget(), loadAllPlugins(), initAllPlugins(), initSignalAndSlot().
    void startDesktopTools();
    /// QTpluginsManger4CAM: loadAllPlugins().
    void loadCamPlugins();
    /// QTpluginsManger4CAM: loadAllDFMPlugins().
    void loadDfmPlugins();
    /// QTpluginsManger4CAM: insertRoot(), and the elements that belong to no job.
    void buildWindow();
    /// QTpluginsManger4CAM: frames, and the elements in them.
    void openJobs(const QStringList &jobs);
    /// Says what is loaded and what is not.
    void judgePlugins();

    // For as long as the host runs.
    void reloadDfmPlugins();
    void reloadDesktopTools();

    Account account;
    MessageLog log;
    PluginCatalog catalog;
    QTpluginsManger *const desktop;
    QTpluginsManger4CAM *const cam;
    Post post;

    WorkbenchWindow &window() const { return *m_window; }
    DesktopWindow &points() const { return *m_points; }
    MainWindow &jobs() const { return *m_jobs; }
    Workspace &workspace() const { return *m_workspace; }
    JobTree &jobTree() const { return *m_jobTree; }

private:
    bool prepareToReload(CataloguedPlugin::Set set);
    void initDesktopTools();
    void listenToDesktopTools();
    void showJob(const QString &job, const QString &file);

    const QString m_base;
    LogTap m_logTap;
    BoxObserver m_boxObserver;
    // The window owns its pages.
    MainWindow *m_jobs;
    DesktopWindow *m_points;
    std::unique_ptr<WorkbenchWindow> m_window;
    std::unique_ptr<Workspace> m_workspace;
    std::unique_ptr<JobTree> m_jobTree;
    std::unique_ptr<Commands> m_commands;
    std::unique_ptr<KeyStatus> m_keyStatus;
};

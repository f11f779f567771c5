#include "Workbench.h"

#include "DesktopTools.h"
#include "DesktopWindow.h"
#include "MainWindow.h"
#include "StartProfile.h"
#include "WorkbenchApplication.h"
#include "WorkbenchWindow.h"
#include "board.h"
#include "hostMessage.h"

#include <ProcessBar_Process.h>
#include <common.h>
#include <pluginManger.h>
#include <pluginManger4CAM.h>

#include <QtCore/QDir>
#include <QtCore/QPluginLoader>
#include <QtWidgets/QApplication>

Workbench::Workbench(const QString &base, const QStringList &pluginFolders, StartProfile &profile)
    : catalog(base, pluginFolders)
    , desktop(QTpluginsManger::instance())
    , cam(QTpluginsManger4CAM::instance())
    , post(cam, log)
    , m_base(base)
    , m_logTap(log)
    , m_boxObserver(account)
    , m_jobs(new MainWindow)
    , m_points(new DesktopWindow)
    , m_window(std::make_unique<WorkbenchWindow>(m_jobs, m_points, log, catalog, profile))
    , m_workspace(
          std::make_unique<Workspace>(post, *m_jobs, account, QDir(base).filePath(QStringLiteral("jobs"))))
    , m_jobTree(std::make_unique<JobTree>(post, *m_workspace))
    , m_commands(std::make_unique<Commands>(post, *m_jobs, *m_workspace, *m_jobTree))
    , m_keyStatus(std::make_unique<KeyStatus>(post, *m_jobs))
{
    // Each goes before the others, so the first comes last.
    for (auto folder = pluginFolders.rbegin(); folder != pluginFolders.rend(); ++folder)
        QCoreApplication::addLibraryPath(*folder);
    qApp->installEventFilter(&m_boxObserver);
    connect(&post, &Post::pluginThrew, &catalog, &PluginCatalog::blame);
    if (auto *const application = qobject_cast<WorkbenchApplication *>(qApp))
        connect(application, &WorkbenchApplication::caught, &post,
                [this](const QString &occasion, const QString &what) {
                    post.tellThrown("notify", {}, occasion, what);
                });
    connect(m_workspace.get(), &Workspace::jobShown, this, &Workbench::showJob);
    // Later, since the command comes from an element that is still in the midst of it.
    connect(m_commands.get(), &Commands::reloadDfmRequested, this, &Workbench::reloadDfmPlugins,
            Qt::QueuedConnection);
    connect(m_commands.get(), &Commands::reloadDesktopRequested, this, &Workbench::reloadDesktopTools,
            Qt::QueuedConnection);
}

Workbench::~Workbench()
{
    qApp->removeEventFilter(m_keyStatus.get());
    qApp->removeEventFilter(&m_boxObserver);
}

/// Both managers look below the current directory when the environment names no other. Said by the
/// environment, a path would have to consist of letters that the code page has.
void Workbench::useSafeLists()
{
    QDir::setCurrent(catalog.safeBase());
    qunsetenv("PLUGINMANGER_PATH");
    account.heading(tr("Loading"));
    account.fact(tr("Configuration files in"),
                 QDir().absoluteFilePath(QString::fromStdString(Common::getPath_pluginconfig())));
}

void Workbench::startDesktopTools()
{
    desktop->getParentWidget(m_points);
    post.guard("QTpluginsManger::loadAllPlugins", {}, [this] { desktop->loadAllPlugins(); });
    initDesktopTools();
    tellDesktopTools(desktop, post, account);
}

void Workbench::loadCamPlugins()
{
    cam->loadAllPlugins();
    account.check(tr("CAM set loaded"), cam->isCAMLoaded());
}

void Workbench::loadDfmPlugins()
{
    cam->loadAllDFMPlugins();
    account.check(tr("DFM set loaded"), cam->isDFMLoaded());
}

/// By the root the manager finds the frames, and the elements that belong to no frame.
void Workbench::buildWindow()
{
    cam->insertRoot("Engineering", m_jobs);
    account.check(tr("Engineering root inserted"), cam->getRoot() == m_jobs);
    m_workspace->openRoot();
    m_window->addWindowMenu();
    qApp->installEventFilter(m_keyStatus.get());
}

void Workbench::openJobs(const QStringList &jobs)
{
    account.heading(tr("Frames"));
    account.row({tr("operation"), tr("opened for"), tr("made once")}, {40, 24, 9});
    for (const QString &job : jobs)
        m_workspace->openJob(job);
    if (!jobs.isEmpty())
        m_workspace->showStep(jobs.first(), m_workspace->steps(jobs.first()).value(0));
    m_jobs->arrangeDocks();
    m_workspace->elements().tell(account);
    post.toElementOfRoot(hostMessage(
        "CAM_Progress_Dialog.dll", MessageType::ShowProgress,
        {{"Percent", 100}, {"Text", tr("Registered elements: %1").arg(m_workspace->elements().count())}}));
}

void Workbench::judgePlugins()
{
    catalog.judge(*cam);
}

/// Frames that hold elements of the set are closed first and opened again afterwards: no element of a library
/// may be left when it goes.
void Workbench::reloadDfmPlugins()
{
    if (!prepareToReload(CataloguedPlugin::Dfm))
        return;
    QVector<Frame> open;
    const QList<Frame *> frames = m_workspace->frames(FrameKind::Dfm);
    for (const Frame *const frame : frames) {
        open.append(*frame);
        m_workspace->close(*frame);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    post.call("loadAllDFMPlugins", {}, [this] { cam->loadAllDFMPlugins(); });
    for (const Frame &frame : qAsConst(open))
        m_workspace->openDfmFrame(frame.job, frame.step, frame.belongsToRoot);
    judgePlugins();
    const QString text = tr("The DFM set was loaded again");
    post.toElementOfRoot(hostMessage("Graphic_Tips.dll", MessageType::ShowText, {{"Text", text}}));
}

/// Loading the tools again deletes their root objects, so their widgets go first.
void Workbench::reloadDesktopTools()
{
    if (!prepareToReload(CataloguedPlugin::Desktop))
        return;
    m_points->clear(*desktop);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    post.call("QTpluginsManger::loadAllPlugins", {}, [this] { desktop->loadAllPlugins(); });
    initDesktopTools();
    judgePlugins();
    const QString text = tr("The desktop tools were loaded again");
    post.toElementOfRoot(hostMessage("Graphic_Tips.dll", MessageType::ShowText, {{"Text", text}}));
}

/// What is loaded goes on working when a file is not fit to take its place.
bool Workbench::prepareToReload(CataloguedPlugin::Set set)
{
    if (!catalog.isFitToReload(set)) {
        judgePlugins();
        const QString text =
            tr("Not loaded again: a file is damaged, see %1").arg(WorkbenchWindow::tr("Plug-ins"));
        post.toElementOfRoot(hostMessage("Graphic_Tips.dll", MessageType::ShowText, {{"Text", text}}));
        return false;
    }
    const QStringList libraries = catalog.forget(set);
    for (const QString &library : libraries)
        post.forgive(library);
    QDir::setCurrent(catalog.safeBase());
    return true;
}

void Workbench::initDesktopTools()
{
    listenToDesktopTools();
    post.guard("initAllPlugins", {}, [this] { desktop->initAllPlugins(); });
    post.guard("initSignalAndSlot", {}, [this] { desktop->initSignalAndSlot(); });
    m_points->place(*desktop);
    const PluginMetaData message = hostMessage("ListBar_PNList", MessageType::UseFolder,
                                               {{"Folder", QDir(m_base).filePath(QStringLiteral("jobs"))}});
    post.deliver("recMegfromPlugin", message, [&] { desktop->recMegfromPlugin(message); });
    if (ProcessBar_Process *const progress = progressDisplay(*desktop))
        post.guard("setValue", QStringLiteral("MenuBar_Menu.dll"), [&] { progress->setValue(0); });
}

/// Before the manager connects itself, so that a message is seen before what it leads to. A loader of one's
/// own finds the same root object; letting it go again leaves the manager its only owner.
void Workbench::listenToDesktopTools()
{
    const QStringList names = catalog.desktopPlugins();
    QStringList loaded;
    for (const QString &name : names) {
        QPluginLoader loader(name + QStringLiteral(".dll"));
        if (!loader.isLoaded())
            continue;
        loaded.append(name);
        QObject *const plugin = loader.instance();
        if (plugin && plugin->metaObject()->indexOfSignal("sendMsgToManager(PluginMetaData)") >= 0)
            connect(plugin, SIGNAL(sendMsgToManager(PluginMetaData)), &log,
                    SLOT(noteFromDesktop(PluginMetaData)));
        loader.unload();
    }
    log.setDesktopPlugins(loaded);
}

void Workbench::showJob(const QString &job, const QString &file)
{
    const Part part = file.isEmpty() ? Part() : readJob(file).part;
    const QString text =
        part.number.isEmpty() ? QString() : tr("%1 %2, %3").arg(part.number, part.revision, part.customer);
    const PluginMetaData message =
        hostMessage("Common_MenuBar_Info.dll", MessageType::ShowJob, {{"JobName", job}, {"Part", text}});
    post.deliver("Eda_setTransmitData", message,
                 [&] { cam->Eda_setTransmitData(QStringLiteral("EngineerRoot"), job, message); });
    post.toElementOfRoot(hostMessage("CAM_Progress_Dialog.dll", MessageType::ShowJob, {{"JobName", job}}));
    if (!part.number.isEmpty())
        post.toElementOfRoot(hostMessage("ListBar_PNList.dll", MessageType::SelectPart,
                                         {{"Part", part.number}, {"File", file}}));
}

#include "Account.h"
#include "BoxObserver.h"
#include "Commands.h"
#include "DesktopTools.h"
#include "DesktopWindow.h"
#include "JobTree.h"
#include "KeyStatus.h"
#include "MainWindow.h"
#include "Stage.h"
#include "Workspace.h"
#include "hostMessage.h"
#include "storyOfDesktop.h"
#include "storyOfJobs.h"
#include "storyOfMessages.h"

#include <ProcessBar_Process.h>
#include <common.h>
#include <pluginManger.h>
#include <pluginManger4CAM.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QTabWidget>

#include <glog/logging.h>

namespace {

struct Options
{
    QString screenshot;
    QString before;
    QString desktop;
    QString log;
};

Options readOptions()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Builds a window out of everything that the example plug-ins offer."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("screenshot"),
         QStringLiteral("Play through what a user would do, save a picture of the jobs and quit."),
         QStringLiteral("file")},
        {QStringLiteral("before"), QStringLiteral("Save a picture of the jobs before playing, too."),
         QStringLiteral("file")},
        {QStringLiteral("desktop"), QStringLiteral("Save a picture of the desktop tools, too."),
         QStringLiteral("file")},
        {QStringLiteral("log"), QStringLiteral("Write the log there."), QStringLiteral("file"),
         QDir::temp().filePath(QStringLiteral("pluginManger-host.log"))},
    });
    parser.process(*QCoreApplication::instance());
    // The host changes its directory; what is named on the command line is relative to the user's.
    const auto file = [&parser](const char *option) {
        const QString path = parser.value(QLatin1String(option));
        return path.isEmpty() ? path : QDir().absoluteFilePath(path);
    };
    return {file("screenshot"), file("before"), file("desktop"), file("log")};
}

/// The library logs, but leaves it to the host to say where to: here into one file for all severities.
void startLog(const char *program, const QString &path)
{
    QFile::remove(path);
    FLAGS_timestamp_in_logfile_name = false;
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    google::InitGoogleLogging(program);
    for (const auto severity : {google::GLOG_WARNING, google::GLOG_ERROR, google::GLOG_FATAL})
        google::SetLogDestination(severity, "");
    google::SetLogDestination(google::GLOG_INFO, QFile::encodeName(path).constData());
    google::SetLogSymlink(google::GLOG_INFO, "");
}

/// A platform without a screen has no desktop to ask, and its own size leaves room for little.
void setFontSize()
{
    QFont font = QApplication::font();
    font.setPointSize(9);
    QApplication::setFont(font);
}

/// The host's files lie beside it, unless the environment says otherwise. The desktop manager looks for them
/// in the current directory.
void setBaseDirectory()
{
    const QDir base(qEnvironmentVariable("PLUGINMANGER_PATH", QCoreApplication::applicationDirPath()));
    QDir::setCurrent(base.absolutePath());
    // The CAM manager then looks there, too. Said by the environment, a path would have to consist of letters
    // that the code page has.
    qunsetenv("PLUGINMANGER_PATH");
}

/// Loads the desktop tools and lets them build what they are for, with `window` as their parent.
QTpluginsManger *startDesktop(QWidget *window)
{
    QCoreApplication::addLibraryPath(QCoreApplication::applicationDirPath()
                                     + QStringLiteral("/../plugins/desktop"));
    QTpluginsManger *const manager = QTpluginsManger::instance();
    manager->getParentWidget(window);
    manager->loadAllPlugins();
    manager->initAllPlugins();
    manager->initSignalAndSlot();
    return manager;
}

void placeDesktop(QTpluginsManger *manager, DesktopWindow &window, Account &account)
{
    window.place(*manager);
    tellDesktopTools(manager, account);
    if (ProcessBar_Process *const progress = progressDisplay(*manager))
        progress->setValue(0);
}

void loadPlugins(QTpluginsManger4CAM *manager, Account &account)
{
    account.heading(QStringLiteral("Loading"));
    account.fact(QStringLiteral("Configuration files in"),
                 QDir().absoluteFilePath(QString::fromStdString(Common::getPath_pluginconfig())));

    manager->loadAllPlugins();
    account.check(QStringLiteral("CAM set loaded"), manager->isCAMLoaded());
    manager->loadAllDFMPlugins();
    account.check(QStringLiteral("DFM set loaded"), manager->isDFMLoaded());
}

/// By the root the manager finds the frames, and the elements that belong to no frame.
void insertRoot(QTpluginsManger4CAM *manager, QWidget *root, Account &account)
{
    manager->insertRoot("Engineering", root);
    account.check(QStringLiteral("Engineering root inserted"), manager->getRoot() == root);
}

void openJobs(Workspace &workspace, Account &account)
{
    account.heading(QStringLiteral("Frames"));
    account.row({"operation", "opened for", "made once"}, {40, 24, 9});
    const QString pcb = QStringLiteral("pcb");
    workspace.openJob(QStringLiteral("control-2l"), {pcb, QStringLiteral("panel"), QStringLiteral("orig")});
    workspace.openJob(QStringLiteral("preamp-2l"), {pcb});
    workspace.showStep(QStringLiteral("control-2l"), pcb);
}

void showProgress(QTpluginsManger4CAM *manager, int elementCount)
{
    manager->updateEngieer(
        {}, hostMessage(
                QStringLiteral("CAM_Progress_Dialog.dll"), MessageType::ShowProgress,
                {{"Percent", 100}, {"Text", QStringLiteral("%1 elements registered").arg(elementCount)}}));
}

void showPages(QTabWidget &window, DesktopWindow &desktop, MainWindow &jobs)
{
    window.setWindowTitle(QStringLiteral("pluginManger example host"));
    window.setDocumentMode(true);
    window.resize(1280, 800);
    window.addTab(&desktop, QStringLiteral("Desktop"));
    window.addTab(&jobs, jobs.windowTitle());
    window.setCurrentWidget(&jobs);
    jobs.arrangeDocks();
    window.show();
}

void saveScreenshot(QWidget &window, const QString &path, Account &account)
{
    account.heading(QStringLiteral("Picture"));
    // What has just changed is laid out by events that still wait.
    QCoreApplication::processEvents();
    const QPixmap picture = window.grab();
    account.fact(QStringLiteral("Size"),
                 QStringLiteral("%1 x %2").arg(picture.width()).arg(picture.height()));
    account.fact(QStringLiteral("File"), path);
    account.check(QStringLiteral("Saved"), picture.save(path, "PNG"));
}

/// What a user would do, and what the window then shows.
void playStory(const Stage &stage, QTabWidget &window, QTpluginsManger &desktopManager,
               DesktopWindow &desktop, const Options &options)
{
    Account &account = stage.account;
    if (!options.before.isEmpty())
        saveScreenshot(window, options.before, account);
    // There is no story with a part of the window missing.
    const bool complete = account.failureCount() == 0;
    if (complete) {
        playStoryOfMessages(stage);
        playStoryOfJobs(stage);
    }
    saveScreenshot(window, options.screenshot, account);

    window.setCurrentWidget(&desktop);
    if (complete)
        playStoryOfDesktop(desktopManager, desktop, account);
    if (!options.desktop.isEmpty())
        saveScreenshot(window, options.desktop, account);
}

}

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const Options options = readOptions();
    const bool attended = options.screenshot.isEmpty();

    Account account;
    BoxObserver boxObserver(account, attended);
    application.installEventFilter(&boxObserver);

    startLog(argv[0], options.log);
    setBaseDirectory();
    if (!attended)
        setFontSize();

    QTabWidget window;
    DesktopWindow desktop;
    // Before the desktop tools: when Windows is asked for a library without its path, it takes what is loaded
    // under that name from anywhere, and each set has a ListBar_PNList.dll of its own.
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    loadPlugins(manager, account);

    QTpluginsManger *const desktopManager = startDesktop(&desktop);
    placeDesktop(desktopManager, desktop, account);

    MainWindow jobs;
    insertRoot(manager, &jobs, account);

    Workspace workspace(manager, jobs, account);
    workspace.open();
    openJobs(workspace, account);
    workspace.elements().tell(account);
    showProgress(manager, workspace.elements().count());

    JobTree jobTree(manager, workspace);
    Commands commands(manager, jobs, workspace, jobTree);
    KeyStatus keyStatus(manager, jobs);
    application.installEventFilter(&keyStatus);

    showPages(window, desktop, jobs);
    if (!attended) {
        QTimer::singleShot(0, &window, [&] {
            playStory({manager, jobs, workspace, account}, window, *desktopManager, desktop, options);
            QApplication::quit();
        });
    }
    const int result = application.exec();
    google::ShutdownGoogleLogging();
    return account.failureCount() == 0 ? result : 1;
}

#include "Options.h"
#include "StartProfile.h"
#include "Tour.h"
#include "Workbench.h"
#include "WorkbenchApplication.h"
#include "WorkbenchWindow.h"

#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QTimer>

#include <glog/logging.h>

namespace {

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

void playTour(Workbench &workbench, const Options &options)
{
    Tour tour(workbench, options.tour);
    workbench.account.setLenient(false);
    if (options.expectsBrokenPlugins)
        tour.playWithBrokenPlugins();
    else if (workbench.account.failureCount() == 0)
        tour.play();
}

}

int main(int argc, char *argv[])
{
    Options::answerQuestions(argc, argv);

    StartProfile profile;
    profile.begin(QStringLiteral("Application"));
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    WorkbenchApplication application(argc, argv);
    const Options options = Options::read();
    startLog(argv[0], options.log);
    if (!options.isAttended())
        setFontSize();

    // What is configured, and whether the files are fit to be loaded.
    profile.begin(Workbench::tr("Lists and files"));
    Workbench workbench(options.base, options.pluginFolders, profile);
    workbench.account.setSilent(options.isAttended());
    workbench.account.setLenient(options.expectsBrokenPlugins);
    workbench.useSafeLists();

    // QTpluginsManger: getParentWidget(), loadAllPlugins(), initAllPlugins(), initSignalAndSlot()
    profile.begin(Workbench::tr("Desktop tools"));
    workbench.startDesktopTools();

    // QTpluginsManger4CAM: loadAllPlugins(), loadAllDFMPlugins()
    profile.begin(Workbench::tr("CAM plug-ins"));
    workbench.loadCamPlugins();
    profile.begin(Workbench::tr("DFM plug-ins"));
    workbench.loadDfmPlugins();

    // QTpluginsManger4CAM: insertRoot(), and an operation for each element of the window
    profile.begin(Workbench::tr("Window"));
    workbench.buildWindow();

    // QTpluginsManger4CAM: an operation for each frame of a job, and for each element in it
    profile.begin(Workbench::tr("Jobs"));
    workbench.openJobs({QStringLiteral("gateway-4l"), QStringLiteral("control-2l")});

    profile.begin(Workbench::tr("Judging plug-ins"));
    workbench.judgePlugins();

    profile.begin(Workbench::tr("First picture"));
    QSettings settings(QStringLiteral("pluginManger"), QStringLiteral("workbench"));
    if (options.isAttended())
        workbench.window().restoreLayout(settings);
    workbench.window().show();
    QCoreApplication::processEvents();
    profile.end();
    workbench.account.fact(Workbench::tr("Started in"),
                           Workbench::tr("%1 ms").arg(profile.total(), 0, 'f', 0));

    if (!options.isAttended()) {
        QTimer::singleShot(0, &workbench, [&] {
            playTour(workbench, options);
            QApplication::quit();
        });
    }
    const int result = application.exec();
    if (options.isAttended())
        workbench.window().saveLayout(settings);
    google::ShutdownGoogleLogging();
    return workbench.account.failureCount() == 0 ? result : 1;
}

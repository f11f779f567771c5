#include "Account.h"
#include "BoxObserver.h"
#include "Connections.h"
#include "MainWindow.h"
#include "Registrations.h"

#include <common.h>
#include <pluginManger4CAM.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <glog/logging.h>

namespace {

constexpr const char *jobName = "control-2l";

struct Options
{
    QString screenshot;
    QString log;
};

Options readOptions()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Builds a CAM window out of everything that the example plug-ins offer."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("screenshot"), QStringLiteral("Save a picture of the window and quit."),
         QStringLiteral("file")},
        {QStringLiteral("log"), QStringLiteral("Write the log there."), QStringLiteral("file"),
         QDir::temp().filePath(QStringLiteral("pluginManger-host.log"))},
    });
    parser.process(*QCoreApplication::instance());
    return {parser.value(QStringLiteral("screenshot")), parser.value(QStringLiteral("log"))};
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

/// The host's files lie beside it, unless the environment says otherwise.
void setBaseDirectory()
{
    if (!qEnvironmentVariableIsSet("PLUGINMANGER_PATH"))
        qputenv("PLUGINMANGER_PATH", QCoreApplication::applicationDirPath().toUtf8());
}

void loadPlugins(QTpluginsManger4CAM *manager, Account &account)
{
    account.heading(QStringLiteral("Loading"));
    account.fact(QStringLiteral("Configuration files in"),
                 QString::fromStdString(Common::getPath() + "/" + Common::getPath_pluginconfig()));

    manager->loadAllPlugins();
    account.check(QStringLiteral("CAM set loaded"), manager->isCAMLoaded());
    manager->loadAllDFMPlugins();
    account.check(QStringLiteral("DFM set loaded"), manager->isDFMLoaded());
}

/// The root is the parent of all elements: by it the manager finds those that belong to no frame.
void insertRoot(QTpluginsManger4CAM *manager, QWidget *root, Account &account)
{
    manager->insertRoot("Engineering", root);
    account.check(QStringLiteral("Engineering root inserted"), manager->getRoot() == root);
}

/// Registers every element, twice to see that it is made once, and builds the window out of them. Returns
/// how many of them are in the window.
int registerElements(QTpluginsManger4CAM *manager, MainWindow &window, Account &account)
{
    const QVector<int> widths{4, 38, 30, 14, 9};
    account.heading(QStringLiteral("Elements"));
    account.row({"", "operation", "library", "element", "made once"}, widths);

    int number = 0;
    int added = 0;
    for (const Registration &registration : registrations(jobName)) {
        QObject *const element = registration.call(manager, &window);
        QObject *const again = registration.call(manager, &window);

        const bool made = element && element->metaObject()->inherits(registration.elementType);
        const bool once = made && again == element;
        account.row({QString::number(++number), registration.operation, registration.library,
                     made ? registration.elementType->className() : "none", once ? "yes" : "no"},
                    widths, once);
        if (!made)
            continue;
        window.add(registration.place, registration.library, element);
        ++added;
    }
    return added;
}

/// Asks for the progress element once more, and gets the one in the window.
void showProgress(QTpluginsManger4CAM *manager, QWidget *root, int elementCount)
{
    QObject *const progress = manager->Ov_RegisterCAM_Progress_Dialog(root);
    if (!progress)
        return;
    progress->setProperty("text", QStringLiteral("%1 elements registered").arg(elementCount));
    progress->setProperty("percent", 100);
}

void connectElements(MainWindow &window, Account &account)
{
    const QVector<int> widths{27, 30, 27, 25, 9};
    account.heading(QStringLiteral("Connections"));
    account.row({"from", "signal", "to", "slot", "connected"}, widths);
    for (const Connection &connection : connections()) {
        const bool connected = window.connectElements(connection.sender, connection.signal,
                                                      connection.receiver, connection.slot);
        // SIGNAL and SLOT put a digit before the name.
        account.row({connection.sender, connection.signal + 1, connection.receiver, connection.slot + 1,
                     connected ? "yes" : "no"},
                    widths, connected);
    }
}

void saveScreenshot(MainWindow &window, const QString &path, Account &account)
{
    account.heading(QStringLiteral("Window"));
    const QPixmap picture = window.grab();
    account.fact(QStringLiteral("Size"),
                 QStringLiteral("%1 x %2").arg(picture.width()).arg(picture.height()));
    account.fact(QStringLiteral("Picture"), path);
    account.check(QStringLiteral("Picture saved"), picture.save(path, "PNG"));
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

    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    loadPlugins(manager, account);

    MainWindow window;
    insertRoot(manager, &window, account);
    const int elementCount = registerElements(manager, window, account);
    connectElements(window, account);
    showProgress(manager, &window, elementCount);
    window.arrangeDocks();
    window.show();

    if (!attended) {
        QTimer::singleShot(0, &window, [&] {
            saveScreenshot(window, options.screenshot, account);
            QApplication::quit();
        });
    }
    const int result = application.exec();
    google::ShutdownGoogleLogging();
    return account.failureCount() == 0 ? result : 1;
}

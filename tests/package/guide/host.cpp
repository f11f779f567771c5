//! [includes]
#include <pluginManger.h>
#include <pluginManger4CAM.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLayout>
#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>

#include <glog/logging.h>
//! [includes]

//! [start]
/// Loads the CAM and DFM sets. Both managers look for their configuration files below the current directory.
QTpluginsManger4CAM *startCam(QMainWindow &window)
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    manager->loadAllPlugins();
    if (QFile::exists("pluginconfig/pluginconfig4DFM.json"))
        manager->loadAllDFMPlugins();
    manager->insertRoot("Engineering", &window);
    return manager;
}
//! [start]

//! [job]
/// Opens a step of a job: its frame, and a view in the frame.
QWidget *openStep(QTpluginsManger4CAM *manager, QMainWindow &window, const std::string &job,
                  const std::string &step)
{
    QWidget *const frame = manager->Ov_RegisterGraphicFramework(&window, job + " | " + step, false);
    if (!frame)
        return nullptr;
    window.setCentralWidget(frame);
    if (QWidget *const view = manager->Ov_RegisterGraphic_View(frame))
        frame->layout()->addWidget(view);
    return frame;
}
//! [job]

//! [menu]
/// Places the menu, and sends a message to the view in the frame when one of its entries is chosen.
void addMenu(QTpluginsManger4CAM *manager, QMainWindow &window, QWidget *frame)
{
    QMenu *const menu = manager->Ov_RegisterCAMMenuFile(&window);
    if (!menu)
        return;
    window.menuBar()->addMenu(menu);
    QObject::connect(menu, &QMenu::triggered, frame, [manager, frame](const QAction *entry) {
        PluginMetaData message;
        message.src = "CAM_MenuBar_Menu.dll";
        message.dst = "Graphic_View.dll";
        message.type = 1;
        message.data["Text"] = entry->text();
        manager->recMegToPlugin(frame, message);
    });
}
//! [menu]

//! [close]
/// Closes all steps of a job: the manager forgets its frames, then tells each of them.
void closeJob(QTpluginsManger4CAM *manager, const QString &job)
{
    manager->Ov_DeleteTreeNode("Matrix", job);
}
//! [close]

//! [desktop]
/// Loads the desktop tools and places what they build. Qt looks for them in its library paths.
void startDesktop(QMainWindow &window)
{
    QCoreApplication::addLibraryPath(QCoreApplication::applicationDirPath());
    QTpluginsManger *const manager = QTpluginsManger::instance();
    manager->getParentWidget(&window);
    manager->loadAllPlugins();
    manager->initAllPlugins();
    manager->initSignalAndSlot();
    if (manager->m_fileProcessResult1)
        window.addToolBar(manager->m_fileProcessResult1);
    if (manager->m_fileProcessResult2)
        window.menuBar()->addMenu(manager->m_fileProcessResult2);
}
//! [desktop]

//! [main]
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    google::InitGoogleLogging(argv[0]);
    FLAGS_logtostderr = true;
    QDir::setCurrent(QCoreApplication::applicationDirPath());

    QMainWindow window;
    QTpluginsManger4CAM *const manager = startCam(window);
    QWidget *const frame = openStep(manager, window, "board", "pcb");
    if (!frame)
        return 1;
    addMenu(manager, window, frame);
    startDesktop(window);
    window.show();
    return application.exec();
}
//! [main]

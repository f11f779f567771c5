// What a user would do in the host of the guides, for those who have no screen. The host ends when all of it
// had its effect.
#include <pluginManger.h>
#include <pluginManger4CAM.h>

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <QToolBar>

void closeJob(QTpluginsManger4CAM *manager, const QString &job);

namespace {

QMainWindow *hostWindow()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *const window : windows) {
        if (auto *const found = qobject_cast<QMainWindow *>(window))
            return found;
    }
    return nullptr;
}

void require(bool condition, const char *what)
{
    if (!condition)
        qFatal("%s", what);
}

void checkHost()
{
    QMainWindow *const window = hostWindow();
    require(window && window->isVisible() && window->centralWidget(), "no window with a frame");
    const QPointer<QWidget> frame = window->centralWidget();

    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    QMenu *const menu = manager->Ov_RegisterCAMMenuFile(window);
    require(menu && menu->actions().size() == 1, "no menu with one entry");
    const QLabel *const view = frame->findChild<QLabel *>();
    require(view && view->text() == "Nothing yet", "no view that says \"Nothing yet\"");
    menu->actions().constFirst()->trigger();
    require(view->text() == "Say hello", "the view does not say what was chosen");

    QTpluginsManger *const desktop = QTpluginsManger::instance();
    require(desktop->m_fileProcessResult1 && desktop->m_fileProcessObject, "no tool");
    desktop->m_fileProcessResult1->actions().constFirst()->trigger();
    require(desktop->m_fileProcessObject->objectName() == "1", "the tool has no answer from the counter");

    closeJob(manager, "board");
    QCoreApplication::sendPostedEvents(frame, QEvent::DeferredDelete);
    require(!frame, "the frame does not close itself");
    QCoreApplication::quit();
}

void checkWhenStarted()
{
    QTimer::singleShot(0, qApp, checkHost);
}

}

Q_COREAPP_STARTUP_FUNCTION(checkWhenStarted)

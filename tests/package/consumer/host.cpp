// Uses every installed header, both managers, and a plug-in of each kind. Ends with 0 when all is well.

#include <FileProcess.h>
#include <MenuBar.h>
#include <PNListInterface.h>
#include <PluginInterface.h>
#include <PluginMetaData.h>
#include <ProcessBar_Process.h>
#include <Toolbar_Edit.h>
#include <Toolbar_Move.h>
#include <Toolbar_Select.h>
#include <Toolbar_Tool.h>
#include <ViewWidget.h>
#include <Viewbar_Status.h>
#include <common.h>
#include <pluginManger.h>
#include <pluginManger4CAM.h>
#include <pluginMangerBase.h>
#include <registerRecord.h>

#include <QtCore/QPluginLoader>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>

#include <cstdio>

namespace {

bool expect(bool holds, const char *what)
{
    if (!holds)
        std::printf("not so: %s\n", what);
    return holds;
}

bool useCamManager(QWidget *window)
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    manager->loadAllPlugins();
    const auto *const view = qobject_cast<QLabel *>(manager->Ov_RegisterGraphic_View(window));
    if (!expect(view && view->text() == QStringLiteral("made by a plug-in"), "the plug-in made its view"))
        return false;

    manager->insertRoot("root", window);
    PluginMetaData message;
    message.src = QStringLiteral("the host");
    message.dst = QStringLiteral("Graphic_View.dll");
    message.type = 1;
    message.data[QStringLiteral("DstType")] = QStringLiteral("EngineerRoot");
    manager->pluginTransmitData(message);
    return expect(view->text() == QStringLiteral("the host"), "the view got its message");
}

bool useDesktopManager()
{
    const QString directory = QCoreApplication::applicationDirPath();
    QCoreApplication::addLibraryPath(directory);
    QTpluginsManger *const manager = QTpluginsManger::instance();
    manager->loadAllPlugins();
    manager->initAllPlugins();
    manager->initSignalAndSlot();

    PluginMetaData message;
    message.src = QStringLiteral("the host");
    message.dst = QStringLiteral("Own_Plugin");
    message.type = 1;
    manager->recMegfromPlugin(message);
    QPluginLoader own(directory + QStringLiteral("/Own_Plugin.dll"));
    return expect(own.instance() && own.instance()->objectName() == message.src,
                  "the plug-in got its message");
}

}

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    std::printf("configuration: %s/%s\n", Common::getPath().c_str(), Common::getPath_pluginconfig().c_str());
    QWidget window;
    return useCamManager(&window) && useDesktopManager() ? 0 : 1;
}

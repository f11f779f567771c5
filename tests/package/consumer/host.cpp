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
#include <pluginManger4CAM.h>
#include <pluginMangerBase.h>
#include <registerRecord.h>

#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    std::printf("configuration: %s/%s\n", Common::getPath().c_str(), Common::getPath_pluginconfig().c_str());

    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    manager->loadAllPlugins();
    QWidget window;
    const auto *const view = qobject_cast<QLabel *>(manager->Ov_RegisterGraphic_View(&window));
    return view && view->text() == QStringLiteral("made by a plug-in") ? 0 : 1;
}

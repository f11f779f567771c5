// Whatever macros Windows' own headers define, such as ERROR, interface, small, near and far.
#ifdef _WIN32
#    include <windows.h>

#    include <objbase.h>
#endif

// Every header of the desktop interfaces stands on its own: each is included before anything else.
#include "FileProcess.h"
#include "MenuBar.h"
#include "PNListInterface.h"
#include "PluginInterface.h"
#include "ProcessBar_Process.h"
#include "Toolbar_Edit.h"
#include "Toolbar_Move.h"
#include "Toolbar_Select.h"
#include "Toolbar_Tool.h"
#include "ViewWidget.h"
#include "Viewbar_Status.h"

#include "pluginManger.h"
#include "pluginManger4CAM.h"
#include "registerRecord.h"
#include "testmain.h"

#include <glog/logging.h>

#include <type_traits>

class tst_Interfaces : public QObject
{
    Q_OBJECT

private slots:
    void identifiersNameClassAndVersion_data();
    void identifiersNameClassAndVersion();
    void interfacesArePureAndDestroyedVirtually();
    void operationsHaveTheirFixedTypes();
    void errorIsASeverityBesideThePlatformsHeaders();
};

template <typename Interface>
void addRow(const char *expected)
{
    QTest::newRow(expected) << QByteArray(qobject_interface_iid<Interface *>()) << QByteArray(expected);
}

void tst_Interfaces::identifiersNameClassAndVersion_data()
{
    QTest::addColumn<QByteArray>("identifier");
    QTest::addColumn<QByteArray>("expected");
    addRow<PluginInterface>("pluginManger.PluginInterface/1.0");
    addRow<FileProcess>("pluginManger.FileProcess/1.0");
    addRow<PNListInterface>("pluginManger.PNListInterface/1.0");
    addRow<Toolbar_Edit>("pluginManger.Toolbar_Edit/1.0");
    addRow<Toolbar_Move>("pluginManger.Toolbar_Move/1.0");
    addRow<Toolbar_Select>("pluginManger.Toolbar_Select/1.0");
    addRow<Toolbar_Tool>("pluginManger.Toolbar_Tool/1.0");
    addRow<ViewWidget>("pluginManger.ViewWidget/1.0");
    addRow<Viewbar_Status>("pluginManger.Viewbar_Status/1.0");
    addRow<MenuBar>("pluginManger.MenuBar/1.0");
    addRow<ProcessBar_Process>("pluginManger.ProcessBar_Process/1.0");
}

void tst_Interfaces::identifiersNameClassAndVersion()
{
    QFETCH(QByteArray, identifier);
    QFETCH(QByteArray, expected);
    QCOMPARE(identifier, expected);
}

template <typename... Interfaces>
constexpr bool arePureInterfaces()
{
    return ((std::is_abstract_v<Interfaces> && std::has_virtual_destructor_v<Interfaces>)&&...);
}

void tst_Interfaces::interfacesArePureAndDestroyedVirtually()
{
    QVERIFY((arePureInterfaces<PluginInterface, FileProcess, PNListInterface, Toolbar_Edit, Toolbar_Move,
                               Toolbar_Select, Toolbar_Tool, ViewWidget, Viewbar_Status, MenuBar,
                               ProcessBar_Process>()));
}

template <typename Expected, typename Operation>
constexpr bool hasType(Operation)
{
    return std::is_same_v<Expected, Operation>;
}

void tst_Interfaces::operationsHaveTheirFixedTypes()
{
    QVERIFY(hasType<void (PluginInterface::*)(PluginMetaData)>(&PluginInterface::recMsgFromManager));
    QVERIFY(hasType<QToolBar *(FileProcess::*)(QWidget *)>(&FileProcess::createToolBar));
    QVERIFY(hasType<QMenu *(FileProcess::*)()>(&FileProcess::createMenu));
    QVERIFY(hasType<QWidget *(PNListInterface::*)()>(&PNListInterface::createList));
    QVERIFY(hasType<QList<QAction *> (Toolbar_Edit::*)()>(&Toolbar_Edit::createActions));
    QVERIFY(hasType<QList<QAction *> (Toolbar_Move::*)()>(&Toolbar_Move::createActions));
    QVERIFY(hasType<QList<QAction *> (Toolbar_Select::*)()>(&Toolbar_Select::createActions));
    QVERIFY(hasType<QList<QAction *> (Toolbar_Tool::*)()>(&Toolbar_Tool::createActions));
    QVERIFY(hasType<QWidget *(ViewWidget::*)()>(&ViewWidget::createView));
    QVERIFY(hasType<QWidget *(Viewbar_Status::*)()>(&Viewbar_Status::createStatusWidget));
    QVERIFY(hasType<QMenu *(MenuBar::*)()>(&MenuBar::createFileMenu));
    QVERIFY(hasType<QMenu *(MenuBar::*)()>(&MenuBar::createEditMenu));
    QVERIFY(hasType<void (MenuBar::*)(QWidget *)>(&MenuBar::attachTo));
    QVERIFY(hasType<QMenu *(MenuBar::*)()>(&MenuBar::createHelpMenu));
    QVERIFY(hasType<void (ProcessBar_Process::*)(int)>(&ProcessBar_Process::setValue));
}

void tst_Interfaces::errorIsASeverityBesideThePlatformsHeaders()
{
    LOG(ERROR) << "logged";
    QCOMPARE(LogLines::take(), (QList<LogLines::Line>{{'E', "tst_interfaces", "logged"}}));
}

int main(int argc, char **argv)
{
    return runTest<tst_Interfaces>(argc, argv);
}

#include "tst_interfaces.moc"

#include "FileProcess.h"
#include "MenuBar.h"
#include "ProcessBar_Process.h"
#include "Toolbar_Edit.h"
#include "debuglines.h"
#include "gbktexts.h"
#include "keptloaders.h"
#include "messageboxes.h"
#include "pluginManger.h"
#include "recorder.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QDir>
#include <QtCore/QPluginLoader>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QToolBar>

#include <memory>

using LogLines::Line;
using Manager = QTpluginsManger;

namespace {

const QStringList tools{"File_Process",   "ListBar_PNList",    "Toolbar_Edit", "Toolbar_Move",
                        "ToolBar_Select", "Toolbar_Tool",      "Viewbar_View", "Viewbar_Status",
                        "MenuBar_Menu",   "ProcessBar_Process"};

const Line allLoaded{'I', "pluginManger", Gbk::allLoaded};

/// Set in a child that one of the functions starts to run itself in.
constexpr char childVariable[] = "TST_DESKTOPMANAGER_CHILD";

Manager *manager()
{
    return Manager::instance();
}

PluginMetaData messageTo(const QString &dst, qint32 type = 7)
{
    PluginMetaData message;
    message.src = QStringLiteral("test");
    message.dst = dst;
    message.type = type;
    return message;
}

/// Emits a plug-in's signal as the plug-in itself would.
void emitFrom(QObject *plugin, const PluginMetaData &message)
{
    QVERIFY(QMetaObject::invokeMethod(plugin, "sendMsgToManager", Qt::DirectConnection,
                                      Q_ARG(PluginMetaData, message)));
}

QStringList takeReceivers()
{
    QStringList libraries;
    for (const Recorder::Delivery &delivery : Recorder::takeDeliveries())
        libraries += delivery.library;
    return libraries;
}

}

/// The manager from its first use on: each function runs in a process of its own.
class tst_DesktopManager : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void instanceIsAlwaysTheSame();
    void metaObjectHasTheSlotOnly();
    void membersStartNullAndEmpty();
    void parentWidgetIsSet();
    void missingConfigurationIsLoggedAndReportsSuccess();
    void configurationLiesBelowTheCurrentDirectory();
    void failedPluginDoesNotStopTheOthers();
    void initWithoutPluginsChangesNothing();
    void everyToolIsAskedForWhatItBuilds();
    void debugTextsAreThoseOfTheTools_data();
    void debugTextsAreThoseOfTheTools();
    void namesAreComparedWithCase();
    void pluginOutsideTheTableGetsNoMember();
    void initAgainReplacesTheLists();
    void debugTextFollowsTheCalls();
    void loadingAgainForgetsTheRootObjects();
    void progressBarIsNotThatOfAnEarlierMenuBar();
    void toolMayHaveThePluginsLoadedAgain();
    void loadWhileTheBoxIsOpenIsSafe();
    void menuBarIsAskedInItsOrder();
    void progressBarDependsOnTheOrder();
    void bothOrdersOfMenuBarAndProgressBarOccur();
    void progressBarIsNullWhereTheMenuBarHasNone();
    void staleEntryIsSkipped();
    void toolWithoutItsInterfaceEndsTheProcess_data();
    void toolWithoutItsInterfaceEndsTheProcess();
    void messageReachesThePluginOfTheBareName();
    void messageToAFileNameIsDropped();
    void messageToAnUnknownPluginIsDropped();
    void messageIsHandedOverWhole_data();
    void messageIsHandedOverWhole();
    void pluginOutsideTheTableExchangesMessages();
    void messageToItselfArrives();
    void pluginWithoutTheSignalOnlyWarns();
    void nothingIsConnectedBeforeInitSignalAndSlot();
    void connectingTwiceDeliversTwice();
    void metaTypeIsRegisteredUnderItsName();
    void reservedMembersStayNull();

private:
    void load(const QStringList &names);
    void loadAndInit(const QStringList &names);
    QProcess *startAgain(const QString &function, const QString &seed = {});

    QTemporaryDir m_directory;
    std::unique_ptr<MessageBoxes> m_boxes;
    std::unique_ptr<DebugLines> m_debug;
    std::unique_ptr<QWidget> m_window;
};

void tst_DesktopManager::init()
{
    QVERIFY(QDir(m_directory.path()).mkpath("pluginconfig"));
    QVERIFY(QDir::setCurrent(m_directory.path()));
    QCoreApplication::addLibraryPath(QStringLiteral(FIXTURE_DIR "/desktop"));
    m_boxes = std::make_unique<MessageBoxes>();
    m_debug = std::make_unique<DebugLines>();
    m_window = std::make_unique<QWidget>();
    LogLines::take();
}

void tst_DesktopManager::cleanup()
{
    for (const Recorder::FactoryCall &call : Recorder::takeFactoryCalls()) {
        auto *const object = static_cast<QObject *>(call.element);
        if (object && call.symbol != "createActions" && !call.parent)
            delete object;
    }
    m_debug.reset();
    QVERIFY(m_boxes->take().isEmpty());
}

void tst_DesktopManager::load(const QStringList &names)
{
    TestFiles::write("pluginconfig/pluginconfig.json", TestFiles::configOf(names));
    QVERIFY(manager()->loadAllPlugins());
    QCOMPARE(LogLines::take(), QList<Line>{allLoaded});
}

void tst_DesktopManager::loadAndInit(const QStringList &names)
{
    manager()->getParentWidget(m_window.get());
    load(names);
    m_debug->take();
    QVERIFY(manager()->initAllPlugins());
}

/// Runs a function of this test in a child of its own, with a seed for the order of hash tables.
QProcess *tst_DesktopManager::startAgain(const QString &function, const QString &seed)
{
    auto *const process = new QProcess(this);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(childVariable, "1");
    if (!seed.isEmpty())
        environment.insert("QT_HASH_SEED", seed);
    process->setProcessEnvironment(environment);
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(QCoreApplication::applicationFilePath(), {function});
    process->waitForFinished();
    return process;
}

void tst_DesktopManager::instanceIsAlwaysTheSame()
{
    QVERIFY(manager());
    QCOMPARE(Manager::instance(), manager());
    QVERIFY(!manager()->parent());
    QVERIFY(!std::is_constructible_v<Manager>);
    QVERIFY(!std::is_destructible_v<Manager>);
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_DesktopManager::metaObjectHasTheSlotOnly()
{
    const QMetaObject &metaObject = Manager::staticMetaObject;
    QCOMPARE(metaObject.className(), "QTpluginsManger");
    QCOMPARE(metaObject.superClass()->className(), "QTpluginsMangerBase");
    QCOMPARE(metaObject.methodCount() - metaObject.methodOffset(), 1);
    const QMetaMethod slot = metaObject.method(metaObject.methodOffset());
    QCOMPARE(slot.methodSignature(), QByteArray("recMegfromPlugin(PluginMetaData)"));
    QCOMPARE(slot.methodType(), QMetaMethod::Slot);
    QCOMPARE(slot.access(), QMetaMethod::Public);
}

void tst_DesktopManager::membersStartNullAndEmpty()
{
    const Manager &m = *manager();
    const void *const pointers[] = {
        m.m_parentWidget,      m.m_menuBarResult1,     m.m_menuBarResult2,      m.m_menuBarResult3,
        m.m_fileProcess,       m.m_fileProcessResult1, m.m_fileProcessResult2,  m.m_menuBar,
        m.m_pnListResult,      m.m_statusResult,       m.m_toolbarEdit,         m.m_viewResult,
        m.m_processBar,        m.m_fileProcessObject,  m.m_pnListObject,        m.m_menuBarObject,
        m.m_toolbarMoveObject, m.m_toolbarEditObject,  m.m_toolbarSelectObject, m.m_toolbarToolObject,
        m.m_viewObject,        m.m_statusObject,       m.m_processBarObject,    m.m_reserved1,
        m.m_reserved2};
    for (const void *pointer : pointers)
        QVERIFY(!pointer);
    QVERIFY(m.m_editActions.isEmpty() && m.m_selectActions.isEmpty());
    QVERIFY(m.m_moveActions.isEmpty() && m.m_toolActions.isEmpty());
}

void tst_DesktopManager::parentWidgetIsSet()
{
    manager()->getParentWidget(m_window.get());
    QCOMPARE(manager()->m_parentWidget, m_window.get());
    manager()->getParentWidget(nullptr);
    QVERIFY(!manager()->m_parentWidget);
}

void tst_DesktopManager::missingConfigurationIsLoggedAndReportsSuccess()
{
    QVERIFY(manager()->loadAllPlugins());
    QVERIFY(manager()->initAllPlugins());
    manager()->initSignalAndSlot();

    const QString path = QDir::currentPath() + "/pluginconfig/pluginconfig.json";
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase", Gbk::configMissing + path.toUtf8()}, allLoaded}));
    QCOMPARE(m_debug->take(), QStringList());
}

void tst_DesktopManager::configurationLiesBelowTheCurrentDirectory()
{
    QTemporaryDir other;
    QVERIFY(QDir(other.path()).mkpath("pluginconfig"));
    TestFiles::write(other.filePath("pluginconfig/pluginconfig.json"), TestFiles::configOf({"File_Process"}));
    qputenv("PLUGINMANGER_PATH", "/nowhere");
    qputenv("PLUGINMANGER_PLUGINCONFIG", "nothing");
    QVERIFY(QDir::setCurrent(other.path()));

    QVERIFY(manager()->loadAllPlugins());
    QVERIFY(manager()->initAllPlugins());
    QVERIFY(QDir::setCurrent(m_directory.path()));
    QVERIFY(manager()->m_fileProcessObject);
}

void tst_DesktopManager::failedPluginDoesNotStopTheOthers()
{
    const KeptLoaders keptLoaders;
    TestFiles::write("pluginconfig/pluginconfig.json",
                     TestFiles::configOf({"File_Process", "Absent_One", "Viewbar_View", "Absent_Two"}));
    QVERIFY(manager()->loadAllPlugins());
    QVERIFY(manager()->initAllPlugins());

    QVERIFY(manager()->m_fileProcessObject);
    QVERIFY(manager()->m_viewObject);
    QCOMPARE(m_boxes->take().size(), 2);
    const QList<Line> lines = LogLines::take();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.last(), allLoaded);
}

void tst_DesktopManager::initWithoutPluginsChangesNothing()
{
    QVERIFY(manager()->initAllPlugins());
    membersStartNullAndEmpty();
    QCOMPARE(m_debug->take(), QStringList());
}

void tst_DesktopManager::everyToolIsAskedForWhatItBuilds()
{
    loadAndInit(tools);

    QMap<QString, QList<Recorder::FactoryCall>> calls;
    const QList<Recorder::FactoryCall> all = Recorder::takeFactoryCalls();
    for (const Recorder::FactoryCall &call : all)
        calls[call.library].append(call);
    for (const Recorder::FactoryCall &call : all)
        Recorder::note(call);
    QCOMPARE(all.size(), 2 + 1 + 4 + 1 + 1 + 4);

    const Manager &m = *manager();
    const auto result = [&](const char *library, int index = 0) { return calls[library].at(index).element; };
    QCOMPARE(static_cast<void *>(m.m_fileProcessResult1), result("File_Process.dll", 0));
    QCOMPARE(static_cast<void *>(m.m_fileProcessResult2), result("File_Process.dll", 1));
    QCOMPARE(calls["File_Process.dll"].at(0).parent, m_window.get());
    QCOMPARE(static_cast<void *>(m.m_pnListResult), result("ListBar_PNList.dll"));
    QCOMPARE(static_cast<void *>(m.m_editActions.first()), result("Toolbar_Edit.dll"));
    QCOMPARE(static_cast<void *>(m.m_moveActions.first()), result("Toolbar_Move.dll"));
    QCOMPARE(static_cast<void *>(m.m_selectActions.first()), result("ToolBar_Select.dll"));
    QCOMPARE(static_cast<void *>(m.m_toolActions.first()), result("Toolbar_Tool.dll"));
    QCOMPARE(static_cast<void *>(m.m_viewResult), result("Viewbar_View.dll"));
    QCOMPARE(static_cast<void *>(m.m_statusResult), result("Viewbar_Status.dll"));

    QCOMPARE(dynamic_cast<QObject *>(m.m_fileProcess), m.m_fileProcessObject);
    QCOMPARE(dynamic_cast<QObject *>(m.m_menuBar), m.m_menuBarObject);
    QCOMPARE(dynamic_cast<QObject *>(m.m_toolbarEdit), m.m_toolbarEditObject);
    const auto rootOf = [](const char *name) {
        return QPluginLoader(QStringLiteral(FIXTURE_DIR "/desktop/%1.dll").arg(QLatin1String(name)))
            .instance();
    };
    QCOMPARE(m.m_fileProcessObject, rootOf("File_Process"));
    QCOMPARE(m.m_pnListObject, rootOf("ListBar_PNList"));
    QCOMPARE(m.m_toolbarEditObject, rootOf("Toolbar_Edit"));
    QCOMPARE(m.m_toolbarMoveObject, rootOf("Toolbar_Move"));
    QCOMPARE(m.m_toolbarSelectObject, rootOf("ToolBar_Select"));
    QCOMPARE(m.m_toolbarToolObject, rootOf("Toolbar_Tool"));
    QCOMPARE(m.m_viewObject, rootOf("Viewbar_View"));
    QCOMPARE(m.m_statusObject, rootOf("Viewbar_Status"));
    QCOMPARE(m.m_menuBarObject, rootOf("MenuBar_Menu"));
    QCOMPARE(m.m_processBarObject, rootOf("ProcessBar_Process"));
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_DesktopManager::debugTextsAreThoseOfTheTools_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("File_Process") << QStringList{R"("File_Process.dll")", "file pro tools added!"};
    QTest::newRow("ListBar_PNList") << QStringList{R"("ListBar_PNList.dll")", "PNlist added!"};
    QTest::newRow("Toolbar_Edit") << QStringList{R"("Toolbar_Edit.dll")", "Toolbar_Edit added!"};
    QTest::newRow("Toolbar_Move") << QStringList{R"("Toolbar_Move.dll")", "Toolbar_Move added!"};
    QTest::newRow("ToolBar_Select") << QStringList{R"("ToolBar_Select.dll")", "ToolBar_Select added!"};
    QTest::newRow("Toolbar_Tool") << QStringList{R"("Toolbar_Tool.dll")"};
    QTest::newRow("Viewbar_View") << QStringList{R"("Viewbar_View.dll")", "Viewbar_Viewd added!"};
    QTest::newRow("Viewbar_Status") << QStringList{R"("Viewbar_Status.dll")", "Viewbar_Status added!"};
    QTest::newRow("MenuBar_Menu") << QStringList{R"("MenuBar_Menu.dll")", " Menu bar added!"};
    QTest::newRow("ProcessBar_Process") << QStringList{R"("ProcessBar_Process.dll")", " Progress bar added!"};
    QTest::newRow("Other_Process") << QStringList{R"("Other_Process.dll")"};
}

/// One tool alone in a process, since the order of several is that of a hash table.
void tst_DesktopManager::debugTextsAreThoseOfTheTools()
{
    QFETCH(QStringList, texts);
    if (!qEnvironmentVariableIsSet(childVariable)) {
        const QString row = QString::fromLatin1(QTest::currentDataTag());
        const QProcess *const child = startAgain("debugTextsAreThoseOfTheTools:" + row);
        QVERIFY(child->exitStatus() == QProcess::NormalExit && child->exitCode() == 0);
        return;
    }
    loadAndInit({QString::fromLatin1(QTest::currentDataTag())});
    QCOMPARE(m_debug->take(), texts);
}

void tst_DesktopManager::namesAreComparedWithCase()
{
    QVERIFY(
        QFile::copy(FIXTURE_DIR "/desktop/ToolBar_Select.dll", m_directory.filePath("Toolbar_Select.dll")));
    QCoreApplication::addLibraryPath(m_directory.path());
    loadAndInit({"Toolbar_Select"});

    QVERIFY(!manager()->m_toolbarSelectObject);
    QVERIFY(manager()->m_selectActions.isEmpty());
    QCOMPARE(m_debug->take(), QStringList(R"("Toolbar_Select.dll")"));
}

void tst_DesktopManager::pluginOutsideTheTableGetsNoMember()
{
    loadAndInit({"Other_Process"});
    manager()->getParentWidget(nullptr);
    membersStartNullAndEmpty();
    QVERIFY(Recorder::takeFactoryCalls().isEmpty());
}

void tst_DesktopManager::initAgainReplacesTheLists()
{
    loadAndInit({"Toolbar_Edit", "Toolbar_Move", "ToolBar_Select", "Toolbar_Tool"});
    QVERIFY(manager()->initAllPlugins());
    for (const QList<QAction *> &actions : {manager()->m_editActions, manager()->m_moveActions,
                                            manager()->m_selectActions, manager()->m_toolActions}) {
        QCOMPARE(actions.size(), 2);
        QVERIFY(actions.first() && actions.last() && actions.first() != actions.last());
    }
}

void tst_DesktopManager::debugTextFollowsTheCalls()
{
    load({"MenuBar_Menu"});
    m_debug->take();
    QStringList before;
    Recorder::setOnFactory([&](const QString &, QWidget *) { before += m_debug->take(); });
    QVERIFY(manager()->initAllPlugins());
    Recorder::setOnFactory({});
    QCOMPARE(before, QStringList(R"("MenuBar_Menu.dll")"));
    QCOMPARE(m_debug->take(), QStringList(" Menu bar added!"));
}

void tst_DesktopManager::loadingAgainForgetsTheRootObjects()
{
    QCoreApplication::setLibraryPaths(
        {QStringLiteral(FIXTURE_DIR "/desktop_with_progress"), QStringLiteral(FIXTURE_DIR "/desktop")});
    loadAndInit(tools);
    manager()->loadAllPlugins();

    const Manager &m = *manager();
    for (const QObject *root :
         {m.m_fileProcessObject, m.m_pnListObject, m.m_menuBarObject, m.m_toolbarMoveObject,
          m.m_toolbarEditObject, m.m_toolbarSelectObject, m.m_toolbarToolObject, m.m_viewObject,
          m.m_statusObject, m.m_processBarObject})
        QVERIFY(!root);
    QVERIFY(!m.m_fileProcess && !m.m_menuBar && !m.m_toolbarEdit && !m.m_processBar);
    QVERIFY(m.m_editActions.isEmpty() && m.m_selectActions.isEmpty());
    QVERIFY(m.m_moveActions.isEmpty() && m.m_toolActions.isEmpty());
    QVERIFY(m.m_viewResult && m.m_menuBarResult1);

    QVERIFY(manager()->initAllPlugins());
    QVERIFY(m.m_fileProcessObject && m.m_menuBarObject && m.m_processBarObject);
    QCOMPARE(m.m_toolActions.size(), 2);
}

void tst_DesktopManager::progressBarIsNotThatOfAnEarlierMenuBar()
{
    const KeptLoaders keptLoaders;
    const QString menuBar = m_directory.filePath("MenuBar_Menu.dll");
    TestFiles::replace(menuBar, FIXTURE_DIR "/desktop_with_progress/MenuBar_Menu.dll");
    QCoreApplication::setLibraryPaths({m_directory.path(), QStringLiteral(FIXTURE_DIR "/desktop")});
    loadAndInit({"MenuBar_Menu", "ProcessBar_Process"});

    TestFiles::remove(menuBar);
    QCoreApplication::setLibraryPaths({m_directory.path()});
    TestFiles::replace(m_directory.filePath("ProcessBar_Process.dll"),
                       FIXTURE_DIR "/desktop/ProcessBar_Process.dll");
    manager()->loadAllPlugins();
    QCOMPARE(m_boxes->take().size(), 1);
    QVERIFY(manager()->initAllPlugins());
    QVERIFY(manager()->m_processBarObject);
    QVERIFY(!manager()->m_menuBarObject && !manager()->m_processBar);
}

void tst_DesktopManager::toolMayHaveThePluginsLoadedAgain()
{
    const KeptLoaders keptLoaders;
    // The running tool stays in memory and alive, for it has another owner.
    QPluginLoader keeper(QStringLiteral(FIXTURE_DIR "/desktop/Viewbar_View.dll"));
    QVERIFY(keeper.load());
    load({"File_Process", "Viewbar_View", "Viewbar_Status", "ListBar_PNList", "Other_Process"});
    bool loadedAgain = false;
    Recorder::setOnFactory([&](const QString &library, QWidget *) {
        if (library == "Viewbar_View.dll" && !loadedAgain) {
            loadedAgain = true;
            manager()->loadAllPlugins();
        }
    });
    QVERIFY(manager()->initAllPlugins());
    Recorder::setOnFactory({});
    QVERIFY(loadedAgain);
    manager()->initSignalAndSlot();
    manager()->recMegfromPlugin(messageTo("Other_Process"));
    QCOMPARE(takeReceivers(), QStringList("Other_Process.dll"));
}

void tst_DesktopManager::loadWhileTheBoxIsOpenIsSafe()
{
    const KeptLoaders keptLoaders;
    TestFiles::write("pluginconfig/pluginconfig.json", TestFiles::configOf({"Absent_One", "Absent_Two"}));
    // So many names are read in meanwhile that the table must grow, which moves its entries.
    QStringList more;
    for (int number = 0; number < 40; ++number) {
        more += QString("Copy_%1").arg(number);
        TestFiles::replace(m_directory.filePath(more.last() + ".dll"),
                           FIXTURE_DIR "/desktop/Other_Process.dll");
    }
    QCoreApplication::addLibraryPath(m_directory.path());
    m_boxes->whileNextIsOpen([&] {
        TestFiles::write("pluginconfig/pluginconfig.json", TestFiles::configOf(more));
        manager()->loadAllPlugins();
    });
    manager()->loadAllPlugins();

    QCOMPARE(m_boxes->take().size(), 4);
    for (const QString &name : more) {
        manager()->recMegfromPlugin(messageTo(name));
        QCOMPARE(takeReceivers(), QStringList("Other_Process.dll"));
    }
}

void tst_DesktopManager::menuBarIsAskedInItsOrder()
{
    loadAndInit({"MenuBar_Menu"});
    const QList<Recorder::FactoryCall> calls = Recorder::takeFactoryCalls();
    QStringList operations;
    for (const Recorder::FactoryCall &call : calls) {
        operations += call.symbol;
        Recorder::note(call);
    }
    QCOMPARE(operations, (QStringList{"createFileMenu", "createEditMenu", "attachTo", "createHelpMenu"}));
    QCOMPARE(calls.at(2).parent, m_window.get());
    QCOMPARE(static_cast<void *>(manager()->m_menuBarResult1), calls.at(0).element);
    QCOMPARE(static_cast<void *>(manager()->m_menuBarResult2), calls.at(1).element);
    QCOMPARE(static_cast<void *>(manager()->m_menuBarResult3), calls.at(3).element);
}

void tst_DesktopManager::progressBarDependsOnTheOrder()
{
    QCoreApplication::setLibraryPaths(
        {QStringLiteral(FIXTURE_DIR "/desktop_with_progress"), QStringLiteral(FIXTURE_DIR "/desktop")});
    loadAndInit({"MenuBar_Menu", "ProcessBar_Process"});
    const QStringList debug = m_debug->take();
    const bool menuBarFirst =
        debug.indexOf(R"("MenuBar_Menu.dll")") < debug.indexOf(R"("ProcessBar_Process.dll")");

    QVERIFY(manager()->m_processBarObject);
    QCOMPARE(dynamic_cast<QObject *>(manager()->m_processBar),
             menuBarFirst ? manager()->m_menuBarObject : nullptr);
    manager()->loadAllPlugins();
    QVERIFY(!manager()->m_processBar);
    std::printf("%s\n", menuBarFirst ? "menu bar first" : "progress bar first");
}

void tst_DesktopManager::bothOrdersOfMenuBarAndProgressBarOccur()
{
    QSet<QByteArray> orders;
    for (int seed = 1; seed < 100 && orders.size() < 2; ++seed) {
        QProcess *const child = startAgain("progressBarDependsOnTheOrder", QString::number(seed));
        const QByteArray output = child->readAll();
        QVERIFY2(child->exitStatus() == QProcess::NormalExit && child->exitCode() == 0, output.constData());
        orders.insert(output.contains("menu bar first") ? "menu bar" : "progress bar");
    }
    QCOMPARE(orders.size(), 2);
}

void tst_DesktopManager::progressBarIsNullWhereTheMenuBarHasNone()
{
    loadAndInit({"MenuBar_Menu", "ProcessBar_Process"});
    QVERIFY(manager()->initAllPlugins());
    QVERIFY(manager()->m_processBarObject);
    QVERIFY(manager()->m_menuBarObject);
    QVERIFY(!manager()->m_processBar);
}

// A plug-in that was loaded once and does not load again stays listed, without a loader.
void tst_DesktopManager::staleEntryIsSkipped()
{
    const KeptLoaders keptLoaders;
    const QString file = m_directory.filePath("Stale_Process.dll");
    TestFiles::replace(file, FIXTURE_DIR "/desktop/Other_Process.dll");
    QCoreApplication::addLibraryPath(m_directory.path());
    load({"Stale_Process", "File_Process"});
    TestFiles::remove(file);
    manager()->loadAllPlugins();
    QCOMPARE(m_boxes->take().size(), 1);

    m_debug->take();
    m_debug->takeWarnings();
    QVERIFY(manager()->initAllPlugins());
    QStringList debug = m_debug->take();
    debug.sort();
    QCOMPARE(debug,
             (QStringList{R"("File_Process.dll")", R"("Stale_Process.dll")", "file pro tools added!"}));
    manager()->initSignalAndSlot();
    QCOMPARE(m_debug->takeWarnings(), QStringList());

    emitFrom(manager()->m_fileProcessObject, messageTo("Stale_Process"));
    QCOMPARE(takeReceivers(), QStringList());
    emitFrom(manager()->m_fileProcessObject, messageTo("File_Process"));
    QCOMPARE(takeReceivers(), QStringList("File_Process.dll"));
}

void tst_DesktopManager::toolWithoutItsInterfaceEndsTheProcess_data()
{
    QTest::addColumn<QByteArray>("interfaceName");
    QTest::newRow("File_Process") << QByteArray("FileProcess");
    QTest::newRow("ListBar_PNList") << QByteArray("PNListInterface");
    QTest::newRow("Toolbar_Edit") << QByteArray("Toolbar_Edit");
    QTest::newRow("Toolbar_Move") << QByteArray("Toolbar_Move");
    QTest::newRow("ToolBar_Select") << QByteArray("Toolbar_Select");
    QTest::newRow("Toolbar_Tool") << QByteArray("Toolbar_Tool");
    QTest::newRow("Viewbar_View") << QByteArray("ViewWidget");
    QTest::newRow("Viewbar_Status") << QByteArray("Viewbar_Status");
    QTest::newRow("MenuBar_Menu") << QByteArray("MenuBar");
}

void tst_DesktopManager::toolWithoutItsInterfaceEndsTheProcess()
{
    QFETCH(QByteArray, interfaceName);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    if (!qEnvironmentVariableIsSet(childVariable)) {
        QProcess *const child = startAgain("toolWithoutItsInterfaceEndsTheProcess:" + name);
        const QByteArray output = child->readAll();
        QCOMPARE(child->exitStatus(), QProcess::CrashExit);
        const QByteArray text = "The plug-in " + name.toLatin1() + ".dll does not implement pluginManger."
                                + interfaceName + "/1.0.";
        QVERIFY2(output.contains(text), output.constData());
        return;
    }
    TestFiles::replace(m_directory.filePath(name + ".dll"), FIXTURE_DIR "/desktop/Other_Process.dll");
    QCoreApplication::setLibraryPaths({m_directory.path()});
    loadAndInit({name});
}

void tst_DesktopManager::messageReachesThePluginOfTheBareName()
{
    loadAndInit({"File_Process", "Viewbar_View"});
    manager()->initSignalAndSlot();
    emitFrom(manager()->m_viewObject, messageTo("File_Process"));
    QCOMPARE(takeReceivers(), QStringList("File_Process.dll"));
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_DesktopManager::messageToAFileNameIsDropped()
{
    loadAndInit({"File_Process"});
    manager()->initSignalAndSlot();
    emitFrom(manager()->m_fileProcessObject, messageTo("File_Process.dll"));
    QCOMPARE(takeReceivers(), QStringList());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_DesktopManager::messageToAnUnknownPluginIsDropped()
{
    loadAndInit({"File_Process"});
    manager()->initSignalAndSlot();
    for (const QString &name : {QString("Viewbar_View"), QString("file_process"), QString()})
        emitFrom(manager()->m_fileProcessObject, messageTo(name));
    QCOMPARE(takeReceivers(), QStringList());
    QCOMPARE(LogLines::take(), QList<Line>());
    QCOMPARE(m_debug->takeWarnings(), QStringList());
}

void tst_DesktopManager::messageIsHandedOverWhole_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("any type") << 7;
    QTest::newRow("the CAM manager's invalid type") << -1;
    QTest::newRow("the CAM manager's quiet type") << 10000000;
}

void tst_DesktopManager::messageIsHandedOverWhole()
{
    QFETCH(int, type);
    loadAndInit({"File_Process"});
    PluginMetaData message = messageTo("File_Process", type);
    message.data["Key"] = 42;
    message.userData = 0xabcdef;
    manager()->recMegfromPlugin(message);

    const QList<Recorder::Delivery> deliveries = Recorder::takeDeliveries();
    QCOMPARE(deliveries.size(), 1);
    const PluginMetaData &received = deliveries.first().message;
    QCOMPARE(received.src, QString("test"));
    QCOMPARE(received.dst, QString("File_Process"));
    QCOMPARE(received.type, type);
    QCOMPARE(received.data, message.data);
    QCOMPARE(received.userData, quintptr(0xabcdef));
}

void tst_DesktopManager::pluginOutsideTheTableExchangesMessages()
{
    loadAndInit({"File_Process", "Other_Process"});
    manager()->initSignalAndSlot();
    emitFrom(manager()->m_fileProcessObject, messageTo("Other_Process"));
    QCOMPARE(takeReceivers(), QStringList("Other_Process.dll"));

    QPluginLoader other(QStringLiteral(FIXTURE_DIR "/desktop/Other_Process.dll"));
    emitFrom(other.instance(), messageTo("File_Process"));
    QCOMPARE(takeReceivers(), QStringList("File_Process.dll"));
}

void tst_DesktopManager::messageToItselfArrives()
{
    loadAndInit({"File_Process"});
    manager()->initSignalAndSlot();
    emitFrom(manager()->m_fileProcessObject, messageTo("File_Process"));
    QCOMPARE(takeReceivers(), QStringList("File_Process.dll"));
}

void tst_DesktopManager::pluginWithoutTheSignalOnlyWarns()
{
    QCoreApplication::addLibraryPath(QStringLiteral(FIXTURE_DIR "/without_signal"));
    loadAndInit({"Without_Signal", "File_Process"});
    manager()->initSignalAndSlot();

    const QStringList warnings = m_debug->takeWarnings();
    QCOMPARE(warnings.size(), 1);
    QVERIFY2(warnings.first().contains("No such signal WithoutSignal::sendMsgToManager(PluginMetaData)"),
             qPrintable(warnings.first()));
    QCOMPARE(LogLines::take(), QList<Line>());

    manager()->recMegfromPlugin(messageTo("Without_Signal"));
    QPluginLoader loader(QStringLiteral(FIXTURE_DIR "/without_signal/Without_Signal.dll"));
    QCOMPARE(loader.instance()->objectName(), QString("test"));
}

void tst_DesktopManager::nothingIsConnectedBeforeInitSignalAndSlot()
{
    loadAndInit({"File_Process"});
    emitFrom(manager()->m_fileProcessObject, messageTo("File_Process"));
    QCOMPARE(takeReceivers(), QStringList());
}

void tst_DesktopManager::connectingTwiceDeliversTwice()
{
    loadAndInit({"File_Process"});
    manager()->initSignalAndSlot();
    manager()->initSignalAndSlot();
    emitFrom(manager()->m_fileProcessObject, messageTo("File_Process"));
    QCOMPARE(takeReceivers(), (QStringList{"File_Process.dll", "File_Process.dll"}));
}

void tst_DesktopManager::metaTypeIsRegisteredUnderItsName()
{
    QCOMPARE(QMetaType::type("PluginMetaData"), int(QMetaType::UnknownType));
    manager()->initSignalAndSlot();
    QCOMPARE(QMetaType::type("PluginMetaData"), qMetaTypeId<PluginMetaData>());
}

void tst_DesktopManager::reservedMembersStayNull()
{
    loadAndInit(tools);
    manager()->initSignalAndSlot();
    QVERIFY(!manager()->m_reserved1);
    QVERIFY(!manager()->m_reserved2);
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_DesktopManager>(argc, argv);
}

#include "tst_desktopmanager.moc"

#include "PluginInterface.h"
#include "debuglines.h"
#include "gbktexts.h"
#include "keptloaders.h"
#include "messageboxes.h"
#include "openbase.h"
#include "recorder.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QPluginLoader>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>

using LogLines::Line;

namespace {

const QString healthyDirectory = QStringLiteral(FIXTURE_DIR "/desktop");
const QString healthy = healthyDirectory + QStringLiteral("/File_Process.dll");
const QString notAPluginInterface =
    QStringLiteral(FIXTURE_DIR "/not_a_plugin_interface/Not_A_Plugin_Interface.dll");

QString reasonAgainst(const QString &path)
{
    QPluginLoader loader(path);
    return loader.load() ? QString() : loader.errorString();
}

}

class tst_LoadQtPlugin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void loadedPluginIsListedUnderItsPath();
    void bareNameIsFoundInTheLibraryPaths();
    void bareNameIsNotLookedForWhereLibrariesLie();
    void anyLettersMayStandInThePath();
    void findAppendsTheSuffix();
    void interfaceIsFoundInTheRootObject();
    void loadingAgainReplacesTheLoader();
    void loadingAgainTakesThePathOutOfTheLibraries();
    void failedReloadLeavesTheEntryWithoutLoader();
    void nameWithoutLibrarySuffixIsRefused();
    void failedDependencyCheckIsLoggedOnly();
    void failedDependencyCheckLeavesWhatIsLoaded();
    void failedLoadIsLoggedAndShown_data();
    void failedLoadIsLoggedAndShown();
    void rootObjectThatIsNoPluginInterfaceLeavesNoTrace();
    void unloadAllKeepsTheEntriesWithoutLoaders();
    void unloadAllTakesThePathsOutOfTheLibraries();
    void unloadAllSkipsNullEntries();
    void unloadedPluginCanBeLoadedAgain();

private:
    void load(const QString &path) { m_base.loadQtPlugin(m_tables, path); }

    QTemporaryDir m_directory;
    QTPluginsMangerPrivate m_tables;
    OpenBase m_base;
    MessageBoxes m_boxes;
};

void tst_LoadQtPlugin::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QCoreApplication::addLibraryPath(healthyDirectory);
}

void tst_LoadQtPlugin::init()
{
    LogLines::take();
}

void tst_LoadQtPlugin::cleanup()
{
    m_base.unloadAllQtPlugins(m_tables);
    m_tables = QTPluginsMangerPrivate();
    QVERIFY(m_boxes.take().isEmpty());
}

void tst_LoadQtPlugin::loadedPluginIsListedUnderItsPath()
{
    load(healthy);

    QCOMPARE(m_tables.m_loaders.keys(), QStringList(healthy));
    QVERIFY(m_tables.m_loaders.value(healthy)->isLoaded());
    QVERIFY(m_tables.m_loaders.value(healthy)->loadHints() & QLibrary::ResolveAllSymbolsHint);
    QVERIFY(m_tables.m_loaders.value(healthy)->loadHints() & QLibrary::PreventUnloadHint);
    QVERIFY(m_tables.m_libraries.isEmpty());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_LoadQtPlugin::bareNameIsFoundInTheLibraryPaths()
{
    load("File_Process.dll");
    QCOMPARE(m_tables.m_loaders.keys(), QStringList("File_Process.dll"));
    QCOMPARE(m_tables.m_loaders.value("File_Process.dll")->fileName(),
             QFileInfo(healthy).canonicalFilePath());
}

// Windows' own loader would look in the current directory.
void tst_LoadQtPlugin::bareNameIsNotLookedForWhereLibrariesLie()
{
    const KeptLoaders keptLoaders;
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(QStringLiteral(FIXTURE_DIR "/not_a_plugin_interface")));
    load("Not_A_Plugin_Interface.dll");
    QVERIFY(QDir::setCurrent(before));

    QVERIFY(m_tables.m_loaders.isEmpty());
    QCOMPARE(m_boxes.take().size(), 1);
}

void tst_LoadQtPlugin::anyLettersMayStandInThePath()
{
    QVERIFY(QDir(m_directory.path()).mkpath("größe 电路板 𠀀 ☃"));
    const QString path = m_directory.filePath("größe 电路板 𠀀 ☃/插件.dll");
    TestFiles::replace(path, healthy);
    load(path);

    QVERIFY(m_tables.m_loaders.value(path));
    QVERIFY(dynamic_cast<PluginInterface *>(m_tables.m_loaders.value(path)->instance()));
}

void tst_LoadQtPlugin::findAppendsTheSuffix()
{
    load("File_Process.dll");

    QVERIFY(m_base.findQtPlugin(m_tables, "File_Process"));
    QVERIFY(!m_base.findQtPlugin(m_tables, "File_Process.dll"));
    QVERIFY(!m_base.findQtPlugin(m_tables, "file_process"));
    QVERIFY(!m_base.findQtPlugin(m_tables, "Other_Process"));
}

void tst_LoadQtPlugin::interfaceIsFoundInTheRootObject()
{
    load(healthy);
    auto *const plugin = dynamic_cast<PluginInterface *>(m_tables.m_loaders.value(healthy)->instance());
    QVERIFY(plugin);

    PluginMetaData message;
    message.type = 42;
    plugin->recMsgFromManager(message);
    const QList<Recorder::Delivery> deliveries = Recorder::takeDeliveries();
    QCOMPARE(deliveries.size(), 1);
    QCOMPARE(deliveries.first().message.type, 42);
}

void tst_LoadQtPlugin::loadingAgainReplacesTheLoader()
{
    load(healthy);
    const QPointer<QPluginLoader> first = m_tables.m_loaders.value(healthy);
    load(healthy);

    QVERIFY(first.isNull());
    QCOMPARE(m_tables.m_loaders.size(), 1);
    QVERIFY(m_tables.m_loaders.value(healthy)->isLoaded());
}

void tst_LoadQtPlugin::loadingAgainTakesThePathOutOfTheLibraries()
{
    load(healthy);
    m_tables.m_libraries.insert(healthy, nullptr);
    load(healthy);

    QVERIFY(!m_tables.m_libraries.contains(healthy));
    QVERIFY(m_tables.m_loaders.contains(healthy));
}

void tst_LoadQtPlugin::failedReloadLeavesTheEntryWithoutLoader()
{
    const KeptLoaders keptLoaders;
    const QString path = m_directory.filePath("Vanishing.dll");
    TestFiles::replace(path, healthy);
    load(path);
    QVERIFY(m_tables.m_loaders.value(path));
    TestFiles::remove(path);
    load(path);

    QCOMPARE(m_boxes.take().size(), 1);
    QVERIFY(m_tables.m_loaders.contains(path));
    QVERIFY(!m_tables.m_loaders.value(path));
}

void tst_LoadQtPlugin::nameWithoutLibrarySuffixIsRefused()
{
    load("notes.txt");

    QVERIFY(m_tables.m_loaders.isEmpty());
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase", QByteArray(Gbk::notALibrary) + "notes.txt"}}));
}

void tst_LoadQtPlugin::failedDependencyCheckIsLoggedOnly()
{
    const DebugLines debug;
    m_tables.m_dependencies[healthy] = {QVariantMap{{"name", "Absent"}, {"version", "1"}}};
    load(healthy);

    QVERIFY(m_tables.m_loaders.isEmpty());
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase", Gbk::dependenciesFailed + healthy.toUtf8()}}));
}

void tst_LoadQtPlugin::failedDependencyCheckLeavesWhatIsLoaded()
{
    const DebugLines debug;
    load(healthy);
    const QPointer<QPluginLoader> loaded = m_tables.m_loaders.value(healthy);
    m_tables.m_dependencies[healthy] = {QVariantMap{{"name", "Absent"}, {"version", "1"}}};
    load(healthy);

    QVERIFY(!loaded.isNull());
    QCOMPARE(m_tables.m_loaders.value(healthy), loaded.data());
    QVERIFY(loaded->isLoaded());
}

void tst_LoadQtPlugin::failedLoadIsLoggedAndShown_data()
{
    QTest::addColumn<QString>("path");
    const auto file = [this](const char *name, const QByteArray &content) {
        const QString path = m_directory.filePath(QLatin1String(name));
        TestFiles::write(path, content);
        return path;
    };
    const QByteArray library = TestFiles::read(healthy);
    QTest::newRow("absent") << m_directory.filePath("Absent.dll");
    QTest::newRow("absent, bare name") << "Absent.dll";
    QTest::newRow("text file") << file("text_file.dll", "This is no library.\n");
    QTest::newRow("empty file") << file("empty_file.dll", {});
    QTest::newRow("truncated library") << file("truncated_library.dll", library.left(200));
    // Qt does not get as far as its meta data, so the reason is Qt's.
    QTest::newRow("truncated behind its headers") << file("truncated_behind.dll", library.left(8192));
    QTest::newRow("no Qt plug-in") << QStringLiteral(FIXTURE_DIR "/healthy/Any_Library.dll");
}

void tst_LoadQtPlugin::failedLoadIsLoggedAndShown()
{
    const KeptLoaders keptLoaders;
    QFETCH(QString, path);
    const QString reason = reasonAgainst(path);
    QVERIFY(!reason.isEmpty());
    load(path);

    QVERIFY(m_tables.m_loaders.isEmpty());
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase",
                           Gbk::loadFailed + path.toUtf8() + Gbk::loadFailedReason + reason.toUtf8()}}));

    const QList<MessageBoxes::Box> boxes = m_boxes.take();
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.first().title, QStringLiteral("提示"));
    QCOMPARE(boxes.first().text, QStringLiteral("加载插件失败！失败路径：") + path);
    QCOMPARE(boxes.first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
}

void tst_LoadQtPlugin::rootObjectThatIsNoPluginInterfaceLeavesNoTrace()
{
    load(notAPluginInterface);

    QVERIFY(m_tables.m_loaders.isEmpty());
    QVERIFY(!QPluginLoader(notAPluginInterface).isLoaded());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_LoadQtPlugin::unloadAllKeepsTheEntriesWithoutLoaders()
{
    load("File_Process.dll");
    load("Other_Process.dll");
    const QPointer<QPluginLoader> loader = m_tables.m_loaders.value("File_Process.dll");
    m_base.unloadAllQtPlugins(m_tables);

    QCOMPARE(m_tables.m_loaders.size(), 2);
    QVERIFY(m_tables.m_loaders.contains("File_Process.dll"));
    QVERIFY(m_tables.m_loaders.contains("Other_Process.dll"));
    QVERIFY(loader.isNull());
    QVERIFY(!m_base.findQtPlugin(m_tables, "File_Process"));
    QCOMPARE(LogLines::take(), (QList<Line>{{'I', "pluginMangerBase", Gbk::allUnloaded}}));
}

void tst_LoadQtPlugin::unloadAllTakesThePathsOutOfTheLibraries()
{
    load("File_Process.dll");
    m_tables.m_libraries.insert("File_Process.dll", nullptr);
    m_tables.m_libraries.insert("Other.dll", nullptr);
    m_base.unloadAllQtPlugins(m_tables);

    QCOMPARE(m_tables.m_libraries.keys(), QStringList("Other.dll"));
}

void tst_LoadQtPlugin::unloadAllSkipsNullEntries()
{
    load("File_Process.dll");
    m_base.unloadAllQtPlugins(m_tables);
    m_base.unloadAllQtPlugins(m_tables);

    QCOMPARE(m_tables.m_loaders.keys(), QStringList("File_Process.dll"));
    QCOMPARE(LogLines::take().size(), 2);
}

void tst_LoadQtPlugin::unloadedPluginCanBeLoadedAgain()
{
    load("File_Process.dll");
    m_base.unloadAllQtPlugins(m_tables);
    load("File_Process.dll");

    QVERIFY(m_base.findQtPlugin(m_tables, "File_Process")->isLoaded());
}

int main(int argc, char **argv)
{
    return runTest<tst_LoadQtPlugin>(argc, argv);
}

#include "tst_loadqtplugin.moc"

#include "debuglines.h"
#include "gbktexts.h"
#include "keptloaders.h"
#include "messageboxes.h"
#include "openbase.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QLibrary>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>

using LogLines::Line;

namespace {

const QString healthy = QStringLiteral(FIXTURE_DIR "/healthy/Any_Library.dll");

QString broken(const char *file)
{
    return QStringLiteral(FIXTURE_DIR "/") + QLatin1String(file);
}

QString reasonAgainst(const QString &path)
{
    QLibrary library(path);
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    return library.load() ? QString() : library.errorString();
}

}

class tst_LoadLibrary : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void loadedLibraryIsListedUnderItsPath();
    void bareNameIsFoundByTheLoader();
    void findComparesThePathAsGiven();
    void findLoadsNothing();
    void loadingAgainReplacesTheLoader();
    void loadingAgainReadsTheFileAnew();
    void libraryWithAnotherOwnerIsListedAnew();
    void nameWithoutLibrarySuffixIsRefused_data();
    void nameWithoutLibrarySuffixIsRefused();
    void platformSuffixIsALibraryName();
    void nameIsLookedAtBeforeTheDependencies();
    void failedDependencyCheckIsLoggedOnly();
    void failedDependencyCheckLeavesWhatIsLoaded();
    void defectOfADependencyKeepsTheLibraryOut_data();
    void defectOfADependencyKeepsTheLibraryOut();
    void failedLoadIsLoggedAndShown_data();
    void failedLoadIsLoggedAndShown();
    void failedLoadLeavesTheOthers();
    void failedReloadLeavesNoEntry();
    void libraryThatAppearsLaterIsLoaded();
    void undefinedFunctionFailsAtLoadWithItsReason();
    void libraryWithoutEntryPointLoads();
    void failedLoadIsLoggedBeforeItIsShown();
    void managerIsUsableWhileTheBoxIsOpen();
    void pathMayBeAKeyOfTheTable();
    void unloadAllEmptiesTheTable();
    void unloadAllKeepsWhatCannotBeUnloaded();
    void unloadAllSkipsNullEntries();
    void destroyedTablesUnloadNothing();

private:
    void load(const QString &path) { m_base.loadLibraryPlugin(m_tables, path); }
    QString makeFile(const QString &name, const QByteArray &content);

    QTemporaryDir m_directory;
    QTPluginsMangerPrivate m_tables;
    OpenBase m_base;
    MessageBoxes m_boxes;
};

void tst_LoadLibrary::init()
{
    QVERIFY(m_directory.isValid());
    LogLines::take();
}

void tst_LoadLibrary::cleanup()
{
    m_base.unloadAllLibraries(m_tables);
    m_tables = QTPluginsMangerPrivate();
    QVERIFY(m_boxes.take().isEmpty());
}

QString tst_LoadLibrary::makeFile(const QString &name, const QByteArray &content)
{
    const QString path = m_directory.filePath(name);
    TestFiles::write(path, content);
    return path;
}

void tst_LoadLibrary::loadedLibraryIsListedUnderItsPath()
{
    load(healthy);

    QCOMPARE(m_tables.m_libraries.keys(), QStringList(healthy));
    QLibrary *const library = m_base.findLibrary(m_tables, healthy);
    QVERIFY(library);
    QVERIFY(library->isLoaded());
    QVERIFY(library->resolve("recMsgFromManager"));
    QVERIFY(m_tables.m_loaders.isEmpty());
    QVERIFY(m_tables.m_names.isEmpty());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_LoadLibrary::bareNameIsFoundByTheLoader()
{
    load("Graphic_View.dll");

    QCOMPARE(m_tables.m_libraries.keys(), QStringList("Graphic_View.dll"));
    QVERIFY(m_base.findLibrary(m_tables, "Graphic_View.dll")->resolve("GetViewInstance"));
}

void tst_LoadLibrary::findComparesThePathAsGiven()
{
    load("Graphic_View.dll");

    QVERIFY(m_base.findLibrary(m_tables, "Graphic_View.dll"));
    QVERIFY(!m_base.findLibrary(m_tables, "Graphic_View"));
    QVERIFY(!m_base.findLibrary(m_tables, "graphic_view.dll"));
    QVERIFY(!m_base.findLibrary(m_tables, "./Graphic_View.dll"));
}

void tst_LoadLibrary::findLoadsNothing()
{
    QVERIFY(!m_base.findLibrary(m_tables, healthy));
    QVERIFY(m_tables.m_libraries.isEmpty());
}

void tst_LoadLibrary::loadingAgainReplacesTheLoader()
{
    load(healthy);
    const QPointer<QLibrary> first = m_base.findLibrary(m_tables, healthy);
    load(healthy);

    QVERIFY(first.isNull());
    QCOMPARE(m_tables.m_libraries.size(), 1);
    QVERIFY(m_base.findLibrary(m_tables, healthy)->isLoaded());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_LoadLibrary::loadingAgainReadsTheFileAnew()
{
    const QString path = m_directory.filePath("Replaced.dll");
    TestFiles::replace(path, healthy);
    load(path);
    QVERIFY(m_base.findLibrary(m_tables, path)->resolve("GetPluginDFMInstance"));

    TestFiles::replace(path, broken("without_factory/Without_Factory.dll"));
    load(path);
    QVERIFY(m_base.findLibrary(m_tables, path));
    QVERIFY(!m_base.findLibrary(m_tables, path)->resolve("GetPluginDFMInstance"));
}

void tst_LoadLibrary::libraryWithAnotherOwnerIsListedAnew()
{
    QLibrary otherOwner(healthy);
    QVERIFY(otherOwner.load());
    load(healthy);
    const QScopedPointer<QLibrary> first(m_base.findLibrary(m_tables, healthy));
    load(healthy);

    QVERIFY(m_base.findLibrary(m_tables, healthy) != first.data());
    QVERIFY(m_base.findLibrary(m_tables, healthy)->isLoaded());
    QVERIFY(otherOwner.resolve("recMsgFromManager"));
    otherOwner.unload();
}

void tst_LoadLibrary::nameWithoutLibrarySuffixIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("text file") << "notes.txt";
    QTest::newRow("no suffix") << "Graphic_View";
    QTest::newRow("suffix in the middle") << "Graphic_View.dll.txt";
    QTest::newRow("suffix without its dot") << "Graphic_Viewdll";
    QTest::newRow("empty") << "";
#ifndef Q_OS_WIN
    QTest::newRow("suffix in capitals") << "Graphic_View.DLL";
#endif
}

void tst_LoadLibrary::nameWithoutLibrarySuffixIsRefused()
{
    QFETCH(QString, name);
    load(name);

    QVERIFY(m_tables.m_libraries.isEmpty());
    QCOMPARE(LogLines::take(), (QList<Line>{{'E', "pluginMangerBase", Gbk::notALibrary + name.toUtf8()}}));
}

void tst_LoadLibrary::platformSuffixIsALibraryName()
{
#ifdef Q_OS_WIN
    const QString path = m_directory.filePath("Platform.DLL");
#else
    const QString path = m_directory.filePath("Platform.so");
#endif
    TestFiles::replace(path, healthy);
    load(path);
    QVERIFY(m_base.findLibrary(m_tables, path));
}

void tst_LoadLibrary::failedDependencyCheckIsLoggedOnly()
{
    m_tables.m_dependencies[healthy] = {QVariantMap{{"name", "Absent"}, {"version", "1"}}};
    load(healthy);

    QVERIFY(m_tables.m_libraries.isEmpty());
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase", Gbk::dependenciesFailed + healthy.toUtf8()}}));
}

void tst_LoadLibrary::nameIsLookedAtBeforeTheDependencies()
{
    m_tables.m_dependencies["notes.txt"] = {QVariantMap{{"name", "Absent"}, {"version", "1"}}};
    load("notes.txt");
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase", QByteArray(Gbk::notALibrary) + "notes.txt"}}));
}

void tst_LoadLibrary::failedDependencyCheckLeavesWhatIsLoaded()
{
    load(healthy);
    const QPointer<QLibrary> loaded = m_base.findLibrary(m_tables, healthy);
    m_tables.m_dependencies[healthy] = {QVariantMap{{"name", "Absent"}, {"version", "1"}}};
    load(healthy);

    QVERIFY(!loaded.isNull());
    QCOMPARE(m_base.findLibrary(m_tables, healthy), loaded.data());
    QVERIFY(loaded->isLoaded());
}

void tst_LoadLibrary::defectOfADependencyKeepsTheLibraryOut_data()
{
    using TestFiles::dependency;
    using TestFiles::entry;
    const QString view = "Graphic_View.dll";
    const QString tips = "Graphic_Tips.dll";
    QTest::addColumn<QJsonArray>("list");
    QTest::addColumn<QString>("line");
    QTest::newRow("missing") << QJsonArray{entry(view, "1.0", {dependency("Absent.dll")})}
                             << R"( Missing dependency: "Absent.dll" for plugin "")";
    QTest::newRow("other version")
        << QJsonArray{entry(view, "1.0", {dependency(tips, "2.0")}), entry(tips)}
        << R"(Version mismatch: "Graphic_Tips.dll" version "1.0" but "2.0" required for plugin "Graphic_Tips.dll")";
    QTest::newRow("cycle") << QJsonArray{entry(view, "1.0", {dependency(tips)}),
                                         entry(tips, "1.0", {dependency(view)})}
                           << R"(Circular dependency: "Graphic_View.dll" for plugin "Graphic_View.dll")"
                              R"( by way of "Graphic_View.dll -> Graphic_Tips.dll -> Graphic_View.dll")";
    QTest::newRow("on itself") << QJsonArray{entry(view, "1.0", {dependency(view)})}
                               << R"(Circular dependency: "Graphic_View.dll" for plugin "Graphic_View.dll")"
                                  R"( by way of "Graphic_View.dll -> Graphic_View.dll")";
}

/// The check finds the dependencies of libraries that are listed with ".dll".
void tst_LoadLibrary::defectOfADependencyKeepsTheLibraryOut()
{
    QFETCH(QJsonArray, list);
    QFETCH(QString, line);
    m_base.readPluginConfig(m_tables, makeFile("pluginconfig.json", TestFiles::config(list)));
    DebugLines debug;
    load("Graphic_View.dll");
    load("Graphic_MiniMap.dll");

    QCOMPARE(m_tables.m_libraries.keys(), QStringList("Graphic_MiniMap.dll"));
    QVERIFY2(debug.take().first().endsWith(line), qPrintable(line));
    QCOMPARE(LogLines::take(), (QList<Line>{{'E', "pluginMangerBase",
                                             QByteArray(Gbk::dependenciesFailed) + "Graphic_View.dll"}}));
}

void tst_LoadLibrary::failedLoadIsLoggedAndShown_data()
{
    QTest::addColumn<QString>("path");
    const QByteArray library = TestFiles::read(healthy);
    QTest::newRow("absent") << m_directory.filePath("Absent.dll");
    QTest::newRow("absent, bare name") << "Absent.dll";
    QTest::newRow("absent, Chinese name") << m_directory.filePath("缺失.dll");
    QTest::newRow("text file") << makeFile("text_file.dll", "This is no library.\n");
    QTest::newRow("empty file") << makeFile("empty_file.dll", {});
    QTest::newRow("truncated library") << makeFile("truncated_library.dll", library.left(200));
    QTest::newRow("missing needed library") << broken("missing_needed_library/Missing_Needed_Library.dll");
#ifndef Q_OS_WIN
    QTest::newRow("undefined symbol") << broken("undefined_symbol/Undefined_Symbol.dll");
#endif
}

void tst_LoadLibrary::failedLoadIsLoggedAndShown()
{
    const KeptLoaders keptLoaders;
    QFETCH(QString, path);
    const QString reason = reasonAgainst(path);
    QVERIFY(!reason.isEmpty());
    load(path);

    QVERIFY(m_tables.m_libraries.isEmpty());
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase",
                           Gbk::loadFailed + path.toUtf8() + Gbk::loadFailedReason + reason.toUtf8()}}));

    const QList<MessageBoxes::Box> boxes = m_boxes.take();
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.first().title, QStringLiteral("提示"));
    QCOMPARE(boxes.first().text, QStringLiteral("加载插件失败！失败路径：") + path);
    QCOMPARE(boxes.first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(boxes.first().icon, QMessageBox::Information);
    QVERIFY(boxes.first().modal);
    QVERIFY(!boxes.first().hasParent);
}

void tst_LoadLibrary::failedLoadLeavesTheOthers()
{
    const KeptLoaders keptLoaders;
    load(healthy);
    QLibrary *const library = m_base.findLibrary(m_tables, healthy);
    load(makeFile("text_file.dll", "This is no library.\n"));

    QCOMPARE(m_boxes.take().size(), 1);
    QCOMPARE(m_base.findLibrary(m_tables, healthy), library);
    QVERIFY(library->resolve("recMsgFromManager"));
}

void tst_LoadLibrary::failedReloadLeavesNoEntry()
{
    const KeptLoaders keptLoaders;
    const QString path = m_directory.filePath("Vanishing.dll");
    TestFiles::replace(path, healthy);
    load(path);
    TestFiles::remove(path);
    load(path);

    QCOMPARE(m_boxes.take().size(), 1);
    QVERIFY(!m_tables.m_libraries.contains(path));
}

void tst_LoadLibrary::libraryThatAppearsLaterIsLoaded()
{
    const KeptLoaders keptLoaders;
    const QString path = m_directory.filePath("Appearing.dll");
    load(path);
    QCOMPARE(m_boxes.take().size(), 1);

    TestFiles::replace(path, healthy);
    load(path);
    QVERIFY(m_base.findLibrary(m_tables, path));
}

void tst_LoadLibrary::undefinedFunctionFailsAtLoadWithItsReason()
{
    const KeptLoaders keptLoaders;
#ifdef Q_OS_WIN
    QSKIP("Windows does not link a library that calls a function nobody has.");
#endif
    load(broken("undefined_symbol/Undefined_Symbol.dll"));

    QCOMPARE(m_boxes.take().size(), 1);
    const QList<Line> lines = LogLines::take();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().text.contains("undefined symbol: _Z24functionThatNoLibraryHasv"),
             lines.first().text.constData());
}

void tst_LoadLibrary::libraryWithoutEntryPointLoads()
{
    const QString path = broken("without_entry_point/Without_Entry_Point.dll");
    load(path);

    QVERIFY(m_base.findLibrary(m_tables, path));
    QVERIFY(!m_base.findLibrary(m_tables, path)->resolve("recMsgFromManager"));
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_LoadLibrary::failedLoadIsLoggedBeforeItIsShown()
{
    const KeptLoaders keptLoaders;
    int linesWhileOpen = 0;
    m_boxes.whileNextIsOpen([&] { linesWhileOpen = LogLines::take().size(); });
    load("Absent.dll");
    QCOMPARE(m_boxes.take().size(), 1);
    QCOMPARE(linesWhileOpen, 1);
}

void tst_LoadLibrary::pathMayBeAKeyOfTheTable()
{
    load(healthy);
    load(m_tables.m_libraries.constBegin().key());
    QCOMPARE(m_tables.m_libraries.keys(), QStringList(healthy));
    QVERIFY(m_base.findLibrary(m_tables, healthy)->isLoaded());
}

void tst_LoadLibrary::managerIsUsableWhileTheBoxIsOpen()
{
    const KeptLoaders keptLoaders;
    m_boxes.whileNextIsOpen([this] { load(healthy); });
    load("Absent.dll");

    QCOMPARE(m_boxes.take().size(), 1);
    QCOMPARE(m_tables.m_libraries.keys(), QStringList(healthy));
}

void tst_LoadLibrary::unloadAllEmptiesTheTable()
{
    load(healthy);
    load("Graphic_View.dll");
    const QPointer<QLibrary> library = m_base.findLibrary(m_tables, healthy);
    m_base.unloadAllLibraries(m_tables);

    QVERIFY(m_tables.m_libraries.isEmpty());
    QVERIFY(library.isNull());
    QCOMPARE(LogLines::take(), (QList<Line>{{'I', "pluginMangerBase", Gbk::allUnloaded}}));
}

void tst_LoadLibrary::unloadAllKeepsWhatCannotBeUnloaded()
{
    QLibrary otherOwner(healthy);
    QVERIFY(otherOwner.load());
    load(healthy);
    load("Graphic_View.dll");
    const QScopedPointer<QLibrary> kept(m_base.findLibrary(m_tables, healthy));
    m_base.unloadAllLibraries(m_tables);

    QCOMPARE(m_tables.m_libraries.keys(), QStringList(healthy));
    QCOMPARE(m_tables.m_libraries.take(healthy), kept.data());
    QVERIFY(otherOwner.unload());
}

void tst_LoadLibrary::unloadAllSkipsNullEntries()
{
    m_tables.m_libraries.insert("Null.dll", nullptr);
    load(healthy);
    m_base.unloadAllLibraries(m_tables);

    QCOMPARE(m_tables.m_libraries.keys(), QStringList("Null.dll"));
}

void tst_LoadLibrary::destroyedTablesUnloadNothing()
{
    QPointer<QLibrary> library;
    {
        QTPluginsMangerPrivate tables;
        m_base.loadLibraryPlugin(tables, healthy);
        library = m_base.findLibrary(tables, healthy);
    }
    QVERIFY(!library.isNull());
    QVERIFY(library->isLoaded());
    QVERIFY(library->unload());
    delete library;
}

int main(int argc, char **argv)
{
    return runTest<tst_LoadLibrary>(argc, argv);
}

#include "tst_loadlibrary.moc"

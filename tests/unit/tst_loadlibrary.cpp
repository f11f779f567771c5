#include "debuglines.h"
#include "gbktexts.h"
#include "keptloaders.h"
#include "messageboxes.h"
#include "openbase.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextCodec>

#ifdef Q_OS_WIN
#    include <windows.h>
#else
#    include <dlfcn.h>
#    include <sys/stat.h>
#endif

using LogLines::Line;

namespace {

const QString healthy = QStringLiteral(FIXTURE_DIR "/healthy/Any_Library.dll");

QString broken(const char *file)
{
    return QStringLiteral(FIXTURE_DIR "/") + QLatin1String(file);
}

#ifdef Q_OS_WIN
constexpr char undefinedFunction[] = "undefined_entry/Undefined_Entry.dll";
#else
constexpr char undefinedFunction[] = "undefined_symbol/Undefined_Symbol.dll";
#endif

/// Wine puts a stub in the place of a function that a library does not have, and loads the one that wants it.
bool underWine()
{
#ifdef Q_OS_WIN
    return QLibrary::resolve(QStringLiteral("ntdll"), "wine_get_version") != nullptr;
#else
    return false;
#endif
}

/// What a Chinese console makes of bytes.
QString inCodePage936(const QByteArray &bytes)
{
#ifdef Q_OS_WIN
    QString text(bytes.size(), QChar());
    text.resize(MultiByteToWideChar(936, MB_ERR_INVALID_CHARS, bytes.constData(), bytes.size(),
                                    reinterpret_cast<wchar_t *>(text.data()), text.size()));
    return text;
#else
    return QTextCodec::codecForName("GB18030")->toUnicode(bytes);
#endif
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
    void bareNameIsNotLookedForWhereQtPluginsLie();
    void bareNameOfALoadedLibrary();
    void ownPathBesideALoadedBareName();
    void anyLettersMayStandInThePath_data();
    void anyLettersMayStandInThePath();
    void longPathIsLoadedOrReported();
    void findComparesThePathAsGiven();
    void findLoadsNothing();
    void loadingAgainReplacesTheLoader();
    void loadingAgainReadsTheFileAnew();
    void fileIsFreeOnceItsLibraryIsUnloaded();
    void libraryWithAnotherOwnerIsListedAnew();
#ifdef Q_OS_UNIX
    void libraryWithAnotherOwnerIsNotReadAgain();
#endif
#ifdef Q_OS_LINUX
    void lookAtWhatTheLoaderHasKeepsNothingOfIt();
    void nameWithTheSuffixIsNotGivenItAgain();
#endif
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
    void reasonIsGivenInTheLanguageOfTheSystem();
    void logTextsAreReadInCodePage936();
    void neededLibraryIsNotLookedForBesideThePlugin();
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
    void load(const QString &path)
    {
        m_base.loadLibraryPlugin(m_tables, path);
    }
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

void tst_LoadLibrary::bareNameIsNotLookedForWhereQtPluginsLie()
{
    const KeptLoaders keptLoaders;
    QCoreApplication::addLibraryPath(broken("null_factory"));
    load("Null_Factory.dll");
    QCoreApplication::removeLibraryPath(broken("null_factory"));

    QVERIFY(m_tables.m_libraries.isEmpty());
    QCOMPARE(m_boxes.take().size(), 1);
}

// Two libraries of one name: whoever asks Windows for a bare name gets what is loaded under it.
void tst_LoadLibrary::bareNameOfALoadedLibrary()
{
    const QString withoutFactory = broken("without_factory/Graphic_View.dll");
    load(withoutFactory);
    load("Graphic_View.dll");

    QVERIFY(!m_base.findLibrary(m_tables, withoutFactory)->resolve("GetViewInstance"));
#ifdef Q_OS_WIN
    QVERIFY(!m_base.findLibrary(m_tables, "Graphic_View.dll")->resolve("GetViewInstance"));
#else
    QVERIFY(m_base.findLibrary(m_tables, "Graphic_View.dll")->resolve("GetViewInstance"));
#endif
}

// The other way round each gets its own, on Windows, too.
void tst_LoadLibrary::ownPathBesideALoadedBareName()
{
    const QString withoutFactory = broken("without_factory/Graphic_View.dll");
    load("Graphic_View.dll");
    load(withoutFactory);

    QVERIFY(m_base.findLibrary(m_tables, "Graphic_View.dll")->resolve("GetViewInstance"));
    QVERIFY(!m_base.findLibrary(m_tables, withoutFactory)->resolve("GetViewInstance"));
}

void tst_LoadLibrary::anyLettersMayStandInThePath_data()
{
    QTest::addColumn<QString>("directory");
    QTest::newRow("blanks") << "with some blanks";
    QTest::newRow("Chinese") << "电路板 工作目录";
    QTest::newRow("in no code page but UTF-8") << "größe 电路板 𠀀 ☃";
    // With the drive, the file's name and the closing null, one short of what Windows allows.
    const int rest = 259 - m_directory.path().size() - int(qstrlen("//Any_Library.dll"));
    QTest::newRow("as long as Windows allows")
        << QString(rest / 2, 'x') + '/' + QString(rest - rest / 2 - 1, 'y');
}

void tst_LoadLibrary::anyLettersMayStandInThePath()
{
    QFETCH(QString, directory);
    QVERIFY(QDir(m_directory.path()).mkpath(directory));
    const QString path = m_directory.filePath(directory + "/Any_Library.dll");
    TestFiles::replace(path, healthy);
    load(path);

    QVERIFY(m_base.findLibrary(m_tables, path));
    QVERIFY(m_base.findLibrary(m_tables, path)->resolve("recMsgFromManager"));
    QCOMPARE(LogLines::take(), QList<Line>());
}

// Windows refuses such a path, unless the system and the program both allow it.
void tst_LoadLibrary::longPathIsLoadedOrReported()
{
    const KeptLoaders keptLoaders;
    const QString directory = QString(200, 'x') + '/' + QString(200, 'y');
    QVERIFY(QDir(m_directory.path()).mkpath(directory));
    const QString path = m_directory.filePath(directory + "/Any_Library.dll");
    TestFiles::replace(path, healthy);
    load(path);

    const bool loaded = m_base.findLibrary(m_tables, path);
    QCOMPARE(m_boxes.take().size(), loaded ? 0 : 1);
    QCOMPARE(LogLines::take().size(), loaded ? 0 : 1);
#ifndef Q_OS_WIN
    QVERIFY(loaded);
#endif
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

// Windows locks the file of a loaded library.
void tst_LoadLibrary::fileIsFreeOnceItsLibraryIsUnloaded()
{
    const QString path = m_directory.filePath("Used.dll");
    TestFiles::replace(path, healthy);
    load(path);
#ifdef Q_OS_WIN
    QVERIFY(!QFile::remove(path));
    QVERIFY(!QFile(path).open(QIODevice::ReadWrite));
#endif
    m_base.unloadAllLibraries(m_tables);
    QVERIFY(QFile::remove(path));
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

#ifdef Q_OS_UNIX
void tst_LoadLibrary::libraryWithAnotherOwnerIsNotReadAgain()
{
    const QString path = m_directory.filePath("Owned.dll");
    TestFiles::replace(path, healthy);
    QLibrary otherOwner(path);
    QVERIFY(otherOwner.load());
    // At a pipe a reader would wait for good.
    TestFiles::remove(path);
    QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    load(path);

    const QScopedPointer<QLibrary> listed(m_tables.m_libraries.take(path));
    QVERIFY(listed && listed->isLoaded());
    QCOMPARE(LogLines::take(), QList<Line>());
    listed->unload();
    otherOwner.unload();
}
#endif

#ifdef Q_OS_LINUX
void tst_LoadLibrary::lookAtWhatTheLoaderHasKeepsNothingOfIt()
{
    const QString path = m_directory.filePath("Held.dll");
    TestFiles::replace(path, healthy);
    void *const owner = dlopen(QFile::encodeName(path).constData(), RTLD_NOW);
    QVERIFY(owner);
    TestFiles::remove(path);
    TestFiles::write(path, TestFiles::read(healthy).left(8192));
    load(path);
    QVERIFY(m_base.findLibrary(m_tables, path));

    m_base.unloadAllLibraries(m_tables);
    QCOMPARE(dlclose(owner), 0);
    QVERIFY(!dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_NOLOAD));
}

void tst_LoadLibrary::nameWithTheSuffixIsNotGivenItAgain()
{
    const QString path = m_directory.filePath("Named.so");
    TestFiles::write(m_directory.filePath("Named.so.so"), TestFiles::read(healthy).left(8192));
    TestFiles::replace(m_directory.filePath("libNamed.so"), healthy);
    load(path);
    QVERIFY(m_base.findLibrary(m_tables, path));
    QCOMPARE(LogLines::take(), QList<Line>());
}
#endif

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
    if (!underWine())
        QTest::newRow("undefined symbol") << broken(undefinedFunction);
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

void tst_LoadLibrary::reasonIsGivenInTheLanguageOfTheSystem()
{
    const KeptLoaders keptLoaders;
    load("Absent.dll");
    QCOMPARE(m_boxes.take().size(), 1);
#ifdef Q_OS_WIN
    const QString reason = qt_error_string(ERROR_MOD_NOT_FOUND);
    if (GetACP() == 936)
        QVERIFY2(reason.contains("找不到"), qPrintable(reason));
#else
    const QString reason = "No such file or directory";
#endif
    const QByteArray text = LogLines::take().first().text;
    QVERIFY2(text.contains(reason.toUtf8()), text.constData());
}

void tst_LoadLibrary::logTextsAreReadInCodePage936()
{
    load("notes.txt");
    QCOMPARE(inCodePage936(LogLines::take().first().text),
             QStringLiteral("目标路径内没有库文件！路径：notes.txt"));
}

void tst_LoadLibrary::neededLibraryIsNotLookedForBesideThePlugin()
{
    const KeptLoaders keptLoaders;
    const QString plugin = m_directory.filePath("Missing_Needed_Library.dll");
    TestFiles::replace(plugin, broken("missing_needed_library/Missing_Needed_Library.dll"));
    const QFileInfoList needed = QDir(broken("elsewhere")).entryInfoList(QDir::Files);
    QVERIFY(!needed.isEmpty());
    for (const QFileInfo &library : needed)
        TestFiles::replace(m_directory.filePath(library.fileName()), library.filePath());
    load(plugin);

    QVERIFY(m_tables.m_libraries.isEmpty());
    QCOMPARE(m_boxes.take().size(), 1);
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
    if (underWine())
        QSKIP("Wine loads such a library and ends the program when it calls the function.");
#endif
    load(broken(undefinedFunction));

    QCOMPARE(m_boxes.take().size(), 1);
    const QList<Line> lines = LogLines::take();
    QCOMPARE(lines.size(), 1);
#ifdef Q_OS_WIN
    const QByteArray reason = qt_error_string(ERROR_PROC_NOT_FOUND).toUtf8();
#else
    const QByteArray reason = "undefined symbol: _Z24functionThatNoLibraryHasv";
#endif
    QVERIFY2(lines.first().text.contains(reason), lines.first().text.constData());
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

// Libraries that do not load, or do harm when they do.

#include "faults.h"
#include "keptloaders.h"
#include "openbase.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>
#include <QtCore/QRandomGenerator>
#include <QtTest/QtTest>

#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace {

#ifdef Q_OS_WIN
constexpr char noSuchFile[] = "";
#else
constexpr char noSuchFile[] = "No such file or directory";
#endif

/// A file that is a library neither for the system nor for Qt.
void noLibrary(Faults &f, const QByteArray &content, const char *reason)
{
    const QString path = f.make("NoLibrary.dll", content);
    f.expectRefused(path, Faults::reasonOf(path, reason));
    const QString plugin = f.make("NoPlugin.dll", content);
    f.expectRefusedPlugin(plugin, Faults::reasonOfQt(plugin));
}

QByteArray randomBytes()
{
    QRandomGenerator random(20);
    QByteArray bytes(65536, '\0');
    for (char &byte : bytes)
        byte = char(random.bounded(256));
    return bytes;
}

void executable(Faults &f)
{
    const QString path = f.make("Program.dll", TestFiles::read(QCoreApplication::applicationFilePath()));
    f.expectRefused(path, Faults::reasonOf(path, "cannot dynamically load position-independent executable"));
    const QString plugin = f.make("NoPlugin.dll", TestFiles::read(path));
    f.expectRefusedPlugin(plugin, Faults::reasonOfQt(plugin));
}

void directoryInPlaceOfALibrary(Faults &f)
{
    const QString path = f.path("Directory.dll");
    QVERIFY(QDir().mkdir(path));
    f.expectRefused(path, Faults::reasonOf(path, "cannot read file data: Is a directory"));
    f.expectRefusedPlugin(path, Faults::reasonOfQt(path));
}

void absent(Faults &f)
{
    const QString path = f.path("Absent.dll");
    f.expectRefused(path, Faults::reasonOfQLibrary(path, noSuchFile));
    f.expectRefusedPlugin(path, Faults::reasonOfQt(path));
}

void expectRefusedFor(Faults &f, const char *fixture, const char *symbol)
{
    const QString path = Faults::fixture(fixture);
    f.expectRefused(path, QStringLiteral("Cannot load library %1: (%1: undefined symbol: %2)")
                              .arg(path, QLatin1String(symbol)));
}

void neededLibraryMissing(Faults &f)
{
    const QString path = Faults::fixture("missing_needed_library/Missing_Needed_Library.dll");
#ifdef Q_OS_WIN
    f.expectRefused(path, Faults::reasonOf(path, ""));
#else
    f.expectRefused(path, QStringLiteral("Cannot load library %1: (libabsentlibrary.so: cannot open shared "
                                         "object file: No such file or directory)")
                              .arg(path));
#endif
}

void noMetaData(Faults &f)
{
    const QString path = Faults::fixture("healthy/Any_Library.dll");
    f.expectRefusedPlugin(path, Faults::reasonOfQt(path));
}

// Windows looks there, after the program's own directory and the system's.
void inTheCurrentDirectory(Faults &f)
{
    f.make("Planted.dll", Faults::healthyLibrary());
#ifdef Q_OS_WIN
    f.expectLoaded("Planted.dll");
#else
    f.expectRefused("Planted.dll", Faults::reasonOfQLibrary("Planted.dll", noSuchFile));
#endif
}

void outsideTheOnlyLibraryPath(Faults &f)
{
    f.make("Planted.dll", Faults::healthyPlugin());
    QCoreApplication::setLibraryPaths({Faults::fixture("desktop")});
    f.expectRefusedPlugin("Planted.dll", Faults::reasonOfQt("Planted.dll"));
    QCoreApplication::setLibraryPaths({f.path("")});
    f.expectLoadedPlugin("Planted.dll");
}

void foreignRootObject(Faults &f)
{
    const QString foreign = Faults::fixture("not_a_plugin_interface/Not_A_Plugin_Interface");
    const QString good = Faults::fixture("desktop/Other_Process");
    f.writeDesktopList(TestFiles::configOf({foreign, good}));
    f.desktop()->loadAllPlugins();
    QCOMPARE(f.log(), Faults::Lines{Faults::desktopLoaded()});
    QVERIFY(f.boxes().isEmpty());
    QVERIFY(!QPluginLoader(foreign + ".dll").isLoaded());
    // All that is listed is named there.
    f.desktop()->initAllPlugins();
    QCOMPARE(f.debug().take(), QStringList('"' + good + ".dll\""));
    f.desktop()->initSignalAndSlot();
    QCOMPARE(f.debug().takeWarnings(), QStringList());

    f.desktop()->recMegfromPlugin(f.message(foreign));
    QCOMPARE(f.deliveries(), Deliveries());
    f.desktop()->recMegfromPlugin(f.message(good));
    const QList<Recorder::Delivery> received = f.deliveries().list;
    QCOMPARE(received.size(), 1);
    QCOMPARE(received.first().library, QString("Other_Process.dll"));
}

void lettersAndBlanks(Faults &f)
{
    const QString directory = QStringLiteral("mit Leerzeichen größe 电路板 𠀀 ☃");
    QVERIFY(QDir().mkdir(directory));
    f.expectLoaded(f.make(directory + QStringLiteral("/插件 eins.dll"), Faults::healthyLibrary()));
    f.expectLoadedPlugin(f.make(directory + QStringLiteral("/插件 zwei.dll"), Faults::healthyPlugin()));
    const QString broken = f.make(directory + QStringLiteral("/缺 失.dll"), "no library");
    f.expectRefused(broken, Faults::reasonOf(broken, "file too short"));
}

void replacedByRename(Faults &f)
{
    f.load({"ORVIK-GraphicEditor", "Graphic_Tips"});
    QWidget *const frame = f.graphicFrame("A | pcb");
    QWidget *const receiver = f.manager()->Ov_RegisterGraphic_Tips(frame);
    const QString path = Faults::replaceable("Graphic_Tips.dll");
    QVERIFY(QFile::copy(Faults::fixture("healthy/Graphic_Tips.dll"), path));
    f.load({});
    TestFiles::replace(path, Faults::fixture("without_factory/Graphic_Tips.dll"));

    // What is loaded goes on until it is loaded again.
    f.manager()->recMegToPlugin(frame, f.message(f.tips, {}, 10000000));
    QCOMPARE(f.deliveries(), Deliveries{f.to(receiver, f.message(f.tips, {}, 10000000))});
    f.load({});
    QVERIFY(!f.manager()->plugin(f.tips)->resolve("GetGraphic_TipsInstance"));
    f.factoryCalls();
}

void appearsAfterAFailedLoad(Faults &f)
{
    const QString path = f.path("Late.dll");
    f.expectRefused(path, Faults::reasonOfQLibrary(path, noSuchFile));
    f.make("Late.dll", Faults::healthyLibrary());
    f.expectLoaded(path);

    const QString plugin = f.path("LatePlugin.dll");
    f.expectRefusedPlugin(plugin, Faults::reasonOfQt(plugin));
    f.make("LatePlugin.dll", Faults::healthyPlugin());
    f.expectLoadedPlugin(plugin);
}

void twoOwners(Faults &f)
{
    const KeptLoaders keptLoaders;
    const QString path = f.make("Owned.dll", Faults::healthyLibrary());
    QLibrary owner(path);
    QVERIFY(owner.load());
    f.expectLoaded(path);
    f.expectLoaded(path);
    QVERIFY(f.manager()->plugin(path)->isLoaded());
    QVERIFY(!owner.unload());
    QVERIFY(f.manager()->plugin(path)->resolve("recMsgFromManager"));
}

const QString acting = QStringLiteral(FIXTURE_DIR "/acting_constructor/Acting_Constructor.dll");

void actInAConstructor(std::function<void()> action)
{
    Recorder::setOnFactory([action = std::move(action)](const QString &, QWidget *) {
        Recorder::setOnFactory({});
        action();
    });
}

void constructorLoads(Faults &f)
{
    const QString inner = f.make("Inner.dll", Faults::healthyLibrary());
    OpenBase base;
    QTPluginsMangerPrivate tables;
    actInAConstructor([&] { base.loadLibraryPlugin(tables, inner); });
    f.expectLoaded(acting);
    QVERIFY(tables.m_libraries.value(inner)->resolve("recMsgFromManager"));
    base.unloadAllLibraries(tables);
    QCOMPARE(f.log(), Faults::Lines{Faults::allUnloaded()});
}

const QString actingRoot = QStringLiteral(FIXTURE_DIR "/acting_root_object/Acting_Root_Object.dll");

void rootObjectThrows(Faults &f)
{
    actInAConstructor([] { throw std::runtime_error("from a root object"); });
    QVERIFY_EXCEPTION_THROWN(f.loadQtPlugin(actingRoot), std::runtime_error);
    f.expectNothingMore();
    // It is not listed, though Qt has its library mapped.
    f.desktop()->initAllPlugins();
    QCOMPARE(f.debug().take(), QStringList());
    f.desktop()->recMegfromPlugin(f.message(f.withoutSuffix(actingRoot)));
    f.expectNothingMore();
    // Nor does that keep it from being loaded when it no longer throws.
    f.expectLoadedPlugin(actingRoot);
}

void constructorThrows(Faults &f)
{
    actInAConstructor([] { throw std::runtime_error("from a constructor"); });
    QVERIFY_EXCEPTION_THROWN(f.loadPlain(acting), std::runtime_error);
    f.expectNothingMore();
    QVERIFY(!f.manager()->plugin(acting));
    QVERIFY(!f.manager()->isCAMLoaded());
    // It does not throw again.
    f.expectLoaded(acting);
}

/// Beside a library that is loaded.
void endInAConstructor(Faults &f, std::function<void()> end)
{
    f.expectLoaded(f.make("Good.dll", Faults::healthyLibrary()));
    actInAConstructor([&, end = std::move(end)] {
        QVERIFY(f.manager()->plugin(f.path("Good.dll")));
        QVERIFY(!f.manager()->plugin(acting));
        f.expectNothingMore();
        Faults::reachTheEnd();
        end();
    });
    f.loadPlain(acting);
}

void toolOfAnotherKind(Faults &f)
{
    f.make("File_Process.dll", Faults::healthyPlugin());
    QCoreApplication::setLibraryPaths({f.path("")});
    f.expectLoadedPlugin("File_Process.dll");
    Faults::reachTheEnd();
    // QtTest would take the line for a fault of this row.
    qInstallMessageHandler(nullptr);
    f.desktop()->initAllPlugins();
}

void constructorAborts(Faults &f)
{
    endInAConstructor(f, [] { std::abort(); });
}

void constructorExits(Faults &f)
{
    endInAConstructor(f, [] { std::exit(7); });
}

void constructorCrashes(Faults &f)
{
    volatile quintptr nowhere = 16;
    endInAConstructor(f, [&] { *reinterpret_cast<volatile int *>(nowhere) = 1; });
}

void constructorHangs(Faults &f)
{
    endInAConstructor(f, [] {
        for (;;)
            QThread::sleep(1);
    });
}

}

Rows loadRows()
{
    const QByteArray refused = "line with the reason, box";
    Rows rows{
        {"zero bytes", refused, [](Faults &f) { noLibrary(f, {}, "file too short"); }},
        {"four bytes", refused,
         [](Faults &f) {
             noLibrary(f,
                       "\x7f"
                       "ELF",
                       "file too short");
         }},
        {"text", refused, [](Faults &f) { noLibrary(f, QByteArray(500, 'x'), "invalid ELF header"); }},
        {"random bytes", refused, [](Faults &f) { noLibrary(f, randomBytes(), "invalid ELF header"); }},
        {"executable", refused, executable},
        {"directory", refused, directoryInPlaceOfALibrary},
        {"absent", refused, absent},
        {"missing needed library", "line that names it, box", neededLibraryMissing},
        {"plain library in the current directory", "is not looked for there, but on Windows",
         inTheCurrentDirectory},
        {"Qt plug-in outside the host's library paths", "is not looked for there", outsideTheOnlyLibraryPath},
        {"no Qt meta data", refused, noMetaData},
        {"root object that is no PluginInterface", "left alone without a line", foreignRootObject},
        {"non-ASCII letters and blanks in paths", "loads; a failure is logged as UTF-8", lettersAndBlanks},
        {"file replaced by rename while loaded", "the old one goes on until it is loaded again",
         replacedByRename},
        {"file that appears after a failed load", "loads the next time", appearsAfterAFailedLoad},
        {"two owners of one library", "stays loaded for both", twoOwners},
        {"constructor that loads", "both load", constructorLoads},
        {"root object's constructor that throws",
         "reaches the caller of the load; what is listed after it is not loaded", rootObjectThrows},
        {"constructor that aborts",
         "the process is the plug-in's, too",
         constructorAborts,
         {Ending::Signal, SIGABRT}},
        {"desktop tool that is none of its name",
         "nothing sensible can follow; what is missing is said",
         toolOfAnotherKind,
         {Ending::Signal, SIGABRT}},
        {"constructor that exits", "the process is the plug-in's, too", constructorExits, {Ending::Exit, 7}},
        {"constructor that crashes",
         "the process is the plug-in's, too",
         constructorCrashes,
         {Ending::Signal, SIGSEGV}},
        {"constructor that hangs", "the load does not return", constructorHangs, {Ending::Hang}},
    };
#ifdef Q_OS_WIN
    const QByteArray systems = "what becomes of such an exception is the system's";
    const QByteArray leftOut = "what is missing cannot be linked here; tst_loadlibrary has an older library";
#else
    const QByteArray systems;
    const QByteArray leftOut;
#endif
    rows.push_back({"constructor that throws",
                    "reaches the caller of the load; what is listed after it is not loaded",
                    constructorThrows,
                    {},
                    systems});
    rows.push_back({"undefined function",
                    "line that names it, box",
                    [](Faults &f) {
                        expectRefusedFor(f, "undefined_symbol/Undefined_Symbol.dll",
                                         "_Z24functionThatNoLibraryHasv");
                    },
                    {},
                    leftOut});
    rows.push_back(
        {"undefined data",
         "line that names it, box",
         [](Faults &f) { expectRefusedFor(f, "undefined_data/Undefined_Data.dll", "dataThatNoLibraryHas"); },
         {},
         leftOut});
    return rows;
}

#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QLibraryInfo>
#include <QtCore/QTemporaryDir>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>

namespace {

/// Which program is called, and what it finds.
struct Surroundings
{
    QString program = QStringLiteral(PLUGINCHECK);
    QString variable = {};
    QString value = {};
};

/// What the program says of a set, as its JSON report.
QJsonObject probe(const QString &configuration, const QStringList &directories, const QStringList &options,
                  int *exitCode, const Surroundings &surroundings = {})
{
    QStringList arguments{configuration, "--format", "json", "--probe"};
    for (const QString &directory : directories)
        arguments << "--library-dir" << directory;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ASAN_OPTIONS",
                       "detect_leaks=0:handle_segv=0:handle_abort=0:verify_asan_link_order=0");
    if (!surroundings.variable.isEmpty())
        environment.insert(surroundings.variable, surroundings.value);
    process.setProcessEnvironment(environment);
    process.start(surroundings.program, arguments + options);
    process.waitForFinished(60000);
    *exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}

/// What the system tells of a process; nothing when it has ended.
QByteArray told(qint64 process, const QString &what)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(what));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Whether a process has ended, also when nobody has asked what became of it.
bool hasEnded(qint64 process)
{
    const QByteArray state = told(process, "stat");
    return state.isEmpty() || state.mid(state.lastIndexOf(')') + 2, 1) == "Z";
}

/// The processes that a process has started and that load a library by now.
QList<qint64> childrenOf(qint64 process)
{
    QList<qint64> children;
    const QByteArray numbers = told(process, QStringLiteral("task/%1/children").arg(process)).simplified();
    for (const QByteArray &number : numbers.split(' ')) {
        if (told(number.toLongLong(), "cmdline").contains("--probe-library"))
            children.append(number.toLongLong());
    }
    return children;
}

QStringList codes(const QJsonObject &report)
{
    QStringList all;
    for (const QJsonValue &finding : report["findings"].toArray())
        all.append(finding["code"].toString());
    return all;
}

QStringList leftOut(const QJsonObject &report)
{
    QStringList all;
    for (const QJsonValue &what : report["leftOut"].toArray())
        all.append(what.toString());
    return all;
}

}

/// What is said of libraries that are loaded in processes of their own.
class tst_CheckProbe : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void tellsWhatBecameOfALibrary_data();
    void tellsWhatBecameOfALibrary();
    void oneBadLibraryStopsNoOther();
    void cutOffLibraryIsRefusedAsByTheManager();
    void loadsTheFileThatTheManagerLoads();
    void loadsTheToolOfTheFirstFolder();
    void libraryPathsAreNoneOfTheLoader();
    void managerIsLoadedAsInAHost();
    void managerThatIsNotFoundIsNoFault_data();
    void managerThatIsNotFoundIsNoFault();
    void processThatIsNotReadyIsNoFault_data();
    void processThatIsNotReadyIsNoFault();
    void noPlaceForTemporaryFilesIsNoFault();
    void whatLoadsIsNotCalledUnloadable();
    void progressShowsNoNameAsItIs();
    void findingsComeInTheOrderOfTheList();
    void whatALibraryStartsEndsWithIt();
    void nothingIsLeftOfAProbeThatIsEnded_data();
    void nothingIsLeftOfAProbeThatIsEnded();

private:
    QTemporaryDir m_directory;
};

void tst_CheckProbe::init()
{
    QVERIFY(m_directory.isValid());
}

void tst_CheckProbe::tellsWhatBecameOfALibrary_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("set");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("detail");
    const auto row = [](const char *name, const char *file, const char *set, const char *code,
                        const char *result, const char *detail = "") {
        QTest::newRow(name) << QString(file) << QString(set) << QString(code) << QString(result)
                            << QString(detail);
    };
    row("loads", CHECKED_DIR "/good/Graphic_View.dll", "cam", "", "loaded");
    row("crashes", CHECKED_DIR "/crashing/Graphic_View.dll", "cam", "probe-crashed", "crashed", "signal 11");
    row("aborts", CHECKED_DIR "/aborting/Graphic_View.dll", "cam", "probe-crashed", "crashed", "signal 6");
    row("hangs", CHECKED_DIR "/hanging/Graphic_View.dll", "cam", "probe-hung", "hung",
        "no end after 1 second");
    row("exits", CHECKED_DIR "/exiting/Graphic_View.dll", "cam", "probe-exited", "exited", "status 42");
    row("throws", CHECKED_DIR "/throwing/Graphic_View.dll", "cam", "probe-threw", "threw", "no licence");
    row("needs what is missing", FIXTURE_DIR "/missing_needed_library/Missing_Needed_Library.dll", "cam",
        "probe-failed", "failed", "Cannot load library");
    row("tool loads", FIXTURE_DIR "/desktop/File_Process.dll", "desktop", "", "loaded");
    row("no PluginInterface", FIXTURE_DIR "/not_a_plugin_interface/Not_A_Plugin_Interface.dll", "desktop",
        "probe-interface", "loaded", "pluginManger.PluginInterface/1.0");
}

void tst_CheckProbe::tellsWhatBecameOfALibrary()
{
    QFETCH(QString, file);
    QFETCH(QString, set);
    QFETCH(QString, code);
    QFETCH(QString, result);
    QFETCH(QString, detail);
    const QString configuration = m_directory.filePath("set.json");
    TestFiles::write(configuration, TestFiles::configOf({QFileInfo(file).completeBaseName()}));
    int exitCode = -1;
    const QJsonObject report = probe(configuration, {QFileInfo(file).path()},
                                     {"--set", set, "--timeout", result == "hung" ? "1" : "50"}, &exitCode);
    QStringList probed;
    for (const QString &found : codes(report)) {
        if (found.startsWith("probe-"))
            probed.append(found);
    }
    QCOMPARE(probed, code.isEmpty() ? QStringList() : QStringList{code});
    const QJsonObject outcome = report["configurations"][0]["plugins"][0]["probe"].toObject();
    QCOMPARE(outcome["result"].toString(), result);
    QVERIFY2(outcome["detail"].toString().startsWith(detail), qPrintable(outcome["detail"].toString()));
    QCOMPARE(exitCode, code.isEmpty() ? 0 : 1);
}

void tst_CheckProbe::oneBadLibraryStopsNoOther()
{
    const QString folder = m_directory.filePath("plugins");
    QVERIFY(QDir().mkpath(folder));
    QFile::copy(CHECKED_DIR "/crashing/Graphic_View.dll", folder + "/Own_Crashing.dll");
    QFile::copy(CHECKED_DIR "/exiting/Graphic_View.dll", folder + "/Own_Exiting.dll");
    QFile::copy(CHECKED_DIR "/talking/Graphic_View.dll", folder + "/Own_Talking.dll");
    const QString configuration = m_directory.filePath("several.json");
    TestFiles::write(configuration, TestFiles::configOf({"Own_Crashing", "Own_Talking", "Own_Exiting"}));
    int exitCode = -1;
    const QJsonObject report = probe(configuration, {folder}, {"--set", "cam", "--jobs", "1"}, &exitCode);
    const QJsonValue plugins = report["configurations"][0]["plugins"];
    QCOMPARE(plugins[0]["probe"]["result"].toString(), QString("crashed"));
    QCOMPARE(plugins[1]["probe"]["result"].toString(), QString("loaded"));
    QCOMPARE(plugins[1]["probe"]["output"].toString(), QString("a word on loading"));
    QCOMPARE(plugins[2]["probe"]["result"].toString(), QString("exited"));
    QCOMPARE(exitCode, 1);
}

/// Behind its first page it is mapped, and touched by the loader.
void tst_CheckProbe::cutOffLibraryIsRefusedAsByTheManager()
{
    const QString folder = m_directory.filePath("cut");
    QVERIFY(QDir().mkpath(folder));
    TestFiles::write(folder + "/Graphic_View.dll",
                     TestFiles::read(FIXTURE_DIR "/sdk_stripped/Graphic_View.dll").left(4096));
    const QString configuration = m_directory.filePath("cut.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    int exitCode = -1;
    const QJsonObject report = probe(configuration, {folder}, {"--set", "cam"}, &exitCode);
    QCOMPARE(codes(report), (QStringList{"library-truncated", "probe-failed"}));
    for (const QJsonValue &finding : report["findings"].toArray())
        QVERIFY(finding["consequence"].toString().endsWith("shows a message box, and goes on."));
    const QString detail = report["configurations"][0]["plugins"][0]["probe"]["detail"].toString();
    QVERIFY2(detail.endsWith("/cut/Graphic_View.dll: file too short)"), qPrintable(detail));
    QCOMPARE(exitCode, 1);
}

/// The names with a prefix come first for a plain library.
void tst_CheckProbe::loadsTheFileThatTheManagerLoads()
{
    const QString folder = m_directory.filePath("names");
    QVERIFY(QDir().mkpath(folder));
    QFile::copy(CHECKED_DIR "/crashing/Graphic_View.dll", folder + "/Graphic_View.dll");
    QFile::copy(CHECKED_DIR "/talking/Graphic_View.dll", folder + "/libGraphic_View.dll.so");
    const QString configuration = m_directory.filePath("names.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    int exitCode = -1;
    const QJsonObject report = probe(configuration, {folder}, {"--set", "cam"}, &exitCode);
    const QJsonValue plugin = report["configurations"][0]["plugins"][0];
    QCOMPARE(plugin["library"].toString(), folder + "/libGraphic_View.dll.so");
    QCOMPARE(plugin["probe"]["output"].toString(), QString("a word on loading"));
    QCOMPARE(exitCode, 0);
}

void tst_CheckProbe::loadsTheToolOfTheFirstFolder()
{
    const QStringList folders{m_directory.filePath("first"), m_directory.filePath("second")};
    const QString configuration = m_directory.filePath("tools.json");
    TestFiles::write(configuration, TestFiles::configOf({"Own_Tool"}));
    for (const QString &folder : folders)
        QVERIFY(QDir().mkpath(folder));
    QFile::copy(FIXTURE_DIR "/desktop/File_Process.dll", folders.at(0) + "/Own_Tool.dll");
    QFile::copy(FIXTURE_DIR "/not_a_plugin_interface/Not_A_Plugin_Interface.dll",
                folders.at(1) + "/Own_Tool.dll");
    const QStringList options{"--set", "desktop", "--qt-plugin-dir"};
    int exitCode = -1;
    const QJsonObject good = probe(
        configuration, {}, options + QStringList{folders.at(0), "--qt-plugin-dir", folders.at(1)}, &exitCode);
    QVERIFY(!codes(good).contains("probe-interface"));
    const QJsonObject bad = probe(
        configuration, {}, options + QStringList{folders.at(1), "--qt-plugin-dir", folders.at(0)}, &exitCode);
    QVERIFY(codes(bad).contains("probe-interface"));
}

/// What a tool needs is not found where Qt finds the tool.
void tst_CheckProbe::libraryPathsAreNoneOfTheLoader()
{
    const QString folder = m_directory.filePath("needy");
    QVERIFY(QDir().mkpath(folder));
    QFile::copy(CHECKED_DIR "/needy_tool/Own_Tool.dll", folder + "/Own_Tool.dll");
    const QString configuration = m_directory.filePath("needy.json");
    TestFiles::write(configuration, TestFiles::configOf({"Own_Tool"}));
    const QString needed = QStringLiteral(CHECKED_DIR "/private");
    int exitCode = -1;
    const QJsonObject unmet =
        probe(configuration, {}, {"--set", "desktop", "--qt-plugin-dir", folder, "--qt-plugin-dir", needed},
              &exitCode);
    QVERIFY(codes(unmet).contains("needed-missing"));
    QVERIFY(codes(unmet).contains("probe-failed"));
    const QJsonObject met =
        probe(configuration, {needed}, {"--set", "desktop", "--qt-plugin-dir", folder}, &exitCode);
    QVERIFY(!codes(met).contains("needed-missing"));
    QVERIFY(!codes(met).contains("probe-failed"));
    QCOMPARE(met["configurations"][0]["plugins"][0]["probe"]["result"].toString(), QString("loaded"));
}

void tst_CheckProbe::managerIsLoadedAsInAHost()
{
    const QString configuration = m_directory.filePath("manager.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    int exitCode = -1;
    const QJsonObject report =
        probe(configuration, {CHECKED_DIR "/of_manager", MANAGER_DIR}, {"--set", "cam"}, &exitCode);
    QCOMPARE(codes(report), QStringList());
    QCOMPARE(report["configurations"][0]["plugins"][0]["probe"]["result"].toString(), QString("loaded"));
}

void tst_CheckProbe::managerThatIsNotFoundIsNoFault_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("left to the host") << "of_manager";
    QTest::newRow("linked to it") << "linked_to_manager";
}

void tst_CheckProbe::managerThatIsNotFoundIsNoFault()
{
    QFETCH(QString, folder);
    const QString configuration = m_directory.filePath("manager.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    int exitCode = -1;
    const QJsonObject report = probe(configuration, {CHECKED_DIR "/" + folder}, {"--set", "cam"}, &exitCode);
    QCOMPARE(codes(report), QStringList());
    QVERIFY(leftOut(report).contains("Graphic_View was not probed: it uses the manager's library, which was "
                                     "not found. Name its folder by --library-dir."));
    QVERIFY(report["configurations"][0]["plugins"][0]["probe"].isUndefined());
    QCOMPARE(exitCode, 0);
}

void tst_CheckProbe::processThatIsNotReadyIsNoFault_data()
{
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QString>("result");
    QTest::newRow("no platform") << ""
                                 << "";
    QTest::newRow("minimal platform alone") << "minimal"
                                            << "loaded";
    QTest::newRow("offscreen platform alone") << "offscreen"
                                              << "loaded";
}

/// As with a host's own Qt that has not all of its plug-ins.
void tst_CheckProbe::processThatIsNotReadyIsNoFault()
{
    QFETCH(QString, platform);
    QFETCH(QString, result);
    const QTemporaryDir own;
    QVERIFY(QDir(own.path()).mkpath("plugins/platforms"));
    const QString file = QStringLiteral("platforms/libq%1.so").arg(platform);
    if (!platform.isEmpty())
        QVERIFY(QFile::link(QLibraryInfo::location(QLibraryInfo::PluginsPath) + '/' + file,
                            own.filePath("plugins/" + file)));
    QVERIFY(QFile::copy(PLUGINCHECK, own.filePath("plugincheck")));
    TestFiles::write(own.filePath("qt.conf"), "[Paths]\nPlugins=" + own.filePath("plugins").toUtf8() + '\n');
    const QString configuration = m_directory.filePath("platform.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    int exitCode = -1;
    const QJsonObject report = probe(configuration, {CHECKED_DIR "/good"}, {"--set", "cam"}, &exitCode,
                                     {own.filePath("plugincheck")});
    QCOMPARE(codes(report), QStringList());
    QCOMPARE(report["configurations"][0]["plugins"][0]["probe"]["result"].toString(), result);
    const QString said = leftOut(report).join('\n');
    QCOMPARE(
        said.startsWith("Libraries were not probed: the process for it crashed before the load, signal 6, "),
        platform.isEmpty());
    QCOMPARE(said.contains(" It wrote: "), platform.isEmpty());
    QCOMPARE(exitCode, 0);
}

void tst_CheckProbe::noPlaceForTemporaryFilesIsNoFault()
{
    const QString configuration = m_directory.filePath("nowhere.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    int exitCode = -1;
    const QJsonObject report = probe(configuration, {CHECKED_DIR "/good"}, {"--set", "cam"}, &exitCode,
                                     {PLUGINCHECK, "TMPDIR", "/proc"});
    QCOMPARE(codes(report), QStringList());
    const QString said = leftOut(report).join('\n');
    QVERIFY2(said.startsWith("Libraries were not probed, as there is no place for temporary files: "),
             qPrintable(said));
    QCOMPARE(exitCode, 0);
}

/// What it needs is in the process already, for a reason that the file does not tell.
void tst_CheckProbe::whatLoadsIsNotCalledUnloadable()
{
    const QString configuration = m_directory.filePath("preloaded.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    const QStringList folders{CHECKED_DIR "/needy"};
    int exitCode = -1;
    const QJsonObject without = probe(configuration, folders, {"--set", "cam"}, &exitCode);
    QCOMPARE(codes(without), (QStringList{"needed-missing", "probe-failed"}));
    QCOMPARE(exitCode, 1);
    const QJsonObject with = probe(configuration, folders, {"--set", "cam"}, &exitCode,
                                   {PLUGINCHECK, "LD_PRELOAD", CHECKED_DIR "/private/libprivate.so"});
    QCOMPARE(codes(with), QStringList());
    QCOMPARE(leftOut(with), QStringList{"needed-missing of Graphic_View, which loaded when it was probed."});
    QCOMPARE(with["configurations"][0]["plugins"][0]["state"].toString(), QString("good"));
    QCOMPARE(exitCode, 0);
}

/// A name can have what a terminal takes for a command.
void tst_CheckProbe::progressShowsNoNameAsItIs()
{
    const QString name = QStringLiteral("Own_\u009b31mView");
    const QString folder = m_directory.filePath("progress");
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(QFile::copy(CHECKED_DIR "/good/Graphic_View.dll", folder + '/' + name + ".dll"));
    const QString configuration = m_directory.filePath("progress.json");
    TestFiles::write(configuration, TestFiles::configOf({name}));
    QFile terminal;
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
    QVERIFY(terminal.open(master, QIODevice::ReadOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C.UTF-8");
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(QString::fromLocal8Bit(ptsname(master)));
    process.start(PLUGINCHECK, {configuration, "--set", "cam", "--library-dir", folder, "--probe"});
    QVERIFY(process.waitForFinished(60000));
    const QByteArray shown = terminal.read(4096);
    QVERIFY2(shown.contains("Probing 1 of 1: Own_"), shown.constData());
    QVERIFY2(!shown.contains(QStringLiteral("\u009b").toUtf8()), shown.constData());
}

/// The first library takes longest to crash.
void tst_CheckProbe::findingsComeInTheOrderOfTheList()
{
    const QString folder = m_directory.filePath("order");
    QVERIFY(QDir().mkpath(folder));
    const QStringList names{"Own_Later", "Own_Aborting", "Own_Exiting"};
    QFile::copy(CHECKED_DIR "/crashing_later/Graphic_View.dll", folder + "/Own_Later.dll");
    QFile::copy(CHECKED_DIR "/aborting/Graphic_View.dll", folder + "/Own_Aborting.dll");
    QFile::copy(CHECKED_DIR "/exiting/Graphic_View.dll", folder + "/Own_Exiting.dll");
    const QString configuration = m_directory.filePath("order.json");
    TestFiles::write(configuration, TestFiles::configOf(names));
    int exitCode = -1;
    const QJsonObject report =
        probe(configuration, {folder}, {"--set", "cam", "--jobs", "3", "--timeout", "50"}, &exitCode);
    QStringList found;
    for (const QJsonValue &finding : report["findings"].toArray()) {
        if (finding["code"].toString().startsWith("probe-"))
            found.append(finding["plugin"].toString());
    }
    QCOMPARE(found, names);
}

void tst_CheckProbe::whatALibraryStartsEndsWithIt()
{
    const QString configuration = m_directory.filePath("forking.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    int exitCode = -1;
    const QJsonObject report =
        probe(configuration, {CHECKED_DIR "/forking"}, {"--set", "cam", "--timeout", "5"}, &exitCode);
    QCOMPARE(codes(report), QStringList{"probe-hung"});
    const int started = report["configurations"][0]["plugins"][0]["probe"]["output"].toString().toInt();
    QVERIFY(started > 0);
    QTRY_VERIFY(hasEnded(started));
}

void tst_CheckProbe::nothingIsLeftOfAProbeThatIsEnded_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("hang up") << SIGHUP;
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("kill") << SIGKILL;
}

void tst_CheckProbe::nothingIsLeftOfAProbeThatIsEnded()
{
    QFETCH(int, signal);
    const QString configuration = m_directory.filePath("ended.json");
    TestFiles::write(configuration, TestFiles::configOf({"Graphic_View"}));
    const QTemporaryDir temporary;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", temporary.path());
    process.setProcessEnvironment(environment);
    process.start(PLUGINCHECK, {configuration, "--set", "cam", "--probe", "--timeout", "600", "--library-dir",
                                CHECKED_DIR "/hanging"});
    QVERIFY(process.waitForStarted());
    const qint64 parent = process.processId();
    QTRY_VERIFY_WITH_TIMEOUT(!childrenOf(parent).isEmpty(), 60000);
    const QList<qint64> children = childrenOf(parent);
    QCOMPARE(::kill(pid_t(parent), signal), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), signal);
    for (const qint64 child : children)
        QTRY_VERIFY(hasEnded(child));
    // Nobody can tidy up after this one.
    const bool isTidy = signal != SIGKILL;
    QCOMPARE(QDir(temporary.path()).isEmpty(), isTidy);
}

int main(int argc, char **argv)
{
    return runTest<tst_CheckProbe>(argc, argv);
}

#include "tst_checkprobe.moc"

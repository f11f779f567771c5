#include "ConfigurationChecks.h"
#include "LibraryChecks.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>
#include <QtCore/QTemporaryDir>

using namespace PluginCheck;

namespace {

using Change = QByteArray (*)(QByteArray);

/// A library of a set under test: a file, perhaps changed, under the name of a plug-in.
struct Library
{
    QString name;
    QString source;
    Change change = nullptr;
};

QByteArray replaced(QByteArray content, const char *before, const char *after)
{
    if (!content.contains(before))
        qFatal("there is no %s", before);
    return content.replace(before, after);
}

const QString good = QStringLiteral(CHECKED_DIR "/good/Graphic_View.dll");
const QString tool = QStringLiteral(FIXTURE_DIR "/desktop/File_Process.dll");

}
Q_DECLARE_METATYPE(Library)
Q_DECLARE_METATYPE(PluginCheck::Set)

/// What is said of libraries that are read and not loaded.
class tst_CheckLibraries : public QObject
{
    Q_OBJECT

private slots:
    void findsFault_data();
    void findsFault();
    void acceptsTwin_data();
    void acceptsTwin();
    void missingLibraryNamesLikeOnes();
    void misspelledFactoryIsNamed();
    void agreesWithTheLoader_data();
    void agreesWithTheLoader();
    void cutOffLibraryIsAlwaysTold_data();
    void cutOffLibraryIsAlwaysTold();
    void oddOneOutIsOfAnotherMachine();
    void hugeFileIsReadWhereItCounts();
    void sectionsFarBehindAreFound();
    void toolsAreLookedForWhereQtDoes();
    void neededLibrariesAreLookedForWhereTheLoaderDoes();
    void fileIsTheOneThatQtFinds_data();
    void fileIsTheOneThatQtFinds();
    void nameWithAFolderIsLeftOut();
    void managerThatIsNotFoundIsLeftOut_data();
    void managerThatIsNotFoundIsLeftOut();

private:
    Report check(const QVector<Library> &libraries, Set set, const QStringList &directories = {});
    Report checkIn(const QStringList &libraryDirectories, const QStringList &toolDirectories, Set set,
                   const QStringList &names);

    std::unique_ptr<QTemporaryDir> m_directory;
};

Report tst_CheckLibraries::check(const QVector<Library> &libraries, Set set, const QStringList &directories)
{
    m_directory = std::make_unique<QTemporaryDir>();
    QStringList names;
    for (const Library &library : libraries) {
        names.append(library.name);
        if (library.source.isEmpty())
            continue;
        const QByteArray content = TestFiles::read(library.source);
        TestFiles::write(m_directory->filePath(library.name + ".dll"),
                         library.change ? library.change(content) : content);
    }
    const QStringList all = QStringList{m_directory->path()} + directories;
    return checkIn(all, all, set, names);
}

Report tst_CheckLibraries::checkIn(const QStringList &libraryDirectories, const QStringList &toolDirectories,
                                   Set set, const QStringList &names)
{
    Report report;
    const QVector<Configuration> configurations{
        *parseConfiguration("set.json", set, TestFiles::configOf(names), report)};
    checkConfigurations(configurations, report);
    checkLibraries(configurations, LibrarySearch(libraryDirectories, toolDirectories), report);
    report.finish();
    return report;
}

namespace {

QStringList found(const Report &report)
{
    QStringList lines;
    for (const Finding &finding : report.findings())
        lines.append(QStringLiteral("%1 %2").arg(checkOf(finding.code).name, finding.plugin));
    return lines;
}

}

void tst_CheckLibraries::findsFault_data()
{
    QTest::addColumn<Library>("library");
    QTest::addColumn<Set>("set");
    QTest::addColumn<QStringList>("directories");
    QTest::addColumn<QString>("code");
    const auto row = [](const char *name, const Library &library, const char *code, Set set = Set::Cam,
                        const QStringList &directories = {}) {
        QTest::newRow(name) << library << set << directories << QString(code);
    };
    const QString checked = QStringLiteral(CHECKED_DIR);
    const QString view = QStringLiteral("Graphic_View");
    row("missing", {view, {}}, "library-missing");
    row("other capitals", {view, {}}, "library-case", Set::Cam, {checked + "/case"});
    row("text", {view, good, [](QByteArray) { return QByteArray("not a library"); }}, "library-format");
    row("empty", {view, good, [](QByteArray) { return QByteArray(); }}, "library-format");
    row("program", {view, good, [](QByteArray content) { return content.replace(16, 1, "\2"); }},
        "library-format");
    row("cut off",
        {view, QStringLiteral(FIXTURE_DIR "/sdk_stripped/Graphic_View.dll"),
         [](QByteArray content) { return content.left(content.size() / 3); }},
        "library-truncated");
    row("header alone", {view, good, [](QByteArray content) { return content.left(30); }},
        "library-truncated");
    row("segments nowhere",
        {view, good, [](QByteArray content) { return content.replace(32, 8, QByteArray(8, '\x7f')); }},
        "library-damaged");
    row("without factory", {view, checked + "/without_factory/Graphic_View.dll"}, "factory-missing");
    row("variable instead of a factory", {view, checked + "/data_factory/Graphic_View.dll"},
        "factory-missing");
    row("variable instead of an entry point", {view, checked + "/data_entry_point/Graphic_View.dll"},
        "entry-point-missing");
    row("misspelled factory", {view, checked + "/misspelled_factory/Graphic_View.dll"}, "factory-missing");
    row("factory of C++", {view, checked + "/cpp_factory/Graphic_View.dll"}, "factory-missing");
    row("without entry point", {view, checked + "/without_entry_point/Graphic_View.dll"},
        "entry-point-missing");
    row("plain library as tool", {"File_Process", good}, "qt-plugin-missing", Set::Desktop);
    row("needed library missing",
        {"Needy", QStringLiteral(FIXTURE_DIR "/missing_needed_library/Missing_Needed_Library.dll")},
        "needed-missing");
    row("used by nobody", {"Nobody_Asks", checked + "/unused/Nobody_Asks.dll"}, "name-unused");
    row("newer Qt",
        {"File_Process", tool,
         [](QByteArray content) {
             const int at = int(content.indexOf("QTMETADATA !"));
             return content.replace(at + 14, 1, "\x63");
         }},
        "qt-version", Set::Desktop);
    row("next Qt",
        {"File_Process", tool,
         [](QByteArray content) {
             const int at = int(content.indexOf("QTMETADATA !"));
             return content.replace(at + 13, 1, "\6");
         }},
        "qt-version", Set::Desktop);
    row("other record",
        {view, QStringLiteral(FIXTURE_DIR "/sdk/Graphic_View.dll"),
         [](QByteArray content) { return replaced(content, ";record=40:", ";record=48:"); }},
        "abi-stamp");
    row("stamp of a newer Qt",
        {view, QStringLiteral(FIXTURE_DIR "/sdk/Graphic_View.dll"),
         [](QByteArray content) { return replaced(content, ";qt=5.15.", ";qt=5.99."); }},
        "qt-version");
    if (!QByteArray(SANITIZED).toInt())
        row("undefined function",
            {"Undefined", QStringLiteral(FIXTURE_DIR "/undefined_symbol/Undefined_Symbol.dll")},
            "symbol-missing");
    row("newer version of a library", {view, checked + "/versioned/Graphic_View.dll"}, "symbol-version",
        Set::Cam, {checked + "/older"});
    row("program of any address", {view, checked + "/program/Graphic_View.dll"}, "library-format");
    row("library that forbids to be loaded", {view, checked + "/unopenable/Graphic_View.dll"},
        "library-format");
    if (!QByteArray(SANITIZED).toInt()) {
        row("undefined function in what it needs", {view, checked + "/needy/Graphic_View.dll"},
            "symbol-missing", Set::Cam, {checked + "/private_undefined"});
        row("needed library without a name, which is the program",
            {view, checked + "/needy/Graphic_View.dll",
             [](QByteArray content) { return content.replace("libprivate.so", QByteArray(13, '\0')); }},
            "symbol-missing");
    }
#ifdef HAS_PE_FIXTURES
    row("DLL with a variable instead of a factory", {view, checked + "/pe_data_factory/Graphic_View.dll"},
        "factory-missing");
    row("DLL that needs one with an older helper", {view, checked + "/pe_indirect/Graphic_View.dll"},
        "symbol-missing", Set::Cam, {checked + "/pe_using_newer", checked + "/pe_older"});
    row("DLL without factory", {view, checked + "/pe_without_factory/Graphic_View.dll"}, "factory-missing");
    row("DLL cut off",
        {view, checked + "/pe/Graphic_View.dll", [](QByteArray content) { return content.left(1000); }},
        "library-truncated");
    row("DLL without what it needs", {view, checked + "/pe/Graphic_View.dll"}, "needed-missing");
    row("DLL that needs one that may be of Windows", {view, checked + "/pe_unknown/Graphic_View.dll"},
        "needed-unknown");
    row("DLL that passes on to what is nowhere", {view, checked + "/pe_forwarding/Graphic_View.dll"},
        "factory-missing");
    row("DLL with an older helper", {view, checked + "/pe_helped/Graphic_View.dll"}, "symbol-missing",
        Set::Cam, {checked + "/pe_older"});
#endif
}

void tst_CheckLibraries::findsFault()
{
    QFETCH(Library, library);
    QFETCH(Set, set);
    QFETCH(QStringList, directories);
    QFETCH(QString, code);
    if (code == "library-case") {
        QDir().mkpath(directories.first());
        QFile::copy(good, directories.first() + "/graphic_view.dll");
    }
    const Report report = check({library}, set, directories);
    QStringList codes;
    for (const QString &line : found(report))
        codes.append(line);
    // An undefined function or a library that is missing leaves a library that nobody asks for, too.
    codes.removeAll("name-unused " + library.name);
    if (code == "name-unused")
        codes.append("name-unused " + library.name);
    QCOMPARE(codes, QStringList{code + ' ' + library.name});
    const Finding &finding = report.findings().last();
    QCOMPARE(finding.configuration, QStringLiteral("set.json"));
    const bool isInConfiguration = code == "library-missing";
    QCOMPARE(finding.place.line > 0, isInConfiguration);
    QCOMPARE(finding.file == "set.json", isInConfiguration);
    QCOMPARE(exitStatus(report, true), 1);
    QCOMPARE(exitStatus(report, false), report.count(Severity::Error) > 0 ? 1 : 0);
}

void tst_CheckLibraries::acceptsTwin_data()
{
    QTest::addColumn<Library>("library");
    QTest::addColumn<Set>("set");
    QTest::addColumn<QStringList>("directories");
    const auto row = [](const char *name, const Library &library, Set set = Set::Cam,
                        const QStringList &directories = {}) {
        QTest::newRow(name) << library << set << directories;
    };
    const QString checked = QStringLiteral(CHECKED_DIR);
    row("plain library", {"Graphic_View", good});
    row("tool", {"File_Process", tool}, Set::Desktop);
    row("with a stamp", {"Graphic_View", QStringLiteral(FIXTURE_DIR "/sdk/Graphic_View.dll")});
    row("stripped", {"Graphic_View", QStringLiteral(FIXTURE_DIR "/sdk_stripped/Graphic_View.dll")});
    row("without a table of sections",
        {"Graphic_View", good, [](QByteArray content) {
             return content.replace(40, 8, QByteArray(8, '\0')).replace(58, 6, QByteArray(6, '\0'));
         }});
    row("stamp of a later format",
        {"Graphic_View", QStringLiteral(FIXTURE_DIR "/sdk/Graphic_View.dll"),
         [](QByteArray content) { return replaced(content, "pluginMangerAbi=1;", "pluginMangerAbi=2;"); }});
    row("that nobody asks for, but can have messages", {"Nobody_Asks", checked + "/good/Nobody_Asks.dll"});
    row("exports in what it needs",
        {"ORVIK-GraphicEditor", QStringLiteral(FIXTURE_DIR "/hollow/ORVIK-GraphicEditor.dll")});
    row("version of a library that is there", {"Graphic_View", checked + "/versioned/Graphic_View.dll"},
        Set::Cam, {checked + "/newer"});
    row("needed library in a folder of the call", {"Needy", QStringLiteral(FIXTURE_DIR "/broken/Needy.dll")},
        Set::Cam, {QStringLiteral(FIXTURE_DIR "/elsewhere")});
    row("with what it needs", {"Graphic_View", checked + "/needy/Graphic_View.dll"}, Set::Cam,
        {checked + "/private"});
    row("with functions of the manager", {"Graphic_View", checked + "/of_manager/Graphic_View.dll"}, Set::Cam,
        {QStringLiteral(MANAGER_DIR)});
    row("with a text like a stamp", {"Graphic_View", checked + "/two_stamps/Graphic_View.dll"});
    row("tool with a text like a description", {"Own_Tool", checked + "/two_descriptions/Own_Tool.dll"},
        Set::Desktop);
#ifdef HAS_PE_FIXTURES
    row("DLL with a library that it needs", {"Graphic_View", checked + "/pe_indirect/Graphic_View.dll"},
        Set::Cam, {checked + "/pe_using_newer", checked + "/pe_newer"});
    row("DLL", {"Graphic_View", checked + "/pe/Graphic_View.dll"}, Set::Cam, {checked + "/pe"});
    row("DLL that needs one of Windows", {"Graphic_View", checked + "/pe_known/Graphic_View.dll"});
    row("DLL that passes on", {"Graphic_View", checked + "/pe_forwarding/Graphic_View.dll"}, Set::Cam,
        {checked + "/pe_newer"});
    row("DLL with its helper", {"Graphic_View", checked + "/pe_helped/Graphic_View.dll"}, Set::Cam,
        {checked + "/pe_newer"});
#endif
}

void tst_CheckLibraries::acceptsTwin()
{
    QFETCH(Library, library);
    QFETCH(Set, set);
    QFETCH(QStringList, directories);
    if (library.name == "Needy")
        library.source = QStringLiteral(FIXTURE_DIR "/missing_needed_library/Missing_Needed_Library.dll");
    const Report report = check({library}, set, directories);
    QStringList lines = found(report);
    if (library.name == "Needy")
        lines.removeAll("name-unused Needy");
    QCOMPARE(lines, QStringList());
    QVERIFY(report.configurations.first().plugins.first().library.endsWith(library.name + ".dll"));
}

void tst_CheckLibraries::missingLibraryNamesLikeOnes()
{
    const Report report =
        check({{"Graphic_View", {}}}, Set::Cam, {QStringLiteral(FIXTURE_DIR "/sdk_stripped")});
    QCOMPARE(found(report), QStringList());
    const Report missing = check({{"Matrix", {}}, {"Matrx", good}}, Set::Cam);
    const auto finding =
        std::find_if(missing.findings().begin(), missing.findings().end(),
                     [](const Finding &candidate) { return candidate.code == Code::LibraryMissing; });
    QVERIFY(finding != missing.findings().end());
    QCOMPARE(finding->advice, QStringLiteral("Did you mean \"Matrx.dll\"?"));
    QCOMPARE(finding->message,
             QStringLiteral("There is no file \"Matrix.dll\" in %1.").arg(m_directory->path()));
}

void tst_CheckLibraries::misspelledFactoryIsNamed()
{
    const Report misspelled = check(
        {{"Graphic_View", QStringLiteral(CHECKED_DIR "/misspelled_factory/Graphic_View.dll")}}, Set::Cam);
    QVERIFY(misspelled.findings().first().advice.startsWith("It exports GetVeiwInstance."));
    const Report ofCpp =
        check({{"Graphic_View", QStringLiteral(CHECKED_DIR "/cpp_factory/Graphic_View.dll")}}, Set::Cam);
    QCOMPARE(ofCpp.findings().first().advice,
             QStringLiteral("It is there as a C++ function. Declare it extern \"C\"."));
}

void tst_CheckLibraries::agreesWithTheLoader_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("faults");
    QStringList files;
    QVector<Library> libraries;
    QDirIterator found(FIXTURE_DIR, {"*.dll"}, QDir::Files, QDirIterator::Subdirectories);
    while (found.hasNext()) {
        const QString file = found.next();
        // Those of Windows this loader does not know, and these end or stop the process, or need a host.
        const QString folder = QFileInfo(file).dir().dirName();
        if (folder.startsWith("pe")
            || QStringList{"crashing", "crashing_later", "aborting", "hanging", "forking", "exiting",
                           "throwing", "case", "of_manager"}
                   .contains(folder))
            continue;
        libraries.append({QStringLiteral("Own_%1").arg(files.size()), file});
        files.append(file);
    }

    const QVector<Code> unloadable{Code::LibraryFormat,  Code::LibraryTruncated, Code::LibraryDamaged,
                                   Code::LibraryMachine, Code::NeededMissing,    Code::SymbolMissing,
                                   Code::SymbolVersion};
    QHash<QString, QStringList> faults;
    const Report report = check(libraries, Set::Cam);
    for (const Finding &finding : report.findings()) {
        if (unloadable.contains(finding.code))
            faults[finding.plugin].append(checkOf(finding.code).name + (": " + finding.message));
    }
    for (int i = 0; i < files.size(); ++i)
        QTest::newRow(qPrintable(files[i].mid(int(qstrlen(FIXTURE_DIR)) + 1)))
            << files[i] << faults.value(libraries[i].name);
}

/// What the loader loads is not called unloadable, and the other way round.
void tst_CheckLibraries::agreesWithTheLoader()
{
    QFETCH(QString, file);
    QFETCH(QStringList, faults);
    QLibrary library(file);
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    const bool loads = library.load();
    QVERIFY2(faults.isEmpty() == loads, qPrintable(faults.join(", ") + ' ' + library.errorString()));
    library.unload();
}

void tst_CheckLibraries::cutOffLibraryIsAlwaysTold_data()
{
    QTest::addColumn<int>("percent");
    for (const int percent : {1, 5, 25, 50, 75})
        QTest::addRow("%d percent", percent) << percent;
}

void tst_CheckLibraries::cutOffLibraryIsAlwaysTold()
{
    QFETCH(int, percent);
    const QByteArray whole = TestFiles::read(QStringLiteral(FIXTURE_DIR "/sdk_stripped/Graphic_View.dll"));
    const LibraryFile file = readLibrary(whole.left(whole.size() * percent / 100));
    QCOMPARE(file.problem, LibraryFile::Problem::Truncated);
}

void tst_CheckLibraries::oddOneOutIsOfAnotherMachine()
{
    const auto arm = [](QByteArray content) { return content.replace(18, 2, QByteArray("\xb7\0", 2)); };
    const Report report = check({{"Graphic_View", good},
                                 {"Own_One", QStringLiteral(CHECKED_DIR "/good/Nobody_Asks.dll")},
                                 {"Own_Two", QStringLiteral(CHECKED_DIR "/good/Nobody_Asks.dll"), arm}},
                                Set::Cam);
    QCOMPARE(found(report), QStringList{"library-machine Own_Two"});
    QVERIFY(report.findings().first().message.startsWith(
        "The library is ELF for ARM 64, and 2 of 3 are ELF for "));
#ifdef HAS_PE_FIXTURES
    const QString pe = QStringLiteral(CHECKED_DIR "/pe");
    const Report builds = check({{"Graphic_View", pe + "/Graphic_View.dll"},
                                 {"Graphic_MiniMap", pe + "/Graphic_MiniMap.dll"},
                                 {"Graphic_Tips", QStringLiteral(CHECKED_DIR "/pe_debug/Graphic_Tips.dll")}},
                                Set::Cam, {pe, QStringLiteral(CHECKED_DIR "/pe_debug")});
    QCOMPARE(found(builds), QStringList{"qt-build Graphic_Tips"});
#endif
}

/// They take no place on the disk, as they are mostly holes.
void tst_CheckLibraries::hugeFileIsReadWhereItCounts()
{
    const qint64 huge = 1024 * 1024 * 1024 + qint64(1);
    const QTemporaryDir directory;
    const QString file = directory.filePath("Graphic_View.dll");
    const auto grow = [&](const QByteArray &content) {
        TestFiles::write(file, content);
        QVERIFY(QFile::resize(file, huge));
    };
    grow("x");
    QCOMPARE(found(check({{"Graphic_View", {}}}, Set::Cam, {directory.path()})),
             QStringList{"library-format Graphic_View"});

    const QByteArray content = TestFiles::read(good);
    grow(content);
    const Report padded = check({{"Graphic_View", {}}}, Set::Cam, {directory.path()});
    QCOMPARE(found(padded), QStringList());
    QCOMPARE(padded.leftOut(), QStringList());

    const auto length = quint64(huge);
    constexpr int lengthOfFirstSegment = 64 + 32;
    grow(QByteArray(content).replace(lengthOfFirstSegment, 8, reinterpret_cast<const char *>(&length), 8));
    const Report full = check({{"Graphic_View", {}}}, Set::Cam, {directory.path()});
    QCOMPARE(found(full), QStringList());
    QCOMPARE(full.leftOut(),
             QStringList{file + ": It is too large to be checked: more than 1 GiB of it counts."});
}

/// As where tables for debuggers lie between them and what is loaded.
void tst_CheckLibraries::sectionsFarBehindAreFound()
{
    const QByteArray content = TestFiles::read(tool);
    const LibraryFile near = readLibrary(content);
    QVERIFY(near.exportsAreComplete && near.isQtPlugin);
    const QTemporaryDir directory;
    const QString path = directory.filePath("File_Process.dll");
    TestFiles::write(path, content);
    const quint64 hole = quint64(1024) * 1024 * 1024;
    const quint64 before = qFromLittleEndian<quint64>(content.constData() + 40);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    const quint64 after = before + hole;
    QVERIFY(file.seek(40) && file.write(reinterpret_cast<const char *>(&after), 8) == 8);
    QVERIFY(file.seek(qint64(after)) && file.write(content.mid(int(before))) > 0);
    file.close();

    const LibraryFile far = readLibrary(path);
    QCOMPARE(far.problem, LibraryFile::Problem::None);
    QVERIFY(far.exportsAreComplete);
    QVERIFY(far.isQtPlugin);
    QCOMPARE(far.qtPluginVersion, near.qtPluginVersion);
    QVERIFY(far.exports == near.exports);
    QCOMPARE(far.imports.size(), near.imports.size());
}

void tst_CheckLibraries::toolsAreLookedForWhereQtDoes()
{
    const QTemporaryDir empty;
    const QString tools = QFileInfo(tool).path();
    const QStringList names{"File_Process"};
    QCOMPARE(found(checkIn({}, {empty.path(), tools}, Set::Desktop, names)), QStringList());
    const Report report = checkIn({tools}, {empty.path()}, Set::Desktop, names);
    QCOMPARE(found(report), QStringList{"library-missing File_Process"});
    QCOMPARE(report.findings().first().message,
             QStringLiteral("There is no file \"File_Process.dll\" in %1.").arg(empty.path()));
    QVERIFY(report.findings().first().advice.contains("--qt-plugin-dir"));
    QCOMPARE(found(checkIn({QFileInfo(good).path()}, {empty.path()}, Set::Cam, {"Graphic_View"})),
             QStringList());
}

void tst_CheckLibraries::neededLibrariesAreLookedForWhereTheLoaderDoes()
{
    const QString needy = QStringLiteral(FIXTURE_DIR "/missing_needed_library");
    const QString needed = QStringLiteral(FIXTURE_DIR "/elsewhere");
    const QString missing("needed-missing Missing_Needed_Library");
    const QStringList names{"Missing_Needed_Library"};
    QVERIFY(found(checkIn({}, {needy, needed}, Set::Desktop, names)).contains(missing));
    QVERIFY(!found(checkIn({needed}, {needy}, Set::Desktop, names)).contains(missing));
}

void tst_CheckLibraries::fileIsTheOneThatQtFinds_data()
{
    QTest::addColumn<Set>("set");
    QTest::addColumn<QStringList>("files");
    const auto row = [](const char *name, Set set, const QStringList &files) {
        QTest::newRow(name) << set << files;
    };
    // The first is what is found.
    row("library, all names", Set::Cam,
        {"libGraphic_View.dll.so", "libGraphic_View.dll", "Graphic_View.dll.so", "Graphic_View.dll"});
    row("library, names in a later folder", Set::Cam, {"later/libGraphic_View.dll.so", "Graphic_View.dll"});
    row("library with the suffix", Set::Cam, {"Graphic_View.dll.so", "Graphic_View.dll"});
    row("tool, all names", Set::Desktop,
        {"File_Process.dll", "File_Process.dll.so", "libFile_Process.dll", "libFile_Process.dll.so"});
    row("tool, names in a later folder", Set::Desktop, {"libFile_Process.dll.so", "later/File_Process.dll"});
    row("tool with the suffix", Set::Desktop, {"File_Process.dll.so", "libFile_Process.dll"});
}

void tst_CheckLibraries::fileIsTheOneThatQtFinds()
{
    QFETCH(Set, set);
    QFETCH(QStringList, files);
    const bool isTool = set == Set::Desktop;
    const QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkdir("later"));
    for (const QString &file : files)
        QVERIFY(QFile::copy(isTool ? tool : good, directory.filePath(file)));
    const QStringList directories{directory.path(), directory.filePath("later")};
    const Report report = checkIn(directories, directories, set, {isTool ? "File_Process" : "Graphic_View"});
    QCOMPARE(found(report), QStringList());
    QCOMPARE(report.configurations.first().plugins.first().library, directory.filePath(files.first()));
    if (!isTool)
        return; // Where the loader looks cannot be changed in a process; the probe's test does it in one.
    const QStringList before = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths(directories);
    const QString fileOfQt = QPluginLoader("File_Process.dll").fileName();
    QCoreApplication::setLibraryPaths(before);
    QCOMPARE(fileOfQt, directory.filePath(files.first()));
}

void tst_CheckLibraries::nameWithAFolderIsLeftOut()
{
    const QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkdir("sub"));
    QVERIFY(QFile::copy(good, directory.filePath("sub/Graphic_View.dll")));
    const Report plain = checkIn({directory.path()}, {}, Set::Cam, {"sub/Graphic_View"});
    QCOMPARE(plain.configurations.first().plugins.first().library, QString());
    QCOMPARE(plain.leftOut().size(), 1);
    QVERIFY(plain.leftOut().first().contains("the host's working directory"));
    const Report ofTool = checkIn({}, {directory.path()}, Set::Desktop, {"sub/Graphic_View"});
    QCOMPARE(ofTool.configurations.first().plugins.first().library,
             directory.filePath("sub/Graphic_View.dll"));
}

/// The host has it already, and need not find it where it finds plug-ins.
void tst_CheckLibraries::managerThatIsNotFoundIsLeftOut_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("left to the host") << "of_manager";
    QTest::newRow("linked to it") << "linked_to_manager";
}

void tst_CheckLibraries::managerThatIsNotFoundIsLeftOut()
{
    QFETCH(QString, folder);
    const QString file = QStringLiteral(CHECKED_DIR "/%1/Graphic_View.dll").arg(folder);
    const Report without = check({{"Graphic_View", file}}, Set::Cam);
    QCOMPARE(found(without), QStringList());
    QCOMPARE(without.leftOut(),
             QStringList{"What plug-ins use of the manager's library was not looked at, as it was not found: "
                         "name its folder by --library-dir."});
    const Report with = check({{"Graphic_View", file}}, Set::Cam, {QStringLiteral(MANAGER_DIR)});
    QCOMPARE(found(with), QStringList());
    QCOMPARE(with.leftOut(), QStringList());
}

int main(int argc, char **argv)
{
    return runTest<tst_CheckLibraries>(argc, argv);
}

#include "tst_checklibraries.moc"

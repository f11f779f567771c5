#include "ConfigurationChecks.h"
#include "LibraryChecks.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QLibrary>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <cstdio>

using namespace PluginCheck;

namespace {

constexpr char loadOption[] = "--load";

/// A file of a set under test.
struct File
{
    enum class Kind { Library, OtherMachine, Changed, Link, Folder, Text };

    QString path;
    /// What is copied, or what a link points to.
    QString source;
    Kind kind = Kind::Library;
    /// For a changed one, which byte has which value.
    int byte = 0;
    char value = 0;
};

const QString name = QStringLiteral("Graphic_View.dll");

/// A plug-in of the set of which nothing is expected but that it loads.
const QString good = QStringLiteral(CHECKED_DIR "/good/Graphic_View.dll");
const QString privateLibrary = QStringLiteral(CHECKED_DIR "/private/libprivate.so");

QString checked(const char *folder)
{
    return QStringLiteral(CHECKED_DIR "/%1/Graphic_View.dll").arg(QLatin1String(folder));
}

void put(const File &file, const QTemporaryDir &directory)
{
    const QString path = directory.filePath(file.path);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    const auto write = [&](int byte, char value) {
        TestFiles::write(path, TestFiles::read(file.source).replace(byte, 1, QByteArray(1, value)));
    };
    switch (file.kind) {
    case File::Kind::Library:
        QVERIFY(QFile::copy(file.source, path));
        break;
    case File::Kind::OtherMachine:
        write(18, '\xf3');
        break;
    case File::Kind::Changed:
        write(file.byte, file.value);
        break;
    case File::Kind::Link:
        QVERIFY(QFile::link(file.source, path));
        break;
    case File::Kind::Folder:
        QVERIFY(QDir().mkpath(path));
        break;
    case File::Kind::Text:
        TestFiles::write(path, "no library\n");
        break;
    }
}

/// Why the loader refuses the plug-in when it looks in these folders; nothing if it loads.
QString refusal(const QStringList &folders)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString before = environment.value("LD_LIBRARY_PATH");
    environment.insert("LD_LIBRARY_PATH",
                       (before.isEmpty() ? folders : folders + QStringList{before}).join(':'));
    environment.insert("ASAN_OPTIONS", "detect_leaks=0");
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {loadOption, name});
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return QStringLiteral("the process ended early");
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

/// What runs in that process.
int load(const QString &fileName)
{
    QLibrary library(fileName);
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (!library.load())
        std::puts(qPrintable(library.errorString()));
    std::fflush(stdout);
    std::_Exit(0);
}

}
Q_DECLARE_METATYPE(QVector<File>)

/// What is said of a set of files, compared with what the loader does with the same files.
class tst_CheckLibrarySets : public QObject
{
    Q_OBJECT

private slots:
    void agreesWithTheLoader_data();
    void agreesWithTheLoader();

private:
    void names();
    void places();
    void versions();
    void headers();
};

namespace {

void row(const char *rowName, const QVector<File> &files, const QStringList &codes = {})
{
    QTest::newRow(rowName) << files << codes;
}

const QStringList missing{"needed-missing"};

}

void tst_CheckLibrarySets::agreesWithTheLoader_data()
{
    QTest::addColumn<QVector<File>>("files");
    QTest::addColumn<QStringList>("codes");
    names();
    places();
    versions();
    headers();
}

void tst_CheckLibrarySets::names()
{
    using Kind = File::Kind;
    row("one file", {{"first/Graphic_View.dll", good}});
    row("text under a name that comes first",
        {{"first/libGraphic_View.dll.so", {}, Kind::Text}, {"first/Graphic_View.dll", good}});
    row("text under a name that comes last",
        {{"first/libGraphic_View.dll", good}, {"first/Graphic_View.dll", {}, Kind::Text}});
    row("text in the first folder",
        {{"first/Graphic_View.dll", {}, Kind::Text}, {"second/Graphic_View.dll", good}}, {"library-format"});
    row("other machine in the first folder",
        {{"first/Graphic_View.dll", good, Kind::OtherMachine}, {"second/Graphic_View.dll", good}});
    row("other machine under a name that comes first",
        {{"first/libGraphic_View.dll", good, Kind::OtherMachine}, {"second/Graphic_View.dll", good}});
    row("folder in the first folder",
        {{"first/Graphic_View.dll", {}, Kind::Folder}, {"second/Graphic_View.dll", good}},
        {"library-unreadable"});
    row("folder under a name that comes first",
        {{"first/libGraphic_View.dll", {}, Kind::Folder}, {"second/Graphic_View.dll", good}});
    row("link to nothing in the first folder",
        {{"first/Graphic_View.dll", "nothing", Kind::Link}, {"second/Graphic_View.dll", good}});
    row("without what it needs under a name that comes first",
        {{"first/libGraphic_View.dll", checked("needy")}, {"first/Graphic_View.dll", good}});
    row("without what it needs in the first folder",
        {{"first/Graphic_View.dll", checked("needy")}, {"second/Graphic_View.dll", good}}, missing);
}

void tst_CheckLibrarySets::places()
{
    using Kind = File::Kind;
    const File origin{"first/Graphic_View.dll", checked("needy_origin")};
    row("needed in a folder",
        {{"first/Graphic_View.dll", checked("needy")}, {"second/libprivate.so", privateLibrary}});
    row("needed nowhere", {{"first/Graphic_View.dll", checked("needy")}}, missing);
    row("runpath", {origin, {"first/private/libprivate.so", privateLibrary}});
    row("rpath", {{"first/Graphic_View.dll", checked("needy_rpath")},
                  {"first/private/libprivate.so", privateLibrary}});
    const QVector<File> link{{"first/Graphic_View.dll", "../store/Graphic_View.dll", Kind::Link},
                             {"store/Graphic_View.dll", checked("needy_origin")}};
    row("link, and what it needs beside its target",
        link + QVector<File>{{"store/private/libprivate.so", privateLibrary}}, missing);
    row("link, and what it needs beside the link",
        link + QVector<File>{{"first/private/libprivate.so", privateLibrary}});
    row("link to what is needed", {origin,
                                   {"first/private/libprivate.so", "../../store/libprivate.so", Kind::Link},
                                   {"store/libprivate.so", privateLibrary}});
    const QVector<File> text{{"first/Graphic_View.dll", checked("needy")},
                             {"second/libprivate.so", privateLibrary}};
    row("needed is a text", text + QVector<File>{{"first/libprivate.so", {}, Kind::Text}}, missing);
    row("needed is a folder", text + QVector<File>{{"first/libprivate.so", {}, Kind::Folder}}, missing);
    row("needed is for another machine",
        text + QVector<File>{{"first/libprivate.so", privateLibrary, Kind::OtherMachine}});
    row("needed is of another byte order",
        text + QVector<File>{{"first/libprivate.so", privateLibrary, Kind::Changed, 5, 2}}, missing);
    row("without the system's folders",
        {{"first/Graphic_View.dll", checked("needy_nowhere")}, {"first/libprivate.so", privateLibrary}},
        missing);
#ifdef Q_PROCESSOR_X86_64
    for (const char *folder : {"lib", "lib64", "lib/x86_64-linux-gnu"}) {
        const QString place =
            QLatin1String("first/") + QLatin1String(folder) + QLatin1String("/libprivate.so");
        // Which one it is depends on the system.
        QTest::addRow("$LIB is %s", folder)
            << QVector<File>{{"first/Graphic_View.dll", checked("needy_lib")}, {place, privateLibrary}}
            << QStringList{"either"};
    }
    row("$PLATFORM", {{"first/Graphic_View.dll", checked("needy_platform")},
                      {"first/haswell/libprivate.so", privateLibrary},
                      {"first/x86_64/libprivate.so", privateLibrary}});
    for (const char *level : {"x86-64-v2", "x86-64-v3", "x86-64-v4"}) {
        const QString place = QStringLiteral("first/glibc-hwcaps/%1/libprivate.so").arg(QLatin1String(level));
        QTest::addRow("only for %s", level)
            << QVector<File>{{"first/Graphic_View.dll", checked("needy")}, {place, privateLibrary}}
            << QStringList{"either"};
    }
#endif
}

void tst_CheckLibrarySets::versions()
{
    const auto versioned = [](const char *folder) {
        return File{"first/libversioned.so", QStringLiteral(CHECKED_DIR "/%1/libversioned.so").arg(folder)};
    };
    const File plugin{"first/Graphic_View.dll", checked("versioned")};
    row("version that is there", {plugin, versioned("newer")});
    row("version that is not there", {plugin, versioned("older")}, {"symbol-version"});
    row("function in another version", {plugin, versioned("moved")}, {"symbol-missing"});
    const QVector<File> middle{
        {"first/Graphic_View.dll", checked("needy")},
        {"first/libprivate.so", QStringLiteral(CHECKED_DIR "/private_versioned/libprivate.so")}};
    row("version for what it needs that is there", middle + QVector<File>{versioned("newer")});
    row("version for what it needs that is not there", middle + QVector<File>{versioned("older")},
        {"symbol-version"});
    row("function for what it needs in another version", middle + QVector<File>{versioned("moved")},
        {"symbol-missing"});
}

void tst_CheckLibrarySets::headers()
{
    struct Change
    {
        const char *name;
        int byte;
        char value;
        const char *code;
    };
    const Change changes[] = {
        {"no magic", 0, 0, "library-format"},
        {"32 bits", 4, 1, "library-damaged"},
        {"unknown word size", 4, 7, "library-damaged"},
        {"big endian", 5, 2, "library-damaged"},
        {"unknown byte order", 5, 7, "library-damaged"},
        {"version of the format", 6, 2, "library-damaged"},
        {"for another system", 7, 9, "library-damaged"},
        {"for this system by name", 7, 3, nullptr},
        {"version of the system", 8, 9, "library-damaged"},
        {"padding", 9, 1, "library-damaged"},
        {"last of the padding", 15, 1, "library-damaged"},
        {"version in the header", 20, 2, "library-damaged"},
        {"flags", 48, 1, nullptr},
        {"size of the header", 52, 1, nullptr},
        {"size of an entry of the segments", 54, 1, "library-damaged"},
        {"segments out of order", 64 + 2 * 56 + 16 + 7, 2, "library-damaged"},
        {"more than memory has", 64 + 3 * 56 + 16 + 6, 1, "library-damaged"},
        {"address out of step with the file", 64 + 16, 1, "library-damaged"},
    };
    for (const Change &change : changes) {
        row(change.name, {{"first/Graphic_View.dll", good, File::Kind::Changed, change.byte, change.value}},
            change.code ? QStringList{change.code} : QStringList());
    }
}

void tst_CheckLibrarySets::agreesWithTheLoader()
{
    QFETCH(QVector<File>, files);
    QFETCH(QStringList, codes);
    const QTemporaryDir directory;
    for (const File &file : files)
        put(file, directory);
    const QStringList folders{directory.filePath("first"), directory.filePath("second")};

    Report report;
    const QVector<Configuration> configurations{
        *parseConfiguration("set.json", Set::Cam, TestFiles::configOf({"Graphic_View"}), report)};
    checkConfigurations(configurations, report);
    checkLibraries(configurations, LibrarySearch(folders, {}), report);
    QStringList found;
    QStringList messages;
    for (const Finding &finding : report.findings()) {
        found.append(checkOf(finding.code).name);
        messages.append(finding.message);
    }
    const QString reason = refusal(folders);
    QVERIFY2(found.isEmpty() == reason.isEmpty(), qPrintable(reason + '\n' + messages.join('\n')));
    if (codes != QStringList{"either"})
        QVERIFY2(found == codes, qPrintable(found.join(' ') + '\n' + messages.join('\n') + '\n' + reason));
}

int main(int argc, char **argv)
{
    if (argc == 3 && qstrcmp(argv[1], loadOption) == 0)
        return load(QString::fromLocal8Bit(argv[2]));
    return runTest<tst_CheckLibrarySets>(argc, argv);
}

#include "tst_checklibrarysets.moc"

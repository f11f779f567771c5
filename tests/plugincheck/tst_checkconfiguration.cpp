#include "ConfigurationChecks.h"
#include "Dependencies.h"
#include "Names.h"
#include "TextReport.h"
#include "debuglines.h"
#include "openbase.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVector>

#include <algorithm>
#include <ctime>

using namespace PluginCheck;

namespace {

Report check(const QByteArray &json, Set set)
{
    Report report;
    QVector<Configuration> configurations;
    std::optional<Configuration> configuration = parseConfiguration("set.json", set, json, report);
    if (configuration)
        configurations.append(*configuration);
    checkConfigurations(configurations, report);
    report.finish();
    return report;
}

/// The findings as "code line:column plugin".
QStringList found(const Report &report)
{
    QStringList lines;
    for (const Finding &finding : report.findings())
        lines.append(QStringLiteral("%1 %2:%3 %4")
                         .arg(checkOf(finding.code).name)
                         .arg(finding.place.line)
                         .arg(finding.place.column)
                         .arg(finding.plugin)
                         .trimmed());
    return lines;
}

QByteArray list(const QByteArray &entries)
{
    return QByteArray("{\"pluginList\": [\n") + entries + "\n]}";
}

}

Q_DECLARE_METATYPE(PluginCheck::Set)

/// What is said of configuration files.
class tst_CheckConfiguration : public QObject
{
    Q_OBJECT

private slots:
    void findsFault_data();
    void findsFault();
    void acceptsTwin_data();
    void acceptsTwin();
    void nameIsJudgedByWhatTheLibrariesAreFor_data();
    void nameIsJudgedByWhatTheLibrariesAreFor();
    void tellsWhatTheManagerDoes_data();
    void tellsWhatTheManagerDoes();
    void schemaMistakeTellsWhatTheManagerMakesOfIt_data();
    void schemaMistakeTellsWhatTheManagerMakesOfIt();
    void nothingAsVersionEqualsNothingAlone();
    void syntaxErrorShowsItsLine();
    void caretStandsUnderItsPlace_data();
    void caretStandsUnderItsPlace();
    void syntaxErrorHasItsPlaceAndAdvice_data();
    void syntaxErrorHasItsPlaceAndAdvice();
    void textsSayWhatIsThere_data();
    void textsSayWhatIsThere();
    void nameThatIsNoTextIsNotToBeListed();
    void cycleHasItsWholeWay();
    void everyDependencyInACircleIsTold_data();
    void everyDependencyInACircleIsTold();
    void manyCirclesAreNotAllTold();
    void dfmDependencyOnTheCamSetIsMet();
    void reportsWhatIsRefused_data();
    void reportsWhatIsRefused();
    void agreesWithTheManagersCheck();
    void findsNamesByTheirDistance();
    void manyEntriesTakeShort_data();
    void manyEntriesTakeShort();
    void deepNestingIsRefused();
    void moreFindingsThanListedAreCounted();
    void statesComeFromAllFindings();
};

void tst_CheckConfiguration::findsFault_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<Set>("set");
    QTest::addColumn<QStringList>("expected");
    const auto cam = [](const char *name, const char *entries, const QStringList &expected) {
        QTest::newRow(name) << list(entries) << Set::Cam << expected;
    };
    QTest::newRow("not JSON") << list(R"({"name": "Matrix", "version": "1"},)") << Set::Cam
                              << QStringList{"config-syntax 2:35"};
    QTest::newRow("empty file") << QByteArray() << Set::Cam << QStringList{"config-syntax 1:1"};
    QTest::newRow("UTF-16") << QByteArray("{\0}\0", 4) << Set::Cam << QStringList{"config-syntax 1:2"};
    QTest::newRow("an array as root") << QByteArray("[]") << Set::Cam << QStringList{"config-list 1:1"};
    QTest::newRow("list misspelled") << QByteArray("{\"pluginlist\": []}") << Set::Cam
                                     << QStringList{"config-list 1:1"};
    QTest::newRow("list is no array")
        << QByteArray("{\"pluginList\": {}}") << Set::Cam << QStringList{"config-list 1:16"};
    QTest::newRow("list is empty") << QByteArray("{\"pluginList\": []}") << Set::Cam
                                   << QStringList{"config-empty 1:16"};
    cam("unknown key", R"({"name": "Matrix", "version": "1", "dependancies": []})",
        {"config-schema 2:36 Matrix"});
    cam("several mistakes in one entry",
        R"({"name": "Matrix", "verion": "1", "dependancies": [], "dependencies": 1, "x": 1})",
        {"config-schema 2:71 Matrix", "config-schema 2:20 Matrix", "config-schema 2:35 Matrix",
         "config-schema 2:74 Matrix", "config-schema 2:1 Matrix"});
    cam("several mistakes in an entry without a name", R"({"verion": "1", "x": 1})",
        {"name-empty 2:1", "config-schema 2:2", "config-schema 2:17", "config-schema 2:1"});
    cam("unknown keys of a dependency",
        R"({"name": "Matrix", "version": "1", "dependencies": [{"name": "Graphic_View", "version": "1", "x": 1,
        "name ": 2}]}, {"name": "Graphic_View", "version": "1"})",
        {"config-schema 2:94 Matrix", "config-schema 3:9 Matrix"});
    cam("unknown key in a list that is lost",
        R"({"name": "Matrix", "version": "1", "dependencies": [{"x": 1}], "dependencies": []})",
        {"duplicate-key 2:64 Matrix"});
    cam("no version", R"({"name": "Matrix"})", {"config-schema 2:1 Matrix"});
    cam("dependency without version",
        R"({"name": "Matrix", "version": "1", "dependencies": [{"name": "X"}]})",
        {"dependency-missing 2:62 Matrix", "config-schema 2:53 Matrix"});
    cam("dependency without version on what is listed",
        R"({"name": "Matrix", "version": "1", "dependencies": [{"name": "Graphic_View"}]},
        {"name": "Graphic_View", "version": "1"})",
        {"dependency-version 2:53 Matrix", "config-schema 2:53 Matrix"});
    cam("dependency without name",
        R"({"name": "Matrix", "version": "1", "dependencies": [{"version": "1"}]})",
        {"dependency-missing 2:53 Matrix"});
    cam("dependency that is no object", R"({"name": "Matrix", "version": "1", "dependencies": [1]})",
        {"dependency-missing 2:53 Matrix"});
    cam("name of a folder", R"({"name": "..", "version": "1"})", {"name-path 2:10 .."});
    cam("name like that of a desktop tool", R"({"name": "Toolbar_Select", "version": "1"})",
        {"name-near-miss 2:10 Toolbar_Select"});
    cam("key twice", R"({"name": "Matrix", "version": "1", "version": "2"})", {"duplicate-key 2:36 Matrix"});
    cam("key twice, once escaped", R"({"name": "Matrix", "version": "1", "\u0076ersion": "2"})",
        {"duplicate-key 2:36 Matrix"});
    QTest::newRow("list twice") << QByteArray(
        "{\"pluginList\": [{\"name\": \"Graphic_Veiw\", \"version\": \"1\"}],\n"
        " \"pluginList\": [{\"name\": \"Matrix\", \"version\": \"1\"}]}")
                                << Set::Cam << QStringList{"duplicate-key 2:2"};
    cam("name twice",
        "{\"name\": \"Matrix\", \"version\": \"1\"},\n{\"name\": \"Matrix\", \"version\": \"2\"}",
        {"duplicate-name 2:10 Matrix"});
    cam("empty name", R"({"name": "", "version": "1"})", {"name-empty 2:10"});
    cam("entry is no object", "7", {"name-empty 2:1"});
    cam("name with suffix", R"({"name": "Matrix.dll", "version": "1"})", {"name-suffix 2:10 Matrix.dll"});
    cam("name with folder", R"({"name": "a/Matrix", "version": "1"})", {"name-path 2:10 a/Matrix"});
    QTest::newRow("name with NUL") << list(R"({"name": "Matrix\u0000", "version": "1"})") << Set::Cam
                                   << QStringList{QStringLiteral("name-control 2:10 Matrix") + QChar(0)};
    cam("name with a blank at its end", R"({"name": "Matrix ", "version": "1"})",
        {"name-unusual 2:10 Matrix"});
    cam("name with a character that joins others", R"({"name": "X\u200dY", "version": "1"})",
        {QString::fromUtf8("name-unusual 2:10 X\xe2\x80\x8dY")});
    cam("name with a character of one font", R"({"name": "P\ue123", "version": "1"})",
        {QString::fromUtf8("name-unusual 2:10 P\xee\x84\xa3")});
    cam("name with a character of the Tag block", R"({"name": "T\udb40\udc41", "version": "1"})",
        {QString::fromUtf8("name-unusual 2:10 T\xf3\xa0\x81\x81")});
    cam("name with other capitals", R"({"name": "MATRIX", "version": "1"})", {"name-near-miss 2:10 MATRIX"});
    cam("name with letters swapped", R"({"name": "Graphic_Veiw", "version": "1"})",
        {"name-near-miss 2:10 Graphic_Veiw"});
    cam("name of a desktop tool", R"({"name": "File_Process", "version": "1"})",
        {"name-near-miss 2:10 File_Process"});
    QTest::newRow("desktop tool with other capitals")
        << list(R"({"name": "Toolbar_Select", "version": "1"})") << Set::Desktop
        << QStringList{"name-near-miss 2:10 Toolbar_Select"};
    cam("number as version", R"({"name": "Matrix", "version": 2})", {"version-type 2:31 Matrix"});
    cam("number required",
        "{\"name\": \"Matrix\", \"version\": \"2\"},\n"
        "{\"name\": \"Graphic_View\", \"version\": \"1\", \"dependencies\": [{\"name\": \"Matrix\", "
        "\"version\": 2}]}",
        {"version-type 3:89 Graphic_View"});
    cam("dependency missing",
        R"({"name": "Matrix", "version": "1", "dependencies": [{"name": "Matirx", "version": "1"}]})",
        {"dependency-missing 2:62 Matrix"});
    cam("dependency of another version",
        "{\"name\": \"Matrix\", \"version\": \"2\"},\n"
        "{\"name\": \"Graphic_View\", \"version\": \"1\", \"dependencies\": [{\"name\": \"Matrix\", "
        "\"version\": \"2.0\"}]}",
        {"dependency-version 3:89 Graphic_View"});
    cam("dependency on itself",
        R"({"name": "Matrix", "version": "1", "dependencies": [{"name": "Matrix", "version": "1"}]})",
        {"dependency-self 2:62 Matrix"});
    cam("cycle",
        "{\"name\": \"Matrix\", \"version\": \"1\", \"dependencies\": [{\"name\": \"Graphic_View\", "
        "\"version\": \"1\"}]},\n"
        "{\"name\": \"Graphic_View\", \"version\": \"1\", \"dependencies\": [{\"name\": \"Matrix\", "
        "\"version\": \"1\"}]}",
        {"dependency-cycle 2:62 Matrix"});
    QTest::newRow("dependency in the DFM file") << list(
        R"({"name": "DFM_MenuBar_View", "version": "1", "dependencies": [{"name": "X", "version": "1"}]})")
                                                << Set::Dfm
                                                << QStringList{"dependency-ignored 2:72 DFM_MenuBar_View"};
}

void tst_CheckConfiguration::findsFault()
{
    QFETCH(QByteArray, json);
    QFETCH(Set, set);
    QFETCH(QStringList, expected);
    const Report report = check(json, set);
    QStringList wanted;
    for (const QString &line : expected)
        wanted.append(line);
    QCOMPARE(found(report), wanted);
    const Severity severity = checkOf(report.findings().first().code).severity;
    QCOMPARE(exitStatus(report, false), severity == Severity::Error ? 1 : 0);
    QCOMPARE(exitStatus(report, true), severity == Severity::Note ? 0 : 1);
    for (const Finding &finding : report.findings()) {
        QVERIFY(!finding.message.isEmpty());
        QVERIFY(!finding.consequence.isEmpty());
        QVERIFY(!finding.advice.isEmpty());
    }
}

void tst_CheckConfiguration::acceptsTwin_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<Set>("set");
    const auto cam = [](const char *name, const char *entries) {
        QTest::newRow(name) << list(entries) << Set::Cam;
    };
    cam("JSON", R"({"name": "Matrix", "version": "1"})");
    QTest::newRow("with a byte order mark")
        << QByteArray("\xef\xbb\xbf") + list(R"({"name": "Matrix", "version": "1"})") << Set::Cam;
    cam("all keys", R"({"name": "Matrix", "version": "1", "dependencies": []})");
    cam("key of another object",
        R"({"name": "Matrix", "version": "1"}, {"name": "Graphic_View", "version": "1"})");
    QTest::newRow("something else in the root")
        << QByteArray(R"({"comment": {"pluginList": 1}, "pluginList": [{"name": "Matrix", "version": "1"}]})")
        << Set::Cam;
    cam("name that nothing asks for, and like none", R"({"name": "Own_Things", "version": "1"})");
    cam("name of rare Chinese letters", R"({"name": "\ud840\udc0b\u4e2d \u6587", "version": "1"})");
    cam("name like another that is listed, too",
        R"({"name": "Graphic_View", "version": "1"}, {"name": "Graphic_View2", "version": "1"})");
    QTest::newRow("desktop tool") << list(R"({"name": "ToolBar_Select", "version": "1"})") << Set::Desktop;
    cam("name of both managers", R"({"name": "ListBar_PNList", "version": "1"})");
    cam("dependencies met",
        R"({"name": "Matrix", "version": "1", "dependencies": [{"name": "Graphic_View", "version": "1"}]},
           {"name": "Graphic_MiniMap", "version": "1", "dependencies": [{"name": "Matrix", "version": "1"},
            {"name": "Graphic_View", "version": "1"}]}, {"name": "Graphic_View", "version": "1"})");
    QTest::newRow("dependency met in the DFM file") << list(R"({"name": "DFM_MenuBar_View", "version": "1",
                    "dependencies": [{"name": "DFM_MenuBar_Edit", "version": "1"}]},
                   {"name": "DFM_MenuBar_Edit", "version": "1"})")
                                                    << Set::Dfm;
}

void tst_CheckConfiguration::acceptsTwin()
{
    QFETCH(QByteArray, json);
    QFETCH(Set, set);
    const Report report = check(json, set);
    QCOMPARE(found(report), QStringList());
    QCOMPARE(exitStatus(report, true), 0);
}

void tst_CheckConfiguration::nameIsJudgedByWhatTheLibrariesAreFor_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("onLinux");
    QTest::addColumn<QString>("onWindows");
    const auto row = [](const char *name, const char *onLinux, const char *onWindows) {
        QTest::newRow(name) << QString(name) << QString(onLinux) << QString(onWindows);
    };
    row("C:Own", "name-unusual", "name-path");
    row("own\\Own", "name-unusual", "name-path");
    row("own/Own", "name-path", "name-path");
    row("..", "name-path", "name-path");
    row(" Own", "name-unusual", "name-unusual");
    row("Own\t", "name-control", "name-control");
    row("Own Things", "", "");
}

void tst_CheckConfiguration::nameIsJudgedByWhatTheLibrariesAreFor()
{
    QFETCH(QString, name);
    const QByteArray json = TestFiles::configOf({name});
    const auto codeFor = [&](LibraryFile::Format format) {
        Report report;
        checkConfigurations({*parseConfiguration("set.json", Set::Cam, json, report)}, report, format);
        const QVector<Finding> findings = report.findings();
        return findings.isEmpty() ? QString() : QString(checkOf(findings.first().code).name);
    };
    QTEST(codeFor(LibraryFile::Format::Elf), "onLinux");
    QTEST(codeFor(LibraryFile::Format::Pe), "onWindows");
}

void tst_CheckConfiguration::tellsWhatTheManagerDoes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("consequence");
    QTest::newRow("as listed")
        << "Matrix"
        << "The manager loads the plug-in all the same: it looks dependencies up under "
           "\"Matrix.dll\", and the list has \"Matrix\".";
    QTest::newRow("under the file name")
        << "Matrix.dll"
        << "The manager refuses to load \"Matrix\": it looks dependencies up under the file name "
           "\"Matrix.dll\", which is this entry.";
}

/// A dependency counts for the manager only in an entry that has the file's name.
void tst_CheckConfiguration::tellsWhatTheManagerDoes()
{
    QFETCH(QString, name);
    QFETCH(QString, consequence);
    QJsonArray entries{TestFiles::entry(name, "1", {TestFiles::dependency("Absent", "1")})};
    if (name.endsWith(".dll"))
        entries.append(TestFiles::entry("Matrix", "1"));
    const QByteArray json = TestFiles::config(entries);
    const Report report = check(json, Set::Cam);
    const auto finding =
        std::find_if(report.findings().begin(), report.findings().end(),
                     [](const Finding &candidate) { return candidate.code == Code::DependencyMissing; });
    QVERIFY(finding != report.findings().end());
    QCOMPARE(finding->consequence, consequence);

    QTemporaryDir directory;
    TestFiles::write(directory.filePath("set.json"), json);
    const DebugLines lines;
    QTPluginsMangerPrivate tables;
    OpenBase().readPluginConfig(tables, directory.filePath("set.json"));
    QCOMPARE(tables.check("Matrix.dll"), !name.endsWith(".dll"));
}

void tst_CheckConfiguration::schemaMistakeTellsWhatTheManagerMakesOfIt_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const char *dependency, const QStringList &expected) {
        QTest::newRow(name) << list("{\"name\": \"5\", \"version\": \"1\"}, {\"name\": \"A\"},\n"
                                    "{\"name\": \"B.dll\", \"version\": \"1\"},\n"
                                    "{\"name\": \"C\", \"version\": \"1\", \"dependencies\": ["
                                    + QByteArray(dependency) + "]}")
                            << expected;
    };
    row("number as name that the list has as a text", R"({"name": 5, "version": "1"})",
        {"The value of \"name\" has the wrong type. The manager compares it by conversion. The list has an "
         "entry of this name, and the manager takes that one."});
    row("name with a suffix that the list has", R"({"name": "B.dll", "version": "1"})",
        {"The name has a suffix \".dll\" or a folder in it. The list has an entry of this name, and the "
         "manager "
         "takes that one."});
    row("no version, as in the list", R"({"name": "A"})",
        {"The key \"version\" is missing. The version is nothing, which equals the one that the list has: "
         "that "
         "is nothing, too."});
    row("no version, unlike the list", R"({"name": "5"})",
        {"The key \"version\" is missing. The version is nothing, which does not equal the one that the list "
         "has."});
    row("no version of what is not listed", R"({"name": "D"})",
        {"The key \"version\" is missing. The version is nothing, which equals only a version that is "
         "nothing, "
         "too."});
    QTest::newRow("entry that another takes the place of")
        << list(R"({"name": "A", "version": "1", "dependencies": [{"name": "a/B.dll", "version": "1"}]},
        {"name": "A"})")
        << QStringList{
               "The name has a suffix \".dll\" or a folder in it. None: another entry of this name stands "
               "later, and counts."};
}

void tst_CheckConfiguration::schemaMistakeTellsWhatTheManagerMakesOfIt()
{
    QFETCH(QByteArray, json);
    QFETCH(QStringList, expected);
    const Report report = check(json, Set::Cam);
    QStringList told;
    for (const Finding &finding : report.findings()) {
        if (finding.code == Code::ConfigSchema)
            told.append(finding.message + ' ' + finding.consequence);
    }
    // The entry "A" has no version.
    QVERIFY(
        told.removeOne("The key \"version\" is missing. The version is nothing, which equals only a version "
                       "that is nothing, too."));
    QCOMPARE(told, expected);
}

void tst_CheckConfiguration::nothingAsVersionEqualsNothingAlone()
{
    const DebugLines lines;
    QTemporaryDir directory;
    const auto holds = [&](const QByteArray &version) {
        const QByteArray json = list(
            "{\"name\": \"A\"}, {\"name\": \"B.dll\", \"dependencies\": [{\"name\": \"A\"" + version + "}]}");
        TestFiles::write(directory.filePath("set.json"), json);
        QTPluginsMangerPrivate tables;
        OpenBase().readPluginConfig(tables, directory.filePath("set.json"));
        return tables.check("B.dll");
    };
    QVERIFY(holds(""));
    for (const char *version : {"\"\"", "\"1\"", "0", "1.5", "true", "false", "null", "[]", "{}", "[1]"})
        QVERIFY2(!holds(QByteArray(", \"version\": ") + version), version);
}

void tst_CheckConfiguration::syntaxErrorShowsItsLine()
{
    const Report report = check("{\n\t\"pluginList\": [ 'x' ]\n}", Set::Cam);
    QCOMPARE(found(report), QStringList{"config-syntax 2:18"});
    QCOMPARE(report.findings().first().source, QStringLiteral(" \"pluginList\": [ 'x' ]"));
    QCOMPARE(report.findings().first().sourceColumn, 18);
    QCOMPARE(report.findings().first().advice, QStringLiteral("Texts stand in double quotes."));
}

void tst_CheckConfiguration::caretStandsUnderItsPlace_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("cells");
    QTest::newRow("letters") << "abc" << 3;
    QTest::newRow("Chinese") << QString::fromUtf8("电路板，") << 8;
    QTest::newRow("rare Chinese") << QString::fromUtf8("\xf0\xa0\x80\x8b") << 2;
    QTest::newRow("Korean") << QString::fromUtf8("한") << 2;
    QTest::newRow("accent of its own") << QString::fromUtf8("e\xcc\x81") << 1;
}

void tst_CheckConfiguration::caretStandsUnderItsPlace()
{
    QFETCH(QString, before);
    QFETCH(int, cells);
    const Report report = check("[\"" + before.toUtf8() + "\" 1]", Set::Cam);
    const QStringList lines = textReport(report, false).split('\n');
    QCOMPARE(lines.at(2), QString(11, ' ') + "| [\"" + before + "\" 1]");
    QCOMPARE(lines.at(3), QString(11, ' ') + "| " + QString(cells + 4, ' ') + '^');
}

void tst_CheckConfiguration::syntaxErrorHasItsPlaceAndAdvice_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("advice");
    const auto row = [](const char *json, const char *place, const char *advice) {
        QTest::newRow(json) << QByteArray(json) << QString(place) << QString(advice);
    };
    row(R"({"pluginList":[{"name":"G","version":"1",}]})", "1:41", "Take this comma out");
    row("{\"pluginList\": [{\"name\": \"G\"},\n  ]  }", "1:30", "Take this comma out");
    row("[1,,2]", "1:4", "Take this comma out, or write what should stand before it.");
    row("[,1]", "1:2", "Take this comma out, or write what should stand before it.");
    row("{\"a\": 1,, \"b\": 2}", "1:9", "Take this comma out, or write what should stand before it.");
    row(R"({"pluginList":[{"name":"G"}{"name":"H"}]})", "1:28", "Write a comma before this place");
    row("[\"a\"  \"b\"]", "1:7", "Write a comma before this place");
    row(R"({"pluginList":[{"name":"G" "version":"1"}]})", "1:28", "Write a comma before this place");
    row("{\"pluginList\": [\n", "2:1", "The file ends too early.");
    row("{\"pluginList\": [{\"name\": \"G\"}", "1:30", "The file ends too early.");
    row("{\"pluginList\": [],", "1:19", "The file ends too early.");
    row("{\"a\":", "1:6", "The file ends too early.");
    row(R"({"pluginList" []})", "1:15", "Write a colon");
    row(R"({"pluginList": [{"name": "G}]})", "1:26", "The text that begins here has no end.");
    row("{ // all\n}", "1:3", "JSON has no comments.");
    row("[1, /* two */ 3]", "1:5", "JSON has no comments.");
    row("{'pluginList': []}", "1:2", "Texts stand in double quotes.");
    row(R"({"pluginList": [}})", "1:17", "This closes something else");
    row(R"({"pluginList": []}})", "1:19", "The file goes on behind its end.");
    row("{pluginList: []}", "1:2", "Write a key in double quotes");
    row("[yes]", "1:2", "Look at this place");
    row("[ nan ]", "1:3", "Look at this place");
    row("[ NaN ]", "1:3", "Look at this place");
    row("[ +1 ]", "1:3", "Look at this place");
    row("[ 01 ]", "1:3", "Look at this place");
    row("[ -01]", "1:3", "Look at this place");
    row("[ 1e999 ]", "1:3", "Look at this place");
    row("[ 1-2 ]", "1:3", "Look at this place");
    row("[0, -0, 1., -.5, 1e5, 1.5E-5, 1 2]", "1:33", "Write a comma before this place");
    row("\"x\"", "1:1", "The text of a set begins with {");
    row(" NaN", "1:2", "The text of a set begins with {");
    row("true", "1:1", "The text of a set begins with {");
    row(R"({"a":})", "1:6", "Look at this place");
    row("\xef\xbb\xbf[1,]", "1:3", "Take this comma out");
    row(" \n", "2:1", "The file is empty.");
    row("[\"\xff\"]", "1:3", "Save the file as UTF-8");
}

void tst_CheckConfiguration::syntaxErrorHasItsPlaceAndAdvice()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, place);
    QFETCH(QString, advice);
    const Report report = check(json, Set::Cam);
    QCOMPARE(found(report), QStringList{"config-syntax " + place});
    QVERIFY2(report.findings().first().advice.startsWith(advice),
             qPrintable(report.findings().first().advice));
}

void tst_CheckConfiguration::textsSayWhatIsThere_data()
{
    QTest::addColumn<QByteArray>("dfm");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("null as version") << list(R"({"name": "X", "version": null})")
                                     << QStringList{
                                            "The version of \"X\" is null, which is no text.",
                                            "Write the version as a text, for example \"version\": \"1.0\"."};
    QTest::newRow("number as version")
        << list(R"({"name": "X", "version": 2})")
        << QStringList{"The version of \"X\" is 2, which is no text.", "Write \"version\": \"2\"."};
    QTest::newRow("in the CAM file of another version")
        << list(R"({"name": "X", "version": "1", "dependencies": [{"name": "Matrix", "version": "2"}]})")
        << QStringList{"\"X\" needs \"Matrix\" \"2\", and the CAM file has version \"1\".",
                       "Correct it, for those who read it."};
    QTest::newRow("twice in one line")
        << list(R"({"name": "X", "version": "1"}, {"name": "X", "version": "1"})")
        << QStringList{"\"X\" is listed again in line 2, column 41.", "Take one of them out."};
    QTest::newRow("twice in two lines")
        << list("{\"name\": \"X\", \"version\": \"1\"},\n{\"name\": \"X\", \"version\": \"1\"}")
        << QStringList{"\"X\" is listed again in line 3.", "Take one of them out."};
}

void tst_CheckConfiguration::textsSayWhatIsThere()
{
    QFETCH(QByteArray, dfm);
    QFETCH(QStringList, texts);
    Report report;
    checkConfigurations(
        {*parseConfiguration("cam.json", Set::Cam, list(R"({"name": "Matrix", "version": "1"})"), report),
         *parseConfiguration("dfm.json", Set::Dfm, dfm, report)},
        report);
    QCOMPARE(report.findings().size(), 1);
    QCOMPARE((QStringList{report.findings().first().message, report.findings().first().advice}), texts);
}

/// Nobody can list a plug-in by such a name.
void tst_CheckConfiguration::nameThatIsNoTextIsNotToBeListed()
{
    const Report report = check(list(R"({"name": "Q", "version": "1", "dependencies": [
        {"name": null, "version": "1"}, {"name": ["5"], "version": "1"}, {"name": {}, "version": "1"}]})"),
                                Set::Cam);
    QStringList messages;
    for (const Finding &finding : report.findings()) {
        messages.append(finding.message);
        QCOMPARE(finding.advice, QString("Name the plug-in that is needed, or take the dependency out."));
    }
    QCOMPARE(messages, (QStringList{"\"Q\" has a dependency whose name is null, which no list has.",
                                    "\"Q\" has a dependency whose name is an array, which no list has.",
                                    "\"Q\" has a dependency whose name is an object, which no list has."}));
}

void tst_CheckConfiguration::cycleHasItsWholeWay()
{
    const auto needs = [](const char *name, const char *other) {
        return TestFiles::entry(name, "1", {TestFiles::dependency(other, "1")});
    };
    const Report report = check(
        TestFiles::config({needs("A", "B"), needs("B", "C"), needs("C", "A"), needs("D", "A")}), Set::Cam);
    QCOMPARE(report.findings().size(), 1);
    QCOMPARE(report.findings().first().message,
             QStringLiteral("The dependencies form a circle: A -> B -> C -> A."));
    QCOMPARE(report.configurations.first().cycles, (QVector<QStringList>{{"A", "B", "C", "A"}}));
    QCOMPARE(QByteArray(report.configurations.first().plugins.last().dependencies.first().state),
             QByteArray("met"));
}

/// Where everything needs everything, looking for all circles would not end.
void tst_CheckConfiguration::manyCirclesAreNotAllTold()
{
    constexpr int count = 200;
    QJsonArray dependencies;
    for (int i = 0; i < count; ++i)
        dependencies.append(TestFiles::dependency(QString::number(i), "1"));
    QJsonArray entries;
    for (int i = 0; i < count; ++i)
        entries.append(TestFiles::entry(QString::number(i), "1", dependencies));
    const Report report = check(TestFiles::config(entries), Set::Cam);
    QCOMPARE(report.configurations.first().cycles.size(), 101);
    QCOMPARE(report.leftOut(), QStringList{"set.json: of many circles of dependencies not all are told"});
}

void tst_CheckConfiguration::everyDependencyInACircleIsTold_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QVector<QStringList>>("cycles");
    QTest::addColumn<QStringList>("expected");
    const auto needs = [](const char *name, const QVector<QPair<const char *, const char *>> &others) {
        QJsonArray dependencies;
        for (const auto &other : others)
            dependencies.append(TestFiles::dependency(other.first, other.second));
        return TestFiles::entry(name, "1", dependencies);
    };
    QTest::newRow("circles that share plug-ins")
        << TestFiles::config({needs("A", {{"B", "1"}, {"C", "1"}}), needs("B", {{"A", "1"}, {"C", "1"}}),
                              needs("C", {{"A", "1"}})})
        << QVector<QStringList>{{"A", "B", "A"}, {"A", "C", "A"}, {"B", "C", "A", "B"}}
        << QStringList{"dependency-cycle A", "dependency-cycle A", "dependency-cycle B"};
    QTest::newRow("with a wrong version")
        << TestFiles::config({needs("A", {{"B", "2"}}), needs("B", {{"A", "1"}})})
        << QVector<QStringList>{{"A", "B", "A"}} << QStringList{"dependency-version A", "dependency-cycle A"};
    QTest::newRow("on itself in another version")
        << TestFiles::config({needs("A", {{"A", "2"}})}) << QVector<QStringList>()
        << QStringList{"dependency-self A"};
}

void tst_CheckConfiguration::everyDependencyInACircleIsTold()
{
    QFETCH(QByteArray, json);
    QFETCH(QVector<QStringList>, cycles);
    QFETCH(QStringList, expected);
    const Report report = check(json, Set::Cam);
    QCOMPARE(report.configurations.first().cycles, cycles);
    QStringList told;
    for (const Finding &finding : report.findings())
        told.append(QLatin1String(checkOf(finding.code).name) + ' ' + finding.plugin);
    QCOMPARE(told, expected);
    const QJsonObject written = report.toJson()["configurations"].toArray().first().toObject();
    for (const QJsonValue &plugin : written["plugins"].toArray())
        QCOMPARE(plugin["state"].toString(), QString("error"));
}

void tst_CheckConfiguration::dfmDependencyOnTheCamSetIsMet()
{
    const QByteArray cam = TestFiles::config({TestFiles::entry("Matrix", "1")});
    const QByteArray dfm = TestFiles::config(
        {TestFiles::entry("DFM_MenuBar_View", "1", {TestFiles::dependency("Matrix", "1")})});
    Report report;
    checkConfigurations({*parseConfiguration("dfm.json", Set::Dfm, dfm, report),
                         *parseConfiguration("cam.json", Set::Cam, cam, report)},
                        report);
    QCOMPARE(found(report), QStringList());
}

void tst_CheckConfiguration::reportsWhatIsRefused_data()
{
    QTest::addColumn<QByteArray>("cam");
    QTest::addColumn<QByteArray>("dfm");
    QTest::addColumn<QStringList>("refused");
    QTest::newRow("for what its entry's dependency needs") << list(R"({"name": "X", "version": "1"},
        {"name": "X.dll", "version": "1", "dependencies": [{"name": "Y", "version": "1"}]},
        {"name": "Y", "version": "1", "dependencies": [{"name": "Z", "version": "1"}]})")
                                                           << list("") << QStringList{"cam.json X"};
    QTest::newRow("for a circle with its own entry")
        << list(R"({"name": "X", "version": "1", "dependencies": [{"name": "X.dll", "version": "1"}]},
        {"name": "X.dll", "version": "1", "dependencies": [{"name": "X", "version": "1"}]})")
        << list("") << QStringList{"cam.json X"};
    QTest::newRow("for an entry of the other set")
        << list(R"({"name": "X.dll", "version": "1", "dependencies": [{"name": "Z", "version": "1"}]})")
        << list(R"({"name": "X", "version": "1"})") << QStringList{"dfm.json X"};
    QTest::newRow("nothing")
        << list(R"({"name": "X", "version": "1", "dependencies": [{"name": "Z", "version": "1"}]},
        {"name": "X.dll", "version": "1"})")
        << list(R"({"name": "X", "version": "1", "dependencies": [{"name": "Z", "version": "1"}]})")
        << QStringList{};
}

void tst_CheckConfiguration::reportsWhatIsRefused()
{
    QFETCH(QByteArray, cam);
    QFETCH(QByteArray, dfm);
    QFETCH(QStringList, refused);
    Report report;
    checkConfigurations({*parseConfiguration("cam.json", Set::Cam, cam, report),
                         *parseConfiguration("dfm.json", Set::Dfm, dfm, report)},
                        report);
    QStringList reported;
    for (const Finding &finding : report.findings()) {
        if (finding.code == Code::PluginRefused)
            reported.append(finding.configuration + ' ' + finding.plugin);
        else if (!refused.isEmpty() && finding.code != Code::NameSuffix && finding.code != Code::ConfigEmpty)
            QVERIFY2(finding.consequence.startsWith("The manager refuses to load \"X\""),
                     qPrintable(finding.consequence));
    }
    QCOMPARE(reported, refused);
}

/// Random sets, some listed under file names, so that the manager does look at their dependencies.
void tst_CheckConfiguration::agreesWithTheManagersCheck()
{
    const DebugLines lines;
    QTemporaryDir directory;
    const QString file = directory.filePath("set.json");
    QRandomGenerator random(20231121);
    const QJsonArray versions{"1", "2.0", 2, 1, true, QJsonValue()};
    const auto version = [&] { return versions.at(int(random.bounded(100)) < 70 ? 0 : random.bounded(6)); };
    const auto name = [&](int count) {
        return QString::number(random.bounded(count)) + (random.bounded(2) ? ".dll" : "");
    };
    const auto randomSet = [&] {
        const int count = 1 + random.bounded(8);
        QJsonArray entries;
        for (int i = 0; i < count; ++i) {
            QJsonArray dependencies;
            for (int j = random.bounded(3); j > 0; --j)
                dependencies.append(TestFiles::dependency(name(count), version()));
            entries.append(TestFiles::entry(name(count), version(), dependencies));
        }
        return TestFiles::config(entries);
    };
    int refused = 0;
    int refusedOfDfm = 0;
    int toldToBeLoaded = 0;
    int toldToBeRefused = 0;
    for (int round = 0; round < 300; ++round) {
        const QByteArray json = randomSet();
        const QByteArray dfm = randomSet();
        TestFiles::write(file, json);
        QTPluginsMangerPrivate tables;
        OpenBase().readPluginConfig(tables, file);

        Report report;
        const QVector<Configuration> configurations{*parseConfiguration("cam.json", Set::Cam, json, report),
                                                    *parseConfiguration("dfm.json", Set::Dfm, dfm, report)};
        const DependencyResults results = checkDependencies(configurations.first());
        for (int i = 0; i < configurations.first().entries.size(); ++i) {
            if (configurations.first().counts(i)
                && results.sound.at(i) != tables.check(configurations.first().entries.at(i).name))
                QFAIL(json + configurations.first().entries.at(i).name.toUtf8());
        }

        // What is told of each plug-in that one of the managers' operations loads.
        checkConfigurations(configurations, report);
        for (const Configuration &configuration : configurations) {
            for (const Entry &entry : configuration.entries) {
                const bool isReported = std::any_of(
                    report.findings().begin(), report.findings().end(), [&](const Finding &finding) {
                        return finding.code == Code::PluginRefused
                               && finding.configuration == configuration.file && finding.plugin == entry.name;
                    });
                if (isReported == tables.check(entry.name + ".dll"))
                    QFAIL(json + dfm + entry.name.toUtf8());
                refused += isReported && configuration.set == Set::Cam ? 1 : 0;
                refusedOfDfm += isReported && configuration.set == Set::Dfm ? 1 : 0;
            }
        }
        for (const Finding &finding : report.findings()) {
            static const QRegularExpression refusal("^The manager refuses to load \"([^\"]*)\"");
            const QRegularExpressionMatch match = refusal.match(finding.consequence);
            const bool isLoaded =
                finding.consequence.startsWith("The manager loads the plug-in all the same");
            toldToBeLoaded += isLoaded ? 1 : 0;
            toldToBeRefused += match.hasMatch() ? 1 : 0;
            if ((isLoaded && !tables.check(finding.plugin + ".dll"))
                || (match.hasMatch() && tables.check(match.captured(1) + ".dll"))
                || (finding.consequence.startsWith("The manager does not load the plug-in, but")
                    && tables.check(finding.plugin + ".dll")))
                QFAIL(json + dfm + finding.plugin.toUtf8() + finding.consequence.toUtf8());
        }
    }
    QVERIFY(refused > 50);
    QVERIFY(refusedOfDfm > 50);
    QVERIFY(toldToBeLoaded > 100);
    QVERIFY(toldToBeRefused > 100);
}

/// The short way to the distance finds what the whole table of it does.
void tst_CheckConfiguration::findsNamesByTheirDistance()
{
    const auto distance = [](const QString &left, const QString &right) {
        QVector<QVector<int>> table(left.size() + 1, QVector<int>(right.size() + 1));
        for (int row = 0; row <= left.size(); ++row) {
            for (int column = 0; column <= right.size(); ++column) {
                int &cost = table[row][column];
                cost = std::max(row, column);
                if (row == 0 || column == 0)
                    continue;
                const bool same = left.at(row - 1) == right.at(column - 1);
                cost = std::min({table[row - 1][column] + 1, table[row][column - 1] + 1,
                                 table[row - 1][column - 1] + (same ? 0 : 1)});
                if (row > 1 && column > 1 && left.at(row - 1) == right.at(column - 2)
                    && left.at(row - 2) == right.at(column - 1))
                    cost = std::min(cost, table[row - 2][column - 2] + 1);
            }
        }
        return table[left.size()][right.size()];
    };
    QRandomGenerator random(20231122);
    int near = 0;
    for (int round = 0; round < 20000; ++round) {
        QString left;
        for (int i = random.bounded(4, 16); i > 0; --i)
            left.append(QChar('a' + random.bounded(3)));
        QString right = left;
        for (int i = random.bounded(5); i > 0; --i) {
            const int place = random.bounded(right.size());
            const QChar letter('a' + random.bounded(3));
            if (i % 2)
                right.insert(place, letter);
            else
                right[place] = letter;
        }
        if (random.bounded(2))
            right.remove(random.bounded(right.size()), 1);
        const int limit = std::min(2, left.size() / 6);
        const bool isNear = left != right && distance(left, right) <= limit;
        near += isNear ? 1 : 0;
        QVERIFY2(NearNames({right}).of(left) == (isNear ? QStringList{right} : QStringList()),
                 qPrintable(left + ' ' + right));
    }
    QVERIFY(near > 1000 && near < 19000);
}

void tst_CheckConfiguration::manyEntriesTakeShort_data()
{
    QTest::addColumn<int>("shape");
    QTest::newRow("one long chain") << 0;
    QTest::newRow("one long circle") << 1;
    QTest::newRow("all dependencies missing") << 2;
    QTest::newRow("all names misspelled") << 3;
    QTest::newRow("all names and all missing dependencies alike") << 4;
}

/// Here only that no cost grows with the square of their number; benchmarks measure it. What else the machine
/// does is not counted.
void tst_CheckConfiguration::manyEntriesTakeShort()
{
    QFETCH(int, shape);
    constexpr int count = 5000;
    const char *const needed[] = {"Plugin", "Plugin", "Absent", "Graphic_Veiw", "Graphic_View"};
    QByteArray json = "{\"pluginList\": [";
    for (int i = 0; i < count; ++i) {
        const int next = shape == 0 && i + 1 == count ? -1 : (i + 1) % count;
        json +=
            QStringLiteral(
                R"(%1{"name": "%2%3", "version": "1", "dependencies": [{"name": "%4%5", "version": "1"}]})")
                .arg(i ? "," : "", shape >= 3 ? "Graphic_Veiw" : "Plugin")
                .arg(i)
                .arg(needed[shape])
                .arg(next)
                .toUtf8();
    }
    json += "]}";
    const std::clock_t start = std::clock();
    const Report report = check(json, Set::Cam);
    const double seconds = double(std::clock() - start) / CLOCKS_PER_SEC;
    QVERIFY2(seconds < 20, qPrintable(QString::number(seconds)));
    QCOMPARE(report.pluginCount(), count);
    QVERIFY(report.count(Severity::Error) + report.count(Severity::Warning) > 0);
}

void tst_CheckConfiguration::deepNestingIsRefused()
{
    const Report report = check(QByteArray(1000000, '['), Set::Cam);
    QCOMPARE(report.findings().size(), 1);
    QCOMPARE(report.findings().first().advice,
             QStringLiteral("Take the nested arrays and objects out; more than 1024 levels are not read."));
    // What the parser does not read must not hurt the scanner either.
    QVERIFY(placesIn(QByteArray(1000000, '[')).entries.isEmpty());
}

void tst_CheckConfiguration::moreFindingsThanListedAreCounted()
{
    QJsonArray entries;
    for (int i = 0; i < Report::mostOfOneKind + 5; ++i)
        entries.append(TestFiles::entry(QString(), "1"));
    const Report report = check(TestFiles::config(entries), Set::Cam);
    QCOMPARE(report.count(Severity::Error), Report::mostOfOneKind + 5);
    QCOMPARE(report.findings().size(), Report::mostOfOneKind);
    QCOMPARE(report.leftOut(),
             QStringList{"set.json: 5 findings of name-empty beyond the first 1000 are counted, "
                         "but not listed"});
}

void tst_CheckConfiguration::statesComeFromAllFindings()
{
    QJsonArray entries;
    for (int i = 0; i < Report::mostOfOneKind + 5; ++i)
        entries.append(
            TestFiles::entry("Plugin" + QString::number(i), "1", {TestFiles::dependency("Absent", "1")}));
    entries.append(TestFiles::entry("Sound", "1"));
    const QJsonObject json = check(TestFiles::config(entries), Set::Cam).toJson();
    const QJsonArray plugins = json["configurations"].toArray().first().toObject()["plugins"].toArray();
    for (int i = 0; i < Report::mostOfOneKind + 5; ++i)
        QCOMPARE(plugins.at(i).toObject()["state"].toString(), QString("error"));
    QCOMPARE(plugins.last().toObject()["state"].toString(), QString("good"));
}

int main(int argc, char **argv)
{
    return runTest<tst_CheckConfiguration>(argc, argv);
}

#include "tst_checkconfiguration.moc"

#include "Checks.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QTemporaryDir>

#include <valijson/adapters/qtjson_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include <sys/stat.h>

namespace {

struct Result
{
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

Result run(const QStringList &arguments)
{
    QProcess process;
    process.start(PLUGINCHECK, arguments);
    process.waitForFinished(60000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

const QStringList exampleSets{EXAMPLE_DIR "/pluginconfig/pluginconfig.json",
                              EXAMPLE_DIR "/pluginconfig/pluginconfig4CAM.json",
                              EXAMPLE_DIR "/pluginconfig/pluginconfig4DFM.json"};

}

/// The program as it is called.
class tst_CheckProgram : public QObject
{
    Q_OBJECT

private slots:
    void exitStatusTellsWhatHappened_data();
    void exitStatusTellsWhatHappened();
    void everyCheckIsListedAndExplained();
    void documentationHasTheTableOfChecks();
    void exampleSetsHaveNoFinding();
    void plantedFaultsAreFoundAndNothingElse();
    void jsonReportKeepsItsSchema();
    void textReportShowsPlaceAndAdvice();
    void fileNameThatNoManagerReadsIsWarnedOf_data();
    void fileNameThatNoManagerReadsIsWarnedOf();
    void tooLargeFileIsLeftOut();
    void namedPipeIsNotWaitedFor();
    void pipeOfTheShellIsRead();
    void reportThatCannotBeWrittenIsTold();
    void textReportKeepsBlanks();
    void outputSteersNoTerminal();
    void namesThatLoadAreNoErrors();
    void nameWithADriveIsAnErrorBesideLibrariesOfWindows();
};

void tst_CheckProgram::exitStatusTellsWhatHappened_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("error");
    const QString example = exampleSets.first();
    QTest::newRow("help") << QStringList{"--help"} << 0 << QByteArray();
    QTest::newRow("version") << QStringList{"--version"} << 0 << QByteArray();
    QTest::newRow("sound set") << QStringList{example} << 0 << QByteArray();
    QTest::newRow("no arguments") << QStringList{} << 2 << QByteArray("no configuration file is given");
    QTest::newRow("unknown option") << QStringList{"--colour"} << 2 << QByteArray("Unknown option 'colour'");
    QTest::newRow("unknown set") << QStringList{example, "--set", "x"} << 2
                                 << QByteArray("there is no set \"x\"");
    QTest::newRow("name without set")
        << QStringList{"own.json"} << 2 << QByteArray("the name of own.json does not tell its set");
    QTest::newRow("unknown format") << QStringList{example, "--format", "x"} << 2
                                    << QByteArray("there is no format \"x\"");
    QTest::newRow("unknown code") << QStringList{"--explain", "x"} << 2
                                  << QByteArray("there is no check \"x\"");
    QTest::newRow("probe without folder")
        << QStringList{example, "--probe"} << 2 << QByteArray("--probe needs --library-dir");
#ifndef Q_OS_WIN
    QDir().mkpath(CHECKED_DIR "/co:lon");
    QTest::newRow("probe with a folder that no list takes")
        << QStringList{example, "--probe", "--library-dir", CHECKED_DIR "/co:lon"} << 2
        << QByteArray("co:lon: in the list of folders that the loader takes, its name would be two");
#endif
    QTest::newRow("no folder of tools")
        << QStringList{example, "--qt-plugin-dir", "/absent"} << 2 << QByteArray("/absent is no folder");
#ifdef HAS_EXAMPLES
    QTest::newRow("tools not where Qt looks")
        << QStringList{example, "--library-dir", EXAMPLE_PLUGIN_DIR, "--qt-plugin-dir", EXAMPLE_DIR} << 1
        << QByteArray();
#endif
    QTest::newRow("no jobs") << QStringList{example, "--jobs", "0"} << 2
                             << QByteArray("--jobs takes a number");
    QTest::newRow("no folder") << QStringList{example, "--library-dir", "/absent"} << 2
                               << QByteArray("/absent is no folder");
    QTest::newRow("missing file") << QStringList{"/absent/pluginconfig.json"} << 3 << QByteArray();
    QTest::newRow("folder as file") << QStringList{EXAMPLE_DIR, "--set", "cam"} << 3 << QByteArray();
    QTest::newRow("errors") << QStringList{example, "--library-dir", EXAMPLE_DIR} << 1 << QByteArray();
}

void tst_CheckProgram::exitStatusTellsWhatHappened()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, error);
    const Result result = run(arguments);
    QCOMPARE(result.exitCode, status);
    QVERIFY2(result.errors.contains(error), result.errors);
    QCOMPARE(result.output.isEmpty(), status == 2);
    if (status == 3)
        QVERIFY(result.output.contains("[config-unreadable]"));
}

void tst_CheckProgram::everyCheckIsListedAndExplained()
{
    const QByteArray list = run({"--list-checks"}).output;
    QCOMPARE(list.count('\n'), int(PluginCheck::Code::Count));
    for (const QByteArray &line : list.trimmed().split('\n')) {
        const QString code = QString::fromLatin1(line).section(' ', 0, 0);
        const Result explained = run({"--explain", code});
        QCOMPARE(explained.exitCode, 0);
        QVERIFY(explained.output.startsWith(code.toLatin1() + " ("));
        QVERIFY(explained.output.count('\n') >= 3);
    }
}

/// The table in the documentation is what the program itself says: plugincheck --check-table.
void tst_CheckProgram::documentationHasTheTableOfChecks()
{
    QVERIFY(TestFiles::read(DOCUMENTATION).contains(run({"--check-table"}).output));
}

void tst_CheckProgram::exampleSetsHaveNoFinding()
{
#ifdef HAS_EXAMPLES
    const Result result = run(exampleSets + QStringList{"--library-dir", EXAMPLE_PLUGIN_DIR, "--strict"});
    QCOMPARE(result.output, QByteArray("Nothing wrong with 49 plug-ins in 3 configuration files.\n"));
    QCOMPARE(result.exitCode, 0);
#else
    QTest::qSkip("The examples are not built.", __FILE__, __LINE__);
#endif
}

void tst_CheckProgram::plantedFaultsAreFoundAndNothingElse()
{
#ifdef HAS_EXAMPLES
    QTemporaryDir directory;
    const QString plugins = directory.filePath("plugins");
    QVERIFY(QDir().mkpath(plugins));
    for (const QFileInfo &file : QDir(EXAMPLE_PLUGIN_DIR).entryInfoList(QDir::Files))
        QVERIFY(QFile::copy(file.filePath(), plugins + '/' + file.fileName()));
    QVERIFY(QFile::remove(plugins + "/Graphic_MiniMap.dll"));
    QVERIFY(QFile::resize(plugins + "/Matrix_ToolBar.dll", 20000));
    QVERIFY(QFile::rename(plugins + "/Graphic_JobList.dll", plugins + "/Graphic_Joblist.dll"));
    TestFiles::replace(plugins + "/Graphic_View.dll", CHECKED_DIR "/without_factory/Graphic_View.dll");

    QByteArray json = TestFiles::read(exampleSets.at(1));
    json.replace(R"("name": "Graphic_Tips", "version": "1.0.0")",
                 R"("name": "Graphic_Tip", "version": "1.0.0")");
    json.replace(R"("name": "Graphic_CamDI", "version": "1.0.0")",
                 R"("name": "Graphic_CamDI", "version": "2.0.0")");
    const QString configuration = directory.filePath("pluginconfig4CAM.json");
    TestFiles::write(configuration, json);

    const Result result = run({configuration, "--library-dir", plugins, "--format", "json"});
    QCOMPARE(result.exitCode, 1);
    QStringList found;
    for (const QJsonValue &finding : QJsonDocument::fromJson(result.output)["findings"].toArray())
        found.append(finding["code"].toString() + ' ' + finding["plugin"].toString());
    found.sort();
    // The version of Graphic_CamDI is changed where others need it, too, so that it is Graphic_Tip alone.
    QCOMPARE(found, (QStringList{"factory-missing Graphic_View", "library-case Graphic_JobList",
                                 "library-missing Graphic_MiniMap", "library-missing Graphic_Tip",
                                 "library-truncated Matrix_ToolBar", "name-near-miss Graphic_Tip"}));
#else
    QTest::qSkip("The examples are not built.", __FILE__, __LINE__);
#endif
}

void tst_CheckProgram::jsonReportKeepsItsSchema()
{
    QTemporaryDir directory;
    const QString configuration = directory.filePath("pluginconfig4CAM.json");
    TestFiles::write(
        configuration,
        TestFiles::config({TestFiles::entry("Matrix", "1", {TestFiles::dependency("Matrix", "1")}),
                           TestFiles::entry("Graphic_View", "1", {TestFiles::dependency("X", "1")})}));
    const QString broken = directory.filePath("pluginconfig4DFM.json");
    TestFiles::write(broken, "{");
    const Result result =
        run({configuration, broken, "--format", "json", "--probe", "--library-dir", CHECKED_DIR "/good"});

    const QJsonValue schemaDocument = QJsonDocument::fromJson(TestFiles::read(REPORT_SCHEMA)).object();
    valijson::Schema schema;
    valijson::SchemaParser().populateSchema(valijson::adapters::QtJsonAdapter(schemaDocument), schema);
    const QJsonObject report = QJsonDocument::fromJson(result.output).object();
    QVERIFY(report["findings"].toArray().size() >= 4);
    const QJsonValue document = report;
    valijson::ValidationResults mistakes;
    valijson::Validator().validate(schema, valijson::adapters::QtJsonAdapter(document), &mistakes);
    QStringList texts;
    for (const valijson::ValidationResults::Error &mistake : mistakes)
        texts.append(QString::fromStdString(mistake.context.back() + ": " + mistake.description));
    QCOMPARE(texts, QStringList());

    // A report that lacks something is refused, so the schema does say something.
    QJsonObject incomplete = report;
    incomplete.remove("summary");
    const QJsonValue incompleteDocument = incomplete;
    QVERIFY(!valijson::Validator().validate(schema, valijson::adapters::QtJsonAdapter(incompleteDocument),
                                            nullptr));
}

void tst_CheckProgram::textReportShowsPlaceAndAdvice()
{
    QTemporaryDir directory;
    const QString configuration = directory.filePath("pluginconfig.json");
    TestFiles::write(
        configuration,
        "{\n  \"pluginList\": [\n    { \"name\": \"Toolbar_Select\", \"version\": \"1\" }\n  ]\n}\n");
    const QByteArray expected =
        configuration.toUtf8()
        + "\n"
          " Toolbar_Select\n"
          "  warning  Nothing asks for \"Toolbar_Select\", but for \"ToolBar_Select\". "
          "[name-near-miss]\n"
          "           "
        + configuration.toUtf8()
        + ":3:15\n"
          "           The manager loads the library if it is there, and uses it for nothing: "
          "names are\n"
          "           compared letter by letter, with case.\n"
          "           -> Call entry and file \"ToolBar_Select\", if that is what it is.\n"
          "\n"
          "Left out: Libraries were not looked at: no --library-dir is given.\n"
          "0 errors, 1 warning; 1 plug-in checked. plugincheck --explain CODE tells more.\n";
    QCOMPARE(run({configuration}).output, expected);
    QVERIFY(run({configuration, "--color", "always"}).output.contains("\x1b[33mwarning\x1b[0m"));
}

void tst_CheckProgram::fileNameThatNoManagerReadsIsWarnedOf_data()
{
    QTest::addColumn<QString>("meant");
    QTest::newRow("PluginConfig4cam.json") << "pluginconfig4CAM.json";
    QTest::newRow("pluginConfig4DFM.json") << "pluginconfig4DFM.json";
    QTest::newRow("pluginconfig.JSON") << "pluginconfig.json";
    QTest::newRow("pluginconfig4CAM.json") << QString();
    QTest::newRow("own4cam.json") << QString();
}

void tst_CheckProgram::fileNameThatNoManagerReadsIsWarnedOf()
{
    QFETCH(QString, meant);
    QTemporaryDir directory;
    const QString configuration = directory.filePath(QTest::currentDataTag());
    TestFiles::write(configuration, TestFiles::configOf({"Own_Things"}));
    const Result result = run({configuration, "--strict"});
    QCOMPARE(result.exitCode, meant.isEmpty() ? 0 : 1);
    QCOMPARE(result.output.contains("[config-case]"), !meant.isEmpty());
    QVERIFY2(meant.isEmpty() || result.output.contains("-> Call it \"" + meant.toUtf8() + "\"."),
             result.output);
}

/// It takes no place on the disk, as it is one hole.
void tst_CheckProgram::tooLargeFileIsLeftOut()
{
    QTemporaryDir directory;
    QFile file(directory.filePath("pluginconfig4CAM.json"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(qint64(128) * 1024 * 1024 + 1));
    file.close();
    const Result result = run({file.fileName()});
    QCOMPARE(result.exitCode, 3);
    const QByteArray line =
        "Left out: " + file.fileName().toUtf8() + " is larger than 128 MiB, too large to be checked.\n";
    QVERIFY2(result.output.contains(line), result.output);
    QVERIFY2(!result.output.contains("error "), result.output);
}

void tst_CheckProgram::namedPipeIsNotWaitedFor()
{
    QTemporaryDir directory;
    const QString pipe = directory.filePath("pluginconfig4CAM.json");
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const Result result = run({pipe});
    QCOMPARE(result.exitCode, 3);
    QVERIFY2(result.output.contains("This is no file, but a pipe or a device. [config-unreadable]"),
             result.output);
}

void tst_CheckProgram::pipeOfTheShellIsRead()
{
    QProcess process;
    process.start(PLUGINCHECK, {"/dev/stdin", "--set", "cam"});
    QVERIFY(process.waitForStarted());
    process.write(TestFiles::configOf({"Own_Things"}));
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    const QByteArray output = process.readAllStandardOutput();
    QVERIFY2(output.contains("Nothing wrong with 1 plug-in"), output);
}

void tst_CheckProgram::reportThatCannotBeWrittenIsTold()
{
    const QString full = QStringLiteral("/dev/full");
    for (const QStringList &arguments : {QStringList{exampleSets.first()}, QStringList{"--help"}}) {
        QProcess process;
        process.setStandardOutputFile(full);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LC_ALL", "C");
        process.setProcessEnvironment(environment);
        process.start(PLUGINCHECK, arguments);
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 3);
        QCOMPARE(process.readAllStandardError(),
                 QByteArray("plugincheck: cannot write: No space left on device\n"));
    }
}

/// Or two names that differ would look the same.
void tst_CheckProgram::textReportKeepsBlanks()
{
    QTemporaryDir directory;
    const QString configuration = directory.filePath("pluginconfig4CAM.json");
    TestFiles::write(configuration, TestFiles::config({TestFiles::entry(
                                        "Own  View", "1", {TestFiles::dependency("Own   Things", "1  0")})}));
    const QByteArray output = run({configuration}).output;
    QVERIFY2(output.contains("\n Own  View\n"), output);
    QVERIFY2(output.contains("\"Own  View\" needs \"Own   Things\" \"1  0\", which the list does not have."),
             output);
    // Lines are broken all the same.
    QVERIFY2(output.contains("looks dependencies up under\n           \"Own  View.dll\", and the list has"),
             output);
}

/// Names come from files that anyone may have written.
void tst_CheckProgram::outputSteersNoTerminal()
{
    QTemporaryDir directory;
    const QString hostile = QString::fromUtf8("x\x1b[31m\xc2\x9b\xe2\x80\xae\t\x7f\r\ny");
    const QString configuration = directory.filePath("pluginconfig4CAM.json");
    TestFiles::write(
        configuration,
        TestFiles::config({TestFiles::entry(hostile + QChar(0), "1", {TestFiles::dependency(hostile, "1")}),
                           TestFiles::entry("Matrix", hostile)})
            + hostile.toUtf8());
    QByteArrayList outputs{run({configuration}).output, run({"--explain", hostile}).errors,
                           run({hostile}).errors, run({hostile, "--set", "cam"}).output,
                           run({configuration, "--library-dir", hostile}).errors};
    TestFiles::write(
        configuration,
        TestFiles::config({TestFiles::entry(hostile + QChar(0), "1", {TestFiles::dependency(hostile, "1")}),
                           TestFiles::entry("Matrix", hostile)}));
    outputs.append(run({configuration, "--library-dir", CHECKED_DIR "/good"}).output);
    for (const QByteArray &output : qAsConst(outputs)) {
        QVERIFY2(output.contains("[31m"), output);
        for (const QChar character : QString::fromUtf8(output))
            QVERIFY2((character.isPrint() && character != QChar(0x202e)) || character == '\n', output);
    }
}

void tst_CheckProgram::namesThatLoadAreNoErrors()
{
    QTemporaryDir directory;
    const QStringList names{
        "T ",  " L",     QString::fromUtf8("X\xe2\x80\x8dY"), QString::fromUtf8("P\xee\x84\xa3"),
        "a:b", "back\\s"};
    for (const QString &name : names)
        QVERIFY(QFile::copy(CHECKED_DIR "/good/Graphic_View.dll", directory.filePath(name + ".dll")));
    const QString configuration = directory.filePath("pluginconfig4CAM.json");
    TestFiles::write(configuration, TestFiles::configOf(names));
    const Result result =
        run({configuration, "--library-dir", directory.path(), "--probe", "--format", "json"});
    QCOMPARE(result.exitCode, 0);
    const QJsonDocument report = QJsonDocument::fromJson(result.output);
    QStringList warned;
    for (const QJsonValue &finding : report["findings"].toArray()) {
        QCOMPARE(finding["code"].toString(), QString("name-unusual"));
        warned.append(finding["plugin"].toString());
    }
    QCOMPARE(warned, names);
    for (const QJsonValue &plugin : report["configurations"][0]["plugins"].toArray())
        QCOMPARE(plugin["probe"]["result"].toString(), QString("loaded"));
}

void tst_CheckProgram::nameWithADriveIsAnErrorBesideLibrariesOfWindows()
{
#ifdef HAS_PE_FIXTURES
    QTemporaryDir directory;
    const QString configuration = directory.filePath("pluginconfig4CAM.json");
    TestFiles::write(configuration, TestFiles::configOf({"C:Own", "Graphic_View"}));
    const auto isError = [&](const QString &folder) {
        return run({configuration, "--library-dir", folder}).output.contains("[name-path]");
    };
    QVERIFY(isError(CHECKED_DIR "/pe"));
    QVERIFY(!isError(CHECKED_DIR "/good"));
#endif
}

int main(int argc, char **argv)
{
    return runTest<tst_CheckProgram>(argc, argv);
}

#include "tst_checkprogram.moc"

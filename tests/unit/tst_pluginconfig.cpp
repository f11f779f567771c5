#include "gbktexts.h"
#include "messageboxes.h"
#include "openbase.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QTemporaryDir>

using LogLines::Line;
using TestFiles::dependency;
using TestFiles::entry;

class tst_PluginConfig : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyEntryFillsTheThreeTables();
    void versionKeepsItsJsonType();
    void numbersInDependenciesAreDoubles();
    void numberEqualsTheTextThatQVariantReadsAsIt();
    void missingDependenciesAreAnEmptyList();
    void laterEntryOfTheSameNameWins();
    void secondFileAddsToTheTables();
    void entryThatIsNoObjectGetsAnEmptyName();
    void otherKeysOfTheRootAreIgnored();
    void fileWithByteOrderMarkIsRead();
    void nothingToAddIsNotLogged_data();
    void nothingToAddIsNotLogged();
    void missingFileIsLoggedAndLeavesTheTables();
    void fileThatCannotBeOpenedIsLogged();
    void syntaxErrorIsLoggedAndAddsNothing_data();
    void syntaxErrorIsLoggedAndAddsNothing();
    void pathInTheLogIsUtf8();
    void longPathIsRead();

private:
    QString write(const QByteArray &content);

    QTemporaryDir m_directory;
    QTPluginsMangerPrivate m_tables;
    OpenBase m_base;
    MessageBoxes m_boxes;
};

void tst_PluginConfig::init()
{
    QVERIFY(m_directory.isValid());
    m_tables = QTPluginsMangerPrivate();
    LogLines::take();
}

void tst_PluginConfig::cleanup()
{
    QVERIFY(m_boxes.take().isEmpty());
}

QString tst_PluginConfig::write(const QByteArray &content)
{
    const QString path = m_directory.filePath(QStringLiteral("pluginconfig.json"));
    TestFiles::write(path, content);
    return path;
}

void tst_PluginConfig::everyEntryFillsTheThreeTables()
{
    const QString path = write(R"({"pluginList": [
        {"name": "File_Process", "version": "1.2",
         "dependencies": [{"name": "MenuBar_Menu", "version": "2.0"}, {"name": "Other", "version": 3}]},
        {"name": "MenuBar_Menu", "version": "2.0"}]})");

    m_base.readPluginConfig(m_tables, path);

    QCOMPARE(m_tables.m_names.size(), 2);
    QCOMPARE(m_tables.m_names.value("File_Process"), QVariant(QStringLiteral("File_Process")));
    QCOMPARE(m_tables.m_names.value("MenuBar_Menu"), QVariant(QStringLiteral("MenuBar_Menu")));
    QCOMPARE(m_tables.m_versions.value("File_Process"), QVariant(QStringLiteral("1.2")));
    QCOMPARE(m_tables.m_versions.value("MenuBar_Menu"), QVariant(QStringLiteral("2.0")));
    const QVariantList expected{QVariantMap{{"name", "MenuBar_Menu"}, {"version", "2.0"}},
                                QVariantMap{{"name", "Other"}, {"version", 3.0}}};
    QCOMPARE(m_tables.m_dependencies.value("File_Process"), expected);
    QVERIFY(m_tables.m_libraries.isEmpty());
    QVERIFY(m_tables.m_loaders.isEmpty());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_PluginConfig::versionKeepsItsJsonType()
{
    m_base.readPluginConfig(m_tables, write(R"({"pluginList": [
        {"name": "Text", "version": "1"}, {"name": "Number", "version": 1},
        {"name": "List", "version": [1, "b"]}, {"name": "None"}]})"));

    QCOMPARE(m_tables.m_versions.value("Text").userType(), int(QMetaType::QString));
    QCOMPARE(m_tables.m_versions.value("Number").userType(), int(QMetaType::Double));
    QCOMPARE(m_tables.m_versions.value("List"), QVariant(QVariantList{1.0, "b"}));
    QCOMPARE(m_tables.m_versions.value("List").toList().first().userType(), int(QMetaType::Double));
    QVERIFY(m_tables.m_versions.contains("None"));
    QVERIFY(!m_tables.m_versions.value("None").isValid());
}

void tst_PluginConfig::numbersInDependenciesAreDoubles()
{
    m_base.readPluginConfig(m_tables, write(R"({"pluginList": [
        {"name": "A", "dependencies": [{"name": "B", "version": 2}]}]})"));

    const QVariant version = m_tables.m_dependencies.value("A").first().toMap().value("version");
    QCOMPARE(version.userType(), int(QMetaType::Double));
    QCOMPARE(version.toDouble(), 2.0);
}

void tst_PluginConfig::numberEqualsTheTextThatQVariantReadsAsIt()
{
    m_base.readPluginConfig(m_tables, write(R"({"pluginList": [
        {"name": "A", "dependencies": [{"name": "B", "version": "2.0"}]}, {"name": "B", "version": 2}]})"));
    QVERIFY(m_tables.check("A"));
}

void tst_PluginConfig::missingDependenciesAreAnEmptyList()
{
    m_base.readPluginConfig(m_tables, write(R"({"pluginList": [
        {"name": "Without"}, {"name": "Wrong", "dependencies": "MenuBar_Menu"}]})"));

    QVERIFY(m_tables.m_dependencies.contains("Without"));
    QVERIFY(m_tables.m_dependencies.value("Without").isEmpty());
    QVERIFY(m_tables.m_dependencies.contains("Wrong"));
    QVERIFY(m_tables.m_dependencies.value("Wrong").isEmpty());
}

void tst_PluginConfig::laterEntryOfTheSameNameWins()
{
    m_base.readPluginConfig(m_tables, write(TestFiles::config({
                                          entry("Twice", "1.0", {dependency("First")}),
                                          entry("Twice", "2.0", {dependency("Second")}),
                                      })));

    QCOMPARE(m_tables.m_names.size(), 1);
    QCOMPARE(m_tables.m_versions.value("Twice"), QVariant(QStringLiteral("2.0")));
    QCOMPARE(m_tables.m_dependencies.value("Twice").size(), 1);
    QCOMPARE(m_tables.m_dependencies.value("Twice").first().toMap().value("name").toString(),
             QString("Second"));
}

void tst_PluginConfig::secondFileAddsToTheTables()
{
    m_base.readPluginConfig(m_tables, write(TestFiles::config({entry("Kept"), entry("Replaced", "1.0")})));
    m_base.readPluginConfig(m_tables, write(TestFiles::config({entry("Replaced", "2.0"), entry("Added")})));

    QCOMPARE(m_tables.m_names.size(), 3);
    QVERIFY(m_tables.m_names.contains("Kept"));
    QVERIFY(m_tables.m_names.contains("Added"));
    QCOMPARE(m_tables.m_versions.value("Replaced"), QVariant(QStringLiteral("2.0")));
}

void tst_PluginConfig::entryThatIsNoObjectGetsAnEmptyName()
{
    m_base.readPluginConfig(m_tables, write(R"({"pluginList": [17]})"));

    QCOMPARE(m_tables.m_names.size(), 1);
    QVERIFY(m_tables.m_names.contains(QString()));
    const QVariant name = m_tables.m_names.value(QString());
    QCOMPARE(name.userType(), int(QMetaType::QString));
    QCOMPARE(name.toString(), QString());
    QVERIFY(!name.isNull());
    QVERIFY(!m_tables.m_versions.value(QString()).isValid());
    QVERIFY(m_tables.m_dependencies.value(QString()).isEmpty());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_PluginConfig::otherKeysOfTheRootAreIgnored()
{
    m_base.readPluginConfig(m_tables, write(R"({"name": "Root", "PluginList": [{"name": "Wrong"}],
                                                "pluginList": [{"name": "Right", "comment": 1}]})"));
    QCOMPARE(m_tables.m_names.keys(), QStringList("Right"));
}

void tst_PluginConfig::fileWithByteOrderMarkIsRead()
{
    m_base.readPluginConfig(m_tables, write("\xef\xbb\xbf" + TestFiles::configOf({"Marked"})));
    QCOMPARE(m_tables.m_names.keys(), QStringList("Marked"));
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_PluginConfig::nothingToAddIsNotLogged_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty list") << QByteArray(R"({"pluginList": []})");
    QTest::newRow("no list") << QByteArray(R"({"plugins": [{"name": "A"}]})");
    QTest::newRow("list is an object") << QByteArray(R"({"pluginList": {"name": "A"}})");
    QTest::newRow("list is a text") << QByteArray(R"({"pluginList": "A"})");
    QTest::newRow("root is an array") << QByteArray(R"([{"name": "A"}])");
}

void tst_PluginConfig::nothingToAddIsNotLogged()
{
    QFETCH(QByteArray, content);
    m_base.readPluginConfig(m_tables, write(content));

    QVERIFY(m_tables.m_names.isEmpty());
    QVERIFY(m_tables.m_versions.isEmpty());
    QVERIFY(m_tables.m_dependencies.isEmpty());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_PluginConfig::missingFileIsLoggedAndLeavesTheTables()
{
    m_tables.m_names["Kept"] = QStringLiteral("Kept");
    const QString path = m_directory.filePath(QStringLiteral("absent.json"));
    m_base.readPluginConfig(m_tables, path);

    QCOMPARE(m_tables.m_names.keys(), QStringList("Kept"));
    QCOMPARE(LogLines::take(), (QList<Line>{{'E', "pluginMangerBase", Gbk::configMissing + path.toUtf8()}}));
}

void tst_PluginConfig::fileThatCannotBeOpenedIsLogged()
{
    const QString path = m_directory.filePath(QStringLiteral("a directory"));
    QVERIFY(QDir().mkpath(path));
    m_base.readPluginConfig(m_tables, path);

    QVERIFY(m_tables.m_names.isEmpty());
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase", Gbk::configNotOpened + path.toUtf8()}}));
}

void tst_PluginConfig::syntaxErrorIsLoggedAndAddsNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("trailing comma") << QByteArray(R"({"pluginList": [{"name": "A"},]})");
    QTest::newRow("cut off") << QByteArray(R"({"pluginList": [{"name": "A"})");
    QTest::newRow("no JSON") << QByteArray("pluginList: A");
    QTest::newRow("two documents") << QByteArray(R"({"pluginList": [{"name": "A"}]}{})");
}

void tst_PluginConfig::syntaxErrorIsLoggedAndAddsNothing()
{
    QFETCH(QByteArray, content);
    const QString path = write(content);
    m_base.readPluginConfig(m_tables, path);

    QVERIFY(m_tables.m_names.isEmpty());
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase", Gbk::configNotParsed + path.toUtf8()}}));
}

void tst_PluginConfig::pathInTheLogIsUtf8()
{
    const QString path = m_directory.filePath(QStringLiteral("作业 目录.json"));
    m_base.readPluginConfig(m_tables, path);

    const QList<Line> lines = LogLines::take();
    QCOMPARE(lines.size(), 1);
    QVERIFY(lines.first().text.endsWith("\xe4\xbd\x9c\xe4\xb8\x9a \xe7\x9b\xae\xe5\xbd\x95.json"));
}

void tst_PluginConfig::longPathIsRead()
{
    const QString directory = QString(200, 'x') + "/电路板 " + QString(200, 'y');
    QVERIFY(QDir(m_directory.path()).mkpath(directory));
    const QString path = m_directory.filePath(directory + "/pluginconfig.json");
    TestFiles::write(path, R"({"pluginList": [{"name": "A"}]})");
    m_base.readPluginConfig(m_tables, path);

    QCOMPARE(m_tables.m_names.keys(), QStringList("A"));
    QCOMPARE(LogLines::take(), QList<Line>());
}

int main(int argc, char **argv)
{
    return runTest<tst_PluginConfig>(argc, argv);
}

#include "tst_pluginconfig.moc"

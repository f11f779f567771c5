#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QJsonDocument>

#include <valijson/adapters/qtjson_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

class tst_Schema : public QObject
{
    Q_OBJECT

private slots:
    void acceptsConfigurationFiles_data();
    void acceptsConfigurationFiles();
    void acceptsWhatTheReaderReads_data();
    void acceptsWhatTheReaderReads();
    void refusesMistakes_data();
    void refusesMistakes();
};

namespace {

QJsonValue parse(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        qFatal("not JSON: %s", json.constData());
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

/// Returns where the configuration breaks the schema and how; nothing when it does not.
QStringList mistakesIn(const QByteArray &configuration)
{
    const QJsonValue schemaDocument = parse(TestFiles::read(SCHEMA_FILE));
    valijson::Schema schema;
    valijson::SchemaParser parser;
    parser.populateSchema(valijson::adapters::QtJsonAdapter(schemaDocument), schema);

    const QJsonValue document = parse(configuration);
    valijson::ValidationResults results;
    valijson::Validator().validate(schema, valijson::adapters::QtJsonAdapter(document), &results);
    QStringList mistakes;
    for (const valijson::ValidationResults::Error &error : results) {
        QString path;
        for (const std::string &part : error.context)
            path += QString::fromStdString(part);
        mistakes.append(path + ": " + QString::fromStdString(error.description));
    }
    return mistakes;
}

}

void tst_Schema::acceptsConfigurationFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("desktop") << EXAMPLE_DIR "/pluginconfig/pluginconfig.json";
    QTest::newRow("CAM") << EXAMPLE_DIR "/pluginconfig/pluginconfig4CAM.json";
    QTest::newRow("DFM") << EXAMPLE_DIR "/pluginconfig/pluginconfig4DFM.json";
}

void tst_Schema::acceptsConfigurationFiles()
{
    QFETCH(QString, file);
    const QByteArray content = TestFiles::read(file);
    QVERIFY(content.contains("pluginList"));
    QCOMPARE(mistakesIn(content), QStringList());
}

void tst_Schema::acceptsWhatTheReaderReads_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("no plug-ins") << QByteArray(R"({"pluginList": []})");
    QTest::newRow("no dependencies") << QByteArray(R"({"pluginList": [{"name": "A", "version": "1"}]})");
    QTest::newRow("a dependency") << QByteArray(R"({"pluginList": [{"name": "A", "version": "1",
                          "dependencies": [{"name": "B", "version": "2"}]}]})");
    QTest::newRow("names with all characters of given ones")
        << QByteArray(R"({"pluginList": [{"name": "ORVIK-Matrix_2.x", "version": ""}]})");
    QTest::newRow("something else in the root")
        << QByteArray(R"({"$schema": "pluginconfig.schema.json", "comment": 1, "pluginList": []})");
}

void tst_Schema::acceptsWhatTheReaderReads()
{
    QFETCH(QByteArray, json);
    QCOMPARE(mistakesIn(json), QStringList());
}

void tst_Schema::refusesMistakes_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("place");
    const auto entry = [](const char *name, const char *json) {
        QTest::newRow(name) << QByteArray(R"({"pluginList": [)") + json + "]}"
                            << "<root>[pluginList][0]";
    };
    QTest::newRow("an array in place of the root") << QByteArray("[]") << "<root>";
    QTest::newRow("no list") << QByteArray("{}") << "<root>";
    QTest::newRow("the list misspelled") << QByteArray(R"({"pluginlist": []})") << "<root>";
    QTest::newRow("a list that is no array") << QByteArray(R"({"pluginList": {}})") << "<root>[pluginList]";
    entry("an entry that is no object", R"("A")");
    entry("no name", R"({"version": "1"})");
    entry("no version", R"({"name": "A"})");
    entry("a version that is a number", R"({"name": "A", "version": 1})");
    entry("an empty name", R"({"name": "", "version": "1"})");
    entry("a name with suffix", R"({"name": "A.dll", "version": "1"})");
    entry("a name with the suffix in capitals", R"({"name": "A.DLL", "version": "1"})");
    entry("a name with a folder", R"({"name": "plugins/A", "version": "1"})");
    entry("a name with a folder of Windows", R"({"name": "plugins\\A", "version": "1"})");
    entry("a key misspelled", R"({"name": "A", "version": "1", "dependancies": []})");
    entry("dependencies that are no array", R"({"name": "A", "version": "1", "dependencies": "B"})");
    entry("a dependency that is a text", R"({"name": "A", "version": "1", "dependencies": ["B"]})");
    entry("a dependency without version",
          R"({"name": "A", "version": "1", "dependencies": [{"name": "B"}]})");
    entry("a dependency with suffix",
          R"({"name": "A", "version": "1", "dependencies": [{"name": "B.dll", "version": "1"}]})");
}

void tst_Schema::refusesMistakes()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, place);
    const QStringList mistakes = mistakesIn(json);
    QVERIFY(!mistakes.isEmpty());
    QVERIFY2(!mistakes.filter(place).isEmpty(), qPrintable(mistakes.join('\n')));
}

int main(int argc, char **argv)
{
    return runTest<tst_Schema>(argc, argv);
}

#include "tst_schema.moc"

#include "Drawing.h"
#include "Graph.h"
#include "LogPage.h"
#include "Page.h"
#include "ReportPage.h"
#include "SequenceDiagram.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QXmlStreamReader>

using namespace PluginCheck;

/// The graph and the pages that are made of reports.
class tst_PluginCheckPages : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void graphOfAReport();
    void graphIsTheSameEachTime();
    void configurationsAreApart();
    void cycleIsMarkedByItsPathToo();
    void worstStateOfANameCounts();
    void hostileNamesInTheGraph_data();
    void hostileNamesInTheGraph();
    void graphOfNothing();
    void bigSetIsDrawnByGraphviz();

    void drawingHasShapesAndTextsOnly();
    void drawingTakesALimitedTime();
    void drawingOfNoGraph();
    void pageWithoutGraphviz();
    void pageOfManyPlugins();

    void pageIsCompleteInItself();
    void pageHoldsTheReport();
    void worstFindingsComeFirst();
    void hostileNamesInThePage();
    void longTablesAreCutAndSaySo();
    void pageOfNothing();

    void diagramHasArrowsAndNotes();
    void diagramOfManyParticipants();
    void hostileNamesInTheDiagram();
    void logPageSaysWhatIsNotDrawn();
};

namespace {

const QJsonObject &report()
{
    static const QJsonObject object = QJsonDocument::fromJson(TestFiles::read(REPORT_FILE)).object();
    return object;
}

QJsonObject plugin(const QString &name, const QString &state, const QJsonArray &dependencies = {})
{
    return {{"name", name},
            {"version", "1.0"},
            {"library", "/" + name + ".dll"},
            {"state", state},
            {"dependencies", dependencies}};
}

QJsonObject dependency(const QString &name, const QString &state)
{
    return {{"name", name}, {"version", "1.0"}, {"state", state}};
}

QJsonObject reportOf(const QJsonArray &plugins, const QJsonArray &cycles = {})
{
    const QJsonObject configuration{
        {"file", "a.json"}, {"set", "cam"}, {"plugins", plugins}, {"cycles", cycles}};
    return {{"format", 1}, {"configurations", QJsonArray{configuration}}};
}

bool hasGraphviz()
{
    return !QStandardPaths::findExecutable("dot").isEmpty();
}

/// What Graphviz draws of it, with all that it says on its error stream, which should be nothing.
QByteArray drawn(const QByteArray &dot, QByteArray *complaints)
{
    QProcess process;
    process.start("dot", {"-Tsvg"});
    process.write(dot);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    *complaints = process.readAllStandardError();
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

/// The texts of a drawing; nothing when it is not well formed.
QStringList textsIn(const QByteArray &svg, const QString &element)
{
    QXmlStreamReader reader(svg);
    QStringList texts;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == element)
            texts.append(reader.readElementText());
    }
    return reader.hasError() ? QStringList() : texts;
}

const char *const hostileNames[] = {"<script>alert(1)</script>",
                                    "\"quoted\" 'twice'",
                                    "]]>",
                                    "ends in \\",
                                    "\\N\\G\\n",
                                    "&lt;&amp;&copy;",
                                    "a\nb",
                                    "电路 板",
                                    "-->",
                                    "{|}<port>",
                                    "c0_n0",
                                    "graph"};

bool isSkippedWithoutGraphviz()
{
    if (!hasGraphviz())
        QTest::qSkip("Graphviz is not on this machine", __FILE__, __LINE__);
    return !hasGraphviz();
}

}

void tst_PluginCheckPages::cleanup()
{
    static const QByteArray path = qgetenv("PATH");
    qputenv("PATH", path);
}

void tst_PluginCheckPages::graphOfAReport()
{
    const QByteArray dot = dependencyGraph(
        reportOf({plugin("A", "good", {dependency("B", "met"), dependency("Gone", "missing")}),
                  plugin("B", "warning", {dependency("A", "version"), dependency("Else", "ignored")})}));
    const QList<QByteArray> lines = dot.split('\n');
    QCOMPARE(lines.value(0), QByteArray("digraph plugins {"));
    QCOMPARE(
        lines.mid(4),
        (QList<QByteArray>{
            R"(    c0_n0 [label="A\n1.0", tooltip="A: good", class="good", color="#1a7037", fillcolor="#e4f4e8"];)",
            R"(    c0_n1 [label="B\n1.0", tooltip="B: warning", class="warning", color="#875400", fillcolor="#fff2d1"];)",
            R"(    c0_n2 [label="Else", tooltip="Else: not listed", class="unknown", color="#59636e", fillcolor="#ffffff", style="dashed"];)",
            R"(    c0_n3 [label="Gone", tooltip="Gone: not listed", class="missing", color="#b3201a", fillcolor="#ffffff", style="dashed"];)",
            R"(    c0_n0 -> c0_n1 [class="met", tooltip="A needs B 1.0", color="#59636e"];)",
            R"(    c0_n0 -> c0_n3 [class="missing", tooltip="A needs Gone 1.0", color="#b3201a", style=dashed];)",
            R"(    c0_n1 -> c0_n0 [class="version", tooltip="B needs A 1.0", color="#875400", fontcolor="#875400", label="needs 1.0"];)",
            R"(    c0_n1 -> c0_n2 [class="ignored", tooltip="B needs Else 1.0", color="#59636e", style=dotted];)",
            "}", ""}));
}

void tst_PluginCheckPages::graphIsTheSameEachTime()
{
    const QJsonObject a = plugin("A", "good", {dependency("B", "met")});
    const QJsonObject b = plugin("B", "good");
    QCOMPARE(dependencyGraph(reportOf({a, b})), dependencyGraph(reportOf({b, a})));
    QCOMPARE(dependencyGraph(report()), dependencyGraph(report()));
}

void tst_PluginCheckPages::configurationsAreApart()
{
    const QByteArray dot = dependencyGraph(report());
    QVERIFY(dot.contains("subgraph cluster_0 {\n        label=\"pluginconfig4CAM.json\";"));
    QVERIFY(dot.contains("subgraph cluster_1 {\n        label=\"pluginconfig4DFM.json\";"));
    QVERIFY(!dependencyGraph(reportOf({plugin("A", "good")})).contains("subgraph"));
    // One name in both is two plug-ins.
    QCOMPARE(dot.count("label=\"Graphic_View"), 2);
}

void tst_PluginCheckPages::cycleIsMarkedByItsPathToo()
{
    QJsonArray cycles;
    cycles.append(QJsonArray{"A", "B", "A"});
    const QByteArray dot =
        dependencyGraph(reportOf({plugin("A", "error", {dependency("B", "met")}),
                                  plugin("B", "error", {dependency("A", "met")}), plugin("C", "good")},
                                 cycles));
    QCOMPARE(dot.count("class=\"cycle\""), 2);
    QCOMPARE(dot.count("color=\"#b3201a\", style=bold"), 2);
}

void tst_PluginCheckPages::worstStateOfANameCounts()
{
    for (const QJsonArray &twice : {QJsonArray{plugin("A", "good"), plugin("A", "error")},
                                    QJsonArray{plugin("A", "error"), plugin("A", "good")}}) {
        const QByteArray dot = dependencyGraph(reportOf(twice));
        QCOMPARE(dot.count("label=\"A\\n1.0\""), 1);
        QVERIFY(dot.contains("class=\"error\""));
    }
}

void tst_PluginCheckPages::hostileNamesInTheGraph_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : hostileNames)
        QTest::newRow(name) << QString(name);
    QTest::newRow("control characters") << QString("a\x01\x1b[0m\x7f") + QChar(0xd800) + QChar(0xffff);
    QTest::newRow("empty") << "";
    QTest::newRow("long") << QString(5000, 'x');
}

/// Graphviz takes it without complaint, and the drawing shows the name as it is.
void tst_PluginCheckPages::hostileNamesInTheGraph()
{
    if (isSkippedWithoutGraphviz())
        return;
    QFETCH(QString, name);
    const QByteArray dot = dependencyGraph(
        reportOf({plugin(name, "good", {dependency(name + "2", "met")}), plugin(name + "2", "good")}));
    QByteArray complaints;
    const QByteArray svg = drawn(dot, &complaints);
    QCOMPARE(complaints, QByteArray());

    const QStringList texts = textsIn(svg, "text");
    QCOMPARE(texts.size(), 4);
    QString shown = name.isEmpty() ? QString("(no name)") : name;
    shown.replace('\n', "␊").replace(QChar(1), "␁").replace(QChar(0x1b), "␛").replace(QChar(0x7f), "␡");
    shown.replace(QChar(0xd800), QChar(0xfffd)).replace(QChar(0xffff), QChar(0xfffd));
    if (shown.size() > 48)
        shown = QString(24, 'x') + QChar(0x2026) + QString(23, 'x');
    // Graphviz makes its blanks such that no line breaks there.
    QVERIFY2(texts.contains(shown) || texts.contains(QString(shown).replace(' ', QChar(0xa0))),
             qPrintable(texts.join(" | ")));

    // Whatever Graphviz makes of it, the drawing for the page is well formed and tells both.
    const Drawing drawing = drawGraph(dot);
    QVERIFY2(!drawing.svg.isEmpty(), qPrintable(drawing.whyNot));
    QCOMPARE(textsIn(drawing.svg, "text").size(), 4);
}

void tst_PluginCheckPages::graphOfNothing()
{
    QCOMPARE(graphSize({}), 0);
    QVERIFY(dependencyGraph({}).startsWith("digraph plugins {"));
    QCOMPARE(graphSize(report()), 13);
}

void tst_PluginCheckPages::bigSetIsDrawnByGraphviz()
{
    if (isSkippedWithoutGraphviz())
        return;
    QJsonArray plugins;
    for (int number = 0; number < 1000; ++number) {
        QJsonArray dependencies;
        if (number > 0 && number % 3 != 0)
            dependencies.append(dependency(QString("Plugin_%1").arg(number / 4), "met"));
        plugins.append(plugin(QString("Plugin_%1").arg(number), "good", dependencies));
    }
    QByteArray complaints;
    const QByteArray svg = drawn(dependencyGraph(reportOf(plugins)), &complaints);
    QCOMPARE(complaints, QByteArray());
    QCOMPARE(textsIn(svg, "text").count("1.0"), 1000);
}

void tst_PluginCheckPages::drawingHasShapesAndTextsOnly()
{
    if (isSkippedWithoutGraphviz())
        return;
    const Drawing drawing = drawGraph(dependencyGraph(report()));
    QVERIFY2(!drawing.svg.isEmpty(), qPrintable(drawing.whyNot));
    QXmlStreamReader reader(drawing.svg);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QString name = reader.name().toString();
        QVERIFY2((QStringList{"svg", "g", "title", "path", "polygon", "ellipse", "polyline", "text"}.contains(
                     name)),
                 qPrintable(name));
        for (const QXmlStreamAttribute &attribute : reader.attributes())
            QVERIFY2(!attribute.qualifiedName().contains("href")
                         && !attribute.qualifiedName().startsWith("on")
                         && attribute.qualifiedName() != "style",
                     qPrintable(attribute.qualifiedName().toString()));
    }
    QVERIFY(!reader.hasError());
    QVERIFY(textsIn(drawing.svg, "title").contains("Matrix: error"));
    QVERIFY(textsIn(drawing.svg, "title").contains("Graphic_Tips needs Graphic_Toolbar_Edit 2.0"));
}

void tst_PluginCheckPages::drawingTakesALimitedTime()
{
    if (isSkippedWithoutGraphviz())
        return;
    QByteArray dot = "digraph a {\n";
    for (int from = 0; from < 300; ++from) {
        for (int to = 0; to < 300; to += 7)
            dot +=
                "n" + QByteArray::number(from) + " -> n" + QByteArray::number((from * 31 + to) % 300) + ";\n";
    }
    QElapsedTimer timer;
    timer.start();
    const Drawing drawing = drawGraph(dot + "}\n", 200);
    QVERIFY(drawing.svg.isEmpty());
    QVERIFY2(drawing.whyNot.contains("took too long"), qPrintable(drawing.whyNot));
    QVERIFY(timer.elapsed() < 10000);
}

void tst_PluginCheckPages::drawingOfNoGraph()
{
    if (isSkippedWithoutGraphviz())
        return;
    QVERIFY(drawGraph("this is no graph").whyNot.contains("Graphviz failed"));
}

void tst_PluginCheckPages::pageWithoutGraphviz()
{
    qputenv("PATH", "");
    const QByteArray page = reportPage(report());
    QVERIFY(page.contains("Graphviz is not installed here"));
    QVERIFY(!page.contains("<svg"));
    QVERIFY(page.contains("library-missing"));
}

void tst_PluginCheckPages::pageOfManyPlugins()
{
    QJsonArray plugins;
    for (int number = 0; number <= mostDrawn; ++number)
        plugins.append(plugin(QString("P%1").arg(number), "good"));
    const QByteArray page = reportPage(reportOf(plugins));
    QVERIFY(page.contains("it would have 401 plug-ins, and more than 400 cannot be read"));
    QVERIFY(!page.contains("<svg"));
    QVERIFY(page.contains(">P400<"));
}

void tst_PluginCheckPages::pageIsCompleteInItself()
{
    const QByteArray page = reportPage(report());
    QVERIFY(page.startsWith("<!DOCTYPE html>\n<html lang=\"en\">"));
    QVERIFY(page.contains("<meta charset=\"utf-8\">"));
    QVERIFY(page.contains(
        "http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'sha256-"));
    QVERIFY(page.endsWith("</html>\n"));
    // The one address is the name of SVG.
    QByteArray others = page;
    others.replace("http://www.w3.org/2000/svg", "");
    for (const char *outside : {"http:", "https:", "src=", "href=", "@import", "url(", " style=", "unsafe"})
        QVERIFY2(!others.contains(outside), outside);
}

void tst_PluginCheckPages::pageHoldsTheReport()
{
    const QByteArray page = reportPage(report());
    for (const char *part :
         {"<dt>plug-ins</dt><dd>11</dd>", "<dt>errors</dt><dd>4</dd>",
          "Libraries for Windows: this build reads ELF files only", "pluginconfig4CAM.json (cam set)",
          "pluginconfig4DFM.json (dfm set)", "<code>library-truncated</code>",
          "The file ends before its last section: it is cut off.", "Loading it fails, or ends the host.",
          "Copy it anew.", "/opt/cam/plugins/Matrix_ToolBar.dll", "pluginconfig4CAM.json:7:52",
          "signal 11, segmentation fault", "42 tips read", "<th scope=\"col\">Severity</th>",
          "data-severity=\"error\" data-names=\"Matrix_ToolBar\"", "<em>(version)</em>", "not found"})
        QVERIFY2(page.contains(part), part);
    if (hasGraphviz())
        QVERIFY(page.contains("<title>Matrix: error</title>"));
}

void tst_PluginCheckPages::worstFindingsComeFirst()
{
    const QByteArray page = reportPage(report());
    const int error = page.indexOf("<code>library-missing");
    const int warning = page.indexOf("<code>dependency-version");
    const int note = page.indexOf("<code>dependency-ignored");
    QVERIFY(error > 0);
    QVERIFY(error < warning);
    QVERIFY(warning < note);
}

void tst_PluginCheckPages::hostileNamesInThePage()
{
    QJsonArray plugins;
    QJsonArray findings;
    QJsonArray leftOut;
    for (const char *name : hostileNames) {
        QJsonObject each = plugin(name, "error", {dependency(name, "cycle")});
        each.insert("probe", QJsonObject{{"result", name}, {"detail", name}, {"output", name}});
        plugins.append(each);
        QJsonObject finding{{"severity", "error"}};
        for (const char *key :
             {"code", "configuration", "plugin", "file", "message", "consequence", "advice"})
            finding.insert(key, name);
        findings.append(finding);
        leftOut.append(name);
    }
    QJsonObject hostile = reportOf(plugins);
    hostile.insert("findings", findings);
    hostile.insert("leftOut", leftOut);
    hostile.insert("tool", QJsonObject{{"name", "<b>"}, {"version", "<i>"}});
    const QByteArray page = reportPage(hostile);
    QVERIFY(page.contains("&lt;script&gt;alert(1)&lt;/script&gt;"));
    QCOMPARE(page.count("<script"), 1);
    QCOMPARE(page.count("</script"), 1);
    for (const char *raw : {"alert(1)</", "\"quoted\"", "<b>", "<i>", "<port>", "]]>"})
        QVERIFY2(!page.contains(raw), raw);
}

void tst_PluginCheckPages::longTablesAreCutAndSaySo()
{
    QJsonArray findings;
    for (int number = 0; number < Table::mostRows + 2; ++number)
        findings.append(QJsonObject{{"severity", "note"}, {"code", "some-code"}});
    QJsonObject object = reportOf({});
    object.insert("findings", findings);
    const QByteArray page = reportPage(object);
    QCOMPARE(page.count("<code>some-code"), Table::mostRows);
    QVERIFY(page.contains("The first 5,000 of 5,002 rows are in this page"));
}

void tst_PluginCheckPages::pageOfNothing()
{
    const QByteArray page = reportPage({});
    QVERIFY(page.contains("There is no plug-in to draw."));
    QVERIFY(page.contains("Nothing was found."));
}

namespace {

QJsonObject traced(const QString &kind, const QString &sender, const QString &receiver, int count = 1)
{
    return {{"kind", kind},         {"time", "2026-11-21 14:46:05.123456"}, {"sender", sender},
            {"receiver", receiver}, {"type", "frame opened (20001638)"},    {"count", count}};
}

}

void tst_PluginCheckPages::diagramHasArrowsAndNotes()
{
    const QJsonObject note{{"kind", "note"},
                           {"time", "2026-11-21 14:46:05.2"},
                           {"text", "load-failed: X.dll"},
                           {"severity", "error"},
                           {"count", 1}};
    const QByteArray svg = sequenceDiagram(
        {traced("delivered", "A", "B", 3), traced("delivered", "B", "B"), traced("refused", "B", "A"), note});
    const QByteArray wrapped = "<div>" + svg + "</div>";
    const QStringList texts = textsIn(wrapped, "text");
    QCOMPARE(texts, (QStringList{"A", "B", "14:46:05.123", "frame opened (20001638) × 3", "14:46:05.123",
                                 "frame opened (20001638)", "14:46:05.123", "frame opened (20001638)",
                                 "14:46:05.2", "load-failed: X.dll"}));
    QCOMPARE(svg.count("<g class=\"delivered\">"), 2);
    QCOMPARE(svg.count("<g class=\"refused\">"), 1);
    QCOMPARE(svg.count("<g class=\"note failure\">"), 1);
    QVERIFY(textsIn(wrapped, "title")
                .contains("2026-11-21 14:46:05.123456␊B to A, frame opened (20001638), not delivered"));
}

void tst_PluginCheckPages::diagramOfManyParticipants()
{
    QJsonArray traffic;
    for (int number = 0; number < 100; ++number)
        traffic.append(traced("delivered", "Host", QString("P%1").arg(number)));
    const QByteArray svg = sequenceDiagram(traffic);
    QCOMPARE(svg.count("class=\"lifeline\""), mostLifelines + 1);
    QCOMPARE(svg.count("class=\"delivered\""), 100);
    QVERIFY(svg.contains(">(others)<"));
}

void tst_PluginCheckPages::hostileNamesInTheDiagram()
{
    for (const char *name : hostileNames) {
        const QByteArray svg = "<div>" + sequenceDiagram({traced("delivered", name, "B")}) + "</div>";
        QVERIFY2(!textsIn(svg, "text").isEmpty(), name);
        QVERIFY2(!svg.contains("<script"), name);
    }
}

void tst_PluginCheckPages::logPageSaysWhatIsNotDrawn()
{
    QJsonObject object{{"traffic", QJsonArray{traced("delivered", "A", "B")}}, {"notDrawn", 1234}};
    QVERIFY(logPage(object).contains("Drawn are the first 1 events; 1,234 that came later are not."));
    object.insert("notDrawn", 0);
    QVERIFY(!logPage(object).contains("Drawn are"));
    QVERIFY(logPage({}).contains("There is nothing to draw."));
}

int main(int argc, char **argv)
{
    return runTest<tst_PluginCheckPages>(argc, argv);
}

#include "tst_plugincheckpages.moc"

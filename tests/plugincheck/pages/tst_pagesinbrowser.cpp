#include "LogCommand.h"
#include "ReportPage.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtGui/QImage>

using namespace PluginCheck;

/// The pages in a real browser without a window: what the filter shows, and that nothing foreign runs.
class tst_PagesInBrowser : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void filterShowsRows_data();
    void filterShowsRows();
    void filterIsFilledFromTheAddress();
    void logIsFilteredByNames();
    void namesAreTextsOnly();
    void foreignScriptsDoNotRun();
    void pageIsDrawn_data();
    void pageIsDrawn();

private:
    QString write(const QString &name, const QByteArray &page);
    QByteArray browse(const QString &file, const QString &fragment, const QStringList &options);
    QString dom(const QString &file, const QString &fragment = {});

    QTemporaryDir m_directory;
    QString m_report;
};

namespace {

constexpr int timeLimitInMilliseconds = 60000;

QJsonObject report()
{
    return QJsonDocument::fromJson(TestFiles::read(REPORT_FILE)).object();
}

QString tableIn(const QString &dom, const QString &id)
{
    const int begin = dom.indexOf("<table id=\"" + id + '"');
    return dom.mid(begin, dom.indexOf("</table>", begin) - begin);
}

/// The first cells of the rows that are to be seen.
QStringList shownRows(const QString &dom, const QString &table)
{
    static const QRegularExpression row("<tr data-severity=[^>]*>.*?</th>",
                                        QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression markup("<[^>]*>");
    QStringList shown;
    for (auto match = row.globalMatch(tableIn(dom, table)); match.hasNext();) {
        const QString text = match.next().captured();
        if (!text.section('>', 0, 0).contains(" hidden"))
            shown.append(QString(text).remove(markup));
    }
    return shown;
}

QString counter(const QString &dom, const QString &table)
{
    static const QRegularExpression output("<output[^>]*>([^<]*)</output>");
    return output.match(tableIn(dom, table)).captured(1);
}

}

void tst_PagesInBrowser::initTestCase()
{
    QVERIFY(m_directory.isValid());
    m_report = write("report.html", reportPage(report()));
}

QString tst_PagesInBrowser::write(const QString &name, const QByteArray &page)
{
    TestFiles::write(m_directory.filePath(name), page);
    return m_directory.filePath(name);
}

QByteArray tst_PagesInBrowser::browse(const QString &file, const QString &fragment,
                                      const QStringList &options)
{
    QUrl url = QUrl::fromLocalFile(file);
    url.setFragment(fragment, QUrl::StrictMode);
    QProcess browser;
    browser.start(BROWSER, QStringList{"--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                                       "--user-data-dir=" + m_directory.filePath("profile")}
                               + options + QStringList(QString::fromLatin1(url.toEncoded())));
    if (!browser.waitForFinished(timeLimitInMilliseconds) || browser.exitCode() != 0) {
        browser.kill();
        browser.waitForFinished();
        qWarning("the browser failed: %s", browser.readAllStandardError().constData());
        return {};
    }
    return browser.readAllStandardOutput();
}

QString tst_PagesInBrowser::dom(const QString &file, const QString &fragment)
{
    return QString::fromUtf8(browse(file, fragment, {"--dump-dom"}));
}

void tst_PagesInBrowser::filterShowsRows_data()
{
    QTest::addColumn<QString>("fragment");
    QTest::addColumn<QStringList>("findings");
    QTest::addColumn<QString>("count");
    QTest::addColumn<QStringList>("plugins");
    QTest::newRow("nothing chosen") << "" << QStringList{"dependency-cycle",   "library-truncated",
                                                         "probe-crashed",      "library-missing",
                                                         "dependency-version", "dependency-missing",
                                                         "dependency-ignored"}
                                    << "7" << QStringList{"Graphic_View",         "Graphic_Tips",
                                                          "Graphic_Toolbar_Edit", "Matrix",
                                                          "Matrix_ToolBar",       "Matrix_Layers",
                                                          "Graphic_MiniMap",      "Graphic_Coordinate"};
    QTest::newRow("text") << "filter=CUT%20off" << QStringList("library-truncated") << "1 of 7"
                          << QStringList();
    QTest::newRow("Chinese text") << "filter=%E7%94%B5%E8%B7%AF%E6%9D%BF" << QStringList("library-missing")
                                  << "1 of 7" << QStringList("Graphic_Coordinate");
    QTest::newRow("severity") << "severity=warning" << QStringList{"dependency-version", "dependency-missing"}
                              << "2 of 7" << QStringList("Graphic_Toolbar_Edit");
    QTest::newRow("plug-in") << "plugin=Matrix_Layers" << QStringList("probe-crashed") << "1 of 7"
                             << QStringList("Matrix_Layers");
    QTest::newRow("all three") << "filter=graphic&severity=error&plugin=Graphic_MiniMap"
                               << QStringList("library-missing") << "1 of 7"
                               << QStringList("Graphic_MiniMap");
    QTest::newRow("nothing fits") << "filter=%3Cscript%3E" << QStringList() << "0 of 7" << QStringList();
}

void tst_PagesInBrowser::filterShowsRows()
{
    QFETCH(QString, fragment);
    const QString page = dom(m_report, fragment);
    QTEST(shownRows(page, "findings"), "findings");
    QTEST(counter(page, "findings"), "count");
    QTEST(shownRows(page, "plugins0"), "plugins");
}

void tst_PagesInBrowser::filterIsFilledFromTheAddress()
{
    // Hidden without scripts, which could not filter then.
    QVERIFY(TestFiles::read(m_report).contains("<form id=\"filter\" role=\"search\" hidden>"));
    QVERIFY(dom(m_report).contains("<form id=\"filter\" role=\"search\">"));
}

void tst_PagesInBrowser::logIsFilteredByNames()
{
    QByteArray log;
    for (const char *names : {"A send to B", "B send to C", "C send to 电路"})
        log += QByteArray("I20261121 14:46:05.123456 1 pluginManger4CAM.cpp:1] ") + names + " 20001638\n";
    const QString page = m_directory.filePath("log.html");
    QCOMPARE(runLogCommand({"--format", "html", "--output", page, write("log", log)}), 0);
    QCOMPARE(shownRows(dom(page), "messages"), (QStringList{"A", "B", "C"}));
    QCOMPARE(shownRows(dom(page, "plugin=B"), "messages"), (QStringList{"A", "B"}));
    QCOMPARE(shownRows(dom(page, "plugin=%E7%94%B5%E8%B7%AF&filter=frame"), "messages"), (QStringList{"C"}));
}

/// What a browser makes of hostile names is text again.
void tst_PagesInBrowser::namesAreTextsOnly()
{
    const QString name =
        "<img src=x onerror=\"document.title='run'\"><script>document.title='run'</script>]]>'\"&amp;";
    QJsonObject object = report();
    QJsonObject finding{
        {"severity", "error"}, {"code", name}, {"plugin", name}, {"message", name}, {"file", name}};
    object.insert("findings", QJsonArray{finding});
    object.insert(
        "configurations",
        QJsonArray{QJsonObject{{"file", name},
                               {"set", name},
                               {"plugins", QJsonArray{QJsonObject{{"name", name}, {"state", "good"}}}}}});
    const QString page = dom(write("hostile.html", reportPage(object)),
                             "plugin=" + QString::fromLatin1(QUrl::toPercentEncoding(name)));
    QVERIFY(page.contains("<title>Check of plug-in sets</title>"));
    QVERIFY(!page.contains("<img"));
    QCOMPARE(shownRows(page, "findings").size(), 1);
    const QString asText = QString(name).replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;");
    QCOMPARE(shownRows(page, "findings").first(), asText);
    QCOMPARE(shownRows(page, "plugins0").size(), 1);
}

/// Should a text ever slip through as markup, the page's policy still keeps it from running.
void tst_PagesInBrowser::foreignScriptsDoNotRun()
{
    const QByteArray script =
        "<script>document.title = 'run'</script><img src=\"data:,\" onerror=\"document.title = 'run'\">";
    QByteArray page = reportPage(report());
    const QString guarded = write("foreign.html", QByteArray(page).replace("</main>", script + "</main>"));
    QVERIFY(dom(guarded).contains("<title>Check of plug-in sets</title>"));

    // Without the policy they would run: the test is one.
    page.replace("http-equiv=\"Content-Security-Policy\"", "name=\"no-policy\"");
    const QString open = write("open.html", page.replace("</main>", script + "</main>"));
    QVERIFY(dom(open).contains("<title>run</title>"));
}

void tst_PagesInBrowser::pageIsDrawn_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("isDark");
    QTest::newRow("on a desk") << "1280,900" << QStringList() << false;
    QTest::newRow("on a phone") << "500,900" << QStringList() << false;
    QTest::newRow("in the dark") << "1280,900" << QStringList("--blink-settings=preferredColorScheme=0")
                                 << true;
}

void tst_PagesInBrowser::pageIsDrawn()
{
    QFETCH(QString, size);
    QFETCH(QStringList, options);
    const QString picture = m_directory.filePath("picture.png");
    browse(m_report, {}, options << "--window-size=" + size << "--screenshot=" + picture);
    const QImage image(picture);
    QCOMPARE(QString("%1,%2").arg(image.width()).arg(image.height()), size);
    QTEST(image.pixelColor(2, 2).lightness() < 64, "isDark");
    QVERIFY(QFile::remove(picture));
}

int main(int argc, char **argv)
{
    return runTest<tst_PagesInBrowser>(argc, argv);
}

#include "tst_pagesinbrowser.moc"

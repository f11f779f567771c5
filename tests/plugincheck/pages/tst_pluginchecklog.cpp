#include "camtest.h"
#include "keptloaders.h"
#include "logcommandrun.h"
#include "openbase.h"
#include "testmain.h"

#include <QtCore/QDir>
#include <QtCore/QException>
#include <QtCore/QProcess>

#ifdef __GLIBC__
#    include <cerrno>
#    include <clocale>
#    include <cstring>
#endif

#ifdef Q_OS_UNIX
#    include <sys/stat.h>
#endif

using namespace PluginCheck;

/// "plugincheck log" on what the library really writes.
class tst_PluginCheckLog : public CamTest, private LogCommandRun
{
    Q_OBJECT

private slots:
    void librariesThatDoNotLoad();
    void librariesTheLoaderRefuses_data();
    void librariesTheLoaderRefuses();
    void reasonsOfASystemInChinese();
    void pluginsThatQtRefuses_data();
    void pluginsThatQtRefuses();
    void configurationsThatCannotBeRead();
    void messagesThatAreDelivered();
    void messagesThatAreRefused();
    void pluginThatThrows();
    void nothingWrong();
    void decodedLines();

private:
    /// The library's log of this process, as far as it is written.
    QString realLog();

    OpenBase m_base;
};

namespace {

class Failure : public QException
{
public:
    void raise() const override { throw *this; }
    Failure *clone() const override { return new Failure(*this); }
};

}

QString tst_PluginCheckLog::realLog()
{
    const QString path = LogLines::file();
    log();
    boxes();
    return path;
}

void tst_PluginCheckLog::librariesThatDoNotLoad()
{
    const KeptLoaders keptLoaders;
    const QString missing = "/电路板 工作目录/größe/插件.dll";
    const QString noName = "/电路/说明.txt";
    const QString needy = "需要.dll";
    QTPluginsMangerPrivate tables;
    tables.m_names = {{needy, needy}};
    tables.m_dependencies = {{needy, QVariantList{QVariantMap{{"name", "nobody"}, {"version", "1.0"}}}}};
    for (int time = 0; time < 3; ++time)
        m_base.loadLibraryPlugin(tables, missing);
    m_base.loadLibraryPlugin(tables, noName);
    m_base.loadLibraryPlugin(tables, needy);

    const QJsonObject found = report({realLog()}, 1);
    QCOMPARE(failures(found), (QStringList{"load-failed " + missing, "no-library-name " + noName,
                                           "dependencies-failed " + needy}));
    QCOMPARE(summary(found, "failures"), 5);
    QCOMPARE(summary(found, "notTold"), 0);
    QCOMPARE(first(found, "failures").value("count").toInt(), 3);

    const QJsonArray reasons = first(found, "failures").value("reasons").toArray();
    QCOMPARE(reasons.size(), 1);
    const QJsonObject reason = reasons.first().toObject();
    QVERIFY2(reason.value("text").toString().contains(QDir::toNativeSeparators(missing)),
             qPrintable(reason.value("text").toString()));
    QCOMPARE(reason.value("count").toInt(), 3);
#ifndef Q_OS_WIN
    QCOMPARE(reason.value("meaning").toString(), QString("the library is not where the loader looks"));
#endif

    QByteArray text;
    QCOMPARE(run({LogLines::file()}, &text), 1);
    for (const QString &part :
         {missing, noName, needy, QString("load-failed: 3 times, "), QString("5 failed loads, ")})
        QVERIFY2(text.contains(part.toUtf8()), text);
    QByteArray page;
    QCOMPARE(run({"--format", "html", LogLines::file()}, &page), 1);
    QVERIFY(page.contains("<dt>failed loads</dt><dd>5</dd>"));
}

void tst_PluginCheckLog::librariesTheLoaderRefuses_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<QString>("meaning");
    const QString dir = FIXTURE_DIR;
#ifdef Q_OS_WIN
    QTest::newRow("needed library missing") << dir + "/missing_needed_library/Missing_Needed_Library.dll"
                                            << "the file is not there, or a library that it needs is not";
#else
    QTest::newRow("needed library missing")
        << dir + "/missing_needed_library/Missing_Needed_Library.dll"
        << "a library that the plug-in needs is not found: the one named in the reason";
    QTest::newRow("undefined symbol")
        << dir + "/undefined_symbol/Undefined_Symbol.dll"
        << "the plug-in wants a function that no library has, or another version of one";
    QTest::newRow("cut off") << write("cut_off.dll", "") << "the file is cut off or empty";
    QTest::newRow("something else") << write("something_else.dll", QByteArray(5000, 'x'))
                                    << "the file is not a library";
    const QString pipe = write("pipe.dll", "");
    QVERIFY(QFile::remove(pipe));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QTest::newRow("FIFO") << pipe << "the file is no file, but a FIFO or a terminal";
#endif
}

void tst_PluginCheckLog::librariesTheLoaderRefuses()
{
    const KeptLoaders keptLoaders;
    QFETCH(QString, library);
    QVERIFY(QFile::exists(library));
    QTPluginsMangerPrivate tables;
    m_base.loadLibraryPlugin(tables, library);
    const QJsonObject found = report({realLog()}, 1);
    QCOMPARE(failures(found), QStringList("load-failed " + library));
    const QJsonObject reason = first(found, "failures").value("reasons").toArray().first().toObject();
    QFETCH(QString, meaning);
    QVERIFY2(reason.value("meaning").toString() == meaning, qPrintable(reason.value("text").toString()));
    QVERIFY(!reason.value("next").toString().isEmpty());
}

/// A host sets the locale, and glibc has the words. This function has a process of its own.
void tst_PluginCheckLog::reasonsOfASystemInChinese()
{
#ifdef __GLIBC__
    QDir().mkpath(file("locales"));
    QProcess localedef;
    localedef.start("localedef", {"-i", "zh_CN", "-f", "UTF-8", file("locales/zh_CN.UTF-8")});
    qputenv("LOCPATH", QFile::encodeName(file("locales")));
    qunsetenv("LANGUAGE");
    if (!localedef.waitForFinished() || !std::setlocale(LC_ALL, "zh_CN.UTF-8")
        || std::strerror(ENOENT) != QByteArray("没有那个文件或目录")) {
        QTest::qSkip("This system does not know Chinese.", __FILE__, __LINE__);
        return;
    }

    const KeptLoaders keptLoaders;
    const QString needy = QStringLiteral(FIXTURE_DIR "/missing_needed_library/Missing_Needed_Library.dll");
    const QString broken = write("something_else.dll", QByteArray(5000, 'x'));
    QTPluginsMangerPrivate tables;
    for (const QString &library : {file("没有.dll"), needy, broken})
        m_base.loadLibraryPlugin(tables, library);
    QStringList meanings;
    for (const QJsonValue &failure : report({realLog()}, 1).value("failures").toArray()) {
        const QJsonObject reason = failure.toObject().value("reasons").toArray().first().toObject();
        const QString text = reason.value("text").toString();
        QVERIFY2(text.contains("无法打开共享对象文件") || text.contains("无效的 ELF 头"), qPrintable(text));
        meanings.append(reason.value("meaning").toString());
    }
    QCOMPARE(meanings,
             (QStringList{"the library is not where the loader looks",
                          "a library that the plug-in needs is not found: the one named in the reason",
                          "the file is not a library"}));
#else
    QTest::qSkip("Other systems are known in Chinese by their recorded words.", __FILE__, __LINE__);
#endif
}

void tst_PluginCheckLog::pluginsThatQtRefuses_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("meaning");
    const QString dir = FIXTURE_DIR;
    QTest::newRow("absent") << dir + "/absent.dll"
                            << "the Qt plug-in is in none of the folders where Qt looks";
    QTest::newRow("plain library") << dir + "/healthy/Any_Library.dll"
                                   << "a plain library is listed in the desktop set";
#ifndef Q_OS_WIN
    const QByteArray whole = TestFiles::read(dir + "/desktop/Other_Process.dll");
    QTest::newRow("cut off") << write("cut_plugin.dll", whole.chopped(1)) << "the file is cut off or damaged";
    QTest::newRow("cut off early") << write("cut_early.dll", whole.left(100))
                                   << "the file is cut off or damaged";
    QTest::newRow("other word size") << write("narrow_plugin.dll", QByteArray(whole).replace(4, 1, "\x01"))
                                     << "the plug-in was built for another machine than the host";
#endif
}

void tst_PluginCheckLog::pluginsThatQtRefuses()
{
    const KeptLoaders keptLoaders;
    QFETCH(QString, plugin);
    QTPluginsMangerPrivate tables;
    m_base.loadQtPlugin(tables, plugin);
    const QJsonObject found = report({realLog()}, 1);
    QCOMPARE(failures(found), QStringList("load-failed " + plugin));
    const QJsonObject reason = first(found, "failures").value("reasons").toArray().first().toObject();
    QTEST(reason.value("meaning").toString(), "meaning");
    QVERIFY(!reason.value("next").toString().isEmpty());
}

void tst_PluginCheckLog::configurationsThatCannotBeRead()
{
    QTPluginsMangerPrivate tables;
    const QString missing = file("没有.json");
    const QString directory = folder();
    const QString broken = write("坏.json", "{ 电路");
    for (const QString &path : {missing, directory, broken})
        m_base.readPluginConfig(tables, path);
    QCOMPARE(failures(report({realLog()}, 1)),
             (QStringList{"config-missing " + missing, "config-not-opened " + directory,
                          "config-not-parsed " + broken}));
}

void tst_PluginCheckLog::messagesThatAreDelivered()
{
    load();
    insertRoot();
    QWidget *const frame = graphicFrame("j1 | pcb");
    element(view, frame);
    element(tips, frame);
    const auto send = [&](const QString &src, const QString &dst, int type) {
        manager()->recMegToPlugin(frame, message(dst, {}, type, src));
    };
    send("电路.dll", view, 7);
    send("电路.dll", view, 7);
    send(view, tips, 20001638);
    send(view, tips, 10000000);
    send("", view, -7);
    send("A send to B 3", view, 7);
    deliveries();

    const QJsonObject found = report({realLog()}, 0);
    QCOMPARE(messages(found), (QStringList{"2 电路 -> Graphic_View 7", "1  -> Graphic_View -7",
                                           // The first " send to " is taken.
                                           "1 A -> B 3 send to Graphic_View 7",
                                           "1 Graphic_View -> Graphic_Tips 20001638 frame opened"}));
    QCOMPARE(summary(found, "messages"), 5);

    QStringList drawn;
    for (const QJsonValue &value : found.value("traffic").toArray()) {
        const QJsonObject each = value.toObject();
        if (each.value("kind") == "delivered")
            drawn.append(each.value("sender").toString() + '|' + each.value("receiver").toString() + '|'
                         + each.value("type").toString() + '|'
                         + QString::number(each.value("count").toInt()));
    }
    QCOMPARE(drawn,
             (QStringList{"电路|Graphic_View|7|2", "Graphic_View|Graphic_Tips|frame opened (20001638)|1",
                          "|Graphic_View|-7|1", "A|B 3 send to Graphic_View|7|1"}));
}

void tst_PluginCheckLog::messagesThatAreRefused()
{
    load();
    QWidget stranger;
    manager()->recMegToPlugin(&stranger, message(view, {}, 20001638, "电路.dll"));
    manager()->recMegToPlugin(nullptr, message(view, {}, 20001638, "电路.dll"));
    manager()->recMegToPlugin(&stranger, message(view, {}, -1));
    const QJsonObject found = report({realLog()}, 0);
    QCOMPARE(sizeOf(found, "errors"), 2);
    QCOMPARE(first(found, "errors").value("text").toString(),
             QString("message from \"电路.dll\" to \"Graphic_View.dll\", type frame opened (20001638), of a "
                     "frame that is "
                     "not registered"));
    QCOMPARE(first(found, "errors").value("count").toInt(), 2);
    QCOMPARE(found.value("errors").toArray().last().toObject().value("text").toString(),
             QString("recMegToPlugin metadate type is -1"));
    QCOMPARE(summary(found, "errors"), 3);
    QCOMPARE(summary(found, "notTold"), 0);
}

void tst_PluginCheckLog::pluginThatThrows()
{
    load();
    QWidget *const root = insertRoot();
    element(view, root);
    // Who threw it owns it, and this one never comes to free it.
    static Failure failure;
    onNextDelivery([] { throw static_cast<QException *>(&failure); });
    manager()->pluginTransmitData(message(view, {{"DstType", "EngineerRoot"}}));
    deliveries();
    const QJsonObject found = report({realLog()}, 0);
    QCOMPARE(sizeOf(found, "errors"), 1);
    QCOMPARE(first(found, "errors").value("text").toString(), QString("pluginTransmitData Error."));
    QVERIFY(first(found, "errors").value("meaning").toString().contains("of pluginTransmitData;"));
    QCOMPARE(summary(found, "notTold"), 0);
}

void tst_PluginCheckLog::nothingWrong()
{
    load();
    QTPluginsMangerPrivate tables;
    m_base.unloadAllLibraries(tables);
    const QJsonObject found = report({realLog()}, 0);
    QCOMPARE(failures(found), QStringList());
    QStringList notes;
    for (const QJsonValue &value : found.value("traffic").toArray())
        notes.append(value.toObject().value("text").toString());
    QCOMPARE(notes,
             (QStringList{"a CAM or DFM set has been gone through", "all libraries were asked to unload"}));
    QCOMPARE(summary(found, "notTold"), 0);
    QCOMPARE(first(found, "files").value("file").toString(), LogLines::file());
    // glog's four lines at the start, and two entries.
    QCOMPARE(first(found, "files").value("lines").toInt(), 6);
    QCOMPARE(summary(found, "entries"), 2);
}

void tst_PluginCheckLog::decodedLines()
{
    const KeptLoaders keptLoaders;
    QTPluginsMangerPrivate tables;
    m_base.loadLibraryPlugin(tables, "/电路/没有.dll");
    m_base.unloadAllLibraries(tables);
    QByteArray output;
    QCOMPARE(run({"--decode", realLog()}, &output), 0);
    const QList<QByteArray> lines = output.trimmed().split('\n');
    QCOMPARE(lines.size(), 6);
    QVERIFY(lines.at(0).startsWith("Log file created at: "));
    QVERIFY2(lines.at(4).contains("] 加载插件失败！失败路径：/电路/没有.dll，失败原因："), lines.at(4));
    QVERIFY2(lines.at(5).endsWith("] 所有插件已卸载！"), lines.at(5));
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_PluginCheckLog>(argc, argv);
}

#include "tst_pluginchecklog.moc"

#include "LogCommand.h"
#include "LogInput.h"
#include "camtest.h"
#include "gbktexts.h"
#include "keptloaders.h"
#include "openbase.h"
#include "testmain.h"

#include <QtCore/QBuffer>
#include <QtCore/QException>
#include <QtCore/QJsonDocument>

#include <csignal>
#include <thread>

using namespace PluginCheck;

/// "plugincheck log" on what the library really writes, and on what others may have written.
class tst_PluginCheckLog : public CamTest
{
    Q_OBJECT

private slots:
    void librariesThatDoNotLoad();
    void librariesTheLoaderRefuses_data();
    void librariesTheLoaderRefuses();
    void configurationsThatCannotBeRead();
    void messagesThatAreDelivered();
    void messagesThatAreRefused();
    void pluginThatThrows();
    void nothingWrong();
    void decodedLines();
    void spanOfTime();

    void linesOfOtherUnitsAreOnlyCounted();
    void linesInTwoFilesAreCountedOnce();
    void furtherLinesBelongToTheirMessage();
    void hostileLines();
    void manyGroupsAreBounded();
    void drawnEventsAreLimited();
    void windowsLineEnds();
    void linesWithoutEnd();
    void unreadableFileDoesNotStopTheOthers();
    void wrongUsage_data();
    void wrongUsage();
    void outputIsNoInput();

    void growingFileIsFollowed();
    void followedFileMayBeCutOff();
    void followedFileMayBeReplaced();
    void interruptionEndsFollowing();

private:
    QString file(const QString &name) const { return m_files.filePath(name); }
    QString write(const QString &name, const QByteArray &content);
    /// The library's log of this process, as far as it is written.
    QString realLog();
    int run(QStringList arguments, QByteArray *output);
    QJsonObject report(const QStringList &arguments, int status);

    QTemporaryDir m_files;
    OpenBase m_base;
};

namespace {

class Failure : public QException
{
public:
    void raise() const override { throw *this; }
    Failure *clone() const override { return new Failure(*this); }
};

QByteArray line(char severity, const QByteArray &unit, const QByteArray &text,
                const QByteArray &time = "14:46:05.123456")
{
    return severity + ("20261121 " + time + " 4711 ") + unit + ".cpp:1] " + text + '\n';
}

QByteArray cam(const QByteArray &text, const QByteArray &time = "14:46:05.123456")
{
    return line('I', "pluginManger4CAM", text, time);
}

QJsonObject first(const QJsonObject &report, const char *key)
{
    return report.value(key).toArray().first().toObject();
}

int sizeOf(const QJsonObject &report, const char *key)
{
    return report.value(key).toArray().size();
}

int summary(const QJsonObject &report, const char *key)
{
    return report.value("summary").toObject().value(key).toInt(-1);
}

/// "code file" of each failure, in order.
QStringList failures(const QJsonObject &report)
{
    QStringList result;
    for (const QJsonValue &value : report.value("failures").toArray())
        result.append(value.toObject().value("code").toString() + ' '
                      + value.toObject().value("file").toString());
    return result;
}

/// "count sender -> receiver type name" of each message.
QStringList messages(const QJsonObject &report)
{
    QStringList result;
    for (const QJsonValue &value : report.value("messages").toArray()) {
        const QJsonObject each = value.toObject();
        result.append(QString("%1 %2 -> %3 %4 %5")
                          .arg(each.value("count").toInt())
                          .arg(each.value("sender").toString(), each.value("receiver").toString())
                          .arg(each.value("type").toInt())
                          .arg(each.value("typeName").toString())
                          .trimmed());
    }
    return result;
}

}

QString tst_PluginCheckLog::write(const QString &name, const QByteArray &content)
{
    TestFiles::write(file(name), content);
    return file(name);
}

QString tst_PluginCheckLog::realLog()
{
    const QString path = LogLines::file();
    log();
    boxes();
    return path;
}

int tst_PluginCheckLog::run(QStringList arguments, QByteArray *output)
{
    const QString result = file("output");
    QFile::remove(result);
    const int status = runLogCommand(arguments << "--output" << result);
    *output = QFile::exists(result) ? TestFiles::read(result) : QByteArray();
    return status;
}

QJsonObject tst_PluginCheckLog::report(const QStringList &arguments, int status)
{
    QByteArray output;
    const int actual = run(QStringList{"--format", "json"} + arguments, &output);
    if (actual != status)
        qFatal("status %d", actual);
    return QJsonDocument::fromJson(output).object();
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
    QVERIFY2(reason.value("text").toString().contains(missing), qPrintable(reason.value("text").toString()));
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
    QTEST(reason.value("meaning").toString(), "meaning");
    QVERIFY(!reason.value("next").toString().isEmpty());
}

void tst_PluginCheckLog::configurationsThatCannotBeRead()
{
    QTPluginsMangerPrivate tables;
    const QString missing = file("没有.json");
    const QString directory = m_files.path();
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

void tst_PluginCheckLog::spanOfTime()
{
    const QString path =
        write("log", cam("A send to B 1", "14:00:00.000000") + cam("A send to B 2", "14:30:00.000000")
                         + "further line\n" + cam("A send to B 3", "15:00:00.000000"));
    const QJsonObject found = report({"--from", "14:10", "--to", "14:59", path}, 0);
    QCOMPARE(messages(found), QStringList("1 A -> B 2"));
    QCOMPARE(summary(found, "outsideSpan"), 2);
    QByteArray output;
    QCOMPARE(run({"--decode", "--from", "14:10", "--to", "14:59", path}, &output), 0);
    QCOMPARE(output, cam("A send to B 2", "14:30:00.000000") + "further line\n");
}

void tst_PluginCheckLog::linesOfOtherUnitsAreOnlyCounted()
{
    const QString path = write("log", line('E', "host", QByteArray(Gbk::loadFailed) + "x.dll")
                                          + line('I', "host", "A send to B 1") + cam("A send to B 1"));
    const QJsonObject found = report({path}, 0);
    QCOMPARE(summary(found, "notTheLibrarys"), 2);
    QCOMPARE(messages(found), QStringList("1 A -> B 1"));
}

void tst_PluginCheckLog::linesInTwoFilesAreCountedOnce()
{
    const QByteArray failed = line('E', "pluginMangerBase", QByteArray(Gbk::notALibrary) + "x.txt");
    // glog writes errors to the file of each severity below, and a message may really come twice.
    const QString infos = write("log.INFO", failed + failed + cam("A send to B 1"));
    const QString errors = write("log.ERROR", failed + failed);
    const QJsonObject found = report({infos, errors}, 1);
    QCOMPARE(first(found, "failures").value("count").toInt(), 2);
    QCOMPARE(summary(found, "alsoInOtherFile"), 2);
    QCOMPARE(sizeOf(found, "files"), 2);
}

void tst_PluginCheckLog::furtherLinesBelongToTheirMessage()
{
    const QString path =
        write("log", line('E', "pluginMangerBase",
                          QByteArray(Gbk::loadFailed) + "a\nb.dll" + Gbk::loadFailedReason
                              + "first\nsecond\xef\xbc\x81")
                         + "Log file created at: 2026/11/21 14:46:05\n" + cam("A send to B 1"));
    const QJsonObject found = report({path}, 1);
    QCOMPARE(failures(found), QStringList("load-failed a␊b.dll"));
    QCOMPARE(first(found, "failures").value("reasons").toArray().first().toObject().value("text").toString(),
             QString("first␊second！"));
    QCOMPARE(messages(found), QStringList("1 A -> B 1"));
}

void tst_PluginCheckLog::hostileLines()
{
    QByteArray content =
        "\xff\xfe\n\n" + QByteArray(1, '\0') + "\n] \n" + cam(" send to  ") + cam(" send to ")
        + cam("A send to B 99999999999999999999") + cam("A send to B -")
        + cam("<script>alert(1)</script> send to ]]>\x1b[31m 7")
        + line('E', "pluginManger4CAM", "recMegToPlugin metadate frame is ")
        + line('E', "pluginManger4CAM", "recMegToPlugin metadate frame is  src: type: dst:")
        + line('E', "pluginManger4CAM", "recMegToPlugin metadate frame is  dst: src: type:")
        + line('E', "pluginMangerBase", Gbk::loadFailed)
        + line('E', "pluginMangerBase", QByteArray(Gbk::loadFailed) + QByteArray(100000, '\xb0'))
        + "E20261121 14:46:05.123456 1 pluginMangerBase.cpp:1] " + Gbk::loadFailedReason;
    const QString path = write("log", content);
    const QJsonObject found = report({path}, 1);
    QCOMPARE(sizeOf(found, "failures"), 2);
    QCOMPARE(messages(found), QStringList("1 <script>alert(1)</script> -> ]]>␛[31m 7"));
    QVERIFY(summary(found, "notTold") >= 7);

    QByteArray output;
    QCOMPARE(run({path}, &output), 1);
    QVERIFY(!output.contains('\x1b'));
    QVERIFY(!output.contains('\0'));
    QCOMPARE(QString::fromUtf8(output).toUtf8(), output);
    QCOMPARE(run({"--decode", path}, &output), 0);
    QVERIFY(!output.contains('\x1b'));
    QCOMPARE(run({"--format", "html", path}, &output), 1);
    QVERIFY(output.contains("&lt;script&gt;alert(1)"));
    QCOMPARE(output.count("<script"), 1);
    QVERIFY(!output.contains("]]>"));
}

void tst_PluginCheckLog::manyGroupsAreBounded()
{
    QByteArray content;
    for (int number = 0; number < 25000; ++number)
        content += cam("A send to B" + QByteArray::number(number) + " 1")
                   + line('E', "pluginMangerBase", Gbk::notALibrary + QByteArray::number(number));
    const QJsonObject found = report({write("log", content)}, 1);
    QCOMPARE(sizeOf(found, "messages"), 20000);
    QCOMPARE(sizeOf(found, "failures"), 20000);
    QCOMPARE(summary(found, "messages"), 25000);
    QCOMPARE(summary(found, "notTold"), 10000);
}

void tst_PluginCheckLog::drawnEventsAreLimited()
{
    QByteArray content;
    for (int number = 0; number < 30; ++number)
        content += cam("A send to B " + QByteArray::number(number));
    const QString path = write("log", content);
    const QJsonObject found = report({"--draw", "10", path}, 0);
    QCOMPARE(sizeOf(found, "traffic"), 10);
    QCOMPARE(found.value("notDrawn").toInt(), 20);
    QByteArray page;
    QCOMPARE(run({"--format", "html", "--draw", "10", path}, &page), 0);
    QCOMPARE(page.count("<g class=\"delivered\">"), 10);
    QVERIFY(page.contains("Drawn are the first 10 events; 20 that came later are not."));
}

void tst_PluginCheckLog::windowsLineEnds()
{
    const QByteArray content = cam("A send to B 1") + cam("A send to B 1");
    QCOMPARE(messages(report({write("log", QByteArray(content).replace("\n", "\r\n"))}, 0)),
             QStringList("2 A -> B 1"));
}

void tst_PluginCheckLog::linesWithoutEnd()
{
    // Longer than any piece that is read at once, in memory that does not grow with it.
    QByteArray content(5 * 1024 * 1024, 'x');
    QBuffer buffer(&content);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    qint64 bytes = 0;
    size_t longest = 0;
    QVERIFY(readLines(buffer, [&](std::string_view each) {
        bytes += qint64(each.size());
        longest = qMax(longest, each.size());
    }));
    QCOMPARE(bytes, qint64(content.size()));
    QVERIFY(longest < 3 * 1024 * 1024);
}

void tst_PluginCheckLog::unreadableFileDoesNotStopTheOthers()
{
    const QString path = write("log", cam("A send to B 1"));
    QCOMPARE(messages(report({file("nothing"), path}, 3)), QStringList("1 A -> B 1"));
    QByteArray output;
    QCOMPARE(run({"--decode", file("nothing"), path}, &output), 3);
    QCOMPARE(output, cam("A send to B 1"));
    QCOMPARE(runLogCommand({"--output", file("no/such/folder/x"), path}), 3);
}

void tst_PluginCheckLog::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no file") << QStringList();
    QTest::newRow("unknown option") << QStringList{"--colour", "x"};
    QTest::newRow("unknown format") << QStringList{"--format", "dot", "x"};
    QTest::newRow("no time") << QStringList{"--from", "noon", "x"};
    QTest::newRow("no time at the end") << QStringList{"--to", "25:00", "x"};
    QTest::newRow("nothing to draw") << QStringList{"--draw", "0", "x"};
    QTest::newRow("too much to draw") << QStringList{"--draw", "100000", "x"};
    QTest::newRow("following in HTML") << QStringList{"--follow", "--format", "html", "x"};
    QTest::newRow("following the standard input") << QStringList{"--follow", "-"};
}

void tst_PluginCheckLog::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(runLogCommand(arguments), 2);
}

void tst_PluginCheckLog::outputIsNoInput()
{
    const QString path = write("log", cam("A send to B 1"));
    QCOMPARE(runLogCommand({"--output", path, path}), 2);
    QCOMPARE(TestFiles::read(path), cam("A send to B 1"));
}

namespace {

class Lines
{
public:
    explicit Lines(FollowedFile &file)
        : m_file(file)
    {
    }

    QByteArrayList take()
    {
        QByteArrayList lines;
        m_file.poll([&](std::string_view each) { lines.append(QByteArray(each.data(), int(each.size()))); });
        return lines;
    }

private:
    FollowedFile &m_file;
};

void append(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

}

void tst_PluginCheckLog::growingFileIsFollowed()
{
    const QString path = write("log", "one\ntwo\nthr");
    FollowedFile followed(path);
    Lines lines(followed);
    QVERIFY(followed.open());
    QCOMPARE(lines.take(), (QByteArrayList{"one", "two"}));
    QCOMPARE(lines.take(), QByteArrayList());
    append(path, "ee\n");
    QCOMPARE(lines.take(), QByteArrayList{"three"});
    append(path, "four");
    QCOMPARE(lines.take(), QByteArrayList());
    QByteArrayList last;
    followed.finish([&](std::string_view each) { last.append(QByteArray(each.data(), int(each.size()))); });
    QCOMPARE(last, QByteArrayList{"four"});
}

void tst_PluginCheckLog::followedFileMayBeCutOff()
{
    const QString path = write("log", "one\ntwo\n");
    FollowedFile followed(path);
    Lines lines(followed);
    QVERIFY(followed.open());
    QCOMPARE(lines.take().size(), 2);
    write("log", "new\n");
    QCOMPARE(lines.take(), QByteArrayList{"new"});
    // Longer than before when it is looked at again, and still not what was read.
    write("log", "quite\nother\nlines\n");
    QCOMPARE(lines.take(), (QByteArrayList{"quite", "other", "lines"}));
}

void tst_PluginCheckLog::followedFileMayBeReplaced()
{
#ifdef Q_OS_WIN
    QSKIP("a file that is open cannot be renamed on Windows");
#endif
    const QString path = write("log", "one\n");
    FollowedFile followed(path);
    Lines lines(followed);
    QVERIFY(followed.open());
    QCOMPARE(lines.take(), QByteArrayList{"one"});
    QVERIFY(QFile::rename(path, file("log.1")));
    append(file("log.1"), "late\n");
    QCOMPARE(lines.take(), QByteArrayList{"late"});
    append(file("log.1"), "last, without its end");
    write("log", "first of the new one\n");
    QCOMPARE(lines.take(), (QByteArrayList{"last, without its end", "first of the new one"}));
    append(path, "second\n");
    QCOMPARE(lines.take(), QByteArrayList{"second"});
}

void tst_PluginCheckLog::interruptionEndsFollowing()
{
    const QString path = write("log", cam("A send to B 1"));
    const QString result = file("followed");
    int status = -1;
    std::thread follower([&] { status = runLogCommand({"--follow", "--output", result, path}); });
    const auto hasWritten = [&](const QByteArray &text) {
        return QFile::exists(result) && TestFiles::read(result).contains(text);
    };
    const bool begins = QTest::qWaitFor([&] { return hasWritten("A send to B 1"); });
    append(path, line('E', "pluginMangerBase", QByteArray(Gbk::notALibrary) + "电路.txt"));
    const bool continues =
        QTest::qWaitFor([&] { return hasWritten("目标路径内没有库文件！路径：电路.txt\n"); });
    std::raise(SIGINT);
    follower.join();
    QVERIFY(begins);
    QVERIFY(continues);
    QCOMPARE(status, 1);
    // The report comes at the end.
    QVERIFY(hasWritten("\n  电路.txt\n    no-library-name: once, "));
    QVERIFY(hasWritten("1 failed load, 0 other errors, 1 message\n"));
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_PluginCheckLog>(argc, argv);
}

#include "tst_pluginchecklog.moc"

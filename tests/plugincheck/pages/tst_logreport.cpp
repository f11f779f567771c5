#include "LogInput.h"
#include "LogReport.h"
#include "gbktexts.h"
#include "logcommandrun.h"
#include "testmain.h"

#include <QtCore/QBuffer>

#include <csignal>
#include <thread>

using namespace PluginCheck;

/// "plugincheck log" on what others may have written, and on files that change.
class tst_LogReport : public QObject, private LogCommandRun
{
    Q_OBJECT

private slots:
    void spanOfTime();
    void linesOfOtherUnitsAreOnlyCounted();
    void linesInTwoFilesAreCountedOnce();
    void filesAreReadInTheOrderOfTime();
    void linksToFilesThatAreReadAreLeftOut();
    void clockThatIsSetBackIsNoEnd();
    void fileThatIsNoLog_data();
    void fileThatIsNoLog();
    void furtherLinesBelongToTheirMessage();
    void reasonIsKnownInTheLanguageOfTheSystem_data();
    void reasonIsKnownInTheLanguageOfTheSystem();
    void hostileLines();
    void manyGroupsAreBounded();
    void drawnEventsAreLimited();
    void windowsLineEnds();
    void linesWithoutEnd();
    void unreadableFileDoesNotStopTheOthers();
    void wrongUsage_data();
    void wrongUsage();
    void outputIsNoInput();
    void outputIsKeptWhenNothingCanBeRead();
    void helpAndVersion();
    void growingFileIsFollowed();
    void followedFileMayBeCutOff();
    void followedFileMayBeReplaced();
    void interruptionEndsFollowing_data();
    void interruptionEndsFollowing();
};

namespace {

QByteArray line(char severity, const QByteArray &unit, const QByteArray &text,
                const QByteArray &time = "14:46:05.123456")
{
    return severity + ("20261121 " + time + " 4711 ") + unit + ".cpp:1] " + text + '\n';
}

QByteArray cam(const QByteArray &text, const QByteArray &time = "14:46:05.123456")
{
    return line('I', "pluginManger4CAM", text, time);
}

}

void tst_LogReport::spanOfTime()
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

void tst_LogReport::linesOfOtherUnitsAreOnlyCounted()
{
    const QString path = write("log", line('E', "host", QByteArray(Gbk::loadFailed) + "x.dll")
                                          + line('I', "host", "A send to B 1") + cam("A send to B 1"));
    const QJsonObject found = report({path}, 0);
    QCOMPARE(summary(found, "notTheLibrarys"), 2);
    QCOMPARE(messages(found), QStringList("1 A -> B 1"));
}

void tst_LogReport::linesInTwoFilesAreCountedOnce()
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

void tst_LogReport::filesAreReadInTheOrderOfTime()
{
    const QByteArray failed =
        line('E', "pluginMangerBase", QByteArray(Gbk::notALibrary) + "x.txt", "14:46:06.000000");
    const QString errors = write("log.ERROR", "Log file created at: 2026/11/21 14:46:06\n" + failed);
    const QString infos =
        write("log.INFO", "Log file created at: 2026/11/21 14:46:05\n" + cam("A send to B 1")
                              + "further line\n" + failed + cam("A send to B 2", "14:46:07.000000"));
    const QString before = write("log.before", cam("A send to B 3", "13:00:00.000000"));

    const QJsonObject found = report({errors, infos, before}, 1);
    QStringList drawn;
    for (const QJsonValue value : found.value("traffic").toArray())
        drawn.append(value.toObject().value("time").toString() + ' '
                     + value.toObject().value("kind").toString());
    QCOMPARE(drawn,
             (QStringList{"2026-11-21 13:00:00.000000 delivered", "2026-11-21 14:46:05.123456 delivered",
                          "2026-11-21 14:46:06.000000 note", "2026-11-21 14:46:07.000000 delivered"}));
    QCOMPARE(found.value("first").toString(), QString("2026-11-21 13:00:00.000000"));
    QCOMPARE(found.value("last").toString(), QString("2026-11-21 14:46:07.000000"));
    QCOMPARE(summary(found, "failures"), 1);
    QCOMPARE(summary(found, "alsoInOtherFile"), 1);

    QStringList files;
    for (const QJsonValue value : found.value("files").toArray())
        files.append(value.toObject().value("file").toString()
                     + QString(" %1").arg(value.toObject().value("lines").toInt()));
    QCOMPARE(files, (QStringList{errors + " 2", infos + " 5", before + " 1"}));
}

void tst_LogReport::linksToFilesThatAreReadAreLeftOut()
{
#ifdef Q_OS_WIN
    QSKIP("glog makes no links on Windows");
#endif
    const QString path = write("log.first", cam("A send to B 1"));
    QVERIFY(QFile::link("log.first", file("log.link")));
    const QJsonObject found = report({file("log.link"), path, path}, 0);
    QCOMPARE(messages(found), QStringList("1 A -> B 1"));
    QCOMPARE(sizeOf(found, "files"), 1);
    QByteArray output;
    QCOMPARE(run({"--decode", file("log.link"), path}, &output), 0);
    QCOMPARE(output, cam("A send to B 1"));
}

void tst_LogReport::clockThatIsSetBackIsNoEnd()
{
    const QJsonObject found = report(
        {write("log", cam("A send to B 1", "14:00:00.000000") + cam("A send to B 1", "13:00:00.000000"))}, 0);
    for (const QJsonObject &object : {found, first(found, "messages")}) {
        QCOMPARE(object.value("first").toString(), QString("2026-11-21 13:00:00.000000"));
        QCOMPARE(object.value("last").toString(), QString("2026-11-21 14:00:00.000000"));
    }
}

void tst_LogReport::fileThatIsNoLog_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isLog");
    QTest::newRow("nothing") << QByteArray() << true;
    QTest::newRow("only what glog begins with") << QByteArray("Log file created at: 2026/11/21\n") << true;
    QTest::newRow("entry of others") << line('I', "host", "ready") << true;
    QTest::newRow("text") << QByteArray("Dear support,\n") << false;
    QTest::newRow("bytes") << QByteArray("\x7f"
                                         "ELF\0\0\xff\n\xfe",
                                         9)
                           << false;
}

void tst_LogReport::fileThatIsNoLog()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isLog);
    const QString path = write("content", content);
    const QString good = write("good", cam("A send to B 1"));
    const QJsonObject found = report({path, good}, isLog ? 0 : 3);
    QCOMPARE(first(found, "files").value("isLog").toBool(), isLog);
    QCOMPARE(messages(found), QStringList("1 A -> B 1"));
    QByteArray output;
    QCOMPARE(run({path}, &output), isLog ? 0 : 3);
    QCOMPARE(output.contains(", none of which glog has written\n"), !isLog);
    QCOMPARE(run({"--format", "html", path}, &output), isLog ? 0 : 3);
    QCOMPARE(output.contains("/content is no log: glog has written none of its lines."), !isLog);
    // For what is only to be read, it need not be a log.
    QCOMPARE(run({"--decode", path}, &output), 0);
}

void tst_LogReport::furtherLinesBelongToTheirMessage()
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

/// What glibc writes of one fault, with the locale C and with zh_CN.
void tst_LogReport::reasonIsKnownInTheLanguageOfTheSystem_data()
{
    QTest::addColumn<QByteArray>("library");
    QTest::addColumn<QByteArray>("inEnglish");
    QTest::addColumn<QByteArray>("inChinese");
    QTest::addColumn<QString>("meaning");
    const auto row = [](const char *library, const char *inEnglish, const char *inChinese,
                        const char *meaning) {
        QTest::newRow(inEnglish) << QByteArray(library) << QByteArray(inEnglish) << QByteArray(inChinese)
                                 << QString(meaning);
    };
    const char *const missing = "the library is not where the loader looks";
    const char *const needy = "a library that the plug-in needs is not found: the one named in the reason";
    row("/路 径/View.dll", "/路 径/View.dll: cannot open shared object file: No such file or directory",
        "/路 径/View.dll: 无法打开共享对象文件: 没有那个文件或目录", missing);
    row("View.dll", "libView.dll.so: cannot open shared object file: No such file or directory",
        "libView.dll.so: 无法打开共享对象文件: 没有那个文件或目录", missing);
    row("View.dll", "Graphic_View.dll: cannot open shared object file: No such file or directory",
        "Graphic_View.dll: 无法打开共享对象文件: 没有那个文件或目录", needy);
    row("View.dll", "View.dll.so.1: cannot open shared object file: No such file or directory",
        "View.dll.so.1: 无法打开共享对象文件: 没有那个文件或目录", needy);
    row("View.dll", "libpriv.so: cannot open shared object file: No such file or directory",
        "libpriv.so: 无法打开共享对象文件: 没有那个文件或目录", needy);
    row("View.dll", "View.dll: cannot open shared object file: Permission denied",
        "View.dll: 无法打开共享对象文件: 权限不够", "the file cannot be opened");
    row("View.dll", "View.dll: invalid ELF header", "View.dll: 无效的 ELF 头", "the file is not a library");
    row("View.dll", "View.dll: file too short", "View.dll: 文件过短", "the file is cut off or empty");
    row("View.dll", "View.dll: cannot open shared object file: File name too long",
        "View.dll: 无法打开共享对象文件: 文件名过长", "the name is longer than that of any file");
    row("View.dll", "View.dll: wrong ELF class: ELFCLASS32", "View.dll: 错误的 ELF 类：ELFCLASS32",
        "the plug-in was built for another word size than the host");
    row("View.dll", "View.dll: cannot read file data: Is a directory",
        "View.dll: 无法读入文件数据: 是一个目录", "the file cannot be read: a directory, or a damaged disk");
    row("View.dll", "View.dll: ELF file OS ABI invalid", "View.dll: ELF 文件 OS ABI 无效",
        "the file is cut off or damaged");
    row("View.dll", "View.dll: nonzero padding in e_ident", "View.dll: 在 e_ident 中填补非零值",
        "the file is cut off or damaged");
    row("View.dll", "View.dll: object file has no dynamic section", "View.dll: 目标文件没有动态节",
        "the file is cut off or damaged");
    row("View.dll", "View.dll: ELF load command address/offset not page-aligned",
        "View.dll: ELF load command address/offset not page-aligned", "the file is cut off or damaged");
    row("View.dll", "View.dll: failed to map segment from shared object", "View.dll: 无法从共享目标中映射段",
        "the file could not be mapped: memory is short, or its file system allows no code");
    row("View.dll", "View.dll: cannot dynamically load position-independent executable",
        "View.dll: 无法动态载入位置无关可执行文件", "the file is a program, not a library");
    row("View.dll", "View.dll: shared object cannot be dlopen()ed", "View.dll: 无法用 dlopen() 打开共享库",
        "the library was linked to be loaded with a program alone");
    row("View.dll", "View.dll: cannot enable executable stack as shared object requires: Invalid argument",
        "View.dll: 无法启用共享目标需要的执行栈: 无效的参数",
        "the plug-in asks for a stack with code on it, which the system does not allow");
    row("View.dll", "View.dll: cannot allocate memory in static TLS block",
        "View.dll: 无法在静态 TLS 块中分配内存", "too many libraries with thread-local variables are loaded");
    row("View.dll", "libpriv.so: version `V2' not found (required by libmid.so)",
        "libpriv.so: version `V2' not found (required by libmid.so)",
        "a library that the plug-in needs is of an older version");
}

void tst_LogReport::reasonIsKnownInTheLanguageOfTheSystem()
{
    QFETCH(QByteArray, library);
    QFETCH(QByteArray, inEnglish);
    QFETCH(QByteArray, inChinese);
    QFETCH(QString, meaning);
    for (const QByteArray &reason : {inEnglish, inChinese}) {
        const QString path =
            write("log", line('E', "pluginMangerBase",
                              Gbk::loadFailed + library + Gbk::loadFailedReason + "Cannot load library "
                                  + library + ": (" + reason + ')'));
        const QJsonObject found = report({path}, 1);
        const QJsonObject told = first(found, "failures").value("reasons").toArray().first().toObject();
        QVERIFY2(told.value("meaning").toString() == meaning,
                 reason + ": " + told.value("meaning").toString().toUtf8());
    }
}

void tst_LogReport::hostileLines()
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

void tst_LogReport::manyGroupsAreBounded()
{
    LogReport::Limits limits;
    limits.groups = 50;
    LogReport logReport({}, limits);
    logReport.beginFile("log");
    const auto add = [&](const QByteArray &text) {
        logReport.addLine({text.constData(), size_t(text.size() - 1)});
    };
    for (int number = 0; number < 80; ++number) {
        add(cam("A send to B" + QByteArray::number(number) + " 1"));
        add(line('E', "pluginMangerBase", Gbk::notALibrary + QByteArray::number(number)));
        add(line('E', "pluginMangerBase",
                 QByteArray(Gbk::loadFailed) + "x" + Gbk::loadFailedReason + QByteArray::number(number)));
    }
    logReport.endFile();
    const QJsonObject found = logReport.toJson();
    QCOMPARE(sizeOf(found, "messages"), 50);
    QCOMPARE(sizeOf(found, "failures"), 50);
    QCOMPARE(summary(found, "messages"), 80);
    QCOMPARE(summary(found, "notTold"), 30 + 31);
    // The second failure is that of one library for many reasons.
    const QJsonObject second = found.value("failures").toArray().at(1).toObject();
    QCOMPARE(second.value("count").toInt(), 80);
    QCOMPARE(second.value("reasons").toArray().size(), 20);
}

void tst_LogReport::drawnEventsAreLimited()
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

void tst_LogReport::windowsLineEnds()
{
    const QByteArray content = cam("A send to B 1") + cam("A send to B 1");
    QCOMPARE(messages(report({write("log", QByteArray(content).replace("\n", "\r\n"))}, 0)),
             QStringList("2 A -> B 1"));
}

void tst_LogReport::linesWithoutEnd()
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

void tst_LogReport::unreadableFileDoesNotStopTheOthers()
{
    const QString path = write("log", cam("A send to B 1"));
    QCOMPARE(messages(report({file("nothing"), path}, 3)), QStringList("1 A -> B 1"));
    QByteArray output;
    QCOMPARE(run({"--decode", file("nothing"), path}, &output), 3);
    QCOMPARE(output, cam("A send to B 1"));
    QCOMPARE(runLogCommand({"--output", file("no/such/folder/x"), path}), 3);
}

void tst_LogReport::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no file") << QStringList();
    QTest::newRow("unknown option") << QStringList{"--colour", "x"};
    QTest::newRow("unknown format") << QStringList{"--format", "dot", "x"};
    QTest::newRow("no time") << QStringList{"--from", "noon", "x"};
    QTest::newRow("no time at the end") << QStringList{"--to", "25:00", "x"};
    QTest::newRow("end before the beginning")
        << QStringList{"--from", "2026-11-21 14:46:06", "--to", "2026-11-20", "x"};
    QTest::newRow("end before the beginning of a day")
        << QStringList{"--from", "23:00", "--to", "01:00", "x"};
    QTest::newRow("nothing to draw") << QStringList{"--draw", "0", "x"};
    QTest::newRow("too much to draw") << QStringList{"--draw", "100000", "x"};
    QTest::newRow("following in HTML") << QStringList{"--follow", "--format", "html", "x"};
    QTest::newRow("following the standard input") << QStringList{"--follow", "-"};
}

void tst_LogReport::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(runLogCommand(arguments), 2);
}

void tst_LogReport::outputIsNoInput()
{
    const QString path = write("log", cam("A send to B 1"));
    QCOMPARE(runLogCommand({"--output", path, path}), 2);
    QCOMPARE(TestFiles::read(path), cam("A send to B 1"));
}

void tst_LogReport::outputIsKeptWhenNothingCanBeRead()
{
    const QString kept = write("kept", "from an earlier run");
    QCOMPARE(runLogCommand({"--output", kept, file("nothing")}), 3);
    QCOMPARE(runLogCommand({"--follow", "--output", kept, file("nothing")}), 3);
    QCOMPARE(TestFiles::read(kept), QByteArray("from an earlier run"));
}

void tst_LogReport::helpAndVersion()
{
    for (const char *option : {"-h", "--help", "-v", "--version"})
        QCOMPARE(runLogCommand({option}), 0);
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

void tst_LogReport::growingFileIsFollowed()
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

void tst_LogReport::followedFileMayBeCutOff()
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

void tst_LogReport::followedFileMayBeReplaced()
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

void tst_LogReport::interruptionEndsFollowing_data()
{
    QTest::addColumn<QStringList>("more");
    QTest::addColumn<int>("status");
    QTest::newRow("one file") << QStringList() << 1;
    QTest::newRow("beside a file that is not there") << QStringList{file("nothing")} << 3;
}

void tst_LogReport::interruptionEndsFollowing()
{
    QFETCH(QStringList, more);
    const QString path = write("log", cam("A send to B 1"));
    const QString result = file("followed");
    QFile::remove(result);
    int status = -1;
    std::thread follower([&] {
        status = runLogCommand(QStringList{"--follow", "--output", result, path} + more);
    });
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
    QTEST(status, "status");
    // The report comes at the end.
    QVERIFY(hasWritten("\n  电路.txt\n    no-library-name: once, "));
    QVERIFY(hasWritten("1 failed load, 0 other errors, 1 message\n"));
}

int main(int argc, char **argv)
{
    return runTest<tst_LogReport>(argc, argv);
}

#include "tst_logreport.moc"

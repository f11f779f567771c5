#include "LogDecoder.h"
#include "LogLine.h"
#include "Readable.h"
#include "gbktexts.h"
#include "testmain.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QTextCodec>

using namespace PluginCheck;

/// Lines of logs become text that can be read, whatever encodings stand in them.
class tst_LogDecoder : public QObject
{
    Q_OBJECT

private slots:
    void textsOfTheLibraryBesideUtf8_data();
    void textsOfTheLibraryBesideUtf8();
    void pathAndReasonOfAFailedLoad_data();
    void pathAndReasonOfAFailedLoad();
    void textsOfTheLibraryAreNoPartOfUtf8_data();
    void textsOfTheLibraryAreNoPartOfUtf8();
    void everyCharacterOfGbk();
    void linesOfOthers_data();
    void linesOfOthers();
    void textsOfOthersBesidePaths();
    void anyBytesGiveSomeText();

    void prefix_data();
    void prefix();
    void noPrefix_data();
    void noPrefix();
    void span_data();
    void span();
    void noSpan_data();
    void noSpan();

    void readableText_data();
    void readableText();
};

namespace {

QString decoded(const QByteArray &line)
{
    return decodeLogLine({line.constData(), size_t(line.size())});
}

struct Text
{
    const char *name;
    const char *gbk;
    const char *utf8;
};

constexpr Text texts[] = {
    {"configuration missing", Gbk::configMissing, "插件json文件不存在！路径："},
    {"configuration not opened", Gbk::configNotOpened, "插件json文件打开失败!路径："},
    {"configuration not parsed", Gbk::configNotParsed, "解析config json文件错误！路径："},
    {"no library", Gbk::notALibrary, "目标路径内没有库文件！路径："},
    {"dependencies failed", Gbk::dependenciesFailed, "目标路径内库文件插件依赖项检测失败！路径："},
    {"load failed", Gbk::loadFailed, "加载插件失败！失败路径："},
    {"reason", Gbk::loadFailedReason, "，失败原因："},
    {"all unloaded", Gbk::allUnloaded, "所有插件已卸载！"},
    {"all loaded", Gbk::allLoaded, "加载所有插件成功"},
};

constexpr const char *paths[] = {
    "/opt/cam/Graphic_View.dll",
    "D:/电路板 工作目录/插件/图形.dll",
    "/größe/Ñandú/é.dll",
    "目.dll",
    "/𠀀/☃/电路.dll",
    "，失败原因：",
    "~/ä",
    "ä",
    "",
};

}

void tst_LogDecoder::textsOfTheLibraryBesideUtf8_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("expected");
    for (const Text &text : texts) {
        for (const char *path : paths) {
            const QByteArray name = QByteArray(text.name) + ", " + path;
            QTest::newRow(name + ", in GBK") << QByteArray(text.gbk) + path << QString(text.utf8) + path;
            QTest::newRow(name + ", in UTF-8") << QByteArray(text.utf8) + path << QString(text.utf8) + path;
            QTest::newRow(name + ", path before") << QByteArray(path) + text.gbk << QString(path) + text.utf8;
        }
    }
}

void tst_LogDecoder::textsOfTheLibraryBesideUtf8()
{
    QFETCH(QByteArray, line);
    QTEST(decoded(line), "expected");
}

void tst_LogDecoder::pathAndReasonOfAFailedLoad_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("reason");
    for (const char *path : paths) {
        for (const char *reason :
             {"No such file", "找不到指定的模块。", "Le module spécifié est introuvable."})
            QTest::newRow(QByteArray(path) + ", " + reason) << QByteArray(path) << QByteArray(reason);
    }
}

void tst_LogDecoder::pathAndReasonOfAFailedLoad()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, reason);
    QCOMPARE(decoded(Gbk::loadFailed + path + Gbk::loadFailedReason + reason),
             "加载插件失败！失败路径：" + QString(path) + "，失败原因：" + QString(reason));
}

void tst_LogDecoder::textsOfTheLibraryAreNoPartOfUtf8_data()
{
    QTest::addColumn<QByteArray>("gbk");
    for (const Text &text : texts)
        QTest::newRow(text.name) << QByteArray(text.gbk);
}

/// What makes finding them first safe: no name and no path can hold their bytes.
void tst_LogDecoder::textsOfTheLibraryAreNoPartOfUtf8()
{
    QFETCH(QByteArray, gbk);
    for (const char *before : {"", "\xc3", "\xe4", "\xe4\xb8", "\xf0", "\xf0\xa0", "\xf0\xa0\x80"}) {
        for (const char *after : {"", "\x80", "\x80\x80", "\x80\x80\x80"}) {
            const QByteArray bytes = before + gbk + after;
            QVERIFY2(QString::fromUtf8(bytes).contains(QChar::ReplacementCharacter), bytes.toHex());
        }
    }
}

void tst_LogDecoder::everyCharacterOfGbk()
{
    const QTextCodec *const codec = QTextCodec::codecForName("GBK");
    QVERIFY(codec);
    int characters = 0;
    for (int lead = 0; lead < 256; ++lead) {
        for (int trail = 0; trail < 256; ++trail) {
            const QChar character = gbkCharacter(uchar(lead), uchar(trail));
            if (character.isNull())
                continue;
            ++characters;
            const char bytes[] = {char(lead), char(trail)};
            QCOMPARE(codec->toUnicode(bytes, 2), QString(character));
        }
    }
    // GBK/5 and the districts of Chinese characters have 21,003 together; not all Qts know the same symbols.
    QVERIFY2(characters >= 21003, QByteArray::number(characters));
}

void tst_LogDecoder::linesOfOthers_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("expected");
    const auto gbk = [](const char *text) { return toGbk(QString::fromUtf8(text)); };

    QTest::newRow("plain") << QByteArray("ok") << "ok";
    QTest::newRow("empty") << QByteArray() << "";
    QTest::newRow("GBK") << gbk("打开文件失败") << "打开文件失败";
    QTest::newRow("GBK with digits and letters") << gbk("第3层，共12层：top") << "第3层，共12层：top";
    QTest::newRow("UTF-8") << QByteArray("打开文件失败") << "打开文件失败";
    QTest::newRow("GBK, then a path") << gbk("打开文件失败：") + "/电路板/顶层.gbr"
                                      << "打开文件失败：/电路板/顶层.gbr";
    QTest::newRow("a path, then GBK") << "/电路板/顶层.gbr" + gbk(" 打不开") << "/电路板/顶层.gbr 打不开";
    QTest::newRow("without anything between") << gbk("打开") + "电路板" + gbk("失败") << "打开电路板失败";
    QTest::newRow("beside a text of the library") << gbk("插件甲：") + Gbk::loadFailed + "/电路.dll"
                                                  << "插件甲：加载插件失败！失败路径：/电路.dll";
    QTest::newRow("Latin letters in UTF-8") << QByteArray("Größe: 5 µm") << "Größe: 5 µm";
    QTest::newRow("cut off in the middle of a character")
        << gbk("路径：") + "/电路\xe6\x9d" << QStringLiteral("路径：/电路\ufffd");
    QTest::newRow("no character of anything")
        << QByteArray("a\xff\xff z") << QStringLiteral("a\ufffd\ufffd z");
    QTest::newRow("lone byte at the end") << QByteArray("a\xb0") << QStringLiteral("a\ufffd");
    QTest::newRow("overlong form of a slash") << QByteArray("a\xc0\xaf z") << decoded("a\xc0\xaf z");
    QVERIFY(!decoded("a\xc0\xaf z").contains('/'));
}

void tst_LogDecoder::linesOfOthers()
{
    QFETCH(QByteArray, line);
    QTEST(decoded(line), "expected");
}

/// What hosts and plug-ins write is told by what is likely. Sentences of frequent characters beside paths of
/// three characters or more are nearly always read as they were written.
void tst_LogDecoder::textsOfOthersBesidePaths()
{
    QRandomGenerator random(20);
    const auto character = [&] {
        return gbkCharacter(uchar(random.bounded(0xb0, 0xd8)), uchar(random.bounded(0xa1, 0xfa)));
    };
    const auto word = [&](int least) {
        QString text;
        for (int length = random.bounded(least, least + 10); length > 0; --length)
            text += character();
        return text;
    };
    constexpr int lines = 5000;
    int right = 0;
    for (int line = 0; line < lines; ++line) {
        const QString before = word(2) + QStringLiteral("：");
        const QString path = '/' + word(3) + '/' + word(3) + ".dll";
        const QString after = word(2);
        right += decoded(toGbk(before) + path.toUtf8() + ' ' + toGbk(after)) == before + path + ' ' + after
                     ? 1
                     : 0;
    }
    QVERIFY2(right >= lines * 995 / 1000, qPrintable(QString("%1 of %2 lines").arg(right).arg(lines)));
}

void tst_LogDecoder::anyBytesGiveSomeText()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes(random.bounded(1, 200), Qt::Uninitialized);
        for (char &byte : bytes)
            byte = char(random.bounded(256));
        const QString text = readable(decoded(bytes));
        QVERIFY(!text.isEmpty());
        QVERIFY(text.size() <= bytes.size());
        QCOMPARE(QString::fromUtf8(text.toUtf8()), text);
    }
}

void tst_LogDecoder::prefix_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("read");
    QTest::newRow("error") << QByteArray("E20261121 14:46:05.123456  4711 pluginMangerBase.cpp:293] text")
                           << QByteArray("E|2026-11-21 14:46:05.123456|pluginMangerBase|text");
    QTest::newRow("without a year") << QByteArray("I1121 04:06:05.000001 4711 pluginManger4CAM.cpp:9] a] b")
                                    << QByteArray("I|11-21 04:06:05.000001|pluginManger4CAM|a] b");
    QTest::newRow("without text") << QByteArray("W20261121 14:46:05.123456 1 a.b.cpp:1] ")
                                  << QByteArray("W|2026-11-21 14:46:05.123456|a.b|");
    QTest::newRow("without the last blank") << QByteArray("F20261121 14:46:05.123456 1 main:1]")
                                            << QByteArray("F|2026-11-21 14:46:05.123456|main|");
    QTest::newRow("text that begins with a blank")
        << QByteArray("I20261121 14:46:05.123456 1 x.cpp:1]  send to B 7")
        << QByteArray("I|2026-11-21 14:46:05.123456|x| send to B 7");
}

void tst_LogDecoder::prefix()
{
    QFETCH(QByteArray, line);
    const auto found = parseLogPrefix({line.constData(), size_t(line.size())});
    QVERIFY(found);
    QTEST(QByteArray(1, found->severity) + '|' + found->time.text().toUtf8() + '|'
              + QByteArray(found->unit.data(), int(found->unit.size())) + '|' + line.mid(int(found->length)),
          "read");
}

void tst_LogDecoder::noPrefix_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char *line :
         {"", "E", "Error", "X20261121 14:46:05.123456 1 a.cpp:1] text",
          "E20261321 14:46:05.123456 1 a.cpp:1] text", "E20261121 14:46:05 1 a.cpp:1] text",
          "E20261121 14:46:05.123456 a.cpp:1] text", "E20261121 14:46:05.123456 1 a.cpp] text",
          "E20261121 14:46:05.123456 1 a.cpp:1", "E999999999999999999 14:46:05.123456 1 a.cpp:1] text",
          "Log line format: [IWEF]yyyymmdd"})
        QTest::newRow(line) << QByteArray(line);
}

void tst_LogDecoder::noPrefix()
{
    QFETCH(QByteArray, line);
    QVERIFY(!parseLogPrefix({line.constData(), size_t(line.size())}));
}

void tst_LogDecoder::span_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("contained");
    QTest::newRow("open") << ""
                          << "" << true;
    QTest::newRow("minute") << "14:46"
                            << "14:46" << true;
    QTest::newRow("minute before") << ""
                                   << "14:45" << false;
    QTest::newRow("minute after") << "14:47"
                                  << "" << false;
    QTest::newRow("to the microsecond") << "14:46:05.123456"
                                        << "14:46:05.123456" << true;
    QTest::newRow("a microsecond too late") << "14:46:05.123457"
                                            << "" << false;
    QTest::newRow("second") << "14:46:05"
                            << "14:46:05" << true;
    QTest::newRow("part of a second") << "14:46:05.1"
                                      << "14:46:05.1" << true;
    QTest::newRow("next part of a second") << "14:46:05.2"
                                           << "" << false;
    QTest::newRow("day") << "2026-11-21"
                         << "2026-11-21" << true;
    QTest::newRow("other day") << "2026-11-22"
                               << "" << false;
    QTest::newRow("day and time") << "2026-11-20 23:00"
                                  << "2026-11-21T14:46" << true;
    QTest::newRow("day and time, too late") << "2026-11-20 23:00"
                                            << "2026-11-21 14:45:59" << false;
}

void tst_LogDecoder::span()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    const std::string_view line = "E20261121 14:46:05.123456 1 a.cpp:1] text";
    const std::string_view lineWithoutYear = "E1121 14:46:05.123456 1 a.cpp:1] text";
    LogSpan span;
    QVERIFY(from.isEmpty() || span.setFrom(from));
    QVERIFY(to.isEmpty() || span.setTo(to));
    QTEST(span.contains(parseLogPrefix(line)->time), "contained");
    QTEST(span.contains(parseLogPrefix(lineWithoutYear)->time), "contained");
}

void tst_LogDecoder::noSpan_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text :
         {"", "x", "25:00", "14:60", "2026-02-30", "14", "2026-11-21 ", "1:2", "14:46:05.", "T14:46x"})
        QTest::newRow(text) << QString(text);
}

void tst_LogDecoder::noSpan()
{
    QFETCH(QString, text);
    LogSpan span;
    QVERIFY(!span.setFrom(text));
    QVERIFY(!span.setTo(text));
}

void tst_LogDecoder::readableText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << "Graphic_View 电路"
                           << "Graphic_View 电路";
    QTest::newRow("colours of a terminal") << "\x1b[31mred"
                                           << "␛[31mred";
    QTest::newRow("tab stays") << "a\tb"
                               << "a\tb";
    QTest::newRow("line ends") << "a\r\nb"
                               << "a␍␊b";
    QTest::newRow("null") << QString(QChar(0)) << "␀";
    QTest::newRow("turned writing") << QStringLiteral("a\u202eb") << QStringLiteral("a\ufffdb");
    QTest::newRow("second half alone") << QString(QChar(0xdc00)) << QStringLiteral("\ufffd");
    QTest::newRow("first half alone") << QString(QChar(0xd800)) + 'x' << QStringLiteral("\ufffdx");
    QTest::newRow("both halves") << "𠀀"
                                 << "𠀀";
    QTest::newRow("no character") << QString(QChar(0xffff)) << QStringLiteral("\ufffd");
}

void tst_LogDecoder::readableText()
{
    QFETCH(QString, text);
    QTEST(readable(text), "shown");
}

int main(int argc, char **argv)
{
    return runTest<tst_LogDecoder>(argc, argv);
}

#include "tst_logdecoder.moc"

// Configuration files that nobody should write.

#include "faults.h"

#include "gbktexts.h"
#include "keptloaders.h"
#include "openbase.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtTest/QtTest>

namespace {

const QByteArray good = R"({"pluginList":[{"name":"Graphic_Tips","version":"1.0"}]})";

QString camList(Faults &f)
{
    return f.directory() + "/pluginconfig/pluginconfig4CAM.json";
}

LogLines::Line baseError(const QByteArray &text)
{
    return {'E', "pluginMangerBase", text};
}

/// Loads the list, expects these lines before the last, and no box; then whether the one plug-in is there.
void expectList(Faults &f, const Faults::Lines &lines, bool loaded)
{
    f.manager()->loadAllPlugins();
    QCOMPARE(f.log(), lines + Faults::Lines{Faults::camLoaded()});
    QCOMPARE(f.manager()->plugin(f.tips) != nullptr, loaded);
    QVERIFY(f.manager()->isCAMLoaded());
}

void noJson(Faults &f, const QByteArray &content)
{
    f.writeCamList(content);
    expectList(f, {baseError(Gbk::configNotParsed + camList(f).toUtf8())}, false);
}

void nothingToAdd(Faults &f, const QByteArray &content)
{
    f.writeCamList(content);
    expectList(f, {}, false);
}

void asUsual(Faults &f, const QByteArray &content)
{
    f.writeCamList(content);
    expectList(f, {}, true);
}

void missing(Faults &f)
{
    expectList(f, {baseError(Gbk::configMissing + camList(f).toUtf8())}, false);
    QVERIFY(QDir().mkpath(camList(f)));
    expectList(f, {baseError(Gbk::configNotOpened + camList(f).toUtf8())}, false);
    QVERIFY(QDir().rmdir(camList(f)));
}

QByteArray utf16(const QByteArray &text)
{
    QByteArray bytes = "\xff\xfe";
    for (const char character : text) {
        bytes += character;
        bytes += '\0';
    }
    return bytes;
}

QByteArray nested(int depth)
{
    const QByteArray open = R"({"pluginList":[{"name":"Graphic_Tips","version":)";
    // The document, the list and the entry are levels, too.
    return open + QByteArray(depth - 3, '[') + QByteArray(depth - 3, ']') + "}]}";
}

void hundredMegabytes(Faults &f)
{
    asUsual(f, R"({"comment":")" + QByteArray(100 * 1000 * 1000, 'x') + "\"," + good.mid(1));
}

void nulInAName(Faults &f)
{
    const KeptLoaders keptLoaders;
    f.writeCamList(R"({"pluginList":[{"name":"Graphic_Tips.dll\u0000rest"}]})");
    f.manager()->loadAllPlugins();
    const QString name = "Graphic_Tips.dll" + QString(QChar::Null) + "rest.dll";
#ifdef Q_OS_WIN
    QCOMPARE(f.boxes().size(), f.manager()->plugin(name) ? 0 : 1);
    QVERIFY(!f.log().isEmpty());
#else
    // The system's names end at the NUL, the tables' do not.
    QVERIFY(f.manager()->plugin(name));
    QCOMPARE(f.log(), Faults::Lines{Faults::camLoaded()});
#endif
    QVERIFY(!f.manager()->plugin(f.tips));

    QCoreApplication::addLibraryPath(Faults::fixture("desktop"));
    f.writeDesktopList(R"({"pluginList":[{"name":"Other_Process.dll\u0000rest"}]})");
    f.desktop()->loadAllPlugins();
    const QString plugin = "Other_Process.dll" + QString(QChar::Null) + "rest.dll";
    f.expectOneFailure(plugin, Faults::reasonOfQt(plugin), Faults::desktopLoaded());
}

// What is no object or has no text for a name counts as one entry without a name.
void wrongTypes(Faults &f)
{
    const KeptLoaders keptLoaders;
    f.writeCamList(R"({"pluginList":[7,"text",null,[],{"name":5},
        {"name":"Graphic_Tips","version":{},"dependencies":"no"}]})");
    f.manager()->loadAllPlugins();
    f.expectOneFailure(".dll", Faults::reasonOfQLibrary(".dll", ""), Faults::camLoaded());
    QVERIFY(f.manager()->plugin(f.tips));
}

QTPluginsMangerPrivate tablesOf(Faults &f, const QByteArray &content)
{
    QTPluginsMangerPrivate tables;
    OpenBase().readPluginConfig(tables, f.make("list.json", content));
    return tables;
}

void beyondDoubles(Faults &f)
{
    const QTPluginsMangerPrivate tables = tablesOf(f, R"({"pluginList":[
        {"name":"A","version":9007199254740992},
        {"name":"B","dependencies":[{"name":"A","version":9007199254740993}]},
        {"name":"C","dependencies":[{"name":"A","version":9008199254740993}]}]})");
    QVERIFY(tables.check("B"));
    QVERIFY(!tables.check("C"));
    const QStringList lines = f.debug().take();
    QCOMPARE(lines.size(), 1);
    // Before it stands the function, which each compiler spells in its own way.
    QVERIFY2(lines.first().endsWith(R"( Version mismatch: "A" version "9007199254740992")"
                                    R"( but "9008199254740992" required for plugin "A")"),
             qPrintable(lines.first()));
    asUsual(f, R"({"pluginList":[{"name":"Graphic_Tips","version":1e308}]})");
}

void duplicateNames(Faults &f)
{
    const QByteArray content = R"({"pluginList":[{"name":"Graphic_Tips","version":"1.0"},
        {"name":"Graphic_Tips","version":"2.0"}]})";
    QCOMPARE(tablesOf(f, content).m_versions.value("Graphic_Tips").toString(), QString("2.0"));
    asUsual(f, content);
}

// Plain libraries: from the current directory. Qt plug-ins: from each of Qt's library paths.
void namesThatLeaveTheirDirectory(Faults &f)
{
    const KeptLoaders keptLoaders;
    QVERIFY(QDir().mkpath("app/plugins") && QDir().mkpath("app/run"));
    f.make("app/Outside.dll", Faults::healthyLibrary());
    f.make("app/OutsideToo.dll", Faults::healthyPlugin());
    f.writeDesktopList(TestFiles::configOf({"../OutsideToo"}));
    f.desktop()->loadAllPlugins();
    f.expectOneFailure("../OutsideToo.dll", Faults::reasonOfQt("../OutsideToo.dll"), Faults::desktopLoaded());

    QCoreApplication::addLibraryPath(f.path("app/plugins"));
    f.desktop()->loadAllPlugins();
    QCOMPARE(f.log(), Faults::Lines{Faults::desktopLoaded()});
    f.desktop()->recMegfromPlugin(f.message("../OutsideToo"));
    QCOMPARE(f.deliveries().list.size(), 1);

    f.writeCamList(TestFiles::configOf({"../Outside"}));
    QVERIFY(QDir::setCurrent(f.path("app/run")));
    f.manager()->loadAllPlugins();
    QVERIFY(f.manager()->plugin("../Outside.dll"));
    QCOMPARE(f.log(), Faults::Lines{Faults::camLoaded()});
}

void lineBreakInAName(Faults &f)
{
    const KeptLoaders keptLoaders;
    f.writeCamList(R"({"pluginList":[{"name":"Absent\nE20260101 forged"}]})");
    f.manager()->loadAllPlugins();
    const QString name = "Absent\nE20260101 forged.dll";
    const QList<MessageBoxes::Box> shown = f.boxes();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.first().text, QStringLiteral("加载插件失败！失败路径：") + name);
    // What follows the break stands at the beginning of a line, as what glog itself writes.
    QCOMPARE(f.log(),
             (Faults::Lines{baseError(Gbk::loadFailed + QByteArray("Absent")), Faults::camLoaded()}));
    const QByteArray written = TestFiles::read(LogLines::file()).replace("\r\n", "\n");
    const QString reason = Faults::reasonOfQLibrary(name, "");
    QVERIFY(written.contains("Absent\nE20260101 forged.dll" + QByteArray(Gbk::loadFailedReason)
                             + reason.toUtf8() + '\n'));
}

}

Rows configurationRows()
{
    const QByteArray notParsed = "line; adds nothing";
    const QByteArray nothing = "adds nothing, no line";
    const QByteArray usual = "loads as usual";
    const auto row = [](const QByteArray &name, const QByteArray &happens,
                        void (*expect)(Faults &, const QByteArray &), const QByteArray &content) {
        return Row{"configuration: " + name, happens, [=](Faults &f) { expect(f, content); }};
    };
    return {
        {"configuration: missing, or a directory", "line; adds nothing", missing},
        row("empty", notParsed, noJson, ""),
        row("a scalar", notParsed, noJson, "7"),
        row("an array", nothing, nothingToAdd, R"([{"name":"Graphic_Tips"}])"),
        row("a list that is no list", nothing, nothingToAdd, R"({"pluginList":{"name":"Graphic_Tips"}})"),
        row("byte order mark", usual, asUsual, "\xef\xbb\xbf" + good),
        row("UTF-16", notParsed, noJson, utf16(good)),
        row("invalid UTF-8", notParsed, noJson,
            R"({"pluginList":[{"name":"Graphic_)"
            "\xff"
            R"(Tips"}]})"),
        {"configuration: NUL in a name", "the system's loader reads the name up to it", nulInAName},
        {"configuration: line break in a name", "breaks the line in the log, too", lineBreakInAName},
        row("duplicate keys", "the last counts", asUsual,
            R"({"pluginList":[{"name":"Absent"}],"pluginList":[{"name":"Absent","name":"Graphic_Tips"}]})"),
        row("nesting 1,024", usual, asUsual, nested(1024)),
        row("nesting 1,025", notParsed, noJson, nested(1025)),
        row("nesting 1,000,000", notParsed, noJson, nested(1000000)),
        {"configuration: 100 MB", usual, hundredMegabytes},
        row("trailing comma", notParsed, noJson, R"({"pluginList":[{"name":"Graphic_Tips"},]})"),
        {"configuration: wrong types", "an entry without a name fails to load, the others load", wrongTypes},
        {"configuration: numbers beyond 2^53", "are compared as doubles, in twelve digits", beyondDoubles},
        {"configuration: duplicate names", "the later one counts", duplicateNames},
        {"configuration: \"../\" names", "leave the plug-in directory", namesThatLeaveTheirDirectory},
    };
}

#include "faults.h"

#include "PluginInterface.h"
#include "gbktexts.h"
#include "keptloaders.h"
#include "openbase.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>
#include <QtTest/QtTest>

#include <cstdio>

void Faults::init()
{
    CamTest::init();
    useReplaceable(QStringLiteral(REPLACEABLE_DIR "/faults"));
    // What a row that did not come to its end has left.
    const QDir leftovers(replaceable({}));
    for (const QString &file : leftovers.entryList(QDir::Files))
        TestFiles::remove(leftovers.filePath(file));
    QVERIFY(QDir(m_files.path()).mkpath("pluginconfig"));
    QVERIFY(QDir::setCurrent(m_files.path()));
    m_debug = std::make_unique<DebugLines>();
}

void Faults::cleanup()
{
    m_debug.reset();
    CamTest::cleanup();
    QDir::setCurrent(QDir::rootPath());
}

QString Faults::fixture(const char *file)
{
    return QStringLiteral(FIXTURE_DIR "/") + QLatin1String(file);
}

QString Faults::replaceable(const QString &file)
{
    return QStringLiteral(REPLACEABLE_DIR "/faults/") + file;
}

QString Faults::withoutSuffix(const QString &path)
{
    return path.chopped(int(qstrlen(".dll")));
}

QByteArray Faults::healthyLibrary()
{
    return TestFiles::read(fixture("healthy/Any_Library.dll"));
}

QByteArray Faults::healthyPlugin()
{
    return TestFiles::read(fixture("desktop/Other_Process.dll"));
}

QString Faults::path(const QString &file) const
{
    return m_files.filePath(file);
}

QString Faults::make(const QString &file, const QByteArray &content) const
{
    TestFiles::remove(path(file));
    TestFiles::write(path(file), content);
    return path(file);
}

void Faults::writeCamList(const QByteArray &content) const
{
    TestFiles::write(directory() + "/pluginconfig/pluginconfig4CAM.json", content);
}

void Faults::writeDesktopList(const QByteArray &content) const
{
    TestFiles::write(path("pluginconfig/pluginconfig.json"), content);
}

void Faults::loadPlain(const QString &path) const
{
    const KeptLoaders keptLoaders;
    writeCamList(TestFiles::configOf({withoutSuffix(path)}));
    manager()->loadAllPlugins();
}

void Faults::loadQtPlugin(const QString &path) const
{
    const KeptLoaders keptLoaders;
    writeDesktopList(TestFiles::configOf({withoutSuffix(path)}));
    desktop()->loadAllPlugins();
}

void Faults::expectRefused(const QString &path, const QString &reason)
{
    loadPlain(path);
    expectOneFailure(path, reason, camLoaded());
    QVERIFY(!manager()->plugin(path));
}

void Faults::expectRefusedPlugin(const QString &path, const QString &reason)
{
    loadQtPlugin(path);
    expectOneFailure(path, reason, desktopLoaded());
    Recorder::takeDeliveries();
    desktop()->recMegfromPlugin(message(withoutSuffix(path)));
    QCOMPARE(deliveries(), Deliveries());
}

void Faults::expectLoaded(const QString &path)
{
    writeCamList(TestFiles::configOf({withoutSuffix(path)}));
    manager()->loadAllPlugins();
    QCOMPARE(log(), Lines{camLoaded()});
    QVERIFY(manager()->plugin(path));
    QVERIFY(manager()->plugin(path)->resolve("recMsgFromManager"));
}

void Faults::expectLoadedPlugin(const QString &path)
{
    writeDesktopList(TestFiles::configOf({withoutSuffix(path)}));
    desktop()->loadAllPlugins();
    QCOMPARE(log(), Lines{desktopLoaded()});
    desktop()->recMegfromPlugin(message(withoutSuffix(path)));
    QCOMPARE(deliveries().list.size(), 1);
}

void Faults::expectOneFailure(const QString &path, const QString &reason, const LogLines::Line &last)
{
    QCOMPARE(log(), (Lines{loadFailed(path, reason), last}));
    const QList<MessageBoxes::Box> shown = boxes();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.first().title, QStringLiteral("提示"));
    QCOMPARE(shown.first().text, QStringLiteral("加载插件失败！失败路径：") + path);
    QCOMPARE(shown.first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(shown.first().modal && !shown.first().hasParent);
}

QString Faults::reasonOf(const QString &path, const char *words)
{
#ifdef Q_OS_WIN
    Q_UNUSED(words)
    return reasonOfQLibrary(path, "");
#else
    return QStringLiteral("Cannot load library %1: (%1: %2)").arg(path, QLatin1String(words));
#endif
}

QString Faults::reasonOfQLibrary(const QString &path, const char *words)
{
    QLibrary library(path);
    const bool refused = !library.load() && library.errorString().contains(QLatin1String(words));
    return refused ? library.errorString() : QStringLiteral("another one");
}

QString Faults::reasonOfQt(const QString &path)
{
    QPluginLoader loader(path);
    return loader.metaData().isEmpty() && !loader.load() ? loader.errorString()
                                                         : QStringLiteral("Qt does not refuse it");
}

LogLines::Line Faults::camLoaded()
{
    return info(Gbk::allLoaded);
}

LogLines::Line Faults::desktopLoaded()
{
    return {'I', "pluginManger", Gbk::allLoaded};
}

LogLines::Line Faults::allUnloaded()
{
    return {'I', "pluginMangerBase", Gbk::allUnloaded};
}

LogLines::Line Faults::loadFailed(const QString &path, const QString &reason)
{
    return {'E', "pluginMangerBase",
            Gbk::loadFailed + path.toUtf8() + Gbk::loadFailedReason + reason.toUtf8()};
}

void Faults::expectNothingMore()
{
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), Lines());
    QVERIFY(boxes().isEmpty());
}

void Faults::reachTheEnd()
{
    std::puts(reachedTheEnd);
    std::fflush(stdout);
}

// By the list for DFM, which leaves the row's own alone.
void Faults::expectOthersWork()
{
    TestFiles::write(directory() + "/pluginconfig/pluginconfig4DFM.json",
                     TestFiles::configOf({"ORVIK-GraphicEditor", "Graphic_View"}));
    manager()->loadAllDFMPlugins();
    QCOMPARE(log(), Lines{camLoaded()});

    QWidget *const frame = graphicFrame("others | work");
    QVERIFY(frame);
    QWidget *const receiver = manager()->Ov_RegisterGraphic_View(frame);
    QVERIFY(receiver);
    QCOMPARE(factoryCalls().size(), 1);
    manager()->recMegToPlugin(frame, message(view));
    QCOMPARE(deliveries(), Deliveries{to(receiver, message(view))});
    QCOMPARE(log(), Lines{info("Sender send to Graphic_View 7")});
    expectOtherQtPluginsWork();
}

void Faults::expectOtherQtPluginsWork()
{
    const QString path = fixture("desktop/Other_Process.dll");
    OpenBase base;
    QTPluginsMangerPrivate tables;
    base.loadQtPlugin(tables, path);
    const std::unique_ptr<QPluginLoader> loader(tables.m_loaders.take(path));
    QVERIFY(loader);
    auto *const plugin = dynamic_cast<PluginInterface *>(loader->instance());
    QVERIFY(plugin);
    plugin->recMsgFromManager(message("Other_Process"));
    QCOMPARE(deliveries().list.size(), 1);
    QCOMPARE(log(), Lines());
    loader->unload();
}

#include "openbase.h"
#include "testmain.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>

#ifdef Q_OS_WIN
#    include <windows.h>
#endif

class tst_Unloading : public QObject
{
    Q_OBJECT

private slots:
    void plainLibraryLeavesMemory();
    void qtPluginLeavesMemoryWhereQtLetsIt();
    void libraryWithUniqueSymbolsStays();

private:
    QTPluginsMangerPrivate m_tables;
    OpenBase m_base;
};

namespace {

QString libraryPath(const char *name)
{
    return QStringLiteral(FIXTURE_DIR "/unloading/") + QLatin1String(name);
}

bool isInMemory(const QString &path)
{
#ifdef Q_OS_WIN
    return GetModuleHandleW(QDir::toNativeSeparators(path).toStdWString().c_str()) != nullptr;
#else
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        qFatal("/proc/self/maps cannot be read");
    return maps.readAll().contains(QFile::encodeName(QFileInfo(path).canonicalFilePath()));
#endif
}

}

void tst_Unloading::plainLibraryLeavesMemory()
{
    const QString path = libraryPath("Plain_Library.dll");
    m_base.loadLibraryPlugin(m_tables, path);
    QVERIFY(isInMemory(path));
    m_base.unloadAllLibraries(m_tables);
    QVERIFY(!isInMemory(path));
}

void tst_Unloading::qtPluginLeavesMemoryWhereQtLetsIt()
{
    const QString path = libraryPath("Qt_Plugin.dll");
    QPluginLoader loader(path);
    QCOMPARE(loader.loadHints(), QLibrary::PreventUnloadHint);
    loader.setLoadHints({});
    QVERIFY(loader.instance());
    QVERIFY(isInMemory(path));
    QVERIFY(loader.unload());
    QVERIFY(!isInMemory(path));
}

void tst_Unloading::libraryWithUniqueSymbolsStays()
{
#if defined(Q_OS_LINUX) && defined(__GNUC__) && !defined(__clang__)
    constexpr bool compilerMakesUniqueSymbols = true;
#else
    constexpr bool compilerMakesUniqueSymbols = false;
#endif
    const QString path = libraryPath("Lingering_Library.dll");
    m_base.loadLibraryPlugin(m_tables, path);
    m_base.unloadAllLibraries(m_tables);
    QCOMPARE(isInMemory(path), compilerMakesUniqueSymbols);
}

int main(int argc, char **argv)
{
    return runTest<tst_Unloading>(argc, argv);
}

#include "tst_unloading.moc"

#include "keptloaders.h"
#include "messageboxes.h"
#include "openbase.h"
#include "testfiles.h"
#include "testmain.h"

#include <dlfcn.h>

using LogLines::Line;

/// Where the loader looks on behalf of this program, but not on behalf of Qt, which asks for plug-ins.
class tst_RunPath : public QObject
{
    Q_OBJECT

private slots:
    void cutFileInTheRunPathOfTheProgramIsNotLookedAt();
};

void tst_RunPath::cutFileInTheRunPathOfTheProgramIsNotLookedAt()
{
    const KeptLoaders keptLoaders;
    MessageBoxes boxes;
    const QString path = QStringLiteral(REPLACEABLE_DIR "/runpath/Beside.dll");
    const QByteArray whole = TestFiles::read(QStringLiteral(FIXTURE_DIR "/healthy/Any_Library.dll"));
    TestFiles::write(path, whole);
    void *const library = dlopen("Beside.dll", RTLD_NOW);
    QVERIFY2(library, dlerror());
    QCOMPARE(dlclose(library), 0);

    TestFiles::remove(path);
    TestFiles::write(path, whole.left(8192));
    OpenBase base;
    QTPluginsMangerPrivate tables;
    base.loadLibraryPlugin(tables, "Beside.dll");
    TestFiles::remove(path);

    QVERIFY(tables.m_libraries.isEmpty());
    QCOMPARE(boxes.take().size(), 1);
    const QList<Line> lines = LogLines::take();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().text.endsWith("cannot open shared object file: No such file or directory)"),
             lines.first().text.constData());
}

int main(int argc, char **argv)
{
    return runTest<tst_RunPath>(argc, argv);
}

#include "tst_runpath.moc"

#include "openbase.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QDir>
#include <QtCore/QLibrary>
#include <QtCore/QLoggingCategory>
#include <QtCore/QPluginLoader>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QMessageBox>

#include <elf.h>
#include <malloc.h>

/// How much memory is not given back when something is done very many times.
class tst_LeakBudget : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void loadAndUnloadKeepNothing();
    void loadingAgainKeepsNothing();
    void loadAndUnloadOfQtPluginsKeepNothing();
    void refusedRootObjectKeepsNothing();
    void failedLoadKeepsItsLoader_data();
    void failedLoadKeepsItsLoader();
    void readingAListAgainKeepsNothing();

private:
    template <typename Action>
    double bytesKept(const Action &action);

    QTemporaryDir m_directory;
    QTPluginsMangerPrivate m_tables;
    OpenBase m_base;
};

namespace {

/// Fewer for those that run the tests over and over, and ask only whether something is kept at all.
const int manyTimes = qEnvironmentVariableIsSet("PLUGINMANGER_LEAK_TIMES")
                          ? qEnvironmentVariableIntValue("PLUGINMANGER_LEAK_TIMES")
                          : 10000;

/// Tables that grow once in a while are no leak; the smallest allocation takes 32 bytes each time.
constexpr double tolerance = 20;

const QString healthy = QStringLiteral(FIXTURE_DIR "/healthy/Any_Library.dll");
const QString healthyPlugin = QStringLiteral(FIXTURE_DIR "/desktop/Other_Process.dll");
const QString foreignPlugin =
    QStringLiteral(FIXTURE_DIR "/not_a_plugin_interface/Not_A_Plugin_Interface.dll");

/// A plug-in with all its descriptions, whose last segment is longer than the file.
QByteArray cutPlugin()
{
    QByteArray file = TestFiles::read(healthyPlugin);
    const auto *const header = reinterpret_cast<const Elf64_Ehdr *>(file.constData());
    auto *const segments = reinterpret_cast<Elf64_Phdr *>(file.data() + header->e_phoff);
    Elf64_Phdr *last = nullptr;
    for (Elf64_Phdr *segment = segments; segment < segments + header->e_phnum; ++segment)
        last = segment->p_type == PT_LOAD ? segment : last;
    last->p_filesz = Elf64_Xword(file.size());
    return file;
}

std::size_t bytesInUse()
{
    const struct mallinfo2 memory = mallinfo2();
    return memory.uordblks + memory.hblkhd;
}

int openFiles()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

/// Closes each box at once, and keeps quiet what the platform has to say of each.
class BoxCloser : public QObject
{
public:
    BoxCloser()
    {
        qApp->installEventFilter(this);
        QLoggingCategory::setFilterRules("*.warning=false");
    }
    ~BoxCloser() override { QLoggingCategory::setFilterRules({}); }

    int closed = 0;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *const box = event->type() == QEvent::Show ? qobject_cast<QMessageBox *>(object) : nullptr;
        if (box) {
            ++closed;
            QMetaObject::invokeMethod(box, "close", Qt::QueuedConnection);
        }
        return false;
    }
};

}

/// Bytes per time, after what is allocated once has been. No file stays open.
template <typename Action>
double tst_LeakBudget::bytesKept(const Action &action)
{
    for (int time = 0; time < manyTimes / 10; ++time)
        action();
    const int filesBefore = openFiles();
    const std::size_t before = bytesInUse();
    for (int time = 0; time < manyTimes; ++time)
        action();
    const double kept = (double(bytesInUse()) - double(before)) / manyTimes;
    qInfo("%.2f bytes kept each time", kept);
    const int filesKept = openFiles() - filesBefore;
    if (filesKept != 0)
        QTest::qFail(qPrintable(QStringLiteral("%1 files are still open").arg(filesKept)), __FILE__,
                     __LINE__);
    return kept;
}

void tst_LeakBudget::cleanup()
{
    m_tables = QTPluginsMangerPrivate();
    LogLines::take();
}

void tst_LeakBudget::loadAndUnloadKeepNothing()
{
    QVERIFY(bytesKept([this] {
                m_base.loadLibraryPlugin(m_tables, healthy);
                m_base.unloadAllLibraries(m_tables);
            })
            < 1);
    QVERIFY(m_tables.m_libraries.isEmpty());
}

void tst_LeakBudget::loadingAgainKeepsNothing()
{
    QVERIFY(bytesKept([this] { m_base.loadLibraryPlugin(m_tables, healthy); }) < 1);
    QVERIFY(m_base.findLibrary(m_tables, healthy)->isLoaded());
    m_base.unloadAllLibraries(m_tables);
}

void tst_LeakBudget::loadAndUnloadOfQtPluginsKeepNothing()
{
    QVERIFY(bytesKept([this] {
                m_base.loadQtPlugin(m_tables, healthyPlugin);
                m_base.unloadAllQtPlugins(m_tables);
            })
            < 1);
}

void tst_LeakBudget::refusedRootObjectKeepsNothing()
{
    QVERIFY(bytesKept([this] { m_base.loadQtPlugin(m_tables, foreignPlugin); }) < 1);
    QVERIFY(m_tables.m_loaders.isEmpty());
    QVERIFY(!QLibrary(foreignPlugin).isLoaded());
}

void tst_LeakBudget::failedLoadKeepsItsLoader_data()
{
    QTest::addColumn<bool>("isQtPlugin");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("samePath");
    QTest::addColumn<double>("expected");
    const QByteArray text(500, 'x');
    const QByteArray absent;
    const QByteArray cut = TestFiles::read(healthy).left(8192);
    QTest::newRow("text") << false << text << true << 144.;
    QTest::newRow("cut off") << false << cut << true << 144.;
    QTest::newRow("absent") << false << absent << true << 144.;
    QTest::newRow("text, another path each time") << false << text << false << 1108.;
    QTest::newRow("absent, another path each time") << false << absent << false << 1211.;
    QTest::newRow("Qt plug-in: text") << true << text << true << 144.;
    QTest::newRow("Qt plug-in: cut off") << true << cutPlugin() << true << 144.;
    QTest::newRow("Qt plug-in: absent") << true << absent << true << 368.;
    QTest::newRow("Qt plug-in: text, another path each time") << true << text << false << 842.;
    QTest::newRow("Qt plug-in: absent, another path each time") << true << absent << false << 368.;
}

// By design: what fails is neither listed nor deleted, and Qt remembers each path. Nothing else is kept, of
// the box and the line neither.
void tst_LeakBudget::failedLoadKeepsItsLoader()
{
    QFETCH(bool, isQtPlugin);
    QFETCH(QByteArray, content);
    QFETCH(bool, samePath);
    QFETCH(double, expected);
    // All paths are 100 letters long, and no row has one of another's.
    static int number = 0;
    ++number;
    const auto path = [&] {
        const QString start = m_directory.filePath("Broken");
        return start + QString::number(number).rightJustified(96 - start.size(), '0') + ".dll";
    };
    BoxCloser boxes;
    const double kept = bytesKept([&] {
        number += samePath ? 0 : 1;
        if (!content.isEmpty())
            TestFiles::write(path(), content);
        if (isQtPlugin)
            m_base.loadQtPlugin(m_tables, path());
        else
            m_base.loadLibraryPlugin(m_tables, path());
        TestFiles::remove(path());
    });
    QCOMPARE(boxes.closed, manyTimes + manyTimes / 10);
    QVERIFY2(qAbs(kept - expected) < tolerance, qPrintable(QString::number(kept)));
}

void tst_LeakBudget::readingAListAgainKeepsNothing()
{
    const QString list = m_directory.filePath("list.json");
    TestFiles::write(list, TestFiles::configOf({"Graphic_View", "Graphic_Tips", "Matrix"}));
    QVERIFY(bytesKept([&] { m_base.readPluginConfig(m_tables, list); }) < 1);
    QCOMPARE(m_tables.m_names.size(), 3);
}

int main(int argc, char **argv)
{
    return runTest<tst_LeakBudget>(argc, argv);
}

#include "tst_leakbudget.moc"

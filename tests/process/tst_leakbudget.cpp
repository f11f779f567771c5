#include "openbase.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QLibrary>
#include <QtCore/QLoggingCategory>
#include <QtCore/QPluginLoader>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QMessageBox>

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
    void failedLoadKeepsItsLoader_data();
    void failedLoadKeepsItsLoader();
    void failedLoadOfAQtPluginKeepsItsLoader();
    void readingAListAgainKeepsNothing();

private:
    static constexpr int times = 10000;

    template <typename Action>
    double bytesKept(const Action &action);

    QTemporaryDir m_directory;
    QTPluginsMangerPrivate m_tables;
    OpenBase m_base;
};

namespace {

/// Tables that grow once in a while are no leak; the smallest allocation takes 32 bytes each time.
constexpr double tolerance = 8;

const QString healthy = QStringLiteral(FIXTURE_DIR "/healthy/Any_Library.dll");
const QString healthyPlugin = QStringLiteral(FIXTURE_DIR "/desktop/Other_Process.dll");

std::size_t bytesInUse()
{
    const struct mallinfo2 memory = mallinfo2();
    return memory.uordblks + memory.hblkhd;
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

/// Bytes per time, after what is allocated once has been.
template <typename Action>
double tst_LeakBudget::bytesKept(const Action &action)
{
    for (int time = 0; time < times / 10; ++time)
        action();
    const std::size_t before = bytesInUse();
    for (int time = 0; time < times; ++time)
        action();
    const double kept = (double(bytesInUse()) - double(before)) / times;
    qInfo("%.2f bytes kept each time", kept);
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

void tst_LeakBudget::failedLoadKeepsItsLoader_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("text") << QByteArray(500, 'x');
    QTest::newRow("cut off") << TestFiles::read(healthy).left(8192);
}

// By design: what fails is neither listed nor deleted. Nothing else is kept, of the box and the line neither.
void tst_LeakBudget::failedLoadKeepsItsLoader()
{
    QFETCH(QByteArray, content);
    const QString path = m_directory.filePath("Broken.dll");
    TestFiles::write(path, content);
    BoxCloser boxes;
    const double loader =
        bytesKept([&] { (new QLibrary(path))->setLoadHints(QLibrary::ResolveAllSymbolsHint); });
    const double kept = bytesKept([&] { m_base.loadLibraryPlugin(m_tables, path); });
    QCOMPARE(boxes.closed, times + times / 10);
    QVERIFY2(kept < loader + tolerance, qPrintable(QString::number(kept)));
    QVERIFY(kept < 256);
}

void tst_LeakBudget::failedLoadOfAQtPluginKeepsItsLoader()
{
    const QString path = m_directory.filePath("NoPlugin.dll");
    TestFiles::write(path, QByteArray(500, 'x'));
    BoxCloser boxes;
    const double loader =
        bytesKept([&] { (new QPluginLoader(path))->setLoadHints(QLibrary::ResolveAllSymbolsHint); });
    const double kept = bytesKept([&] { m_base.loadQtPlugin(m_tables, path); });
    QCOMPARE(boxes.closed, times + times / 10);
    QVERIFY2(kept < loader + tolerance, qPrintable(QString::number(kept)));
    QVERIFY(kept < 256);
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

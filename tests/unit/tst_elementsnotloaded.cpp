#include "elementtable.h"
#include "pluginManger4CAM.h"
#include "recorder.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QWidget>

#include <memory>

using LogLines::Line;

Q_DECLARE_METATYPE(ElementRow)

/// Elements are asked for before their libraries are loaded.
class tst_ElementsNotLoaded : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void libraryThatIsNotLoadedGivesNull_data();
    void libraryThatIsNotLoadedGivesNull();

private:
    QTemporaryDir m_directory;
    std::vector<std::unique_ptr<QWidget>> m_parents;
};

void tst_ElementsNotLoaded::initTestCase()
{
    QVERIFY(QDir().mkpath(m_directory.filePath("pluginconfig")));
    qputenv("PLUGINMANGER_PATH", QFile::encodeName(m_directory.path()));
}

void tst_ElementsNotLoaded::libraryThatIsNotLoadedGivesNull_data()
{
    QTest::addColumn<ElementRow>("row");
    for (const ElementRow &row : elementTable())
        QTest::newRow(row.operation.constData()) << row;
}

void tst_ElementsNotLoaded::libraryThatIsNotLoadedGivesNull()
{
    QFETCH(ElementRow, row);
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    m_parents.push_back(std::make_unique<QWidget>());
    QWidget *const parent = m_parents.back().get();

    QVERIFY(!manager->plugin(row.library));
    QVERIFY(!row.call(parent, "text"));
    QVERIFY(Recorder::takeFactoryCalls().isEmpty());
    QCOMPARE(LogLines::take(), QList<Line>());

    // Nothing was recorded, so once the library is loaded the same parent gets its element.
    TestFiles::write(m_directory.filePath("pluginconfig/pluginconfig4CAM.json"),
                     TestFiles::configOf({row.library.chopped(4)}));
    manager->loadAllPlugins();
    QVERIFY(manager->plugin(row.library));
    const std::unique_ptr<QObject> element(static_cast<QObject *>(row.call(parent, "text")));
    QVERIFY(element);
    Recorder::takeFactoryCalls();
    LogLines::take();
}

int main(int argc, char **argv)
{
    return runTest<tst_ElementsNotLoaded>(argc, argv);
}

#include "tst_elementsnotloaded.moc"

#include "elementtable.h"
#include "pluginManger4CAM.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QTemporaryDir>
#include <QtWidgets/QWidget>

using LogLines::Line;

Q_DECLARE_METATYPE(ElementRow)

/// All libraries are loaded under their own names, and none of them exports its factory.
class tst_ElementsWithoutFactory : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void missingFactoryGivesNull_data();
    void missingFactoryGivesNull();

private:
    QTemporaryDir m_directory;
};

void tst_ElementsWithoutFactory::initTestCase()
{
    QStringList names;
    for (const ElementRow &row : elementTable())
        names += row.library.chopped(4);
    QVERIFY(QDir().mkpath(m_directory.filePath("pluginconfig")));
    TestFiles::write(m_directory.filePath("pluginconfig/pluginconfig4CAM.json"), TestFiles::configOf(names));
    qputenv("PLUGINMANGER_PATH", QFile::encodeName(m_directory.path()));
    QTpluginsManger4CAM::instance()->loadAllPlugins();
    LogLines::take();
}

void tst_ElementsWithoutFactory::missingFactoryGivesNull_data()
{
    QTest::addColumn<ElementRow>("row");
    for (const ElementRow &row : elementTable())
        QTest::newRow(row.operation.constData()) << row;
}

void tst_ElementsWithoutFactory::missingFactoryGivesNull()
{
    QFETCH(ElementRow, row);
    QVERIFY(QTpluginsManger4CAM::instance()->plugin(row.library));
    QWidget parent;
    QVERIFY(!row.call(&parent, "text"));
    QVERIFY(!row.call(nullptr, "text"));
    QCOMPARE(LogLines::take(), QList<Line>());
}

int main(int argc, char **argv)
{
    return runTest<tst_ElementsWithoutFactory>(argc, argv);
}

#include "tst_elementswithoutfactory.moc"

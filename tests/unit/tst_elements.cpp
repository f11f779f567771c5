#include "elementtable.h"
#include "messageboxes.h"
#include "pluginManger4CAM.h"
#include "private/elementFactories_p.h"
#include "recorder.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QMenu>

#include <memory>
#include <vector>

using LogLines::Line;

Q_DECLARE_METATYPE(ElementRow)

namespace {

/// Found before the healthy library of that name, when it is there.
const QString replaceable = QStringLiteral(REPLACEABLE_DIR "/Graphic_Tips.dll");

}

class tst_Elements : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void tableHasEveryOperation();
    void namesForToolsAreThoseOfTheOperations();
    void factoryIsCalledOncePerParent_data() { addRows(); }
    void factoryIsCalledOncePerParent();
    void eachParentHasItsElement_data() { addRows(); }
    void eachParentHasItsElement();
    void nullParentIsAParent_data() { addRows(); }
    void nullParentIsAParent();
    void nullResultIsRemembered_data() { addRows(); }
    void nullResultIsRemembered();
    void textDoesNotTellElementsApart_data() { addRows(); }
    void textDoesNotTellElementsApart();
    void clearKeepsTheElements();
    void elementMadeBeforeIsNotReturnedOnceItsFactoryIsMissing();
    void commonElementsAreToldApartByLibrary();
    void commonElementIsRecordedUnderTheLibrarysNameAsGiven();
    void commonElementOfAnUnknownLibraryIsNull();
    void libraryWithoutEntryPointGivesItsElement();
    void nullFactoryIsCalledOnce();
    void factoryMayRegisterOtherElements();

private:
    void addRows();
    QWidget *newParent();

    QTemporaryDir m_directory;
    MessageBoxes m_boxes;
    /// Parents live as long as the registry remembers their addresses.
    std::vector<std::unique_ptr<QWidget>> m_parents;
    std::vector<std::unique_ptr<QObject>> m_elements;
};

void tst_Elements::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QVERIFY(QDir().mkpath(m_directory.filePath("pluginconfig")));
    qputenv("PLUGINMANGER_PATH", QFile::encodeName(m_directory.path()));
    TestFiles::remove(replaceable);

    QStringList names;
    for (const ElementRow &row : elementTable())
        names += row.library.chopped(4);
    TestFiles::write(m_directory.filePath("pluginconfig/pluginconfig4CAM.json"), TestFiles::configOf(names));
    QTpluginsManger4CAM::instance()->loadAllPlugins();
}

void tst_Elements::init()
{
    LogLines::take();
    Recorder::takeFactoryCalls();
}

void tst_Elements::cleanup()
{
    Recorder::setFactoriesReturnNull(false);
    Recorder::setOnFactory({});
    QVERIFY(m_boxes.take().isEmpty());
}

void tst_Elements::cleanupTestCase()
{
    TestFiles::remove(replaceable);
}

void tst_Elements::addRows()
{
    QTest::addColumn<ElementRow>("row");
    for (const ElementRow &row : elementTable())
        QTest::newRow(row.operation.constData()) << row;
}

QWidget *tst_Elements::newParent()
{
    m_parents.push_back(std::make_unique<QWidget>());
    return m_parents.back().get();
}

void tst_Elements::tableHasEveryOperation()
{
    QSet<QByteArray> operations;
    QSet<QString> libraries;
    for (const ElementRow &row : elementTable()) {
        operations.insert(row.operation);
        libraries.insert(row.library);
    }
    QCOMPARE(operations.size(), 35);
    QCOMPARE(libraries.size(), 35);
}

void tst_Elements::namesForToolsAreThoseOfTheOperations()
{
    QStringList expected;
    for (const ElementRow &row : elementTable())
        expected += (row.operation == "Ov_Register_Common" ? QString() : row.library) + ' ' + row.symbol;
    QStringList names;
    for (const PluginMangerInternal::ElementFactoryNames &row : PluginMangerInternal::elementFactoryNames)
        names += QString::fromLatin1(row.library) + ' ' + QString::fromLatin1(row.symbol);
    QCOMPARE(names, expected);
}

void tst_Elements::factoryIsCalledOncePerParent()
{
    QFETCH(ElementRow, row);
    QWidget *const parent = newParent();
    void *const element = row.call(parent, "文字");
    QVERIFY(element);
    m_elements.emplace_back(static_cast<QObject *>(element));

    const QList<Recorder::FactoryCall> calls = Recorder::takeFactoryCalls();
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.first().library, row.library);
    QCOMPARE(calls.first().symbol, row.symbol);
    QCOMPARE(calls.first().parent, parent);
    QCOMPARE(calls.first().element, element);
    QCOMPARE(calls.first().text, row.takesText ? QStringLiteral("文字") : QString());
    QCOMPARE(m_elements.back()->metaObject()->className(), row.element.constData());

    QCOMPARE(row.call(parent, "文字"), element);
    QVERIFY(Recorder::takeFactoryCalls().isEmpty());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_Elements::eachParentHasItsElement()
{
    QFETCH(ElementRow, row);
    QWidget *const firstParent = newParent();
    QWidget *const secondParent = newParent();
    void *const first = row.call(firstParent, "");
    void *const second = row.call(secondParent, "");
    m_elements.emplace_back(static_cast<QObject *>(first));
    m_elements.emplace_back(static_cast<QObject *>(second));

    QVERIFY(first && second);
    QVERIFY(first != second);
    QCOMPARE(row.call(firstParent, ""), first);
    QCOMPARE(row.call(secondParent, ""), second);
    QCOMPARE(Recorder::takeFactoryCalls().size(), 2);
}

void tst_Elements::nullParentIsAParent()
{
    QFETCH(ElementRow, row);
    void *const element = row.call(nullptr, "");
    QVERIFY(element);
    m_elements.emplace_back(static_cast<QObject *>(element));

    QCOMPARE(row.call(nullptr, ""), element);
    QCOMPARE(Recorder::takeFactoryCalls().size(), 1);
}

void tst_Elements::nullResultIsRemembered()
{
    QFETCH(ElementRow, row);
    QWidget *const parent = newParent();
    Recorder::setFactoriesReturnNull(true);
    QVERIFY(!row.call(parent, ""));
    QCOMPARE(Recorder::takeFactoryCalls().size(), 1);

    Recorder::setFactoriesReturnNull(false);
    QVERIFY(!row.call(parent, ""));
    QVERIFY(Recorder::takeFactoryCalls().isEmpty());
}

void tst_Elements::textDoesNotTellElementsApart()
{
    QFETCH(ElementRow, row);
    QWidget *const parent = newParent();
    void *const element = row.call(parent, "first");
    m_elements.emplace_back(static_cast<QObject *>(element));
    QCOMPARE(row.call(parent, "second"), element);
    QCOMPARE(Recorder::takeFactoryCalls().size(), 1);
}

void tst_Elements::clearKeepsTheElements()
{
    QWidget *const parent = newParent();
    QMenu *const menu = QTpluginsManger4CAM::instance()->Ov_RegisterCAMMenuFile(parent);
    m_elements.emplace_back(menu);
    QTpluginsManger4CAM::instance()->Ov_RegisterClear();
    QCOMPARE(QTpluginsManger4CAM::instance()->Ov_RegisterCAMMenuFile(parent), menu);
    QCOMPARE(Recorder::takeFactoryCalls().size(), 1);
}

void tst_Elements::elementMadeBeforeIsNotReturnedOnceItsFactoryIsMissing()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    TestFiles::write(m_directory.filePath("pluginconfig/pluginconfig4CAM.json"),
                     TestFiles::configOf({"Graphic_Tips"}));

    TestFiles::replace(replaceable, QStringLiteral(FIXTURE_DIR "/healthy/Graphic_Tips.dll"));
    manager->loadAllPlugins();
    QWidget *const parent = newParent();
    const std::unique_ptr<QWidget> element(manager->Ov_RegisterGraphic_Tips(parent));
    QVERIFY(element);

    TestFiles::replace(replaceable, QStringLiteral(FIXTURE_DIR "/without_factory/Graphic_Tips.dll"));
    manager->loadAllPlugins();
    QWidget *const askedMeanwhile = newParent();
    QVERIFY(manager->plugin("Graphic_Tips.dll"));
    QVERIFY(!manager->Ov_RegisterGraphic_Tips(parent));
    QVERIFY(!manager->Ov_RegisterGraphic_Tips(askedMeanwhile));

    TestFiles::replace(replaceable, QStringLiteral(FIXTURE_DIR "/healthy/Graphic_Tips.dll"));
    manager->loadAllPlugins();
    QCOMPARE(manager->Ov_RegisterGraphic_Tips(parent), element.get());
    QCOMPARE(Recorder::takeFactoryCalls().size(), 1);
    // Nothing had been recorded while the factory was missing.
    const std::unique_ptr<QWidget> madeNow(manager->Ov_RegisterGraphic_Tips(askedMeanwhile));
    QVERIFY(madeNow);
}

void tst_Elements::commonElementsAreToldApartByLibrary()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    QWidget *const parent = newParent();
    const std::unique_ptr<QObject> any(manager->Ov_Register_Common("Any_Library.dll", parent));
    const std::unique_ptr<QObject> menu(manager->Ov_Register_Common("DFM_MenuBar_Edit.dll", parent));
    QVERIFY(any && menu);
    QVERIFY(any != menu);
    QCOMPARE(menu->metaObject()->className(), "QMenu");
    QCOMPARE(manager->Ov_RegisterDFM_Edit_Menu(parent), menu.get());
}

void tst_Elements::commonElementIsRecordedUnderTheLibrarysNameAsGiven()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    QWidget *const parent = newParent();
    const std::unique_ptr<QObject> plain(manager->Ov_Register_Common("Any_Library.dll", parent));
    // As a text, which has no byte order mark, the name is that of the same library.
    const std::string withMark = "\xEF\xBB\xBF"
                                 "Any_Library.dll";
    const std::unique_ptr<QObject> marked(manager->Ov_Register_Common(withMark, parent));
    QVERIFY(plain && marked);
    QVERIFY(plain != marked);
    QCOMPARE(manager->Ov_Register_Common(withMark, parent), marked.get());
    QCOMPARE(manager->Ov_Register_Common("Any_Library.dll", parent), plain.get());
}

void tst_Elements::commonElementOfAnUnknownLibraryIsNull()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    QWidget *const parent = newParent();
    QVERIFY(!manager->Ov_Register_Common("Unknown.dll", parent));
    QVERIFY(!manager->Ov_Register_Common("Any_Library", parent));
    QVERIFY(!manager->Ov_Register_Common("", parent));
    QVERIFY(Recorder::takeFactoryCalls().isEmpty());
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_Elements::libraryWithoutEntryPointGivesItsElement()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    const QString path = QStringLiteral(FIXTURE_DIR "/without_entry_point/Without_Entry_Point");
    TestFiles::write(m_directory.filePath("pluginconfig/pluginconfig4CAM.json"), TestFiles::configOf({path}));
    manager->loadAllPlugins();

    const std::unique_ptr<QObject> element(
        manager->Ov_Register_Common(path.toStdString() + ".dll", newParent()));
    QVERIFY(element);
}

void tst_Elements::nullFactoryIsCalledOnce()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    const QString path = QStringLiteral(FIXTURE_DIR "/null_factory/Null_Factory");
    TestFiles::write(m_directory.filePath("pluginconfig/pluginconfig4CAM.json"), TestFiles::configOf({path}));
    manager->loadAllPlugins();
    const std::string library = path.toStdString() + ".dll";
    QWidget *const parent = newParent();

    QVERIFY(!manager->Ov_Register_Common(library, parent));
    QVERIFY(!manager->Ov_Register_Common(library, parent));
    const auto numberOfCalls = reinterpret_cast<int (*)()>(
        manager->plugin(QString::fromStdString(library))->resolve("numberOfFactoryCalls"));
    QVERIFY(numberOfCalls);
    QCOMPARE(numberOfCalls(), 1);
}

void tst_Elements::factoryMayRegisterOtherElements()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    QWidget *const parent = newParent();
    Recorder::setOnFactory([this, manager](const QString &library, QWidget *window) {
        if (library != "Graphic_View.dll")
            return;
        m_elements.emplace_back(manager->Ov_RegisterGraphic_MiniMap(window));
        m_elements.emplace_back(manager->Ov_RegisterGraphic_CamDI(window));
    });
    QWidget *const view = manager->Ov_RegisterGraphic_View(parent);
    m_elements.emplace_back(view);

    QCOMPARE(Recorder::takeFactoryCalls().size(), 3);
    QCOMPARE(manager->Ov_RegisterGraphic_View(parent), view);
    QVERIFY(manager->Ov_RegisterGraphic_MiniMap(parent));
    QVERIFY(Recorder::takeFactoryCalls().isEmpty());
}

int main(int argc, char **argv)
{
    return runTest<tst_Elements>(argc, argv);
}

#include "tst_elements.moc"

#include "elementtable.h"
#include "frameFactories_p.h"
#include "testfiles.h"
#include "testmain.h"

#include <pluginManger4CAM.h>
#include <pluginMangerSdk.h>

#include <QtCore/QTemporaryDir>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

namespace {

/// What the header says of an element or frame.
struct SdkRow
{
    QByteArray name;
    QString symbol;
    QByteArray element;
    QByteArray arguments;
};

#define SDK_ROW_ELEMENT(Element, symbol, name)                                                               \
    SdkRow                                                                                                   \
    {                                                                                                        \
#        name, QStringLiteral(#        symbol), Element::staticMetaObject.className(), "parent"              \
    }
#define SDK_ROW_TEXT_ELEMENT(Element, symbol, name)                                                          \
    SdkRow                                                                                                   \
    {                                                                                                        \
#        name, QStringLiteral(#        symbol), Element::staticMetaObject.className(), "parent, text"        \
    }
#define SDK_ROW_STEP_FRAME(Element, symbol, name)                                                            \
    SdkRow                                                                                                   \
    {                                                                                                        \
#        name, QStringLiteral(#        symbol), Element::staticMetaObject.className(), "parent, job, step"   \
    }
#define SDK_ROW(name) PLUGINMANGER_ROW_##name(SDK_ROW, name)

const QList<SdkRow> &sdkRows()
{
    static const QList<SdkRow> rows{
        SDK_ROW(DI_Graphic_JobList),
        SDK_ROW(CAMMenuAction),
        SDK_ROW(CAMMenuFile),
        SDK_ROW(CAMMenuOptions),
        SDK_ROW(CAM_Common_MenuBar_Info),
        SDK_ROW(CAM_FilterAndInfo_Bar),
        SDK_ROW(CAM_PNDATA_VIEW),
        SDK_ROW(CAM_Progress_Dialog),
        SDK_ROW(DFM_Edit_Menu),
        SDK_ROW(DFM_Operate_Menu),
        SDK_ROW(DFM_View_Menu),
        SDK_ROW(Graphic_Actions_Menu),
        SDK_ROW(Graphic_Analysis_Menu),
        SDK_ROW(Graphic_CamDI),
        SDK_ROW(Graphic_Coordinate),
        SDK_ROW(Graphic_DI_Tool),
        SDK_ROW(Graphic_Edit_Menu),
        SDK_ROW(Graphic_JobList2),
        SDK_ROW(Graphic_JobList),
        SDK_ROW(Graphic_MenuBar_DFM),
        SDK_ROW(Graphic_MenuBar_Other),
        SDK_ROW(Graphic_MenuBar_ROUT),
        SDK_ROW(Graphic_MenuBar_Step),
        SDK_ROW(Graphic_Menu_File),
        SDK_ROW(Graphic_MiniMap),
        SDK_ROW(Graphic_Tips),
        SDK_ROW(Graphic_Tool_Edit),
        SDK_ROW(Graphic_Tool_move),
        SDK_ROW(Graphic_View),
        SDK_ROW(Matrix_Edit_Menu),
        SDK_ROW(Matrix_File_Menu),
        SDK_ROW(Matrix_Option_Menu),
        SDK_ROW(Matrix_Table),
        SDK_ROW(Matrix_ToolBar),
        SDK_ROW(Common),
        SDK_ROW(GraphicFramework),
        SDK_ROW(MatrixFramework),
        SDK_ROW(GuideFramework),
    };
    return rows;
}

/// The row of what an operation registers, by the rule that the header gives for its names.
SdkRow rowOf(QByteArray operation)
{
    if (operation.startsWith("OvDI_Register"))
        operation.replace("OvDI_Register", "DI_");
    else if (operation == "Ov_Register_Common")
        operation = "Common";
    else
        operation.replace("Ov_Register", "");
    for (const SdkRow &row : sdkRows()) {
        if (row.name == operation)
            return row;
    }
    return {};
}

QByteArray stampIn(const QString &file)
{
    const QByteArray content = TestFiles::read(file);
    const int begin = content.indexOf("pluginMangerAbi=");
    return begin < 0 ? QByteArray() : QByteArray(content.constData() + begin);
}

}

class tst_Sdk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void rowsAreWhatTheOperationsExpect_data();
    void rowsAreWhatTheOperationsExpect();
    void framesAreWhatTheOperationsExpect();
    void everyOperationHasOneRow();
    void scaffoldKnowsEveryElement();
    void stampTellsWhatWasBuiltWith();
    void stampIsInTheFileOnce_data();
    void stampIsInTheFileOnce();
    void pluginWithoutStampHasNone();
    void elementIsMadeAndReceives();
    void textReachesTheElement();
    void jobAndStepReachTheFrame();

private:
    QTemporaryDir m_directory;
};

void tst_Sdk::initTestCase()
{
    QVERIFY(m_directory.isValid());
    qputenv("PLUGINMANGER_PATH", QFile::encodeName(m_directory.path()));
    QVERIFY(QDir(m_directory.path()).mkdir("pluginconfig"));
    TestFiles::write(m_directory.filePath("pluginconfig/pluginconfig4CAM.json"),
                     TestFiles::configOf({"Graphic_View", "Matrix", "ORVIK-GraphicEditor"}));
    QTpluginsManger4CAM::instance()->loadAllPlugins();
}

void tst_Sdk::rowsAreWhatTheOperationsExpect_data()
{
    QTest::addColumn<int>("index");
    const QList<ElementRow> table = elementTable();
    for (int i = 0; i < table.size(); ++i)
        QTest::newRow(table[i].operation.constData()) << i;
}

void tst_Sdk::rowsAreWhatTheOperationsExpect()
{
    QFETCH(int, index);
    const ElementRow expected = elementTable().at(index);
    const SdkRow row = rowOf(expected.operation);
    QCOMPARE(row.symbol, expected.symbol);
    QCOMPARE(row.element, expected.element);
    QCOMPARE(row.arguments, QByteArray(expected.takesText ? "parent, text" : "parent"));
}

void tst_Sdk::framesAreWhatTheOperationsExpect()
{
    using namespace PluginMangerInternal;
    const auto compare = [](const char *operation, const FrameFactory &factory, const char *arguments) {
        const SdkRow row = rowOf(operation);
        QCOMPARE(row.symbol, QString::fromLatin1(factory.symbol));
        QCOMPARE(row.element, QByteArray("QWidget"));
        QCOMPARE(row.arguments, QByteArray(arguments));
    };
    compare("Ov_RegisterGraphicFramework", FrameFactories::graphicEditor, "parent, job, step");
    compare("Ov_RegisterMatrixFramework", FrameFactories::matrix, "parent");
    compare("Ov_RegisterGuideFramework", FrameFactories::camGuide, "parent");
}

void tst_Sdk::everyOperationHasOneRow()
{
    QSet<QByteArray> names;
    for (const SdkRow &row : sdkRows())
        names.insert(row.name);
    QCOMPARE(names.size(), sdkRows().size());
    QCOMPARE(sdkRows().size(), elementTable().size() + 3);
}

void tst_Sdk::scaffoldKnowsEveryElement()
{
    QStringList lines = QString::fromUtf8(TestFiles::read(ELEMENTS_FILE)).split('\n', Qt::SkipEmptyParts);
    lines = lines.filter(QRegularExpression("^[^#]"));
    lines.sort();

    // The operation for any library is what the scaffold takes when it does not know a name.
    QStringList expected;
    for (const ElementRow &row : elementTable()) {
        const QString library = QString(row.library).remove(".dll");
        if (row.operation != "Ov_Register_Common")
            expected.append(QStringLiteral("%1 %2 %3%4")
                                .arg(library, row.operation, row.element, row.takesText ? " text" : ""));
    }
    expected.sort();
    QCOMPARE(lines, expected);
}

void tst_Sdk::stampTellsWhatWasBuiltWith()
{
    constexpr PluginMangerSdk::AbiStamp stamp = PluginMangerSdk::abiStamp();
    const QByteArray expected = QByteArray("pluginMangerAbi=1;qt=" QT_VERSION_STR ";compiler=")
                                + PluginMangerSdk::compiler() + ";pointer=8;record=40:0,8,16,24,32";
    QCOMPARE(QByteArray(stamp.text), expected);
    QCOMPARE(int(stamp.length), expected.size());
}

void tst_Sdk::stampIsInTheFileOnce_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("as built") << FIXTURE_DIR "/sdk/Graphic_View.dll";
    QTest::newRow("stripped") << FIXTURE_DIR "/sdk_stripped/Graphic_View.dll";
}

void tst_Sdk::stampIsInTheFileOnce()
{
    QFETCH(QString, file);
    QCOMPARE(stampIn(file), QByteArray(PluginMangerSdk::abiStamp().text));
    QCOMPARE(TestFiles::read(file).count("pluginMangerAbi="), 1);
}

void tst_Sdk::pluginWithoutStampHasNone()
{
    QCOMPARE(stampIn(FIXTURE_DIR "/sdk/Matrix.dll"), QByteArray());
}

void tst_Sdk::elementIsMadeAndReceives()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    QWidget window;
    manager->insertRoot("root", &window);
    const auto *const view = qobject_cast<QLabel *>(manager->Ov_RegisterGraphic_View(&window));
    QVERIFY(view);
    QCOMPARE(view->parentWidget(), &window);

    PluginMetaData message;
    message.src = "Somebody.dll";
    message.dst = "Graphic_View.dll";
    message.type = 1;
    message.data["DstType"] = "EngineerRoot";
    manager->pluginTransmitData(message);
    QCOMPARE(view->text(), message.src);
}

void tst_Sdk::textReachesTheElement()
{
    QWidget window;
    const auto *const table =
        qobject_cast<QLabel *>(QTpluginsManger4CAM::instance()->Ov_RegisterMatrix_Table(&window, "board"));
    QVERIFY(table);
    QCOMPARE(table->text(), QString("board"));
}

void tst_Sdk::jobAndStepReachTheFrame()
{
    QWidget window;
    const QWidget *const frame =
        QTpluginsManger4CAM::instance()->Ov_RegisterGraphicFramework(&window, "board | panel", false);
    QVERIFY(frame);
    QCOMPARE(frame->objectName(), QString("board/panel"));
    QCOMPARE(frame->windowTitle(), QString("board"));
}

int main(int argc, char **argv)
{
    return runTest<tst_Sdk>(argc, argv);
}

#include "tst_sdk.moc"

#include "gbktexts.h"
#include "keptloaders.h"
#include "messageboxes.h"
#include "pluginManger4CAM.h"
#include "recorder.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QLibrary>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QWidget>

#include <memory>

using LogLines::Line;
using TestFiles::dependency;
using TestFiles::entry;

/// The manager from its first use on: each function runs in a process of its own.
class tst_CamManager : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void instanceIsAlwaysTheSame();
    void metaObjectHasNothingOfItsOwn();
    void newManagerHasLoadedNothing();
    void camSetIsLoaded();
    void dfmSetIsLoadedBesideTheCamSet();
    void dfmLoadSetsItsOwnFlagOnly();
    void missingFilesStillCountAsLoaded();
    void emptyListStillReportsSuccess();
    void failedLibraryDoesNotStopTheOthers();
    void currentDirectoryStandsInForAnEmptyPath();
    void directoryAndFileAreJoinedByOneSlash();
    void configDirectoryIsReadAtEachCall();
    void nonAsciiDirectoryIsFound();
    void camDescriptionIsKept();
    void dfmDescriptionIsNotKept();
    void dependenciesAreCheckedAgainstTheCamDescription();
    void secondLoadLoadsAnew();
    void pluginComparesTheWholeName();
    void setsCountAsLoadedOnlyAfterwards();
    void loadWhileTheBoxIsOpenIsSafe();
    void rootIsNullBeforeTheFirst();
    void firstRootStaysInUse();
    void nullRootIsARoot();
    void everyFrameCountsAsRegistered();
    void clearKeepsTheRoot();

private:
    QString path(const char *file) const;
    void writeSet(const char *file, const QByteArray &content);

    QTemporaryDir m_directory;
    std::unique_ptr<MessageBoxes> m_boxes;
};

namespace {

constexpr char camFile[] = "pluginconfig4CAM.json";
constexpr char dfmFile[] = "pluginconfig4DFM.json";

const Line allLoaded{'I', "pluginManger4CAM", Gbk::allLoaded};

QTpluginsManger4CAM *manager()
{
    return QTpluginsManger4CAM::instance();
}

}

void tst_CamManager::init()
{
    QVERIFY(QDir().mkpath(m_directory.filePath("pluginconfig")));
    qputenv("PLUGINMANGER_PATH", m_directory.path().toUtf8());
    qunsetenv("PLUGINMANGER_PLUGINCONFIG");
    m_boxes = std::make_unique<MessageBoxes>();
    LogLines::take();
}

void tst_CamManager::cleanup()
{
    QVERIFY(m_boxes->take().isEmpty());
}

QString tst_CamManager::path(const char *file) const
{
    return m_directory.filePath(QStringLiteral("pluginconfig/") + QLatin1String(file));
}

void tst_CamManager::writeSet(const char *file, const QByteArray &content)
{
    TestFiles::write(path(file), content);
}

void tst_CamManager::instanceIsAlwaysTheSame()
{
    QVERIFY(manager());
    QCOMPARE(QTpluginsManger4CAM::instance(), manager());
    QVERIFY(!manager()->parent());
    QVERIFY(!std::is_constructible_v<QTpluginsManger4CAM>);
    QVERIFY(!std::is_destructible_v<QTpluginsManger4CAM>);
}

void tst_CamManager::metaObjectHasNothingOfItsOwn()
{
    const QMetaObject &metaObject = QTpluginsManger4CAM::staticMetaObject;
    QCOMPARE(metaObject.className(), "QTpluginsManger4CAM");
    QCOMPARE(metaObject.superClass()->className(), "QTpluginsMangerBase");
    QCOMPARE(metaObject.superClass()->superClass()->className(), "QObject");
    QCOMPARE(metaObject.methodCount(), metaObject.methodOffset());
    QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset());
}

void tst_CamManager::newManagerHasLoadedNothing()
{
    QVERIFY(!manager()->isCAMLoaded());
    QVERIFY(!manager()->isDFMLoaded());
    QVERIFY(!manager()->plugin("Graphic_View.dll"));
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_CamManager::camSetIsLoaded()
{
    writeSet(camFile, TestFiles::configOf({"Graphic_View", "Matrix"}));
    writeSet(dfmFile, TestFiles::configOf({"DFM_MenuBar_Edit"}));

    QVERIFY(manager()->loadAllPlugins());
    QVERIFY(manager()->plugin("Graphic_View.dll"));
    QVERIFY(manager()->plugin("Matrix.dll")->resolve("GetMatrixInstance"));
    QVERIFY(!manager()->plugin("DFM_MenuBar_Edit.dll"));
    QVERIFY(manager()->isCAMLoaded());
    QVERIFY(!manager()->isDFMLoaded());
    QCOMPARE(LogLines::take(), QList<Line>{allLoaded});
}

void tst_CamManager::dfmSetIsLoadedBesideTheCamSet()
{
    writeSet(camFile, TestFiles::configOf({"Graphic_View"}));
    writeSet(dfmFile, TestFiles::configOf({"DFM_MenuBar_Edit"}));

    QVERIFY(manager()->loadAllPlugins());
    QVERIFY(manager()->loadAllDFMPlugins());
    QVERIFY(manager()->plugin("Graphic_View.dll"));
    QVERIFY(manager()->plugin("DFM_MenuBar_Edit.dll"));
    QVERIFY(manager()->isCAMLoaded() && manager()->isDFMLoaded());
    QCOMPARE(LogLines::take(), (QList<Line>{allLoaded, allLoaded}));
}

void tst_CamManager::dfmLoadSetsItsOwnFlagOnly()
{
    writeSet(dfmFile, TestFiles::configOf({"DFM_MenuBar_Edit"}));

    QVERIFY(manager()->loadAllDFMPlugins());
    QVERIFY(!manager()->isCAMLoaded());
    QVERIFY(manager()->isDFMLoaded());
}

void tst_CamManager::missingFilesStillCountAsLoaded()
{
    QVERIFY(manager()->loadAllPlugins());
    QVERIFY(manager()->loadAllDFMPlugins());
    QVERIFY(manager()->isCAMLoaded() && manager()->isDFMLoaded());
    QCOMPARE(LogLines::take(),
             (QList<Line>{{'E', "pluginMangerBase", Gbk::configMissing + path(camFile).toUtf8()},
                          allLoaded,
                          {'E', "pluginMangerBase", Gbk::configMissing + path(dfmFile).toUtf8()},
                          allLoaded}));
}

void tst_CamManager::emptyListStillReportsSuccess()
{
    writeSet(camFile, TestFiles::configOf({}));
    QVERIFY(manager()->loadAllPlugins());
    QCOMPARE(LogLines::take(), QList<Line>{allLoaded});
}

void tst_CamManager::failedLibraryDoesNotStopTheOthers()
{
    const KeptLoaders keptLoaders;
    writeSet(camFile,
             TestFiles::configOf({"Graphic_View", "Absent_One", "Matrix", "Absent_Two", "Graphic_Tips"}));

    QVERIFY(manager()->loadAllPlugins());
    QVERIFY(manager()->plugin("Graphic_View.dll"));
    QVERIFY(manager()->plugin("Matrix.dll"));
    QVERIFY(manager()->plugin("Graphic_Tips.dll"));
    QVERIFY(!manager()->plugin("Absent_One.dll"));
    QVERIFY(manager()->isCAMLoaded());

    QStringList texts;
    for (const MessageBoxes::Box &box : m_boxes->take())
        texts += box.text;
    texts.sort();
    QCOMPARE(texts, (QStringList{"加载插件失败！失败路径：Absent_One.dll",
                                 "加载插件失败！失败路径：Absent_Two.dll"}));
    const QList<Line> lines = LogLines::take();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.last(), allLoaded);
}

void tst_CamManager::currentDirectoryStandsInForAnEmptyPath()
{
    qunsetenv("PLUGINMANGER_PATH");
    writeSet(camFile, TestFiles::configOf({"Graphic_View"}));
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_directory.path()));
    manager()->loadAllPlugins();
    manager()->loadAllDFMPlugins();
    const QString current = QDir::currentPath();
    QVERIFY(QDir::setCurrent(before));

    QVERIFY(manager()->plugin("Graphic_View.dll"));
    QCOMPARE(LogLines::take(),
             (QList<Line>{allLoaded,
                          {'E', "pluginMangerBase",
                           Gbk::configMissing + current.toUtf8() + "/pluginconfig/pluginconfig4DFM.json"},
                          allLoaded}));
}

void tst_CamManager::directoryAndFileAreJoinedByOneSlash()
{
    qputenv("PLUGINMANGER_PATH", "base/");
    qputenv("PLUGINMANGER_PLUGINCONFIG", "config/");
    manager()->loadAllPlugins();
    QCOMPARE(LogLines::take().first().text,
             QByteArray(Gbk::configMissing) + "base//config//pluginconfig4CAM.json");
}

void tst_CamManager::configDirectoryIsReadAtEachCall()
{
    writeSet(camFile, TestFiles::configOf({"Graphic_View"}));
    manager()->loadAllPlugins();
    QVERIFY(!manager()->plugin("Matrix.dll"));

    QVERIFY(QDir().mkpath(m_directory.filePath("other")));
    TestFiles::write(m_directory.filePath("other/pluginconfig4CAM.json"), TestFiles::configOf({"Matrix"}));
    qputenv("PLUGINMANGER_PLUGINCONFIG", "other");
    manager()->loadAllPlugins();
    QVERIFY(manager()->plugin("Matrix.dll"));
}

void tst_CamManager::nonAsciiDirectoryIsFound()
{
    const QString directory = m_directory.filePath(QStringLiteral("电路板 工作"));
    QVERIFY(QDir().mkpath(directory + "/pluginconfig"));
    TestFiles::write(directory + "/pluginconfig/pluginconfig4CAM.json",
                     TestFiles::configOf({"Graphic_View"}));
    // qputenv() takes bytes, and not every code page of Windows has bytes for this.
#ifdef Q_OS_WIN
    QCOMPARE(_wputenv_s(L"PLUGINMANGER_PATH", qUtf16Printable(directory)), 0);
#else
    qputenv("PLUGINMANGER_PATH", QFile::encodeName(directory));
#endif
    manager()->loadAllPlugins();
    QVERIFY(manager()->plugin("Graphic_View.dll"));
}

// A second load of the CAM set loads what the first file had listed, too: the tables are only added to.
void tst_CamManager::camDescriptionIsKept()
{
    const KeptLoaders keptLoaders;
    writeSet(camFile, TestFiles::configOf({"Absent"}));
    manager()->loadAllPlugins();
    QCOMPARE(m_boxes->take().size(), 1);

    writeSet(camFile, TestFiles::configOf({"Graphic_View"}));
    manager()->loadAllPlugins();
    QCOMPARE(m_boxes->take().size(), 1);
    QVERIFY(manager()->plugin("Graphic_View.dll"));
}

void tst_CamManager::dfmDescriptionIsNotKept()
{
    const KeptLoaders keptLoaders;
    writeSet(dfmFile, TestFiles::configOf({"Absent"}));
    manager()->loadAllDFMPlugins();
    QCOMPARE(m_boxes->take().size(), 1);

    writeSet(dfmFile, TestFiles::configOf({"DFM_MenuBar_Edit"}));
    manager()->loadAllDFMPlugins();
    writeSet(camFile, TestFiles::configOf({"Graphic_View"}));
    manager()->loadAllPlugins();
    QVERIFY(m_boxes->take().isEmpty());
    QVERIFY(manager()->plugin("DFM_MenuBar_Edit.dll"));
}

// The check asks for the file name, so it finds dependencies only where the list names one with ".dll".
void tst_CamManager::dependenciesAreCheckedAgainstTheCamDescription()
{
    const KeptLoaders keptLoaders;
    writeSet(camFile, TestFiles::config({entry("Graphic_View", "1", {dependency("Absent")}),
                                         entry("DFM_MenuBar_View.dll", "1", {dependency("Absent")})}));
    writeSet(dfmFile, TestFiles::config({entry("DFM_MenuBar_Edit", "1", {dependency("Absent")}),
                                         entry("DFM_MenuBar_View")}));
    manager()->loadAllPlugins();
    QVERIFY(manager()->plugin("Graphic_View.dll"));
    QCOMPARE(m_boxes->take().size(), 1);
    LogLines::take();

    manager()->loadAllDFMPlugins();
    QVERIFY(manager()->plugin("DFM_MenuBar_Edit.dll"));
    QVERIFY(!manager()->plugin("DFM_MenuBar_View.dll"));
    QCOMPARE(LogLines::take(), (QList<Line>{{'E', "pluginMangerBase",
                                             QByteArray(Gbk::dependenciesFailed) + "DFM_MenuBar_View.dll"},
                                            allLoaded}));
}

void tst_CamManager::secondLoadLoadsAnew()
{
    writeSet(camFile, TestFiles::configOf({"Graphic_View"}));
    manager()->loadAllPlugins();
    const QPointer<QLibrary> first = manager()->plugin("Graphic_View.dll");
    manager()->loadAllPlugins();

    QVERIFY(first.isNull());
    QVERIFY(manager()->plugin("Graphic_View.dll")->isLoaded());
    QVERIFY(manager()->isCAMLoaded());
}

void tst_CamManager::pluginComparesTheWholeName()
{
    writeSet(camFile, TestFiles::configOf({"Graphic_View"}));
    manager()->loadAllPlugins();
    QVERIFY(manager()->plugin("Graphic_View.dll"));
    QVERIFY(!manager()->plugin("Graphic_View"));
    QVERIFY(!manager()->plugin("graphic_view.dll"));
    QVERIFY(!manager()->plugin("Matrix.dll"));
}

void tst_CamManager::setsCountAsLoadedOnlyAfterwards()
{
    const KeptLoaders keptLoaders;
    writeSet(camFile, TestFiles::configOf({"Absent"}));
    writeSet(dfmFile, TestFiles::configOf({"Absent"}));
    bool countsAlready = true;
    m_boxes->whileNextIsOpen([&] { countsAlready = manager()->isCAMLoaded(); });
    manager()->loadAllPlugins();
    QVERIFY(!countsAlready && manager()->isCAMLoaded());

    countsAlready = true;
    m_boxes->whileNextIsOpen([&] { countsAlready = manager()->isDFMLoaded(); });
    manager()->loadAllDFMPlugins();
    QVERIFY(!countsAlready && manager()->isDFMLoaded());
    QCOMPARE(m_boxes->take().size(), 2);
}

void tst_CamManager::loadWhileTheBoxIsOpenIsSafe()
{
    const KeptLoaders keptLoaders;
    // So many names are read in meanwhile that the table must grow, which moves its entries.
    QStringList more;
    for (const QFileInfo &file : QDir(FIXTURE_DIR "/healthy").entryInfoList({"*.dll"}))
        more += file.completeBaseName();
    QVERIFY(more.size() > 30);
    writeSet(camFile, TestFiles::configOf({"Absent_One", "Absent_Two", "Graphic_View"}));
    m_boxes->whileNextIsOpen([&] {
        writeSet(camFile, TestFiles::configOf(more));
        manager()->loadAllPlugins();
    });
    manager()->loadAllPlugins();

    QCOMPARE(m_boxes->take().size(), 4);
    for (const QString &name : more)
        QVERIFY2(manager()->plugin(name + ".dll"), qPrintable(name));
}

void tst_CamManager::rootIsNullBeforeTheFirst()
{
    QVERIFY(!manager()->getRoot());
}

void tst_CamManager::firstRootStaysInUse()
{
    QObject first;
    QObject second;
    manager()->insertRoot("Engineering", &first);
    QCOMPARE(manager()->getRoot(), static_cast<void *>(&first));
    manager()->insertRoot("Another", &second);
    QCOMPARE(manager()->getRoot(), static_cast<void *>(&first));
    QCOMPARE(LogLines::take(), QList<Line>());
}

void tst_CamManager::nullRootIsARoot()
{
    QObject second;
    manager()->insertRoot("", nullptr);
    manager()->insertRoot("", &second);
    QVERIFY(!manager()->getRoot());
}

void tst_CamManager::everyFrameCountsAsRegistered()
{
    QWidget widget;
    QVERIFY(manager()->Ov_isRegisterFrame(nullptr));
    QVERIFY(manager()->Ov_isRegisterFrame(&widget));
}

void tst_CamManager::clearKeepsTheRoot()
{
    QObject root;
    manager()->insertRoot("Engineering", &root);
    manager()->Ov_RegisterClear();
    QCOMPARE(manager()->getRoot(), static_cast<void *>(&root));
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_CamManager>(argc, argv);
}

#include "tst_cammanager.moc"

#include "DesktopWindow.h"
#include "MainWindow.h"
#include "MessageView.h"
#include "PluginView.h"
#include "ProfileView.h"
#include "StartProfile.h"
#include "Workbench.h"
#include "WorkbenchApplication.h"
#include "WorkbenchWindow.h"
#include "testfiles.h"
#include "testmain.h"

#include <pluginManger.h>
#include <pluginManger4CAM.h>

#include <QtCore/QLibrary>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtGui/QClipboard>
#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QTableView>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QTreeWidget>

namespace {

const QString gateway = QStringLiteral("gateway-4l");
const QString control = QStringLiteral("control-2l");
const QString sensor = QStringLiteral("sensor-2l");
const QString pcb = QStringLiteral("pcb");
const QString panel = QStringLiteral("panel");
const QStringList desktopTools{"File_Process.dll", "ListBar_PNList.dll", "Viewbar_View.dll",
                               "MenuBar_Menu.dll"};

}

/**
 * The workbench as a person uses it: with mouse and keys, looking at what plug-ins then show.
 *
 * Each function has a process of its own, with two jobs of two steps open and the first of them shown.
 */
class tst_Workbench : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everythingIsLoaded();
    void everyElementIsThere();
    void opensAndClosesJob();
    void closesAllJobs();
    void refusesToOpenWhatIsOpen();
    void switchesStep();
    void selectsLayerInMatrix();
    void ticksLayers();
    void editsMatrix();
    void clicksMiniMap();
    void zoomsAndMoves();
    void followsMouse();
    void selectsAndHidesFeatures();
    void measures();
    void showsFilm();
    void savesPicture();
    void renamesJob();
    void refusesNames();
    void renamesStep();
    void deletesStep();
    void deletesJob();
    void comparesJobs();
    void locksJob();
    void setsText();
    void showsKeys();
    void checksRulesWithProgress();
    void stopsCheck();
    void goesToFinding();
    void checksAnotherStep();
    void exportsReport();
    void followsGuide();
    void filtersParts();
    void previewsJob();
    void reloadsDfmPlugins();
    void reloadsDesktopTools();
    void setsTestPoints();
    void countsCopper();
    void showsMessages();
    void notesWhatTheManagerSends();
    void showsMessagesForNobody();
    void filtersPausesCopiesAndSavesMessages();
    void showsPlugins();
    void showsStartUp();
    void remembersLayout();
    void refusesDamagedDfmPlugin();
    void refusesDamagedDesktopTool();
    void reloadsWithoutDesktopTools();
    void reloadsWithoutAnyDesktopTool();
    void survivesThrowingReceiver();
    void survivesThrowingFactories();
    void survivesThrowingFrame();
    void survivesThrowingDesktopPlugin();

private:
    template <typename Type>
    Type *element(const char *library, FrameKind kind, const QString &job = {},
                  const QString &step = {}) const;
    QWidget *frame(FrameKind kind, const QString &job, const QString &step = {}) const;
    QAbstractScrollArea *view(const QString &job, const QString &step) const;
    QString caption(const QString &job, const QString &step) const;
    QString text(const QString &job, const QString &step) const;
    QStringList visibleLayers(const QString &job, const QString &step) const;
    QString task(const QString &job, int row) const;
    QString labelText(const QWidget *parent, const char *name) const;
    QString pluginTrouble(const char *name) const;
    QStringList sentByManager() const;
    QStringList tabs(FrameKind kind = FrameKind::Graphic) const;
    QTreeWidget *findings(const QString &job, const QString &step) const;
    QLabel *summary(const QString &job, const QString &step) const;

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void click(QWidget *widget, QPoint position);
    void click(QAbstractItemView *items, const QString &text, int column = 0);
    /// Types into the next dialog, and accepts it.
    void answer(const QString &text);
    void answerFileDialog(const QString &path);
    void runChecks();
    QWidget &window() const { return m_workbench->window(); }

    std::unique_ptr<StartProfile> m_profile;
    std::unique_ptr<Workbench> m_workbench;
};

template <typename Type>
Type *tst_Workbench::element(const char *library, FrameKind kind, const QString &job,
                             const QString &step) const
{
    return qobject_cast<Type *>(m_workbench->workspace().element(library, kind, job, step));
}

/// Puts what the function is about in the place of sound plug-ins, which are looked for behind it.
void putReplacements()
{
    const QString folder = QStringLiteral(REPLACED_PLUGIN_DIR "/");
    const QStringList left = QDir(folder).entryList(QDir::Files);
    for (const QString &file : left)
        TestFiles::remove(folder + file);
    TestFiles::removeLeftovers(folder);
    const QMap<QByteArray, QStringList> broken{
        {"survivesThrowingReceiver", {"Graphic_Coordinate.dll"}},
        {"survivesThrowingFactories", {"Graphic_CamGuide.dll", "Graphic_MiniMap.dll"}},
        {"survivesThrowingFrame", {"ORVIK-Matrix.dll"}},
        {"survivesThrowingDesktopPlugin", {"Plating_Area.dll"}}};
    const QMap<QByteArray, QStringList> sound{{"refusesDamagedDfmPlugin", {"DFM_RuleCheck.dll"}},
                                              {"refusesDamagedDesktopTool", {"Viewbar_View.dll"}},
                                              {"reloadsWithoutDesktopTools", desktopTools}};
    for (const QString &library : broken.value(QTest::currentTestFunction()))
        TestFiles::replace(folder + library, BROKEN_PLUGIN_DIR "/" + library);
    for (const QString &library : sound.value(QTest::currentTestFunction()))
        TestFiles::replace(folder + library, EXAMPLE_PLUGIN_DIR "/" + library);
}

void tst_Workbench::init()
{
    putReplacements();
    m_profile = std::make_unique<StartProfile>();
    m_profile->begin("Plug-ins");
    m_workbench = std::make_unique<Workbench>(
        EXAMPLE_HOST_DIR, QStringList{REPLACED_PLUGIN_DIR, EXAMPLE_PLUGIN_DIR}, *m_profile);
    m_workbench->account.setSilent(true);
    // With these, what is not as it should be is the point.
    m_workbench->account.setLenient(QByteArray(QTest::currentTestFunction()).startsWith("survives")
                                    || QByteArray(QTest::currentTestFunction()).startsWith("reloadsWithout"));
    m_workbench->useSafeLists();
    m_workbench->startDesktopTools();
    m_workbench->loadCamPlugins();
    m_workbench->loadDfmPlugins();
    m_profile->begin("Window and jobs");
    m_workbench->buildWindow();
    m_workbench->openJobs({gateway, control});
    m_workbench->judgePlugins();
    m_workbench->window().show();
    m_profile->end();
    QVERIFY(QTest::qWaitForWindowActive(&m_workbench->window()));
}

void tst_Workbench::cleanup()
{
    QCOMPARE(m_workbench->account.failureCount(), 0);
    m_workbench.reset();
}

QWidget *tst_Workbench::frame(FrameKind kind, const QString &job, const QString &step) const
{
    const Frame *const found = m_workbench->workspace().find(kind, job, step);
    return found ? found->window : nullptr;
}

QAbstractScrollArea *tst_Workbench::view(const QString &job, const QString &step) const
{
    return element<QAbstractScrollArea>("Graphic_View.dll", FrameKind::Graphic, job, step);
}

QString tst_Workbench::caption(const QString &job, const QString &step) const
{
    return view(job, step)->property("caption").toString();
}

QString tst_Workbench::text(const QString &job, const QString &step) const
{
    return view(job, step)->property("text").toString();
}

QStringList tst_Workbench::visibleLayers(const QString &job, const QString &step) const
{
    return view(job, step)->property("visibleLayers").toStringList();
}

QString tst_Workbench::task(const QString &job, int row) const
{
    const QListWidgetItem *const item = frame(FrameKind::Guide, job)->findChild<QListWidget *>()->item(row);
    return (item->checkState() == Qt::Checked ? "done: " : "open: ") + item->text();
}

QString tst_Workbench::labelText(const QWidget *parent, const char *name) const
{
    const auto *const label = parent->findChild<QLabel *>(name);
    return label ? label->text() : "no label";
}

QString tst_Workbench::pluginTrouble(const char *name) const
{
    for (const CataloguedPlugin &plugin : m_workbench->catalog.plugins()) {
        if (plugin.name == name)
            return plugin.trouble;
    }
    return "no such plug-in";
}

/// Receivers, types and data.
QStringList tst_Workbench::sentByManager() const
{
    QStringList lines;
    for (int row = 0; row < m_workbench->log.rowCount(); ++row) {
        const QStringList cells = m_workbench->log.text(row).split('\t');
        if (cells.value(1) == "Manager")
            lines.append(cells.mid(2, 3).join(' '));
    }
    return lines;
}

QStringList tst_Workbench::tabs(FrameKind kind) const
{
    return m_workbench->jobs().tabTexts(kind);
}

QTreeWidget *tst_Workbench::findings(const QString &job, const QString &step) const
{
    return element<QWidget>("DFM_RuleCheck.dll", FrameKind::Dfm, job, step)->findChild<QTreeWidget *>();
}

QLabel *tst_Workbench::summary(const QString &job, const QString &step) const
{
    return element<QWidget>("DFM_RuleCheck.dll", FrameKind::Dfm, job, step)->findChild<QLabel *>();
}

void tst_Workbench::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    // A dialog that closes leaves no window active without a window manager.
    QApplication::setActiveWindow(&window());
    QTest::keyClick(&window(), key, modifiers);
}

void tst_Workbench::click(QWidget *widget, QPoint position)
{
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, position);
}

void tst_Workbench::click(QAbstractItemView *items, const QString &text, int column)
{
    const QModelIndexList found = items->model()->match(items->model()->index(0, column), Qt::DisplayRole,
                                                        text, 1, Qt::MatchStartsWith | Qt::MatchRecursive);
    QVERIFY2(!found.isEmpty(), qPrintable(text));
    items->scrollTo(found.first());
    const QRect entry = items->visualRect(found.first());
    click(items->viewport(), {entry.right() - 4, entry.center().y()});
}

void tst_Workbench::answer(const QString &text)
{
    QTimer::singleShot(0, this, [text] {
        auto *const dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        if (auto *const list = dialog->findChild<QComboBox *>()) {
            QVERIFY(list->findText(text) >= 0);
            list->setCurrentText(text);
        } else {
            auto *const edit = dialog->findChild<QLineEdit *>();
            edit->selectAll();
            QTest::keyClicks(edit, text);
        }
        QTest::keyClick(dialog, Qt::Key_Return);
    });
}

void tst_Workbench::answerFileDialog(const QString &path)
{
    QTimer::singleShot(0, this, [path] {
        auto *const dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        auto *const edit = dialog->findChild<QLineEdit *>("fileNameEdit");
        edit->setText(path);
        QTest::keyClick(edit, Qt::Key_Return);
    });
}

void tst_Workbench::runChecks()
{
    press(Qt::Key_F5);
    QTRY_VERIFY_WITH_TIMEOUT(summary(gateway, pcb)->text().startsWith("Violations"), 60000);
}

void tst_Workbench::everythingIsLoaded()
{
    QCOMPARE(m_workbench->catalog.troubled(), QStringList());
    QCOMPARE(m_workbench->catalog.plugins().size(), 49);
    QCOMPARE(m_workbench->window().trouble(), QString());
}

/// 35 operations for elements, with one for each frame of its kind.
void tst_Workbench::everyElementIsThere()
{
    QVERIFY(m_workbench->workspace().elements().areMadeOnce());
    QCOMPARE(m_workbench->workspace().elements().count(), 10 + 4 * 15 + 2 * 5 + 2 * 5);
    QVERIFY(view(gateway, pcb)->property("featureCount").toInt() > 2000);
}

void tst_Workbench::opensAndClosesJob()
{
    answer(sensor);
    press(Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(tabs().mid(4), (QStringList{"sensor-2l | pcb", "sensor-2l | panel"}));
    QCOMPARE(m_workbench->jobs().currentFrame(FrameKind::Graphic), frame(FrameKind::Graphic, sensor, pcb));
    QCOMPARE(m_workbench->jobs().currentFrame(FrameKind::Matrix), frame(FrameKind::Matrix, sensor));
    QCOMPARE(element<QLabel>("Common_MenuBar_Info.dll", FrameKind::Root)->text(),
             QString("PN-1057 A, Harbour Instruments, sensor-2l"));

    const QPointer<QWidget> matrix = frame(FrameKind::Matrix, sensor);
    const QPointer<QWidget> dfm = frame(FrameKind::Dfm, sensor, pcb);
    press(Qt::Key_W, Qt::ControlModifier);
    QTRY_VERIFY(!matrix && !dfm);
    QTRY_COMPARE(tabs().size(), 4);
    QCOMPARE(m_workbench->workspace().jobs(), (QStringList{gateway, control}));
}

void tst_Workbench::closesAllJobs()
{
    press(Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier);
    QTRY_VERIFY(tabs().isEmpty());
    QVERIFY(m_workbench->workspace().jobs().isEmpty());
    answer(control);
    press(Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(tabs(), (QStringList{"control-2l | pcb", "control-2l | panel"}));
}

/// The manager would take the DFM frame of a renamed job for that of a new one.
void tst_Workbench::refusesToOpenWhatIsOpen()
{
    answer("gateway-new");
    press(Qt::Key_F2);
    answer(sensor);
    press(Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(m_workbench->workspace().closedJobs(), QStringList());
    press(Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(m_workbench->jobs().statusBar()->currentMessage(), QString("All jobs are open"));
}

/// From the job list to its own frame, which asks the host for the other step's tab; and by keys.
void tst_Workbench::switchesStep()
{
    auto *const list = element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, gateway, pcb);
    click(list->findChild<QTreeWidget *>(), panel);
    QCOMPARE(m_workbench->jobs().currentFrame(FrameKind::Graphic), frame(FrameKind::Graphic, gateway, panel));
    press(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(m_workbench->jobs().currentFrame(FrameKind::Graphic), frame(FrameKind::Graphic, control, pcb));
    QCOMPARE(m_workbench->jobs().currentFrame(FrameKind::Guide), frame(FrameKind::Guide, control));
    press(Qt::Key_PageUp, Qt::ControlModifier);
    QCOMPARE(m_workbench->jobs().currentFrame(FrameKind::Graphic), frame(FrameKind::Graphic, gateway, panel));
}

/// From the matrix to the views of all steps of its job, and their answers; and to the guide.
void tst_Workbench::selectsLayerInMatrix()
{
    auto *const matrix = element<QTableWidget>("Matrix.dll", FrameKind::Matrix, gateway);
    click(matrix, "drill");
    QCOMPARE(caption(gateway, pcb), QString("gateway-4l | pcb, drill"));
    QCOMPARE(caption(gateway, panel), QString("gateway-4l | panel, drill"));
    QCOMPARE(caption(control, pcb), QString("control-2l | pcb, 5 of 7 layers"));
    const int row = matrix->currentRow();
    QCOMPARE(matrix->item(row, 5)->text(), matrix->item(row, 4)->text() + " shown");
    QCOMPARE(matrix->item(row, 6)->text(), QString("%1 shown").arg(4 * matrix->item(row, 4)->text().toInt()));
    QCOMPARE(task(gateway, 0), QString("done: Look at the layers: drill"));

    press(Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(caption(gateway, pcb), QString("gateway-4l | pcb, 5 of 9 layers"));
}

void tst_Workbench::ticksLayers()
{
    auto *const tree = element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, gateway, pcb)
                           ->findChild<QTreeWidget *>();
    const auto layer = [tree](const char *name) {
        return tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive).first();
    };
    QCOMPARE(visibleLayers(gateway, pcb), (QStringList{"silk-top", "top", "bottom", "drill", "outline"}));
    const QImage before = view(gateway, pcb)->grab().toImage();
    tree->scrollToItem(layer("silk-top"));
    QStyleOptionViewItem option;
    option.initFrom(tree);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    option.rect = tree->visualItemRect(layer("silk-top"));
    const QRect box = tree->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, tree);
    click(tree->viewport(), box.center());
    QCOMPARE(visibleLayers(gateway, pcb), (QStringList{"top", "bottom", "drill", "outline"}));
    QVERIFY(view(gateway, pcb)->grab().toImage() != before);

    press(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    QCOMPARE(visibleLayers(gateway, pcb), (QStringList{"top", "inner1", "inner2", "bottom"}));
    QCOMPARE(layer("inner1")->checkState(0), Qt::Checked);
    QCOMPARE(layer("drill")->checkState(0), Qt::Unchecked);

    click(tree, "inner1");
    QCOMPARE(caption(gateway, pcb), QString("gateway-4l | pcb, inner1"));
    QCOMPARE(caption(gateway, panel), QString("gateway-4l | panel, 5 of 9 layers"));
}

void tst_Workbench::editsMatrix()
{
    auto *const matrix = element<QTableWidget>("Matrix.dll", FrameKind::Matrix, gateway);
    click(matrix, "top");
    const int row = matrix->currentRow();
    press(Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(matrix->item(row + 1, 0)->text(), QString("top"));
    press(Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(matrix->item(row, 0)->text(), QString("top"));

    element<QMenu>("MATRIX_MENUBAR_Option.dll", FrameKind::Matrix, gateway)
        ->findChild<QAction *>("hideCounts")
        ->trigger();
    QVERIFY(matrix->isColumnHidden(2));
    const auto *const toolBar = element<QWidget>("Matrix_ToolBar.dll", FrameKind::Matrix, gateway);
    toolBar->findChild<QAction *>("hideAll")->trigger();
    QCOMPARE(visibleLayers(gateway, pcb), QStringList());
    QCOMPARE(visibleLayers(gateway, panel), QStringList());
    toolBar->findChild<QAction *>("showAll")->trigger();
    QCOMPARE(visibleLayers(gateway, panel).size(), 9);

    QTemporaryDir folder;
    answerFileDialog(folder.filePath("matrix.csv"));
    press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    QFile saved(folder.filePath("matrix.csv"));
    QVERIFY(saved.open(QIODevice::ReadOnly));
    QCOMPARE(saved.readAll().split('\n').value(7), QByteArray("drill,Drill,0,0,1036"));
}

/// From the mini map to the view, and from the view to the mini map.
void tst_Workbench::clicksMiniMap()
{
    auto *const map = element<QWidget>("Graphic_MiniMap.dll", FrameKind::Graphic, gateway, pcb);
    const auto area = [map] { return map->property("visibleArea").toRectF(); };
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Plus, Qt::ControlModifier);
    const QRectF before = area();
    click(map, {map->width() / 3, map->height() / 2});
    QVERIFY(area().center().x() < before.center().x());
    QVERIFY(qAbs(area().width() - before.width()) < 0.01);
}

void tst_Workbench::zoomsAndMoves()
{
    const auto *const map = element<QWidget>("Graphic_MiniMap.dll", FrameKind::Graphic, gateway, pcb);
    const auto area = [map] { return map->property("visibleArea").toRectF(); };
    const QRectF whole = area();
    QWidget *const viewport = view(gateway, pcb)->viewport();
    QWheelEvent wheel(viewport->rect().center(), viewport->mapToGlobal(viewport->rect().center()), {},
                      {0, 240}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(viewport, &wheel);
    QVERIFY(area().width() < whole.width() / 1.5);

    const double center = area().center().x();
    QTest::mousePress(viewport, Qt::LeftButton, {}, {100, 100});
    QTest::mouseMove(viewport, {150, 100});
    QMouseEvent drag(QEvent::MouseMove, {150, 100}, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &drag);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, {150, 100});
    QVERIFY(area().center().x() < center - 1);
    const double dragged = area().center().x();
    press(Qt::Key_Right, Qt::AltModifier);
    QVERIFY(area().center().x() > dragged);
    press(Qt::Key_Home);
    QVERIFY(qAbs(area().width() - whole.width()) < 0.5);
}

/// From the view to the coordinates, the quiet way; and from the window's menu to the units of all steps.
void tst_Workbench::followsMouse()
{
    QWidget *const viewport = view(gateway, pcb)->viewport();
    const auto *const row = element<QHBoxLayout>("Graphic_Coordinate.dll", FrameKind::Graphic, gateway, pcb);
    QTest::mouseMove(viewport, viewport->rect().center());
    QMouseEvent move(QEvent::MouseMove, viewport->rect().center(), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &move);
    const QString inMillimetres = row->property("position").toString();
    QVERIFY(inMillimetres.startsWith("X   5") || inMillimetres.startsWith("X   4"));
    press(Qt::Key_I, Qt::AltModifier);
    QVERIFY(row->property("position").toString().startsWith("X    1.9")
            || row->property("position").toString().startsWith("X    2.0"));
    press(Qt::Key_M, Qt::AltModifier);
    QCOMPARE(row->property("position").toString(), inMillimetres);
}

void tst_Workbench::selectsAndHidesFeatures()
{
    m_workbench->workspace().showStep(control, pcb);
    const int all = view(control, pcb)->property("featureCount").toInt();
    QWidget *const viewport = view(control, pcb)->viewport();
    const QPoint hole(viewport->width() / 2, viewport->height() / 2);
    click(viewport, hole);
    QCOMPARE(view(control, pcb)->property("selectedCount").toInt(), 0);
    press(Qt::Key_A, Qt::ControlModifier);
    const int selected = view(control, pcb)->property("selectedCount").toInt();
    QVERIFY(selected > 200);
    QCOMPARE(text(control, pcb), QString("Selected features: %1").arg(selected));
    press(Qt::Key_Delete);
    QCOMPARE(view(control, pcb)->property("featureCount").toInt(), all - selected);
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(view(control, pcb)->property("featureCount").toInt(), all);
    press(Qt::Key_U, Qt::ControlModifier);
    QCOMPARE(text(control, pcb), QString("Features in this step: 323"));
    press(Qt::Key_Escape);
    QCOMPARE(text(control, pcb), QString());
}

void tst_Workbench::measures()
{
    QWidget *const viewport = view(gateway, pcb)->viewport();
    press(Qt::Key_M);
    click(viewport, {100, 150});
    click(viewport, {200, 150});
    QVERIFY(text(gateway, pcb).startsWith("Distance "));
    QVERIFY(text(gateway, pcb).endsWith(", Y 0.000)"));
    press(Qt::Key_M);
    QCOMPARE(text(gateway, pcb), QString());
    press(Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(text(gateway, pcb), QString("Rout path of each board: 337.0 mm"));
}

void tst_Workbench::showsFilm()
{
    auto *const toolBar = element<QToolBar>("Graphic_DI_Tool.dll", FrameKind::Root);
    const auto clickTool = [&](const char *command) {
        QAction *const action = toolBar->findChild<QAction *>(command);
        click(toolBar->widgetForAction(action), toolBar->widgetForAction(action)->rect().center());
    };
    clickTool("bottomMask");
    QCOMPARE(visibleLayers(gateway, pcb), QStringList{"mask-bottom"});
    const QImage before = view(gateway, pcb)->grab().toImage();
    clickTool("negative");
    QVERIFY(view(gateway, pcb)->grab().toImage() != before);
    clickTool("sendToImager");
    QCOMPARE(text(gateway, pcb), QString("Sent to the imager: mask-bottom"));
    QCOMPARE(task(gateway, 3), QString("done: Send to the imager: pcb"));
}

void tst_Workbench::savesPicture()
{
    QTemporaryDir folder;
    answerFileDialog(folder.filePath("board.png"));
    press(Qt::Key_S, Qt::ControlModifier);
    QVERIFY(!QImage(folder.filePath("board.png")).isNull());
}

void tst_Workbench::renamesJob()
{
    answer("gateway-revD");
    press(Qt::Key_F2);
    QCOMPARE(tabs().mid(0, 3),
             (QStringList{"gateway-revD | pcb", "gateway-revD | panel", "control-2l | pcb"}));
    // Where there are many tabs, their texts are cut.
    QCOMPARE(m_workbench->jobs().findChild<QTabWidget *>()->tabToolTip(0), QString("gateway-revD | pcb"));
    QCOMPARE(tabs(FrameKind::Matrix).first(), QString("Matrix gateway-revD"));
    QCOMPARE(tabs(FrameKind::Guide).first(), QString("gateway-revD"));
    QCOMPARE(tabs(FrameKind::Dfm).first(), QString("gateway-revD | pcb"));
    QCOMPARE(caption("gateway-revD", pcb), QString("gateway-revD | pcb, 5 of 9 layers"));
    QCOMPARE(element<QTableWidget>("Matrix.dll", FrameKind::Matrix, "gateway-revD")
                 ->horizontalHeaderItem(0)
                 ->text(),
             QString("gateway-revD"));
    QCOMPARE(element<QMenu>("MATRIX_MENUBAR_Edit.dll", FrameKind::Matrix, "gateway-revD")
                 ->actions()
                 .first()
                 ->text(),
             QString("gateway-revD"));
    QCOMPARE(element<QLabel>("Common_MenuBar_Info.dll", FrameKind::Root)->text(),
             QString("PN-1063 C, Northfield, gateway-revD"));
    auto *const parts =
        element<QDockWidget>("ListBar_PNList.dll", FrameKind::Root)->findChild<QTreeWidget *>();
    QCOMPARE(parts->topLevelItem(2)->text(2), QString("gateway-revD"));
    const auto *const list =
        element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, "gateway-revD", panel);
    QCOMPARE(list->findChild<QTreeWidget *>()->topLevelItem(0)->text(0), QString("gateway-revD"));

    // Under its new name it is found as before.
    click(element<QTableWidget>("Matrix.dll", FrameKind::Matrix, "gateway-revD"), "top");
    QCOMPARE(caption("gateway-revD", panel), QString("gateway-revD | panel, top"));
    QCOMPARE(task("gateway-revD", 0), QString("done: Look at the layers: top"));
}

/// The manager looks for names anywhere in others.
void tst_Workbench::refusesNames()
{
    answer("my-control-2l");
    press(Qt::Key_F2);
    QCOMPARE(tabs().first(), QString("gateway-4l | pcb"));
    QCOMPARE(m_workbench->jobs().statusBar()->currentMessage(),
             QString("\"my-control-2l\" cannot be used as a name here"));
    answer("a|b");
    press(Qt::Key_F2, Qt::ShiftModifier);
    QCOMPARE(tabs().first(), QString("gateway-4l | pcb"));
}

void tst_Workbench::renamesStep()
{
    m_workbench->workspace().showStep(gateway, panel);
    press(Qt::Key_F6);
    answer("array");
    press(Qt::Key_F2, Qt::ShiftModifier);
    QCOMPARE(tabs().mid(0, 2), (QStringList{"gateway-4l | pcb", "gateway-4l | array"}));
    QCOMPARE(caption(gateway, "array"), QString("gateway-4l | array, 5 of 9 layers"));
    auto *const matrix = element<QTableWidget>("Matrix.dll", FrameKind::Matrix, gateway);
    QCOMPARE(matrix->horizontalHeaderItem(6)->text(), QString("array"));
    const auto *const list = element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, gateway, pcb);
    QCOMPARE(list->findChild<QTreeWidget *>()->topLevelItem(0)->child(1)->text(0), QString("array"));
    QCOMPARE(frame(FrameKind::Dfm, gateway, "array")->windowTitle(), QString("gateway-4l | array DFM"));
    click(matrix, "top");
    QCOMPARE(caption(gateway, "array"), QString("gateway-4l | array, top"));
}

void tst_Workbench::deletesStep()
{
    m_workbench->workspace().showStep(gateway, panel);
    press(Qt::Key_F6);
    const QPointer<QWidget> step = frame(FrameKind::Graphic, gateway, panel);
    const QPointer<QWidget> dfm = frame(FrameKind::Dfm, gateway, panel);
    QVERIFY(step && dfm);
    press(Qt::Key_Delete, Qt::ShiftModifier);
    QTRY_VERIFY(!step && !dfm);
    QCOMPARE(tabs(), (QStringList{"gateway-4l | pcb", "control-2l | pcb", "control-2l | panel"}));
    QCOMPARE(element<QTableWidget>("Matrix.dll", FrameKind::Matrix, gateway)->columnCount(), 6);
    const auto *const list = element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, gateway, pcb);
    QCOMPARE(list->findChild<QTreeWidget *>()->topLevelItem(0)->childCount(), 1);
}

void tst_Workbench::deletesJob()
{
    QList<QPointer<QWidget>> frames;
    for (const Frame *const frame : m_workbench->workspace().framesOf(gateway))
        frames.append(frame->window);
    QCOMPARE(frames.size(), 5);
    press(Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
    for (const QPointer<QWidget> &frame : qAsConst(frames))
        QTRY_VERIFY(!frame);
    QCOMPARE(tabs(), (QStringList{"control-2l | pcb", "control-2l | panel"}));
    QCOMPARE(m_workbench->workspace().closedJobs(), QStringList{sensor});
}

void tst_Workbench::comparesJobs()
{
    const QImage before = view(gateway, pcb)->grab().toImage();
    answer(control);
    press(Qt::Key_D, Qt::ControlModifier);
    QVERIFY(text(gateway, pcb).startsWith("Compared with control-2l: "));
    QVERIFY(text(gateway, panel).startsWith("Compared with control-2l: "));
    QCOMPARE(text(control, pcb), QString());
    QVERIFY(view(gateway, pcb)->grab().toImage() != before);
    QCOMPARE(task(gateway, 2), QString("done: Compare jobs: control-2l"));
    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(text(gateway, pcb), QString());
}

void tst_Workbench::locksJob()
{
    press(Qt::Key_L, Qt::ControlModifier);
    QCOMPARE(labelText(frame(FrameKind::Graphic, gateway, pcb), "text"), QString("Locked"));
    QCOMPARE(labelText(frame(FrameKind::Graphic, gateway, panel), "text"), QString("Locked"));
    QCOMPARE(labelText(frame(FrameKind::Graphic, control, pcb), "text"), QString());
    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(labelText(frame(FrameKind::Graphic, gateway, pcb), "text"), QString());
}

void tst_Workbench::setsText()
{
    answer("For approval");
    press(Qt::Key_T, Qt::ControlModifier);
    QCOMPARE(labelText(frame(FrameKind::Graphic, gateway, panel), "text"), QString("For approval"));
    auto *const matrix = qobject_cast<QMainWindow *>(frame(FrameKind::Matrix, gateway));
    QCOMPARE(matrix->statusBar()->currentMessage(), QString("For approval"));
    QCOMPARE(frame(FrameKind::Guide, gateway)->findChild<QListWidget *>()->toolTip(),
             QString("For approval"));
    QCOMPARE(element<QLabel>("Graphic_Tips.dll", FrameKind::Root)->text(), QString("For approval"));
    QCOMPARE(labelText(frame(FrameKind::Graphic, control, pcb), "text"), QString());
}

void tst_Workbench::showsKeys()
{
    QWidget *const viewport = view(gateway, pcb)->viewport();
    QTest::keyPress(viewport, Qt::Key_Control);
    QCOMPARE(labelText(frame(FrameKind::Graphic, gateway, pcb), "keys"), QString("Ctrl"));
    QCOMPARE(labelText(frame(FrameKind::Graphic, gateway, panel), "keys"), QString());
    QTest::keyRelease(viewport, Qt::Key_Control);
    QCOMPARE(labelText(frame(FrameKind::Graphic, gateway, pcb), "keys"), QString());
}

/// From the rule check to the window's progress display, the guide and the view of the step.
void tst_Workbench::checksRulesWithProgress()
{
    auto *const bar =
        element<QWidget>("CAM_Progress_Dialog.dll", FrameKind::Root)->findChild<QProgressBar *>();
    QList<int> percents;
    connect(bar, &QProgressBar::valueChanged, this, [&percents](int percent) { percents.append(percent); });
    runChecks();
    QVERIFY(percents.size() > 3);
    QVERIFY(std::is_sorted(percents.begin(), percents.end()));
    QCOMPARE(percents.last(), 100);
    QCOMPARE(summary(gateway, pcb)->text(), QString("Violations: 7"));
    QCOMPARE(task(gateway, 1), QString("done: Check the rules: 7 found"));
    QCOMPARE(view(gateway, pcb)->property("findingCount").toInt(), 7);
    QCOMPARE(findings(gateway, pcb)->topLevelItem(0)->child(0)->text(1), QString("0.070"));
    press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(view(gateway, pcb)->property("findingCount").toInt(), 0);
    press(Qt::Key_F5, Qt::ShiftModifier);
    QCOMPARE(summary(gateway, pcb)->text(), QString("Press F5 to check the rules"));

    // What is done for one job does not stay beside another.
    const auto *const progress = element<QWidget>("CAM_Progress_Dialog.dll", FrameKind::Root);
    QCOMPARE(progress->findChild<QLabel *>()->text(), QString("gateway-4l checked"));
    m_workbench->workspace().showStep(gateway, panel);
    QCOMPARE(progress->findChild<QLabel *>()->text(), QString("gateway-4l checked"));
    m_workbench->workspace().showStep(control, pcb);
    QCOMPARE(progress->findChild<QLabel *>()->text(), QString());
}

void tst_Workbench::stopsCheck()
{
    press(Qt::Key_F5);
    press(Qt::Key_Period, Qt::ControlModifier);
    QCOMPARE(summary(gateway, pcb)->text(), QString("Stopped"));
    QTest::qWait(50);
    QCOMPARE(view(gateway, pcb)->property("findingCount").toInt(), 0);
}

void tst_Workbench::goesToFinding()
{
    runChecks();
    const auto *const map = element<QWidget>("Graphic_MiniMap.dll", FrameKind::Graphic, gateway, pcb);
    click(findings(gateway, pcb), "drill at 99.5");
    QVERIFY(map->property("visibleArea").toRectF().contains(QPointF(99.55, 30)));
    QVERIFY(map->property("visibleArea").toRectF().width() < 7);
    auto *const menu = element<QMenu>("DFM_MenuBar_View.dll", FrameKind::Dfm, gateway, pcb);
    menu->findChild<QAction *>("violationsOnly")->trigger();
    QVERIFY(findings(gateway, pcb)->topLevelItem(4)->isHidden());
    menu->findChild<QAction *>("allResults")->trigger();
    QVERIFY(!findings(gateway, pcb)->topLevelItem(4)->isHidden());
}

void tst_Workbench::checksAnotherStep()
{
    m_workbench->workspace().showStep(control, panel);
    press(Qt::Key_F6);
    QCOMPARE(m_workbench->jobs().currentFrame(FrameKind::Dfm), frame(FrameKind::Dfm, control, panel));
    QTRY_COMPARE(summary(control, panel)->text(), QString("Violations: 1"));
    QCOMPARE(view(control, panel)->property("findingCount").toInt(), 1);
    QCOMPARE(view(control, pcb)->property("findingCount").toInt(), 0);
}

void tst_Workbench::exportsReport()
{
    runChecks();
    QTemporaryDir folder;
    answerFileDialog(folder.filePath("report.txt"));
    press(Qt::Key_E, Qt::ControlModifier);
    QFile report(folder.filePath("report.txt"));
    QVERIFY(report.open(QIODevice::ReadOnly));
    QVERIFY(report.readAll().startsWith("Track width: 1\n  top at 62.0, 22.0: 0.070\nCopper clearance: 2\n"));
}

/// From the guide to the tips, which belong to no job.
void tst_Workbench::followsGuide()
{
    click(frame(FrameKind::Guide, gateway)->findChild<QListWidget *>(), "Check the rules");
    QCOMPARE(element<QLabel>("Graphic_Tips.dll", FrameKind::Root)->text(),
             QString("Press F5, or choose Operate, Run checks in DFM."));
}

/// From the filter to the list of part numbers, and from the list to the view of one.
void tst_Workbench::filtersParts()
{
    auto *const bar = element<QVBoxLayout>("CAM_FilterAndInfo_Bar.dll", FrameKind::Root);
    auto *const filter = qobject_cast<QLineEdit *>(bar->itemAt(0)->widget());
    auto *const parts =
        element<QDockWidget>("ListBar_PNList.dll", FrameKind::Root)->findChild<QTreeWidget *>();
    const auto *const data = element<QWidget>("CAM_PNData_View.dll", FrameKind::Root);
    QCOMPARE(data->findChild<QLabel *>()->text(), QString("PN-1063, revision C"));
    QTest::keyClicks(filter, "sensor");
    QVERIFY(parts->topLevelItem(0)->isHidden() && !parts->topLevelItem(1)->isHidden());
    QCOMPARE(qobject_cast<QLabel *>(bar->itemAt(1)->widget())->text(), QString("1 of 3 part numbers"));
    click(parts, "PN-1057");
    QCOMPARE(data->findChild<QLabel *>()->text(), QString("PN-1057, revision A"));
}

/// Its frame belongs to no root.
void tst_Workbench::previewsJob()
{
    answer(sensor);
    press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    const QPointer<QWidget> preview = frame(FrameKind::Preview, sensor, pcb);
    QVERIFY(preview && preview->window() != &window());
    const auto *const board = element<QWidget>("Graphic_View.dll", FrameKind::Preview, sensor, pcb);
    QCOMPARE(board->property("caption").toString(), QString("sensor-2l | pcb, 5 of 7 layers"));
    const auto *const guide = element<QWidget>("Graphic_CamGuide.dll", FrameKind::Preview, sensor, pcb);
    QCOMPARE(guide->findChild<QListWidget *>()->item(0)->text(),
             QString("Look at the layers: in this preview"));
    QCOMPARE(tabs().size(), 4);
    preview->window()->close();
    QTRY_VERIFY(!preview);

    // Opening it ends the preview.
    answer(sensor);
    press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    const QPointer<QWidget> again = frame(FrameKind::Preview, sensor, pcb);
    QVERIFY(again);
    answer(sensor);
    press(Qt::Key_O, Qt::ControlModifier);
    QTRY_VERIFY(!again);
    QVERIFY(frame(FrameKind::Graphic, sensor, pcb));
}

void tst_Workbench::reloadsDfmPlugins()
{
    m_workbench->workspace().showStep(control, panel);
    press(Qt::Key_F6);
    m_workbench->workspace().showStep(gateway, pcb);
    const QPointer<QWidget> before = frame(FrameKind::Dfm, gateway, pcb);
    press(Qt::Key_F5, Qt::ControlModifier);
    QTRY_COMPARE(element<QLabel>("Graphic_Tips.dll", FrameKind::Root)->text(),
                 QString("The DFM set was loaded again"));
    QVERIFY(!before);
    QVERIFY(frame(FrameKind::Dfm, gateway, pcb));
    QVERIFY(frame(FrameKind::Dfm, control, panel));
    QVERIFY(m_workbench->cam->plugin("DFM_RuleCheck.dll")->isLoaded());
    QCOMPARE(m_workbench->catalog.troubled(), QStringList());
    m_workbench->jobs().showFrame(FrameKind::Dfm, frame(FrameKind::Dfm, gateway, pcb));
    runChecks();
    QCOMPARE(summary(gateway, pcb)->text(), QString("Violations: 7"));
}

void tst_Workbench::reloadsDesktopTools()
{
    const QPointer<QObject> before = m_workbench->desktop->m_viewObject;
    press(Qt::Key_F6, Qt::ControlModifier);
    QTRY_VERIFY(!before);
    QCOMPARE(m_workbench->catalog.troubled(), QStringList());
    setsTestPoints();
    countsCopper();
}

/// Desktop tools: from the list to the view, the status display and others, and to a file and back.
void tst_Workbench::setsTestPoints()
{
    QTpluginsManger &tools = *m_workbench->desktop;
    const auto shown = [&tools] { return tools.m_viewResult->property("caption").toString(); };
    press(Qt::Key_2, Qt::ControlModifier);
    QTRY_VERIFY(tools.m_viewResult->isVisible());
    click(qobject_cast<QTreeWidget *>(tools.m_pnListResult), "PN-1042");
    QCOMPARE(labelText(tools.m_statusResult, "part"), QString("Part PN-1042"));
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Insert);
    press(Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(shown(), QString("PN-1042 B, job control-2l: 4 test points, 1 selected"));
    press(Qt::Key_A, Qt::ControlModifier);
    const QImage before = tools.m_viewResult->grab().toImage();
    press(Qt::Key_Right, Qt::ControlModifier);
    QVERIFY(tools.m_viewResult->grab().toImage() != before);

    QTemporaryDir folder;
    PluginMetaData useFolder;
    useFolder.dst = "File_Process";
    useFolder.type = 18;
    useFolder.data = {{"Folder", folder.path()}};
    tools.recMegfromPlugin(useFolder);
    press(Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(labelText(tools.m_statusResult, "text"),
             QString("4 test points saved to testpoints-PN-1042.json"));
    press(Qt::Key_Delete);
    QCOMPARE(shown(), QString("PN-1042 B, job control-2l: 0 test points, 0 selected"));
    press(Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(shown(), QString("PN-1042 B, job control-2l: 4 test points, 0 selected"));
}

/// From a worker thread to the progress display and the view, in order.
void tst_Workbench::countsCopper()
{
    QTpluginsManger &tools = *m_workbench->desktop;
    press(Qt::Key_2, Qt::ControlModifier);
    click(qobject_cast<QTreeWidget *>(tools.m_pnListResult), "PN-1057");
    auto *const bar = window().findChild<QProgressBar *>("progress");
    QList<int> percents;
    const auto connection = connect(bar, &QProgressBar::valueChanged, this, [&percents](int percent) {
        QCOMPARE(QThread::currentThread(), qApp->thread());
        percents.append(percent);
    });
    press(Qt::Key_F5);
    QTRY_COMPARE_WITH_TIMEOUT(labelText(tools.m_statusResult, "text"), QString("PN-1057 counted"), 60000);
    disconnect(connection);
    QVERIFY(std::is_sorted(percents.begin(), percents.end()));
    QCOMPARE(percents.last(), 100);
    QVERIFY(tools.m_viewResult->property("text").toString().startsWith("Copper: top "));
}

void tst_Workbench::showsMessages()
{
    press(Qt::Key_M, Qt::ControlModifier);
    auto *const table = window().findChild<MessageView *>()->findChild<QTableView *>();
    QTRY_VERIFY(table->isVisible());
    m_workbench->log.clear();
    auto *const list = element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, gateway, pcb);
    click(list->findChild<QTreeWidget *>(), "outline");
    QTRY_VERIFY(m_workbench->log.text(0).endsWith("recMegToPlugin, logged"));
    const QStringList cells = m_workbench->log.text(0).split('\t');
    QCOMPARE(cells.mid(1), (QStringList{"Graphic_JobList.dll", "Graphic_View.dll", "SelectLayer (3)",
                                        "Layer = outline", "recMegToPlugin, logged"}));
    QVERIFY(QTime::fromString(cells.first(), "HH:mm:ss.zzz").isValid());
    table->selectRow(0);
    QCOMPARE(labelText(&window(), "details"), QString("Layer = outline"));
}

/// What the manager sends by itself the host knows from the operation.
void tst_Workbench::notesWhatTheManagerSends()
{
    m_workbench->log.clear();
    answer(sensor);
    press(Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(sentByManager(),
             (QStringList{"ORVIK-Matrix.dll FrameOpened (20001638) JobName = sensor-2l",
                          "Graphic_CamGuide.dll GuideOpened (20003913) JobName = sensor-2l|Guide",
                          "ORVIK-GraphicEditor.dll FrameOpened (20001638) "
                          "IsCamAssistant = false; JobName = sensor-2l; Step = pcb",
                          "ORVIK-GraphicEditor.dll FrameOpened (20001638) "
                          "IsCamAssistant = false; JobName = sensor-2l; Step = panel",
                          "ORVIK-GraphicEditor.dll DfmFrameOpened (20004616) "}));
    m_workbench->log.clear();
    answer("sensor-new");
    press(Qt::Key_F2);
    QCOMPARE(sentByManager().size(), 4);
    QCOMPARE(
        sentByManager().last(),
        QString(
            "Graphic_CamGuide.dll JobRenamed (20002400) NewJobName = sensor-new; OldJobName = sensor-2l"));
    m_workbench->log.clear();
    press(Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(sentByManager(), (QStringList{"ORVIK-Matrix.dll FrameClosed (20002402) ",
                                           "ORVIK-GraphicEditor.dll FrameClosed (20002402) ",
                                           "ORVIK-GraphicEditor.dll FrameClosed (20002402) ",
                                           "Graphic_CamGuide.dll FrameClosed (20002402) ",
                                           "ORVIK-GraphicEditor.dll FrameClosed (20002402) "}));
}

/// A preview has neither job list nor matrix, but its view writes to both.
void tst_Workbench::showsMessagesForNobody()
{
    m_workbench->log.clear();
    answer(sensor);
    press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    int toNobody = 0;
    for (int row = 0; row < m_workbench->log.rowCount(); ++row) {
        const QString line = m_workbench->log.text(row);
        const bool isToNobody = line.endsWith(", to nobody");
        QCOMPARE(isToNobody, line.contains("\tGraphic_JobList.dll\t"));
        QCOMPARE(m_workbench->log.index(row, 0).data(Qt::ForegroundRole).isValid(), isToNobody);
        toNobody += isToNobody ? 1 : 0;
    }
    QVERIFY(toNobody > 0);

    m_workbench->log.clear();
    PluginMetaData message;
    message.src = "Viewbar_View";
    message.dst = "Nobody";
    m_workbench->log.noteFromDesktop(message);
    QVERIFY(m_workbench->log.text(0).endsWith("recMegfromPlugin, to nobody"));
    message.dst = "Viewbar_Status";
    m_workbench->log.noteFromDesktop(message);
    QVERIFY(m_workbench->log.text(1).endsWith("recMegfromPlugin"));
}

void tst_Workbench::filtersPausesCopiesAndSavesMessages()
{
    press(Qt::Key_M, Qt::ControlModifier);
    auto *const messages = window().findChild<MessageView *>();
    auto *const table = messages->findChild<QTableView *>();
    QTRY_VERIFY(table->isVisible());
    auto *const filter = messages->findChild<QLineEdit *>("filter");
    QTest::keyClicks(filter, "ShowSteps");
    QCOMPARE(table->model()->rowCount(), 4);
    QCOMPARE(messages->shownText().split('\n').size(), 4);
    messages->findChild<QAction *>("copy")->trigger();
    QCOMPARE(QApplication::clipboard()->text(), messages->shownText());

    QTemporaryDir folder;
    answerFileDialog(folder.filePath("messages.txt"));
    messages->findChild<QAction *>("save")->trigger();
    QFile saved(folder.filePath("messages.txt"));
    QVERIFY(saved.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(saved.readAll()), messages->shownText() + '\n');

    filter->clear();
    messages->findChild<QAction *>("pause")->trigger();
    const int noted = m_workbench->log.rowCount();
    click(element<QTableWidget>("Matrix.dll", FrameKind::Matrix, gateway), "top");
    QTest::qWait(20);
    QCOMPARE(m_workbench->log.rowCount(), noted);
    const QTime resumed = QTime::currentTime();
    messages->findChild<QAction *>("pause")->trigger();
    // What came meanwhile, with the time at which it came.
    QVERIFY(m_workbench->log.rowCount() > noted);
    const QStringList missed = m_workbench->log.text(noted).split('\t');
    QCOMPARE(missed.value(3), QString("SelectLayer (3)"));
    QVERIFY(QTime::fromString(missed.first(), "HH:mm:ss.zzz") < resumed);

    messages->findChild<QAction *>("clear")->trigger();
    press(Qt::Key_Plus, Qt::ControlModifier);
    const int shown = table->model()->rowCount();
    messages->findChild<QCheckBox *>("quiet")->click();
    QVERIFY(table->model()->rowCount() > shown);
}

void tst_Workbench::showsPlugins()
{
    press(Qt::Key_3, Qt::ControlModifier);
    QCOMPARE(labelText(&window(), "summary"),
             QString("All 48 plug-ins are loaded, by 49 entries of the lists"));
    const auto *const list = window().findChild<PluginView *>()->findChild<QTreeWidget *>();
    QTRY_VERIFY(list->isVisible());
    QCOMPARE(list->topLevelItemCount(), 49);
    const auto cells = [list](const QTreeWidgetItem *item) {
        QStringList texts;
        for (int column = 0; column < list->columnCount(); ++column)
            texts.append(item->text(column));
        return texts;
    };
    QCOMPARE(cells(list->findItems("Graphic_View", Qt::MatchExactly).value(0)),
             (QStringList{"Graphic_View", "CAM", "Loaded", "1.2.0",
                          QDir::toNativeSeparators(QDir(EXAMPLE_PLUGIN_DIR).filePath("Graphic_View.dll"))}));
    // In the lists of both managers.
    QCOMPARE(list->findItems("ListBar_PNList", Qt::MatchExactly).size(), 2);
    m_workbench->catalog.blame("Graphic_View.dll", "It was blamed.");
    QCOMPARE(labelText(&window(), "summary"), QString("Plug-ins that need attention: 1 of 48"));
    QVERIFY(labelText(&window(), "troubles").contains("<b>Graphic_View</b>: It was blamed."));
    QCOMPARE(m_workbench->window().trouble(), QString("Plug-ins that need attention: Graphic_View"));
}

void tst_Workbench::showsStartUp()
{
    press(Qt::Key_4, Qt::ControlModifier);
    auto *const page = window().findChild<ProfileView *>();
    QTRY_VERIFY(page->isVisible());
    const QImage picture = page->grab().toImage();
    const QRgb barColor = page->palette().color(QPalette::Highlight).rgb();
    const QRgb restColor = page->palette().color(QPalette::AlternateBase).rgb();
    const int line = page->fontMetrics().height();
    QCOMPARE(m_profile->phases().size(), 2);
    for (int phase = 0; phase < 2; ++phase) {
        // Above the texts, where there is nothing but the bar and the rest.
        const int y = int((4 + 2 * phase + 0.35) * line) + 2;
        int bar = 0;
        int rest = 0;
        for (int x = 0; x < picture.width(); ++x) {
            bar += picture.pixel(x, y) == barColor ? 1 : 0;
            rest += picture.pixel(x, y) == restColor ? 1 : 0;
        }
        QVERIFY2(bar + rest > 400, qPrintable(QString::number(bar + rest)));
        const double share = m_profile->phases().at(phase).milliseconds / m_profile->total();
        QVERIFY(qAbs(double(bar) / (bar + rest) - share) < 0.01);
    }
}

void tst_Workbench::remembersLayout()
{
    QTemporaryDir folder;
    QSettings settings(folder.filePath("layout.ini"), QSettings::IniFormat);
    auto *const guide = m_workbench->jobs().findChild<QDockWidget *>("Guide");
    guide->hide();
    m_workbench->window().showMessages(true);
    m_workbench->window().resize(1180, 780);
    m_workbench->window().saveLayout(settings);

    guide->show();
    m_workbench->window().showMessages(false);
    m_workbench->window().resize(1280, 800);
    m_workbench->window().restoreLayout(settings);
    QVERIFY(guide->isHidden());
    QVERIFY(!window().findChild<QDockWidget *>("Messages")->isHidden());
    QCOMPARE(window().size(), QSize(1180, 780));
}

/// What is loaded goes on working; a whole file is taken again.
void tst_Workbench::refusesDamagedDfmPlugin()
{
    const QString file = REPLACED_PLUGIN_DIR "/DFM_RuleCheck.dll";
    const QByteArray whole = TestFiles::read(file);
    TestFiles::remove(file);
    TestFiles::write(file, whole.left(whole.size() / 3));
    press(Qt::Key_F5, Qt::ControlModifier);
    QTRY_COMPARE(m_workbench->catalog.troubled(), QStringList{"DFM_RuleCheck"});
    QVERIFY(pluginTrouble("DFM_RuleCheck").contains("The file is cut off"));
    QCOMPARE(element<QLabel>("Graphic_Tips.dll", FrameKind::Root)->text(),
             QString("Not loaded again: a file is damaged, see Plug-ins"));
    runChecks();
    QCOMPARE(summary(gateway, pcb)->text(), QString("Violations: 7"));

    TestFiles::remove(file);
    TestFiles::write(file, whole);
    press(Qt::Key_F5, Qt::ControlModifier);
    QTRY_COMPARE(m_workbench->catalog.troubled(), QStringList());
    m_workbench->jobs().showFrame(FrameKind::Dfm, frame(FrameKind::Dfm, gateway, pcb));
    runChecks();
}

void tst_Workbench::refusesDamagedDesktopTool()
{
    const QString file = REPLACED_PLUGIN_DIR "/Viewbar_View.dll";
    const QByteArray whole = TestFiles::read(file);
    TestFiles::remove(file);
    TestFiles::write(file, whole.left(whole.size() / 3));
    const QPointer<QWidget> view = m_workbench->desktop->m_viewResult;
    press(Qt::Key_F6, Qt::ControlModifier);
    QTRY_COMPARE(m_workbench->catalog.troubled(), QStringList{"Viewbar_View"});
    QVERIFY(view);
    setsTestPoints();
}

/// In their place lie libraries that are no Qt plug-ins, so these four do not load again.
void tst_Workbench::reloadsWithoutDesktopTools()
{
    for (const QString &library : desktopTools)
        TestFiles::replace(REPLACED_PLUGIN_DIR "/" + library, EXAMPLE_PLUGIN_DIR "/Graphic_Tips.dll");
    const QPointer<QWidget> before = m_workbench->desktop->m_viewResult;
    press(Qt::Key_F6, Qt::ControlModifier);
    QTRY_COMPARE(element<QLabel>("Graphic_Tips.dll", FrameKind::Root)->text(),
                 QString("The desktop tools were loaded again"));
    QVERIFY(!before);
    const QTpluginsManger &tools = *m_workbench->desktop;
    QVERIFY(!tools.m_viewResult && !tools.m_pnListResult && !tools.m_menuBarResult1
            && !tools.m_fileProcessResult1);
    QVERIFY(tools.m_statusResult);
    for (const char *const name : {"File_Process", "MenuBar_Menu", "Viewbar_View"})
        QVERIFY2(m_workbench->catalog.troubled().contains(name), name);
    press(Qt::Key_2, Qt::ControlModifier);
    QTRY_VERIFY(tools.m_statusResult->isVisible());
}

/// As if they were gone from the folder.
void tst_Workbench::reloadsWithoutAnyDesktopTool()
{
    for (const char *const folder : {REPLACED_PLUGIN_DIR, EXAMPLE_PLUGIN_DIR})
        QCoreApplication::removeLibraryPath(folder);
    press(Qt::Key_F6, Qt::ControlModifier);
    QTRY_COMPARE(element<QLabel>("Graphic_Tips.dll", FrameKind::Root)->text(),
                 QString("The desktop tools were loaded again"));
    const QTpluginsManger &tools = *m_workbench->desktop;
    QVERIFY(!tools.m_viewResult && !tools.m_pnListResult && !tools.m_statusResult);
    QVERIFY(!tools.m_menuBarResult1 && !tools.m_menuBarResult2 && !tools.m_menuBarResult3);
    QVERIFY(!tools.m_fileProcessResult1 && !tools.m_fileProcessResult2);
    QCOMPARE(m_workbench->catalog.troubled().size(), 11);
    click(element<QTableWidget>("Matrix.dll", FrameKind::Matrix, gateway), "drill");
    QCOMPARE(caption(gateway, pcb), QString("gateway-4l | pcb, drill"));
}

/// The library throws at every message.
void tst_Workbench::survivesThrowingReceiver()
{
    QVERIFY(window().isVisible());
    QCOMPARE(m_workbench->catalog.troubled(), QStringList{"Graphic_Coordinate"});
    QCOMPARE(m_workbench->post.failures().value("Graphic_Coordinate.dll"),
             QString("the table of units is empty"));
    QVERIFY(pluginTrouble("Graphic_Coordinate").contains("OpenStep (10): the table of units is empty."));
    click(element<QTableWidget>("Matrix.dll", FrameKind::Matrix, gateway), "drill");
    QCOMPARE(caption(gateway, pcb), QString("gateway-4l | pcb, drill"));
}

void tst_Workbench::survivesThrowingFactories()
{
    QCOMPARE(m_workbench->catalog.troubled(), (QStringList{"Graphic_CamGuide", "Graphic_MiniMap"}));
    QVERIFY(
        pluginTrouble("Graphic_CamGuide")
            .startsWith("It threw while it handled Ov_RegisterGuideFramework: the list of tasks is empty."));
    QVERIFY(pluginTrouble("Graphic_MiniMap")
                .startsWith("It threw while it handled Ov_RegisterGraphic_MiniMap: the map has no scale."));
    QVERIFY(!frame(FrameKind::Guide, gateway));
    answer(sensor);
    press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(frame(FrameKind::Preview, sensor, pcb));
    click(element<QTableWidget>("Matrix.dll", FrameKind::Matrix, gateway), "drill");
    QCOMPARE(caption(gateway, pcb), QString("gateway-4l | pcb, drill"));
}

/// It is there although it threw at the first message, and goes although it throws at the last.
void tst_Workbench::survivesThrowingFrame()
{
    QCOMPARE(m_workbench->catalog.troubled(), QStringList{"ORVIK-Matrix"});
    const QPointer<QWidget> matrix = frame(FrameKind::Matrix, gateway);
    QVERIFY(matrix);
    answer("gateway-revD");
    press(Qt::Key_F2);
    QCOMPARE(caption("gateway-revD", pcb).section(',', 0, 0), QString("gateway-revD | pcb"));
    press(Qt::Key_W, Qt::ControlModifier);
    QTRY_VERIFY(!matrix);
    QTRY_COMPARE(tabs(), (QStringList{"control-2l | pcb", "control-2l | panel"}));
}

/// Called by the host it is told by name. Called by the manager upon a signal of another plug-in, what it
/// throws comes out of an event.
void tst_Workbench::survivesThrowingDesktopPlugin()
{
    QCOMPARE(m_workbench->catalog.troubled(), QStringList{"Plating_Area"});
    press(Qt::Key_2, Qt::ControlModifier);
    QTRY_VERIFY(m_workbench->desktop->m_viewResult->isVisible());
    QToolBar *const tools = m_workbench->points().findChild<QToolBar *>("Tools");
    for (QAction *const action : tools->actions()) {
        if (action->objectName() == "platingArea")
            click(tools->widgetForAction(action), tools->widgetForAction(action)->rect().center());
    }
    QCOMPARE(m_workbench->catalog.troubled(), (QStringList{"Plating_Area", "one that cannot be told"}));
    QVERIFY(m_workbench->catalog.otherTroubles().first().contains("the bath is dry"));
    QVERIFY(labelText(&window(), "troubles").contains("the bath is dry"));
    setsTestPoints();
}

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    return runTestInProcesses<tst_Workbench, WorkbenchApplication>(argc, argv);
}

#include "tst_workbench.moc"

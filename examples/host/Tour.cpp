#include "Tour.h"

#include "MainWindow.h"
#include "MessageView.h"
#include "Workbench.h"
#include "WorkbenchWindow.h"

#include <pluginManger.h>

#include <QtCore/QRectF>
#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QTableView>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QTreeWidget>

#include <algorithm>

namespace {

const QString job = QStringLiteral("gateway-4l");
const QString smallJob = QStringLiteral("control-2l");
const QString pcb = QStringLiteral("pcb");
const QString panel = QStringLiteral("panel");

}

Tour::Tour(Workbench &workbench, const QString &folder)
    : m_stage{workbench}
    , m_workbench(workbench)
    , m_account(workbench.account)
    , m_folder(folder)
{
    m_folder.mkpath(QStringLiteral("."));
}

void Tour::play()
{
    m_account.heading(QStringLiteral("Tour"));
    lookAtBoard();
    selectLayer();
    zoomIn();
    checkRules();
    goToFinding();
    compareJobs();
    showFilm();
    rename();
    previewJob();
    readMessages();
    measureTestPoints();
    countCopper();
    lookAtPlugins();
    lookAtStartUp();
}

void Tour::playWithBrokenPlugins()
{
    m_account.heading(QStringLiteral("Tour with broken plug-ins"));
    m_account.expect(QStringLiteral("Plug-ins in trouble"),
                     m_workbench.catalog.troubled().join(QStringLiteral(", ")),
                     QStringLiteral("Graphic_Coordinate, Graphic_MiniMap, Graphic_Tips, Matrix_ToolBar"));
    takePicture("broken",
                QStringLiteral("One plug-in is missing, one cut off, one of a wrong version, and one throws: "
                               "the window opens, and says so"));
    m_workbench.window().showPage(WorkbenchWindow::PluginsPage);
    for (const CataloguedPlugin &plugin : m_workbench.catalog.plugins()) {
        if (plugin.state != CataloguedPlugin::Loaded)
            m_account.fact(plugin.name, plugin.trouble);
    }
    takePicture("reasons", QStringLiteral("What is wrong with each, and what to do about it"));
    m_workbench.window().showPage(WorkbenchWindow::JobsPage);
    selectLayer();
    checkRules();
    compareJobs();
    measureTestPoints();
}

void Tour::lookAtBoard()
{
    User::moveMouse(m_stage.view(job, pcb), {210, 160});
    m_account.check(QStringLiteral("Over 2,000 features are drawn"),
                    m_stage.view(job, pcb)->property("featureCount").toInt() > 2000);
    takePicture("board",
                QStringLiteral("A board of 5,595 features, with its layers, guide and rules around it"));
}

/// From the matrix to the views of all steps, and their answers; and to the guide.
void Tour::selectLayer()
{
    auto *const matrix = m_stage.element<QTableWidget>("Matrix.dll", FrameKind::Matrix, job);
    User::click(matrix, QStringLiteral("inner2"));
    m_account.expect(QStringLiteral("View"), m_stage.view(job, pcb)->property("caption").toString(),
                     QStringLiteral("gateway-4l | pcb, inner2"));
    m_account.expect(QStringLiteral("Answer of the view"), matrix->item(4, 5)->text(),
                     QStringLiteral("28 shown"));
    takePicture("layer", QStringLiteral("A layer chosen in the matrix stands out in the views of all steps"));
    User::choose(m_stage.element<QMenu>("Graphic_MenuBar_Analysis.dll", FrameKind::Graphic, job, pcb),
                 "allLayers");
}

/// From the buttons to the view, and from there to the mini map.
void Tour::zoomIn()
{
    auto *const buttons = m_stage.element<QLayout>("Graphic_Toolbar_Move.dll", FrameKind::Graphic, job, pcb);
    auto *const map = m_stage.element<QWidget>("Graphic_MiniMap.dll", FrameKind::Graphic, job, pcb);
    const double before = map->property("visibleArea").toRectF().width();
    for (int i = 0; i < 5; ++i)
        User::choose(buttons, "zoomIn");
    User::click(map, {map->width() * 52 / 100, map->height() / 2});
    m_account.check(QStringLiteral("Less is visible"),
                    map->property("visibleArea").toRectF().width() < before / 2);
    QWidget *const viewport = m_stage.view(job, pcb)->viewport();
    User::click(viewport, viewport->rect().center());
    takePicture(
        "zoom",
        QStringLiteral("The small map shows, and chooses, what the view shows; a click selects a feature"));
    User::choose(m_stage.element<QMenu>("Graphic_MenuBar_Edit.dll", FrameKind::Graphic, job, pcb),
                 "clearSelection");
    User::choose(buttons, "fit");
}

/// From a menu to the rule check; from there to the progress display, the guide and the view.
void Tour::checkRules()
{
    auto *const check = m_stage.element<QObject>("DFM_RuleCheck.dll", FrameKind::Dfm, job, pcb);
    User::choose(m_stage.element<QMenu>("DFM_MenuBar_Operate.dll", FrameKind::Dfm, job, pcb), "runChecks");
    const bool finished =
        User::waitUntil([&] { return m_stage.label(check).startsWith(QStringLiteral("Violations")); });
    m_account.check(QStringLiteral("Rules are checked"), finished);
    m_account.check(QStringLiteral("Findings are marked"),
                    m_stage.view(job, pcb)->property("findingCount").toInt() > 0);
    m_account.fact(QStringLiteral("Result"), m_stage.label(check));
    takePicture(
        "rules",
        QStringLiteral("F5 checks six rules feature by feature, and marks where the board breaks them"));
}

void Tour::goToFinding()
{
    auto *const check = m_stage.element<QObject>("DFM_RuleCheck.dll", FrameKind::Dfm, job, pcb);
    auto *const rules = check->findChild<QTreeWidget *>();
    QTreeWidgetItem *const rule = rules->topLevelItem(0);
    rules->setCurrentItem(rule->child(0));
    const QRectF area = m_stage.element<QWidget>("Graphic_MiniMap.dll", FrameKind::Graphic, job, pcb)
                            ->property("visibleArea")
                            .toRectF();
    m_account.check(QStringLiteral("View goes to the finding"), area.width() < 8);
    takePicture("finding", QStringLiteral("A finding brings the view to the track that is too thin"));
    User::choose(m_stage.element<QLayout>("Graphic_Toolbar_Move.dll", FrameKind::Graphic, job, pcb), "fit");
}

void Tour::compareJobs()
{
    User::choose(m_stage.element<QMenu>("CAM_MenuBar_Menu.dll", FrameKind::Root), "openJob",
                 QStringLiteral("sensor-2l"));
    m_workbench.workspace().showStep(smallJob, pcb);
    QMenu *const menu =
        m_stage.element<QMenu>("Graphic_MenuBar_Actions.dll", FrameKind::Graphic, smallJob, pcb);
    User::choose(menu, "compareWith", QStringLiteral("sensor-2l"));
    const QString text = m_stage.view(smallJob, pcb)->property("text").toString();
    m_account.check(QStringLiteral("Jobs are compared"),
                    text.startsWith(QStringLiteral("Compared with sensor-2l")));
    m_account.fact(QStringLiteral("View"), text);
    takePicture("compare", QStringLiteral("Two jobs compared: what only the other one has is drawn in pink"));
    User::choose(menu, "endComparison");
}

void Tour::showFilm()
{
    auto *const tools = m_stage.element<QToolBar>("Graphic_DI_Tool.dll", FrameKind::Root);
    User::choose(tools, "topCopper");
    User::choose(tools, "negative");
    User::choose(tools, "sendToImager");
    m_account.expect(
        QStringLiteral("Layers"),
        m_stage.view(smallJob, pcb)->property("visibleLayers").toStringList().join(QLatin1Char(' ')),
        QStringLiteral("top"));
    takePicture("film", QStringLiteral("The tool bar shows the film of a layer, here as a negative"));
    User::choose(m_stage.element<QMenu>("Graphic_MenuBar_Analysis.dll", FrameKind::Graphic, smallJob, pcb),
                 "allLayers");
}

void Tour::rename()
{
    User::choose(m_stage.element<QMenu>("Graphic_MenuBar_File.dll", FrameKind::Graphic, smallJob, pcb),
                 "renameJob", QStringLiteral("control-2l-revB"));
    const QString renamed = QStringLiteral("control-2l-revB");
    User::choose(m_stage.element<QMenu>("Graphic_MenuBar_Step.dll", FrameKind::Graphic, renamed, panel),
                 "renameStep", QStringLiteral("array"));
    User::choose(m_stage.element<QMenu>("CAM_MenuBar_Actions.dll", FrameKind::Root), "lockJob");
    m_workbench.workspace().showStep(renamed, QStringLiteral("array"));
    m_account.expect(QStringLiteral("Tabs"),
                     m_workbench.jobs().tabTexts(FrameKind::Graphic).mid(2, 2).join(QStringLiteral(", ")),
                     QStringLiteral("control-2l-revB | pcb, control-2l-revB | array"));
    takePicture("rename",
                QStringLiteral("A job and a step have new names in all frames, and the job is locked"));
}

void Tour::previewJob()
{
    User::choose(m_stage.element<QMenu>("Graphic_MenuBar_File.dll", FrameKind::Graphic,
                                        QStringLiteral("sensor-2l"), pcb),
                 "deleteJob");
    User::choose(m_stage.element<QMenu>("CAM_MenuBar_Menu.dll", FrameKind::Root), "closeJob");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    User::choose(m_stage.element<QMenu>("CAM_MenuBar_Menu.dll", FrameKind::Root), "previewJob", smallJob);
    QWidget *const preview = m_stage.frame(FrameKind::Preview, smallJob, pcb)->window();
    m_account.check(QStringLiteral("Preview has a window of its own"), preview != &m_workbench.window());
    takePicture("preview", QStringLiteral("A job looked at without opening it, in a window of its own"),
                preview);
    preview->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_account.check(QStringLiteral("Preview is gone"),
                    !m_workbench.workspace().find(FrameKind::Preview, smallJob, pcb));
}

void Tour::readMessages()
{
    m_workbench.window().showMessages(true);
    User::click(m_stage.element<QTableWidget>("Matrix.dll", FrameKind::Matrix, job),
                QStringLiteral("bottom"));
    m_account.check(QStringLiteral("Messages are noted"), m_workbench.log.rowCount() > 100);
    auto *const filter = m_workbench.window().findChild<QLineEdit *>(QStringLiteral("filter"));
    filter->setText(QStringLiteral("bottom"));
    auto *const messages = m_workbench.window().findChild<MessageView *>()->findChild<QTableView *>();
    messages->selectRow(messages->model()->rowCount() - 1);
    takePicture("messages",
                QStringLiteral("Every message as it is sent, with a filter, pause, copy and save"));
    messages->clearSelection();
    filter->clear();
    m_workbench.window().showMessages(false);
}

/// Desktop tools: from the list to the view, the status display and others.
void Tour::measureTestPoints()
{
    m_workbench.window().showPage(WorkbenchWindow::PointsPage);
    QTpluginsManger &tools = *m_workbench.desktop;
    User::click(qobject_cast<QTreeWidget *>(tools.m_pnListResult), QStringLiteral("PN-1042"));
    for (int point = 0; point < 6; ++point)
        triggerTool(tools.m_editActions, "add");
    triggerTool(tools.m_selectActions, "all");
    triggerTool(tools.m_moveActions, "right");
    triggerTool(tools.m_selectActions, "next");
    m_account.expect(QStringLiteral("View"), tools.m_viewResult->property("caption").toString(),
                     QStringLiteral("PN-1042 B, job control-2l: 6 test points, 1 selected"));
    m_account.expect(QStringLiteral("Status"), statusOfPoints("part"), QStringLiteral("Part PN-1042"));
    takePicture("points",
                QStringLiteral("The ten desktop tools: test points on a board, moved and selected"));
}

/// From a worker thread to the progress display and the view.
void Tour::countCopper()
{
    User::click(qobject_cast<QTreeWidget *>(m_workbench.desktop->m_pnListResult), QStringLiteral("PN-1063"));
    triggerTool(m_workbench.desktop->m_toolActions, "platingArea");
    const auto *const bar = m_workbench.window().findChild<QProgressBar *>(QStringLiteral("progress"));
    const bool half = User::waitUntil([&] { return bar && bar->value() >= 70; });
    m_account.check(QStringLiteral("Progress is shown"), half);
    takePicture("plating", QStringLiteral("A worker thread counts the copper of a layer, band by band"));
    m_account.check(QStringLiteral("Copper is counted"), User::waitUntil([this] {
                        return statusOfPoints("text") == QLatin1String("PN-1063 counted");
                    }));
}

void Tour::lookAtPlugins()
{
    m_workbench.window().showPage(WorkbenchWindow::PluginsPage);
    m_account.expect(QStringLiteral("Plug-ins in trouble"),
                     m_workbench.catalog.troubled().join(QStringLiteral(", ")), {});
    takePicture(
        "plugins",
        QStringLiteral("Every configured plug-in with its file and version, and whether it is loaded"));
}

void Tour::lookAtStartUp()
{
    m_workbench.window().showPage(WorkbenchWindow::StartUpPage);
    takePicture("startup", QStringLiteral("How long each phase of starting took"));
    m_workbench.window().showPage(WorkbenchWindow::JobsPage);
}

QString Tour::statusOfPoints(const char *label) const
{
    return m_stage.label(m_workbench.desktop->m_statusResult, label);
}

void Tour::triggerTool(const QList<QAction *> &actions, const char *command)
{
    const auto action = std::find_if(actions.begin(), actions.end(), [command](const QAction *candidate) {
        return candidate->objectName() == QLatin1String(command);
    });
    if (action == actions.end())
        qFatal("The tour needs a tool that is not there: %s", command);
    (*action)->trigger();
}

void Tour::takePicture(const char *name, const QString &line, QWidget *window)
{
    // What has just changed is laid out by events that still wait.
    QCoreApplication::processEvents();
    const QString file =
        QStringLiteral("%1-%2.png").arg(++m_pictures, 2, 10, QLatin1Char('0')).arg(QLatin1String(name));
    m_account.fact(file, line);
    const QPixmap picture = (window ? window : &m_workbench.window())->grab();
    if (!picture.save(m_folder.filePath(file), "PNG"))
        m_account.failure(QStringLiteral("Cannot save %1").arg(m_folder.filePath(file)));
}

#include "storyOfMessages.h"

#include "Account.h"
#include "MainWindow.h"
#include "Stage.h"
#include "Workspace.h"

#include <QtCore/QRectF>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QTreeWidget>

namespace {

const QString job = QStringLiteral("control-2l");
const QString otherJob = QStringLiteral("preamp-2l");
const QString pcb = QStringLiteral("pcb");
const QString panel = QStringLiteral("panel");

QListWidgetItem *guideTask(const Stage &stage, int row)
{
    return stage.frame(FrameKind::Guide, job)->findChild<QListWidget *>()->item(row);
}

QString matrixCell(const QTableWidget &matrix, const QString &layer, const QString &step)
{
    const int row = matrix.findItems(layer, Qt::MatchExactly).first()->row();
    for (int column = 0; column < matrix.columnCount(); ++column) {
        const QTableWidgetItem *const cell = matrix.item(row, column);
        if (cell && matrix.horizontalHeaderItem(column)->text() == step)
            return cell->text();
    }
    return {};
}

/// From the matrix to the views of all steps of its job, and their answers; and to the guide.
void selectLayerInMatrix(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Select \"drill\" in the matrix of control-2l"));
    auto *const matrix = stage.element<QTableWidget>("Matrix.dll", FrameKind::Matrix, job);
    User::click(matrix, QStringLiteral("drill"));

    stage.account.expect(QStringLiteral("View of pcb"), stage.caption(job, pcb),
                         QStringLiteral("control-2l | pcb, drill"));
    stage.account.expect(QStringLiteral("View of panel"), stage.caption(job, panel),
                         QStringLiteral("control-2l | panel, drill"));
    stage.account.expect(QStringLiteral("View of the other job"), stage.caption(otherJob, pcb),
                         QStringLiteral("preamp-2l | pcb, all layers"));
    stage.account.expect(QStringLiteral("Answer of pcb in the matrix"),
                         matrixCell(*matrix, QStringLiteral("drill"), pcb), QStringLiteral("38 shown"));
    stage.account.expect(QStringLiteral("Answer of panel in the matrix"),
                         matrixCell(*matrix, QStringLiteral("drill"), panel), QStringLiteral("152 shown"));
    stage.account.expect(QStringLiteral("Task in the guide"), guideTask(stage, 0)->text(),
                         QStringLiteral("Look at the layers: drill"));
}

/// From the job list of a step to the view beside it and no other; its answer goes to the matrix.
void selectLayerInJobList(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Select \"bottom\" in the job list of panel"));
    stage.workspace.showStep(job, panel);
    auto *const jobList = stage.element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, job, panel);
    User::click(jobList->findChild<QTreeWidget *>(), QStringLiteral("bottom"));

    const auto *const matrix = stage.element<QTableWidget>("Matrix.dll", FrameKind::Matrix, job);
    stage.account.expect(QStringLiteral("View of panel"), stage.caption(job, panel),
                         QStringLiteral("control-2l | panel, bottom"));
    stage.account.expect(QStringLiteral("View of pcb"), stage.caption(job, pcb),
                         QStringLiteral("control-2l | pcb, drill"));
    stage.account.expect(QStringLiteral("Answer of panel in the matrix"),
                         matrixCell(*matrix, QStringLiteral("bottom"), panel), QStringLiteral("180 shown"));
}

/// From the job list to its own frame, which asks the host for the other step's tab.
void selectStepInJobList(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Select \"pcb\" in the job list of panel"));
    auto *const jobList = stage.element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, job, panel);
    User::click(jobList->findChild<QTreeWidget *>(), pcb);
    stage.account.expect(QStringLiteral("Tab that is shown"),
                         stage.window.currentFrame(FrameKind::Graphic)->windowTitle(),
                         QStringLiteral("control-2l | pcb"));
}

/// From the view to the coordinate row, the quiet way: none of this is in the log.
void moveOverBoard(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Move the mouse over the view of pcb"));
    auto *const view = stage.element<QWidget>("Graphic_View.dll", FrameKind::Graphic, job, pcb);
    auto *const row = stage.element<QLayout>("Graphic_Coordinate.dll", FrameKind::Graphic, job, pcb);
    const QString before = row->property("position").toString();
    User::moveMouse(view, view->rect().center());
    const QString after = row->property("position").toString();
    stage.account.fact(QStringLiteral("Coordinates"), after);
    stage.account.check(QStringLiteral("Coordinates changed"), after != before);
}

/// From a button and from the mini map to the view, and from the view to the mini map.
void zoomAndCenter(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Zoom in, and click into the mini map"));
    auto *const buttons = stage.element<QLayout>("Graphic_Toolbar_Move.dll", FrameKind::Graphic, job, pcb);
    auto *const map = stage.element<QWidget>("Graphic_MiniMap.dll", FrameKind::Graphic, job, pcb);

    const auto area = [map] { return map->property("visibleArea").toRectF(); };
    const QRectF whole = area();
    User::choose(buttons, "zoomIn");
    const QRectF zoomed = area();
    User::click(map, {map->width() / 3, map->height() / 2});
    const QRectF centered = area();
    User::choose(buttons, "fit");

    const auto widths = QStringLiteral("%1 mm, %2 mm").arg(whole.width()).arg(zoomed.width());
    stage.account.fact(QStringLiteral("Width of what is visible"), widths);
    stage.account.check(QStringLiteral("Less is visible"), zoomed.width() < whole.width());
    stage.account.check(QStringLiteral("Something else is visible"),
                        centered.center().x() < zoomed.center().x());
    stage.account.check(QStringLiteral("All is visible again"), area() == whole);
}

/// From a menu to the rule check, and from there to the guide of the job.
void runRuleCheck(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Choose Operate, Run checks in DFM"));
    User::choose(stage.element<QMenu>("DFM_MenuBar_Operate.dll", FrameKind::Dfm, job, pcb), "runChecks");
    const auto *const check = stage.element<QObject>("DFM_RuleCheck.dll", FrameKind::Dfm, job, pcb);
    stage.account.expect(QStringLiteral("Rule check"), stage.label(check),
                         QStringLiteral("1 of 4 rules violated"));
    stage.account.expect(QStringLiteral("Task in the guide"), guideTask(stage, 1)->text(),
                         QStringLiteral("Check the rules: 1 violated"));
}

/// From the guide to the tips, which belong to no job.
void askGuide(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Click on a task in the guide"));
    User::click(stage.frame(FrameKind::Guide, job)->findChild<QListWidget *>(),
                QStringLiteral("Check the rules"));
    stage.account.expect(QStringLiteral("Tips"),
                         stage.element<QLabel>("Graphic_Tips.dll", FrameKind::Root)->text(),
                         QStringLiteral("Choose Operate, Run checks in DFM."));
}

/// From the filter to the list of part numbers, and from the list to the view of one.
void filterParts(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Filter the part numbers, and select one"));
    auto *const bar = stage.element<QVBoxLayout>("CAM_FilterAndInfo_Bar.dll", FrameKind::Root);
    auto *const filter = qobject_cast<QLineEdit *>(bar->itemAt(0)->widget());
    auto *const list =
        stage.element<QDockWidget>("ListBar_PNList.dll", FrameKind::Root)->findChild<QTreeWidget *>();
    const auto *const data = stage.element<QScrollArea>("CAM_PNData_View.dll", FrameKind::Root);

    filter->setText(otherJob);
    int listed = 0;
    for (int row = 0; row < list->topLevelItemCount(); ++row)
        listed += list->topLevelItem(row)->isHidden() ? 0 : 1;
    stage.account.expect(QStringLiteral("Part numbers listed"), QString::number(listed), QStringLiteral("1"));
    User::click(list, QStringLiteral("PN-1071"));
    stage.account.expect(QStringLiteral("Part"), stage.label(data), QStringLiteral("PN-1071, revision A"));
    filter->clear();
    User::click(list, QStringLiteral("PN-1042"));
    stage.account.expect(QStringLiteral("Part"), stage.label(data), QStringLiteral("PN-1042, revision B"));
}

}

void playStoryOfMessages(const Stage &stage)
{
    selectLayerInMatrix(stage);
    selectLayerInJobList(stage);
    selectStepInJobList(stage);
    moveOverBoard(stage);
    zoomAndCenter(stage);
    runRuleCheck(stage);
    askGuide(stage);
    filterParts(stage);
}

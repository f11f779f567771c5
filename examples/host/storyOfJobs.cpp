#include "storyOfJobs.h"

#include "Account.h"
#include "MainWindow.h"
#include "Stage.h"
#include "Workspace.h"
#include "hostMessage.h"

#include <pluginManger4CAM.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QTreeWidget>

#include <algorithm>

namespace {

const QString oldJob = QStringLiteral("control-2l");
const QString job = QStringLiteral("control-2l-revB");
const QString otherJob = QStringLiteral("preamp-2l");
const QString thirdJob = QStringLiteral("sensor-2l");
const QString orig = QStringLiteral("orig");
const QString pcb = QStringLiteral("pcb");
const QString oldPanel = QStringLiteral("panel");
const QString panel = QStringLiteral("array");

QString matrixSteps(const Stage &stage)
{
    const auto *const matrix = stage.element<QTableWidget>("Matrix.dll", FrameKind::Matrix, job);
    QStringList steps;
    for (int column = 5; column < matrix->columnCount(); ++column)
        steps.append(matrix->horizontalHeaderItem(column)->text());
    return steps.join(QStringLiteral(", "));
}

QString listedSteps(const Stage &stage)
{
    const auto *const jobList =
        stage.element<QDockWidget>("Graphic_JobList.dll", FrameKind::Graphic, job, pcb);
    const QTreeWidgetItem *const root = jobList->findChild<QTreeWidget *>()->topLevelItem(0);
    QStringList steps;
    for (int row = 0; row < root->childCount(); ++row)
        steps.append(root->child(row)->text(0));
    return root->text(0) + QStringLiteral(": ") + steps.join(QStringLiteral(", "));
}

QString tabs(const Stage &stage, FrameKind kind)
{
    return stage.window.tabTexts(kind).join(QStringLiteral(", "));
}

void openJob(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Open job sensor-2l"));
    User::choose(stage.element<QMenu>("CAM_MenuBar_Menu.dll", FrameKind::Root), "openJob", thirdJob);
    stage.account.check(QStringLiteral("All elements made once"), stage.workspace.elements().areMadeOnce());
    stage.account.expect(QStringLiteral("Tab that is shown"),
                         stage.window.currentFrame(FrameKind::Graphic)->windowTitle(),
                         QStringLiteral("sensor-2l | pcb"));
    stage.workspace.showStep(oldJob, pcb);
}

void lockJob(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Set the text of a job's frames"));
    User::choose(stage.element<QMenu>("CAM_MenuBar_Actions.dll", FrameKind::Root), "lockJob");
    const auto text = [&](const QString &ofJob, const QString &step) {
        return stage.label(stage.frame(FrameKind::Graphic, ofJob, step), "text");
    };
    stage.account.expect(QStringLiteral("Text of pcb"), text(oldJob, pcb), QStringLiteral("Locked"));
    stage.account.expect(QStringLiteral("Text of panel"), text(oldJob, oldPanel), QStringLiteral("Locked"));
    stage.account.expect(QStringLiteral("Text of the other job"), text(otherJob, pcb), QString());
}

void holdKey(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Hold a key down"));
    QWidget *const shown = stage.frame(FrameKind::Graphic, oldJob, pcb);
    User::pressKey(shown, Qt::Key_Control, true);
    stage.account.expect(QStringLiteral("Keys of the frame that is shown"), stage.label(shown, "keys"),
                         QStringLiteral("Ctrl"));
    stage.account.expect(QStringLiteral("Keys of another frame"),
                         stage.label(stage.frame(FrameKind::Graphic, oldJob, oldPanel), "keys"), QString());
    User::pressKey(shown, Qt::Key_Control, false);
    stage.account.expect(QStringLiteral("Keys once it is released"), stage.label(shown, "keys"), QString());
}

void compareJobs(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Compare with another job"));
    User::choose(stage.element<QMenu>("Graphic_MenuBar_Actions.dll", FrameKind::Graphic, oldJob, pcb),
                 "compareWith", otherJob);
    for (const QString &step : {orig, pcb, oldPanel}) {
        const auto *const view = stage.element<QWidget>("Graphic_View.dll", FrameKind::Graphic, oldJob, step);
        stage.account.expect(QStringLiteral("View of ") + step, view->property("text").toString(),
                             QStringLiteral("Compared with preamp-2l"));
    }
}

void renameJob(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Rename job control-2l to control-2l-revB"));
    User::choose(stage.element<QMenu>("Matrix_MenuBar.dll", FrameKind::Matrix, oldJob), "renameJob", job);

    stage.account.expect(QStringLiteral("Tabs of the graphic editor"), tabs(stage, FrameKind::Graphic),
                         QStringLiteral("control-2l-revB | pcb, control-2l-revB | panel, "
                                        "control-2l-revB | orig, preamp-2l | pcb, sensor-2l | pcb"));
    stage.account.expect(QStringLiteral("Tabs of the matrix"), tabs(stage, FrameKind::Matrix),
                         QStringLiteral("Matrix control-2l-revB, Matrix preamp-2l, Matrix sensor-2l"));
    stage.account.expect(QStringLiteral("Tabs of the guide"), tabs(stage, FrameKind::Guide),
                         QStringLiteral("control-2l-revB, preamp-2l, sensor-2l"));
    stage.account.expect(QStringLiteral("Tabs of DFM"), tabs(stage, FrameKind::Dfm),
                         QStringLiteral("control-2l-revB | pcb, preamp-2l | pcb, sensor-2l | pcb"));
    stage.account.expect(QStringLiteral("Job list of pcb"), listedSteps(stage),
                         QStringLiteral("control-2l-revB: pcb, panel, orig"));
    stage.account.expect(QStringLiteral("View of pcb"), stage.caption(job, pcb),
                         QStringLiteral("control-2l-revB | pcb, drill"));
}

/// These are told, too, and belong to the matrix or to no job.
void lookAroundAfterRenaming(const Stage &stage)
{
    const auto *const matrix = stage.element<QTableWidget>("Matrix.dll", FrameKind::Matrix, job);
    stage.account.expect(QStringLiteral("Matrix"), matrix->horizontalHeaderItem(0)->text(), job);
    const auto *const menu = stage.element<QMenu>("MATRIX_MENUBAR_Edit.dll", FrameKind::Matrix, job);
    stage.account.expect(QStringLiteral("Edit menu of the matrix"), menu->actions().first()->text(), job);
    const auto *const info = stage.element<QLabel>("Common_MenuBar_Info.dll", FrameKind::Root);
    stage.account.expect(QStringLiteral("Menu bar"), info->text(),
                         QStringLiteral("PN-1042 B, Northfield, job control-2l-revB"));
    QCoreApplication::processEvents();
    stage.account.check(QStringLiteral("Menu bar has room for it"),
                        info->width() >= info->sizeHint().width());
    const auto *const parts =
        stage.element<QDockWidget>("ListBar_PNList.dll", FrameKind::Root)->findChild<QTreeWidget *>();
    stage.account.expect(QStringLiteral("List of part numbers"), parts->topLevelItem(0)->text(2), job);
}

/// The manager would take the DFM frame of the renamed job for that of a new one.
void openJobUnderOldName(const Stage &stage)
{
    const QString before = tabs(stage, FrameKind::Graphic);
    User::choose(stage.element<QMenu>("CAM_MenuBar_Menu.dll", FrameKind::Root), "openJob", oldJob);
    stage.account.check(QStringLiteral("Old name is refused"), tabs(stage, FrameKind::Graphic) == before);
    stage.window.statusBar()->clearMessage();
}

void renameStep(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Rename step panel to array"));
    User::choose(stage.element<QMenu>("Graphic_MenuBar_Step.dll", FrameKind::Graphic, job, oldPanel),
                 "renameStep", panel);
    stage.account.expect(QStringLiteral("Frame"), stage.frame(FrameKind::Graphic, job, panel)->windowTitle(),
                         QStringLiteral("control-2l-revB | array"));
    stage.account.expect(QStringLiteral("View"), stage.caption(job, panel),
                         QStringLiteral("control-2l-revB | array, bottom"));
    stage.account.expect(QStringLiteral("Job list of pcb"), listedSteps(stage),
                         QStringLiteral("control-2l-revB: pcb, array, orig"));
    stage.account.expect(QStringLiteral("Steps in the matrix"), matrixSteps(stage),
                         QStringLiteral("pcb, array, orig"));
}

void deleteStep(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Delete step orig"));
    const QPointer<QWidget> frame = stage.frame(FrameKind::Graphic, job, orig);
    const QPointer<QWidget> view = stage.element<QWidget>("Graphic_View.dll", FrameKind::Graphic, job, orig);
    const QString caption = stage.caption(job, orig);
    User::choose(stage.element<QMenu>("Graphic_MenuBar_Step.dll", FrameKind::Graphic, job, orig),
                 "deleteStep");

    // The frame closes later, so what is sent to it now would show.
    stage.manager->pluginTransmitData(
        hostMessage(QStringLiteral("Graphic_View.dll"), MessageType::SelectLayer,
                    {{"DstType", "Graphic"}, {"JobName", job}, {"Step", orig}, {"Layer", "drill"}}));
    stage.account.check(QStringLiteral("Messages no longer find it"),
                        view && view->property("caption").toString() == caption);
    stage.deleteClosedFrames();
    stage.account.check(QStringLiteral("Frame and view are gone"), !frame && !view);
    stage.account.expect(QStringLiteral("Tabs of the graphic editor"), tabs(stage, FrameKind::Graphic),
                         QStringLiteral("control-2l-revB | pcb, control-2l-revB | array, "
                                        "preamp-2l | pcb, sensor-2l | pcb"));
    stage.account.expect(QStringLiteral("Steps in the matrix"), matrixSteps(stage),
                         QStringLiteral("pcb, array"));
    stage.account.expect(QStringLiteral("Job list of pcb"), listedSteps(stage),
                         QStringLiteral("control-2l-revB: pcb, array"));
}

void deleteJob(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Delete job sensor-2l"));
    QVector<QPointer<QWidget>> frames;
    for (const Frame *const frame : stage.workspace.framesOf(thirdJob))
        frames.append(frame->window);
    stage.account.fact(QStringLiteral("Frames that it has"), QString::number(frames.size()));
    User::choose(stage.element<QMenu>("Graphic_MenuBar_File.dll", FrameKind::Graphic, thirdJob, pcb),
                 "deleteJob");
    stage.deleteClosedFrames();

    const bool allGone =
        std::all_of(frames.begin(), frames.end(), [](const QPointer<QWidget> &frame) { return !frame; });
    stage.account.check(QStringLiteral("All of them are gone"), allGone);
    stage.account.expect(QStringLiteral("Tabs of the graphic editor"), tabs(stage, FrameKind::Graphic),
                         QStringLiteral("control-2l-revB | pcb, control-2l-revB | array, preamp-2l | pcb"));
    stage.account.expect(QStringLiteral("Tabs of the matrix"), tabs(stage, FrameKind::Matrix),
                         QStringLiteral("Matrix control-2l-revB, Matrix preamp-2l"));
}

/// Under their new names, job and steps are found as before.
void selectLayerAfterAll(const Stage &stage)
{
    stage.account.heading(QStringLiteral("Select \"top\" in the matrix of control-2l-revB"));
    User::click(stage.element<QTableWidget>("Matrix.dll", FrameKind::Matrix, job), QStringLiteral("top"));
    for (const QString &step : {pcb, panel})
        stage.account.expect(QStringLiteral("View of ") + step, stage.caption(job, step),
                             stepName(job, step) + QStringLiteral(", top"));
    stage.workspace.showStep(job, panel);
    const auto *const tasks = stage.frame(FrameKind::Guide, job)->findChild<QListWidget *>();
    stage.account.expect(QStringLiteral("Task in the guide"), tasks->item(0)->text(),
                         QStringLiteral("Look at the layers: top"));
}

}

void playStoryOfJobs(const Stage &stage)
{
    openJob(stage);
    lockJob(stage);
    holdKey(stage);
    compareJobs(stage);
    renameJob(stage);
    lookAroundAfterRenaming(stage);
    openJobUnderOldName(stage);
    renameStep(stage);
    deleteStep(stage);
    deleteJob(stage);
    selectLayerAfterAll(stage);
}

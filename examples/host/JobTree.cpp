#include "JobTree.h"

#include "Workspace.h"
#include "hostMessage.h"

#include <pluginManger4CAM.h>

#include <algorithm>

JobTree::JobTree(QTpluginsManger4CAM *manager, Workspace &workspace)
    : m_manager(manager)
    , m_workspace(workspace)
{
}

/// The manager looks for a job's name anywhere in a frame's, so no name may be the end of another.
bool JobTree::isFreeJobName(const QString &name) const
{
    if (name.isEmpty() || name.contains(QLatin1Char('|')))
        return false;
    const QStringList jobs = m_workspace.jobs();
    return std::none_of(jobs.begin(), jobs.end(),
                        [&name](const QString &job) { return job.endsWith(name) || name.endsWith(job); });
}

bool JobTree::isFreeStepName(const QString &job, const QString &name) const
{
    return !name.isEmpty() && !name.contains(QLatin1Char('|')) && !m_workspace.steps(job).contains(name);
}

/// The manager tells the matrix, the job lists and the guide. The others are the host's to tell.
void JobTree::renameJob(const QString oldName, const QString newName)
{
    m_manager->OV_ChangeJobNameAndUpdateJob(oldName, newName);
    for (Frame *const frame : m_workspace.framesOf(oldName))
        frame->job = newName;

    const auto message = [&](const char *library, const char *frameKind) {
        return hostMessage(library, MessageType::JobRenamed,
                           {{"DstType", frameKind}, {"OldJobName", oldName}, {"NewJobName", newName}});
    };
    m_manager->Ov_SetCurrentText(newName, message("ORVIK-GraphicEditor.dll", "Graphic"));
    for (const char *const library : {"Graphic_View.dll", "DFM_RuleCheck.dll"})
        m_manager->Ov_UpdateJob(newName, message(library, "Graphic"));
    for (const char *const library : {"ListBar_PNList.dll", "Common_MenuBar_Info.dll"})
        m_manager->Ov_UpdateJob(newName, message(library, "EngineerRoot"));
    m_manager->Ov_UpdateJob(newName, hostMessage("MATRIX_MENUBAR_Edit.dll", MessageType::MatrixJobRenamed,
                                                 {{"DstType", "Matrix"}, {"NewJobName", newName}}));
}

void JobTree::renameStep(const QString job, const QString oldName, const QString newName)
{
    m_manager->Ov_ChangeStepName(job, oldName, newName);

    const QMap<QString, QVariant> data{{"OldStepName", oldName}, {"ChangeStepName", newName}};
    for (const char *const library : {"Graphic_View.dll", "Graphic_JobList.dll"})
        m_manager->updateGraphic(job, hostMessage(library, MessageType::RenameStep, data));
    m_manager->updateMatrix(job, hostMessage("Matrix.dll", MessageType::RenameStep, data));
    for (Frame *const frame : m_workspace.framesOf(job)) {
        if (frame->step != oldName)
            continue;
        frame->step = newName;
        m_manager->transmitDataToFramework(
            frame->window, hostMessage("ORVIK-GraphicEditor.dll", MessageType::RenameStep, data));
    }
    m_workspace.tellSteps(job);
}

void JobTree::deleteJob(const QString job)
{
    m_manager->Ov_DeleteTreeNode(QStringLiteral("Matrix"), job);
    for (const Frame *const frame : m_workspace.framesOf(job)) {
        if (frame->kind == FrameKind::Dfm)
            closeDfmFrame(*frame);
        m_workspace.remove(frame);
    }
}

void JobTree::deleteStep(const QString job, const QString step)
{
    m_manager->Ov_DeleteTreeNode(QStringLiteral("Graphic"), stepName(job, step));
    for (const Frame *const frame : m_workspace.framesOf(job)) {
        if (frame->step != step)
            continue;
        if (frame->kind == FrameKind::Dfm)
            closeDfmFrame(*frame);
        m_workspace.remove(frame);
    }
    m_workspace.tellSteps(job);
}

void JobTree::compareWith(const QString &job)
{
    m_manager->ChangeCompareJobInfo(
        hostMessage(QStringLiteral("Graphic_View.dll"), MessageType::ShowCompareJob, {{"CompareJob", job}}));
}

/// Deleting a node leaves its DFM frame, which the manager does not know by the node's name.
void JobTree::closeDfmFrame(const Frame &frame)
{
    m_manager->Ov_UnRegisterDFMGraphicFramework4Quorel(frame.firstJob.toStdString(),
                                                       frame.firstStep.toStdString());
}

#include "JobTree.h"

#include "ManagerMessages.h"
#include "Post.h"
#include "Workspace.h"
#include "hostMessage.h"

#include <pluginManger4CAM.h>

#include <algorithm>

JobTree::JobTree(Post &post, Workspace &workspace)
    : m_post(post)
    , m_manager(post.manager())
    , m_workspace(workspace)
{
}

/// The manager looks for a job's name anywhere in a frame's, so no name may be the end of another.
bool JobTree::isFreeJobName(const QString &name) const
{
    if (name.isEmpty() || name.contains(QLatin1Char('|')) || m_workspace.wasOpenedAs(name))
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
    if (m_post.call("OV_ChangeJobNameAndUpdateJob", oldName + QStringLiteral(", ") + newName,
                    [&] { m_manager->OV_ChangeJobNameAndUpdateJob(oldName, newName); }))
        m_post.noteSent("OV_ChangeJobNameAndUpdateJob", ManagerMessages::whenJobRenamed(oldName, newName));
    for (Frame *const frame : m_workspace.framesOf(oldName))
        frame->job = newName;

    const QMap<QString, QVariant> names{{"OldJobName", oldName}, {"NewJobName", newName}};
    tellFrames(newName, MessageType::JobRenamed, names);
    for (const char *const library : {"Graphic_View.dll", "DFM_RuleCheck.dll"})
        tell("Graphic", newName, library, MessageType::JobRenamed, names);
    for (const char *const library : {"ListBar_PNList.dll", "Common_MenuBar_Info.dll"})
        tell("EngineerRoot", newName, library, MessageType::JobRenamed, names);
    tell("Matrix", newName, "MATRIX_MENUBAR_Edit.dll", MessageType::MatrixJobRenamed,
         {{"NewJobName", newName}});
}

void JobTree::renameStep(const QString job, const QString oldName, const QString newName)
{
    m_post.call("Ov_ChangeStepName", QStringLiteral("%1, %2, %3").arg(job, oldName, newName),
                [&] { m_manager->Ov_ChangeStepName(job, oldName, newName); });
    const Frame *const dfmFrame = m_workspace.find(FrameKind::Dfm, job, oldName);
    if (dfmFrame && dfmFrame->belongsToRoot)
        m_post.call("Ov_ChangeStepName",
                    QStringLiteral("%1, %2, %3").arg(job, dfmStepName(oldName), dfmStepName(newName)),
                    [&] { m_manager->Ov_ChangeStepName(job, dfmStepName(oldName), dfmStepName(newName)); });

    const QMap<QString, QVariant> names{{"OldStepName", oldName}, {"ChangeStepName", newName}};
    for (const char *const library : {"Graphic_View.dll", "Graphic_JobList.dll"})
        tell("Graphic", job, library, MessageType::RenameStep, names);
    tell("Matrix", job, "Matrix.dll", MessageType::RenameStep, names);
    for (Frame *const frame : m_workspace.framesOf(job)) {
        if (frame->step != oldName)
            continue;
        frame->step = newName;
        if (frame->kind == FrameKind::Dfm)
            m_post.toElement(frame->window, hostMessage("DFM_RuleCheck.dll", MessageType::RenameStep, names));
        const bool isBeside = frame->kind == FrameKind::Dfm && frame->belongsToRoot;
        const PluginMetaData message =
            hostMessage("ORVIK-GraphicEditor.dll", MessageType::RenameStep,
                        {{"OldStepName", isBeside ? dfmStepName(oldName) : oldName},
                         {"ChangeStepName", isBeside ? dfmStepName(newName) : newName}});
        m_post.deliver("transmitDataToFramework", message,
                       [&] { m_manager->transmitDataToFramework(frame->window, message); });
    }
    m_workspace.tellSteps(job);
}

void JobTree::deleteJob(const QString job)
{
    QList<Frame *> frames = m_workspace.framesOf(job);
    const auto isApart = [](const Frame *frame) { return !frame->belongsToRoot; };
    frames.erase(std::remove_if(frames.begin(), frames.end(), isApart), frames.end());
    deleteNode("Matrix", job, frames);
    for (const Frame *const frame : m_workspace.framesOf(job)) {
        if (frame->kind == FrameKind::Dfm && !frame->belongsToRoot)
            m_workspace.close(*frame);
        else
            m_workspace.remove(frame);
    }
}

void JobTree::deleteStep(const QString job, const QString step)
{
    deleteNode("Graphic", stepName(job, step), {m_workspace.find(FrameKind::Graphic, job, step)});
    for (const Frame *const frame : m_workspace.framesOf(job)) {
        if (frame->step != step)
            continue;
        if (frame->kind == FrameKind::Dfm)
            m_workspace.close(*frame);
        else
            m_workspace.remove(frame);
    }
    m_workspace.tellSteps(job);
}

void JobTree::compare(const QString &job, const QString &other)
{
    const PluginMetaData message = hostMessage(
        "Graphic_View.dll", MessageType::ShowCompareJob,
        {{"CompareJob", other}, {"File", other.isEmpty() ? QString() : m_workspace.fileOf(other)}});
    m_post.deliver("ChangeCompareJobInfo", message, [&] { m_manager->ChangeCompareJobInfo(message); });
    if (other.isEmpty())
        return;
    const PluginMetaData task =
        hostMessage("Graphic_CamGuide.dll", MessageType::TaskDone, {{"Task", "compare"}, {"Text", other}});
    m_post.deliver("updateGuide", task, [&] { m_manager->updateGuide(job, task); });
}

void JobTree::setText(const QString &job, const QString &text)
{
    struct Receiver
    {
        const char *kind;
        const char *library;
        QString name;
    };
    for (const Receiver &receiver :
         {Receiver{"Matrix", "ORVIK-Matrix.dll", job},
          Receiver{"Guide", "Graphic_CamGuide.dll", job + QStringLiteral("|Guide")},
          Receiver{"EngineerRoot", "Graphic_Tips.dll", job}}) {
        const PluginMetaData message =
            hostMessage(QLatin1String(receiver.library), MessageType::ShowText, {{"Text", text}});
        m_post.deliver("setInterfaceTexts", message, [&] {
            m_manager->setInterfaceTexts(QLatin1String(receiver.kind), receiver.name, message);
        });
    }
    tellFrames(job, MessageType::ShowText, {{"JobName", job}, {"Text", text}});
    // These three do nothing today; a host calls them all the same, for the day when they do.
    const PluginMetaData message = hostMessage({}, MessageType::ShowText, {{"Text", text}});
    m_manager->setEngineerText(text, message);
    m_manager->setGraphicText(text, message);
    m_manager->setMatrixText(text, message);
}

void JobTree::setStateText(const QString &job, const QString &text)
{
    tellFrames(job, MessageType::ShowText, {{"JobName", job}, {"Text", text}});
}

void JobTree::useUnit(const QString &unit)
{
    const PluginMetaData message = hostMessage("ORVIK-GraphicEditor.dll", MessageType::UseUnit,
                                               {{"DstType", "Graphic"}, {"Unit", unit}});
    for (const QString &job : m_workspace.jobs())
        m_post.toFramesOfJob(job, message);
}

/// A frame that throws when it is told leaves those after it as they were; it is out of the registry itself.
void JobTree::deleteNode(const char *kind, const QString &name, const QList<Frame *> &frames)
{
    const auto deleteOnce = [&] {
        return m_post.call("Ov_DeleteTreeNode", QLatin1String(kind) + QStringLiteral(", ") + name,
                           [&] { m_manager->Ov_DeleteTreeNode(QLatin1String(kind), name); });
    };
    if (deleteOnce()) {
        m_post.noteSent("Ov_DeleteTreeNode", ManagerMessages::whenClosed(frames));
        return;
    }
    for (int attempts = 0; attempts < frames.size() && !deleteOnce(); ++attempts) {
    }
}

/// To the graphic and DFM frames themselves.
void JobTree::tellFrames(const QString &job, qint32 type, QMap<QString, QVariant> data)
{
    data.insert("DstType", "Graphic");
    const PluginMetaData message = hostMessage("ORVIK-GraphicEditor.dll", type, data);
    m_post.deliver("Ov_SetCurrentText", message, [&] { m_manager->Ov_SetCurrentText(job, message); });
}

/// To an element in the frames of a kind.
void JobTree::tell(const char *kind, const QString &job, const char *library, qint32 type,
                   QMap<QString, QVariant> data)
{
    data.insert("DstType", QLatin1String(kind));
    const PluginMetaData message = hostMessage(QLatin1String(library), type, data);
    m_post.deliver("Ov_UpdateJob", message, [&] { m_manager->Ov_UpdateJob(job, message); });
}

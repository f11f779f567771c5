#include "Commands.h"

#include "JobTree.h"
#include "MainWindow.h"
#include "Post.h"
#include "Workspace.h"
#include "hostMessage.h"

#include <pluginManger4CAM.h>

#include <QtWidgets/QInputDialog>
#include <QtWidgets/QStatusBar>

namespace {

/// The element that commands of a frame are for, when they are not the host's own.
const char *receiver(FrameKind kind)
{
    switch (kind) {
    case FrameKind::Matrix:
        return "Matrix.dll";
    case FrameKind::Dfm:
        return "DFM_RuleCheck.dll";
    default:
        return "Graphic_View.dll";
    }
}

}

Commands::Commands(Post &post, MainWindow &window, Workspace &workspace, JobTree &jobTree)
    : m_post(post)
    , m_window(window)
    , m_workspace(workspace)
    , m_jobTree(jobTree)
{
    connect(&workspace, &Workspace::commandChosen, this, &Commands::run);
}

/// Menus and buttons are plain Qt elements, so the host sends for them. Those of the window are for the frame
/// that is shown.
void Commands::run(Frame *frame, const QString &library, const QString &command)
{
    if (const Command own = ownCommands().value(command))
        (this->*own)(*frame);
    else if (frame->kind != FrameKind::Root)
        sendToElement(*frame, library, command);
    else if (const Frame *const shown = shownFrame())
        sendToElement(*shown, library, command);
    else
        refuse(tr("Open a job first"));
}

const QMap<QString, Commands::Command> &Commands::ownCommands()
{
    static const QMap<QString, Command> commands{
        {"exit", &Commands::exit},
        {"openJob", &Commands::openJob},
        {"previewJob", &Commands::previewJob},
        {"closeJob", &Commands::closeJob},
        {"closeAllJobs", &Commands::closeAllJobs},
        {"renameJob", &Commands::renameJob},
        {"deleteJob", &Commands::deleteJob},
        {"renameStep", &Commands::renameStep},
        {"deleteStep", &Commands::deleteStep},
        {"checkStep", &Commands::checkStep},
        {"nextStep", &Commands::nextStep},
        {"previousStep", &Commands::previousStep},
        {"compareWith", &Commands::compareWith},
        {"endComparison", &Commands::endComparison},
        {"lockJob", &Commands::lockJob},
        {"unlockJob", &Commands::unlockJob},
        {"setText", &Commands::setText},
        {"millimetres", &Commands::millimetres},
        {"inches", &Commands::inches},
        {"reloadDfmPlugins", &Commands::reloadDfmPlugins},
        {"reloadDesktopTools", &Commands::reloadDesktopTools},
    };
    return commands;
}

void Commands::exit(const Frame &)
{
    m_window.window()->close();
}

void Commands::openJob(const Frame &)
{
    const QStringList jobs = m_workspace.closedJobs();
    if (jobs.isEmpty()) {
        refuse(tr("All jobs are open"));
        return;
    }
    const QString job = choose(tr("Open job"), tr("Job to open"), jobs);
    if (job.isEmpty())
        return;
    if (!m_jobTree.isFreeJobName(job)) {
        refuse(tr("A job that is open has, or had, a name like %1").arg(job));
        return;
    }
    m_workspace.openJob(job);
    m_workspace.showStep(job, m_workspace.steps(job).value(0));
}

void Commands::previewJob(const Frame &)
{
    const QStringList jobs = m_workspace.closedJobs();
    const QString job = jobs.isEmpty() ? QString() : choose(tr("Preview job"), tr("Job to look at"), jobs);
    if (jobs.isEmpty())
        refuse(tr("All jobs are open"));
    else if (!job.isEmpty() && !m_workspace.find(FrameKind::Preview, job, QStringLiteral("pcb")))
        m_workspace.openPreview(job);
}

void Commands::closeJob(const Frame &)
{
    if (const Frame *const shown = shownFrame())
        m_jobTree.deleteJob(shown->job);
}

void Commands::closeAllJobs(const Frame &)
{
    const QStringList jobs = m_workspace.jobs();
    for (const QString &job : jobs)
        m_jobTree.deleteJob(job);
    m_post.call("Ov_RegisterClear", {}, [this] { m_post.manager()->Ov_RegisterClear(); });
}

void Commands::renameJob(const Frame &frame)
{
    const QString name = ask(tr("Rename job"), tr("New name of job %1").arg(frame.job), frame.job);
    if (name.isEmpty() || name == frame.job)
        return;
    if (m_jobTree.isFreeJobName(name))
        m_jobTree.renameJob(frame.job, name);
    else
        refuse(tr("\"%1\" cannot be used as a name here").arg(name));
}

void Commands::deleteJob(const Frame &frame)
{
    m_workspace.hideFile(frame.file);
    m_jobTree.deleteJob(frame.job);
}

void Commands::renameStep(const Frame &frame)
{
    const QString name = ask(tr("Rename step"), tr("New name of step %1").arg(frame.step), frame.step);
    if (name.isEmpty() || name == frame.step)
        return;
    if (m_jobTree.isFreeStepName(frame.job, name))
        m_jobTree.renameStep(frame.job, frame.step, name);
    else
        refuse(tr("\"%1\" cannot be used as a name here").arg(name));
}

void Commands::deleteStep(const Frame &frame)
{
    m_jobTree.deleteStep(frame.job, frame.step);
}

void Commands::checkStep(const Frame &frame)
{
    m_workspace.openDfmFrame(frame.job, frame.step);
    if (const Frame *const dfm = m_workspace.find(FrameKind::Dfm, frame.job, frame.step))
        sendToElement(*dfm, QStringLiteral("Graphic_MenuBar_Step.dll"), QStringLiteral("runChecks"));
}

void Commands::nextStep(const Frame &)
{
    m_window.stepThroughFrames(FrameKind::Graphic, 1);
}

void Commands::previousStep(const Frame &)
{
    m_window.stepThroughFrames(FrameKind::Graphic, -1);
}

void Commands::compareWith(const Frame &frame)
{
    QStringList jobs = m_workspace.jobs();
    jobs.removeAll(frame.job);
    if (jobs.isEmpty()) {
        refuse(tr("Open another job to compare with"));
        return;
    }
    const QString job = choose(tr("Compare"), tr("Compare with"), jobs);
    if (!job.isEmpty())
        m_jobTree.compare(frame.job, job);
}

void Commands::endComparison(const Frame &frame)
{
    m_jobTree.compare(frame.job, {});
}

void Commands::lockJob(const Frame &)
{
    if (const Frame *const shown = shownFrame())
        m_jobTree.setStateText(shown->job, tr("Locked"));
}

void Commands::unlockJob(const Frame &)
{
    if (const Frame *const shown = shownFrame())
        m_jobTree.setStateText(shown->job, {});
}

void Commands::setText(const Frame &)
{
    const Frame *const shown = shownFrame();
    const QString text =
        shown ? ask(tr("Set text"), tr("Text for the frames of %1").arg(shown->job), {}) : QString();
    if (!text.isEmpty())
        m_jobTree.setText(shown->job, text);
}

void Commands::millimetres(const Frame &)
{
    m_jobTree.useUnit(QStringLiteral("mm"));
}

void Commands::inches(const Frame &)
{
    m_jobTree.useUnit(QStringLiteral("inch"));
}

void Commands::reloadDfmPlugins(const Frame &)
{
    emit reloadDfmRequested();
}

void Commands::reloadDesktopTools(const Frame &)
{
    emit reloadDesktopRequested();
}

void Commands::sendToElement(const Frame &frame, const QString &library, const QString &command)
{
    m_post.toElement(frame.window, makeMessage(library, receiver(frame.kind), MessageType::RunCommand,
                                               {{"Command", command}}));
}

const Frame *Commands::shownFrame() const
{
    return m_workspace.find(m_window.currentFrame(FrameKind::Graphic));
}

void Commands::refuse(const QString &reason)
{
    m_window.statusBar()->showMessage(reason, 4000);
}

QString Commands::ask(const QString &title, const QString &question, const QString &proposal)
{
    return QInputDialog::getText(&m_window, title, question, QLineEdit::Normal, proposal);
}

QString Commands::choose(const QString &title, const QString &question, const QStringList &names)
{
    bool chosen = false;
    const QString name = QInputDialog::getItem(&m_window, title, question, names, 0, false, &chosen);
    return chosen ? name : QString();
}

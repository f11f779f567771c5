#include "Commands.h"

#include "JobTree.h"
#include "MainWindow.h"
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
    case FrameKind::Graphic:
        return "Graphic_View.dll";
    case FrameKind::Dfm:
        return "DFM_RuleCheck.dll";
    default:
        return nullptr;
    }
}

}

Commands::Commands(QTpluginsManger4CAM *manager, MainWindow &window, Workspace &workspace, JobTree &jobTree)
    : m_manager(manager)
    , m_window(window)
    , m_workspace(workspace)
    , m_jobTree(jobTree)
{
    connect(&workspace, &Workspace::commandChosen, this, &Commands::run);
}

/// Menus and buttons are plain Qt elements, so the host sends for them.
void Commands::run(Frame *frame, const QString &library, const QString &command)
{
    if (const Command own = ownCommands().value(command)) {
        (this->*own)(*frame);
    } else if (const char *const element = receiver(frame->kind)) {
        m_manager->recMegToPlugin(
            frame->window, makeMessage(library, element, MessageType::RunCommand, {{"Command", command}}));
    } else {
        m_window.statusBar()->showMessage(library + QStringLiteral(": ") + command, 4000);
    }
}

const QMap<QString, Commands::Command> &Commands::ownCommands()
{
    static const QMap<QString, Command> commands{
        {"exit", &Commands::exit},
        {"openJob", &Commands::openJob},
        {"renameJob", &Commands::renameJob},
        {"deleteJob", &Commands::deleteJob},
        {"renameStep", &Commands::renameStep},
        {"deleteStep", &Commands::deleteStep},
        {"nextStep", &Commands::nextStep},
        {"previousStep", &Commands::previousStep},
        {"compareWith", &Commands::compareWith},
        {"lockJob", &Commands::lockJob},
        {"unlockJob", &Commands::unlockJob},
    };
    return commands;
}

void Commands::exit(const Frame &)
{
    m_window.window()->close();
}

void Commands::openJob(const Frame &)
{
    const QString job = ask(QStringLiteral("Job to open"), {});
    if (!m_jobTree.isFreeJobName(job) || m_workspace.wasOpenedAs(job)) {
        refuse(job);
        return;
    }
    const QString step = QStringLiteral("pcb");
    m_workspace.openJob(job, {step});
    m_workspace.showStep(job, step);
}

void Commands::renameJob(const Frame &frame)
{
    const QString name = ask(QStringLiteral("New name of job ") + frame.job, frame.job);
    if (m_jobTree.isFreeJobName(name))
        m_jobTree.renameJob(frame.job, name);
    else
        refuse(name);
}

void Commands::deleteJob(const Frame &frame)
{
    m_jobTree.deleteJob(frame.job);
}

void Commands::renameStep(const Frame &frame)
{
    const QString name = ask(QStringLiteral("New name of step ") + frame.step, frame.step);
    if (m_jobTree.isFreeStepName(frame.job, name))
        m_jobTree.renameStep(frame.job, frame.step, name);
    else
        refuse(name);
}

void Commands::deleteStep(const Frame &frame)
{
    m_jobTree.deleteStep(frame.job, frame.step);
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
    bool chosen = false;
    const QString job = QInputDialog::getItem(&m_window, QStringLiteral("Compare"),
                                              QStringLiteral("Compare with"), jobs, 0, false, &chosen);
    if (chosen)
        m_jobTree.compareWith(job);
}

void Commands::lockJob(const Frame &)
{
    setJobText(QStringLiteral("Locked"));
}

void Commands::unlockJob(const Frame &)
{
    setJobText({});
}

void Commands::refuse(const QString &name)
{
    if (!name.isEmpty())
        m_window.statusBar()->showMessage(QStringLiteral("\"%1\" cannot be used as a name here").arg(name),
                                          4000);
}

void Commands::setJobText(const QString &text)
{
    const Frame *const frame = m_workspace.find(m_window.currentFrame(FrameKind::Graphic));
    if (!frame)
        return;
    m_manager->Ov_SetCurrentText(
        frame->job, hostMessage(QStringLiteral("ORVIK-GraphicEditor.dll"), MessageType::ShowText,
                                {{"DstType", "Graphic"}, {"JobName", frame->job}, {"Text", text}}));
}

QString Commands::ask(const QString &question, const QString &proposal)
{
    return QInputDialog::getText(&m_window, m_window.windowTitle(), question, QLineEdit::Normal, proposal);
}

#include "Workspace.h"

#include "Account.h"
#include "FramePlaces.h"
#include "Mailbox.h"
#include "MainWindow.h"
#include "hostMessage.h"

#include <pluginManger4CAM.h>

#include <QtWidgets/QAction>

#include <algorithm>

Workspace::Workspace(QTpluginsManger4CAM *manager, MainWindow &window, Account &account)
    : m_manager(manager)
    , m_window(window)
    , m_account(account)
    , m_elements(manager)
{
    connect(&window, &MainWindow::graphicFrameShown, this, &Workspace::showFramesOf);
}

void Workspace::open()
{
    m_frames.push_back({FrameKind::Root, {}, {}, &m_window, {}, {}, {}});
    addElements(m_frames.back(), m_window.places());
}

void Workspace::openJob(const QString &job, const QStringList &steps)
{
    openFrame(FrameKind::Matrix, job, {});
    openFrame(FrameKind::Guide, job, {});
    openFrame(FrameKind::Dfm, job, steps.first());
    for (const QString &step : steps)
        openFrame(FrameKind::Graphic, job, step);
    tellSteps(job);
}

QStringList Workspace::jobs() const
{
    QStringList jobs;
    for (const Frame &frame : m_frames) {
        if (frame.kind == FrameKind::Matrix)
            jobs.append(frame.job);
    }
    return jobs;
}

bool Workspace::wasOpenedAs(const QString &job) const
{
    return std::any_of(m_frames.begin(), m_frames.end(),
                       [&job](const Frame &frame) { return frame.firstJob == job; });
}

QStringList Workspace::steps(const QString &job) const
{
    QStringList steps;
    for (const Frame &frame : m_frames) {
        if (frame.kind == FrameKind::Graphic && frame.job == job)
            steps.append(frame.step);
    }
    return steps;
}

QList<Frame *> Workspace::framesOf(const QString &job)
{
    QList<Frame *> frames;
    for (Frame &frame : m_frames) {
        if (frame.job == job && frame.kind != FrameKind::Root)
            frames.append(&frame);
    }
    return frames;
}

Frame *Workspace::find(FrameKind kind, const QString &job, const QString &step)
{
    for (Frame &frame : m_frames) {
        if (frame.kind == kind && frame.job == job && frame.step == step)
            return &frame;
    }
    return nullptr;
}

Frame *Workspace::find(const QWidget *window)
{
    for (Frame &frame : m_frames) {
        if (frame.window == window)
            return &frame;
    }
    return nullptr;
}

QObject *Workspace::element(const char *library, FrameKind kind, const QString &job, const QString &step)
{
    const Frame *const frame = find(kind, job, step);
    return frame ? frame->elements.value(QLatin1String(library)) : nullptr;
}

void Workspace::showStep(const QString &job, const QString &step)
{
    if (const Frame *const frame = find(FrameKind::Graphic, job, step))
        m_window.showFrame(FrameKind::Graphic, frame->window);
}

void Workspace::tellSteps(const QString &job)
{
    const QMap<QString, QVariant> data{{"Steps", steps(job)}};
    m_manager->updateGraphic(job, hostMessage("Graphic_JobList.dll", MessageType::ShowSteps, data));
    m_manager->updateMatrix(job, hostMessage("Matrix.dll", MessageType::ShowSteps, data));
}

void Workspace::remove(const Frame *frame)
{
    m_frames.remove_if([frame](const Frame &candidate) { return &candidate == frame; });
}

void Workspace::openFrame(FrameKind kind, const QString &job, const QString &step)
{
    const FrameRegistration registration = frameRegistration(kind);
    QWidget *const window = registration.call(m_manager, &m_window, job.toStdString(), step.toStdString());
    QWidget *const again = registration.call(m_manager, &m_window, job.toStdString(), step.toStdString());
    const bool once = window && again == window;
    m_account.row({registration.operation, step.isEmpty() ? job : stepName(job, step), once ? "yes" : "no"},
                  {40, 24, 9}, once);
    if (!window)
        return;

    m_frames.push_back({kind, job, step, window, {}, job, step});
    Frame &frame = m_frames.back();
    m_window.addFrame(kind, window);
    Mailbox::giveTo(window, window, m_manager);
    if (auto *const mainWindow = qobject_cast<QMainWindow *>(window)) {
        Places places = makeFramePlaces(kind, mainWindow);
        addElements(frame, places);
        arrangeFrameDocks(mainWindow);
    }
    if (kind == FrameKind::Graphic)
        connect(window, SIGNAL(stepRequested(QString, QString)), this, SLOT(showStep(QString, QString)));
}

/// The manager tells the frame which job and step it shows, and the host its elements.
void Workspace::addElements(Frame &frame, Places &places)
{
    for (const Element &element : m_elements.registerFor(frame.kind, frame.window, frame.job)) {
        frame.elements.insert(element.library, element.object);
        places.add(element.place, element.object);
        followEntries(frame, element.library, *element.object);
        Mailbox::giveTo(element.object, frame.window, m_manager);
        if (!frame.step.isEmpty())
            m_manager->recMegToPlugin(frame.window,
                                      hostMessage(element.library, MessageType::OpenStep,
                                                  {{"JobName", frame.job}, {"Step", frame.step}}));
    }
}

/// An entry of an element carries its command as its name.
void Workspace::followEntries(Frame &frame, const QString &library, const QObject &element)
{
    const QList<QAction *> entries = element.findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QAction *const entry : entries) {
        if (!entry->objectName().isEmpty())
            connect(entry, &QAction::triggered, this,
                    [=, &frame] { emit commandChosen(&frame, library, entry->objectName()); });
    }
}

/// Keeps the tabs of the other frames at the job that the graphic editor shows.
void Workspace::showFramesOf(const QWidget *graphicFrame)
{
    const Frame *const shown = find(graphicFrame);
    if (!shown)
        return;
    const QList<Frame *> frames = framesOf(shown->job);
    for (const Frame *const frame : frames) {
        if (frame->kind != FrameKind::Graphic)
            m_window.showFrame(frame->kind, frame->window);
    }
}

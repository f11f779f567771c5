#include "Workspace.h"

#include "Account.h"
#include "FramePlaces.h"
#include "Mailbox.h"
#include "MainWindow.h"
#include "ManagerMessages.h"
#include "Post.h"
#include "board.h"
#include "hostMessage.h"

#include <pluginManger4CAM.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QAction>
#include <QtWidgets/QDockWidget>

#include <algorithm>

Workspace::Workspace(Post &post, MainWindow &window, Account &account, const QString &jobs)
    : m_post(post)
    , m_manager(post.manager())
    , m_window(window)
    , m_account(account)
    , m_elements(post)
    , m_jobs(jobs)
{
    post.setFinder(
        [this](const QWidget *frame, const PluginMetaData &message) { return hasReceiver(frame, message); });
    connect(&window, &MainWindow::graphicFrameShown, this, &Workspace::showFramesOf);
    connect(&window, &MainWindow::previewClosed, this, &Workspace::closePreview);
}

void Workspace::openRoot()
{
    m_frames.push_back({FrameKind::Root, {}, {}, {}, &m_window, {}, {}, {}});
    addElements(m_frames.back(), m_window.places());
    m_post.toElementOfRoot(hostMessage("ListBar_PNList.dll", MessageType::UseFolder, {{"Folder", m_jobs}}));
}

void Workspace::openJob(const QString &job)
{
    if (const Frame *const preview = find(FrameKind::Preview, job, QStringLiteral("pcb")))
        close(*preview);
    const QString file = QDir(m_jobs).filePath(job + QStringLiteral(".json"));
    const Job content = readJob(file);
    openFrame(FrameKind::Matrix, job, {}, file);
    openFrame(FrameKind::Guide, job, {}, file);
    for (const Step &step : content.steps)
        openFrame(FrameKind::Graphic, job, step.name, file);
    if (!content.steps.isEmpty())
        openFrame(FrameKind::Dfm, job, content.steps.first().name, file, false);
    tellSteps(job);
}

void Workspace::openPreview(const QString &job)
{
    const QString file = QDir(m_jobs).filePath(job + QStringLiteral(".json"));
    Frame *const frame = openFrame(FrameKind::Preview, job, QStringLiteral("pcb"), file);
    auto *const window = frame ? qobject_cast<QMainWindow *>(frame->window) : nullptr;
    if (!window)
        return;
    // As an element, a guide is found by its library's name, as others are.
    const QString library = QStringLiteral("Graphic_CamGuide.dll");
    QWidget *guide = nullptr;
    const bool isSound = m_post.call(
        "Ov_Register_CamGuide", job,
        [&] { guide = m_manager->Ov_Register_CamGuide(library.toStdString(), window, job.toStdString()); },
        library);
    if (!guide)
        return;
    if (isSound)
        m_post.noteSent("Ov_Register_CamGuide", {{library, MessageType::GuideOpened, {{"JobName", job}}}});
    auto *const dock = new QDockWidget(tr("Guide"), window);
    dock->setObjectName(QStringLiteral("Guide"));
    dock->setWidget(guide);
    dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    dock->setMinimumWidth(24 * window->fontMetrics().averageCharWidth());
    window->addDockWidget(Qt::LeftDockWidgetArea, dock);
    Mailbox::giveTo(guide, window, m_post);
    frame->elements.insert(library, guide);
    m_post.toElement(window, hostMessage(library, MessageType::TaskDone,
                                         {{"Task", "layers"}, {"Text", tr("in this preview")}}));
}

void Workspace::openDfmFrame(const QString &job, const QString &step, bool belongsToRoot)
{
    const Frame *const graphicFrame = find(FrameKind::Graphic, job, step);
    const Frame *frame = find(FrameKind::Dfm, job, step);
    if (!frame && graphicFrame)
        frame = openFrame(FrameKind::Dfm, job, step, graphicFrame->file, belongsToRoot);
    if (frame)
        m_window.showFrame(FrameKind::Dfm, frame->window);
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

QStringList Workspace::closedJobs() const
{
    QStringList closed;
    const QFileInfoList files = QDir(m_jobs).entryInfoList({QStringLiteral("*.json")}, QDir::Files);
    for (const QFileInfo &file : files) {
        const bool isOpen = std::any_of(m_frames.begin(), m_frames.end(), [&file](const Frame &frame) {
            return frame.kind == FrameKind::Matrix && QFileInfo(frame.file) == file;
        });
        if (!isOpen && !m_hiddenFiles.contains(file.filePath()))
            closed.append(file.completeBaseName());
    }
    return closed;
}

QString Workspace::fileOf(const QString &job) const
{
    for (const Frame &frame : m_frames) {
        if (frame.job == job)
            return frame.file;
    }
    return {};
}

bool Workspace::wasOpenedAs(const QString &job) const
{
    return std::any_of(m_frames.begin(), m_frames.end(), [&job](const Frame &frame) {
        return frame.firstJob == job && frame.kind != FrameKind::Preview;
    });
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

QList<Frame *> Workspace::frames(FrameKind kind)
{
    QList<Frame *> frames;
    for (Frame &frame : m_frames) {
        if (frame.kind == kind)
            frames.append(&frame);
    }
    return frames;
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
    const PluginMetaData toLists = hostMessage("Graphic_JobList.dll", MessageType::ShowSteps, data);
    m_post.deliver("updateGraphic", toLists, [&] { m_manager->updateGraphic(job, toLists); });
    const PluginMetaData toMatrix = hostMessage("Matrix.dll", MessageType::ShowSteps, data);
    m_post.deliver("updateMatrix", toMatrix, [&] { m_manager->updateMatrix(job, toMatrix); });
}

/// Deleting a node leaves its DFM frame, which the manager does not know by the node's name, and a preview is
/// no part of any tree. DFM frames that belong to the root go as nodes do.
void Workspace::close(const Frame &frame)
{
    const std::string job = frame.firstJob.toStdString();
    const std::string step = frame.firstStep.toStdString();
    const char *operation = "Ov_DeleteTreeNode";
    QString name = stepName(frame.job, dfmStepName(frame.step));
    Post::Call call = [&] { m_manager->Ov_DeleteTreeNode(QStringLiteral("Graphic"), name); };
    if (frame.kind == FrameKind::Preview || !frame.belongsToRoot)
        name = stepName(frame.firstJob, frame.firstStep);
    if (frame.kind == FrameKind::Preview) {
        operation = "Ov_UnRegisterGraphicFramework4Quorel";
        call = [&] { m_manager->Ov_UnRegisterGraphicFramework4Quorel(job, step); };
    } else if (!frame.belongsToRoot) {
        operation = "Ov_UnRegisterDFMGraphicFramework4Quorel";
        call = [&] { m_manager->Ov_UnRegisterDFMGraphicFramework4Quorel(job, step); };
    }
    Frame closed = frame;
    if (m_post.call(operation, name, call, QStringLiteral("ORVIK-GraphicEditor.dll")))
        m_post.noteSent(operation, ManagerMessages::whenClosed({&closed}));
    remove(&frame);
}

/// A frame closes itself when the manager tells it to. One that throws at that would stay.
void Workspace::remove(const Frame *frame)
{
    frame->window->deleteLater();
    m_frames.remove_if([frame](const Frame &candidate) { return &candidate == frame; });
}

/// The manager drops what is for nobody without a word.
bool Workspace::hasReceiver(const QWidget *frame, const PluginMetaData &message)
{
    const auto text = [&message](const char *key) {
        return message.data.value(QLatin1String(key)).toString();
    };
    const Frame *found = nullptr;
    if (frame)
        found = find(frame);
    else if (text("DstType") == QLatin1String("EngineerRoot"))
        found = find(FrameKind::Root, {}, {});
    else if (text("DstType") == QLatin1String("Matrix"))
        found = find(FrameKind::Matrix, text("JobName"));
    else if (text("DstType") == QLatin1String("Graphic"))
        found = find(FrameKind::Graphic, text("JobName"), text("Step"));
    else if (text("DstType") == QLatin1String("Guide"))
        return find(FrameKind::Guide, text("JobName")) != nullptr;
    return found && found->elements.contains(message.dst);
}

Frame *Workspace::openFrame(FrameKind kind, const QString &job, const QString &step, const QString &file,
                            bool belongsToRoot)
{
    const FrameRegistration registration = frameRegistration(kind, belongsToRoot);
    QWidget *window = nullptr;
    QWidget *again = nullptr;
    const QString name = step.isEmpty() ? job : stepName(job, step);
    const QString library = QLatin1String(registration.library);
    const auto registerIn = [&](QWidget *&registered) {
        return [&] {
            registered = registration.call(m_manager, &m_window, job.toStdString(), step.toStdString());
        };
    };
    const bool isSound = m_post.call(registration.operation, name, registerIn(window), library);
    m_post.guard(registration.operation, library, registerIn(again));
    const bool once = window && again == window && m_manager->Ov_isRegisterFrame(window);
    m_account.row({registration.operation, name, once ? "yes" : "no"}, {40, 24, 9}, once);
    // One that threw at the manager's first message is there all the same.
    window = again;
    if (!window)
        return nullptr;

    m_frames.push_back({kind, job, step, file, window, {}, job, step, belongsToRoot});
    Frame &frame = m_frames.back();
    if (isSound)
        m_post.noteSent(registration.operation, ManagerMessages::whenOpened(frame));
    place(frame);
    if (kind == FrameKind::Graphic)
        connect(window, SIGNAL(stepRequested(QString, QString)), this, SLOT(showStep(QString, QString)));
    return &frame;
}

/// A frame is shown once it is complete: what is added to one that is on the screen would stay hidden.
void Workspace::place(Frame &frame)
{
    Mailbox::giveTo(frame.window, frame.window, m_post);
    auto *const mainWindow = qobject_cast<QMainWindow *>(frame.window);
    if (mainWindow) {
        Places places = makeFramePlaces(frame.kind, mainWindow);
        addElements(frame, places);
    }
    if (frame.kind == FrameKind::Preview)
        m_window.addPreview(frame.window);
    else
        m_window.addFrame(frame.kind, frame.window);
    if (mainWindow)
        arrangeFrameDocks(mainWindow);
}

/// The manager tells the frame which job and step it shows, and the host its elements, once all are there:
/// some talk to others at once.
void Workspace::addElements(Frame &frame, Places &places)
{
    const QVector<Element> elements = m_elements.registerFor(frame.kind, frame.window, frame.job);
    for (const Element &element : elements) {
        frame.elements.insert(element.library, element.object);
        places.add(element.place, element.object);
        followEntries(frame, element.library, *element.object);
        Mailbox::giveTo(element.object, frame.window, m_post);
    }
    for (const Element &element : elements) {
        if (!frame.file.isEmpty())
            tellStep(frame, element.library);
    }
}

void Workspace::tellStep(const Frame &frame, const QString &library)
{
    m_post.toElement(frame.window,
                     hostMessage(library, MessageType::OpenStep,
                                 {{"JobName", frame.job}, {"Step", frame.step}, {"File", frame.file}}));
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

/// Keeps the other frames at the job that the graphic editor shows.
void Workspace::showFramesOf(const QWidget *graphicFrame)
{
    const Frame *const shown = find(graphicFrame);
    if (!shown) {
        emit jobShown({}, {});
        return;
    }
    const QList<Frame *> frames = framesOf(shown->job);
    const Frame *const sameStep = find(FrameKind::Dfm, shown->job, shown->step);
    for (const Frame *const frame : frames) {
        const bool isOther = frame->kind == FrameKind::Dfm && sameStep && frame != sameStep;
        if (frame->kind != FrameKind::Graphic && frame->kind != FrameKind::Preview && !isOther)
            m_window.showFrame(frame->kind, frame->window);
    }
    emit jobShown(shown->job, shown->file);
}

void Workspace::closePreview(const QWidget *window)
{
    if (const Frame *const frame = find(window))
        close(*frame);
}

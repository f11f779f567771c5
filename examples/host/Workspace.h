#pragma once

#include "Elements.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <list>

class MainWindow;

/// What the host has open: its frames, with their elements in their places and connected to the manager.
class Workspace : public QObject
{
    Q_OBJECT

public:
    Workspace(QTpluginsManger4CAM *manager, MainWindow &window, Account &account);

    /// Registers the elements that belong to no job.
    void open();

    /// Registers a frame for each step, and those that a job has once.
    void openJob(const QString &job, const QStringList &steps);

    QStringList jobs() const;
    /// Whether a job that is open was called this when it was opened, as the manager still calls its DFM
    /// frame.
    bool wasOpenedAs(const QString &job) const;
    QStringList steps(const QString &job) const;
    QList<Frame *> framesOf(const QString &job);
    Frame *find(FrameKind kind, const QString &job, const QString &step = {});
    Frame *find(const QWidget *window);
    /// Null when there is no such frame or element.
    QObject *element(const char *library, FrameKind kind, const QString &job = {}, const QString &step = {});

    /// Tells the job's job lists and matrix which steps there are.
    void tellSteps(const QString &job);
    /// Forgets the frame, when the manager has.
    void remove(const Frame *frame);

    const Elements &elements() const { return m_elements; }

public slots:
    void showStep(const QString &job, const QString &step);

signals:
    /// The user chose an entry of an element. A command is the entry's text as one word: "zoomIn".
    void commandChosen(Frame *frame, const QString &library, const QString &command);

private:
    void openFrame(FrameKind kind, const QString &job, const QString &step);
    void addElements(Frame &frame, Places &places);
    void followEntries(Frame &frame, const QString &library, const QObject &element);
    void showFramesOf(const QWidget *graphicFrame);

    QTpluginsManger4CAM *m_manager;
    MainWindow &m_window;
    Account &m_account;
    Elements m_elements;
    /// A list, since frames are pointed to.
    std::list<Frame> m_frames;
};

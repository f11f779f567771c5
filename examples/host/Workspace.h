#pragma once

#include "Elements.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <list>

class MainWindow;
class Places;
class Post;
struct PluginMetaData;

/// What the host has open: its frames, with their elements in their places and connected to the manager.
class Workspace : public QObject
{
    Q_OBJECT

public:
    /// Jobs are files in the folder `jobs`.
    Workspace(Post &post, MainWindow &window, Account &account, const QString &jobs);

    /// Registers the elements that belong to no job.
    void openRoot();

    /// Registers a frame for each step, and those that a job has once.
    void openJob(const QString &job);
    /// Registers a frame that belongs to no root, with a guide of its own, in a window of its own.
    void openPreview(const QString &job);
    /// Registers a DFM frame, unless it is there, and shows it. That of a job's first step belongs to no
    /// root.
    void openDfmFrame(const QString &job, const QString &step, bool belongsToRoot = true);

    QStringList jobs() const;
    /// The names of the jobs in the folder that are not open.
    QStringList closedJobs() const;
    QString fileOf(const QString &job) const;
    /// Whether a job that is open was called this when it was opened, as the manager still calls its DFM
    /// frame.
    bool wasOpenedAs(const QString &job) const;
    QStringList steps(const QString &job) const;
    QList<Frame *> frames(FrameKind kind);
    QList<Frame *> framesOf(const QString &job);
    Frame *find(FrameKind kind, const QString &job, const QString &step = {});
    Frame *find(const QWidget *window);
    /// Null when there is no such frame or element.
    QObject *element(const char *library, FrameKind kind, const QString &job = {}, const QString &step = {});

    /// Tells the job's job lists and matrix which steps there are.
    void tellSteps(const QString &job);
    /// Has the manager forget a DFM frame or a preview, and forgets it.
    void close(const Frame &frame);
    /// Forgets the frame, when the manager has, and deletes its window.
    void remove(const Frame *frame);
    /// A job that is deleted is not offered again.
    void hideFile(const QString &file) { m_hiddenFiles.append(file); }

    const Elements &elements() const { return m_elements; }

public slots:
    void showStep(const QString &job, const QString &step);

signals:
    /// The user chose an entry of an element. A command is the entry's text as one word: "zoomIn".
    void commandChosen(Frame *frame, const QString &library, const QString &command);
    /// Another job is shown, or none.
    void jobShown(const QString &job, const QString &file);

private:
    bool hasReceiver(const QWidget *frame, const PluginMetaData &message);
    Frame *openFrame(FrameKind kind, const QString &job, const QString &step, const QString &file,
                     bool belongsToRoot = true);
    void place(Frame &frame);
    void addElements(Frame &frame, Places &places);
    void tellStep(const Frame &frame, const QString &library);
    void followEntries(Frame &frame, const QString &library, const QObject &element);
    void showFramesOf(const QWidget *graphicFrame);
    void closePreview(const QWidget *window);

    Post &m_post;
    QTpluginsManger4CAM *m_manager;
    MainWindow &m_window;
    Account &m_account;
    Elements m_elements;
    const QString m_jobs;
    QStringList m_hiddenFiles;
    /// A list, since frames are pointed to.
    std::list<Frame> m_frames;
};

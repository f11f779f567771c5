#pragma once

#include "Frame.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

class JobTree;
class MainWindow;
class Post;
class Workspace;

/// What the entries of menus and tool bars lead to: the host's own commands, or a message to an element.
class Commands : public QObject
{
    Q_OBJECT

public:
    Commands(Post &post, MainWindow &window, Workspace &workspace, JobTree &jobTree);

    void run(Frame *frame, const QString &library, const QString &command);

signals:
    void reloadDfmRequested();
    void reloadDesktopRequested();

private:
    using Command = void (Commands::*)(const Frame &);
    static const QMap<QString, Command> &ownCommands();

    void exit(const Frame &);
    void openJob(const Frame &);
    void previewJob(const Frame &);
    void closeJob(const Frame &);
    void closeAllJobs(const Frame &);
    void renameJob(const Frame &frame);
    void deleteJob(const Frame &frame);
    void renameStep(const Frame &frame);
    void deleteStep(const Frame &frame);
    void checkStep(const Frame &frame);
    void nextStep(const Frame &);
    void previousStep(const Frame &);
    void compareWith(const Frame &frame);
    void endComparison(const Frame &frame);
    void lockJob(const Frame &);
    void unlockJob(const Frame &);
    void setText(const Frame &);
    void millimetres(const Frame &);
    void inches(const Frame &);
    void reloadDfmPlugins(const Frame &);
    void reloadDesktopTools(const Frame &);

    void sendToElement(const Frame &frame, const QString &library, const QString &command);
    const Frame *shownFrame() const;
    /// Tells the user why nothing happens.
    void refuse(const QString &reason);
    QString ask(const QString &title, const QString &question, const QString &proposal);
    QString choose(const QString &title, const QString &question, const QStringList &names);

    Post &m_post;
    MainWindow &m_window;
    Workspace &m_workspace;
    JobTree &m_jobTree;
};

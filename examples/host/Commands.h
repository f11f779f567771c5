#pragma once

#include "Frame.h"

#include <QtCore/QObject>

class JobTree;
class MainWindow;
class QTpluginsManger4CAM;
class Workspace;

/// What the entries of menus and tool bars lead to: the host's own commands, or a message to an element.
class Commands : public QObject
{
    Q_OBJECT

public:
    Commands(QTpluginsManger4CAM *manager, MainWindow &window, Workspace &workspace, JobTree &jobTree);

    void run(Frame *frame, const QString &library, const QString &command);

private:
    using Command = void (Commands::*)(const Frame &);
    static const QMap<QString, Command> &ownCommands();

    void exit(const Frame &);
    void openJob(const Frame &);
    void renameJob(const Frame &frame);
    void deleteJob(const Frame &frame);
    void renameStep(const Frame &frame);
    void deleteStep(const Frame &frame);
    void nextStep(const Frame &);
    void previousStep(const Frame &);
    void compareWith(const Frame &frame);
    void lockJob(const Frame &);
    void unlockJob(const Frame &);

    /// Tells the user why nothing happens.
    void refuse(const QString &name);
    void setJobText(const QString &text);
    QString ask(const QString &question, const QString &proposal);

    QTpluginsManger4CAM *m_manager;
    MainWindow &m_window;
    Workspace &m_workspace;
    JobTree &m_jobTree;
};

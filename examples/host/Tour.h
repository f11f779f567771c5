#pragma once

#include "Stage.h"

#include <QtCore/QDir>

class Account;
class QAction;

/**
 * Shows the host without anybody before it: does what a user would do, looks at what the window then shows,
 * and takes a picture of each scene, with a line that says what is to be seen.
 */
class Tour
{
public:
    Tour(Workbench &workbench, const QString &folder);

    void play();
    /// The same for a host with broken plug-ins: it says what is wrong, and the rest works.
    void playWithBrokenPlugins();

private:
    void lookAtBoard();
    void selectLayer();
    void zoomIn();
    void checkRules();
    void goToFinding();
    void compareJobs();
    void showFilm();
    void rename();
    void previewJob();
    void readMessages();
    void measureTestPoints();
    void countCopper();
    void lookAtPlugins();
    void lookAtStartUp();

    QString statusOfPoints(const char *label) const;
    void triggerTool(const QList<QAction *> &actions, const char *command);
    void takePicture(const char *name, const QString &line, QWidget *window = nullptr);

    Stage m_stage;
    Workbench &m_workbench;
    Account &m_account;
    const QDir m_folder;
    int m_pictures = 0;
};

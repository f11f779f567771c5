#pragma once

#include <QtWidgets/QMainWindow>

class MessageLog;
class PluginCatalog;
class QActionGroup;
class QDockWidget;
class QLabel;
class QSettings;
class QStackedWidget;
class QToolBar;
class StartProfile;

/// The host's window: a strip of pages at its left, the page that is chosen, the messages below on demand,
/// and a line on top that speaks up when plug-ins need attention.
class WorkbenchWindow : public QMainWindow
{
    Q_OBJECT

public:
    enum Page { JobsPage, PointsPage, PluginsPage, StartUpPage, PageCount };

    /// The pages of jobs and points are the caller's to make, and this window's from then on.
    WorkbenchWindow(QMainWindow *jobs, QMainWindow *points, MessageLog &log, const PluginCatalog &catalog,
                    const StartProfile &profile);

    /// A menu for what there is to show, at the end of those that the page of the jobs has.
    void addWindowMenu();
    void showPage(Page page);
    void showMessages(bool shown);
    QString trouble() const;

    /// Sizes and places of the window, its docks and those of the pages.
    void saveLayout(QSettings &settings) const;
    void restoreLayout(QSettings &settings);

private:
    QAction *addPage(Page page, const QString &text, const char *icon, QWidget *widget);
    QWidget *makeTroubleLine();
    void showTrouble();

    QMainWindow *m_jobs;
    QMainWindow *m_points;
    const PluginCatalog &m_catalog;
    QToolBar *m_strip;
    QActionGroup *m_pageActions;
    QStackedWidget *m_pages;
    QDockWidget *m_messages;
    QWidget *m_troubleLine = nullptr;
    QLabel *m_troubleText = nullptr;
};

#pragma once

#include "Frame.h"
#include "Places.h"

#include <QtWidgets/QMainWindow>

class QDockWidget;
class QTabWidget;

/**
 * The page of the jobs, which is the plug-ins' engineering root: at its edges stand the elements that belong
 * to no job and the frames that follow the job that is shown, in its middle the graphic frames.
 */
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow();

    Places &places() { return m_places; }

    /// Puts a frame among those of its kind, on a tab with its title for as long as the frame lives.
    void addFrame(FrameKind kind, QWidget *frame);
    /// Puts a frame into a window of its own, which asks to be closed by closeRequested().
    void addPreview(QWidget *frame);
    void showFrame(FrameKind kind, QWidget *frame);
    QWidget *currentFrame(FrameKind kind) const;
    QStringList tabTexts(FrameKind kind) const;

    /// Chooses the next or, with -1, the previous tab.
    void stepThroughFrames(FrameKind kind, int direction);

    /// Brings docks to the sizes that they start with, once all of them are there.
    void arrangeDocks();

signals:
    void graphicFrameShown(QWidget *frame);
    void previewClosed(QWidget *frame);

private:
    QTabWidget *makeTabs(FrameKind kind);
    void addFollowingDock(Qt::DockWidgetArea area, const QString &title, const char *name, FrameKind kind);
    void showTitle(FrameKind kind);
    QDockWidget *addDock(Qt::DockWidgetArea area, const QString &title, const char *name, QWidget *content);
    void addStatusBar();

    Places m_places;
    QMap<FrameKind, QTabWidget *> m_tabs;
    QMap<FrameKind, QDockWidget *> m_docks;
    QMap<FrameKind, QString> m_titles;
};

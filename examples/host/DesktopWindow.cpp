#include "DesktopWindow.h"

#include <pluginManger.h>

#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolBar>

namespace {

QToolBar *styled(QToolBar *toolBar)
{
    toolBar->setIconSize({16, 16});
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    return toolBar;
}

}

DesktopWindow::DesktopWindow()
{
    menuBar()->setNativeMenuBar(false);
}

void DesktopWindow::place(const QTpluginsManger &manager)
{
    for (QMenu *const menu : {manager.m_menuBarResult1, manager.m_menuBarResult2,
                              manager.m_fileProcessResult2, manager.m_menuBarResult3})
        placeMenu(menu);

    if (manager.m_fileProcessResult1)
        addToolBar(styled(manager.m_fileProcessResult1));
    placeTools(tr("Edit"), "Edit", manager.m_editActions);
    placeTools(tr("Select"), "Select", manager.m_selectActions);
    addToolBarBreak();
    placeTools(tr("Move"), "Move", manager.m_moveActions);
    placeTools(tr("Tools"), "Tools", manager.m_toolActions);

    if (manager.m_pnListResult) {
        auto *const dock = new QDockWidget(tr("Part numbers"));
        dock->setObjectName(QStringLiteral("PartNumbers"));
        dock->setFeatures(QDockWidget::DockWidgetMovable);
        dock->setWidget(manager.m_pnListResult);
        addDockWidget(Qt::LeftDockWidgetArea, dock);
        resizeDocks({dock}, {250}, Qt::Horizontal);
    }
    if (manager.m_viewResult)
        setCentralWidget(manager.m_viewResult);
    if (manager.m_statusResult)
        statusBar()->addWidget(manager.m_statusResult, 1);
}

/// Actions are their plug-ins' own; all else is this window's. What the menu bar's plug-in has put into the
/// status bar goes with it. The manager forgets only what is its own, and sets these anew for tools that do
/// load again.
void DesktopWindow::clear(QTpluginsManger &manager)
{
    qDeleteAll(findChildren<QToolBar *>(QString(), Qt::FindDirectChildrenOnly));
    qDeleteAll(menuBar()->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly));
    qDeleteAll(findChildren<QDockWidget *>(QString(), Qt::FindDirectChildrenOnly));
    setCentralWidget(nullptr);
    delete statusBar();
    for (QMenu **const menu : {&manager.m_menuBarResult1, &manager.m_menuBarResult2,
                               &manager.m_menuBarResult3, &manager.m_fileProcessResult2})
        *menu = nullptr;
    for (QWidget **const widget : {&manager.m_pnListResult, &manager.m_viewResult, &manager.m_statusResult})
        *widget = nullptr;
    manager.m_fileProcessResult1 = nullptr;
}

/// A menu bar shows menus, but does not own them.
void DesktopWindow::placeMenu(QMenu *menu)
{
    if (!menu)
        return;
    menu->setParent(menuBar(), menu->windowFlags());
    menuBar()->addMenu(menu);
}

void DesktopWindow::placeTools(const QString &title, const char *name, const QList<QAction *> &actions)
{
    QToolBar *const toolBar = styled(addToolBar(title));
    toolBar->setObjectName(QLatin1String(name));
    toolBar->addActions(actions);
}

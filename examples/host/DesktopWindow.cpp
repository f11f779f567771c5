#include "DesktopWindow.h"

#include <pluginManger.h>

#include <QtWidgets/QDockWidget>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolBar>

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
        addToolBar(manager.m_fileProcessResult1);
    placeTools(QStringLiteral("Edit"), manager.m_editActions);
    placeTools(QStringLiteral("Move"), manager.m_moveActions);
    placeTools(QStringLiteral("Select"), manager.m_selectActions);
    placeTools(QStringLiteral("Tools"), manager.m_toolActions);

    if (manager.m_pnListResult) {
        auto *const dock = new QDockWidget(QStringLiteral("Part numbers"));
        dock->setWidget(manager.m_pnListResult);
        addDockWidget(Qt::LeftDockWidgetArea, dock);
        resizeDocks({dock}, {250}, Qt::Horizontal);
    }
    if (manager.m_viewResult)
        setCentralWidget(manager.m_viewResult);
    if (manager.m_statusResult)
        statusBar()->addWidget(manager.m_statusResult, 1);
}

/// A menu bar shows menus, but does not own them.
void DesktopWindow::placeMenu(QMenu *menu)
{
    if (!menu)
        return;
    menu->setParent(menuBar(), menu->windowFlags());
    menuBar()->addMenu(menu);
}

void DesktopWindow::placeTools(const QString &title, const QList<QAction *> &actions)
{
    QToolBar *const toolBar = addToolBar(title);
    auto *const label = new QLabel(title + QLatin1Char(':'));
    label->setContentsMargins(4, 0, 4, 0);
    toolBar->addWidget(label);
    toolBar->addActions(actions);
}

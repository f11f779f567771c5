#include "FramePlaces.h"

#include "MenuBarEnd.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>

namespace {

QWidget *makePanel(QLayout *content)
{
    auto *const panel = new QWidget;
    panel->setLayout(content);
    content->setContentsMargins(0, 0, 0, 0);
    return panel;
}

QGroupBox *makeGroup(const QString &title, QLayout *content)
{
    auto *const group = new QGroupBox(title);
    group->setLayout(content);
    content->setContentsMargins(4, 2, 4, 2);
    return group;
}

Places makeGraphicPlaces(QMainWindow *frame)
{
    Places places(frame);
    auto *const tools = new QVBoxLayout;
    tools->addLayout(places.makeBox(Place::Overview, Qt::Vertical), 1);
    tools->addWidget(makeGroup(QStringLiteral("Move"), places.makeBox(Place::MoveTools, Qt::Vertical)));
    tools->addWidget(makeGroup(QStringLiteral("Edit"), places.makeBox(Place::EditTools, Qt::Vertical)));

    auto *const row = new QHBoxLayout;
    row->addLayout(places.makeBox(Place::Center, Qt::Vertical), 1);
    row->addLayout(tools);
    frame->setCentralWidget(makePanel(row));
    frame->statusBar()->addWidget(makePanel(places.makeBox(Place::StatusBar, Qt::Horizontal)));
    return places;
}

Places makeMatrixPlaces(QMainWindow *frame)
{
    Places places(frame);
    new MenuBarEnd(frame->menuBar(), places.makeBox(Place::MenuBarEnd, Qt::Horizontal));
    frame->setCentralWidget(makePanel(places.makeBox(Place::Center, Qt::Vertical)));
    return places;
}

Places makeDfmPlaces(QMainWindow *frame)
{
    Places places(frame);
    frame->setCentralWidget(makePanel(places.makeBox(Place::Center, Qt::Vertical)));
    return places;
}

}

Places makeFramePlaces(FrameKind kind, QMainWindow *frame)
{
    frame->menuBar()->setNativeMenuBar(false);
    switch (kind) {
    case FrameKind::Graphic:
        return makeGraphicPlaces(frame);
    case FrameKind::Matrix:
        return makeMatrixPlaces(frame);
    default:
        return makeDfmPlaces(frame);
    }
}

void arrangeFrameDocks(QMainWindow *frame)
{
    QList<QDockWidget *> docks;
    QList<int> widths;
    const QList<QDockWidget *> all = frame->findChildren<QDockWidget *>();
    for (QDockWidget *const dock : all) {
        if (frame->dockWidgetArea(dock) == Qt::LeftDockWidgetArea) {
            docks.append(dock);
            widths.append(dock->minimumSizeHint().width());
        }
    }
    frame->resizeDocks(docks, widths, Qt::Horizontal);
}

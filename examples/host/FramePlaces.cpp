#include "FramePlaces.h"

#include "MenuBarEnd.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QFrame>
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

QFrame *makeLine()
{
    auto *const line = new QFrame;
    line->setFrameShape(QFrame::VLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

/// Below the docks that elements are, so it is put in its place after them.
QDockWidget *makeOverview(QMainWindow *frame, Places &places)
{
    auto *const dock = new QDockWidget(QCoreApplication::translate("FramePlaces", "Overview"), frame);
    dock->setObjectName(QStringLiteral("Overview"));
    dock->hide();
    dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    dock->setWidget(makePanel(places.makeBox(Place::Overview, Qt::Vertical)));
    return dock;
}

/// A preview is small, and has no list that would give its docks their width.
Places makeGraphicPlaces(QMainWindow *frame, bool isPreview)
{
    Places places(frame);
    auto *const tools = new QHBoxLayout;
    tools->addLayout(places.makeBox(Place::MoveTools, Qt::Horizontal));
    tools->addWidget(makeLine());
    tools->addLayout(places.makeBox(Place::EditTools, Qt::Horizontal));
    tools->addStretch(1);

    auto *const column = new QVBoxLayout;
    column->setSpacing(0);
    column->addLayout(tools);
    column->addLayout(places.makeBox(Place::Center, Qt::Vertical), 1);
    frame->setCentralWidget(makePanel(column));
    QDockWidget *const overview = makeOverview(frame, places);
    overview->setMaximumHeight(10 * frame->fontMetrics().height());
    if (isPreview)
        overview->setMaximumWidth(32 * frame->fontMetrics().averageCharWidth());
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
        return makeGraphicPlaces(frame, false);
    case FrameKind::Preview:
        return makeGraphicPlaces(frame, true);
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
    QList<int> heights;
    const QList<QDockWidget *> all = frame->findChildren<QDockWidget *>();
    for (QDockWidget *const dock : all) {
        const bool isOverview = dock->objectName() == QLatin1String("Overview");
        // Without a map there is nothing to look over.
        if (isOverview && dock->widget()->layout()->count() == 0)
            continue;
        if (isOverview) {
            frame->addDockWidget(Qt::LeftDockWidgetArea, dock);
            dock->show();
        }
        docks.append(dock);
        widths.append(dock->minimumSizeHint().width());
        heights.append(isOverview ? 100 : 300);
    }
    frame->resizeDocks(docks, widths, Qt::Horizontal);
    frame->resizeDocks(docks, heights, Qt::Vertical);
}

#include "Places.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QToolBar>

namespace {

Qt::DockWidgetArea dockArea(Place place)
{
    switch (place) {
    case Place::LeftDocks:
        return Qt::LeftDockWidgetArea;
    case Place::BottomDocks:
        return Qt::BottomDockWidgetArea;
    default:
        return Qt::RightDockWidgetArea;
    }
}

}

Places::Places(QMainWindow *window)
    : m_window(window)
{
}

QBoxLayout *Places::makeBox(Place place, Qt::Orientation orientation)
{
    auto *const box =
        new QBoxLayout(orientation == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    box->setContentsMargins(4, 2, 4, 2);
    m_boxes.insert(place, box);
    return box;
}

void Places::add(Place place, QObject *element)
{
    auto *const widget = qobject_cast<QWidget *>(element);
    auto *const layout = qobject_cast<QLayout *>(element);
    if (QBoxLayout *const box = m_boxes.value(place))
        layout ? box->addLayout(layout) : box->addWidget(widget);
    else if (place == Place::Menus)
        m_window->menuBar()->addMenu(qobject_cast<QMenu *>(element));
    else if (place == Place::ToolBars)
        m_window->addToolBar(qobject_cast<QToolBar *>(element));
    else
        m_window->addDockWidget(dockArea(place), qobject_cast<QDockWidget *>(element));
}

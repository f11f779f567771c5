#pragma once

#include <QtCore/QMap>
#include <QtCore/Qt>

class QBoxLayout;
class QMainWindow;
class QObject;

/// Where in its window an element goes.
enum class Place {
    Menus,
    MenuBarEnd,
    ToolBars,
    LeftDocks,
    RightDocks,
    BottomDocks,
    PartPanel,
    Center,
    Overview,
    MoveTools,
    EditTools,
    StatusBar,
    StatusBarEnd,
};

/// The places of one window. Those that are not part of every window are boxes that its builder makes.
class Places
{
public:
    explicit Places(QMainWindow *window);

    QBoxLayout *makeBox(Place place, Qt::Orientation orientation);

    /// Puts an element into its place; the window owns it from then on.
    void add(Place place, QObject *element);

private:
    QMainWindow *m_window;
    QMap<Place, QBoxLayout *> m_boxes;
};

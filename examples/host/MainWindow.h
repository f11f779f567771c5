#pragma once

#include <QtCore/QMap>
#include <QtWidgets/QMainWindow>

class QAction;
class QBoxLayout;
class QMenuBar;

/// Where in the window an element goes.
enum class Place {
    CamMenus,
    MenuBarEnd,
    PartPanel,
    LeftDocks,
    StatusBar,
    StatusBarEnd,
    ToolBars,
    GraphicMenus,
    GraphicCenter,
    MoveTools,
    EditTools,
    GraphicBottom,
    Overview,
    MatrixMenus,
    MatrixHead,
    MatrixCenter,
    DfmMenus,
    DfmPanel,
    RightDocks,
};

/// The window that all elements share. It is made with empty places, and owns every element added to it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow();

    /// Puts an element, named after its library, into its place.
    void add(Place place, const QString &library, QObject *element);

    /// Connects a signal of one element to a slot of another. Returns whether both exist.
    bool connectElements(const QString &sender, const char *signal, const QString &receiver,
                         const char *slot);

    /// Brings docks to the sizes that they start with, once all of them are there.
    void arrangeDocks();

private:
    QWidget *makeGraphicPanel();
    QWidget *makeMatrixPanel();
    void addPartDock();
    void addOverviewDock();
    void addDfmDock();
    void addStatusBar();

    QMenuBar *makeMenuBar(Place place);
    QBoxLayout *makeBox(Place place, Qt::Orientation orientation);
    void addDock(Qt::DockWidgetArea area, const QString &title, QWidget *content);
    void followActions(const QString &library, QObject *element);
    void runAction(const QString &library, const QAction &action);

    QMap<Place, QMenuBar *> m_menuBars;
    QMap<Place, QBoxLayout *> m_boxes;
    QMap<QString, QObject *> m_elements;
};

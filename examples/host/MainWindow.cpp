#include "MainWindow.h"

#include <QtWidgets/QAction>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolBar>

namespace {

QLabel *makeHeading(const QString &text)
{
    auto *const heading = new QLabel(text);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    return heading;
}

QGroupBox *makeGroup(const QString &title, QLayout *content)
{
    auto *const group = new QGroupBox(title);
    group->setLayout(content);
    content->setContentsMargins(4, 4, 4, 4);
    return group;
}

}

MainWindow::MainWindow()
{
    setWindowTitle(QStringLiteral("pluginManger example host"));
    resize(1280, 800);

    m_menuBars.insert(Place::CamMenus, menuBar());
    auto *const center = new QSplitter(Qt::Vertical);
    center->addWidget(makeGraphicPanel());
    center->addWidget(makeMatrixPanel());
    center->setStretchFactor(0, 1);
    center->setSizes({420, 280});
    setCentralWidget(center);

    addPartDock();
    addOverviewDock();
    addDfmDock();
    addStatusBar();
}

void MainWindow::add(Place place, const QString &library, QObject *element)
{
    m_elements.insert(library, element);
    followActions(library, element);

    auto *const widget = qobject_cast<QWidget *>(element);
    auto *const layout = qobject_cast<QLayout *>(element);
    if (QMenuBar *const bar = m_menuBars.value(place))
        bar->addMenu(qobject_cast<QMenu *>(element));
    else if (QBoxLayout *const box = m_boxes.value(place))
        layout ? box->addLayout(layout) : box->addWidget(widget);
    else if (place == Place::MenuBarEnd)
        menuBar()->setCornerWidget(widget);
    else if (place == Place::ToolBars)
        addToolBar(qobject_cast<QToolBar *>(element));
    else
        addDockWidget(place == Place::LeftDocks ? Qt::LeftDockWidgetArea : Qt::RightDockWidgetArea,
                      qobject_cast<QDockWidget *>(element));
}

bool MainWindow::connectElements(const QString &sender, const char *signal, const QString &receiver,
                                 const char *slot)
{
    return connect(m_elements.value(sender), signal, m_elements.value(receiver), slot);
}

void MainWindow::arrangeDocks()
{
    struct DockSize
    {
        const char *name;
        int width;
        int height;
    };
    QList<QDockWidget *> docks;
    QList<int> widths;
    QList<int> heights;
    for (const DockSize &size : {DockSize{"Part", 250, 230}, DockSize{"ListBar_PNList", 250, 180},
                                 DockSize{"Graphic_JobList", 250, 260}, DockSize{"Overview", 290, 180},
                                 DockSize{"DFM", 290, 220}, DockSize{"DFM_Graphic_AnalysisTab", 290, 290}}) {
        if (auto *const dock = findChild<QDockWidget *>(QLatin1String(size.name))) {
            docks.append(dock);
            widths.append(size.width);
            heights.append(size.height);
        }
    }
    resizeDocks(docks, widths, Qt::Horizontal);
    resizeDocks(docks, heights, Qt::Vertical);
}

QWidget *MainWindow::makeGraphicPanel()
{
    auto *const head = new QHBoxLayout;
    head->addWidget(makeHeading(QStringLiteral("Graphic")));
    head->addWidget(makeMenuBar(Place::GraphicMenus), 1);

    auto *const tools = new QVBoxLayout;
    tools->addWidget(makeGroup(QStringLiteral("Move"), makeBox(Place::MoveTools, Qt::Vertical)));
    tools->addWidget(makeGroup(QStringLiteral("Edit"), makeBox(Place::EditTools, Qt::Vertical)));
    tools->addStretch();

    auto *const middle = new QHBoxLayout;
    middle->addLayout(makeBox(Place::GraphicCenter, Qt::Vertical), 1);
    middle->addLayout(tools);

    auto *const panel = new QWidget;
    auto *const column = new QVBoxLayout(panel);
    column->setContentsMargins(4, 2, 4, 2);
    column->addLayout(head);
    column->addLayout(middle, 1);
    column->addLayout(makeBox(Place::GraphicBottom, Qt::Horizontal));
    return panel;
}

QWidget *MainWindow::makeMatrixPanel()
{
    auto *const head = new QHBoxLayout;
    head->addWidget(makeHeading(QStringLiteral("Matrix")));
    head->addWidget(makeMenuBar(Place::MatrixMenus), 0, Qt::AlignVCenter);
    head->addStretch();
    head->addLayout(makeBox(Place::MatrixHead, Qt::Horizontal));

    auto *const panel = new QWidget;
    auto *const column = new QVBoxLayout(panel);
    column->setContentsMargins(4, 2, 4, 2);
    column->addLayout(head);
    column->addLayout(makeBox(Place::MatrixCenter, Qt::Vertical), 1);
    return panel;
}

void MainWindow::addPartDock()
{
    auto *const panel = new QWidget;
    panel->setLayout(makeBox(Place::PartPanel, Qt::Vertical));
    addDock(Qt::LeftDockWidgetArea, QStringLiteral("Part"), panel);
}

void MainWindow::addOverviewDock()
{
    auto *const panel = new QWidget;
    panel->setLayout(makeBox(Place::Overview, Qt::Vertical));
    addDock(Qt::RightDockWidgetArea, QStringLiteral("Overview"), panel);
}

void MainWindow::addDfmDock()
{
    auto *const panel = new QWidget;
    auto *const column = new QVBoxLayout(panel);
    column->setContentsMargins(4, 2, 4, 4);
    column->addWidget(makeMenuBar(Place::DfmMenus));
    column->addLayout(makeBox(Place::DfmPanel, Qt::Vertical));
    addDock(Qt::RightDockWidgetArea, QStringLiteral("DFM"), panel);
}

void MainWindow::addStatusBar()
{
    auto *const start = new QWidget;
    start->setLayout(makeBox(Place::StatusBar, Qt::Horizontal));
    statusBar()->addWidget(start, 1);

    auto *const end = new QWidget;
    end->setLayout(makeBox(Place::StatusBarEnd, Qt::Horizontal));
    statusBar()->addPermanentWidget(end);
}

QMenuBar *MainWindow::makeMenuBar(Place place)
{
    auto *const bar = new QMenuBar;
    bar->setNativeMenuBar(false);
    m_menuBars.insert(place, bar);
    return bar;
}

QBoxLayout *MainWindow::makeBox(Place place, Qt::Orientation orientation)
{
    auto *const box =
        new QBoxLayout(orientation == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    box->setContentsMargins(4, 2, 4, 2);
    m_boxes.insert(place, box);
    return box;
}

void MainWindow::addDock(Qt::DockWidgetArea area, const QString &title, QWidget *content)
{
    auto *const dock = new QDockWidget(title);
    dock->setObjectName(title);
    dock->setWidget(content);
    addDockWidget(area, dock);
}

/// An action of an element carries the name of the command that it stands for.
void MainWindow::followActions(const QString &library, QObject *element)
{
    const QList<QAction *> actions = element->findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QAction *const action : actions) {
        if (!action->objectName().isEmpty())
            connect(action, &QAction::triggered, this, [=] { runAction(library, *action); });
    }
}

void MainWindow::runAction(const QString &library, const QAction &action)
{
    statusBar()->showMessage(library + QStringLiteral(": ") + action.text(), 4000);

    const QByteArray command = action.objectName().toLatin1();
    QObject *const view = m_elements.value(QStringLiteral("Graphic_View.dll"));
    if (command == "exit")
        close();
    else if (view
             && view->metaObject()->indexOfSlot(command + "()") >= QWidget::staticMetaObject.methodCount())
        QMetaObject::invokeMethod(view, command.constData());
}

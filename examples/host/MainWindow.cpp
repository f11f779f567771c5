#include "MainWindow.h"

#include "MenuBarEnd.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>

MainWindow::MainWindow()
    : m_places(this)
{
    setWindowTitle(QStringLiteral("Jobs"));

    new MenuBarEnd(menuBar(), m_places.makeBox(Place::MenuBarEnd, Qt::Horizontal));
    auto *const center = new QSplitter(Qt::Vertical);
    center->addWidget(makeTabs(FrameKind::Graphic));
    center->addWidget(makeTabs(FrameKind::Matrix));
    center->setStretchFactor(0, 1);
    center->setSizes({460, 260});
    setCentralWidget(center);

    auto *const partPanel = new QWidget;
    partPanel->setLayout(m_places.makeBox(Place::PartPanel, Qt::Vertical));
    addDock(Qt::LeftDockWidgetArea, QStringLiteral("Part"), partPanel);
    addFollowingDock(Qt::LeftDockWidgetArea, QStringLiteral("Guide"), FrameKind::Guide);
    addFollowingDock(Qt::RightDockWidgetArea, QStringLiteral("DFM"), FrameKind::Dfm);
    addStatusBar();

    connect(m_tabs.value(FrameKind::Graphic), &QTabWidget::currentChanged, this,
            [this] { emit graphicFrameShown(currentFrame(FrameKind::Graphic)); });
}

void MainWindow::addFrame(FrameKind kind, QWidget *frame)
{
    QTabWidget *const tabs = m_tabs.value(kind);
    tabs->addTab(frame, frame->windowTitle());
    connect(frame, &QWidget::windowTitleChanged, this, [=](const QString &title) {
        tabs->setTabText(tabs->indexOf(frame), title);
        showTitle(kind);
    });
}

void MainWindow::showFrame(FrameKind kind, QWidget *frame)
{
    m_tabs.value(kind)->setCurrentWidget(frame);
}

QWidget *MainWindow::currentFrame(FrameKind kind) const
{
    return m_tabs.value(kind)->currentWidget();
}

QStringList MainWindow::tabTexts(FrameKind kind) const
{
    const QTabWidget *const tabs = m_tabs.value(kind);
    QStringList texts;
    for (int index = 0; index < tabs->count(); ++index)
        texts.append(tabs->tabText(index));
    return texts;
}

void MainWindow::stepThroughFrames(FrameKind kind, int direction)
{
    QTabWidget *const tabs = m_tabs.value(kind);
    tabs->setCurrentIndex((tabs->currentIndex() + direction + tabs->count()) % tabs->count());
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
    for (const DockSize &size : {DockSize{"Part", 240, 200}, DockSize{"Guide", 240, 240},
                                 DockSize{"ListBar_PNList", 240, 240}, DockSize{"DFM", 270, 680}}) {
        if (auto *const dock = findChild<QDockWidget *>(QLatin1String(size.name))) {
            docks.append(dock);
            widths.append(size.width);
            heights.append(size.height);
        }
    }
    resizeDocks(docks, widths, Qt::Horizontal);
    resizeDocks(docks, heights, Qt::Vertical);
}

QTabWidget *MainWindow::makeTabs(FrameKind kind)
{
    auto *const tabs = new QTabWidget;
    tabs->setDocumentMode(true);
    m_tabs.insert(kind, tabs);
    return tabs;
}

/// Shows one frame at a time, whose title then stands in that of the dock, where there is no room for tabs.
void MainWindow::addFollowingDock(Qt::DockWidgetArea area, const QString &title, FrameKind kind)
{
    QTabWidget *const tabs = makeTabs(kind);
    tabs->tabBar()->hide();
    m_docks.insert(kind, addDock(area, title, tabs));
    connect(tabs, &QTabWidget::currentChanged, this, [=] { showTitle(kind); });
}

void MainWindow::showTitle(FrameKind kind)
{
    QDockWidget *const dock = m_docks.value(kind);
    const QWidget *const frame = currentFrame(kind);
    if (dock && frame)
        dock->setWindowTitle(dock->objectName() + QStringLiteral(": ") + frame->windowTitle());
}

QDockWidget *MainWindow::addDock(Qt::DockWidgetArea area, const QString &title, QWidget *content)
{
    auto *const dock = new QDockWidget(title);
    dock->setObjectName(title);
    dock->setWidget(content);
    addDockWidget(area, dock);
    return dock;
}

void MainWindow::addStatusBar()
{
    auto *const start = new QWidget;
    start->setLayout(m_places.makeBox(Place::StatusBar, Qt::Horizontal));
    statusBar()->addWidget(start, 1);

    auto *const end = new QWidget;
    end->setLayout(m_places.makeBox(Place::StatusBarEnd, Qt::Horizontal));
    statusBar()->addPermanentWidget(end);
}

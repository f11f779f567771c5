#include "MainWindow.h"

#include "MenuBarEnd.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>

#include <functional>

namespace {

/// Holds a frame that the manager takes down when the window closes.
class PreviewWindow : public QMainWindow
{
public:
    PreviewWindow(QWidget *frame, QWidget *parent, std::function<void()> closed);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    const std::function<void()> m_closed;
};

PreviewWindow::PreviewWindow(QWidget *frame, QWidget *parent, std::function<void()> closed)
    : QMainWindow(parent, Qt::Window)
    , m_closed(std::move(closed))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("Preview"));
    setWindowTitle(tr("Preview of %1").arg(frame->windowTitle()));
    setCentralWidget(frame);
    resize(720, 520);
    connect(frame, &QObject::destroyed, this, &QObject::deleteLater);
}

void PreviewWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (centralWidget())
        m_closed();
}

}

MainWindow::MainWindow()
    : m_places(this)
{
    menuBar()->setNativeMenuBar(false);
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    new MenuBarEnd(menuBar(), m_places.makeBox(Place::MenuBarEnd, Qt::Horizontal));
    setCentralWidget(makeTabs(FrameKind::Graphic));

    auto *const partPanel = new QWidget;
    partPanel->setLayout(m_places.makeBox(Place::PartPanel, Qt::Vertical));
    addDock(Qt::LeftDockWidgetArea, tr("Part"), "Part", partPanel);
    addFollowingDock(Qt::LeftDockWidgetArea, tr("Guide"), "Guide", FrameKind::Guide);
    addFollowingDock(Qt::RightDockWidgetArea, tr("DFM"), "DFM", FrameKind::Dfm);
    addFollowingDock(Qt::BottomDockWidgetArea, tr("Layers"), "Layers", FrameKind::Matrix);
    addStatusBar();

    connect(m_tabs.value(FrameKind::Graphic), &QTabWidget::currentChanged, this,
            [this] { emit graphicFrameShown(currentFrame(FrameKind::Graphic)); });
}

void MainWindow::addFrame(FrameKind kind, QWidget *frame)
{
    QTabWidget *const tabs = m_tabs.value(kind);
    tabs->setTabToolTip(tabs->addTab(frame, frame->windowTitle()), frame->windowTitle());
    connect(frame, &QWidget::windowTitleChanged, this, [=](const QString &title) {
        tabs->setTabText(tabs->indexOf(frame), title);
        tabs->setTabToolTip(tabs->indexOf(frame), title);
        showTitle(kind);
    });
}

void MainWindow::addPreview(QWidget *frame)
{
    auto *const window = new PreviewWindow(frame, this, [this, frame] { emit previewClosed(frame); });
    window->show();
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
    if (tabs->count() > 0)
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
    // In characters and lines, so that there is room for texts of any size.
    for (const DockSize &size :
         {DockSize{"Part", 32, 14}, DockSize{"Guide", 32, 9}, DockSize{"ListBar_PNList", 32, 23},
          DockSize{"DFM", 40, 45}, DockSize{"Layers", 86, 18}}) {
        if (auto *const dock = findChild<QDockWidget *>(QLatin1String(size.name))) {
            docks.append(dock);
            widths.append(size.width * fontMetrics().averageCharWidth());
            heights.append(size.height * fontMetrics().height());
        }
    }
    resizeDocks(docks, widths, Qt::Horizontal);
    resizeDocks(docks, heights, Qt::Vertical);
}

QTabWidget *MainWindow::makeTabs(FrameKind kind)
{
    auto *const tabs = new QTabWidget;
    tabs->setDocumentMode(true);
    tabs->setElideMode(Qt::ElideMiddle);
    m_tabs.insert(kind, tabs);
    return tabs;
}

/// Shows one frame at a time, whose title then stands in that of the dock, where there is no room for tabs.
void MainWindow::addFollowingDock(Qt::DockWidgetArea area, const QString &title, const char *name,
                                  FrameKind kind)
{
    QTabWidget *const tabs = makeTabs(kind);
    tabs->tabBar()->hide();
    m_docks.insert(kind, addDock(area, title, name, tabs));
    m_titles.insert(kind, title);
    connect(tabs, &QTabWidget::currentChanged, this, [=] { showTitle(kind); });
}

void MainWindow::showTitle(FrameKind kind)
{
    QDockWidget *const dock = m_docks.value(kind);
    const QWidget *const frame = currentFrame(kind);
    if (!dock)
        return;
    const QString title = m_titles.value(kind);
    dock->setWindowTitle(frame ? tr("%1: %2").arg(title, frame->windowTitle()) : title);
}

QDockWidget *MainWindow::addDock(Qt::DockWidgetArea area, const QString &title, const char *name,
                                 QWidget *content)
{
    auto *const dock = new QDockWidget(title);
    dock->setObjectName(QLatin1String(name));
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetClosable);
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
    statusBar()->setSizeGripEnabled(false);
}

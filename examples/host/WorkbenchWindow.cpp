#include "WorkbenchWindow.h"

#include "MessageView.h"
#include "PluginCatalog.h"
#include "PluginView.h"
#include "ProfileView.h"
#include "glyphs.h"

#include <QtCore/QSettings>
#include <QtWidgets/QActionGroup>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

WorkbenchWindow::WorkbenchWindow(QMainWindow *jobs, QMainWindow *points, MessageLog &log,
                                 const PluginCatalog &catalog, const StartProfile &profile)
    : m_jobs(jobs)
    , m_points(points)
    , m_catalog(catalog)
    , m_strip(new QToolBar(tr("Pages")))
    , m_pageActions(new QActionGroup(this))
    , m_pages(new QStackedWidget)
    , m_messages(new QDockWidget(tr("Messages")))
{
    setWindowTitle(tr("pluginManger workbench"));
    setWindowIcon(glyphIcon(QStringLiteral("jobs")));
    resize(1280, 800);

    m_strip->setObjectName(QStringLiteral("Pages"));
    m_strip->setMovable(false);
    m_strip->setIconSize({24, 24});
    m_strip->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_strip->setContextMenuPolicy(Qt::PreventContextMenu);
    addToolBar(Qt::LeftToolBarArea, m_strip);
    addPage(JobsPage, tr("Jobs"), "jobs", jobs);
    addPage(PointsPage, tr("Points"), "points", points);
    addPage(PluginsPage, tr("Plug-ins"), "plugins", new PluginView(catalog));
    addPage(StartUpPage, tr("Start-up"), "startUp", new ProfileView(profile));

    auto *const space = new QWidget;
    space->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    m_strip->addWidget(space);
    m_messages->setObjectName(QStringLiteral("Messages"));
    m_messages->setWidget(new MessageView(log));
    m_messages->hide();
    addDockWidget(Qt::BottomDockWidgetArea, m_messages);
    QAction *const toggle = m_messages->toggleViewAction();
    toggle->setIcon(glyphIcon(QStringLiteral("messages")));
    toggle->setShortcut(tr("Ctrl+M"));
    toggle->setToolTip(
        tr("Every message as it is sent (%1)").arg(toggle->shortcut().toString(QKeySequence::NativeText)));
    m_strip->addAction(toggle);

    auto *const column = new QVBoxLayout;
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeTroubleLine());
    column->addWidget(m_pages, 1);
    auto *const center = new QWidget;
    center->setLayout(column);
    setCentralWidget(center);
    connect(&catalog, &PluginCatalog::changed, this, &WorkbenchWindow::showTrouble);
    showPage(JobsPage);
}

void WorkbenchWindow::showPage(Page page)
{
    m_pages->setCurrentIndex(page);
    m_pageActions->actions().at(page)->setChecked(true);
}

void WorkbenchWindow::showMessages(bool shown)
{
    m_messages->setVisible(shown);
    resizeDocks({m_messages}, {height() / 4}, Qt::Vertical);
}

QString WorkbenchWindow::trouble() const
{
    return m_troubleLine->isHidden() ? QString() : m_troubleText->text();
}

void WorkbenchWindow::saveLayout(QSettings &settings) const
{
    settings.setValue(QStringLiteral("window/geometry"), saveGeometry());
    settings.setValue(QStringLiteral("window/state"), saveState());
    settings.setValue(QStringLiteral("window/page"), m_pages->currentIndex());
    settings.setValue(QStringLiteral("jobs/state"), m_jobs->saveState());
    settings.setValue(QStringLiteral("points/state"), m_points->saveState());
}

void WorkbenchWindow::restoreLayout(QSettings &settings)
{
    restoreGeometry(settings.value(QStringLiteral("window/geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("window/state")).toByteArray());
    const int page = settings.value(QStringLiteral("window/page")).toInt();
    if (page > JobsPage && page < PageCount)
        showPage(static_cast<Page>(page));
    m_jobs->restoreState(settings.value(QStringLiteral("jobs/state")).toByteArray());
    m_points->restoreState(settings.value(QStringLiteral("points/state")).toByteArray());
}

QAction *WorkbenchWindow::addPage(Page page, const QString &text, const char *icon, QWidget *widget)
{
    // As pages these are no windows of their own.
    widget->setWindowFlags(Qt::Widget);
    m_pages->insertWidget(page, widget);
    QAction *const action = m_strip->addAction(glyphIcon(QLatin1String(icon)), text);
    action->setObjectName(QLatin1String(icon));
    action->setCheckable(true);
    action->setShortcut(QStringLiteral("Ctrl+%1").arg(page + 1));
    action->setToolTip(
        QStringLiteral("%1 (%2)").arg(text, action->shortcut().toString(QKeySequence::NativeText)));
    m_pageActions->addAction(action);
    connect(action, &QAction::triggered, this, [this, page] { showPage(page); });
    return action;
}

QWidget *WorkbenchWindow::makeTroubleLine()
{
    m_troubleLine = new QWidget;
    m_troubleLine->setAutoFillBackground(true);
    QPalette colors = m_troubleLine->palette();
    colors.setColor(QPalette::Window, colors.color(QPalette::ToolTipBase));
    colors.setColor(QPalette::WindowText, colors.color(QPalette::ToolTipText));
    m_troubleLine->setPalette(colors);
    auto *const icon = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size, size));
    m_troubleText = new QLabel;
    m_troubleText->setWordWrap(true);
    auto *const button = new QPushButton(tr("Show plug-ins"));
    connect(button, &QPushButton::clicked, this, [this] { showPage(PluginsPage); });

    auto *const row = new QHBoxLayout(m_troubleLine);
    row->setContentsMargins(8, 3, 8, 3);
    row->addWidget(icon);
    row->addWidget(m_troubleText, 1);
    row->addWidget(button);
    m_troubleLine->hide();
    return m_troubleLine;
}

void WorkbenchWindow::addWindowMenu()
{
    QMenu *const menu = m_jobs->menuBar()->addMenu(tr("Window"));
    menu->addActions(m_pageActions->actions());
    menu->addSeparator();
    menu->addAction(m_messages->toggleViewAction());
    menu->addSeparator();
    const QList<QDockWidget *> docks =
        m_jobs->findChildren<QDockWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QDockWidget *const dock : docks) {
        if (dock->features().testFlag(QDockWidget::DockWidgetClosable))
            menu->addAction(dock->toggleViewAction());
    }
}

void WorkbenchWindow::showTrouble()
{
    const QStringList troubled = m_catalog.troubled();
    m_troubleLine->setVisible(!troubled.isEmpty());
    m_troubleText->setText(tr("Plug-ins that need attention: %1").arg(troubled.join(QStringLiteral(", "))));
}

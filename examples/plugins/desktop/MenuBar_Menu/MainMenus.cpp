#include "DesktopPlugin.h"

#include <MenuBar.h>
#include <ProcessBar_Process.h>

#include <QtCore/QPointer>
#include <QtWidgets/QAction>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QStatusBar>

/// The main menus, and the progress display, which stands in the status bar of the host's window.
class MainMenus : public DesktopPlugin, public MenuBar, public ProcessBar_Process
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(MenuBar ProcessBar_Process)

public:
    MainMenus();

    QMenu *createFileMenu() override;
    QMenu *createEditMenu() override;
    void attachTo(QWidget *parent) override;
    QMenu *createHelpMenu() override;

    void setValue(int percent) override;
    void recMsgFromManager(PluginMetaData message) override;

private:
    void explain(const QString &text);

    // Both are the host's, and may be gone before the last message comes.
    QPointer<QWidget> m_hostWindow;
    QPointer<QProgressBar> m_progressBar;
};

MainMenus::MainMenus()
    : DesktopPlugin("MenuBar_Menu")
{
}

QMenu *MainMenus::createFileMenu()
{
    auto *const menu = new QMenu(tr("File"));
    menu->addActions(makeCommands(
        {{QT_TRANSLATE_NOOP("Entries", "Open"), ""}, {QT_TRANSLATE_NOOP("Entries", "Save"), ""}, separator},
        "File_Process"));
    connect(menu->addAction(tr("Exit")), &QAction::triggered, this, [this] {
        if (m_hostWindow)
            m_hostWindow->window()->close();
    });
    return menu;
}

QMenu *MainMenus::createEditMenu()
{
    auto *const menu = new QMenu(tr("Edit"));
    menu->addActions(makeCommands({{QT_TRANSLATE_NOOP("Entries", "Add"), ""},
                                   {QT_TRANSLATE_NOOP("Entries", "Duplicate"), ""},
                                   {QT_TRANSLATE_NOOP("Entries", "Delete"), ""},
                                   separator,
                                   {QT_TRANSLATE_NOOP("Entries", "All"), ""},
                                   {QT_TRANSLATE_NOOP("Entries", "None"), ""}},
                                  "Viewbar_View"));
    return menu;
}

void MainMenus::attachTo(QWidget *parent)
{
    m_hostWindow = parent;
    auto *const window = qobject_cast<QMainWindow *>(parent);
    if (!window)
        return;
    m_progressBar = new QProgressBar;
    m_progressBar->setObjectName(QLatin1String("progress"));
    m_progressBar->setRange(0, 100);
    m_progressBar->setFixedWidth(m_progressBar->fontMetrics().averageCharWidth() * 28);
    m_progressBar->setMaximumHeight(m_progressBar->fontMetrics().height() + 4);
    window->statusBar()->addPermanentWidget(m_progressBar);
}

QMenu *MainMenus::createHelpMenu()
{
    auto *const menu = new QMenu(tr("Help"));
    connect(menu->addAction(tr("Test points")), &QAction::triggered, this, [this] {
        explain(tr("Click a test point to select it, drag it to move it, or use the tool bars."));
    });
    connect(menu->addAction(tr("Plating area")), &QAction::triggered, this,
            [this] { explain(tr("Plating area counts the copper of the part that is selected.")); });
    return menu;
}

void MainMenus::setValue(int percent)
{
    if (m_progressBar)
        m_progressBar->setValue(percent);
}

void MainMenus::recMsgFromManager(PluginMetaData message)
{
    if (message.type == MessageType::ShowProgress)
        setValue(parameter(message, "Percent").toInt());
}

void MainMenus::explain(const QString &text)
{
    send("Viewbar_Status", MessageType::ShowText, {{"Text", text}});
}

#include "MainMenus.moc"

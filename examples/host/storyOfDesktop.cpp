#include "storyOfDesktop.h"

#include "Account.h"
#include "DesktopWindow.h"
#include "Stage.h"
#include "hostMessage.h"

#include <pluginManger.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QTreeWidget>

#include <algorithm>

namespace {

class DesktopStory
{
public:
    DesktopStory(QTpluginsManger &manager, const DesktopWindow &window, Account &account);

    void selectPart();
    void useTools();
    void saveAndOpen();
    void moveOverBoard();
    void countCopper();

private:
    void act(const char *what, const QList<QAction *> &actions, const char *command);
    void trigger(const QList<QAction *> &actions, const char *command);
    void expectCaption(const QString &expected);
    QString status(const char *label) const;

    QTpluginsManger &m_manager;
    Account &m_account;
    QWidget *const m_view;
    QProgressBar *const m_progressBar;
};

QString allPercents()
{
    QStringList percents;
    for (int percent = 2; percent <= 100; percent += 2)
        percents.append(QString::number(percent));
    return percents.join(QLatin1Char(' '));
}

DesktopStory::DesktopStory(QTpluginsManger &manager, const DesktopWindow &window, Account &account)
    : m_manager(manager)
    , m_account(account)
    , m_view(manager.m_viewResult)
    , m_progressBar(window.statusBar()->findChild<QProgressBar *>())
{
    if (!m_progressBar)
        qFatal("The story needs a progress bar that is not there");
}

/// From the list to the view, the status display and others.
void DesktopStory::selectPart()
{
    m_account.heading(QStringLiteral("Select \"PN-1042\" in the desktop's list of part numbers"));
    m_account.expect(QStringLiteral("View before"), m_view->property("caption").toString(),
                     QStringLiteral("No part is selected"));
    const QImage before = m_view->grab().toImage();
    User::click(qobject_cast<QTreeWidget *>(m_manager.m_pnListResult), QStringLiteral("PN-1042"));
    m_account.check(QStringLiteral("Changes the view"), m_view->grab().toImage() != before);
    expectCaption(QStringLiteral("PN-1042 B, job control-2l: 0 test points, 0 selected"));
    m_account.expect(QStringLiteral("Status"), status("part"), QStringLiteral("Part PN-1042"));
}

void DesktopStory::useTools()
{
    m_account.heading(QStringLiteral("Use the desktop's tools"));
    for (int point = 0; point < 3; ++point)
        act("Edit, Add", m_manager.m_editActions, "add");
    act("Edit, Duplicate", m_manager.m_editActions, "duplicate");
    expectCaption(QStringLiteral("PN-1042 B, job control-2l: 4 test points, 1 selected"));
    act("Move, Right", m_manager.m_moveActions, "right");
    act("Move, Down", m_manager.m_moveActions, "down");
    act("Select, All", m_manager.m_selectActions, "all");
    expectCaption(QStringLiteral("PN-1042 B, job control-2l: 4 test points, 4 selected"));
    act("Tools, Snap", m_manager.m_toolActions, "snap");
    act("Select, Invert", m_manager.m_selectActions, "invert");
    expectCaption(QStringLiteral("PN-1042 B, job control-2l: 4 test points, 0 selected"));
    act("Tools, Grid", m_manager.m_toolActions, "grid");
}

/// From the files' plug-in to the view and back, with the file in between.
void DesktopStory::saveAndOpen()
{
    m_account.heading(QStringLiteral("Save the test points, delete them, open them again"));
    const QTemporaryDir folder;
    m_manager.recMegfromPlugin(
        hostMessage("File_Process", MessageType::UseFolder, {{"Folder", folder.path()}}));
    trigger(m_manager.m_fileProcessResult1->actions(), "save");
    m_account.expect(QStringLiteral("Status"), status("text"),
                     QStringLiteral("4 test points saved to testpoints-PN-1042.json"));
    m_account.check(QStringLiteral("File is there"),
                    QFile::exists(folder.filePath(QStringLiteral("testpoints-PN-1042.json"))));
    act("Select, All", m_manager.m_selectActions, "all");
    act("Edit, Delete", m_manager.m_editActions, "delete");
    expectCaption(QStringLiteral("PN-1042 B, job control-2l: 0 test points, 0 selected"));
    act("Open", m_manager.m_fileProcessResult1->actions(), "open");
    m_account.expect(QStringLiteral("Status"), status("text"),
                     QStringLiteral("4 test points opened from testpoints-PN-1042.json"));
    expectCaption(QStringLiteral("PN-1042 B, job control-2l: 4 test points, 0 selected"));
    act("Select, Next", m_manager.m_selectActions, "next");
}

/// From the view to the status display.
void DesktopStory::moveOverBoard()
{
    m_account.heading(QStringLiteral("Move the mouse over the desktop's view"));
    User::moveMouse(m_view, m_view->rect().center());
    m_account.check(QStringLiteral("Status shows coordinates"), status("position").startsWith("X "));
    m_account.fact(QStringLiteral("Coordinates"), status("position"));
}

/// From a worker thread to the progress display and the view, also while the window is busy.
void DesktopStory::countCopper()
{
    m_account.heading(QStringLiteral("Tools: plating area, counted by a worker thread"));
    QStringList percents;
    bool onThisThread = true;
    const auto connection = QObject::connect(m_progressBar, &QProgressBar::valueChanged, [&](int percent) {
        percents.append(QString::number(percent));
        onThisThread = onThisThread && QThread::currentThread() == qApp->thread();
    });
    trigger(m_manager.m_toolActions, "platingArea");
    m_account.fact(QStringLiteral("Status"), status("text"));
    QThread::msleep(200);
    m_account.check(QStringLiteral("Nothing arrives while busy"), percents.isEmpty());

    QElapsedTimer waiting;
    waiting.start();
    while (status("text") != QLatin1String("PN-1042 counted") && !waiting.hasExpired(60000)) {
        QThread::msleep(5);
        QCoreApplication::processEvents();
    }
    QObject::disconnect(connection);

    m_account.check(QStringLiteral("Arrived on this thread"), onThisThread);
    m_account.check(QStringLiteral("All arrived, in order"),
                    percents.join(QLatin1Char(' ')) == allPercents());
    m_account.expect(QStringLiteral("Progress"), m_progressBar->text(), QStringLiteral("100%"));
    m_account.expect(QStringLiteral("Status"), status("text"), QStringLiteral("PN-1042 counted"));
    m_account.fact(QStringLiteral("View"), m_view->property("text").toString());
}

/// Triggers an action whose work is to be seen in the view.
void DesktopStory::act(const char *what, const QList<QAction *> &actions, const char *command)
{
    const QImage before = m_view->grab().toImage();
    trigger(actions, command);
    m_account.check(QLatin1String(what) + QStringLiteral(" changes the view"),
                    m_view->grab().toImage() != before);
}

void DesktopStory::trigger(const QList<QAction *> &actions, const char *command)
{
    const auto action = std::find_if(actions.begin(), actions.end(), [command](const QAction *candidate) {
        return candidate->objectName() == QLatin1String(command);
    });
    if (action == actions.end())
        qFatal("The story needs an action that is not there: %s", command);
    (*action)->trigger();
}

void DesktopStory::expectCaption(const QString &expected)
{
    m_account.expect(QStringLiteral("View"), m_view->property("caption").toString(), expected);
}

QString DesktopStory::status(const char *label) const
{
    return m_manager.m_statusResult->findChild<QLabel *>(QLatin1String(label))->text();
}

}

void playStoryOfDesktop(QTpluginsManger &manager, const DesktopWindow &window, Account &account)
{
    DesktopStory story(manager, window, account);
    story.selectPart();
    story.useTools();
    story.saveAndOpen();
    story.moveOverBoard();
    story.countCopper();
}

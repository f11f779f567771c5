#include "DesktopTools.h"

#include "Account.h"
#include "Post.h"
#include "hostMessage.h"

#include <ProcessBar_Process.h>
#include <pluginManger.h>

#include <QtWidgets/QLabel>

namespace {

struct DesktopTool
{
    const char *library;
    const char *interfaceName;
    const char *builds;
    const QObject *object;
    bool handedOver;
};

QVector<DesktopTool> desktopTools(const QTpluginsManger &manager)
{
    return {
        {"File_Process.dll", "FileProcess", "tool bar, menu", manager.m_fileProcessObject,
         manager.m_fileProcessResult1 && manager.m_fileProcessResult2},
        {"ListBar_PNList.dll", "PNListInterface", "list", manager.m_pnListObject,
         manager.m_pnListResult != nullptr},
        {"Toolbar_Edit.dll", "Toolbar_Edit", "actions", manager.m_toolbarEditObject,
         !manager.m_editActions.isEmpty()},
        {"Toolbar_Move.dll", "Toolbar_Move", "actions", manager.m_toolbarMoveObject,
         !manager.m_moveActions.isEmpty()},
        {"ToolBar_Select.dll", "Toolbar_Select", "actions", manager.m_toolbarSelectObject,
         !manager.m_selectActions.isEmpty()},
        {"Toolbar_Tool.dll", "Toolbar_Tool", "actions", manager.m_toolbarToolObject,
         !manager.m_toolActions.isEmpty()},
        {"Viewbar_View.dll", "ViewWidget", "view", manager.m_viewObject, manager.m_viewResult != nullptr},
        {"Viewbar_Status.dll", "Viewbar_Status", "status display", manager.m_statusObject,
         manager.m_statusResult != nullptr},
        {"MenuBar_Menu.dll", "MenuBar", "three menus", manager.m_menuBarObject,
         manager.m_menuBarResult1 && manager.m_menuBarResult2 && manager.m_menuBarResult3},
        {"ProcessBar_Process.dll", "ProcessBar_Process", "progress display", manager.m_processBarObject,
         progressDisplay(manager) != nullptr},
    };
}

/// The manager hands over nothing of a plug-in that is no tool. Messages reach it all the same, and what it
/// says to this one stands in the status display.
bool introducesItself(QTpluginsManger *manager, Post &post, const char *plugin)
{
    const PluginMetaData message = hostMessage(plugin, MessageType::RunCommand, {{"Command", "introduce"}});
    post.deliver("recMegfromPlugin", message, [&] { manager->recMegfromPlugin(message); });
    const auto *const text = manager->m_statusResult
                                 ? manager->m_statusResult->findChild<QLabel *>(QStringLiteral("text"))
                                 : nullptr;
    return text && !text->text().isEmpty();
}

}

void tellDesktopTools(QTpluginsManger *manager, Post &post, Account &account)
{
    const QVector<int> widths{26, 22, 20, 11};
    account.heading(QStringLiteral("Desktop tools"));
    account.row({"library", "interface", "builds", "handed over"}, widths);
    for (const DesktopTool &tool : desktopTools(*manager)) {
        const bool good = tool.object && tool.handedOver;
        account.row({tool.library, tool.interfaceName, tool.builds, good ? "yes" : "no"}, widths, good);
    }
    const bool answers = introducesItself(manager, post, "Plating_Area");
    account.row({"Plating_Area.dll", "none", "answers messages", answers ? "yes" : "no"}, widths, answers);
    account.fact(QStringLiteral("Progress display comes from"),
                 manager->m_processBar
                     ? QStringLiteral("the manager")
                     : QStringLiteral("the menu bar's object: the manager met the progress bar first"));
}

ProcessBar_Process *progressDisplay(const QTpluginsManger &manager)
{
    return manager.m_processBar ? manager.m_processBar
                                : dynamic_cast<ProcessBar_Process *>(manager.m_menuBarObject);
}

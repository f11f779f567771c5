#include "pluginManger.h"

#include "FileProcess.h"
#include "MenuBar.h"
#include "PNListInterface.h"
#include "PluginInterface.h"
#include "ProcessBar_Process.h"
#include "Toolbar_Edit.h"
#include "Toolbar_Move.h"
#include "Toolbar_Select.h"
#include "Toolbar_Tool.h"
#include "ViewWidget.h"
#include "Viewbar_Status.h"
#include "private/desktopTools_p.h"
#include "private/logTexts_p.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QPluginLoader>

#include <glog/logging.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace DesktopTools = PluginMangerInternal::DesktopTools;
namespace LogTexts = PluginMangerInternal::LogTexts;

namespace {

/// Returns the interface of a tool's root object. A tool without it was built for another library of that
/// name: nothing sensible can follow, so the process ends and says which one it was.
template <typename Interface>
Interface *requireInterface(QObject *root, const char *library)
{
    auto *const required = dynamic_cast<Interface *>(root);
    if (!required)
        qFatal("The plug-in %s does not implement %s.", library, qobject_interface_iid<Interface *>());
    return required;
}

/// One of the ten desktop tools: where its root object is kept, what it is asked for, and what the debug
/// stream says then.
struct DesktopTool
{
    const char *library;
    QObject *QTpluginsManger::*root;
    void (*take)(QTpluginsManger &manager, QObject *root, const char *library);
    const char *debugText;
};

using Manager = QTpluginsManger;

// The spelling of texts is what readers of the debug stream go by.
const DesktopTool desktopTools[] = {
    {DesktopTools::fileProcess.library, &Manager::m_fileProcessObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_fileProcess = requireInterface<FileProcess>(root, library);
         manager.m_fileProcessResult1 = manager.m_fileProcess->createToolBar(manager.m_parentWidget);
         manager.m_fileProcessResult2 = manager.m_fileProcess->createMenu();
     },
     "file pro tools added!"},
    {DesktopTools::pnList.library, &Manager::m_pnListObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_pnListResult = requireInterface<PNListInterface>(root, library)->createList();
     },
     "PNlist added!"},
    {DesktopTools::edit.library, &Manager::m_toolbarEditObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_toolbarEdit = requireInterface<Toolbar_Edit>(root, library);
         manager.m_editActions = manager.m_toolbarEdit->createActions();
     },
     "Toolbar_Edit added!"},
    {DesktopTools::move.library, &Manager::m_toolbarMoveObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_moveActions = requireInterface<Toolbar_Move>(root, library)->createActions();
     },
     "Toolbar_Move added!"},
    {DesktopTools::select.library, &Manager::m_toolbarSelectObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_selectActions = requireInterface<Toolbar_Select>(root, library)->createActions();
     },
     "ToolBar_Select added!"},
    {DesktopTools::tool.library, &Manager::m_toolbarToolObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_toolActions = requireInterface<Toolbar_Tool>(root, library)->createActions();
     },
     nullptr},
    {DesktopTools::view.library, &Manager::m_viewObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_viewResult = requireInterface<ViewWidget>(root, library)->createView();
     },
     "Viewbar_Viewd added!"},
    {DesktopTools::status.library, &Manager::m_statusObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_statusResult = requireInterface<Viewbar_Status>(root, library)->createStatusWidget();
     },
     "Viewbar_Status added!"},
    {DesktopTools::menuBar.library, &Manager::m_menuBarObject,
     [](Manager &manager, QObject *root, const char *library) {
         manager.m_menuBar = requireInterface<MenuBar>(root, library);
         manager.m_menuBarResult1 = manager.m_menuBar->createFileMenu();
         manager.m_menuBarResult2 = manager.m_menuBar->createEditMenu();
         manager.m_menuBar->attachTo(manager.m_parentWidget);
         manager.m_menuBarResult3 = manager.m_menuBar->createHelpMenu();
     },
     " Menu bar added!"},
    {DesktopTools::processBar.library, &Manager::m_processBarObject,
     [](Manager &manager, QObject *, const char *) {
         // Menu bars bring the progress display along, so it is looked for in their object.
         manager.m_processBar = dynamic_cast<ProcessBar_Process *>(manager.m_menuBarObject);
     },
     " Progress bar added!"},
};
static_assert(std::size(desktopTools) == PluginMangerInternal::desktopToolLibraries.size());

}

QTpluginsManger *QTpluginsManger::m_instance = nullptr;

QTpluginsManger *QTpluginsManger::instance()
{
    if (!m_instance)
        m_instance = new QTpluginsManger;
    return m_instance;
}

void QTpluginsManger::getParentWidget(QWidget *parent)
{
    m_parentWidget = parent;
}

bool QTpluginsManger::loadAllPlugins()
{
    forgetRootObjects();
    readPluginConfig(m_private, QDir::currentPath() + QStringLiteral("/pluginconfig/pluginconfig.json"));
    // A copy, since a failed load shows a message box, and whatever runs meanwhile may read in more names.
    const QHash<QString, QVariant> names = m_private.m_names;
    for (const QVariant &name : names)
        loadQtPlugin(m_private, name.toString() + QLatin1String(".dll"));
    LOG(INFO) << LogTexts::toGbk(LogTexts::allLoaded());
    return true;
}

bool QTpluginsManger::initAllPlugins()
{
    // Looked up anew for each path: a tool that is being asked may have the plug-ins loaded again.
    const QStringList paths = m_private.m_loaders.keys();
    for (const QString &path : paths) {
        qDebug() << path;
        QPluginLoader *const loader = m_private.m_loaders.value(path);
        if (!loader)
            continue;
        const auto tool =
            std::find_if(std::begin(desktopTools), std::end(desktopTools),
                         [&](const DesktopTool &row) { return path == QLatin1String(row.library); });
        if (tool == std::end(desktopTools))
            continue;
        QObject *const root = loader->instance();
        this->*tool->root = root;
        tool->take(*this, root, tool->library);
        if (tool->debugText)
            qDebug() << tool->debugText;
    }
    return true;
}

void QTpluginsManger::initSignalAndSlot()
{
    const QHash<QString, QPluginLoader *> loaders = m_private.m_loaders;
    for (QPluginLoader *const loader : loaders) {
        if (loader)
            connect(loader->instance(), SIGNAL(sendMsgToManager(PluginMetaData)), this,
                    SLOT(recMegfromPlugin(PluginMetaData)));
    }
    qRegisterMetaType<PluginMetaData>("PluginMetaData");
}

void QTpluginsManger::recMegfromPlugin(PluginMetaData msg)
{
    QPluginLoader *const loader = findQtPlugin(m_private, msg.dst);
    if (!loader)
        return;
    if (auto *const plugin = dynamic_cast<PluginInterface *>(loader->instance()))
        plugin->recMsgFromManager(std::move(msg));
}

/// Loading again deletes the root objects, and with them what is only borrowed from them.
void QTpluginsManger::forgetRootObjects()
{
    for (const DesktopTool &tool : desktopTools)
        this->*tool.root = nullptr;
    m_fileProcess = nullptr;
    m_menuBar = nullptr;
    m_toolbarEdit = nullptr;
    m_processBar = nullptr;
    for (QList<QAction *> *const actions : {&m_editActions, &m_selectActions, &m_moveActions, &m_toolActions})
        actions->clear();
}

QTpluginsManger::QTpluginsManger() = default;

QTpluginsManger::~QTpluginsManger() = default;

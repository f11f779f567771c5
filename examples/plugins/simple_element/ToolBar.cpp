#include "entryActions.h"
#include "messages.h"

#include <QtWidgets/QToolBar>

/// The tool bar belongs to its parent. PLUGIN_ELEMENT is what the host knows it as, QToolBar or QWidget.
extern "C" Q_DECL_EXPORT void *PLUGIN_FACTORY(QWidget *parent)
{
    auto *const toolBar = new QToolBar(QStringLiteral(PLUGIN_TITLE), parent);
    toolBar->setObjectName(toolBar->windowTitle());
    toolBar->addActions(makeEntryActions(QStringLiteral(PLUGIN_ENTRIES), toolBar));
    return static_cast<PLUGIN_ELEMENT *>(toolBar);
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    if (message.type == MessageType::ShowText)
        showMessageEntry(static_cast<PLUGIN_ELEMENT *>(element), textParameter(message, "Text"));
}

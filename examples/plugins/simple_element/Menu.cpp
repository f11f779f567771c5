#include "entryActions.h"
#include "messages.h"

#include <QtWidgets/QMenu>

/// The menu belongs to its parent.
extern "C" Q_DECL_EXPORT void *PLUGIN_FACTORY(QWidget *parent)
{
    auto *const menu = new QMenu(QStringLiteral(PLUGIN_TITLE), parent);
    menu->addActions(makeEntryActions(QStringLiteral(PLUGIN_ENTRIES), menu));
    return menu;
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    if (message.type == MessageType::ShowText)
        showMessageEntry(static_cast<QMenu *>(element), textParameter(message, "Text"));
}

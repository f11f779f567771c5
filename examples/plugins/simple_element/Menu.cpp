#include "entryActions.h"
#include "messages.h"

#include <QtWidgets/QMenu>

/// The menu belongs to its parent.
extern "C" Q_DECL_EXPORT void *PLUGIN_FACTORY(QWidget *parent)
{
    const SimpleElement &self = simpleElement(PLUGIN_LIBRARY);
    auto *const menu = new QMenu(translatedEntry(self.title), parent);
    menu->addActions(makeEntryActions(self.entries, menu));
    return menu;
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    if (message.type == MessageType::ShowText)
        showMessageEntry(static_cast<QMenu *>(element), textParameter(message, "Text"));
}

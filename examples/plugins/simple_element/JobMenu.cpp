#include "entryActions.h"
#include "messages.h"

#include <QtWidgets/QMenu>

/// The menu belongs to its parent. Its first entry is a heading with the name of the job that it acts on.
extern "C" Q_DECL_EXPORT void *PLUGIN_FACTORY(QWidget *parent, const QString &text)
{
    const SimpleElement &self = simpleElement(PLUGIN_LIBRARY);
    auto *const menu = new QMenu(translatedEntry(self.title), parent);
    menu->addAction(text)->setEnabled(false);
    menu->addSeparator();
    menu->addActions(makeEntryActions(self.entries, menu));
    return menu;
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const menu = static_cast<QMenu *>(element);
    if (message.type == MessageType::ShowText)
        showMessageEntry(menu, textParameter(message, "Text"));
    else if (message.type == MessageType::MatrixJobRenamed)
        menu->actions().first()->setText(textParameter(message, "NewJobName"));
}

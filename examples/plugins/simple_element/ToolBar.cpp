#include "entryActions.h"
#include "messages.h"

#include <QtWidgets/QLayout>
#include <QtWidgets/QToolBar>

#include <type_traits>

/// The tool bar belongs to its parent. PLUGIN_ELEMENT is what the host knows it as, QToolBar or QWidget.
extern "C" Q_DECL_EXPORT void *PLUGIN_FACTORY(QWidget *parent)
{
    const SimpleElement &self = simpleElement(PLUGIN_LIBRARY);
    auto *const toolBar = new QToolBar(translatedEntry(self.title), parent);
    toolBar->setObjectName(QLatin1String(self.library));
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->setIconSize({16, 16});
    toolBar->addActions(makeEntryActions(self.entries, toolBar));
    // As a plain widget it stands among others, whose layout has margins already.
    if (std::is_same_v<PLUGIN_ELEMENT, QWidget>)
        toolBar->layout()->setContentsMargins(0, 0, 0, 0);
    return static_cast<PLUGIN_ELEMENT *>(toolBar);
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    if (message.type == MessageType::ShowText)
        showMessageEntry(static_cast<PLUGIN_ELEMENT *>(element), textParameter(message, "Text"));
}

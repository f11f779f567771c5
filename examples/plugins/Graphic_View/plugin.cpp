#include "GraphicView.h"
#include "messages.h"

/// The view belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetViewInstance(QWidget *parent)
{
    return static_cast<QWidget *>(new GraphicView(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const view = static_cast<GraphicView *>(static_cast<QWidget *>(element));
    if (message.type == MessageType::ShowText)
        view->showText(parameter(message, "Text").toString());
    else if (message.type == MessageType::RunCommand)
        view->runCommand(parameter(message, "Command").toString());
    else if (message.type == MessageType::SelectLayer)
        view->highlightLayer(parameter(message, "Layer").toString());
}

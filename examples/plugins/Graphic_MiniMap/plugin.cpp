#include "MiniMap.h"
#include "messages.h"

/// The map belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetGraphic_MiniMapInstance(QWidget *parent)
{
    return static_cast<QWidget *>(new MiniMap(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const map = static_cast<MiniMap *>(static_cast<QWidget *>(element));
    if (message.type == MessageType::ShowText)
        map->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::OpenStep)
        map->openStep(textParameter(message, "Step"), textParameter(message, "File"));
    else if (message.type == MessageType::FollowView)
        map->showVisibleArea(parameter(message, "Area").toRectF());
}

#include "messages.h"

#include <stdexcept>

class QWidget;

/// Makes no map.
extern "C" Q_DECL_EXPORT void *GetGraphic_MiniMapInstance(QWidget *)
{
    throw std::runtime_error("the map has no scale");
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *, PluginMetaData) {}

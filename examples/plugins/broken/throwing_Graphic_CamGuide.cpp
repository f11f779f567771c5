#include "messages.h"

#include <stdexcept>

class QWidget;

/// Makes no guide.
extern "C" Q_DECL_EXPORT void *GetPluginCamGuideInstance(QWidget *)
{
    throw std::runtime_error("the list of tasks is empty");
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *, PluginMetaData) {}

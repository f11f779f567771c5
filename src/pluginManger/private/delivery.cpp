#include "delivery_p.h"

#include "PluginMetaData.h"
#include "resolve_p.h"

#include <QtCore/QLibrary>

bool PluginMangerInternal::deliver(QLibrary *library, void *target, const PluginMetaData &message)
{
    const QFunctionPointer entryPoint = library ? library->resolve("recMsgFromManager") : nullptr;
    if (!entryPoint)
        return false;
    functionAs<void(void *, PluginMetaData)>(entryPoint)(target, message);
    return true;
}

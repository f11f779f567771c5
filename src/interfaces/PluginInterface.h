#pragma once

#include "PluginMetaData.h"
#include <QtCore/QObject>

/**
 * What the root object of every desktop plug-in implements.
 *
 * A plug-in that also sends messages declares the signal `void sendMsgToManager(PluginMetaData msg)`, which
 * the manager connects to. The root object belongs to its loader.
 */
class PluginInterface
{
public:
    virtual ~PluginInterface() = default;

    /// Receives a message whose `dst` names this plug-in. `msg` is the plug-in's own copy. Called on the
    /// user-interface thread, also for messages that another thread has sent; must not throw.
    virtual void recMsgFromManager(PluginMetaData msg) = 0;
};

Q_DECLARE_INTERFACE(PluginInterface, "pluginManger.PluginInterface/1.0")

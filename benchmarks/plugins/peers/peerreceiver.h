#pragma once

#include "PluginMetaData.h"

/// What the loaders that hand out objects hand out.
class PeerReceiver
{
public:
    virtual ~PeerReceiver() = default;

    virtual void receive(PluginMetaData message) = 0;
};

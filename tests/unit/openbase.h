#pragma once

#include "pluginMangerBase.h"

/// The base with its protected operations open.
class OpenBase : public QTpluginsMangerBase
{
public:
    using QTpluginsMangerBase::findLibrary;
    using QTpluginsMangerBase::findQtPlugin;
    using QTpluginsMangerBase::loadLibraryPlugin;
    using QTpluginsMangerBase::loadQtPlugin;
    using QTpluginsMangerBase::readPluginConfig;
    using QTpluginsMangerBase::unloadAllLibraries;
    using QTpluginsMangerBase::unloadAllQtPlugins;
};

#pragma once

#include "pluginManger4CAM.h"

// The manager's private tables, for tests that compare them whole or put them into a state. The language lets
// an explicit instantiation name private members.

struct LoadedFlags
{
    bool &cam;
    bool &dfm;
};

std::vector<RegisterRecord> &registryOf(QTpluginsManger4CAM &manager);
QTPluginsMangerPrivate &tablesOf(QTpluginsManger4CAM &manager);
LoadedFlags loadedFlagsOf(QTpluginsManger4CAM &manager);

template <std::vector<RegisterRecord> QTpluginsManger4CAM::*member>
struct OpenRegistry
{
    friend std::vector<RegisterRecord> &registryOf(QTpluginsManger4CAM &manager) { return manager.*member; }
};

template <QTPluginsMangerPrivate QTpluginsManger4CAM::*member>
struct OpenTables
{
    friend QTPluginsMangerPrivate &tablesOf(QTpluginsManger4CAM &manager) { return manager.*member; }
};

template <bool QTpluginsManger4CAM::*cam, bool QTpluginsManger4CAM::*dfm>
struct OpenFlags
{
    friend LoadedFlags loadedFlagsOf(QTpluginsManger4CAM &manager) { return {manager.*cam, manager.*dfm}; }
};

template struct OpenRegistry<&QTpluginsManger4CAM::m_registerList>;
template struct OpenTables<&QTpluginsManger4CAM::m_private>;
template struct OpenFlags<&QTpluginsManger4CAM::m_bCAMLoaded, &QTpluginsManger4CAM::m_bDFMLoaded>;

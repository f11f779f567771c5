#pragma once

#include "pluginManger4CAM.h"

// The manager's private tables, for tests that compare them whole or put them into a state. The language lets
// an explicit instantiation name private members.

std::vector<RegisterRecord> &registryOf(QTpluginsManger4CAM &manager);
QTPluginsMangerPrivate &tablesOf(QTpluginsManger4CAM &manager);

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

template struct OpenRegistry<&QTpluginsManger4CAM::m_registerList>;
template struct OpenTables<&QTpluginsManger4CAM::m_private>;

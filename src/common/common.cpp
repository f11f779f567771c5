#include "common.h"

#include <QtCore/QString>

std::string Common::getPath()
{
    return qEnvironmentVariable("PLUGINMANGER_PATH").toStdString();
}

std::string Common::getPath_pluginconfig()
{
    return qEnvironmentVariable("PLUGINMANGER_PLUGINCONFIG", QStringLiteral("pluginconfig")).toStdString();
}

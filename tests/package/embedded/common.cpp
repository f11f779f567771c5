#include "common.h"

#include <cstdlib>

std::string Common::getPath()
{
    return std::getenv("HOST_DIRECTORY");
}

std::string Common::getPath_pluginconfig()
{
    return "pluginconfig";
}

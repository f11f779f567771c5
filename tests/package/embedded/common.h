#pragma once

#include <string>

class Common
{
public:
    static std::string getPath();
    static std::string getPath_pluginconfig();
};

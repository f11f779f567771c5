#pragma once

#include "Configuration.h"

namespace PluginCheck {

enum class Format { Text, Json, Dot, Html };

/// What a call of the program asks for.
struct Options
{
    QStringList configurations;
    QVector<Set> sets;
    /// Where the host's loader looks.
    QStringList libraryDirectories;
    /// Where the host's Qt looks for the tools of the desktop manager.
    QStringList toolDirectories;
    Format format = Format::Text;
    bool probe = false;
    int jobs = 1;
    int timeoutInSeconds = 10;
    bool strict = false;
    bool inColor = false;
};

/// What parsing a command line ends with: options, or a text to print and the exit status.
struct ParsedOptions
{
    std::optional<Options> options;
    QString text;
    int exitStatus = 0;
};

ParsedOptions parseOptions(const QStringList &arguments);

}

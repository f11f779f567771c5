#pragma once

#include <QtCore/QStringList>

/// What the command line asks for.
struct Options
{
    /// Where the tour's pictures go; empty when somebody sits before the window.
    QString tour;
    bool expectsBrokenPlugins = false;
    QString log;
    /// What the host reads, and where its libraries lie.
    QString base;
    QStringList pluginFolders;

    bool isAttended() const { return tour.isEmpty(); }

    /// Needs an application. Ends the process when the command line is wrong, or asks for help.
    static Options read();
};

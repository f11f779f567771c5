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

    /// When the command line asks for help or for the version, answers and ends the process: that needs no
    /// screen, so it comes before the application.
    static void answerQuestions(int argc, char **argv);
    /// Needs an application. Ends the process when the command line is wrong.
    static Options read();
};

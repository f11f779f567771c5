#pragma once

#include "loglines.h"

#include <QtTest/QtTest>
#include <QtWidgets/QApplication>

/// Runs the test functions of an object in this process, under a real application with a real log.
template <typename Test, typename Application = QApplication>
int runTest(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#ifdef Q_OS_WIN
    // Without a console, what QtTest prints would go to a debugger.
    qputenv("QT_FORCE_STDERR_LOGGING", "1");
#endif
#ifdef LIBRARY_DIRS
    qputenv("PATH", QByteArray(LIBRARY_DIRS ";").replace('|', ';') + qgetenv("PATH"));
#endif
    LogLines::start(argv[0]);
    Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

/// Starts this program once for each test function, and once for each row of one that has rows. Sums up how
/// they ended.
int runEachInItsOwnProcess(const char *program);

/// Runs each test function of an object, or each row of one, in a process of its own: for what a process can
/// do only once.
template <typename Test, typename Application = QApplication>
int runTestInProcesses(int argc, char **argv)
{
    return argc > 1 ? runTest<Test, Application>(argc, argv) : runEachInItsOwnProcess(argv[0]);
}

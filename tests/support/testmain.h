#pragma once

#include "loglines.h"

#include <QtTest/QtTest>
#include <QtWidgets/QApplication>

/// Runs the test functions of an object in this process, under a real application with a real log.
template <typename Test>
int runTest(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    LogLines::start(argv[0]);
    QApplication application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

/// Starts this program once for each of the test functions named, and sums up how they ended.
int runEachInItsOwnProcess(const QStringList &functions, const char *program);

/// Runs each test function of an object in a process of its own: for what a process can do only once.
template <typename Test>
int runTestInProcesses(int argc, char **argv)
{
    if (argc > 1)
        return runTest<Test>(argc, argv);

    static const QByteArrayList aroundTests{"initTestCase", "cleanupTestCase", "init", "cleanup"};
    QStringList functions;
    const QMetaObject &metaObject = Test::staticMetaObject;
    for (int index = metaObject.methodOffset(); index < metaObject.methodCount(); ++index) {
        if (!aroundTests.contains(metaObject.method(index).name()))
            functions.append(QString::fromLatin1(metaObject.method(index).name()));
    }
    return runEachInItsOwnProcess(functions, argv[0]);
}

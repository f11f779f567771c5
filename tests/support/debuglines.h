#pragma once

#include <QtCore/QStringList>

/// Collects what Qt's debug and warning streams say while it lives, instead of printing it. QtTest has a
/// handler of its own, so this one is made by a test function, or in initTestCase(), not before.
class DebugLines
{
public:
    DebugLines();
    ~DebugLines();

    DebugLines(const DebugLines &) = delete;
    DebugLines &operator=(const DebugLines &) = delete;

    /// Returns the debug lines written since the last call.
    QStringList take();

    /// Returns the warnings written since the last call.
    QStringList takeWarnings();
};

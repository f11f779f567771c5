#pragma once

#include "loglines.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <cstddef>
#include <cstdint>

/// What a fuzz target defines: looks at one input. Called by libFuzzer, or by corpusmain.cpp.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace FuzzTarget {

/// Makes the application, and has log lines and debug lines collected instead of written. Called at the start
/// of each input; works once.
void prepare();

/// Each returns what came since its last call.
QList<LogLines::Line> takeLog();
QStringList takeDebugLines();

/// Ends the process with an explanation unless `agrees`.
void require(bool agrees, const QString &explanation);

}

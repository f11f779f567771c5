#pragma once

#include "PluginMetaData.h"

#include <QtCore/QStringList>

/// What the benchmark programs share.
namespace Bench {

/// Starts an application without a screen, and glog on a file in a directory of this process.
void start(int &argc, char **argv);

/// A directory of this process, which goes when it ends.
QString directory();

void writeFile(const QString &path, const QByteArray &content);

/// The content of a configuration file that lists these names.
QByteArray config(const QStringList &names);

/// A message with three parameters, as plug-ins send them.
PluginMetaData message(const QString &dst, qint32 type = 7);

/// Runs the benchmarks registered, and ends the program.
int run(int argc, char **argv);

}

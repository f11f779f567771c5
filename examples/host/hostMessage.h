#pragma once

#include <messages.h>

/// A message from the host itself.
inline PluginMetaData hostMessage(const QString &destination, qint32 type,
                                  const QMap<QString, QVariant> &data)
{
    return makeMessage("pluginManger-host", destination, type, data);
}

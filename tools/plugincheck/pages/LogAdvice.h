#pragma once

#include <QtCore/QString>

namespace PluginCheck {

/// What support does next about something in the log.
struct LogAdvice
{
    QString meaning;
    QString next;
};

/// About a library that the loader refused, by the loader's reason, in English or Chinese.
LogAdvice adviceForReason(const QString &library, const QString &reason);

}

#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>

namespace PluginCheck {

/// What LogReport::toJson() holds, for people at a terminal. In UTF-8.
QByteArray logText(const QJsonObject &report);

}

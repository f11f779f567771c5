#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>

namespace PluginCheck {

/// What LogReport::toJson() holds as one HTML page that needs no network and no other file, with a sequence
/// diagram.
QByteArray logPage(const QJsonObject &report);

}

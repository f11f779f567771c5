#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>

namespace PluginCheck {

/// The report of a check as one HTML page that needs no network and no other file. Graphviz draws the graph;
/// without it, and with more plug-ins than a drawing shows, the page says so and has the tables alone.
QByteArray reportPage(const QJsonObject &report);

/// Sets of more plug-ins are not drawn.
constexpr int mostDrawn = 400;

}

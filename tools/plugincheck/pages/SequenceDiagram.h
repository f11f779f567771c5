#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonArray>

namespace PluginCheck {

/// The traffic of a log report as a sequence diagram: SVG that takes its colours from the page it stands in.
/// The heads of the lifelines are a drawing of their own, which stays in sight while the rest is scrolled.
/// Names of more participants than fit are put together in a last one.
QByteArray sequenceDiagram(const QJsonArray &traffic);

/// As many participants get a lifeline of their own.
constexpr int mostLifelines = 40;

}

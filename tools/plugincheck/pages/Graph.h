#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>

namespace PluginCheck {

/**
 * The plug-ins of a report and what each needs, in Graphviz' language.
 *
 * An arrow goes from a plug-in to what it needs. Colours show states, cycles are bold and in the colour of
 * errors, what is needed and not listed is dashed. The same report always gives the same text.
 */
QByteArray dependencyGraph(const QJsonObject &report);

/// The number of plug-ins in the report's configurations, those that are needed and not listed included.
int graphSize(const QJsonObject &report);

}

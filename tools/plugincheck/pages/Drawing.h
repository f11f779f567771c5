#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace PluginCheck {

/// A graph as SVG for a page, or why there is none.
struct Drawing
{
    QByteArray svg;
    QString whyNot;
};

/// Has Graphviz draw the graph. It gets this much time, and is ended when it takes more.
Drawing drawGraph(const QByteArray &dot, int timeLimitInMilliseconds = 20000);

}

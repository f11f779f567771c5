#include "Graph.h"

#include "JsonAccess.h"
#include "Readable.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <cmath>

using namespace PluginCheck;

namespace {

constexpr int mostLabelCharacters = 48;
/// From here on, lines of bends and columns of great height would cost more than they show.
constexpr int manyNodes = 300;

struct Colours
{
    const char *state;
    const char *line;
    const char *fill;
};

constexpr Colours nodeColours[] = {
    {"good", "#1a7037", "#e4f4e8"},  {"note", "#0b5cad", "#e4eefb"},    {"warning", "#875400", "#fff2d1"},
    {"error", "#b3201a", "#fde5e2"}, {"missing", "#b3201a", "#ffffff"}, {"unknown", "#59636e", "#ffffff"},
};

struct EdgeStyle
{
    const char *state;
    const char *attributes;
};

constexpr EdgeStyle edgeStyles[] = {
    {"met", "color=\"#59636e\""},
    {"ignored", "color=\"#59636e\", style=dotted"},
    {"version", "color=\"#875400\", fontcolor=\"#875400\""},
    {"missing", "color=\"#b3201a\", style=dashed"},
    {"cycle", "color=\"#b3201a\", style=bold, penwidth=2.5"},
};

/// What is worse counts, when a name is listed twice.
int rank(const QString &state)
{
    static const QStringList states{QStringLiteral("unknown"), QStringLiteral("good"), QStringLiteral("note"),
                                    QStringLiteral("warning"), QStringLiteral("error")};
    return states.indexOf(state);
}

/// Text in a label: a backslash and "&" would begin something of Graphviz' own.
QByteArray escaped(const QString &name)
{
    QString result = readable(name);
    result.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    result.replace(QLatin1Char('"'), QLatin1String("\\\""));
    result.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    return result.toUtf8();
}

struct Node
{
    QString version;
    QString state;
    bool hasEdges = false;
};

struct Edge
{
    QString state;
    QString version;
};

/// One configuration, sorted by names, so that the text does not depend on the order of a hash.
class ConfigurationGraph
{
public:
    explicit ConfigurationGraph(const QJsonObject &configuration)
    {
        const QJsonArray plugins = list(configuration, "plugins");
        for (const QJsonValue value : plugins)
            addPlugin(value.toObject());
        for (const QJsonValue value : plugins)
            addDependencies(value.toObject());
        for (const QJsonValue cycle : list(configuration, "cycles"))
            addCycle(cycle.toArray());
    }

    int size() const { return m_nodes.size(); }

    QByteArray dot(const QByteArray &prefix, const QByteArray &indent) const
    {
        QHash<QString, QByteArray> ids;
        QByteArray result;
        QVector<QByteArray> alone;
        for (auto node = m_nodes.constBegin(); node != m_nodes.constEnd(); ++node) {
            const QByteArray id = prefix + QByteArray::number(ids.size());
            ids.insert(node.key(), id);
            result += indent + id + nodeAttributes(node.key(), *node);
            if (!node->hasEdges)
                alone.append(id);
        }
        for (auto edge = m_edges.constBegin(); edge != m_edges.constEnd(); ++edge)
            result += indent + ids.value(edge.key().first) + " -> " + ids.value(edge.key().second)
                      + edgeAttributes(edge.key(), *edge);
        return result + rowsOf(alone, indent);
    }

private:
    using Ends = QPair<QString, QString>;

    void addPlugin(const QJsonObject &plugin)
    {
        Node &node = m_nodes[text(plugin, "name")];
        const QString state = text(plugin, "state");
        if (node.state.isEmpty() || rank(state) > rank(node.state))
            node.state = state;
        node.version = text(plugin, "version");
    }

    void addDependencies(const QJsonObject &plugin)
    {
        for (const QJsonValue value : list(plugin, "dependencies")) {
            const QJsonObject dependency = value.toObject();
            addEdge(text(plugin, "name"), text(dependency, "name"), text(dependency, "state"),
                    text(dependency, "version"));
        }
    }

    void addCycle(const QJsonArray &cycle)
    {
        for (int index = 0; index + 1 < cycle.size(); ++index)
            addEdge(cycle.at(index).toString(), cycle.at(index + 1).toString(), QStringLiteral("cycle"), {});
    }

    void addEdge(const QString &from, const QString &to, const QString &state, const QString &version)
    {
        Edge &edge = m_edges[{from, to}];
        if (edge.state != QLatin1String("cycle"))
            edge.state = state;
        if (!version.isEmpty())
            edge.version = version;
        enter(from, {});
        enter(to, state == QLatin1String("missing") ? QStringLiteral("missing") : QString());
    }

    void enter(const QString &name, const QString &state)
    {
        Node &node = m_nodes[name];
        node.hasEdges = true;
        if (node.state.isEmpty())
            node.state = state.isEmpty() ? QStringLiteral("unknown") : state;
    }

    static QByteArray nodeAttributes(const QString &name, const Node &node)
    {
        const Colours *colours = std::begin(nodeColours);
        while (colours + 1 != std::end(nodeColours) && node.state != QLatin1String(colours->state))
            ++colours;
        const bool isListed = rank(node.state) > 0;
        const QString shown =
            name.isEmpty() ? QStringLiteral("(no name)") : elided(name, mostLabelCharacters);
        QByteArray label = escaped(shown);
        if (!node.version.isEmpty())
            label += "\\n" + escaped(elided(node.version, mostLabelCharacters));
        const QString state = isListed ? node.state : QStringLiteral("not listed");
        return " [label=\"" + label + "\", tooltip=\"" + escaped(name + QStringLiteral(": ") + state)
               + "\", class=\"" + colours->state + "\", color=\"" + colours->line + "\", fillcolor=\""
               + colours->fill + "\"" + (isListed ? "" : ", style=\"dashed\"") + "];\n";
    }

    static QByteArray edgeAttributes(const Ends &ends, const Edge &edge)
    {
        const EdgeStyle *style = std::begin(edgeStyles);
        while (style != std::end(edgeStyles) && edge.state != QLatin1String(style->state))
            ++style;
        if (style == std::end(edgeStyles))
            style = std::begin(edgeStyles);
        const QString tooltip =
            ends.first + QStringLiteral(" needs ") + ends.second + QLatin1Char(' ') + edge.version;
        QByteArray result = " [class=\"" + QByteArray(style->state) + "\", tooltip=\""
                            + escaped(tooltip.trimmed()) + "\", " + style->attributes;
        if (edge.state == QLatin1String("version"))
            result += ", label=\""
                      + escaped(elided(QStringLiteral("needs ") + edge.version, mostLabelCharacters)) + "\"";
        return result + "];\n";
    }

    /// Plug-ins that neither need nor are needed would stand in one long column; invisible lines put them
    /// into rows.
    static QByteArray rowsOf(const QVector<QByteArray> &alone, const QByteArray &indent)
    {
        const int length = qMax(4, int(std::ceil(std::sqrt(alone.size()))) / 2);
        QByteArray result;
        for (int index = 1; index < alone.size(); ++index) {
            if (index % length != 0)
                result += indent + alone.at(index - 1) + " -> " + alone.at(index) + " [style=invis];\n";
        }
        return result;
    }

    QMap<QString, Node> m_nodes;
    QMap<Ends, Edge> m_edges;
};

QVector<ConfigurationGraph> graphsOf(const QJsonObject &report)
{
    QVector<ConfigurationGraph> graphs;
    for (const QJsonValue value : list(report, "configurations"))
        graphs.append(ConfigurationGraph(value.toObject()));
    return graphs;
}

int sizeOf(const QVector<ConfigurationGraph> &graphs)
{
    int size = 0;
    for (const ConfigurationGraph &graph : graphs)
        size += graph.size();
    return size;
}

}

int PluginCheck::graphSize(const QJsonObject &report)
{
    return sizeOf(graphsOf(report));
}

QByteArray PluginCheck::dependencyGraph(const QJsonObject &report)
{
    const QVector<ConfigurationGraph> graphs = graphsOf(report);
    const bool isBig = sizeOf(graphs) > manyNodes;
    QByteArray dot =
        "digraph plugins {\n"
        "    graph [rankdir=LR, charset=\"UTF-8\", fontname=\"DejaVu Sans\", fontsize=11, nodesep=0.2, "
        "ranksep=0.6"
        + QByteArray(isBig ? ", splines=line, nslimit=1, nslimit1=1, mclimit=0.5" : "")
        + "];\n"
          "    node [shape=box, style=\"rounded,filled\", fontname=\"DejaVu Sans\", fontsize=10, height=0.3, "
          "margin=\"0.12,0.06\"];\n"
          "    edge [fontname=\"DejaVu Sans\", fontsize=9, arrowsize=0.7];\n";
    const QJsonArray configurations = list(report, "configurations");
    for (int index = 0; index < graphs.size(); ++index) {
        const QByteArray prefix = "c" + QByteArray::number(index) + "_n";
        if (graphs.size() == 1) {
            dot += graphs.at(index).dot(prefix, "    ");
            continue;
        }
        dot += "    subgraph cluster_" + QByteArray::number(index) + " {\n        label=\""
               + escaped(text(configurations.at(index).toObject(), "file")) + "\";\n"
               + graphs.at(index).dot(prefix, "        ") + "    }\n";
    }
    return dot + "}\n";
}

#include "Dependencies.h"

#include <algorithm>

namespace PluginCheck {

namespace {

/// Finds the groups of entries that reach each other, by Tarjan's algorithm with a stack of its own.
class Groups
{
public:
    explicit Groups(const QVector<QVector<int>> &edges)
        : m_edges(edges)
        , m_numbers(edges.size(), 0)
        , m_lowest(edges.size(), 0)
        , m_groups(edges.size(), -1)
    {
        for (int node = 0; node < edges.size(); ++node) {
            if (m_numbers.at(node) == 0)
                walk(node);
        }
    }

    int groupOf(int node) const { return m_groups.at(node); }
    int size(int node) const { return m_sizes.at(m_groups.at(node)); }

private:
    void walk(int root)
    {
        QVector<QPair<int, int>> levels;
        enter(root, levels);
        while (!levels.isEmpty()) {
            const int node = levels.last().first;
            if (levels.last().second < m_edges.at(node).size()) {
                const int next = m_edges.at(node).at(levels.last().second++);
                if (m_numbers.at(next) == 0)
                    enter(next, levels);
                else if (m_groups.at(next) < 0)
                    m_lowest[node] = std::min(m_lowest.at(node), m_numbers.at(next));
                continue;
            }
            levels.removeLast();
            if (!levels.isEmpty())
                m_lowest[levels.last().first] = std::min(m_lowest.at(levels.last().first), m_lowest.at(node));
            if (m_lowest.at(node) == m_numbers.at(node))
                closeGroup(node);
        }
    }

    void enter(int node, QVector<QPair<int, int>> &levels)
    {
        m_lowest[node] = m_numbers[node] = ++m_number;
        m_open.append(node);
        levels.append({node, 0});
    }

    void closeGroup(int root)
    {
        int size = 0;
        int node = 0;
        do {
            node = m_open.takeLast();
            m_groups[node] = int(m_sizes.size());
            ++size;
        } while (node != root);
        m_sizes.append(size);
    }

    const QVector<QVector<int>> &m_edges;
    QVector<int> m_numbers;
    QVector<int> m_lowest;
    QVector<int> m_groups;
    QVector<int> m_sizes;
    QVector<int> m_open;
    int m_number = 0;
};

/// The shortest way from an entry back to itself inside its group.
QVector<int> shortestCircle(int start, const QVector<QVector<int>> &edges, const Groups &groups)
{
    QHash<int, int> cameFrom;
    QVector<int> reached{start};
    for (int i = 0; i < reached.size(); ++i) {
        const int node = reached.at(i);
        for (const int next : edges.at(node)) {
            if (next == start) {
                QVector<int> circle{start};
                for (int step = node; step != start; step = cameFrom.value(step))
                    circle.append(step);
                circle.append(start);
                std::reverse(circle.begin(), circle.end());
                return circle;
            }
            if (groups.groupOf(next) == groups.groupOf(start) && !cameFrom.contains(next)) {
                cameFrom.insert(next, node);
                reached.append(next);
            }
        }
    }
    return {};
}

/// What needs something unsound is unsound.
void spread(QVector<bool> &sound, const QVector<QVector<int>> &edges)
{
    QVector<QVector<int>> dependents(edges.size());
    QVector<int> unsound;
    for (int node = 0; node < edges.size(); ++node) {
        for (const int next : edges.at(node))
            dependents[next].append(node);
        if (!sound.at(node))
            unsound.append(node);
    }
    for (int i = 0; i < unsound.size(); ++i) {
        for (const int dependent : dependents.at(unsound.at(i))) {
            if (sound.at(dependent)) {
                sound[dependent] = false;
                unsound.append(dependent);
            }
        }
    }
}

/// Whether a text equals this variant just when it equals the variant's own text.
bool equalsTextAsText(const QVariant &value)
{
    const int type = value.userType();
    return type == QMetaType::QString || type == QMetaType::Double || type == QMetaType::Bool;
}

}

int entryNamed(const Configuration &configuration, const QVariant &name)
{
    // What is neither equals no text at all.
    return equalsTextAsText(name) ? configuration.entryOfName.value(name.toString(), -1) : -1;
}

DependencyResults checkDependencies(const Configuration &configuration)
{
    const int count = int(configuration.entries.size());
    DependencyResults results{QVector<QVector<DependencyResult>>(count), QVector<bool>(count, true), {}};
    QVector<QVector<int>> edges(count);
    for (int i = 0; i < count; ++i) {
        if (!configuration.counts(i))
            continue;
        for (const Dependency &dependency : configuration.entries.at(i).dependencies) {
            const int needed = entryNamed(configuration, dependency.name);
            DependencyState state = DependencyState::Met;
            if (needed < 0)
                state = DependencyState::Missing;
            else if (configuration.entries.at(needed).version != dependency.version)
                state = DependencyState::Version;
            else
                edges[i].append(needed);
            if (needed == i && state == DependencyState::Met)
                state = DependencyState::Self;
            results.dependencies[i].append({state, needed});
            results.sound[i] = results.sound.at(i) && state == DependencyState::Met;
        }
    }

    const Groups groups(edges);
    QVector<bool> shown(count, false);
    for (int i = 0; i < count; ++i) {
        if (groups.size(i) == 1)
            continue;
        results.sound[i] = false;
        for (DependencyResult &result : results.dependencies[i]) {
            if (result.state == DependencyState::Met && groups.groupOf(result.needed) == groups.groupOf(i))
                result.state = DependencyState::Cycle;
        }
        if (!shown.at(groups.groupOf(i))) {
            shown[groups.groupOf(i)] = true;
            results.cycles.append(shortestCircle(i, edges, groups));
        }
    }
    spread(results.sound, edges);
    return results;
}

int entryChecked(const Configuration &configuration, const QString &plugin)
{
    return configuration.entryOfName.value(plugin + QLatin1String(".dll"), -1);
}

bool isRefused(const QString &plugin, const Configuration &configuration, const DependencyResults &results)
{
    const int entry = entryChecked(configuration, plugin);
    return entry >= 0 && !results.sound.at(entry);
}

QVector<int> refusedWithEntries(const QStringList &plugins, const Configuration &configuration,
                                const DependencyResults &results)
{
    QVector<int> refused(configuration.entries.size(), -1);
    QVector<int> reached;
    for (int i = 0; i < plugins.size(); ++i) {
        const int entry = entryChecked(configuration, plugins.at(i));
        if (entry < 0 || results.sound.at(entry) || refused.at(entry) >= 0)
            continue;
        refused[entry] = i;
        reached.append(entry);
    }
    for (int i = 0; i < reached.size(); ++i) {
        const int entry = reached.at(i);
        for (const DependencyResult &result : results.dependencies.at(entry)) {
            // At any other the manager goes no further.
            const bool isWalked =
                result.state == DependencyState::Met || result.state == DependencyState::Cycle;
            if (!isWalked || results.sound.at(result.needed) || refused.at(result.needed) >= 0)
                continue;
            refused[result.needed] = refused.at(entry);
            reached.append(result.needed);
        }
    }
    return refused;
}

}

#include "Dependencies.h"

#include <QtCore/QSet>

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

/// Finds circles until each dependency inside a group is in one.
class Circles
{
public:
    Circles(const QVector<QVector<int>> &edges, const Groups &groups)
        : m_edges(edges)
        , m_groups(groups)
        , m_cameFrom(edges.size(), -1)
    {
    }

    /// Whether this many more may be looked for, by what they have cost so far.
    bool mayGoOn() const { return m_steps < mostSteps; }

    /// The shortest circle that begins with a dependency.
    QVector<int> through(int from, int to)
    {
        QVector<int> reached{to};
        m_cameFrom[to] = from;
        for (int i = 0; i < reached.size() && m_cameFrom.at(from) < 0; ++i) {
            for (const int next : m_edges.at(reached.at(i))) {
                ++m_steps;
                if (m_groups.groupOf(next) != m_groups.groupOf(from) || m_cameFrom.at(next) >= 0)
                    continue;
                m_cameFrom[next] = reached.at(i);
                reached.append(next);
            }
        }
        QVector<int> circle{from};
        for (int step = m_cameFrom.at(from); step != from; step = m_cameFrom.at(step))
            circle.append(step);
        circle.append(from);
        std::reverse(circle.begin(), circle.end());
        for (int i = 0; i + 1 < circle.size(); ++i)
            m_told.insert({circle.at(i), circle.at(i + 1)});
        for (const int node : qAsConst(reached))
            m_cameFrom[node] = -1;
        return circle;
    }

    bool isTold(int from, int to) const { return m_told.contains({from, to}); }

private:
    static constexpr qint64 mostSteps = 1000000;

    const QVector<QVector<int>> &m_edges;
    const Groups &m_groups;
    QVector<int> m_cameFrom;
    QSet<QPair<int, int>> m_told;
    qint64 m_steps = 0;
};

/// One circle for each group, and then more of them.
void addCycles(DependencyResults &results, const QVector<QVector<int>> &edges, const Groups &groups)
{
    constexpr int mostFurther = 100;
    Circles circles(edges, groups);
    QSet<int> told;
    int further = 0;
    for (int node = 0; node < edges.size(); ++node) {
        const int group = groups.groupOf(node);
        for (const int next : edges.at(node)) {
            if (groups.groupOf(next) != group || circles.isTold(node, next))
                continue;
            const bool isFirst = !told.contains(group);
            if (!isFirst && (further == mostFurther || !circles.mayGoOn())) {
                results.hasMoreCycles = true;
                continue;
            }
            told.insert(group);
            further += isFirst ? 0 : 1;
            results.cycles.append(circles.through(node, next));
        }
    }
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

}

bool canBeListed(const QVariant &name)
{
    const int type = name.userType();
    return type == QMetaType::QString || type == QMetaType::Double || type == QMetaType::Bool;
}

int entryNamed(const Configuration &configuration, const QVariant &name)
{
    return canBeListed(name) ? configuration.entryOfName.value(name.toString(), -1) : -1;
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
            else if (needed == i)
                state = DependencyState::Self;
            else if (configuration.entries.at(needed).version != dependency.version)
                state = DependencyState::Version;
            if (needed >= 0 && needed != i)
                edges[i].append(needed);
            results.dependencies[i].append({state, needed});
            results.sound[i] = results.sound.at(i) && state == DependencyState::Met;
        }
    }

    const Groups groups(edges);
    for (int i = 0; i < count; ++i) {
        if (groups.size(i) == 1)
            continue;
        // With a dependency of another version in the circle the check fails there instead of going round.
        results.sound[i] = false;
        for (DependencyResult &result : results.dependencies[i]) {
            if (result.state == DependencyState::Met && groups.groupOf(result.needed) == groups.groupOf(i))
                result.state = DependencyState::Cycle;
        }
    }
    addCycles(results, edges, groups);
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

#pragma once

#include "Checks.h"

#include <QtCore/QHash>
#include <QtCore/QJsonObject>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <array>
#include <optional>

namespace PluginCheck {

/// A place in a text, counted from 1; 0 where there is none.
struct Place
{
    int line = 0;
    int column = 0;
};

struct Finding
{
    Code code;
    QString configuration;
    QString plugin;
    QString file;
    Place place;
    QString message;
    /// What the manager will do about it.
    QString consequence;
    /// What to do.
    QString advice;
    /// The line of the file that the place is in, where it helps to see it, and the place's column in it.
    QString source = {};
    int sourceColumn = 0;
};

struct DependencyReport
{
    QString name;
    QString version;
    const char *state = "met";
};

struct ProbeReport
{
    QString result;
    QString detail;
    QString output;
};

struct PluginReport
{
    QString name;
    QString version;
    int line = 0;
    QString library = {};
    QVector<DependencyReport> dependencies = {};
    std::optional<ProbeReport> probe = std::nullopt;
};

struct ConfigurationReport
{
    QString file;
    QString set;
    QVector<PluginReport> plugins;
    QVector<QStringList> cycles;
};

/// All that one call has to say.
class Report
{
public:
    /// Of more findings than this of one kind in one configuration, the rest are only counted.
    static constexpr int mostOfOneKind = 1000;

    void add(const Finding &finding);
    void leaveOut(const QString &what);
    /// Also makes the call one that could not read a configuration file, without a word against the file.
    void leaveOutConfiguration(const QString &what)
    {
        leaveOut(what);
        m_couldNotRead = true;
    }

    /// Takes back what was found of a plug-in in these kinds, because it has turned out otherwise. Returns
    /// the names of the kinds.
    QStringList takeBack(const QString &configuration, const QString &plugin, bool (*kinds)(Code));

    const QVector<Finding> &findings() const { return m_findings; }
    const QStringList &leftOut() const { return m_leftOut; }
    int count(Severity severity) const { return m_counts[static_cast<std::size_t>(severity)]; }
    int pluginCount() const;
    bool couldNotRead() const { return m_couldNotRead; }

    /// Says how many findings were counted but not listed.
    void finish();

    QJsonObject toJson() const;

    QVector<ConfigurationReport> configurations;

private:
    using Plugin = QPair<QString, QString>;

    QString stateOf(const QString &configuration, const PluginReport &plugin) const;

    QVector<Finding> m_findings;
    QStringList m_leftOut;
    QHash<QPair<QString, int>, int> m_countsByKind;
    QHash<Plugin, Severity> m_worst; // Of all findings, also of those that are not listed.
    std::array<int, 3> m_counts{};
    bool m_couldNotRead = false;
};

/// The exit status of a call.
int exitStatus(const Report &report, bool strict);

}

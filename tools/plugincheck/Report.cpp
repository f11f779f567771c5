#include "Report.h"

#include <QtCore/QJsonArray>

#include <algorithm>

namespace PluginCheck {

namespace {

constexpr int nothingWrong = 0;
constexpr int somethingFound = 1;
constexpr int notRead = 3;

QJsonObject toJson(const Finding &finding)
{
    const Check &check = checkOf(finding.code);
    QJsonObject object{{"code", check.name},
                       {"severity", nameOf(check.severity)},
                       {"configuration", finding.configuration},
                       {"plugin", finding.plugin},
                       {"file", finding.file},
                       {"line", finding.place.line},
                       {"column", finding.place.column},
                       {"message", finding.message},
                       {"consequence", finding.consequence},
                       {"advice", finding.advice}};
    if (finding.sourceColumn > 0)
        object.insert("source", finding.source);
    return object;
}

QJsonObject toJson(const PluginReport &plugin, const QString &state)
{
    QJsonArray dependencies;
    for (const DependencyReport &dependency : plugin.dependencies) {
        dependencies.append(QJsonObject{
            {"name", dependency.name}, {"version", dependency.version}, {"state", dependency.state}});
    }
    QJsonObject object{{"name", plugin.name}, {"version", plugin.version},
                       {"line", plugin.line}, {"library", plugin.library},
                       {"state", state},      {"dependencies", dependencies}};
    if (plugin.probe) {
        object.insert("probe", QJsonObject{{"result", plugin.probe->result},
                                           {"detail", plugin.probe->detail},
                                           {"output", plugin.probe->output}});
    }
    return object;
}

}

void Report::add(const Finding &finding)
{
    const Check &check = checkOf(finding.code);
    ++m_counts[static_cast<std::size_t>(check.severity)];
    m_couldNotRead = m_couldNotRead || finding.code == Code::ConfigUnreadable;
    const Plugin plugin(finding.configuration, finding.plugin);
    m_worst.insert(plugin, std::max(check.severity, m_worst.value(plugin, Severity::Note)));
    int &count = m_countsByKind[{finding.configuration, int(finding.code)}];
    if (++count <= mostOfOneKind)
        m_findings.append(finding);
}

void Report::leaveOut(const QString &what)
{
    if (!m_leftOut.contains(what))
        m_leftOut.append(what);
}

QStringList Report::takeBack(const QString &configuration, const QString &plugin, bool (*kinds)(Code))
{
    QStringList names;
    Severity worst = Severity::Note;
    bool isFree = true;
    const auto isTaken = [&](const Finding &finding) {
        if (finding.configuration != configuration || finding.plugin != plugin)
            return false;
        const Check &check = checkOf(finding.code);
        if (!kinds(finding.code)) {
            worst = std::max(worst, check.severity);
            isFree = false;
            return false;
        }
        names.append(QString::fromLatin1(check.name));
        --m_counts[static_cast<std::size_t>(check.severity)];
        --m_countsByKind[{configuration, int(finding.code)}];
        return true;
    };
    m_findings.erase(std::remove_if(m_findings.begin(), m_findings.end(), isTaken), m_findings.end());
    if (isFree)
        m_worst.remove({configuration, plugin});
    else
        m_worst.insert({configuration, plugin}, worst);
    names.removeDuplicates();
    return names;
}

int Report::pluginCount() const
{
    int count = 0;
    for (const ConfigurationReport &configuration : configurations)
        count += int(configuration.plugins.size());
    return count;
}

void Report::finish()
{
    QStringList unlisted;
    for (auto kind = m_countsByKind.constBegin(); kind != m_countsByKind.constEnd(); ++kind) {
        if (*kind > mostOfOneKind) {
            unlisted.append(
                QStringLiteral("%1: %2 findings of %3 beyond the first %4 are counted, but not listed")
                    .arg(kind.key().first)
                    .arg(*kind - mostOfOneKind)
                    .arg(QLatin1String(checkOf(Code(kind.key().second)).name))
                    .arg(mostOfOneKind));
        }
    }
    unlisted.sort();
    m_leftOut += unlisted;
}

QString Report::stateOf(const QString &configuration, const PluginReport &plugin) const
{
    // A circle is told once, of the plug-in where it begins.
    const auto isInCycle = [](const DependencyReport &dependency) {
        return qstrcmp(dependency.state, "cycle") == 0;
    };
    if (std::any_of(plugin.dependencies.begin(), plugin.dependencies.end(), isInCycle))
        return nameOf(checkOf(Code::DependencyCycle).severity);
    const auto worst = m_worst.constFind({configuration, plugin.name});
    return worst == m_worst.constEnd() ? QStringLiteral("good") : nameOf(*worst);
}

QJsonObject Report::toJson() const
{
    QJsonArray findings;
    for (const Finding &finding : m_findings)
        findings.append(PluginCheck::toJson(finding));

    QJsonArray all;
    for (const ConfigurationReport &configuration : configurations) {
        QJsonArray plugins;
        for (const PluginReport &plugin : configuration.plugins)
            plugins.append(PluginCheck::toJson(plugin, stateOf(configuration.file, plugin)));
        QJsonArray cycles;
        for (const QStringList &cycle : configuration.cycles)
            cycles.append(QJsonArray::fromStringList(cycle));
        all.append(QJsonObject{{"file", configuration.file},
                               {"set", configuration.set},
                               {"plugins", plugins},
                               {"cycles", cycles}});
    }

    return {{"format", 1},
            {"tool", QJsonObject{{"name", "plugincheck"}, {"version", PLUGINCHECK_VERSION}}},
            {"leftOut", QJsonArray::fromStringList(m_leftOut)},
            {"configurations", all},
            {"findings", findings},
            {"summary", QJsonObject{{"plugins", pluginCount()},
                                    {"errors", count(Severity::Error)},
                                    {"warnings", count(Severity::Warning)},
                                    {"notes", count(Severity::Note)}}}};
}

int exitStatus(const Report &report, bool strict)
{
    if (report.couldNotRead())
        return notRead;
    const bool failed = report.count(Severity::Error) > 0 || (strict && report.count(Severity::Warning) > 0);
    return failed ? somethingFound : nothingWrong;
}

}

#include "ReportPage.h"

#include "Drawing.h"
#include "Graph.h"
#include "JsonAccess.h"
#include "Page.h"
#include "Readable.h"

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <algorithm>

using namespace PluginCheck;

namespace {

const QStringList &severities()
{
    static const QStringList names{QStringLiteral("error"), QStringLiteral("warning"),
                                   QStringLiteral("note")};
    return names;
}

QByteArray paragraph(const QString &text, const char *kind = "")
{
    return text.isEmpty() ? QByteArray() : "<p class=\"" + QByteArray(kind) + "\">" + markup(text) + "</p>";
}

QString place(const QJsonObject &finding)
{
    QString result = text(finding, "file").isEmpty() ? text(finding, "configuration") : text(finding, "file");
    if (number(finding, "line") > 0)
        result += QStringLiteral(":%1").arg(number(finding, "line"));
    if (number(finding, "column") > 0)
        result += QStringLiteral(":%1").arg(number(finding, "column"));
    return result;
}

/// The worst first, otherwise as they were found.
QVector<QJsonObject> findingsOf(const QJsonObject &report)
{
    QVector<QJsonObject> findings;
    for (const QJsonValue value : list(report, "findings"))
        findings.append(value.toObject());
    std::stable_sort(findings.begin(), findings.end(), [](const QJsonObject &left, const QJsonObject &right) {
        return severities().indexOf(text(left, "severity")) < severities().indexOf(text(right, "severity"));
    });
    return findings;
}

Table findingTable(const QJsonObject &report)
{
    Table table{"findings",
                QStringLiteral("Findings"),
                {"Finding", "Severity", "Plug-in", "What is wrong, and what to do"},
                {}};
    for (const QJsonObject &finding : findingsOf(report)) {
        const QString plugin = text(finding, "plugin");
        const QByteArray what = paragraph(text(finding, "message"))
                                + paragraph(text(finding, "consequence"), "hint")
                                + paragraph(text(finding, "advice"), "next") + "<div class=\"place\">"
                                + markup(place(finding)) + "</div>";
        table.rows.append({{"<code>" + markup(text(finding, "code")) + "</code>",
                            badge(text(finding, "severity")), nameMarkup(plugin), what},
                           text(finding, "severity"),
                           {plugin}});
    }
    return table;
}

QByteArray dependencies(const QJsonObject &plugin)
{
    QByteArrayList result;
    for (const QJsonValue value : list(plugin, "dependencies")) {
        const QJsonObject dependency = value.toObject();
        const QString state = text(dependency, "state");
        result.append(nameMarkup(text(dependency, "name") + QLatin1Char(' ') + text(dependency, "version"))
                      + (state == QLatin1String("met") ? QByteArray() : " <em>(" + markup(state) + ")</em>"));
    }
    return result.join(", ");
}

QByteArray probeCell(const QJsonObject &probe)
{
    if (probe.isEmpty())
        return {};
    const QString output = text(probe, "output");
    const bool isLoaded = text(probe, "result") == QLatin1String("loaded");
    QByteArray cell = "<p class=\"" + QByteArray(isLoaded ? "" : "failed") + "\">"
                      + markup(text(probe, "result")) + "</p>" + paragraph(text(probe, "detail"), "hint");
    if (!output.isEmpty()) {
        QByteArrayList lines;
        for (const QString &line : output.split(QLatin1Char('\n')))
            lines.append(markup(line));
        cell += "<details><summary>output</summary><pre>" + lines.join('\n') + "</pre></details>";
    }
    return cell;
}

bool isProbed(const QJsonObject &configuration)
{
    const QJsonArray plugins = list(configuration, "plugins");
    return std::any_of(plugins.begin(), plugins.end(), [](const QJsonValue &plugin) {
        return plugin.toObject().contains(QLatin1String("probe"));
    });
}

Table pluginTable(const QJsonObject &configuration, int index)
{
    Table table{"plugins" + QByteArray::number(index),
                text(configuration, "file") + QStringLiteral(" (") + text(configuration, "set")
                    + QStringLiteral(" set)"),
                {"Plug-in", "Version", "State", "Library", "Needs"},
                {}};
    const bool withProbe = isProbed(configuration);
    if (withProbe)
        table.headers.append("Probe");
    for (const QJsonValue value : list(configuration, "plugins")) {
        const QJsonObject plugin = value.toObject();
        const QString library = text(plugin, "library");
        Table::Row row{{nameMarkup(text(plugin, "name")), markup(text(plugin, "version")),
                        badge(text(plugin, "state")),
                        library.isEmpty() ? QByteArray("not found")
                                          : "<span class=\"place\">" + markup(library) + "</span>",
                        dependencies(plugin)},
                       text(plugin, "state"),
                       {text(plugin, "name")}};
        if (withProbe)
            row.cells.append(probeCell(object(plugin, "probe")));
        table.rows.append(row);
    }
    return table;
}

/// Those that a finding is about or that are listed, each once, sorted.
QStringList pluginNames(const QJsonObject &report)
{
    QSet<QString> names;
    for (const QJsonValue configuration : list(report, "configurations")) {
        for (const QJsonValue plugin : list(configuration.toObject(), "plugins"))
            names.insert(text(plugin.toObject(), "name"));
    }
    for (const QJsonValue finding : list(report, "findings"))
        names.insert(text(finding.toObject(), "plugin"));
    names.remove({});
    QStringList sorted = names.values();
    sorted.sort();
    return sorted;
}

void addGraph(Page &page, const QJsonObject &report)
{
    page.addHeading(QStringLiteral("Which plug-in needs which"));
    const int size = graphSize(report);
    if (size == 0) {
        page.addParagraph(QStringLiteral("There is no plug-in to draw."));
        return;
    }
    if (size > mostDrawn) {
        page.addParagraph(
            QStringLiteral("The graph is not drawn: it would have %1 plug-ins, and more than %2 cannot be "
                           "read. --format dot writes it for other programs.")
                .arg(grouped(size), grouped(mostDrawn)));
        return;
    }
    const Drawing drawing = drawGraph(dependencyGraph(report));
    if (drawing.svg.isEmpty()) {
        page.addParagraph(drawing.whyNot);
        return;
    }
    page.add("<ul class=\"legend\"><li>" + badge(QStringLiteral("good")) + "</li><li>"
             + badge(QStringLiteral("note")) + "</li><li>" + badge(QStringLiteral("warning")) + "</li><li>"
             + badge(QStringLiteral("error"))
             + "</li><li>dashed: needed, and not listed</li><li>dotted: not looked at by the manager</li>"
               "<li class=\"cycle\">bold: part of a cycle</li></ul>\n"
               "<div class=\"drawing dependencies\" tabindex=\"0\">"
             + drawing.svg + "</div>\n");
}

void addLeftOut(Page &page, const QJsonObject &report)
{
    const QJsonArray leftOut = list(report, "leftOut");
    if (leftOut.isEmpty())
        return;
    page.addHeading(QStringLiteral("What was not checked"));
    QByteArray items = "<ul>";
    for (const QJsonValue value : leftOut)
        items += "<li>" + markup(value.toString()) + "</li>";
    page.add(items + "</ul>\n");
}

QString subtitle(const QJsonObject &report)
{
    QStringList files;
    for (const QJsonValue configuration : list(report, "configurations"))
        files.append(text(configuration.toObject(), "file"));
    const QJsonObject tool = object(report, "tool");
    return files.join(QStringLiteral(", ")) + QStringLiteral(", checked by ") + text(tool, "name")
           + QLatin1Char(' ') + text(tool, "version");
}

}

QByteArray PluginCheck::reportPage(const QJsonObject &report)
{
    const QJsonObject summary = object(report, "summary");
    Page page(QStringLiteral("Check of plug-in sets"), subtitle(report));
    page.addFigures({{number(summary, "plugins"), QStringLiteral("plug-ins"), {}},
                     {number(summary, "errors"), QStringLiteral("errors"), "error"},
                     {number(summary, "warnings"), QStringLiteral("warnings"), "warning"},
                     {number(summary, "notes"), QStringLiteral("notes"), "note"}});
    addLeftOut(page, report);
    addGraph(page, report);
    page.addFilter(QStringList(severities()) << QStringLiteral("good"), QStringLiteral("Plug-in"),
                   pluginNames(report));
    page.addHeading(QStringLiteral("What is wrong"));
    if (list(report, "findings").isEmpty())
        page.addParagraph(QStringLiteral("Nothing was found."));
    else
        page.add(findingTable(report).toMarkup());
    page.addHeading(QStringLiteral("The plug-ins"));
    int index = 0;
    for (const QJsonValue configuration : list(report, "configurations"))
        page.add(pluginTable(configuration.toObject(), index++).toMarkup());
    return page.toHtml();
}

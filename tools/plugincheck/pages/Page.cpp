#include "Page.h"

#include "Readable.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QCryptographicHash>
#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <utility>

/// Outside of every namespace, as the name that Qt's macro declares is. A static library's resources need it.
static void initializeResource()
{
    Q_INIT_RESOURCE(pages);
}

using namespace PluginCheck;

namespace {

QByteArray resource(const char *name)
{
    initializeResource();
    QFile file(QStringLiteral(":/plugincheck/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("plugincheck: the page's %s is not in the program", name);
    // A check-out on Windows may have put its line ends in. A browser takes them out before it compares the
    // sum.
    return file.readAll().replace("\r\n", "\n");
}

QByteArray checksum(const QByteArray &content)
{
    return "'sha256-" + QCryptographicHash::hash(content, QCryptographicHash::Sha256).toBase64() + '\'';
}

/// As the value of an attribute: one to a line.
QByteArray lines(const QStringList &values)
{
    QByteArrayList result;
    for (const QString &value : values)
        result.append(markup(value));
    return result.join("&#10;");
}

QByteArray options(const QStringList &values)
{
    QByteArray result = "<option value=\"\">all</option>";
    for (const QString &value : values)
        result += "<option>" + markup(value) + "</option>";
    return result;
}

}

QByteArray PluginCheck::badge(const QString &severity)
{
    return "<span class=\"badge " + markup(severity) + "\">" + markup(severity) + "</span>";
}

QByteArray Table::toMarkup() const
{
    const int shown = qMin(rows.size(), mostRows);
    QByteArray html = "<table id=\"" + id + "\" data-filtered><caption>" + markup(caption)
                      + " <output class=\"shown\" for=\"filter\">" + markup(grouped(shown))
                      + "</output></caption>\n<thead><tr>";
    for (const QByteArray &header : headers)
        html += "<th scope=\"col\">" + header + "</th>";
    html += "</tr></thead>\n<tbody>\n";
    for (int index = 0; index < shown; ++index) {
        const Row &row = rows.at(index);
        html += "<tr data-severity=\"" + markup(row.severity) + "\" data-names=\"" + lines(row.names) + "\">";
        for (int column = 0; column < row.cells.size(); ++column)
            html += (column == 0 ? "<th scope=\"row\" data-label=\"" : "<td data-label=\"")
                    + headers.at(column) + "\">" + row.cells.at(column) + (column == 0 ? "</th>" : "</td>");
        html += "</tr>\n";
    }
    html += "</tbody></table>\n";
    if (rows.size() > shown)
        html += "<p class=\"hint\">"
                + markup(QStringLiteral("The first %1 of %2 rows are in this page; the JSON report has all.")
                             .arg(grouped(shown), grouped(rows.size())))
                + "</p>\n";
    return html;
}

Page::Page(QString title, QString subtitle)
    : m_title(std::move(title))
    , m_subtitle(std::move(subtitle))
{
}

void Page::add(const QByteArray &markup)
{
    m_body += markup;
}

void Page::addHeading(const QString &text)
{
    m_body += "<h2>" + markup(text) + "</h2>\n";
}

void Page::addParagraph(const QString &text)
{
    m_body += "<p>" + markup(text) + "</p>\n";
}

void Page::addFigures(const QVector<Figure> &figures)
{
    m_body += "<dl class=\"figures\">";
    for (const Figure &figure : figures)
        m_body += "<div class=\"" + (figure.value > 0 ? figure.severity : QByteArray()) + "\"><dt>"
                  + markup(figure.what) + "</dt><dd>" + markup(grouped(figure.value)) + "</dd></div>";
    m_body += "</dl>\n";
}

/// Without scripts the fields could do nothing, so a script makes them visible.
void Page::addFilter(const QStringList &severities, const QString &nameLabel, const QStringList &names)
{
    m_body += "<form id=\"filter\" role=\"search\" hidden>"
              "<label>Filter <input type=\"search\" name=\"filter\" placeholder=\"any text\" "
              "autocomplete=\"off\"></label>";
    if (!severities.isEmpty())
        m_body += "<label>Severity <select name=\"severity\">" + options(severities) + "</select></label>";
    m_body += "<label>" + markup(nameLabel) + " <select name=\"plugin\">" + options(names)
              + "</select></label>"
                "<button type=\"reset\">Show all</button></form>\n";
}

QByteArray Page::toHtml() const
{
    const QByteArray style = resource("page.css");
    const QByteArray script = resource("page.js");
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
           + checksum(style) + "; script-src " + checksum(script)
           + "; base-uri 'none'; form-action 'none'\">\n"
             "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
             "<meta name=\"color-scheme\" content=\"light dark\">\n<title>"
           + markup(m_title) + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n<header><h1>"
           + markup(m_title) + "</h1><p>" + markup(m_subtitle) + "</p></header>\n<main>\n" + m_body
           + "</main>\n<script>" + script + "</script>\n</body>\n</html>\n";
}

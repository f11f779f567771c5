#include "LogPage.h"

#include "JsonAccess.h"
#include "Page.h"
#include "Readable.h"
#include "SequenceDiagram.h"

#include <QtCore/QSet>
#include <QtCore/QStringList>

using namespace PluginCheck;

namespace {

QByteArray figure(qint64 value)
{
    return "<span class=\"number\">" + markup(grouped(value)) + "</span>";
}

/// Without the microseconds, and the day only once when it is the same.
QByteArray times(const QJsonObject &object)
{
    const auto shortened = [](const QString &time) {
        return time.left(time.lastIndexOf(QLatin1Char('.')) + 4);
    };
    const QString first = shortened(text(object, "first"));
    QString last = shortened(text(object, "last"));
    QByteArray result = "<time>" + markup(first) + "</time>";
    if (first == last)
        return result;
    const QString day = first.section(QLatin1Char(' '), 0, 0) + QLatin1Char(' ');
    if (last.startsWith(day))
        last.remove(0, day.size());
    return result + " to <time>" + markup(last) + "</time>";
}

QByteArray advice(const QJsonObject &object)
{
    return "<p>" + markup(text(object, "meaning")) + "</p><p class=\"next\">" + markup(text(object, "next"))
           + "</p>";
}

QByteArray reasons(const QJsonObject &failure)
{
    QByteArray result;
    for (const QJsonValue value : list(failure, "reasons")) {
        const QJsonObject reason = value.toObject();
        if (!text(reason, "text").isEmpty())
            result += "<p class=\"place\">" + markup(text(reason, "text")) + "</p>";
        result += advice(reason);
    }
    return result;
}

Table failureTable(const QJsonObject &report)
{
    Table table{"failures",
                QStringLiteral("Libraries and configurations"),
                {"File", "What", "Reason, and what to do next", "Times", "When"},
                {}};
    for (const QJsonValue value : list(report, "failures")) {
        const QJsonObject failure = value.toObject();
        table.rows.append(
            {{nameMarkup(text(failure, "file")), "<code>" + markup(text(failure, "code")) + "</code>",
              reasons(failure), figure(number(failure, "count")), times(failure)},
             QStringLiteral("error"),
             {}});
    }
    return table;
}

Table errorTable(const QJsonObject &report)
{
    Table table{"errors", QStringLiteral("Other errors"), {"Error", "What to do next", "Times", "When"}, {}};
    for (const QJsonValue value : list(report, "errors")) {
        const QJsonObject error = value.toObject();
        table.rows.append(
            {{markup(text(error, "text")), advice(error), figure(number(error, "count")), times(error)},
             QStringLiteral("error"),
             {}});
    }
    return table;
}

QString typeText(const QJsonObject &message)
{
    const QString type = QString::number(number(message, "type"));
    const QString name = text(message, "typeName");
    return name.isEmpty() ? type : name + QStringLiteral(" (") + type + QLatin1Char(')');
}

Table messageTable(const QJsonObject &report)
{
    Table table{"messages",
                QStringLiteral("By sender, receiver and type"),
                {"Sender", "Receiver", "Type", "Messages", "When"},
                {}};
    for (const QJsonValue value : list(report, "messages")) {
        const QJsonObject message = value.toObject();
        table.rows.append({{nameMarkup(text(message, "sender")), nameMarkup(text(message, "receiver")),
                            markup(typeText(message)), figure(number(message, "count")), times(message)},
                           {},
                           {text(message, "sender"), text(message, "receiver")}});
    }
    return table;
}

QStringList participants(const QJsonObject &report)
{
    QSet<QString> names;
    for (const QJsonValue message : list(report, "messages"))
        names << text(message.toObject(), "sender") << text(message.toObject(), "receiver");
    names.remove({});
    QStringList sorted = names.values();
    sorted.sort();
    return sorted;
}

void addDiagram(Page &page, const QJsonObject &report)
{
    page.addHeading(QStringLiteral("Messages in their order"));
    const QJsonArray traffic = list(report, "traffic");
    if (traffic.isEmpty()) {
        page.addParagraph(QStringLiteral("There is nothing to draw."));
        return;
    }
    page.addParagraph(
        QStringLiteral("Only what recMegToPlugin delivers is logged, and of that no message of the quiet "
                       "type 10000000. What repeats the line before it is one arrow with a number."));
    const qint64 notDrawn = number(report, "notDrawn");
    if (notDrawn > 0)
        page.addParagraph(
            QStringLiteral(
                "Drawn are the first %1 events; %2 that came later are not. --from and --to choose "
                "a span, --draw another limit.")
                .arg(grouped(traffic.size()), grouped(notDrawn)));
    page.add("<div class=\"drawing\" tabindex=\"0\">" + sequenceDiagram(traffic) + "</div>\n");
}

QString subtitle(const QJsonObject &report)
{
    QStringList files;
    for (const QJsonValue file : list(report, "files"))
        files.append(text(file.toObject(), "file"));
    QString result = files.join(QStringLiteral(", "));
    if (!text(report, "first").isEmpty())
        result +=
            QStringLiteral(", ") + text(report, "first") + QStringLiteral(" to ") + text(report, "last");
    return result;
}

QString remarks(const QJsonObject &summary)
{
    const QString counts = counted(number(summary, "entries"), "entry was read", "entries were read");
    QStringList parts{counts};
    if (number(summary, "outsideSpan") > 0)
        parts.append(grouped(number(summary, "outsideSpan"))
                     + QStringLiteral(" outside the chosen span were not"));
    if (number(summary, "alsoInOtherFile") > 0)
        parts.append(grouped(number(summary, "alsoInOtherFile"))
                     + QStringLiteral(" stood in a second file, too"));
    if (number(summary, "notTheLibrarys") > 0)
        parts.append(grouped(number(summary, "notTheLibrarys")) + QStringLiteral(" are not the library's"));
    if (number(summary, "notTold") > 0)
        parts.append(grouped(number(summary, "notTold")) + QStringLiteral(" could not be told apart"));
    return parts.join(QStringLiteral("; ")) + QLatin1Char('.');
}

}

QByteArray PluginCheck::logPage(const QJsonObject &report)
{
    const QJsonObject summary = object(report, "summary");
    Page page(QStringLiteral("Log of the plug-in managers"), subtitle(report));
    page.addFigures({{number(summary, "failures"), QStringLiteral("failed loads"), "error"},
                     {number(summary, "errors"), QStringLiteral("other errors"), "error"},
                     {number(summary, "messages"), QStringLiteral("messages delivered"), {}}});
    page.addParagraph(remarks(summary));
    for (const QJsonValue value : list(report, "files")) {
        const QJsonObject file = value.toObject();
        if (!file.value(QStringLiteral("isLog")).toBool())
            page.addParagraph(text(file, "file")
                              + QStringLiteral(" is no log: glog has written none of its lines."));
    }
    page.addFilter({}, QStringLiteral("Sender or receiver"), participants(report));
    page.addHeading(QStringLiteral("What did not load"));
    if (list(report, "failures").isEmpty())
        page.addParagraph(QStringLiteral("Nothing in this log failed to load."));
    else
        page.add(failureTable(report).toMarkup());
    if (!list(report, "errors").isEmpty()) {
        page.addHeading(QStringLiteral("What else went wrong"));
        page.add(errorTable(report).toMarkup());
    }
    addDiagram(page, report);
    page.addHeading(QStringLiteral("Who sent what to whom"));
    if (list(report, "messages").isEmpty())
        page.addParagraph(QStringLiteral("No delivery of a message is in this log."));
    else
        page.add(messageTable(report).toMarkup());
    return page.toHtml();
}

#include "LogText.h"

#include "JsonAccess.h"
#include "Readable.h"

using namespace PluginCheck;

namespace {

constexpr int mostMessages = 100;

QString occurrences(const QJsonObject &object)
{
    const qint64 count = number(object, "count");
    if (count == 1)
        return QStringLiteral("once, ") + text(object, "first");
    return counted(count, "time", "times") + QStringLiteral(", ") + text(object, "first")
           + QStringLiteral(" to ") + text(object, "last");
}

QString headOf(const QJsonObject &report)
{
    QString head;
    for (const QJsonValue value : list(report, "files")) {
        const QJsonObject file = value.toObject();
        head += readable(text(file, "file")) + QStringLiteral(": ")
                + counted(number(file, "lines"), "line", "lines");
        if (!file.value(QStringLiteral("isLog")).toBool())
            head += QStringLiteral(", none of which glog has written");
        head += QLatin1Char('\n');
    }
    if (!text(report, "first").isEmpty())
        head += text(report, "first") + QStringLiteral(" to ") + text(report, "last") + QLatin1Char('\n');
    return head;
}

QString failuresOf(const QJsonObject &report)
{
    const QJsonArray failures = list(report, "failures");
    if (failures.isEmpty())
        return {};
    QString result = QStringLiteral("\nWhat did not load\n");
    for (const QJsonValue value : failures) {
        const QJsonObject failure = value.toObject();
        result += QStringLiteral("\n  %1\n    %2: %3\n")
                      .arg(text(failure, "file"), text(failure, "code"), occurrences(failure));
        for (const QJsonValue reasonValue : list(failure, "reasons")) {
            const QJsonObject reason = reasonValue.toObject();
            if (!text(reason, "text").isEmpty())
                result += QStringLiteral("    reason: ") + text(reason, "text") + QLatin1Char('\n');
            result += QStringLiteral("    that is: %1\n    next: %2\n")
                          .arg(text(reason, "meaning"), text(reason, "next"));
        }
    }
    return result;
}

QString errorsOf(const QJsonObject &report)
{
    const QJsonArray errors = list(report, "errors");
    if (errors.isEmpty())
        return {};
    QString result = QStringLiteral("\nOther errors\n");
    for (const QJsonValue value : errors) {
        const QJsonObject error = value.toObject();
        result +=
            QStringLiteral("\n  %1\n    %2\n    that is: %3\n    next: %4\n")
                .arg(text(error, "text"), occurrences(error), text(error, "meaning"), text(error, "next"));
    }
    return result;
}

QString messagesOf(const QJsonObject &report)
{
    const QJsonArray messages = list(report, "messages");
    if (messages.isEmpty())
        return {};
    QString result = QStringLiteral("\nMessages that were delivered\n\n");
    int shown = 0;
    for (const QJsonValue value : messages) {
        if (shown++ == mostMessages)
            break;
        const QJsonObject message = value.toObject();
        const QString name = text(message, "typeName");
        const QString type = QString::number(number(message, "type"));
        result += QStringLiteral("  %1  %2 -> %3, type %4\n")
                      .arg(grouped(number(message, "count")).rightJustified(9), text(message, "sender"),
                           text(message, "receiver"),
                           name.isEmpty() ? type : name + QStringLiteral(" (") + type + ')');
    }
    if (messages.size() > mostMessages)
        result +=
            QStringLiteral("  and %1 more; --format json has them all\n").arg(messages.size() - mostMessages);
    return result;
}

QString summaryOf(const QJsonObject &report)
{
    const QJsonObject summary = object(report, "summary");
    QStringList parts{counted(number(summary, "failures"), "failed load", "failed loads"),
                      counted(number(summary, "errors"), "other error", "other errors"),
                      counted(number(summary, "messages"), "message", "messages")};
    if (number(summary, "outsideSpan") > 0)
        parts.append(
            counted(number(summary, "outsideSpan"), "entry outside the span", "entries outside the span"));
    if (number(summary, "alsoInOtherFile") > 0)
        parts.append(
            counted(number(summary, "alsoInOtherFile"), "entry in two files", "entries in two files"));
    if (number(summary, "notTheLibrarys") > 0)
        parts.append(counted(number(summary, "notTheLibrarys"), "entry of others", "entries of others"));
    if (number(summary, "notTold") > 0)
        parts.append(counted(number(summary, "notTold"), "entry not told apart", "entries not told apart"));
    return QStringLiteral("\n") + parts.join(QStringLiteral(", ")) + QLatin1Char('\n');
}

}

QByteArray PluginCheck::logText(const QJsonObject &report)
{
    return (headOf(report) + failuresOf(report) + errorsOf(report) + messagesOf(report) + summaryOf(report))
        .toUtf8();
}

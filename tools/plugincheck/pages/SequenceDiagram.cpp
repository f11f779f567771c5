#include "SequenceDiagram.h"

#include "Readable.h"

#include <QtCore/QHash>
#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

using namespace PluginCheck;

namespace {

constexpr int timeWidth = 112;
constexpr int laneWidth = 176;
constexpr int headHeight = 44;
constexpr int rowHeight = 36;
constexpr int mostNameCharacters = 22;

const QString others = QStringLiteral("(others)");

QString text(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toString();
}

/// The participants from left to right, in the order in which they come up.
class Lanes
{
public:
    explicit Lanes(const QJsonArray &traffic)
    {
        for (const QJsonValue &value : traffic) {
            const QJsonObject each = value.toObject();
            if (text(each, "kind") == QLatin1String("note"))
                continue;
            enter(text(each, "sender"));
            enter(text(each, "receiver"));
        }
    }

    const QStringList &names() const { return m_names; }
    int count() const { return m_names.size(); }
    int width() const { return timeWidth + qMax(2, count()) * laneWidth; }
    int middle(int lane) const { return timeWidth + lane * laneWidth + laneWidth / 2; }
    int lane(const QString &name) const { return m_lanes.value(name, count() - 1); }

private:
    void enter(const QString &name)
    {
        if (m_lanes.contains(name) || count() > mostLifelines)
            return;
        m_lanes.insert(name, count());
        m_names.append(count() == mostLifelines ? others : name);
    }

    QStringList m_names;
    QHash<QString, int> m_lanes;
};

QByteArray number(int value)
{
    return QByteArray::number(value);
}

QByteArray svgStart(int width, int height, const char *kind)
{
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"" + QByteArray(kind) + "\" width=\""
           + number(width) + "\" height=\"" + number(height) + "\" viewBox=\"0 0 " + number(width) + ' '
           + number(height) + "\" role=\"img\"";
}

QByteArray label(int x, int y, const char *kind, const QString &shown)
{
    return "<text class=\"" + QByteArray(kind) + "\" x=\"" + number(x) + "\" y=\"" + number(y) + "\">"
           + markup(shown) + "</text>";
}

QByteArray heads(const Lanes &lanes)
{
    QByteArray svg = svgStart(lanes.width(), headHeight, "heads") + " aria-label=\"Participants\">";
    for (int lane = 0; lane < lanes.count(); ++lane) {
        const QString name =
            lanes.names().at(lane).isEmpty() ? QStringLiteral("(no name)") : lanes.names().at(lane);
        svg += "<g><title>" + markup(name) + "</title><rect x=\""
               + number(lanes.middle(lane) - laneWidth / 2 + 6) + "\" y=\"6\" width=\""
               + number(laneWidth - 12) + "\" height=\"30\" rx=\"6\"/>"
               + label(lanes.middle(lane), 26, "name", elided(name, mostNameCharacters)) + "</g>";
    }
    return svg + "</svg>";
}

QByteArray lifelines(const Lanes &lanes, int height)
{
    QByteArray svg;
    for (int lane = 0; lane < lanes.count(); ++lane)
        svg +=
            "<path class=\"lifeline\" d=\"M" + number(lanes.middle(lane)) + " 0V" + number(height) + "\"/>";
    return svg;
}

QString times(const QJsonObject &event)
{
    const int count = event.value(QLatin1String("count")).toInt();
    return count > 1 ? QStringLiteral(" \u00d7 ") + grouped(count) : QString();
}

QByteArray arrowHead(int x, int y, bool toRight)
{
    const int back = toRight ? x - 9 : x + 9;
    return "<path class=\"point\" d=\"M" + number(x) + ' ' + number(y) + "L" + number(back) + ' '
           + number(y - 4) + "V" + number(y + 4) + "z\"/>";
}

QByteArray arrow(const Lanes &lanes, const QJsonObject &event, int y)
{
    const int from = lanes.middle(lanes.lane(text(event, "sender")));
    const int to = lanes.middle(lanes.lane(text(event, "receiver")));
    const QString type = text(event, "type") + times(event);
    if (from == to)
        return "<path class=\"line\" d=\"M" + number(from) + ' ' + number(y - 6) + "h24v12h-15\"/>"
               + arrowHead(from, y + 6, false) + label(from + 32, y + 4, "beside", elided(type, 26));
    return "<path class=\"line\" d=\"M" + number(from) + ' ' + number(y) + "H"
           + number(to > from ? to - 8 : to + 8) + "\"/>" + arrowHead(to, y, to > from)
           + label((from + to) / 2, y - 6, "above", elided(type, 60));
}

QByteArray row(const Lanes &lanes, const QJsonObject &event, int y)
{
    const QString kind = text(event, "kind");
    const bool isNote = kind == QLatin1String("note");
    const QString what = isNote ? text(event, "text")
                                : text(event, "sender") + QStringLiteral(" to ") + text(event, "receiver")
                                      + QStringLiteral(", ") + text(event, "type");
    const QString refused = kind == QLatin1String("refused") ? QStringLiteral(", not delivered") : QString();
    QByteArray svg = "<g class=\"" + kind.toLatin1() + "\"><title>"
                     + markup(text(event, "time") + '\n' + what + refused) + times(event).toUtf8()
                     + "</title>";
    svg += label(timeWidth - 12, y + 4, "time", text(event, "time").section(QLatin1Char(' '), 1).left(12));
    if (!isNote)
        return svg + arrow(lanes, event, y) + "</g>";
    const int width = lanes.width() - timeWidth - 12;
    return svg + "<rect x=\"" + number(timeWidth) + "\" y=\"" + number(y - 12) + "\" width=\"" + number(width)
           + "\" height=\"24\" rx=\"4\"/>"
           + label(timeWidth + 10, y + 4, "beside", elided(what, width / 8) + times(event)) + "</g>";
}

}

QByteArray PluginCheck::sequenceDiagram(const QJsonArray &traffic)
{
    const Lanes lanes(traffic);
    const int height = (traffic.size() + 1) * rowHeight;
    QByteArray svg = heads(lanes) + svgStart(lanes.width(), height, "sequence")
                     + " aria-label=\"Messages in the order of their time\">" + lifelines(lanes, height);
    int y = rowHeight;
    for (const QJsonValue &value : traffic) {
        svg += row(lanes, value.toObject(), y);
        y += rowHeight;
    }
    return svg + "</svg>";
}

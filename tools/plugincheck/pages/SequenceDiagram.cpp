#include "SequenceDiagram.h"

#include "JsonAccess.h"
#include "Readable.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

using namespace PluginCheck;

namespace {

constexpr int timeWidth = 112;
constexpr int laneWidth = 164;
constexpr int headHeight = 44;
constexpr int rowHeight = 36;
constexpr int mostNameCharacters = 20;
/// An arrow of more lanes than this also names its receiver, whose lifeline may be out of sight.
constexpr int farLanes = 2;

const QString others = QStringLiteral("(others)");

/// The participants from left to right, in the order in which they come up.
class Lanes
{
public:
    explicit Lanes(const QJsonArray &traffic)
    {
        for (const QJsonValue value : traffic) {
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

QByteArray decimal(int value)
{
    return QByteArray::number(value);
}

QByteArray svgStart(int width, int height, const char *kind)
{
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"" + QByteArray(kind) + "\" width=\""
           + decimal(width) + "\" height=\"" + decimal(height) + "\" viewBox=\"0 0 " + decimal(width) + ' '
           + decimal(height) + "\" role=\"img\"";
}

QByteArray label(int x, int y, const char *kind, const QString &shown)
{
    return "<text class=\"" + QByteArray(kind) + "\" x=\"" + decimal(x) + "\" y=\"" + decimal(y) + "\">"
           + markup(shown) + "</text>";
}

QByteArray heads(const Lanes &lanes)
{
    QByteArray svg = svgStart(lanes.width(), headHeight, "heads") + " aria-label=\"Participants\">";
    for (int lane = 0; lane < lanes.count(); ++lane) {
        const QString name =
            lanes.names().at(lane).isEmpty() ? QStringLiteral("(no name)") : lanes.names().at(lane);
        svg += "<g><title>" + markup(name) + "</title><rect x=\""
               + decimal(lanes.middle(lane) - laneWidth / 2 + 6) + "\" y=\"6\" width=\""
               + decimal(laneWidth - 12) + "\" height=\"30\" rx=\"6\"/>"
               + label(lanes.middle(lane), 26, "name", elided(name, mostNameCharacters)) + "</g>";
    }
    return svg + "</svg>";
}

QByteArray lifelines(const Lanes &lanes, int height)
{
    QByteArray svg;
    for (int lane = 0; lane < lanes.count(); ++lane)
        svg +=
            "<path class=\"lifeline\" d=\"M" + decimal(lanes.middle(lane)) + " 0V" + decimal(height) + "\"/>";
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
    return "<path class=\"point\" d=\"M" + decimal(x) + ' ' + decimal(y) + "L" + decimal(back) + ' '
           + decimal(y - 4) + "V" + decimal(y + 4) + "z\"/>";
}

QByteArray arrow(const Lanes &lanes, const QJsonObject &event, int y)
{
    const int from = lanes.middle(lanes.lane(text(event, "sender")));
    const int to = lanes.middle(lanes.lane(text(event, "receiver")));
    const QString type = text(event, "type") + times(event);
    if (from == to)
        return "<path class=\"line\" d=\"M" + decimal(from) + ' ' + decimal(y - 6) + "h24v12h-15\"/>"
               + arrowHead(from, y + 6, false) + label(from + 32, y + 4, "beside", elided(type, 26));
    const bool toRight = to > from;
    const bool isFar = qAbs(to - from) > farLanes * laneWidth;
    const QString shown =
        isFar ? type + QStringLiteral(" to ") + elided(text(event, "receiver"), mostNameCharacters) : type;
    return "<path class=\"line\" d=\"M" + decimal(from) + ' ' + decimal(y) + "H"
           + decimal(toRight ? to - 8 : to + 8) + "\"/>" + arrowHead(to, y, toRight)
           + label(toRight ? from + 10 : from - 10, y - 6, toRight ? "forth" : "back", elided(shown, 60));
}

QByteArray row(const Lanes &lanes, const QJsonObject &event, int y)
{
    const QString kind = text(event, "kind");
    const bool isNote = kind == QLatin1String("note");
    const QString what = isNote ? text(event, "text")
                                : text(event, "sender") + QStringLiteral(" to ") + text(event, "receiver")
                                      + QStringLiteral(", ") + text(event, "type");
    const QString refused = kind == QLatin1String("refused") ? QStringLiteral(", not delivered") : QString();
    const bool isFailure = isNote && text(event, "severity") == QLatin1String("error");
    QByteArray svg = "<g class=\"" + (isFailure ? QByteArray("note failure") : kind.toLatin1()) + "\"><title>"
                     + markup(text(event, "time") + '\n' + what + refused) + times(event).toUtf8()
                     + "</title>";
    svg += label(timeWidth - 12, y + 4, "time", text(event, "time").section(QLatin1Char(' '), 1).left(12));
    if (!isNote)
        return svg + arrow(lanes, event, y) + "</g>";
    const int width = lanes.width() - timeWidth - 12;
    return svg + "<rect x=\"" + decimal(timeWidth) + "\" y=\"" + decimal(y - 12) + "\" width=\""
           + decimal(width) + "\" height=\"24\" rx=\"4\"/>"
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
    for (const QJsonValue value : traffic) {
        svg += row(lanes, value.toObject(), y);
        y += rowHeight;
    }
    return svg + "</svg>";
}

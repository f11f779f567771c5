#include "events.h"

#include <QtCore/QStringList>

#include <algorithm>

using namespace CamEvents;

namespace {

bool isSameValue(const QVariant &left, const QVariant &right)
{
    return left.userType() == right.userType() && left == right;
}

bool isSameValue(const PluginMetaData &left, const PluginMetaData &right)
{
    return left.src == right.src && left.dst == right.dst && left.type == right.type
           && left.userData == right.userData && left.data.keys() == right.data.keys()
           && std::equal(left.data.cbegin(), left.data.cend(), right.data.cbegin(),
                         [](const QVariant &one, const QVariant &other) { return isSameValue(one, other); });
}

bool isSameValue(const FactoryEntry &left, const FactoryEntry &right)
{
    return left.library == right.library && left.parent == right.parent;
}

bool isSameValue(const Recorder::FactoryCall &left, const Recorder::FactoryCall &right)
{
    return left.library == right.library && left.symbol == right.symbol && left.parent == right.parent
           && left.text == right.text && left.element == right.element && left.job == right.job
           && left.step == right.step;
}

bool isSameValue(const Recorder::Delivery &left, const Recorder::Delivery &right)
{
    return left.library == right.library && left.target == right.target
           && isSameValue(left.message, right.message);
}

bool isSameValue(const LogLines::Line &left, const LogLines::Line &right)
{
    return left == right;
}

bool isSameValue(const Box &left, const Box &right)
{
    return left.title == right.title && left.text == right.text && left.hasParent == right.hasParent;
}

bool isSameValue(const Result &left, const Result &right)
{
    return left.value == right.value;
}

bool isSameValue(const Exception &left, const Exception &right)
{
    return left.what == right.what;
}

bool isSameValue(const RegisterRecord &left, const RegisterRecord &right)
{
    return left.type == right.type && left.name == right.name && left.key == right.key
           && left.object == right.object && left.parent == right.parent;
}

bool isSameValue(const Records &left, const Records &right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const auto &one, const auto &other) { return isSameValue(one, other); });
}

QString quotedUnits(const QString &units, bool areBytes)
{
    QString quoted;
    for (const QChar unit : units) {
        if (unit >= ' ' && unit <= '~' && unit != '\'' && unit != '\\')
            quoted += unit;
        else
            quoted += areBytes ? QStringLiteral("\\x%1").arg(unit.unicode(), 2, 16, QLatin1Char('0'))
                               : QStringLiteral("\\u%1").arg(unit.unicode(), 4, 16, QLatin1Char('0'));
    }
    return '\'' + quoted + '\'';
}

struct Shower
{
    const std::function<QString(const void *)> &nameOf;

    QString operator()(const FactoryEntry &entry) const
    {
        return "the factory of " + quoted(entry.library) + " entered with " + nameOf(entry.parent);
    }
    QString operator()(const Recorder::FactoryCall &call) const
    {
        return quoted(call.library) + ' ' + call.symbol + '(' + nameOf(call.parent) + ", " + quoted(call.text)
               + ", " + quoted(call.job) + ", " + quoted(call.step) + ") made " + nameOf(call.element);
    }
    QString operator()(const Recorder::Delivery &delivery) const
    {
        return "delivery to " + quoted(delivery.library) + ", " + nameOf(delivery.target) + ": "
               + shown(delivery.message);
    }
    QString operator()(const LogLines::Line &line) const
    {
        return QStringLiteral("log %1 %2: %3")
            .arg(QChar::fromLatin1(line.severity), QString::fromLatin1(line.unit),
                 quoted(line.text.toStdString()));
    }
    QString operator()(const Box &box) const
    {
        return "box " + quoted(box.title) + ' ' + quoted(box.text) + (box.hasParent ? " with a parent" : "");
    }
    QString operator()(const Result &result) const { return "result " + nameOf(result.value); }
    QString operator()(const Exception &exception) const
    {
        return "thrown: " + QString::fromStdString(exception.what);
    }
    QString operator()(const Records &records) const
    {
        QStringList texts;
        for (const RegisterRecord &record : records)
            texts += '(' + quoted(record.type) + ", " + quoted(record.name) + ", " + quoted(record.key) + ", "
                     + nameOf(record.object) + ", " + nameOf(record.parent) + ')';
        return "registry [" + texts.join("; ") + ']';
    }
};

}

bool isSame(const CamEvent &left, const CamEvent &right)
{
    return left.index() == right.index()
           && std::visit(
               [&](const auto &value) {
                   return isSameValue(value, std::get<std::decay_t<decltype(value)>>(right));
               },
               left);
}

QString quoted(const QString &text)
{
    return text.isNull() ? QStringLiteral("null") : quotedUnits(text, false);
}

QString quoted(const std::string &bytes)
{
    return quotedUnits(QString::fromLatin1(bytes.data(), int(bytes.size())), true);
}

QString shown(const PluginMetaData &message)
{
    QStringList data;
    for (auto it = message.data.cbegin(); it != message.data.cend(); ++it)
        data += it.key() + '=' + (it->isValid() ? quoted(it->toString()) : QStringLiteral("invalid"));
    return QStringLiteral("%1>%2 %3 {%4} %5")
        .arg(quoted(message.src), quoted(message.dst), QString::number(message.type), data.join(", "),
             QString::number(message.userData, 16));
}

QString shown(const CamEvent &event, const std::function<QString(const void *)> &nameOf)
{
    return std::visit(Shower{nameOf}, event);
}

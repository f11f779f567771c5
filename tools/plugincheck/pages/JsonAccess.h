#pragma once

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

/// Members of JSON objects; empty or 0 where there is none.
namespace PluginCheck {

inline QString text(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toString();
}

inline qint64 number(const QJsonObject &object, const char *key)
{
    return qint64(object.value(QLatin1String(key)).toDouble());
}

inline QJsonArray list(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toArray();
}

inline QJsonObject object(const QJsonObject &parent, const char *key)
{
    return parent.value(QLatin1String(key)).toObject();
}

}

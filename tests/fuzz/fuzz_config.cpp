// The reader of configuration files fills the tables with what Qt's own JSON classes read, and logs what it
// should. The input is the file.

#include "gbktexts.h"
#include "openbase.h"
#include "target.h"
#include "testfiles.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

namespace {

/// What every JSON value becomes, written out: numbers are doubles.
QVariant variantOf(const QJsonValue &value)
{
    if (value.isArray()) {
        QVariantList list;
        for (const QJsonValue &item : value.toArray())
            list.append(variantOf(item));
        return list;
    }
    if (value.isObject()) {
        QVariantMap map;
        const QJsonObject object = value.toObject();
        for (const QString &key : object.keys())
            map[key] = variantOf(object.value(key));
        return map;
    }
    return value.isDouble() ? QVariant(value.toDouble()) : value.toVariant();
}

/// QVariant's own comparison takes 1 and "1" for equal.
bool same(const QVariant &left, const QVariant &right)
{
    if (left.userType() != right.userType() || left.isValid() != right.isValid())
        return false;
    if (left.userType() == QMetaType::QVariantList) {
        const QVariantList one = left.toList();
        const QVariantList other = right.toList();
        return std::equal(one.begin(), one.end(), other.begin(), other.end(), same);
    }
    if (left.userType() == QMetaType::QVariantMap) {
        const QVariantMap one = left.toMap();
        const QVariantMap other = right.toMap();
        return one.keys() == other.keys() && std::equal(one.begin(), one.end(), other.begin(), same);
    }
    return left == right;
}

void expect(const QByteArray &content, QTPluginsMangerPrivate &tables, QList<LogLines::Line> &log,
            const QString &path)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(content, &error);
    if (error.error != QJsonParseError::NoError) {
        log.append({'E', "pluginMangerBase", Gbk::configNotParsed + path.toUtf8()});
        return;
    }
    for (const QJsonValue &entry : document.object().value("pluginList").toArray()) {
        const QString name = entry.toObject().value("name").toString();
        tables.m_names[name] = name;
        tables.m_versions[name] = variantOf(entry.toObject().value("version"));
        tables.m_dependencies[name] = variantOf(entry.toObject().value("dependencies").toArray()).toList();
    }
}

template <typename Value>
bool sameTable(const QHash<QString, Value> &left, const QHash<QString, Value> &right)
{
    if (left.size() != right.size())
        return false;
    for (auto it = left.begin(); it != left.end(); ++it) {
        if (!right.contains(it.key()) || !same(*it, right[it.key()]))
            return false;
    }
    return true;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzTarget::prepare();
    static const QTemporaryDir &directory = *new QTemporaryDir;
    static OpenBase base;
    const QString path = directory.filePath("pluginconfig.json");
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    TestFiles::write(path, bytes);

    QTPluginsMangerPrivate tables;
    FuzzTarget::takeLog();
    base.readPluginConfig(tables, path);

    QTPluginsMangerPrivate expected;
    QList<LogLines::Line> expectedLog;
    // Files are read as text, in which carriage returns do not count.
    expect(QByteArray(bytes).replace('\r', ""), expected, expectedLog, path);
    FuzzTarget::require(FuzzTarget::takeLog() == expectedLog, "log");
    FuzzTarget::require(sameTable(tables.m_names, expected.m_names), "names");
    FuzzTarget::require(sameTable(tables.m_versions, expected.m_versions), "versions");
    FuzzTarget::require(sameTable(tables.m_dependencies, expected.m_dependencies), "dependencies");
    return 0;
}

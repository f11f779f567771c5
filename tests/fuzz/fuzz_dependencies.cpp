// The dependency check tells of random tables what a plain recursion tells, and in the same lines. Where
// plug-ins need each other in a circle a plain recursion never ends, so there only the result is compared: it
// fails.

#include "choices.h"
#include "pluginMangerBase.h"
#include "target.h"

#include <QtCore/QDebug>
#include <QtCore/QRegularExpression>

namespace {

/// More lines than this are not worth their time.
constexpr int mostLines = 2000;

/// The check once more, from its rules.
class Recursion
{
public:
    explicit Recursion(const QTPluginsMangerPrivate &tables)
        : m_tables(tables)
    {
    }

    bool check(const QString &key)
    {
        if (m_way.contains(key)) {
            isCircular = true;
            return false;
        }
        m_way.append(key);
        bool status = true;
        for (const QVariant &item : m_tables.m_dependencies.value(key)) {
            if (lines.size() > mostLines)
                break;
            status = passes(item.toMap()) && status;
        }
        m_way.removeLast();
        return status;
    }

    QStringList lines;
    bool isCircular = false;

private:
    bool passes(const QVariantMap &dependency)
    {
        const QVariant name = dependency["name"];
        const QVariant version = dependency["version"];
        QString path;
        bool isPresent = false;
        for (auto it = m_tables.m_names.begin(); it != m_tables.m_names.end() && !isPresent; ++it) {
            isPresent = *it == name;
            path = isPresent ? it.key() : QString();
        }
        if (!isPresent) {
            write() << " Missing dependency:" << name.toString() << "for plugin" << path;
            return false;
        }
        const QVariant found = m_tables.m_versions.value(path);
        if (found != version) {
            write() << "Version mismatch:" << name.toString() << "version" << found.toString() << "but"
                    << version.toString() << "required for plugin" << path;
            return false;
        }
        if (!check(path)) {
            write() << "Corrupted dependency:" << name.toString() << "for plugin" << path;
            return false;
        }
        return true;
    }

    QDebug write()
    {
        lines.append(QString());
        return QDebug(&lines.last());
    }

    const QTPluginsMangerPrivate &m_tables;
    QStringList m_way;
};

QVariant variant(Choices &choices, const QStringList &names)
{
    switch (choices.below(32)) {
    case 25:
        return 1;
    case 26:
        return 1.0;
    case 27:
        return QVariant();
    case 28:
        return true;
    case 29:
        return QVariantList{1};
    case 30:
        return QStringLiteral("absent");
    case 31:
        return QByteArray("P1");
    default:
        return choices.of(names);
    }
}

QTPluginsMangerPrivate decode(Choices &choices)
{
    const QStringList names{"P1", "P2", "P3", "P4", "P5", "P6", "", "1"};
    const QStringList versions{"1", "1", "1", "1", "1", "1", "1.0", "2"};
    QTPluginsMangerPrivate tables;
    for (const QString &key : names) {
        if (choices.oneIn(8))
            continue;
        // As a rule the name is the key.
        tables.m_names[key] = choices.oneIn(8) ? variant(choices, names) : QVariant(key);
        tables.m_versions[key] = variant(choices, versions);
        QVariantList dependencies;
        for (int count = choices.below(4); count > 0; --count) {
            if (choices.oneIn(16))
                dependencies.append(variant(choices, names));
            else
                dependencies.append(
                    QVariantMap{{"name", variant(choices, names)}, {"version", variant(choices, versions)}});
        }
        if (!choices.oneIn(8))
            tables.m_dependencies[key] = dependencies;
    }
    return tables;
}

/// The lines after the function's signature.
QStringList checkLines()
{
    static const QRegularExpression signature(
        QStringLiteral(R"(^[\w ]*\bQTPluginsMangerPrivate::check\(.*?\)( const)? )"));
    QStringList texts;
    for (const QString &line : FuzzTarget::takeDebugLines()) {
        const auto match = signature.match(line);
        FuzzTarget::require(match.hasMatch(), "without its function: " + line);
        texts += line.mid(match.capturedEnd());
    }
    return texts;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzTarget::prepare();
    Choices choices(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    const QTPluginsMangerPrivate tables = decode(choices);
    const QStringList keys = tables.m_names.keys() + QStringList{"Absent", "P1.dll"};
    for (const QString &key : keys) {
        Recursion recursion(tables);
        const bool expected = recursion.check(key);
        const bool found = tables.check(key);
        const QStringList lines = checkLines();
        FuzzTarget::require(found == expected, "result for " + key);
        if (recursion.isCircular) {
            FuzzTarget::require(!lines.filter("Circular dependency:").isEmpty(),
                                "circle not told for " + key);
            continue;
        }
        // A stream into a text ends with the blank that the debug stream leaves out.
        for (QString &line : recursion.lines)
            line.chop(1);
        FuzzTarget::require(lines == recursion.lines || recursion.lines.size() > mostLines,
                            "lines for " + key + ":\n" + lines.join('\n') + "\ninstead of:\n"
                                + recursion.lines.join('\n'));
    }
    return 0;
}

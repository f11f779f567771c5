// Reading configuration files, and the dependency check.

#include "benchsupport.h"

#include "pluginMangerBase.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <utility>

namespace {

class OpenBase : public QTpluginsMangerBase
{
public:
    using QTpluginsMangerBase::readPluginConfig;
};

// readPluginConfig

QString writeConfig(int count)
{
    QByteArray entries;
    for (int number = 0; number < count; ++number) {
        entries += number ? ",\n" : "";
        entries +=
            "{\"name\": \"Plugin_" + QByteArray::number(number)
            + "\", \"version\": \"1.0\", \"dependencies\": [{\"name\": \"Plugin_0\", \"version\": \"1.0\"}]}";
    }
    const QString path = Bench::directory() + QStringLiteral("/%1.json").arg(count);
    Bench::writeFile(path, "{\"pluginList\": [" + entries + "]}");
    return path;
}

void readByHand(const QString &path, QTPluginsMangerPrivate &tables)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        qFatal("cannot read %s", qPrintable(path));
    const QJsonArray list =
        QJsonDocument::fromJson(file.readAll()).object().value(QLatin1String("pluginList")).toArray();
    for (const QJsonValue &value : list) {
        const QJsonObject entry = value.toObject();
        const QString name = entry.value(QLatin1String("name")).toString();
        tables.m_names[name] = name;
        tables.m_versions[name] = entry.value(QLatin1String("version")).toVariant();
        tables.m_dependencies[name] = entry.value(QLatin1String("dependencies")).toArray().toVariantList();
    }
}

void readFloor(benchmark::State &state)
{
    const QString path = writeConfig(int(state.range(0)));
    for (auto _ : state) {
        QTPluginsMangerPrivate tables;
        readByHand(path, tables);
        benchmark::DoNotOptimize(tables.m_names.size());
    }
}

void read(benchmark::State &state)
{
    const QString path = writeConfig(int(state.range(0)));
    OpenBase base;
    for (auto _ : state) {
        QTPluginsMangerPrivate tables;
        base.readPluginConfig(tables, path);
        benchmark::DoNotOptimize(tables.m_names.size());
    }
}

// The check. "Everything" depends on all plug-ins, so one check comes to every entry.

QString plugin(int number)
{
    return QStringLiteral("P%1").arg(number);
}

QVariantMap needs(int number)
{
    return {{QStringLiteral("name"), plugin(number)}, {QStringLiteral("version"), QStringLiteral("1")}};
}

using Shape = QVariantList (*)(int number, int count);

QVariantList chain(int number, int count)
{
    return number + 1 < count ? QVariantList{needs(number + 1)} : QVariantList();
}

/// Pairs, each plug-in of which needs both of the next pair.
QVariantList lattice(int number, int count)
{
    const int next = (number / 2 + 1) * 2;
    return next + 1 < count ? QVariantList{needs(next), needs(next + 1)} : QVariantList();
}

QVariantList star(int number, int)
{
    return number > 0 ? QVariantList{needs(0)} : QVariantList();
}

QVariantList scattered(int number, int count)
{
    std::minstd_rand random(quint32(number) + 1);
    QVariantList list;
    for (int more = 0; more < 3 && number + 1 < count; ++more)
        list += needs(number + 1 + int(random() % quint32(count - number - 1)));
    return list;
}

constexpr std::pair<const char *, Shape> shapes[] = {
    {"chain", chain}, {"lattice", lattice}, {"star", star}, {"random", scattered}};

void describe(QTPluginsMangerPrivate &tables, Shape shape, int count)
{
    QVariantList everything;
    for (int number = 0; number < count; ++number) {
        tables.m_names[plugin(number)] = plugin(number);
        tables.m_versions[plugin(number)] = QStringLiteral("1");
        tables.m_dependencies[plugin(number)] = shape(number, count);
        everything += needs(number);
    }
    tables.m_dependencies[QStringLiteral("Everything")] = everything;
}

/// What is read of each dependency, whoever checks it, in the order that the table happens to have.
bool passOverEdges(const QTPluginsMangerPrivate &tables)
{
    for (const QVariantList &dependencies : tables.m_dependencies) {
        for (const QVariant &item : dependencies) {
            const QVariantMap dependency = item.toMap();
            const QVariant name = dependency.value(QStringLiteral("name"));
            if (tables.m_versions.value(name.toString()) != dependency.value(QStringLiteral("version")))
                return false;
        }
    }
    return true;
}

void checkFloor(benchmark::State &state, Shape shape)
{
    QTPluginsMangerPrivate tables;
    describe(tables, shape, int(state.range(0)));
    for (auto _ : state) {
        if (!passOverEdges(tables))
            state.SkipWithError("the tables are sound, and the pass says otherwise");
    }
}

void check(benchmark::State &state, Shape shape)
{
    QTPluginsMangerPrivate tables;
    describe(tables, shape, int(state.range(0)));
    for (auto _ : state) {
        if (!tables.check(QStringLiteral("Everything")))
            state.SkipWithError("the tables are sound, and the check says otherwise");
    }
}

}

int main(int argc, char **argv)
{
    Bench::start(argc, argv);
    for (const int count : {10, 1000, 100000}) {
        benchmark::RegisterBenchmark("readPluginConfig/floor", readFloor)->Arg(count);
        benchmark::RegisterBenchmark("readPluginConfig/library", read)->Arg(count);
    }
    for (const int count : {100, 1000, 10000, 100000}) {
        for (const auto &[name, shape] : shapes) {
            const std::string check = std::string("check ") + name;
            benchmark::RegisterBenchmark((check + "/floor").c_str(), checkFloor, shape)->Arg(count);
            benchmark::RegisterBenchmark((check + "/library").c_str(), ::check, shape)->Arg(count);
        }
    }
    return Bench::run(argc, argv);
}

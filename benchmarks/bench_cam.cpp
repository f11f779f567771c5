// Deliveries, routing, updates and look-ups of the CAM manager. Each case stands beside a floor: the steps
// that the case cannot do without, written by hand over the same libraries and the same records.
//
// The first argument is the number of records in the registry, or "updates".

#include "benchsupport.h"
#include "workbench.h"

#include <QtCore/QLibrary>
#include <QtWidgets/QWidget>

#include <benchmark/benchmark.h>
#include <glog/logging.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr qint32 quietType = 10000000;

const QString editor = QStringLiteral("ORVIK-GraphicEditor.dll");
const QString view = QStringLiteral("Graphic_View.dll");
const QString dstTypeKey = QStringLiteral("DstType");
const QString jobNameKey = QStringLiteral("JobName");
const QString stepKey = QStringLiteral("Step");

Bench::Workbench *workbench = nullptr;

void deliverByHand(const QString &library, void *target, const PluginMetaData &message)
{
    using EntryPoint = void (*)(void *, PluginMetaData);
    QLibrary *const found = workbench->libraries.value(library);
    const auto entryPoint = reinterpret_cast<EntryPoint>(found->resolve("recMsgFromManager"));
    entryPoint(target, message);
}

template <typename Matches>
const RegisterRecord *scan(Matches matches)
{
    const auto found = std::find_if(workbench->records.begin(), workbench->records.end(), matches);
    return found == workbench->records.end() ? nullptr : &*found;
}

const RegisterRecord *scanFor(const std::string &name, const void *parent)
{
    return scan([&](const RegisterRecord &record) { return record.parent == parent && record.name == name; });
}

// transmitDataToFramework

void transmitFloor(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(editor);
    for (auto _ : state)
        deliverByHand(message.dst, workbench->frame, message);
}

void transmit(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(editor);
    for (auto _ : state)
        workbench->manager->transmitDataToFramework(workbench->frame, message);
}

// recMegToPlugin

void routeByHand(void *frame, PluginMetaData message)
{
    if (!scan([&](const RegisterRecord &record) { return record.object == frame; }))
        std::abort();
    const RegisterRecord *const element = scanFor(message.dst.toStdString(), frame);
    deliverByHand(message.dst, element->object, message);
}

void routeQuietFloor(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view, quietType);
    for (auto _ : state)
        routeByHand(workbench->frame, message);
}

void routeQuiet(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view, quietType);
    for (auto _ : state)
        workbench->manager->recMegToPlugin(workbench->frame, message);
}

void routeTracedFloor(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view);
    for (auto _ : state) {
        routeByHand(workbench->frame, message);
        LOG(INFO) << QString(message.src).remove(QLatin1String(".dll")).toStdString() << " send to "
                  << QString(message.dst).remove(QLatin1String(".dll")).toStdString() << " " << message.type;
    }
}

void routeTraced(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view);
    for (auto _ : state)
        workbench->manager->recMegToPlugin(workbench->frame, message);
}

// pluginTransmitData

PluginMetaData messageFor(const char *dstType)
{
    PluginMetaData message = Bench::message(view);
    message.data[dstTypeKey] = QString::fromLatin1(dstType);
    return message;
}

QString valueOf(const PluginMetaData &message, const QString &key)
{
    return message.data.value(key).toString();
}

void deliverToChildrenByHand(const void *parent, const PluginMetaData &message)
{
    const std::string name = message.dst.toStdString();
    for (const RegisterRecord &record : workbench->records) {
        if (record.parent == parent && record.name == name && record.type == "Plugin")
            deliverByHand(message.dst, record.object, message);
    }
}

void transmitDataByHand(PluginMetaData message)
{
    const void *const rootObject =
        scan([](const RegisterRecord &record) { return record.type == "EngineerRoot"; })->object;
    const QString dstType = valueOf(message, dstTypeKey);
    if (dstType == QLatin1String("Graphic")) {
        const QString key = valueOf(message, jobNameKey) + QLatin1String(" | ") + valueOf(message, stepKey);
        deliverToChildrenByHand(scanFor(key.toStdString(), rootObject)->object, message);
    } else if (dstType == QLatin1String("EngineerRoot")) {
        deliverToChildrenByHand(rootObject, message);
    } else if (dstType == QLatin1String("Matrix")) {
        deliverToChildrenByHand(scanFor(valueOf(message, jobNameKey).toStdString(), rootObject)->object,
                                message);
    } else {
        const std::string key = (valueOf(message, jobNameKey) + QLatin1String("|Guide")).toStdString();
        const RegisterRecord *const frame =
            scan([&](const RegisterRecord &record) { return record.name == key && record.type == "Guide"; });
        deliverByHand(message.dst, frame->object, message);
    }
}

void transmitDataFloor(benchmark::State &state, const char *dstType)
{
    const PluginMetaData message = messageFor(dstType);
    for (auto _ : state)
        transmitDataByHand(message);
}

void transmitData(benchmark::State &state, const char *dstType)
{
    const PluginMetaData message = messageFor(dstType);
    for (auto _ : state)
        workbench->manager->pluginTransmitData(message);
}

// A cached element

void lookUpFloor(benchmark::State &state)
{
    const std::string name = "Graphic_View.dll";
    for (auto _ : state)
        benchmark::DoNotOptimize(scanFor(name, workbench->frame)->object);
}

void lookUp(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(workbench->manager->Ov_RegisterGraphic_View(workbench->frame));
}

// updateGraphic

void updateByHand(const QString &job, PluginMetaData message)
{
    const std::string prefix = (job + QLatin1String(" | ")).toStdString();
    const std::string part = message.dst.toStdString();
    for (const RegisterRecord &frame : workbench->records) {
        if (frame.type != "Graphic" || frame.name.find(prefix) == std::string::npos)
            continue;
        for (const RegisterRecord &child : workbench->records) {
            if (child.parent == frame.object && child.type == "Plugin"
                && child.name.find(part) != std::string::npos)
                deliverByHand(message.dst, child.object, message);
        }
    }
}

void updateFloor(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view);
    for (auto _ : state)
        updateByHand(QStringLiteral("updated"), message);
}

void update(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view);
    for (auto _ : state)
        workbench->manager->updateGraphic(QStringLiteral("updated"), message);
}

}

int main(int argc, char **argv)
{
    Bench::start(argc, argv);
    if (argc < 2)
        return 2;
    const bool updates = std::strcmp(argv[1], "updates") == 0;
    const int count = updates ? 0 : std::atoi(argv[1]);
    argv[1] = argv[0];
    ++argv;
    --argc;
    workbench = new Bench::Workbench;
    workbench->fill(count);

    const auto add = [&](const std::string &name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark((name + '/' + std::to_string(count)).c_str(), function, arguments...);
    };
    if (updates) {
        workbench->addFramesToUpdate();
        benchmark::RegisterBenchmark("updateGraphic/floor", updateFloor);
        benchmark::RegisterBenchmark("updateGraphic/library", update);
        return Bench::run(argc, argv);
    }
    add("lookUp/floor", lookUpFloor);
    add("lookUp/library", lookUp);
    if (count == 40) {
        add("transmitDataToFramework/floor", transmitFloor);
        add("transmitDataToFramework/library", transmit);
        add("recMegToPlugin quiet/floor", routeQuietFloor);
        add("recMegToPlugin quiet/library", routeQuiet);
        add("recMegToPlugin traced/floor", routeTracedFloor);
        add("recMegToPlugin traced/library", routeTraced);
        for (const char *dstType : {"Graphic", "EngineerRoot", "Matrix", "Guide"}) {
            add(std::string("pluginTransmitData ") + dstType + "/floor", transmitDataFloor, dstType);
            add(std::string("pluginTransmitData ") + dstType + "/library", transmitData, dstType);
        }
    }
    return Bench::run(argc, argv);
}

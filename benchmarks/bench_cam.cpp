// Deliveries, routing, updates and look-ups of the CAM manager. Each case stands beside a floor: the steps
// that the case cannot do without, written by hand over the same libraries and the same records.
//
// The first argument is the number of records in the registry, or "updates".

#include "benchsupport.h"

#include "pluginManger4CAM.h"

#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QLibrary>
#include <QtWidgets/QWidget>

#include <benchmark/benchmark.h>
#include <glog/logging.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr qint32 quietType = 10000000;

const QString editor = QStringLiteral("ORVIK-GraphicEditor.dll");
const QString view = QStringLiteral("Graphic_View.dll");

QTpluginsManger4CAM *manager = nullptr;

/// The floors' own tables: the same libraries, and records equal to those in the registry, in its order.
QHash<QString, QLibrary *> libraries;
std::vector<RegisterRecord> records;

/// The frame, and the element in it, that messages go to.
QWidget *receivingFrame = nullptr;
QWidget *receivingElement = nullptr;
QWidget *root = nullptr;

void mirror(const char *type, const std::string &name, void *object, void *parent)
{
    records.emplace_back(type, name, object, parent);
}

/// The registry of a workbench: roots to fill it up, a frame of each kind, and a view in each.
void fillRegistry(int count)
{
    manager->insertRoot("Engineering", root);
    mirror("EngineerRoot", "Engineering", root, nullptr);
    for (int number = 0; int(records.size()) < count - 8; ++number) {
        const std::string name = "Element-of-the-workbench-" + std::to_string(number) + ".dll";
        // The only records that can be had without an element: further roots.
        manager->insertRoot(name, &records);
        mirror("EngineerRoot", name, &records, nullptr);
    }
    const auto addFrame = [](const char *kind, const std::string &name, QWidget *frame) {
        mirror(kind, name, frame, root);
        QWidget *const element = manager->Ov_RegisterGraphic_View(frame);
        mirror("Plugin", "Graphic_View.dll", element, frame);
        receivingFrame = frame;
        receivingElement = element;
    };
    addFrame("Guide", "job-20|Guide", manager->Ov_RegisterGuideFramework(root, "job-20|Guide"));
    addFrame("Matrix", "job-20", manager->Ov_RegisterMatrixFramework(root, "job-20"));
    QWidget *const underRoot = manager->Ov_RegisterGraphic_View(root);
    mirror("Plugin", "Graphic_View.dll", underRoot, root);
    addFrame("Graphic", "job-20 | pcb", manager->Ov_RegisterGraphicFramework(root, "job-20 | pcb", false));
}

void deliverByHand(const QString &library, void *target, const PluginMetaData &message)
{
    using EntryPoint = void (*)(void *, PluginMetaData);
    QLibrary *const found = libraries.value(library);
    const auto entryPoint = reinterpret_cast<EntryPoint>(found->resolve("recMsgFromManager"));
    entryPoint(target, message);
}

template <typename Matches>
const RegisterRecord *scan(Matches matches)
{
    const auto found = std::find_if(records.begin(), records.end(), matches);
    return found == records.end() ? nullptr : &*found;
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
        deliverByHand(message.dst, receivingFrame, message);
}

void transmit(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(editor);
    for (auto _ : state)
        manager->transmitDataToFramework(receivingFrame, message);
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
        routeByHand(receivingFrame, message);
}

void routeQuiet(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view, quietType);
    for (auto _ : state)
        manager->recMegToPlugin(receivingFrame, message);
}

void routeTracedFloor(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view);
    for (auto _ : state) {
        routeByHand(receivingFrame, message);
        LOG(INFO) << QString(message.src).remove(QLatin1String(".dll")).toStdString() << " send to "
                  << QString(message.dst).remove(QLatin1String(".dll")).toStdString() << " " << message.type;
    }
}

void routeTraced(benchmark::State &state)
{
    const PluginMetaData message = Bench::message(view);
    for (auto _ : state)
        manager->recMegToPlugin(receivingFrame, message);
}

// pluginTransmitData

PluginMetaData messageFor(const char *dstType)
{
    PluginMetaData message = Bench::message(view);
    message.data[QStringLiteral("DstType")] = QString::fromLatin1(dstType);
    return message;
}

QString valueOf(const PluginMetaData &message, const char *key)
{
    return message.data.value(QString::fromLatin1(key)).toString();
}

void deliverToChildrenByHand(const void *parent, const PluginMetaData &message)
{
    const std::string name = message.dst.toStdString();
    for (const RegisterRecord &record : records) {
        if (record.parent == parent && record.type == "Plugin" && record.name == name)
            deliverByHand(message.dst, record.object, message);
    }
}

void transmitDataByHand(PluginMetaData message)
{
    const void *const rootObject =
        scan([](const RegisterRecord &record) { return record.type == "EngineerRoot"; })->object;
    const QString dstType = valueOf(message, "DstType");
    if (dstType == QLatin1String("Graphic")) {
        const QString key = valueOf(message, "JobName") + QLatin1String(" | ") + valueOf(message, "Step");
        deliverToChildrenByHand(scanFor(key.toStdString(), rootObject)->object, message);
    } else if (dstType == QLatin1String("EngineerRoot")) {
        deliverToChildrenByHand(rootObject, message);
    } else if (dstType == QLatin1String("Matrix")) {
        deliverToChildrenByHand(scanFor(valueOf(message, "JobName").toStdString(), rootObject)->object,
                                message);
    } else {
        const std::string key = (valueOf(message, "JobName") + QLatin1String("|Guide")).toStdString();
        const RegisterRecord *const frame =
            scan([&](const RegisterRecord &record) { return record.type == "Guide" && record.name == key; });
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
        manager->pluginTransmitData(message);
}

// A cached element

void lookUpFloor(benchmark::State &state)
{
    const std::string name = "Graphic_View.dll";
    for (auto _ : state)
        benchmark::DoNotOptimize(scanFor(name, receivingFrame)->object);
}

void lookUp(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(manager->Ov_RegisterGraphic_View(receivingFrame));
}

// updateGraphic

constexpr int framesToUpdate = 50;
constexpr int elementsPerFrame = 10;

/// Frames of a job of their own, each with elements of other names before the one that receives.
void addFramesToUpdate()
{
    for (int number = 0; number < framesToUpdate; ++number) {
        const std::string step = "step-" + std::to_string(number);
        const std::string name = "updated | " + step;
        QWidget *const frame = manager->Ov_RegisterGraphicFramework(root, name, false);
        mirror("Graphic", name, frame, root);
        for (int other = 1; other < elementsPerFrame; ++other) {
            const std::string otherName = "Another-element-" + std::to_string(other);
            QWidget *const element = manager->Ov_Register_CamGuide(otherName, frame, "updated");
            mirror("Plugin", otherName, element, frame);
        }
        mirror("Plugin", "Graphic_View.dll", manager->Ov_RegisterGraphic_View(frame), frame);
    }
}

void updateByHand(const QString &job, PluginMetaData message)
{
    const std::string prefix = (job + QLatin1String(" | ")).toStdString();
    const std::string part = message.dst.toStdString();
    for (const RegisterRecord &frame : records) {
        if (frame.type != "Graphic" || frame.name.find(prefix) == std::string::npos)
            continue;
        for (const RegisterRecord &child : records) {
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
        manager->updateGraphic(QStringLiteral("updated"), message);
}

void load()
{
    QDir(Bench::directory()).mkpath(QStringLiteral("pluginconfig"));
    const QStringList names{QStringLiteral("ORVIK-GraphicEditor"), QStringLiteral("ORVIK-Matrix"),
                            QStringLiteral("Graphic_CamGuide"), QStringLiteral("Graphic_View")};
    Bench::writeFile(Bench::directory() + QStringLiteral("/pluginconfig/pluginconfig4CAM.json"),
                     Bench::config(names));
    qputenv("PLUGINMANGER_PATH", Bench::directory().toUtf8());
    manager->loadAllPlugins();
    for (const QString &name : names) {
        const QString library = name + QStringLiteral(".dll");
        libraries.insert(library, manager->plugin(library));
        if (!libraries.value(library))
            qFatal("%s is not loaded", qPrintable(library));
    }
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
    root = new QWidget;
    manager = QTpluginsManger4CAM::instance();
    load();
    fillRegistry(count);

    const auto add = [&](const std::string &name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark((name + '/' + std::to_string(count)).c_str(), function, arguments...);
    };
    if (updates) {
        addFramesToUpdate();
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

// Other ways to the same end: what it takes them to load a library, to find a function or make an object by
// name, and to hand a message over. Peers that are not installed are left out.
//
//   bench_peers                           dispatch and resolve, with the options of Google Benchmark
//   bench_peers PEER COUNT DIRECTORY      loads 0.dll, 1.dll, ... once and prints how many nanoseconds it
//   took

#include "benchsupport.h"
#include "plugins/peers/peerreceiver.h"
#include "workbench.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QLibrary>
#include <QtWidgets/QWidget>

#include <benchmark/benchmark.h>
#include <glog/logging.h>

#ifdef BENCH_WITH_BOOST
#    include <boost/dll/shared_library.hpp>
#endif
#ifdef BENCH_WITH_POCO
#    include <Poco/ClassLoader.h>
#    include <Poco/SharedLibrary.h>
#endif
#ifdef BENCH_WITH_CLASS_LOADER
#    include <class_loader/class_loader.hpp>
#    include <console_bridge/console.h>
#endif
#ifdef BENCH_WITH_KCOREADDONS
#    include <KPluginFactory>
#    include <KPluginMetaData>
#endif

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>

class Sender : public QObject
{
    Q_OBJECT

signals:
    void sendMsgToManager(PluginMetaData msg);
};

class Receiver : public QObject
{
    Q_OBJECT

public slots:
    void receive(PluginMetaData msg) { m_received += msg.type; }

private:
    qint64 m_received = 0;
};

namespace {

using EntryPoint = void(void *, PluginMetaData);

constexpr char entryPointName[] = "recMsgFromManager";

const QString editor = QStringLiteral("ORVIK-GraphicEditor.dll");

std::string pathOf(const char *library)
{
    return std::string(BENCH_PLUGIN_DIR "/") + library + ".dll";
}

template <typename Work>
void addCase(const std::string &name, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State &state) {
        for (auto _ : state)
            work();
    });
}

// Each peer adds its cases, and tells how it loads a library for good.

using LoadOne = std::function<void(const QString &path)>;

void addQt(std::map<std::string, LoadOne> &loaders)
{
    static Sender sender;
    static Receiver receiver;
    QObject::connect(&sender, &Sender::sendMsgToManager, &receiver, &Receiver::receive, Qt::DirectConnection);
    const PluginMetaData message = Bench::message(editor);
    addCase("dispatch/Qt signal", [message] { emit sender.sendMsgToManager(message); });
    addCase("dispatch/QMetaObject::invokeMethod", [message] {
        QMetaObject::invokeMethod(&receiver, "receive", Qt::DirectConnection, Q_ARG(PluginMetaData, message));
    });

    auto *const library = new QLibrary(QString::fromStdString(pathOf("ORVIK-GraphicEditor")));
    addCase("resolve/QLibrary", [library] { benchmark::DoNotOptimize(library->resolve(entryPointName)); });
    loaders["QLibrary"] = [](const QString &path) {
        auto *const loaded = new QLibrary(path);
        loaded->setLoadHints(QLibrary::ResolveAllSymbolsHint);
        if (!loaded->load())
            qFatal("%s", qPrintable(loaded->errorString()));
    };
}

#ifdef BENCH_WITH_BOOST
void addBoost(std::map<std::string, LoadOne> &loaders)
{
    auto *const library = new boost::dll::shared_library(pathOf("ORVIK-GraphicEditor"));
    const PluginMetaData message = Bench::message(editor);
    addCase("dispatch/Boost.DLL",
            [library, message] { library->get<EntryPoint>(entryPointName)(nullptr, message); });
    addCase("resolve/Boost.DLL",
            [library] { benchmark::DoNotOptimize(&library->get<EntryPoint>(entryPointName)); });
    loaders["Boost.DLL"] = [](const QString &path) {
        new boost::dll::shared_library(path.toStdString(), boost::dll::load_mode::rtld_now);
    };
}
#endif

#ifdef BENCH_WITH_POCO
void addPoco(std::map<std::string, LoadOne> &loaders)
{
    static Poco::ClassLoader<PeerReceiver> loader;
    loader.loadLibrary(pathOf("poco"));
    static const std::unique_ptr<PeerReceiver> receiver(loader.create("PocoReceiver"));
    const PluginMetaData message = Bench::message(editor);
    addCase("dispatch/Poco ClassLoader", [message] { receiver->receive(message); });
    addCase("resolve/Poco ClassLoader",
            [] { benchmark::DoNotOptimize(std::unique_ptr<PeerReceiver>(loader.create("PocoReceiver"))); });
    loaders["Poco ClassLoader"] = [](const QString &path) { loader.loadLibrary(path.toStdString()); };
}
#endif

#ifdef BENCH_WITH_CLASS_LOADER
void addClassLoader(std::map<std::string, LoadOne> &loaders)
{
    console_bridge::setLogLevel(console_bridge::CONSOLE_BRIDGE_LOG_NONE);
    // Never destroyed: at the end of the process its own tables go first.
    auto *const loader = new class_loader::ClassLoader(pathOf("classloader"));
    auto *const receiver =
        new std::shared_ptr<PeerReceiver>(loader->createInstance<PeerReceiver>("ClassLoaderReceiver"));
    const PluginMetaData message = Bench::message(editor);
    addCase("dispatch/ROS class_loader", [receiver, message] { (*receiver)->receive(message); });
    addCase("resolve/ROS class_loader", [loader] {
        benchmark::DoNotOptimize(loader->createInstance<PeerReceiver>("ClassLoaderReceiver"));
    });
    loaders["ROS class_loader"] = [](const QString &path) {
        new class_loader::ClassLoader(path.toStdString());
    };
}
#endif

#ifdef BENCH_WITH_KCOREADDONS
KPluginFactory *kFactoryOf(const QString &path)
{
    const auto result = KPluginFactory::loadFactory(KPluginMetaData(path));
    if (!result)
        qFatal("%s", qPrintable(result.errorText));
    return result.plugin;
}

void addKCoreAddons(std::map<std::string, LoadOne> &loaders)
{
    static KPluginFactory *const factory = kFactoryOf(QString::fromStdString(pathOf("kcoreaddons")));
    static auto *const receiver = dynamic_cast<PeerReceiver *>(factory->create<QObject>());
    const PluginMetaData message = Bench::message(editor);
    addCase("dispatch/KCoreAddons KPluginFactory", [message] { receiver->receive(message); });
    addCase("resolve/KCoreAddons KPluginFactory",
            [] { benchmark::DoNotOptimize(std::unique_ptr<QObject>(factory->create<QObject>())); });
    loaders["KCoreAddons KPluginFactory"] = [](const QString &path) { kFactoryOf(path); };
}
#endif

void addManager()
{
    auto *const workbench = new Bench::Workbench;
    workbench->fill(40);
    const PluginMetaData message = Bench::message(editor);
    addCase("dispatch/pluginManger",
            [workbench, message] { workbench->manager->transmitDataToFramework(workbench->frame, message); });
    addCase("resolve/pluginManger", [workbench] {
        benchmark::DoNotOptimize(workbench->manager->plugin(editor)->resolve(entryPointName));
    });
}

void loadOnce(const LoadOne &loadOne, int count, const QDir &directory)
{
    QElapsedTimer timer;
    timer.start();
    for (int number = 0; number < count; ++number)
        loadOne(directory.absoluteFilePath(QString::number(number) + QStringLiteral(".dll")));
    std::printf("%lld\n", timer.nsecsElapsed());
}

}

int main(int argc, char **argv)
{
    Bench::start(argc, argv);
    std::map<std::string, LoadOne> loaders;
    addQt(loaders);
#ifdef BENCH_WITH_BOOST
    addBoost(loaders);
#endif
#ifdef BENCH_WITH_POCO
    addPoco(loaders);
#endif
#ifdef BENCH_WITH_CLASS_LOADER
    addClassLoader(loaders);
#endif
#ifdef BENCH_WITH_KCOREADDONS
    addKCoreAddons(loaders);
#endif
    if (argc == 4) {
        const auto loader = loaders.find(argv[1]);
        if (loader == loaders.end())
            return 3;
        loadOnce(loader->second, std::atoi(argv[2]), QDir(QString::fromLocal8Bit(argv[3])));
        return 0;
    }
    addManager();
    return Bench::run(argc, argv);
}

#include "bench_peers.moc"

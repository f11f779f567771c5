// A message through the desktop manager's slot, beside the bare Qt signal of the same kind.

#include "benchsupport.h"

#include "PluginInterface.h"
#include "pluginManger.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QPluginLoader>

#include <benchmark/benchmark.h>

#include <utility>

class Sender : public QObject
{
    Q_OBJECT

signals:
    void sendMsgToManager(PluginMetaData msg);
};

/// What a message costs when nobody stands between sender and receiver.
class Receiver : public QObject
{
    Q_OBJECT

public slots:
    void receive(PluginMetaData msg) { m_received += msg.type; }

private:
    qint64 m_received = 0;
};

/// The steps that the manager's slot cannot do without, since receivers come and go: look the plug-in up by
/// its name, ask its loader for the object, and the object for its interface.
class Forwarder : public QObject
{
    Q_OBJECT

public:
    explicit Forwarder(const QString &name) { m_loaders.insert(name, new QPluginLoader(name)); }

public slots:
    void receive(PluginMetaData msg)
    {
        QPluginLoader *const loader = m_loaders.value(msg.dst + QLatin1String(".dll"));
        if (auto *const plugin = dynamic_cast<PluginInterface *>(loader->instance()))
            plugin->recMsgFromManager(std::move(msg));
    }

private:
    QHash<QString, QPluginLoader *> m_loaders;
};

namespace {

constexpr int messagesQueued = 1000;

void sendDirect(benchmark::State &state, QObject *receiver, const char *slot)
{
    Sender sender;
    QObject::connect(&sender, SIGNAL(sendMsgToManager(PluginMetaData)), receiver, slot, Qt::DirectConnection);
    const PluginMetaData message = Bench::message(QStringLiteral("File_Process"));
    for (auto _ : state)
        emit sender.sendMsgToManager(message);
}

void sendQueued(benchmark::State &state, QObject *receiver, const char *slot)
{
    Sender sender;
    QObject::connect(&sender, SIGNAL(sendMsgToManager(PluginMetaData)), receiver, slot, Qt::QueuedConnection);
    const PluginMetaData message = Bench::message(QStringLiteral("File_Process"));
    for (auto _ : state) {
        for (int number = 0; number < messagesQueued; ++number)
            emit sender.sendMsgToManager(message);
        // Sent for one receiver alone, delivered events would stay in the queue and each turn would take
        // longer.
        QCoreApplication::sendPostedEvents();
    }
}

}

int main(int argc, char **argv)
{
    Bench::start(argc, argv);
    QDir(Bench::directory()).mkpath(QStringLiteral("pluginconfig"));
    Bench::writeFile(Bench::directory() + QStringLiteral("/pluginconfig/pluginconfig.json"),
                     Bench::config({QStringLiteral("File_Process")}));
    QDir::setCurrent(Bench::directory());
    QCoreApplication::addLibraryPath(QStringLiteral(BENCH_PLUGIN_DIR));

    QTpluginsManger *const manager = QTpluginsManger::instance();
    manager->loadAllPlugins();
    manager->initSignalAndSlot();

    Receiver receiver;
    const char *const bareSlot = SLOT(receive(PluginMetaData));
    const char *const slot = SLOT(recMegfromPlugin(PluginMetaData));
    Forwarder forwarder(QStringLiteral("File_Process.dll"));
    benchmark::RegisterBenchmark("slot direct/bare", sendDirect, &receiver, bareSlot);
    benchmark::RegisterBenchmark("slot direct/floor", sendDirect, &forwarder, bareSlot);
    benchmark::RegisterBenchmark("slot direct/library", sendDirect, manager, slot);
    benchmark::RegisterBenchmark("slot queued/floor", sendQueued, &receiver, bareSlot);
    benchmark::RegisterBenchmark("slot queued/library", sendQueued, manager, slot);
    return Bench::run(argc, argv);
}

#include "bench_desktop.moc"

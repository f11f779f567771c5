// A message through the desktop manager's slot, beside the bare Qt signal of the same kind.

#include "benchsupport.h"

#include "PluginInterface.h"
#include "pluginManger.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QPluginLoader>

#include <benchmark/benchmark.h>

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
        QCoreApplication::sendPostedEvents(receiver);
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
    benchmark::RegisterBenchmark("slot direct/floor", sendDirect, &receiver, bareSlot);
    benchmark::RegisterBenchmark("slot direct/library", sendDirect, manager, slot);
    benchmark::RegisterBenchmark("slot queued/floor", sendQueued, &receiver, bareSlot);
    benchmark::RegisterBenchmark("slot queued/library", sendQueued, manager, slot);
    return Bench::run(argc, argv);
}

#include "bench_desktop.moc"

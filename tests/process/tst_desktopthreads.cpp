#include "pluginManger.h"
#include "recorder.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QAtomicInt>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>

#include <memory>
#include <vector>

/// Messages from worker threads to the plug-in "File_Process", which notes them on the user-interface thread.
class tst_DesktopThreads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void messageFromAThreadArrivesQueuedOnTheUserInterfaceThread();
    void messagesWaitWhileTheReceiverIsBusy();
    void hundredThousandMessagesFromFourThreadsArriveOnceAndInOrder();

private:
    static void send(int sender, int number);
    /// Lets `count` threads send and waits until as many messages as they send have arrived.
    void run(int threads, int messagesEach);

    QTemporaryDir m_directory;
    /// The numbers received from each sender, in the order of their arrival.
    std::vector<std::vector<int>> m_received;
    int m_total = 0;
};

void tst_DesktopThreads::initTestCase()
{
    QVERIFY(QDir(m_directory.path()).mkpath("pluginconfig"));
    QVERIFY(QDir::setCurrent(m_directory.path()));
    TestFiles::write("pluginconfig/pluginconfig.json", TestFiles::configOf({"File_Process"}));
    QCoreApplication::addLibraryPath(QStringLiteral(FIXTURE_DIR "/desktop"));

    QTpluginsManger *const manager = QTpluginsManger::instance();
    manager->loadAllPlugins();
    manager->initAllPlugins();
    manager->initSignalAndSlot();
    QVERIFY(manager->m_fileProcessObject);
}

void tst_DesktopThreads::send(int sender, int number)
{
    PluginMetaData message;
    message.src = QString::number(sender);
    message.dst = QStringLiteral("File_Process");
    message.type = number;
    message.data[QStringLiteral("Sender")] = sender;
    message.userData = quintptr(sender) << 32 | quintptr(number);
    QMetaObject::invokeMethod(QTpluginsManger::instance()->m_fileProcessObject, "sendMsgToManager",
                              Qt::DirectConnection, Q_ARG(PluginMetaData, message));
}

void tst_DesktopThreads::run(int threads, int messagesEach)
{
    m_received.assign(std::size_t(threads), {});
    m_total = 0;
    Recorder::setOnDelivery([this](const Recorder::Delivery &delivery) {
        QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
        const int sender = delivery.message.src.toInt();
        QCOMPARE(delivery.message.data.value(QStringLiteral("Sender")).toInt(), sender);
        QCOMPARE(delivery.message.userData, quintptr(sender) << 32 | quintptr(delivery.message.type));
        m_received[std::size_t(sender)].push_back(delivery.message.type);
        ++m_total;
        Recorder::takeDeliveries();
    });

    std::vector<std::unique_ptr<QThread>> workers;
    for (int sender = 0; sender < threads; ++sender) {
        workers.emplace_back(QThread::create([=] {
            for (int number = 0; number < messagesEach; ++number)
                send(sender, number);
        }));
        workers.back()->start();
    }
    QTRY_COMPARE_WITH_TIMEOUT(m_total, threads * messagesEach, 60000);
    for (const auto &worker : workers)
        QVERIFY(worker->wait());
    QCoreApplication::processEvents();
    Recorder::setOnDelivery({});
}

void tst_DesktopThreads::messageFromAThreadArrivesQueuedOnTheUserInterfaceThread()
{
    const std::unique_ptr<QThread> worker(QThread::create([] { send(0, 1); }));
    worker->start();
    QVERIFY(worker->wait());
    QVERIFY(Recorder::takeDeliveries().isEmpty());

    QCoreApplication::processEvents();
    const QList<Recorder::Delivery> deliveries = Recorder::takeDeliveries();
    QCOMPARE(deliveries.size(), 1);
    QCOMPARE(deliveries.first().message.type, 1);
}

void tst_DesktopThreads::messagesWaitWhileTheReceiverIsBusy()
{
    QStringList events;
    QAtomicInt sent = 0;
    const std::unique_ptr<QThread> worker(QThread::create([&] {
        for (int number = 2; number <= 4; ++number) {
            send(0, number);
            sent.ref();
        }
    }));
    Recorder::setOnDelivery([&](const Recorder::Delivery &delivery) {
        events += QStringLiteral("begin %1").arg(delivery.message.type);
        if (delivery.message.type == 1) {
            worker->start();
            while (sent.loadAcquire() < 3)
                QThread::msleep(1);
        }
        events += QStringLiteral("end %1").arg(delivery.message.type);
    });

    send(0, 1);
    QCOMPARE(events, (QStringList{"begin 1", "end 1"}));
    QVERIFY(worker->wait());
    QCoreApplication::processEvents();
    Recorder::setOnDelivery({});
    Recorder::takeDeliveries();
    QCOMPARE(events,
             (QStringList{"begin 1", "end 1", "begin 2", "end 2", "begin 3", "end 3", "begin 4", "end 4"}));
}

void tst_DesktopThreads::hundredThousandMessagesFromFourThreadsArriveOnceAndInOrder()
{
    constexpr int threads = 4;
    constexpr int messagesEach = 25000;
    run(threads, messagesEach);

    for (const std::vector<int> &numbers : m_received) {
        QCOMPARE(int(numbers.size()), messagesEach);
        for (int number = 0; number < messagesEach; ++number)
            QCOMPARE(numbers[std::size_t(number)], number);
    }
}

int main(int argc, char **argv)
{
    return runTest<tst_DesktopThreads>(argc, argv);
}

#include "tst_desktopthreads.moc"

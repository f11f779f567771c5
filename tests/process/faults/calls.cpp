// What plug-ins do when they are called.

#include "faults.h"
#include "keptloaders.h"
#include "openbase.h"

#include <QtCore/QDir>
#include <QtCore/QException>
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <csignal>
#include <stdexcept>

namespace {

class OwnException : public QException
{
public:
    void raise() const override { throw *this; }
    OwnException *clone() const override { return new OwnException(*this); }
};

/// A frame with a view in it, which throws at the next message.
struct ThrowingView
{
    ThrowingView(Faults &f, std::function<void()> thrower)
        : frame((f.load(), f.graphicFrame("A | pcb")))
        , view(f.element(f.view, frame))
    {
        f.onNextDelivery(std::move(thrower));
    }

    QWidget *frame;
    QWidget *view;
};

/// As updateGraphic() hands a message on.
PluginMetaData updated(const PluginMetaData &message)
{
    return Faults::withMissing(message, {"ChangeStepName", "OldJobName"});
}

void pointerIsShown(Faults &f)
{
    OwnException exception;
    const ThrowingView s(f, [&] { throw &exception; });
    const auto sent = f.message(f.view);
    f.manager()->updateGraphic("A", sent);
    QCOMPARE(f.deliveries(), Deliveries{f.to(s.view, updated(sent))});
    QCOMPARE(f.log(), Faults::Lines{f.error("updateGraphic Error.")});
    const QList<MessageBoxes::Box> shown = f.boxes();
    QCOMPARE(shown.size(), 1);
    QVERIFY(isInfoBox(shown.first(), "updateGraphic Error."));
    f.manager()->updateGraphic("A", sent);
    QCOMPARE(f.deliveries(), Deliveries{f.to(s.view, updated(sent))});
}

/// What is thrown by value, or by another kind of pointer, reaches the caller, and the manager works on.
template <typename Thrown>
void reachesTheCaller(Faults &f, Thrown thrown)
{
    const ThrowingView s(f, [=] { throw thrown; });
    const auto sent = f.message(f.view);
    QVERIFY_EXCEPTION_THROWN(f.manager()->updateGraphic("A", sent), Thrown);
    f.onNextDelivery([=] { throw thrown; });
    QVERIFY_EXCEPTION_THROWN(f.manager()->recMegToPlugin(s.frame, sent), Thrown);
    QCOMPARE(f.log(), Faults::Lines());
    f.manager()->recMegToPlugin(s.frame, sent);
    QCOMPARE(f.deliveries(),
             (Deliveries{f.to(s.view, updated(sent)), f.to(s.view, sent), f.to(s.view, sent)}));
    QCOMPARE(f.log(), Faults::Lines{f.info("Sender send to Graphic_View 7")});
}

void onlyInADependency(Faults &f)
{
    QVERIFY(QFile::copy(Faults::fixture("hollow/ORVIK-GraphicEditor.dll"),
                        Faults::replaceable("ORVIK-GraphicEditor.dll")));
    f.load({"ORVIK-GraphicEditor"});
    QWidget *const frame = f.manager()->Ov_RegisterGraphicFramework(nullptr, "A | pcb", false);
    QVERIFY(frame);
    QCOMPARE(f.factoryCalls().size(), 1);
    QCOMPARE(f.deliveries().list.size(), 1);
    TestFiles::remove(Faults::replaceable("ORVIK-GraphicEditor.dll"));
}

void isData(Faults &f)
{
    const QString library = Faults::fixture("entry_point_is_data/Entry_Point_Is_Data");
    const QString name = library + ".dll";
    f.load({library, "Graphic_CamGuide", "Graphic_Tips"});
    QWidget *const root = f.insertRoot();
    const QScopedPointer<QObject> made(f.manager()->Ov_Register_Common(name.toStdString(), root));
    QVERIFY(made && f.isRegistered(made.data()));
    QVERIFY(f.manager()->plugin(name)->resolve("recMsgFromManager"));
    QWidget *const receiver = f.element(f.tips, root);
    f.manager()->updateEngieer({}, f.message(f.tips));
    QCOMPARE(f.deliveries(), Deliveries{f.to(receiver, f.message(f.tips))});
    f.expectNothingMore();
    Faults::reachTheEnd();
    f.manager()->updateEngieer({}, f.message(name));
}

void missing(Faults &f)
{
    const QString library = Faults::fixture("without_entry_point/Without_Entry_Point");
    f.load({library});
    QWidget *const root = f.insertRoot();
    const QScopedPointer<QObject> made(
        f.manager()->Ov_Register_Common((library + ".dll").toStdString(), root));
    QVERIFY(made);
    f.manager()->updateEngieer({}, f.message(library + ".dll"));
    QCOMPARE(f.log(), Faults::Lines());
}

/// Two desktop tools and other plug-ins, connected to the manager: one tool sends by its own signal.
struct Wire
{
    explicit Wire(Faults &f, const QStringList &others = {});

    void send(const PluginMetaData &message) const;
    /// Posted to the manager, as signals are that come from another thread.
    void sendFromAThread(const QList<PluginMetaData> &messages) const;

    QObject *sender = nullptr;
    QObject *receiver = nullptr;
    const QString receiverFile;
};

Wire::Wire(Faults &f, const QStringList &others)
    : receiverFile(f.path("tools/ListBar_PNList.dll"))
{
    QVERIFY(QDir().mkdir(f.path("tools")));
    for (const char *tool : {"File_Process.dll", "ListBar_PNList.dll"})
        f.make(QLatin1String("tools/") + tool, TestFiles::read(Faults::fixture("desktop/") + tool));
    QCoreApplication::addLibraryPath(f.path("tools"));
    f.writeDesktopList(TestFiles::configOf(QStringList{"File_Process", "ListBar_PNList"} + others));
    f.desktop()->loadAllPlugins();
    QCOMPARE(f.log(), Faults::Lines{Faults::desktopLoaded()});
    f.desktop()->initAllPlugins();
    f.desktop()->initSignalAndSlot();
    f.factoryCalls();
    f.debug().take();
    sender = f.desktop()->m_fileProcessObject;
    receiver = f.desktop()->m_pnListObject;
    QVERIFY(sender && receiver);
}

void Wire::send(const PluginMetaData &message) const
{
    QVERIFY(QMetaObject::invokeMethod(sender, "sendMsgToManager", Qt::DirectConnection,
                                      Q_ARG(PluginMetaData, message)));
}

void Wire::sendFromAThread(const QList<PluginMetaData> &messages) const
{
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        for (const PluginMetaData &message : messages)
            send(message);
    }));
    thread->start();
    QVERIFY(thread->wait());
}

PluginMetaData toPNList(qint32 type)
{
    return Faults::message("ListBar_PNList", {}, type);
}

Recorder::Delivery byPNList(const Wire &wire, const PluginMetaData &message)
{
    return Faults::by("ListBar_PNList.dll", wire.receiver, message);
}

void throwFromASlot()
{
    throw std::runtime_error("from a slot");
}

void slotThrows(Faults &f)
{
    const Wire wire(f);
    f.onNextDelivery(throwFromASlot);
    QVERIFY_EXCEPTION_THROWN(wire.send(toPNList(1)), std::runtime_error);
    wire.send(toPNList(2));
    QCOMPARE(f.deliveries(), (Deliveries{byPNList(wire, toPNList(1)), byPNList(wire, toPNList(2))}));
    const auto toItself = f.message("File_Process");
    wire.send(toItself);
    QCOMPARE(f.deliveries(), Deliveries{f.by("File_Process.dll", wire.sender, toItself)});
}

void queuedSlotThrows(Faults &f)
{
    const Wire wire(f);
    f.onNextDelivery(throwFromASlot);
    wire.sendFromAThread({toPNList(1), toPNList(2)});
    QCOMPARE(f.deliveries(), Deliveries());
    QVERIFY_EXCEPTION_THROWN(QCoreApplication::sendPostedEvents(), std::runtime_error);
    QCOMPARE(f.deliveries(), Deliveries{byPNList(wire, toPNList(1))});
    QCoreApplication::sendPostedEvents();
    QCOMPARE(f.deliveries(), Deliveries{byPNList(wire, toPNList(2))});
}

void queuedSlotThrowsIntoTheLoop(Faults &f)
{
    const Wire wire(f);
    f.onNextDelivery(throwFromASlot);
    wire.sendFromAThread({toPNList(1), toPNList(2)});
    QVERIFY_EXCEPTION_THROWN(QCoreApplication::exec(), std::runtime_error);
    QCOMPARE(f.deliveries(), Deliveries{byPNList(wire, toPNList(1))});
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    QCOMPARE(f.deliveries(), Deliveries{byPNList(wire, toPNList(2))});
}

// The box of the failed load has them handled while the plug-ins are being loaded.
void queuedReceiverGoesAway(Faults &f)
{
    const KeptLoaders keptLoaders;
    const Wire wire(f);
    const auto toTheOther = f.message("File_Process");
    wire.sendFromAThread({toPNList(1), toTheOther, toPNList(2)});
    TestFiles::remove(wire.receiverFile);
    f.desktop()->loadAllPlugins();
    f.expectOneFailure("ListBar_PNList.dll", Faults::reasonOfQt("ListBar_PNList.dll"),
                       Faults::desktopLoaded());
    QCoreApplication::sendPostedEvents();
    // By the root object of before or after, whichever of the two is loaded first.
    const Deliveries received = f.deliveries();
    QCOMPARE(received.list.size(), 1);
    QCOMPARE(received, Deliveries{f.by("File_Process.dll", received.list.first().target, toTheOther)});
}

/// The root object of a plug-in that is loaded.
QObject *rootObjectOf(const QString &path)
{
    QPluginLoader loader(path);
    QObject *const root = loader.instance();
    loader.unload(); // Its own hold: the manager has another.
    return root;
}

// When somebody has deleted a root object, Qt makes another at the next message.
void rootObjectThrowsAtAMessage(Faults &f)
{
    const QString path = Faults::fixture("acting_root_object/Acting_Root_Object.dll");
    const Wire wire(f, {f.withoutSuffix(path)});
    const auto numbered = [&](qint32 type) { return f.message(f.withoutSuffix(path), {}, type); };
    const auto received = [&](qint32 type) {
        return Deliveries{f.by("Acting_Root_Object.dll", rootObjectOf(path), numbered(type))};
    };
    const auto letTheNextThrow = [&] {
        delete rootObjectOf(path);
        Recorder::setOnFactory([](const QString &, QWidget *) {
            Recorder::setOnFactory({});
            throw std::runtime_error("from a root object");
        });
    };
    letTheNextThrow();
    QVERIFY_EXCEPTION_THROWN(wire.send(numbered(1)), std::runtime_error);
    f.expectNothingMore();
    wire.send(numbered(2));
    QCOMPARE(f.deliveries(), received(2));

    letTheNextThrow();
    wire.sendFromAThread({numbered(3), numbered(4)});
    QVERIFY_EXCEPTION_THROWN(QCoreApplication::sendPostedEvents(), std::runtime_error);
    f.expectNothingMore();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(f.deliveries(), received(4));
}

void anotherIsUnloadedDuringADelivery(Faults &f)
{
    f.load();
    QWidget *const frame = f.graphicFrame("A | pcb");
    QWidget *const receiver = f.element(f.view, frame);
    const QString path = f.make("Unloaded.dll", Faults::healthyLibrary());
    OpenBase base;
    QTPluginsMangerPrivate tables;
    base.loadLibraryPlugin(tables, path);
    QVERIFY(QLibrary(path).isLoaded());
    f.onNextDelivery([&] { base.unloadAllLibraries(tables); });
    const auto sent = f.message(f.view);
    f.manager()->recMegToPlugin(frame, sent);
    QVERIFY(!QLibrary(path).isLoaded());
    QCOMPARE(f.deliveries(), Deliveries{f.to(receiver, sent)});
    QCOMPARE(f.log(), (Faults::Lines{Faults::allUnloaded(), f.info("Sender send to Graphic_View 7")}));
}

// The only library, since another might take its place in memory, with the same code at the same addresses.
void ownLibraryIsUnloadedDuringADelivery(Faults &f)
{
    const KeptLoaders keptLoaders;
    const QString path = Faults::replaceable("Graphic_Tips.dll");
    QVERIFY(QFile::copy(Faults::fixture("healthy/Graphic_Tips.dll"), path));
    f.load({"Graphic_Tips"});
    QWidget *const receiver = f.manager()->Ov_RegisterGraphic_Tips(f.insertRoot());
    QVERIFY(receiver);
    const auto sent = f.message(f.tips);
    f.onNextDelivery([&] {
        TestFiles::replace(path, f.make("Empty.dll", {}));
        f.manager()->loadAllPlugins();
        // Only now is nothing left to return to.
        const QString reason = "Cannot load library Graphic_Tips.dll: (" + path + ": file too short)";
        f.expectOneFailure("Graphic_Tips.dll", reason, Faults::camLoaded());
        QVERIFY(!f.manager()->plugin(f.tips));
        QCOMPARE(f.deliveries(), Deliveries{f.to(receiver, sent)});
        f.expectNothingMore();
        Faults::reachTheEnd();
    });
    f.manager()->updateEngieer({}, sent);
}

}

Rows callRows()
{
    static std::runtime_error exception("thrown");
    const QByteArray reaches = "reaches the caller, who can go on";
    constexpr Ending crash{Ending::Signal, SIGSEGV};
    return {
        {"entry point only in a dependency", "is found there", onlyInADependency},
        {"no entry point", "the message is passed over", missing},
        {"entry point that is data", "is called", isData, crash},
        {"entry point throwing a pointer to QException", "line, box; the others work on", pointerIsShown},
        {"entry point throwing a pointer to std::exception", reaches,
         [](Faults &f) { reachesTheCaller(f, static_cast<std::exception *>(&exception)); }},
        {"entry point throwing QException", reaches, [](Faults &f) { reachesTheCaller(f, QException()); }},
        {"entry point throwing std::exception", reaches,
         [](Faults &f) { reachesTheCaller(f, std::runtime_error("thrown")); }},
        {"entry point throwing int", reaches, [](Faults &f) { reachesTheCaller(f, 7); }},
        {"entry point throwing const char *", reaches,
         [](Faults &f) { reachesTheCaller(f, static_cast<const char *>("thrown")); }},
        {"slot throwing, called directly", reaches, slotThrows},
        {"slot throwing, queued, events sent by hand", reaches, queuedSlotThrows},
        {"slot throwing, queued, in the event loop", "reaches the caller of the loop, where Qt allows it",
         queuedSlotThrowsIntoTheLoop},
        {"root object's constructor that throws at a message", "reaches the sender; queued, the event loop",
         rootObjectThrowsAtAMessage},
        {"queued messages to a receiver that goes away", "are dropped, the others arrive",
         queuedReceiverGoesAway},
        {"unload of another library during a delivery", "the delivery goes on",
         anotherIsUnloadedDuringADelivery},
        {"unload of the library that is being called", "it returns to where nothing is",
         ownLibraryIsUnloadedDuringADelivery, crash},
    };
}

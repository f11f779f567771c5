// What plug-ins do when they are called.

#include "faults.h"
#include "openbase.h"

#include <QtCore/QDir>
#include <QtCore/QException>
#include <QtCore/QFile>
#include <QtCore/QLibrary>
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
QWidget *frameThatThrows(Faults &f, std::function<void()> thrower)
{
    f.load();
    QWidget *const frame = f.graphicFrame("A | pcb");
    f.element(f.view, frame);
    f.onNextDelivery(std::move(thrower));
    return frame;
}

void pointerIsShown(Faults &f)
{
    OwnException exception;
    frameThatThrows(f, [&] { throw &exception; });
    f.manager()->updateGraphic("A", f.message(f.view));
    QCOMPARE(f.deliveries().list.size(), 1);
    QCOMPARE(f.log(), Faults::Lines{f.error("updateGraphic Error.")});
    const QList<MessageBoxes::Box> shown = f.boxes();
    QCOMPARE(shown.size(), 1);
    QVERIFY(isInfoBox(shown.first(), "updateGraphic Error."));
}

/// What is thrown by value, or by another kind of pointer, reaches the caller, and the manager works on.
template <typename Thrown>
void reachesTheCaller(Faults &f, Thrown thrown)
{
    QWidget *const frame = frameThatThrows(f, [=] { throw thrown; });
    QVERIFY_EXCEPTION_THROWN(f.manager()->updateGraphic("A", f.message(f.view)), Thrown);
    f.onNextDelivery([=] { throw thrown; });
    QVERIFY_EXCEPTION_THROWN(f.manager()->recMegToPlugin(frame, f.message(f.view)), Thrown);
    QCOMPARE(f.deliveries().list.size(), 2);
    f.manager()->recMegToPlugin(frame, f.message(f.view, {}, 10000000));
    QCOMPARE(f.deliveries().list.size(), 1);
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
    f.load({library});
    QWidget root;
    f.manager()->insertRoot("Engineering", &root);
    QVERIFY(f.manager()->Ov_Register_Common((library + ".dll").toStdString(), &root));
    Faults::reachTheEnd();
    f.manager()->updateEngieer({}, f.message(library + ".dll"));
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

/// A copy of a desktop plug-in of its own, loaded and connected. Returns the name that messages go to.
QString connectedPlugin(Faults &f)
{
    const QString path = f.make("Other.dll", Faults::healthyPlugin());
    f.loadQtPlugin(path);
    f.desktop()->initSignalAndSlot();
    f.log();
    f.debug().take();
    return f.path("Other");
}

void slotThrows(Faults &f)
{
    const QString name = connectedPlugin(f);
    f.onNextDelivery([] { throw std::runtime_error("from a slot"); });
    QVERIFY_EXCEPTION_THROWN(f.desktop()->recMegfromPlugin(f.message(name)), std::runtime_error);
    f.desktop()->recMegfromPlugin(f.message(name));
    QCOMPARE(f.deliveries().list.size(), 2);
}

void queue(Faults &f, const PluginMetaData &message)
{
    QVERIFY(QMetaObject::invokeMethod(f.desktop(), "recMegfromPlugin", Qt::QueuedConnection,
                                      Q_ARG(PluginMetaData, message)));
}

void queuedSlotThrows(Faults &f)
{
    const QString name = connectedPlugin(f);
    f.onNextDelivery([] { throw std::runtime_error("from a slot"); });
    queue(f, f.message(name));
    QVERIFY_EXCEPTION_THROWN(QCoreApplication::sendPostedEvents(), std::runtime_error);
    f.desktop()->recMegfromPlugin(f.message(name));
    QCOMPARE(f.deliveries().list.size(), 2);
}

void queuedSlotThrowsIntoTheLoop(Faults &f)
{
    const QString name = connectedPlugin(f);
    f.onNextDelivery([] { throw std::runtime_error("from a slot"); });
    queue(f, f.message(name));
    QVERIFY_EXCEPTION_THROWN(QCoreApplication::exec(), std::runtime_error);
    queue(f, f.message(name));
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    QCOMPARE(f.deliveries().list.size(), 2);
}

void queuedReceiverGoesAway(Faults &f)
{
    const QString name = connectedPlugin(f);
    queue(f, f.message(name));
    queue(f, f.message(name));
    TestFiles::remove(f.path("Other.dll"));
    f.desktop()->loadAllPlugins();
    QCOMPARE(f.boxes().size(), 1);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(f.deliveries(), Deliveries());
    QCOMPARE(f.log().size(), 2);
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
    f.manager()->recMegToPlugin(frame, f.message(f.view, {}, 10000000));
    QVERIFY(!QLibrary(path).isLoaded());
    QCOMPARE(f.deliveries(), Deliveries{f.to(receiver, f.message(f.view, {}, 10000000))});
    QCOMPARE(f.log().size(), 1);
}

// The only library, since another might take its place in memory, with the same code at the same addresses.
void ownLibraryIsUnloadedDuringADelivery(Faults &f)
{
    const QString path = Faults::replaceable("Graphic_Tips.dll");
    QVERIFY(QFile::copy(Faults::fixture("healthy/Graphic_Tips.dll"), path));
    f.load({"Graphic_Tips"});
    QVERIFY(f.manager()->Ov_RegisterGraphic_Tips(f.insertRoot()));
    f.onNextDelivery([&] {
        TestFiles::replace(path, f.make("Empty.dll", {}));
        Faults::reachTheEnd();
        f.manager()->loadAllPlugins();
    });
    f.manager()->updateEngieer({}, f.message(f.tips));
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
        {"queued messages to a receiver that goes away", "are dropped", queuedReceiverGoesAway},
        {"unload of another library during a delivery", "the delivery goes on",
         anotherIsUnloadedDuringADelivery},
        {"unload of the library that is being called", "it returns to where nothing is",
         ownLibraryIsUnloadedDuringADelivery, crash},
    };
}

// Messages and registrations in unusual places, and very many of them.

#include "faults.h"

#include <QtTest/QtTest>

namespace {

constexpr qint32 quiet = 10000000;

struct Scene
{
    explicit Scene(Faults &f)
        : frame((f.load(), f.graphicFrame("A | pcb")))
        , first(f.element(f.view, frame))
        , second(f.element(f.tips, frame))
    {
    }

    QWidget *frame;
    QWidget *first;
    QWidget *second;
};

// From one element to the other and back, each time before the one before has returned.
void reentrant(Faults &f)
{
    const Scene s(f);
    constexpr int depth = 100;
    Deliveries expected;
    Faults::Lines traces;
    for (int number = 0; number < depth; ++number) {
        const bool toFirst = number % 2 == 0;
        expected.list.append(f.to(toFirst ? s.first : s.second,
                                  f.message(toFirst ? f.view : f.tips, {{"Number", number}}, number)));
        const char *const text = toFirst ? "Sender send to Graphic_View " : "Sender send to Graphic_Tips ";
        traces.prepend(f.info(text + QByteArray::number(number)));
    }
    int sent = 0;
    const auto sendNext = [&] {
        if (sent < depth)
            f.manager()->recMegToPlugin(s.frame, expected.list.at(sent++).message);
    };
    Recorder::setOnDelivery([&](const Recorder::Delivery &) { sendNext(); });
    sendNext();
    QCOMPARE(f.deliveries(), expected);
    // Each is traced when it returns, so the innermost comes first.
    QCOMPARE(f.log(), traces);
}

void thereAndBack(Faults &f)
{
    const Scene s(f);
    const auto question = f.message(f.view, {}, 1, f.tips);
    const auto sentOn = f.message(f.tips, {}, 2, f.view);
    const auto answer = f.message(f.view, {}, 3, f.tips);
    f.onDeliveryTo(s.first, [&] {
        f.onDeliveryTo(s.second, [&] { f.manager()->recMegToPlugin(s.frame, answer); });
        f.manager()->recMegToPlugin(s.frame, sentOn);
    });
    f.manager()->recMegToPlugin(s.frame, question);
    QCOMPARE(f.deliveries(),
             (Deliveries{f.to(s.first, question), f.to(s.second, sentOn), f.to(s.first, answer)}));
    QCOMPARE(f.log(), (Faults::Lines{f.info("Graphic_Tips send to Graphic_View 3"),
                                     f.info("Graphic_View send to Graphic_Tips 2"),
                                     f.info("Graphic_Tips send to Graphic_View 1")}));
}

void registryChanges(Faults &f)
{
    f.load();
    QWidget *const frame = f.graphicFrame("A | pcb");
    const auto [first, second] = f.twins(f.view, frame);
    const auto sent = f.message(f.view);
    const auto received = f.withMissing(sent, {"ChangeStepName", "OldJobName"});
    QWidget *late = nullptr;
    f.onDeliveryTo(first, [&, receiver = first] {
        for (int number = 0; number < 100; ++number)
            late = f.element(f.view, f.graphicFrame("A | late " + QString::number(number)));
        f.manager()->Ov_DeleteTreeNode("Graphic", "A | pcb");
        QVERIFY(!f.isRegistered(receiver));
    });
    f.manager()->updateGraphic("A", sent);
    // Between the two elements the frame is told to close.
    QCOMPARE(f.deliveries(),
             (Deliveries{f.to(first, received), f.to(frame, f.note("", f.graphicEditor, 20002402)),
                         f.to(second, received)}));
    for (QWidget *gone : {frame, first, second})
        QVERIFY(!f.isRegistered(gone));
    f.manager()->updateGraphic("A", sent);
    const QList<Recorder::Delivery> toLate = f.deliveries().list;
    QCOMPARE(toLate.size(), 100);
    QVERIFY(toLate.last() == f.to(late, received));
}

void factoryReentered(Faults &f)
{
    f.load();
    QWidget *const frame = f.graphicFrame("A | pcb");
    const auto [first, second] = f.twins(f.view, frame);
    QVERIFY(first && second && first != second);
    const auto sent = f.message(f.view, {{"DstType", "Graphic"}, {"JobName", "A"}, {"Step", "pcb"}});
    f.manager()->pluginTransmitData(sent);
    QCOMPARE(f.deliveries(), (Deliveries{f.to(first, sent), f.to(second, sent)}));
}

void aMillionDeliveries(Faults &f)
{
    const Scene s(f);
    constexpr int times = 1000000;
    auto sent = f.message(f.view, {}, quiet);
    int received = 0;
    Recorder::setOnDelivery([&](const Recorder::Delivery &delivery) {
        Recorder::takeDeliveries();
        received += delivery == f.to(s.first, sent) ? 1 : 0;
    });
    for (int time = 0; time < times; ++time) {
        sent.userData = quint64(time);
        f.manager()->recMegToPlugin(s.frame, sent);
        QCOMPARE(received, time + 1);
    }
    QCOMPARE(received, times);
}

void nullTarget(Faults &f)
{
    const Scene s(f);
    f.manager()->transmitDataToFramework(nullptr, f.message(f.graphicEditor));
    QCOMPARE(f.deliveries(), Deliveries{f.to(nullptr, f.message(f.graphicEditor))});
    f.manager()->recMegToPlugin(nullptr, f.message(f.view));
    f.manager()->sendKeyBoardStatusToGraphic(nullptr, f.message(f.view));
    QCOMPARE(f.deliveries(), Deliveries());
    QCOMPARE(f.log(), Faults::Lines{f.error("recMegToPlugin metadate frame is 0 src: Sender.dll"
                                            " dst:Graphic_View.dlltype:7")});
}

void factoryReturnsNull(Faults &f)
{
    f.load();
    QWidget *const frame = f.graphicFrame("A | pcb");
    Recorder::setFactoriesReturnNull(true);
    QVERIFY(!f.manager()->Ov_RegisterGraphic_View(frame));
    Recorder::setFactoriesReturnNull(false);
    f.factoryCalls();
    f.manager()->recMegToPlugin(frame, f.message(f.view, {}, quiet));
    QCOMPARE(f.deliveries(), Deliveries{f.to(nullptr, f.message(f.view, {}, quiet))});
}

void unknownDestination(Faults &f)
{
    const Scene s(f);
    f.manager()->recMegToPlugin(s.frame, f.message("Nobody.dll"));
    f.manager()->pluginTransmitData(f.message(f.view, {{"DstType", "Nowhere"}, {"JobName", "A"}}));
    f.manager()->pluginTransmitData(f.message(f.view, {{"DstType", "Matrix"}, {"JobName", "Z"}}));
    f.desktop()->recMegfromPlugin(f.message("Nobody"));
    QCOMPARE(f.deliveries(), Deliveries());
    QCOMPARE(f.log(), Faults::Lines());
}

void messageToItself(Faults &f)
{
    const Scene s(f);
    const auto sent = f.message(f.view, {}, 5, f.view);
    f.onDeliveryTo(s.first, [&] { f.manager()->recMegToPlugin(s.frame, sent); });
    f.manager()->recMegToPlugin(s.frame, sent);
    QCOMPARE(f.deliveries(), (Deliveries{f.to(s.first, sent), f.to(s.first, sent)}));
    QCOMPARE(f.log(), (Faults::Lines{f.info("Graphic_View send to Graphic_View 5"),
                                     f.info("Graphic_View send to Graphic_View 5")}));
}

void invalidType(Faults &f)
{
    const Scene s(f);
    f.manager()->recMegToPlugin(s.frame, f.message(f.view, {}, -1));
    QCOMPARE(f.deliveries(), Deliveries());
    QCOMPARE(f.log(), Faults::Lines{f.error("recMegToPlugin metadate type is -1")});
}

}

Rows messageRows()
{
    return {
        {"re-entrant delivery, 100 deep", "each is delivered", reentrant},
        {"A to B to A", "all three are delivered, the innermost is traced first", thereAndBack},
        {"registry changed during a delivery", "what was found is served, the rest is as left",
         registryChanges},
        {"factory re-entering the factory", "both elements are recorded and receive", factoryReentered},
        {"factory returning null", "null is remembered and handed on", factoryReturnsNull},
        {"1,000,000 deliveries", "each arrives, in order", aMillionDeliveries, {}, {}, true},
        {"null target", "handed on where the registry is not asked, refused where it is", nullTarget},
        {"unknown destination", "dropped in silence", unknownDestination},
        {"message to itself", "delivered", messageToItself},
        {"message of the invalid type", "line; not delivered", invalidType},
    };
}

#include "camtest.h"
#include "testmain.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include <vector>

/// Plug-ins that call the manager back from their entry points and factories.
class tst_Reentrance : public CamTest
{
    Q_OBJECT

private slots:
    void init();

    void messageIsSentOnAndAnswered();
    void elementSendsToItself();
    void receiverSendsToEveryone();

    void elementRegisteredMeanwhileDoesNotReceive();
    void frameRegisteredMeanwhileDoesNotReceive();
    void frameUnregisteredMeanwhileIsServedToItsEnd();
    void frameUnregisteredMeanwhileReceivesItsText();
    void unregisteredFrameTurnsOutEmptyWhenItIsReached();
    void ownJobIsDeletedWhileItIsUpdated();
    void ownJobIsDeletedWhileItsTextIsSet();
    void ownJobIsDeletedWhileItsMessageIsTraced();
    void jobRenamedMeanwhileReceivesUnderItsOldName();
    void stepRenamedMeanwhileReceivesUnderItsOldName();
    void rootInsertedMeanwhileCountsFromTheNextMessage();
    void secondRootChangesNothing();

    void frameRegistersItselfWhenItIsTold();
    void frameUnregistersItselfWhenItIsTold();
    void dfmFrameUnregistersItselfWhenItIsTold();
    void frameRegistersAgainWhenItIsUnregistered();
    void frameUnregisteredTwiceIsToldOnce();

    void jobDeletedWithinItsDeletionIsToldTwice();
    void stepDeletedWithinTheDeletionOfItsJobIsToldTwice();
    void deletedFrameOpensAgain();
    void deletedFrameOpensAnotherOfItsJob();
    void jobRenamedBackIsToldNothingMore();
    void jobDeletedWhileItIsRenamedIsToldNothingMore();

    void factoryRegistersItsOwnFrame();
    void factoryRegistersAnotherFrame();
    void factoryRegistersElementsOfAnotherFrame();
    void factoryUnregistersTheParentFrame();
    void factoryDeletesAnotherJob();
    void factorySendsMessages();

    void textsOfTheCallerMayChangeMeanwhile();
    void namesOfTheCallerMayChangeWhileAJobIsDeleted();
    void namesOfTheCallerMayChangeWhileAJobIsRenamed();
    void namesOfTheCallerMayChangeWhileAFrameIsMade();
    void rootInsertedByAFactoryIsTheParentOfItsFrame();

    void everyOperationSurvivesAGrowingRegistry();
    void everyOperationSurvivesAnEmptiedRegistry();
    void widgetsMayBeDeletedLater();

private:
    static std::vector<std::function<void()>> operations();
};

namespace {

const PluginMetaData closeMessage{"ORVIK-GraphicEditor.dll", "ORVIK-GraphicEditor.dll", 20002402, {}, 0};
const QStringList jobKeys{"ChangeStepName", "OldJobName"};

}

void tst_Reentrance::init()
{
    CamTest::init();
    load();
}

void tst_Reentrance::messageIsSentOnAndAnswered()
{
    QWidget *const frame = graphicFrame("A | pcb");
    QWidget *const first = element(view, frame);
    QWidget *const second = element(tips, frame);
    const auto question = message(view, {}, 1, "Host.dll");
    const auto sentOn = message(tips, {}, 2, view);
    const auto answer = message(view, {}, 3, tips);
    onDeliveryTo(first, [&] {
        onDeliveryTo(second, [&] { manager()->recMegToPlugin(frame, answer); });
        manager()->recMegToPlugin(frame, sentOn);
    });
    manager()->recMegToPlugin(frame, question);
    QCOMPARE(deliveries(), (Deliveries{to(first, question), to(second, sentOn), to(first, answer)}));
    QCOMPARE(log(), (QList<LogLines::Line>{info("Graphic_Tips send to Graphic_View 3"),
                                           info("Graphic_View send to Graphic_Tips 2"),
                                           info("Host send to Graphic_View 1")}));
}

void tst_Reentrance::elementSendsToItself()
{
    QWidget *const frame = graphicFrame("A | pcb");
    QWidget *const receiver = element(view, frame);
    constexpr int times = 100;
    int left = times;
    Recorder::setOnDelivery([&](const Recorder::Delivery &) {
        if (--left > 0)
            manager()->recMegToPlugin(frame, message(view, {}, 10000000));
    });
    manager()->recMegToPlugin(frame, message(view, {}, 10000000));
    Deliveries expected;
    for (int time = 0; time < times; ++time)
        expected.list.append(to(receiver, message(view, {}, 10000000)));
    QCOMPARE(deliveries(), expected);
}

void tst_Reentrance::receiverSendsToEveryone()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const top = graphicFrame("A | top");
    const auto outer = message(graphicEditor, {}, 1);
    const auto inner = message(graphicEditor, {}, 2);
    onDeliveryTo(pcb, [&] { manager()->setInterfaceTexts("Graphic", "A", inner); });
    manager()->setInterfaceTexts("Graphic", "A", outer);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, outer), to(pcb, inner), to(top, inner), to(top, outer)}));
}

void tst_Reentrance::elementRegisteredMeanwhileDoesNotReceive()
{
    QWidget *const frame = graphicFrame("A | pcb");
    const auto [first, second] = twins(view, frame);
    const auto sent = message(view);
    const auto received = withMissing(sent, jobKeys);
    QWidget *late = nullptr;
    onDeliveryTo(first, [&] { late = element("Own_Graphic_View.dll", frame); });
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, received), to(second, received)}));
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, received), to(second, received), to(late, received)}));
}

void tst_Reentrance::frameRegisteredMeanwhileDoesNotReceive()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    const auto sent = message(graphicEditor);
    QWidget *late = nullptr;
    onDeliveryTo(pcb, [&] { late = graphicFrame("A | late"); });
    manager()->setInterfaceTexts("Graphic", "A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, sent)}));
    manager()->Eda_setTransmitData("Graphic", "A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, sent), to(late, sent)}));
}

void tst_Reentrance::frameUnregisteredMeanwhileIsServedToItsEnd()
{
    QWidget *const frame = graphicFrame("A | pcb");
    const auto [first, second] = twins(view, frame);
    const auto sent = message(view, {{"DstType", "Graphic"}, {"JobName", "A"}, {"Step", "pcb"}});
    onDeliveryTo(first, [] { manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "pcb"); });
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(frame, closeMessage), to(second, sent)}));
    for (QWidget *gone : {frame, first, second})
        QVERIFY(!isRegistered(gone));
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Reentrance::frameUnregisteredMeanwhileReceivesItsText()
{
    QWidget *const pcb = stepFrame("A", "pcb");
    QWidget *const top = stepFrame("A", "top");
    const auto sent = message(graphicEditor);
    onDeliveryTo(pcb, [] {
        manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "pcb");
        manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "top");
    });
    manager()->setInterfaceTexts("Graphic", "A", sent);
    QCOMPARE(deliveries(),
             (Deliveries{to(pcb, sent), to(pcb, closeMessage), to(top, closeMessage), to(top, sent)}));
}

// Frames are collected first, but each frame's elements only when it is its turn.
void tst_Reentrance::unregisteredFrameTurnsOutEmptyWhenItIsReached()
{
    QWidget *const inPcb = element(view, stepFrame("A", "pcb"));
    QWidget *const top = stepFrame("A", "top");
    element(view, top);
    QWidget *const inThird = element(view, stepFrame("A", "third"));
    const auto sent = message(view);
    const auto received = withMissing(sent, jobKeys);
    onDeliveryTo(inPcb, [] { manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "top"); });
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(inPcb, received), to(top, closeMessage), to(inThird, received)}));
}

void tst_Reentrance::ownJobIsDeletedWhileItIsUpdated()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    const auto [first, second] = twins(view, pcb);
    QWidget *const top = graphicFrame("A | top");
    QWidget *const inTop = element(view, top);
    const auto sent = message(view);
    const auto close = note("", graphicEditor, 20002402);
    onDeliveryTo(first, [] { manager()->Ov_DeleteTreeNode("Matrix", "A"); });
    manager()->ChangeCompareJobInfo(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(pcb, close), to(top, close), to(second, sent)}));
    for (QWidget *gone : {pcb, first, second, top, inTop})
        QVERIFY(!isRegistered(gone));
}

void tst_Reentrance::ownJobIsDeletedWhileItsTextIsSet()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const top = graphicFrame("A | top");
    const auto sent = message(graphicEditor);
    const auto close = note("", graphicEditor, 20002402);
    onDeliveryTo(pcb, [] { manager()->Ov_DeleteTreeNode("Matrix", "A"); });
    manager()->Eda_setTransmitData("Graphic", "A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, sent), to(pcb, close), to(top, close), to(top, sent)}));
}

void tst_Reentrance::ownJobIsDeletedWhileItsMessageIsTraced()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const receiver = element(view, pcb);
    const auto sent = message(view);
    onDeliveryTo(receiver, [] { manager()->Ov_DeleteTreeNode("Graphic", "A | pcb"); });
    manager()->recMegToPlugin(pcb, sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent), to(pcb, note("", graphicEditor, 20002402))}));
    QCOMPARE(log(), QList<LogLines::Line>{info("Sender send to Graphic_View 7")});
}

void tst_Reentrance::jobRenamedMeanwhileReceivesUnderItsOldName()
{
    QWidget *const inPcb = element(view, graphicFrame("A | pcb"));
    QWidget *const inTop = element(view, graphicFrame("A | top"));
    const auto sent = message(view);
    const auto received = withMissing(sent, jobKeys);
    onDeliveryTo(inPcb, [] { manager()->OV_ChangeJobNameAndUpdateJob("A", "B"); });
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(inPcb, received), to(inTop, received)}));
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), Deliveries());
    manager()->updateGraphic("B", sent);
    QCOMPARE(deliveries(), (Deliveries{to(inPcb, received), to(inTop, received)}));
}

void tst_Reentrance::stepRenamedMeanwhileReceivesUnderItsOldName()
{
    QWidget *const first = graphicFrame("A | pcb");
    QWidget *const second = graphicFrame("A | top");
    const auto sent = message(graphicEditor);
    onDeliveryTo(first, [] {
        manager()->Ov_ChangeStepName("A", "pcb", "new");
        manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    });
    manager()->setInterfaceTexts("Graphic", "A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
    QCOMPARE(graphicFrame("B | new"), first);
    QCOMPARE(graphicFrame("B | top"), second);
}

void tst_Reentrance::rootInsertedMeanwhileCountsFromTheNextMessage()
{
    const auto [first, second] = twins(view, nullptr);
    const auto sent = message(view, {{"DstType", "EngineerRoot"}});
    QWidget *root = nullptr;
    onDeliveryTo(first, [&] { root = insertRoot(); });
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
    QCOMPARE(manager()->getRoot(), static_cast<void *>(root));
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Reentrance::secondRootChangesNothing()
{
    QWidget *const root = insertRoot();
    const auto [first, second] = twins(view, root);
    const auto sent = message(view);
    onDeliveryTo(first, [&] { element(view, insertRoot("Another")); });
    manager()->updateEngieer("", sent);
    manager()->updateEngieer("", sent);
    QCOMPARE(deliveries(),
             (Deliveries{to(first, sent), to(second, sent), to(first, sent), to(second, sent)}));
    QCOMPARE(manager()->getRoot(), static_cast<void *>(root));
}

void tst_Reentrance::frameRegistersItselfWhenItIsTold()
{
    QWidget *again = nullptr;
    onNextDelivery([&] { again = manager()->Ov_RegisterMatrixFramework(nullptr, "A"); });
    QWidget *const frame = manager()->Ov_RegisterMatrixFramework(nullptr, "A");
    QCOMPARE(again, frame);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries(),
             (Deliveries{by(matrixEditor, frame, note("", "A", 20001638, {{"JobName", "A"}}))}));
}

void tst_Reentrance::frameUnregistersItselfWhenItIsTold()
{
    onNextDelivery([] { manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "pcb"); });
    QWidget *const frame = manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "A", "pcb");
    QVERIFY(frame);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries(), (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20001638,
                                                      {{"JobName", "A"}, {"Step", "pcb"}})),
                                       to(frame, closeMessage)}));
    QVERIFY(!isRegistered(frame));
}

void tst_Reentrance::dfmFrameUnregistersItselfWhenItIsTold()
{
    onNextDelivery([] { manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "pcb"); });
    QWidget *const frame = manager()->Ov_RegisterDFMGraphicFramework(nullptr, "A | pcb", false);
    QVERIFY(frame);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries(),
             (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20004616)), to(frame, closeMessage)}));
    QCOMPARE(log(), QList<LogLines::Line>{info("ok")});
    QVERIFY(!isRegistered(frame));
}

void tst_Reentrance::frameRegistersAgainWhenItIsUnregistered()
{
    QWidget *const frame = stepFrame("A", "pcb");
    element(view, frame);
    QWidget *again = nullptr;
    onNextDelivery([&] { again = stepFrame("A", "pcb"); });
    manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "pcb");
    QCOMPARE(deliveries(), (Deliveries{to(frame, closeMessage)}));
    QVERIFY(again != frame);
    QVERIFY(!isRegistered(frame));
    QVERIFY(isRegistered(again));
}

void tst_Reentrance::frameUnregisteredTwiceIsToldOnce()
{
    QWidget *const frame = dfmFrame("A", "pcb");
    onNextDelivery([] { manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("A", "pcb"); });
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("A", "pcb");
    QCOMPARE(deliveries(), (Deliveries{to(frame, closeMessage)}));
}

// The outer deletion goes on by what it collected, so both tell each frame that the inner one found.
void tst_Reentrance::jobDeletedWithinItsDeletionIsToldTwice()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    onDeliveryTo(matrix, [] { manager()->Ov_DeleteTreeNode("Matrix", "A"); });
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    const auto toMatrix = to(matrix, note("", matrixEditor, 20002402));
    const auto toPcb = to(pcb, note("", graphicEditor, 20002402));
    const auto toGuide = to(guideOfTheJob, note("", guide, 20002402));
    QCOMPARE(deliveries(), (Deliveries{toMatrix, toPcb, toGuide, toPcb, toGuide}));
    for (QWidget *gone : {matrix, pcb, guideOfTheJob})
        QVERIFY(!isRegistered(gone));
}

void tst_Reentrance::stepDeletedWithinTheDeletionOfItsJobIsToldTwice()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const top = graphicFrame("A | top");
    onDeliveryTo(pcb, [] {
        manager()->Ov_DeleteTreeNode("Graphic", "A | pcb");
        manager()->Ov_DeleteTreeNode("Graphic", "A | top");
    });
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    const auto close = note("", graphicEditor, 20002402);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, close), to(top, close), to(top, close)}));
}

void tst_Reentrance::deletedFrameOpensAgain()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *again = nullptr;
    onDeliveryTo(matrix, [&] { again = matrixFrame("A"); });
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{to(matrix, note("", matrixEditor, 20002402))}));
    QVERIFY(again != matrix);
    QVERIFY(isRegistered(again));
}

void tst_Reentrance::deletedFrameOpensAnotherOfItsJob()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    QWidget *late = nullptr;
    onDeliveryTo(matrix, [&] { late = guideFrame("A"); });
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{to(matrix, note("", matrixEditor, 20002402)),
                                       to(guideOfTheJob, note("", guide, 20002402))}));
    QVERIFY(isRegistered(late));
}

void tst_Reentrance::jobRenamedBackIsToldNothingMore()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const table = element(matrixTable, matrix);
    element(view, graphicFrame("A | pcb"));
    onDeliveryTo(matrix, [] { manager()->OV_ChangeJobNameAndUpdateJob("B", "A"); });
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    const auto direct = [](const QString &name) {
        return note("", matrixEditor, 20002401, {{"DstType", "Matrix"}, {"NewJobName", name}});
    };
    QCOMPARE(deliveries(), (Deliveries{to(matrix, direct("B")), to(matrix, direct("A")),
                                       to(table, note("", matrixTable, 20002401, {{"NewJobName", "A"}}))}));
    QCOMPARE(matrixFrame("A"), matrix);
}

void tst_Reentrance::jobDeletedWhileItIsRenamedIsToldNothingMore()
{
    QWidget *const matrix = matrixFrame("A");
    element(matrixTable, matrix);
    QWidget *const pcb = graphicFrame("A | pcb");
    element(jobList, pcb);
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    onDeliveryTo(matrix, [] { manager()->Ov_DeleteTreeNode("Matrix", "B"); });
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(),
             (Deliveries{
                 to(matrix, note("", matrixEditor, 20002401, {{"DstType", "Matrix"}, {"NewJobName", "B"}})),
                 to(matrix, note("", matrixEditor, 20002402)), to(pcb, note("", graphicEditor, 20002402)),
                 to(guideOfTheJob, note("", guide, 20002402))}));
}

// Neither is known while it is made, so there are two, each told; the first to be recorded is found from then
// on.
void tst_Reentrance::factoryRegistersItsOwnFrame()
{
    QWidget *inner = nullptr;
    Recorder::setOnFactory([&](const QString &, QWidget *) {
        Recorder::setOnFactory({});
        inner = manager()->Ov_RegisterMatrixFramework(nullptr, "A");
    });
    QWidget *const outer = manager()->Ov_RegisterMatrixFramework(nullptr, "A");
    QVERIFY(inner);
    QVERIFY(outer != inner);
    const auto told = note("", "A", 20001638, {{"JobName", "A"}});
    QCOMPARE(deliveries(), (Deliveries{by(matrixEditor, inner, told), by(matrixEditor, outer, told)}));
    QCOMPARE(factoryCalls().size(), 2);
    QCOMPARE(manager()->Ov_RegisterMatrixFramework(nullptr, "A"), inner);
    QVERIFY(isRegistered(outer));
    QCOMPARE(factoryCalls().size(), 0);
}

void tst_Reentrance::factoryRegistersAnotherFrame()
{
    QWidget *matrix = nullptr;
    Recorder::setOnFactory([&](const QString &library, QWidget *) {
        if (library == graphicEditor)
            matrix = manager()->Ov_RegisterMatrixFramework(nullptr, "A");
    });
    QWidget *const pcb = manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "A", "pcb");
    QCOMPARE(deliveries(), (Deliveries{by(matrixEditor, matrix, note("", "A", 20001638, {{"JobName", "A"}})),
                                       to(pcb, note(graphicEditor, graphicEditor, 20001638,
                                                    {{"JobName", "A"}, {"Step", "pcb"}}))}));
    QVERIFY(isRegistered(matrix));
    QVERIFY(isRegistered(pcb));
}

void tst_Reentrance::factoryRegistersElementsOfAnotherFrame()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *inPcb = nullptr;
    Recorder::setOnFactory([&](const QString &library, QWidget *) {
        if (library == matrixEditor)
            inPcb = element(view, pcb);
    });
    QWidget *const matrix = matrixFrame("A");
    const auto sent = message(view, {{"DstType", "Graphic"}, {"JobName", "A"}, {"Step", "pcb"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(inPcb, sent)}));
    QCOMPARE(matrixFrame("A"), matrix);
}

void tst_Reentrance::factoryUnregistersTheParentFrame()
{
    QWidget *const frame = stepFrame("A", "pcb");
    QWidget *const early = element(tips, frame);
    Recorder::setOnFactory([](const QString &, QWidget *) {
        Recorder::setOnFactory({});
        manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "pcb");
    });
    QWidget *const late = element(view, frame);
    QVERIFY(!isRegistered(frame));
    QVERIFY(!isRegistered(early));
    QVERIFY(isRegistered(late));
    QCOMPARE(element(view, frame), late);
}

void tst_Reentrance::factoryDeletesAnotherJob()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const pcb = graphicFrame("A | pcb");
    Recorder::setOnFactory([](const QString &, QWidget *) { manager()->Ov_DeleteTreeNode("Matrix", "A"); });
    QWidget *const other = manager()->Ov_RegisterGraphicFramework(nullptr, "B | pcb", false);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(
        deliveries(),
        (Deliveries{to(matrix, note("", matrixEditor, 20002402)), to(pcb, note("", graphicEditor, 20002402)),
                    to(other, note(graphicEditor, graphicEditor, 20001638,
                                   {{"JobName", "B"}, {"Step", "pcb"}, {"IsCamAssistant", "false"}}))}));
    QVERIFY(!isRegistered(matrix));
    QVERIFY(isRegistered(other));
}

void tst_Reentrance::factorySendsMessages()
{
    QWidget *const frame = graphicFrame("A | pcb");
    QWidget *const receiver = element(view, frame);
    const auto sent = message(view, {}, 10000000);
    Recorder::setOnFactory([&](const QString &, QWidget *parent) {
        manager()->recMegToPlugin(parent, sent);
        manager()->updateGraphic("A", message(view));
    });
    QWidget *const made = manager()->Ov_Register_CamGuide("Own_Guide.dll", frame, "A");
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent), to(receiver, withMissing(message(view), jobKeys)),
                                       by(guide, made, note("", "A", 20003913, {{"JobName", "A"}}))}));
}

/// Each makes at least one delivery to the job A.
std::vector<std::function<void()>> tst_Reentrance::operations()
{
    const auto sent = [](const QString &kind) {
        return message(view, {{"DstType", kind}, {"JobName", "A"}, {"Step", "pcb"}});
    };
    return {
        [=] { manager()->pluginTransmitData(sent("Graphic")); },
        [=] { manager()->pluginTransmitData(sent("EngineerRoot")); },
        [=] { manager()->pluginTransmitData(sent("Matrix")); },
        [=] { manager()->pluginTransmitData(sent("Guide")); },
        [=] { manager()->Eda_setTransmitData("Graphic", "A", sent("")); },
        [=] { manager()->Eda_setTransmitData("EngineerRoot", "A", sent("")); },
        [=] { manager()->setInterfaceTexts("Graphic", "A", sent("")); },
        [=] { manager()->setInterfaceTexts("Matrix", "A", sent("")); },
        [=] { manager()->setInterfaceTexts("EngineerRoot", "A", sent("")); },
        [=] { manager()->ChangeCompareJobInfo(sent("")); },
        [=] { manager()->updateEngieer("A", sent("")); },
        [=] { manager()->updateGraphic("A", sent("")); },
        [=] { manager()->updateGuide("A", sent("")); },
        [=] { manager()->updateMatrix("A", sent("")); },
        [=] { manager()->OV_ChangeJobNameAndUpdateJob("A", "A"); },
        [=] { manager()->Ov_DeleteTreeNode("Graphic", "A | pcb"); },
        [=] { manager()->Ov_DeleteTreeNode("Matrix", "A"); },
    };
}

// A registry that grows moves its records in memory.
void tst_Reentrance::textsOfTheCallerMayChangeMeanwhile()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const top = graphicFrame("A | top");
    const auto sent = message(graphicEditor);
    QString job;
    Recorder::setOnDelivery([&](const Recorder::Delivery &) { job = "B"; });

    job = "A";
    manager()->setInterfaceTexts("Graphic", job, sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, sent), to(top, sent)}));
    job = "A";
    manager()->Eda_setTransmitData("Graphic", job, sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, sent), to(top, sent)}));
}

void tst_Reentrance::namesOfTheCallerMayChangeWhileAJobIsDeleted()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const top = graphicFrame("A | top");
    QWidget *const guideOfA = guideFrame("A|Guide");
    QString job = "A";
    Recorder::setOnDelivery([&](const Recorder::Delivery &) { job.clear(); });
    manager()->Ov_DeleteTreeNode("Matrix", job);
    QCOMPARE(
        deliveries(),
        (Deliveries{to(matrix, note("", matrixEditor, 20002402)), to(pcb, note("", graphicEditor, 20002402)),
                    to(top, note("", graphicEditor, 20002402)), to(guideOfA, note("", guide, 20002402))}));
}

void tst_Reentrance::namesOfTheCallerMayChangeWhileAJobIsRenamed()
{
    insertRoot();
    QWidget *const matrix = matrixFrame("A");
    QWidget *const table = element(matrixTable, matrix);
    QWidget *const guideOfA = guideFrame("A|Guide");
    const Data names{{"OldJobName", "A"}, {"NewJobName", "B"}};
    QString oldName = "A";
    QString newName = "B";
    Recorder::setOnDelivery([&](const Recorder::Delivery &) {
        oldName.clear();
        newName.clear();
    });
    manager()->OV_ChangeJobNameAndUpdateJob(oldName, newName);
    QCOMPARE(deliveries(), (Deliveries{to(matrix, note("", matrixEditor, 20002401,
                                                       {{"DstType", "Matrix"}, {"NewJobName", "B"}})),
                                       to(table, note("", matrixTable, 20002401, {{"NewJobName", "B"}})),
                                       to(guideOfA, note("", guide, 20002400, names))}));
}

void tst_Reentrance::namesOfTheCallerMayChangeWhileAFrameIsMade()
{
    QWidget window;
    std::string name;
    Recorder::setOnFactory([&](const QString &, QWidget *) { name = "changed"; });

    name = "A | pcb";
    QWidget *const graphic = manager()->Ov_RegisterGraphicFramework(&window, name, false);
    name = "A";
    QWidget *const matrix = manager()->Ov_RegisterMatrixFramework(&window, name);
    name = "A|Guide";
    QWidget *const guideOfA = manager()->Ov_RegisterGuideFramework(&window, name);
    Recorder::setOnFactory({});
    deliveries();
    QCOMPARE(factoryCalls().size(), 3);

    // Each is known under the name that it was made for.
    QCOMPARE(manager()->Ov_RegisterGraphicFramework(&window, "A | pcb", false), graphic);
    QCOMPARE(manager()->Ov_RegisterMatrixFramework(&window, "A"), matrix);
    QCOMPARE(manager()->Ov_RegisterGuideFramework(&window, "A|Guide"), guideOfA);
    QCOMPARE(factoryCalls().size(), 0);
    delete graphic;
    delete matrix;
    delete guideOfA;
}

void tst_Reentrance::rootInsertedByAFactoryIsTheParentOfItsFrame()
{
    QWidget window;
    QWidget root;
    Recorder::setOnFactory([&](const QString &, QWidget *) {
        Recorder::setOnFactory({});
        manager()->insertRoot("Engineering", &root);
    });
    QWidget *const matrix = manager()->Ov_RegisterMatrixFramework(&window, "A");
    QWidget *const table = element(matrixTable, matrix);
    factoryCalls();
    deliveries();

    const auto sent = message(matrixTable, {{"DstType", "Matrix"}, {"JobName", "A"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(table, sent)}));
    delete matrix;
}

void tst_Reentrance::everyOperationSurvivesAGrowingRegistry()
{
    QWidget *const root = insertRoot();
    int number = 0;
    for (const auto &run : operations()) {
        for (QWidget *place : {root, matrixFrame("A"), graphicFrame("A | pcb"), graphicFrame("A | top"),
                               guideFrame("A|Guide")}) {
            element(view, place);
            element("Own_Graphic_View.dll", place);
        }
        run();
        const Deliveries undisturbed = deliveries();
        QVERIFY(!undisturbed.list.isEmpty());
        if (undisturbed.list.first().message.type == 20002402)
            continue;

        bool growing = false;
        Recorder::setOnDelivery([&](const Recorder::Delivery &) {
            if (std::exchange(growing, true))
                return;
            for (int count = 0; count < 100; ++count)
                element(QString::number(++number), root);
            growing = false;
        });
        run();
        Recorder::setOnDelivery({});
        QCOMPARE(deliveries(), undisturbed);
    }
    QVERIFY(number > 1000);
}

void tst_Reentrance::everyOperationSurvivesAnEmptiedRegistry()
{
    insertRoot();
    for (const auto &run : operations()) {
        const QList<QWidget *> places{matrixFrame("A"), graphicFrame("A | pcb"), graphicFrame("A | top"),
                                      dfmFrame("A", "pcb"), guideFrame("A|Guide")};
        QList<QWidget *> elements;
        for (QWidget *place : places) {
            elements += element(view, place);
            elements += element(jobList, place);
        }
        element(view, static_cast<QWidget *>(manager()->getRoot()));
        onNextDelivery([] {
            manager()->Ov_DeleteTreeNode("Matrix", "A");
            manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("A", "pcb");
        });
        run();
        QVERIFY(!deliveries().list.isEmpty());
        for (QWidget *gone : places + elements)
            QVERIFY(!isRegistered(gone));
    }
}

void tst_Reentrance::widgetsMayBeDeletedLater()
{
    QPointer<QWidget> frame = stepFrame("A", "pcb");
    const auto [first, second] = twins(view, frame);
    const QPointer<QWidget> stillThere = second;
    onDeliveryTo(first, [&, receiver = first] {
        manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "pcb");
        receiver->deleteLater();
        frame->deleteLater();
    });
    manager()->ChangeCompareJobInfo(message(view));
    QCOMPARE(deliveries().list.size(), 3);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!frame);
    QVERIFY(stillThere);

    manager()->ChangeCompareJobInfo(message(view));
    manager()->setInterfaceTexts("Graphic", "A", message(graphicEditor));
    QCOMPARE(deliveries(), Deliveries());
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_Reentrance>(argc, argv);
}

#include "tst_reentrance.moc"

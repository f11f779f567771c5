#include "camtest.h"
#include "testmain.h"

#include <limits>
#include <sstream>

/// Messages between plug-ins, frames and the host: who receives them, and what of them.
class tst_Routing : public CamTest
{
    Q_OBJECT

private slots:
    void init();

    void elementInTheSendersFrameReceives();
    void senderMayLiveUnderTheRoot();
    void senderMayLiveInAnyRegisteredObject();
    void otherFramesAndTheRootAreNoFallback();
    void onlyTheFirstElementOfTheNameReceives();
    void receiverMayBeARecordOfAnyKind();
    void receiverNameIsComparedExactly();
    void messageOfTypeMinusOneIsRefusedBeforeAnyLookup();
    void onlyOneOperationRefusesTypeMinusOne();
    void everyOtherTypeIsPassedOn();
    void unknownFrameIsAnError();
    void unknownNullFrameIsAnError();
    void nullFrameMayBeRegistered();
    void frameWithoutTheReceiverIsSilent();
    void receiverWithoutLibraryIsSilent();
    void receiverWithoutEntryPointIsSilent();
    void traceFollowsTheDelivery();
    void traceDropsEverySuffix();
    void quietMessageIsDeliveredWithoutTrace();
    void messageIsDeliveredAsItWasSent();

    void graphicKindReachesTheElementsOfTheFrame();
    void graphicKindReachesTwinsInTheirOrder();
    void graphicKindLooksUnderTheRoot();
    void graphicKindFindsTheFirstFrameOfTheName();
    void graphicKindAddsTheMissingStep();
    void graphicKindAddsTheMissingJob();
    void graphicKindAddsBothMissingParameters();
    void dataThatLacksNothingStaysShared();
    void rootKindReachesTheElementsUnderTheRoot();
    void rootKindAddsNothing();
    void rootKindWithoutRootReachesWhatHasNoParent();
    void matrixKindReachesTheElementsOfTheFrame();
    void matrixKindAddsTheMissingJobOnly();
    void guideKindReachesTheFrameItself();
    void guideKindDoesNotFindTheBareJobName();
    void guideKindDoesNotLookAtTheParent();
    void guideKindAddsTheMissingJobOnly();
    void kindOfTheFrameFoundByNameIsNotCompared();
    void onlyElementsReceiveByKind();
    void receiverNameIsComparedExactlyByKind();
    void unknownKindReachesNobody_data();
    void unknownKindReachesNobody();
    void jobAndStepMayBeOtherThanTexts();
    void missingLibraryIsSilentByKind();

    void editorsReceiveForTheCallersFrame();
    void otherLibrariesAreNoEditors();
    void editorsFrameIsNotLookedAt();
    void editorThatIsNotLoadedIsSilent();
    void callersConstantRecordStaysAsItIs();

    void keyboardStatusReachesTheGraphicEditorOnly();
    void keyboardStatusOfAnUnknownFrameIsSilent();
    void keyboardStatusWithoutTheEditorIsSilent();

    void edaGraphicReachesAllStepsOfTheJob();
    void edaGraphicComparesTheFirstPart();
    void edaGraphicWithoutTheJobHasNoFallback();
    void edaGraphicWithoutFramesFallsBackToTheRoot();
    void edaOtherKindsReachTheElementsUnderTheRoot_data();
    void edaOtherKindsReachTheElementsUnderTheRoot();
    void edaDoesNotReachDfmFramesOfTheJob();
    void edaWithoutRootReachesWhatHasNoParent();
    void edaReadsTheKindFromTheMessage();
    void edaAddsTheMissingKind();
    void edaKindGivenIsNotReadFromTheMessage();

    void eachReceiverGetsAFreshCopy();
    void callersRecordStaysAsItIs();
    void entryPointIsResolvedAtEachDelivery();
};

namespace {

QByteArray printed(const void *pointer)
{
    std::ostringstream stream;
    stream << pointer;
    return QByteArray::fromStdString(stream.str());
}

Data graphicOf(const QString &job, const QString &step)
{
    return {{"DstType", "Graphic"}, {"JobName", job}, {"Step", step}};
}

Data matrixOf(const QString &job)
{
    return {{"DstType", "Matrix"}, {"JobName", job}};
}

Data guideOf(const QString &job)
{
    return {{"DstType", "Guide"}, {"JobName", job}};
}

const Data engineerRoot{{"DstType", "EngineerRoot"}};

}

void tst_Routing::init()
{
    CamTest::init();
    useReplaceable(REPLACEABLE_DIR "/routing");
    load();
}

void tst_Routing::elementInTheSendersFrameReceives()
{
    insertRoot();
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const receiver = element(view, frame);
    const auto sent = message(view);
    manager()->recMegToPlugin(frame, sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>{info("Sender send to Graphic_View 7")});
}

void tst_Routing::senderMayLiveUnderTheRoot()
{
    QWidget *const root = insertRoot();
    QWidget *const receiver = element(view, root);
    const auto sent = message(view);
    manager()->recMegToPlugin(root, sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>{info("Sender send to Graphic_View 7")});
}

void tst_Routing::senderMayLiveInAnyRegisteredObject()
{
    QWidget *const outer = element(tips, nullptr);
    QWidget *const receiver = element(view, outer);
    const auto sent = message(view);
    manager()->recMegToPlugin(outer, sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>{info("Sender send to Graphic_View 7")});
}

void tst_Routing::otherFramesAndTheRootAreNoFallback()
{
    QWidget *const root = insertRoot();
    element(view, root);
    element(view, nullptr);
    element(view, graphicFrame("j1 | panel"));
    manager()->recMegToPlugin(graphicFrame("j1 | pcb"), message(view));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Routing::onlyTheFirstElementOfTheNameReceives()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const first = twins(view, frame).first;
    const auto sent = message(view);
    manager()->recMegToPlugin(frame, sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>{info("Sender send to Graphic_View 7")});
}

void tst_Routing::receiverMayBeARecordOfAnyKind()
{
    QWidget *const root = insertRoot();
    QWidget *const matrix = matrixFrame("Graphic_View.dll");
    element(view, root);
    const auto sent = message(view);
    manager()->recMegToPlugin(root, sent);
    QCOMPARE(deliveries(), (Deliveries{to(matrix, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>{info("Sender send to Graphic_View 7")});
}

void tst_Routing::receiverNameIsComparedExactly()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    element("graphic_view.dll", frame);
    element("Graphic_View.dll ", frame);
    element("Graphic_View", frame);
    element("Own_Graphic_View.dll", frame);
    manager()->recMegToPlugin(frame, message(view));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Routing::messageOfTypeMinusOneIsRefusedBeforeAnyLookup()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    element(view, frame);
    QWidget unknown;
    for (void *sender :
         {static_cast<void *>(frame), static_cast<void *>(&unknown), static_cast<void *>(nullptr)}) {
        manager()->recMegToPlugin(sender, message(view, {}, -1));
        QCOMPARE(deliveries(), Deliveries());
        QCOMPARE(log(), QList<LogLines::Line>{error("recMegToPlugin metadate type is -1")});
    }
}

void tst_Routing::onlyOneOperationRefusesTypeMinusOne()
{
    QWidget *const root = insertRoot();
    QWidget *const receiver = element(view, root);
    QWidget *const frame = graphicFrame("j1 | pcb");
    const auto byKind = message(view, engineerRoot, -1);
    const auto toEditor = message(graphicEditor, {}, -1);
    manager()->pluginTransmitData(byKind);
    manager()->transmitDataToFramework(frame, toEditor);
    manager()->sendKeyBoardStatusToGraphic(frame, toEditor);
    manager()->Eda_setTransmitData("EngineerRoot", "j1", byKind);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, byKind), to(frame, toEditor), to(frame, toEditor),
                                       to(receiver, byKind)}));
}

void tst_Routing::everyOtherTypeIsPassedOn()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const receiver = element(view, frame);
    for (const qint32 type : {0, 1, -2, 10000001, 9999999, -10000000, std::numeric_limits<qint32>::max(),
                              std::numeric_limits<qint32>::min()}) {
        const auto sent = message(view, {}, type);
        manager()->recMegToPlugin(frame, sent);
        QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
        QCOMPARE(log(),
                 QList<LogLines::Line>{info("Sender send to Graphic_View " + QByteArray::number(type))});
    }
}

void tst_Routing::unknownFrameIsAnError()
{
    element(view, nullptr);
    QWidget unknown;
    element(view, &unknown);
    manager()->recMegToPlugin(&unknown, message(view, {}, 42));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>{error("recMegToPlugin metadate frame is " + printed(&unknown)
                                                + " src: Sender.dll dst:Graphic_View.dlltype:42")});

    // Not even messages of the quiet type are refused in silence.
    manager()->recMegToPlugin(&unknown, message("", {}, 10000000, ""));
    QCOMPARE(log(), QList<LogLines::Line>{error("recMegToPlugin metadate frame is " + printed(&unknown)
                                                + " src:  dst:type:10000000")});
}

void tst_Routing::unknownNullFrameIsAnError()
{
    manager()->recMegToPlugin(nullptr, message(view, {}, -2));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>{error("recMegToPlugin metadate frame is " + printed(nullptr)
                                                + " src: Sender.dll dst:Graphic_View.dlltype:-2")});
}

void tst_Routing::nullFrameMayBeRegistered()
{
    QWidget *const receiver = element(view, nullptr);
    manager()->insertRoot("Engineering", nullptr);
    const auto sent = message(view);
    manager()->recMegToPlugin(nullptr, sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>{info("Sender send to Graphic_View 7")});
}

void tst_Routing::frameWithoutTheReceiverIsSilent()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    element(tips, frame);
    manager()->recMegToPlugin(frame, message(view));
    manager()->recMegToPlugin(frame, message(""));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::receiverWithoutLibraryIsSilent()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    element("Nobody.dll", frame);
    manager()->recMegToPlugin(frame, message("Nobody.dll"));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::receiverWithoutEntryPointIsSilent()
{
    replace(matrixEditor, "without_entry_point/Without_Entry_Point.dll");
    QWidget *const frame = graphicFrame("j1 | pcb");
    element(matrixEditor, frame);
    manager()->recMegToPlugin(frame, message(matrixEditor));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::traceFollowsTheDelivery()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    element(view, frame);
    QList<LogLines::Line> before{info("not read")};
    onNextDelivery([&] { before = log(); });
    manager()->recMegToPlugin(frame, message(view, {}, 7, "Alpha.dll"));
    QCOMPARE(before, QList<LogLines::Line>());
    QCOMPARE(log(), QList<LogLines::Line>{info("Alpha send to Graphic_View 7")});
    QCOMPARE(deliveries().list.size(), 1);
}

// A name in the list may have the suffix already; its file has it twice then.
void tst_Routing::traceDropsEverySuffix()
{
    replace("Beta.dll.dll", "healthy/Any_Library.dll");
    load({"Beta.dll"});
    QWidget *const frame = graphicFrame("j1 | pcb");
    element("Beta.dll.dll", frame);
    QWidget *const receiver = element(view, frame);

    manager()->recMegToPlugin(frame, message("Beta.dll.dll", {}, 7, "Al.dllpha.dll.dll"));
    QCOMPARE(log(), QList<LogLines::Line>{info("Alpha send to Beta 7")});
    QCOMPARE(deliveries().list.size(), 1);

    const auto sent = message(view, {}, 0, "Alpha.DLL dll .dl.dlll");
    manager()->recMegToPlugin(frame, sent);
    QCOMPARE(log(), QList<LogLines::Line>{info("Alpha.DLL dll .dll send to Graphic_View 0")});
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));

    manager()->recMegToPlugin(frame, message(view, {}, 1, ""));
    QCOMPARE(log(), QList<LogLines::Line>{info(" send to Graphic_View 1")});
    QCOMPARE(deliveries().list.size(), 1);
}

void tst_Routing::quietMessageIsDeliveredWithoutTrace()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const receiver = element(view, frame);
    const auto sent = message(view, {}, 10000000);
    manager()->recMegToPlugin(frame, sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::messageIsDeliveredAsItWasSent()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const receiver = element(view, frame);
    auto sent =
        message(view, {{"Number", 42}, {"Text", QStringLiteral("电路")}, {"Nothing", QVariant()}}, 10000000);
    for (const quintptr word : {quintptr(0), std::numeric_limits<quintptr>::max(), quintptr(frame)}) {
        sent.userData = word;
        manager()->recMegToPlugin(frame, sent);
        QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    }
}

void tst_Routing::graphicKindReachesTheElementsOfTheFrame()
{
    QWidget *const root = insertRoot();
    element(view, root);
    QWidget *const frame = graphicFrame("j1 | pcb");
    element(view, graphicFrame("j1 | panel"));
    element(view, graphicFrame("j2 | pcb"));
    QWidget *const receiver = element(view, frame);
    element(tips, frame);
    const auto sent = message(view, graphicOf("j1", "pcb"));
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::graphicKindReachesTwinsInTheirOrder()
{
    insertRoot();
    QWidget *const frame = graphicFrame("j1 | pcb");
    const auto [first, second] = twins(view, frame);
    const auto sent = message(view, graphicOf("j1", "pcb"));
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
}

void tst_Routing::graphicKindLooksUnderTheRoot()
{
    element(view, stepFrame("j1", "pcb"));
    insertRoot();
    manager()->pluginTransmitData(message(view, graphicOf("j1", "pcb")));
    QCOMPARE(deliveries(), Deliveries());
}

// Renaming gives two frames one name.
void tst_Routing::graphicKindFindsTheFirstFrameOfTheName()
{
    insertRoot();
    QWidget *const first = element(view, graphicFrame("j1 | old"));
    element(view, graphicFrame("j1 | pcb"));
    manager()->Ov_ChangeStepName("j1", "old", "pcb");
    const auto sent = message(view, graphicOf("j1", "pcb"));
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent)}));
}

void tst_Routing::graphicKindAddsTheMissingStep()
{
    QWidget *const receiver = element(view, graphicFrame("j1 | "));
    const auto sent = message(view, {{"DstType", "Graphic"}, {"JobName", "j1"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, {"Step"}))}));
}

void tst_Routing::graphicKindAddsTheMissingJob()
{
    QWidget *const receiver = element(view, graphicFrame(" | pcb"));
    const auto sent = message(view, {{"DstType", "Graphic"}, {"Step", "pcb"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, {"JobName"}))}));
}

void tst_Routing::dataThatLacksNothingStaysShared()
{
    insertRoot();
    element(view, graphicFrame("j1 | pcb"));
    const auto sent = message(view, {{"DstType", "Graphic"}, {"JobName", "j1"}, {"Step", "pcb"}});
    manager()->pluginTransmitData(sent);
    const Deliveries delivered = deliveries();
    QCOMPARE(delivered.list.size(), 1);
    QCOMPARE(&delivered.list.constFirst().message.data.constBegin().value(), &sent.data.constBegin().value());
}

void tst_Routing::graphicKindAddsBothMissingParameters()
{
    QWidget *const receiver = element(view, graphicFrame(" | "));
    const auto sent = message(view, {{"DstType", "Graphic"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, {"JobName", "Step"}))}));
}

void tst_Routing::rootKindReachesTheElementsUnderTheRoot()
{
    QWidget *const root = insertRoot();
    const auto [first, second] = twins(view, root);
    element(tips, root);
    element(view, graphicFrame("j1 | pcb"));
    element(view, insertRoot("Another"));
    element(view, nullptr);
    const auto sent = message(view, engineerRoot);
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
}

void tst_Routing::rootKindAddsNothing()
{
    QWidget *const receiver = element(view, insertRoot());
    const auto sent = message(view, {{"DstType", "EngineerRoot"}, {"Step", "pcb"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Routing::rootKindWithoutRootReachesWhatHasNoParent()
{
    QWidget *const receiver = element(view, nullptr);
    const auto sent = message(view, engineerRoot);
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Routing::matrixKindReachesTheElementsOfTheFrame()
{
    QWidget *const root = insertRoot();
    element(view, root);
    QWidget *const frame = matrixFrame("j1");
    element(view, matrixFrame("j2"));
    element(view, graphicFrame("j1 | pcb"));
    const auto [first, second] = twins(view, frame);
    const auto sent = message(view, matrixOf("j1"));
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));

    manager()->pluginTransmitData(message(view, matrixOf("j3")));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Routing::matrixKindAddsTheMissingJobOnly()
{
    QWidget *const receiver = element(view, matrixFrame(""));
    const auto sent = message(view, {{"DstType", "Matrix"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, {"JobName"}))}));
}

void tst_Routing::guideKindReachesTheFrameItself()
{
    insertRoot();
    QWidget *const frame = guideFrame("j1|Guide");
    const auto toEmpty = message(guide, guideOf("j1"));
    manager()->pluginTransmitData(toEmpty);
    QCOMPARE(deliveries(), (Deliveries{to(frame, toEmpty)}));

    element(view, frame);
    const auto toView = message(view, guideOf("j1"));
    manager()->pluginTransmitData(toView);
    QCOMPARE(deliveries(), (Deliveries{to(frame, toView)}));
}

void tst_Routing::guideKindDoesNotFindTheBareJobName()
{
    guideFrame("j1");
    guideFrame("j1 |Guide");
    guideFrame("j1 | Guide");
    guideFrame("j1|guide");
    matrixFrame("j1|Guide");
    manager()->pluginTransmitData(message(guide, guideOf("j1")));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Routing::guideKindDoesNotLookAtTheParent()
{
    QWidget *const frame = guideFrame("j1|Guide");
    insertRoot();
    const auto sent = message(guide, guideOf("j1"));
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, sent)}));
}

void tst_Routing::guideKindAddsTheMissingJobOnly()
{
    QWidget *const frame = guideFrame("|Guide");
    const auto sent = message(guide, {{"DstType", "Guide"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, withMissing(sent, {"JobName"}))}));
}

void tst_Routing::kindOfTheFrameFoundByNameIsNotCompared()
{
    insertRoot();
    QWidget *const inGraphic = element(view, graphicFrame("j1 | pcb"));
    QWidget *const inMatrix = element(view, matrixFrame("j2 | pcb"));
    const auto toGraphic = message(view, matrixOf("j1 | pcb"));
    const auto toMatrix = message(view, graphicOf("j2", "pcb"));
    manager()->pluginTransmitData(toGraphic);
    manager()->pluginTransmitData(toMatrix);
    QCOMPARE(deliveries(), (Deliveries{to(inGraphic, toGraphic), to(inMatrix, toMatrix)}));
}

// Below a null root, elements stand beside frames and roots of their name.
void tst_Routing::onlyElementsReceiveByKind()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const withoutParent = element(view, nullptr);
    manager()->insertRoot("Engineering", nullptr);
    manager()->insertRoot("Graphic_View.dll", frame);
    matrixFrame("Graphic_View.dll");
    guideFrame("Graphic_View.dll");
    const auto sent = message(view, engineerRoot);
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(withoutParent, sent)}));
    manager()->Eda_setTransmitData("Matrix", "Graphic_View.dll", sent);
    QCOMPARE(deliveries(), (Deliveries{to(withoutParent, sent)}));
}

void tst_Routing::receiverNameIsComparedExactlyByKind()
{
    QWidget *const root = insertRoot();
    const QList<QWidget *> places{root, graphicFrame("j1 | pcb"), matrixFrame("j1")};
    for (QWidget *place : places) {
        element("Own_Graphic_View.dll", place);
        element("graphic_view.dll", place);
    }
    manager()->pluginTransmitData(message(view, graphicOf("j1", "pcb")));
    manager()->pluginTransmitData(message(view, engineerRoot));
    manager()->pluginTransmitData(message(view, matrixOf("j1")));
    manager()->Eda_setTransmitData("EngineerRoot", "j1", message(view));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Routing::unknownKindReachesNobody_data()
{
    QTest::addColumn<Data>("data");
    QTest::newRow("missing") << Data{};
    QTest::newRow("invalid") << Data{{"DstType", QVariant()}};
    QTest::newRow("empty") << Data{{"DstType", ""}};
    QTest::newRow("lower case graphic") << Data{{"DstType", "graphic"}};
    QTest::newRow("lower case root") << Data{{"DstType", "engineerroot"}};
    QTest::newRow("lower case matrix") << Data{{"DstType", "matrix"}};
    QTest::newRow("lower case guide") << Data{{"DstType", "guide"}};
    QTest::newRow("blank after") << Data{{"DstType", "Graphic "}};
    QTest::newRow("element") << Data{{"DstType", "Plugin"}};
    QTest::newRow("another key") << Data{{"dstType", "Graphic"}};
}

void tst_Routing::unknownKindReachesNobody()
{
    QFETCH(Data, data);
    QWidget *const root = insertRoot();
    for (QWidget *place : {root, graphicFrame("j1 | pcb"), matrixFrame("j1"), guideFrame("j1|Guide")})
        element(view, place);
    data.insert("JobName", "j1");
    data.insert("Step", "pcb");
    manager()->pluginTransmitData(message(view, data));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Routing::jobAndStepMayBeOtherThanTexts()
{
    QWidget *const receiver = element(view, graphicFrame("12 | 7"));
    const auto sent = message(view, {{"DstType", QByteArray("Graphic")}, {"JobName", 12}, {"Step", 7}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Routing::missingLibraryIsSilentByKind()
{
    QWidget *const root = insertRoot();
    for (QWidget *place : {root, graphicFrame("j1 | pcb"), matrixFrame("j1"), guideFrame("j1|Guide")})
        element("Nobody.dll", place);
    manager()->pluginTransmitData(message("Nobody.dll", graphicOf("j1", "pcb")));
    manager()->pluginTransmitData(message("Nobody.dll", engineerRoot));
    manager()->pluginTransmitData(message("Nobody.dll", matrixOf("j1")));
    manager()->pluginTransmitData(message("Nobody.dll", guideOf("j1")));
    manager()->Eda_setTransmitData("Graphic", "j1", message("Nobody.dll"));
    manager()->Eda_setTransmitData("EngineerRoot", "j1", message("Nobody.dll"));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::editorsReceiveForTheCallersFrame()
{
    QWidget frame;
    for (const QString &editor : {matrixEditor, graphicEditor, guide}) {
        const auto sent = message(editor);
        manager()->transmitDataToFramework(&frame, sent);
        QCOMPARE(deliveries(), (Deliveries{to(&frame, sent)}));
    }
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::otherLibrariesAreNoEditors()
{
    QWidget *const root = insertRoot();
    element(view, root);
    for (const char *library : {"Graphic_View.dll", "Matrix.dll", "", "ORVIK-Matrix", "orvik-matrix.dll",
                                "ORVIK-Matrix.dll ", "ORVIK-GraphicEditor.DLL"})
        manager()->transmitDataToFramework(root, message(library));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::editorsFrameIsNotLookedAt()
{
    const auto sent = message(guide);
    int noWidget = 0;
    void *const nonsense = &noWidget;
    manager()->transmitDataToFramework(nonsense, sent);
    manager()->transmitDataToFramework(nullptr, sent);
    QCOMPARE(deliveries(), (Deliveries{to(nonsense, sent), to(nullptr, sent)}));
}

void tst_Routing::editorThatIsNotLoadedIsSilent()
{
    replace(matrixEditor, "without_entry_point/Without_Entry_Point.dll");
    QWidget frame;
    manager()->transmitDataToFramework(&frame, message(matrixEditor));

    replaceByNoLibrary(matrixEditor);
    manager()->transmitDataToFramework(&frame, message(matrixEditor));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::callersConstantRecordStaysAsItIs()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    Recorder::setMessagesAreSpoiled(true);
    const auto sent = message(graphicEditor, {{"Key", "value"}});
    manager()->transmitDataToFramework(frame, sent);
    manager()->sendKeyBoardStatusToGraphic(frame, sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, message(graphicEditor, {{"Key", "value"}})),
                                       to(frame, message(graphicEditor, {{"Key", "value"}}))}));
}

void tst_Routing::keyboardStatusReachesTheGraphicEditorOnly()
{
    QWidget *const graphic = graphicFrame("j1 | pcb");
    QWidget *const matrix = matrixFrame("j1");
    QWidget *const inside = element(view, graphic);
    const auto toView = message(view, {}, -1);
    const auto toNobody = message("Nobody.dll");
    manager()->sendKeyBoardStatusToGraphic(graphic, toView);
    manager()->sendKeyBoardStatusToGraphic(matrix, toNobody);
    manager()->sendKeyBoardStatusToGraphic(inside, toView);
    QCOMPARE(deliveries(),
             (Deliveries{by(graphicEditor, graphic, toView), by(graphicEditor, matrix, toNobody),
                         by(graphicEditor, inside, toView)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::keyboardStatusOfAnUnknownFrameIsSilent()
{
    graphicFrame("j1 | pcb");
    QWidget unknown;
    manager()->sendKeyBoardStatusToGraphic(&unknown, message(graphicEditor));
    manager()->sendKeyBoardStatusToGraphic(nullptr, message(graphicEditor));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::keyboardStatusWithoutTheEditorIsSilent()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    replace(graphicEditor, "without_entry_point/Without_Entry_Point.dll");
    manager()->sendKeyBoardStatusToGraphic(frame, message(graphicEditor));
    replaceByNoLibrary(graphicEditor);
    manager()->sendKeyBoardStatusToGraphic(frame, message(graphicEditor));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::edaGraphicReachesAllStepsOfTheJob()
{
    element(view, insertRoot());
    QWidget *const pcb = graphicFrame("j1 | pcb");
    QWidget *const panel = graphicFrame("j1 | panel");
    element(view, pcb);
    graphicFrame("j2 | pcb");
    matrixFrame("j1");
    guideFrame("j1|Guide");
    const auto sent = message(view);
    manager()->Eda_setTransmitData("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, sent), to(panel, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Routing::edaGraphicComparesTheFirstPart()
{
    QWidget *const three = stepFrame("j1", "a | b");
    QWidget *const empty = stepFrame("", "pcb");
    stepFrame("j1|x", "pcb");
    stepFrame("J1", "pcb");
    stepFrame("xj1", "pcb");
    const auto sent = message(graphicEditor);
    manager()->Eda_setTransmitData("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(three, sent)}));
    manager()->Eda_setTransmitData("Graphic", "", sent);
    QCOMPARE(deliveries(), (Deliveries{to(empty, sent)}));
    manager()->Eda_setTransmitData("Graphic", "j1 | a | b", sent);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Routing::edaGraphicWithoutTheJobHasNoFallback()
{
    element(view, insertRoot());
    graphicFrame("j2 | pcb");
    manager()->Eda_setTransmitData("Graphic", "j1", message(view));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Routing::edaGraphicWithoutFramesFallsBackToTheRoot()
{
    QWidget *const root = insertRoot();
    const auto [first, second] = twins(view, root);
    element(tips, root);
    element(view, matrixFrame("j1"));
    const auto sent = message(view);
    manager()->Eda_setTransmitData("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
}

void tst_Routing::edaOtherKindsReachTheElementsUnderTheRoot_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"Matrix", "Guide", "EngineerRoot", "", "graphic", "Unknown"})
        QTest::newRow(*kind ? kind : "empty") << QString(kind);
}

void tst_Routing::edaOtherKindsReachTheElementsUnderTheRoot()
{
    QFETCH(QString, kind);
    QWidget *const root = insertRoot();
    QWidget *const receiver = element(view, root);
    for (QWidget *place :
         {graphicFrame("j1 | pcb"), matrixFrame("j1"), guideFrame("j1"), guideFrame("j1|Guide")})
        element(view, place);
    const auto sent = message(view);
    manager()->Eda_setTransmitData(kind, "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Routing::edaDoesNotReachDfmFramesOfTheJob()
{
    dfmFrame("j1", "pcb");
    QWidget *const named = stepFrame("j1", "pcb");
    const auto sent = message(graphicEditor);
    manager()->Eda_setTransmitData("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(named, sent)}));
}

void tst_Routing::edaWithoutRootReachesWhatHasNoParent()
{
    QWidget *const receiver = element(view, nullptr);
    const auto sent = message(view);
    manager()->Eda_setTransmitData("Matrix", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Routing::edaReadsTheKindFromTheMessage()
{
    QWidget *const underRoot = element(view, insertRoot());
    QWidget *const frame = graphicFrame("j1 | pcb");
    const auto toGraphic = message(view, {{"DstType", "Graphic"}, {"JobName", "j2"}});
    const auto toMatrix = message(view, {{"DstType", "Matrix"}});
    manager()->Eda_CAM_TransmitData("j1", toGraphic);
    manager()->Eda_CAM_TransmitData("j1", toMatrix);
    manager()->Eda_CAM_TransmitData("j2", toGraphic);
    QCOMPARE(deliveries(), (Deliveries{to(frame, toGraphic), to(underRoot, toMatrix)}));
}

void tst_Routing::edaAddsTheMissingKind()
{
    QWidget *const underRoot = element(view, insertRoot());
    const auto sent = message(view);
    manager()->Eda_CAM_TransmitData("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(underRoot, withMissing(sent, {"DstType"}))}));
}

void tst_Routing::edaKindGivenIsNotReadFromTheMessage()
{
    QWidget *const underRoot = element(view, insertRoot());
    QWidget *const frame = graphicFrame("j1 | pcb");
    const auto saysMatrix = message(view, {{"DstType", "Matrix"}});
    const auto saysGraphic = message(view, {{"DstType", "Graphic"}});
    manager()->Eda_setTransmitData("Graphic", "j1", saysMatrix);
    manager()->Eda_setTransmitData("Matrix", "j1", saysGraphic);
    QCOMPARE(deliveries(), (Deliveries{to(frame, saysMatrix), to(underRoot, saysGraphic)}));
}

void tst_Routing::eachReceiverGetsAFreshCopy()
{
    QWidget *const root = insertRoot();
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const matrix = matrixFrame("j1");
    const auto [firstUnderRoot, secondUnderRoot] = twins(view, root);
    const auto [firstInFrame, secondInFrame] = twins(view, frame);
    const auto [firstInMatrix, secondInMatrix] = twins(view, matrix);
    QWidget *const panel = graphicFrame("j1 | panel");
    Recorder::setMessagesAreSpoiled(true);

    const auto toRoot = message(view, engineerRoot);
    const auto toFrame = message(view, graphicOf("j1", "pcb"));
    const auto toMatrix = message(view, matrixOf("j1"));
    const auto toSteps = message(view, {{"Key", "value"}});
    manager()->pluginTransmitData(toRoot);
    manager()->pluginTransmitData(toFrame);
    manager()->pluginTransmitData(toMatrix);
    manager()->Eda_setTransmitData("Graphic", "j1", toSteps);
    manager()->Eda_setTransmitData("", "j1", toSteps);
    QCOMPARE(deliveries(),
             (Deliveries{to(firstUnderRoot, toRoot), to(secondUnderRoot, toRoot), to(firstInFrame, toFrame),
                         to(secondInFrame, toFrame), to(firstInMatrix, toMatrix),
                         to(secondInMatrix, toMatrix), to(frame, toSteps), to(panel, toSteps),
                         to(firstUnderRoot, toSteps), to(secondUnderRoot, toSteps)}));

    // What the trace says is not what the receiver made of its copy, either.
    manager()->recMegToPlugin(root, message(view));
    QCOMPARE(log(), QList<LogLines::Line>{info("Sender send to Graphic_View 7")});
    QCOMPARE(deliveries().list.size(), 1);
}

void tst_Routing::callersRecordStaysAsItIs()
{
    element(view, graphicFrame(" | "));
    element(view, matrixFrame(""));
    guideFrame("|Guide");
    element(view, nullptr);
    Recorder::setMessagesAreSpoiled(true);

    for (const char *kind : {"Graphic", "Matrix", "Guide"}) {
        const auto sent = message(view, {{"DstType", kind}});
        manager()->pluginTransmitData(sent);
        QVERIFY(to(nullptr, sent) == to(nullptr, message(view, {{"DstType", kind}})));
        QCOMPARE(deliveries().list.size(), 1);
    }
    const auto sent = message(view, {{"Key", "value"}});
    manager()->Eda_CAM_TransmitData("", sent);
    QVERIFY(to(nullptr, sent) == to(nullptr, message(view, {{"Key", "value"}})));
    QCOMPARE(deliveries().list.size(), 1);
}

void tst_Routing::entryPointIsResolvedAtEachDelivery()
{
    insertRoot();
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const receiver = element(matrixEditor, frame);
    const auto sent = message(matrixEditor, graphicOf("j1", "pcb"), 10000000);
    const auto sendInEveryWay = [&] {
        manager()->recMegToPlugin(frame, sent);
        manager()->pluginTransmitData(sent);
        manager()->transmitDataToFramework(frame, sent);
        manager()->Eda_CAM_TransmitData("j1", sent);
    };
    const auto receivedBy = [&](const QString &library) {
        return Deliveries{by(library, receiver, sent), by(library, receiver, sent), by(library, frame, sent),
                          by(library, frame, sent)};
    };

    sendInEveryWay();
    QCOMPARE(deliveries(), receivedBy(matrixEditor));
    replace(matrixEditor, "healthy/Any_Library.dll");
    sendInEveryWay();
    QCOMPARE(deliveries(), receivedBy("Any_Library.dll"));
    replace(matrixEditor, "without_entry_point/Without_Entry_Point.dll");
    sendInEveryWay();
    QCOMPARE(deliveries(), Deliveries());
    replace(matrixEditor, "healthy/ORVIK-Matrix.dll");
    sendInEveryWay();
    QCOMPARE(deliveries(), receivedBy(matrixEditor));
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_Routing>(argc, argv);
}

#include "tst_routing.moc"

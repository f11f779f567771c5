#include "camtest.h"
#include "testmain.h"

/// Updates of the elements that live in frames of one kind.
class tst_Updates : public CamTest
{
    Q_OBJECT

private slots:
    void init();

    void rootUpdateReachesTheElementsUnderTheRoot();
    void rootUpdateIgnoresItsFirstArgument();
    void rootUpdateNeedsTheExactName();
    void rootUpdateReachesElementsOnly();
    void rootUpdateWithoutRootReachesWhatHasNoParent();
    void rootUpdateAddsNothing();

    void matrixUpdateReachesTheElementsOfTheFrame();
    void matrixUpdateComparesTheWholeFrameName();
    void matrixUpdateAcceptsNamesThatContainTheReceiver();
    void matrixUpdateReachesElementsOnly();
    void matrixUpdateAddsNothing();
    void matrixUpdateReachesAllFramesOfTheName();
    void matrixUpdateDoesNotKnowTheWildcard();

    void guideUpdateReachesTheFrameItself();
    void guideUpdateDoesNotFindTheBareJobName();
    void guideUpdateReachesAllFramesOfTheName();
    void guideUpdateAddsNothing();

    void jobUpdateReachesTheElementsOfAllSteps();
    void jobUpdateFindsTheJobAnywhereInTheName();
    void jobUpdateIncludesTheStepWithoutName();
    void jobUpdateAcceptsNamesThatContainTheReceiver();
    void jobUpdateReachesElementsOnly();
    void jobUpdateDoesNotReachFramesThemselves();
    void jobUpdateAddsTheKeysItReads();
    void jobUpdateIsWhatRemainsWithOneNameOnly_data();
    void jobUpdateIsWhatRemainsWithOneNameOnly();

    void stepUpdateReachesTheStepAndTheWildcardFrame();
    void stepUpdateAddsNothing();
    void stepUpdateComparesTheWholeName();
    void stepUpdateComesBeforeTheRename();
    void stepUpdateNeedsAValidStep();
    void stepUpdateTakesAnEmptyStep();

    void renameUpdateReachesAllStepsButTheOneWithoutName();
    void renameUpdateFindsTheJobAnywhereInTheName();
    void renameUpdateAddsTheStepKeyOnly();
    void renameUpdateNeedsNamesThatAreValidOnly();

    void wildcardFrameReceivesEveryGraphicUpdate_data();
    void wildcardFrameReceivesEveryGraphicUpdate();
    void wildcardFrameReceivesOncePerUpdate();

    void elementInTwoFramesReceivesTwice();
    void twinsReceiveInTheirOrder();
    void eachReceiverGetsAFreshCopy();
    void missingLibraryIsSilent();
    void missingEntryPointIsSilent();
    void entryPointIsResolvedAtEachDelivery();
    void otherKindsOfFramesAreLeftAlone();
    void namesInAnotherEncodingAreComparedAsTexts();
};

namespace {

const QStringList jobKeys{"ChangeStepName", "OldJobName"};

}

void tst_Updates::init()
{
    CamTest::init();
    useReplaceable(REPLACEABLE_DIR "/updates");
    load();
}

void tst_Updates::rootUpdateReachesTheElementsUnderTheRoot()
{
    QWidget *const root = insertRoot();
    QWidget *const receiver = element(view, root);
    element(tips, root);
    element(view, insertRoot("Another"));
    element(view, graphicFrame("j1 | pcb"));
    element(view, nullptr);
    const auto sent = message(view);
    manager()->updateEngieer("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Updates::rootUpdateIgnoresItsFirstArgument()
{
    QWidget *const receiver = element(view, insertRoot("Engineering"));
    const auto sent = message(view);
    for (const char *name : {"", "j1", "Engineering", "anything"}) {
        manager()->updateEngieer(name, sent);
        QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    }
}

void tst_Updates::rootUpdateNeedsTheExactName()
{
    QWidget *const root = insertRoot();
    element("Own_Graphic_View.dll", root);
    element("Graphic_View.dll.old", root);
    element("graphic_view.dll", root);
    element(matrixEditor, root);
    manager()->updateEngieer("j1", message(view));
    manager()->updateEngieer("j1", message(matrixTable));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Updates::rootUpdateReachesElementsOnly()
{
    insertRoot();
    matrixFrame("Graphic_View.dll");
    guideFrame("Graphic_View.dll");
    manager()->updateEngieer("j1", message(view));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Updates::rootUpdateWithoutRootReachesWhatHasNoParent()
{
    QWidget *const receiver = element(view, nullptr);
    QWidget parent;
    element(view, &parent);
    const auto sent = message(view);
    manager()->updateEngieer("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Updates::rootUpdateAddsNothing()
{
    QWidget *const receiver = element(view, insertRoot());
    const auto sent = message(view, {{"Key", 1}});
    manager()->updateEngieer("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Updates::matrixUpdateReachesTheElementsOfTheFrame()
{
    element(view, insertRoot());
    QWidget *const frame = matrixFrame("j1");
    QWidget *const receiver = element(view, frame);
    element(tips, frame);
    element(view, matrixFrame("j2"));
    element(view, graphicFrame("j1 | pcb"));
    element(view, guideFrame("j1"));
    const auto sent = message(view);
    manager()->updateMatrix("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Updates::matrixUpdateComparesTheWholeFrameName()
{
    for (const char *other : {"j11", "xj1", "J1", "j1 | pcb", ""})
        element(view, matrixFrame(other));
    manager()->updateMatrix("j1", message(view));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Updates::matrixUpdateAcceptsNamesThatContainTheReceiver()
{
    QWidget *const frame = matrixFrame("j1");
    QWidget *const before = element("Own_Matrix.dll", frame);
    element("matrix.dll", frame);
    QWidget *const editor = element(matrixEditor, frame);
    QWidget *const after = element("Matrix.dll.old", frame);
    element("Matrix", frame);
    const auto sent = message(matrixTable);
    manager()->updateMatrix("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(before, sent), to(editor, sent), to(after, sent)}));
}

// A frame is the child of another only when that one is the root, too.
void tst_Updates::matrixUpdateReachesElementsOnly()
{
    QWidget *const frame = matrixFrame("j1");
    manager()->insertRoot("Engineering", frame);
    QWidget *const receiver = element(view, frame);
    matrixFrame("Graphic_View.dll");
    guideFrame("Graphic_View.dll");
    const auto sent = message(view);
    manager()->updateMatrix("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Updates::matrixUpdateAddsNothing()
{
    QWidget *const receiver = element(view, matrixFrame("j1"));
    const auto sent = message(view);
    manager()->updateMatrix("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

// Renaming gives two frames one name.
void tst_Updates::matrixUpdateReachesAllFramesOfTheName()
{
    QWidget *const first = element(view, matrixFrame("old"));
    QWidget *const second = element(view, matrixFrame("j1"));
    manager()->OV_ChangeJobNameAndUpdateJob("old", "j1");
    deliveries();
    const auto sent = message(view);
    manager()->updateMatrix("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
}

void tst_Updates::matrixUpdateDoesNotKnowTheWildcard()
{
    element(view, matrixFrame(wildcard));
    element(view, dfmFrame("j1", "pcb"));
    manager()->updateMatrix("j1", message(view));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Updates::guideUpdateReachesTheFrameItself()
{
    insertRoot();
    QWidget *const frame = guideFrame("j1|Guide");
    element(guide, frame);
    element(view, frame);
    const auto toGuide = message(guide);
    const auto toView = message(view);
    manager()->updateGuide("j1", toGuide);
    manager()->updateGuide("j1", toView);
    QCOMPARE(deliveries(), (Deliveries{to(frame, toGuide), to(frame, toView)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Updates::guideUpdateDoesNotFindTheBareJobName()
{
    for (const char *other :
         {"j1", "j1 |Guide", "j1 | Guide", "j1|guide", "xj1|Guide", "j1|Guide|", "J1|Guide"})
        guideFrame(other);
    matrixFrame("j1|Guide");
    manager()->updateGuide("j1", message(guide));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Updates::guideUpdateReachesAllFramesOfTheName()
{
    QWidget *const first = guideFrame("old|Guide");
    QWidget *const second = guideFrame("j1|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("old", "j1");
    deliveries();
    const auto sent = message(guide);
    manager()->updateGuide("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
}

void tst_Updates::guideUpdateAddsNothing()
{
    QWidget *const frame = guideFrame("|Guide");
    const auto sent = message(guide);
    manager()->updateGuide("", sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, sent)}));
}

void tst_Updates::jobUpdateReachesTheElementsOfAllSteps()
{
    element(view, insertRoot());
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const inPcb = element(view, pcb);
    element(tips, pcb);
    element(view, graphicFrame("AB | pcb"));
    QWidget *const inDfm = element(view, dfmFrame("B", "pcb"));
    element(view, matrixFrame("A"));
    QWidget *const inTop = element(view, stepFrame("A", "top"));
    const auto sent = message(view);
    const auto received = withMissing(sent, jobKeys);
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(inPcb, received), to(inDfm, received), to(inTop, received)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Updates::jobUpdateFindsTheJobAnywhereInTheName()
{
    QWidget *const longer = element(view, graphicFrame("XA | pcb"));
    QWidget *const inTheMiddle = element(view, stepFrame("B", "A | pcb"));
    element(view, graphicFrame("a | pcb"));
    element(view, graphicFrame("A| pcb | "));
    element(view, stepFrame("A|", "pcb"));
    element(view, stepFrame("B", "A"));
    const auto sent = message(view);
    const auto received = withMissing(sent, jobKeys);
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(longer, received), to(inTheMiddle, received)}));
}

void tst_Updates::jobUpdateIncludesTheStepWithoutName()
{
    QWidget *const receiver = element(view, graphicFrame("A | "));
    const auto sent = message(view);
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, jobKeys))}));
}

void tst_Updates::jobUpdateAcceptsNamesThatContainTheReceiver()
{
    QWidget *const frame = graphicFrame("A | pcb");
    QWidget *const before = element("Own_Graphic_View.dll", frame);
    element("graphic_view.dll", frame);
    QWidget *const exact = element(view, frame);
    QWidget *const after = element("Graphic_View.dll.old", frame);
    element("Graphic_View", frame);
    const auto sent = message(view);
    const auto received = withMissing(sent, jobKeys);
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(before, received), to(exact, received), to(after, received)}));
}

// A frame is the child of another only when that one is the root, too.
void tst_Updates::jobUpdateReachesElementsOnly()
{
    QWidget *const frame = graphicFrame("A | pcb");
    manager()->insertRoot("Engineering", frame);
    QWidget *const receiver = element(view, frame);
    matrixFrame("Graphic_View.dll");
    guideFrame("Graphic_View.dll");
    const auto sent = message(view);
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, jobKeys))}));
}

void tst_Updates::jobUpdateDoesNotReachFramesThemselves()
{
    graphicFrame("A | pcb");
    manager()->updateGraphic("A", message(graphicEditor));
    manager()->updateMatrix("A", message(matrixEditor));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Updates::jobUpdateAddsTheKeysItReads()
{
    QWidget *const receiver = element(view, graphicFrame("A | pcb"));
    const auto sent = message(view, {{"Key", 1}});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, message(view, {{"Key", 1},
                                                                   {"ChangeStepName", QVariant()},
                                                                   {"OldJobName", QVariant()}}))}));
    QCOMPARE(sent.data, (Data{{"Key", 1}}));
}

void tst_Updates::jobUpdateIsWhatRemainsWithOneNameOnly_data()
{
    QTest::addColumn<Data>("data");
    QTest::addColumn<QStringList>("missing");
    QTest::newRow("old") << Data{{"OldJobName", "B"}} << QStringList{"ChangeStepName", "NewJobName"};
    QTest::newRow("new") << Data{{"NewJobName", "A"}} << QStringList{"ChangeStepName", "OldJobName"};
    QTest::newRow("new is invalid") << Data{{"OldJobName", "B"}, {"NewJobName", QVariant()}}
                                    << QStringList{"ChangeStepName"};
    QTest::newRow("old is invalid") << Data{{"OldJobName", QVariant()}, {"NewJobName", "A"}}
                                    << QStringList{"ChangeStepName"};
}

// The step without a name tells this from an update for a rename, which leaves it out.
void tst_Updates::jobUpdateIsWhatRemainsWithOneNameOnly()
{
    QFETCH(Data, data);
    QFETCH(QStringList, missing);
    QWidget *const withoutName = element(view, graphicFrame("A | "));
    QWidget *const pcb = element(view, graphicFrame("A | pcb"));
    const auto sent = message(view, data);
    const auto received = withMissing(sent, missing);
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(withoutName, received), to(pcb, received)}));
}

void tst_Updates::stepUpdateReachesTheStepAndTheWildcardFrame()
{
    element(view, graphicFrame("A | top"));
    QWidget *const inPcb = element(view, graphicFrame("A | pcb"));
    QWidget *const inDfm = element(view, dfmFrame("B", "top"));
    const auto sent = message(view, {{"ChangeStepName", "pcb"}});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(inPcb, sent), to(inDfm, sent)}));
}

void tst_Updates::stepUpdateAddsNothing()
{
    QWidget *const receiver = element(view, graphicFrame("A | 7"));
    const auto sent = message(view, {{"ChangeStepName", 7}});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Updates::stepUpdateComparesTheWholeName()
{
    for (const char *other : {"XA | pcb", "A | pcb2", "A | PCB", "a | pcb", "A | "})
        element(view, graphicFrame(other));
    element(view, stepFrame("A", "pcb | x"));
    element(view, stepFrame("x | A", "pcb"));
    manager()->updateGraphic("A", message(view, {{"ChangeStepName", "pcb"}}));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Updates::stepUpdateComesBeforeTheRename()
{
    QWidget *const inPcb = element(view, graphicFrame("A | pcb"));
    element(view, graphicFrame("A | top"));
    const auto sent = message(view, {{"ChangeStepName", "pcb"}, {"OldJobName", "B"}, {"NewJobName", "A"}});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(inPcb, sent)}));
}

void tst_Updates::stepUpdateNeedsAValidStep()
{
    QWidget *const withoutName = element(view, graphicFrame("A | "));
    QWidget *const pcb = element(view, graphicFrame("A | pcb"));
    const auto sent = message(view, {{"ChangeStepName", QVariant()}});
    const auto received = withMissing(sent, {"OldJobName"});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(withoutName, received), to(pcb, received)}));
}

// A null text is a valid value all the same.
void tst_Updates::stepUpdateTakesAnEmptyStep()
{
    QWidget *const withoutName = element(view, graphicFrame("A | "));
    element(view, graphicFrame("A | pcb"));
    for (const QString &step : {QStringLiteral(""), QString()}) {
        const auto sent = message(view, {{"ChangeStepName", step}});
        manager()->updateGraphic("A", sent);
        QCOMPARE(deliveries(), (Deliveries{to(withoutName, sent)}));
    }
}

void tst_Updates::renameUpdateReachesAllStepsButTheOneWithoutName()
{
    element(view, graphicFrame("A | "));
    QWidget *const pcb = element(view, graphicFrame("A | pcb"));
    QWidget *const inDfm = element(view, dfmFrame("B", "pcb"));
    QWidget *const top = element(view, stepFrame("A", "top"));
    element(view, graphicFrame("AB | pcb"));
    const auto sent = message(view, {{"OldJobName", "B"}, {"NewJobName", "A"}});
    const auto received = withMissing(sent, {"ChangeStepName"});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, received), to(inDfm, received), to(top, received)}));
}

void tst_Updates::renameUpdateFindsTheJobAnywhereInTheName()
{
    QWidget *const longer = element(view, graphicFrame("XA | pcb"));
    QWidget *const longerWithoutStep = element(view, graphicFrame("XA | "));
    element(view, graphicFrame("a | pcb"));
    const auto sent = message(view, {{"OldJobName", "B"}, {"NewJobName", "C"}});
    const auto received = withMissing(sent, {"ChangeStepName"});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(longer, received), to(longerWithoutStep, received)}));
}

void tst_Updates::renameUpdateAddsTheStepKeyOnly()
{
    QWidget *const receiver = element(view, graphicFrame("A | pcb"));
    const auto sent = message(view, {{"OldJobName", 1}, {"NewJobName", 2}});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, {"ChangeStepName"}))}));
}

void tst_Updates::renameUpdateNeedsNamesThatAreValidOnly()
{
    element(view, graphicFrame("A | "));
    QWidget *const receiver = element(view, graphicFrame("A | pcb"));
    const auto sent = message(view, {{"OldJobName", ""}, {"NewJobName", QString()}});
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, {"ChangeStepName"}))}));
}

void tst_Updates::wildcardFrameReceivesEveryGraphicUpdate_data()
{
    QTest::addColumn<Data>("data");
    QTest::addColumn<QStringList>("missing");
    QTest::newRow("job") << Data{} << jobKeys;
    QTest::newRow("step") << Data{{"ChangeStepName", "pcb"}} << QStringList{};
    QTest::newRow("rename") << Data{{"OldJobName", "A"}, {"NewJobName", "B"}}
                            << QStringList{"ChangeStepName"};
}

void tst_Updates::wildcardFrameReceivesEveryGraphicUpdate()
{
    QFETCH(Data, data);
    QFETCH(QStringList, missing);
    insertRoot();
    QWidget *const inDfm = element(view, dfmFrame("A", "pcb"));
    const auto sent = message(view, data);
    for (const char *job : {"A", "Z", ""}) {
        manager()->updateGraphic(job, sent);
        QCOMPARE(deliveries(), (Deliveries{to(inDfm, withMissing(sent, missing))}));
    }
}

void tst_Updates::wildcardFrameReceivesOncePerUpdate()
{
    QWidget *const inDfm = element(view, dfmFrame("A", "pcb"));
    const auto sent = message(view);
    manager()->updateGraphic("!$*!OV?*?", sent);
    QCOMPARE(deliveries(), (Deliveries{to(inDfm, withMissing(sent, jobKeys))}));
}

void tst_Updates::elementInTwoFramesReceivesTwice()
{
    QWidget window;
    Recorder::setSharedElement(&window);
    for (const char *step : {"pcb", "top"})
        QCOMPARE(manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "A", step), &window);
    QCOMPARE(Recorder::takeFactoryCalls().size(), 2);
    QCOMPARE(deliveries().list.size(), 2);
    Recorder::setSharedElement(nullptr);
    QWidget *const receiver = element(view, &window);

    const auto sent = message(view);
    const auto received = withMissing(sent, jobKeys);
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, received), to(receiver, received)}));
}

void tst_Updates::twinsReceiveInTheirOrder()
{
    const auto [firstUnderRoot, secondUnderRoot] = twins(view, insertRoot());
    const auto [firstInMatrix, secondInMatrix] = twins(view, matrixFrame("A"));
    const auto [firstInFrame, secondInFrame] = twins(view, graphicFrame("A | pcb"));
    const auto sent = message(view);
    const auto inFrame = withMissing(sent, jobKeys);
    manager()->updateEngieer("A", sent);
    manager()->updateMatrix("A", sent);
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(),
             (Deliveries{to(firstUnderRoot, sent), to(secondUnderRoot, sent), to(firstInMatrix, sent),
                         to(secondInMatrix, sent), to(firstInFrame, inFrame), to(secondInFrame, inFrame)}));
}

void tst_Updates::eachReceiverGetsAFreshCopy()
{
    const auto [firstUnderRoot, secondUnderRoot] = twins(view, insertRoot());
    const auto [firstInMatrix, secondInMatrix] = twins(view, matrixFrame("A"));
    QWidget *const inPcb = element(view, graphicFrame("A | pcb"));
    QWidget *const inTop = element(view, graphicFrame("A | top"));
    QWidget *const firstGuide = guideFrame("old|Guide");
    QWidget *const secondGuide = guideFrame("A|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("old", "A");
    deliveries();
    Recorder::setMessagesAreSpoiled(true);

    const auto sent = message(view, {{"Key", "value"}});
    const auto inFrame = withMissing(sent, jobKeys);
    manager()->updateEngieer("A", sent);
    manager()->updateMatrix("A", sent);
    manager()->updateGraphic("A", sent);
    manager()->updateGuide("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(firstUnderRoot, sent), to(secondUnderRoot, sent),
                                       to(firstInMatrix, sent), to(secondInMatrix, sent), to(inPcb, inFrame),
                                       to(inTop, inFrame), to(firstGuide, sent), to(secondGuide, sent)}));
    QCOMPARE(sent.data, (Data{{"Key", "value"}}));
}

void tst_Updates::missingLibraryIsSilent()
{
    for (QWidget *place : {insertRoot(), graphicFrame("A | pcb"), matrixFrame("A"), guideFrame("A|Guide")}) {
        element("Nobody.dll", place);
        element(view, place);
    }
    for (const char *library : {"Nobody.dll", "View.dll", ""}) {
        manager()->updateEngieer("A", message(library));
        manager()->updateGraphic("A", message(library));
        manager()->updateMatrix("A", message(library));
        manager()->updateGuide("A", message(library));
    }
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Updates::missingEntryPointIsSilent()
{
    for (QWidget *place : {insertRoot(), graphicFrame("A | pcb"), matrixFrame("A"), guideFrame("A|Guide")})
        element(matrixEditor, place);
    replace(matrixEditor, "without_entry_point/Without_Entry_Point.dll");
    manager()->updateEngieer("A", message(matrixEditor));
    manager()->updateGraphic("A", message(matrixEditor));
    manager()->updateMatrix("A", message(matrixEditor));
    manager()->updateGuide("A", message(matrixEditor));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Updates::entryPointIsResolvedAtEachDelivery()
{
    QWidget *const receiver = element(matrixEditor, graphicFrame("A | pcb"));
    const auto sent = message(matrixEditor, {{"ChangeStepName", "pcb"}});
    manager()->updateGraphic("A", sent);
    replace(matrixEditor, "healthy/Any_Library.dll");
    manager()->updateGraphic("A", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent), by("Any_Library.dll", receiver, sent)}));
}

void tst_Updates::otherKindsOfFramesAreLeftAlone()
{
    insertRoot();
    element(view, matrixFrame("A | pcb"));
    element(view, guideFrame("A | pcb"));
    element(view, graphicFrame("B | pcb"));
    manager()->updateGraphic("A", message(view));
    manager()->updateMatrix("B | pcb", message(view));
    manager()->updateGuide("A | pcb", message(view));
    QCOMPARE(deliveries(), Deliveries());
}

// A job called by its name in GBK, by a host whose texts have what that converts to.
void tst_Updates::namesInAnotherEncodingAreComparedAsTexts()
{
    const std::string job = "\xb0\xe5";
    const QString text = QString::fromStdString(job);
    QWidget *const matrix = manager()->Ov_RegisterMatrixFramework(nullptr, job);
    QWidget *const graphic = manager()->Ov_RegisterGraphicFramework(nullptr, job + " | pcb", false);
    QWidget *const guideOfJob = manager()->Ov_RegisterGuideFramework(nullptr, job + "|Guide");
    factoryCalls();
    deliveries();
    QWidget *const table = element(view, matrix);
    QWidget *const shown = element(view, graphic);

    const auto sent = message(view);
    manager()->updateMatrix(text, sent);
    QCOMPARE(deliveries(), (Deliveries{to(table, sent)}));
    manager()->updateGraphic(text, sent);
    QCOMPARE(deliveries(), (Deliveries{to(shown, withMissing(sent, jobKeys))}));
    manager()->updateGuide(text, sent);
    QCOMPARE(deliveries(), (Deliveries{to(guideOfJob, sent)}));
    manager()->setInterfaceTexts("Graphic", text, sent);
    QCOMPARE(deliveries(), (Deliveries{to(graphic, sent)}));
    manager()->Eda_setTransmitData("Graphic", text, sent);
    QCOMPARE(deliveries(), (Deliveries{to(graphic, sent)}));
    manager()->Ov_DeleteTreeNode("Matrix", text);
    QCOMPARE(deliveries(), (Deliveries{to(matrix, note({}, matrixEditor, 20002402)),
                                       to(graphic, note({}, graphicEditor, 20002402)),
                                       to(guideOfJob, note({}, guide, 20002402))}));
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_Updates>(argc, argv);
}

#include "tst_updates.moc"

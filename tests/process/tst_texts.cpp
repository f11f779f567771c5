#include "camtest.h"
#include "testmain.h"

/// The current text of the host's frames.
class tst_Texts : public CamTest
{
    Q_OBJECT

private slots:
    void init();

    void graphicFramesOfTheJobReceive();
    void matrixFrameOfTheJobReceives();
    void guideFrameOfTheNameReceives();
    void firstPartOfTheNameIsTheText();
    void framesOfOtherVariantsReceive();
    void framesOfOneNameAllReceive();
    void wildcardFrameReceivesEveryGraphicText();
    void wildcardNameIsComparedExactly();
    void wildcardNameMatchesForEveryKindOfFrame();
    void elementsInFramesDoNotReceive();
    void noMatchHasNoFallback();
    void kindWithoutFramesFallsBackToTheRoot_data();
    void kindWithoutFramesFallsBackToTheRoot();
    void rootAndUnknownKindsReachTheRootWhateverFramesThereAre_data();
    void rootAndUnknownKindsReachTheRootWhateverFramesThereAre();
    void fallbackReachesOnlyElementsOfTheExactName();
    void fallbackReachesTwinsInTheirOrder();
    void fallbackWithoutRootReachesWhatHasNoParent();
    void currentTextReadsTheKindFromTheMessage();
    void currentTextForTheRootReachesItsElementsOnly();
    void currentTextAddsTheMissingKind();
    void kindGivenIsNotReadFromTheMessage();
    void eachReceiverGetsAFreshCopy();
    void missingLibraryIsSilent();
    void missingEntryPointIsSilent();
    void entryPointIsResolvedAtEachDelivery();
    void settersOfOneFrameDoNothing();
};

void tst_Texts::init()
{
    CamTest::init();
    useReplaceable(REPLACEABLE_DIR "/texts");
    load();
}

void tst_Texts::graphicFramesOfTheJobReceive()
{
    element(view, insertRoot());
    QWidget *const pcb = graphicFrame("j1 | pcb");
    graphicFrame("j2 | pcb");
    matrixFrame("j1");
    guideFrame("j1");
    QWidget *const panel = graphicFrame("j1 | panel");
    const auto sent = message(graphicEditor);
    manager()->setInterfaceTexts("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, sent), to(panel, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Texts::matrixFrameOfTheJobReceives()
{
    insertRoot();
    matrixFrame("j2");
    QWidget *const frame = matrixFrame("j1");
    graphicFrame("j1 | pcb");
    const auto sent = message(matrixEditor);
    manager()->setInterfaceTexts("Matrix", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, sent)}));
}

void tst_Texts::guideFrameOfTheNameReceives()
{
    insertRoot();
    QWidget *const suffixed = guideFrame("j1|Guide");
    QWidget *const bare = guideFrame("j1");
    const auto sent = message(guide);
    manager()->setInterfaceTexts("Guide", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(bare, sent)}));
    manager()->setInterfaceTexts("Guide", "j1|Guide", sent);
    QCOMPARE(deliveries(), (Deliveries{to(suffixed, sent)}));
}

void tst_Texts::firstPartOfTheNameIsTheText()
{
    QWidget *const three = stepFrame("j1", "a | b");
    QWidget *const empty = stepFrame("", "pcb");
    QWidget *const matrix = matrixFrame("j1 | pcb");
    QWidget *const guideOfTheJob = guideFrame("j1 | x");
    for (const char *other : {"J1", "j", "j11", "j1 "})
        stepFrame(other, "pcb");
    const auto sent = message(graphicEditor);
    manager()->setInterfaceTexts("Graphic", "j1", sent);
    manager()->setInterfaceTexts("Graphic", "", sent);
    manager()->setInterfaceTexts("Matrix", "j1", sent);
    manager()->setInterfaceTexts("Guide", "j1", sent);
    QCOMPARE(deliveries(),
             (Deliveries{to(three, sent), to(empty, sent), to(matrix, sent), to(guideOfTheJob, sent)}));

    for (const char *text : {"j1 | a | b", "j1 | pcb", "pcb", "a"}) {
        manager()->setInterfaceTexts("Graphic", text, sent);
        manager()->setInterfaceTexts("Matrix", text, sent);
    }
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Texts::framesOfOtherVariantsReceive()
{
    insertRoot();
    QWidget *const underRoot = graphicFrame("j1 | pcb");
    QWidget *const free = stepFrame("j1", "panel");
    QWidget *const dfm = dfmFrame("j2", "pcb");
    const auto sent = message(graphicEditor);
    manager()->setInterfaceTexts("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(underRoot, sent), to(free, sent), to(dfm, sent)}));
}

// Renaming gives two frames one name.
void tst_Texts::framesOfOneNameAllReceive()
{
    QWidget *const first = graphicFrame("j1 | old");
    QWidget *const second = graphicFrame("j1 | pcb");
    manager()->Ov_ChangeStepName("j1", "old", "pcb");
    const auto sent = message(graphicEditor);
    manager()->setInterfaceTexts("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
}

void tst_Texts::wildcardFrameReceivesEveryGraphicText()
{
    QWidget *const first = dfmFrame("j1", "pcb");
    QWidget *const named = stepFrame("j1", "pcb");
    QWidget *const second = dfmFrame("j2", "pcb");
    const auto sent = message(graphicEditor);
    manager()->setInterfaceTexts("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(named, sent), to(second, sent)}));
    for (const char *text : {"j2", "unknown", "", "!$*!OV?*?"}) {
        manager()->setInterfaceTexts("Graphic", text, sent);
        QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
    }
}

void tst_Texts::wildcardNameIsComparedExactly()
{
    for (const char *almost : {"!$*!OV?*? | !*$!DFM?*? ", "!$*!ov?*? | !*$!dfm?*?", "x!$*!OV?*? | !*$!DFM?*?",
                               "!$*!OV?*? | ", " | !*$!DFM?*?", "!*$!DFM?*? | !$*!OV?*?"})
        QVERIFY(graphicFrame(almost));
    manager()->setInterfaceTexts("Graphic", "j1", message(graphicEditor));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Texts::wildcardNameMatchesForEveryKindOfFrame()
{
    QWidget *const graphic = graphicFrame(wildcard);
    QWidget *const matrix = matrixFrame(wildcard);
    QWidget *const guideOfTheName = guideFrame(wildcard);
    const auto sent = message(graphicEditor);
    manager()->setInterfaceTexts("Graphic", "j1", sent);
    manager()->setInterfaceTexts("Matrix", "j1", sent);
    manager()->setInterfaceTexts("Guide", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(graphic, sent), to(matrix, sent), to(guideOfTheName, sent)}));
}

void tst_Texts::elementsInFramesDoNotReceive()
{
    QWidget *const frame = graphicFrame("j1 | pcb");
    element(view, frame);
    const auto sent = message(view);
    manager()->setInterfaceTexts("Graphic", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, sent)}));
}

void tst_Texts::noMatchHasNoFallback()
{
    element(view, insertRoot());
    graphicFrame("j2 | pcb");
    matrixFrame("j2");
    guideFrame("j2");
    for (const char *kind : {"Graphic", "Matrix", "Guide"})
        manager()->setInterfaceTexts(kind, "j1", message(view));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Texts::kindWithoutFramesFallsBackToTheRoot_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"Graphic", "Matrix", "Guide"})
        QTest::newRow(kind) << QString(kind);
}

void tst_Texts::kindWithoutFramesFallsBackToTheRoot()
{
    QFETCH(QString, kind);
    QWidget *const receiver = element(view, insertRoot());
    if (kind != "Graphic")
        graphicFrame("j1 | pcb");
    if (kind != "Matrix")
        matrixFrame("j1");
    if (kind != "Guide")
        guideFrame("j1");
    const auto sent = message(view);
    manager()->setInterfaceTexts(kind, "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Texts::rootAndUnknownKindsReachTheRootWhateverFramesThereAre_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"EngineerRoot", "graphic", "matrix", "guide", "Plugin", "Unknown"})
        QTest::newRow(kind) << QString(kind);
    QTest::newRow("empty") << QString();
}

void tst_Texts::rootAndUnknownKindsReachTheRootWhateverFramesThereAre()
{
    QFETCH(QString, kind);
    QWidget *const receiver = element(view, insertRoot());
    for (QWidget *frame : {graphicFrame("j1 | pcb"), matrixFrame("j1"), guideFrame("j1")})
        element(view, frame);
    dfmFrame("j1", "pcb");
    const auto sent = message(view);
    manager()->setInterfaceTexts(kind, "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Texts::fallbackReachesOnlyElementsOfTheExactName()
{
    QWidget *const root = insertRoot();
    element("Own_Graphic_View.dll", root);
    element("graphic_view.dll", root);
    matrixFrame("Graphic_View.dll");
    element(tips, root);
    manager()->setInterfaceTexts("Graphic", "Graphic_View.dll", message(view));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Texts::fallbackReachesTwinsInTheirOrder()
{
    const auto [first, second] = twins(view, insertRoot());
    const auto sent = message(view);
    manager()->setInterfaceTexts("Guide", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
}

void tst_Texts::fallbackWithoutRootReachesWhatHasNoParent()
{
    QWidget *const receiver = element(view, nullptr);
    const auto sent = message(view);
    manager()->setInterfaceTexts("EngineerRoot", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Texts::currentTextReadsTheKindFromTheMessage()
{
    QWidget *const graphic = graphicFrame("j1 | pcb");
    QWidget *const matrix = matrixFrame("j1");
    QWidget *const guideOfTheJob = guideFrame("j1");
    const auto toGraphic = message(graphicEditor, {{"DstType", "Graphic"}, {"JobName", "j2"}});
    const auto toMatrix = message(matrixEditor, {{"DstType", "Matrix"}});
    const auto toGuide = message(guide, {{"DstType", "Guide"}});
    manager()->Ov_SetCurrentText("j1", toGraphic);
    manager()->Ov_SetCurrentText("j1", toMatrix);
    manager()->Ov_SetCurrentText("j1", toGuide);
    manager()->Ov_SetCurrentText("j2", toGraphic);
    QCOMPARE(deliveries(),
             (Deliveries{to(graphic, toGraphic), to(matrix, toMatrix), to(guideOfTheJob, toGuide)}));
}

void tst_Texts::currentTextForTheRootReachesItsElementsOnly()
{
    QWidget *const root = insertRoot();
    QWidget *const receiver = element(view, root);
    element(tips, root);
    element(view, graphicFrame("j1 | pcb"));
    matrixFrame("j1");
    const auto sent = message(view, {{"DstType", "EngineerRoot"}});
    manager()->Ov_SetCurrentText("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Texts::currentTextAddsTheMissingKind()
{
    QWidget *const receiver = element(view, insertRoot());
    const auto sent = message(view);
    manager()->Ov_SetCurrentText("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, withMissing(sent, {"DstType"}))}));
    QVERIFY(sent.data.isEmpty());
}

void tst_Texts::kindGivenIsNotReadFromTheMessage()
{
    QWidget *const graphic = graphicFrame("j1 | pcb");
    matrixFrame("j1");
    const auto saysMatrix = message(graphicEditor, {{"DstType", "Matrix"}});
    const auto saysNothing = message(graphicEditor);
    manager()->setInterfaceTexts("Graphic", "j1", saysMatrix);
    manager()->setInterfaceTexts("Graphic", "j1", saysNothing);
    QCOMPARE(deliveries(), (Deliveries{to(graphic, saysMatrix), to(graphic, saysNothing)}));
}

void tst_Texts::eachReceiverGetsAFreshCopy()
{
    QWidget *const pcb = graphicFrame("j1 | pcb");
    QWidget *const panel = graphicFrame("j1 | panel");
    const auto [first, second] = twins(view, insertRoot());
    Recorder::setMessagesAreSpoiled(true);
    const auto sent = message(view, {{"Key", "value"}});
    manager()->setInterfaceTexts("Graphic", "j1", sent);
    manager()->setInterfaceTexts("", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(pcb, sent), to(panel, sent), to(first, sent), to(second, sent)}));
}

void tst_Texts::missingLibraryIsSilent()
{
    element("Nobody.dll", insertRoot());
    graphicFrame("j1 | pcb");
    manager()->setInterfaceTexts("Graphic", "j1", message("Nobody.dll"));
    manager()->setInterfaceTexts("EngineerRoot", "j1", message("Nobody.dll"));
    manager()->setInterfaceTexts("Graphic", "j1", message(""));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Texts::missingEntryPointIsSilent()
{
    replace(matrixEditor, "without_entry_point/Without_Entry_Point.dll");
    graphicFrame("j1 | pcb");
    manager()->setInterfaceTexts("Graphic", "j1", message(matrixEditor));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Texts::entryPointIsResolvedAtEachDelivery()
{
    QWidget *const frame = matrixFrame("j1");
    const auto sent = message(matrixEditor);
    manager()->setInterfaceTexts("Matrix", "j1", sent);
    replace(matrixEditor, "healthy/Any_Library.dll");
    manager()->setInterfaceTexts("Matrix", "j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, sent), by("Any_Library.dll", frame, sent)}));
}

void tst_Texts::settersOfOneFrameDoNothing()
{
    element(view, insertRoot());
    for (QWidget *frame : {graphicFrame("j1 | pcb"), matrixFrame("j1")})
        element(view, frame);
    for (const QString &text : {QStringLiteral("j1"), QString()}) {
        for (const QString &dst : {view, graphicEditor, matrixEditor, QString()}) {
            manager()->setEngineerText(text, message(dst, {{"DstType", "EngineerRoot"}}));
            manager()->setGraphicText(text, message(dst, {{"DstType", "Graphic"}}));
            manager()->setMatrixText(text, message(dst, {{"DstType", "Matrix"}}));
        }
    }
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_Texts>(argc, argv);
}

#include "tst_texts.moc"

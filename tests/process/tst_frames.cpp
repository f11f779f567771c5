#include "camtest.h"
#include "testmain.h"

#include <QtCore/QLibrary>

/// Frames: how they are made, recorded, told their job and forgotten.
class tst_Frames : public CamTest
{
    Q_OBJECT

private slots:
    void init();

    void graphicFrameIsMadeAndTold();
    void graphicFrameIsToldWhetherItAssists();
    void dfmGraphicFrameIsMadeAndTold();
    void stepFrameIsMadeAndTold();
    void dfmStepFrameIsMadeAndTold();
    void matrixFrameIsMadeAndTold();
    void guideFrameIsMadeAndTold();
    void camGuideIsMadeAndTold();
    void camGuideComesFromTheGuideLibraryWhateverItsName();
    void namesAreReadAsUtf8();

    void secondGraphicFrameOfANameIsTheFirst();
    void secondDfmGraphicFrameOfANameIsTheFirst();
    void secondStepFrameIsTheFirst();
    void secondDfmStepFrameIsTheFirst();
    void secondMatrixFrameIsTheFirst();
    void secondGuideFrameIsTheFirst();
    void camGuidesAreToldApartByNameAndParent();
    void graphicFramesOfAllButTheDfmVariantShareTheirNames();
    void dfmStepFrameIsFoundByItsKeyOnly();
    void dfmStepFrameKeyIsTheJoinedText();
    void matrixAndGuideFramesDoNotSeeEachOther();
    void graphicFrameIsLookedUpWithItsCase();
    void frameIsLookedUpBeforeItsNameIsSplit();
    void nullFrameIsRecordedToldAndKept();

    void nameOfOnePartGivesNothing();
    void nameOfThreePartsGivesNothing();
    void emptyPartsAreParts();

    void graphicFramesBelongToTheRoot();
    void matrixFrameBelongsToTheRoot();
    void guideFrameBelongsToTheRoot();
    void stepFramesBelongToNobody();
    void rootIsTheOneAtTheTimeOfTheCall();
    void dfmStepFrameHasTheWildcardName();
    void camGuideIsAnElementOfItsParent();

    void frameIsRecordedBeforeItIsTold();
    void everyFrameIsRecordedBeforeItIsTold();
    void frameIsNotRecordedWhileItIsMade();
    void libraryIsLookedUpAgainForTheMessage();
    void libraryIsLookedUpAgainForTheDfmMessage();
    void stepFrameIsNotToldByAnotherLibraryThanTheOneThatMadeIt();
    void dfmStepFrameIsNotToldByAnotherLibraryThanTheOneThatMadeIt();

    void libraryThatIsNotLoadedGivesNothing();
    void missingFactoryGivesNothing();
    void frameMadeBeforeIsNotReturnedOnceItsFactoryIsMissing();
    void frameOfALibraryWithoutEntryPointIsNotTold();

    void unregisteringForgetsTheFrameAndTellsIt();
    void unregisteringADfmFrameForgetsItAndTellsIt();
    void unregisteringTellsAfterForgetting();
    void unregisteringForgetsTheElementsInTheFrame();
    void unregisteringForgetsTwinElements();
    void unregisteringLeavesWhatIsDeeperInside();
    void unregisteringForgetsAllFramesOfTheNameButTellsTheFirst();
    void unregisteringADfmFrameLeavesTheOthers();
    void unregisteringAnUnknownFrameDoesNothing();
    void unregisteringDoesNotSeeTheOtherVariant();
    void unregisteringReachesFramesOfTheRoot();
    void unregisteringTheWildcardNameForgetsAllDfmFrames();
    void unregisteringANullFrameForgetsWhateverHasNoParent();
    void unregisteringWithoutTheLibraryIsSilent();
    void unregisteringWithoutTheEntryPointIsSilent();
    void unregisteredFrameMayBeRegisteredAgain();

private:
    Recorder::FactoryCall onlyFactoryCall();
    void loadHollowEditor();
};

namespace {

const QStringList editorNames{"ORVIK-GraphicEditor", "ORVIK-Matrix", "Graphic_CamGuide"};

}

void tst_Frames::init()
{
    CamTest::init();
    useReplaceable(REPLACEABLE_DIR "/frames");
}

Recorder::FactoryCall tst_Frames::onlyFactoryCall()
{
    const QList<Recorder::FactoryCall> calls = factoryCalls();
    return calls.size() == 1 ? calls.first()
                             : Recorder::FactoryCall{"not one call", {}, nullptr, {}, nullptr};
}

// This editor's functions are in a library of their own, so that they stay in memory while the editor is
// replaced by another library.
void tst_Frames::loadHollowEditor()
{
    QLibrary lasting(FIXTURE_DIR "/lasting/lastingeditor");
    QVERIFY2(lasting.load(), qPrintable(lasting.errorString()));
    replace(graphicEditor, "hollow/ORVIK-GraphicEditor.dll");
    load({"ORVIK-GraphicEditor"});
}

void tst_Frames::graphicFrameIsMadeAndTold()
{
    load();
    QWidget parent;
    QWidget *const frame = manager()->Ov_RegisterGraphicFramework(&parent, "j1 | pcb", false);

    const Recorder::FactoryCall call = onlyFactoryCall();
    QCOMPARE(call.library, graphicEditor);
    QCOMPARE(call.symbol, "GetORVIKGraphicInstance");
    QCOMPARE(call.parent, &parent);
    QCOMPARE(call.job, "j1");
    QCOMPARE(call.step, "pcb");
    QVERIFY(frame);
    QCOMPARE(call.element, static_cast<void *>(frame));
    QCOMPARE(
        deliveries(),
        (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20001638,
                                   {{"JobName", "j1"}, {"Step", "pcb"}, {"IsCamAssistant", "false"}}))}));
}

void tst_Frames::graphicFrameIsToldWhetherItAssists()
{
    load();
    QWidget *const frame = manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", true);
    QCOMPARE(deliveries(),
             (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20001638,
                                        {{"JobName", "j1"}, {"Step", "pcb"}, {"IsCamAssistant", "true"}}))}));
}

void tst_Frames::dfmGraphicFrameIsMadeAndTold()
{
    load();
    QWidget parent;
    Recorder::setOnDelivery([this](const Recorder::Delivery &) { QVERIFY(log().isEmpty()); });
    QWidget *const frame = manager()->Ov_RegisterDFMGraphicFramework(&parent, "j1 | pcb", true);

    const Recorder::FactoryCall call = onlyFactoryCall();
    QCOMPARE(call.library, graphicEditor);
    QCOMPARE(call.symbol, "GetORVIKGraphicInstance");
    QCOMPARE(call.parent, &parent);
    QCOMPARE(call.job, "j1");
    QCOMPARE(call.step, "pcb");
    QVERIFY(frame);
    QCOMPARE(call.element, static_cast<void *>(frame));
    QCOMPARE(deliveries(), (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20004616))}));
    QCOMPARE(log(), QList<LogLines::Line>{info("ok")});
}

void tst_Frames::stepFrameIsMadeAndTold()
{
    load();
    QWidget parent;
    QWidget *const frame = manager()->Ov_RegisterGraphicFramework4Quorel(&parent, "j1", "pcb");

    const Recorder::FactoryCall call = onlyFactoryCall();
    QCOMPARE(call.library, graphicEditor);
    QCOMPARE(call.symbol, "GetORVIKGraphicInstance");
    QCOMPARE(call.parent, &parent);
    QCOMPARE(call.job, "j1");
    QCOMPARE(call.step, "pcb");
    QVERIFY(frame);
    QCOMPARE(call.element, static_cast<void *>(frame));
    QCOMPARE(deliveries(), (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20001638,
                                                      {{"JobName", "j1"}, {"Step", "pcb"}}))}));
}

void tst_Frames::dfmStepFrameIsMadeAndTold()
{
    load();
    QWidget parent;
    QWidget *const frame = manager()->Ov_RegisterDFMGraphicFramework4Quorel(&parent, "j1", "pcb");

    const Recorder::FactoryCall call = onlyFactoryCall();
    QCOMPARE(call.library, graphicEditor);
    QCOMPARE(call.symbol, "GetORVIKGraphicInstance");
    QCOMPARE(call.parent, &parent);
    QCOMPARE(call.job, "j1");
    QCOMPARE(call.step, "pcb");
    QVERIFY(frame);
    QCOMPARE(call.element, static_cast<void *>(frame));
    QCOMPARE(deliveries(), (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20004616))}));
}

void tst_Frames::matrixFrameIsMadeAndTold()
{
    load();
    QWidget parent;
    QWidget *const frame = manager()->Ov_RegisterMatrixFramework(&parent, "j1");

    const Recorder::FactoryCall call = onlyFactoryCall();
    QCOMPARE(call.library, matrixEditor);
    QCOMPARE(call.symbol, "GetORVIKMatrixInstance");
    QCOMPARE(call.parent, &parent);
    QVERIFY(frame);
    QCOMPARE(call.element, static_cast<void *>(frame));
    QCOMPARE(deliveries(),
             (Deliveries{by(matrixEditor, frame, note("", "j1", 20001638, {{"JobName", "j1"}}))}));
}

void tst_Frames::guideFrameIsMadeAndTold()
{
    load();
    QWidget parent;
    QWidget *const frame = manager()->Ov_RegisterGuideFramework(&parent, "j1|Guide");

    const Recorder::FactoryCall call = onlyFactoryCall();
    QCOMPARE(call.library, guide);
    QCOMPARE(call.symbol, "GetPluginCamGuideInstance");
    QCOMPARE(call.parent, &parent);
    QVERIFY(frame);
    QCOMPARE(call.element, static_cast<void *>(frame));
    QCOMPARE(deliveries(),
             (Deliveries{by(guide, frame, note("", "j1|Guide", 20003913, {{"JobName", "j1|Guide"}}))}));
}

void tst_Frames::camGuideIsMadeAndTold()
{
    load();
    QWidget parent;
    QWidget *const made = manager()->Ov_Register_CamGuide("Graphic_CamGuide.dll", &parent, "j1");

    const Recorder::FactoryCall call = onlyFactoryCall();
    QCOMPARE(call.library, guide);
    QCOMPARE(call.symbol, "GetPluginCamGuideInstance");
    QCOMPARE(call.parent, &parent);
    QVERIFY(made);
    QCOMPARE(call.element, static_cast<void *>(made));
    QCOMPARE(deliveries(), (Deliveries{by(guide, made, note("", "j1", 20003913, {{"JobName", "j1"}}))}));
}

void tst_Frames::camGuideComesFromTheGuideLibraryWhateverItsName()
{
    load();
    QWidget *const made = manager()->Ov_Register_CamGuide("ORVIK-Matrix.dll", nullptr, "j1");
    QCOMPARE(onlyFactoryCall().library, guide);
    QCOMPARE(deliveries(), (Deliveries{by(guide, made, note("", "j1", 20003913, {{"JobName", "j1"}}))}));
}

void tst_Frames::namesAreReadAsUtf8()
{
    load();
    QWidget *const graphic =
        manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "\xe7\x94\xb5\xe8\xb7\xaf", "\xe6\xad\xa5");
    const Recorder::FactoryCall call = onlyFactoryCall();
    QCOMPARE(call.job, QStringLiteral("电路"));
    QCOMPARE(call.step, QStringLiteral("步"));
    QCOMPARE(
        manager()->Ov_RegisterGraphicFramework(nullptr, "\xe7\x94\xb5\xe8\xb7\xaf | \xe6\xad\xa5", false),
        graphic);
    QWidget *const matrix = manager()->Ov_RegisterMatrixFramework(nullptr, "\xe7\x94\xb5\xe8\xb7\xaf");
    QCOMPARE(
        deliveries(),
        (Deliveries{to(graphic, note(graphicEditor, graphicEditor, 20001638,
                                     {{"JobName", QStringLiteral("电路")}, {"Step", QStringLiteral("步")}})),
                    by(matrixEditor, matrix,
                       note("", QStringLiteral("电路"), 20001638, {{"JobName", QStringLiteral("电路")}}))}));
}

void tst_Frames::secondGraphicFrameOfANameIsTheFirst()
{
    load();
    QWidget otherParent;
    QWidget *const frame = graphicFrame("j1 | pcb");
    QCOMPARE(manager()->Ov_RegisterGraphicFramework(&otherParent, "j1 | pcb", true), frame);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
}

// Nor is "ok" logged again: it stands for a message sent.
void tst_Frames::secondDfmGraphicFrameOfANameIsTheFirst()
{
    load();
    QWidget *const frame = manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | pcb", false);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries().list.size(), 1);
    QCOMPARE(log(), QList<LogLines::Line>{info("ok")});

    QCOMPARE(manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | pcb", false), frame);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Frames::secondStepFrameIsTheFirst()
{
    load();
    QWidget *const frame = stepFrame("j1", "pcb");
    QCOMPARE(manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "pcb"), frame);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Frames::secondDfmStepFrameIsTheFirst()
{
    load();
    QWidget *const frame = dfmFrame("j1", "pcb");
    QCOMPARE(manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "pcb"), frame);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(dfmFrame("j1", "panel") != frame);
}

void tst_Frames::secondMatrixFrameIsTheFirst()
{
    load();
    QWidget *const frame = matrixFrame("j1");
    QCOMPARE(manager()->Ov_RegisterMatrixFramework(nullptr, "j1"), frame);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Frames::secondGuideFrameIsTheFirst()
{
    load();
    QWidget *const frame = guideFrame("j1");
    QCOMPARE(manager()->Ov_RegisterGuideFramework(nullptr, "j1"), frame);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Frames::camGuidesAreToldApartByNameAndParent()
{
    load();
    QWidget parent;
    QWidget *const made = element("Own_Guide.dll", &parent);
    QCOMPARE(manager()->Ov_Register_CamGuide("Own_Guide.dll", &parent, "another job"), made);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());

    QVERIFY(element("Own_Guide.dll", nullptr) != made);
    QVERIFY(element("Other_Guide.dll", &parent) != made);
}

void tst_Frames::graphicFramesOfAllButTheDfmVariantShareTheirNames()
{
    load();
    QWidget *const frame = graphicFrame("j1 | pcb");
    QCOMPARE(manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | pcb", false), frame);
    QCOMPARE(manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "pcb"), frame);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Frames::dfmStepFrameIsFoundByItsKeyOnly()
{
    load();
    QWidget *const named = stepFrame("j1", "pcb");
    QWidget *const dfm = dfmFrame("j1", "pcb");
    QVERIFY(dfm != named);
    QCOMPARE(stepFrame("j1", "pcb"), named);
    QCOMPARE(graphicFrame("j1 | pcb"), named);
    QCOMPARE(dfmFrame("j1", "pcb"), dfm);
    QCOMPARE(graphicFrame(wildcard), dfm);
}

void tst_Frames::dfmStepFrameKeyIsTheJoinedText()
{
    load();
    QCOMPARE(dfmFrame("a | b", "c"), dfmFrame("a", "b | c"));
    QVERIFY(dfmFrame("a|b", "c") != dfmFrame("a", "b|c"));
}

void tst_Frames::matrixAndGuideFramesDoNotSeeEachOther()
{
    load();
    QWidget *const matrix = matrixFrame("j1 | pcb");
    QWidget *const guideOfTheName = guideFrame("j1 | pcb");
    QWidget *const graphic = graphicFrame("j1 | pcb");
    QVERIFY(matrix != guideOfTheName);
    QVERIFY(graphic != matrix);
    QVERIFY(graphic != guideOfTheName);
}

void tst_Frames::graphicFrameIsLookedUpWithItsCase()
{
    load();
    QVERIFY(graphicFrame("j1 | pcb") != graphicFrame("J1 | pcb"));
    QVERIFY(matrixFrame("j1") != matrixFrame("J1"));
}

void tst_Frames::frameIsLookedUpBeforeItsNameIsSplit()
{
    load();
    QWidget *const frame = stepFrame("a | b", "c");
    QVERIFY(frame);
    QCOMPARE(manager()->Ov_RegisterGraphicFramework(nullptr, "a | b | c", false), frame);
    QCOMPARE(manager()->Ov_RegisterDFMGraphicFramework(nullptr, "a | b | c", false), frame);
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Frames::nullFrameIsRecordedToldAndKept()
{
    load();
    Recorder::setFactoriesReturnNull(true);
    for (int call = 0; call < 2; ++call) {
        QVERIFY(!manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", false));
        QVERIFY(!manager()->Ov_RegisterMatrixFramework(nullptr, "j1"));
        QVERIFY(!manager()->Ov_RegisterGuideFramework(nullptr, "j1"));
        QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "pcb"));
    }
    QCOMPARE(factoryCalls().size(), 4);
    QCOMPARE(deliveries(),
             (Deliveries{to(nullptr, note(graphicEditor, graphicEditor, 20001638,
                                          {{"JobName", "j1"}, {"Step", "pcb"}, {"IsCamAssistant", "false"}})),
                         by(matrixEditor, nullptr, note("", "j1", 20001638, {{"JobName", "j1"}})),
                         by(guide, nullptr, note("", "j1", 20003913, {{"JobName", "j1"}})),
                         to(nullptr, note(graphicEditor, graphicEditor, 20004616))}));
}

void tst_Frames::nameOfOnePartGivesNothing()
{
    load();
    for (const char *name : {"", "j1", "j1|pcb", "j1 |pcb", "j1| pcb", "j1 || pcb"}) {
        QVERIFY(!manager()->Ov_RegisterGraphicFramework(nullptr, name, false));
        QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework(nullptr, name, false));
    }
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(!isRegistered(nullptr));
}

void tst_Frames::nameOfThreePartsGivesNothing()
{
    load();
    for (const char *name : {"j1 | pcb | top", " |  | ", "j1 | pcb | "}) {
        QVERIFY(!manager()->Ov_RegisterGraphicFramework(nullptr, name, false));
        QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework(nullptr, name, false));
    }
    QCOMPARE(factoryCalls().size(), 0);
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(!isRegistered(nullptr));
}

void tst_Frames::emptyPartsAreParts()
{
    load();
    QWidget *const frame = manager()->Ov_RegisterGraphicFramework(nullptr, " | ", false);
    QVERIFY(frame);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries(),
             (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20001638,
                                        {{"JobName", ""}, {"Step", ""}, {"IsCamAssistant", "false"}}))}));
}

// Messages by job and step look for the frame under the root.
void tst_Frames::graphicFramesBelongToTheRoot()
{
    load();
    insertRoot();
    QWidget *const inGraphic = element(view, graphicFrame("j1 | pcb"));
    QWidget *const dfm = manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | dfm", false);
    QCOMPARE(deliveries().list.size(), 1);
    QCOMPARE(log(), QList<LogLines::Line>{info("ok")});
    QWidget *const inDfm = element(view, dfm);

    const auto toPcb = message(view, {{"DstType", "Graphic"}, {"JobName", "j1"}, {"Step", "pcb"}});
    const auto toDfm = message(view, {{"DstType", "Graphic"}, {"JobName", "j1"}, {"Step", "dfm"}});
    manager()->pluginTransmitData(toPcb);
    manager()->pluginTransmitData(toDfm);
    QCOMPARE(deliveries(), (Deliveries{to(inGraphic, toPcb), to(inDfm, toDfm)}));
}

void tst_Frames::matrixFrameBelongsToTheRoot()
{
    load();
    insertRoot();
    QWidget *const table = element(matrixTable, matrixFrame("j1"));
    const auto sent = message(matrixTable, {{"DstType", "Matrix"}, {"JobName", "j1"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(table, sent)}));
}

// Looking under the root compares the name only, not the kind of frame.
void tst_Frames::guideFrameBelongsToTheRoot()
{
    load();
    insertRoot();
    QWidget *const tip = element(tips, guideFrame("j1"));
    const auto sent = message(tips, {{"DstType", "Matrix"}, {"JobName", "j1"}});
    manager()->pluginTransmitData(sent);
    QCOMPARE(deliveries(), (Deliveries{to(tip, sent)}));
}

void tst_Frames::stepFramesBelongToNobody()
{
    load();
    QWidget *const inStep = element(view, stepFrame("j1", "pcb"));
    QWidget *const inDfm = element(view, dfmFrame("j1", "dfm"));
    const auto toStep = message(view, {{"DstType", "Graphic"}, {"JobName", "j1"}, {"Step", "pcb"}});
    const auto toDfm =
        message(view, {{"DstType", "Graphic"}, {"JobName", "!$*!OV?*?"}, {"Step", "!*$!DFM?*?"}});

    manager()->pluginTransmitData(toStep);
    manager()->pluginTransmitData(toDfm);
    QCOMPARE(deliveries(), (Deliveries{to(inStep, toStep), to(inDfm, toDfm)}));

    insertRoot();
    manager()->pluginTransmitData(toStep);
    manager()->pluginTransmitData(toDfm);
    QCOMPARE(deliveries(), Deliveries());

    // Nor does a root that was there before them make a difference.
    element(view, stepFrame("j2", "pcb"));
    manager()->pluginTransmitData(
        message(view, {{"DstType", "Graphic"}, {"JobName", "j2"}, {"Step", "pcb"}}));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Frames::rootIsTheOneAtTheTimeOfTheCall()
{
    load();
    QWidget *const early = element(matrixTable, matrixFrame("early"));
    const auto toEarly = message(matrixTable, {{"DstType", "Matrix"}, {"JobName", "early"}});
    manager()->pluginTransmitData(toEarly);
    QCOMPARE(deliveries(), (Deliveries{to(early, toEarly)}));

    insertRoot();
    insertRoot("Another");
    QWidget *const late = element(matrixTable, matrixFrame("late"));
    const auto toLate = message(matrixTable, {{"DstType", "Matrix"}, {"JobName", "late"}});
    manager()->pluginTransmitData(toEarly);
    manager()->pluginTransmitData(toLate);
    QCOMPARE(deliveries(), (Deliveries{to(late, toLate)}));
}

void tst_Frames::dfmStepFrameHasTheWildcardName()
{
    load();
    QWidget *const frame = dfmFrame("j1", "pcb");
    const auto sent = message(graphicEditor);
    manager()->setInterfaceTexts("Graphic", "any job", sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, sent)}));
    manager()->Eda_setTransmitData("Graphic", "!$*!OV?*?", sent);
    QCOMPARE(deliveries(), (Deliveries{to(frame, sent)}));
}

void tst_Frames::camGuideIsAnElementOfItsParent()
{
    load();
    QWidget *const frame = graphicFrame("j1 | pcb");
    QWidget *const made = manager()->Ov_Register_CamGuide("Graphic_Tips.dll", frame, "j1");
    QCOMPARE(deliveries().list.size(), 1);
    const auto sent = message(tips);
    manager()->updateGraphic("j1", sent);
    QCOMPARE(deliveries(), (Deliveries{to(made, withMissing(sent, {"ChangeStepName", "OldJobName"}))}));
}

void tst_Frames::frameIsRecordedBeforeItIsTold()
{
    load();
    QWidget *again = nullptr;
    onNextDelivery([&] { again = manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", false); });
    QWidget *const frame = manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", false);

    QVERIFY(frame);
    QCOMPARE(again, frame);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries().list.size(), 1);
}

void tst_Frames::everyFrameIsRecordedBeforeItIsTold()
{
    load();
    int told = 0;
    Recorder::setOnDelivery([&](const Recorder::Delivery &delivery) {
        QVERIFY(isRegistered(delivery.target));
        ++told;
    });
    manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | a", false);
    manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | b", false);
    manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "c");
    manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "d");
    manager()->Ov_RegisterMatrixFramework(nullptr, "j1");
    manager()->Ov_RegisterGuideFramework(nullptr, "j1");
    manager()->Ov_Register_CamGuide("Own_Guide.dll", nullptr, "j1");
    QCOMPARE(told, 7);
    QCOMPARE(deliveries().list.size(), 7);
    QCOMPARE(log(), QList<LogLines::Line>{info("ok")});
}

void tst_Frames::frameIsNotRecordedWhileItIsMade()
{
    load();
    QWidget shared;
    Recorder::setSharedElement(&shared);
    int made = 0;
    Recorder::setOnFactory([&](const QString &, QWidget *) {
        QVERIFY(!isRegistered(&shared));
        ++made;
    });
    QCOMPARE(manager()->Ov_RegisterMatrixFramework(nullptr, "j1"), &shared);
    QCOMPARE(made, 1);
    QVERIFY(isRegistered(&shared));
    QCOMPARE(Recorder::takeFactoryCalls().size(), 1);
    QCOMPARE(deliveries().list.size(), 1);
}

void tst_Frames::libraryIsLookedUpAgainForTheMessage()
{
    loadHollowEditor();

    Recorder::setOnFactory(
        [this](const QString &, QWidget *) { replace(graphicEditor, "healthy/Any_Library.dll"); });
    QWidget *const frame = manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", false);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries(),
             (Deliveries{by("Any_Library.dll", frame,
                            note(graphicEditor, graphicEditor, 20001638,
                                 {{"JobName", "j1"}, {"Step", "pcb"}, {"IsCamAssistant", "false"}}))}));
}

void tst_Frames::libraryIsLookedUpAgainForTheDfmMessage()
{
    loadHollowEditor();

    Recorder::setOnFactory([this](const QString &, QWidget *) {
        replace(graphicEditor, "without_entry_point/Without_Entry_Point.dll");
    });
    QWidget *const frame = manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | pcb", false);
    QVERIFY(frame);
    QCOMPARE(factoryCalls().size(), 1);
    QVERIFY(isRegistered(frame));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Frames::stepFrameIsNotToldByAnotherLibraryThanTheOneThatMadeIt()
{
    loadHollowEditor();

    Recorder::setOnFactory(
        [this](const QString &, QWidget *) { replace(graphicEditor, "healthy/Any_Library.dll"); });
    QWidget *const frame = manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "pcb");
    QVERIFY(frame);
    QCOMPARE(factoryCalls().size(), 1);
    QVERIFY(isRegistered(frame));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Frames::dfmStepFrameIsNotToldByAnotherLibraryThanTheOneThatMadeIt()
{
    loadHollowEditor();

    Recorder::setOnFactory(
        [this](const QString &, QWidget *) { replace(graphicEditor, "healthy/Any_Library.dll"); });
    QWidget *const frame = manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "pcb");
    QVERIFY(frame);
    QCOMPARE(factoryCalls().size(), 1);
    QVERIFY(isRegistered(frame));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Frames::libraryThatIsNotLoadedGivesNothing()
{
    load({"Graphic_View"});
    QVERIFY(!manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", false));
    QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | pcb", false));
    QVERIFY(!manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "pcb"));
    QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "pcb"));
    QVERIFY(!manager()->Ov_RegisterMatrixFramework(nullptr, "j1"));
    QVERIFY(!manager()->Ov_RegisterGuideFramework(nullptr, "j1"));
    QVERIFY(!manager()->Ov_Register_CamGuide("Graphic_View.dll", nullptr, "j1"));
    QVERIFY(!isRegistered(nullptr));
}

void tst_Frames::missingFactoryGivesNothing()
{
    for (const QString &name : editorNames)
        replace(name + ".dll", "without_factory/" + name + ".dll");
    load(editorNames + QStringList{"Graphic_View"});
    QVERIFY(!manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", false));
    QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | pcb", false));
    QVERIFY(!manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "pcb"));
    QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "pcb"));
    QVERIFY(!manager()->Ov_RegisterMatrixFramework(nullptr, "j1"));
    QVERIFY(!manager()->Ov_RegisterGuideFramework(nullptr, "j1"));
    QVERIFY(!manager()->Ov_Register_CamGuide("Graphic_View.dll", nullptr, "j1"));
    QVERIFY(!isRegistered(nullptr));

    // Nothing was recorded: with factories, each is made.
    for (const QString &name : editorNames)
        replace(name + ".dll", "healthy/" + name + ".dll");
    QVERIFY(graphicFrame("j1 | pcb"));
    QVERIFY(dfmFrame("j1", "pcb"));
    QVERIFY(matrixFrame("j1"));
    QVERIFY(guideFrame("j1"));
    QVERIFY(element("Graphic_View.dll", nullptr));
}

void tst_Frames::frameMadeBeforeIsNotReturnedOnceItsFactoryIsMissing()
{
    for (const QString &name : editorNames)
        replace(name + ".dll", "healthy/" + name + ".dll");
    load(editorNames);
    QWidget *const graphic = graphicFrame("j1 | pcb");
    QWidget *const dfm = dfmFrame("j1", "pcb");
    QWidget *const matrix = matrixFrame("j1");
    QWidget *const guideOfTheJob = guideFrame("j1");
    QWidget *const own = element("Own_Guide.dll", nullptr);

    for (const QString &name : editorNames)
        replace(name + ".dll", "without_factory/" + name + ".dll");
    QVERIFY(!manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", false));
    QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | pcb", false));
    QVERIFY(!manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "pcb"));
    QVERIFY(!manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "pcb"));
    QVERIFY(!manager()->Ov_RegisterMatrixFramework(nullptr, "j1"));
    QVERIFY(!manager()->Ov_RegisterGuideFramework(nullptr, "j1"));
    QVERIFY(!manager()->Ov_Register_CamGuide("Own_Guide.dll", nullptr, "j1"));

    for (const QString &name : editorNames)
        replace(name + ".dll", "healthy/" + name + ".dll");
    QCOMPARE(manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | pcb", false), graphic);
    QCOMPARE(manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "pcb"), dfm);
    QCOMPARE(manager()->Ov_RegisterMatrixFramework(nullptr, "j1"), matrix);
    QCOMPARE(manager()->Ov_RegisterGuideFramework(nullptr, "j1"), guideOfTheJob);
    QCOMPARE(manager()->Ov_Register_CamGuide("Own_Guide.dll", nullptr, "j1"), own);
    QCOMPARE(factoryCalls().size(), 0);
}

void tst_Frames::frameOfALibraryWithoutEntryPointIsNotTold()
{
    for (const QString &name : editorNames)
        replace(name + ".dll", "without_entry_point/Without_Entry_Point.dll");
    load(editorNames);
    const QList<QWidget *> frames{manager()->Ov_RegisterGraphicFramework(nullptr, "j1 | a", false),
                                  manager()->Ov_RegisterDFMGraphicFramework(nullptr, "j1 | b", false),
                                  manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "c"),
                                  manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "j1", "d"),
                                  manager()->Ov_RegisterMatrixFramework(nullptr, "j1"),
                                  manager()->Ov_RegisterGuideFramework(nullptr, "j1"),
                                  manager()->Ov_Register_CamGuide("Own_Guide.dll", nullptr, "j1")};
    for (QWidget *frame : frames) {
        QVERIFY(frame);
        QVERIFY(isRegistered(frame));
        delete frame;
    }
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Frames::unregisteringForgetsTheFrameAndTellsIt()
{
    load();
    QWidget *const other = stepFrame("j1", "panel");
    QWidget *const frame = stepFrame("j1", "pcb");
    const QPointer<QWidget> stillThere = frame;
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");

    QCOMPARE(deliveries(), (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20002402))}));
    QVERIFY(stillThere);
    QVERIFY(!isRegistered(frame));
    QVERIFY(isRegistered(other));
}

void tst_Frames::unregisteringADfmFrameForgetsItAndTellsIt()
{
    load();
    QWidget *const frame = dfmFrame("j1", "pcb");
    const QPointer<QWidget> stillThere = frame;
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("j1", "pcb");

    QCOMPARE(deliveries(), (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20002402))}));
    QVERIFY(stillThere);
    QVERIFY(!isRegistered(frame));
}

void tst_Frames::unregisteringTellsAfterForgetting()
{
    load();
    QWidget *const frame = stepFrame("j1", "pcb");
    QWidget *const inside = element(view, frame);
    QWidget *const dfm = dfmFrame("j1", "pcb");
    QWidget *const insideDfm = element(view, dfm);
    onNextDelivery([&] {
        QVERIFY(!isRegistered(frame));
        QVERIFY(!isRegistered(inside));
    });
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    onNextDelivery([&] {
        QVERIFY(!isRegistered(dfm));
        QVERIFY(!isRegistered(insideDfm));
    });
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("j1", "pcb");
    QCOMPARE(deliveries().list.size(), 2);
}

void tst_Frames::unregisteringForgetsTheElementsInTheFrame()
{
    load();
    QWidget *const other = stepFrame("j1", "panel");
    QWidget *const inOther = element(view, other);
    QWidget *const frame = stepFrame("j1", "pcb");
    const QList<QWidget *> inside{element(view, frame), element(tips, frame), element(jobList, frame)};
    QWidget *const dfm = dfmFrame("j1", "pcb");
    const QList<QWidget *> insideDfm{element(view, dfm), element(tips, dfm)};

    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    for (QWidget *gone : inside)
        QVERIFY(!isRegistered(gone));
    for (QWidget *left : insideDfm)
        QVERIFY(isRegistered(left));
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("j1", "pcb");
    for (QWidget *gone : insideDfm)
        QVERIFY(!isRegistered(gone));
    QVERIFY(isRegistered(inOther));
    QCOMPARE(deliveries().list.size(), 2);
}

void tst_Frames::unregisteringForgetsTwinElements()
{
    load();
    QWidget *const frame = stepFrame("j1", "pcb");
    const auto [first, second] = twins(view, frame);
    QVERIFY(first != second);
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    QVERIFY(!isRegistered(first));
    QVERIFY(!isRegistered(second));
    QCOMPARE(deliveries().list.size(), 1);
}

void tst_Frames::unregisteringLeavesWhatIsDeeperInside()
{
    load();
    QWidget *const inside = element(view, stepFrame("j1", "pcb"));
    QWidget *const deeper = element(view, inside);
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    QVERIFY(!isRegistered(inside));
    QVERIFY(isRegistered(deeper));
    QCOMPARE(deliveries().list.size(), 1);
}

// Renaming gives several frames one name.
void tst_Frames::unregisteringForgetsAllFramesOfTheNameButTellsTheFirst()
{
    load();
    QWidget *const first = stepFrame("j1", "old");
    QWidget *const second = stepFrame("j1", "pcb");
    QWidget *const inFirst = element(view, first);
    QWidget *const inSecond = element(view, second);
    manager()->Ov_ChangeStepName("j1", "old", "pcb");

    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    QCOMPARE(deliveries(), (Deliveries{to(first, note(graphicEditor, graphicEditor, 20002402))}));
    QVERIFY(!isRegistered(first));
    QVERIFY(!isRegistered(second));
    QVERIFY(!isRegistered(inFirst));
    QVERIFY(isRegistered(inSecond));
}

// All of them have the same name.
void tst_Frames::unregisteringADfmFrameLeavesTheOthers()
{
    load();
    QWidget *const first = dfmFrame("j1", "pcb");
    QWidget *const second = dfmFrame("j1", "panel");
    QWidget *const third = dfmFrame("j2", "pcb");
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("j1", "panel");
    QCOMPARE(deliveries(), (Deliveries{to(second, note(graphicEditor, graphicEditor, 20002402))}));
    QVERIFY(isRegistered(first));
    QVERIFY(!isRegistered(second));
    QVERIFY(isRegistered(third));
}

void tst_Frames::unregisteringAnUnknownFrameDoesNothing()
{
    load();
    insertRoot();
    QWidget *const frame = stepFrame("j1", "pcb");
    QWidget *const matrix = matrixFrame("j2 | pcb");
    QWidget *const dfm = dfmFrame("j1", "pcb");
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j2", "pcb");
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "");
    manager()->Ov_UnRegisterGraphicFramework4Quorel("", "");
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("j2", "pcb");
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("", "");
    QCOMPARE(deliveries(), Deliveries());
    for (QWidget *left : {frame, matrix, dfm})
        QVERIFY(isRegistered(left));
}

void tst_Frames::unregisteringDoesNotSeeTheOtherVariant()
{
    load();
    QWidget *const dfm = dfmFrame("j1", "pcb");
    QWidget *const named = stepFrame("j2", "pcb");
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("j2", "pcb");
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(isRegistered(dfm));
    QVERIFY(isRegistered(named));
}

void tst_Frames::unregisteringReachesFramesOfTheRoot()
{
    load();
    insertRoot();
    QWidget *const frame = graphicFrame("j1 | pcb");
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    QCOMPARE(deliveries(), (Deliveries{to(frame, note(graphicEditor, graphicEditor, 20002402))}));
    QVERIFY(!isRegistered(frame));
}

void tst_Frames::unregisteringTheWildcardNameForgetsAllDfmFrames()
{
    load();
    QWidget *const first = dfmFrame("j1", "pcb");
    QWidget *const second = dfmFrame("j2", "pcb");
    manager()->Ov_UnRegisterGraphicFramework4Quorel("!$*!OV?*?", "!*$!DFM?*?");
    QCOMPARE(deliveries(), (Deliveries{to(first, note(graphicEditor, graphicEditor, 20002402))}));
    QVERIFY(!isRegistered(first));
    QVERIFY(!isRegistered(second));
}

void tst_Frames::unregisteringANullFrameForgetsWhateverHasNoParent()
{
    load();
    QWidget *const root = insertRoot();
    QWidget *const underRoot = element(view, root);
    QWidget *const withoutParent = element(tips, nullptr);
    Recorder::setFactoriesReturnNull(true);
    stepFrame("j1", "pcb");
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");

    QCOMPARE(deliveries(), (Deliveries{to(nullptr, note(graphicEditor, graphicEditor, 20002402))}));
    QVERIFY(!manager()->getRoot());
    QVERIFY(!isRegistered(withoutParent));
    QVERIFY(isRegistered(underRoot));
}

void tst_Frames::unregisteringWithoutTheLibraryIsSilent()
{
    load();
    QWidget *const frame = stepFrame("j1", "pcb");
    replaceByNoLibrary(graphicEditor);

    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    QVERIFY(!isRegistered(frame));
}

void tst_Frames::unregisteringWithoutTheEntryPointIsSilent()
{
    load();
    QWidget *const frame = stepFrame("j1", "pcb");
    QWidget *const dfm = dfmFrame("j1", "pcb");
    replace(graphicEditor, "without_entry_point/Without_Entry_Point.dll");

    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    manager()->Ov_UnRegisterDFMGraphicFramework4Quorel("j1", "pcb");
    QVERIFY(!isRegistered(frame));
    QVERIFY(!isRegistered(dfm));
}

void tst_Frames::unregisteredFrameMayBeRegisteredAgain()
{
    load();
    QWidget *const frame = stepFrame("j1", "pcb");
    manager()->Ov_UnRegisterGraphicFramework4Quorel("j1", "pcb");
    QCOMPARE(deliveries().list.size(), 1);
    QWidget *const again = manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "j1", "pcb");
    QVERIFY(again != frame);
    QCOMPARE(factoryCalls().size(), 1);
    QCOMPARE(deliveries(), (Deliveries{to(again, note(graphicEditor, graphicEditor, 20001638,
                                                      {{"JobName", "j1"}, {"Step", "pcb"}}))}));
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_Frames>(argc, argv);
}

#include "tst_frames.moc"

#include "camtest.h"
#include "testmain.h"

/// Jobs and steps get new names, are deleted, updated and compared.
class tst_Jobs : public CamTest
{
    Q_OBJECT

private slots:
    void init();

    void comparedJobReachesTheElementsInAllGraphicFrames();
    void comparedJobAcceptsNamesThatContainTheReceiver();
    void comparedJobReachesElementsOnly();
    void comparedJobIsDeliveredUnchanged();
    void comparedJobReachesElementsInTwoFramesTwice();
    void comparedJobWithoutTheLibraryIsSilent();
    void comparedJobIsResolvedAtEachDelivery();

    void newJobNameIsGivenToAllItsFrames();
    void newJobNameIsPutAtTheStart();
    void newJobNameIsPutAtTheStartWhereverTheOldOneIs();
    void newJobNameReplacesAsManyCharactersAsTheOldOneHas();
    void newJobNameInBytes();
    void newJobNameLeavesSimilarNamesAlone();
    void newJobNameLeavesABareGuideAlone();
    void newJobNameLeavesDfmFramesAlone();
    void newJobNameIsTold();
    void newJobNameIsToldInOrder();
    void newJobNameIsToldToTheRecordUnderTheRootOnly();
    void newJobNameIsToldToTheFirstRecordOfThatName();
    void newJobNameIsToldWithoutARoot();
    void newJobNameIsToldEvenWithoutAMatrixFrame();
    void newJobNameIsToldEvenWithoutTheMatrixEditor();
    void newJobNameIsToldEvenWithoutTheEntryPoint();
    void newJobNameIsToldToWildcardFrames();
    void newJobNameIsNotToldToAStepWithoutName();
    void newJobNameIsToldToMatrixTablesOfAnyKind();
    void newJobNameIsToldAfterTheRegistryCarriesIt();
    void sameJobNameIsToldAllTheSame();
    void newNameOfAnUnknownJobReachesTheJobThatHasIt();

    void newStepNameIsGivenToItsFrameOnly();
    void newStepNameIsNotTold();
    void sameStepNameChangesNothing();

    void deletedJobIsForgottenAndTold();
    void deletedJobLeavesOtherJobsAlone();
    void deletedJobTakesTheElementsInItsFrames();
    void deletedJobLeavesWhatIsDeeperInside();
    void deletedJobIsForgottenBeforeItIsTold();
    void deletedJobForgetsOneFrameAtATime();
    void deletedJobIsToldByTheCopiesCollectedBefore();
    void deletedJobTakesAllFramesOfOneName();
    void deletedJobTakesFramesOfBothVariants();
    void deletedJobTakesGuidesByTheirFirstPart();
    void deletedJobLeavesDfmFramesAlone();
    void deletedJobWithoutLibrariesIsForgottenAllTheSame();
    void deletedJobWithASharedWindowTellsItForEachFrame();
    void deletedNullFrameTakesWhateverHasNoParent();
    void deletedStepIsForgottenAndTold();
    void deletedStepNeedsItsWholeName();
    void deletedStepLeavesOtherKindsAlone();
    void deletedStepOfTheWildcardNameTakesAllDfmFrames();
    void otherNodesAreNotDeleted();

    void updatedJobGoesByTheKindInTheMessage();
    void updatedJobIsDeliveredAsTheUpdatesDo();
    void updatedJobOfAnotherKindReachesNobody_data();
    void updatedJobOfAnotherKindReachesNobody();

private:
    /// Whether a graphic, matrix or guide frame is recorded under a name.
    bool isGraphicFrame(void *frame, const QString &name);
    bool isMatrixFrame(void *frame, const QString &name);
    bool isGuideFrame(void *frame, const QString &name);

    static PluginMetaData renamedDirectly(const QString &newName);
    static PluginMetaData renamedMatrix(const QString &newName);
    static PluginMetaData renamedJobList(const QString &oldName, const QString &newName);
    static PluginMetaData renamedGuide(const QString &oldName, const QString &newName);
    static Recorder::Delivery deleted(const QString &editor, void *frame);
};

void tst_Jobs::init()
{
    CamTest::init();
    useReplaceable(REPLACEABLE_DIR "/jobs");
    load();
}

// Registering a frame again returns the one that has the name.
bool tst_Jobs::isGraphicFrame(void *frame, const QString &name)
{
    return stepFrame(name.section(" | ", 0, 0), name.section(" | ", 1)) == frame;
}

bool tst_Jobs::isMatrixFrame(void *frame, const QString &name)
{
    return matrixFrame(name) == frame;
}

bool tst_Jobs::isGuideFrame(void *frame, const QString &name)
{
    return guideFrame(name) == frame;
}

PluginMetaData tst_Jobs::renamedDirectly(const QString &newName)
{
    return note("", matrixEditor, 20002401, {{"DstType", "Matrix"}, {"NewJobName", newName}});
}

PluginMetaData tst_Jobs::renamedMatrix(const QString &newName)
{
    return note("", matrixTable, 20002401, {{"NewJobName", newName}});
}

// The update reads the step's key, which is not there.
PluginMetaData tst_Jobs::renamedJobList(const QString &oldName, const QString &newName)
{
    return note("", jobList, 20002400,
                {{"OldJobName", oldName}, {"NewJobName", newName}, {"ChangeStepName", QVariant()}});
}

PluginMetaData tst_Jobs::renamedGuide(const QString &oldName, const QString &newName)
{
    return note("", guide, 20002400, {{"OldJobName", oldName}, {"NewJobName", newName}});
}

Recorder::Delivery tst_Jobs::deleted(const QString &editor, void *frame)
{
    return to(frame, note("", editor, 20002402));
}

void tst_Jobs::comparedJobReachesTheElementsInAllGraphicFrames()
{
    element(view, insertRoot());
    QWidget *const frame = graphicFrame("A | pcb");
    QWidget *const first = element(view, frame);
    element(tips, frame);
    element(view, matrixFrame("A"));
    element(view, guideFrame("A|Guide"));
    QWidget *const second = element(view, stepFrame("B", "top"));
    QWidget *const third = element(view, dfmFrame("C", "pcb"));
    const auto sent = message(view);
    manager()->ChangeCompareJobInfo(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent), to(third, sent)}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Jobs::comparedJobAcceptsNamesThatContainTheReceiver()
{
    QWidget *const frame = graphicFrame("A | pcb");
    QWidget *const before = element("Own_Graphic_View.dll", frame);
    element("graphic_view.dll", frame);
    QWidget *const after = element("Graphic_View.dll.old", frame);
    element("Graphic_View", frame);
    const auto sent = message(view);
    manager()->ChangeCompareJobInfo(sent);
    QCOMPARE(deliveries(), (Deliveries{to(before, sent), to(after, sent)}));
}

// A frame is the child of another only when that one is the root, too.
void tst_Jobs::comparedJobReachesElementsOnly()
{
    QWidget *const frame = graphicFrame("A | pcb");
    manager()->insertRoot("Engineering", frame);
    QWidget *const receiver = element(view, frame);
    matrixFrame("Graphic_View.dll");
    guideFrame("Graphic_View.dll");
    const auto sent = message(view);
    manager()->ChangeCompareJobInfo(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent)}));
}

void tst_Jobs::comparedJobIsDeliveredUnchanged()
{
    const auto [first, second] = twins(view, graphicFrame("A | pcb"));
    Recorder::setMessagesAreSpoiled(true);
    const auto sent = message(view, {{"Key", "value"}}, -1);
    manager()->ChangeCompareJobInfo(sent);
    QCOMPARE(deliveries(), (Deliveries{to(first, sent), to(second, sent)}));
}

void tst_Jobs::comparedJobReachesElementsInTwoFramesTwice()
{
    QWidget window;
    Recorder::setSharedElement(&window);
    for (const char *step : {"pcb", "top"})
        QCOMPARE(stepFrame("A", step), &window);
    Recorder::setSharedElement(nullptr);
    QWidget *const receiver = element(view, &window);
    const auto sent = message(view);
    manager()->ChangeCompareJobInfo(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent), to(receiver, sent)}));
}

void tst_Jobs::comparedJobWithoutTheLibraryIsSilent()
{
    QWidget *const frame = graphicFrame("A | pcb");
    element("Nobody.dll", frame);
    element(view, frame);
    element(matrixEditor, frame);
    for (const char *library : {"Nobody.dll", "View.dll", ""})
        manager()->ChangeCompareJobInfo(message(library));
    replace(matrixEditor, "without_entry_point/Without_Entry_Point.dll");
    manager()->ChangeCompareJobInfo(message(matrixEditor));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Jobs::comparedJobIsResolvedAtEachDelivery()
{
    QWidget *const receiver = element(matrixEditor, graphicFrame("A | pcb"));
    const auto sent = message(matrixEditor);
    manager()->ChangeCompareJobInfo(sent);
    replace(matrixEditor, "healthy/Any_Library.dll");
    manager()->ChangeCompareJobInfo(sent);
    QCOMPARE(deliveries(), (Deliveries{to(receiver, sent), by("Any_Library.dll", receiver, sent)}));
}

void tst_Jobs::newJobNameIsGivenToAllItsFrames()
{
    insertRoot();
    QWidget *const matrix = matrixFrame("A");
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const top = stepFrame("A", "top");
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    deliveries();
    QVERIFY(isMatrixFrame(matrix, "B"));
    QVERIFY(isGraphicFrame(pcb, "B | pcb"));
    QVERIFY(isGraphicFrame(top, "B | top"));
    QVERIFY(isGuideFrame(guideOfTheJob, "B|Guide"));
    QVERIFY(!isMatrixFrame(matrix, "A"));
    QVERIFY(!isGraphicFrame(pcb, "A | pcb"));
    QVERIFY(!isGuideFrame(guideOfTheJob, "A|Guide"));
}

void tst_Jobs::newJobNameIsPutAtTheStart()
{
    QWidget *const withTwo = stepFrame("A", "A | pcb");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "long name");
    deliveries();
    QVERIFY(isGraphicFrame(withTwo, "long name | A | pcb"));
}

void tst_Jobs::newJobNameIsPutAtTheStartWhereverTheOldOneIs()
{
    QWidget *const longer = graphicFrame("XA | pcb");
    QWidget *const inTheStep = stepFrame("C", "A | pcb");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    deliveries();
    QVERIFY(isGraphicFrame(longer, "BA | pcb"));
    QVERIFY(isGraphicFrame(inTheStep, "B | A | pcb"));
}

void tst_Jobs::newJobNameReplacesAsManyCharactersAsTheOldOneHas()
{
    QWidget *const longer = graphicFrame("X job | pcb");
    manager()->OV_ChangeJobNameAndUpdateJob("job", "B");
    deliveries();
    QVERIFY(isGraphicFrame(longer, "Bob | pcb"));

    QWidget *const withoutJob = graphicFrame("C | pcb");
    manager()->OV_ChangeJobNameAndUpdateJob("", "B");
    deliveries();
    QVERIFY(isGraphicFrame(withoutJob, "BC | pcb"));
}

void tst_Jobs::newJobNameInBytes()
{
    QWidget *const frame = graphicFrame(QStringLiteral("电路 | 步"));
    QWidget *const matrix = matrixFrame(QStringLiteral("电路"));
    manager()->OV_ChangeJobNameAndUpdateJob(QStringLiteral("电路"), QStringLiteral("板"));
    deliveries();
    QVERIFY(isGraphicFrame(frame, QStringLiteral("板 | 步")));
    QVERIFY(isMatrixFrame(matrix, QStringLiteral("板")));
}

void tst_Jobs::newJobNameLeavesSimilarNamesAlone()
{
    QWidget *const longer = graphicFrame("AB | pcb");
    QWidget *const lower = graphicFrame("a | pcb");
    QWidget *const step = graphicFrame("C | A");
    QWidget *const matrix = matrixFrame("AB");
    QWidget *const guideOfAnother = guideFrame("AB|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QVERIFY(isGraphicFrame(longer, "AB | pcb"));
    QVERIFY(isGraphicFrame(lower, "a | pcb"));
    QVERIFY(isGraphicFrame(step, "C | A"));
    QVERIFY(isMatrixFrame(matrix, "AB"));
    QVERIFY(isGuideFrame(guideOfAnother, "AB|Guide"));
}

void tst_Jobs::newJobNameLeavesABareGuideAlone()
{
    QWidget *const bare = guideFrame("A");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(isGuideFrame(bare, "A"));
}

void tst_Jobs::newJobNameLeavesDfmFramesAlone()
{
    QWidget *const dfm = dfmFrame("A", "pcb");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(dfmFrame("A", "pcb"), dfm);
    QVERIFY(isGraphicFrame(dfm, wildcard));
    QVERIFY(dfmFrame("B", "pcb") != dfm);
}

void tst_Jobs::newJobNameIsTold()
{
    QWidget *const root = insertRoot();
    element(jobList, root);
    QWidget *const matrix = matrixFrame("A");
    QWidget *const table = element(matrixTable, matrix);
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const list = element(jobList, pcb);
    element(view, pcb);
    QWidget *const top = element(jobList, graphicFrame("A | top"));
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    matrixFrame("C");
    element(jobList, graphicFrame("C | pcb"));
    guideFrame("C|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), (Deliveries{to(matrix, renamedDirectly("B")), to(table, renamedMatrix("B")),
                                       to(list, renamedJobList("A", "B")), to(top, renamedJobList("A", "B")),
                                       to(guideOfTheJob, renamedGuide("A", "B"))}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

// The order is that of the kinds, not that of the registry.
void tst_Jobs::newJobNameIsToldInOrder()
{
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    QWidget *const list = element(jobList, graphicFrame("A | pcb"));
    QWidget *const matrix = matrixFrame("A");
    QWidget *const table = element(matrixTable, matrix);
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(),
             (Deliveries{to(matrix, renamedDirectly("B")), to(table, renamedMatrix("B")),
                         to(list, renamedJobList("A", "B")), to(guideOfTheJob, renamedGuide("A", "B"))}));
}

void tst_Jobs::newJobNameIsToldToTheRecordUnderTheRootOnly()
{
    QWidget *const early = matrixFrame("A");
    QWidget *const table = element(matrixTable, early);
    insertRoot();
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), (Deliveries{to(table, renamedMatrix("B"))}));
}

void tst_Jobs::newJobNameIsToldToTheFirstRecordOfThatName()
{
    QWidget *const root = insertRoot();
    QWidget *const guideOfThatName = guideFrame("B");
    matrixFrame("A");
    element("B", root);
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), (Deliveries{to(guideOfThatName, renamedDirectly("B"))}));
}

void tst_Jobs::newJobNameIsToldWithoutARoot()
{
    QWidget *const matrix = matrixFrame("A");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), (Deliveries{to(matrix, renamedDirectly("B"))}));
}

void tst_Jobs::newJobNameIsToldEvenWithoutAMatrixFrame()
{
    insertRoot();
    QWidget *const list = element(jobList, graphicFrame("B | pcb"));
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(),
             (Deliveries{to(list, renamedJobList("A", "B")), to(guideOfTheJob, renamedGuide("A", "B"))}));
}

void tst_Jobs::newJobNameIsToldEvenWithoutTheMatrixEditor()
{
    insertRoot();
    QWidget *const table = element(matrixTable, matrixFrame("A"));
    QWidget *const list = element(jobList, graphicFrame("A | pcb"));
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    replaceByNoLibrary(matrixEditor);
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), (Deliveries{to(table, renamedMatrix("B")), to(list, renamedJobList("A", "B")),
                                       to(guideOfTheJob, renamedGuide("A", "B"))}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Jobs::newJobNameIsToldEvenWithoutTheEntryPoint()
{
    insertRoot();
    QWidget *const table = element(matrixTable, matrixFrame("A"));
    replace(matrixEditor, "without_entry_point/Without_Entry_Point.dll");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), (Deliveries{to(table, renamedMatrix("B"))}));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Jobs::newJobNameIsToldToWildcardFrames()
{
    QWidget *const inDfm = element(jobList, dfmFrame("Z", "pcb"));
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), (Deliveries{to(inDfm, renamedJobList("A", "B"))}));
}

void tst_Jobs::newJobNameIsNotToldToAStepWithoutName()
{
    QWidget *const frame = graphicFrame("A | ");
    element(jobList, frame);
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(isGraphicFrame(frame, "B | "));
}

void tst_Jobs::newJobNameIsToldToMatrixTablesOfAnyKind()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const own = element("Own_Matrix.dll", matrix);
    QWidget *const list = element("Graphic_JobList.dll2", graphicFrame("A | pcb"));
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QCOMPARE(deliveries(), (Deliveries{to(matrix, renamedDirectly("B")), to(own, renamedMatrix("B")),
                                       to(list, renamedJobList("A", "B"))}));
}

void tst_Jobs::newJobNameIsToldAfterTheRegistryCarriesIt()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    bool carried = false;
    onNextDelivery([&] {
        carried = isMatrixFrame(matrix, "B") && isGraphicFrame(pcb, "B | pcb")
                  && isGuideFrame(guideOfTheJob, "B|Guide");
    });
    manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
    QVERIFY(carried);
    QCOMPARE(deliveries(),
             (Deliveries{to(matrix, renamedDirectly("B")), to(guideOfTheJob, renamedGuide("A", "B"))}));
}

void tst_Jobs::sameJobNameIsToldAllTheSame()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const table = element(matrixTable, matrix);
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const list = element(jobList, pcb);
    QWidget *const longer = graphicFrame("XA | pcb");
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("A", "A");
    QCOMPARE(deliveries(),
             (Deliveries{to(matrix, renamedDirectly("A")), to(table, renamedMatrix("A")),
                         to(list, renamedJobList("A", "A")), to(guideOfTheJob, renamedGuide("A", "A"))}));
    QVERIFY(isMatrixFrame(matrix, "A"));
    QVERIFY(isGraphicFrame(pcb, "A | pcb"));
    QVERIFY(isGraphicFrame(longer, "XA | pcb"));
    QVERIFY(isGuideFrame(guideOfTheJob, "A|Guide"));
}

void tst_Jobs::newNameOfAnUnknownJobReachesTheJobThatHasIt()
{
    QWidget *const matrix = matrixFrame("B");
    QWidget *const table = element(matrixTable, matrix);
    QWidget *const guideOfTheJob = guideFrame("B|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("unknown", "B");
    QCOMPARE(deliveries(), (Deliveries{to(matrix, renamedDirectly("B")), to(table, renamedMatrix("B")),
                                       to(guideOfTheJob, renamedGuide("unknown", "B"))}));
}

void tst_Jobs::newStepNameIsGivenToItsFrameOnly()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const longerJob = graphicFrame("XA | pcb");
    QWidget *const longerStep = graphicFrame("A | pcb2x");
    QWidget *const otherCase = graphicFrame("A | PCB");
    QWidget *const deeper = stepFrame("A", "pcb | x");
    QWidget *const matrix = matrixFrame("A | pcb");
    QWidget *const guideOfThatName = guideFrame("A | pcb");
    QWidget *const dfm = dfmFrame("A", "pcb");
    manager()->Ov_ChangeStepName("A", "pcb", "pcb2");
    QVERIFY(isGraphicFrame(pcb, "A | pcb2"));
    QVERIFY(isGraphicFrame(longerJob, "XA | pcb"));
    QVERIFY(isGraphicFrame(longerStep, "A | pcb2x"));
    QVERIFY(isGraphicFrame(otherCase, "A | PCB"));
    QVERIFY(isGraphicFrame(deeper, "A | pcb | x"));
    QVERIFY(isMatrixFrame(matrix, "A | pcb"));
    QVERIFY(isGuideFrame(guideOfThatName, "A | pcb"));
    QCOMPARE(dfmFrame("A", "pcb"), dfm);
    QVERIFY(!isGraphicFrame(pcb, "A | pcb"));
}

void tst_Jobs::newStepNameIsNotTold()
{
    QWidget *const frame = graphicFrame("A | pcb");
    for (const QString &name : {jobList, view, graphicEditor})
        element(name, frame);
    element(matrixTable, matrixFrame("A"));
    guideFrame("A|Guide");
    manager()->Ov_ChangeStepName("A", "pcb", "top");
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Jobs::sameStepNameChangesNothing()
{
    QWidget *const frame = graphicFrame("A | pcb");
    manager()->Ov_ChangeStepName("A", "pcb", "pcb");
    manager()->Ov_ChangeStepName("A", "unknown", "pcb");
    manager()->Ov_ChangeStepName("B", "pcb", "top");
    QVERIFY(isGraphicFrame(frame, "A | pcb"));
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Jobs::deletedJobIsForgottenAndTold()
{
    insertRoot();
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const matrix = matrixFrame("A");
    QWidget *const top = graphicFrame("A | top");
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{deleted(matrixEditor, matrix), deleted(graphicEditor, pcb),
                                       deleted(graphicEditor, top), deleted(guide, guideOfTheJob)}));
    for (QWidget *frame : {guideOfTheJob, pcb, matrix, top})
        QVERIFY(!isRegistered(frame));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Jobs::deletedJobLeavesOtherJobsAlone()
{
    const QList<QWidget *> others{insertRoot(),
                                  matrixFrame("AB"),
                                  matrixFrame("a"),
                                  matrixFrame("A | pcb"),
                                  graphicFrame("AB | pcb"),
                                  graphicFrame("XA | pcb"),
                                  graphicFrame("a | pcb"),
                                  graphicFrame("C | A"),
                                  graphicFrame("A  | pcb"),
                                  guideFrame("AB|Guide"),
                                  guideFrame("A |Guide"),
                                  guideFrame("B|A")};
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), Deliveries());
    for (QWidget *other : others)
        QVERIFY(isRegistered(other));
}

void tst_Jobs::deletedJobTakesTheElementsInItsFrames()
{
    QWidget *const root = insertRoot();
    QWidget *const left = element(view, root);
    QList<QWidget *> gone;
    for (QWidget *frame : {matrixFrame("A"), graphicFrame("A | pcb"), guideFrame("A|Guide")}) {
        gone += element(view, frame);
        gone += element(tips, frame);
    }
    const auto [first, second] = twins(jobList, graphicFrame("A | pcb"));
    gone += {first, second};
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries().list.size(), 3);
    for (QWidget *widget : gone)
        QVERIFY(!isRegistered(widget));
    QVERIFY(isRegistered(left));
}

void tst_Jobs::deletedJobLeavesWhatIsDeeperInside()
{
    QWidget *const inside = element(view, matrixFrame("A"));
    QWidget *const deeper = element(view, inside);
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries().list.size(), 1);
    QVERIFY(!isRegistered(inside));
    QVERIFY(isRegistered(deeper));
}

void tst_Jobs::deletedJobIsForgottenBeforeItIsTold()
{
    for (QWidget *frame : {matrixFrame("A"), graphicFrame("A | pcb"), guideFrame("A|Guide")})
        element(view, frame);
    int told = 0;
    Recorder::setOnDelivery([&](const Recorder::Delivery &delivery) {
        QVERIFY(!isRegistered(delivery.target));
        ++told;
    });
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(told, 3);
    QCOMPARE(deliveries().list.size(), 3);
}

void tst_Jobs::deletedJobForgetsOneFrameAtATime()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const guideOfTheJob = guideFrame("A|Guide");
    QList<QList<bool>> stillThere;
    Recorder::setOnDelivery([&](const Recorder::Delivery &) {
        stillThere += {isRegistered(matrix), isRegistered(pcb), isRegistered(guideOfTheJob)};
    });
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(stillThere,
             (QList<QList<bool>>{{false, true, true}, {false, false, true}, {false, false, false}}));
    QCOMPARE(deliveries().list.size(), 3);
}

void tst_Jobs::deletedJobIsToldByTheCopiesCollectedBefore()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *late = nullptr;
    onDeliveryTo(matrix, [&] {
        manager()->Ov_ChangeStepName("A", "pcb", "top");
        manager()->OV_ChangeJobNameAndUpdateJob("A", "B");
        late = graphicFrame("A | late");
    });
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{deleted(matrixEditor, matrix), deleted(graphicEditor, pcb)}));
    QVERIFY(!isRegistered(pcb));
    QVERIFY(isRegistered(late));
}

// Renaming gives several frames one name.
void tst_Jobs::deletedJobTakesAllFramesOfOneName()
{
    const QList<QWidget *> frames{matrixFrame("old"),      matrixFrame("A"),        graphicFrame("old | pcb"),
                                  graphicFrame("A | pcb"), guideFrame("old|Guide"), guideFrame("A|Guide")};
    manager()->OV_ChangeJobNameAndUpdateJob("old", "A");
    deliveries();
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{deleted(matrixEditor, frames[0]), deleted(matrixEditor, frames[1]),
                                       deleted(graphicEditor, frames[2]), deleted(graphicEditor, frames[3]),
                                       deleted(guide, frames[4]), deleted(guide, frames[5])}));
    for (QWidget *frame : frames)
        QVERIFY(!isRegistered(frame));
}

void tst_Jobs::deletedJobTakesFramesOfBothVariants()
{
    insertRoot();
    QWidget *const free = stepFrame("A", "pcb");
    QWidget *const three = stepFrame("A", "x | y");
    QWidget *const withoutStep = graphicFrame("A | ");
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{deleted(graphicEditor, free), deleted(graphicEditor, three),
                                       deleted(graphicEditor, withoutStep)}));
}

void tst_Jobs::deletedJobTakesGuidesByTheirFirstPart()
{
    QWidget *const bare = guideFrame("A");
    QWidget *const other = guideFrame("A|other|Guide");
    QWidget *const blanks = guideFrame("A | pcb");
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{deleted(guide, bare), deleted(guide, other)}));
    QVERIFY(isRegistered(blanks));
    manager()->Ov_DeleteTreeNode("Matrix", "A ");
    QCOMPARE(deliveries(), (Deliveries{deleted(guide, blanks)}));
}

void tst_Jobs::deletedJobLeavesDfmFramesAlone()
{
    QWidget *const first = dfmFrame("A", "pcb");
    QWidget *const second = dfmFrame("B", "pcb");
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(isRegistered(first));
    manager()->Ov_DeleteTreeNode("Matrix", "!$*!OV?*?");
    QCOMPARE(deliveries(), (Deliveries{deleted(graphicEditor, first), deleted(graphicEditor, second)}));
}

void tst_Jobs::deletedJobWithoutLibrariesIsForgottenAllTheSame()
{
    QWidget *const matrix = matrixFrame("A");
    QWidget *const pcb = graphicFrame("A | pcb");
    replaceByNoLibrary(matrixEditor);
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{deleted(graphicEditor, pcb)}));
    QVERIFY(!isRegistered(matrix));
    QCOMPARE(log(), QList<LogLines::Line>());
}

void tst_Jobs::deletedJobWithASharedWindowTellsItForEachFrame()
{
    QWidget window;
    Recorder::setSharedElement(&window);
    for (const char *step : {"pcb", "top"})
        QCOMPARE(stepFrame("A", step), &window);
    QCOMPARE(stepFrame("B", "pcb"), &window);
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{deleted(graphicEditor, &window), deleted(graphicEditor, &window)}));
    QVERIFY(!isRegistered(&window));
}

void tst_Jobs::deletedNullFrameTakesWhateverHasNoParent()
{
    QWidget *const root = insertRoot();
    QWidget *const underRoot = element(view, root);
    QWidget *const withoutParent = element(tips, nullptr);
    Recorder::setFactoriesReturnNull(true);
    matrixFrame("A");
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries(), (Deliveries{deleted(matrixEditor, nullptr)}));
    QVERIFY(!manager()->getRoot());
    QVERIFY(!isRegistered(withoutParent));
    QVERIFY(isRegistered(underRoot));
}

void tst_Jobs::deletedStepIsForgottenAndTold()
{
    const QList<QWidget *> others{matrixFrame("A"), graphicFrame("A | top"), guideFrame("A|Guide"),
                                  stepFrame("A", "pcb | x"), stepFrame("x | A", "pcb")};
    QWidget *const pcb = graphicFrame("A | pcb");
    QWidget *const inside = element(view, pcb);
    onNextDelivery([&] {
        QVERIFY(!isRegistered(pcb));
        QVERIFY(!isRegistered(inside));
    });
    manager()->Ov_DeleteTreeNode("Graphic", "A | pcb");
    QCOMPARE(deliveries(), (Deliveries{deleted(graphicEditor, pcb)}));
    QVERIFY(!isRegistered(pcb));
    for (QWidget *other : others)
        QVERIFY(isRegistered(other));
}

void tst_Jobs::deletedStepNeedsItsWholeName()
{
    QWidget *const pcb = graphicFrame("A | pcb");
    for (const char *name : {"A", "", "pcb", "A | ", "A | PCB", "a | pcb", "A|pcb", "A | pcb "})
        manager()->Ov_DeleteTreeNode("Graphic", name);
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(isRegistered(pcb));
}

void tst_Jobs::deletedStepLeavesOtherKindsAlone()
{
    QWidget *const matrix = matrixFrame("A | pcb");
    QWidget *const guideOfThatName = guideFrame("A | pcb");
    manager()->Ov_DeleteTreeNode("Graphic", "A | pcb");
    QCOMPARE(deliveries(), Deliveries());
    QVERIFY(isRegistered(matrix));
    QVERIFY(isRegistered(guideOfThatName));
}

void tst_Jobs::deletedStepOfTheWildcardNameTakesAllDfmFrames()
{
    QWidget *const first = dfmFrame("A", "pcb");
    QWidget *const second = dfmFrame("B", "pcb");
    manager()->Ov_DeleteTreeNode("Graphic", wildcard);
    QCOMPARE(deliveries(), (Deliveries{deleted(graphicEditor, first), deleted(graphicEditor, second)}));
    QVERIFY(!isRegistered(first));
    QVERIFY(!isRegistered(second));
}

void tst_Jobs::otherNodesAreNotDeleted()
{
    const QList<QWidget *> frames{insertRoot(), matrixFrame("A"), graphicFrame("A | pcb"),
                                  guideFrame("A|Guide"), guideFrame("A")};
    for (const char *nodeType : {"Guide", "EngineerRoot", "matrix", "graphic", "Plugin", ""}) {
        for (const char *name : {"A", "A | pcb", "A|Guide"})
            manager()->Ov_DeleteTreeNode(nodeType, name);
    }
    QCOMPARE(deliveries(), Deliveries());
    for (QWidget *frame : frames)
        QVERIFY(isRegistered(frame));
}

void tst_Jobs::updatedJobGoesByTheKindInTheMessage()
{
    QWidget *const underRoot = element(view, insertRoot());
    QWidget *const inMatrix = element(view, matrixFrame("A"));
    QWidget *const inGraphic = element(view, graphicFrame("A | pcb"));
    guideFrame("A|Guide");
    const auto toGraphic = message(view, {{"DstType", "Graphic"}});
    const auto toRoot = message(view, {{"DstType", "EngineerRoot"}});
    const auto toMatrix = message(view, {{"DstType", "Matrix"}});
    manager()->Ov_UpdateJob("A", toGraphic);
    manager()->Ov_UpdateJob("A", toRoot);
    manager()->Ov_UpdateJob("A", toMatrix);
    QCOMPARE(deliveries(),
             (Deliveries{to(inGraphic, withMissing(toGraphic, {"ChangeStepName", "OldJobName"})),
                         to(underRoot, toRoot), to(inMatrix, toMatrix)}));
    manager()->Ov_UpdateJob("B", toGraphic);
    manager()->Ov_UpdateJob("B", toMatrix);
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Jobs::updatedJobIsDeliveredAsTheUpdatesDo()
{
    QWidget *const own = element("Own_Graphic_View.dll", graphicFrame("A | pcb"));
    element(view, graphicFrame("A | top"));
    element("Own_Graphic_View.dll", insertRoot());
    const auto step = message(view, {{"DstType", "Graphic"}, {"ChangeStepName", "pcb"}});
    manager()->Ov_UpdateJob("A", step);
    manager()->Ov_UpdateJob("A", message(view, {{"DstType", "EngineerRoot"}}));
    QCOMPARE(deliveries(), (Deliveries{to(own, step)}));
}

void tst_Jobs::updatedJobOfAnotherKindReachesNobody_data()
{
    QTest::addColumn<Data>("data");
    QTest::newRow("missing") << Data{};
    QTest::newRow("invalid") << Data{{"DstType", QVariant()}};
    QTest::newRow("guide") << Data{{"DstType", "Guide"}};
    QTest::newRow("lower case") << Data{{"DstType", "graphic"}};
    QTest::newRow("empty") << Data{{"DstType", ""}};
}

void tst_Jobs::updatedJobOfAnotherKindReachesNobody()
{
    QFETCH(Data, data);
    for (QWidget *place : {insertRoot(), matrixFrame("A"), graphicFrame("A | pcb"), guideFrame("A|Guide")})
        element(view, place);
    manager()->Ov_UpdateJob("A", message(view, data));
    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_Jobs>(argc, argv);
}

#include "tst_jobs.moc"

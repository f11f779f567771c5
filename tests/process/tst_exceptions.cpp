#include "camtest.h"
#include "testmain.h"

#include <QtCore/QException>

#include <stdexcept>
#include <vector>

/// What a plug-in throws out of its entry point or factory.
class tst_Exceptions : public CamTest
{
    Q_OBJECT

private slots:
    void init();

    void pointerIsShownByWhoSaysSo_data() { addOperations(); }
    void pointerIsShownByWhoSaysSo();
    void anythingElseReachesTheCaller_data() { addOperations(); }
    void anythingElseReachesTheCaller();
    void earlierDeliveriesStandAndNothingFollows_data() { addOperations(true); }
    void earlierDeliveriesStandAndNothingFollows();
    void frameStaysRecordedWhenItsMessageThrows();
    void frameStaysForgottenWhenItsLastMessageThrows();
    void throwingFactoryLeavesNothingRecorded();
    void valueEndsTheDeletionOfAJob();
    void pointerDoesNotEndTheDeletionOfAJob();
    void innerOperationShowsItsOwnFailure();
    void failureOfAnInnerOperationThatDoesNotShowItIsTheOuterOnes();
    void managerWorksWhileTheBoxIsOpen();
    void eachFailureHasItsBox();
    void pluginThrowsAcrossTheBordersOfLibraries();

private:
    struct Scene
    {
        QString job;
        QWidget *matrix;
        QWidget *pcb;
    };
    struct Operation
    {
        QByteArray name;
        std::function<void(const Scene &)> run;
        /// How many deliveries it makes when nothing is thrown.
        int receivers;
        /// At which of them something is thrown.
        int throwAt = 1;
        /// What is shown and logged; empty where a pointer reaches the caller.
        QString text = {};
        /// How many deliveries there are although one of them ends in a pointer.
        int deliveries = 1;
    };

    static std::vector<Operation> operations();
    static void addOperations(bool showFailuresOfThree = false);
    static Operation operation();
    static void throwAtDelivery(int number, std::function<void()> thrower);
    Scene newScene(const QString &job);
    template <typename Exception>
    void expectShown(const QString &job, Exception *exception);
    template <typename Exception>
    void expectAtTheCaller(const QString &job, std::function<void()> thrower);
    void expectNextMessageDelivered();

    Scene m_scene;
};

namespace {

class Failure : public QException
{
public:
    void raise() const override { throw *this; }
    Failure *clone() const override { return new Failure(*this); }
};

const QString transmitError = QStringLiteral("pluginTransmitData Error.");
const QString frameworkError = QStringLiteral("transmitDataToFramework Error.");
const QString graphicError = QStringLiteral("updateGraphic Error.");
const QString matrixError = QStringLiteral("updateMatrix Error.");
const QString rootError = QStringLiteral("updateEngieer Error.");
const QString passes;

}

void tst_Exceptions::init()
{
    CamTest::init();
    load();
    QWidget *const root = insertRoot();
    twins(view, root);
    m_scene = newScene("A");
}

/// Makes a job with frames of all kinds, and elements in them.
tst_Exceptions::Scene tst_Exceptions::newScene(const QString &job)
{
    // Renaming gives two guide frames one name.
    guideFrame(job + "|Guide");
    guideFrame("old|Guide");
    manager()->OV_ChangeJobNameAndUpdateJob("old", job);
    deliveries();

    const Scene scene{job, matrixFrame(job), graphicFrame(job + " | pcb")};
    twins(view, scene.matrix);
    twins(matrixTable, scene.matrix);
    twins(view, scene.pcb);
    element(jobList, scene.pcb);
    QWidget *const top = graphicFrame(job + " | top");
    element(view, top);
    element(jobList, top);
    stepFrame(job, "third");
    dfmFrame(job, "pcb");
    return scene;
}

// Rows are found again by their names: each runs in a process of its own.
void tst_Exceptions::addOperations(bool showFailuresOfThree)
{
    QTest::addColumn<QByteArray>("name");
    for (const Operation &operation : operations()) {
        const bool showsFailureOfThree =
            operation.receivers >= 3 && !operation.text.isEmpty() && operation.deliveries == 1;
        if (showsFailureOfThree || !showFailuresOfThree)
            QTest::newRow(operation.name.constData()) << operation.name;
    }
}

tst_Exceptions::Operation tst_Exceptions::operation()
{
    QFETCH(QByteArray, name);
    for (const Operation &operation : operations()) {
        if (operation.name == name)
            return operation;
    }
    qFatal("no operation %s", name.constData());
}

std::vector<tst_Exceptions::Operation> tst_Exceptions::operations()
{
    const auto sent = [](const Scene &s, const char *kind, const QString &dst = view) {
        return message(dst, {{"DstType", kind}, {"JobName", s.job}, {"Step", "pcb"}});
    };
    return {
        {"recMegToPlugin", [=](const Scene &s) { manager()->recMegToPlugin(s.pcb, sent(s, "")); }, 1},
        {"pluginTransmitData graphic",
         [=](const Scene &s) { manager()->pluginTransmitData(sent(s, "Graphic")); }, 2, 1, transmitError},
        {"pluginTransmitData root",
         [=](const Scene &s) { manager()->pluginTransmitData(sent(s, "EngineerRoot")); }, 2, 1,
         transmitError},
        {"pluginTransmitData matrix",
         [=](const Scene &s) { manager()->pluginTransmitData(sent(s, "Matrix")); }, 2, 1, transmitError},
        {"pluginTransmitData guide", [=](const Scene &s) { manager()->pluginTransmitData(sent(s, "Guide")); },
         1, 1, transmitError},
        {"transmitDataToFramework matrix",
         [=](const Scene &s) { manager()->transmitDataToFramework(s.matrix, sent(s, "", matrixEditor)); }, 1,
         1, frameworkError},
        {"transmitDataToFramework graphic",
         [=](const Scene &s) { manager()->transmitDataToFramework(s.pcb, sent(s, "", graphicEditor)); }, 1, 1,
         frameworkError},
        {"transmitDataToFramework guide",
         [=](const Scene &s) { manager()->transmitDataToFramework(s.pcb, sent(s, "", guide)); }, 1, 1,
         frameworkError},
        {"sendKeyBoardStatusToGraphic",
         [=](const Scene &s) { manager()->sendKeyBoardStatusToGraphic(s.pcb, sent(s, "")); }, 1},
        {"Eda_CAM_TransmitData graphic",
         [=](const Scene &s) { manager()->Eda_CAM_TransmitData(s.job, sent(s, "Graphic")); }, 3, 1,
         matrixError},
        {"Eda_CAM_TransmitData root",
         [=](const Scene &s) { manager()->Eda_CAM_TransmitData(s.job, sent(s, "EngineerRoot")); }, 2, 1,
         matrixError},
        {"Eda_setTransmitData graphic",
         [=](const Scene &s) { manager()->Eda_setTransmitData("Graphic", s.job, sent(s, "")); }, 3, 1,
         matrixError},
        {"Eda_setTransmitData root",
         [=](const Scene &s) { manager()->Eda_setTransmitData("", s.job, sent(s, "")); }, 2, 1, matrixError},

        {"Ov_SetCurrentText",
         [=](const Scene &s) { manager()->Ov_SetCurrentText(s.job, sent(s, "Graphic")); }, 4, 1, matrixError},
        {"setInterfaceTexts graphic",
         [=](const Scene &s) { manager()->setInterfaceTexts("Graphic", s.job, sent(s, "")); }, 4, 1,
         matrixError},
        {"setInterfaceTexts matrix",
         [=](const Scene &s) { manager()->setInterfaceTexts("Matrix", s.job, sent(s, "")); }, 1, 1,
         matrixError},
        {"setInterfaceTexts guide",
         [=](const Scene &s) { manager()->setInterfaceTexts("Guide", s.job + "|Guide", sent(s, "")); }, 2, 1,
         matrixError},
        {"setInterfaceTexts root",
         [=](const Scene &s) { manager()->setInterfaceTexts("EngineerRoot", s.job, sent(s, "")); }, 2, 1,
         matrixError},

        {"ChangeCompareJobInfo", [=](const Scene &s) { manager()->ChangeCompareJobInfo(sent(s, "")); }, 3, 1,
         graphicError},
        {"OV_ChangeJobNameAndUpdateJob matrix frame",
         [](const Scene &s) { manager()->OV_ChangeJobNameAndUpdateJob(s.job, s.job + "B"); }, 7, 1, passes,
         1},
        {"OV_ChangeJobNameAndUpdateJob matrix table",
         [](const Scene &s) { manager()->OV_ChangeJobNameAndUpdateJob(s.job, s.job + "B"); }, 7, 2,
         matrixError, 6},
        {"OV_ChangeJobNameAndUpdateJob job list",
         [](const Scene &s) { manager()->OV_ChangeJobNameAndUpdateJob(s.job, s.job + "B"); }, 7, 4,
         graphicError, 6},
        {"OV_ChangeJobNameAndUpdateJob guide",
         [](const Scene &s) { manager()->OV_ChangeJobNameAndUpdateJob(s.job, s.job + "B"); }, 7, 6,
         matrixError, 6},
        {"Ov_DeleteTreeNode job", [](const Scene &s) { manager()->Ov_DeleteTreeNode("Matrix", s.job); }, 6, 1,
         frameworkError, 6},
        {"Ov_DeleteTreeNode job's graphic frame",
         [](const Scene &s) { manager()->Ov_DeleteTreeNode("Matrix", s.job); }, 6, 2, frameworkError, 6},
        {"Ov_DeleteTreeNode job's guide",
         [](const Scene &s) { manager()->Ov_DeleteTreeNode("Matrix", s.job); }, 6, 5, frameworkError, 6},
        {"Ov_DeleteTreeNode step",
         [](const Scene &s) { manager()->Ov_DeleteTreeNode("Graphic", s.job + " | pcb"); }, 1, 1,
         frameworkError, 1},
        {"Ov_UpdateJob graphic", [=](const Scene &s) { manager()->Ov_UpdateJob(s.job, sent(s, "Graphic")); },
         3, 1, graphicError},
        {"Ov_UpdateJob root",
         [=](const Scene &s) { manager()->Ov_UpdateJob(s.job, sent(s, "EngineerRoot")); }, 2, 1, rootError},
        {"Ov_UpdateJob matrix", [=](const Scene &s) { manager()->Ov_UpdateJob(s.job, sent(s, "Matrix")); }, 2,
         1, matrixError},

        {"updateEngieer", [=](const Scene &s) { manager()->updateEngieer(s.job, sent(s, "")); }, 2, 1,
         rootError},
        {"updateGraphic", [=](const Scene &s) { manager()->updateGraphic(s.job, sent(s, "")); }, 3, 1,
         graphicError},
        {"updateGuide", [=](const Scene &s) { manager()->updateGuide(s.job, sent(s, "")); }, 2, 1,
         matrixError},
        {"updateMatrix", [=](const Scene &s) { manager()->updateMatrix(s.job, sent(s, "")); }, 2, 1,
         matrixError},

        {"Ov_RegisterGraphicFramework",
         [](const Scene &s) {
             manager()->Ov_RegisterGraphicFramework(nullptr, "N" + s.job.toStdString() + " | pcb", false);
         },
         1},
        {"Ov_RegisterDFMGraphicFramework",
         [](const Scene &s) {
             manager()->Ov_RegisterDFMGraphicFramework(nullptr, "N" + s.job.toStdString() + " | pcb", false);
         },
         1},
        {"Ov_RegisterGraphicFramework4Quorel",
         [](const Scene &s) {
             manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "N" + s.job.toStdString(), "pcb");
         },
         1},
        {"Ov_RegisterDFMGraphicFramework4Quorel",
         [](const Scene &s) {
             manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "N" + s.job.toStdString(), "pcb");
         },
         1},
        {"Ov_RegisterMatrixFramework",
         [](const Scene &s) { manager()->Ov_RegisterMatrixFramework(nullptr, "N" + s.job.toStdString()); },
         1},
        {"Ov_RegisterGuideFramework",
         [](const Scene &s) { manager()->Ov_RegisterGuideFramework(nullptr, "N" + s.job.toStdString()); }, 1},
        {"Ov_Register_CamGuide",
         [](const Scene &s) {
             manager()->Ov_Register_CamGuide("Own_Guide.dll", s.pcb, "N" + s.job.toStdString());
         },
         1},
        {"Ov_UnRegisterGraphicFramework4Quorel",
         [](const Scene &s) {
             manager()->Ov_UnRegisterGraphicFramework4Quorel(s.job.toStdString(), "third");
         },
         1},
        {"Ov_UnRegisterDFMGraphicFramework4Quorel",
         [](const Scene &s) {
             manager()->Ov_UnRegisterDFMGraphicFramework4Quorel(s.job.toStdString(), "pcb");
         },
         1},
    };
}

void tst_Exceptions::throwAtDelivery(int number, std::function<void()> thrower)
{
    const auto left = std::make_shared<int>(number);
    Recorder::setOnDelivery([left, thrower = std::move(thrower)](const Recorder::Delivery &) {
        if (--*left == 0)
            thrower();
    });
}

void tst_Exceptions::expectNextMessageDelivered()
{
    Recorder::setOnDelivery({});
    manager()->pluginTransmitData(message(view, {{"DstType", "EngineerRoot"}}));
    QCOMPARE(deliveries().list.size(), 2);
}

template <typename Exception>
void tst_Exceptions::expectShown(const QString &job, Exception *exception)
{
    const Operation tested = operation();
    const Scene scene = newScene(job);
    bool loggedWhileOpen = false;
    if (!tested.text.isEmpty())
        messageBoxes().whileNextIsOpen([&] { loggedWhileOpen = !log().isEmpty(); });
    throwAtDelivery(tested.throwAt, [exception] { throw exception; });
    Exception *caught = nullptr;
    try {
        tested.run(scene);
    } catch (Exception *reached) {
        caught = reached;
    }

    QCOMPARE(deliveries().list.size(), tested.deliveries);
    const QList<MessageBoxes::Box> shown = boxes();
    if (tested.text.isEmpty()) {
        QCOMPARE(caught, exception);
        QCOMPARE(shown.size(), 0);
        QCOMPARE(log(), QList<LogLines::Line>());
    } else {
        QVERIFY(!caught);
        QCOMPARE(shown.size(), 1);
        QVERIFY2(isInfoBox(shown.first(), tested.text), qPrintable(shown.first().text));
        QVERIFY(!loggedWhileOpen);
        QCOMPARE(log(), QList<LogLines::Line>{error(tested.text.toLatin1())});
    }
    expectNextMessageDelivered();
}

void tst_Exceptions::pointerIsShownByWhoSaysSo()
{
    QException exception;
    expectShown("plain", &exception);
    Failure failure;
    expectShown("derived", &failure);
}

template <typename Exception>
void tst_Exceptions::expectAtTheCaller(const QString &job, std::function<void()> thrower)
{
    const Operation tested = operation();
    const Scene scene = newScene(job);
    bool reached = false;
    throwAtDelivery(tested.throwAt, std::move(thrower));
    try {
        tested.run(scene);
    } catch (const Exception &) {
        reached = true;
    }

    QVERIFY2(reached, qPrintable(job));
    QCOMPARE(deliveries().list.size(), tested.throwAt);
    QCOMPARE(boxes().size(), 0);
    QCOMPARE(log(), QList<LogLines::Line>());
    expectNextMessageDelivered();
}

void tst_Exceptions::anythingElseReachesTheCaller()
{
    QException exception;
    expectAtTheCaller<QException>("value", [] { throw QException(); });
    expectAtTheCaller<Failure>("derived value", [] { throw Failure(); });
    expectAtTheCaller<std::exception *>("pointer to base",
                                        [&] { throw static_cast<std::exception *>(&exception); });
    expectAtTheCaller<std::runtime_error>("standard", [] { throw std::runtime_error("plug-in"); });
    expectAtTheCaller<int>("number", [] { throw 7; });
}

void tst_Exceptions::earlierDeliveriesStandAndNothingFollows()
{
    const Operation tested = operation();
    QException exception;
    throwAtDelivery(2, [&] { throw &exception; });
    tested.run(m_scene);
    QCOMPARE(deliveries().list.size(), 2);
    QCOMPARE(boxes().size(), 1);
    QCOMPARE(log(), QList<LogLines::Line>{error(tested.text.toLatin1())});
    expectNextMessageDelivered();

    tested.run(m_scene);
    QCOMPARE(deliveries().list.size(), tested.receivers);
}

void tst_Exceptions::frameStaysRecordedWhenItsMessageThrows()
{
    QException exception;
    Recorder::setOnDelivery([&](const Recorder::Delivery &) { throw &exception; });
    int thrown = 0;
    for (const Operation &tested : operations()) {
        if (!tested.name.startsWith("Ov_Register"))
            continue;
        try {
            tested.run(m_scene);
        } catch (QException *) {
            ++thrown;
        }
        // The two of the first variant share a name, so the second finds the frame of the first.
        tested.run(m_scene);
    }
    QCOMPARE(thrown, 5);
    QCOMPARE(factoryCalls().size(), 5);
    QCOMPARE(deliveries().list.size(), 5);
}

void tst_Exceptions::frameStaysForgottenWhenItsLastMessageThrows()
{
    QWidget *const named = stepFrame("A", "third");
    QWidget *const inside = element(view, named);
    QException exception;
    throwAtDelivery(1, [&] { throw &exception; });
    QVERIFY_EXCEPTION_THROWN(manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "third"), QException *);
    QVERIFY(!isRegistered(named));
    QVERIFY(!isRegistered(inside));
    QCOMPARE(deliveries().list.size(), 1);
    manager()->Ov_UnRegisterGraphicFramework4Quorel("A", "third");
    QCOMPARE(deliveries(), Deliveries());
}

void tst_Exceptions::throwingFactoryLeavesNothingRecorded()
{
    QWidget parent;
    const std::vector<std::function<void *()>> registrations{
        [] { return manager()->Ov_RegisterGraphicFramework(nullptr, "N | a", false); },
        [] { return manager()->Ov_RegisterDFMGraphicFramework(nullptr, "N | b", false); },
        [] { return manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, "N", "c"); },
        [] { return manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, "N", "d"); },
        [] { return manager()->Ov_RegisterMatrixFramework(nullptr, "N"); },
        [] { return manager()->Ov_RegisterGuideFramework(nullptr, "N"); },
        [&] { return manager()->Ov_Register_CamGuide("Own_Guide.dll", &parent, "N"); },
        [&] { return manager()->Ov_RegisterGraphic_View(&parent); },
    };
    QException exception;
    for (const auto &registerIt : registrations) {
        Recorder::setOnFactory([&](const QString &, QWidget *) { throw &exception; });
        QVERIFY_EXCEPTION_THROWN(registerIt(), QException *);
        Recorder::setOnFactory([](const QString &, QWidget *) { throw 7; });
        QVERIFY_EXCEPTION_THROWN(registerIt(), int);
        QCOMPARE(factoryCalls().size(), 0);
        QCOMPARE(deliveries(), Deliveries());

        Recorder::setOnFactory({});
        QVERIFY(registerIt());
        QCOMPARE(factoryCalls().size(), 1);
        deliveries();
    }
    QCOMPARE(log(), QList<LogLines::Line>{info("ok")});
    QCOMPARE(boxes().size(), 0);
}

void tst_Exceptions::valueEndsTheDeletionOfAJob()
{
    throwAtDelivery(1, [] { throw QException(); });
    QVERIFY_EXCEPTION_THROWN(manager()->Ov_DeleteTreeNode("Matrix", "A"), QException);
    QCOMPARE(deliveries().list.size(), 1);
    QVERIFY(!isRegistered(m_scene.matrix));
    QVERIFY(isRegistered(m_scene.pcb));
}

void tst_Exceptions::pointerDoesNotEndTheDeletionOfAJob()
{
    QException exception;
    Recorder::setOnDelivery([&](const Recorder::Delivery &) { throw &exception; });
    manager()->Ov_DeleteTreeNode("Matrix", "A");
    QCOMPARE(deliveries().list.size(), 6);
    QVERIFY(!isRegistered(m_scene.matrix));
    QVERIFY(!isRegistered(m_scene.pcb));
    const QList<MessageBoxes::Box> shown = boxes();
    QCOMPARE(shown.size(), 6);
    for (const MessageBoxes::Box &box : shown)
        QVERIFY(isInfoBox(box, frameworkError));
    QCOMPARE(log().count(error("transmitDataToFramework Error.")), 6);
}

void tst_Exceptions::innerOperationShowsItsOwnFailure()
{
    QException exception;
    onNextDelivery([&] {
        throwAtDelivery(1, [&] { throw &exception; });
        manager()->transmitDataToFramework(nullptr, message(guide));
    });
    manager()->updateEngieer("", message(view));
    QCOMPARE(deliveries().list.size(), 3);
    const QList<MessageBoxes::Box> shown = boxes();
    QCOMPARE(shown.size(), 1);
    QVERIFY(isInfoBox(shown.first(), frameworkError));
    QCOMPARE(log(), QList<LogLines::Line>{error("transmitDataToFramework Error.")});
}

void tst_Exceptions::failureOfAnInnerOperationThatDoesNotShowItIsTheOuterOnes()
{
    QException exception;
    onNextDelivery([&] {
        throwAtDelivery(1, [&] { throw &exception; });
        manager()->recMegToPlugin(m_scene.pcb, message(view));
    });
    manager()->updateEngieer("", message(view));
    QCOMPARE(deliveries().list.size(), 2);
    const QList<MessageBoxes::Box> shown = boxes();
    QCOMPARE(shown.size(), 1);
    QVERIFY(isInfoBox(shown.first(), rootError));
    QCOMPARE(log(), QList<LogLines::Line>{error("updateEngieer Error.")});
}

void tst_Exceptions::managerWorksWhileTheBoxIsOpen()
{
    QException exception;
    throwAtDelivery(1, [&] { throw &exception; });
    QWidget *late = nullptr;
    messageBoxes().whileNextIsOpen([&] {
        manager()->updateMatrix("A", message(view));
        late = graphicFrame("late | pcb");
        manager()->Ov_DeleteTreeNode("Matrix", "A");
    });
    manager()->updateGraphic("A", message(view));
    QCOMPARE(deliveries().list.size(), 1 + 2 + 6);
    QCOMPARE(boxes().size(), 1);
    QCOMPARE(log(), QList<LogLines::Line>{error("updateGraphic Error.")});
    QVERIFY(isRegistered(late));
    QVERIFY(!isRegistered(m_scene.pcb));
}

void tst_Exceptions::eachFailureHasItsBox()
{
    QException exception;
    Recorder::setOnDelivery([&](const Recorder::Delivery &) { throw &exception; });
    manager()->updateGuide("A", message(guide));
    manager()->updateGuide("A", message(guide));
    QCOMPARE(deliveries().list.size(), 2);
    QCOMPARE(boxes().size(), 2);
    QCOMPARE(log(), (QList<LogLines::Line>{error("updateMatrix Error."), error("updateMatrix Error.")}));
}

// What the other tests throw is their own; this comes out of a plug-in, with a class of its own.
void tst_Exceptions::pluginThrowsAcrossTheBordersOfLibraries()
{
    const QString throwing = QStringLiteral(FIXTURE_DIR "/throwing/Throwing");
    load({throwing});
    element(throwing + ".dll", static_cast<QWidget *>(manager()->getRoot()));
    const auto send = [&](const QString &src) {
        manager()->pluginTransmitData(message(throwing + ".dll", {{"DstType", "EngineerRoot"}}, 1, src));
    };

    send("pointer");
    QCOMPARE(boxes().size(), 1);
    QCOMPARE(log(), QList<LogLines::Line>{error(transmitError.toLatin1())});
    QVERIFY_EXCEPTION_THROWN(send("value"), QException);
    QVERIFY_EXCEPTION_THROWN(send("standard"), std::runtime_error);
}

int main(int argc, char **argv)
{
    return runTestInProcesses<tst_Exceptions>(argc, argv);
}

#include "tst_exceptions.moc"

#include "camwalk.h"
#include "testmain.h"

#include <numeric>
#include <random>

namespace {

int setting(const char *variable, int byDefault)
{
    bool isNumber = false;
    const int value = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? value : byDefault;
}

QByteArray randomSequence(int seed, int steps)
{
    std::mt19937 random(static_cast<unsigned>(seed));
    QByteArray bytes((1 + steps) * CamWalk::blockSize, '\0');
    for (char &byte : bytes)
        byte = char(random() & 0xff);
    return bytes;
}

/// Leaves out each operation that the difference does not need. Returns whether there was one.
bool leaveOutOperations(CamWalk &walk, QByteArray &sequence)
{
    constexpr int size = CamWalk::blockSize;
    const int before = sequence.size();
    for (int start = sequence.size() - size; start >= size; start -= size) {
        const QByteArray shorter = QByteArray(sequence).remove(start, size);
        if (!walk.walk(shorter).isEmpty())
            sequence = shorter;
    }
    return sequence.size() < before;
}

/// Makes each choice the first possibility where the difference does not need another. Returns whether there
/// was one.
bool makePlain(CamWalk &walk, QByteArray &sequence)
{
    const QByteArray before = sequence;
    for (int index = 0; index < sequence.size(); ++index) {
        QByteArray plainer = sequence;
        plainer[index] = '\0';
        if (plainer != sequence && !walk.walk(plainer).isEmpty())
            sequence = plainer;
    }
    return sequence != before;
}

/// Returns a sequence that still differs, from which no operation can be left out, and whose operations are
/// as plain as they can be. What one operation no longer needs another may have needed, so it takes several
/// rounds; each makes the sequence shorter or plainer, so it ends.
QByteArray shrunk(CamWalk &walk, QByteArray sequence)
{
    bool isShrinking = true;
    while (isShrinking) {
        const bool isShorter = leaveOutOperations(walk, sequence);
        isShrinking = makePlain(walk, sequence) || isShorter;
    }
    return sequence;
}

/// What is shown and logged when a plug-in throws a pointer to QException.
constexpr const char *failureTexts[] = {"pluginTransmitData Error.", "transmitDataToFramework Error.",
                                        "updateEngieer Error.", "updateGraphic Error.",
                                        "updateMatrix Error."};
/// The rarest comes about twenty times in a thousand sequences.
constexpr int enoughForAllFailures = 500;

}

/// Random sequences of the CAM manager's public operations have the effects that the model says.
///
/// For more of them, or others:
///     PLUGINMANGER_MODEL_SEED       the first seed
///     PLUGINMANGER_MODEL_SEQUENCES  how many sequences, of as many seeds
///     PLUGINMANGER_MODEL_STEPS      how many operations are in each
///     PLUGINMANGER_MODEL_REPLAY     one sequence in hexadecimal, as a failure prints it, and no other
class tst_Operations4CAM : public QObject
{
    Q_OBJECT

private slots:
    void everyOperationDoesWhatTheModelSays();
};

void tst_Operations4CAM::everyOperationDoesWhatTheModelSays()
{
#ifdef Q_OS_WIN
    if (!qEnvironmentVariableIsSet("PLUGINMANGER_MODEL_SEQUENCES"))
        QSKIP("Wine now and then waits for good in GetFileInformationByHandle() when files are opened this "
              "often; set PLUGINMANGER_MODEL_SEQUENCES to run it");
#endif
    CamWalk walk(LogLines::take);
    const QByteArray replayed = QByteArray::fromHex(qgetenv("PLUGINMANGER_MODEL_REPLAY"));
    if (!replayed.isEmpty()) {
        const QString difference = walk.walk(replayed);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        return;
    }

    const int first = setting("PLUGINMANGER_MODEL_SEED", 1);
    const int count = setting("PLUGINMANGER_MODEL_SEQUENCES", 1500);
    const int steps = setting("PLUGINMANGER_MODEL_STEPS", 100);
    for (int seed = first; seed < first + count; ++seed) {
        const QByteArray sequence = randomSequence(seed, steps);
        if (walk.walk(sequence).isEmpty())
            continue;
        const QByteArray shortest = shrunk(walk, sequence);
        const QString report = QStringLiteral("seed %1, replayed by PLUGINMANGER_MODEL_REPLAY=%2\n%3")
                                   .arg(QString::number(seed), shortest.toHex(), walk.walk(shortest));
        QFAIL(qPrintable(report));
    }
    const QList<int> boxCounts = walk.boxes().values();
    qInfo("%d operations, %d deliveries, %d boxes", walk.operations(), walk.deliveries(),
          std::accumulate(boxCounts.begin(), boxCounts.end(), 0));
    QVERIFY2(walk.deliveries() > walk.operations() / 10, "hardly anything was delivered");
    for (const char *const text : failureTexts) {
        const int times = walk.boxes().value(text);
        qInfo("%d times %s", times, text);
        QVERIFY2(times > 0 || count < enoughForAllFailures, text);
    }
}

int main(int argc, char **argv)
{
    return runTest<tst_Operations4CAM>(argc, argv);
}

#include "tst_operations4cam.moc"

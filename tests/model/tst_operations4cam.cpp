#include "camwalk.h"
#include "testmain.h"

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

/// Returns a sequence that still differs and from which no operation can be left out.
QByteArray shrunk(CamWalk &walk, QByteArray sequence)
{
    for (int start = sequence.size() - CamWalk::blockSize; start >= CamWalk::blockSize;
         start -= CamWalk::blockSize) {
        const QByteArray shorter = QByteArray(sequence).remove(start, CamWalk::blockSize);
        if (!walk.walk(shorter).isEmpty())
            sequence = shorter;
    }
    return sequence;
}

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
    CamWalk walk(LogLines::take);
    const QByteArray replayed = QByteArray::fromHex(qgetenv("PLUGINMANGER_MODEL_REPLAY"));
    if (!replayed.isEmpty()) {
        const QString difference = walk.walk(replayed);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        return;
    }

    const int first = setting("PLUGINMANGER_MODEL_SEED", 1);
    const int count = setting("PLUGINMANGER_MODEL_SEQUENCES", 150);
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
    qInfo("%d operations, %d deliveries, %d exceptions shown", walk.operations(), walk.deliveries(),
          walk.boxes());
    QVERIFY2(walk.deliveries() > walk.operations() / 10, "hardly anything was delivered");
    QVERIFY2(walk.boxes() > 0, "no exception was shown");
}

int main(int argc, char **argv)
{
    return runTest<tst_Operations4CAM>(argc, argv);
}

#include "tst_operations4cam.moc"

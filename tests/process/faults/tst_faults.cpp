// tst_faults             runs each row in a process of its own and prints the table of them
// tst_faults --handled   the same, slowly, without those that end their process: for use under valgrind
// tst_faults row:NAME    runs one row in this process, as QtTest does

#include "faults.h"
#include "testmain.h"

#include <QtCore/QProcess>

#include <algorithm>
#include <cstdio>

#ifdef Q_OS_UNIX
#    include <csignal>
#    include <cstring>
#    include <sys/resource.h>
#endif

namespace {

Rows allRows()
{
    Rows all;
    for (const auto &group : {systemRows, loadRows, callRows, messageRows, configurationRows}) {
        const Rows rows = group();
        all.insert(all.end(), rows.begin(), rows.end());
    }
#ifdef Q_OS_WIN
    for (Row &row : all) {
        if (row.ending.kind == Ending::Signal)
            row.leftOut = "there are no signals here; how a process crashes is the system's";
        if (row.name == "executable")
            row.leftOut = "the system loads a program as it does a library";
        if (row.name == "entry point only in a dependency")
            row.leftOut = "there a library says what it hands on; tst_frames has one that does";
    }
#endif
    return all;
}

}

/// What goes wrong around the managers. Each row is one thing; after it another plug-in must work as ever.
class tst_Faults : public Faults
{
    Q_OBJECT

private slots:
    void row_data();
    void row();
};

void tst_Faults::row_data()
{
    QTest::addColumn<int>("number");
    int number = 0;
    for (const Row &row : allRows())
        QTest::newRow(row.name.constData()) << number++;
}

void tst_Faults::row()
{
    QFETCH(int, number);
    allRows().at(std::size_t(number)).run(*this);
    Recorder::setOnDelivery({});
    if (!QTest::currentTestFailed())
        expectOthersWork();
}

namespace {

constexpr int timeLimit = 180000;
constexpr int timeLimitUnderValgrind = 1200000;
constexpr int timeForAHang = 3000;

QString shown(const Ending &ending)
{
    switch (ending.kind) {
    case Ending::Exit:
        return QStringLiteral("ends with status %1").arg(ending.number);
    case Ending::Signal:
#ifdef Q_OS_UNIX
        return QStringLiteral("is killed: %1").arg(QString::fromLatin1(strsignal(ending.number)));
#else
        return QStringLiteral("crashes");
#endif
    case Ending::Hang:
        return QStringLiteral("hangs");
    case Ending::Normal:
        break;
    }
    return QStringLiteral("goes on");
}

bool operator==(const Ending &left, const Ending &right)
{
    return left.kind == right.kind && left.number == right.number;
}

Ending endingOf(QProcess &process, int limit)
{
    if (!process.waitForFinished(limit)) {
        process.kill();
        process.waitForFinished();
        return {Ending::Hang};
    }
    if (process.exitStatus() == QProcess::CrashExit)
        return {Ending::Signal, process.exitCode()};
    return process.exitCode() == 0 ? Ending{} : Ending{Ending::Exit, process.exitCode()};
}

/// Runs a row, and returns what is wrong with how it went.
QString fault(const QString &program, const Row &row, int limit)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // A sanitizer has signals to itself otherwise. Leaks are looked for by other tests.
    environment.insert("ASAN_OPTIONS",
                       environment.value("ASAN_OPTIONS")
                           + ":detect_leaks=0:fast_unwind_on_malloc=1:handle_segv=0:handle_sigbus=0");
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, {"row:" + QString::fromUtf8(row.name), "-nocrashhandler"});
    const Ending ending = endingOf(process, row.ending.kind == Ending::Hang ? timeForAHang : limit);
    const QByteArray output = process.readAll();

    const bool reached = row.ending.kind == Ending::Normal ? output.contains("3 passed, 0 failed, 0 skipped")
                                                           : output.contains("the end is near");
    if (ending == row.ending && reached && !output.contains("FAIL!"))
        return {};
    return QStringLiteral("it %1, and not as expected:\n%2").arg(shown(ending), QString::fromUtf8(output));
}

/// What people read about the limits names each row that the process does not outlive.
bool isDocumented(const Row &row)
{
    const QByteArray document = TestFiles::read(QStringLiteral(LIMITS_FILE)).simplified();
    return document.contains('|' + QByteArray(" ") + row.name + " |");
}

void limitWhatIsLeftOfACrash()
{
#ifdef Q_OS_UNIX
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
#endif
}

int runAll(const QString &program, bool onlyHandled)
{
    limitWhatIsLeftOfACrash();
    Rows rows = allRows();
    if (onlyHandled) {
        const auto endsItsProcess = [](const Row &row) { return row.ending.kind != Ending::Normal; };
        rows.erase(std::remove_if(rows.begin(), rows.end(), endsItsProcess), rows.end());
    }
    int failures = 0;
    int leftOut = 0;
    std::printf("| Row | What happens | The process | |\n|---|---|---|---|\n");
    for (const Row &row : rows) {
        QString wrong;
        const char *kind = row.ending.kind == Ending::Normal ? "handled" : "documented";
        if (!row.leftOut.isEmpty()) {
            ++leftOut;
            kind = "left out";
        } else {
            wrong = fault(program, row, onlyHandled ? timeLimitUnderValgrind : timeLimit);
            if (wrong.isEmpty() && row.ending.kind != Ending::Normal && !isDocumented(row))
                wrong = QStringLiteral("it is not documented");
        }
        failures += wrong.isEmpty() ? 0 : 1;
        std::printf("| %s | %s | %s | %s |\n", row.name.constData(),
                    (row.leftOut.isEmpty() ? row.happens : row.leftOut).constData(),
                    row.leftOut.isEmpty() ? qPrintable(shown(row.ending)) : "",
                    wrong.isEmpty() ? kind : "FAILED");
        if (!wrong.isEmpty())
            std::printf("%s\n", qPrintable(wrong));
        std::fflush(stdout);
    }
    std::printf("%d rows, %d failed, %d left out\n", int(rows.size()), failures, leftOut);
    return rows.empty() || failures > 0 ? 1 : 0;
}

}

int main(int argc, char **argv)
{
    const bool onlyHandled = argc == 2 && qstrcmp(argv[1], "--handled") == 0;
    if (argc > 1 && !onlyHandled)
        return runTest<tst_Faults>(argc, argv);
    return runAll(QString::fromLocal8Bit(argv[0]), onlyHandled);
}

#include "tst_faults.moc"

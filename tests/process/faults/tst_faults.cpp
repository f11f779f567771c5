// tst_faults                     runs each row in a process of its own and prints the table of them
// tst_faults --under-valgrind    the same with more time for each, without those that end their process
// tst_faults row:NAME            runs one row in this process, as QtTest does

#include "faults.h"
#include "testmain.h"

#include <QtCore/QProcess>

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
    const Row row = allRows().at(std::size_t(number));
    row.run(*this);
    QVERIFY2(row.ending.kind == Ending::Normal, "the process has outlived what it should not");
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

QProcessEnvironment environmentOf(const Row &row)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QString options = environment.value("ASAN_OPTIONS");
    if (row.ending.kind != Ending::Normal) {
        // What a process still holds when it ends that way is no leak, and a sanitizer has signals to itself
        // otherwise.
        options += ":detect_leaks=0:handle_segv=0:handle_sigbus=0";
    }
    // To note where memory comes from takes long, and a walk up the stack must not meet a library that is
    // gone.
    if (row.ending.kind != Ending::Normal || row.allocatesMuch)
        options += ":fast_unwind_on_malloc=1";
    environment.insert("ASAN_OPTIONS", options);
    return environment;
}

/// Runs a row, and returns what is wrong with how it went.
QString fault(const QString &program, const Row &row, int limit)
{
    const bool hangs = row.ending.kind == Ending::Hang;
    QProcess process;
    process.setProcessEnvironment(environmentOf(row));
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, {"row:" + QString::fromUtf8(row.name), "-nocrashhandler"});
    QByteArray output;
    // Before it hangs, a process may take its time.
    while (hangs && !output.contains(reachedTheEnd) && process.waitForReadyRead(limit))
        output += process.readAll();
    const Ending ending = endingOf(process, hangs ? timeForAHang : limit);
    output += process.readAll();

    const bool reached = row.ending.kind == Ending::Normal ? output.contains("3 passed, 0 failed, 0 skipped")
                                                           : output.contains(reachedTheEnd);
    if (ending == row.ending && reached && !output.contains("FAIL!"))
        return {};
    return QStringLiteral("it %1, and not as expected:\n%2").arg(shown(ending), QString::fromUtf8(output));
}

/// The cases that people read about: those which no process outlives.
QByteArrayList documentedCases()
{
    QByteArrayList cases;
    bool inTable = false;
    for (const QByteArray &line : TestFiles::read(QStringLiteral(LIMITS_FILE)).split('\n')) {
        if (inTable && line.startsWith("| "))
            cases += line.split('|').at(1).trimmed();
        inTable = line.startsWith("| Case |") || (inTable && line.startsWith('|'));
    }
    return cases;
}

/// The cases that people read about in vain, since no row tries them.
QByteArrayList untriedCases(QByteArrayList cases, const Rows &rows)
{
    for (const Row &row : rows) {
        if (row.ending.kind != Ending::Normal || !row.leftOut.isEmpty())
            cases.removeAll(row.name);
    }
    return cases;
}

void limitWhatIsLeftOfACrash()
{
#ifdef Q_OS_UNIX
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
#endif
}

/// Runs a row, unless it is left out, prints its line of the table, and returns whether all is well with it.
bool report(const QString &program, const Row &row, const QByteArrayList &documented, int limit)
{
    const bool tried = row.leftOut.isEmpty();
    const bool goesOn = row.ending.kind == Ending::Normal;
    QString wrong = tried ? fault(program, row, limit) : QString();
    if (tried && wrong.isEmpty() && !goesOn && !documented.contains(row.name))
        wrong = QStringLiteral("it is not documented");
    const char *kind = !tried ? "left out" : goesOn ? "handled" : "documented";
    std::printf("| %s | %s | %s | %s |\n", row.name.constData(),
                (tried ? row.happens : row.leftOut).constData(), tried ? qPrintable(shown(row.ending)) : "",
                wrong.isEmpty() ? kind : "FAILED");
    if (!wrong.isEmpty())
        std::printf("%s\n", qPrintable(wrong));
    std::fflush(stdout);
    return wrong.isEmpty();
}

int runAll(const QString &program, bool underValgrind)
{
    limitWhatIsLeftOfACrash();
    Rows rows = allRows();
    for (Row &row : rows) {
        if (!underValgrind || !row.leftOut.isEmpty())
            continue;
        if (row.ending.kind != Ending::Normal)
            row.leftOut = "not tried, as the process " + shown(row.ending).toUtf8();
        else if (!row.notUnderValgrind.isEmpty())
            row.leftOut = "not tried, as " + row.notUnderValgrind;
    }
    const QByteArrayList documented = documentedCases();
    int failures = 0;
    int leftOut = 0;
    std::printf("| Row | What happens | The process | |\n|---|---|---|---|\n");
    for (const Row &row : rows) {
        const bool well =
            report(program, row, documented, underValgrind ? timeLimitUnderValgrind : timeLimit);
        failures += well ? 0 : 1;
        leftOut += row.leftOut.isEmpty() ? 0 : 1;
    }
    for (const QByteArray &name : untriedCases(documented, rows)) {
        ++failures;
        std::printf("%s: docs/limits.md tells of it, and no row that ends its process has that name\n",
                    name.constData());
    }
    const int tried = int(rows.size()) - leftOut;
    std::printf("%d rows: %d tried, %d left out; %d failed\n", int(rows.size()), tried, leftOut, failures);
    return tried == 0 || failures > 0 ? 1 : 0;
}

}

int main(int argc, char **argv)
{
    const bool underValgrind = argc == 2 && qstrcmp(argv[1], "--under-valgrind") == 0;
    if (argc > 1 && !underValgrind)
        return runTest<tst_Faults>(argc, argv);
    return runAll(QString::fromLocal8Bit(argv[0]), underValgrind);
}

#include "tst_faults.moc"

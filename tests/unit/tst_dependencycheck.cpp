#include "debuglines.h"
#include "pluginMangerBase.h"
#include "testmain.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QThread>

#include <memory>

namespace {

QVariantMap needs(const QVariant &name, const QVariant &version = QStringLiteral("1"))
{
    return {{QStringLiteral("name"), name}, {QStringLiteral("version"), version}};
}

void describe(QTPluginsMangerPrivate &tables, const QString &name, const QVariantList &dependencies = {},
              const QVariant &version = QStringLiteral("1"))
{
    tables.m_names[name] = name;
    tables.m_versions[name] = version;
    tables.m_dependencies[name] = dependencies;
}

/// The check as a plain recursion, which tells how many lines there are and in which order.
bool plainRecursion(const QTPluginsMangerPrivate &tables, const QString &key, QStringList &lines)
{
    bool sound = true;
    for (const QVariant &item : tables.m_dependencies.value(key)) {
        const QVariant name = item.toMap().value(QStringLiteral("name"));
        const QVariant version = item.toMap().value(QStringLiteral("version"));
        const QString path = tables.m_names.key(name);
        if (!tables.m_names.values().contains(name)) {
            lines +=
                QStringLiteral(" Missing dependency: \"%1\" for plugin \"%2\"").arg(name.toString(), path);
            sound = false;
        } else if (tables.m_versions.value(path) != version) {
            lines +=
                QStringLiteral(
                    "Version mismatch: \"%1\" version \"%2\" but \"%3\" required for plugin \"%4\"")
                    .arg(name.toString(), tables.m_versions.value(path).toString(), version.toString(), path);
            sound = false;
        } else if (!plainRecursion(tables, path, lines)) {
            lines +=
                QStringLiteral("Corrupted dependency: \"%1\" for plugin \"%2\"").arg(name.toString(), path);
            sound = false;
        }
    }
    return sound;
}

QString plugin(int number)
{
    return QStringLiteral("P%1").arg(number);
}

}

class tst_DependencyCheck : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void keyWithoutEntryPasses();
    void libraryFileNamePassesWhileTheTablesHoldBareNames();
    void presentDependencyOfTheRightVersionPasses();
    void missingDependencyNamesNoPlugin();
    void everyMissingDependencyHasItsLine();
    void otherVersionIsAMismatch();
    void dependenciesOfAMismatchAreNotExamined();
    void brokenDependencyMakesItsDependentCorrupted();
    void failureDoesNotStopTheLoop();
    void versionsAreComparedAsVariants_data();
    void versionsAreComparedAsVariants();
    void entryThatIsNoMapIsMissing();
    void invalidNameIsPresentWhereTheTableHoldsAnInvalidValue();
    void nameIsFoundByItsValueNotByItsKey();
    void nameThatIsNoTextIsFoundByVariantEquality_data();
    void nameThatIsNoTextIsFoundByVariantEquality();
    void textFindsTheNameThatItEqualsAsAVariant();
    void nameOfAnyTypeIsFoundAsAPlainRecursionFindsIt();
    void firstOfSeveralKeysOfANameIsUsed();
    void selfDependencyIsCircular();
    void mutualDependencyIsCircular();
    void cycleBehindThePluginIsFoundToo();
    void cycleIsWalkedOnceAndReportedForEachDependent();
    void whatLeadsIntoACycleIsWalkedOnce();
    void cycleOfSixteenIsShownWhole();
    void cycleOfSeventeenIsShownByItsEnds();
    void longCycleIsShownByItsEnds();
    void latticeOverACycleEnds();
    void completeGraphEnds();
    void failingDependencyIsReportedForEachDependent();
    void linesAreThoseOfAPlainRecursion();
    void chainOfAHundredThousandFitsAMebibyteOfStack_data();
    void chainOfAHundredThousandFitsAMebibyteOfStack();
    void latticeOfSixtyIsWalkedOnce();

private:
    bool check(const QString &key);
    QStringList lines();

    QTPluginsMangerPrivate m_tables;
    std::unique_ptr<DebugLines> m_debug;
};

void tst_DependencyCheck::initTestCase()
{
    m_debug = std::make_unique<DebugLines>();
}

void tst_DependencyCheck::init()
{
    m_tables = QTPluginsMangerPrivate();
    m_debug->take();
}

void tst_DependencyCheck::cleanupTestCase()
{
    m_debug.reset();
}

bool tst_DependencyCheck::check(const QString &key)
{
    return m_tables.check(key);
}

/// The debug lines after the function's signature that each begins with.
QStringList tst_DependencyCheck::lines()
{
    // Compilers spell it differently.
    static const QRegularExpression signature(
        QStringLiteral(R"(^[\w ]*\bQTPluginsMangerPrivate::check\(.*?\)( const)? )"));
    QStringList texts;
    for (const QString &line : m_debug->take()) {
        const auto match = signature.match(line);
        texts += match.hasMatch() ? line.mid(match.capturedEnd()) : "without its function: " + line;
    }
    return texts;
}

void tst_DependencyCheck::keyWithoutEntryPasses()
{
    QVERIFY(check("Absent"));
    QCOMPARE(lines(), QStringList());
}

void tst_DependencyCheck::libraryFileNamePassesWhileTheTablesHoldBareNames()
{
    describe(m_tables, "File_Process", {needs("Absent")});

    QVERIFY(check("File_Process.dll"));
    QCOMPARE(lines(), QStringList());
    QVERIFY(!check("File_Process"));
}

void tst_DependencyCheck::presentDependencyOfTheRightVersionPasses()
{
    describe(m_tables, "A", {needs("B"), needs("C", "2")});
    describe(m_tables, "B", {needs("C", "2")});
    describe(m_tables, "C", {}, "2");

    QVERIFY(check("A"));
    QCOMPARE(lines(), QStringList());
}

void tst_DependencyCheck::missingDependencyNamesNoPlugin()
{
    describe(m_tables, "A", {needs("Absent")});

    QVERIFY(!check("A"));
    QCOMPARE(lines(), QStringList(R"( Missing dependency: "Absent" for plugin "")"));
}

void tst_DependencyCheck::everyMissingDependencyHasItsLine()
{
    describe(m_tables, "A", {needs("First"), needs("Second")});

    QVERIFY(!check("A"));
    QCOMPARE(lines(), (QStringList{R"( Missing dependency: "First" for plugin "")",
                                   R"( Missing dependency: "Second" for plugin "")"}));
}

void tst_DependencyCheck::otherVersionIsAMismatch()
{
    describe(m_tables, "A", {needs("B", "2.0")});
    describe(m_tables, "B", {}, "1.0");

    QVERIFY(!check("A"));
    QCOMPARE(lines(),
             QStringList(R"(Version mismatch: "B" version "1.0" but "2.0" required for plugin "B")"));
}

void tst_DependencyCheck::dependenciesOfAMismatchAreNotExamined()
{
    describe(m_tables, "A", {needs("B", "2")});
    describe(m_tables, "B", {needs("Absent")});

    QVERIFY(!check("A"));
    QCOMPARE(lines(), QStringList(R"(Version mismatch: "B" version "1" but "2" required for plugin "B")"));
}

void tst_DependencyCheck::brokenDependencyMakesItsDependentCorrupted()
{
    describe(m_tables, "A", {needs("B")});
    describe(m_tables, "B", {needs("Absent")});

    QVERIFY(!check("A"));
    QCOMPARE(lines(), (QStringList{R"( Missing dependency: "Absent" for plugin "")",
                                   R"(Corrupted dependency: "B" for plugin "B")"}));
}

void tst_DependencyCheck::failureDoesNotStopTheLoop()
{
    describe(m_tables, "A", {needs("Absent"), needs("B", "2"), needs("C"), needs("D")});
    describe(m_tables, "B");
    describe(m_tables, "C", {needs("Gone")});
    describe(m_tables, "D");

    QVERIFY(!check("A"));
    QCOMPARE(lines(), (QStringList{R"( Missing dependency: "Absent" for plugin "")",
                                   R"(Version mismatch: "B" version "1" but "2" required for plugin "B")",
                                   R"( Missing dependency: "Gone" for plugin "")",
                                   R"(Corrupted dependency: "C" for plugin "C")"}));
}

void tst_DependencyCheck::versionsAreComparedAsVariants_data()
{
    QTest::addColumn<QVariant>("found");
    QTest::addColumn<QVariant>("required");
    QTest::addColumn<bool>("passes");
    QTest::newRow("number and its text") << QVariant(2.0) << QVariant("2") << true;
    QTest::newRow("text and its number") << QVariant("2") << QVariant(2.0) << true;
    QTest::newRow("number and a longer text") << QVariant(2.0) << QVariant("2.0") << true;
    QTest::newRow("longer text and its number") << QVariant("2.0") << QVariant(2.0) << false;
    QTest::newRow("integer and a longer text") << QVariant(2LL) << QVariant("2.0") << false;
    QTest::newRow("equal text to a text only") << QVariant("2.0") << QVariant("2") << false;
    QTest::newRow("both absent") << QVariant() << QVariant() << true;
    QTest::newRow("found absent") << QVariant() << QVariant("1") << false;
    QTest::newRow("required absent") << QVariant("1") << QVariant() << false;
}

void tst_DependencyCheck::versionsAreComparedAsVariants()
{
    QFETCH(QVariant, found);
    QFETCH(QVariant, required);
    describe(m_tables, "A", {needs("B", required)});
    describe(m_tables, "B", {}, found);

    QTEST(check("A"), "passes");
}

void tst_DependencyCheck::entryThatIsNoMapIsMissing()
{
    describe(m_tables, "A", {QVariant("B")});
    describe(m_tables, "B");

    QVERIFY(!check("A"));
    QCOMPARE(lines(), QStringList(R"( Missing dependency: "" for plugin "")"));
}

void tst_DependencyCheck::invalidNameIsPresentWhereTheTableHoldsAnInvalidValue()
{
    describe(m_tables, "A", {QVariant("B")});
    m_tables.m_names["Nameless"] = QVariant();

    QVERIFY(check("A"));
    QCOMPARE(lines(), QStringList());
}

void tst_DependencyCheck::nameIsFoundByItsValueNotByItsKey()
{
    describe(m_tables, "A", {needs("Value")});
    m_tables.m_names["Key"] = QStringLiteral("Value");
    m_tables.m_versions["Key"] = QStringLiteral("3");
    m_tables.m_versions["Value"] = QStringLiteral("1");

    QVERIFY(!check("A"));
    QCOMPARE(lines(),
             QStringList(R"(Version mismatch: "Value" version "3" but "1" required for plugin "Key")"));
}

void tst_DependencyCheck::nameThatIsNoTextIsFoundByVariantEquality_data()
{
    QTest::addColumn<QVariant>("name");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole number") << QVariant(5.0) << "5";
    QTest::newRow("fraction") << QVariant(0.1) << "0.1";
    QTest::newRow("large number") << QVariant(1e20) << "1e+20";
    QTest::newRow("integer") << QVariant(5LL) << "5";
    QTest::newRow("truth") << QVariant(true) << "true";
    QTest::newRow("date") << QVariant(QDate(2020, 2, 29)) << "2020-02-29";
}

void tst_DependencyCheck::nameThatIsNoTextIsFoundByVariantEquality()
{
    QFETCH(QVariant, name);
    QFETCH(QString, text);
    QVERIFY(QVariant(text) == name);
    describe(m_tables, "A", {needs(name)});
    describe(m_tables, text, {needs("Absent")});

    QVERIFY(!check("A"));
    QCOMPARE(lines(), (QStringList{R"( Missing dependency: "Absent" for plugin "")",
                                   QString(R"(Corrupted dependency: "%1" for plugin "%1")").arg(text)}));
}

void tst_DependencyCheck::textFindsTheNameThatItEqualsAsAVariant()
{
    describe(m_tables, "Half");
    m_tables.m_names["Half"] = 0.5;
    describe(m_tables, "Plugin", {needs("0.50")});
    QVERIFY(QVariant(0.5) == QVariant("0.50"));

    QVERIFY(check("Plugin"));
    QCOMPARE(lines(), QStringList());
}

void tst_DependencyCheck::nameOfAnyTypeIsFoundAsAPlainRecursionFindsIt()
{
    for (const char *const text : {"", "2", "2.0", "0.5", "true", "1"})
        describe(m_tables, text, {needs("Absent")});
    const QVariantList names{QVariant(), QVariantList{1},  QVariantMap{}, 2, 2.0, QVariant(0.5), true, 'A',
                             "2",        QByteArray("0.5")};
    for (const QVariant &name : names) {
        describe(m_tables, "Plugin", {needs(name)});
        QStringList expected;
        const bool sound = plainRecursion(m_tables, "Plugin", expected);
        QCOMPARE(check("Plugin"), sound);
        QCOMPARE(lines(), expected);
    }
}

void tst_DependencyCheck::firstOfSeveralKeysOfANameIsUsed()
{
    describe(m_tables, "A", {needs("Name")});
    for (int number = 0; number < 20; ++number) {
        m_tables.m_names[plugin(number)] = QStringLiteral("Name");
        m_tables.m_versions[plugin(number)] = number + 100;
    }
    const QString first = m_tables.m_names.key(QStringLiteral("Name"));

    QVERIFY(!check("A"));
    QCOMPARE(lines(),
             QStringList(QString(R"(Version mismatch: "Name" version "%1" but "1" required for plugin "%2")")
                             .arg(m_tables.m_versions.value(first).toString(), first)));
}

void tst_DependencyCheck::selfDependencyIsCircular()
{
    describe(m_tables, "A", {needs("A")});

    QVERIFY(!check("A"));
    QCOMPARE(lines(), QStringList(R"(Circular dependency: "A" for plugin "A" by way of "A -> A")"));
}

void tst_DependencyCheck::mutualDependencyIsCircular()
{
    describe(m_tables, "A", {needs("B")});
    describe(m_tables, "B", {needs("A")});

    QVERIFY(!check("A"));
    QCOMPARE(lines(), (QStringList{R"(Circular dependency: "A" for plugin "A" by way of "A -> B -> A")",
                                   R"(Corrupted dependency: "B" for plugin "B")"}));
    QVERIFY(!check("B"));
}

void tst_DependencyCheck::cycleBehindThePluginIsFoundToo()
{
    describe(m_tables, "A", {needs("B"), needs("D")});
    describe(m_tables, "B", {needs("C")});
    describe(m_tables, "C", {needs("B")});
    describe(m_tables, "D");

    QVERIFY(!check("A"));
    QCOMPARE(lines(), (QStringList{R"(Circular dependency: "B" for plugin "B" by way of "B -> C -> B")",
                                   R"(Corrupted dependency: "C" for plugin "C")",
                                   R"(Corrupted dependency: "B" for plugin "B")"}));
    QVERIFY(check("D"));
}

void tst_DependencyCheck::cycleIsWalkedOnceAndReportedForEachDependent()
{
    describe(m_tables, "Loop", {needs("Loop")});
    describe(m_tables, "Left", {needs("Loop")});
    describe(m_tables, "Right", {needs("Loop")});
    describe(m_tables, "Top", {needs("Left"), needs("Right")});

    QVERIFY(!check("Top"));
    QCOMPARE(lines(),
             (QStringList{R"(Circular dependency: "Loop" for plugin "Loop" by way of "Loop -> Loop")",
                          R"(Corrupted dependency: "Loop" for plugin "Loop")",
                          R"(Corrupted dependency: "Left" for plugin "Left")",
                          R"(Corrupted dependency: "Loop" for plugin "Loop")",
                          R"(Corrupted dependency: "Right" for plugin "Right")"}));
}

void tst_DependencyCheck::whatLeadsIntoACycleIsWalkedOnce()
{
    describe(m_tables, "Loop", {needs("Loop")});
    describe(m_tables, "Middle", {needs("Loop")});
    describe(m_tables, "Left", {needs("Middle")});
    describe(m_tables, "Right", {needs("Middle")});
    describe(m_tables, "Top", {needs("Left"), needs("Right")});

    QVERIFY(!check("Top"));
    QCOMPARE(lines(),
             (QStringList{R"(Circular dependency: "Loop" for plugin "Loop" by way of "Loop -> Loop")",
                          R"(Corrupted dependency: "Loop" for plugin "Loop")",
                          R"(Corrupted dependency: "Middle" for plugin "Middle")",
                          R"(Corrupted dependency: "Left" for plugin "Left")",
                          R"(Corrupted dependency: "Middle" for plugin "Middle")",
                          R"(Corrupted dependency: "Right" for plugin "Right")"}));
}

void tst_DependencyCheck::cycleOfSixteenIsShownWhole()
{
    constexpr int count = 16;
    for (int number = 0; number < count; ++number)
        describe(m_tables, plugin(number), {needs(plugin((number + 1) % count))});

    QVERIFY(!check(plugin(0)));
    QCOMPARE(
        lines().first(),
        QStringLiteral(R"(Circular dependency: "P0" for plugin "P0" by way of "P0 -> P1 -> P2 -> P3 -> P4)"
                       R"( -> P5 -> P6 -> P7 -> P8 -> P9 -> P10 -> P11 -> P12 -> P13 -> P14 -> P15 -> P0")"));
}

void tst_DependencyCheck::cycleOfSeventeenIsShownByItsEnds()
{
    constexpr int count = 17;
    for (int number = 0; number < count; ++number)
        describe(m_tables, plugin(number), {needs(plugin((number + 1) % count))});

    QVERIFY(!check(plugin(0)));
    QCOMPARE(
        lines().first(),
        QStringLiteral(R"(Circular dependency: "P0" for plugin "P0" by way of "P0 -> P1 -> P2 -> P3 -> P4)"
                       R"( -> P5 -> P6 -> P7 -> ... -> P9 -> P10 -> P11 -> P12 -> P13 -> P14 -> P15 -> P16)"
                       R"( -> P0")"));
}

void tst_DependencyCheck::longCycleIsShownByItsEnds()
{
    constexpr int count = 1000;
    for (int number = 0; number < count; ++number)
        describe(m_tables, plugin(number), {needs(plugin((number + 1) % count))});

    QVERIFY(!check(plugin(0)));
    QCOMPARE(
        lines().first(),
        QStringLiteral(R"(Circular dependency: "P0" for plugin "P0" by way of "P0 -> P1 -> P2 -> P3 -> P4)"
                       R"( -> P5 -> P6 -> P7 -> ... -> P992 -> P993 -> P994 -> P995 -> P996 -> P997)"
                       R"( -> P998 -> P999 -> P0")"));
}

/// Two plug-ins a floor, each needing both of the floor below; the ground floor leads back to the top.
void tst_DependencyCheck::latticeOverACycleEnds()
{
    constexpr int floors = 30;
    for (int floor = 0; floor < floors; ++floor) {
        const bool ground = floor == floors - 1;
        const int below = ground ? 0 : 2 * (floor + 1);
        for (int side = 0; side < 2; ++side)
            describe(m_tables, plugin(2 * floor + side), {needs(plugin(below)), needs(plugin(below + 1))});
    }
    QVERIFY(!check(plugin(0)));
    // At most one line for each of the edges.
    QVERIFY(lines().size() <= 4 * floors);
}

void tst_DependencyCheck::completeGraphEnds()
{
    constexpr int count = 30;
    QVariantList everyone;
    for (int number = 0; number < count; ++number)
        everyone += needs(plugin(number));
    for (int number = 0; number < count; ++number)
        describe(m_tables, plugin(number), everyone);

    for (int number = 0; number < count; ++number) {
        QVERIFY(!check(plugin(number)));
        QVERIFY(lines().size() <= count * count);
    }
}

void tst_DependencyCheck::failingDependencyIsReportedForEachDependent()
{
    describe(m_tables, "Top", {needs("Left"), needs("Right")});
    describe(m_tables, "Left", {needs("Bottom")});
    describe(m_tables, "Right", {needs("Bottom")});
    describe(m_tables, "Bottom", {needs("Absent")});

    QVERIFY(!check("Top"));
    QCOMPARE(lines(), (QStringList{R"( Missing dependency: "Absent" for plugin "")",
                                   R"(Corrupted dependency: "Bottom" for plugin "Bottom")",
                                   R"(Corrupted dependency: "Left" for plugin "Left")",
                                   R"( Missing dependency: "Absent" for plugin "")",
                                   R"(Corrupted dependency: "Bottom" for plugin "Bottom")",
                                   R"(Corrupted dependency: "Right" for plugin "Right")"}));
}

void tst_DependencyCheck::linesAreThoseOfAPlainRecursion()
{
    quint32 state = 1;
    const auto random = [&state](int below) {
        state = state * 1664525 + 1013904223;
        return int((state >> 16) % quint32(below));
    };
    int failures = 0;
    for (int round = 0; round < 300; ++round) {
        m_tables = QTPluginsMangerPrivate();
        const int count = 2 + random(10);
        for (int number = 0; number < count; ++number) {
            QVariantList dependencies;
            // Only plug-ins of higher numbers, some of them absent: no cycles.
            for (int more = random(4); more > 0; --more)
                dependencies += needs(plugin(number + 1 + random(count - number + (random(3) ? 0 : 2))),
                                      random(8) ? "1" : "2");
            describe(m_tables, plugin(number), dependencies);
        }
        for (int number = 0; number < count; ++number) {
            QStringList expected;
            const bool passes = plainRecursion(m_tables, plugin(number), expected);
            QCOMPARE(check(plugin(number)), passes);
            QCOMPARE(lines(), expected);
            failures += passes ? 0 : 1;
        }
    }
    QVERIFY(failures > 100);
}

void tst_DependencyCheck::chainOfAHundredThousandFitsAMebibyteOfStack_data()
{
    QTest::addColumn<bool>("broken");
    QTest::addColumn<int>("expectedLines");
    QTest::newRow("sound") << false << 0;
    QTest::newRow("broken at its end") << true << 100000;
}

void tst_DependencyCheck::chainOfAHundredThousandFitsAMebibyteOfStack()
{
    QFETCH(bool, broken);
    constexpr int count = 100000;
    for (int number = 0; number < count; ++number) {
        const bool last = number == count - 1;
        describe(m_tables, plugin(number),
                 last && !broken ? QVariantList() : QVariantList{needs(plugin(number + 1))});
    }

    bool passes = broken;
    QScopedPointer<QThread> thread(QThread::create([&] { passes = check(plugin(0)); }));
    thread->setStackSize(1024 * 1024);
    thread->start();
    QVERIFY(thread->wait());
    QCOMPARE(passes, !broken);
    QTEST(int(lines().size()), "expectedLines");
}

/// A plain recursion would take 2 to the 30th walks.
void tst_DependencyCheck::latticeOfSixtyIsWalkedOnce()
{
    constexpr int floors = 30;
    for (int floor = 0; floor < floors; ++floor) {
        const int below = 2 * (floor + 1);
        const bool ground = floor == floors - 1;
        for (int side = 0; side < 2; ++side)
            describe(m_tables, plugin(2 * floor + side),
                     ground ? QVariantList() : QVariantList{needs(plugin(below)), needs(plugin(below + 1))});
    }
    QVERIFY(check(plugin(0)));
    QCOMPARE(lines(), QStringList());
}

int main(int argc, char **argv)
{
    return runTest<tst_DependencyCheck>(argc, argv);
}

#include "tst_dependencycheck.moc"

#include "registry_p.h"
#include "testmain.h"

using namespace PluginMangerInternal;

namespace {

/// Something with an address.
int thing[16];

void *at(int index)
{
    return &thing[index];
}

RegisterRecord make(const char *type, const char *name, void *object, void *parent, const char *key = "")
{
    RegisterRecord record(type, name, object, parent);
    record.key = key;
    return record;
}

}

class tst_Registry : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void emptyRecordHasNothing();
    void recordStartsWithoutKey();
    void copyTakesOverAllFiveFields();
    void recordWithoutTypeCountsAsNotFound();

    void appendKeepsTheOrderAndDuplicates();
    void findRecordNeedsNameAndParent();
    void findRecordReturnsTheFirstOfAnyType();
    void findRecordComparesEveryByte();
    void findRecordByObjectReturnsTheFirst();
    void findRootRecordReturnsTheFirst();
    void findFrameNeedsKindAndName();
    void findGraphicFrameByKeyIgnoresOtherKinds();
    void lookUpsReturnCopies();

    void collectFramesReturnsOneKindInListOrder();
    void collectChildrenReturnsEveryKindInListOrder();
    void collectChildrenOfNullReturnsThoseWithoutParent();

    void eraseGraphicFramesByNameErasesAllOfThem();
    void eraseGraphicFramesByKeyErasesAllOfThem();
    void eraseRecordErasesOneOnly();
    void removeRecordsOfTakesElementAndDirectChildren();
    void removeRecordsOfNullTakesThoseWithoutParent();

    void renameToTheSameNameChangesNothing();
    void renameGraphicNeedsTheWholeName();
    void renameMatrixRenamesTheGraphicFramesOfTheJobToo();
    void renameMatrixReplacesAtTheStartWhereverThePatternStands();
    void renameMatrixNeedsTheSeparator();
    void renameMatrixCountsBytes();
    void renameGuideNeedsTheSuffix();
    void renameOfAnotherKindChangesNothing_data();
    void renameOfAnotherKindChangesNothing();

private:
    QStringList names() const;

    std::vector<RegisterRecord> m_records;
    Registry m_registry{m_records};
};

void tst_Registry::init()
{
    m_records.clear();
}

QStringList tst_Registry::names() const
{
    QStringList all;
    for (const RegisterRecord &record : m_records)
        all += QString::fromStdString(record.name);
    return all;
}

void tst_Registry::emptyRecordHasNothing()
{
    const RegisterRecord record;
    QVERIFY(record.isEmpty());
    QVERIFY(record.type.empty() && record.name.empty() && record.key.empty());
    QVERIFY(!record.object && !record.parent);
}

void tst_Registry::recordStartsWithoutKey()
{
    const RegisterRecord record("Plugin", "Graphic_View.dll", at(0), at(1));
    QVERIFY(!record.isEmpty());
    QCOMPARE(record.type, std::string("Plugin"));
    QCOMPARE(record.name, std::string("Graphic_View.dll"));
    QCOMPARE(record.key, std::string());
    QCOMPARE(record.object, at(0));
    QCOMPARE(record.parent, at(1));
}

void tst_Registry::copyTakesOverAllFiveFields()
{
    const RegisterRecord record = make("Graphic", "j1 | pcb", at(0), at(1), "key");
    const RegisterRecord copy = record;
    QCOMPARE(copy.type, std::string("Graphic"));
    QCOMPARE(copy.name, std::string("j1 | pcb"));
    QCOMPARE(copy.key, std::string("key"));
    QCOMPARE(copy.object, at(0));
    QCOMPARE(copy.parent, at(1));
}

void tst_Registry::recordWithoutTypeCountsAsNotFound()
{
    QVERIFY(make("", "Graphic_View.dll", at(0), at(1)).isEmpty());
}

void tst_Registry::appendKeepsTheOrderAndDuplicates()
{
    m_registry.appendRecord(make("Plugin", "b", at(0), at(1)));
    m_registry.appendRecord(make("Plugin", "a", at(2), at(1)));
    m_registry.appendRecord(make("Plugin", "b", at(0), at(1)));
    QCOMPARE(names(), (QStringList{"b", "a", "b"}));
}

void tst_Registry::findRecordNeedsNameAndParent()
{
    m_records = {make("Plugin", "a", at(0), at(1)), make("Plugin", "a", at(2), at(3)),
                 make("Plugin", "c", at(4), at(3))};
    QCOMPARE(m_registry.findRecord("a", at(3)).object, at(2));
    QVERIFY(m_registry.findRecord("a", at(5)).isEmpty());
    QVERIFY(m_registry.findRecord("a", nullptr).isEmpty());
    QVERIFY(m_registry.findRecord("b", at(1)).isEmpty());
}

void tst_Registry::findRecordReturnsTheFirstOfAnyType()
{
    m_records = {make("Graphic", "a", at(0), at(1)), make("Plugin", "a", at(2), at(1))};
    QCOMPARE(m_registry.findRecord("a", at(1)).type, std::string("Graphic"));
}

void tst_Registry::findRecordComparesEveryByte()
{
    m_records = {make("Plugin", "MATRIX_MENUBAR_Edit.dll", at(0), at(1))};
    QVERIFY(m_registry.findRecord("Matrix_MenuBar_Edit.dll", at(1)).isEmpty());
    QVERIFY(m_registry.findRecord("MATRIX_MENUBAR_Edit", at(1)).isEmpty());
    QVERIFY(m_registry.findRecord("MATRIX_MENUBAR_Edit.dll ", at(1)).isEmpty());
    QVERIFY(m_registry.findRecord(std::string("MATRIX_MENUBAR_Edit.dll\0", 24), at(1)).isEmpty());
    QVERIFY(!m_registry.findRecord("MATRIX_MENUBAR_Edit.dll", at(1)).isEmpty());
}

void tst_Registry::findRecordByObjectReturnsTheFirst()
{
    m_records = {make("Plugin", "a", at(0), at(1)), make("Plugin", "b", at(2), at(1)),
                 make("Plugin", "c", at(2), at(3))};
    QCOMPARE(m_registry.findRecordByObject(at(2)).name, std::string("b"));
    QVERIFY(m_registry.findRecordByObject(at(1)).isEmpty());
    QVERIFY(m_registry.findRecordByObject(nullptr).isEmpty());
}

void tst_Registry::findRootRecordReturnsTheFirst()
{
    QVERIFY(m_registry.findRootRecord().isEmpty());
    m_records = {make("Plugin", "EngineerRoot", at(0), nullptr),
                 make("EngineerRoot", "first", at(1), nullptr),
                 make("EngineerRoot", "second", at(2), nullptr)};
    QCOMPARE(m_registry.findRootRecord().name, std::string("first"));
}

void tst_Registry::findFrameNeedsKindAndName()
{
    m_records = {make("Plugin", "j1", at(0), nullptr), make("Matrix", "j1", at(1), nullptr),
                 make("Guide", "j1", at(2), at(5)), make("Matrix", "j1", at(3), nullptr)};
    QCOMPARE(m_registry.findFrame("Matrix", "j1").object, at(1));
    QCOMPARE(m_registry.findFrame("Guide", "j1").object, at(2));
    QVERIFY(m_registry.findFrame("Graphic", "j1").isEmpty());
    QVERIFY(m_registry.findFrame("Matrix", "j").isEmpty());
}

void tst_Registry::findGraphicFrameByKeyIgnoresOtherKinds()
{
    m_records = {make("Matrix", "a", at(0), nullptr, "k"), make("Graphic", "k", at(1), nullptr),
                 make("Graphic", "b", at(2), nullptr, "k"), make("Graphic", "c", at(3), nullptr, "k")};
    QCOMPARE(m_registry.findGraphicFrameByKey("k").object, at(2));
    QVERIFY(m_registry.findGraphicFrameByKey("b").isEmpty());
}

void tst_Registry::lookUpsReturnCopies()
{
    m_records = {make("Matrix", "j1", at(0), at(1))};
    RegisterRecord found = m_registry.findFrame("Matrix", "j1");
    found.name = "changed";
    std::vector<RegisterRecord> collected = m_registry.collectFrames("Matrix");
    collected.front().name = "changed";
    QCOMPARE(names(), QStringList("j1"));

    m_records.clear();
    QCOMPARE(found.object, at(0));
    QCOMPARE(collected.front().object, at(0));
}

void tst_Registry::collectFramesReturnsOneKindInListOrder()
{
    m_records = {make("Graphic", "j2 | pcb", at(0), nullptr), make("Matrix", "j1", at(1), nullptr),
                 make("Graphic", "j1 | pcb", at(2), at(3)), make("Guide", "j1", at(4), nullptr)};
    const std::vector<RegisterRecord> graphic = m_registry.collectFrames("Graphic");
    QCOMPARE(graphic.size(), std::size_t(2));
    QCOMPARE(graphic[0].name, std::string("j2 | pcb"));
    QCOMPARE(graphic[1].name, std::string("j1 | pcb"));
    QCOMPARE(m_registry.collectFrames("Matrix").size(), std::size_t(1));
    QCOMPARE(m_registry.collectFrames("Guide").size(), std::size_t(1));
    QVERIFY(m_registry.collectFrames("Plugin").empty());
}

void tst_Registry::collectChildrenReturnsEveryKindInListOrder()
{
    m_records = {make("Plugin", "b", at(0), at(1)), make("Graphic", "x", at(1), at(2)),
                 make("Matrix", "a", at(3), at(1))};
    const std::vector<RegisterRecord> children = m_registry.collectChildren(at(1));
    QCOMPARE(children.size(), std::size_t(2));
    QCOMPARE(children[0].name, std::string("b"));
    QCOMPARE(children[1].name, std::string("a"));
}

void tst_Registry::collectChildrenOfNullReturnsThoseWithoutParent()
{
    m_records = {make("Plugin", "a", at(0), nullptr), make("Plugin", "b", at(1), at(0))};
    QCOMPARE(m_registry.collectChildren(nullptr).size(), std::size_t(1));
}

void tst_Registry::eraseGraphicFramesByNameErasesAllOfThem()
{
    m_records = {make("Graphic", "a", at(0), nullptr), make("Plugin", "a", at(1), nullptr),
                 make("Graphic", "b", at(2), nullptr, "a"), make("Graphic", "a", at(3), nullptr)};
    m_registry.eraseGraphicFramesByName("a");
    QCOMPARE(names(), (QStringList{"a", "b"}));
    QCOMPARE(m_records[0].type, std::string("Plugin"));
}

void tst_Registry::eraseGraphicFramesByKeyErasesAllOfThem()
{
    m_records = {make("Graphic", "a", at(0), nullptr, "k"), make("Graphic", "k", at(1), nullptr),
                 make("Matrix", "b", at(2), nullptr, "k"), make("Graphic", "c", at(3), nullptr, "k")};
    m_registry.eraseGraphicFramesByKey("k");
    QCOMPARE(names(), (QStringList{"k", "b"}));
}

void tst_Registry::eraseRecordErasesOneOnly()
{
    m_records = {make("Plugin", "a", at(0), at(9)), make("Plugin", "a", at(1), at(8)),
                 make("Graphic", "a", at(2), at(8)), make("Plugin", "b", at(3), at(8))};
    m_registry.eraseRecord("a", at(8));
    QCOMPARE(m_records.size(), std::size_t(3));
    QCOMPARE(m_records[1].object, at(2));
    m_registry.eraseRecord("absent", at(8));
    QCOMPARE(m_records.size(), std::size_t(3));
}

void tst_Registry::removeRecordsOfTakesElementAndDirectChildren()
{
    m_records = {make("Plugin", "other", at(5), at(6)),    make("Graphic", "frame", at(1), at(0)),
                 make("Plugin", "child", at(2), at(1)),    make("Plugin", "grandchild", at(3), at(2)),
                 make("Graphic", "again", at(1), nullptr), make("Plugin", "last", at(7), at(0))};
    m_registry.removeRecordsOf(at(1));
    QCOMPARE(names(), (QStringList{"other", "grandchild", "last"}));
}

void tst_Registry::removeRecordsOfNullTakesThoseWithoutParent()
{
    m_records = {make("EngineerRoot", "root", at(0), nullptr), make("Plugin", "null", nullptr, at(0)),
                 make("Plugin", "kept", at(1), at(0))};
    m_registry.removeRecordsOf(nullptr);
    QCOMPARE(names(), QStringList("kept"));
}

void tst_Registry::renameToTheSameNameChangesNothing()
{
    m_records = {make("Matrix", "A", at(0), nullptr), make("Graphic", "XA | pcb", at(1), nullptr)};
    m_registry.renameFrames("Matrix", "A", "A");
    QCOMPARE(names(), (QStringList{"A", "XA | pcb"}));
}

void tst_Registry::renameGraphicNeedsTheWholeName()
{
    m_records = {make("Graphic", "A | pcb", at(0), nullptr), make("Graphic", "A | pcb2", at(1), nullptr),
                 make("Matrix", "A | pcb", at(2), nullptr), make("Graphic", "A | pcb", at(3), nullptr)};
    m_registry.renameFrames("Graphic", "A | pcb", "A | top");
    QCOMPARE(names(), (QStringList{"A | top", "A | pcb2", "A | pcb", "A | top"}));
}

void tst_Registry::renameMatrixRenamesTheGraphicFramesOfTheJobToo()
{
    m_records = {make("Matrix", "A", at(0), nullptr),
                 make("Graphic", "A | pcb", at(1), nullptr),
                 make("Guide", "A|Guide", at(2), nullptr),
                 make("Plugin", "A | pcb", at(3), nullptr),
                 make("Matrix", "AB", at(4), nullptr),
                 make("Graphic", "AB | pcb", at(5), nullptr),
                 make("Graphic", "A | panel", at(6), nullptr, "A | panel")};
    m_registry.renameFrames("Matrix", "A", "Long");
    QCOMPARE(names(),
             (QStringList{"Long", "Long | pcb", "A|Guide", "A | pcb", "AB", "AB | pcb", "Long | panel"}));
    QCOMPARE(m_records[6].key, std::string("A | panel"));
}

void tst_Registry::renameMatrixReplacesAtTheStartWhereverThePatternStands()
{
    m_records = {make("Graphic", "XA | pcb", at(0), nullptr), make("Graphic", "pcb | A | A", at(1), nullptr)};
    m_registry.renameFrames("Matrix", "A", "B");
    QCOMPARE(names(), (QStringList{"BA | pcb", "Bcb | A | A"}));
}

void tst_Registry::renameMatrixNeedsTheSeparator()
{
    m_records = {make("Graphic", "A", at(0), nullptr), make("Graphic", "A| pcb", at(1), nullptr),
                 make("Graphic", "A |pcb", at(2), nullptr), make("Graphic", "a | pcb", at(3), nullptr)};
    m_registry.renameFrames("Matrix", "A", "B");
    QCOMPARE(names(), (QStringList{"A", "A| pcb", "A |pcb", "a | pcb"}));
}

void tst_Registry::renameMatrixCountsBytes()
{
    m_records = {make("Graphic", "板 | pcb", at(0), nullptr)};
    m_registry.renameFrames("Matrix", "板", "主板");
    QCOMPARE(names(), QStringList("主板 | pcb"));
}

void tst_Registry::renameGuideNeedsTheSuffix()
{
    m_records = {make("Guide", "A|Guide", at(0), nullptr), make("Guide", "A", at(1), nullptr),
                 make("Guide", "XA|Guide", at(2), nullptr), make("Matrix", "A|Guide", at(3), nullptr)};
    m_registry.renameFrames("Guide", "A", "B");
    QCOMPARE(names(), (QStringList{"B|Guide", "A", "XA|Guide", "A|Guide"}));
}

void tst_Registry::renameOfAnotherKindChangesNothing_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::newRow("Plugin") << QByteArray("Plugin");
    QTest::newRow("EngineerRoot") << QByteArray("EngineerRoot");
    QTest::newRow("lower case") << QByteArray("matrix");
    QTest::newRow("empty") << QByteArray();
}

void tst_Registry::renameOfAnotherKindChangesNothing()
{
    QFETCH(QByteArray, kind);
    m_records = {make("Plugin", "A", at(0), nullptr), make("EngineerRoot", "A", at(1), nullptr),
                 make("Matrix", "A", at(2), nullptr), make("Graphic", "A | pcb", at(3), nullptr),
                 make("Plugin", "A|Guide", at(4), nullptr)};
    m_registry.renameFrames(kind.toStdString(), "A", "B");
    QCOMPARE(names(), (QStringList{"A", "A", "A", "A | pcb", "A|Guide"}));
}

int main(int argc, char **argv)
{
    return runTest<tst_Registry>(argc, argv);
}

#include "tst_registry.moc"

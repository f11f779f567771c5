#include "PluginMetaData.h"
#include "testmain.h"

#include <cstddef>
#include <new>
#include <type_traits>

class tst_PluginMetaData : public QObject
{
    Q_OBJECT

private slots:
    void membersStandInTheirFixedOrder();
    void defaultRecordIsEmpty();
    void typeHasNoDefaultValue();
    void copyTakesOverEveryMember();
    void copySharesDataUntilOneSideModifiesIt();
    void identityIsKnownUnderBothNames();
    void travelsInAVariant();
    void metaTypeConstructsAndCopies();
};

void tst_PluginMetaData::membersStandInTheirFixedOrder()
{
    static_assert(std::is_same_v<decltype(PluginMetaData::src), QString>);
    static_assert(std::is_same_v<decltype(PluginMetaData::dst), QString>);
    static_assert(std::is_same_v<decltype(PluginMetaData::type), qint32>);
    static_assert(std::is_same_v<decltype(PluginMetaData::data), QMap<QString, QVariant>>);
    static_assert(sizeof(PluginMetaData::userData) == sizeof(void *));
    static_assert(!std::is_polymorphic_v<PluginMetaData>);

    QCOMPARE(offsetof(PluginMetaData, src), std::size_t(0));
    QVERIFY(offsetof(PluginMetaData, src) < offsetof(PluginMetaData, dst));
    QVERIFY(offsetof(PluginMetaData, dst) < offsetof(PluginMetaData, type));
    QVERIFY(offsetof(PluginMetaData, type) < offsetof(PluginMetaData, data));
    QVERIFY(offsetof(PluginMetaData, data) < offsetof(PluginMetaData, userData));
}

void tst_PluginMetaData::defaultRecordIsEmpty()
{
    const PluginMetaData record{};
    QVERIFY(record.src.isEmpty());
    QVERIFY(record.dst.isEmpty());
    QVERIFY(record.data.isEmpty());
    QCOMPARE(record.userData, quintptr(0));
}

// Making a record leaves the bytes of its type as they were. This file is compiled so that the compiler
// may not assume otherwise (see the build).
void tst_PluginMetaData::typeHasNoDefaultValue()
{
    alignas(PluginMetaData) unsigned char memory[sizeof(PluginMetaData)];
    for (const auto pattern : {static_cast<unsigned char>(0x11), static_cast<unsigned char>(0x77)}) {
        std::fill(std::begin(memory), std::end(memory), pattern);
        auto *const record = new (memory) PluginMetaData;
        const unsigned char found = memory[offsetof(PluginMetaData, type)];
        record->~PluginMetaData();
        QCOMPARE(found, pattern);
    }
}

void tst_PluginMetaData::copyTakesOverEveryMember()
{
    PluginMetaData record;
    record.src = QStringLiteral("Graphic_View.dll");
    record.dst = QStringLiteral("Matrix.dll");
    record.type = -2147483647 - 1;
    record.data[QStringLiteral("JobName")] = QStringLiteral("板1");
    record.userData = quintptr(0xfedcba9876543210);

    const PluginMetaData copy = record;
    QCOMPARE(copy.src, record.src);
    QCOMPARE(copy.dst, record.dst);
    QCOMPARE(copy.type, record.type);
    QCOMPARE(copy.data, record.data);
    QCOMPARE(copy.userData, quintptr(0xfedcba9876543210));
}

void tst_PluginMetaData::copySharesDataUntilOneSideModifiesIt()
{
    PluginMetaData record;
    record.type = 1;
    record.data[QStringLiteral("Step")] = QStringLiteral("pcb");

    PluginMetaData copy = record;
    QVERIFY(copy.data.isSharedWith(record.data));

    copy.data[QStringLiteral("Step")] = QStringLiteral("panel");
    QVERIFY(!copy.data.isSharedWith(record.data));
    QCOMPARE(record.data.value(QStringLiteral("Step")).toString(), QStringLiteral("pcb"));
}

void tst_PluginMetaData::identityIsKnownUnderBothNames()
{
    const int identity = qMetaTypeId<PluginMetaData>();
    QVERIFY(identity >= QMetaType::User);
    QCOMPARE(qRegisterMetaType<PluginMetaData>("PluginMetaData"), identity);
    QCOMPARE(QMetaType::type("PluginMetaData"), identity);
    QCOMPARE(QMetaType::type("class PluginMetaData"), identity);
}

void tst_PluginMetaData::travelsInAVariant()
{
    PluginMetaData record;
    record.dst = QStringLiteral("File_Process");
    record.type = 7;
    const QVariant variant = QVariant::fromValue(record);
    QCOMPARE(variant.value<PluginMetaData>().dst, record.dst);
    QCOMPARE(variant.value<PluginMetaData>().type, 7);
}

void tst_PluginMetaData::metaTypeConstructsAndCopies()
{
    PluginMetaData record;
    record.src = QStringLiteral("Alpha.dll");
    record.type = 5;
    void *const copy = QMetaType::create(qMetaTypeId<PluginMetaData>(), &record);
    QCOMPARE(static_cast<PluginMetaData *>(copy)->src, QStringLiteral("Alpha.dll"));
    QMetaType::destroy(qMetaTypeId<PluginMetaData>(), copy);

    void *const fresh = QMetaType::create(qMetaTypeId<PluginMetaData>());
    QVERIFY(static_cast<PluginMetaData *>(fresh)->data.isEmpty());
    QCOMPARE(static_cast<PluginMetaData *>(fresh)->userData, quintptr(0));
    QMetaType::destroy(qMetaTypeId<PluginMetaData>(), fresh);
}

int main(int argc, char **argv)
{
    return runTest<tst_PluginMetaData>(argc, argv);
}

#include "tst_pluginmetadata.moc"

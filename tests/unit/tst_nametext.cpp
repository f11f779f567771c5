#include "nameText_p.h"
#include "testmain.h"

using PluginMangerInternal::NameText;

/// Texts compared with names that are bytes.
class tst_NameText : public QObject
{
    Q_OBJECT

private slots:
    void nameCountsAsTheTextItConvertsTo_data();
    void nameCountsAsTheTextItConvertsTo();
};

void tst_NameText::nameCountsAsTheTextItConvertsTo_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("equals");
    QTest::addColumn<bool>("isIn");
    QTest::addColumn<bool>("isStart");

    const QString damaged(QChar::ReplacementCharacter);
    QTest::newRow("same") << QByteArray("job") << "job" << true << true << true;
    QTest::newRow("another") << QByteArray("job") << "jab" << false << false << false;
    QTest::newRow("other case") << QByteArray("job") << "Job" << false << false << false;
    QTest::newRow("part") << QByteArray("a job here") << "job" << false << true << false;
    QTest::newRow("beginning") << QByteArray("job2") << "job" << false << true << false;
    QTest::newRow("before the mark") << QByteArray("job | pcb") << "job" << false << true << true;
    QTest::newRow("before the first mark")
        << QByteArray("job | a | b") << "job | a" << false << true << false;
    QTest::newRow("empty text") << QByteArray("job") << "" << false << true << false;
    QTest::newRow("empty name") << QByteArray("") << "job" << false << false << false;
    QTest::newRow("both empty") << QByteArray("") << "" << true << true << true;
    QTest::newRow("nothing before the mark") << QByteArray(" | pcb") << "" << false << true << true;
    QTest::newRow("UTF-8") << QByteArray("\xc3\x84 | pcb") << QStringLiteral("Ä") << false << true << true;
    QTest::newRow("NUL") << QByteArray("a\0b", 3) << QString::fromLatin1("a\0b", 3) << true << true << true;
    QTest::newRow("no UTF-8") << QByteArray("\xd6\xd0") << damaged + damaged << true << true << true;
    QTest::newRow("no UTF-8 before the mark")
        << QByteArray("\xd6\xd0 | pcb") << damaged + damaged << false << true << true;
    QTest::newRow("no UTF-8 after the text")
        << QByteArray("job\xd6 | pcb") << "job" + damaged << false << true << true;
    QTest::newRow("no UTF-8, another text")
        << QByteArray("\xd6\xd0") << damaged + 'x' << false << false << false;
    QTest::newRow("part of a name that is no UTF-8")
        << QByteArray("\xd6 job") << "job" << false << true << false;
    QTest::newRow("replacement character") << QByteArray("\xef\xbf\xbd") << damaged << true << true << true;
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfjob | pcb") << "job" << false << true << true;
    QTest::newRow("byte order mark alone") << QByteArray("\xef\xbb\xbfjob") << "job" << true << true << true;
    // A character beyond the 16-bit ones is two halves, which texts may have one by one and bytes may not.
    const QString whole = QString::fromUtf8("\xf0\x9f\x98\x80");
    QTest::newRow("two halves") << whole.toUtf8() << whole << true << true << true;
    QTest::newRow("half") << whole.toUtf8() << whole.left(1) << false << true << false;
    QTest::newRow("half, where the name has what it converts to")
        << QByteArray("?") << whole.left(1) << false << false << false;
    QTest::newRow("full-width") << QByteArray("\xef\xbc\xa1 | pcb") << QStringLiteral("Ａ") << false << true
                                << true;
}

void tst_NameText::nameCountsAsTheTextItConvertsTo()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, text);
    const NameText compared(text);
    QTEST(compared.equals(name.toStdString()), "equals");
    QTEST(compared.isIn(name.toStdString()), "isIn");
    QTEST(compared.isStartOf(name.toStdString(), " | "), "isStart");
}

int main(int argc, char **argv)
{
    return runTest<tst_NameText>(argc, argv);
}

#include "tst_nametext.moc"

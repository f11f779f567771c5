#include "LibraryFile.h"
#include "testfiles.h"
#include "testmain.h"

#include <QtCore/QTemporaryDir>

/// What is said of a library's file without loading it.
class tst_LibraryFile : public QObject
{
    Q_OBJECT

private slots:
    void soundLibraryHasNoDamage();
    void cutOffLibraryIsDamaged_data();
    void cutOffLibraryIsDamaged();
    void otherFilesAreNoLibraries_data();
    void otherFilesAreNoLibraries();
    void missingFileCannotBeRead();
    void cutOffPeFileIsDamaged();
    void peFileWithoutItsSymbolsIsDamaged();

private:
    const QString m_library = QStringLiteral(EXAMPLE_PLUGIN_DIR "/Graphic_View.dll");
    QTemporaryDir m_directory;
};

void tst_LibraryFile::soundLibraryHasNoDamage()
{
    QCOMPARE(LibraryFile::damage(m_library), QString());
}

void tst_LibraryFile::cutOffLibraryIsDamaged_data()
{
    QTest::addColumn<int>("percent");
    for (const int percent : {1, 10, 50, 90, 99})
        QTest::addRow("%d percent", percent) << percent;
}

void tst_LibraryFile::cutOffLibraryIsDamaged()
{
    QFETCH(int, percent);
    QFile whole(m_library);
    QVERIFY(whole.open(QIODevice::ReadOnly));
    const QString path = m_directory.filePath("cut.dll");
    const QByteArray bytes = whole.read(whole.size() * percent / 100);
    TestFiles::write(path, bytes);
    QVERIFY(LibraryFile::damage(path).startsWith("The file is cut off: it has "));
}

void tst_LibraryFile::otherFilesAreNoLibraries_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("not a library");
    QTest::newRow("half a magic number") << QByteArray("\x7f"
                                                       "EL");
}

void tst_LibraryFile::otherFilesAreNoLibraries()
{
    QFETCH(QByteArray, content);
    const QString path = m_directory.filePath("other.dll");
    TestFiles::write(path, content);
    QCOMPARE(LibraryFile::damage(path), QStringLiteral("The file is no library."));
}

void tst_LibraryFile::missingFileCannotBeRead()
{
    QVERIFY(LibraryFile::damage(m_directory.filePath("missing.dll")).startsWith("The file cannot be read: "));
}

namespace {

void put(QByteArray &bytes, int position, quint32 value)
{
    for (int i = 0; i < 4; ++i)
        bytes[position + i] = static_cast<char>(value >> (8 * i));
}

/// A header at 64 that promises one section with 512 bytes at 1024.
QByteArray peFile(int length)
{
    QByteArray bytes(length, '\0');
    bytes.replace(0, 2, "MZ");
    put(bytes, 60, 64);
    bytes.replace(64, 4, QByteArray("PE\0\0", 4));
    bytes[64 + 6] = 1;
    put(bytes, 64 + 24 + 16, 512);
    put(bytes, 64 + 24 + 20, 1024);
    return bytes;
}

}

void tst_LibraryFile::cutOffPeFileIsDamaged()
{
    const QString path = m_directory.filePath("pe.dll");
    const QByteArray bytes = peFile(1536);
    TestFiles::write(path, bytes);
    QCOMPARE(LibraryFile::damage(path), QString());
    TestFiles::write(path, bytes.left(1535));
    QCOMPARE(LibraryFile::damage(path), QStringLiteral("The file is cut off: it has 1,535 of 1,536 bytes."));
}

/// Ten symbols of 18 bytes behind the section, and 84 bytes of texts behind them.
void tst_LibraryFile::peFileWithoutItsSymbolsIsDamaged()
{
    QByteArray bytes = peFile(1800);
    put(bytes, 64 + 12, 1536);
    put(bytes, 64 + 16, 10);
    put(bytes, 1716, 84);

    const QString path = m_directory.filePath("pe.dll");
    TestFiles::write(path, bytes);
    QCOMPARE(LibraryFile::damage(path), QString());
    TestFiles::write(path, bytes.left(1799));
    QCOMPARE(LibraryFile::damage(path), QStringLiteral("The file is cut off: it has 1,799 of 1,800 bytes."));
    TestFiles::write(path, bytes.left(1716));
    QVERIFY(LibraryFile::damage(path).startsWith("The file is cut off: it has 1,716 of "));
}

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    return runTest<tst_LibraryFile>(argc, argv);
}

#include "tst_libraryfile.moc"

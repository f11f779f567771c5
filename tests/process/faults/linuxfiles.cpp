// What lies where a library should, on Linux.

#include "faults.h"

#include "keptloaders.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtTest/QtTest>

#include <algorithm>

#include <csignal>
#include <cstddef>
#include <elf.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char tooShort[] = "file too short";

template <typename Number>
Number numberAt(const QByteArray &file, quint64 position)
{
    Number number = 0;
    std::copy_n(file.constData() + position, sizeof number, reinterpret_cast<char *>(&number));
    return number;
}

template <typename Number>
QByteArray withNumber(QByteArray file, quint64 position, Number number)
{
    return file.replace(int(position), sizeof number, reinterpret_cast<const char *>(&number), sizeof number);
}

std::vector<quint64> mappedSegments(const QByteArray &file)
{
    std::vector<quint64> places;
    const auto first = numberAt<quint64>(file, offsetof(Elf64_Ehdr, e_phoff));
    for (quint64 segment = 0; segment < numberAt<quint16>(file, offsetof(Elf64_Ehdr, e_phnum)); ++segment) {
        const quint64 place = first + segment * sizeof(Elf64_Phdr);
        if (numberAt<quint32>(file, place + offsetof(Elf64_Phdr, p_type)) == PT_LOAD)
            places.push_back(place);
    }
    return places;
}

/// How much of a library is mapped; the rest is for debuggers and linkers.
int mappedLength(const QByteArray &file)
{
    quint64 length = 0;
    for (const quint64 place : mappedSegments(file))
        length = std::max(length, numberAt<quint64>(file, place + offsetof(Elf64_Phdr, p_offset))
                                      + numberAt<quint64>(file, place + offsetof(Elf64_Phdr, p_filesz)));
    return int(length);
}

QByteArray withLastSegment(const QByteArray &file, std::size_t field, quint64 number)
{
    return withNumber(file, mappedSegments(file).back() + field, number);
}

/// The reason that is in the log, of a failed load of this path.
QString loggedReason(Faults &f, const QString &path)
{
    const Faults::Lines lines = f.log();
    const LogLines::Line head = Faults::loadFailed(path, {});
    return lines.isEmpty() || !lines.first().text.startsWith(head.text)
               ? QString()
               : QString::fromUtf8(lines.first().text.mid(head.text.size()));
}

void cutPlain(Faults &f)
{
    const QByteArray whole = Faults::healthyLibrary();
    const int mapped = mappedLength(whole);
    QVERIFY(mapped > 4096 && mapped < whole.size());
    int refused = 0;
    for (int length = 0; length < mapped + 4096; length += 64) {
        const QString path = f.make("Cut.dll", whole.left(length));
        f.loadPlain(path);
        const bool loaded = f.manager()->plugin(path);
        QCOMPARE(loaded, length >= mapped);
        QCOMPARE(f.boxes().size(), loaded ? 0 : 1);
        const QString reason = loggedReason(f, path);
        QCOMPARE(!reason.isEmpty(), !loaded);
        refused += reason == Faults::reasonOf(path, tooShort) ? 1 : 0;
    }
    // The others are cut within the table of segments, which the loader itself sees.
    QVERIFY2(refused > mapped / 64 - 16, qPrintable(QString::number(refused)));
}

// Qt itself looks into the file for the plug-in's description, by the table at its end.
void cutQtPlugin(Faults &f)
{
    const QByteArray whole = Faults::healthyPlugin();
    const int mapped = mappedLength(whole);
    for (int length = 0; length < whole.size(); length += length < mapped ? 64 : 4096) {
        const QString path = f.make("Cut.dll", whole.left(length));
        f.loadQtPlugin(path);
        QCOMPARE(f.boxes().size(), 1);
        QVERIFY2(!loggedReason(f, path).isEmpty(), qPrintable(QString::number(length)));
    }
}

void cutQtPluginWithItsDescription(Faults &f)
{
    const QByteArray whole = Faults::healthyPlugin();
    const QString path = f.make(
        "Cut.dll", withLastSegment(whole, offsetof(Elf64_Phdr, p_filesz), quint64(whole.size()) + 65536));
    f.expectRefusedPlugin(path, Faults::reasonOf(path, tooShort));
}

void cutFileFoundByItsName(Faults &f)
{
    const QByteArray whole = TestFiles::read(Faults::fixture("healthy/Graphic_Tips.dll"));
    const QString path = Faults::replaceable("Graphic_Tips.dll");
    TestFiles::write(path, whole.left(mappedLength(whole) - 1));
    f.expectRefused("Graphic_Tips.dll",
                    QStringLiteral("Cannot load library Graphic_Tips.dll: (%1: file too short)").arg(path));
    TestFiles::remove(path);
    f.expectLoaded("Graphic_Tips.dll");
}

void cutFileBehindARelativePath(Faults &f)
{
    QVERIFY(QDir().mkdir("below"));
    const QByteArray whole = Faults::healthyLibrary();
    f.make("below/Cut.dll", whole.left(mappedLength(whole) / 2));
    f.expectRefused("below/Cut.dll", Faults::reasonOf("below/Cut.dll", tooShort));
}

void segmentBeyondAllFiles(Faults &f)
{
    const QByteArray whole = Faults::healthyLibrary();
    for (const std::size_t field : {offsetof(Elf64_Phdr, p_offset), offsetof(Elf64_Phdr, p_filesz)}) {
        const QString path = f.make("Beyond.dll", withLastSegment(whole, field, ~quint64(0) - 4095));
        f.loadPlain(path);
        QCOMPARE(loggedReason(f, path), Faults::reasonOf(path, tooShort));
        QCOMPARE(f.boxes().size(), 1);
    }
}

void tableBeyondAllFiles(Faults &f)
{
    const QString path = f.make(
        "Beyond.dll", withNumber(Faults::healthyLibrary(), offsetof(Elf64_Ehdr, e_phoff), ~quint64(63)));
    f.expectRefused(path, Faults::reasonOf(path, tooShort));
}

void otherMachine(Faults &f)
{
    const auto machine = quint16(EM_AARCH64);
    const QString path =
        f.make("Machine.dll", withNumber(Faults::healthyLibrary(), offsetof(Elf64_Ehdr, e_machine), machine));
    f.expectRefused(path,
                    Faults::reasonOf(path, "cannot open shared object file: No such file or directory"));
}

void otherWordSize(Faults &f)
{
    const QString path =
        f.make("Narrow.dll", withNumber(Faults::healthyLibrary(), EI_CLASS, quint8(ELFCLASS32)));
    f.expectRefused(path, Faults::reasonOf(path, "wrong ELF class: ELFCLASS32"));
    // Cut off or not, it is of the wrong kind first.
    const QString cut =
        f.make("Cut.dll", withNumber(Faults::healthyLibrary(), EI_CLASS, quint8(ELFCLASS32)).left(8192));
    f.loadPlain(cut);
    QCOMPARE(f.boxes().size(), 2);
    QVERIFY(f.log().contains(Faults::loadFailed(cut, Faults::reasonOf(cut, "wrong ELF class: ELFCLASS32"))));
}

void makeLink(const QString &target, const QString &path)
{
    QVERIFY(QFile::link(target, path));
}

void danglingLink(Faults &f)
{
    const QString path = f.path("Link.dll");
    makeLink(f.path("nothing"), path);
    f.expectRefused(path, Faults::reasonOfQLibrary(path, "No such file or directory"));
}

void linkLoop(Faults &f)
{
    const QString path = f.path("One.dll");
    makeLink(f.path("Two.dll"), path);
    makeLink(path, f.path("Two.dll"));
    f.expectRefused(path, Faults::reasonOfQLibrary(path, "cannot open shared object file"));
}

void pipeInPlaceOfALibrary(Faults &f)
{
    const QString path = f.path("Pipe.dll");
    QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    f.expectRefused(path, Faults::reasonOf(path, "not a regular file"));
}

void pipeInPlaceOfAQtPlugin(Faults &f)
{
    const QString path = f.path("Pipe.dll");
    QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    f.expectRefusedPlugin(path, Faults::reasonOfQt(path));
}

void nullDevice(Faults &f)
{
    makeLink("/dev/null", f.path("Null.dll"));
    f.expectRefused(f.path("Null.dll"), Faults::reasonOf(f.path("Null.dll"), tooShort));
}

// Root may read everything, so the load is done as the user who may do least.
void unreadableFile(Faults &f)
{
    const KeptLoaders keptLoaders;
    const QString path = f.make("Unreadable.dll", Faults::healthyLibrary());
    for (const QString &directory :
         {QFileInfo(path).path(), f.path("pluginconfig"), f.directory(), f.directory() + "/pluginconfig"})
        QCOMPARE(chmod(QFile::encodeName(directory).constData(), 0755), 0);
    f.expectLoaded(path);
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0), 0);

    const uid_t self = geteuid();
    constexpr uid_t nobody = 65534;
    QVERIFY(self != 0 || seteuid(nobody) == 0);
    f.manager()->loadAllPlugins();
    QVERIFY(self != 0 || seteuid(self) == 0);

    QVERIFY(!f.manager()->plugin(path));
    QCOMPARE(f.boxes().size(), 1);
    QCOMPARE(
        f.log(),
        (Faults::Lines{Faults::loadFailed(
                           path, Faults::reasonOf(path, "cannot open shared object file: Permission denied")),
                       Faults::camLoaded()}));
}

void cutNeededLibrary(Faults &f)
{
    const QByteArray whole = TestFiles::read(Faults::fixture("elsewhere/libabsentlibrary.so"));
    TestFiles::write(Faults::replaceable("libabsentlibrary.so"), whole.left(mappedLength(whole) / 2));
    Faults::reachTheEnd();
    f.loadPlain(Faults::fixture("missing_needed_library/Missing_Needed_Library.dll"));
}

void cutWhileLoaded(Faults &f)
{
    f.load();
    const QString path = Faults::replaceable("Graphic_Tips.dll");
    QVERIFY(QFile::copy(Faults::fixture("healthy/Graphic_Tips.dll"), path));
    f.load();
    QWidget *const frame = f.graphicFrame("A | pcb");
    f.element(f.tips, frame);
    QVERIFY(QFile::resize(path, 0));
    Faults::reachTheEnd();
    f.manager()->recMegToPlugin(frame, f.message(f.tips));
}

void cutWhileAnotherHasItLoaded(Faults &f)
{
    const QString path = f.make("Owned.dll", Faults::healthyLibrary());
    QLibrary owner(path);
    QVERIFY(owner.load());
    f.make("Owned.dll", Faults::healthyLibrary().left(8192));
    f.expectLoaded(path);
    owner.unload();
}

}

Rows systemRows()
{
    constexpr Ending busError{Ending::Signal, SIGBUS};
    return {
        {"truncated at every 64 bytes", "line with the reason, box; whole up to its last segment, it loads",
         cutPlain},
        {"truncated, found by bare name", "line, box; no other of the name is taken", cutFileFoundByItsName},
        {"truncated, relative path", "line, box", cutFileBehindARelativePath},
        {"truncated Qt plug-in, every 64 bytes", "line with Qt's reason, box", cutQtPlugin},
        {"truncated Qt plug-in that still describes itself", "line, box", cutQtPluginWithItsDescription},
        {"truncated while another owner has it loaded", "loads: what is in memory is whole",
         cutWhileAnotherHasItLoaded},
        {"segment beyond 2^64", "line, box", segmentBeyondAllFiles},
        {"table of segments beyond 2^64", "line, box", tableBeyondAllFiles},
        {"wrong machine", "line, box", otherMachine},
        {"32-bit", "line, box", otherWordSize},
        {"dangling link", "line, box", danglingLink},
        {"link loop", "line, box", linkLoop},
        {"FIFO", "line, box; nobody waits for a writer", pipeInPlaceOfALibrary},
        {"FIFO in place of a Qt plug-in", "line, box", pipeInPlaceOfAQtPlugin},
        {"/dev/null", "line, box", nullDevice},
        {"unreadable", "line, box", unreadableFile},
        {"truncated needed library", "the system's loader maps it", cutNeededLibrary, busError},
        {"truncated in place while loaded", "its code is gone at the next message", cutWhileLoaded, busError},
    };
}

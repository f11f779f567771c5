// What lies where a library should, on Linux.

#include "faults.h"
#include "openbase.h"

#include "keptloaders.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtTest/QtTest>

#include <algorithm>

#include <csignal>
#include <cstddef>
#include <dlfcn.h>
#include <elf.h>
#include <sys/resource.h>
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

std::vector<quint64> segments(const QByteArray &file, quint32 type = PT_LOAD)
{
    std::vector<quint64> places;
    const auto first = numberAt<quint64>(file, offsetof(Elf64_Ehdr, e_phoff));
    for (quint64 segment = 0; segment < numberAt<quint16>(file, offsetof(Elf64_Ehdr, e_phnum)); ++segment) {
        const quint64 place = first + segment * sizeof(Elf64_Phdr);
        if (numberAt<quint32>(file, place + offsetof(Elf64_Phdr, p_type)) == type)
            places.push_back(place);
    }
    return places;
}

/// How much of a library is mapped; the rest is for debuggers and linkers.
int mappedLength(const QByteArray &file)
{
    quint64 length = 0;
    for (const quint64 place : segments(file))
        length = std::max(length, numberAt<quint64>(file, place + offsetof(Elf64_Phdr, p_offset))
                                      + numberAt<quint64>(file, place + offsetof(Elf64_Phdr, p_filesz)));
    return int(length);
}

QByteArray withLastSegment(const QByteArray &file, std::size_t field, quint64 number)
{
    return withNumber(file, segments(file).back() + field, number);
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
    std::vector<int> lengths;
    for (int length = 0; length < mapped; length += 64)
        lengths.push_back(length);
    lengths.push_back(mapped - 1);
    int refused = 0;
    for (const int length : lengths) {
        const QString path = f.make("Cut.dll", whole.left(length));
        f.loadPlain(path);
        QVERIFY(!f.manager()->plugin(path));
        QCOMPARE(f.boxes().size(), 1);
        const QString reason = loggedReason(f, path);
        QVERIFY(!reason.isEmpty());
        refused += reason == Faults::reasonOf(path, tooShort) ? 1 : 0;
    }
    // The others are cut within the table of segments, which the loader itself sees.
    QVERIFY2(refused > mapped / 64 - 16, qPrintable(QString::number(refused)));
}

void cutBehindTheLastSegment(Faults &f)
{
    const QByteArray whole = Faults::healthyLibrary();
    const int mapped = mappedLength(whole);
    QVERIFY(mapped + 4096 < whole.size());
    for (int length = mapped; length < mapped + 4096; length += 64)
        f.expectLoaded(f.make("Cut.dll", whole.left(length)));
}

/// What Qt says of a plug-in that was cut off. It looks into the file for the description, by the tables of
/// sections and of their names, which are last.
QString reasonOfCutPlugin(const QString &path, const QByteArray &whole, int length)
{
    const auto table = numberAt<quint64>(whole, offsetof(Elf64_Ehdr, e_shoff));
    const int sections = numberAt<quint16>(whole, offsetof(Elf64_Ehdr, e_shnum));
    const int names = numberAt<quint16>(whole, offsetof(Elf64_Ehdr, e_shstrndx));
    constexpr int sectionSize = sizeof(Elf64_Shdr);
    if (length < int(sizeof(Elf64_Ehdr)))
        return QStringLiteral("'%1' is not an ELF object (file too small)").arg(path);
    const QString what = length < sections * sectionSize
                             ? QStringLiteral("announced %1 section(s), each %2 byte(s), exceed file size")
                                   .arg(sections)
                                   .arg(sectionSize)
                             : QStringLiteral("shstrtab section header seems to be at %1")
                                   .arg(table + quint64(names * sectionSize), 0, 16);
    return QStringLiteral("'%1' is an invalid ELF object (%2)").arg(path, what);
}

// Each under a name of its own: of what has failed once, Qt says no more why.
void cutQtPlugin(Faults &f)
{
    const QByteArray whole = Faults::healthyPlugin();
    const int mapped = mappedLength(whole);
    std::vector<int> lengths;
    for (int length = 0; length < whole.size(); length += length < mapped ? 64 : 4096)
        lengths.push_back(length);
    lengths.push_back(whole.size() - 1);

    const KeptLoaders keptLoaders;
    OpenBase base;
    QTPluginsMangerPrivate tables;
    for (const int length : lengths) {
        const QString path = f.make(QStringLiteral("Cut_%1.dll").arg(length), whole.left(length));
        base.loadQtPlugin(tables, path);
        QCOMPARE(f.log(), Faults::Lines{Faults::loadFailed(path, reasonOfCutPlugin(path, whole, length))});
        QCOMPARE(f.boxes().size(), 1);
        QVERIFY(tables.m_loaders.isEmpty());
        TestFiles::remove(path);
    }
    f.expectLoadedPlugin(f.make("Whole.dll", whole));
}

/// A Qt plug-in that lacks a part, and has its description nevertheless.
QByteArray cutPluginWithItsDescription()
{
    const QByteArray whole = Faults::healthyPlugin();
    return withLastSegment(whole, offsetof(Elf64_Phdr, p_filesz), quint64(whole.size()) + 65536);
}

void cutQtPluginWithItsDescription(Faults &f)
{
    const QString path = f.make("Cut.dll", cutPluginWithItsDescription());
    f.expectRefusedPlugin(path, Faults::reasonOf(path, tooShort));
}

void cutQtPluginFoundByItsName(Faults &f)
{
    QVERIFY(QDir().mkdir("first") && QDir().mkdir("second"));
    const QString path = f.make("first/Cut.dll", cutPluginWithItsDescription());
    f.make("second/Cut.dll", Faults::healthyPlugin());
    QCoreApplication::setLibraryPaths({f.path("first"), f.path("second")});
    f.expectRefusedPlugin("Cut.dll", Faults::reasonOf(path, tooShort));
}

// Qt asks the loader for no other names then.
void cutQtPluginInARelativeLibraryPath(Faults &f)
{
    QVERIFY(QDir().mkdir("below"));
    QCoreApplication::setLibraryPaths({"below"});
    f.make("below/libCut.dll.so", Faults::healthyPlugin());
    f.make("below/Cut.dll", cutPluginWithItsDescription());
    f.expectRefusedPlugin("Cut.dll", Faults::reasonOf("below/Cut.dll", tooShort));
    f.make("below/libCut.dll.so", cutPluginWithItsDescription());
    f.make("below/Cut.dll", Faults::healthyPlugin());
    f.expectLoadedPlugin("Cut.dll");
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

/// Makes a file in a directory that the loader searches.
QString place(const QString &name, const QByteArray &content)
{
    const QString path = Faults::replaceable(name);
    TestFiles::remove(path);
    TestFiles::write(path, content);
    return path;
}

QByteArray cutLibrary()
{
    const QByteArray whole = Faults::healthyLibrary();
    return whole.left(mappedLength(whole) / 2);
}

QByteArray forOtherMachine(const QByteArray &file)
{
    return withNumber(file, offsetof(Elf64_Ehdr, e_machine), quint16(EM_AARCH64));
}

QByteArray forOtherWordSize(const QByteArray &file)
{
    return withNumber(file, EI_CLASS, quint8(ELFCLASS32));
}

// What the loader passes over when it searches, it does not map either.
void cutFileBehindOneForAnotherMachine(Faults &f)
{
    for (const auto &foreign : {forOtherMachine, forOtherWordSize}) {
        place("Two_Places.dll", foreign(Faults::healthyLibrary()));
        const QString path = place("later/Two_Places.dll", cutLibrary());
        f.expectRefused("Two_Places.dll",
                        QStringLiteral("Cannot load library Two_Places.dll: (%1: file too short)").arg(path));
        TestFiles::remove(path);
    }
}

void cutFileForAnotherMachineBeforeAWholeOne(Faults &f)
{
    place("later/Two_Places.dll", Faults::healthyLibrary());
    for (const auto &foreign : {forOtherMachine, forOtherWordSize}) {
        place("Two_Places.dll", foreign(cutLibrary()));
        f.expectLoaded("Two_Places.dll");
    }
    // What is broken in another way, the loader does not pass over.
    const QString path = place("Two_Places.dll", QByteArray(500, 'x'));
    f.expectRefused("Two_Places.dll",
                    QStringLiteral("Cannot load library Two_Places.dll: (%1: invalid ELF header)").arg(path));
    TestFiles::remove(Faults::replaceable("later/Two_Places.dll"));
}

/// Where a link leads, which the loader has among its directories before the place that it led to first.
void leadTo(const QString &place)
{
    const QString link = Faults::replaceable("current");
    QVERIFY(QFile::remove(link));
    QVERIFY(QFile::link(Faults::replaceable(place), link));
}

void cutFileWhereALinkLedToBefore(Faults &f)
{
    leadTo("first");
    const QString path = place("first/Moved.dll", Faults::healthyLibrary());
    f.expectLoaded("Moved.dll");
    leadTo("second");
    place("first/Moved_Too.dll", cutLibrary());
    f.expectRefused("Moved_Too.dll", QStringLiteral("Cannot load library Moved_Too.dll: (%1: file too short)")
                                         .arg(Faults::replaceable("first/Moved_Too.dll")));
    TestFiles::remove(Faults::replaceable("first/Moved_Too.dll"));
    TestFiles::remove(path);
    leadTo("first");
}

void cutFileByANameWithANul(Faults &f)
{
    const QString path = place("Cut_By_Name.dll", cutLibrary());
    const QString name = "Cut_By_Name.dll" + QString(QChar::Null) + "/rest.dll";
    f.expectRefused(name, QStringLiteral("Cannot load library %1: (%2: file too short)").arg(name, path));
    TestFiles::remove(path);
}

// On a stack that has less room than the name needs.
void nameLongerThanAnyPath(Faults &f)
{
    const rlimit small{rlim_t(256) * 1024, RLIM_INFINITY};
    QCOMPARE(setrlimit(RLIMIT_STACK, &small), 0);
    const QString path = QString(400000, 'x') + ".dll";
    f.loadPlain(path);
    QVERIFY(!f.manager()->plugin(path));
    QCOMPARE(f.boxes().size(), 1);
    // The log leaves out what is beyond 30,000 bytes of a line.
    const Faults::Lines lines = f.log();
    QCOMPARE(lines.size(), 2);
    QVERIFY(Faults::loadFailed(path, {}).text.startsWith(lines.first().text.left(29000)));
    QCOMPARE(lines.last(), Faults::camLoaded());
}

// A start that is too short for a header says nothing of a machine: the loader does not pass over it.
void startOfAFileBeforeACutOne(Faults &f)
{
    const QString path = place("Two_Places.dll", forOtherMachine(Faults::healthyLibrary()).left(40));
    place("later/Two_Places.dll", cutLibrary());
    f.expectRefused("Two_Places.dll",
                    QStringLiteral("Cannot load library Two_Places.dll: (%1: file too short)").arg(path));
    TestFiles::remove(path);
    TestFiles::remove(Faults::replaceable("later/Two_Places.dll"));
}

using Names = std::vector<QString>;

/// Each of the names, which QLibrary asks for in that order, once stands for a file that was cut off, with
/// whole ones behind it, and once the other way round.
void tryNames(Faults &f, const QString &listed, const Names &names, const QString &directory)
{
    const auto fill = [&](std::size_t first, const QByteArray &content, const QByteArray &others) {
        for (std::size_t place = 0; place < names.size(); ++place) {
            TestFiles::remove(directory + names[place]);
            if (place >= first)
                TestFiles::write(directory + names[place], place == first ? content : others);
        }
    };
    for (std::size_t place = 0; place < names.size(); ++place) {
        fill(place, cutLibrary(), Faults::healthyLibrary());
        f.expectRefused(listed, QStringLiteral("Cannot load library %1: (%2: file too short)")
                                    .arg(listed, directory + names[place]));
        fill(place, Faults::healthyLibrary(), cutLibrary());
        f.expectLoaded(listed);
    }
    fill(names.size(), {}, {});
}

Row namesRow(const QByteArray &kind, std::function<void(Faults &)> run)
{
    return {"truncated, under each name that QLibrary asks for: " + kind,
            "line, box, where no other comes before", std::move(run)};
}

Rows namesRows()
{
    const Names names{"libNamed.dll.so", "libNamed.dll", "Named.dll.so", "Named.dll"};
    return {
        namesRow("bare", [=](Faults &f) { tryNames(f, "Named.dll", names, Faults::replaceable({})); }),
        namesRow(
            "with \"lib\"",
            [](Faults &f) {
                const QString twice = place("liblibNamed.dll", cutLibrary());
                tryNames(f, "libNamed.dll", {"libNamed.dll.so", "libNamed.dll"}, Faults::replaceable({}));
                TestFiles::remove(twice);
            }),
        namesRow("relative",
                 [=](Faults &f) {
                     QVERIFY(QDir().mkdir("below"));
                     tryNames(f, "below/Named.dll", names, "below/");
                 }),
        namesRow("absolute",
                 [](Faults &f) {
                     QVERIFY(QDir().mkdir("below"));
                     tryNames(f, f.path("below/Named.dll"),
                              {"Named.dll", "Named.dll.so", "libNamed.dll", "libNamed.dll.so"},
                              f.path("below/"));
                 }),
        // It is not searched for.
        namesRow("hidden",
                 [](Faults &f) {
                     tryNames(f, ".Named.dll",
                              {"lib.Named.dll.so", "lib.Named.dll", ".Named.dll.so", ".Named.dll"}, "./");
                 }),
    };
}

void cutFileBehindATextOfAnotherName(Faults &f)
{
    const QByteArray text(500, 'x');
    place("libNamed.dll.so", text);
    const QString path = place("Named.dll", cutLibrary());
    f.expectRefused("Named.dll",
                    QStringLiteral("Cannot load library Named.dll: (%1: file too short)").arg(path));
    place("Named.dll", Faults::healthyLibrary());
    f.expectLoaded("Named.dll");

    // An absolute path that is there is the only one.
    const QString absolute = f.make("Named.dll", text);
    f.make("libNamed.dll.so", cutLibrary());
    f.expectRefused(absolute, Faults::reasonOf(absolute, "invalid ELF header"));
    TestFiles::remove(path);
    TestFiles::remove(Faults::replaceable("libNamed.dll.so"));
}

/// Has one more segment, without content, in memory behind the others.
QByteArray withEmptySegment(const QByteArray &file, quint64 offset)
{
    const quint64 last = segments(file).back();
    constexpr quint64 page = 4096;
    const quint64 end = numberAt<quint64>(file, last + offsetof(Elf64_Phdr, p_vaddr))
                        + numberAt<quint64>(file, last + offsetof(Elf64_Phdr, p_memsz));
    Elf64_Phdr segment{};
    segment.p_type = PT_LOAD;
    segment.p_flags = PF_R | PF_W;
    segment.p_offset = offset;
    segment.p_vaddr = (end / page + 1) * page + offset % page;
    segment.p_memsz = page;
    segment.p_align = page;
    for (quint64 place = last; place + sizeof segment <= quint64(file.size()); place += sizeof segment) {
        if (numberAt<quint32>(file, place) == PT_GNU_RELRO)
            return QByteArray(file).replace(int(place), sizeof segment,
                                            reinterpret_cast<const char *>(&segment), sizeof segment);
    }
    return {};
}

void emptySegmentBeyondTheFile(Faults &f)
{
    const QByteArray whole = Faults::healthyLibrary();
    const auto beyond = quint64(whole.size() / 4096 + 16) * 4096;
    f.expectLoaded(f.make("Empty.dll", withEmptySegment(whole, beyond)));
    // The rest of the page that it begins in is cleared, and that page is of the file.
    const QString path = f.make("Empty.dll", withEmptySegment(whole, beyond + 64));
    f.expectRefused(path, Faults::reasonOf(path, tooShort));
}

// Of the stack's segment, the loader takes the flags alone.
void unmappedSegmentBeyondTheFile(Faults &f)
{
    const QByteArray whole = Faults::healthyLibrary();
    const quint64 stack = segments(whole, PT_GNU_STACK).front();
    f.expectLoaded(f.make("Stack.dll", withNumber(whole, stack + offsetof(Elf64_Phdr, p_filesz),
                                                  quint64(whole.size()) + 65536)));
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

// Cut off or not, it is of the wrong kind first.
void otherMachine(Faults &f)
{
    for (const QByteArray &file : {Faults::healthyLibrary(), cutLibrary()}) {
        const QString path = f.make("Machine.dll", forOtherMachine(file));
        f.expectRefused(path,
                        Faults::reasonOf(path, "cannot open shared object file: No such file or directory"));
    }
}

void otherWordSize(Faults &f)
{
    for (const QByteArray &file : {Faults::healthyLibrary(), cutLibrary()}) {
        const QString path = f.make("Narrow.dll", forOtherWordSize(file));
        f.expectRefused(path, Faults::reasonOf(path, "wrong ELF class: ELFCLASS32"));
    }
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

void terminal(Faults &f)
{
    makeLink("/dev/ptmx", f.path("Terminal.dll"));
    f.expectRefused(f.path("Terminal.dll"), Faults::reasonOf(f.path("Terminal.dll"), "not a regular file"));
}

void pipeInPlaceOfAConfiguration(Faults &f)
{
    const QString path = f.directory() + "/pluginconfig/pluginconfig4CAM.json";
    TestFiles::remove(path);
    QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    Faults::reachTheEnd();
    f.manager()->loadAllPlugins();
}

void messageSentOnWithoutEnd(Faults &f)
{
    f.load();
    QWidget *const frame = f.graphicFrame("A | pcb");
    f.element(f.tips, frame);
    const PluginMetaData sent = f.message(f.tips);
    Recorder::setOnDelivery([&](const Recorder::Delivery &) {
        Recorder::takeDeliveries();
        f.manager()->recMegToPlugin(frame, sent);
    });
    Faults::reachTheEnd();
    f.manager()->recMegToPlugin(frame, sent);
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
    // No other name of it counts then.
    QCOMPARE(chmod(QFile::encodeName(f.make("Unreadable.dll.so", cutLibrary())).constData(), 0644), 0);

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

// QLibrary knows nothing of these.
void cutWhileTheLoaderHasIt(Faults &f)
{
    const QByteArray whole = Faults::healthyLibrary();
    const QString path = f.make("Owned.dll", whole);
    void *const owner = dlopen(QFile::encodeName(path).constData(), RTLD_NOW);
    QVERIFY(owner);
    // In place; the page that the file now ends in is there.
    QVERIFY(QFile::resize(path, mappedLength(whole) - 1));
    f.expectLoaded(path);

    const QString searched = place("Owned_By_Name.dll", whole);
    void *const byName = dlopen("Owned_By_Name.dll", RTLD_NOW);
    QVERIFY(byName);
    place("Owned_By_Name.dll", cutLibrary());
    f.expectLoaded("Owned_By_Name.dll");
    QCOMPARE(dlclose(owner), 0);
    QCOMPARE(dlclose(byName), 0);
    TestFiles::remove(searched);
}

void cutQtPluginWhileTheLoaderHasIt(Faults &f)
{
    const QString path = f.make("Owned.dll", Faults::healthyPlugin());
    void *const owner = dlopen(QFile::encodeName(path).constData(), RTLD_NOW);
    QVERIFY(owner);
    f.make("Owned.dll", cutPluginWithItsDescription());
    f.expectLoadedPlugin(path);
    QCOMPARE(dlclose(owner), 0);
}

}

Rows systemRows()
{
    constexpr Ending busError{Ending::Signal, SIGBUS};
    Rows rows{
        {"truncated at every 64 bytes", "line with the reason, box", cutPlain},
        {"truncated behind its last segment",
         "loads: the rest is for debuggers and linkers",
         cutBehindTheLastSegment,
         {},
         {},
         false,
         "valgrind itself ends where the table of sections is missing"},
        {"truncated, found by bare name", "line, box; no other of the name is taken", cutFileFoundByItsName},
        {"truncated, behind one for another machine", "line, box: the loader passes over the first",
         cutFileBehindOneForAnotherMachine},
        {"truncated for another machine, before a whole one", "the whole one loads",
         cutFileForAnotherMachineBeforeAWholeOne},
        {"truncated, behind the start of one for another machine", "line, box, of the first",
         startOfAFileBeforeACutOne},
        {"truncated, where a link led to before", "line, box", cutFileWhereALinkLedToBefore},
        {"truncated, its name followed by a NUL", "line, box", cutFileByANameWithANul},
        {"truncated, behind a text of another name", "line, box; an absolute path is the only one",
         cutFileBehindATextOfAnotherName},
        {"truncated, relative path", "line, box", cutFileBehindARelativePath},
        {"truncated Qt plug-in, every 64 bytes", "line with Qt's reason, box", cutQtPlugin},
        {"truncated Qt plug-in that still describes itself", "line, box", cutQtPluginWithItsDescription},
        {"truncated Qt plug-in, found by bare name", "line, box; no other of the name is taken",
         cutQtPluginFoundByItsName},
        {"truncated Qt plug-in in a relative library path", "line, box; has no other names",
         cutQtPluginInARelativeLibraryPath},
        {"truncated while another owner has it loaded", "loads: what is in memory is whole",
         cutWhileAnotherHasItLoaded},
        {"truncated while the system's loader has it", "loads: what is in memory is whole",
         cutWhileTheLoaderHasIt},
        {"truncated Qt plug-in while the system's loader has it", "loads: what is in memory is whole",
         cutQtPluginWhileTheLoaderHasIt},
        {"segment without content beyond the file", "loads, if it begins with a page",
         emptySegmentBeyondTheFile},
        {"segment that is not mapped, beyond the file", "loads", unmappedSegmentBeyondTheFile},
        {"segment beyond 2^64", "line, box", segmentBeyondAllFiles},
        {"table of segments beyond 2^64", "line, box", tableBeyondAllFiles},
        {"wrong machine", "line, box", otherMachine},
        {"32-bit", "line, box", otherWordSize},
        {"dangling link", "line, box", danglingLink},
        {"link loop", "line, box", linkLoop},
        {"FIFO", "line, box; nobody waits for a writer", pipeInPlaceOfALibrary},
        {"FIFO in place of a Qt plug-in", "line, box", pipeInPlaceOfAQtPlugin},
        {"terminal", "line, box; nobody waits for keys", terminal},
        {"/dev/null", "line, box", nullDevice},
        {"name longer than any path", "line, box", nameLongerThanAnyPath},
        {"unreadable", "line, box", unreadableFile},
        {"truncated needed library", "the system's loader maps it", cutNeededLibrary, busError},
        {"truncated in place while loaded", "its code is gone at the next message", cutWhileLoaded, busError},
        {"message that is sent on without end",
         "the stack is full",
         messageSentOnWithoutEnd,
         {Ending::Signal, SIGSEGV}},
        {"configuration: FIFO", "the load waits for a writer", pipeInPlaceOfAConfiguration, {Ending::Hang}},
    };
    const Rows names = namesRows();
    rows.insert(rows.end(), names.begin(), names.end());
    return rows;
}

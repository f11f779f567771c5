#include "LibraryHeader.h"

#include <QtCore/QLocale>
#include <QtCore/QSysInfo>
#include <QtCore/QtEndian>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace PluginCheck {

namespace {

constexpr char elfMagic[] = {'\x7f', 'E', 'L', 'F'};

struct Machine
{
    quint64 number;
    const char *name;
};

const Machine elfMachines[] = {{3, "x86"},      {62, "x86-64"},  {40, "ARM"},        {183, "ARM 64"},
                               {243, "RISC-V"}, {21, "PowerPC"}, {258, "LoongArch"}, {8, "MIPS"}};
const Machine peMachines[] = {{0x14c, "x86"}, {0x8664, "x86-64"}, {0x1c4, "ARM"}, {0xaa64, "ARM 64"}};

template <std::size_t size>
QString machineName(const Machine (&machines)[size], quint64 number)
{
    const auto *const machine =
        std::find_if(std::begin(machines), std::end(machines),
                     [&](const Machine &candidate) { return candidate.number == number; });
    return machine == std::end(machines) ? QStringLiteral("machine %1").arg(number)
                                         : QString::fromLatin1(machine->name);
}

template <std::size_t size>
bool isKnown(const Machine (&machines)[size], quint64 number)
{
    return std::any_of(std::begin(machines), std::end(machines),
                       [&](const Machine &candidate) { return candidate.number == number; });
}

}

QString nativeMachine()
{
    const QString architecture = QSysInfo::buildCpuArchitecture();
    if (architecture == QLatin1String("x86_64"))
        return QStringLiteral("x86-64");
    if (architecture == QLatin1String("i386"))
        return QStringLiteral("x86");
    if (architecture == QLatin1String("arm64"))
        return QStringLiteral("ARM 64");
    return architecture == QLatin1String("arm") ? QStringLiteral("ARM") : architecture;
}

LibraryHeader::LibraryHeader(const QByteArray &content)
    : m_content(content)
{
    if (content.size() > 5 && std::equal(std::begin(elfMagic), std::end(elfMagic), content.begin())) {
        m_isWide = content.at(4) == 2;
        m_isBigEndian = content.at(5) == 2;
    }
}

/// A number of the file; 0 beyond its end.
template <typename Number>
quint64 LibraryHeader::at(quint64 position) const
{
    if (position > quint64(m_content.size()) || quint64(m_content.size()) - position < sizeof(Number))
        return 0;
    const char *const bytes = m_content.constData() + position;
    return m_isBigEndian ? qFromBigEndian<Number>(bytes) : qFromLittleEndian<Number>(bytes);
}

/// An address or a length, which has another size and place in files of each word size.
quint64 LibraryHeader::word(quint64 position32, quint64 position64) const
{
    return isWide() ? at<quint64>(position64) : at<quint32>(position32);
}

/// A part of the file; less of it beyond the file's end.
QByteArray LibraryHeader::bytes(quint64 begin, quint64 length) const
{
    const auto size = quint64(m_content.size());
    return begin >= size ? QByteArray() : m_content.mid(int(begin), int(std::min(length, size - begin)));
}

QByteArray LibraryHeader::section(const char *name) const
{
    if (isPe() || !hasSections())
        return {};
    const quint64 sections = word(32, 40);
    const quint64 sectionSize = isWide() ? 64 : 40;
    const quint64 sectionCount = at<quint16>(isWide() ? 60 : 48);
    const quint64 names = sections + at<quint16>(isWide() ? 62 : 50) * sectionSize;
    const quint64 namesBegin = word(names + 16, names + 24);
    const int length = int(qstrlen(name)) + 1; // With the zero at its end.
    for (quint64 i = 0; i < sectionCount; ++i) {
        const quint64 header = sections + i * sectionSize;
        const quint64 place = namesBegin + at<quint32>(header);
        if (place >= namesBegin && bytes(place, quint64(length)) == QByteArray::fromRawData(name, length))
            return bytes(word(header + 16, header + 24), word(header + 20, header + 32));
    }
    return {};
}

QByteArray LibraryHeader::contentAt(quint64 address, quint64 length) const
{
    constexpr quint64 loadable = 1;
    const quint64 header = at<quint32>(60);
    const quint64 table = isPe() ? header + 24 + at<quint16>(header + 20) : word(28, 32);
    const quint64 count = isPe() ? at<quint16>(header + 6) : at<quint16>(isWide() ? 56 : 44);
    const quint64 size = isPe() ? 40 : (isWide() ? 56 : 32);
    for (quint64 i = 0; i < count; ++i) {
        const quint64 part = table + i * size;
        if (!isPe() && at<quint32>(part) != loadable)
            continue;
        const quint64 begin = isPe() ? at<quint32>(part + 12) : word(part + 8, part + 16);
        const quint64 inFile = isPe() ? at<quint32>(part + 16) : word(part + 16, part + 32);
        const quint64 offset = isPe() ? at<quint32>(part + 20) : word(part + 4, part + 8);
        if (address >= begin && address - begin < inFile)
            return bytes(offset + (address - begin), std::min(length, inFile - (address - begin)));
    }
    return {};
}

/// The first directory is that of exports; an address in it is that of a name.
bool LibraryHeader::isAmongExports(quint64 address) const
{
    const quint64 optional = at<quint32>(60) + 24;
    const quint64 exports = optional + (at<quint16>(optional) == 0x20b ? 112 : 96);
    const quint64 begin = at<quint32>(exports);
    return address >= begin && address - begin < at<quint32>(exports + 4);
}

QByteArray LibraryHeader::forwardAt(quint64 address) const
{
    constexpr quint64 longest = 512;
    const QByteArray text = isAmongExports(address) ? contentAt(address, longest) : QByteArray();
    return text.left(int(qstrnlen(text.constData(), uint(text.size()))));
}

bool LibraryHeader::isFunction(quint64 address) const
{
    constexpr quint64 executable = 0x20000000;
    const quint64 header = at<quint32>(60);
    const quint64 optional = header + 24;
    if (isAmongExports(address))
        return true;
    const quint64 sections = optional + at<quint16>(header + 20);
    for (quint64 i = 0; i < at<quint16>(header + 6); ++i) {
        const quint64 section = sections + 40 * i;
        const quint64 begin = at<quint32>(section + 12);
        const quint64 length = std::max(at<quint32>(section + 8), at<quint32>(section + 16));
        if (address >= begin && address - begin < length)
            return (at<quint32>(section + 36) & executable) != 0;
    }
    return false;
}

void LibraryHeader::describe(LibraryFile &file) const
{
    if (m_content.size() >= 20 && std::equal(std::begin(elfMagic), std::end(elfMagic), m_content.begin())) {
        describeElf(file);
    } else if (m_content.startsWith("MZ")) {
        describePe(file);
    } else {
        file.problem = LibraryFile::Problem::NoLibrary;
        file.detail = m_content.isEmpty() ? QStringLiteral("The file is empty.")
                                          : QStringLiteral("The file is neither ELF nor PE.");
    }
    file.isNative = file.format == nativeFormat && file.machine == nativeMachine();
}

void setTruncated(LibraryFile &file, quint64 size, quint64 expected)
{
    const QLocale locale = QLocale::c();
    file.problem = LibraryFile::Problem::Truncated;
    file.detail = QStringLiteral("The file is cut off: it has %1 of %2 bytes.")
                      .arg(locale.toString(qulonglong(size)), locale.toString(qulonglong(expected)));
}

/// The first bytes of an ELF file, which the loader compares with its own.
void LibraryHeader::describeIdentity(LibraryFile &file) const
{
    constexpr int byteOrder = 5;
    constexpr int firstOfPadding = 9;
    constexpr int endOfPadding = 16;
    const auto swapped = quint64(qbswap(quint16(at<quint16>(18))));
    const quint64 number = at<quint16>(18);
    const bool isSwapped = !isKnown(elfMachines, number) && isKnown(elfMachines, swapped);
    file.machine = machineName(elfMachines, isSwapped ? swapped : number);
    if (!isWide() && file.machine == QLatin1String("x86-64"))
        file.machine = QStringLiteral("x32");
    const auto isZero = [](char byte) { return byte == 0; };
    const char order = m_content.at(byteOrder);
    if (isSwapped || (order != 1 && order != 2))
        file.detail = QStringLiteral("The ELF header names a byte order that its machine does not have.");
    else if (m_content.at(6) != 1 || at<quint32>(20) != 1)
        file.detail = QStringLiteral("The ELF header is of an unknown version.");
    else if (!std::all_of(m_content.begin() + firstOfPadding, m_content.begin() + endOfPadding, isZero))
        file.detail = QStringLiteral("The ELF header has content where zeros belong.");
    else if (file.machine == nativeMachine() && !isForOwnSystem())
        file.detail =
            QStringLiteral("The ELF header names another operating system, or a later version of it.");
    if (!file.detail.isEmpty())
        file.problem = LibraryFile::Problem::Damaged;
}

/// Linux has a number, and no number, and counts what it has added to the format.
bool LibraryHeader::isForOwnSystem() const
{
    constexpr char none = 0;
    constexpr char gnu = 3;
    constexpr char additions = 4;
    const char system = m_content.at(7);
    const char version = m_content.at(8);
    return (system == none && version == 0) || (system == gnu && version >= 0 && version <= additions);
}

void LibraryHeader::describeElf(LibraryFile &file) const
{
    constexpr quint64 sharedObject = 3;
    constexpr quint64 loadable = 1;
    constexpr quint64 dynamic = 2;
    constexpr quint64 program = 0x08000000;
    constexpr quint64 unopenable = 0x40;
    constexpr quint64 withoutSystem = 0x800;
    const auto size = quint64(m_content.size());
    file.format = LibraryFile::Format::Elf;
    describeIdentity(file);
    if (file.problem != LibraryFile::Problem::None)
        return;
    const quint64 headerSize = isWide() ? 64 : 52;
    if (size < headerSize) {
        setTruncated(file, size, headerSize);
        return;
    }
    if (at<quint16>(16) != sharedObject) {
        file.problem = LibraryFile::Problem::NoLibrary;
        file.detail = QStringLiteral("It is an ELF file, but no shared object.");
        return;
    }
    const quint64 segments = word(28, 32);
    const quint64 segmentSize = at<quint16>(isWide() ? 54 : 42);
    const quint64 segmentCount = at<quint16>(isWide() ? 56 : 44);
    if (segmentSize != (isWide() ? 56 : 32) || segmentCount == 0) {
        file.problem = LibraryFile::Problem::Damaged;
        file.detail = QStringLiteral("The ELF header has no table of segments.");
        return;
    }
    quint64 expected = segments + segmentSize * segmentCount;
    bool overflows = expected < segments;
    bool isDynamic = false;
    bool isLoadable = false;
    for (quint64 i = 0; i < segmentCount && !overflows; ++i) {
        const quint64 segment = segments + i * segmentSize;
        const quint64 type = at<quint32>(segment);
        if (type != loadable && type != dynamic)
            continue;
        const quint64 begin = word(segment + 4, segment + 8);
        const quint64 length = word(segment + 16, segment + 32);
        overflows = begin + length < begin;
        expected = std::max(expected, begin + length);
        isDynamic = isDynamic || type == dynamic;
        isLoadable = isLoadable || type == loadable;
    }
    constexpr quint64 larger = quint64(1) << 40; // No file has that, so the number is no length.
    if (overflows || expected > larger) {
        file.problem = LibraryFile::Problem::Damaged;
        file.detail = QStringLiteral("The table of segments points to nowhere.");
    } else if (expected > size) {
        setTruncated(file, size, expected);
    } else if (!isDynamic || !isLoadable) {
        file.problem = LibraryFile::Problem::Damaged;
        file.detail = QStringLiteral("The file has no dynamic section, or nothing to load.");
    } else if (!areSegmentsInPlace()) {
        file.problem = LibraryFile::Problem::Damaged;
        file.detail = QStringLiteral("The table of segments has an address where the file cannot be put.");
    } else if (dynamicFlags() & program) {
        file.problem = LibraryFile::Problem::NoLibrary;
        file.detail = QStringLiteral("It is a program, which the loader loads into no other.");
    } else if (dynamicFlags() & unopenable) {
        file.problem = LibraryFile::Problem::NoLibrary;
        file.detail = QStringLiteral("It was linked with -z nodlopen, so that the loader refuses it.");
    }
    file.avoidsSystem = file.problem == LibraryFile::Problem::None && (dynamicFlags() & withoutSystem) != 0;
}

/// Whether what is loaded begins at the same place in a page as in the file, rises, and leaves room for
/// others.
bool LibraryHeader::areSegmentsInPlace() const
{
    constexpr quint64 loadable = 1;
    constexpr quint64 smallestPage = 4096;
    constexpr quint64 mostMemory = quint64(1) << 47;
    const quint64 segmentSize = isWide() ? 56 : 32;
    quint64 before = 0;
    for (quint64 i = 0; i < at<quint16>(isWide() ? 56 : 44); ++i) {
        const quint64 segment = word(28, 32) + i * segmentSize;
        if (at<quint32>(segment) != loadable)
            continue;
        const quint64 address = word(segment + 8, segment + 16);
        const quint64 length = word(segment + 20, segment + 40);
        const bool isAligned = (address - word(segment + 4, segment + 8)) % smallestPage == 0;
        if (!isAligned || address < before || address > mostMemory || length > mostMemory)
            return false;
        before = address;
    }
    return true;
}

/// What DT_FLAGS_1 says of how the library may be loaded.
quint64 LibraryHeader::dynamicFlags() const
{
    constexpr quint64 dynamic = 2;
    constexpr quint64 flags = 0x6ffffffb;
    const quint64 segmentSize = isWide() ? 56 : 32;
    const quint64 width = isWide() ? 8 : 4;
    for (quint64 i = 0; i < at<quint16>(isWide() ? 56 : 44); ++i) {
        const quint64 segment = word(28, 32) + i * segmentSize;
        if (at<quint32>(segment) != dynamic)
            continue;
        const quint64 begin = word(segment + 4, segment + 8);
        const quint64 end = begin + word(segment + 16, segment + 32);
        for (quint64 entry = begin; entry + 2 * width <= end && word(entry, entry) != 0; entry += 2 * width) {
            if (word(entry, entry) == flags)
                return word(entry + width, entry + width);
        }
        break;
    }
    return 0;
}

void LibraryHeader::describePe(LibraryFile &file) const
{
    constexpr quint64 dll = 0x2000;
    const auto size = quint64(m_content.size());
    file.format = LibraryFile::Format::Pe;
    const quint64 header = at<quint32>(60);
    if (size < 64 || header + 24 > size) {
        setTruncated(file, size, std::max<quint64>(64, header + 24));
        return;
    }
    if (std::memcmp(m_content.constData() + header, "PE\0\0", 4) != 0) {
        file.problem = LibraryFile::Problem::NoLibrary;
        file.detail = QStringLiteral("It is a program for DOS, but no DLL.");
        return;
    }
    file.machine = machineName(peMachines, at<quint16>(header + 4));
    if (!(at<quint16>(header + 22) & dll)) {
        file.problem = LibraryFile::Problem::NoLibrary;
        file.detail = QStringLiteral("It is a PE file, but no DLL.");
        return;
    }
    const quint64 sections = header + 24 + at<quint16>(header + 20);
    const quint64 sectionCount = at<quint16>(header + 6);
    quint64 expected = sections + 40 * sectionCount;
    for (quint64 i = 0; i < sectionCount; ++i) {
        const quint64 section = sections + 40 * i;
        expected = std::max(expected, at<quint32>(section + 16) + at<quint32>(section + 20));
    }
    if (expected > size)
        setTruncated(file, size, expected);
    else if (sectionCount == 0)
        file.problem = LibraryFile::Problem::Damaged;
    if (sectionCount == 0)
        file.detail = QStringLiteral("The PE header has no sections.");
}

bool LibraryHeader::hasSections() const
{
    const quint64 sections = word(32, 40);
    const quint64 sectionSize = at<quint16>(isWide() ? 58 : 46);
    const quint64 sectionCount = at<quint16>(isWide() ? 60 : 48);
    const auto size = quint64(m_content.size());
    if (sections == 0 || sections >= size || sectionCount == 0 || sectionSize != (isWide() ? 64 : 40)
        || sectionCount * sectionSize > size - sections)
        return false;
    constexpr quint64 dynamicSymbols = 11;
    int tables = 0;
    for (quint64 i = 0; i < sectionCount; ++i) {
        const quint64 section = sections + i * sectionSize;
        if (at<quint32>(section + 4) != dynamicSymbols)
            continue;
        ++tables;
        const quint64 begin = word(section + 16, section + 24);
        if (begin > size || word(section + 20, section + 32) > size - begin)
            return false;
    }
    return tables == 1;
}

quint64 LibraryHeader::endOfLoaded() const
{
    constexpr quint64 loadable = 1;
    const quint64 segmentSize = isWide() ? 56 : 32;
    const quint64 count = at<quint16>(isWide() ? 56 : 44);
    quint64 end = word(28, 32) + count * segmentSize;
    for (quint64 i = 0; i < count; ++i) {
        const quint64 segment = word(28, 32) + i * segmentSize;
        if (at<quint32>(segment) == loadable)
            end = std::max(end, word(segment + 4, segment + 8) + word(segment + 16, segment + 32));
    }
    return end;
}

/// Writes an address or a length in the file's own way.
void LibraryHeader::putWord(QByteArray &bytes, int position, quint64 value) const
{
    char *const place = bytes.data() + position;
    if (isWide())
        m_isBigEndian ? qToBigEndian(value, place) : qToLittleEndian(value, place);
    else
        m_isBigEndian ? qToBigEndian(quint32(value), place) : qToLittleEndian(quint32(value), place);
}

QByteArray LibraryHeader::withSections(QIODevice &file) const
{
    constexpr qint64 mostNames = qint64(16) * 1024 * 1024;
    const auto read = [&file](quint64 begin, quint64 length) {
        return file.seek(qint64(begin)) ? file.read(qint64(length)) : QByteArray();
    };
    QByteArray content = read(0, endOfLoaded());
    const quint64 sections = word(32, 40);
    const quint64 sectionSize = isWide() ? 64 : 40;
    const quint64 sectionCount = at<quint16>(isWide() ? 60 : 48);
    const quint64 names = at<quint16>(isWide() ? 62 : 50) * sectionSize;
    QByteArray table = read(sections, sectionCount * sectionSize);
    if (sections < quint64(content.size()) || quint64(table.size()) != sectionCount * sectionSize
        || names >= quint64(table.size()))
        return content;
    const LibraryHeader header(content.left(6) + table);
    const quint64 name = 6 + names;
    const quint64 length = header.word(name + 20, name + 32);
    if (length > quint64(mostNames))
        return content;
    const QByteArray texts = read(header.word(name + 16, name + 24), length);
    putWord(table, int(names + (isWide() ? 24 : 16)), quint64(content.size() + table.size()));
    putWord(content, isWide() ? 40 : 32, quint64(content.size()));
    return content + table + texts;
}

std::optional<QByteArray> relevantContent(QIODevice &file, qint64 most)
{
    constexpr qint64 enoughForHeaders = qint64(4) * 1024 * 1024; // As many segments as there can be.
    const QByteArray beginning = file.read(enoughForHeaders);
    LibraryFile described;
    const LibraryHeader header(beginning);
    header.describe(described);
    if (described.format == LibraryFile::Format::None || file.size() <= beginning.size())
        return beginning;
    const bool isElf = described.format == LibraryFile::Format::Elf;
    const quint64 end = isElf ? header.endOfLoaded() : quint64(file.size());
    if (std::min(end, quint64(file.size())) > quint64(most))
        return std::nullopt;
    if (isElf && end < quint64(file.size()))
        return header.withSections(file);
    return file.seek(0) ? file.readAll() : beginning;
}

std::vector<uint8_t> LibraryHeader::reduced() const
{
    std::vector<uint8_t> bytes(m_content.begin(), m_content.end());
    if (m_content.startsWith("MZ"))
        reducePe(bytes);
    else
        reduceElf(bytes);
    return bytes;
}

namespace {

void clear(std::vector<uint8_t> &bytes, quint64 from, quint64 length)
{
    const quint64 begin = std::min<quint64>(from, bytes.size());
    const quint64 end = begin + std::min<quint64>(length, bytes.size() - begin);
    std::fill(bytes.begin() + std::ptrdiff_t(begin), bytes.begin() + std::ptrdiff_t(end), uint8_t(0));
}

}

/// Keeps the segments that are loaded, the dynamic section without its tables of relocations and of functions
/// to be called, and of the sections the one that tells the number of symbols.
void LibraryHeader::reduceElf(std::vector<uint8_t> &bytes) const
{
    constexpr quint64 loadable = 1;
    constexpr quint64 dynamic = 2;
    const quint64 segmentSize = isWide() ? 56 : 32;
    const quint64 segmentCount = at<quint16>(isWide() ? 56 : 44);
    for (quint64 i = 0; i < segmentCount; ++i) {
        const quint64 segment = word(28, 32) + i * segmentSize;
        const quint64 type = at<quint32>(segment);
        if (type == dynamic)
            reduceDynamic(bytes, word(segment + 4, segment + 8), word(segment + 16, segment + 32));
        else if (type != loadable)
            clear(bytes, segment, segmentSize);
    }

    const quint64 sections = word(32, 40);
    const quint64 sectionSize = isWide() ? 64 : 40;
    if (!hasSections()) {
        // The loader does not look at sections, so a damaged table of them is no fault.
        clear(bytes, isWide() ? 40 : 32, isWide() ? 8 : 4);
        clear(bytes, isWide() ? 60 : 48, 4);
        return;
    }
    constexpr quint64 dynamicSymbols = 11;
    for (quint64 i = 0; i < at<quint16>(isWide() ? 60 : 48); ++i) {
        const quint64 section = sections + i * sectionSize;
        if (at<quint32>(section + 4) != dynamicSymbols)
            clear(bytes, section, sectionSize);
    }
}

/// Takes out sizes of tables that nobody asks for, and numbers that no library has.
void LibraryHeader::reduceDynamic(std::vector<uint8_t> &bytes, quint64 begin, quint64 length) const
{
    constexpr quint64 sizesOfTables[] = {2, 8, 18, 27, 28, 33};
    constexpr quint64 numbersOfVersions[] = {0x6ffffffd, 0x6fffffff};
    constexpr quint64 mostVersions = 1000;
    const quint64 width = isWide() ? 8 : 4;
    for (quint64 entry = begin; entry + 2 * width <= begin + length; entry += 2 * width) {
        const quint64 tag = word(entry, entry);
        const quint64 value = word(entry + width, entry + width);
        const auto isOneOf = [tag](const auto &tags) {
            return std::find(std::begin(tags), std::end(tags), tag) != std::end(tags);
        };
        if (isOneOf(sizesOfTables) || (isOneOf(numbersOfVersions) && value > mostVersions))
            clear(bytes, entry + width, width);
    }
}

/// Keeps of the data directories exports and imports, which are the first two, and takes out the table of
/// symbols.
void LibraryHeader::reducePe(std::vector<uint8_t> &bytes) const
{
    constexpr quint64 directorySize = 8;
    const quint64 header = at<quint32>(60);
    const quint64 optional = header + 24;
    const quint64 directories = optional + (at<quint16>(optional) == 0x20b ? 112 : 96);
    const quint64 end = optional + at<quint16>(header + 20);
    if (directories + 2 * directorySize < end)
        clear(bytes, directories + 2 * directorySize, end - directories - 2 * directorySize);
    clear(bytes, header + 12, 8);
}

}

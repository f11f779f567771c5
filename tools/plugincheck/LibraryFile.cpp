#include "LibraryFile.h"

#include "LibraryHeader.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QtEndian>

#include <cstring>

#ifdef PLUGINCHECK_HAS_LIEF
#    include <LIEF/ELF.hpp>
#    include <LIEF/PE.hpp>
#    include <LIEF/logging.hpp>
#endif

namespace PluginCheck {

namespace {

constexpr qint64 largestFile = qint64(1024) * 1024 * 1024;

/// What QLibrary looks for to tell a Qt plug-in from other libraries, and what follows there.
void readQtMetadata(const QByteArray &content, LibraryFile &file)
{
    constexpr char marker[] = "QTMETADATA !";
    constexpr char olderMarker[] = "QTMETADATA  ";
    constexpr int headerLength = 4;
    if (file.exports.count("qt_plugin_instance") == 0)
        return;
    const int begin = int(content.indexOf(QByteArray::fromRawData(marker, sizeof marker - 1)));
    if (begin < 0) {
        file.isQtPlugin = content.contains(QByteArray::fromRawData(olderMarker, sizeof olderMarker - 1));
        return;
    }
    const int header = begin + int(sizeof marker) - 1;
    if (content.size() - header < headerLength)
        return;
    const auto byte = [&](int at) { return static_cast<unsigned char>(content.at(header + at)); };
    file.isQtPlugin = true;
    file.qtPluginVersion = byte(1) * 256 + byte(2);
    file.isQtDebug = (byte(3) & 0x80) != 0;
}

void readStamp(const QByteArray &content, LibraryFile &file)
{
    constexpr char begin[] = "pluginMangerAbi=";
    constexpr int longest = 248;
    if (file.exports.count("pluginMangerAbiStamp") == 0)
        return;
    const int at = int(content.indexOf(QByteArray::fromRawData(begin, sizeof begin - 1)));
    if (at >= 0)
        file.stamp =
            QByteArray(content.constData() + at,
                       int(qstrnlen(content.constData() + at, uint(qMin(longest, content.size() - at)))));
}

/// The version in a PE file's resources, by the number that its structure begins with.
void readResourceVersion(const QByteArray &content, LibraryFile &file)
{
    constexpr char signature[] = "\xbd\x04\xef\xfe";
    constexpr int length = 16;
    const int at = int(content.indexOf(QByteArray::fromRawData(signature, 4)));
    if (at < 0 || content.size() - at < length)
        return;
    const auto part = [&](int offset) {
        return qFromLittleEndian<quint16>(content.constData() + at + offset);
    };
    file.resourceVersion =
        QStringLiteral("%1.%2.%3.%4").arg(part(10)).arg(part(8)).arg(part(14)).arg(part(12));
}

LibraryFile readBeginning(const QString &path)
{
    constexpr qint64 enough = 4096;
    LibraryFile file;
    QFile source(path);
    if (QFileInfo(path).isFile() && source.open(QIODevice::ReadOnly))
        LibraryHeader(source.read(enough)).describe(file);
    return file;
}

#ifdef PLUGINCHECK_HAS_LIEF

QStringList paths(const std::vector<std::string> &all)
{
    QStringList list;
    for (const std::string &path : all)
        list.append(QFile::decodeName(QByteArray::fromStdString(path)));
    return list;
}

void readElfSymbols(const LIEF::ELF::Binary &binary, LibraryFile &file)
{
    using namespace LIEF::ELF;
    for (const Symbol &symbol : binary.dynamic_symbols()) {
        const SYMBOL_BINDINGS binding = symbol.binding();
        if (symbol.name().empty() || binding == SYMBOL_BINDINGS::STB_LOCAL)
            continue;
        if (symbol.shndx() == static_cast<uint16_t>(SYMBOL_SECTION_INDEX::SHN_UNDEF))
            file.imports.append({symbol.name(), {}, binding == SYMBOL_BINDINGS::STB_WEAK});
        else
            file.exports.insert(symbol.name());
    }
}

void readElf(const LibraryHeader &header, LibraryFile &file)
{
    using namespace LIEF::ELF;
    // From sections, the number of symbols is known for certain.
    file.exportsAreComplete = header.hasSections();
    const std::unique_ptr<Binary> binary = Parser::parse(
        header.reduced(), {},
        header.hasSections() ? DYNSYM_COUNT_METHODS::COUNT_SECTION : DYNSYM_COUNT_METHODS::COUNT_AUTO);
    if (!binary)
        throw LIEF::exception("The file cannot be parsed.");
    for (const DynamicEntry &entry : binary->dynamic_entries()) {
        if (const auto *const library = dynamic_cast<const DynamicEntryLibrary *>(&entry))
            file.needed.append(QFile::decodeName(QByteArray::fromStdString(library->name())));
        else if (const auto *const rpath = dynamic_cast<const DynamicEntryRpath *>(&entry))
            file.rpath += paths(rpath->paths());
        else if (const auto *const runpath = dynamic_cast<const DynamicEntryRunPath *>(&entry))
            file.runpath += paths(runpath->paths());
    }
    readElfSymbols(*binary, file);
    for (const SymbolVersionRequirement &requirement : binary->symbols_version_requirement()) {
        for (const SymbolVersionAuxRequirement &version : requirement.auxiliary_symbols()) {
            file.importedVersions.append({QString::fromStdString(requirement.name()), version.name()});
        }
    }
    for (const SymbolVersionDefinition &definition : binary->symbols_version_definition()) {
        for (const SymbolVersionAux &version : definition.symbols_aux())
            file.definedVersions.insert(version.name());
    }
}

void readPe(const LibraryHeader &header, LibraryFile &file)
{
    using namespace LIEF::PE;
    const std::unique_ptr<Binary> binary = Parser::parse(header.reduced());
    if (!binary)
        throw LIEF::exception("The file cannot be parsed.");
    if (binary->has_exports()) {
        for (const ExportEntry &entry : binary->get_export().entries()) {
            if (!entry.name().empty())
                file.exports.insert(entry.name());
        }
    }
    for (const Import &import : binary->imports()) {
        const QString library = QString::fromLatin1(import.name().c_str());
        file.needed.append(library);
        for (const ImportEntry &entry : import.entries()) {
            if (!entry.is_ordinal() && !entry.name().empty())
                file.imports.append({entry.name(), library});
        }
    }
    file.exportsAreComplete = true;
}

void readContents(const LibraryHeader &header, LibraryFile &file)
{
    LIEF::Logger::disable();
    try {
        if (file.format == LibraryFile::Format::Elf)
            readElf(header, file);
        else
            readPe(header, file);
    } catch (const std::exception &exception) {
        file.problem = LibraryFile::Problem::Damaged;
        file.detail = QString::fromLocal8Bit(exception.what());
    }
}

#else

void readContents(const LibraryHeader &, LibraryFile &) {}

#endif

}

bool knowsLibraries()
{
#ifdef PLUGINCHECK_HAS_LIEF
    return true;
#else
    return false;
#endif
}

LibraryFile readLibrary(const QByteArray &content)
{
    LibraryFile file;
    const LibraryHeader header(content);
    header.describe(file);
    if (file.problem != LibraryFile::Problem::None)
        return file;
    readContents(header, file);
    if (file.format == LibraryFile::Format::Pe)
        readResourceVersion(content, file);
    readQtMetadata(content, file);
    readStamp(content, file);
    return file;
}

LibraryFile readLibrary(const QString &path)
{
    QFile source(path);
    LibraryFile unreadable;
    unreadable.problem = LibraryFile::Problem::Unreadable;
    if (!QFileInfo(path).isFile())
        unreadable.detail = QStringLiteral("It is no file.");
    else if (!source.open(QIODevice::ReadOnly))
        unreadable.detail = source.errorString() + '.';
    else if (source.size() > largestFile)
        unreadable.detail = QStringLiteral("It is larger than 1 GiB.");
    if (!unreadable.detail.isEmpty())
        return unreadable;
    return readLibrary(source.readAll());
}

QString machineOfFile(const QString &path)
{
    return readBeginning(path).machine;
}

LibraryFile::Format formatOfFile(const QString &path)
{
    return readBeginning(path).format;
}

}

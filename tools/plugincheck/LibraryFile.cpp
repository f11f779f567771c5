#include "LibraryFile.h"

#include "LibraryHeader.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QtEndian>

#include <algorithm>
#include <cstring>
#include <iterator>

#ifdef PLUGINCHECK_HAS_LIEF
#    include <LIEF/ELF.hpp>
#    include <LIEF/PE.hpp>
#    include <LIEF/logging.hpp>
#endif

namespace PluginCheck {

namespace {

constexpr qint64 largestContent = qint64(1024) * 1024 * 1024;

/// What QLibrary looks for to tell a Qt plug-in from other libraries, and what follows there. It takes the
/// last one in a section of its own, and on Windows the last one of the file.
void readQtMetadata(const LibraryHeader &header, const QByteArray &content, LibraryFile &file)
{
    constexpr char marker[] = "QTMETADATA ";
    constexpr char newerMarker[] = "QTMETADATA !";
    constexpr int headerLength = 4;
    if (file.exports.count("qt_plugin_instance") == 0)
        return;
    const QByteArray searched =
        file.format == LibraryFile::Format::Pe ? content : header.section(".qtmetadata");
    const int begin = int(searched.lastIndexOf(marker));
    file.isQtPlugin = begin >= 0;
    const int versions = begin + int(sizeof newerMarker) - 1;
    if (begin < 0 || searched.indexOf(newerMarker, begin) != begin
        || searched.size() - versions < headerLength)
        return;
    const auto byte = [&](int at) { return static_cast<unsigned char>(searched.at(versions + at)); };
    file.qtPluginVersion = byte(1) * 256 + byte(2);
    file.isQtDebug = (byte(3) & 0x80) != 0;
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

#ifdef PLUGINCHECK_HAS_LIEF

QStringList paths(const std::vector<std::string> &all)
{
    QStringList list;
    for (const std::string &path : all)
        list.append(QFile::decodeName(QByteArray::fromStdString(path)));
    return list;
}

constexpr char stampName[] = "pluginMangerAbiStamp";

void readStamp(const LibraryHeader &header, quint64 address, LibraryFile &file)
{
    constexpr quint64 longest = 248;
    const QByteArray text = header.contentAt(address, longest);
    if (text.startsWith("pluginMangerAbi="))
        file.stamp = text.left(int(qstrnlen(text.constData(), uint(text.size()))));
}

using VersionNames = std::unordered_map<unsigned, std::string>;

/// The names of the versions that a file defines and needs, by the numbers that its symbols have.
VersionNames readVersions(const LIEF::ELF::Binary &binary, LibraryFile &file)
{
    using namespace LIEF::ELF;
    VersionNames names;
    for (const SymbolVersionRequirement &requirement : binary.symbols_version_requirement()) {
        for (const SymbolVersionAuxRequirement &version : requirement.auxiliary_symbols()) {
            constexpr uint16_t weak = 2; // The loader only warns of it.
            names[version.other()] = version.name();
            if (!(version.flags() & weak))
                file.importedVersions.append({QString::fromStdString(requirement.name()), version.name()});
        }
    }
    for (const SymbolVersionDefinition &definition : binary.symbols_version_definition()) {
        for (const SymbolVersionAux &version : definition.symbols_aux()) {
            file.definedVersions.insert(version.name());
            // Those that it succeeds follow.
            names.emplace(definition.ndx(), version.name());
        }
    }
    return names;
}

std::string versionOf(const LIEF::ELF::Symbol &symbol, const VersionNames &names)
{
    constexpr unsigned number = 0x7fff;
    constexpr unsigned firstOwn = 2; // One is that of the library itself.
    const unsigned version = symbol.has_version() ? symbol.symbol_version().value() & number : 0;
    const auto name = names.find(version);
    return version < firstOwn || name == names.end() ? std::string() : name->second;
}

void readElfSymbols(const LIEF::ELF::Binary &binary, const LibraryHeader &header, LibraryFile &file)
{
    using namespace LIEF::ELF;
    const VersionNames versions = readVersions(binary, file);
    constexpr ELF_SYMBOL_TYPES callable[] = {ELF_SYMBOL_TYPES::STT_FUNC, ELF_SYMBOL_TYPES::STT_GNU_IFUNC,
                                             ELF_SYMBOL_TYPES::STT_NOTYPE};
    for (const Symbol &symbol : binary.dynamic_symbols()) {
        const SYMBOL_BINDINGS binding = symbol.binding();
        if (symbol.name().empty() || binding == SYMBOL_BINDINGS::STB_LOCAL)
            continue;
        if (symbol.shndx() == static_cast<uint16_t>(SYMBOL_SECTION_INDEX::SHN_UNDEF)) {
            file.imports.append(
                {symbol.name(), {}, binding == SYMBOL_BINDINGS::STB_WEAK, versionOf(symbol, versions)});
            continue;
        }
        file.exports[symbol.name()].push_back(versionOf(symbol, versions));
        if (std::find(std::begin(callable), std::end(callable), symbol.type()) == std::end(callable))
            file.data.insert(symbol.name());
        if (symbol.name() == stampName)
            readStamp(header, symbol.value(), file);
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
        if (const auto *const library = dynamic_cast<const DynamicEntryLibrary *>(&entry)) {
            // Without a name it is the program itself to the loader.
            if (!library->name().empty())
                file.needed.append(QFile::decodeName(QByteArray::fromStdString(library->name())));
        }
        if (const auto *const rpath = dynamic_cast<const DynamicEntryRpath *>(&entry))
            file.rpath += paths(rpath->paths());
        else if (const auto *const runpath = dynamic_cast<const DynamicEntryRunPath *>(&entry))
            file.runpath += paths(runpath->paths());
    }
    readElfSymbols(*binary, header, file);
}

void readPe(const LibraryHeader &header, LibraryFile &file)
{
    using namespace LIEF::PE;
    const std::unique_ptr<Binary> binary = Parser::parse(header.reduced());
    if (!binary)
        throw LIEF::exception("The file cannot be parsed.");
    if (binary->has_exports()) {
        for (const ExportEntry &entry : binary->get_export().entries()) {
            if (entry.name().empty())
                continue;
            file.exports[entry.name()];
            const QByteArray forward = header.forwardAt(entry.address());
            if (!forward.isEmpty())
                file.forwards[entry.name()] =
                    QString::fromLatin1(forward.left(forward.lastIndexOf('.'))) + QLatin1String(".dll");
            if (!header.isFunction(entry.address()))
                file.data.insert(entry.name());
            if (entry.name() == stampName)
                readStamp(header, entry.address(), file);
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

/// A version that the file does not have at all is told of as such.
bool LibraryFile::provides(const ImportedSymbol &symbol) const
{
    const auto found = exports.find(symbol.name);
    if (found == exports.end())
        return false;
    const std::vector<std::string> &versions = found->second;
    return symbol.version.empty() || definedVersions.count(symbol.version) == 0
           || std::find(versions.begin(), versions.end(), symbol.version) != versions.end()
           || std::find(versions.begin(), versions.end(), std::string()) != versions.end();
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
    readQtMetadata(header, content, file);
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
    if (!unreadable.detail.isEmpty())
        return unreadable;
    const std::optional<QByteArray> content = relevantContent(source, largestContent);
    if (content)
        return readLibrary(*content);
    LibraryFile tooLarge;
    tooLarge.problem = LibraryFile::Problem::TooLarge;
    tooLarge.detail = QStringLiteral("It is too large to be checked: more than 1 GiB of it counts.");
    return tooLarge;
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

LibraryFile::Format formatOfFile(const QString &path)
{
    return readBeginning(path).format;
}

}

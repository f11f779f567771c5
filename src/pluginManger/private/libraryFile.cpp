#include "libraryFile_p.h"

#ifdef __GLIBC__

#    include <QtCore/QFile>
#    include <QtCore/QLibrary>
#    include <QtCore/QStringList>

#    include <dlfcn.h>
#    include <fcntl.h>
#    include <link.h>
#    include <poll.h>
#    include <sys/stat.h>
#    include <unistd.h>

#    include <algorithm>
#    include <climits>
#    include <cstring>
#    include <limits>
#    include <memory>
#    include <utility>
#    include <vector>

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

/// This library's own, by the name that linkers give it.
extern "C" [[gnu::visibility("hidden")]] const Header ownHeader __asm__("__ehdr_start");

namespace {

struct Closer
{
    void operator()(void *library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, Closer>;

constexpr quint64 endless = std::numeric_limits<quint64>::max();

quint64 endOf(quint64 offset, quint64 size)
{
    return size > endless - offset ? endless : offset + size;
}

class File
{
public:
    /// Waits for nobody, not even at a pipe or a terminal.
    explicit File(QByteArray path)
        : m_path(std::move(path))
        , m_descriptor(open(m_path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC))
        , m_state()
        , m_header()
    {
        if (!isOpen() || fstat(m_descriptor, &m_state) != 0 || !read(&m_header, sizeof m_header, 0))
            m_header = {};
    }
    ~File()
    {
        if (isOpen())
            close(m_descriptor);
    }
    Q_DISABLE_COPY(File)

    const QByteArray &path() const { return m_path; }
    bool isOpen() const { return m_descriptor >= 0; }
    /// Whether who reads it waits for somebody to write.
    bool makesReadersWait() const
    {
        pollfd readable{m_descriptor, POLLIN, 0};
        return S_ISFIFO(m_state.st_mode) || (S_ISCHR(m_state.st_mode) && poll(&readable, 1, 0) == 0);
    }
    quint64 size() const { return quint64(m_state.st_size); }
    /// Zeros where there is none.
    const Header &header() const { return m_header; }
    bool read(void *bytes, std::size_t count, quint64 from) const
    {
        return pread(m_descriptor, bytes, count, off_t(from)) == ssize_t(count);
    }

private:
    const QByteArray m_path;
    const int m_descriptor;
    struct stat m_state;
    Header m_header;
};

bool isElf(const Header &header)
{
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0;
}

bool isForOwnMachine(const Header &header)
{
    return header.e_ident[EI_CLASS] == ownHeader.e_ident[EI_CLASS] && header.e_machine == ownHeader.e_machine;
}

/// Where a segment ends in its file. One without content is of the file nevertheless if it begins within a
/// page: the loader clears the rest of that.
quint64 endOf(const Segment &segment)
{
    const bool isOfMemoryOnly =
        segment.p_filesz == 0 && segment.p_vaddr % quint64(sysconf(_SC_PAGESIZE)) == 0;
    return isOfMemoryOnly ? 0 : endOf(segment.p_offset, segment.p_filesz);
}

/// How long a file must be for its segments to be mapped; 0 where the loader gets no further than its
/// headers.
quint64 lengthForSegments(const File &file)
{
    const Header &header = file.header();
    constexpr quint16 segmentSize = sizeof(Segment);
    if (!isElf(header) || !isForOwnMachine(header) || header.e_phentsize != segmentSize)
        return 0;

    std::vector<Segment> segments(header.e_phnum);
    const quint64 tableSize = quint64(segmentSize) * segments.size();
    if (endOf(header.e_phoff, tableSize) == endless)
        return endless;
    if (!file.read(segments.data(), tableSize, header.e_phoff))
        return 0;
    quint64 length = 0;
    for (const Segment &segment : segments) {
        if (segment.p_type == PT_LOAD)
            length = std::max(length, endOf(segment));
    }
    return length;
}

/// Where the loader looks for a name on behalf of Qt, which calls it. Qt may be part of the program.
std::vector<QByteArray> searchDirectories()
{
    constexpr char qtCore[] =
        "libQt" QT_STRINGIFY(QT_VERSION_MAJOR) "Core.so." QT_STRINGIFY(QT_VERSION_MAJOR);
    void *const qt = dlopen(qtCore, RTLD_LAZY | RTLD_NOLOAD);
    const Library caller(qt ? qt : dlopen(nullptr, RTLD_LAZY));
    Dl_serinfo size{};
    const bool isKnown = caller && dlinfo(caller.get(), RTLD_DI_SERINFOSIZE, &size) == 0;
    // The list follows its header.
    std::vector<Dl_serinfo> found(1 + size.dls_size / sizeof(Dl_serinfo), size);
    const bool isFound = isKnown && dlinfo(caller.get(), RTLD_DI_SERINFO, found.data()) == 0;
    std::vector<QByteArray> directories;
    for (unsigned place = 0; isFound && place < size.dls_cnt; ++place) {
        const QByteArray directory = found.front().dls_serpath[place].dls_name;
        // Many are there twice. Other names of the same place are kept: a link may be made to lead elsewhere.
        if (std::find(directories.begin(), directories.end(), directory) == directories.end())
            directories.push_back(directory);
    }
    return directories;
}

/// The file that the loader takes for a name. Where it searches, it passes over those for other machines. Its
/// index of installed libraries and its folders for one kind of processor have no plug-ins.
std::unique_ptr<const File> fileOf(const QByteArray &name)
{
    if (name.contains('/'))
        return std::make_unique<File>(name);
    // The loader, too, asks for them once.
    static const std::vector<QByteArray> directories = searchDirectories();
    for (const QByteArray &directory : directories) {
        auto file = std::make_unique<File>(directory + '/' + name);
        const bool isPassedOver = isElf(file->header()) && !isForOwnMachine(file->header());
        if (file->isOpen() && !isPassedOver)
            return file;
    }
    return nullptr;
}

/// What QLibrary asks the loader for when it is given this name, in that order, until something loads. The
/// loader reads them up to a NUL.
std::vector<QByteArray> namesFor(const QString &fileName)
{
    const QString name = fileName.mid(fileName.lastIndexOf(QLatin1Char('/')) + 1);
    QString directory = fileName.chopped(name.size());
    if (directory.isEmpty() && name.startsWith(QLatin1Char('.')))
        directory = QStringLiteral("./");
    QStringList prefixes{QString()};
    if (!name.startsWith(QLatin1String("lib")))
        prefixes.prepend(QStringLiteral("lib"));
    QStringList suffixes{QString()};
    if (!name.endsWith(QLatin1String(".so")))
        suffixes.prepend(QStringLiteral(".so"));
    if (fileName.startsWith(QLatin1Char('/'))) {
        std::reverse(prefixes.begin(), prefixes.end());
        std::reverse(suffixes.begin(), suffixes.end());
    }

    std::vector<QByteArray> names;
    for (const QString &prefix : qAsConst(prefixes)) {
        for (const QString &suffix : qAsConst(suffixes))
            names.emplace_back(QFile::encodeName(directory + prefix + name + suffix).constData());
    }
    return names;
}

/// What is loaded is not mapped again, whatever has become of its file.
bool isLoaded(const QByteArray &name)
{
    return Library(dlopen(name.constData(), RTLD_LAZY | RTLD_NOLOAD)) != nullptr;
}

QString fault(const QString &fileName, const QByteArray &path, const QString &what)
{
    return QLibrary::tr("Cannot load library %1: %2")
        .arg(fileName, QStringLiteral("(%1: %2)").arg(QFile::decodeName(path), what));
}

/// Why the first of these that the loader would map must not be.
QString firstFault(const QString &fileName, const std::vector<QByteArray> &names)
{
    for (const QByteArray &name : names) {
        // The loader has the names that it searches for on its stack.
        if (!name.contains('/') && name.size() > PATH_MAX)
            return fault(fileName, name,
                         QStringLiteral("cannot open shared object file: File name too long"));
        const std::unique_ptr<const File> file = fileOf(name);
        if (file && file->isOpen()) {
            if (file->makesReadersWait())
                return fault(fileName, file->path(), QStringLiteral("not a regular file"));
            const quint64 length = lengthForSegments(*file);
            if (file->size() < length)
                return isLoaded(name) ? QString()
                                      : fault(fileName, file->path(), QStringLiteral("file too short"));
            if (length > 0)
                break;
        }
        // An absolute path that is there is the last, even where the loader refuses it.
        if (name.startsWith('/') && QFile::exists(QFile::decodeName(name)))
            break;
    }
    return {};
}

}

QString PluginMangerInternal::libraryLoadFault(const QString &fileName)
{
    return firstFault(fileName, namesFor(fileName));
}

QString PluginMangerInternal::pluginLoadFault(const QString &fileName)
{
    return firstFault(fileName, {QFile::encodeName(fileName)});
}

#else

QString PluginMangerInternal::libraryLoadFault(const QString &)
{
    return {};
}

QString PluginMangerInternal::pluginLoadFault(const QString &)
{
    return {};
}

#endif

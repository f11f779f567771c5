#include "libraryFile_p.h"

#ifdef __GLIBC__

#    include <QtCore/QFile>
#    include <QtCore/QLibrary>

#    include <dlfcn.h>
#    include <fcntl.h>
#    include <link.h>
#    include <sys/stat.h>
#    include <unistd.h>

#    include <algorithm>
#    include <cstring>
#    include <limits>
#    include <memory>
#    include <vector>

namespace {

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

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
    /// Waits for nobody, not even at a pipe.
    explicit File(const char *path)
        : m_descriptor(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC))
        , m_state()
    {
        if (isOpen() && fstat(m_descriptor, &m_state) != 0)
            m_state = {};
    }
    ~File()
    {
        if (isOpen())
            close(m_descriptor);
    }
    Q_DISABLE_COPY(File)

    bool isOpen() const { return m_descriptor >= 0; }
    bool isPipe() const { return S_ISFIFO(m_state.st_mode); }
    quint64 size() const { return quint64(m_state.st_size); }
    bool read(void *bytes, std::size_t count, quint64 from) const
    {
        return pread(m_descriptor, bytes, count, off_t(from)) == ssize_t(count);
    }

private:
    const int m_descriptor;
    struct stat m_state;
};

/// How long a file must be for its segments to be mapped; 0 where the loader gets no further than its
/// headers.
quint64 lengthForSegments(const File &file)
{
    Header header;
    constexpr quint16 segmentSize = sizeof(Segment);
    constexpr quint8 ownWordSize = sizeof(void *) == 8 ? ELFCLASS64 : ELFCLASS32;
    if (!file.read(&header, sizeof header, 0) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0
        || header.e_ident[EI_CLASS] != ownWordSize || header.e_phentsize != segmentSize)
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
            length = std::max(length, endOf(segment.p_offset, segment.p_filesz));
    }
    return length;
}

QString faultOf(const File &file)
{
    if (file.isPipe())
        return QStringLiteral("not a regular file");
    if (file.size() < lengthForSegments(file))
        return QStringLiteral("file too short");
    return {};
}

/// Where the loader looks for a name on behalf of Qt, which calls it. Qt may be part of the program.
std::vector<QByteArray> searchDirectories()
{
    constexpr char qtCore[] =
        "libQt" QT_STRINGIFY(QT_VERSION_MAJOR) "Core.so." QT_STRINGIFY(QT_VERSION_MAJOR);
    Library caller(dlopen(qtCore, RTLD_LAZY | RTLD_NOLOAD));
    if (!caller)
        caller.reset(dlopen(nullptr, RTLD_LAZY));
    Dl_serinfo size;
    if (!caller || dlinfo(caller.get(), RTLD_DI_SERINFOSIZE, &size) != 0)
        return {};
    // The list follows its header.
    std::vector<Dl_serinfo> found(1 + size.dls_size / sizeof(Dl_serinfo), size);
    if (dlinfo(caller.get(), RTLD_DI_SERINFO, found.data()) != 0)
        return {};
    std::vector<QByteArray> directories;
    for (unsigned place = 0; place < size.dls_cnt; ++place)
        directories.emplace_back(found.front().dls_serpath[place].dls_name);
    return directories;
}

/// The first file of that name. The index of installed libraries, which the loader also asks, has no
/// plug-ins.
QByteArray pathOf(const QByteArray &fileName)
{
    if (fileName.contains('/'))
        return fileName;
    for (const QByteArray &directory : searchDirectories()) {
        QByteArray path = directory + '/' + fileName;
        if (access(path.constData(), R_OK) == 0)
            return path;
    }
    return {};
}

/// What is loaded is not mapped again, whatever has become of its file.
bool isLoaded(const QByteArray &fileName)
{
    return Library(dlopen(fileName.constData(), RTLD_LAZY | RTLD_NOLOAD)) != nullptr;
}

}

QString PluginMangerInternal::loadFault(const QString &fileName)
{
    const QByteArray path = pathOf(QFile::encodeName(fileName));
    if (path.isEmpty())
        return {};
    const File file(path.constData());
    const QString fault = file.isOpen() ? faultOf(file) : QString();
    if (fault.isEmpty() || (!file.isPipe() && isLoaded(QFile::encodeName(fileName))))
        return {};
    return QLibrary::tr("Cannot load library %1: %2")
        .arg(fileName, QStringLiteral("(%1: %2)").arg(QFile::decodeName(path), fault));
}

#else

QString PluginMangerInternal::loadFault(const QString &)
{
    return {};
}

#endif

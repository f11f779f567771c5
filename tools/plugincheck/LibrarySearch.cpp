#include "LibrarySearch.h"

#include "windowsLibraries.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <iterator>

namespace PluginCheck {

namespace {

bool isWindowsLibrary(const QString &name)
{
    static const QStringList sorted = QString::fromLatin1(windowsLibraries).split('\n', Qt::SkipEmptyParts);
    QString base = name.toLower();
    if (base.startsWith(QLatin1String("api-ms-win-")) || base.startsWith(QLatin1String("ext-ms-")))
        return true;
    if (base.endsWith(QLatin1String(".dll")))
        base.chop(4);
    return std::binary_search(sorted.begin(), sorted.end(), base);
}

/// Windows has more than anybody lists, but nothing of Qt, of MinGW and of Visual C++'s run-time libraries.
bool mayBeOfWindows(const QString &name)
{
    static const QRegularExpression others(
        QStringLiteral(R"(^(Qt\d|lib|pluginManger|msvcp1|msvcr\d|vcruntime|concrt))"),
        QRegularExpression::CaseInsensitiveOption);
    return !name.contains(others);
}

const QStringList &defaultDirectories()
{
    static const QStringList directories{QStringLiteral("/lib/x86_64-linux-gnu"),
                                         QStringLiteral("/usr/lib/x86_64-linux-gnu"),
                                         QStringLiteral("/lib64"),
                                         QStringLiteral("/usr/lib64"),
                                         QStringLiteral("/lib"),
                                         QStringLiteral("/usr/lib")};
    return directories;
}

/// What the loader of this machine puts in for names in paths, and for which kinds of processor it looks in
/// folders of their own, the best first.
struct Loader
{
    QString lib = QFileInfo::exists(QStringLiteral("/lib/x86_64-linux-gnu"))
                      ? QStringLiteral("lib/x86_64-linux-gnu")
                      : QStringLiteral("lib64");
    QString platform = QStringLiteral("x86_64");
    QStringList processors;
};

/// What the loader tells of itself when it is called as a program; that of old systems tells nothing.
QString diagnosticsOfLoader()
{
    constexpr int timeLimitInMilliseconds = 10000;
    QProcess process;
    process.start(QStringLiteral("/lib64/ld-linux-x86-64.so.2"), {QStringLiteral("--list-diagnostics")});
    return process.waitForFinished(timeLimitInMilliseconds)
               ? QString::fromLatin1(process.readAllStandardOutput())
               : QString();
}

const Loader &loader()
{
    static const Loader known = [] {
        Loader told;
        const QString text = diagnosticsOfLoader();
        const auto valueOf = [&text](const char *key) {
            const QRegularExpression line(QStringLiteral("^%1=\"?([^\"\n]*)").arg(QLatin1String(key)),
                                          QRegularExpression::MultilineOption);
            return line.match(text).captured(1);
        };
        if (!valueOf("dl_dst_lib").isEmpty())
            told.lib = valueOf("dl_dst_lib");
        if (!valueOf("dl_platform").isEmpty())
            told.platform = valueOf("dl_platform");
        const uint active = valueOf("dl_hwcaps_subdirs_active").toUInt(nullptr, 0);
        const QStringList processors = valueOf("dl_hwcaps_subdirs").split(':', Qt::SkipEmptyParts);
        for (int i = 0; i < processors.size(); ++i) {
            if (active & (1U << i))
                told.processors.append(processors.at(i));
        }
        return told;
    }();
    return known;
}

}

Folders::Folders(const QStringList &directories)
    : m_directories(directories)
{
    for (const QString &directory : directories) {
        QMultiHash<QString, QString> files;
        const QStringList names = QDir(directory).entryList(QDir::Files | QDir::Hidden | QDir::System);
        files.reserve(names.size());
        for (const QString &name : names)
            files.insert(name.toLower(), name);
        m_files.append(files);
    }
}

QString Folders::exactFile(const QStringList &names) const
{
    for (int i = 0; i < m_directories.size(); ++i) {
        for (const QString &name : names) {
            QString path = QDir(m_directories.at(i)).filePath(name);
            if (name.contains('/') ? QFileInfo(path).isFile() : m_files.at(i).contains(name.toLower(), name))
                return path;
        }
    }
    return {};
}

QStringList Folders::everyFile(const QString &name) const
{
    QStringList paths;
    for (const QString &directory : m_directories) {
        const QString path = QDir(directory).filePath(name);
        if (QFileInfo::exists(path) && !paths.contains(path))
            paths.append(path);
    }
    return paths;
}

QString Folders::similarFile(const QString &name) const
{
    for (int i = 0; i < m_directories.size(); ++i) {
        const auto file = m_files.at(i).constFind(name.toLower());
        if (file != m_files.at(i).constEnd())
            return QDir(m_directories.at(i)).filePath(*file);
    }
    return {};
}

QStringList Folders::fileNames() const
{
    QStringList names;
    for (const QMultiHash<QString, QString> &files : m_files)
        names += files.values();
    names.sort();
    names.removeDuplicates();
    return names;
}

LibrarySearch::LibrarySearch(const QStringList &libraries, const QStringList &tools)
    : m_libraries(libraries)
    , m_tools(tools)
{
}

const LibraryFile &LibrarySearch::read(const QString &path) const
{
    std::shared_ptr<const LibraryFile> &file = m_read[QFileInfo(path).canonicalFilePath()];
    if (!file)
        file = std::make_shared<const LibraryFile>(readLibrary(path));
    return *file;
}

FoundLibrary LibrarySearch::find(const QString &needed, const LibraryFile &file, const QString &path,
                                 const QStringList &inherited) const
{
    return file.format == LibraryFile::Format::Pe ? findPe(needed) : findElf(needed, file, path, inherited);
}

FoundLibrary LibrarySearch::findPe(const QString &needed) const
{
    const QString path = m_libraries.similarFile(needed);
    if (!path.isEmpty())
        return {FoundLibrary::State::Found, path, false};
    if (isWindowsLibrary(needed))
        return {FoundLibrary::State::Found, {}, true};
    return {mayBeOfWindows(needed) ? FoundLibrary::State::Unknown : FoundLibrary::State::Missing, {}, false};
}

FoundLibrary LibrarySearch::findElf(const QString &needed, const LibraryFile &file, const QString &path,
                                    const QStringList &inherited) const
{
    const auto found = [](const QString &library, bool isSystem) {
        return FoundLibrary{FoundLibrary::State::Found, library, isSystem};
    };
    if (needed.contains('/'))
        return QFileInfo::exists(needed) ? found(needed, false) : FoundLibrary();

    QStringList directories;
    if (file.runpath.isEmpty())
        directories = expandedPaths(file.rpath, path) + inherited;
    directories += m_libraries.directories();
    if (file.isNative)
        directories += QFile::decodeName(qgetenv("LD_LIBRARY_PATH")).split(':', Qt::SkipEmptyParts);
    directories += expandedPaths(file.runpath, path);
    for (const QString &directory : qAsConst(directories)) {
        const QString library = inDirectory(directory, needed, file);
        if (!library.isEmpty())
            return found(library, defaultDirectories().contains(directory));
    }
    return file.isNative ? findInSystem(needed, file) : FoundLibrary{FoundLibrary::State::Unknown, {}, true};
}

/// With -z nodefaultlib the loader does not look there, but what the host has loaded is there all the same.
FoundLibrary LibrarySearch::findInSystem(const QString &needed, const LibraryFile &file) const
{
    const bool isEverywhere = !file.avoidsSystem || isOfHosts(needed, file);
    const QString cached = systemCache().value(needed);
    const bool isElsewhere =
        !cached.startsWith(QLatin1String("/lib/")) && !cached.startsWith(QLatin1String("/usr/lib/"));
    if (!cached.isEmpty() && QFileInfo::exists(cached) && (isEverywhere || isElsewhere))
        return {FoundLibrary::State::Found, cached, true};
    if (!isEverywhere)
        return {};
    for (const QString &directory : defaultDirectories()) {
        const QString library = inDirectory(directory, needed, file);
        if (!library.isEmpty())
            return {FoundLibrary::State::Found, library, true};
    }
    return {};
}

bool LibrarySearch::isOfHosts(const QString &needed, const LibraryFile &file) const
{
    if (!m_ofHosts.isEmpty())
        return m_ofHosts.contains(needed);
    LibraryFile host;
    host.isNative = true;
    host.machine = file.machine;
    m_ofHosts = librariesOfHosts();
    for (int i = 0; i < m_ofHosts.size(); ++i) {
        const FoundLibrary library = findElf(m_ofHosts.at(i), host, {}, {});
        if (library.path.isEmpty())
            continue;
        m_ofHosts += read(library.path).needed;
        m_ofHosts.removeDuplicates();
    }
    return m_ofHosts.contains(needed);
}

QString LibrarySearch::inDirectory(const QString &directory, const QString &name,
                                   const LibraryFile &file) const
{
    const QString path = directory + '/' + name;
    if (file.isNative) {
        for (const QString &processor : loader().processors) {
            QString special = directory + QLatin1String("/glibc-hwcaps/") + processor + '/' + name;
            if (endsSearch(special, file.machine))
                return special;
        }
    }
    return endsSearch(path, file.machine) ? path : QString();
}

const LibraryKind &LibrarySearch::kindOf(const QString &path) const
{
    const auto known = m_kinds.constFind(path);
    if (known != m_kinds.constEnd())
        return *known;
    const LibraryFile beginning = readBeginning(path);
    return *m_kinds.insert(path, {beginning.format, beginning.machine});
}

bool LibrarySearch::endsSearch(const QString &path, const QString &machine) const
{
    if (!QFileInfo::exists(path) || !QFileInfo(path).isReadable())
        return false;
    const LibraryKind &kind = kindOf(path);
    return kind.format != LibraryFile::Format::Elf || kind.machine == machine;
}

/// What the loader's own index has, which only its own program reads.
const QHash<QString, QString> &LibrarySearch::systemCache() const
{
    if (m_systemCacheIsRead)
        return m_systemCache;
    m_systemCacheIsRead = true;
    constexpr int timeLimitInMilliseconds = 10000;
    QProcess process;
    process.start(QStringLiteral("/sbin/ldconfig"), {QStringLiteral("-p")});
    if (!process.waitForFinished(timeLimitInMilliseconds))
        return m_systemCache;
    static const QRegularExpression line(QStringLiteral(R"(^\t(\S+) \(([^)]*)\) => (.+)$)"),
                                         QRegularExpression::MultilineOption);
    const bool isWide = QSysInfo::WordSize == 64;
    QRegularExpressionMatchIterator matches =
        line.globalMatch(QFile::decodeName(process.readAllStandardOutput()));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString kind = match.captured(2);
        const bool fits =
            isWide == (kind.contains(QLatin1String("64")) && !kind.contains(QLatin1String("x32")));
        if (fits && !m_systemCache.contains(match.captured(1)))
            m_systemCache.insert(match.captured(1), match.captured(3));
    }
    return m_systemCache;
}

QStringList expandedPaths(const QStringList &paths, const QString &library)
{
    // Not that of the file which a link leads to.
    const QString origin = QFileInfo(QFileInfo(library).path()).canonicalFilePath();
    static const QRegularExpression lib(QStringLiteral(R"(\$(\{LIB\}|LIB\b))"));
    static const QRegularExpression platform(QStringLiteral(R"(\$(\{PLATFORM\}|PLATFORM\b))"));
    static const QRegularExpression folder(QStringLiteral(R"(\$(\{ORIGIN\}|ORIGIN\b))"));
    QStringList expanded;
    for (QString path : paths) {
        if (path.contains(lib) || path.contains(platform))
            path.replace(lib, loader().lib).replace(platform, loader().platform);
        expanded.append(path.replace(folder, QString(origin).replace('\\', QLatin1String("\\\\"))));
    }
    return expanded;
}

bool isOfManager(const QString &text)
{
    static const QRegularExpression own(
        QStringLiteral(R"(\b(lib)?pluginManger(Common)?\.(so\.\d+|dll)\b|QT[pP]luginsManger|\b_ZN6Common)"));
    return text.contains(own);
}

const QStringList &librariesOfHosts()
{
    static const QStringList libraries{QStringLiteral("libQt5Core.so.5"),
                                       QStringLiteral("libQt5Gui.so.5"),
                                       QStringLiteral("libQt5Widgets.so.5"),
                                       QStringLiteral("libglog.so.1"),
                                       QStringLiteral("libstdc++.so.6"),
                                       QStringLiteral("libc.so.6"),
                                       QStringLiteral("libm.so.6"),
                                       QStringLiteral("ld-linux-x86-64.so.2"),
                                       QStringLiteral(PLUGINCHECK_MANAGER_LIBRARY)};
    return libraries;
}

}

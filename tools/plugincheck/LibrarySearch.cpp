#include "LibrarySearch.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <iterator>

namespace PluginCheck {

namespace {

/// What a Windows of today has in its own folders, as far as plug-ins and Qt use it.
const char *const windowsLibraries[] = {"activeds",
                                        "advapi32",
                                        "advpack",
                                        "authz",
                                        "avicap32",
                                        "avrt",
                                        "bcrypt",
                                        "bcryptprimitives",
                                        "bthprops",
                                        "cabinet",
                                        "cfgmgr32",
                                        "clusapi",
                                        "comctl32",
                                        "comdlg32",
                                        "concrt140",
                                        "coremessaging",
                                        "credui",
                                        "crypt32",
                                        "cryptbase",
                                        "cryptui",
                                        "d2d1",
                                        "d3d10",
                                        "d3d10_1",
                                        "d3d11",
                                        "d3d12",
                                        "d3d9",
                                        "d3dcompiler_47",
                                        "dbgeng",
                                        "dbghelp",
                                        "dcomp",
                                        "ddraw",
                                        "dhcpcsvc",
                                        "dinput8",
                                        "dnsapi",
                                        "dsound",
                                        "dwmapi",
                                        "dwrite",
                                        "dxgi",
                                        "dxva2",
                                        "evr",
                                        "fltlib",
                                        "fwpuclnt",
                                        "gdi32",
                                        "gdi32full",
                                        "gdiplus",
                                        "glu32",
                                        "hid",
                                        "hlink",
                                        "httpapi",
                                        "icmp",
                                        "imagehlp",
                                        "imm32",
                                        "iphlpapi",
                                        "kernel32",
                                        "kernelbase",
                                        "ktmw32",
                                        "loadperf",
                                        "mf",
                                        "mfplat",
                                        "mfreadwrite",
                                        "mpr",
                                        "msacm32",
                                        "mscms",
                                        "msctf",
                                        "msdmo",
                                        "msi",
                                        "msimg32",
                                        "msvcp60",
                                        "msvcp_win",
                                        "msvcrt",
                                        "msvfw32",
                                        "mswsock",
                                        "ncrypt",
                                        "netapi32",
                                        "newdev",
                                        "normaliz",
                                        "ntdll",
                                        "ntdsapi",
                                        "odbc32",
                                        "ole32",
                                        "oleacc",
                                        "oleaut32",
                                        "oledlg",
                                        "opengl32",
                                        "pdh",
                                        "powrprof",
                                        "prntvpt",
                                        "propsys",
                                        "psapi",
                                        "qwave",
                                        "rasapi32",
                                        "resutils",
                                        "rpcrt4",
                                        "rstrtmgr",
                                        "sechost",
                                        "secur32",
                                        "sensapi",
                                        "setupapi",
                                        "sfc",
                                        "shcore",
                                        "shell32",
                                        "shlwapi",
                                        "slc",
                                        "snmpapi",
                                        "sspicli",
                                        "tapi32",
                                        "tdh",
                                        "ucrtbase",
                                        "uiautomationcore",
                                        "urlmon",
                                        "user32",
                                        "userenv",
                                        "usp10",
                                        "uxtheme",
                                        "version",
                                        "vssapi",
                                        "wbemuuid",
                                        "wdapi",
                                        "webservices",
                                        "wer",
                                        "wevtapi",
                                        "wiaservc",
                                        "win32u",
                                        "windowscodecs",
                                        "winhttp",
                                        "wininet",
                                        "winmm",
                                        "winscard",
                                        "winspool.drv",
                                        "wintrust",
                                        "wlanapi",
                                        "wldap32",
                                        "wmi",
                                        "ws2_32",
                                        "wsock32",
                                        "wtsapi32",
                                        "xinput1_4",
                                        "xmllite"};

bool isWindowsLibrary(const QString &name)
{
    QString base = name.toLower();
    if (base.startsWith(QLatin1String("api-ms-win-")) || base.startsWith(QLatin1String("ext-ms-")))
        return true;
    if (base.endsWith(QLatin1String(".dll")))
        base.chop(4);
    return std::any_of(std::begin(windowsLibraries), std::end(windowsLibraries),
                       [&](const char *library) { return base == QLatin1String(library); });
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
    return {};
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
        const QString library = inDirectory(directory, needed, file.machine);
        if (!library.isEmpty())
            return found(library, defaultDirectories().contains(directory));
    }
    if (!file.isNative)
        return {FoundLibrary::State::Unknown, {}, true};

    const QString cached = systemCache().value(needed);
    if (!cached.isEmpty() && QFileInfo::exists(cached))
        return found(cached, true);
    for (const QString &directory : defaultDirectories()) {
        const QString library = inDirectory(directory, needed, file.machine);
        if (!library.isEmpty())
            return found(library, true);
    }
    return {};
}

/// The loader passes over files for other machines.
QString LibrarySearch::inDirectory(const QString &directory, const QString &name,
                                   const QString &machine) const
{
    const QString path = directory + '/' + name;
    return machineOf(path) == machine ? path : QString();
}

const QString &LibrarySearch::machineOf(const QString &path) const
{
    const auto known = m_machines.constFind(path);
    return known == m_machines.constEnd() ? *m_machines.insert(path, machineOfFile(path)) : *known;
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
    const QString origin = QFileInfo(library).canonicalPath();
    QStringList expanded;
    for (QString path : paths) {
        path.replace(QLatin1String("${ORIGIN}"), origin).replace(QLatin1String("$ORIGIN"), origin);
        expanded.append(path);
    }
    return expanded;
}

}

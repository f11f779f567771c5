#pragma once

#include "LibraryFile.h"

#include <QtCore/QHash>

#include <memory>

namespace PluginCheck {

/// Where a library was found that another one needs.
struct FoundLibrary
{
    enum class State { Found, Missing, Unknown };

    State state = State::Missing;
    /// Empty for what Windows itself brings.
    QString path;
    /// Whether it is one of the system's, whose own needs the system cares for.
    bool isSystem = false;
};

/// Folders, the order of which counts, and the files in them.
class Folders
{
public:
    explicit Folders(const QStringList &directories);

    const QStringList &directories() const { return m_directories; }

    /// Returns the path of the first file of one of these names, with its case; empty if there is none. Looks
    /// for all names in a folder before the next one.
    QString exactFile(const QStringList &names) const;

    /// Returns the paths of that name that have something, whatever it is, in all folders.
    QStringList everyFile(const QString &name) const;

    /// Returns the path of the first file of that name without regard to case.
    QString similarFile(const QString &name) const;

    QStringList fileNames() const;

private:
    QStringList m_directories;
    QVector<QMultiHash<QString, QString>>
        m_files; // For each folder: names in small letters, and as they are.
};

/// What a library is built for.
struct LibraryKind
{
    LibraryFile::Format format = LibraryFile::Format::None;
    QString machine;

    bool operator==(const LibraryKind &other) const
    {
        return format == other.format && machine == other.machine;
    }
};

/**
 * Finds libraries by the rules of the platform that a file is for: of ELF files in rpaths, the folders of the
 * loader, LD_LIBRARY_PATH, runpaths, and where the system's loader looks; of PE files in the folders of the
 * loader and among those that Windows brings. The system's folders are asked only for files of this machine.
 */
class LibrarySearch
{
public:
    /// `tools` are the folders in which Qt finds plug-ins, where the system's loader does not look.
    LibrarySearch(const QStringList &libraries, const QStringList &tools);

    const Folders &libraries() const { return m_libraries; }
    const Folders &tools() const { return m_tools; }

    /// Finds a library that `file`, which lies at `path`, needs. `inherited` are the rpaths of those by which
    /// it was itself found.
    FoundLibrary find(const QString &needed, const LibraryFile &file, const QString &path,
                      const QStringList &inherited) const;

    /// Reads a file, once for each call of the program.
    const LibraryFile &read(const QString &path) const;

    /// Reads the beginning of a file, once for each call of the program.
    const LibraryKind &kindOf(const QString &path) const;

    /// Whether the loader of a machine that finds this name looks no further, be the file good or not. It
    /// passes over libraries for other machines, and over what it cannot open.
    bool endsSearch(const QString &path, const QString &machine) const;

private:
    FoundLibrary findElf(const QString &needed, const LibraryFile &file, const QString &path,
                         const QStringList &inherited) const;
    FoundLibrary findPe(const QString &needed) const;
    FoundLibrary findInSystem(const QString &needed, const LibraryFile &file) const;
    QString inDirectory(const QString &directory, const QString &name, const LibraryFile &file) const;
    bool isOfHosts(const QString &needed, const LibraryFile &file) const;
    const QHash<QString, QString> &systemCache() const;

    const Folders m_libraries;
    const Folders m_tools;
    mutable QHash<QString, std::shared_ptr<const LibraryFile>> m_read;
    mutable QHash<QString, LibraryKind> m_kinds;
    mutable QStringList m_ofHosts;
    mutable QHash<QString, QString> m_systemCache;
    mutable bool m_systemCacheIsRead = false;
};

/// Returns the rpaths that what a library needs is looked for in, with what the loader puts in for $ORIGIN,
/// $LIB and $PLATFORM.
QStringList expandedPaths(const QStringList &paths, const QString &library);

/// Whether a name is that of a library of the manager or of something in it, or a reason of the loader is
/// about one.
bool isOfManager(const QString &text);

/// What each host has loaded before its plug-ins, not counting what these need.
const QStringList &librariesOfHosts();

}

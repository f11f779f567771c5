#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace PluginCheck {

/// A function or variable that a library takes from another one.
struct ImportedSymbol
{
    std::string name;
    /// The library that it is taken from: always on Windows, nowhere else.
    QString library;
    /// Whether the library can do without.
    bool isWeak = false;
    /// The version that it is taken in; empty if any will do.
    std::string version = {};
};

/// A version of another library that a library needs.
struct ImportedVersion
{
    QString library;
    std::string version;
};

/// What a library's file tells without being loaded.
struct LibraryFile
{
    enum class Format { None, Elf, Pe };
    enum class Problem { None, Unreadable, TooLarge, NoLibrary, Truncated, Damaged };

    Problem problem = Problem::None;
    /// More of the problem, for people.
    QString detail;

    Format format = Format::None;
    QString machine;
    /// Whether this process could load a library of that machine.
    bool isNative = false;

    QStringList needed;
    QStringList rpath;
    QStringList runpath;
    /// Whether the loader must not look for what it needs in the system's folders.
    bool avoidsSystem = false;
    /// With the versions in which each is there; an empty one where it is there without a version.
    std::unordered_map<std::string, std::vector<std::string>> exports;
    /// The DLLs that have what a DLL only passes on.
    std::unordered_map<std::string, QString> forwards;
    /// Those of the exports that cannot be called.
    std::unordered_set<std::string> data;
    QVector<ImportedSymbol> imports;
    QVector<ImportedVersion> importedVersions;
    std::unordered_set<std::string> definedVersions;
    /// Whether a symbol that is taken by name and version is found here.
    bool provides(const ImportedSymbol &symbol) const;

    /// Whether all that it exports is known, so that what is not there is missing.
    bool exportsAreComplete = false;

    /// Whether it has what QPluginLoader asks for.
    bool isQtPlugin = false;
    /// The version of Qt that a Qt plug-in was built with, as major * 256 + minor; 0 where it is not told.
    int qtPluginVersion = 0;
    bool isQtDebug = false;
    /// The stamp that pluginMangerSdk.h makes; empty if there is none.
    QByteArray stamp;
    /// The version in the resources of a PE file, "5.15.8.0"; empty if there is none.
    QString resourceVersion;
};

/// Whether this build can read what a library exports and needs.
bool knowsLibraries();

/// Reads a file. Never throws; what is wrong is told by `problem`.
LibraryFile readLibrary(const QString &path);

/// The same for what was read of a file.
LibraryFile readLibrary(const QByteArray &content);

#ifdef Q_OS_WIN
inline constexpr auto nativeFormat = LibraryFile::Format::Pe;
#else
inline constexpr auto nativeFormat = LibraryFile::Format::Elf;
#endif

/// What the machine is called that this process runs on.
QString nativeMachine();

/// Reads only the beginning of a file, for its format and machine.
LibraryFile readBeginning(const QString &path);

/// Returns the format of a file. Reads only its beginning.
LibraryFile::Format formatOfFile(const QString &path);

}

#pragma once

#include "pluginMangerGlobal.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

class QLibrary;
class QPluginLoader;

/**
 * The tables of one manager: what its configuration files describe, and what it has loaded.
 *
 * A plain class without a lock, for one thread. Its destruction frees the tables only: it neither unloads
 * the libraries nor deletes the loaders that are still listed. A copy lists the same loaders.
 */
class PLUGINMANGER_EXPORT QTPluginsMangerPrivate
{
public:
    /**
     * Tells whether everything that `filepath` depends on is described, of the required version, and
     * itself sound. Every reason against it is written to Qt's debug stream.
     *
     * Only the three description tables are consulted, never the disk nor what is loaded. `filepath` is
     * looked up as given, and a key without an entry in `m_dependencies` passes. The loaders ask with
     * the library file name ("File_Process.dll"), so names that are listed without ".dll" always pass.
     *
     * A dependency that leads back to a plug-in under examination fails. The check ends for every
     * content of the tables, and its use of the stack does not grow with them. Its time grows with the
     * number of dependencies, and where some fail with the number of lines that they cause.
     */
    bool check(const QString &filepath) const;

    /// Plug-in name to the name itself.
    QHash<QString, QVariant> m_names;

    /// Plug-in name to version, as the configuration file's value converts.
    QHash<QString, QVariant> m_versions;

    /// Plug-in name to the list of its dependencies, each a map with "name" and "version".
    QHash<QString, QVariantList> m_dependencies;

    /// Loaded plain libraries, by the path that they were loaded with. Owned; deleted when unloaded.
    QHash<QString, QLibrary *> m_libraries;

    /// Loaded Qt plug-ins, by the path that they were loaded with. Owned; deleted when unloaded. An
    /// unloaded plug-in stays listed with a null pointer until it is loaded again.
    QHash<QString, QPluginLoader *> m_loaders;
};

/**
 * What both managers share: reading configuration files, and loading, finding and unloading plug-in
 * libraries. It holds no state; each operation is given the tables to work on.
 *
 * All operations belong to the user-interface thread, since a failed load shows a message box. None
 * throws, and none returns a failure: failures are logged, and a load succeeded when the library is
 * found afterwards.
 */
class PLUGINMANGER_EXPORT QTpluginsMangerBase : public QObject
{
    Q_OBJECT

public:
    /// Makes a base without tables of its own. `parent` is its parent as a QObject.
    explicit QTpluginsMangerBase(QObject *parent = nullptr);
    ~QTpluginsMangerBase() override;

protected:
    /**
     * Adds what the JSON file at `filePath` lists to the description tables. An entry that is already
     * there under the same name is replaced; nothing else is removed. A file that is missing, cannot be
     * opened or is not JSON adds nothing and is logged as an error.
     */
    void readPluginConfig(QTPluginsMangerPrivate &tables, const QString &filePath);

    /**
     * Loads the plain library `path` and lists it in `m_libraries` under exactly that text. A library
     * that is already listed is unloaded first, and its loader deleted, even if the new load then fails;
     * one that does not let itself be unloaded, since it has another owner, only loses its place in the
     * table.
     *
     * A name that is no library name, and a failed dependency check, are logged and change nothing. A
     * failed load is logged with the loader's reason and shown in a modal message box; its loader is kept,
     * unlisted, for the rest of the run.
     */
    void loadLibraryPlugin(QTPluginsMangerPrivate &tables, const QString &path);

    /**
     * Loads the Qt plug-in `path` and lists it in `m_loaders` under exactly that text, as
     * loadLibraryPlugin() does. A plug-in whose root object is not a `PluginInterface` is unloaded again
     * without a word.
     *
     * Unloading the listed plug-in first takes its path out of `m_libraries`, not out of `m_loaders`: a
     * table set that loads both kinds under one path loses sight of the plain library.
     */
    void loadQtPlugin(QTPluginsMangerPrivate &tables, const QString &path);

    /// Returns the library that was loaded as `path`, or null. The tables keep ownership, and delete it when
    /// that path is loaded again or unloaded.
    QLibrary *findLibrary(const QTPluginsMangerPrivate &tables, const QString &path) const;

    /// Returns the loader of the Qt plug-in `name`, given without ".dll", or null. The tables keep
    /// ownership, and delete it when that plug-in is loaded again or unloaded.
    QPluginLoader *findQtPlugin(const QTPluginsMangerPrivate &tables, const QString &name) const;

    /// Unloads every listed library. One that cannot be unloaded stays listed.
    void unloadAllLibraries(QTPluginsMangerPrivate &tables);

    /// Unloads every listed Qt plug-in. Each stays listed, with a null pointer once it is unloaded; its path
    /// is taken out of `m_libraries`, as loadQtPlugin() does.
    void unloadAllQtPlugins(QTPluginsMangerPrivate &tables);
};

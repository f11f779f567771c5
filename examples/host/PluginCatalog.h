#pragma once

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <memory>

class QTpluginsManger4CAM;

/// A library that a configuration file lists, and what became of it.
struct CataloguedPlugin
{
    enum Set { Cam, Dfm, Desktop };
    enum State { NotLoaded, KeptOut, Suspicious, Loaded };

    Set set;
    QString name;
    /// What the list asks for, and what the library says of itself.
    QString wantedVersion;
    QString ownVersion;
    QVariantList dependencies;
    /// Empty when there is none.
    QString path;
    /// What is wrong with the file itself.
    QString damage;
    bool isListed = false;
    State state = NotLoaded;
    /// What is wrong, and what to do about it.
    QString trouble;

    QString library() const { return name + QStringLiteral(".dll"); }
};

/**
 * What the three configuration files list, looked at before the managers load it and judged afterwards.
 *
 * The managers load whatever their lists name, and tell in the log what did not load. This says it in words
 * for those who put a release together.
 */
class PluginCatalog : public QObject
{
    Q_OBJECT

public:
    /// `base` holds the folder "pluginconfig"; the libraries lie in `folders`.
    PluginCatalog(const QString &base, const QStringList &folders);

    /**
     * The directory that the managers are to read their lists in: `base`, or when a library's file is damaged
     * one whose lists leave that library out, since loading it would end the process.
     */
    QString safeBase();

    /**
     * Looks at the set's files anew, which may have been replaced. False when one is damaged now that the
     * managers know of: the set must not be loaded again then, since the desktop manager keeps names that a
     * list no longer has.
     */
    bool isFitToReload(CataloguedPlugin::Set set);
    /// Forgets what is known of the set's plug-ins, which are about to be loaded again.
    /// Returns their libraries.
    QStringList forget(CataloguedPlugin::Set set);

    /// Finds out what is loaded now, and why the rest is not.
    void judge(const QTpluginsManger4CAM &cam);
    /// The library is empty when it is not known, and without ".dll" for those that go by their names.
    void blame(QString library, const QString &what);

    const QVector<CataloguedPlugin> &plugins() const { return m_plugins; }
    QStringList troubled() const;
    /// How many libraries the lists have. Two lists may have the same.
    int libraryCount() const;
    /// What is nobody's fault that is known.
    const QStringList &otherTroubles() const { return m_otherTroubles; }
    QStringList desktopPlugins() const;

    static QString setName(CataloguedPlugin::Set set);
    static QString configFile(CataloguedPlugin::Set set);
    static QString stateText(CataloguedPlugin::State state);

signals:
    void changed();

private:
    void readList(CataloguedPlugin::Set set);
    void examine(CataloguedPlugin &plugin) const;
    void writeSafeList(CataloguedPlugin::Set set, const QString &folder) const;
    void judge(CataloguedPlugin &plugin, bool loaded) const;
    QString whyNotLoaded(const CataloguedPlugin &plugin) const;
    QString whySuspicious(const CataloguedPlugin &plugin) const;

    const QString m_base;
    const QStringList m_folders;
    std::unique_ptr<QTemporaryDir> m_safeBase;
    QVector<CataloguedPlugin> m_plugins;
    QMap<QString, QString> m_blamed;
    QStringList m_otherTroubles;
};

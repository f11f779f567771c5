#include "PluginCatalog.h"

#include "LibraryFile.h"

#include <pluginManger4CAM.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>
#include <QtCore/QSet>

#include <algorithm>

namespace {

/// The library's own reader, so that a host sees a list as the managers do.
class ListReader : public QTpluginsMangerBase
{
public:
    QTPluginsMangerPrivate read(const QString &file)
    {
        QTPluginsMangerPrivate tables;
        if (QFile::exists(file))
            readPluginConfig(tables, file);
        return tables;
    }
};

/// Asks the library itself. It is loaded already, so this only adds an owner for as long as it takes.
QString versionOf(const QString &path)
{
    QLibrary library(path);
    if (!library.load())
        return {};
    using Version = const char *(*)();
    const auto version = reinterpret_cast<Version>(library.resolve("pluginVersion"));
    const QString text = version ? QString::fromLatin1(version()) : QString();
    library.unload();
    return text;
}

}

PluginCatalog::PluginCatalog(const QString &base, const QStringList &folders)
    : m_base(base)
    , m_folders(folders)
{
    for (const auto set : {CataloguedPlugin::Cam, CataloguedPlugin::Dfm, CataloguedPlugin::Desktop})
        readList(set);
}

QString PluginCatalog::safeBase()
{
    const auto isKeptOut = [](const CataloguedPlugin &plugin) {
        return plugin.state == CataloguedPlugin::KeptOut;
    };
    for (CataloguedPlugin &plugin : m_plugins)
        plugin.isListed = plugin.isListed || !isKeptOut(plugin);
    if (!m_safeBase && std::none_of(m_plugins.begin(), m_plugins.end(), isKeptOut))
        return m_base;
    if (!m_safeBase)
        m_safeBase = std::make_unique<QTemporaryDir>();
    const QString folder = m_safeBase->filePath(QStringLiteral("pluginconfig"));
    QDir().mkpath(folder);
    for (const auto set : {CataloguedPlugin::Cam, CataloguedPlugin::Dfm, CataloguedPlugin::Desktop})
        writeSafeList(set, folder);
    return m_safeBase->path();
}

bool PluginCatalog::isFitToReload(CataloguedPlugin::Set set)
{
    bool isFit = true;
    for (CataloguedPlugin &plugin : m_plugins) {
        if (plugin.set != set)
            continue;
        examine(plugin);
        isFit = isFit && (plugin.damage.isEmpty() || !plugin.isListed);
    }
    return isFit;
}

QStringList PluginCatalog::forget(CataloguedPlugin::Set set)
{
    QStringList libraries;
    for (CataloguedPlugin &plugin : m_plugins) {
        if (plugin.set != set)
            continue;
        plugin.ownVersion.clear();
        m_blamed.remove(plugin.library());
        libraries.append(plugin.library());
    }
    return libraries;
}

void PluginCatalog::judge(const QTpluginsManger4CAM &cam)
{
    for (CataloguedPlugin &plugin : m_plugins) {
        const bool loaded = plugin.set == CataloguedPlugin::Desktop
                                ? QPluginLoader(plugin.library()).isLoaded()
                                : cam.plugin(plugin.library()) != nullptr;
        judge(plugin, loaded);
    }
    emit changed();
}

void PluginCatalog::blame(QString library, const QString &what)
{
    if (library.isEmpty())
        m_otherTroubles.append(what);
    else if (!library.endsWith(QLatin1String(".dll")))
        library.append(QStringLiteral(".dll"));
    m_blamed.insert(library, what);
    for (CataloguedPlugin &plugin : m_plugins) {
        if (plugin.library() == library)
            judge(plugin, plugin.state >= CataloguedPlugin::Suspicious);
    }
    emit changed();
}

QStringList PluginCatalog::troubled() const
{
    QStringList names;
    for (const CataloguedPlugin &plugin : m_plugins) {
        if (plugin.state != CataloguedPlugin::Loaded && !names.contains(plugin.name))
            names.append(plugin.name);
    }
    if (!m_otherTroubles.isEmpty())
        names.append(tr("one that cannot be told"));
    return names;
}

int PluginCatalog::libraryCount() const
{
    QSet<QString> names;
    for (const CataloguedPlugin &plugin : m_plugins)
        names.insert(plugin.name);
    return names.size();
}

QStringList PluginCatalog::desktopPlugins() const
{
    QStringList names;
    for (const CataloguedPlugin &plugin : m_plugins) {
        if (plugin.set == CataloguedPlugin::Desktop)
            names.append(plugin.name);
    }
    return names;
}

QString PluginCatalog::setName(CataloguedPlugin::Set set)
{
    return QStringList{tr("CAM"), tr("DFM"), tr("Desktop")}.value(set);
}

QString PluginCatalog::configFile(CataloguedPlugin::Set set)
{
    return QStringList{QStringLiteral("pluginconfig4CAM.json"), QStringLiteral("pluginconfig4DFM.json"),
                       QStringLiteral("pluginconfig.json")}
        .value(set);
}

QString PluginCatalog::stateText(CataloguedPlugin::State state)
{
    return QStringList{tr("Not loaded"), tr("Kept out"), tr("Loaded, with trouble"), tr("Loaded")}.value(
        state);
}

void PluginCatalog::readList(CataloguedPlugin::Set set)
{
    const QString file = QDir(m_base).filePath(QStringLiteral("pluginconfig/") + configFile(set));
    const QTPluginsMangerPrivate tables = ListReader().read(file);
    QStringList names = tables.m_names.keys();
    names.sort(Qt::CaseInsensitive);
    for (const QString &name : names) {
        CataloguedPlugin plugin{set,
                                name,
                                tables.m_versions.value(name).toString(),
                                {},
                                tables.m_dependencies.value(name),
                                {},
                                {},
                                false,
                                CataloguedPlugin::NotLoaded,
                                {}};
        examine(plugin);
        m_plugins.append(plugin);
    }
}

void PluginCatalog::examine(CataloguedPlugin &plugin) const
{
    plugin.path.clear();
    for (const QString &folder : m_folders) {
        const QString path = QDir(folder).absoluteFilePath(plugin.library());
        if (plugin.path.isEmpty() && QFile::exists(path))
            plugin.path = QDir::cleanPath(path);
    }
    plugin.damage = plugin.path.isEmpty() ? QString() : LibraryFile::damage(plugin.path);
    const bool isLoaded = plugin.state >= CataloguedPlugin::Suspicious;
    if (!isLoaded)
        plugin.state = plugin.damage.isEmpty() ? CataloguedPlugin::NotLoaded : CataloguedPlugin::KeptOut;
}

void PluginCatalog::writeSafeList(CataloguedPlugin::Set set, const QString &folder) const
{
    QJsonArray list;
    for (const CataloguedPlugin &plugin : m_plugins) {
        if (plugin.set == set && plugin.state != CataloguedPlugin::KeptOut)
            list.append(QJsonObject{{"name", plugin.name},
                                    {"version", plugin.wantedVersion},
                                    {"dependencies", QJsonArray::fromVariantList(plugin.dependencies)}});
    }
    QFile file(QDir(folder).filePath(configFile(set)));
    if (file.open(QIODevice::WriteOnly))
        file.write(QJsonDocument(QJsonObject{{"pluginList", list}}).toJson());
}

void PluginCatalog::judge(CataloguedPlugin &plugin, bool loaded) const
{
    if (!plugin.damage.isEmpty() && !loaded) {
        plugin.state = CataloguedPlugin::KeptOut;
        const QString remedy = plugin.set == CataloguedPlugin::Cam
                                   ? tr("%1 Copy %2 again from the release, then start again.")
                                   : tr("%1 Copy %2 again from the release, then reload.");
        plugin.trouble = remedy.arg(plugin.damage, plugin.library());
        return;
    }
    // To ask a library is to load it once more.
    if (loaded && plugin.ownVersion.isEmpty() && plugin.damage.isEmpty())
        plugin.ownVersion = versionOf(plugin.path);
    plugin.trouble = loaded ? whySuspicious(plugin) : whyNotLoaded(plugin);
    plugin.state = !loaded                    ? CataloguedPlugin::NotLoaded
                   : plugin.trouble.isEmpty() ? CataloguedPlugin::Loaded
                                              : CataloguedPlugin::Suspicious;
}

QString PluginCatalog::whyNotLoaded(const CataloguedPlugin &plugin) const
{
    if (plugin.path.isEmpty())
        return tr("%1 is not in %2. Put it there, or take it out of %3.")
            .arg(plugin.library(), QDir::toNativeSeparators(m_folders.first()), configFile(plugin.set));
    QLibrary library(plugin.path);
    if (library.load()) {
        library.unload();
        return tr("%1 can be loaded, but was refused. Is it a plug-in for this set?").arg(plugin.library());
    }
    return tr("The system refuses it: %1").arg(library.errorString());
}

QString PluginCatalog::whySuspicious(const CataloguedPlugin &plugin) const
{
    QStringList troubles;
    if (!plugin.damage.isEmpty())
        troubles.append(tr("What is loaded works, but its file was replaced since. %1 Copy %2 again from the "
                           "release, then reload.")
                            .arg(plugin.damage, plugin.library()));
    if (plugin.ownVersion != plugin.wantedVersion)
        troubles.append(tr("The file is version %1, %2 asks for %3. Install %3, or correct the list.")
                            .arg(plugin.ownVersion.isEmpty() ? tr("unknown") : plugin.ownVersion,
                                 configFile(plugin.set), plugin.wantedVersion));
    for (const QVariant &item : plugin.dependencies) {
        const QVariantMap dependency = item.toMap();
        const QString name = dependency.value(QStringLiteral("name")).toString();
        const QString version = dependency.value(QStringLiteral("version")).toString();
        const auto found = std::find_if(m_plugins.begin(), m_plugins.end(),
                                        [&](const CataloguedPlugin &other) { return other.name == name; });
        if (found == m_plugins.end())
            troubles.append(tr("It needs %1 %2, which no list has. Add it.").arg(name, version));
        else if (found->wantedVersion != version)
            troubles.append(tr("It needs %1 %2, but %3 has %4. Make both the same.")
                                .arg(name, version, configFile(found->set), found->wantedVersion));
    }
    if (m_blamed.contains(plugin.library()))
        troubles.append(tr("%1 Tell its author; until then go without what it shows.")
                            .arg(m_blamed.value(plugin.library())));
    return troubles.join(QLatin1Char(' '));
}

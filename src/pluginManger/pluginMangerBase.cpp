#include "pluginMangerBase.h"

#include "PluginInterface.h"
#include "private/libraryFile_p.h"
#include "private/logTexts_p.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>
#include <QtCore/QStringBuilder>
#include <QtCore/QStringList>
#include <QtWidgets/QMessageBox>

#include <glog/logging.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <unordered_map>
#include <vector>

namespace LogTexts = PluginMangerInternal::LogTexts;
using LogTexts::toGbk;

namespace {

/**
 * One outer dependency check.
 *
 * It does what a plain recursion does and writes the same lines, but keeps its own stack, so that a long
 * chain of plug-ins cannot overflow the thread's, and walks no sound plug-in twice, so that a lattice of
 * them costs no more than its edges. What fails is walked again for each plug-in that needs it, because
 * every one of its lines is wanted each time. Only what leads into a cycle is not: there a recursion
 * would never return.
 */
class DependencyWalk
{
public:
    DependencyWalk(const QTPluginsMangerPrivate &tables, const char *function)
        : m_tables(tables)
        , m_function(function)
    {
    }

    bool isSound(const QString &key);

private:
    enum class State { Unknown, Walking, Sound, Circular };

    struct Plugin
    {
        QString key;
        QVariant name;
        std::optional<QVariant> version = std::nullopt;
        State state = State::Unknown;
        std::size_t level = 0;
    };

    struct Level
    {
        std::size_t plugin;
        QVariantList dependencies;
        int next = 0;
        bool sound = true;
        bool circular = false;
    };

    void listPlugins();
    std::size_t placeOf(const QString &key);
    std::optional<std::size_t> find(const QVariant &name) const;
    const QVariant &versionOf(Plugin &plugin) const;
    void enter(std::size_t place);
    void leave();
    void examine(const QVariantMap &dependency);
    void examineSoundness(const QVariant &name, std::size_t place);
    void reportCorrupted(const QVariant &name, const QString &key) const;
    void reportCircular(const QVariant &name, const Plugin &plugin) const;

    const QTPluginsMangerPrivate &m_tables;
    const char *const m_function;
    std::vector<Level> m_levels;
    std::vector<Plugin>
        m_plugins; // In the order of m_names; last, where it is not among them, what is checked.
    std::size_t m_named = 0;
    std::unordered_map<QString, std::size_t> m_placesByName;
    bool m_namesAreTexts = true;
};

bool DependencyWalk::isSound(const QString &key)
{
    if (m_tables.m_dependencies.value(key).isEmpty())
        return true;

    listPlugins();
    enter(placeOf(key));
    for (;;) {
        Level &level = m_levels.back();
        if (level.next < level.dependencies.size())
            examine(level.dependencies.at(level.next++).toMap());
        else if (m_levels.size() > 1)
            leave();
        else
            return level.sound;
    }
}

/// Lists the described plug-ins once, so that each dependency then takes a single look-up.
void DependencyWalk::listPlugins()
{
    m_named = std::size_t(m_tables.m_names.size());
    m_plugins.reserve(m_named + 1);
    m_placesByName.reserve(m_named);
    for (auto entry = m_tables.m_names.constBegin(); entry != m_tables.m_names.constEnd(); ++entry) {
        // Of equal names the first has the place.
        m_placesByName.emplace(entry->toString(), m_plugins.size());
        m_namesAreTexts = m_namesAreTexts && entry->userType() == QMetaType::QString;
        m_plugins.push_back({entry.key(), *entry});
    }
}

std::size_t DependencyWalk::placeOf(const QString &key)
{
    const auto plugin = std::find_if(m_plugins.begin(), m_plugins.end(),
                                     [&](const Plugin &candidate) { return candidate.key == key; });
    if (plugin != m_plugins.end())
        return std::size_t(std::distance(m_plugins.begin(), plugin));
    m_plugins.push_back({key, {}});
    return m_named;
}

/// Whether a text equals this variant just when it equals the variant's own text.
bool equalsTextAsText(const QVariant &value)
{
    const int type = value.userType();
    return type == QMetaType::QString || type == QMetaType::Double || type == QMetaType::Bool;
}

std::optional<std::size_t> DependencyWalk::find(const QVariant &name) const
{
    if (m_namesAreTexts && equalsTextAsText(name)) {
        const auto place = m_placesByName.find(name.toString());
        return place == m_placesByName.end() ? std::nullopt : std::make_optional(place->second);
    }
    for (std::size_t place = 0; place < m_named; ++place) {
        if (m_plugins[place].name == name)
            return place;
    }
    return std::nullopt;
}

const QVariant &DependencyWalk::versionOf(Plugin &plugin) const
{
    if (!plugin.version)
        plugin.version = m_tables.m_versions.value(plugin.key);
    return *plugin.version;
}

void DependencyWalk::enter(std::size_t place)
{
    Plugin &plugin = m_plugins[place];
    plugin.state = State::Walking;
    plugin.level = m_levels.size();
    m_levels.push_back({place, m_tables.m_dependencies.value(plugin.key)});
}

void DependencyWalk::leave()
{
    const Level done = m_levels.back();
    m_levels.pop_back();

    Plugin &plugin = m_plugins[done.plugin];
    if (done.sound) {
        plugin.state = State::Sound;
        return;
    }
    plugin.state = done.circular ? State::Circular : State::Unknown;
    Level &dependent = m_levels.back();
    dependent.sound = false;
    dependent.circular = dependent.circular || done.circular;
    const QVariantMap dependency = dependent.dependencies.at(dependent.next - 1).toMap();
    reportCorrupted(dependency.value(QStringLiteral("name")), plugin.key);
}

void DependencyWalk::examine(const QVariantMap &dependency)
{
    const QVariant name = dependency.value(QStringLiteral("name"));
    const QVariant version = dependency.value(QStringLiteral("version"));

    const std::optional<std::size_t> place = find(name);
    if (!place) {
        m_levels.back().sound = false;
        qDebug() << m_function << " Missing dependency:" << name.toString() << "for plugin" << QString();
        return;
    }
    Plugin &plugin = m_plugins[*place];
    const QVariant &found = versionOf(plugin);
    if (found != version) {
        m_levels.back().sound = false;
        qDebug() << m_function << "Version mismatch:" << name.toString() << "version" << found.toString()
                 << "but" << version.toString() << "required for plugin" << plugin.key;
        return;
    }
    examineSoundness(name, *place);
}

void DependencyWalk::examineSoundness(const QVariant &name, std::size_t place)
{
    const Plugin &plugin = m_plugins[place];
    if (plugin.state == State::Unknown) {
        enter(place);
        return;
    }
    if (plugin.state == State::Sound)
        return;

    m_levels.back().sound = false;
    m_levels.back().circular = true;
    if (plugin.state == State::Walking)
        reportCircular(name, plugin);
    else
        reportCorrupted(name, plugin.key);
}

void DependencyWalk::reportCorrupted(const QVariant &name, const QString &key) const
{
    qDebug() << m_function << "Corrupted dependency:" << name.toString() << "for plugin" << key;
}

void DependencyWalk::reportCircular(const QVariant &name, const Plugin &plugin) const
{
    // A long way round is shown by its ends: enough to find it, and the lines stay bounded.
    constexpr std::size_t shownAtEachEnd = 8;
    QStringList way;
    for (std::size_t level = plugin.level; level < m_levels.size(); ++level) {
        if (level == plugin.level + shownAtEachEnd && level + shownAtEachEnd < m_levels.size()) {
            way.append(QStringLiteral("..."));
            level = m_levels.size() - shownAtEachEnd;
        }
        way.append(m_plugins[m_levels[level].plugin].key);
    }
    way.append(plugin.key);
    qDebug() << m_function << "Circular dependency:" << name.toString() << "for plugin" << plugin.key
             << "by way of" << way.join(QStringLiteral(" -> "));
}

QVariantList toVariantList(const QJsonArray &array);

/// Converts as Qt does, but makes every number a double, also a whole one, which Qt hands over as an integer:
/// versions are compared as variants, and the double 2 equals the text "2.0" while the integer does not.
QVariant toVariant(const QJsonValue &value)
{
    if (value.isDouble())
        return value.toDouble();
    if (value.isArray())
        return toVariantList(value.toArray());
    if (!value.isObject())
        return value.toVariant();
    const QJsonObject object = value.toObject();
    QVariantMap map;
    for (auto member = object.begin(); member != object.end(); ++member)
        map.insert(member.key(), toVariant(*member));
    return map;
}

QVariantList toVariantList(const QJsonArray &array)
{
    QVariantList list;
    list.reserve(array.size());
    for (const QJsonValue &value : array)
        list.append(toVariant(value));
    return list;
}

bool passesCheck(const QTPluginsMangerPrivate &tables, const QString &path)
{
    // Linux knows no ".dll", but there too it is what plug-ins are called.
    if (!QLibrary::isLibrary(path) && !path.endsWith(QLatin1String(".dll"))) {
        LOG(ERROR) << toGbk(LogTexts::notALibrary()) << path.toStdString();
        return false;
    }
    if (!tables.check(path)) {
        LOG(ERROR) << toGbk(LogTexts::dependenciesFailed()) << path.toStdString();
        return false;
    }
    return true;
}

void reportFailedLoad(const QString &path, const QString &reason)
{
    LOG(ERROR) << toGbk(LogTexts::loadFailed()) << path.toStdString() << toGbk(LogTexts::loadFailedReason())
               << reason.toStdString();
    QMessageBox::information(nullptr, QStringLiteral("提示"), LogTexts::loadFailed() + path);
}

/// Has a missing function reported when the library is loaded. Otherwise it ends the process when it is
/// first called, on the platforms that bind functions late.
template <typename Loader>
void resolveAllAtLoad(Loader &loader)
{
    loader.setLoadHints(loader.loadHints() | QLibrary::ResolveAllSymbolsHint);
}

void unloadListedLibrary(QTPluginsMangerPrivate &tables, const QString &path)
{
    QLibrary *const library = tables.m_libraries.value(path);
    if (!library || !library->unload())
        return;
    tables.m_libraries.remove(path);
    delete library;
}

void unloadListedQtPlugin(QTPluginsMangerPrivate &tables, const QString &path)
{
    QPluginLoader *const loader = tables.m_loaders.value(path);
    if (!loader || !loader->unload())
        return;
    // The path leaves m_libraries, and m_loaders goes on listing it: hosts see there what was once loaded.
    tables.m_libraries.remove(path);
    tables.m_loaders[path] = nullptr;
    delete loader;
}

}

bool QTPluginsMangerPrivate::check(const QString &filepath) const
{
    return DependencyWalk(*this, Q_FUNC_INFO).isSound(filepath);
}

QTpluginsMangerBase::QTpluginsMangerBase(QObject *parent)
    : QObject(parent)
{
}

QTpluginsMangerBase::~QTpluginsMangerBase() = default;

void QTpluginsMangerBase::readPluginConfig(QTPluginsMangerPrivate &tables, const QString &filePath)
{
    QFile file(filePath);
    if (!file.exists()) {
        LOG(ERROR) << toGbk(LogTexts::configMissing()) << filePath.toStdString();
        return;
    }
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        LOG(ERROR) << toGbk(LogTexts::configNotOpened()) << filePath.toStdString();
        return;
    }
    const QByteArray content = file.readAll();
    file.close();

    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(content, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        LOG(ERROR) << toGbk(LogTexts::configNotParsed()) << filePath.toStdString();

    const QJsonArray plugins = document.object().value(QLatin1String("pluginList")).toArray();
    for (const QJsonValue &entry : plugins) {
        const QJsonObject plugin = entry.toObject();
        // Joined with an empty text, so that an entry without a name has an empty one, not a null one.
        const QString name = plugin.value(QLatin1String("name")).toString() + QLatin1String("");
        tables.m_names[name] = name;
        tables.m_versions[name] = toVariant(plugin.value(QLatin1String("version")));
        tables.m_dependencies[name] = toVariantList(plugin.value(QLatin1String("dependencies")).toArray());
    }
}

void QTpluginsMangerBase::loadLibraryPlugin(QTPluginsMangerPrivate &tables, const QString &path)
{
    if (!passesCheck(tables, path))
        return;
    const QString ownPath = path; // The caller's may be a key of the table, and go with its entry.
    unloadListedLibrary(tables, ownPath);

    auto *const library = new QLibrary(ownPath);
    resolveAllAtLoad(*library);
    const QString fault = library->isLoaded() ? QString() : PluginMangerInternal::libraryLoadFault(ownPath);
    if (fault.isEmpty() && library->load())
        tables.m_libraries.insert(ownPath, library);
    else
        reportFailedLoad(ownPath, fault.isEmpty() ? library->errorString() : fault);
}

void QTpluginsMangerBase::loadQtPlugin(QTPluginsMangerPrivate &tables, const QString &path)
{
    if (!passesCheck(tables, path))
        return;
    const QString ownPath = path; // The caller's may be a key of a table, and go with its entry.
    unloadListedQtPlugin(tables, ownPath);

    auto *const loader = new QPluginLoader(ownPath);
    resolveAllAtLoad(*loader);
    // Without meta data Qt does not have the file mapped, and says why.
    const QString fault = loader->metaData().isEmpty() || loader->isLoaded()
                              ? QString()
                              : PluginMangerInternal::pluginLoadFault(loader->fileName());
    if (!fault.isEmpty() || !loader->load()) {
        reportFailedLoad(ownPath, fault.isEmpty() ? loader->errorString() : fault);
        return;
    }
    if (!dynamic_cast<PluginInterface *>(loader->instance())) {
        loader->unload();
        delete loader;
        return;
    }
    tables.m_loaders.insert(ownPath, loader);
}

QLibrary *QTpluginsMangerBase::findLibrary(const QTPluginsMangerPrivate &tables, const QString &path) const
{
    return tables.m_libraries.value(path);
}

QPluginLoader *QTpluginsMangerBase::findQtPlugin(const QTPluginsMangerPrivate &tables,
                                                 const QString &name) const
{
    return tables.m_loaders.value(name % QLatin1String(".dll"));
}

void QTpluginsMangerBase::unloadAllLibraries(QTPluginsMangerPrivate &tables)
{
    const QStringList paths = tables.m_libraries.keys();
    for (const QString &path : paths)
        unloadListedLibrary(tables, path);
    LOG(INFO) << toGbk(LogTexts::allUnloaded());
}

void QTpluginsMangerBase::unloadAllQtPlugins(QTPluginsMangerPrivate &tables)
{
    const QStringList paths = tables.m_loaders.keys();
    for (const QString &path : paths)
        unloadListedQtPlugin(tables, path);
    LOG(INFO) << toGbk(LogTexts::allUnloaded());
}

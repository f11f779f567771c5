#include "ConfigurationChecks.h"

#include "Dependencies.h"
#include "Names.h"
#include "SchemaCheck.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSet>

#include <algorithm>
#include <vector>

namespace PluginCheck {

namespace {

/// Of a list that may be long its beginning and its end, enough to find the rest.
QString shortened(const QStringList &names, const QString &separator)
{
    constexpr int mostAtEachEnd = 25;
    if (names.size() <= 2 * mostAtEachEnd)
        return names.join(separator);
    const QString left = QStringLiteral("... (%1 more) ...").arg(names.size() - 2 * mostAtEachEnd);
    return (names.mid(0, mostAtEachEnd) + QStringList{left} + names.mid(names.size() - mostAtEachEnd))
        .join(separator);
}

/// A name as it is shown: with everything visible that would not be, and not longer than a line.
QString shown(const QString &name)
{
    constexpr int most = 80;
    QString text;
    for (const QChar character : name.left(most)) {
        if (character.isPrint())
            text += character;
        else
            text += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
    }
    return name.size() > most ? text + QStringLiteral("...") : text;
}

/// A value as it is written in JSON.
QString written(const QVariant &value)
{
    return value.userType() == QMetaType::QString ? QStringLiteral("\"%1\"").arg(shown(value.toString()))
                                                  : textOf(value);
}

QString adviceOnVersion(const QVariant &version)
{
    if (version.userType() == QMetaType::Double)
        return QStringLiteral("Write \"version\": \"%1\".").arg(textOf(version));
    return QStringLiteral("Write the version as a text, for example \"version\": \"1.0\".");
}

/// A place as another one in the same file is told of it.
QString lineText(Place place, Place other)
{
    return place.line == other.line ? QStringLiteral("line %1, column %2").arg(place.line).arg(place.column)
                                    : QStringLiteral("line %1").arg(place.line);
}

/// A configuration file and what the dependency check finds in it.
struct CheckedConfiguration
{
    const Configuration &file;
    DependencyResults dependencies;
};

/// The file by which the manager checks the plug-ins of another one when it loads them. Null where that is
/// none of the call's.
const CheckedConfiguration *tablesFor(const CheckedConfiguration &checked,
                                      const std::vector<CheckedConfiguration> &all)
{
    if (checked.file.set != Set::Dfm)
        return &checked;
    // Of several the one in the same folder is of the same host.
    const QString folder = QFileInfo(checked.file.file).path();
    const CheckedConfiguration *found = nullptr;
    for (const CheckedConfiguration &candidate : all) {
        if (candidate.file.set != Set::Cam)
            continue;
        if (QFileInfo(candidate.file.file).path() == folder)
            return &candidate;
        if (!found)
            found = &candidate;
    }
    return found;
}

/// The checks of one configuration file.
class ConfigurationCheck
{
public:
    ConfigurationCheck(const CheckedConfiguration &checked, const std::vector<CheckedConfiguration> &all,
                       LibraryFile::Format format, Report &report)
        : m_configuration(checked.file)
        , m_dependencies(checked.dependencies)
        , m_tables(tablesFor(checked, all))
        , m_format(format)
        , m_report(report)
    {
        listPluginsCheckedHere(checked, all);
    }

    void run();

private:
    void listPluginsCheckedHere(const CheckedConfiguration &checked,
                                const std::vector<CheckedConfiguration> &all);
    void checkList();
    void checkDuplicateKeys();
    void checkSchema();
    void checkEntry(int index);
    void checkName(const Entry &entry);
    bool checkCharacters(const Entry &entry);
    bool checkFolder(const Entry &entry);
    bool checkWindowsName(const Entry &entry);
    QString consequenceOfFolder() const;
    void checkRequest(const Entry &entry);
    void checkRequestOfOther(const Entry &entry, const QString &meant, Set other);
    QString requestedLike(const QString &name, Set set);
    bool isAnotherOf(const QString &meant, const QString &name) const;
    void checkVersion(const Entry &entry);
    void checkRefusal(const Entry &entry);
    QString missingText(int index, const Dependency &dependency) const;
    QStringList listedLike(const QString &name);
    void checkDependency(int index, int number, DependencyState state);
    void checkIgnored(int index, const Dependency &dependency, const QString &what);
    void addCycles();
    void addReport();
    bool isMetByCamSet(const Dependency &dependency) const;
    QString consequenceOf(int index) const;
    bool isRefused(const QString &plugin) const;
    void add(Code code, const QString &plugin, Place place, const QString &message,
             const QString &consequence, const QString &advice);
    QString entryText(int index) const;

    const Configuration &m_configuration;
    const DependencyResults &m_dependencies;
    const CheckedConfiguration *const m_tables;
    const LibraryFile::Format m_format;
    Report &m_report;
    QSet<QPair<int, int>> m_explained; // Places that a finding of its own tells more about than the schema.
    QStringList m_pluginsCheckedHere;  // First those of this file, then those of the DFM file.
    int m_ownPlugins = 0;
    QVector<int> m_refusedWith; // For each entry one of these, or -1.
    std::optional<NearNames> m_nearPlugins;
    std::optional<NearNames> m_nearTools;
    std::optional<NearNames> m_nearListed;
    qint64 m_comparisons = 0;
};

void ConfigurationCheck::run()
{
    checkList();
    checkDuplicateKeys();
    for (int i = 0; i < m_configuration.entries.size(); ++i)
        checkEntry(i);
    addCycles();
    checkSchema();
    addReport();
}

void ConfigurationCheck::add(Code code, const QString &plugin, Place place, const QString &message,
                             const QString &consequence, const QString &advice)
{
    m_explained.insert({place.line, place.column});
    m_report.add(
        {code, m_configuration.file, plugin, m_configuration.file, place, message, consequence, advice});
}

void ConfigurationCheck::listPluginsCheckedHere(const CheckedConfiguration &checked,
                                                const std::vector<CheckedConfiguration> &all)
{
    const auto list = [&](const Configuration &file) {
        for (int i = 0; i < file.entries.size(); ++i) {
            if (file.counts(i))
                m_pluginsCheckedHere.append(file.entries.at(i).name);
        }
    };
    if (m_tables == &checked)
        list(m_configuration);
    m_ownPlugins = int(m_pluginsCheckedHere.size());
    for (const CheckedConfiguration &other : all) {
        if (&other != &checked && tablesFor(other, all) == &checked)
            list(other.file);
    }
    m_refusedWith = refusedWithEntries(m_pluginsCheckedHere, m_configuration, m_dependencies);
}

void ConfigurationCheck::checkList()
{
    const QString consequence =
        QStringLiteral("The manager loads nothing of this set, logs nothing about it and reports success.");
    const QString advice = QStringLiteral("Write { \"pluginList\": [ ... ] } around the entries.");
    if (!m_configuration.isObject) {
        add(Code::ConfigList, {}, m_configuration.places.root,
            QStringLiteral("The root of the file is no object, so that it has no \"pluginList\"."),
            consequence, advice);
        return;
    }
    const auto list = m_configuration.root.constFind(QLatin1String("pluginList"));
    if (list == m_configuration.root.constEnd()) {
        QStringList meant;
        for (const QString &key : m_configuration.root.keys()) {
            if (!NearNames({key}).of(QStringLiteral("pluginList")).isEmpty())
                meant.append(key);
        }
        add(Code::ConfigList, {}, m_configuration.places.root,
            QStringLiteral("The file has no \"pluginList\"."), consequence,
            meant.isEmpty() ? advice
                            : QStringLiteral("It has \"%1\"; the key is spelled \"pluginList\".")
                                  .arg(shown(meant.first())));
        return;
    }
    if (!list->isArray()) {
        add(Code::ConfigList, {}, m_configuration.places.list, QStringLiteral("\"pluginList\" is no array."),
            consequence, advice);
    } else if (m_configuration.entries.isEmpty()) {
        add(Code::ConfigEmpty, {}, m_configuration.places.list,
            QStringLiteral("\"pluginList\" lists no plug-in."), consequence,
            QStringLiteral("Nothing, if the set is to be empty; otherwise list its plug-ins."));
    }
}

void ConfigurationCheck::checkDuplicateKeys()
{
    for (const DuplicateKey &duplicate : m_configuration.places.duplicateKeys) {
        const QString plugin = duplicate.entry >= 0 && duplicate.entry < m_configuration.entries.size()
                                   ? m_configuration.entries.at(duplicate.entry).name
                                   : QString();
        const QString first = lineText(duplicate.first, duplicate.second);
        add(Code::DuplicateKey, plugin, duplicate.second,
            QStringLiteral("The key \"%1\" stands in one object twice, first in %2.")
                .arg(shown(duplicate.key), first),
            QStringLiteral("The later one counts. What stands under the one in %1 is lost.").arg(first),
            QStringLiteral("Take one of them out."));
    }
}

QString ConfigurationCheck::entryText(int index) const
{
    return QStringLiteral("Entry %1 of the list").arg(index + 1);
}

void ConfigurationCheck::checkEntry(int index)
{
    const Entry &entry = m_configuration.entries.at(index);
    if (entry.name.isEmpty()) {
        add(Code::NameEmpty, {}, entry.places.name,
            QStringLiteral("%1 has no name, an empty one, or one that is no text.").arg(entryText(index)),
            QStringLiteral("The manager tries to load a library \".dll\", fails, and shows a message box."),
            QStringLiteral("Give the entry its name, or take it out."));
        return;
    }
    if (!m_configuration.counts(index)) {
        const Entry &winner = m_configuration.entries.at(m_configuration.entryOfName.value(entry.name));
        const QString place = lineText(winner.places.name, entry.places.name);
        add(Code::DuplicateName, entry.name, entry.places.name,
            QStringLiteral("\"%1\" is listed again in %2.").arg(shown(entry.name), place),
            QStringLiteral("The entry in %1 counts, with version %2. This one, with version %3, does not.")
                .arg(place, written(winner.version), written(entry.version)),
            QStringLiteral("Take one of them out."));
        return;
    }
    checkName(entry);
    checkVersion(entry);
    checkRefusal(entry);
    for (int i = 0; i < entry.dependencies.size(); ++i)
        checkDependency(index, i, m_dependencies.dependencies.at(index).at(i).state);
}

void ConfigurationCheck::checkName(const Entry &entry)
{
    if (checkCharacters(entry) || checkFolder(entry) || checkWindowsName(entry))
        return;
    const QString name = shown(entry.name);
    if (!entry.name.endsWith(QLatin1String(".dll"), Qt::CaseInsensitive)) {
        checkRequest(entry);
        return;
    }
    add(Code::NameSuffix, entry.name, entry.places.name,
        QStringLiteral("The name \"%1\" has the suffix.").arg(name),
        QStringLiteral("The manager appends \".dll\" and looks for \"%1.dll\".").arg(name),
        QStringLiteral("Write \"%1\".").arg(shown(entry.name.chopped(int(qstrlen(".dll"))))));
}

/// Says which characters of a name nobody sees. Returns whether there are any.
bool ConfigurationCheck::checkCharacters(const Entry &entry)
{
    const QString &name = entry.name;
    const auto isControl = [](QChar character) { return character < QLatin1Char(' '); };
    const QVector<uint> characters = name.toUcs4();
    const auto isSeen = [](uint character) { return QChar::isPrint(character); };
    if (std::any_of(name.begin(), name.end(), isControl)) {
        add(Code::NameControl, name, entry.places.name,
            QStringLiteral("The name \"%1\" has a control character in it.").arg(shown(name)),
            name.contains(QChar::Null)
                ? QStringLiteral("For the loader the name ends at the NUL.")
                : QStringLiteral(
                    "Windows has no file of such a name. Elsewhere the file's name would have to "
                    "have the character, too."),
            QStringLiteral("Type the name anew."));
        return true;
    }
    const QString asItIs = QStringLiteral(
        "The manager takes the name as it is: the library's file has to be called so, and "
        "operations that ask for it have to give the same name. It is hard to see or to type.");
    if (!std::all_of(characters.begin(), characters.end(), isSeen)) {
        add(Code::NameUnusual, name, entry.places.name,
            QStringLiteral("The name \"%1\" has a character that is not to be seen.").arg(shown(name)),
            asItIs, QStringLiteral("Type the name anew, and that of the file if it has the character, too."));
        return true;
    }
    if (name == name.trimmed())
        return false;
    add(Code::NameUnusual, name, entry.places.name,
        QStringLiteral("The name \"%1\" has a blank at an end.").arg(shown(name)), asItIs,
        QStringLiteral("Take the blank out, here and of the file's name."));
    return true;
}

QString ConfigurationCheck::consequenceOfFolder() const
{
    const QString loads = QStringLiteral("If the library is there, it is loaded under this name, and ");
    return m_configuration.set == Set::Desktop
               ? loads + QStringLiteral("no operation finds it: they ask for the bare file name.")
               : loads
                     + QStringLiteral("only Ov_Register_Common can be told to use it: the other operations "
                                      "ask for the bare file name.");
}

/// Says whether a name leads into a folder, or is one. Returns the same.
bool ConfigurationCheck::checkFolder(const Entry &entry)
{
    const QString &name = entry.name;
    const bool isForWindows = m_format == LibraryFile::Format::Pe;
    if (name.contains('/') || (isForWindows && name.contains('\\'))) {
        add(Code::NamePath, name, entry.places.name,
            QStringLiteral("The name \"%1\" has a folder in it.").arg(shown(name)), consequenceOfFolder(),
            QStringLiteral("Write the file name alone, and name the folder to the loader."));
        return true;
    }
    if (isForWindows && name.contains(':')) {
        add(Code::NamePath, name, entry.places.name,
            QStringLiteral("The name \"%1\" has a colon in it.").arg(shown(name)),
            QStringLiteral("On Windows what stands before it is a drive. %1").arg(consequenceOfFolder()),
            QStringLiteral("Write the file name alone, and name the folder to the loader."));
        return true;
    }
    if (name != QLatin1String(".") && name != QLatin1String(".."))
        return false;
    add(Code::NamePath, name, entry.places.name,
        QStringLiteral("The name \"%1\" stands for a folder.").arg(name),
        QStringLiteral("The manager looks for a library \"%1.dll\", which nobody means.").arg(name),
        QStringLiteral("Write the name of the library's file, without \".dll\"."));
    return true;
}

/// Says whether a name of a set for another system is none for Windows. Returns the same.
bool ConfigurationCheck::checkWindowsName(const Entry &entry)
{
    const QString &name = entry.name;
    const bool isFolder = name.contains('\\');
    if (!isFolder && !name.contains(':'))
        return false;
    add(Code::NameUnusual, name, entry.places.name,
        QStringLiteral("The name \"%1\" has a %2 in it.")
            .arg(shown(name), isFolder ? QStringLiteral("backslash") : QStringLiteral("colon")),
        QStringLiteral(
            "On Linux the library loads if its file is called so. On Windows what stands before it "
            "is a %1, and no file has such a name.")
            .arg(isFolder ? QStringLiteral("folder") : QStringLiteral("drive")),
        QStringLiteral("Give entry and file another name. If a folder is meant, name it to the loader."));
    return true;
}

/// Where both are listed, a name like another is one of its own.
bool ConfigurationCheck::isAnotherOf(const QString &meant, const QString &name) const
{
    return m_configuration.entryOfName.contains(meant) && meant.compare(name, Qt::CaseInsensitive) != 0;
}

/// A name that a manager asks for and that this one is like, or an empty text.
QString ConfigurationCheck::requestedLike(const QString &name, Set set)
{
    std::optional<NearNames> &near = set == Set::Desktop ? m_nearTools : m_nearPlugins;
    if (!near) {
        QStringList names;
        for (const Request &request : requestsOf(set))
            names.append(request.name);
        near.emplace(names);
    }
    return near->of(name).value(0);
}

/// Says that a name, or one like it, is one of the other manager's.
void ConfigurationCheck::checkRequestOfOther(const Entry &entry, const QString &meant, Set other)
{
    if (meant.isEmpty())
        return;
    const bool isTool = other == Set::Desktop;
    const QString what = isTool ? QStringLiteral("a tool of the desktop manager")
                                : QStringLiteral("a plug-in of the CAM manager");
    add(Code::NameNearMiss, entry.name, entry.places.name,
        meant == entry.name ? QStringLiteral("\"%1\" is %2.").arg(shown(entry.name), what)
                            : QStringLiteral("Nothing asks for \"%1\", but for \"%2\", %3.")
                                  .arg(shown(entry.name), meant, what),
        QStringLiteral("This file is read by the %1 manager, which has no operation that asks for it.")
            .arg(isTool ? QStringLiteral("CAM") : QStringLiteral("desktop")),
        meant == entry.name
            ? QStringLiteral("List it in the file of its own manager.")
            : QStringLiteral("List it as \"%1\" in the file of its own manager, if that is what it is.")
                  .arg(meant));
}

void ConfigurationCheck::checkRequest(const Entry &entry)
{
    const Set set = m_configuration.set;
    if (requestNamed(entry.name, set))
        return;
    const Set other = set == Set::Desktop ? Set::Cam : Set::Desktop;
    if (requestNamed(entry.name, other)) {
        checkRequestOfOther(entry, entry.name, other);
        return;
    }
    const QString meant = requestedLike(entry.name, set);
    if (meant.isEmpty())
        checkRequestOfOther(entry, requestedLike(entry.name, other), other);
    if (meant.isEmpty() || isAnotherOf(meant, entry.name))
        return;
    add(Code::NameNearMiss, entry.name, entry.places.name,
        QStringLiteral("Nothing asks for \"%1\", but for \"%2\".").arg(shown(entry.name), meant),
        QStringLiteral("The manager loads the library if it is there, and uses it for nothing: names are "
                       "compared letter by letter, with case."),
        QStringLiteral("Call entry and file \"%1\", if that is what it is.").arg(meant));
}

void ConfigurationCheck::checkVersion(const Entry &entry)
{
    const int type = entry.version.userType();
    if (type == QMetaType::QString || !entry.version.isValid())
        return;
    add(Code::VersionType, entry.name, entry.places.version,
        QStringLiteral("The version of \"%1\" is %2, which is no text.")
            .arg(shown(entry.name), written(entry.version)),
        QStringLiteral(
            "It is compared by conversion: a plug-in that needs the version as a text may be satisfied "
            "by another text than the one you see, and one that needs a number by surprise."),
        adviceOnVersion(entry.version));
}

bool ConfigurationCheck::isRefused(const QString &plugin) const
{
    return m_tables && PluginCheck::isRefused(plugin, m_tables->file, m_tables->dependencies);
}

void ConfigurationCheck::checkRefusal(const Entry &entry)
{
    if (!isRefused(entry.name))
        return;
    const QString name = shown(entry.name);
    const Place place = m_tables->file.entries.at(entryChecked(m_tables->file, entry.name)).places.entry;
    const QString file =
        m_configuration.set == Set::Dfm
            ? QStringLiteral("%1, line %2").arg(m_tables->file.file, QString::number(place.line))
            : lineText(place, entry.places.name);
    add(Code::PluginRefused, entry.name, entry.places.name,
        QStringLiteral("\"%1\" is not loaded: the dependencies of \"%1.dll\" (%2) are not met.")
            .arg(name, file),
        QStringLiteral(
            "The manager looks the plug-in's dependencies up under \"%1.dll\", logs that they do not "
            "hold, and passes the library over.")
            .arg(name),
        QStringLiteral("Take the entry \"%1.dll\" out, or have its dependencies met.").arg(name));
}

/// What the manager does about dependencies that are not met, told for the entry that they stand in.
QString ConfigurationCheck::consequenceOf(int index) const
{
    const QString &name = m_configuration.entries.at(index).name;
    const QString loads = QStringLiteral("The manager loads the plug-in all the same: ");
    if (m_configuration.set == Set::Dfm) {
        if (!m_tables)
            return QStringLiteral("The manager never looks at the dependencies in a DFM file.");
        return isRefused(name)
                   ? QStringLiteral(
                         "The manager does not load the plug-in, but for those of \"%1.dll\" in the CAM "
                         "file: it never looks at the dependencies in a DFM file.")
                         .arg(shown(name))
                   : loads + QStringLiteral("it never looks at the dependencies in a DFM file.");
    }
    const int refused = m_refusedWith.at(index);
    if (refused >= 0) {
        const QString plugin = m_pluginsCheckedHere.at(refused);
        return QStringLiteral(
                   "The manager refuses to load \"%1\"%2: it looks dependencies up under the file name "
                   "\"%1.dll\", which %3.")
            .arg(shown(plugin), refused < m_ownPlugins ? QString() : QStringLiteral(" of the DFM set"),
                 entryChecked(m_configuration, plugin) == index ? QStringLiteral("is this entry")
                                                                : QStringLiteral("leads to this entry"));
    }
    if (isRefused(name))
        return QStringLiteral(
                   "The manager does not load the plug-in, but for those of \"%1.dll\": that is where it "
                   "looks dependencies up.")
            .arg(shown(name));
    if (entryChecked(m_configuration, name) >= 0)
        return loads
               + QStringLiteral("it looks dependencies up under \"%1.dll\", which is an entry of its own.")
                     .arg(shown(name));
    return loads
           + QStringLiteral("it looks dependencies up under \"%1.dll\", and the list has \"%1\".")
                 .arg(shown(name));
}

bool ConfigurationCheck::isMetByCamSet(const Dependency &dependency) const
{
    const int entry = m_tables ? entryNamed(m_tables->file, dependency.name) : -1;
    return entry >= 0 && m_tables->file.entries.at(entry).version == dependency.version;
}

/// Names of the list that a missing one may have been meant for. Looking for them takes a pass over all names
/// of about its length, so that in a long list only the first are told what they may mean.
QStringList ConfigurationCheck::listedLike(const QString &name)
{
    constexpr qint64 mostComparisons = 2000000;
    if (m_comparisons > mostComparisons)
        return {};
    m_comparisons += m_configuration.entries.size();
    if (!m_nearListed) {
        QStringList names;
        for (int i = 0; i < m_configuration.entries.size(); ++i) {
            if (m_configuration.counts(i))
                names.append(m_configuration.entries.at(i).name);
        }
        m_nearListed.emplace(names);
    }
    return m_nearListed->of(name, 2);
}

/// What is said of a dependency that is not in the list.
QString ConfigurationCheck::missingText(int index, const Dependency &dependency) const
{
    const QString plugin = shown(m_configuration.entries.at(index).name);
    if (!dependency.name.isValid())
        return QStringLiteral("\"%1\" has a dependency without a name, which no list has.").arg(plugin);
    if (!canBeListed(dependency.name))
        return QStringLiteral("\"%1\" has a dependency whose name is %2, which no list has.")
            .arg(plugin, textOf(dependency.name));
    const QString needed = QStringLiteral("\"%1\" needs \"%2\" %3")
                               .arg(plugin, shown(textOf(dependency.name)), written(dependency.version));
    const int other =
        m_configuration.set == Set::Dfm && m_tables ? entryNamed(m_tables->file, dependency.name) : -1;
    if (other < 0)
        return needed + QStringLiteral(", which the list does not have.");
    return needed
           + QStringLiteral(", and the CAM file has version %1.")
                 .arg(written(m_tables->file.entries.at(other).version));
}

void ConfigurationCheck::checkDependency(int index, int number, DependencyState state)
{
    const Entry &entry = m_configuration.entries.at(index);
    const Dependency &dependency = entry.dependencies.at(number);
    const QString name = shown(textOf(dependency.name));
    const bool hasVersion = dependency.version.isValid();
    if (hasVersion && dependency.version.userType() != QMetaType::QString) {
        add(Code::VersionType, entry.name, dependency.places.version,
            QStringLiteral("\"%1\" needs \"%2\" in version %3, which is no text.")
                .arg(shown(entry.name), name, written(dependency.version)),
            state == DependencyState::Version
                ? QStringLiteral("The two versions are not equal to the manager, though they may look equal.")
                : QStringLiteral("It is compared by conversion."),
            adviceOnVersion(dependency.version));
    }
    if (state == DependencyState::Missing) {
        const QString what = missingText(index, dependency);
        if (m_configuration.set == Set::Dfm) {
            checkIgnored(index, dependency, what);
            return;
        }
        if (!canBeListed(dependency.name)) {
            add(Code::DependencyMissing, entry.name, dependency.places.name, what, consequenceOf(index),
                QStringLiteral("Name the plug-in that is needed, or take the dependency out."));
            return;
        }
        const QStringList near = listedLike(textOf(dependency.name));
        add(Code::DependencyMissing, entry.name, dependency.places.name, what, consequenceOf(index),
            near.isEmpty() ? QStringLiteral("List \"%1\", or take the dependency out.").arg(name)
                           : didYouMean(near));
    } else if (state == DependencyState::Version) {
        const Entry &needed = m_configuration.entries.at(entryNamed(m_configuration, dependency.name));
        const QString what =
            QStringLiteral("\"%1\" needs \"%2\" in version %3, and the list has version %4 (%5).")
                .arg(shown(entry.name), name, written(dependency.version), written(needed.version),
                     lineText(needed.places.version, dependency.places.name));
        if (m_configuration.set == Set::Dfm) {
            checkIgnored(index, dependency, what);
            return;
        }
        add(Code::DependencyVersion, entry.name, dependency.places.version, what, consequenceOf(index),
            QStringLiteral(
                "Ship the version that is needed, or correct the version here: only an equal one is "
                "right, \"1.0\" is not \"1.00\"."));
    } else if (state == DependencyState::Self) {
        add(Code::DependencySelf, entry.name, dependency.places.name,
            QStringLiteral("\"%1\" depends on itself.").arg(shown(entry.name)), consequenceOf(index),
            QStringLiteral("Take the dependency out."));
    }
}

void ConfigurationCheck::checkIgnored(int index, const Dependency &dependency, const QString &what)
{
    const Entry &entry = m_configuration.entries.at(index);
    if (isMetByCamSet(dependency))
        return;
    add(Code::DependencyIgnored, entry.name, dependency.places.name, what, consequenceOf(index),
        m_tables ? QStringLiteral("Correct it, for those who read it.")
                 : QStringLiteral(
                     "Correct it, for those who read it. If it is a plug-in of the CAM set, name the CAM "
                     "file in the same call."));
}

void ConfigurationCheck::addCycles()
{
    for (const QVector<int> &cycle : m_dependencies.cycles) {
        QStringList names;
        for (const int entry : cycle)
            names.append(shown(m_configuration.entries.at(entry).name));
        const Entry &first = m_configuration.entries.at(cycle.first());
        const auto closing = std::find_if(
            first.dependencies.begin(), first.dependencies.end(), [&](const Dependency &dependency) {
                return entryNamed(m_configuration, dependency.name) == cycle.at(1);
            });
        add(Code::DependencyCycle, first.name, closing->places.name,
            QStringLiteral("The dependencies form a circle: %1.")
                .arg(shortened(names, QStringLiteral(" -> "))),
            consequenceOf(cycle.first()), QStringLiteral("Take one of these dependencies out."));
    }
    if (m_dependencies.hasMoreCycles)
        m_report.leaveOut(
            QStringLiteral("%1: of many circles of dependencies not all are told").arg(m_configuration.file));
}

/// What the schema finds, where no other finding has said it already.
void ConfigurationCheck::checkSchema()
{
    if (!m_configuration.isObject)
        return;
    for (const SchemaMistake &mistake : schemaMistakes(m_configuration, m_dependencies)) {
        // What is said of the name of an entry without one stands at the entry, too.
        const bool isOfVersion = mistake.missingKey == QLatin1String("version");
        if (!isOfVersion && m_explained.contains({mistake.place.line, mistake.place.column}))
            continue;
        const QString plugin =
            mistake.entry >= 0 ? m_configuration.entries.at(mistake.entry).name : QString();
        m_report.add({Code::ConfigSchema, m_configuration.file, plugin, m_configuration.file, mistake.place,
                      mistake.message, mistake.consequence,
                      QStringLiteral("Correct it; docs/configuration.md has the format.")});
    }
}

void ConfigurationCheck::addReport()
{
    ConfigurationReport result{m_configuration.file, nameOf(m_configuration.set), {}, {}};
    for (int i = 0; i < m_configuration.entries.size(); ++i) {
        if (!m_configuration.counts(i))
            continue;
        const Entry &entry = m_configuration.entries.at(i);
        PluginReport plugin{entry.name, entry.version.isValid() ? textOf(entry.version) : QString(),
                            entry.places.entry.line};
        for (int j = 0; j < entry.dependencies.size(); ++j) {
            const Dependency &dependency = entry.dependencies.at(j);
            const DependencyState state = m_dependencies.dependencies.at(i).at(j).state;
            const bool ignored = m_configuration.set == Set::Dfm;
            const char *text = "met";
            if (state == DependencyState::Missing)
                text = ignored ? (isMetByCamSet(dependency) ? "met" : "ignored") : "missing";
            else if (state == DependencyState::Version)
                text = ignored ? "ignored" : "version";
            else if (state == DependencyState::Cycle || state == DependencyState::Self)
                text = "cycle";
            plugin.dependencies.append({textOf(dependency.name), textOf(dependency.version), text});
        }
        result.plugins.append(plugin);
    }
    for (const QVector<int> &cycle : m_dependencies.cycles) {
        QStringList names;
        for (const int entry : cycle)
            names.append(m_configuration.entries.at(entry).name);
        result.cycles.append(names);
    }
    m_report.configurations.append(result);
}

}

LibraryFile::Format formatOfLibraries(const QVector<Configuration> &configurations,
                                      const QStringList &libraries, const QStringList &tools)
{
    int lead = 0; // Of those for Windows over the others.
    for (const Configuration &configuration : configurations) {
        const QStringList &directories = configuration.set == Set::Desktop ? tools : libraries;
        for (const Entry &entry : configuration.entries) {
            if (entry.name.contains(QChar::Null))
                continue;
            for (const QString &directory : directories) {
                // Windows has no other name for it.
                const QString path = directory + '/' + entry.name + QLatin1String(".dll");
                const LibraryFile::Format format =
                    QFileInfo(path).isFile() ? formatOfFile(path) : LibraryFile::Format::None;
                if (format != LibraryFile::Format::None)
                    lead += format == LibraryFile::Format::Pe ? 1 : -1;
            }
        }
    }
    if (lead == 0)
        return nativeFormat;
    return lead > 0 ? LibraryFile::Format::Pe : LibraryFile::Format::Elf;
}

void checkConfigurations(const QVector<Configuration> &configurations, Report &report,
                         LibraryFile::Format format)
{
    std::vector<CheckedConfiguration> all;
    all.reserve(std::size_t(configurations.size()));
    for (const Configuration &configuration : configurations)
        all.push_back({configuration, checkDependencies(configuration)});
    for (const CheckedConfiguration &checked : all)
        ConfigurationCheck(checked, all, format, report).run();
    if (!knowsSchema())
        report.leaveOut(
            QStringLiteral("Configuration files were not compared with their schema: this build has no "
                           "validator (valijson)."));
}

}

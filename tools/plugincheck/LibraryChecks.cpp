#include "LibraryChecks.h"

#include "Names.h"

#include <pluginMangerSdk.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

#include <algorithm>
#include <memory>

namespace PluginCheck {

namespace {

/// A plug-in of the call, and the file that its manager would load.
struct Candidate
{
    const Configuration *configuration;
    const Entry *entry;
    PluginReport *result;
    QString path;
    std::shared_ptr<const LibraryFile> file;
};

/// A library that a plug-in needs, itself or through others.
struct Needed
{
    QString name;
    QString path;
    bool isSystem;
};

const QString failsToLoad =
    QStringLiteral("The load fails: the manager logs the loader's reason, shows a message "
                   "box, and goes on.");

/// The manager looks at the file of a plug-in before it is loaded, and not at what that one needs.
const QString mayEndHost =
    QStringLiteral("The load fails, or ends the host when the missing part is touched.");

QString versionText(int version)
{
    return QStringLiteral("%1.%2").arg(version >> 8).arg(version & 0xff);
}

/// The first two parts of a version as a number; 0 for what is none.
int versionOf(const QString &text)
{
    static const QRegularExpression numbers(QStringLiteral(R"(^(\d{1,2})\.(\d{1,3}))"));
    const QRegularExpressionMatch match = numbers.match(text);
    return match.hasMatch() ? match.captured(1).toInt() * 256 + match.captured(2).toInt() : 0;
}

QMap<QByteArray, QByteArray> partsOf(const QByteArray &stamp)
{
    QMap<QByteArray, QByteArray> parts;
    for (const QByteArray &part : stamp.split(';')) {
        const int equals = int(part.indexOf('='));
        if (equals > 0)
            parts.insert(part.left(equals), part.mid(equals + 1));
    }
    return parts;
}

bool isQtCore(const QString &library)
{
    static const QRegularExpression name(QStringLiteral(R"(^(lib)?Qt\dCored?\.(so.*|dll)$)"),
                                         QRegularExpression::CaseInsensitiveOption);
    return name.match(library).hasMatch();
}

/// Which Qt a library is linked to, by the names of what it needs: 0 if it is to none.
int qtMajorOf(const LibraryFile &file)
{
    static const QRegularExpression name(QStringLiteral(R"(^(?:lib)?Qt(\d)[A-Z])"));
    for (const QString &needed : file.needed) {
        const QRegularExpressionMatch match = name.match(needed);
        if (match.hasMatch())
            return match.captured(1).toInt();
    }
    return 0;
}

enum class QtBuild { None, Release, Debug, Both };

/// On Windows the libraries of a debug build of Qt have a "d" at the end of their names.
QtBuild qtBuildOf(const LibraryFile &file)
{
    static const QRegularExpression name(QStringLiteral(R"(^Qt\d(Core|Gui|Widgets)(d?)\.dll$)"),
                                         QRegularExpression::CaseInsensitiveOption);
    bool debug = false;
    bool release = false;
    for (const QString &needed : file.needed) {
        const QRegularExpressionMatch match = name.match(needed);
        debug = debug || (match.hasMatch() && !match.captured(2).isEmpty());
        release = release || (match.hasMatch() && match.captured(2).isEmpty());
    }
    if (debug && release)
        return QtBuild::Both;
    return debug ? QtBuild::Debug : (release ? QtBuild::Release : QtBuild::None);
}

/// Functions that a sanitizer's run-time library in the host brings.
bool isOfSanitizer(const std::string &symbol)
{
    for (const char *prefix :
         {"__asan_", "__lsan_", "__msan_", "__tsan_", "__ubsan_", "__sanitizer_", "__sancov_"}) {
        if (symbol.rfind(prefix, 0) == 0)
            return true;
    }
    return false;
}

using Symbols = std::vector<ImportedSymbol>;

QString textOf(const ImportedSymbol &symbol)
{
    const QString name = QString::fromStdString(symbol.name);
    return symbol.version.empty()
               ? name
               : QStringLiteral("%1 (version %2)").arg(name, QString::fromStdString(symbol.version));
}

/// The checks of the libraries of one call.
class LibraryCheck
{
public:
    LibraryCheck(const LibrarySearch &search, Report &report)
        : m_search(search)
        , m_report(report)
    {
    }

    void run(const QVector<Configuration> &configurations);

private:
    bool isLookedFor(const Configuration &configuration, const QString &name);
    const Folders &foldersOf(Set set) const;
    QStringList filesOf(const QString &fileName, Set set) const;
    QString fileThatLoads(const Candidate &candidate, const QStringList &files) const;
    void findUsualKind(const QVector<Candidate> &candidates);
    bool locate(Candidate &candidate);
    void addMissing(const Candidate &candidate, const QString &fileName);
    bool checkFile(const Candidate &candidate);
    void checkMachines(const QVector<Candidate> &candidates);
    void checkContents(const Candidate &candidate);
    bool isForwardedNowhere(const LibraryFile &file, const std::string &symbol,
                            const Candidate &candidate) const;
    void checkExports(const Candidate &candidate, const QVector<Needed> &needed);
    void addFactoryMissing(const Candidate &candidate, const QByteArray &factory);
    void checkNeeded(const Candidate &candidate, QVector<Needed> &needed, bool &complete);
    void checkSymbols(const Candidate &candidate, const QVector<Needed> &needed);
    void checkElfSymbols(const Candidate &candidate, const QVector<Needed> &needed);
    void checkPeSymbols(const Candidate &candidate, const QVector<Needed> &needed);
    void checkPeSymbolsOf(const LibraryFile &user, const QString &who, const Candidate &candidate,
                          const QVector<Needed> &needed);
    void removeResolved(Symbols &symbols, const LibraryFile &file, const QString &path,
                        const QStringList &needed) const;
    const Symbols &unresolvedOf(const QString &path);
    void leaveOutManager();
    void addSymbolsMissing(const Candidate &candidate, Symbols symbols, const QString &message);
    void checkVersions(const Candidate &candidate, const QVector<Needed> &needed);
    void checkVersionsOf(const LibraryFile &user, const QString &who, const Candidate &candidate,
                         const QVector<Needed> &needed);
    void checkQt(const Candidate &candidate, const QVector<Needed> &needed);
    void checkStamp(const Candidate &candidate);
    void checkBuilds(const QVector<Candidate> &candidates);
    void addQtVersion(const Candidate &candidate, const QString &built, const QString &found);
    void add(Code code, const Candidate &candidate, const QString &message, const QString &consequence,
             const QString &advice);

    const LibrarySearch &m_search;
    Report &m_report;
    std::unique_ptr<NearNames> m_nearLibraries;
    std::unique_ptr<NearNames> m_nearTools;
    int m_searches = 0;
    LibraryKind m_usualKind;
    QHash<QString, Symbols> m_unresolved;
};

void LibraryCheck::run(const QVector<Configuration> &configurations)
{
    QVector<Candidate> candidates;
    for (int i = 0; i < configurations.size(); ++i) {
        const Configuration &configuration = configurations.at(i);
        for (PluginReport &result : m_report.configurations[i].plugins) {
            // Names that cannot be those of files have a finding already.
            const bool isName = std::all_of(result.name.begin(), result.name.end(),
                                            [](QChar character) { return character.unicode() >= ' '; });
            if (result.name.isEmpty() || !isName || !isLookedFor(configuration, result.name))
                continue;
            const Entry &entry = configuration.entries.at(configuration.entryOfName.value(result.name));
            candidates.append({&configuration, &entry, &result, {}, nullptr});
        }
    }
    findUsualKind(candidates);
    QVector<Candidate> readable;
    for (Candidate &candidate : candidates) {
        if (locate(candidate) && checkFile(candidate))
            readable.append(candidate);
    }
    checkMachines(readable);
    if (!knowsLibraries()) {
        m_report.leaveOut(
            QStringLiteral("What libraries export and need was not looked at: this build has no "
                           "reader for them (LIEF)."));
        return;
    }
    for (const Candidate &candidate : qAsConst(readable))
        checkContents(candidate);
    checkBuilds(readable);
}

void LibraryCheck::add(Code code, const Candidate &candidate, const QString &message,
                       const QString &consequence, const QString &advice)
{
    const QString file = candidate.path.isEmpty() ? candidate.configuration->file : candidate.path;
    const Place place = candidate.path.isEmpty() ? candidate.entry->places.name : Place();
    m_report.add({code, candidate.configuration->file, candidate.entry->name, file, place, message,
                  consequence, advice});
}

/// Where the host has its working directory is not known.
bool LibraryCheck::isLookedFor(const Configuration &configuration, const QString &name)
{
    if (foldersOf(configuration.set).directories().isEmpty()) {
        m_report.leaveOut(
            QStringLiteral("Libraries of CAM and DFM sets were not looked at: no --library-dir is given."));
        return false;
    }
    if (configuration.set == Set::Desktop || !name.contains('/') || QDir::isAbsolutePath(name))
        return true;
    m_report.leaveOut(
        QStringLiteral("Libraries whose names have a folder were not looked for: the CAM manager finds "
                       "them below the host's working directory alone."));
    return false;
}

const Folders &LibraryCheck::foldersOf(Set set) const
{
    return set == Set::Desktop ? m_search.tools() : m_search.libraries();
}

QString withPrefix(const QString &fileName)
{
    return QString(fileName).insert(fileName.lastIndexOf('/') + 1, QLatin1String("lib"));
}

/// The names that QPluginLoader looks for in a folder.
QStringList namesOfTool(const QString &fileName)
{
    const QLatin1String suffix(".so");
    return {fileName, fileName + suffix, withPrefix(fileName), withPrefix(fileName) + suffix};
}

/// The names that QLibrary gives the loader one after the other.
QStringList namesOfLibrary(const QString &fileName)
{
    const QLatin1String suffix(".so");
    QStringList names{fileName + suffix, fileName};
    if (!QFileInfo(fileName).fileName().startsWith(QLatin1String("lib")))
        names = QStringList{withPrefix(fileName) + suffix, withPrefix(fileName)} + names;
    if (fileName.startsWith('/'))
        std::reverse(names.begin(), names.end());
    return names;
}

/// Returns the files that Qt tries until one loads. QPluginLoader tries all names in a folder, and takes the
/// first file there is; QLibrary has the loader look for each name in all folders.
QStringList LibraryCheck::filesOf(const QString &fileName, Set set) const
{
    const Folders &folders = foldersOf(set);
    const auto onlyFile = [&folders](const QStringList &names) {
        const QString file = folders.exactFile(names);
        return file.isEmpty() ? QStringList() : QStringList{file};
    };
    // Windows has none of these prefixes and suffixes.
    if (m_usualKind.format == LibraryFile::Format::Pe && !onlyFile({fileName}).isEmpty())
        return onlyFile({fileName});
    if (set == Set::Desktop)
        return onlyFile(namesOfTool(fileName));
    QStringList files;
    for (const QString &name : namesOfLibrary(fileName)) {
        const QStringList all = folders.everyFile(name);
        const auto taken = std::find_if(all.begin(), all.end(), [&](const QString &file) {
            return m_search.endsSearch(file, m_usualKind.machine);
        });
        if (taken != all.end())
            files.append(*taken);
    }
    return files.isEmpty() ? onlyFile(namesOfLibrary(fileName)) : files;
}

/// The machine of most plug-ins is taken for the one that the set is for, with all files counted that any
/// loader could take; of equals the one of this machine.
void LibraryCheck::findUsualKind(const QVector<Candidate> &candidates)
{
    QVector<QPair<LibraryKind, int>> counts;
    const auto count = [&counts](const LibraryKind &kind) {
        const auto known = std::find_if(counts.begin(), counts.end(),
                                        [&](const auto &candidate) { return candidate.first == kind; });
        if (known == counts.end())
            counts.append({kind, 1});
        else
            ++known->second;
    };
    for (const Candidate &candidate : candidates) {
        const Folders &folders = foldersOf(candidate.configuration->set);
        QVector<LibraryKind> kinds;
        for (const QString &name : namesOfTool(candidate.entry->name + QLatin1String(".dll"))) {
            for (const QString &file : folders.everyFile(name)) {
                const LibraryKind &kind = m_search.kindOf(file);
                if (kind.format != LibraryFile::Format::None && !kinds.contains(kind))
                    kinds.append(kind);
            }
        }
        std::for_each(kinds.begin(), kinds.end(), count);
    }
    const LibraryKind own = LibraryKind{nativeFormat, nativeMachine()};
    const auto usual =
        std::max_element(counts.begin(), counts.end(), [&](const auto &left, const auto &right) {
            return left.second != right.second ? left.second < right.second : right.first == own;
        });
    m_usualKind = usual == counts.end() ? own : usual->first;
}

/// Returns the first that nothing is known against, or else the last one, of which the manager's log tells.
QString LibraryCheck::fileThatLoads(const Candidate &candidate, const QStringList &files) const
{
    for (const QString &file : files.mid(0, files.size() - 1)) {
        Report report;
        LibraryCheck check(m_search, report);
        Candidate attempt = candidate;
        attempt.path = file;
        attempt.file = std::make_shared<const LibraryFile>(readLibrary(file));
        if (check.checkFile(attempt) && knowsLibraries())
            check.checkContents(attempt);
        if (std::none_of(report.findings().begin(), report.findings().end(),
                         [](const Finding &finding) { return isRefusal(finding.code); }))
            return file;
    }
    return files.last();
}

/// Finds and reads the file.
bool LibraryCheck::locate(Candidate &candidate)
{
    const QString fileName = candidate.entry->name + QLatin1String(".dll");
    const Set set = candidate.configuration->set;
    const QStringList files = filesOf(fileName, set);
    if (!files.isEmpty())
        candidate.path = fileThatLoads(candidate, files);
    if (candidate.path.isEmpty()) {
        const QString similar = foldersOf(set).similarFile(fileName);
        if (similar.isEmpty()) {
            addMissing(candidate, fileName);
            return false;
        }
        candidate.path = similar;
        candidate.file = std::make_shared<const LibraryFile>(readLibrary(similar));
        if (candidate.file->format != LibraryFile::Format::Pe) {
            add(Code::LibraryCase, candidate,
                QStringLiteral("The file is called \"%1\", and \"%2\" is looked for.")
                    .arg(QFileInfo(similar).fileName(), fileName),
                failsToLoad, QStringLiteral("Rename the file."));
            return false;
        }
    } else {
        candidate.file = std::make_shared<const LibraryFile>(readLibrary(candidate.path));
    }
    candidate.result->library = candidate.path;
    return true;
}

void LibraryCheck::addMissing(const Candidate &candidate, const QString &fileName)
{
    const bool isTool = candidate.configuration->set == Set::Desktop;
    QStringList near;
    constexpr int mostSearches = 200; // Each is a pass over all file names.
    if (m_searches++ < mostSearches) {
        std::unique_ptr<NearNames> &names = isTool ? m_nearTools : m_nearLibraries;
        if (!names)
            names = std::make_unique<NearNames>(foldersOf(candidate.configuration->set).fileNames());
        near = names->of(fileName, 3);
    }
    add(Code::LibraryMissing, candidate,
        QStringLiteral("There is no file \"%1\" in %2.")
            .arg(fileName, foldersOf(candidate.configuration->set).directories().join(QStringLiteral(", "))),
        failsToLoad,
        near.isEmpty()
            ? QStringLiteral("Put the library there, name its folder by %1, or take the entry out.")
                  .arg(QLatin1String(isTool ? "--qt-plugin-dir" : "--library-dir"))
            : didYouMean(near));
}

bool LibraryCheck::checkFile(const Candidate &candidate)
{
    const LibraryFile &file = *candidate.file;
    const QString anew = QStringLiteral("Build or copy the file anew.");
    switch (file.problem) {
    case LibraryFile::Problem::None:
        return true;
    case LibraryFile::Problem::Unreadable:
        add(Code::LibraryUnreadable, candidate, file.detail, failsToLoad,
            QStringLiteral("Look at the file and its permissions."));
        break;
    case LibraryFile::Problem::TooLarge:
        m_report.leaveOut(candidate.path + QStringLiteral(": ") + file.detail);
        break;
    case LibraryFile::Problem::NoLibrary:
        add(Code::LibraryFormat, candidate, file.detail, failsToLoad, anew);
        break;
    case LibraryFile::Problem::Truncated:
        add(Code::LibraryTruncated, candidate, file.detail, failsToLoad, anew);
        break;
    case LibraryFile::Problem::Damaged:
        add(Code::LibraryDamaged, candidate, file.detail, failsToLoad, anew);
        break;
    }
    return false;
}

/// The most frequent kind is taken for what the set is for.
void LibraryCheck::checkMachines(const QVector<Candidate> &candidates)
{
    const auto kindOf = [](const LibraryFile &file) {
        return QStringLiteral("%1 for %2")
            .arg(file.format == LibraryFile::Format::Pe ? QStringLiteral("PE") : QStringLiteral("ELF"),
                 file.machine);
    };
    QMap<QString, int> counts;
    for (const Candidate &candidate : candidates)
        ++counts[kindOf(*candidate.file)];
    if (counts.size() < 2)
        return;
    const auto usual =
        std::max_element(counts.keyValueBegin(), counts.keyValueEnd(),
                         [](const auto &left, const auto &right) { return left.second < right.second; });
    for (const Candidate &candidate : candidates) {
        const QString kind = kindOf(*candidate.file);
        if (kind == (*usual).first)
            continue;
        add(Code::LibraryMachine, candidate,
            QStringLiteral("The library is %1, and %2 of %3 are %4.")
                .arg(kind)
                .arg((*usual).second)
                .arg(candidates.size())
                .arg((*usual).first),
            failsToLoad, QStringLiteral("Build it for the machine of the others."));
    }
}

void LibraryCheck::checkContents(const Candidate &candidate)
{
    QVector<Needed> needed;
    bool complete = true;
    checkNeeded(candidate, needed, complete);
    checkExports(candidate, needed);
    if (complete)
        checkSymbols(candidate, needed);
    checkVersions(candidate, needed);
    checkQt(candidate, needed);
    checkStamp(candidate);
}

/// Returns the file in which a symbol is found; null if there is none. On Linux what the libraries have that
/// a plug-in needs is found, too.
const LibraryFile *definitionOf(const std::string &symbol, const LibraryFile &file,
                                const QVector<Needed> &needed, const LibrarySearch &search)
{
    if (file.exports.count(symbol) > 0)
        return &file;
    if (file.format != LibraryFile::Format::Elf)
        return nullptr;
    for (const Needed &library : needed) {
        if (!library.isSystem && search.read(library.path).exports.count(symbol) > 0)
            return &search.read(library.path);
    }
    return nullptr;
}

bool LibraryCheck::isForwardedNowhere(const LibraryFile &file, const std::string &symbol,
                                      const Candidate &candidate) const
{
    const auto forward = file.forwards.find(symbol);
    return forward != file.forwards.end()
           && m_search.find(forward->second, file, candidate.path, {}).state != FoundLibrary::State::Found;
}

void LibraryCheck::checkExports(const Candidate &candidate, const QVector<Needed> &needed)
{
    const LibraryFile &file = *candidate.file;
    if (!file.exportsAreComplete)
        return;
    if (candidate.configuration->set == Set::Desktop) {
        if (!file.isQtPlugin) {
            add(Code::QtPluginMissing, candidate,
                file.exports.count("qt_plugin_instance") > 0
                    ? QStringLiteral("The library has an instance, but no metadata of a Qt plug-in.")
                    : QStringLiteral("The library is no Qt plug-in."),
                failsToLoad,
                QStringLiteral(
                    "Build it with QT_PLUGIN, with Q_PLUGIN_METADATA in its class, or list it in a CAM "
                    "set."));
        }
        return;
    }
    const Request *const request = requestNamed(candidate.entry->name, candidate.configuration->set);
    const LibraryFile *const receiver = definitionOf(entryPoint, file, needed, m_search);
    if (!request) {
        if (!receiver && !definitionOf(factoryOfAnyLibrary().toStdString(), file, needed, m_search)) {
            add(Code::NameUnused, candidate,
                QStringLiteral("No operation asks for \"%1\", and it exports neither %2 nor %3.")
                    .arg(candidate.entry->name, QString::fromLatin1(factoryOfAnyLibrary()),
                         QString::fromLatin1(entryPoint)),
                QStringLiteral("The manager loads it and never calls it."),
                QStringLiteral("Correct name or exports, or take the entry out."));
        }
        return;
    }
    for (const QByteArray &factory : request->factories) {
        const std::string symbol = factory.toStdString();
        const LibraryFile *const maker = definitionOf(symbol, file, needed, m_search);
        if (!maker) {
            addFactoryMissing(candidate, factory);
        } else if (isForwardedNowhere(*maker, symbol, candidate)) {
            add(Code::FactoryMissing, candidate,
                QStringLiteral("The library exports %1 as a function of %2, which cannot be found.")
                    .arg(QString::fromLatin1(factory), maker->forwards.at(symbol)),
                QStringLiteral("The operation for it returns null, and nothing is logged."),
                QStringLiteral("Put that library beside the program, or name its folder by --library-dir."));
        } else if (maker->data.count(symbol) > 0) {
            add(Code::FactoryMissing, candidate,
                QStringLiteral("The library exports %1, but as data, not as a function.")
                    .arg(QString::fromLatin1(factory)),
                QStringLiteral("The operation for it calls the data, and the host crashes."),
                QStringLiteral("Make it a function."));
        }
    }
    if (!receiver) {
        add(Code::EntryPointMissing, candidate,
            QStringLiteral("The library does not export %1.").arg(QString::fromLatin1(entryPoint)),
            QStringLiteral("Messages to it vanish, and nothing is logged."),
            QStringLiteral("Export it; PLUGINMANGER_ENTRY_POINT in pluginMangerSdk.h does."));
    } else if (receiver->data.count(entryPoint) > 0) {
        add(Code::EntryPointMissing, candidate,
            QStringLiteral("The library exports %1, but as data, not as a function.")
                .arg(QString::fromLatin1(entryPoint)),
            QStringLiteral("The first message to it calls the data, and the host crashes."),
            QStringLiteral("Make it a function."));
    }
}

void LibraryCheck::addFactoryMissing(const Candidate &candidate, const QByteArray &factory)
{
    const QByteArray itanium = "_Z" + QByteArray::number(factory.size()) + factory;
    const QByteArray microsoft = '?' + factory + "@@";
    QStringList functions;
    bool isMangled = false;
    for (const auto &symbol : candidate.file->exports) {
        const QByteArray name = QByteArray::fromRawData(symbol.first.data(), int(symbol.first.size()));
        isMangled = isMangled || name.startsWith(itanium) || name.startsWith(microsoft);
        if (name.startsWith("Get") || name.startsWith("get"))
            functions.append(QString::fromLatin1(name));
    }
    functions.sort();
    QString advice =
        QStringLiteral("Export it as extern \"C\"; PLUGINMANGER_FACTORY in pluginMangerSdk.h does.");
    if (isMangled) {
        advice = QStringLiteral("It is there as a C++ function. Declare it extern \"C\".");
    } else if (!functions.isEmpty()) {
        const QStringList near = NearNames(functions).of(QString::fromLatin1(factory), 3);
        advice = QStringLiteral("It exports %1. ")
                     .arg((near.isEmpty() ? QStringList(functions.mid(0, 3)) : near).join(", "))
                 + advice;
    }
    add(Code::FactoryMissing, candidate,
        QStringLiteral("The library does not export %1.").arg(QString::fromLatin1(factory)),
        QStringLiteral("The operation for it returns null, and nothing is logged."), advice);
}

/// Walks what the library needs, and what that needs in turn; but leaves the system's own libraries to the
/// system.
void LibraryCheck::checkNeeded(const Candidate &candidate, QVector<Needed> &needed, bool &complete)
{
    struct Step
    {
        const LibraryFile *file;
        QString path;
        QStringList inherited;
        QString way;
    };
    QVector<Step> steps{{candidate.file.get(), candidate.path, {}, {}}};
    QSet<QString> seen;
    for (int i = 0; i < steps.size(); ++i) {
        const Step step = steps.at(i);
        for (const QString &name : step.file->needed) {
            if (seen.contains(name))
                continue;
            seen.insert(name);
            const FoundLibrary found = m_search.find(name, *step.file, step.path, step.inherited);
            if (found.state == FoundLibrary::State::Missing && isOfManager(name)) {
                leaveOutManager();
                continue;
            }
            if (found.state == FoundLibrary::State::Missing) {
                complete = false;
                add(Code::NeededMissing, candidate,
                    step.way.isEmpty() ? QStringLiteral("It needs %1, which cannot be found.").arg(name)
                                       : QStringLiteral("It needs %1, which needs %2, which cannot be found.")
                                             .arg(step.way, name),
                    failsToLoad,
                    candidate.file->format == LibraryFile::Format::Pe
                        ? QStringLiteral("Put it beside the program, or name its folder by --library-dir.")
                        : QStringLiteral(
                            "Ship it, or name its folder by --library-dir if the host finds it."));
                continue;
            }
            if (found.state == FoundLibrary::State::Unknown
                && candidate.file->format == LibraryFile::Format::Pe) {
                add(Code::NeededUnknown, candidate,
                    QStringLiteral("It needs %1, which is in no folder, and not known as one of Windows.")
                        .arg(step.way.isEmpty() ? name : step.way + QStringLiteral(", which needs ") + name),
                    failsToLoad,
                    QStringLiteral("If Windows does not have it, put it beside the program, or name its "
                                   "folder by --library-dir."));
                continue;
            }
            if (found.state == FoundLibrary::State::Unknown) {
                complete = false;
                m_report.leaveOut(
                    QStringLiteral("Libraries for %1 were not looked for in the system's folders, which "
                                   "are for this machine.")
                        .arg(candidate.file->machine));
                continue;
            }
            if (found.path.isEmpty())
                continue;
            needed.append({name, found.path, found.isSystem});
            if (found.isSystem)
                continue;
            const LibraryFile &file = m_search.read(found.path);
            if (file.problem == LibraryFile::Problem::TooLarge) {
                complete = false;
                m_report.leaveOut(found.path + QStringLiteral(": ") + file.detail);
                continue;
            }
            const bool isAlike = file.format == candidate.file->format;
            if (file.problem != LibraryFile::Problem::None || !isAlike) {
                complete = false;
                add(Code::NeededMissing, candidate,
                    QStringLiteral("It needs %1, and that file is no good: %2")
                        .arg(found.path, file.detail.isEmpty()
                                             ? QStringLiteral("It is a library for another system.")
                                             : file.detail),
                    file.problem == LibraryFile::Problem::Truncated ? mayEndHost : failsToLoad,
                    QStringLiteral("Build or copy that file anew."));
                continue;
            }
            QStringList inherited = step.inherited;
            if (step.file->runpath.isEmpty())
                inherited = expandedPaths(step.file->rpath, step.path) + inherited;
            steps.append({&file, found.path, inherited,
                          step.way.isEmpty() ? name : step.way + QStringLiteral(", which needs ") + name});
        }
    }
}

void LibraryCheck::checkSymbols(const Candidate &candidate, const QVector<Needed> &needed)
{
    if (candidate.file->format == LibraryFile::Format::Pe)
        checkPeSymbols(candidate, needed);
    else
        checkElfSymbols(candidate, needed);
}

/// What a library cannot do without, and does not have itself.
Symbols importsOf(const LibraryFile &file)
{
    Symbols symbols;
    for (const ImportedSymbol &symbol : file.imports) {
        if (!symbol.isWeak && !isOfSanitizer(symbol.name) && !file.provides(symbol))
            symbols.push_back(symbol);
    }
    return symbols;
}

void removeExported(Symbols &symbols, const LibraryFile &file)
{
    symbols.erase(std::remove_if(symbols.begin(), symbols.end(),
                                 [&](const ImportedSymbol &symbol) { return file.provides(symbol); }),
                  symbols.end());
}

/// Takes those symbols out that the libraries have which a file needs, then those that each host has loaded,
/// and what these need in turn. Takes out all if one of them cannot be read.
void LibraryCheck::removeResolved(Symbols &symbols, const LibraryFile &file, const QString &path,
                                  const QStringList &needed) const
{
    QStringList paths;
    QSet<QString> seen;
    const auto enqueue = [&](const QString &library) {
        if (!library.isEmpty() && !seen.contains(library)) {
            seen.insert(library);
            paths.append(library);
        }
    };
    for (const QString &library : needed)
        enqueue(library);
    bool hostIsAdded = false;
    for (int i = 0; !symbols.empty(); ++i) {
        if (i == paths.size() && !hostIsAdded) {
            hostIsAdded = true;
            for (const QString &library : librariesOfHosts())
                enqueue(m_search.find(library, file, path, {}).path);
        }
        if (i == paths.size())
            return;
        const LibraryFile &library = m_search.read(paths.at(i));
        if (library.exportsAreComplete)
            removeExported(symbols, library);
        else
            symbols.clear();
        for (const QString &name : library.needed)
            enqueue(m_search.find(name, library, paths.at(i), {}).path);
    }
}

/// What a library uses that neither it has, nor what it needs, nor what each host has loaded.
const Symbols &LibraryCheck::unresolvedOf(const QString &path)
{
    const auto known = m_unresolved.constFind(path);
    if (known != m_unresolved.constEnd())
        return *known;
    const LibraryFile &file = m_search.read(path);
    Symbols symbols = importsOf(file);
    removeResolved(symbols, file, path, {path});
    return *m_unresolved.insert(path, symbols);
}

void LibraryCheck::checkElfSymbols(const Candidate &candidate, const QVector<Needed> &needed)
{
    QStringList paths;
    for (const Needed &library : needed)
        paths.append(library.path);
    Symbols missing = importsOf(*candidate.file);
    removeResolved(missing, *candidate.file, candidate.path, paths);
    addSymbolsMissing(candidate, missing,
                      QStringLiteral("It uses what none of the libraries that it needs has"));
    for (const Needed &library : needed) {
        if (library.isSystem)
            continue;
        // What is loaded together finds each other's functions.
        missing = unresolvedOf(library.path);
        removeExported(missing, *candidate.file);
        removeResolved(missing, *candidate.file, candidate.path, paths);
        addSymbolsMissing(candidate, missing,
                          QStringLiteral("It needs %1, which uses what none of the libraries that are loaded "
                                         "with it has")
                              .arg(library.path));
    }
}

void LibraryCheck::checkPeSymbols(const Candidate &candidate, const QVector<Needed> &needed)
{
    checkPeSymbolsOf(*candidate.file, QStringLiteral("It uses"), candidate, needed);
    for (const Needed &library : needed) {
        checkPeSymbolsOf(m_search.read(library.path),
                         QStringLiteral("It needs %1, which uses").arg(library.path), candidate, needed);
    }
}

void LibraryCheck::checkPeSymbolsOf(const LibraryFile &user, const QString &who, const Candidate &candidate,
                                    const QVector<Needed> &needed)
{
    for (const Needed &library : needed) {
        const LibraryFile &file = m_search.read(library.path);
        Symbols missing;
        for (const ImportedSymbol &symbol : user.imports) {
            if (symbol.library.compare(library.name, Qt::CaseInsensitive) == 0
                && file.exports.count(symbol.name) == 0)
                missing.push_back(symbol);
        }
        addSymbolsMissing(candidate, missing,
                          QStringLiteral("%1 what %2 does not have").arg(who, library.path));
    }
}

/// The host has it, and finds it by its own rules.
void LibraryCheck::leaveOutManager()
{
    m_report.leaveOut(
        QStringLiteral("What plug-ins use of the manager's library was not looked at, as it was "
                       "not found: name its folder by --library-dir."));
}

void LibraryCheck::addSymbolsMissing(const Candidate &candidate, Symbols symbols, const QString &message)
{
    if (m_search.find(librariesOfHosts().last(), *candidate.file, candidate.path, {}).path.isEmpty()) {
        const auto others = std::remove_if(symbols.begin(), symbols.end(), [](const ImportedSymbol &symbol) {
            return isOfManager(QString::fromStdString(symbol.name));
        });
        if (others != symbols.end())
            leaveOutManager();
        symbols.erase(others, symbols.end());
    }
    if (symbols.empty())
        return;
    constexpr std::size_t most = 5;
    std::sort(symbols.begin(), symbols.end(),
              [](const ImportedSymbol &left, const ImportedSymbol &right) { return left.name < right.name; });
    QStringList names;
    for (std::size_t i = 0; i < symbols.size() && i < most; ++i)
        names.append(textOf(symbols[i]));
    if (symbols.size() > most)
        names.append(QStringLiteral("and %1 more").arg(symbols.size() - most));
    add(Code::SymbolMissing, candidate,
        QStringLiteral("%1: %2.").arg(message, names.join(QStringLiteral(", "))), failsToLoad,
        QStringLiteral(
            "Link it with the library that has them, in the version that is shipped. c++filt shows the "
            "names as they are written."));
}

void LibraryCheck::checkVersions(const Candidate &candidate, const QVector<Needed> &needed)
{
    checkVersionsOf(*candidate.file, QStringLiteral("It needs"), candidate, needed);
    for (const Needed &library : needed) {
        if (!library.isSystem)
            checkVersionsOf(m_search.read(library.path),
                            QStringLiteral("It needs %1, which needs").arg(library.path), candidate, needed);
    }
}

void LibraryCheck::checkVersionsOf(const LibraryFile &user, const QString &who, const Candidate &candidate,
                                   const QVector<Needed> &needed)
{
    for (const ImportedVersion &version : user.importedVersions) {
        const auto library = std::find_if(needed.begin(), needed.end(),
                                          [&](const Needed &other) { return other.name == version.library; });
        if (library == needed.end())
            continue;
        const LibraryFile &file = m_search.read(library->path);
        if (file.definedVersions.empty() || file.definedVersions.count(version.version) > 0)
            continue;
        add(Code::SymbolVersion, candidate,
            QStringLiteral("%1 %2 of %3, and %4 does not have it.")
                .arg(who, QString::fromStdString(version.version), version.library, library->path),
            failsToLoad,
            QStringLiteral("Build it on the oldest system that it must run on, or ship what it needs."));
    }
}

void LibraryCheck::addQtVersion(const Candidate &candidate, const QString &built, const QString &found)
{
    add(Code::QtVersion, candidate, QStringLiteral("It was built with Qt %1, and %2.").arg(built, found),
        candidate.configuration->set == Set::Desktop
            ? failsToLoad
            : QStringLiteral(
                "Nobody checks a plain library's Qt: the load fails, or the host crashes later."),
        QStringLiteral("Build it with the host's Qt."));
}

void LibraryCheck::checkQt(const Candidate &candidate, const QVector<Needed> &needed)
{
    constexpr int ourMajor = QT_VERSION_MAJOR;
    const QString stamped = QString::fromLatin1(partsOf(candidate.file->stamp).value("qt"));
    const int built = candidate.file->qtPluginVersion ? candidate.file->qtPluginVersion : versionOf(stamped);
    const int major = built ? built >> 8 : qtMajorOf(*candidate.file);
    if (major && major != ourMajor) {
        addQtVersion(candidate, built ? versionText(built) : QString::number(major),
                     QStringLiteral("hosts of the manager have Qt %1").arg(ourMajor));
        return;
    }
    const auto core = std::find_if(needed.begin(), needed.end(),
                                   [](const Needed &library) { return isQtCore(library.name); });
    if (!built || core == needed.end())
        return;
    const QString fileName = QFileInfo(QFileInfo(core->path).canonicalFilePath()).fileName();
    const int found = candidate.file->format == LibraryFile::Format::Pe
                          ? versionOf(m_search.read(core->path).resourceVersion)
                          : versionOf(fileName.section(QStringLiteral(".so."), 1));
    if (found && (found >> 8) == (built >> 8) && found < built)
        addQtVersion(candidate, versionText(built),
                     QStringLiteral("the older %1 was found in %2").arg(versionText(found), core->path));
}

void LibraryCheck::checkStamp(const Candidate &candidate)
{
    if (candidate.file->stamp.isEmpty())
        return;
    const QMap<QByteArray, QByteArray> ours = partsOf(PluginMangerSdk::abiStamp().text);
    const QMap<QByteArray, QByteArray> theirs = partsOf(candidate.file->stamp);
    // A later format may tell things in another way.
    if (theirs.value("pluginMangerAbi") != ours.value("pluginMangerAbi"))
        return;
    QStringList differences;
    for (const char *key : {"pointer", "record"}) {
        if (theirs.value(key) != ours.value(key))
            differences.append(QStringLiteral("%1 is %2 and should be %3")
                                   .arg(QLatin1String(key), QString::fromLatin1(theirs.value(key)),
                                        QString::fromLatin1(ours.value(key))));
    }
    if (differences.isEmpty())
        return;
    add(Code::AbiStamp, candidate,
        QStringLiteral("Its stamp differs: %1.").arg(differences.join(QStringLiteral("; "))),
        QStringLiteral("The load succeeds, and the first message to it is misread or crashes the host."),
        QStringLiteral("Build it anew with the headers of the host's pluginManger, for 64 bits."));
}

/// What may be either way, but must be the same for all libraries of a process. Known of Windows alone.
void LibraryCheck::checkBuilds(const QVector<Candidate> &candidates)
{
    QVector<Candidate> builds[2];
    QVector<Candidate> compilers[2];
    for (const Candidate &candidate : candidates) {
        if (candidate.file->format != LibraryFile::Format::Pe)
            continue;
        const QtBuild build = qtBuildOf(*candidate.file);
        if (build == QtBuild::Both) {
            add(Code::QtBuild, candidate, QStringLiteral("It needs debug and release libraries of Qt."),
                QStringLiteral("Two Qts are in one process, and it crashes."),
                QStringLiteral("Build it, and what it is linked with, all debug or all release."));
        } else if (build != QtBuild::None) {
            builds[build == QtBuild::Debug ? 1 : 0].append(candidate);
        }
        const QByteArray compiler = partsOf(candidate.file->stamp).value("compiler");
        if (!compiler.isEmpty())
            compilers[compiler.startsWith("MSVC") ? 1 : 0].append(candidate);
    }
    const auto fewer = [](const QVector<Candidate>(&two)[2]) {
        return two[1].size() > two[0].size() ? 0 : 1;
    };
    if (!builds[0].isEmpty() && !builds[1].isEmpty()) {
        const int odd = fewer(builds);
        for (const Candidate &candidate : qAsConst(builds[odd])) {
            add(Code::QtBuild, candidate,
                QStringLiteral("It needs the %1 libraries of Qt, and most of the set the others.")
                    .arg(odd == 1 ? QStringLiteral("debug") : QStringLiteral("release")),
                QStringLiteral("Two Qts are in one process, and it crashes."),
                QStringLiteral("Build all of the set debug, or all release."));
        }
    }
    if (!compilers[0].isEmpty() && !compilers[1].isEmpty()) {
        for (const Candidate &candidate : qAsConst(compilers[fewer(compilers)])) {
            add(Code::AbiStamp, candidate,
                QStringLiteral("It was built with %1, and most of the set with another family of compilers.")
                    .arg(QString::fromLatin1(partsOf(candidate.file->stamp).value("compiler"))),
                QStringLiteral(
                    "Classes of Qt cannot cross from one to the other: it fails to load, or crashes."),
                QStringLiteral("Build all of the set with one compiler."));
        }
    }
}

}

bool isRefusal(Code code)
{
    constexpr Code refusals[] = {Code::LibraryUnreadable, Code::LibraryFormat, Code::LibraryTruncated,
                                 Code::LibraryDamaged,    Code::NeededMissing, Code::SymbolMissing,
                                 Code::SymbolVersion};
    return std::find(std::begin(refusals), std::end(refusals), code) != std::end(refusals);
}

void checkLibraries(const QVector<Configuration> &configurations, const LibrarySearch &search, Report &report)
{
    LibraryCheck(search, report).run(configurations);
}

}

#include "Checks.h"

#include <QtCore/QStringList>

#include <array>

namespace {

using namespace PluginCheck;

constexpr Severity error = Severity::Error;
constexpr Severity warning = Severity::Warning;
constexpr Severity note = Severity::Note;

constexpr std::array checks{
    Check{Code::ConfigUnreadable, "config-unreadable", error, "The configuration file cannot be read",
          "The file is missing, is a folder, a pipe or a device, or may not be read. The manager logs one "
          "line, "
          "loads nothing and reports success. At a pipe it waits for whoever writes to it."},
    Check{
        Code::ConfigCase, "config-case", warning,
        "The configuration file's name is spelled with other capitals",
        "The managers read pluginconfig.json, pluginconfig4CAM.json and pluginconfig4DFM.json. Spelled with "
        "other capitals, such a name is another one on Linux, and the file is not found. Windows finds it."},
    Check{
        Code::ConfigSyntax, "config-syntax", error, "The configuration file is no JSON",
        "One mistake costs the whole file: the manager logs that it could not parse it and loads nothing of "
        "the set. Frequent mistakes are a comma after the last entry, a missing comma between two, a "
        "comment, "
        "and a file saved as UTF-16."},
    Check{Code::ConfigList, "config-list", error, "The file has no list of plug-ins",
          "The manager looks in the root object for an array \"pluginList\", spelled like this. Without it "
          "nothing is loaded, and nothing is logged either."},
    Check{Code::ConfigEmpty, "config-empty", note, "The list of plug-ins is empty",
          "The manager loads nothing of this set, and logs nothing about it. That is how a set without "
          "plug-ins is "
          "written, so it is only a note."},
    Check{
        Code::ConfigSchema, "config-schema", warning, "The file breaks its schema",
        "The JSON is not built as pluginconfig.schema.json says. The manager passes over what it does not "
        "know, for example a misspelled \"dependancies\", and takes a wrong type for an empty value, except "
        "in what it compares: there it converts."},
    Check{
        Code::DuplicateKey, "duplicate-key", error, "A key stands twice in one object",
        "Of two equal keys in one JSON object the later one counts, and what stands under the earlier one is "
        "lost. With \"pluginList\" that is a whole list."},
    Check{Code::DuplicateName, "duplicate-name", warning, "A plug-in is listed twice",
          "The manager has one place for each name. The plug-in is loaded once, and version and dependencies "
          "are those of the entry that stands later in the file."},
    Check{
        Code::NameEmpty, "name-empty", error, "An entry has no name",
        "An entry without a name, with an empty one, or one that is no object is an entry with an empty name "
        "to the manager, which then tries to load a library \".dll\" and shows a message box."},
    Check{
        Code::NameSuffix, "name-suffix", error, "A name ends in \".dll\"",
        "The manager appends \".dll\" to each name. The name \"X.dll\" stands for a file \"X.dll.dll\". An "
        "entry of that name has another effect, too: its dependencies are those that the manager checks for "
        "the plug-in \"X\"."},
    Check{
        Code::NamePath, "name-path", error, "A name has a folder or a drive in it",
        "Libraries are listed under the name by which they were loaded. Operations ask for a file name "
        "without a folder, so they do not find this one; only Ov_Register_Common can be given such a name."},
    Check{Code::NameControl, "name-control", error, "A name has a control character in it",
          "A NUL ends a file name for the system's loader. Windows allows none of these characters in a file "
          "name, and elsewhere they come from editing."},
    Check{Code::NameUnusual, "name-unusual", warning,
          "A name is hard to see or to type, or is none on Windows",
          "A blank at an end, a character that is not to be seen, or in a set for Linux a colon or a "
          "backslash. "
          "The manager takes the name as it is, and so has to be the name of the library's file, and what "
          "operations ask for."},
    Check{Code::NameNearMiss, "name-near-miss", warning, "Nothing asks for this name, but for one like it",
          "The operations of the CAM manager and the tools of the desktop manager ask for libraries by fixed "
          "names, and compare each letter with its case. This name is none of them, but differs little from "
          "one, or is one of another set."},
    Check{
        Code::NameUnused, "name-unused", warning, "Nothing can be done with this library",
        "The name is none that an operation asks for, and the library exports neither GetPluginDFMInstance, "
        "by which Ov_Register_Common makes elements of any library, nor recMsgFromManager. The manager loads "
        "it and never calls it."},
    Check{Code::VersionType, "version-type", warning, "A version is no text",
          "Versions are compared with the conversions of Qt's variants: the number 2 satisfies the text "
          "\"2.0\", "
          "while the text \"2.0\" does not satisfy the number 2. Write versions as texts."},
    Check{
        Code::DependencyMissing, "dependency-missing", error, "A dependency is not in the list",
        "The plug-in needs another one that its file does not list. The manager rarely notices: it looks "
        "dependencies up under \"X.dll\", while the list has \"X\", and so loads the plug-in all the same."},
    Check{Code::DependencyVersion, "dependency-version", error, "A dependency is listed in another version",
          "The plug-in needs another one in a version that the list does not have. Versions are not ordered: "
          "only an equal one is right. As with a missing dependency, the manager rarely notices."},
    Check{Code::DependencySelf, "dependency-self", error, "A plug-in depends on itself",
          "Such a dependency is never met where the manager checks it."},
    Check{
        Code::DependencyCycle, "dependency-cycle", error, "Plug-ins depend on each other in a circle",
        "Such dependencies are never met where the manager checks them, and no order of start-up can satisfy "
        "them."},
    Check{
        Code::DependencyIgnored, "dependency-ignored", warning, "A dependency in a DFM file is not met",
        "The CAM manager checks dependencies by the CAM file alone. Those in the DFM file are never looked "
        "at, so nobody will report this one. A dependency on a plug-in of the CAM set counts as met when the "
        "CAM file is checked in the same call."},
    Check{Code::PluginRefused, "plugin-refused", error, "The manager refuses to load the plug-in",
          "The manager looks the dependencies of \"X\" up under the name of its file, \"X.dll\", for "
          "plug-ins of the "
          "CAM and the DFM set in the CAM file. Where that has an entry \"X.dll\" whose dependencies are not "
          "met, "
          "there or further down, the library of \"X\" is not loaded."},
    Check{Code::LibraryMissing, "library-missing", error, "The library is in none of the folders",
          "The manager logs that the load failed, shows a message box, and goes on. Operations that need the "
          "library return null."},
    Check{Code::LibraryCase, "library-case", error, "The library's file is spelled with other capitals",
          "On Linux this is another name, and the file is not found. Windows finds it."},
    Check{Code::LibraryUnreadable, "library-unreadable", error, "The library's file cannot be read",
          "It may not be read, or is no file."},
    Check{Code::LibraryFormat, "library-format", error, "The file is no library",
          "The file has the name of a library, but is neither an ELF shared object nor a PE DLL, or one that "
          "the loader of Linux refuses: a program, or a library that was linked with -z nodlopen."},
    Check{
        Code::LibraryTruncated, "library-truncated", error, "The library's file is cut off",
        "Its headers promise more than the file has. The manager does not give such a plug-in to the loader: "
        "it logs \"file too short\", shows a message box, and goes on. It does not look at libraries that "
        "the plug-in needs; one of these can end the host with a bus error on Linux."},
    Check{Code::LibraryDamaged, "library-damaged", error, "The library's file is damaged",
          "Its headers contradict themselves, so that it cannot be read."},
    Check{
        Code::LibraryMachine, "library-machine", error, "The library is built for another machine",
        "The library has another processor, word size or format than most libraries of the call. One process "
        "cannot load both."},
    Check{Code::FactoryMissing, "factory-missing", error, "The library lacks the factory that is asked for",
          "The operation for this library resolves one function by name. Without it the operation returns "
          "null, and nothing is logged. A C++ function is found only when it is declared extern \"C\" and "
          "exported. A variable of that name is called like a function, which crashes the host."},
    Check{
        Code::EntryPointMissing, "entry-point-missing", warning, "The library cannot receive messages",
        "Messages are handed to an exported function recMsgFromManager. Without it they vanish, and nothing "
        "is logged. Frames are not told either which job they show."},
    Check{Code::QtPluginMissing, "qt-plugin-missing", error, "The desktop tool is no Qt plug-in",
          "The desktop manager loads its tools with QPluginLoader, which refuses a library without Qt's "
          "metadata or without an instance."},
    Check{Code::NeededMissing, "needed-missing", error, "A library that this one needs cannot be found",
          "The load fails. On Windows the reason in the log does not say which library is missing."},
    Check{
        Code::NeededUnknown, "needed-unknown", warning, "A DLL that this one needs may be missing",
        "It is in none of the folders, and is not known as one of those that Windows brings. If it is one of "
        "these, all is well; if not, the load fails."},
    Check{
        Code::SymbolMissing, "symbol-missing", error, "A function that the library uses is nowhere",
        "None of the libraries that this one needs has the function or variable, nor one that each host has "
        "loaded. The manager asks the loader for all of them at once, so the load fails. It does so, too, "
        "when a library that this one needs lacks something."},
    Check{
        Code::SymbolVersion, "symbol-version", error, "The library needs a newer version of another one",
        "The library was linked with a newer version of a library that it needs, and uses what the one that "
        "was found does not have. The load fails."},
    Check{Code::QtVersion, "qt-version", error, "The library was built with another Qt",
          "Qt refuses plug-ins that were built with a newer minor version than its own or with another major "
          "one. Plain libraries are not checked by anybody: they fail to load, or crash later."},
    Check{
        Code::QtBuild, "qt-build", error, "Debug and release builds of Qt are mixed",
        "On Windows the debug libraries of Qt are others than the release ones. A set that uses both brings "
        "two Qts into one process."},
    Check{Code::AbiStamp, "abi-stamp", error, "The library was built for another message record",
          "The stamp that pluginMangerSdk.h puts into a library tells with what it was built. The size of a "
          "pointer or the layout of PluginMetaData differs from the manager's, or the compiler's family from "
          "that of the other libraries on Windows. Messages would be misread."},
    Check{Code::ProbeFailed, "probe-failed", error, "The library did not load",
          "The loader refused the library when it was tried. Its own reason is given."},
    Check{Code::ProbeCrashed, "probe-crashed", error, "The library crashed the process that loaded it",
          "Code of the library that runs when it is loaded, or the constructor of its root object, ended the "
          "process with a signal. The host would end, too."},
    Check{Code::ProbeHung, "probe-hung", error, "Loading the library took too long",
          "Loading did not end within the time that --timeout allows. The host would hang."},
    Check{
        Code::ProbeExited, "probe-exited", error, "The library ended the process that loaded it",
        "Code of the library that runs when it is loaded called exit(). The host would end without a word."},
    Check{Code::ProbeThrew, "probe-threw", error, "The library threw an exception when it was loaded",
          "A constructor of the library threw something that nobody catches. The host would end."},
    Check{Code::ProbeInterface, "probe-interface", error, "The root object lacks an interface",
          "A desktop tool's root object must implement PluginInterface, or the manager drops the plug-in "
          "silently, and the interface of its tool, or the host ends with a fatal error."},
};

static_assert(checks.size() == static_cast<std::size_t>(Code::Count), "every code has its row");

}

namespace PluginCheck {

QString nameOf(Severity severity)
{
    switch (severity) {
    case Severity::Note:
        return QStringLiteral("note");
    case Severity::Warning:
        return QStringLiteral("warning");
    case Severity::Error:
        break;
    }
    return QStringLiteral("error");
}

const Check &checkOf(Code code)
{
    return checks[static_cast<std::size_t>(code)];
}

const Check *checkNamed(const QString &name)
{
    for (const Check &check : checks) {
        if (name == QLatin1String(check.name))
            return &check;
    }
    return nullptr;
}

QString listOfChecks()
{
    QString list;
    for (const Check &check : checks) {
        list += QStringLiteral("%1  %2  %3\n")
                    .arg(QLatin1String(check.name), -19)
                    .arg(nameOf(check.severity), -7)
                    .arg(QLatin1String(check.title));
    }
    return list;
}

QString explanationOf(const Check &check)
{
    constexpr int width = 78;
    QString text = QStringLiteral("%1 (%2): %3\n\n")
                       .arg(QLatin1String(check.name), nameOf(check.severity), QLatin1String(check.title));
    int column = 0;
    for (const QString &word : QString::fromUtf8(check.explanation).split(' ')) {
        if (column > 0 && column + 1 + word.size() > width) {
            text += '\n';
            column = 0;
        }
        text += (column > 0 ? QStringLiteral(" ") : QString()) + word;
        column += int(word.size()) + (column > 0 ? 1 : 0);
    }
    return text + '\n';
}

QString tableOfChecks()
{
    QString table = QStringLiteral("| Code | Severity | What |\n|---|---|---|\n");
    for (const Check &check : checks) {
        table += QStringLiteral("| `%1` | %2 | %3. %4 |\n")
                     .arg(QLatin1String(check.name), nameOf(check.severity), QLatin1String(check.title),
                          QString::fromUtf8(check.explanation));
    }
    return table;
}

}

#pragma once

#include <QtCore/QString>

namespace PluginCheck {

enum class Severity { Note, Warning, Error };

QString nameOf(Severity severity);

/// Everything that can be found, in the order in which it is listed.
enum class Code {
    ConfigUnreadable,
    ConfigCase,
    ConfigSyntax,
    ConfigList,
    ConfigEmpty,
    ConfigSchema,
    DuplicateKey,
    DuplicateName,
    NameEmpty,
    NameSuffix,
    NamePath,
    NameControl,
    NameUnusual,
    NameNearMiss,
    NameUnused,
    VersionType,
    DependencyMissing,
    DependencyVersion,
    DependencySelf,
    DependencyCycle,
    DependencyIgnored,
    PluginRefused,
    LibraryMissing,
    LibraryCase,
    LibraryUnreadable,
    LibraryFormat,
    LibraryTruncated,
    LibraryDamaged,
    LibraryMachine,
    FactoryMissing,
    EntryPointMissing,
    QtPluginMissing,
    NeededMissing,
    NeededUnknown,
    SymbolMissing,
    SymbolVersion,
    QtVersion,
    QtBuild,
    AbiStamp,
    ProbeFailed,
    ProbeCrashed,
    ProbeHung,
    ProbeExited,
    ProbeThrew,
    ProbeInterface,
    Count
};

/// What is known of a kind of finding. The lists that users see are made of these.
struct Check
{
    Code code;
    const char *name;
    Severity severity;
    const char *title;
    const char *explanation;
};

const Check &checkOf(Code code);

/// Returns the check of that name, or null.
const Check *checkNamed(const QString &name);

/// One line for each check.
QString listOfChecks();

/// What a check looks for, why it matters and what to do, for people.
QString explanationOf(const Check &check);

/// The checks as a table for the documentation.
QString tableOfChecks();

}

#include "Configuration.h"

#include "SyntaxFault.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <array>

namespace PluginCheck {

namespace {

/// A manager reads more than this, too, but nobody means it.
constexpr qint64 largestFile = qint64(128) * 1024 * 1024;

QVariantList toVariantList(const QJsonArray &array);

/// Converts as the manager's reader does: every number is a double to it.
QVariant toVariant(const QJsonValue &value)
{
    if (value.isDouble())
        return value.toDouble();
    if (value.isArray())
        return toVariantList(value.toArray());
    return value.toVariant();
}

QVariantList toVariantList(const QJsonArray &array)
{
    QVariantList list;
    list.reserve(array.size());
    for (const QJsonValue value : array)
        list.append(toVariant(value));
    return list;
}

const QString nothingLoaded =
    QStringLiteral("The manager logs one line, loads nothing of this set and reports success.");

void addUnreadable(const QString &file, const QString &why, Report &report,
                   const QString &consequence = nothingLoaded)
{
    report.add({Code::ConfigUnreadable,
                file,
                {},
                file,
                {},
                why,
                consequence,
                QStringLiteral("Look at the name and the folder.")});
}

/// Whether there is a file that ends. What another program hands over by a pipe without a name ends with it.
bool mayBeRead(const QString &path, Report &report)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        addUnreadable(path, QStringLiteral("There is no such file."), report);
        return false;
    }
    if (info.isDir()) {
        addUnreadable(path, QStringLiteral("The file cannot be opened: it is a folder."), report);
        return false;
    }
    const bool hasName = !info.canonicalFilePath().isEmpty();
    if (!info.isFile() && hasName) {
        addUnreadable(
            path, QStringLiteral("This is no file, but a pipe or a device."), report,
            QStringLiteral("The manager reads it all the same, and waits for its end, if it has one."));
        return false;
    }
    return true;
}

/// Windows has one name for both spellings.
void checkFileName(const QString &path, Report &report)
{
#ifdef Q_OS_WIN
    Q_UNUSED(path)
    Q_UNUSED(report)
#else
    constexpr std::array namesRead{"pluginconfig.json", "pluginconfig4CAM.json", "pluginconfig4DFM.json"};
    const QString name = QFileInfo(path).fileName();
    for (const char *const read : namesRead) {
        const QLatin1String meant(read);
        if (name == meant || name.compare(meant, Qt::CaseInsensitive) != 0)
            continue;
        report.add(
            {Code::ConfigCase,
             path,
             {},
             path,
             {},
             QStringLiteral("The file is called \"%1\", and managers read \"%2\".").arg(name, meant),
             QStringLiteral("On Linux the manager logs that there is no such file, loads nothing of this "
                            "set and reports success."),
             QStringLiteral("Call it \"%1\".").arg(meant)});
    }
#endif
}

/// What an expert sees at a glance.
QString adviceOn(Fault fault)
{
    switch (fault) {
    case Fault::EndsEarly:
        return QStringLiteral("The file ends too early. Close what is open.");
    case Fault::CommaBeforeEnd:
        return QStringLiteral("Take this comma out, or write what should follow it.");
    case Fault::CommaTooMany:
        return QStringLiteral("Take this comma out, or write what should stand before it.");
    case Fault::CommaMissing:
        return QStringLiteral("Write a comma before this place, or look for what is too much before it.");
    case Fault::ColonMissing:
        return QStringLiteral("Write a colon between the key and its value.");
    case Fault::TextWithoutEnd:
        return QStringLiteral("The text that begins here has no end. Write its closing double quote.");
    case Fault::SingleQuote:
        return QStringLiteral("Texts stand in double quotes.");
    case Fault::Comment:
        return QStringLiteral("JSON has no comments. Take it out.");
    case Fault::WrongEnd:
        return QStringLiteral(
            "This closes something else than what is open. Look for the bracket that is missing or "
            "too much.");
    case Fault::MoreAfterEnd:
        return QStringLiteral(
            "The file goes on behind its end. Take out what is too much, or the bracket before it.");
    case Fault::KeyExpected:
        return QStringLiteral("Write a key in double quotes here, or close the object.");
    case Fault::NoBeginning:
        return QStringLiteral("The text of a set begins with { and ends with }.");
    case Fault::Other:
        break;
    }
    return QStringLiteral("Look at this place and before it.");
}

QString adviceOnSyntax(const QByteArray &text, const SyntaxFault &fault, const QJsonParseError &error)
{
    if (text.startsWith("\xff\xfe") || text.startsWith("\xfe\xff") || text.left(4).contains('\0'))
        return QStringLiteral("The file looks like UTF-16. Save it as UTF-8.");
    if (error.error == QJsonParseError::IllegalUTF8String)
        return QStringLiteral("Save the file as UTF-8; it may be in the code page of the system.");
    if (error.error == QJsonParseError::DeepNesting)
        return QStringLiteral("Take the nested arrays and objects out; more than 1024 levels are not read.");
    if (text.trimmed().isEmpty())
        return QStringLiteral("The file is empty. An empty set is written { \"pluginList\": [] }.");
    return adviceOn(fault.fault);
}

/// Where the parser knows more than where the text goes wrong, its own place is the right one.
SyntaxFault faultOf(const QByteArray &text, const QJsonParseError &error)
{
    const bool isKnownBest =
        error.error == QJsonParseError::IllegalUTF8String || error.error == QJsonParseError::DeepNesting;
    return isKnownBest ? SyntaxFault{Fault::Other, error.offset} : syntaxFaultIn(text, error.offset);
}

void addSyntax(const QString &file, const QByteArray &text, const QJsonParseError &error, Report &report)
{
    const SyntaxFault fault = faultOf(text, error);
    Finding finding{Code::ConfigSyntax,
                    file,
                    {},
                    file,
                    placeOf(text, fault.offset),
                    QStringLiteral("This is no JSON: %1.").arg(error.errorString()),
                    nothingLoaded,
                    adviceOnSyntax(text, fault, error)};
    const QPair<QString, int> source = sourceAt(text, fault.offset);
    finding.source = source.first;
    finding.sourceColumn = source.second;
    report.add(finding);
}

Entry entryOf(const QJsonValue &value, const EntryPlaces &places)
{
    const QJsonObject object = value.toObject();
    Entry entry{object.value(QLatin1String("name")).toString(),
                toVariant(object.value(QLatin1String("version"))),
                {},
                places};
    const QJsonArray dependencies = object.value(QLatin1String("dependencies")).toArray();
    for (int i = 0; i < dependencies.size(); ++i) {
        const QJsonObject dependency = dependencies.at(i).toObject();
        const auto member = [&](const char *key) {
            const auto found = dependency.constFind(QLatin1String(key));
            return found == dependency.constEnd() ? QVariant() : toVariant(*found);
        };
        entry.dependencies.append({member("name"), member("version"), places.dependencies.value(i)});
    }
    entry.places.dependencies.clear();
    return entry;
}

}

QString nameOf(Set set)
{
    switch (set) {
    case Set::Cam:
        return QStringLiteral("cam");
    case Set::Dfm:
        return QStringLiteral("dfm");
    case Set::Desktop:
        break;
    }
    return QStringLiteral("desktop");
}

std::optional<Set> setNamed(const QString &name)
{
    for (const Set set : {Set::Cam, Set::Dfm, Set::Desktop}) {
        if (name == nameOf(set))
            return set;
    }
    return std::nullopt;
}

std::optional<Set> setOfFile(const QString &file)
{
    const QString name = QFileInfo(file).completeBaseName();
    if (name.endsWith(QLatin1String("4CAM"), Qt::CaseInsensitive))
        return Set::Cam;
    if (name.endsWith(QLatin1String("4DFM"), Qt::CaseInsensitive))
        return Set::Dfm;
    if (name.compare(QLatin1String("pluginconfig"), Qt::CaseInsensitive) == 0)
        return Set::Desktop;
    return std::nullopt;
}

std::optional<Configuration> readConfiguration(const QString &path, Set set, Report &report)
{
    QFile file(path);
    if (!mayBeRead(path, report))
        return std::nullopt;
    // As the manager does, so that what it sees is what is looked at.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        addUnreadable(path, QStringLiteral("The file cannot be opened: %1.").arg(file.errorString()), report);
        return std::nullopt;
    }
    const QByteArray text = file.size() > largestFile ? QByteArray() : file.read(largestFile + 1);
    if (file.size() > largestFile || text.size() > largestFile) {
        report.leaveOutConfiguration(
            QStringLiteral("%1 is larger than 128 MiB, too large to be checked.").arg(path));
        return std::nullopt;
    }
    checkFileName(path, report);
    return parseConfiguration(path, set, text, report);
}

std::optional<Configuration> parseConfiguration(const QString &file, Set set, const QByteArray &text,
                                                Report &report)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        addSyntax(file, text, error, report);
        return std::nullopt;
    }

    Configuration configuration{file, set, text, document.object(), document.isObject(), placesIn(text)};
    const QJsonArray list = configuration.root.value(QLatin1String("pluginList")).toArray();
    configuration.entries.reserve(list.size());
    for (int i = 0; i < list.size(); ++i) {
        configuration.entries.append(entryOf(list.at(i), configuration.places.entries.value(i)));
        configuration.entryOfName.insert(configuration.entries.last().name, i);
    }
    return configuration;
}

QString textOf(const QVariant &value)
{
    if (value.userType() == QMetaType::QString)
        return value.toString();
    if (!value.isValid())
        return QStringLiteral("nothing");
    if (value.userType() == QMetaType::QVariantList)
        return QStringLiteral("an array");
    if (value.userType() == QMetaType::QVariantMap)
        return QStringLiteral("an object");
    return value.isNull() ? QStringLiteral("null") : value.toString();
}

}

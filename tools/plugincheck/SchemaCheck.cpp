#include "SchemaCheck.h"

#include "ConfigurationChecks.h"

#ifdef PLUGINCHECK_HAS_VALIJSON
#    include "Names.h"
#    include "schemaText.h"

#    include <QtCore/QJsonDocument>

#    include <valijson/adapters/qtjson_adapter.hpp>
#    include <valijson/schema.hpp>
#    include <valijson/schema_parser.hpp>
#    include <valijson/validation_results.hpp>
#    include <valijson/validator.hpp>

#    include <set>
#    include <string>
#    include <vector>
#endif

namespace PluginCheck {

#ifdef PLUGINCHECK_HAS_VALIJSON

namespace {

const valijson::Schema &schema()
{
    static const auto *const parsed = [] {
        const QJsonValue document = QJsonDocument::fromJson(schemaText).object();
        auto *const result = new valijson::Schema;
        valijson::SchemaParser().populateSchema(valijson::adapters::QtJsonAdapter(document), *result);
        return result;
    }();
    return *parsed;
}

/// What stands between brackets in a part of a path, "[name]" or "[3]".
QString inner(const std::string &part)
{
    return QString::fromStdString(part).mid(1).chopped(1);
}

/// Finds entry and place of a path like <root>[pluginList][3][dependencies][0][version].
void locate(SchemaMistake &mistake, const std::vector<std::string> &path, const Configuration &configuration)
{
    mistake.place = configuration.places.root;
    if (path.size() < 2 || path[1] != "[pluginList]")
        return;
    mistake.place = configuration.places.list;
    if (path.size() < 3)
        return;
    mistake.entry = inner(path[2]).toInt();
    if (mistake.entry >= configuration.places.entries.size())
        mistake.entry = -1;
    if (mistake.entry < 0)
        return;
    const EntryPlaces &entry = configuration.places.entries.at(mistake.entry);
    mistake.place = entry.entry;
    if (path.size() == 4 && path[3] == "[name]")
        mistake.place = entry.name;
    else if (path.size() == 4 && path[3] == "[version]")
        mistake.place = entry.version;
    else if (path.size() == 4)
        mistake.place = entry.dependencyList;
    if (path.size() < 5)
        return;
    mistake.dependency = inner(path[4]).toInt();
    const DependencyPlaces dependency = entry.dependencies.value(mistake.dependency);
    mistake.place = dependency.entry;
    if (path.size() > 5)
        mistake.place = path[5] == "[name]" ? dependency.name : dependency.version;
}

const char passedOver[] = "The manager passes over it.";
const char takenForEmpty[] = "The manager takes it for an empty one.";

/// What the manager makes of mistakes in one configuration.
class Consequences
{
public:
    Consequences(const Configuration &configuration, const DependencyResults &results)
        : m_configuration(configuration)
        , m_results(results)
    {
    }

    /// Of anything in an entry that another one takes the place of.
    bool isWithout(const SchemaMistake &mistake) const
    {
        return mistake.entry >= 0 && !m_configuration.counts(mistake.entry);
    }

    QString ofVersionMissing(const SchemaMistake &mistake) const
    {
        const QString nothing = QStringLiteral("The version is nothing, ");
        const DependencyResult *const result = resultOf(mistake);
        if (!result || result->needed < 0)
            return nothing + QStringLiteral("which equals only a version that is nothing, too.");
        return m_configuration.entries.at(result->needed).version.isValid()
                   ? nothing + QStringLiteral("which does not equal the one that the list has.")
                   : nothing
                         + QStringLiteral("which equals the one that the list has: that is nothing, too.");
    }

    QString ofNameMismatch(const SchemaMistake &mistake) const
    {
        const DependencyResult *const result = resultOf(mistake);
        if (!result)
            return QStringLiteral("The manager takes it as it is.");
        return result->needed < 0
                   ? QStringLiteral("No plug-in of the list has this name.")
                   : QStringLiteral("The list has an entry of this name, and the manager takes that one.");
    }

    /// `key` is that of the value, or empty.
    QString ofType(const SchemaMistake &mistake, const QString &key) const
    {
        if (key == QLatin1String("version"))
            return QStringLiteral("The manager compares it by conversion.");
        // The name of an entry, and what should be a list or an object, is only read where it is one.
        if (key != QLatin1String("name") || !resultOf(mistake))
            return QString::fromLatin1(takenForEmpty);
        return QStringLiteral("The manager compares it by conversion. %1").arg(ofNameMismatch(mistake));
    }

private:
    const DependencyResult *resultOf(const SchemaMistake &mistake) const
    {
        if (mistake.entry < 0 || mistake.dependency < 0)
            return nullptr;
        const QVector<DependencyResult> &results = m_results.dependencies.at(mistake.entry);
        return mistake.dependency < results.size() ? &results.at(mistake.dependency) : nullptr;
    }

    const Configuration &m_configuration;
    const DependencyResults &m_results;
};

bool isOfType(const QString &description)
{
    return description.startsWith(QLatin1String("Value type not permitted"));
}

/// Says in this tool's words what the validator found. Messages that only repeat what a part of the value has
/// said have none.
void word(SchemaMistake &mistake, const QString &description, const std::vector<std::string> &path,
          const Consequences &consequences)
{
    const QString last = path.empty() ? QString() : inner(path.back());
    const QString missing = description.section('\'', -2, -2);
    if (description.startsWith(QLatin1String("Missing required property"))) {
        mistake.message = QStringLiteral("The key \"%1\" is missing.").arg(missing);
        mistake.missingKey = missing;
        mistake.consequence = missing == QLatin1String("version") ? consequences.ofVersionMissing(mistake)
                                                                  : QString::fromLatin1(takenForEmpty);
    } else if (isOfType(description)) {
        const bool isItem = !last.isEmpty() && last.at(0).isDigit();
        mistake.message = isItem ? QStringLiteral("This is no object.")
                                 : QStringLiteral("The value of \"%1\" has the wrong type.").arg(last);
        mistake.consequence = consequences.ofType(mistake, isItem ? QString() : last);
    } else if (description.startsWith(QLatin1String("Target should not validate"))) {
        mistake.message = QStringLiteral("The name has a suffix \".dll\" or a folder in it.");
        mistake.consequence = consequences.ofNameMismatch(mistake);
    } else if (description.startsWith(QLatin1String("String"))) {
        mistake.message = QStringLiteral("The text is empty.");
        mistake.consequence = consequences.ofNameMismatch(mistake);
    } else if (!description.startsWith(QLatin1String("Failed to validate"))) {
        mistake.message = description;
        mistake.consequence = QString::fromLatin1(passedOver);
    }
    if (consequences.isWithout(mistake))
        mistake.consequence = QStringLiteral("None: another entry of this name stands later, and counts.");
}

bool samePlace(Place left, Place right)
{
    return left.line == right.line && left.column == right.column;
}

/// Where values stand that have the wrong type. What else the validator says of these, it says because of
/// that.
std::set<std::vector<std::string>> wrongTypes(const valijson::ValidationResults &results)
{
    std::set<std::vector<std::string>> paths;
    for (const valijson::ValidationResults::Error &error : results) {
        if (isOfType(QString::fromStdString(error.description)))
            paths.insert(error.context);
    }
    return paths;
}

/// The validator tells one key of an object that the schema does not know, and this all of them.
class UnknownKeys
{
public:
    explicit UnknownKeys(const QVector<UnknownKey> &keys)
        : m_keys(keys)
    {
        // The later ones first, as a hash returns what was inserted last first.
        for (int i = int(keys.size()) - 1; i >= 0; --i)
            m_places.insert({keys.at(i).entry, keys.at(i).dependency}, i);
    }

    void addTo(QVector<SchemaMistake> &mistakes, SchemaMistake mistake) const
    {
        static const NearNames known(
            {QStringLiteral("name"), QStringLiteral("version"), QStringLiteral("dependencies")});
        for (const int place : m_places.values({mistake.entry, mistake.dependency})) {
            const UnknownKey &unknown = m_keys.at(place);
            mistake.place = unknown.place;
            mistake.message = QStringLiteral("The key \"%1\" is unknown. %2")
                                  .arg(unknown.key, didYouMean(known.of(unknown.key)))
                                  .trimmed();
            mistake.consequence = QString::fromLatin1(passedOver);
            mistakes.append(mistake);
        }
    }

private:
    const QVector<UnknownKey> &m_keys;
    QMultiHash<QPair<int, int>, int> m_places;
};

}

bool knowsSchema()
{
    return true;
}

QVector<SchemaMistake> schemaMistakes(const Configuration &configuration, const DependencyResults &results)
{
    const QJsonValue document(configuration.root);
    valijson::ValidationResults errors;
    valijson::Validator().validate(schema(), valijson::adapters::QtJsonAdapter(document), &errors);
    const UnknownKeys unknownKeys(configuration.places.unknownKeys);
    const Consequences consequences(configuration, results);
    const std::set<std::vector<std::string>> ofWrongType = wrongTypes(errors);
    QVector<SchemaMistake> mistakes;
    for (const valijson::ValidationResults::Error &error : errors) {
        SchemaMistake mistake;
        const QString description = QString::fromStdString(error.description);
        locate(mistake, error.context, configuration);
        if (description.startsWith(QLatin1String("Object contains a property"))) {
            unknownKeys.addTo(mistakes, mistake);
            continue;
        }
        if (!isOfType(description) && ofWrongType.count(error.context) > 0)
            continue;
        word(mistake, description, error.context, consequences);
        // What a name must not be is told in two parts.
        const bool isToldAlready = !mistakes.isEmpty() && mistakes.last().message == mistake.message
                                   && samePlace(mistakes.last().place, mistake.place);
        if (!mistake.message.isEmpty() && !isToldAlready)
            mistakes.append(mistake);
    }
    return mistakes;
}

#else

bool knowsSchema()
{
    return false;
}

QVector<SchemaMistake> schemaMistakes(const Configuration &, const DependencyResults &)
{
    return {};
}

#endif

}

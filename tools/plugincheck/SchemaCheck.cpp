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

/// Says in this tool's words what the validator found. Messages that only repeat what a part of the value has
/// said have none.
void word(SchemaMistake &mistake, const QString &description, const std::vector<std::string> &path)
{
    const QString last = path.empty() ? QString() : inner(path.back());
    const QString missing = description.section('\'', -2, -2);
    if (description.startsWith(QLatin1String("Missing required property"))) {
        mistake.message = QStringLiteral("The key \"%1\" is missing.").arg(missing);
        mistake.missingKey = missing;
        mistake.consequence =
            missing == QLatin1String("version")
                ? QStringLiteral("The version is nothing, which equals no version that is needed.")
                : QString::fromLatin1(takenForEmpty);
    } else if (description.startsWith(QLatin1String("Value type not permitted"))) {
        const bool isItem = !last.isEmpty() && last.at(0).isDigit();
        mistake.message = isItem ? QStringLiteral("This is no object.")
                                 : QStringLiteral("The value of \"%1\" has the wrong type.").arg(last);
        mistake.consequence = QString::fromLatin1(takenForEmpty);
    } else if (description.startsWith(QLatin1String("Target should not validate"))) {
        mistake.message = QStringLiteral("The name has a suffix \".dll\" or a folder in it.");
        mistake.consequence = QStringLiteral("No plug-in of the list has this name.");
    } else if (description.startsWith(QLatin1String("String"))) {
        mistake.message = QStringLiteral("The text is empty.");
        mistake.consequence = QStringLiteral("No plug-in of the list has this name.");
    } else if (!description.startsWith(QLatin1String("Failed to validate"))) {
        mistake.message = description;
        mistake.consequence = QString::fromLatin1(passedOver);
    }
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

QVector<SchemaMistake> schemaMistakes(const Configuration &configuration)
{
    const QJsonValue document(configuration.root);
    valijson::ValidationResults results;
    valijson::Validator().validate(schema(), valijson::adapters::QtJsonAdapter(document), &results);
    const UnknownKeys unknownKeys(configuration.places.unknownKeys);
    QVector<SchemaMistake> mistakes;
    for (const valijson::ValidationResults::Error &error : results) {
        SchemaMistake mistake;
        const QString description = QString::fromStdString(error.description);
        locate(mistake, error.context, configuration);
        if (description.startsWith(QLatin1String("Object contains a property"))) {
            unknownKeys.addTo(mistakes, mistake);
            continue;
        }
        word(mistake, description, error.context);
        if (!mistake.message.isEmpty())
            mistakes.append(mistake);
    }
    return mistakes;
}

#else

bool knowsSchema()
{
    return false;
}

QVector<SchemaMistake> schemaMistakes(const Configuration &)
{
    return {};
}

#endif

}

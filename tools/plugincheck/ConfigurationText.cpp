#include "ConfigurationText.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <algorithm>

namespace PluginCheck {

namespace {

/// What a value is to the reader of configuration files.
enum class Role { Root, List, Entry, Dependencies, Dependency, Other };

struct Container
{
    Role role;
    bool isObject;
    QByteArray key = {};
    QHash<QByteArray, Place> keys = {};
};

bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

/// The text of a key as the reader sees it.
QByteArray unescaped(const QByteArray &raw)
{
    if (!raw.contains('\\'))
        return raw;
    return QJsonDocument::fromJson("[\"" + raw + "\"]").array().at(0).toString().toUtf8();
}

class Scanner
{
public:
    explicit Scanner(const QByteArray &text)
        : m_text(text)
    {
    }

    ConfigurationPlaces scan();

private:
    void step();
    void takeText();
    void open(bool isObject);
    void close();
    void startValue();
    void takeKey(const QByteArray &raw, Place place);
    void noteUnknownKey(const Container &container, Place place);
    void forgetUnknownKeysOfDependencies();
    Role roleOfValue() const;
    void note(Role role, Place place);
    void advance();
    Place here() const { return {m_line, m_column}; }

    const QByteArray &m_text;
    int m_offset = 0;
    int m_line = 1;
    int m_column = 1;
    bool m_expectsKey = false;
    bool m_inValue = false;
    std::vector<Container> m_containers;
    ConfigurationPlaces m_places;
};

ConfigurationPlaces Scanner::scan()
{
    if (m_text.startsWith("\xef\xbb\xbf"))
        m_offset = 3;
    while (m_offset < m_text.size())
        step();
    return m_places;
}

void Scanner::step()
{
    switch (m_text.at(m_offset)) {
    case '{':
        open(true);
        break;
    case '[':
        open(false);
        break;
    case '}':
    case ']':
        close();
        break;
    case '"':
        takeText();
        return;
    case ',':
        m_inValue = false;
        m_expectsKey = !m_containers.empty() && m_containers.back().isObject;
        break;
    case ':':
    case ' ':
    case '\t':
    case '\r':
    case '\n':
        break;
    default:
        startValue();
    }
    advance();
}

void Scanner::takeText()
{
    const Place place = here();
    const bool isKey = m_expectsKey;
    if (!isKey)
        startValue();
    advance();
    const int begin = m_offset;
    while (m_offset < m_text.size() && m_text.at(m_offset) != '"') {
        if (m_text.at(m_offset) == '\\' && m_offset + 1 < m_text.size())
            advance();
        advance();
    }
    if (isKey)
        takeKey(m_text.mid(begin, m_offset - begin), place);
    if (m_offset < m_text.size())
        advance();
}

void Scanner::open(bool isObject)
{
    const Role role = roleOfValue();
    startValue();
    // What a role demands of a value is left to the reader: here only objects have keys.
    m_containers.push_back({role, isObject});
    m_expectsKey = isObject;
    m_inValue = false;
}

void Scanner::close()
{
    if (!m_containers.empty())
        m_containers.pop_back();
    m_expectsKey = false;
    m_inValue = true;
}

void Scanner::startValue()
{
    if (m_inValue)
        return;
    m_inValue = true;
    note(roleOfValue(), here());
}

void Scanner::takeKey(const QByteArray &raw, Place place)
{
    m_expectsKey = false;
    Container &container = m_containers.back();
    container.key = unescaped(raw);
    const auto known = container.keys.constFind(container.key);
    if (known == container.keys.constEnd()) {
        container.keys.insert(container.key, place);
        noteUnknownKey(container, place);
        return;
    }
    const bool inList = std::any_of(m_containers.begin(), m_containers.end(),
                                    [](const Container &outer) { return outer.role == Role::List; });
    m_places.duplicateKeys.append(
        {QString::fromUtf8(container.key), inList ? int(m_places.entries.size()) - 1 : -1, *known, place});
}

void Scanner::noteUnknownKey(const Container &container, Place place)
{
    const bool isEntry = container.role == Role::Entry;
    if ((!isEntry && container.role != Role::Dependency) || m_places.entries.isEmpty())
        return;
    const QByteArray &key = container.key;
    if (key == "name" || key == "version" || (isEntry && key == "dependencies"))
        return;
    const int dependency = isEntry ? -1 : int(m_places.entries.last().dependencies.size()) - 1;
    m_places.unknownKeys.append(
        {QString::fromUtf8(key), int(m_places.entries.size()) - 1, dependency, place});
}

/// Of two lists of dependencies in one entry the earlier one is lost.
void Scanner::forgetUnknownKeysOfDependencies()
{
    QVector<UnknownKey> &keys = m_places.unknownKeys;
    const int entry = int(m_places.entries.size()) - 1;
    auto ofEntry = keys.end();
    while (ofEntry != keys.begin() && std::prev(ofEntry)->entry == entry)
        --ofEntry;
    const auto isForgotten = [](const UnknownKey &key) { return key.dependency >= 0; };
    keys.erase(std::remove_if(ofEntry, keys.end(), isForgotten), keys.end());
}

/// What the value is that begins here, by what it stands in.
Role Scanner::roleOfValue() const
{
    if (m_containers.empty())
        return Role::Root;
    const Container &container = m_containers.back();
    switch (container.role) {
    case Role::Root:
        return container.isObject && container.key == "pluginList" ? Role::List : Role::Other;
    case Role::List:
        return container.isObject ? Role::Other : Role::Entry;
    case Role::Entry:
        return container.isObject && container.key == "dependencies" ? Role::Dependencies : Role::Other;
    case Role::Dependencies:
        return container.isObject ? Role::Other : Role::Dependency;
    case Role::Dependency:
    case Role::Other:
        break;
    }
    return Role::Other;
}

void Scanner::note(Role role, Place place)
{
    if (role == Role::Root) {
        m_places.root = place;
    } else if (role == Role::List) {
        m_places.list = place;
        m_places.entries.clear();
        m_places.unknownKeys.clear();
    } else if (role == Role::Entry) {
        m_places.entries.append({place, place, place, place});
    } else if (role == Role::Dependencies && !m_places.entries.isEmpty()) {
        m_places.entries.last().dependencyList = place;
        m_places.entries.last().dependencies.clear();
        forgetUnknownKeysOfDependencies();
    } else if (role == Role::Dependency && !m_places.entries.isEmpty()) {
        m_places.entries.last().dependencies.append({place, place, place});
    } else if (role == Role::Other && !m_containers.empty() && m_containers.back().isObject
               && !m_places.entries.isEmpty()) {
        const Container &container = m_containers.back();
        EntryPlaces &entry = m_places.entries.last();
        if (container.role == Role::Entry && container.key == "name")
            entry.name = place;
        else if (container.role == Role::Entry && container.key == "version")
            entry.version = place;
        else if (container.role == Role::Dependency && container.key == "name"
                 && !entry.dependencies.isEmpty())
            entry.dependencies.last().name = place;
        else if (container.role == Role::Dependency && container.key == "version"
                 && !entry.dependencies.isEmpty())
            entry.dependencies.last().version = place;
    }
}

void Scanner::advance()
{
    const char byte = m_text.at(m_offset++);
    if (byte == '\n') {
        ++m_line;
        m_column = 1;
    } else if (!continuesCharacter(byte)) {
        ++m_column;
    }
}

}

ConfigurationPlaces placesIn(const QByteArray &json)
{
    return Scanner(json).scan();
}

Place placeOf(const QByteArray &text, int offset)
{
    const int end = std::clamp(offset, 0, int(text.size()));
    Place place{1, 1};
    for (int i = text.startsWith("\xef\xbb\xbf") ? 3 : 0; i < end; ++i) {
        if (text.at(i) == '\n') {
            ++place.line;
            place.column = 1;
        } else if (!continuesCharacter(text.at(i))) {
            ++place.column;
        }
    }
    return place;
}

QPair<QString, int> sourceAt(const QByteArray &text, int offset)
{
    constexpr int mostBefore = 60;
    constexpr int mostAltogether = 100;
    const int at = std::clamp(offset, 0, int(text.size()));
    int begin = at;
    while (begin > 0 && at - begin < mostBefore && text.at(begin - 1) != '\n')
        --begin;
    while (begin < at && continuesCharacter(text.at(begin)))
        ++begin;
    int end = at;
    while (end < text.size() && end - begin < mostAltogether && text.at(end) != '\n')
        ++end;

    const auto shown = [](const QByteArray &part) {
        QString characters = QString::fromUtf8(part);
        for (QChar &character : characters) {
            if (character == '\t')
                character = ' ';
            else if (!character.isPrint() && !character.isSurrogate())
                character = QChar::ReplacementCharacter;
        }
        return characters;
    };
    const QString before = shown(text.mid(begin, at - begin));
    return {before + shown(text.mid(at, end - at)), int(before.size()) + 1};
}

QPair<QString, int> sourceAt(const QByteArray &text, Place place)
{
    int offset = 0;
    for (int line = 1; line < place.line; ++line) {
        const int end = text.indexOf('\n', offset);
        if (end < 0)
            return {};
        offset = end + 1;
    }
    if (place.line == 1 && text.startsWith("\xef\xbb\xbf"))
        offset = 3;
    for (int column = 1; column < place.column && offset < text.size(); ++column) {
        ++offset;
        while (offset < text.size() && continuesCharacter(text.at(offset)))
            ++offset;
    }
    return sourceAt(text, offset);
}

}

#include "SyntaxFault.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace PluginCheck {

namespace {

bool isBlank(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

/// Whether a byte stands in a number or in one of JSON's three words, or in what was meant as such.
bool isOfWord(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z')
           || byte == '-' || byte == '+' || byte == '.' || byte == '_';
}

/// Returns the place behind the digits from a place on.
int behindDigits(const QByteArray &text, int place)
{
    while (place < text.size() && text.at(place) >= '0' && text.at(place) <= '9')
        ++place;
    return place;
}

/// Whether QJsonDocument takes this for a number: more than JSON does, such as "1." and ".5", and less than
/// QByteArray, such as "+1", "01" and "nan".
bool isNumber(const QByteArray &text)
{
    const auto is = [&](int place, const char *characters) {
        return place < text.size() && std::strchr(characters, text.at(place));
    };
    int place = is(0, "-") ? 1 : 0;
    place = is(place, "0") ? place + 1 : behindDigits(text, place);
    if (is(place, "."))
        place = behindDigits(text, place + 1);
    if (is(place, "eE"))
        place = behindDigits(text, is(place + 1, "+-") ? place + 2 : place + 1);
    bool isInRange = false;
    text.toDouble(&isInRange);
    return place == text.size() && isInRange;
}

class Search
{
public:
    explicit Search(const QByteArray &text)
        : m_text(text)
    {
    }

    std::optional<SyntaxFault> run()
    {
        m_offset = m_text.startsWith("\xef\xbb\xbf") ? 3 : 0;
        std::optional<SyntaxFault> fault;
        while (!fault && skipBlanks())
            fault = step(m_text.at(m_offset));
        if (!fault && (!m_open.isEmpty() || m_expected != Expected::Nothing))
            fault = SyntaxFault{Fault::EndsEarly, int(m_text.size())};
        return fault;
    }

private:
    enum class Expected { Value, ValueOrEnd, Key, KeyOrEnd, Colon, CommaOrEnd, Nothing };

    bool skipBlanks()
    {
        while (m_offset < m_text.size() && isBlank(m_text.at(m_offset)))
            ++m_offset;
        return m_offset < m_text.size();
    }

    std::optional<SyntaxFault> step(char byte)
    {
        if (byte == '/' || byte == '#')
            return faultHere(Fault::Comment);
        if (byte == '\'')
            return faultHere(Fault::SingleQuote);
        switch (m_expected) {
        case Expected::Nothing:
            return faultHere(Fault::MoreAfterEnd);
        case Expected::Colon:
            if (byte != ':')
                return faultHere(Fault::ColonMissing);
            return go(Expected::Value);
        case Expected::CommaOrEnd:
            if (byte == ',')
                return go(m_open.endsWith('{') ? Expected::Key : Expected::Value, true);
            return byte == '}' || byte == ']' ? close(byte)
                                              : faultHere(byte == ':' ? Fault::Other : Fault::CommaMissing);
        case Expected::Key:
        case Expected::KeyOrEnd:
            if (byte == '"')
                return text(Expected::Colon);
            return byte == '}' || byte == ']' || byte == ',' ? close(byte) : faultHere(Fault::KeyExpected);
        case Expected::Value:
        case Expected::ValueOrEnd:
            break;
        }
        return value(byte);
    }

    std::optional<SyntaxFault> value(char byte)
    {
        if (byte == '{' || byte == '[') {
            m_open.append(byte);
            return go(byte == '{' ? Expected::KeyOrEnd : Expected::ValueOrEnd);
        }
        if (byte == '}' || byte == ']' || byte == ',')
            return close(byte);
        if (m_open.isEmpty())
            return faultHere(Fault::NoBeginning);
        return byte == '"' ? text(afterValue()) : word();
    }

    /// What ends an object or an array, where it may, and a comma where none may be.
    std::optional<SyntaxFault> close(char byte)
    {
        if (byte == ',')
            return faultHere(Fault::CommaTooMany);
        if (!m_open.endsWith(byte == '}' ? '{' : '['))
            return faultHere(Fault::WrongEnd);
        const bool mayEnd = m_expected == Expected::KeyOrEnd || m_expected == Expected::ValueOrEnd
                            || m_expected == Expected::CommaOrEnd;
        if (!mayEnd)
            return m_afterComma ? SyntaxFault{Fault::CommaBeforeEnd, m_comma} : *faultHere(Fault::Other);
        m_open.chop(1);
        return go(afterValue());
    }

    std::optional<SyntaxFault> text(Expected next)
    {
        const int begin = m_offset++;
        while (m_offset < m_text.size() && m_text.at(m_offset) != '"')
            m_offset += m_text.at(m_offset) == '\\' ? 2 : 1;
        if (m_offset >= m_text.size())
            return SyntaxFault{Fault::TextWithoutEnd, begin};
        return go(next);
    }

    std::optional<SyntaxFault> word()
    {
        int end = m_offset;
        while (end < m_text.size() && isOfWord(m_text.at(end)))
            ++end;
        const QByteArray written = m_text.mid(m_offset, end - m_offset);
        if (!isNumber(written) && written != "true" && written != "false" && written != "null")
            return faultHere(Fault::Other);
        m_offset = end - 1;
        return go(afterValue());
    }

    Expected afterValue() const { return m_open.isEmpty() ? Expected::Nothing : Expected::CommaOrEnd; }

    std::optional<SyntaxFault> go(Expected next, bool afterComma = false)
    {
        m_afterComma = afterComma;
        if (afterComma)
            m_comma = m_offset;
        ++m_offset;
        m_expected = next;
        return std::nullopt;
    }

    std::optional<SyntaxFault> faultHere(Fault fault) const { return SyntaxFault{fault, m_offset}; }

    const QByteArray &m_text;
    QByteArray m_open; // The brackets around this place.
    int m_offset = 0;
    int m_comma = 0;
    bool m_afterComma = false;
    Expected m_expected = Expected::Value;
};

}

SyntaxFault syntaxFaultIn(const QByteArray &text, int known)
{
    const std::optional<SyntaxFault> found = Search(text).run();
    return found ? *found : SyntaxFault{Fault::Other, std::clamp(known, 0, int(text.size()))};
}

}

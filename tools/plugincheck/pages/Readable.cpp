#include "Readable.h"

#include <QtCore/QLocale>

namespace {

constexpr ushort pictureOfNull = 0x2400;
constexpr ushort pictureOfDelete = 0x2421;

bool turnsDirection(ushort character)
{
    return (character >= 0x202a && character <= 0x202e) || (character >= 0x2066 && character <= 0x2069)
           || character == 0x200e || character == 0x200f || character == 0x061c;
}

bool endsLine(ushort character)
{
    return character == 0x2028 || character == 0x2029;
}

QChar shown(QChar character)
{
    const ushort code = character.unicode();
    if (code < 0x20 && character != QLatin1Char('\t'))
        return {ushort(pictureOfNull + code)};
    if (code == 0x7f)
        return {pictureOfDelete};
    if ((code > 0x7f && code < 0xa0) || turnsDirection(code) || endsLine(code) || code >= 0xfffe)
        return QChar::ReplacementCharacter;
    return character;
}

}

QString PluginCheck::readable(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (int index = 0; index < text.size(); ++index) {
        const QChar character = text.at(index);
        if (!character.isSurrogate()) {
            result.append(shown(character));
            continue;
        }
        const bool isPair =
            character.isHighSurrogate() && index + 1 < text.size() && text.at(index + 1).isLowSurrogate();
        if (!isPair) {
            result.append(QChar::ReplacementCharacter);
            continue;
        }
        result.append(character).append(text.at(++index));
    }
    return result;
}

QByteArray PluginCheck::markup(const QString &text)
{
    return readable(text).toHtmlEscaped().replace('\'', QLatin1String("&#39;")).toUtf8();
}

QByteArray PluginCheck::nameMarkup(const QString &name)
{
    return markup(name).replace('_', "_<wbr>").replace('/', "/<wbr>");
}

QString PluginCheck::elided(const QString &text, int most)
{
    if (text.size() <= most)
        return text;
    int left = most / 2;
    int right = most - left - 1;
    // No character of two halves is cut.
    if (text.at(left - 1).isHighSurrogate())
        --left;
    if (text.at(text.size() - right).isLowSurrogate())
        --right;
    return text.leftRef(left) + QChar(0x2026) + text.rightRef(right);
}

QString PluginCheck::grouped(qint64 number)
{
    return QLocale(QLocale::English).toString(number);
}

QString PluginCheck::counted(qint64 number, const char *one, const char *many)
{
    return grouped(number) + QLatin1Char(' ') + QLatin1String(number == 1 ? one : many);
}

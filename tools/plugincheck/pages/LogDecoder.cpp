#include "LogDecoder.h"

#include "logTexts_p.h"

#include <QtCore/QHash>
#include <QtCore/QTextCodec>
#include <QtCore/QVector>

#ifdef Q_OS_WIN
#    include <windows.h>
#else
#    include <iconv.h>
#endif

#include <algorithm>
#include <limits>
#include <vector>

using namespace PluginCheck;

namespace {

constexpr int firstLead = 0x81;
constexpr int lastLead = 0xfe;
constexpr int firstTrail = 0x40;
constexpr int lastTrail = 0xfe;
constexpr int trailCount = lastTrail - firstTrail + 1;

/// What the system makes of two bytes of GBK, for a Qt that was built without the large codecs.
class SystemGbk
{
public:
#ifdef Q_OS_WIN
    QString toUnicode(const char *bytes, int size) const
    {
        wchar_t characters[4] = {};
        const int count = MultiByteToWideChar(936, MB_ERR_INVALID_CHARS, bytes, size, characters, 4);
        return QString::fromWCharArray(characters, count);
    }
#else
    SystemGbk()
        : m_iconv(iconv_open("UTF-8", "GBK"))
    {
    }
    ~SystemGbk()
    {
        if (isThere())
            iconv_close(m_iconv);
    }
    SystemGbk(const SystemGbk &) = delete;
    SystemGbk &operator=(const SystemGbk &) = delete;

    QString toUnicode(const char *bytes, int size) const
    {
        if (!isThere())
            return {};
        char input[2] = {bytes[0], bytes[1]};
        char output[8];
        char *in = input;
        char *out = output;
        auto inLeft = size_t(size);
        size_t outLeft = sizeof output;
        iconv(m_iconv, nullptr, nullptr, nullptr, nullptr);
        if (iconv(m_iconv, &in, &inLeft, &out, &outLeft) == size_t(-1))
            return {};
        return QString::fromUtf8(output, int(out - output));
    }

private:
    bool isThere() const
    {
        return m_iconv != iconv_t(-1);
    }

    iconv_t m_iconv;
#endif
};

/// All characters of GBK, asked for once, so that a line costs no calls of a codec.
class GbkTable
{
public:
    GbkTable()
        : m_characters(size_t((lastLead - firstLead + 1) * trailCount))
    {
        const QTextCodec *const codec = QTextCodec::codecForName("GBK");
        const SystemGbk system;
        for (int lead = firstLead; lead <= lastLead; ++lead) {
            for (int trail = firstTrail; trail <= lastTrail; ++trail) {
                const char bytes[] = {char(lead), char(trail)};
                enter(lead, trail, codec ? codec->toUnicode(bytes, 2) : system.toUnicode(bytes, 2));
            }
        }
    }

    QChar character(uchar lead, uchar trail) const
    {
        if (lead < firstLead || lead > lastLead || trail < firstTrail || trail > lastTrail)
            return {};
        return m_characters[size_t((lead - firstLead) * trailCount + trail - firstTrail)];
    }

    QByteArray bytes(QChar character) const { return m_bytes.value(character.unicode()); }

private:
    void enter(int lead, int trail, const QString &text)
    {
        const bool isCharacter = text.size() == 1 && text.at(0).unicode() >= 0x80
                                 && text.at(0) != QChar::ReplacementCharacter
                                 && text.at(0).category() != QChar::Other_PrivateUse;
        if (!isCharacter || trail == 0x7f)
            return;
        m_characters[size_t((lead - firstLead) * trailCount + trail - firstTrail)] = text.at(0);
        const char pair[] = {char(lead), char(trail)};
        m_bytes.insert(text.at(0).unicode(), QByteArray(pair, 2));
    }

    std::vector<QChar> m_characters;
    QHash<ushort, QByteArray> m_bytes;
};

const GbkTable &gbkTable()
{
    static const GbkTable table;
    return table;
}

uchar byteAt(std::string_view bytes, size_t index)
{
    return static_cast<uchar>(bytes[index]);
}

bool isContinuation(uchar byte)
{
    return (byte & 0xc0) == 0x80;
}

size_t utf8Length(uchar lead)
{
    if (lead >= 0xc2 && lead <= 0xdf)
        return 2;
    if ((lead & 0xf0) == 0xe0)
        return 3;
    if (lead >= 0xf0 && lead <= 0xf4)
        return 4;
    return 0;
}

/// The second byte decides whether a sequence is the shortest one, no surrogate, and in the range of Unicode.
bool isSecondByte(uchar lead, uchar second)
{
    if (!isContinuation(second))
        return false;
    switch (lead) {
    case 0xe0:
        return second >= 0xa0;
    case 0xed:
        return second <= 0x9f;
    case 0xf0:
        return second >= 0x90;
    case 0xf4:
        return second <= 0x8f;
    default:
        return true;
    }
}

/// How many of a sequence's bytes are there and valid; all of them are when it equals utf8Length().
size_t validUtf8Bytes(std::string_view bytes, size_t at)
{
    const size_t length = utf8Length(byteAt(bytes, at));
    if (length == 0)
        return 0;
    size_t valid = 1;
    while (valid < length && at + valid < bytes.size()) {
        const uchar byte = byteAt(bytes, at + valid);
        if (valid == 1 ? !isSecondByte(byteAt(bytes, at), byte) : !isContinuation(byte))
            break;
        ++valid;
    }
    return valid;
}

uint utf8Character(std::string_view bytes, size_t at, size_t length)
{
    constexpr uint leadMasks[] = {0, 0, 0x1f, 0x0f, 0x07};
    uint character = byteAt(bytes, at) & leadMasks[length];
    for (size_t index = 1; index < length; ++index)
        character = (character << 6) | (byteAt(bytes, at + index) & 0x3f);
    return character;
}

bool isAscii(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return static_cast<uchar>(byte) < 0x80; });
}

bool isUtf8(std::string_view bytes)
{
    for (size_t at = 0; at < bytes.size();) {
        if (byteAt(bytes, at) < 0x80) {
            ++at;
            continue;
        }
        const size_t length = utf8Length(byteAt(bytes, at));
        if (length == 0 || validUtf8Bytes(bytes, at) != length)
            return false;
        at += length;
    }
    return true;
}

enum Encoding { Utf8, Gbk, EncodingCount };

constexpr int unlikely = 40;
constexpr int changeOfEncoding = 3;
constexpr int cutOffCost = 6;

bool isOrdinary(uint character)
{
    return (character >= 0x2010 && character <= 0x2026) || (character >= 0x3000 && character <= 0x30ff)
           || (character >= 0x4e00 && character <= 0x9fff) || (character >= 0xac00 && character <= 0xd7a3)
           || (character >= 0xff00 && character <= 0xffef);
}

/// Three bytes that fit each other are hardly ever chance; two are, now and then.
int utf8Cost(std::string_view bytes, size_t at, size_t length)
{
    if (length == 2)
        return 4;
    return isOrdinary(utf8Character(bytes, at, length)) ? 2 : 6;
}

/// By the districts of GB 2312, which holds what people write: punctuation, frequent characters, rarer ones.
/// What only GBK has is rarer still.
int gbkCost(uchar lead, uchar trail)
{
    if (trail < 0xa1)
        return 8;
    if (lead >= 0xb0 && lead <= 0xd7)
        return 2;
    if (lead >= 0xa1 && lead <= 0xa3)
        return 2;
    if (lead >= 0xd8 && lead <= 0xf7)
        return 4;
    return 8;
}

/// The likeliest reading of bytes that are neither all UTF-8 nor known: the cheapest way through them.
class Reading
{
public:
    explicit Reading(std::string_view bytes)
        : m_bytes(bytes)
        , m_steps(bytes.size() + 1)
    {
        m_steps[0][Utf8].cost = 0;
        for (size_t at = 0; at < bytes.size(); ++at) {
            for (const Encoding encoding : {Utf8, Gbk}) {
                if (m_steps[at][encoding].cost != unreached)
                    leave(at, encoding);
            }
        }
    }

    QString text() const
    {
        QVector<QString> pieces;
        size_t at = m_bytes.size();
        Encoding encoding = m_steps[at][Utf8].cost <= m_steps[at][Gbk].cost ? Utf8 : Gbk;
        while (at > 0) {
            const Step &step = m_steps[at][encoding];
            pieces.append(piece(at - step.length, step));
            at -= step.length;
            encoding = step.from;
        }
        QString result;
        for (auto each = pieces.crbegin(); each != pieces.crend(); ++each)
            result += *each;
        return result;
    }

private:
    enum class Kind : uchar { Plain, InUtf8, InGbk, Invalid };
    static constexpr int unreached = std::numeric_limits<int>::max();

    struct Step
    {
        int cost = unreached;
        uchar length = 0;
        Kind kind = Kind::Invalid;
        Encoding from = Utf8;
    };

    void leave(size_t at, Encoding encoding)
    {
        const uchar byte = byteAt(m_bytes, at);
        if (byte < 0x80) {
            reach(at, encoding, encoding, 1, Kind::Plain, 0);
            return;
        }
        reach(at, encoding, encoding, 1, Kind::Invalid, unlikely);

        const size_t length = utf8Length(byte);
        const size_t valid = validUtf8Bytes(m_bytes, at);
        if (length > 0 && valid == length)
            reach(at, encoding, Utf8, length, Kind::InUtf8, utf8Cost(m_bytes, at, length));
        else if (length > 2 && at + valid == m_bytes.size())
            reach(at, encoding, Utf8, valid, Kind::Invalid, cutOffCost);

        if (at + 1 == m_bytes.size())
            return;
        const uchar trail = byteAt(m_bytes, at + 1);
        if (!gbkCharacter(byte, trail).isNull())
            reach(at, encoding, Gbk, 2, Kind::InGbk, gbkCost(byte, trail));
    }

    void reach(size_t at, Encoding from, Encoding to, size_t length, Kind kind, int cost)
    {
        const bool changes = from != to && at > 0;
        const int sum = m_steps[at][from].cost + cost + (changes ? changeOfEncoding : 0);
        Step &step = m_steps[at + length][to];
        if (sum < step.cost)
            step = {sum, uchar(length), kind, from};
    }

    QString piece(size_t at, const Step &step) const
    {
        switch (step.kind) {
        case Kind::Plain:
            return {QLatin1Char(m_bytes[at])};
        case Kind::InUtf8:
            return QString::fromUtf8(m_bytes.data() + at, step.length);
        case Kind::InGbk:
            return {gbkCharacter(byteAt(m_bytes, at), byteAt(m_bytes, at + 1))};
        case Kind::Invalid:
            break;
        }
        return {QChar(QChar::ReplacementCharacter)};
    }

    std::string_view m_bytes;
    std::vector<std::array<Step, EncodingCount>> m_steps;
};

QString decodeUnknown(std::string_view bytes)
{
    if (isUtf8(bytes))
        return QString::fromUtf8(bytes.data(), int(bytes.size()));
    return Reading(bytes).text();
}

struct Place
{
    size_t at = std::string_view::npos;
    const KnownText *known = nullptr;
};

Place firstKnown(std::string_view bytes)
{
    Place first;
    for (const KnownText &known : KnownTexts::all()) {
        if (known.gbk.isEmpty())
            continue;
        const size_t at = bytes.find(std::string_view(known.gbk.constData(), size_t(known.gbk.size())));
        if (at < first.at)
            first = {at, &known};
    }
    return first;
}

KnownText knownText(const QString &text)
{
    return {text, toGbk(text), text.toUtf8()};
}

bool startsWith(std::string_view line, const QByteArray &bytes)
{
    return !bytes.isEmpty()
           && line.substr(0, size_t(bytes.size()))
                  == std::string_view(bytes.constData(), size_t(bytes.size()));
}

}

QChar PluginCheck::gbkCharacter(uchar lead, uchar trail)
{
    return gbkTable().character(lead, trail);
}

QByteArray PluginCheck::toGbk(const QString &text)
{
    QByteArray bytes;
    for (const QChar character : text) {
        if (character.unicode() < 0x80) {
            bytes.append(char(character.unicode()));
            continue;
        }
        const QByteArray pair = gbkTable().bytes(character);
        if (pair.isEmpty())
            return {};
        bytes.append(pair);
    }
    return bytes;
}

int KnownText::lengthAtStartOf(std::string_view line) const
{
    if (startsWith(line, gbk))
        return gbk.size();
    return startsWith(line, utf8) ? utf8.size() : 0;
}

const std::array<KnownText, KnownTexts::Count> &KnownTexts::all()
{
    namespace LogTexts = PluginMangerInternal::LogTexts;
    static const std::array<KnownText, Count> texts{
        knownText(LogTexts::configMissing()),      knownText(LogTexts::configNotOpened()),
        knownText(LogTexts::configNotParsed()),    knownText(LogTexts::notALibrary()),
        knownText(LogTexts::dependenciesFailed()), knownText(LogTexts::loadFailed()),
        knownText(LogTexts::loadFailedReason()),   knownText(LogTexts::allLoaded()),
        knownText(LogTexts::allUnloaded()),
    };
    return texts;
}

QString PluginCheck::decodeLogLine(std::string_view line)
{
    if (isAscii(line))
        return QString::fromLatin1(line.data(), int(line.size()));

    QString text;
    while (!line.empty()) {
        const Place place = firstKnown(line);
        text += decodeUnknown(line.substr(0, place.at));
        if (!place.known)
            break;
        text += place.known->text;
        line.remove_prefix(place.at + size_t(place.known->gbk.size()));
    }
    return text;
}

#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <array>
#include <string_view>

namespace PluginCheck {

/// A character that GBK has for two bytes, or null.
QChar gbkCharacter(uchar lead, uchar trail);

/// The bytes of a text that GBK can express; nothing when it cannot.
QByteArray toGbk(const QString &text);

/// One of the Chinese texts that the library writes, as it may stand in a log: GBK, or UTF-8 from a library
/// whose Qt knows no GBK.
struct KnownText
{
    QString text;
    QByteArray gbk;
    QByteArray utf8;

    /// The number of bytes with which `line` begins with this text; 0 when it does not.
    int lengthAtStartOf(std::string_view line) const;
};

namespace KnownTexts {
enum Index {
    ConfigMissing,
    ConfigNotOpened,
    ConfigNotParsed,
    NotALibrary,
    DependenciesFailed,
    LoadFailed,
    LoadFailedReason,
    AllLoaded,
    AllUnloaded,
    Count
};
const std::array<KnownText, Count> &all();
}

/**
 * Decodes a line in which texts in GBK and in UTF-8 stand beside each other.
 *
 * The library's own texts are found first, by their bytes, which cannot occur in UTF-8. What is between them
 * is UTF-8 when all of it is valid UTF-8; so every line that the library writes is read exactly. What else is
 * in a log, as a host or a plug-in wrote it, gets the reading that takes the fewest unlikely characters and
 * changes of encoding.
 */
QString decodeLogLine(std::string_view line);

}

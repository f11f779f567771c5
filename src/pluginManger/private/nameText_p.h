#pragma once

#include <QtCore/QString>

#include <string>

namespace PluginMangerInternal {

/**
 * A text that names of records, which are bytes, are compared with as texts: what is no UTF-8 in a name
 * counts as the replacement character that it converts to. So a host that names its jobs in another encoding
 * is still understood when it hands over the converted name.
 */
class NameText
{
public:
    explicit NameText(const QString &text)
        : m_text(text)
        , m_bytes(text.toStdString())
        , m_isExact(text.isValidUtf16() && m_bytes.find("\xEF\xBF\xBD") == std::string::npos)
    {
    }

    bool equals(const std::string &name) const
    {
        return bytesTell(name) ? name == m_bytes : QString::fromStdString(name) == m_text;
    }

    bool isIn(const std::string &name) const
    {
        return bytesTell(name) ? name.find(m_bytes) != std::string::npos
                               : QString::fromStdString(name).contains(m_text);
    }

    /// Tells whether this is what stands in the name before the first `mark`, or the whole name where there
    /// is none.
    bool isStartOf(const std::string &name, const char *mark) const
    {
        if (bytesTell(name))
            return name.compare(0, name.find(mark), m_bytes) == 0;
        const QString text = QString::fromStdString(name);
        return text.left(text.indexOf(QLatin1String(mark))) == m_text;
    }

private:
    // A text without replacement characters equals no damaged name, and conversion drops a byte order mark. A
    // text that no bytes convert to, as with half of a surrogate pair, equals no name at all.
    bool bytesTell(const std::string &name) const
    {
        return m_isExact && (name.empty() || name.front() != '\xEF');
    }

    QString m_text;
    std::string m_bytes;
    bool m_isExact;
};

}

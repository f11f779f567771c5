#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace PluginCheck {

/**
 * The text as it can be shown anywhere.
 *
 * Names come from files that anyone may have written. What would steer a terminal, turn the direction of
 * writing or cannot stand in an XML document is shown by a sign in its place.
 */
QString readable(const QString &text);

/// The same, also without anything that means something in HTML and XML, in attributes too.
QByteArray markup(const QString &text);

/// A name or a path in a page, which may be broken behind its parts.
QByteArray nameMarkup(const QString &name);

/// At most `most` characters, with the middle left out: names differ at both ends.
QString elided(const QString &text, int most);

/// "1 line", "1,234 lines".
QString counted(qint64 number, const char *one, const char *many);

/// "1,234"
QString grouped(qint64 number);

}

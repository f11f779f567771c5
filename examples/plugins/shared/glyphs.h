#pragma once

#include <QtCore/QString>
#include <QtGui/QIcon>

/// The drawn icon of a command, sharp at any size and in the colour of texts; an empty icon for commands that
/// have none.
QIcon glyphIcon(const QString &command);

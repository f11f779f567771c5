#pragma once

#include "entries.h"
#include "glyphs.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QStringList>
#include <QtWidgets/QAction>

#include <algorithm>

/// The element of this library in the table.
inline const SimpleElement &simpleElement(const char *library)
{
    const auto *const found =
        std::find_if(std::begin(simpleElements), std::end(simpleElements),
                     [library](const SimpleElement &row) { return qstrcmp(row.library, library) == 0; });
    if (found == std::end(simpleElements))
        qFatal("There are no entries for %s", library);
    return *found;
}

inline QString translatedEntry(const char *text)
{
    return QCoreApplication::translate("Entries", text);
}

/// "Zoom in" becomes "zoomIn".
inline QString commandOf(const char *text)
{
    QStringList words = QString::fromLatin1(text).toLower().split(QLatin1Char(' '));
    for (int i = 1; i < words.size(); ++i)
        words[i][0] = words.at(i).at(0).toUpper();
    return words.join(QString());
}

/// An action whose object name is the command that hosts and plug-ins know it by.
inline QAction *makeEntryAction(const Entry &entry, QObject *parent)
{
    auto *const action = new QAction(parent);
    if (qstrcmp(entry.text, separator.text) == 0) {
        action->setSeparator(true);
        return action;
    }
    const QString command = commandOf(entry.text);
    action->setObjectName(command);
    action->setText(translatedEntry(entry.text));
    action->setIcon(glyphIcon(command));
    action->setShortcut(QKeySequence(QString::fromLatin1(entry.shortcut)));
    const QString shortcut = action->shortcut().toString(QKeySequence::NativeText);
    action->setToolTip(shortcut.isEmpty() ? action->text()
                                          : action->text() + QLatin1String(" (") + shortcut + ')');
    return action;
}

template <typename Entries>
QList<QAction *> makeEntryActions(const Entries &entries, QObject *parent)
{
    QList<QAction *> actions;
    for (const Entry &entry : entries) {
        if (entry.text)
            actions.append(makeEntryAction(entry, parent));
    }
    return actions;
}

/// Shows the text of the last message as the last, disabled entry of a menu or tool bar.
inline void showMessageEntry(QWidget *element, const QString &text)
{
    const QString name = QLatin1String("_message");
    auto *entry = element->findChild<QAction *>(name, Qt::FindDirectChildrenOnly);
    if (!entry) {
        entry = new QAction(element);
        entry->setObjectName(name);
        entry->setEnabled(false);
        element->addAction(entry);
    }
    entry->setText(text);
}

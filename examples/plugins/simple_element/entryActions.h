#pragma once

#include <QtCore/QList>
#include <QtCore/QStringList>
#include <QtWidgets/QAction>

/**
 * The actions of a simple element, one for each comma-separated text of `entries`; "-" makes a separator.
 * An action's object name is the command that hosts know it by: "Zoom in" becomes "zoomIn".
 */
inline QList<QAction *> makeEntryActions(const QString &entries, QObject *parent)
{
    QList<QAction *> actions;
    const QStringList texts = entries.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &text : texts) {
        auto *const action = new QAction(parent);
        actions.append(action);
        if (text == QLatin1String("-")) {
            action->setSeparator(true);
            continue;
        }
        action->setText(text);

        QStringList words = text.toLower().split(QLatin1Char(' '));
        for (int i = 1; i < words.size(); ++i)
            words[i][0] = words.at(i).at(0).toUpper();
        action->setObjectName(words.join(QString()));
    }
    return actions;
}

/// Shows the text of the last message as the last, disabled entry of a menu or tool bar.
inline void showMessageEntry(QWidget *element, const QString &text)
{
    const QString name = QStringLiteral("_message");
    auto *entry = element->findChild<QAction *>(name, Qt::FindDirectChildrenOnly);
    if (!entry) {
        entry = new QAction(element);
        entry->setObjectName(name);
        entry->setEnabled(false);
        element->addAction(entry);
    }
    entry->setText(text);
}

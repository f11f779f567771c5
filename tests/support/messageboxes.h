#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtWidgets/QMessageBox>

#include <functional>

/// Meets the modal message boxes that appear while it lives: reads each one, then closes it.
class MessageBoxes : public QObject
{
    Q_OBJECT

public:
    struct Box
    {
        QString title;
        QString text;
        QMessageBox::StandardButtons buttons;
        QMessageBox::Icon icon;
        bool modal;
        bool hasParent;
    };

    MessageBoxes();

    /// Returns the boxes met since the last call.
    QList<Box> take();

    /// Runs `action` while the next box is open, before it is closed.
    void whileNextIsOpen(std::function<void()> action);

private:
    void meet();

    QTimer m_timer;
    QList<Box> m_boxes;
    QList<QMessageBox *> m_met;
    std::function<void()> m_action;
};

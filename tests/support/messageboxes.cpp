#include "messageboxes.h"

#include <QtWidgets/QApplication>

#include <utility>

MessageBoxes::MessageBoxes()
{
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, &MessageBoxes::meet);
    m_timer.start();
}

QList<MessageBoxes::Box> MessageBoxes::take()
{
    return std::exchange(m_boxes, {});
}

void MessageBoxes::whileNextIsOpen(std::function<void()> action)
{
    m_action = std::move(action);
}

void MessageBoxes::meet()
{
    auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box || m_met.contains(box))
        return;
    m_boxes.append({box->windowTitle(), box->text(), box->standardButtons(), box->icon(), box->isModal(),
                    box->parent() != nullptr});
    m_met.append(box);
    // From a timer of its own: this one does not fire again before it has returned, and the action may open
    // further boxes.
    QTimer::singleShot(0, this, [this, box, action = std::exchange(m_action, {})] {
        if (action)
            action();
        m_met.removeOne(box);
        box->close();
    });
}

#include "WorkbenchApplication.h"

#include "Post.h"

#include <QtCore/QMetaEnum>

bool WorkbenchApplication::notify(QObject *receiver, QEvent *event)
{
    // Either may be gone when something has been thrown.
    const char *const receiverClass = receiver->metaObject()->className();
    const QEvent::Type type = event->type();
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        const QString name = QString::fromLatin1(QMetaEnum::fromType<QEvent::Type>().valueToKey(type));
        emit caught(tr("the event %1 of a %2").arg(name, QString::fromLatin1(receiverClass)), caughtText());
        return false;
    }
}

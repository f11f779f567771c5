#include "BoxObserver.h"

#include "Account.h"

#include <QtCore/QEvent>
#include <QtWidgets/QMessageBox>

BoxObserver::BoxObserver(Account &account)
    : m_account(account)
{
}

/// The library's boxes have no parent; the host's have.
bool BoxObserver::eventFilter(QObject *watched, QEvent *event)
{
    auto *const box = event->type() == QEvent::Show ? qobject_cast<QMessageBox *>(watched) : nullptr;
    if (!box || box->parentWidget())
        return false;

    m_account.failure(QStringLiteral("message box \"%1\": %2").arg(box->windowTitle(), box->text()));
    // The box waits in its own event loop, so it is closed from there.
    QMetaObject::invokeMethod(box, &QDialog::reject, Qt::QueuedConnection);
    return false;
}

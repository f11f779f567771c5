#include "BoxObserver.h"

#include "Account.h"

#include <QtCore/QEvent>
#include <QtWidgets/QMessageBox>

BoxObserver::BoxObserver(Account &account, bool attended)
    : m_account(account)
    , m_attended(attended)
{
}

bool BoxObserver::eventFilter(QObject *watched, QEvent *event)
{
    auto *const box = event->type() == QEvent::Show ? qobject_cast<QMessageBox *>(watched) : nullptr;
    if (!box)
        return false;

    m_account.failure(QStringLiteral("message box \"%1\": %2").arg(box->windowTitle(), box->text()));
    // The box waits in its own event loop, so it is closed from there.
    if (!m_attended)
        QMetaObject::invokeMethod(box, &QDialog::reject, Qt::QueuedConnection);
    return false;
}

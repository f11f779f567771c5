#pragma once

#include <QtCore/QObject>

class Account;

/// Counts every message box that appears as a failure. With nobody there to close it, it closes it too.
class BoxObserver : public QObject
{
    Q_OBJECT

public:
    BoxObserver(Account &account, bool attended);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Account &m_account;
    const bool m_attended;
};

#pragma once

#include <QtCore/QObject>

class Account;

/**
 * Closes the library's message boxes at once: they stop everything until somebody comes, and say less than
 * the view of the plug-ins does. What they said is told all the same.
 */
class BoxObserver : public QObject
{
    Q_OBJECT

public:
    explicit BoxObserver(Account &account);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Account &m_account;
};

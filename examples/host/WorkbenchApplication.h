#pragma once

#include <QtWidgets/QApplication>

/**
 * Stops what plug-ins throw while Qt hands them an event.
 *
 * Their own buttons, menus, timers and signals lead into them without the host. Such an exception passes
 * through code of Qt that is not made for it, and what that code was about is left undone. So it is told, and
 * the host goes on as well as it can.
 */
class WorkbenchApplication : public QApplication
{
    Q_OBJECT

public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override;

signals:
    void caught(const QString &occasion, const QString &what);
};

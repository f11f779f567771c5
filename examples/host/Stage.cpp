#include "Stage.h"

#include "Workbench.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>

QWidget *Stage::frame(FrameKind kind, const QString &job, const QString &step) const
{
    const Frame *const found = workbench.workspace().find(kind, job, step);
    if (!found)
        qFatal("The tour needs a frame that is not there: %s", qPrintable(stepName(job, step)));
    return found->window;
}

QAbstractScrollArea *Stage::view(const QString &job, const QString &step) const
{
    return element<QAbstractScrollArea>("Graphic_View.dll", FrameKind::Graphic, job, step);
}

QString Stage::label(const QObject *parent, const char *name) const
{
    const auto *const label = parent->findChild<QLabel *>(QLatin1String(name));
    return label ? label->text() : QStringLiteral("no label");
}

QObject *Stage::find(const char *library, FrameKind kind, const QMetaObject &type, const QString &job,
                     const QString &step) const
{
    QObject *const element = workbench.workspace().element(library, kind, job, step);
    if (!element || !element->metaObject()->inherits(&type))
        qFatal("The tour needs an element that is not there: %s", library);
    return element;
}

void User::click(QWidget *widget, const QPoint &position)
{
    QMouseEvent press(QEvent::MouseButtonPress, position, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, position, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &release);
}

void User::click(QAbstractItemView *view, const QString &text)
{
    const QAbstractItemModel *const model = view->model();
    const QModelIndexList found =
        model->match(model->index(0, 0), Qt::DisplayRole, text, 1, Qt::MatchStartsWith | Qt::MatchRecursive);
    if (found.isEmpty())
        qFatal("The tour needs an entry that is not there: %s", qPrintable(text));
    view->scrollTo(found.first());
    // Ticks stand at the left, so the click goes to the right end.
    const QRect entry = view->visualRect(found.first());
    click(view->viewport(), {entry.right() - 4, entry.center().y()});
}

void User::moveMouse(QWidget *widget, const QPoint &position)
{
    auto *const area = qobject_cast<QAbstractScrollArea *>(widget);
    QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(area ? area->viewport() : widget, &move);
}

void User::choose(QObject *element, const char *command, const QString &answer)
{
    auto *const entry = element->findChild<QAction *>(QLatin1String(command));
    if (!entry)
        qFatal("The tour needs a command that is not there: %s", command);
    if (!answer.isEmpty()) {
        // The dialog waits in its own event loop, so it is answered from there.
        QTimer::singleShot(0, entry, [answer] {
            if (auto *const dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget())) {
                dialog->setTextValue(answer);
                dialog->accept();
            }
        });
    }
    entry->trigger();
}

bool User::waitUntil(const std::function<bool()> &isSo)
{
    constexpr int patienceInMilliseconds = 60000;
    QElapsedTimer waiting;
    waiting.start();
    while (!isSo() && !waiting.hasExpired(patienceInMilliseconds)) {
        QThread::msleep(2);
        QCoreApplication::processEvents();
    }
    return isSo();
}
